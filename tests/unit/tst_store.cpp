// What the program keeps on disk: the typed preference store, the bundle's tray flag, the
// autostart entries, and the writes that must never lose what was there.

#include "TestSupport.h"

#include "editor/Window1.h"
#include "output/OutputNaming.h"
#include "output/export/GraphicsExporter.h"
#include "platform/core/Failure.h"
#include "platform/desktop/Bundle.h"
#include "platform/desktop/DesktopEntry.h"
#include "platform/desktop/LoginItems.h"
#include "platform/files/AtomicFile.h"
#include "platform/files/TemporaryFolder.h"
#include "platform/store/PlistStore.h"
#include "prefs/HideDockIcon.h"
#include "prefs/LaunchMeAtLogin.h"

#include <QProcess>
#include <algorithm>
#include <array>
#include <csignal>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {
QByteArray plistWith(const QByteArray &body)
{
    return "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict>" + body + "</dict></plist>\n";
}
const QByteArray nul(1, '\0');
QByteArray deep(int n)
{
    return "<key>Deep</key>" + QByteArray("<array>").repeated(n) +
           QByteArray("</array>").repeated(n);
}
QByteArray be(quint64 v, int width)
{
    QByteArray o;
    while (width--)
        o += char(v >> 8 * width);
    return o;
}
// A binary list of n arrays, each holding the next `refs` times.
QByteArray binaryChain(int n, int refs)
{
    QByteArray b = "bplist00", table;
    for (int i = 1; i <= n + 1; ++i)
        table += be(b.size(), 4),
            b += i <= n ? char(0xa0 + refs) + be(i, 4).repeated(refs) : "\xa0";
    return b + table + QByteArray(6, '\0') + "\x04\x04" + be(n + 1, 8) + be(0, 8) + be(b.size(), 8);
}

// "file|name|launched path" for each login item in list order, then "file|off" for each other
// file of the folder (an entry the desktop switched off).
QStringList describe(const QString &folder)
{
    QStringList out;
    fw::LoginItems items(folder);
    const QStringList files = items.entries();
    for (int i = 0; i < files.size(); ++i)
        out << QFileInfo(files[i]).fileName() + "|" +
                   items.OldLoginItemPropertyAtIndex(2, i, false) + "|" +
                   items.OldLoginItemPropertyAtIndex(1, i, false);
    for (const QFileInfo &f : QDir(folder).entryInfoList(QDir::Files | QDir::Hidden, QDir::Name))
        if (!files.contains(f.absoluteFilePath())) out << f.fileName() + "|off";
    return out;
}
} // namespace

class StoreTest : public QObject {
    Q_OBJECT
private slots:
    void everyTypeSurvivesASynchronizeAndANewReader()
    {
        QTemporaryDir dir;
        fw::PreferenceDomains domains(dir.path()), other(dir.path());
        fw::CFPreferences p(domains), sameDomains(domains);
        p.SetAppValue("s", fw::NewCFString("naïve \"quoted\" <text>"), "d");
        p.SetAppValue("b", fw::NewCFBinaryData(QByteArray("\0\x01\xff", 3)), "d");
        p.SetAppValue("t", fw::NewCFBoolean(true), "d");
        p.SetAppValue("i", fw::NewCFNumberInteger(-5), "d");
        p.SetAppValue("u", fw::NewCFURL(QUrl::fromLocalFile("/tmp/a b")), "d");
        QCOMPARE(sameDomains.CopyAppValue("i", "d")->toInteger(), qint64(-5)); // seen at once
        QVERIFY(!QFile::exists(domains.pathOf("d"))); // lasts only once synchronised
        QVERIFY(p.AppSynchronize("d"));
        fw::PreferenceDomains fresh(dir.path());
        fw::CFPreferences r(fresh);
        QCOMPARE(r.CopyAppValue("s", "d")->toString(), QString("naïve \"quoted\" <text>"));
        QCOMPARE(r.CopyAppValue("b", "d")->toData(), QByteArray("\0\x01\xff", 3));
        QCOMPARE(r.CopyAppValue("t", "d")->toBoolean(), true);
        QCOMPARE(r.CopyAppValue("u", "d")->toUrl(), QUrl::fromLocalFile("/tmp/a b"));
        QCOMPARE(r.CopyAppValue("missing", "d"), fw::StoreObject());
        QCOMPARE(r.CopyAppIntegerValue("missing", "d"), qint64(0));
        QVERIFY_THROWS_EXCEPTION(fw::IllegalCastException, r.CopyAppValue("s", "d")->toData());
        QVERIFY_THROWS_EXCEPTION(fw::IllegalCastException, r.CopyAppValue("t", "d")->toString());
        // Another writer's keys, and types the program doesn't know, survive a synchronise.
        fw::CFPreferences theirs(other);
        theirs.SetAppValue("Theirs", fw::NewCFString("1"), "d");
        theirs.AppSynchronize("d");
        writeFile(dir.path() + "/e.plist",
                  plistWith("<key>Ratio</key><real>0.5</real><key>L</key><array/>"));
        r.SetAppValue("Mine", fw::NewCFString("2"), "d");
        r.SetAppValue("Mine", fw::NewCFString("2"), "e");
        r.AppSynchronize("d");
        r.AppSynchronize("e");
        fw::PreferenceDomains last(dir.path());
        QVERIFY(fw::CFPreferences(last).CopyAppValue("Theirs", "d"));
        QVERIFY(readFile(dir.path() + "/e.plist").contains("<real>0.5"));
    }

    // Also what brought the program down: a NUL byte in a string (the parser aborts), a device or a
    // pipe for the file (read without end, waited on for ever), nesting that overflows the stack or
    // blows the rewrite up (10000 deep: 110 KB to 100 MB), shared objects expanded (2^40 values).
    void unreadableFilesReadAsEmptyAndAreKeptOnWrite()
    {
        for (const QByteArray &contents :
             {QByteArray("this is not a property list"), QByteArray(),
              plistWith("<key>LastScale</key><string>150</string>").left(70),
              QByteArray("bplist00\x01\x02garbage", 17), QByteArray("<plist><array/></plist>"),
              plistWith("<key>LastScale</key><string>1" + nul + "50</string>"),
              plistWith(deep(100000)), plistWith(deep(10000)), binaryChain(100000, 1),
              binaryChain(40, 2), QByteArray("/dev/zero"), QByteArray("/dev/urandom"),
              QByteArray("fifo")}) {
            QTemporaryDir dir;
            fw::PreferenceDomains domains(dir.path());
            const bool special = contents.startsWith("/dev/") || contents == "fifo";
            if (contents == "fifo")
                QCOMPARE(::mkfifo(QFile::encodeName(domains.pathOf("d")), 0600), 0);
            else if (special)
                QVERIFY(QFile::link(contents, domains.pathOf("d")));
            else
                writeFile(domains.pathOf("d"), contents);
            fw::CFPreferences p(domains);
            QCOMPARE(p.CopyAppValue("LastScale", "d"), fw::StoreObject());
            p.SetAppValue("LastScale", fw::NewCFString("75"), "d");
            QVERIFY(p.AppSynchronize("d"));
            const QStringList all =
                QDir(dir.path()).entryList(QDir::Files | QDir::Hidden | QDir::System);
            QCOMPARE(all.size(), 2);
            const QString kept = dir.filePath(all.first() == "d.plist" ? all.last() : all.first());
            QVERIFY2(special ? !QFileInfo(kept).isFile() : readFile(kept) == contents,
                     "the unreadable file is kept beside the new one");
        }
    }

    void stringFunctions_absenceTypesAndFailures()
    {
        TestProgram t(false);
        Preferences &m = *t.prefs;
        QVERIFY_THROWS_EXCEPTION(fw::NilObjectException, m.prefgetstringvalue(PrefKeys::LastScale));
        m.initprefs();
        QCOMPARE(m.prefgetstringvalue(PrefKeys::LastScale), QString());
        m.prefaddstringvalue(PrefKeys::LastScale, QString("150"));
        QVERIFY2(QFile::exists(t.plistPath()), "a string write synchronises");
        // Bytes that are no text make no string: the stored value stays.
        m.prefaddstringvalue(PrefKeys::LastScale, QByteArray("\xff\xfe\x00", 3));
        QCOMPARE(m.prefgetstringvalue(PrefKeys::LastScale), QString("150"));
        m.MyPref->SetAppValue(PrefKeys::LastScale.str(), fw::NewCFNumberInteger(150), m.appname);
        QVERIFY_THROWS_EXCEPTION(fw::IllegalCastException,
                                 m.prefgetstringvalue(PrefKeys::LastScale));
    }

    void editorCreation_readsSettingsAndDefaultFolder()
    {
        const QByteArray url = "<key>DefaultFolder</key><dict><key>CFURL</key><string>file://HOME/";
        // stored, settings taken, folder ("desktop", "nil", or under home), message
        const struct {
            QByteArray body, settings;
            QString folder, message;
        } cases[] = {
            {"", "", "desktop", ""},
            {"<key>Settings</key><data>AAEC</data>", QByteArray("\0\1\2", 3), "desktop", ""},
            {"<key>Settings</key><string>quality=90</string>", "", "desktop",
             ""}, // text is ignored
            {url + "Pictures</string></dict>", "", "HOME/Pictures", ""},
            {url + "note.txt</string></dict>", "", "nil", ""},                // a file is no folder
            {url + "Pict" + nul + "ures</string></dict>", "", "desktop", ""}, // an unreadable file
            {"<key>DefaultFolder</key><string>/tmp</string>", "", "nil",
             "An Error Ocurred at OpenEditor"},
        };
        for (const auto &c : cases) {
            TestProgram t(false);
            QDir().mkpath(t.home.path() + "/Pictures");
            writeFile(t.home.path() + "/note.txt", "");
            t.writePlist(plistWith(QByteArray(c.body).replace("HOME", t.home.path().toUtf8())));
            t.app->_Startup();
            const Session &s = *t.session;
            QCOMPARE(s.settings, c.settings);
            const QString folder = QString(c.folder)
                                       .replace("HOME", t.home.path())
                                       .replace("desktop", t.home.path() + "/Desktop");
            QCOMPARE(s.DefaultFolder ? s.DefaultFolder->absolutePath() : "nil", folder);
            QCOMPARE(t.app->messages, c.message.isEmpty() ? QStringList() : QStringList{c.message});
            QCOMPARE(t.keys->claims.isEmpty(), !c.message.isEmpty());
        }
    }

    // The bundle's flag, read and written beside what the file holds. At launch no type of value
    // stops the program; a missing or broken file reads false and is never written; a bundle the
    // user can't write is left alone and the user's own copy takes the change.
    void trayFlag_readAndWrite()
    {
        const QByteArray k = "<key>LSUIElement</key>",
                         name = "<key>CFBundleName</key><string>Vantrel</string>";
        // Info.plist (none: no file), action, what is read, or what the file holds afterwards
        const struct {
            QByteArray info;
            QString action, expected;
        } cases[] = {
            {"<dict/>", "read", "false"},
            {"<dict>" + k + "<integer>1</integer></dict>", "read", "true"},
            {"<dict>" + k + "<integer>2</integer></dict>", "read", "false"},
            {"<dict>" + k + "<string>1</string></dict>", "read", "raises"},
            {"<dict>" + k + "<string>1</string></dict>", "launch", "true"},
            {"<dict>" + k + "<true/></dict>", "launch", "true"},
            {"<dict>" + k + "<date>2026-01-01T00:00:00Z</date></dict>", "launch", "false"},
            {"<dict>" + k + "<string>1" + nul + "</string></dict>", "launch",
             "false"}, // unreadable: read as shown
            {"<dict><key>CFBundleShortVersionString</key><string>1" + nul + ".0</string></dict>",
             "version", ""},
            {"<dict>" + k + "<integer>1</integer>" + deep(100000) + "</dict>", "show",
             "<array><array>"}, // left as it is
            {"garbage", "read", "false"},
            {"garbage", "hide", "garbage"},
            {"", "hide", "no file"},
            {"<dict>" + name + "</dict>", "show", "<integer>0</integer>"},
            {"<dict>" + name + k + "<string>x</string></dict>", "hide", "<integer>1</integer>"},
            {"<dict/>", "hide, read-only", "<dict/>"}};
        for (const auto &c : cases) {
            QTemporaryDir dir;
            const QString bundle = dir.path() + "/Vantrel.app",
                          info = bundle + "/Contents/Info.plist";
            if (!c.info.isEmpty())
                writeFile(info, c.info == "garbage" ? c.info : "<plist>" + c.info + "</plist>");
            const bool readOnly = c.action.endsWith("read-only");
            if (readOnly) { // root writes through permissions: be an ordinary user
                QFile::setPermissions(bundle + "/Contents", QFile::ReadOwner | QFile::ExeOwner |
                                                                QFile::ReadOther | QFile::ExeOther);
                QDir().mkpath(dir.path() + "/config");
                for (const QString &d : {dir.path(), dir.path() + "/config"})
                    QFile::setPermissions(d, QFile::Permissions(0x7777));
                qputenv("XDG_CONFIG_HOME", (dir.path() + "/config").toUtf8());
                if (::geteuid() == 0) QVERIFY(::setegid(65534) == 0 && ::seteuid(65534) == 0);
            }
            if (c.action == "launch")
                QCOMPARE(dockicon::hiddenAtLaunch(bundle), c.expected == "true");
            else if (c.action == "version")
                QCOMPARE(fw::Bundle(bundle + "/Contents/MacOS").shortVersion(), c.expected);
            else if (c.expected == "raises")
                QVERIFY_THROWS_EXCEPTION(fw::IllegalCastException, dockicon::isHidden(bundle));
            else if (c.action == "read")
                QCOMPARE(dockicon::isHidden(bundle), c.expected == "true");
            else
                dockicon::setHidden(bundle, c.action.startsWith("hide"));
            if (readOnly) { // back to who we were before anything can end the test
                const bool userCopy =
                    dockicon::isHidden(bundle) && dockicon::hiddenAtLaunch(bundle);
                if (::getuid() == 0) QVERIFY(::seteuid(0) == 0 && ::setegid(0) == 0);
                qunsetenv("XDG_CONFIG_HOME");
                QFile::setPermissions(bundle + "/Contents",
                                      QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
                QVERIFY2(userCopy, "the user's own copy took it");
            }
            if (c.action == "read" || c.action == "launch" || c.action == "version") continue;
            const QByteArray after = QFile::exists(info) ? readFile(info) : "no file";
            QVERIFY2(after.contains(c.expected.startsWith("<integer>")
                                        ? k + "\n\t" + c.expected.toUtf8()
                                        : c.expected.toUtf8()),
                     after);
            QVERIFY(!c.info.contains("CFBundleName") || after.contains("<string>Vantrel</string>"));
        }
    }

    void loginWalk()
    {
        // The folder before ("file|name|program[|extra line]", ';' between entries), the call
        // ("get" with what it must say), the folder after as describe() tells it. $B stands for
        // the bundle, $E for its program, $UB and $UE for them in capitals.
        const QString ours = "Vantrel.desktop|Vantrel.app|$B",
                      stale = "a.desktop|Vantrel.app|/old/Vantrel.app/Contents/MacOS/Vantrel";
        const QString twoStale = "a.desktop|Vantrel.app|/x/Vantrel.app/Contents/MacOS/Vantrel;"
                                 "b.desktop|Vantrel.app|/y/Vantrel.app/Contents/MacOS/Vantrel";
        QList<std::array<QString, 3>> cases = {
            {"", "get false", ""},
            {"", "on", ours},
            {"", "off", ""},
            {stale, "get false", "a.desktop|Vantrel.app|/old/Vantrel.app"},
            {stale, "on", ours}, // replaced
            {"b.desktop|Capture|$E", "get true",
             "b.desktop|Capture|$B"}, // our path under another name
            {"b.desktop|Capture|$E", "off", "b.desktop|Capture|$B"},
            {"b.desktop|Capture|$E", "on", ours + ";b.desktop|Capture|$B"},
            {"v.desktop|Vantrel.app|$E", "on", "v.desktop|Vantrel.app|$B"},
            {"v.desktop|Vantrel.app|$E", "off", ""},
            {twoStale, "on", ours + ";b.desktop|Vantrel.app|/y/Vantrel.app"},
            {twoStale, "on twice", ours}, // one a call
            {"v.desktop|VANTREL.APP|$UE", "get true",
             "v.desktop|VANTREL.APP|$UB"}, // case is ignored
            {"v.desktop|VANTREL.APP|$UE", "on", "v.desktop|VANTREL.APP|$UB"},
            {"mail.desktop|Mail|/usr/bin/mail-client;v.desktop|Vantrel.app|$E", "off",
             "mail.desktop|Mail|/usr/bin/mail-client"},
        };
        // A desktop's "off" switch: no login item, and "on" switches it on instead of adding one.
        for (const QString off : {"Hidden=true", "X-GNOME-Autostart-enabled=false"})
            for (const QString call : {"get false", "on", "off"})
                cases.append({"Vantrel.desktop|Vantrel.app|$E|" + off, call,
                              call == "on" ? ours : "Vantrel.desktop|off"});
        for (const auto &[before, call, after] : cases) {
            QTemporaryDir dir;
            const QString bundle = dir.path() + "/Apps/Vantrel.app",
                          folder = dir.path() + "/autostart";
            auto expand = [&](QString s) {
                const QString exe = bundle + "/Contents/MacOS/Vantrel";
                return s.replace("$UE", exe.toUpper())
                    .replace("$UB", bundle.toUpper())
                    .replace("$E", exe)
                    .replace("$B", bundle);
            };
            QDir().mkpath(folder);
            for (const QString &e : before.split(';', Qt::SkipEmptyParts)) {
                const QStringList f = e.split('|');
                QString text = fw::desktopentry::applicationEntry(f[1], {expand(f[2])}, "test");
                if (f.value(3).startsWith("X-GNOME"))
                    text.remove("X-GNOME-Autostart-enabled=true\n");
                writeFile(folder + "/" + f[0], (text + (f.size() > 3 ? f[3] + "\n" : "")).toUtf8());
            }
            if (call.startsWith("get"))
                QCOMPARE(loginitems::getLaunchAtLogin(bundle, folder), call == "get true");
            for (int n = call == "on twice" ? 2 : 1; call.startsWith("o") && n > 0; --n)
                loginitems::setLaunchAtLogin(call.startsWith("on"), bundle, folder);
            QCOMPARE(describe(folder), expand(after).split(';', Qt::SkipEmptyParts));
        }
    }

    // Our entry validates, and GLib's launcher and dex both start the program from it wherever
    // the bundle lies; off leaves nothing behind.
    void loginItem_startsUnderEveryLauncher()
    {
        for (const QString folder :
             {"Apps", " My Apps/zoë", "100%", "$HOME", "it's \"odd\" `x` back\\slash"}) {
            QTemporaryDir dir;
            const QString bundle = dir.path() + "/" + folder + "/Vantrel.app",
                          marker = dir.path() + "/started";
            const QString program = bundle + "/Contents/MacOS/Vantrel",
                          autostart = dir.path() + "/config/autostart";
            writeFile(program,
                      QString("#!/bin/sh\nprintf '%s' \"$0\" > '%1'\n").arg(marker).toUtf8());
            QFile::setPermissions(program, QFile::ReadOwner | QFile::ExeOwner);
            loginitems::setLaunchAtLogin(true, bundle, autostart);
            QVERIFY(loginitems::getLaunchAtLogin(bundle, autostart));
            const QString entry = autostart + "/Vantrel.desktop";
            QProcess validate;
            validate.start("desktop-file-validate", {entry});
            validate.waitForFinished();
            QVERIFY2(validate.exitCode() == 0 && validate.readAllStandardOutput().isEmpty(),
                     qPrintable(readFile(entry)));
            for (const QStringList &launcher :
                 {QStringList{"gio", "launch", entry}, QStringList{"dex", entry}}) {
                QFile::remove(marker);
                QProcess::execute(launcher.first(), launcher.mid(1));
                QTRY_VERIFY2_WITH_TIMEOUT(QFile::exists(marker),
                                          qPrintable(launcher.first() + " " + folder), 5000);
                QCOMPARE(QFileInfo(QString::fromUtf8(readFile(marker))).canonicalFilePath(),
                         QFileInfo(program).canonicalFilePath());
            }
            loginitems::setLaunchAtLogin(false, bundle, autostart);
            QVERIFY(describe(autostart).isEmpty());
            QVERIFY(QDir(dir.path() + "/config/Vantrel/login-items").isEmpty());
        }
    }

    // Save as over what the user had: the file keeps its mode, a link keeps leading to the file
    // it led to, a hard link's other name shows the new picture too.
    void writingOverAFile_keepsWhatTheUserHad()
    {
        for (const QString kind : {"private", "symlink", "hardlink"}) {
            QTemporaryDir dir;
            const QString target = dir.path() + "/real.png", chosen = dir.path() + "/chosen.png";
            writeFile(target, "the old picture");
            QFile::setPermissions(target, QFile::ReadOwner | QFile::WriteOwner);
            if (kind == "symlink") QVERIFY(QFile::link("real.png", chosen));
            if (kind == "hardlink")
                QVERIFY(::link(QFile::encodeName(target), QFile::encodeName(chosen)) == 0);
            fw::GraphicsExporter e(nullptr);
            e.OpenExporter("PNGf");
            e.InputPicture = patternImage(20, 10);
            e.OutputFile = kind == "private" ? target : chosen;
            QCOMPARE(e.Export(), fw::ExportStatus::Written);
            QCOMPARE(QImage(target).size(), QSize(20, 10));
            struct stat st = {};
            QCOMPARE(::stat(QFile::encodeName(target), &st), 0);
            QCOMPARE(int(st.st_mode & 0777), 0600);
            if (kind == "symlink") QCOMPARE(QFileInfo(chosen).symLinkTarget(), target);
            if (kind == "hardlink") QCOMPARE(QFileInfo(chosen).size(), QFileInfo(target).size());
            QCOMPARE(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden).size(),
                     kind == "private" ? 1 : 2);
        }
    }

    // A name can be taken after the search, before the file lands: what arrived stays intact and
    // the capture goes under the next free name.
    void aFileThatTookTheNameMeanwhileIsNeverReplaced()
    {
        QTemporaryDir dir;
        fw::GraphicsExporter e(nullptr);
        e.OpenExporter("JPEG");
        e.InputPicture = patternImage(20, 10);
        e.OutputFileMustBeNew = true;
        auto search = [&] {
            e.OutputFile = dir.filePath(output::quickSaveName(
                "jpg", [&](const QString &n) { return output::nameTaken(dir.filePath(n)); }));
        };
        search();
        writeFile(e.OutputFile, "someone else's");
        QCOMPARE(output::exportUnderFreeName(e, search), fw::ExportStatus::Written);
        QCOMPARE(readFile(dir.filePath("Capture.jpg")), QByteArray("someone else's"));
        QCOMPARE(QImage(dir.filePath("Capture1.jpg")).size(), QSize(20, 10));
    }

    // A writer killed at any moment: the preference file is the old one or the new one, whole;
    // an export's temporary file goes at the next write in its folder, and a folder that is gone
    // is not made again.
    void aKilledWriter_losesNothingAndLeavesNothingForLong()
    {
        QTemporaryDir dir;
        auto leftovers = [&] {
            return int(std::ranges::count_if(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden),
                                             fw::isTemporaryName));
        };
        pid_t child = 0;
        for (int round = 0; round < 15; ++round) {
            child = ::fork();
            if (child == 0) {
                fw::PreferenceDomains domains(dir.path());
                fw::CFPreferences p(domains);
                for (int i = 0;; ++i) {
                    p.SetAppValue(
                        "Blob",
                        fw::NewCFBinaryData(QByteArray(512 << 10, 'x') + QByteArray::number(i)),
                        "d");
                    p.AppSynchronize("d");
                }
            }
            ::usleep(3000 + round * 1700);
            ::kill(child, SIGKILL);
            ::waitpid(child, nullptr, 0);
            if (QFile::exists(dir.filePath("d.plist")))
                QCOMPARE(int(fw::plistfile::load(dir.filePath("d.plist")).state),
                         int(fw::plistfile::State::Ok));
        }
        // What the last one left (planted, to be sure there is some) goes at the next start.
        writeFile(dir.filePath(QString(".d.plist.~vantrel.%1.abcdef").arg(child)), "left");
        fw::PreferenceDomains next(dir.path());
        fw::CFPreferences(next).CopyAppValue("Blob", "d");
        QCOMPARE(leftovers(), 0);
        child = ::fork();
        if (child == 0)
            ::_exit(int(fw::writeNewFile(dir.filePath("Capture.jpg"), QByteArray(256 << 20, 'x'))));
        QTRY_VERIFY_WITH_TIMEOUT(leftovers() == 1, 10000);
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);
        QVERIFY(!QFile::exists(dir.filePath("Capture.jpg")));
        QCOMPARE(fw::writeNewFile(dir.filePath("Capture.jpg"), "picture"),
                 fw::NewFileResult::Written);
        QCOMPARE(leftovers(), 0);
        QCOMPARE(fw::writeNewFile(dir.filePath("gone/Capture.jpg"), "picture"),
                 fw::NewFileResult::Failed);
        QVERIFY(!QFileInfo::exists(dir.filePath("gone")));
    }

    void privateTemporaryFolder_isTheUsersAlone()
    {
        QTemporaryDir dir;
        const QString ours = dir.path() + "/Vantrel";
        qputenv("XDG_RUNTIME_DIR", dir.path().toUtf8());
        QDir().mkpath(ours);
        QFile::setPermissions(ours, QFile::Permissions(0x7777));
        QCOMPARE(fw::privateTemporaryFolder(), ours);
        QCOMPARE(int(QFileInfo(ours).permissions() & 0x0077), 0); // tightened
        qunsetenv("XDG_RUNTIME_DIR");
    }
};

QTEST_MAIN(StoreTest)
#include "tst_store.moc"
