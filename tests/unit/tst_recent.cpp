// The drawer of recent captures: the list, its scroll range, the thumbnails and the click that
// takes a capture back into the editor.

#include "TestSupport.h"

#include "editor/Window1.h"
#include "platform/Canvas.h"
#include "recent/recentwin.h"

#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QSlider>
#include <QtTest>

namespace {
QImage solid(int w, int h, QColor c)
{
    QImage img(w, h, QImage::Format_RGB32);
    img.fill(c);
    return img;
}

void capture(TestProgram &t, const QImage &pic)
{
    t.captureGives(pic);
    t.pressHotKey();
}
} // namespace

class RecentTest : public QObject {
    Q_OBJECT
private slots:
    void elevenCaptures_keepTheLastTenInOrder()
    {
        TestProgram t;
        for (int i = 1; i <= 11; ++i) capture(t, solid(10 + i, 10, Qt::gray));
        const QList<QImage> &list = recentwin::instance().recentimages;
        QCOMPARE(list.size(), 10);
        for (int i = 0; i < 10; ++i) QCOMPARE(list[i].width(), 12 + i);
    }

    void click_takesTheRowUnderTheRelease_data()
    {
        QTest::addColumn<int>("y");
        QTest::addColumn<int>("scroll");
        QTest::addColumn<int>("entry"); // -1: a beep and nothing else
        QTest::newRow("y 152 is entry 0") << 152 << 0 << 0;
        QTest::newRow("y 155 is entry 1") << 155 << 0 << 1;
        QTest::newRow("a little above the canvas is still entry 0") << -20 << 0 << 0;
        QTest::newRow("past the last entry beeps") << 470 << 0 << -1;
        QTest::newRow("far above the canvas beeps") << -400 << 0 << -1;
    }
    void click_takesTheRowUnderTheRelease()
    {
        QFETCH(int, y);
        QFETCH(int, scroll);
        QFETCH(int, entry);
        TestProgram t;
        const QList<QColor> colours = {Qt::red, Qt::green, Qt::blue};
        for (const QColor &c : colours) capture(t, solid(60, 40, c));
        recentwin &d = recentwin::instance();
        int beeps = 0;
        d.Beep = [&beeps] { ++beeps; };
        d.ScrollBar1->setValue(scroll);
        Window1 &w = Window1::instance();
        w.Slider1->setValue(50);
        const QImage before = w.mypic;
        QVERIFY(d.Canvas2_MouseDown(10, y));
        d.Canvas2_MouseUp(10, y);
        if (entry < 0) {
            QCOMPARE(beeps, 1);
            QCOMPARE(w.mypic, before);
            return;
        }
        QCOMPARE(beeps, 0);
        QCOMPARE(w.mypic.pixelColor(0, 0), colours[entry]);
        QCOMPARE(w.scaleField->text(), QString("50"));
        QCOMPARE(w.ScaledImage.size(), QSize(30, 20));
        QCOMPARE(d.recentimages.size(), 3);
    }

    void clearAll_emptiesTheListAndPullsTheBarToZero()
    {
        TestProgram t;
        for (int i = 0; i < 10; ++i) capture(t, solid(30, 30, Qt::gray));
        recentwin &d = recentwin::instance();
        QCOMPARE(d.ScrollBar1->maximum(), 10 * 155 - d.Height() + 40);
        d.ScrollBar1->setValue(d.ScrollBar1->maximum());
        d.BevelButton1->click();
        QVERIFY(d.recentimages.isEmpty());
        QCOMPARE(d.ScrollBar1->maximum(), 0);
        QCOMPARE(d.ScrollBar1->value(), 0);
        QVERIFY2(!Window1::instance().mypic.isNull(), "the editor keeps its capture");
    }

    void paint_fitsEachCaptureInto150WithAGreyFrame()
    {
        TestProgram t;
        capture(t, solid(600, 150, Qt::red));
        capture(t, solid(75, 75, Qt::blue));
        recentwin &d = recentwin::instance();
        const QImage shot = d.Canvas2->grab().toImage().convertToFormat(QImage::Format_RGB32);
        const QColor frame(50, 50, 50);
        // 600x150: 150 by 37.5 at x 0, y 56; the frame's right side one pixel further out.
        QCOMPARE(shot.pixelColor(0, 56), frame);
        QCOMPARE(shot.pixelColor(151, 60), frame);
        QCOMPARE(shot.pixelColor(60, 93), frame);
        QCOMPARE(shot.pixelColor(75, 75), QColor(Qt::red));
        // 75x75 is enlarged to 150 in the second cell.
        QCOMPARE(shot.pixelColor(0, 155), frame);
        QCOMPARE(shot.pixelColor(140, 160), QColor(Qt::blue));
    }

    void threeEntriesInATallDrawerHaveNoRange()
    {
        TestProgram t;
        recentwin &d = recentwin::instance();
        d.setHeight(507);
        for (int i = 0; i < 3; ++i) d.addimage(solid(20, 20, Qt::gray));
        QCOMPARE(d.ScrollBar1->maximum(), 0);
        QCOMPARE(d.Canvas2->height(), 507 - 38);
        QCOMPARE(d.BevelButton1->y(), 507 - 25);
    }
};

QTEST_MAIN(RecentTest)
#include "tst_recent.moc"
