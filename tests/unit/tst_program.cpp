// The whole program in one process, offscreen: the hot key's road, the editor's picture and
// controls, the drawer, the menus and the preferences window, and every failure road.

#include "TestSupport.h"

#include "app/splash.h"
#include "editor/Caption.h"
#include "editor/EditorMath.h"
#include "editor/ScaledPicture.h"
#include "editor/Window1.h"
#include "platform/core/Failure.h"
#include "platform/framework/Canvas.h"
#include "platform/framework/MenuBar.h"
#include "platform/framework/WindowRegistry.h"
#include "prefs/HideDockIcon.h"
#include "prefs/LaunchMeAtLogin.h"
#include "prefs/prefwin.h"
#include "recent/recentwin.h"

#include <QCheckBox>
#include <QComboBox>
#include <QEventLoop>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPrinter>
#include <QPushButton>
#include <QScrollBar>
#include <QSlider>
#include <QTimer>
#include <QToolBar>
#include <QToolButton>
#include <csignal>
#include <thread>
#include <unistd.h>

namespace {
QImage solid(int w, int h, QColor c)
{
    QImage img(w, h, QImage::Format_RGB32);
    img.fill(c);
    return img;
}

} // namespace

class ProgramTest : public QObject {
    Q_OBJECT
private slots:
    void aPress_claimsRunsAndOpensOnce()
    {
        TestProgram t;
        QCOMPARE(t.keys->claims.size(), 1);
        const auto c = t.keys->claims.first();
        QCOMPARE((QList<int>{c.keycode, c.modifiers, int(c.signature)}),
                 (QList<int>{'2', 768, 0x73636370}));
        QVERIFY(!QFile::exists(t.plistPath()));
        QVERIFY(t.app->trayIcon());
        // Another signature does nothing; any id of ours captures; a press while the capture
        // runs is dropped.
        t.keys->press(fw::OSTypeFromString("xxxx"), 1);
        t.runner->onRun = [&](const QStringList &) {
            if (t.runner->calls.size() == 1) t.keys->press(fw::OSTypeFromString("sccp"), 1);
            QGuiApplication::clipboard()->setImage(patternImage(200, 120));
        };
        t.keys->press(fw::OSTypeFromString("sccp"), 77);
        QCOMPARE(t.runner->calls, (QList<QStringList>{{"screencapture", "-cio"}}));
        Window1 &w = Window1::instance();
        QVERIFY(w.isVisible());
        QCOMPARE(w.getoutputimage().convertToFormat(QImage::Format_RGB32), patternImage(200, 120));
        QCOMPARE(recentwin::instance().recentimages.size(), 1);
        QCOMPARE(t.app->process, QString("LoadTypeMenu"));
        QVERIFY(t.app->messages.isEmpty());
    }

    // A capture asked for at start (served inside the splash's show) whose selection outlasts the
    // splash's timer: the splash closes under it and is deleted only after ShowModal.
    void aCaptureOutlastingTheSplash_endsCleanly()
    {
        TestProgram t(false);
        t.app->showSplash = [&] { t.app->showTheSplash(); };
        t.runner->onRun = [](const QStringList &) {
            QEventLoop busy;
            QTimer::singleShot(1700, &busy, &QEventLoop::quit);
            busy.exec();
            QGuiApplication::clipboard()->setImage(patternImage(20, 20));
        };
        QTimer::singleShot(0, [&] { t.pressHotKey(); });
        t.app->_Startup();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); // the splash goes
        QVERIFY(Window1::instance().isVisible() && !t.app->windows().existing<splash>());
    }

    // A signal during a selection ends the helper and what it started, and the capture with them.
    void aSignal_endsTheCaptureAndItsHelpersAtOnce()
    {
        TestProgram t;
        const QString bin = t.home.path() + "/bin", pid = t.home.path() + "/pid";
        writeFile(bin + "/screencapture",
                  "#!/bin/sh\nsleep 30 &\necho $! >" + pid.toUtf8() + "\nsleep 5\n");
        QFile::setPermissions(bin + "/screencapture", QFile::ReadOwner | QFile::ExeOwner);
        t.services->commands = std::make_unique<fw::ProcessRunner>(bin);
        std::thread signal([&] {
            for (int i = 0; i < 250 && readFile(pid).toInt() <= 0; ++i)
                QThread::msleep(20);
            ::kill(::getpid(), SIGTERM);
        });
        t.pressHotKey();
        signal.join();
        // SIGKILL is sent at once; the kernel ends the process a moment later.
        const auto helper = [&] { return readFile("/proc/" + readFile(pid).trimmed() + "/stat"); };
        const auto ended = [&] { return helper().contains(") Z ") || helper() == "(unreadable)"; };
        QTRY_VERIFY2_WITH_TIMEOUT(ended(), helper(), 2000);
        QVERIFY(t.app->quitRequested() && !Window1::instance().isVisible());
    }

    // What the capture leaves on the clipboard: nothing, or text, is silence; a broken picture or
    // one beyond the allocation limit ends in the one message. Either way the next capture works.
    void noPictureIsSilent_aBrokenOneGivesTheOneMessage()
    {
        const struct {
            QByteArray bytes;
            QString mime;
            bool message;
        } cases[] = {
            {"", "", false},
            {"just words\n", "text/plain", false},
            {QByteArray("\x89PNG\r\n\x1a\n", 8) + QByteArray(1000, 'x'), "image/png", true},
            {pngHeaderClaiming(40000, 40000), "image/png", true}};
        for (const auto &c : cases) {
            TestProgram t;
            if (!c.mime.isEmpty()) t.captureGivesBytes(c.bytes, c.mime);
            t.pressHotKey();
            QCOMPARE(t.app->messages,
                     c.message ? QStringList{"An Error Ocurred at OpenEditor"} : QStringList());
            QVERIFY(!t.app->windows().existing<Window1>()->isVisible());
            QVERIFY2(!t.app->quitRequested(), "the editor refuses the failure road's quit");
            QVERIFY(t.capture().isVisible());
        }
    }

    void storedScaleAndFormat_decideTheFirstLoad()
    {
        // stored LastScale, field, slider, scaled size of a 200x100 capture, message
        const struct {
            QByteArray stored;
            QString field;
            int slider;
            QSize size;
            QString message;
        } cases[] = {
            {"", "100", 100, {200, 100}, ""},
            {"<string>150</string>", "150", 150, {300, 150}, ""},
            {"<string>abc</string>", "10", 10, {20, 10}, ""}, // no number: pinned to 10
            {"<integer>150</integer>", "100", 100, {200, 100}, "An Error Ocurred at LoadTypeMenu"},
        };
        for (const auto &c : cases) {
            TestProgram t(false);
            t.writePlist("<plist><dict><key>LastFormat</key><string>png</string>" +
                         (c.stored.isEmpty() ? QByteArray() : "<key>LastScale</key>" + c.stored) +
                         "</dict></plist>");
            t.app->_Startup();
            Window1 &w = t.capture(patternImage(200, 100));
            QCOMPARE(t.app->messages, c.message.isEmpty() ? QStringList() : QStringList{c.message});
            if (!c.message.isEmpty()) continue;
            QCOMPARE(w.scaleField->text(), c.field);
            QCOMPARE(w.Slider1->value(), c.slider);
            QCOMPARE(w.ScaledImage.size(), c.size);
            QCOMPARE(w.Height(), 250); // sized from the picture at 100 %, before the scale was read
            QCOMPARE(prefwin::instance().PopupMenu1->currentText(), QString("PNG"));
        }
    }

    void quit_refusedByTheEditor_endedByTheSystem()
    {
        TestProgram t;
        Window1 &w = t.capture();
        t.app->Quit(0);
        QVERIFY(!t.app->quitRequested());
        QVERIFY(!w.isVisible() && t.app->windows().existing<Window1>());
        t.app->systemQuit();
        QVERIFY(t.app->quitRequested());
        // Nothing is written once the system ends the session; the windows close at the end.
        fw::GraphicsExporter &e = *t.commands().exporter;
        e.InputPicture = patternImage(4, 4);
        e.OutputFile = t.home.path() + "/late.jpg";
        QCOMPARE(e.Export(), fw::ExportStatus::Ending);
        QVERIFY(!QFile::exists(e.OutputFile));
        t.app->finish();
        QVERIFY(!t.app->windows().existing<Window1>());
    }

    void failures_endInOneMessageWithTheBreadcrumb()
    {
        {
            TestProgram t(false);
            fw::guarded([] { throw fw::NilObjectException(); });
            QCOMPARE(t.app->messages, QStringList{"An Error Ocurred at "});
            QVERIFY(t.app->quitRequested());
        }
        TestProgram t;
        // The system quit above ended the loops; a run of the application's loop clears that.
        QTimer::singleShot(0, qApp, &QCoreApplication::quit);
        QCoreApplication::exec();
        QStringList seenWhileTheLoopRan;
        fw::guarded([&] {
            QEventLoop loop; // a modal dialog's, say: the failure is reported at once
            QTimer::singleShot(0, [] { fw::guarded([] { throw fw::NilObjectException(); }); });
            QTimer::singleShot(50, [&] { seenWhileTheLoopRan = t.app->messages, loop.quit(); });
            loop.exec();
        });
        QCOMPARE(seenWhileTheLoopRan, QStringList{"An Error Ocurred at OpenEditor"});
        t.app->messages.clear();
        Window1 &w = t.capture(patternImage(10, 40));
        w.captionText->setText("x"); // no room for a band
        QCOMPARE(t.app->messages, QStringList{"An Error Ocurred at LoadTypeMenu"});
        t.app->messages.clear();
        w.captionText->setText("");
        t.capture(patternImage(10, 40)); // the failure's quit hid the editor, and its picture went
        w.Slider1->setValue(10);
        fw::guarded([&] { w.setScaleFieldText("-50"); }); // the pipeline can't draw it
        QCOMPARE(t.app->messages, QStringList{"An Error Ocurred at LoadTypeMenu"});
    }

    void pipeline_pathsAndFreshPictures()
    {
        TestProgram t;
        const QImage pic = patternImage(120, 90);
        Window1 &w = t.capture(pic);
        QCheckBox *quartz = prefwin::instance().quartz;
        for (bool q : {false, true}) {
            quartz->setChecked(q);
            QCOMPARE(w.getscaledimage().toImage().convertToFormat(QImage::Format_RGB32), pic);
        }
        w.scaleField->setText("150");
        const QImage smooth = w.getoutputimage();
        quartz->setChecked(false); // the toggle rebuilds the picture
        const QImage plain = w.getoutputimage();
        QVERIFY(plain != smooth);
        QCOMPARE(plain.size(), smooth.size());
        QCOMPARE(plain.pixel(2, 2), pic.pixel(1, 1)); // the plain path repeats source pixels
        QImage own = w.getscaledimage().toImage();
        own.fill(Qt::red); // each call gives a picture of its own
        QCOMPARE(w.getscaledimage().toImage().convertToFormat(QImage::Format_RGB32),
                 plain.convertToFormat(QImage::Format_RGB32));
    }

    void caption_darkensOnlyItsBand()
    {
        for (const auto &[size, caption] : QList<QPair<QSize, QString>>{
                 {{400, 200}, "Hello"},
                 {{400, 200}, " "},
                 {{120, 200}, "a caption far longer than the picture is wide"},
                 {{40, 20}, "many words that wrap into a tall band here"}}) {
            TestProgram t;
            Window1 &w = t.capture(patternImage(size.width(), size.height()));
            const QImage plain = w.getoutputimage();
            w.captionText->setText(caption);
            const QImage banded = w.getoutputimage();
            // One line's height and 3 above and below; as wide as the text and 5 each side.
            const int W = size.width(), bh = editor::Caption::StringHeight(caption, W - 14) + 6;
            const int bw = qMin(int(editor::Caption::StringWidth(caption) + 10.0), W - 10);
            const QRect band(int((W - bw) / 2.0), size.height() - bh - 5, bw, bh);
            for (int y = 0; y < size.height(); ++y)
                for (int x = 0; x < W; ++x)
                    if (!band.contains(x, y)) QCOMPARE(banded.pixel(x, y), plain.pixel(x, y));
            // The plate's top and bottom rows and its left edge: 145/255 black over the picture.
            for (const QPoint at :
                 {QPoint(band.center().x(), band.top()), QPoint(band.center().x(), band.bottom()),
                  QPoint(band.left() + 1, band.center().y())})
                if (plain.rect().contains(at))
                    QVERIFY2(qAbs(qRed(banded.pixel(at)) - qRed(plain.pixel(at)) * 110 / 255) <= 2,
                             qPrintable(caption));
            w.captionText->setText(QString());
            QCOMPARE(w.getoutputimage(), plain);
        }
    }

    // On either path and at any scale, what the preview shows at any scroll position is exactly
    // that part of the picture the outputs get.
    void preview_showsExactlyWhatTheOutputsGet()
    {
        TestProgram t;
        Window1 &w = t.capture(patternImage(300, 200));
        for (bool smooth : {true, false})
            for (const auto &[scale, caption] : QList<QPair<int, QString>>{{10, ""},
                                                                           {99, "A caption"},
                                                                           {100, ""},
                                                                           {150, "A caption"},
                                                                           {1000, "A caption"}}) {
                prefwin::instance().quartz->setChecked(smooth);
                w.captionText->setText(caption);
                w.scaleField->setText(QString::number(scale));
                const QImage whole = w.getoutputimage().convertToFormat(QImage::Format_RGB32);
                QCOMPARE(whole.size(), QSize(300 * scale / 100, 200 * scale / 100));
                for (double at : {0.0, 0.37, 1.0}) {
                    w.ScrollBarH->setValue(int(w.ScrollBarH->maximum() * at));
                    w.ScrollBarV->setValue(int(w.ScrollBarV->maximum() * at));
                    const QImage shot =
                        w.Canvas1->grab().toImage().convertToFormat(QImage::Format_RGB32);
                    const editor::PaintPlacement pl = editor::paintPlacement(
                        whole.size(), shot.size(), w.ScrollBarH->value(), w.ScrollBarV->value());
                    const QRect part = QRect(pl.source, pl.destination.size()) & whole.rect();
                    const QRect onCanvas =
                        QRect(pl.destination.topLeft() + part.topLeft() - pl.source, part.size()) &
                        shot.rect();
                    QCOMPARE(shot.copy(onCanvas),
                             whole.copy(onCanvas.translated(pl.source - pl.destination.topLeft())));
                }
            }
        const int h = w.ScrollBarH->maximum(), v = w.ScrollBarV->maximum();
        w.ScrollBarH->setValue(h / 3);
        w.captionText->setText("caption changes"); // the ranges stay
        QCOMPARE(
            (QList<int>{w.ScrollBarH->maximum(), w.ScrollBarV->maximum(), w.ScrollBarH->value()}),
            (QList<int>{h, v, h / 3}));
    }

    // A whole output picture is rendered in bands on several threads; strips small enough for
    // one thread each must give the same pixels, seams included, on both paths and under a
    // caption band that crosses them.
    void scaledPicture_wholeInBandsEqualsItsStrips()
    {
        QImage band(2100, 120, QImage::Format_ARGB32_Premultiplied);
        band.fill(QColor(0, 0, 0, 128));
        for (const auto path : {editor::ScalingPath::Smooth, editor::ScalingPath::Plain}) {
            // Two descriptions: once the whole is made, a description serves parts from it.
            const auto describe = [&] {
                return editor::ScaledPicture::described(
                    patternImage(700, 500), 3.0, QSize(2100, 1500), path, band, QPoint(0, 690));
            };
            const QImage whole = describe().toImage();
            QCOMPARE(whole.size(), QSize(2100, 1500));
            const editor::ScaledPicture parts = describe();
            for (int top = 0; top < 1500; top += 64) {
                const QRect strip(0, top, 2100, qMin(64, 1500 - top));
                QCOMPARE(parts.render(strip), whole.copy(strip));
            }
        }
    }

    void pan_movesTheViewWithTheHand()
    {
        TestProgram t;
        Window1 &w = t.capture(patternImage(900, 700));
        QVERIFY(w.Canvas1->cursor().shape() != Qt::ArrowCursor); // the open hand
        const int h0 = w.ScrollBarH->value();
        QVERIFY(w.Canvas1_MouseDown(100, 100));
        w.Canvas1_MouseDrag(90, 100); // hand to the left: the view goes right
        QCOMPARE(w.ScrollBarH->value(), h0 + 10);
        w.Canvas1_MouseDrag(-5000, 100); // confined
        QCOMPARE(w.ScrollBarH->value(), w.ScrollBarH->maximum());
        w.Canvas1_MouseDrag(-4990, 100); // turning back moves at once
        QCOMPARE(w.ScrollBarH->value(), w.ScrollBarH->maximum() - 10);
        t.capture(patternImage(50, 50));
        QVERIFY(!w.Canvas1_MouseDown(7, 9)); // nothing to pan: only remembered
        QCOMPARE(QPoint(w.xdown, w.ydown), QPoint(7, 9));
        QCOMPARE(w.Canvas1->cursor().shape(), Qt::ArrowCursor);
    }

    void scaleControls_keepTheThreePlacesInAgreement()
    {
        // "slider N", "paste TEXT" (the whole field at once), "type KEYS", "preset ROW"; then
        // currentscale, field, slider, and the scaled size of a 200x100 capture
        const struct {
            QString action;
            int scale;
            QString field;
            int slider;
            QSize picture;
        } cases[] = {
            {"slider 50", 50, "50", 50, {100, 50}},
            {"paste 75.9", 75, "75", 75, {150, 75}},
            {"paste 5", 10, "10", 10, {20, 10}},
            {"paste 1000", 1000, "1000", 200, {2000, 1000}},
            {"paste 2000", 2000, "2000", 200, {200, 100}}, // drawn at 100
            {"type 15", 150, "150", 150, {300, 150}},      // the 1 becomes 10, the 5 goes behind it
            {"type 150", 1500, "1500", 200, {200, 100}},
            {"preset 0", 10, "10", 10, {20, 10}}, // the empty row
        };
        for (const auto &c : cases) {
            TestProgram t;
            Window1 &w = t.capture(patternImage(200, 100));
            const QString verb = c.action.section(' ', 0, 0), arg = c.action.section(' ', 1);
            if (verb == "slider") w.Slider1->setValue(arg.toInt());
            w.scaleField->selectAll();
            if (verb == "paste") w.scaleField->insert(arg);
            if (verb == "type") QTest::keyClicks(w.scaleField, arg);
            if (verb == "preset") w.BevelButton1->menu()->actions().at(arg.toInt())->trigger();
            QCOMPARE(w.currentscale, c.scale);
            QCOMPARE(w.scaleField->text(), c.field);
            QCOMPARE(w.Slider1->value(), c.slider);
            QCOMPARE(w.ScaledImage.size(), c.picture);
            if (c.scale <= 200) continue;
            w.Slider1->setValue(150); // above 200 the slider no longer leads
            QCOMPARE(w.currentscale, c.scale);
        }
    }

    void toolbar_picturesOnlyWhenNarrow_atOneHeight()
    {
        TestProgram t;
        Window1 &w = t.capture(patternImage(200, 100));
        QVERIFY(w.toolBar);
        w.resize(1000, w.height());
        QCoreApplication::processEvents();
        const QSize captioned = w.toolBar->size();
        // Narrow, wide, narrow again: the order a held key's loads can give.
        for (const int width : {300, 1000, 300, 300, 1000, 1000, 300}) {
            w.resize(width, w.height());
            QCoreApplication::processEvents();
            QCOMPARE(w.toolBar->toolButtonStyle(), width < captioned.width()
                                                       ? Qt::ToolButtonIconOnly
                                                       : Qt::ToolButtonTextUnderIcon);
            QCOMPARE(w.toolBar->height(), captioned.height());
        }
    }

    void drawer_keepsTheLastTenAndGivesOneBack()
    {
        TestProgram t;
        for (int i = 1; i <= 11; ++i)
            t.capture(solid(10 + i, 10, Qt::gray));
        recentwin &d = recentwin::instance();
        QCOMPARE(d.recentimages.size(), 10);
        QCOMPARE(d.recentimages.pictureSize(0).width(), 12);
        QCOMPARE(d.recentimages.pictureSize(9).width(), 21);
        d.BevelButton1->click(); // Clear All
        QVERIFY(d.recentimages.isEmpty());
        QCOMPARE(d.ScrollBar1->maximum(), 0);

        const QList<QColor> colours = {Qt::red, Qt::blue, Qt::green};
        for (const QColor &c : colours)
            t.capture(c == Qt::blue ? solid(75, 75, c) : solid(600, 150, c));
        const QImage shot = d.Canvas2->grab().toImage().convertToFormat(QImage::Format_RGB32);
        QCOMPARE(shot.pixelColor(0, 56), QColor(50, 50, 50)); // 600x150 fits 150 by 37.5, framed
        QCOMPARE(shot.pixelColor(75, 75), QColor(Qt::red));
        QCOMPARE(shot.pixelColor(140, 160), QColor(Qt::blue)); // 75x75 is enlarged to 150
        int beeps = 0;
        d.Beep = [&beeps] { ++beeps; };
        Window1 &w = Window1::instance();
        w.Slider1->setValue(50);
        // release y, entry taken (-1: a beep and nothing else)
        for (const auto &[y, entry] :
             QList<QPair<int, int>>{{152, 0}, {155, 1}, {-20, 0}, {470, -1}, {-400, -1}}) {
            w.mypic = QImage();
            QVERIFY(d.Canvas2_MouseDown(10, y));
            d.Canvas2_MouseUp(10, y);
            QCOMPARE(beeps, entry < 0 ? 1 : 0);
            beeps = 0;
            QCOMPARE(w.mypic.isNull() ? QColor() : w.mypic.pixelColor(0, 0),
                     entry < 0 ? QColor() : colours[entry]);
            if (entry >= 0) QCOMPARE(w.scaleField->text(), QString("50"));
        }
        // Kept packed, and made back on a click pixel for pixel.
        t.capture(patternImage(640, 480));
        QTRY_VERIFY(d.recentimages.isPacked(3));
        d.Canvas2_MouseUp(10, 3 * 155 + 10 - d.ScrollBar1->value());
        QCOMPARE(w.mypic, patternImage(640, 480));
    }

    void menus_shortcutsAndEnabling()
    {
        TestProgram t;
        Window1 &w = t.capture();
        QMenuBar *bar = w.menuBar;
        for (const QString item : {"FileQuit Ctrl+Q", "FilePrint Ctrl+P", "FileClose Ctrl+W",
                                   "FilePreferences ", "EditUndo Ctrl+Z", "EditCut Ctrl+X",
                                   "EditCopy Ctrl+C", "EditPaste Ctrl+V", "EditClear "})
            QCOMPARE(fw::menus::find(bar, item.section(' ', 0, 0))->shortcut().toString(),
                     item.section(' ', 1));
        fw::Application &app = *t.app;
        QApplication::setActiveWindow(&w);
        QVERIFY(fw::menus::isAvailable(app, "FilePrint"));
        w.captionText->setFocus();
        w.captionText->setText("words");
        w.captionText->deselect();
        QVERIFY(!fw::menus::isAvailable(app, "EditCopy"));
        w.captionText->selectAll();
        QVERIFY(fw::menus::isAvailable(app, "EditCut"));
        fw::menus::find(bar, "EditCopy")->trigger(); // the caption's text, not the picture
        QCOMPARE(QGuiApplication::clipboard()->text(), QString("words"));
        w.Hide();
        QApplication::setActiveWindow(nullptr);
        QVERIFY(!fw::menus::isAvailable(app, "FilePrint"));
        QVERIFY(!fw::menus::isAvailable(app, "FileClose"));
        QVERIFY(fw::menus::isAvailable(app, "FilePreferences"));
    }

    void pageSetup_storesItsStringAndReadsItBack()
    {
        TestProgram t;
        bool restored = false;
        t.services->pageSetupDialog = [&](QPrinter &p) {
            restored = p.pageLayout().pageSize().id() == QPageSize::A5 &&
                       p.pageLayout().orientation() == QPageLayout::Landscape;
            p.setPageSize(QPageSize(QPageSize::A5));
            p.setPageOrientation(QPageLayout::Landscape);
            return true;
        };
        QCOMPARE(Window1::instance()._FilePageSetup_Action(), false);
        QVERIFY(!restored && t.stored("PageSetup")->toString().contains("pageSize=A5"));
        Window1::instance()._FilePageSetup_Action(); // a new printer, set up from the stored string
        QVERIFY(restored);
    }

    void preferencesWindow_readsStoresAndReflectsTheDisk()
    {
        TestProgram t(false);
        t.writePlist("<plist><dict><key>QuartzScaling</key><true/><key>DefaultMailer</"
                     "key><integer>2</integer></dict></plist>");
        loginitems::setLaunchAtLogin(true, t.bundlePath(), t.autostartFolder());
        dockicon::setHidden(t.bundlePath(), true);
        const QByteArray before =
            QDir(t.autostartFolder()).entryList(QDir::Files).join(",").toUtf8();
        t.app->_Startup();
        QVERIFY2(!t.app->trayIcon(), "hidden by the bundle at launch");
        prefwin &p = prefwin::instance();
        QVERIFY(!p.isVisible());
        QVERIFY(p.quartz->isChecked() && p.CheckBox1->isChecked() && p.CheckBox2->isChecked());
        QCOMPARE(QDir(t.autostartFolder()).entryList(QDir::Files).join(",").toUtf8(), before);
        p.CheckBox1->click(); // "Launch at Login" off and on again: the entry goes and comes back
        QVERIFY(!loginitems::getLaunchAtLogin(t.bundlePath(), t.autostartFolder()));
        p.CheckBox1->click();
        QVERIFY(loginitems::getLaunchAtLogin(t.bundlePath(), t.autostartFolder()));
        QCOMPARE(p.emaildefault->currentIndex(), 2);
        QCOMPARE(p.savefolder->text(), QString("Desktop"));
        QCOMPARE(p.PopupMenu1->count(), 7);
        p.Show();
        p.quartz->setChecked(false);
        p.emaildefault->setCurrentIndex(1);
        p.PushButton1->click(); // OK stores nothing; a killed run loses it
        QCOMPARE(t.stored("DefaultMailer")->toInteger(), qint64(2));
        p.Show();
        QVERIFY(p.close()); // the close box stores both
        QCOMPARE(t.stored("QuartzScaling")->toBoolean(), false);
        QCOMPARE(t.stored("DefaultMailer")->toInteger(), qint64(1));
        QString answer = t.home.path() + "/Shots";
        QDir().mkpath(answer);
        t.services->selectFolder = [&answer](QWidget *, const QString &) { return answer; };
        prefwin &again = prefwin::instance();
        again.PushButton3->click();
        QCOMPARE(t.session->DefaultFolder->absolutePath(), answer);
        answer.clear(); // cancelled
        again.PushButton3->click();
        QCOMPARE(again.savefolder->text(), QString("Shots"));
    }
};

QTEST_MAIN(ProgramTest)
#include "tst_program.moc"
