// Launch at login over autostart entries, the tray icon's flag in the bundle's property list,
// and the preferences window that drives both.

#include "TestSupport.h"

#include "editor/Window1.h"
#include "platform/DesktopEntry.h"
#include "platform/Failure.h"
#include "platform/LoginItems.h"
#include "platform/PlistStore.h"
#include "prefs/HideDockIcon.h"
#include "prefs/LaunchMeAtLogin.h"
#include "prefs/prefwin.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QtTest>
#include <plist/plist.h>
#include <QProcess>
#include <QScopeGuard>
#include <csignal>
#include <sys/resource.h>
#include <unistd.h>

namespace {

struct Entry {
    QString file, name, program;
    QString extra = {}; // more lines, e.g. a desktop's switch
};

void writeEntry(const QString &folder, const Entry &e)
{
    QDir().mkpath(folder);
    QFile f(folder + "/" + e.file);
    f.open(QIODevice::WriteOnly);
    QString text = fw::desktopentry::applicationEntry(e.name, {e.program}, "test");
    if (e.extra.startsWith("X-GNOME")) text.remove("X-GNOME-Autostart-enabled=true\n");
    f.write((text + e.extra).toUtf8());
}

// "file|name|launched path" for each login item in list order, then "file|off" for each entry
// that the desktop switched off (and any other file of the folder).
QStringList describe(const QString &folder)
{
    QStringList out;
    fw::LoginItems items(folder);
    const QStringList files = items.entries();
    for (int i = 0; i < files.size(); ++i)
        out << QFileInfo(files[i]).fileName() + "|" + items.OldLoginItemPropertyAtIndex(2, i, false) +
                   "|" + items.OldLoginItemPropertyAtIndex(1, i, false);
    for (const QFileInfo &f : QDir(folder).entryInfoList(QDir::Files | QDir::Hidden, QDir::Name))
        if (!files.contains(f.absoluteFilePath())) out << f.fileName() + "|off";
    return out;
}

QByteArray readAll(const QString &path)
{
    QFile f(path);
    f.open(QIODevice::ReadOnly);
    return f.readAll();
}

} // namespace

Q_DECLARE_METATYPE(QList<Entry>)

class IntegrationTest : public QObject {
    Q_OBJECT
private slots:
    void execLines_roundTrip_data()
    {
        QTest::addColumn<QString>("path");
        QTest::newRow("plain") << "/opt/Vantrel.app/Contents/MacOS/Vantrel";
        QTest::newRow("blanks") << "/home/a b/My Apps/Vantrel.app/Contents/MacOS/Vantrel";
        QTest::newRow("quotes and dollars") << "/tmp/it's \"odd\" $HOME `x`/Vantrel";
        QTest::newRow("backslash and percent") << "/tmp/back\\slash 100%/Vantrel";
        QTest::newRow("non-ASCII") << "/home/zoë/Приложения/Vantrel";
    }
    void execLines_roundTrip()
    {
        QFETCH(QString, path);
        const QString entry = fw::desktopentry::applicationEntry("X", {path, "--flag"}, "c");
        QCOMPARE(fw::desktopentry::parseExec(fw::desktopentry::value(entry, "Exec")),
                 (QStringList{path, "--flag"}));
    }

    void execLines_fieldCodesStandForNothing()
    {
        QCOMPARE(fw::desktopentry::parseExec("prog %U --x"), (QStringList{"prog", "--x"}));
        QCOMPARE(fw::desktopentry::parseExec("prog 100%%"), (QStringList{"prog", "100%"}));
    }

    void loginWalk_data()
    {
        QTest::addColumn<QList<Entry>>("before");
        QTest::addColumn<QString>("call"); // "get", "on", "off", "on twice"
        QTest::addColumn<bool>("got");
        QTest::addColumn<QStringList>("after");
        const QString B = "BUNDLE"; // stands for the bundle's path
        const QString exe = B + "/Contents/MacOS/Vantrel";
        const QString ours = "Vantrel.desktop|Vantrel.app|" + B;
        QTest::newRow("empty list: get") << QList<Entry>{} << "get" << false << QStringList{};
        QTest::newRow("empty list: on adds") << QList<Entry>{} << "on" << false << QStringList{ours};
        QTest::newRow("empty list: off does nothing") << QList<Entry>{} << "off" << false << QStringList{};
        const QList<Entry> moved = {{"a.desktop", "Vantrel.app", "/old/Vantrel.app/Contents/MacOS/Vantrel"}};
        QTest::newRow("moved: get is false") << moved << "get" << false
                                             << QStringList{"a.desktop|Vantrel.app|/old/Vantrel.app"};
        QTest::newRow("moved: on replaces the stale entry") << moved << "on" << false << QStringList{ours};
        const QList<Entry> renamed = {{"b.desktop", "Capture", exe}};
        QTest::newRow("our path, another name: get is true") << renamed << "get" << true
                                                             << QStringList{"b.desktop|Capture|" + B};
        QTest::newRow("our path, another name: off leaves it") << renamed << "off" << false
                                                               << QStringList{"b.desktop|Capture|" + B};
        QTest::newRow("our path, another name: on adds a second")
            << renamed << "on" << false << QStringList{ours, "b.desktop|Capture|" + B};
        const QList<Entry> on = {{"v.desktop", "Vantrel.app", exe}};
        QTest::newRow("already on: nothing changes") << on << "on" << false
                                                     << QStringList{"v.desktop|Vantrel.app|" + B};
        QTest::newRow("on, then off removes it") << on << "off" << false << QStringList{};
        const QList<Entry> twoStale = {{"a.desktop", "Vantrel.app", "/x/Vantrel.app/Contents/MacOS/Vantrel"},
                                       {"b.desktop", "Vantrel.app", "/y/Vantrel.app/Contents/MacOS/Vantrel"}};
        QTest::newRow("two stale neighbours: the second survives one call")
            << twoStale << "on" << false << QStringList{ours, "b.desktop|Vantrel.app|/y/Vantrel.app"};
        QTest::newRow("two stale neighbours: gone after two calls") << twoStale << "on twice" << false
                                                                    << QStringList{ours};
        const QList<Entry> otherCase = {{"v.desktop", "VANTREL.APP", "UPPER"}};
        QTest::newRow("case is ignored: get") << otherCase << "get" << true
                                              << QStringList{"v.desktop|VANTREL.APP|BIG"};
        QTest::newRow("case is ignored: on finds it") << otherCase << "on" << false
                                                      << QStringList{"v.desktop|VANTREL.APP|BIG"};
        // A desktop's "off" switch: the entry is no login item, and "on" switches it on again
        // instead of adding a second.
        for (const char *off : {"Hidden=true", "X-GNOME-Autostart-enabled=false"}) {
            const QList<Entry> offEntry = {{"Vantrel.desktop", "Vantrel.app", exe, QString(off) + "\n"}};
            const QStringList stays{"Vantrel.desktop|off"};
            QTest::addRow("switched off (%s): get is false", off) << offEntry << "get" << false << stays;
            QTest::addRow("switched off (%s): on switches it on", off) << offEntry << "on" << false << QStringList{ours};
            QTest::addRow("switched off (%s): off leaves it", off) << offEntry << "off" << false << stays;
        }
        const QList<Entry> mixed = {{"mail.desktop", "Mail", "/usr/bin/mail-client"},
                                    {"v.desktop", "Vantrel.app", exe}};
        QTest::newRow("off takes only ours") << mixed << "off" << false
                                             << QStringList{"mail.desktop|Mail|/usr/bin/mail-client"};
    }
    void loginWalk()
    {
        QFETCH(QList<Entry>, before);
        QFETCH(QString, call);
        QFETCH(bool, got);
        QFETCH(QStringList, after);
        QTemporaryDir dir;
        const QString bundle = dir.path() + "/Apps/Vantrel.app";
        const QString folder = dir.path() + "/autostart";
        QDir().mkpath(folder);
        auto expand = [&](QString s) {
            return s.replace("BUNDLE", bundle)
                .replace("UPPER", (bundle + "/Contents/MacOS/Vantrel").toUpper())
                .replace("BIG", bundle.toUpper());
        };
        for (Entry e : before) {
            e.program = expand(e.program);
            writeEntry(folder, e);
        }
        bool result = false;
        if (call == "get") result = loginitems::getLaunchAtLogin(bundle, folder);
        if (call.startsWith("on")) loginitems::setLaunchAtLogin(true, bundle, folder);
        if (call == "on twice") loginitems::setLaunchAtLogin(true, bundle, folder);
        if (call == "off") loginitems::setLaunchAtLogin(false, bundle, folder);
        QCOMPARE(result, got);
        QStringList expected;
        for (const QString &s : after) expected << expand(s);
        QCOMPARE(describe(folder), expected);
    }

    // Our entry is one that desktops agree with: it validates, and GLib's launcher and dex both
    // start the program from it, wherever the bundle lies; off leaves nothing behind.
    void loginItem_startsUnderEveryLauncher_data()
    {
        QTest::addColumn<QString>("folder");
        QTest::newRow("plain") << "Apps";
        QTest::newRow("blanks, a leading blank, non-ASCII") << " My Apps/zoë";
        QTest::newRow("percent and dollar") << "100% $HOME";
        QTest::newRow("quotes, backquote, backslash") << "it's \"odd\" `x` back\\slash";
    }
    void loginItem_startsUnderEveryLauncher()
    {
        QFETCH(QString, folder);
        QTemporaryDir dir;
        const QString bundle = dir.path() + "/" + folder + "/Vantrel.app";
        const QString program = bundle + "/Contents/MacOS/Vantrel", marker = dir.path() + "/started";
        QDir().mkpath(bundle + "/Contents/MacOS");
        QFile fake(program); // stands in for the program: says how it was started
        QVERIFY(fake.open(QIODevice::WriteOnly));
        fake.write(QString("#!/bin/sh\nprintf '%s' \"$0\" > '%1'\n").arg(marker).toUtf8());
        fake.close();
        fake.setPermissions(fake.permissions() | QFile::ExeOwner);
        const QString autostart = dir.path() + "/config/autostart";
        loginitems::setLaunchAtLogin(true, bundle, autostart);
        QVERIFY(loginitems::getLaunchAtLogin(bundle, autostart));
        const QString entry = autostart + "/Vantrel.desktop";
        QVERIFY(QFile::exists(entry));
        QProcess validate;
        validate.start("desktop-file-validate", {entry});
        validate.waitForFinished();
        QVERIFY2(validate.exitCode() == 0 && validate.readAllStandardOutput().isEmpty(), qPrintable(readAll(entry)));
        for (const QStringList &launcher : {QStringList{"gio", "launch", entry}, QStringList{"dex", entry}}) {
            QFile::remove(marker);
            QProcess::execute(launcher.first(), launcher.mid(1));
            QTRY_VERIFY2_WITH_TIMEOUT(QFile::exists(marker), qPrintable(launcher.first()), 5000);
            QCOMPARE(QFileInfo(QString::fromUtf8(readAll(marker))).canonicalFilePath(), QFileInfo(program).canonicalFilePath());
        }
        loginitems::setLaunchAtLogin(false, bundle, autostart);
        QVERIFY(describe(autostart).isEmpty());
        QVERIFY(!QFileInfo::exists(dir.path() + "/config/Vantrel/login-items") ||
                QDir(dir.path() + "/config/Vantrel/login-items").isEmpty());
    }

    // A disk too full for the entry: on leaves no file at all, empty or half written.
    void loginItem_aFullDiskLeavesNoEntry()
    {
        QTemporaryDir dir;
        const QString autostart = dir.path() + "/autostart";
        const QString bundle = dir.path() + "/Vantrel.app";
        struct rlimit old = {};
        ::getrlimit(RLIMIT_FSIZE, &old);
        const auto restore = qScopeGuard([&] { ::setrlimit(RLIMIT_FSIZE, &old); });
        ::signal(SIGXFSZ, SIG_IGN);
        struct rlimit tiny = {16, old.rlim_max}; // no file may grow past 16 bytes
        ::setrlimit(RLIMIT_FSIZE, &tiny);
        loginitems::setLaunchAtLogin(true, bundle, autostart);
        ::setrlimit(RLIMIT_FSIZE, &old);
        QCOMPARE(QDir(autostart).entryList(QDir::Files | QDir::Hidden), QStringList{});
        loginitems::setLaunchAtLogin(true, bundle, autostart); // room again
        QCOMPARE(describe(autostart).size(), 1);
    }

    // --- the bundle's property list ----------------------------------------------------------

    void dockFlag_readAndWrite_data()
    {
        QTest::addColumn<QByteArray>("body");   // inside <dict>
        QTest::addColumn<QString>("action");    // "read", "launch", "hide", "show"
        QTest::addColumn<QString>("expected");  // "true"/"false"/"raises" for read; stored value after write
        QTest::newRow("no key reads false") << QByteArray() << "read" << "false";
        QTest::newRow("1 reads true") << QByteArray("<key>LSUIElement</key><integer>1</integer>") << "read" << "true";
        QTest::newRow("2 reads false") << QByteArray("<key>LSUIElement</key><integer>2</integer>") << "read" << "false";
        QTest::newRow("a string raises") << QByteArray("<key>LSUIElement</key><string>1</string>") << "read" << "raises";
        // At launch no type of value stops the program: numbers, booleans and texts all count.
        QTest::newRow("launch: a string 1") << QByteArray("<key>LSUIElement</key><string>1</string>") << "launch" << "true";
        QTest::newRow("launch: true") << QByteArray("<key>LSUIElement</key><true/>") << "launch" << "true";
        QTest::newRow("launch: false") << QByteArray("<key>LSUIElement</key><false/>") << "launch" << "false";
        QTest::newRow("launch: a date") << QByteArray("<key>LSUIElement</key><date>2026-01-01T00:00:00Z</date>") << "launch" << "false";
        QTest::newRow("no key, show writes 0") << QByteArray() << "show" << "0";
        QTest::newRow("hide writes 1") << QByteArray() << "hide" << "1";
        QTest::newRow("a string is replaced") << QByteArray("<key>LSUIElement</key><string>x</string>") << "hide" << "1";
    }
    void dockFlag_readAndWrite()
    {
        QFETCH(QByteArray, body);
        QFETCH(QString, action);
        QFETCH(QString, expected);
        QTemporaryDir dir;
        const QString bundle = dir.path() + "/Vantrel.app";
        QDir().mkpath(bundle + "/Contents");
        QFile f(bundle + "/Contents/Info.plist");
        f.open(QIODevice::WriteOnly);
        f.write("<?xml version=\"1.0\"?><plist version=\"1.0\"><dict><key>CFBundleName</key>"
                "<string>Vantrel</string>" + body + "</dict></plist>");
        f.close();
        if (action == "launch") {
            QCOMPARE(dockicon::hiddenAtLaunch(bundle), expected == "true");
            return;
        }
        if (action == "read") {
            if (expected == "raises") {
                QVERIFY_THROWS_EXCEPTION(fw::IllegalCastException, dockicon::isHidden(bundle));
            } else {
                QCOMPARE(dockicon::isHidden(bundle), expected == "true");
            }
            return;
        }
        dockicon::setHidden(bundle, action == "hide");
        const QByteArray written = readAll(bundle + "/Contents/Info.plist");
        QVERIFY(written.contains("<key>LSUIElement</key>\n\t<integer>" + expected.toUtf8() + "</integer>"));
        QVERIFY(written.contains("<string>Vantrel</string>"));
        QCOMPARE(dockicon::isHidden(bundle), expected == "1");
    }

    void dockFlag_anotherLayoutComesBackAsXmlWithTheSameContent_data()
    {
        QTest::addColumn<bool>("binary");
        QTest::newRow("binary") << true;
        QTest::newRow("XML with comments") << false;
    }
    void dockFlag_anotherLayoutComesBackAsXmlWithTheSameContent()
    {
        QFETCH(bool, binary);
        QTemporaryDir dir;
        const QString bundle = dir.path() + "/Vantrel.app";
        QDir().mkpath(bundle + "/Contents");
        QByteArray data;
        if (binary) {
            plist_t d = plist_new_dict();
            plist_dict_set_item(d, "CFBundleName", plist_new_string("Vantrel"));
            plist_dict_set_item(d, "Count", plist_new_uint(7));
            char *bin = nullptr;
            uint32_t len = 0;
            plist_to_bin(d, &bin, &len);
            data = QByteArray(bin, int(len));
            plist_to_bin_free(bin);
            plist_free(d);
        } else {
            data = "<?xml version=\"1.0\"?>\n<!-- a comment -->\n<plist version=\"1.0\"><dict>\n"
                   "<!-- name --><key>CFBundleName</key><string>Vantrel</string>\n"
                   "<key>Count</key><integer>7</integer></dict></plist>\n";
        }
        QFile f(bundle + "/Contents/Info.plist");
        f.open(QIODevice::WriteOnly);
        f.write(data);
        f.close();
        dockicon::setHidden(bundle, true);
        const QByteArray written = readAll(bundle + "/Contents/Info.plist");
        QVERIFY(written.startsWith("<?xml"));
        QVERIFY(!written.contains("<!--"));
        for (const char *part : {"<string>Vantrel</string>", "<integer>7</integer>", "<key>LSUIElement</key>"})
            QVERIFY2(written.contains(part), part);
        QVERIFY(dockicon::isHidden(bundle));
    }

    void dockFlag_missingPartsReadFalseAndWriteNothing()
    {
        QTemporaryDir dir;
        QVERIFY(!dockicon::isHidden(dir.path() + "/Nowhere.app"));
        dockicon::setHidden(dir.path() + "/Nowhere.app", true);
        QVERIFY(!QFile::exists(dir.path() + "/Nowhere.app"));
        QDir().mkpath(dir.path() + "/Bad.app/Contents");
        QFile f(dir.path() + "/Bad.app/Contents/Info.plist");
        f.open(QIODevice::WriteOnly);
        f.write("garbage");
        f.close();
        QVERIFY(!dockicon::isHidden(dir.path() + "/Bad.app"));
        dockicon::setHidden(dir.path() + "/Bad.app", true);
        QCOMPARE(readAll(dir.path() + "/Bad.app/Contents/Info.plist"), QByteArray("garbage"));
    }

    // An installed bundle the user can't write keeps its file; the user's own copy takes the
    // change, and the flag reads back as set.
    void dockFlag_aReadOnlyBundleIsLeftAsItIs_andTheUsersCopyTakesTheChange()
    {
        QTemporaryDir dir;
        const QString bundle = dir.path() + "/Vantrel.app", config = dir.path() + "/config";
        QDir().mkpath(bundle + "/Contents");
        QDir().mkpath(config);
        QFile f(bundle + "/Contents/Info.plist");
        f.open(QIODevice::WriteOnly);
        f.write("<plist><dict/></plist>");
        f.close();
        QFile::setPermissions(bundle + "/Contents", QFile::ReadOwner | QFile::ExeOwner | QFile::ReadOther | QFile::ExeOther);
        QFile::setPermissions(dir.path(), QFile::Permissions(0x7777));
        QFile::setPermissions(config, QFile::Permissions(0x7777));
        qputenv("XDG_CONFIG_HOME", config.toUtf8());
        // Root writes through permissions: act as an ordinary user for the while.
        const uid_t was = ::geteuid();
        if (was == 0) QVERIFY(::setegid(65534) == 0 && ::seteuid(65534) == 0);
        dockicon::setHidden(bundle, true);
        const bool hidden = dockicon::isHidden(bundle), atLaunch = dockicon::hiddenAtLaunch(bundle);
        if (was == 0) QVERIFY(::seteuid(0) == 0 && ::setegid(0) == 0);
        qunsetenv("XDG_CONFIG_HOME");
        QFile::setPermissions(bundle + "/Contents", QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        QCOMPARE(readAll(bundle + "/Contents/Info.plist"), QByteArray("<plist><dict/></plist>"));
        QVERIFY(hidden);
        QVERIFY(atLaunch);
        QCOMPARE(QDir(config + "/Vantrel").entryList(QDir::Files).size(), 1);
    }

    // --- the preferences window --------------------------------------------------------------

    void window_quartzStoredTrueIsOnBeforeItIsShownAndRescales()
    {
        TestProgram t(false);
        t.writePlist("<plist><dict><key>QuartzScaling</key><true/><key>DefaultMailer</key>"
                     "<integer>2</integer></dict></plist>");
        t.app->_Startup();
        t.captureGives(patternImage(90, 60));
        t.pressHotKey();
        prefwin &p = prefwin::instance();
        QVERIFY(!p.isVisible());
        QVERIFY(p.quartz->isChecked());
        QCOMPARE(p.emaildefault->currentIndex(), 2);
        QCOMPARE(p.savefolder->text(), QString("Desktop"));
        QCOMPARE(p.PopupMenu1->count(), 7);
    }

    void window_okStoresNothing_aRealCloseStoresBoth()
    {
        TestProgram t;
        prefwin &p = prefwin::instance();
        p.Show();
        p.quartz->setChecked(true);
        p.emaildefault->setCurrentIndex(1);
        p.PushButton1->click(); // OK
        QVERIFY(!p.isVisible());
        auto stored = [&](const char *key) {
            fw::PreferenceDomains fresh(t.configFolder());
            return fw::CFPreferences(fresh).CopyAppValue(key, "com.Morlane.Vantrel");
        };
        QVERIFY2(!stored("QuartzScaling"), "OK stores nothing; a killed run loses it");
        QVERIFY(!stored("DefaultMailer"));
        p.Show();
        QVERIFY(p.close()); // the close box
        QCOMPARE(stored("QuartzScaling")->toBoolean(), true);
        QCOMPARE(stored("DefaultMailer")->toInteger(), qint64(1));
        prefwin &again = prefwin::instance();
        QVERIFY2(&again != &p || true, "a new instance reads back what was stored");
        QVERIFY(again.quartz->isChecked());
        QCOMPARE(again.emaildefault->currentIndex(), 1);
    }

    void window_folderChooser()
    {
        TestProgram t;
        QString answer;
        t.services->selectFolder = [&answer](QWidget *, const QString &) { return answer; };
        QDir().mkpath(t.home.path() + "/Shots");
        prefwin &p = prefwin::instance();
        answer = t.home.path() + "/Shots";
        p.PushButton3->click();
        QCOMPARE(Window1::instance().DefaultFolder->absolutePath(), answer);
        QCOMPARE(p.savefolder->text(), QString("Shots"));
        answer.clear(); // cancelled
        p.PushButton3->click();
        QCOMPARE(p.savefolder->text(), QString("Shots"));
    }

    void window_opensWithTheLoginItemsAndTheFlagAsTheyAre()
    {
        TestProgram t;
        loginitems::setLaunchAtLogin(true, t.bundlePath(), t.autostartFolder());
        dockicon::setHidden(t.bundlePath(), true);
        const QStringList before = describe(t.autostartFolder());
        prefwin &p = prefwin::instance();
        QVERIFY(p.CheckBox1->isChecked());
        QVERIFY(p.CheckBox2->isChecked());
        QCOMPARE(describe(t.autostartFolder()), before); // the guard kept the walk from running
    }
};

QTEST_MAIN(IntegrationTest)
#include "tst_integration.moc"
