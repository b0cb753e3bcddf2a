// The typed preference store and the Preferences module: types, absence, failures, atomic
// writes and what the editor reads at creation.

#include "TestSupport.h"

#include "editor/Window1.h"
#include "platform/CFPreferences.h"
#include "platform/Failure.h"

#include <QtTest>
#include <csignal>
#include <plist/plist.h>
#include <sys/wait.h>
#include <unistd.h>

using fw::StoreValue;

static QByteArray plistWith(const QByteArray &body)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n<dict>\n" + body +
           "</dict>\n</plist>\n";
}

class PreferencesTest : public QObject {
    Q_OBJECT
private slots:
    void everyTypeSurvivesASynchronizeAndANewReader()
    {
        QTemporaryDir dir;
        {
            fw::PreferenceDomains domains(dir.path());
            fw::CFPreferences p(domains);
            p.SetAppValue("s", fw::NewCFString("naïve \"quoted\" <text>"), "d");
            p.SetAppValue("b", fw::NewCFBinaryData(QByteArray("\0\x01\xff", 3)), "d");
            p.SetAppValue("t", fw::NewCFBoolean(true), "d");
            p.SetAppValue("i", fw::NewCFNumberInteger(-5), "d");
            p.SetAppValue("u", fw::NewCFURL(QUrl::fromLocalFile("/tmp/a b")), "d");
            QVERIFY(p.AppSynchronize("d"));
        }
        fw::PreferenceDomains again(dir.path());
        fw::CFPreferences p(again);
        QCOMPARE(p.CopyAppValue("s", "d")->toString(), QString("naïve \"quoted\" <text>"));
        QCOMPARE(p.CopyAppValue("b", "d")->toData(), QByteArray("\0\x01\xff", 3));
        QCOMPARE(p.CopyAppValue("t", "d")->toBoolean(), true);
        QCOMPARE(p.CopyAppValue("i", "d")->toInteger(), qint64(-5));
        QCOMPARE(p.CopyAppValue("u", "d")->toUrl(), QUrl::fromLocalFile("/tmp/a b"));
        QCOMPARE(p.CopyAppValue("missing", "d"), fw::StoreObject());
        QCOMPARE(p.CopyAppBooleanValue("missing", "d"), false);
        QCOMPARE(p.CopyAppIntegerValue("missing", "d"), qint64(0));
    }

    void checkedCastsRaiseOnAnotherType()
    {
        const fw::StoreObject s = fw::NewCFString("x");
        QVERIFY_THROWS_EXCEPTION(fw::IllegalCastException, s->toData());
        QVERIFY_THROWS_EXCEPTION(fw::IllegalCastException, s->toUrl());
        QVERIFY_THROWS_EXCEPTION(fw::IllegalCastException, fw::NewCFBoolean(true)->toString());
    }

    void aSetValueIsSeenAtOnceAndLastsOnlyAfterSynchronize()
    {
        QTemporaryDir dir;
        fw::PreferenceDomains domains(dir.path());
        fw::CFPreferences writer(domains), other(domains);
        writer.SetAppValue("k", fw::NewCFString("v"), "d");
        QCOMPARE(other.CopyAppValue("k", "d")->toString(), QString("v"));
        QVERIFY(!QFile::exists(domains.pathOf("d")));
        writer.AppSynchronize("d");
        QVERIFY(QFile::exists(domains.pathOf("d")));
    }

    void anUnsetDomainAnswersAsAbsent()
    {
        QTemporaryDir dir;
        fw::PreferenceDomains domains(dir.path());
        fw::CFPreferences p(domains);
        p.SetAppValue("k", fw::NewCFString("v"), "");
        QCOMPARE(p.CopyAppValue("k", ""), fw::StoreObject());
        QCOMPARE(p.AppSynchronize(""), false);
    }

    void unreadableFilesReadAsEmptyAndAreKeptOnWrite_data()
    {
        QTest::addColumn<QByteArray>("contents");
        QTest::newRow("garbage") << QByteArray("this is not a property list");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("cut in half") << plistWith("<key>LastScale</key><string>150</string>").left(70);
        QTest::newRow("unclosed string") << plistWith("<key>LastScale</key><string>150");
        QTest::newRow("fake binary header") << QByteArray("bplist00\x01\x02garbage", 17);
        QTest::newRow("an array at the top") << QByteArray("<plist><array/></plist>");
    }
    void unreadableFilesReadAsEmptyAndAreKeptOnWrite()
    {
        QFETCH(QByteArray, contents);
        QTemporaryDir dir;
        fw::PreferenceDomains domains(dir.path());
        const QString path = domains.pathOf("d");
        {
            QFile f(path);
            QVERIFY(f.open(QIODevice::WriteOnly));
            f.write(contents);
        }
        fw::CFPreferences p(domains);
        QCOMPARE(p.CopyAppValue("LastScale", "d"), fw::StoreObject());
        p.SetAppValue("LastScale", fw::NewCFString("75"), "d");
        QVERIFY(p.AppSynchronize("d"));
        const QStringList all = QDir(dir.path()).entryList(QDir::Files | QDir::Hidden);
        QCOMPARE(all.size(), 2);
        bool kept = false;
        for (const QString &name : all) {
            QFile f(dir.path() + "/" + name);
            f.open(QIODevice::ReadOnly);
            kept = kept || (name != "d.plist" && f.readAll() == contents);
        }
        QVERIFY2(kept, "the unreadable file is kept beside the new one");
        fw::PreferenceDomains fresh(dir.path());
        QCOMPARE(fw::CFPreferences(fresh).CopyAppValue("LastScale", "d")->toString(), QString("75"));
    }

    void otherTypesAndKeysSurviveARewrite()
    {
        QTemporaryDir dir;
        fw::PreferenceDomains domains(dir.path());
        QFile f(domains.pathOf("d"));
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write(plistWith("<key>Ratio</key><real>0.5</real>\n<key>List</key><array><string>a</string></array>\n"));
        f.close();
        fw::CFPreferences p(domains);
        QVERIFY(p.CopyAppValue("Ratio", "d")->isA(StoreValue::Kind::Other));
        p.SetAppValue("LastScale", fw::NewCFString("50"), "d");
        p.AppSynchronize("d");
        QVERIFY(f.open(QIODevice::ReadOnly));
        const QByteArray written = f.readAll();
        QVERIFY(written.contains("<real>0.5"));
        QVERIFY(written.contains("<array>"));
        QVERIFY(written.contains("<string>50</string>"));
    }

    void aSynchronizeMergesWhatAnotherWriterLeft()
    {
        QTemporaryDir dir;
        fw::PreferenceDomains mine(dir.path()), theirs(dir.path());
        fw::CFPreferences a(mine), b(theirs);
        a.CopyAppValue("x", "d"); // loaded before the other writer
        b.SetAppValue("Theirs", fw::NewCFString("1"), "d");
        b.AppSynchronize("d");
        a.SetAppValue("Mine", fw::NewCFString("2"), "d");
        a.AppSynchronize("d");
        fw::PreferenceDomains fresh(dir.path());
        fw::CFPreferences c(fresh);
        QVERIFY(c.CopyAppValue("Theirs", "d"));
        QVERIFY(c.CopyAppValue("Mine", "d"));
    }

    void aKilledWriterLeavesTheOldFileOrTheNewOneWhole()
    {
        QTemporaryDir dir;
        const QString path = dir.path() + "/d.plist";
        for (int round = 0; round < 15; ++round) {
            pid_t child = ::fork();
            if (child == 0) {
                fw::PreferenceDomains domains(dir.path());
                fw::CFPreferences p(domains);
                const QByteArray big(512 * 1024, 'x');
                for (int i = 0;; ++i) {
                    p.SetAppValue("Blob", fw::NewCFBinaryData(big + QByteArray::number(i)), "d");
                    p.AppSynchronize("d");
                }
            }
            ::usleep(3000 + round * 1700);
            ::kill(child, SIGKILL);
            ::waitpid(child, nullptr, 0);
            if (!QFile::exists(path)) continue; // killed before the first rename
            const auto loaded = fw::plistfile::load(path);
            QCOMPARE(int(loaded.state), int(fw::plistfile::State::Ok));
        }
    }

    // --- the module ------------------------------------------------------------------------

    void stringFunctions_absenceTypesAndFailures()
    {
        TestProgram t(false);
        Preferences &m = *t.prefs;
        QVERIFY_THROWS_EXCEPTION(fw::NilObjectException, m.prefgetstringvalue(PrefKeys::LastScale));
        QVERIFY_THROWS_EXCEPTION(fw::NilObjectException, m.prefaddstringvalue(PrefKeys::LastScale, QString("1")));
        QVERIFY(t.app->messages.isEmpty());
        m.initprefs();
        QCOMPARE(m.appname, QString("com.Morlane.Vantrel"));
        QCOMPARE(m.prefgetstringvalue(PrefKeys::LastScale), QString());
        m.prefaddstringvalue(PrefKeys::LastScale, QString("150"));
        QCOMPARE(m.prefgetstringvalue(PrefKeys::LastScale), QString("150"));
        QVERIFY2(QFile::exists(t.plistPath()), "a string write synchronises");
        m.prefaddstringvalue(PrefKeys::LastScale, QString());
        QCOMPARE(m.prefgetstringvalue(PrefKeys::LastScale), QString());
        // Bytes that are no text make no string: the stored value stays.
        m.prefaddstringvalue(PrefKeys::LastFormat, QString("PNG"));
        m.prefaddstringvalue(PrefKeys::LastFormat, QByteArray("\xff\xfe\x00", 3));
        QCOMPARE(m.prefgetstringvalue(PrefKeys::LastFormat), QString("PNG"));
        m.MyPref->SetAppValue(PrefKeys::LastScale.str(), fw::NewCFNumberInteger(150), m.appname);
        QVERIFY_THROWS_EXCEPTION(fw::IllegalCastException, m.prefgetstringvalue(PrefKeys::LastScale));
        // A new store object loses nothing: values live with the domain.
        m.initprefs();
        QCOMPARE(m.prefgetstringvalue(PrefKeys::LastFormat), QString("PNG"));
    }

    void editorCreation_readsSettingsAndDefaultFolder_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QByteArray>("settings");
        QTest::addColumn<QString>("folder"); // "desktop", "nil", or a path under home
        QTest::addColumn<QString>("message");
        QTest::newRow("empty store") << QByteArray() << QByteArray() << "desktop" << "";
        QTest::newRow("binary settings are taken")
            << QByteArray("<key>Settings</key><data>AAEC</data>") << QByteArray("\0\1\2", 3)
            << "desktop" << "";
        QTest::newRow("text settings are ignored")
            << QByteArray("<key>Settings</key><string>quality=90</string>") << QByteArray()
            << "desktop" << "";
        QTest::newRow("a folder URL") << QByteArray("<key>DefaultFolder</key><dict><key>CFURL</key><string>file://HOME/Pictures</string></dict>")
                                      << QByteArray() << "HOME/Pictures" << "";
        QTest::newRow("a URL of a file leaves it nil")
            << QByteArray("<key>DefaultFolder</key><dict><key>CFURL</key><string>file://HOME/note.txt</string></dict>")
            << QByteArray() << "nil" << "";
        QTest::newRow("a folder as text fails the cast")
            << QByteArray("<key>DefaultFolder</key><string>/tmp</string>") << QByteArray() << "nil"
            << "An Error Ocurred at OpenEditor";
    }
    void editorCreation_readsSettingsAndDefaultFolder()
    {
        QFETCH(QByteArray, body);
        QFETCH(QByteArray, settings);
        QFETCH(QString, folder);
        QFETCH(QString, message);
        TestProgram t(false);
        QDir().mkpath(t.home.path() + "/Pictures");
        QFile note(t.home.path() + "/note.txt");
        note.open(QIODevice::WriteOnly);
        body.replace("HOME", t.home.path().toUtf8());
        t.writePlist(plistWith(body));
        t.app->_Startup();
        Window1 *w = t.app->windows().existing<Window1>();
        QVERIFY(w);
        QCOMPARE(w->settings, settings);
        if (folder == "nil")
            QVERIFY(!w->DefaultFolder);
        else if (folder == "desktop")
            QCOMPARE(w->DefaultFolder->absolutePath(), t.home.path() + "/Desktop");
        else
            QCOMPARE(w->DefaultFolder->absolutePath(), QString(folder).replace("HOME", t.home.path()));
        QCOMPARE(t.app->messages, message.isEmpty() ? QStringList() : QStringList{message});
        QCOMPARE(t.keys->claims.isEmpty(), !message.isEmpty());
    }
};

QTEST_MAIN(PreferencesTest)
#include "tst_preferences.moc"
