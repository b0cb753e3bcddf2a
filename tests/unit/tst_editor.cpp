// The editor's picture, preview and controls, driven through the real widgets offscreen.

#include "TestSupport.h"

#include "editor/Caption.h"
#include "editor/EditorMath.h"
#include "editor/Window1.h"
#include "platform/Canvas.h"
#include "prefs/prefwin.h"
#include "recent/recentwin.h"

#include <QCheckBox>
#include <QClipboard>
#include <QLineEdit>
#include <QMenu>
#include <QScrollBar>
#include <QSlider>
#include <QToolButton>
#include <QtTest>

namespace {
// Loads a picture as a capture would, with the store's default scale.
Window1 &loaded(TestProgram &t, const QImage &pic)
{
    t.captureGives(pic);
    t.pressHotKey();
    return Window1::instance();
}

// Pixels of b that differ from a, outside the rectangle.
int differencesOutside(const QImage &a, const QImage &b, const QRect &except)
{
    int n = 0;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x)
            if (!except.contains(x, y) && a.pixel(x, y) != b.pixel(x, y)) ++n;
    return n;
}
} // namespace

class EditorTest : public QObject {
    Q_OBJECT
private slots:
    void pipeline_sizesOnBothPaths_data()
    {
        QTest::addColumn<bool>("quartz");
        QTest::addColumn<int>("scale");
        QTest::addColumn<QSize>("source");
        QTest::addColumn<QSize>("expected");
        for (bool q : {false, true}) {
            const char *path = q ? "smooth" : "plain";
            QTest::addRow("%s 333x77 at 50", path) << q << 50 << QSize(333, 77) << QSize(166, 38);
            QTest::addRow("%s 0 is 100", path) << q << 0 << QSize(64, 48) << QSize(64, 48);
            QTest::addRow("%s 1001 is 100", path) << q << 1001 << QSize(64, 48) << QSize(64, 48);
            QTest::addRow("%s 1000 is ten times", path) << q << 1000 << QSize(21, 13) << QSize(210, 130);
            QTest::addRow("%s a tenth", path) << q << 10 << QSize(333, 77) << QSize(33, 7);
        }
    }
    void pipeline_sizesOnBothPaths()
    {
        QFETCH(bool, quartz);
        QFETCH(int, scale);
        QFETCH(QSize, source);
        QFETCH(QSize, expected);
        TestProgram t;
        Window1 &w = loaded(t, patternImage(source.width(), source.height()));
        prefwin::instance().quartz->setChecked(quartz);
        w.currentscale = scale;
        const QImage a = w.getscaledimage().toImage();
        QCOMPARE(a.size(), expected);
        QImage b = w.getscaledimage().toImage();
        QCOMPARE(a, b);
        b.fill(Qt::red); // each call gives a picture of its own
        QVERIFY(a != b);
        QCOMPARE(a, w.getscaledimage().toImage());
    }

    void pipeline_atFullScaleIsThePictureOnBothPaths_andPathsDifferWhenScaling()
    {
        TestProgram t;
        const QImage pic = patternImage(120, 90);
        Window1 &w = loaded(t, pic);
        QCheckBox *quartz = prefwin::instance().quartz;
        w.currentscale = 100;
        for (bool q : {false, true}) {
            quartz->setChecked(q);
            QCOMPARE(w.getscaledimage().toImage().convertToFormat(QImage::Format_RGB32), pic);
        }
        w.currentscale = 150;
        quartz->setChecked(false);
        const QImage plain = w.getscaledimage().toImage();
        quartz->setChecked(true);
        const QImage smooth = w.getscaledimage().toImage();
        QCOMPARE(plain.size(), smooth.size());
        QVERIFY(plain != smooth);
        // The plain path repeats source pixels: every scaled pixel is one of the picture's.
        QCOMPARE(plain.pixel(0, 0), pic.pixel(0, 0));
        QCOMPARE(plain.pixel(2, 2), pic.pixel(1, 1));
    }

    void quartzToggle_rebuildsTheCurrentPicture()
    {
        TestProgram t;
        Window1 &w = loaded(t, patternImage(120, 90));
        w.scaleField->setText("150");
        const QImage before = w.getoutputimage();
        prefwin::instance().quartz->setChecked(!prefwin::instance().quartz->isChecked());
        QVERIFY(w.getoutputimage() != before);
        QCOMPARE(w.ScaledImage.size(), before.size());
    }

    void caption_bandGeometryAndPixels_data()
    {
        QTest::addColumn<QSize>("picture");
        QTest::addColumn<QString>("caption");
        QTest::newRow("one word on a wide picture") << QSize(400, 200) << "Hello";
        QTest::newRow("one blank makes a band") << QSize(400, 200) << " ";
        QTest::newRow("longer than the picture wraps") << QSize(120, 200)
                                                       << "a caption far longer than the picture is wide";
        QTest::newRow("taller than the picture") << QSize(40, 20)
                                                 << "many words that wrap into a tall band here";
    }
    void caption_bandGeometryAndPixels()
    {
        QFETCH(QSize, picture);
        QFETCH(QString, caption);
        TestProgram t;
        Window1 &w = loaded(t, patternImage(picture.width(), picture.height()));
        const QImage plain = w.getoutputimage();
        w.captionText->setText(caption);
        const QImage banded = w.getoutputimage();
        QCOMPARE(banded.size(), plain.size());

        const int W = picture.width();
        const int bw = qMin(int(editor::Caption::StringWidth(caption) + 10.0), W - 10);
        const int bh = editor::Caption::StringHeight(caption, W - 14) + 6;
        const QRect band(int((W - bw) / 2.0), picture.height() - bh - 5, bw, bh);
        QCOMPARE(differencesOutside(plain, banded, band), 0);
        // The plate's middle is darkened, not replaced: 145/255 black over the picture.
        const QPoint mid(band.left() + 1, band.center().y());
        if (band.contains(mid) && mid.y() >= 0) {
            const QRgb under = plain.pixel(mid), over = banded.pixel(mid);
            QVERIFY(qAbs(qRed(over) - qRed(under) * 110 / 255) <= 2);
        }
        if (band.bottom() >= 0) QVERIFY(banded.copy(band.intersected(banded.rect())) != plain.copy(band.intersected(plain.rect())));
        // Emptying the caption removes the band at once.
        w.captionText->setText(QString());
        QCOMPARE(w.getoutputimage(), plain);
    }

    void caption_onAPictureTenWideFails()
    {
        TestProgram t;
        Window1 &w = loaded(t, patternImage(10, 40));
        w.captionText->setText("x");
        QCOMPARE(t.app->messages, QStringList{"An Error Ocurred at LoadTypeMenu"});
    }

    void caption_leavesTheScrollRangesAlone()
    {
        TestProgram t;
        Window1 &w = loaded(t, patternImage(1500, 1200));
        const int h = w.ScrollBarH->maximum(), v = w.ScrollBarV->maximum();
        QVERIFY(h > 0 && v > 0);
        w.ScrollBarH->setValue(h / 3);
        w.captionText->setText("caption");
        QCOMPARE(w.ScrollBarH->maximum(), h);
        QCOMPARE(w.ScrollBarV->maximum(), v);
        QCOMPARE(w.ScrollBarH->value(), h / 3);
    }

    // On either path and at any scale, what the preview shows at any scroll position is exactly
    // that part of the picture the outputs get.
    void preview_showsExactlyWhatTheOutputsGet_data()
    {
        QTest::addColumn<bool>("smooth");
        QTest::addColumn<int>("scale");
        QTest::addColumn<QString>("caption");
        for (bool smooth : {true, false})
            for (int scale : {10, 50, 99, 100, 101, 150, 200, 1000})
                for (const char *caption : {"", "A caption"})
                    QTest::addRow("%s %d%%%s", smooth ? "smooth" : "plain", scale, *caption ? " captioned" : "")
                        << smooth << scale << QString(caption);
    }
    void preview_showsExactlyWhatTheOutputsGet()
    {
        QFETCH(bool, smooth);
        QFETCH(int, scale);
        QFETCH(QString, caption);
        TestProgram t;
        Window1 &w = loaded(t, patternImage(300, 200));
        prefwin::instance().quartz->setChecked(smooth);
        w.captionText->setText(caption);
        w.scaleField->setText(QString::number(scale));
        const QImage whole = w.getoutputimage().convertToFormat(QImage::Format_RGB32);
        QCOMPARE(whole.size(), QSize(300 * scale / 100, 200 * scale / 100));
        for (double at : {0.0, 0.37, 1.0}) {
            w.ScrollBarH->setValue(int(w.ScrollBarH->maximum() * at));
            w.ScrollBarV->setValue(int(w.ScrollBarV->maximum() * at));
            const QImage shot = w.Canvas1->grab().toImage().convertToFormat(QImage::Format_RGB32);
            // The part of the picture on the canvas, and where it lands.
            const editor::PaintPlacement pl = editor::paintPlacement(
                whole.size(), shot.size(), w.ScrollBarH->value(), w.ScrollBarV->value());
            const QRect part = QRect(pl.source, pl.destination.size()) & whole.rect();
            const QRect onCanvas = QRect(pl.destination.topLeft() + part.topLeft() - pl.source, part.size()) & shot.rect();
            QVERIFY(!onCanvas.isEmpty());
            QCOMPARE(shot.copy(onCanvas), whole.copy(onCanvas.translated(pl.source - pl.destination.topLeft())));
        }
        if (scale == 200 && smooth && !caption.isEmpty()) {
            w.ToolbarItem1_Action(); // Copy takes the whole picture
            QCOMPARE(QGuiApplication::clipboard()->image().convertToFormat(QImage::Format_RGB32), whole);
        }
    }

    void pan_movesTheViewWithTheHandAndResumesAtOnce()
    {
        TestProgram t;
        Window1 &w = loaded(t, patternImage(900, 700));
        QVERIFY(w.pannable());
        QVERIFY2(w.Canvas1->cursor().shape() != Qt::ArrowCursor, "the open hand");
        const int h0 = w.ScrollBarH->value();
        QVERIFY(w.Canvas1_MouseDown(100, 100));
        w.Canvas1_MouseDrag(90, 100); // hand to the left: view goes right
        QCOMPARE(w.ScrollBarH->value(), h0 + 10);
        w.Canvas1_MouseDrag(-5000, 100); // past the end: confined
        QCOMPARE(w.ScrollBarH->value(), w.ScrollBarH->maximum());
        w.Canvas1_MouseDrag(-4990, 100); // turning back moves at once
        QCOMPARE(w.ScrollBarH->value(), w.ScrollBarH->maximum() - 10);
        QVERIFY(!w.holdupdate);
    }

    void notPannable_pressReturnsFalseAndOnlyRemembers()
    {
        TestProgram t;
        Window1 &w = loaded(t, patternImage(50, 50));
        QVERIFY(!w.pannable());
        QVERIFY(!w.Canvas1_MouseDown(7, 9));
        QCOMPARE(QPoint(w.xdown, w.ydown), QPoint(7, 9));
        QCOMPARE(w.Canvas1->cursor().shape(), Qt::ArrowCursor);
    }

    void scaleControls_keepTheThreePlacesInAgreement_data()
    {
        // "slider N", "paste TEXT" (the whole field at once), "type KEYS", "preset ROW"
        QTest::addColumn<QString>("action");
        QTest::addColumn<int>("currentscale");
        QTest::addColumn<QString>("field");
        QTest::addColumn<int>("slider");
        QTest::addColumn<QSize>("picture");
        QTest::newRow("slider 50") << "slider 50" << 50 << "50" << 50 << QSize(100, 50);
        QTest::newRow("type 150") << "paste 150" << 150 << "150" << 150 << QSize(300, 150);
        QTest::newRow("type with a fraction") << "paste 75.9" << 75 << "75" << 75 << QSize(150, 75);
        QTest::newRow("type 5 with the slider elsewhere") << "paste 5" << 10 << "10" << 10 << QSize(20, 10);
        QTest::newRow("paste 1000") << "paste 1000" << 1000 << "1000" << 200 << QSize(2000, 1000);
        QTest::newRow("type 2000 draws at 100") << "paste 2000" << 2000 << "2000" << 200 << QSize(200, 100);
        QTest::newRow("typing 1, 5: the 1 becomes 10 and the 5 goes in behind it")
            << "type 15" << 150 << "150" << 150 << QSize(300, 150);
        QTest::newRow("typing 1, 5, 0 gives 1500, drawn at 100")
            << "type 150" << 1500 << "1500" << 200 << QSize(200, 100);
        QTest::newRow("preset 50") << "preset 2" << 50 << "50" << 50 << QSize(100, 50);
        QTest::newRow("preset empty row is 10") << "preset 0" << 10 << "10" << 10 << QSize(20, 10);
    }
    void scaleControls_keepTheThreePlacesInAgreement()
    {
        QFETCH(QString, action);
        QFETCH(int, currentscale);
        QFETCH(QString, field);
        QFETCH(int, slider);
        QFETCH(QSize, picture);
        TestProgram t;
        Window1 &w = loaded(t, patternImage(200, 100));
        const QString verb = action.section(' ', 0, 0), arg = action.section(' ', 1);
        if (verb == "slider") w.Slider1->setValue(arg.toInt());
        w.scaleField->selectAll();
        if (verb == "paste") w.scaleField->insert(arg);
        if (verb == "type") QTest::keyClicks(w.scaleField, arg);
        if (verb == "preset") w.BevelButton1->menu()->actions().at(arg.toInt())->trigger();
        QCOMPARE(w.currentscale, currentscale);
        QCOMPARE(w.scaleField->text(), field);
        QCOMPARE(w.Slider1->value(), slider);
        QCOMPARE(w.ScaledImage.size(), picture);
        QVERIFY(!w.holdupdate);
    }

    void typingFive_givesTenWithTheCaretAfterTheFirstDigit()
    {
        TestProgram t;
        Window1 &w = loaded(t, patternImage(200, 100));
        w.scaleField->selectAll();
        QTest::keyClicks(w.scaleField, "5");
        QCOMPARE(w.scaleField->text(), QString("10"));
        QCOMPARE(w.scaleField->cursorPosition(), 1);
        QTest::keyClicks(w.scaleField, "0");
        QCOMPARE(w.scaleField->text(), QString("100"));
    }

    void aboveTwoHundred_theSliderNoLongerLeads()
    {
        TestProgram t;
        Window1 &w = loaded(t, patternImage(20, 10));
        w.scaleField->setText("500");
        QCOMPARE(w.Slider1->value(), 200);
        w.Slider1->setValue(150);
        QCOMPARE(w.currentscale, 500);
        QCOMPARE(w.scaleField->text(), QString("500"));
        w.scaleField->setText("120");
        QCOMPARE(w.Slider1->value(), 120);
        QCOMPARE(w.currentscale, 120);
    }

    void resize_keepsTheControlsLockedAndTheDrawerAsTall()
    {
        TestProgram t;
        Window1 &w = loaded(t, patternImage(50, 50));
        w.setWidth(500);
        w.setHeight(500);
        QCOMPARE(w.Canvas1->geometry(), QRect(0, 0, 485, 410));
        QCOMPARE(w.scaleField->geometry(), QRect(451, 457, 27, 15));
        QCOMPARE(w.ScrollBarV->geometry(), QRect(485, 0, 16, 410));
        QCoreApplication::processEvents();
        QCOMPARE(recentwin::instance().Height(), 500);
    }

};

QTEST_MAIN(EditorTest)
#include "tst_editor.moc"
