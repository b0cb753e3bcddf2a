// The editor's arithmetic, the capture command's version gate, the control locks and the
// drawer's geometry, as plain functions.

#include "app/CommandLine.h"
#include "capture/CaptureCommand.h"
#include "editor/EditorMath.h"
#include "platform/ControlLayout.h"
#include "platform/PortalHotKeyService.h"
#include "platform/PortalRequest.h"
#include "recent/RecentMath.h"

#include <QtTest>

using namespace editor;

class EditorMathTest : public QObject {
    Q_OBJECT
private slots:
    void val_readsTheLeadingNumber_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<double>("expected");
        QTest::newRow("integer") << "150" << 150.0;
        QTest::newRow("fraction") << "12.75" << 12.75;
        QTest::newRow("trailing text") << "75%" << 75.0;
        QTest::newRow("leading blanks") << "  42" << 42.0;
        QTest::newRow("negative") << "-5" << -5.0;
        QTest::newRow("no number") << "abc" << 0.0;
        QTest::newRow("empty") << "" << 0.0;
        QTest::newRow("lone sign") << "-" << 0.0;
        QTest::newRow("lone point") << "." << 0.0;
        QTest::newRow("exponent") << "1e3x" << 1000.0;
        QTest::newRow("e without digits") << "2e" << 2.0;
    }
    void val_readsTheLeadingNumber()
    {
        QFETCH(QString, text);
        QFETCH(double, expected);
        QCOMPARE(Val(text), expected);
    }

    void versionGate_readsTheThirteenthCharacter_data()
    {
        QTest::addColumn<QString>("version");
        QTest::addColumn<QString>("command");
        QTest::newRow("minor 4") << "Mac OS X 10.4.11" << "screencapture -ci";
        QTest::newRow("minor 5") << "Mac OS X 10.5.8" << "screencapture -cio";
        QTest::newRow("minor 9") << "Mac OS X 10.9" << "screencapture -cio";
        QTest::newRow("two-digit minor reads its first digit") << "Mac OS X 10.10.5" << "screencapture -ci";
        QTest::newRow("no digit there") << "Debian GNU/Linux 12 (bookworm)" << "screencapture -ci";
        QTest::newRow("too short") << "Linux" << "screencapture -ci";
        QTest::newRow("empty") << "" << "screencapture -ci";
    }
    void versionGate_readsTheThirteenthCharacter()
    {
        QFETCH(QString, version);
        QFETCH(QString, command);
        QCOMPARE(capture::captureCommandFor(version), command);
    }

    void loadImageGeometry_sizesAndCentresTheWindow_data()
    {
        QTest::addColumn<QSize>("picture");
        QTest::addColumn<QSize>("screen");
        QTest::addColumn<QRect>("available");
        QTest::addColumn<QRect>("expected"); // left, top, width, height
        const QRect full(0, 0, 1280, 1024);
        QTest::newRow("tiny capture gets the floors") << QSize(10, 10) << QSize(1280, 1024) << full
                                                      << QRect(490, 387, 300, 250);
        QTest::newRow("ordinary") << QSize(600, 400) << QSize(1280, 1024) << full
                                  << QRect(332, 266, 616, 491);
        QTest::newRow("taller than the screen") << QSize(500, 3000) << QSize(1280, 1024) << full
                                                << QRect(382, 100, 516, 924);
        QTest::newRow("wider than the available width")
            << QSize(3000, 200) << QSize(1280, 1024) << QRect(64, 0, 1216, 1000)
            << QRect(64, 366, 1216, 291);
        QTest::newRow("600 high on an 800 screen: floor of 100")
            << QSize(400, 509) << QSize(1024, 800) << QRect(0, 0, 1024, 800)
            << QRect(304, 100, 416, 600);
        QTest::newRow("700 high on an 800 screen: floor of 100")
            << QSize(400, 609) << QSize(1024, 800) << QRect(0, 0, 1024, 800)
            << QRect(304, 100, 416, 700);
        QTest::newRow("left from the full width, floored at the available left")
            << QSize(1000, 100) << QSize(1100, 900) << QRect(100, 0, 1000, 900)
            << QRect(100, 325, 1000, 250);
    }
    void loadImageGeometry_sizesAndCentresTheWindow()
    {
        QFETCH(QSize, picture);
        QFETCH(QSize, screen);
        QFETCH(QRect, available);
        QFETCH(QRect, expected);
        fw::ScreenInfo s{screen.width(), screen.height(), available.left(), available.width(),
                         available.height()};
        const WindowPlacement p = loadImageGeometry(picture, s);
        QCOMPARE(QRect(p.Left, p.Top, p.Width, p.Height), expected);
        QCOMPARE(p.MaxHeight, available.height() - 25);
        QCOMPARE(p.MaxWidth, available.width());
    }

    // What a later start asks of the running program, and when the program stays on X11.
    void commandLine_data()
    {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<QString>("method"); // "help", "bad", or the method handed over
        QTest::newRow("nothing") << QStringList{} << "";
        QTest::newRow("capture") << QStringList{"--capture"} << "Capture";
        QTest::newRow("preferences") << QStringList{"--preferences"} << "ShowPreferences";
        QTest::newRow("quit") << QStringList{"--quit"} << "Quit";
        QTest::newRow("help") << QStringList{"-h"} << "help";
        QTest::newRow("unknown") << QStringList{"--captur"} << "bad";
        QTest::newRow("two requests") << QStringList{"--capture", "--quit"} << "bad";
    }
    void commandLine()
    {
        QFETCH(QStringList, args);
        QFETCH(QString, method);
        const CommandLine c = parseCommandLine(args);
        if (method == "help") QCOMPARE(c.kind, CommandLine::Kind::Help);
        else if (method == "bad") QCOMPARE(c.kind, CommandLine::Kind::Bad);
        else QCOMPARE(c.method(), method);
    }
    void stayX11_onlyOnWaylandWithAnXServerAndNoChoiceOfTheUsers()
    {
        QVERIFY(shouldStayX11("", "wayland", "wayland-0", ":0"));
        QVERIFY(shouldStayX11("", "", "wayland-1", ":1"));
        QVERIFY(!shouldStayX11("wayland", "wayland", "wayland-0", ":0")); // the user chose
        QVERIFY(!shouldStayX11("", "wayland", "wayland-0", ""));          // no XWayland
        QVERIFY(!shouldStayX11("", "x11", "", ":0"));
    }

    void toInt_saturatesInsteadOfOverflowing()
    {
        QCOMPARE(toInt(1e12), INT_MAX); // a 1000 % scale of a huge capture
        QCOMPARE(toInt(-1e12), INT_MIN);
        QCOMPARE(toInt(std::nan("")), 0);
        QCOMPARE(toInt(-2.7), -2);
    }

    void portalTrigger_namesWhatTheKeyTypes()
    {
        using fw::portalTrigger;
        const int shiftCmd = fw::kShiftKey | fw::kCmdKey;
        QCOMPARE(portalTrigger(shiftCmd, "2", "at"), "CTRL+at");       // US
        QCOMPARE(portalTrigger(shiftCmd, "2", "quotedbl"), "CTRL+quotedbl"); // German
        QCOMPARE(portalTrigger(shiftCmd, "2", ""), "SHIFT+CTRL+2");    // no shifted level known
        QCOMPARE(portalTrigger(fw::kCmdKey | fw::kOptionKey, "2", "at"), "CTRL+ALT+2");
        QCOMPARE(fw::portalRequestPath(":1.42", "vantrel3"), "/org/freedesktop/portal/desktop/request/1_42/vantrel3");
    }

    void scaleFactor_appliesTheResetRule_data()
    {
        QTest::addColumn<int>("scale");
        QTest::addColumn<double>("factor");
        QTest::newRow("0 draws at 100") << 0 << 1.0;
        QTest::newRow("10") << 10 << 0.1;
        QTest::newRow("100") << 100 << 1.0;
        QTest::newRow("1000 is honoured") << 1000 << 10.0;
        QTest::newRow("1001 resets") << 1001 << 1.0;
        QTest::newRow("negative passes") << -5 << -0.05;
    }
    void scaleFactor_appliesTheResetRule()
    {
        QFETCH(int, scale);
        QFETCH(double, factor);
        QCOMPARE(scaleFactor(scale), factor);
    }

    void scaledSize_dropsEachFraction_data()
    {
        QTest::addColumn<QSize>("source");
        QTest::addColumn<int>("scale");
        QTest::addColumn<QSize>("expected");
        QTest::newRow("333x77 at 50") << QSize(333, 77) << 50 << QSize(166, 38);
        QTest::newRow("a tenth") << QSize(1919, 1079) << 10 << QSize(191, 107);
        QTest::newRow("ten times") << QSize(21, 13) << 1000 << QSize(210, 130);
        QTest::newRow("to nothing") << QSize(5, 5) << 10 << QSize(0, 0);
    }
    void scaledSize_dropsEachFraction()
    {
        QFETCH(QSize, source);
        QFETCH(int, scale);
        QFETCH(QSize, expected);
        QCOMPARE(scaledSize(source, scaleFactor(scale)), expected);
    }

    void band_widthAndPlace_data()
    {
        QTest::addColumn<QSize>("picture");
        QTest::addColumn<double>("textWidth");
        QTest::addColumn<int>("bandHeight");
        QTest::addColumn<QRect>("expected");
        QTest::newRow("one word on a wide picture: text + 10, centred, 5 above the bottom")
            << QSize(400, 300) << 40.6 << 20 << QRect(175, 275, 50, 20);
        QTest::newRow("longer than the picture: width - 10 at x 5")
            << QSize(200, 300) << 900.0 << 62 << QRect(5, 233, 190, 62);
        QTest::newRow("taller than the picture: negative y, not clamped")
            << QSize(60, 30) << 500.0 << 90 << QRect(5, -65, 50, 90);
        QTest::newRow("odd remainder drops toward the left")
            << QSize(101, 50) << 20.0 << 20 << QRect(35, 25, 30, 20);
    }
    void band_widthAndPlace()
    {
        QFETCH(QSize, picture);
        QFETCH(double, textWidth);
        QFETCH(int, bandHeight);
        QFETCH(QRect, expected);
        const int bw = bandWidth(textWidth, picture.width());
        const BandGeometry g = placeBand(picture, bw, bandHeight);
        QCOMPARE(QRect(g.x, g.y, g.width, g.height), expected);
    }

    void scrollRanges_followThePicture_data()
    {
        QTest::addColumn<QSize>("capture");
        QTest::addColumn<QString>("scaleText");
        QTest::addColumn<QSize>("canvas");
        QTest::addColumn<QList<int>>("before"); // hValue, hMax, vValue, vMax
        QTest::addColumn<QList<int>>("after");  // hMax, vMax, hValue, vValue
        QTest::newRow("smaller than the canvas: no range")
            << QSize(200, 100) << "100" << QSize(385, 350) << QList<int>{0, 100, 0, 100}
            << QList<int>{0, 0, 0, 0};
        QTest::newRow("exactly the canvas width: one pixel of range")
            << QSize(385, 350) << "100" << QSize(385, 350) << QList<int>{0, 0, 0, 0}
            << QList<int>{1, 1, 0, 0};
        QTest::newRow("one pixel narrower: none")
            << QSize(384, 349) << "100" << QSize(385, 350) << QList<int>{0, 0, 0, 0}
            << QList<int>{0, 0, 0, 0};
        QTest::newRow("a new range starts in the middle")
            << QSize(1000, 800) << "100" << QSize(385, 350) << QList<int>{0, 0, 0, 0}
            << QList<int>{616, 451, 308, 225};
        QTest::newRow("at the end stays at the end when the scale rises")
            << QSize(1000, 800) << "200" << QSize(385, 350) << QList<int>{616, 616, 451, 451}
            << QList<int>{1616, 1251, 1616, 1251};
        QTest::newRow("middle stays middle, the other bar keeps its ratio")
            << QSize(1000, 800) << "150" << QSize(385, 350) << QList<int>{308, 616, 0, 0}
            << QList<int>{1116, 851, 558, 425};
        QTest::newRow("text that is no number reads as 100")
            << QSize(1000, 800) << "abc" << QSize(385, 350) << QList<int>{0, 0, 0, 0}
            << QList<int>{616, 451, 308, 225};
        QTest::newRow("2000 has no upper bound here")
            << QSize(100, 100) << "2000" << QSize(385, 350) << QList<int>{0, 0, 0, 0}
            << QList<int>{1616, 1651, 808, 825};
    }
    void scrollRanges_followThePicture()
    {
        QFETCH(QSize, capture);
        QFETCH(QString, scaleText);
        QFETCH(QSize, canvas);
        QFETCH(QList<int>, before);
        QFETCH(QList<int>, after);
        const ScrollRanges r =
            scrollRanges(capture, scaleText, canvas, before[0], before[1], before[2], before[3]);
        QCOMPARE((QList<int>{r.hMaximum, r.vMaximum, r.hValue, r.vValue}), after);
    }

    void paintPlacement_centresSmallAndScrollsLarge_data()
    {
        QTest::addColumn<QSize>("picture");
        QTest::addColumn<QList<int>>("scroll");
        QTest::addColumn<QRect>("destination");
        QTest::newRow("smaller both ways: centred, one pixel in")
            << QSize(200, 100) << QList<int>{0, 0} << QRect(93, 126, 383, 348);
        QTest::newRow("wide and flat: centred vertically only")
            << QSize(1000, 100) << QList<int>{40, 0} << QRect(1, 126, 383, 348);
        QTest::newRow("larger: no offset") << QSize(1000, 1000) << QList<int>{5, 7}
                                           << QRect(1, 1, 383, 348);
    }
    void paintPlacement_centresSmallAndScrollsLarge()
    {
        QFETCH(QSize, picture);
        QFETCH(QList<int>, scroll);
        QFETCH(QRect, destination);
        const PaintPlacement p = paintPlacement(picture, QSize(385, 350), scroll[0], scroll[1]);
        QCOMPARE(p.destination, destination);
        QCOMPARE(p.source, QPoint(scroll[0], scroll[1]));
    }

    void lockedGeometry_followsTheLockedEdges_data()
    {
        QTest::addColumn<int>("locks");
        QTest::addColumn<QRect>("expected");
        using namespace fw;
        QTest::newRow("all four: stretches") << (LockLeft | LockTop | LockRight | LockBottom)
                                             << QRect(0, 0, 485, 410);
        QTest::newRow("right and bottom: moves") << (LockRight | LockBottom)
                                                 << QRect(100, 60, 385, 350);
        QTest::newRow("left and top: stays") << (LockLeft | LockTop) << QRect(0, 0, 385, 350);
        QTest::newRow("left, right, bottom") << (LockLeft | LockRight | LockBottom)
                                             << QRect(0, 60, 485, 350);
    }
    void lockedGeometry_followsTheLockedEdges()
    {
        QFETCH(int, locks);
        QFETCH(QRect, expected);
        QCOMPARE(fw::lockedGeometry(QRect(0, 0, 385, 350), locks, QSize(400, 440), QSize(500, 500)),
                 expected);
    }

    void drawerGeometry_data()
    {
        QTest::addColumn<QSize>("picture");
        QTest::addColumn<int>("index");
        QTest::addColumn<int>("scroll");
        QTest::addColumn<QRect>("frame");
        QTest::addColumn<int>("sourceSide");
        QTest::newRow("600x150: r 4, 150 by 37.5") << QSize(600, 150) << 0 << 0
                                                 << QRect(0, 56, 152, 38) << 600;
        QTest::newRow("600x150 third entry scrolled") << QSize(600, 150) << 2 << 100
                                                    << QRect(0, 266, 152, 38) << 600;
        QTest::newRow("75x75 is enlarged to 150") << QSize(75, 75) << 0 << 0
                                                 << QRect(0, 0, 152, 151) << 75;
        QTest::newRow("tall 100x300") << QSize(100, 300) << 1 << 0 << QRect(50, 155, 52, 151)
                                      << 300;
    }
    void drawerGeometry()
    {
        QFETCH(QSize, picture);
        QFETCH(int, index);
        QFETCH(int, scroll);
        QFETCH(QRect, frame);
        QFETCH(int, sourceSide);
        const recent::Thumbnail t = recent::thumbnailFor(picture, index, scroll);
        QCOMPARE(t.frame, frame);
        QCOMPARE(t.sourceSide, sourceSide);
    }

    void drawerRowsAndRange()
    {
        QCOMPARE(recent::rowAt(152, 0), 0);
        QCOMPARE(recent::rowAt(155, 0), 1);
        QCOMPARE(recent::rowAt(0, 310), 2);
        QCOMPARE(recent::rowAt(-200, 0), -1);
        QCOMPARE(recent::scrollMaximum(3, 507), 0);
        QCOMPARE(recent::scrollMaximum(10, 507), 1083);
        QCOMPARE(recent::scrollMaximum(0, 507), 0);
    }
};

QTEST_APPLESS_MAIN(EditorMathTest)
#include "tst_editormath.moc"
