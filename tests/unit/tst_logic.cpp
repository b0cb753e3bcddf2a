// The plain functions: the editor's arithmetic, the drawer's geometry, printing, naming, the
// command line, desktop entries and the key's descriptions. One table per behaviour.

#include "app/CommandLine.h"
#include "capture/CaptureCommand.h"
#include "editor/EditorMath.h"
#include "output/OutputNaming.h"
#include "output/PrintMath.h"
#include "platform/desktop/DesktopEntry.h"
#include "platform/display/WorkArea.h"
#include "platform/framework/ControlLayout.h"
#include "platform/hotkeys/PortalHotKeyService.h"
#include "platform/hotkeys/X11HotKeyService.h"
#include "platform/portal/PortalRequest.h"
#include "platform/system/LaunchCommand.h"
#include "recent/RecentMath.h"

#include <QtTest>
#include <xcb/xcb.h>

using namespace editor;

class LogicTest : public QObject {
    Q_OBJECT
private slots:
    void val_readsTheLeadingNumber()
    {
        const QList<QPair<QString, double>> cases = {
            {"150", 150}, {"12.75", 12.75}, {"75%", 75}, {"  42", 42},   {"-5", -5}, {"abc", 0},
            {"", 0},      {"-", 0},         {".", 0},    {"1e3x", 1000}, {"2e", 2}};
        for (const auto &[text, expected] : cases)
            QCOMPARE(Val(text), expected);
        // A 1000 % scale of a huge capture saturates.
        QCOMPARE((QList<int>{toInt(1e12), toInt(-1e12), toInt(std::nan("")), toInt(-2.7)}),
                 (QList<int>{INT_MAX, INT_MIN, 0, -2}));
    }

    void versionGate_readsTheThirteenthCharacter()
    {
        const QString ci = "screencapture -ci", cio = "screencapture -cio";
        const QList<QPair<QString, QString>> cases = {{"Mac OS X 10.4.11", ci},
                                                      {"Mac OS X 10.5.8", cio},
                                                      {"Mac OS X 10.9", cio},
                                                      {"Mac OS X 10.10.5", ci},
                                                      {"Debian GNU/Linux 12 (bookworm)", ci},
                                                      {"Linux", ci},
                                                      {"", ci}};
        for (const auto &[version, command] : cases)
            QCOMPARE(capture::captureCommandFor(version), command);
    }

    void loadImageGeometry_sizesAndCentresTheWindow()
    {
        // picture, screen, available (left, width, height), expected window
        const struct {
            QSize picture, screen;
            QRect available, expected;
        } cases[] = {
            {{10, 10}, {1280, 1024}, {0, 0, 1280, 1024}, {490, 387, 300, 250}}, // the floors
            {{600, 400}, {1280, 1024}, {0, 0, 1280, 1024}, {332, 266, 616, 491}},
            {{500, 3000}, {1280, 1024}, {0, 0, 1280, 1024}, {382, 100, 516, 924}},
            {{3000, 200}, {1280, 1024}, {64, 0, 1216, 1000}, {64, 366, 1216, 291}},
            {{400, 509}, {1024, 800}, {0, 0, 1024, 800}, {304, 100, 416, 600}},
            {{400, 609}, {1024, 800}, {0, 0, 1024, 800}, {304, 100, 416, 700}},
            {{1000, 100}, {1100, 900}, {100, 0, 1000, 900}, {100, 325, 1000, 250}},
        };
        for (const auto &c : cases) {
            const fw::ScreenInfo s{c.screen.width(), c.screen.height(), c.available.left(),
                                   c.available.width(), c.available.height()};
            const WindowPlacement p = loadImageGeometry(c.picture, s);
            QCOMPARE(QRect(p.Left, p.Top, p.Width, p.Height), c.expected);
            QCOMPARE(p.MaxHeight, c.available.height() - 25);
            QCOMPARE(p.MaxWidth, c.available.width());
        }
        // On a work area, with the window's frame and bars (chrome) around the content: the
        // window fills the work area's height at most; the floors give way on a tiny one.
        const struct {
            QSize picture;
            QRect work;
            QMargins chrome;
            QRect content;
            int maxHeight;
        } desktops[] = {
            {{600, 2000}, {0, 0, 1024, 768}, {1, 109, 1, 5}, {204, 109, 616, 654}, 654},
            {{700, 500}, {0, 30, 1366, 738}, {1, 109, 1, 5}, {325, 139, 716, 591}, 624},
            {{10, 10}, {1366, 30, 1920, 1050}, {1, 109, 1, 5}, {2176, 432, 300, 250}, 936},
            {{10, 10}, {0, 10, 320, 246}, {0, 85, 0, 1}, {10, 95, 300, 160}, 160},
        };
        for (const auto &c : desktops) {
            const FormulaScreen f = formulaScreen(c.work, c.chrome);
            const WindowPlacement p = loadImageGeometry(c.picture, f.screen);
            QCOMPARE(onDesktop(p, f), c.content);
            QCOMPARE(p.MaxHeight, c.maxHeight);
        }
        // The primary monitor (right of a 1366x768 one) less the panels that reach into it and
        // the window manager's own margins; a panel as deep as the work area's edge is no margin.
        const QRect left(0, 0, 1366, 768), primary(1366, 0, 1920, 1080);
        const struct {
            QRect workArea;
            QList<fw::Strut> struts;
            QRect usableLeft, usablePrimary;
        } areas[] = {
            {{0, 30, 3286, 1050}, {}, {0, 30, 1366, 738}, {1366, 30, 1920, 1050}},
            {{0, 0, 3286, 1050},
             {{0, 0, 0, 30, 0, 0, 0, 0, 0, 0, 3086, 3285}},
             left,
             {1366, 0, 1920, 1050}},
            {{0, 0, 3286, 738},
             {{0, 0, 0, 342, 0, 0, 0, 0, 0, 0, 0, 1365}},
             {0, 0, 1366, 738},
             primary},
            {{48, 0, 3238, 1080},
             {{48, 0, 0, 0, 0, 1079, 0, 0, 0, 0, 0, 0}},
             {48, 0, 1318, 768},
             primary},
            {{},
             {{0, 1920, 0, 0, 0, 0, 0, 1079, 0, 0, 0, 0}},
             left,
             primary}, // covers it all: not trusted
        };
        for (const auto &c : areas) {
            QCOMPARE(fw::usableArea(left, {3286, 1080}, c.workArea, c.struts), c.usableLeft);
            QCOMPARE(fw::usableArea(primary, {3286, 1080}, c.workArea, c.struts), c.usablePrimary);
        }
    }

    void scale_factorsSizesAndBand()
    {
        const QList<QPair<int, double>> factors = {{0, 1.0},     {10, 0.1},   {100, 1.0},
                                                   {1000, 10.0}, {1001, 1.0}, {-5, -0.05}};
        for (const auto &[scale, factor] : factors)
            QCOMPARE(scaleFactor(scale), factor);
        const struct {
            QSize source;
            int scale;
            QSize expected;
        } sizes[] = {{{333, 77}, 50, {166, 38}},
                     {{1919, 1079}, 10, {191, 107}},
                     {{21, 13}, 1000, {210, 130}},
                     {{5, 5}, 10, {0, 0}}};
        for (const auto &c : sizes)
            QCOMPARE(scaledSize(c.source, scaleFactor(c.scale)), c.expected);
        // The caption's plate: text + 10 wide at most picture - 10, centred, 5 above the bottom.
        const struct {
            QSize picture;
            double textWidth;
            int bandHeight;
            QRect expected;
        } bands[] = {
            {{400, 300}, 40.6, 20, {175, 275, 50, 20}},
            {{200, 300}, 900.0, 62, {5, 233, 190, 62}},
            {{60, 30}, 500.0, 90, {5, -65, 50, 90}}, // taller than the picture: not clamped
            {{101, 50}, 20.0, 20, {35, 25, 30, 20}}, // an odd remainder drops to the left
        };
        for (const auto &c : bands) {
            const BandGeometry g =
                placeBand(c.picture, bandWidth(c.textWidth, c.picture.width()), c.bandHeight);
            QCOMPARE(QRect(g.x, g.y, g.width, g.height), c.expected);
        }
    }

    void scrollRanges_followThePicture()
    {
        // capture, scale text, before (hValue, hMax, vValue, vMax), after (hMax, vMax, hValue,
        // vValue)
        const struct {
            QSize capture;
            const char *scale;
            QList<int> before, after;
        } cases[] = {
            {{200, 100}, "100", {0, 100, 0, 100}, {0, 0, 0, 0}},
            {{385, 350}, "100", {0, 0, 0, 0}, {1, 1, 0, 0}}, // exactly the canvas: one pixel
            {{384, 349}, "100", {0, 0, 0, 0}, {0, 0, 0, 0}},
            {{1000, 800}, "100", {0, 0, 0, 0}, {616, 451, 308, 225}}, // a new range starts mid-way
            {{1000, 800}, "200", {616, 616, 451, 451}, {1616, 1251, 1616, 1251}},
            {{1000, 800}, "150", {308, 616, 0, 0}, {1116, 851, 558, 425}},
            {{1000, 800}, "abc", {0, 0, 0, 0}, {616, 451, 308, 225}},
            {{100, 100}, "2000", {0, 0, 0, 0}, {1616, 1651, 808, 825}},
        };
        for (const auto &c : cases) {
            const ScrollRanges r = scrollRanges(c.capture, c.scale, QSize(385, 350), c.before[0],
                                                c.before[1], c.before[2], c.before[3]);
            QCOMPARE((QList<int>{r.hMaximum, r.vMaximum, r.hValue, r.vValue}), c.after);
        }
        const struct {
            QSize picture;
            QPoint scroll;
            QRect destination;
        } paints[] = {{{200, 100}, {0, 0}, {93, 126, 383, 348}}, // centred, one pixel in
                      {{1000, 100}, {40, 0}, {1, 126, 383, 348}},
                      {{1000, 1000}, {5, 7}, {1, 1, 383, 348}}};
        for (const auto &c : paints) {
            const PaintPlacement p =
                paintPlacement(c.picture, QSize(385, 350), c.scroll.x(), c.scroll.y());
            QCOMPARE(p.destination, c.destination);
            QCOMPARE(p.source, c.scroll);
        }
        using namespace fw;
        const QList<QPair<int, QRect>> locks = {
            {LockLeft | LockTop | LockRight | LockBottom, {0, 0, 485, 410}},
            {LockRight | LockBottom, {100, 60, 385, 350}},
            {LockLeft | LockTop, {0, 0, 385, 350}},
            {LockLeft | LockRight | LockBottom, {0, 60, 485, 350}}};
        for (const auto &[lock, expected] : locks)
            QCOMPARE(lockedGeometry(QRect(0, 0, 385, 350), lock, QSize(400, 440), QSize(500, 500)),
                     expected);
    }

    void drawer_thumbnailsRowsAndRange()
    {
        const struct {
            QSize picture;
            int index, scroll;
            QRect frame;
            int side;
        } cases[] = {{{600, 150}, 0, 0, {0, 56, 152, 38}, 600},
                     {{600, 150}, 2, 100, {0, 266, 152, 38}, 600},
                     {{75, 75}, 0, 0, {0, 0, 152, 151}, 75}, // enlarged to 150
                     {{100, 300}, 1, 0, {50, 155, 52, 151}, 300}};
        for (const auto &c : cases) {
            const recent::Thumbnail t = recent::thumbnailFor(c.picture, c.index, c.scroll);
            QCOMPARE(t.frame, c.frame);
            QCOMPARE(t.sourceSide, c.side);
        }
        QCOMPARE((QList<int>{recent::rowAt(152, 0), recent::rowAt(155, 0), recent::rowAt(0, 310),
                             recent::rowAt(-200, 0)}),
                 (QList<int>{0, 1, 2, -1}));
        QCOMPARE((QList<int>{recent::scrollMaximum(3, 507), recent::scrollMaximum(10, 507),
                             recent::scrollMaximum(0, 507)}),
                 (QList<int>{0, 1083, 0}));
    }

    void print_onALetterPage()
    {
        const QList<QPair<QSize, QSize>> cases = {
            {{300, 200}, {300, 200}},
            {{1224, 396}, {612, 198}},
            {{1224, 871}, {1112, 792}}, // too wide and too tall: by the height alone
            {{612, 300}, {612, 300}},
            {{100, 792}, {100, 792}}};
        for (const auto &[picture, drawn] : cases)
            QCOMPARE(output::printedSize(picture, QSize(612, 792)), drawn);
    }

    void naming_quickSaveMailAndSaveAs()
    {
        const struct {
            QStringList present;
            const char *extension, *expected;
        } cases[] = {{{}, "png", "Capture.png"},
                     {{"Capture.png"}, "png", "Capture1.png"},
                     {{"Capture.png", "Capture1.png"}, "png", "Capture2.png"},
                     {{"Capture.png", "Capture2.png"}, "png", "Capture1.png"}, // a gap is filled
                     {{"Capture.jpg"}, "png", "Capture.png"},
                     {{"Capture.TGA"}, "TGA", "Capture1.TGA"}};
        for (const auto &c : cases)
            QCOMPARE(output::quickSaveName(c.extension,
                                           [&](const QString &n) { return c.present.contains(n); }),
                     QString(c.expected));
        QStringList asked;
        auto mail = [&](const QStringList &present) {
            asked.clear();
            return output::mailFileName(
                [&](const QString &n) { return asked << n, present.contains(n); });
        };
        QCOMPARE(mail({}), QString("vtp1"));
        QCOMPARE(mail({"vtp1"}), QString("vtp2"));
        QCOMPARE(asked, (QStringList{"vtp1", "vtp1", "vtp2"})); // vtp1 is tried twice
        QCOMPARE(mail({"vtp1", "vtp2", "vtp3"}), QString("vtp4"));
        QCOMPARE(output::saveAsSuggestion("TGA"), QString("capture.tga"));
        // Thunderbird's -compose reads ' and , as its own delimiters: they go encoded.
        QCOMPARE(output::absolutePath("/tmp/it's, zoë"),
                 QString("file:///tmp/it%27s%2C%20zo%C3%AB"));
    }

    void commandLine_requestsAndThePlatform()
    {
        const QList<QPair<QStringList, QString>> cases = {{{}, ""},
                                                          {{"--capture"}, "Capture"},
                                                          {{"--preferences"}, "ShowPreferences"},
                                                          {{"--quit"}, "Quit"},
                                                          {{"-h"}, "help"},
                                                          {{"--captur"}, "bad"},
                                                          {{"--capture", "--quit"}, "bad"}};
        for (const auto &[args, method] : cases) {
            const CommandLine c = parseCommandLine(args);
            if (method == "help")
                QCOMPARE(c.kind, CommandLine::Kind::Help);
            else if (method == "bad")
                QCOMPARE(c.kind, CommandLine::Kind::Bad);
            else
                QCOMPARE(c.method(), method);
        }
        // X11 on a Wayland session with XWayland, unless the user chose a platform.
        QCOMPARE((QList<bool>{shouldStayX11("", "wayland", "wayland-0", ":0"),
                              shouldStayX11("", "", "wayland-1", ":1"),
                              shouldStayX11("wayland", "wayland", "wayland-0", ":0"),
                              shouldStayX11("", "wayland", "wayland-0", ""),
                              shouldStayX11("", "x11", "", ":0")}),
                 (QList<bool>{true, true, false, false, false}));
    }

    void hotKey_describedForXAndThePortal()
    {
        const int shiftCmd = fw::kShiftKey | fw::kCmdKey;
        QCOMPARE(fw::X11HotKeyService::xModifiers(shiftCmd),
                 quint16(XCB_MOD_MASK_SHIFT | XCB_MOD_MASK_CONTROL));
        QCOMPARE(fw::X11HotKeyService::xModifiers(fw::kOptionKey | fw::kControlKey),
                 quint16(XCB_MOD_MASK_1 | XCB_MOD_MASK_4));
        QCOMPARE(fw::portalTrigger(shiftCmd, "2", "at"), "CTRL+at");             // US
        QCOMPARE(fw::portalTrigger(shiftCmd, "2", "quotedbl"), "CTRL+quotedbl"); // German
        QCOMPARE(fw::portalTrigger(shiftCmd, "2", ""), "SHIFT+CTRL+2"); // no shifted level known
        QCOMPARE(fw::portalTrigger(fw::kCmdKey | fw::kOptionKey, "2", "at"), "CTRL+ALT+2");
        QCOMPARE(fw::portalRequestPath(":1.42", "vantrel3"),
                 "/org/freedesktop/portal/desktop/request/1_42/vantrel3");
        // The command to bind: "vantrel" only where the search path's first one is this program.
        QTemporaryDir d;
        const QString me = d.filePath("a b/Vantrel"), old = d.filePath("old/Vantrel");
        for (const char *dir : {"a b", "old", "bin"})
            QDir(d.path()).mkdir(dir);
        for (const QString &f : {me, old})
            QFile(f).open(QIODevice::WriteOnly), QFile::setPermissions(f, QFile::ExeOwner);
        QFile::link(me, d.filePath("bin/vantrel")), QFile::link(old, d.filePath("old/vantrel"));
        for (const auto &[program, dirs, command] :
             QList<std::tuple<QString, QString, QString>>{{me, "bin", "vantrel"},
                                                          {me, "old:bin", "'" + me + "'"},
                                                          {old, "old", "vantrel"},
                                                          {old, "bin:old", old}})
            QCOMPARE(fw::launchCommand(program, dirs.split(':').replaceInStrings(
                                                    QRegularExpression("^"), d.path() + "/")),
                     command);
    }

    // Awkward paths are checked with real launchers; here, what a launcher does with field codes.
    void execLines_fieldCodes()
    {
        QCOMPARE(fw::desktopentry::parseExec("prog %U --x"), (QStringList{"prog", "--x"}));
        QCOMPARE(fw::desktopentry::parseExec("prog 100%%"), (QStringList{"prog", "100%"}));
        QCOMPARE(fw::desktopentry::parseExec("\"/a b/it's \\\"x\\\"\" -y"),
                 (QStringList{"/a b/it's \"x\"", "-y"}));
    }
};

QTEST_APPLESS_MAIN(LogicTest)
#include "tst_logic.moc"
