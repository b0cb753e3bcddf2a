// Everything that leaves the editor: the seven formats, the settings, the name searches, the
// keys each command writes, the mail scripts and the clipboard.

#include "TestSupport.h"

#include "editor/Window1.h"
#include "output/OutputNaming.h"
#include "platform/AtomicFile.h"
#include "platform/GraphicsExporter.h"
#include "platform/TemporaryFolder.h"
#include "prefs/prefwin.h"
#include "recent/recentwin.h"

#include <QAction>
#include <QClipboard>
#include <QComboBox>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QLineEdit>
#include <QPainter>
#include <QToolBar>
#include <QtTest>
#include <csignal>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

Window1 &loaded(TestProgram &t, const QImage &pic = patternImage(200, 150))
{
    t.captureGives(pic);
    t.pressHotKey();
    return Window1::instance();
}

// What readers that did not write the file find in it (PIL; ImageMagick's command line only for
// PICT), compared against the expected picture.
QJsonObject readBack(const QString &file, const QImage &expected)
{
    const QString reference = file + ".reference.ppm";
    expected.convertToFormat(QImage::Format_RGB888).save(reference, "PPM");
    QProcess p;
    p.start("/usr/bin/python3", {QStringLiteral(VANTREL_TEST_SOURCE_DIR "/unit/readback.py"), file, reference});
    p.waitForFinished(60000);
    const QByteArray out = p.readAllStandardOutput();
    if (p.exitCode() != 0) qWarning() << p.readAllStandardError();
    return QJsonDocument::fromJson(out).object();
}

fw::StoreObject stored(TestProgram &t, const PrefKey &key)
{
    fw::PreferenceDomains fresh(t.configFolder());
    return fw::CFPreferences(fresh).CopyAppValue(key.str(), "com.Morlane.Vantrel");
}

} // namespace

class OutputTest : public QObject {
    Q_OBJECT
private slots:
    // Every setting of every format reaches the file, as other programs read it.
    void everyFormatAndSetting_reachesTheFile_data()
    {
        QTest::addColumn<int>("row");
        QTest::addColumn<QByteArray>("settings");
        QTest::addColumn<QString>("format");
        QTest::addColumn<double>("tolerance");
        QTest::addColumn<QString>("facts"); // key=value pairs the reader must report
        const QByteArray h = "vantrel-export-settings 1\n";
        QTest::newRow("JPEG") << 0 << QByteArray() << "JPEG" << 4.0 << "quality=85 progressive=false dpi=72";
        QTest::newRow("JPEG q40 progressive") << 0 << h + "jpeg.quality=40\njpeg.progressive=1" << "JPEG" << 8.0 << "quality=40 progressive=true";
        QTest::newRow("TIFF LZW") << 1 << QByteArray() << "TIFF" << 0.0 << "compression=tiff_lzw dpi=72";
        QTest::newRow("TIFF none") << 1 << h + "tiff.compression=none" << "TIFF" << 0.0 << "compression=raw";
        QTest::newRow("TIFF zip") << 1 << h + "tiff.compression=zip" << "TIFF" << 0.0 << "compression=tiff_adobe_deflate";
        QTest::newRow("PICT") << 2 << QByteArray() << "PICT" << 0.0 << "dpi=72";
        QTest::newRow("Photoshop RLE") << 3 << QByteArray() << "PSD" << 0.0 << "rle=true dpi=72";
        QTest::newRow("Photoshop raw") << 3 << h + "psd.rle=0" << "PSD" << 0.0 << "rle=false";
        QTest::newRow("PNG level 0") << 4 << h + "png.compression=0" << "PNG" << 0.0 << "minFraction=1 dpi=72";
        QTest::newRow("PNG level 1") << 4 << h + "png.compression=1" << "PNG" << 0.0 << "maxFraction=0.1";
        QTest::newRow("PNG level 9") << 4 << h + "png.compression=9" << "PNG" << 0.0 << "maxFraction=0.1 notLargerThanLevel1";
        QTest::newRow("PNG interlaced") << 4 << h + "png.interlaced=1" << "PNG" << 0.0 << "interlaced=true maxFraction=0.15";
        QTest::newRow("BMP 24") << 5 << QByteArray() << "BMP" << 0.0 << "bits=24 dpi=72";
        QTest::newRow("BMP 32") << 5 << h + "bmp.depth=32" << "BMP" << 0.0 << "bits=32 dpi=72";
        QTest::newRow("Targa RLE") << 6 << QByteArray() << "TGA" << 0.0 << "rle=true top_left=true";
        QTest::newRow("Targa raw") << 6 << h + "targa.rle=0" << "TGA" << 0.0 << "rle=false top_left=true";
    }
    void everyFormatAndSetting_reachesTheFile()
    {
        QFETCH(int, row);
        QFETCH(QByteArray, settings);
        QFETCH(QString, format);
        QFETCH(double, tolerance);
        QFETCH(QString, facts);
        static qint64 level1Bytes = 0;
        TestProgram t;
        Window1 &w = loaded(t, screenLike(640, 400));
        w.scaleField->setText("50");
        w.captionText->setText("Caption");
        prefwin::instance().PopupMenu1->setCurrentIndex(row);
        w.exporter->setSettings(settings);
        w.exporter->InputPicture = w.getoutputimage();
        w.exporter->OutputFile = t.home.path() + "/out." + w.exporter->GetDefaultFileNameExtension();
        QCOMPARE(w.exporter->Export(), 0);

        const QImage expected = w.getoutputimage();
        const QJsonObject got = readBack(w.exporter->OutputFile, expected);
        QCOMPARE(got["format"].toString(), format);
        QCOMPARE(got["size"].toArray(), (QJsonArray{320, 200}));
        QVERIFY2(got["difference"].toDouble(99) <= tolerance, qPrintable(QJsonDocument(got).toJson()));
        const double bytes = got["bytes"].toDouble(), raw = 3.0 * 320 * 200;
        for (const QString &fact : facts.split(' ')) {
            const QString key = fact.section('=', 0, 0), value = fact.section('=', 1);
            if (key == "maxFraction") QVERIFY2(bytes <= raw * value.toDouble(), qPrintable(QString::number(bytes)));
            else if (key == "minFraction") QVERIFY(bytes >= raw * value.toDouble());
            else if (key == "notLargerThanLevel1") QVERIFY(bytes <= level1Bytes);
            else if (key == "dpi") QVERIFY2(qAbs(got[key].toDouble() - 72) < 1.5, qPrintable(QJsonDocument(got).toJson()));
            else QVERIFY2(got[key].toVariant().toString() == value, qPrintable(key + ": " + QJsonDocument(got).toJson()));
        }
        if (QString(QTest::currentDataTag()) == "PNG level 1") level1Bytes = qint64(bytes);
    }

    void settingsChosenInTheDialog_changeTheFile_andSurviveARestart()
    {
        TestProgram t;
        Window1 &w = loaded(t, patternImage(300, 200));
        int quality = 95;
        t.editSettings = [&quality](fw::ExporterSettings &s) { s.jpegQuality = quality; };
        auto sizeAt = [&](int q) {
            quality = q;
            w.settings.clear();
            w.SaveTB_Action();
            const QStringList files = QDir(t.home.path() + "/Desktop").entryList(QDir::Files, QDir::Time);
            return QFileInfo(t.home.path() + "/Desktop/" + files.first()).size();
        };
        const qint64 fine = sizeAt(95), coarse = sizeAt(20);
        QVERIFY2(coarse < fine / 2, qPrintable(QString("%1 vs %2").arg(coarse).arg(fine)));
        QCOMPARE(t.dialogsShown.size(), 2);
        QVERIFY(w.settings.contains("jpeg.quality=20"));
        const fw::StoreObject s = stored(t, PrefKeys::Settings);
        QVERIFY(s->isA(fw::StoreValue::Kind::Data));
        QCOMPARE(s->toData(), w.settings);

        QFile f(t.plistPath());
        f.open(QIODevice::ReadOnly);
        TestProgram again(false);
        again.writePlist(f.readAll());
        again.app->_Startup();
        QCOMPARE(again.app->windows().existing<Window1>()->settings, w.settings);
    }

    void settingsOfAnotherFormatOrGarbage_doNoHarm_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("JPEG's settings") << fw::ExporterSettings{}.toText(fw::ExportFormat::JPEG);
        QTest::newRow("garbage") << QByteArray("\x00\xff\x12 not settings at all", 22);
        QTest::newRow("out of range") << QByteArray("vantrel-export-settings 1\npng.compression=99\nbmp.depth=7");
    }
    void settingsOfAnotherFormatOrGarbage_doNoHarm()
    {
        QFETCH(QByteArray, bytes);
        fw::GraphicsExporter e(nullptr);
        e.OpenExporter("PNGf");
        e.setSettings(bytes);
        QCOMPARE(e.Settings(), fw::ExporterSettings{}.toText(fw::ExportFormat::PNG));
        QTemporaryDir dir;
        e.InputPicture = patternImage(20, 10);
        e.OutputFile = dir.path() + "/x.png";
        QCOMPARE(e.Export(), 0);
        QCOMPARE(QImage(e.OutputFile).size(), QSize(20, 10));
    }

    void anExporterNeverOpened_writesNothing()
    {
        fw::GraphicsExporter e(nullptr);
        e.OpenExporter("png "); // codes are exact
        QTemporaryDir dir;
        e.InputPicture = patternImage(5, 5);
        e.OutputFile = dir.path() + "/x";
        QVERIFY(e.Export() < 0);
        QVERIFY(!e.RequestSettings());
        QCOMPARE(e.GetDefaultFileNameExtension(), QString());
        QVERIFY(!QFile::exists(e.OutputFile));
    }

    void aPictureBeyondImageMagicksLimits_neverReachesIt()
    {
        fw::GraphicsExporter e(nullptr);
        e.OpenExporter("TPIC");
        QTemporaryDir dir;
        e.InputPicture = QImage(17000, 8, QImage::Format_RGB32); // wider than its 16K limit
        e.InputPicture.fill(Qt::red);
        e.OutputFile = dir.path() + "/wide.tga";
        QCOMPARE(e.writerFor(e.InputPicture), fw::GraphicsExporter::Writer::None);
        QVERIFY(e.Export() < 0); // and the process is still here
        e.OpenExporter("JPEG"); // Qt takes what ImageMagick can't
        e.OutputFile = dir.path() + "/wide.jpg";
        QCOMPARE(e.Export(), 0);
    }

    // Save as over what the user had: the file keeps its mode, a link keeps leading to the file
    // it led to, and the file's other names show the new picture too.
    void saveAsOverAFile_keepsWhatTheUserHad_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::newRow("a private file keeps mode 0600") << "private";
        QTest::newRow("a symbolic link is written through") << "symlink";
        QTest::newRow("a hard link's other name is kept") << "hardlink";
    }
    void saveAsOverAFile_keepsWhatTheUserHad()
    {
        QFETCH(QString, kind);
        QTemporaryDir dir;
        const QString target = dir.path() + "/real.png", chosen = dir.path() + "/chosen.png";
        QFile old(target);
        QVERIFY(old.open(QIODevice::WriteOnly));
        old.write("the old picture");
        old.close();
        QFile::setPermissions(target, QFile::ReadOwner | QFile::WriteOwner);
        if (kind == "symlink") QVERIFY(QFile::link("real.png", chosen));
        if (kind == "hardlink") QVERIFY(::link(QFile::encodeName(target), QFile::encodeName(chosen)) == 0);
        fw::GraphicsExporter e(nullptr);
        e.OpenExporter("PNGf");
        e.InputPicture = patternImage(20, 10);
        e.OutputFile = kind == "private" ? target : chosen;
        QCOMPARE(e.Export(), 0);
        QCOMPARE(QImage(target).size(), QSize(20, 10));
        struct stat st = {};
        QCOMPARE(::stat(QFile::encodeName(target), &st), 0);
        QCOMPARE(int(st.st_mode & 0777), 0600);
        if (kind == "symlink") QCOMPARE(QFileInfo(chosen).symLinkTarget(), target);
        if (kind == "hardlink") QCOMPARE(QFileInfo(chosen).size(), QFileInfo(target).size());
        QCOMPARE(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden).size(), kind == "private" ? 1 : 2);
    }

    // The name Save found can be taken before the file lands: what arrived stays intact and the
    // capture goes under the next free name.
    void save_aFileThatTookTheNameMeanwhileIsNeverReplaced()
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
        QFile planted(e.OutputFile); // arrives after the search, before the rename
        QVERIFY(planted.open(QIODevice::WriteOnly));
        planted.write("someone else's");
        planted.close();
        QCOMPARE(output::exportUnderFreeName(e, search), 0);
        QVERIFY(planted.open(QIODevice::ReadOnly));
        QCOMPARE(planted.readAll(), QByteArray("someone else's"));
        QCOMPARE(QImage(dir.filePath("Capture1.jpg")).size(), QSize(20, 10));
    }

    // A writer killed between its write and its rename leaves a temporary file; the next write
    // in that folder removes it. The default folder, once removed, is not made again.
    void aKilledWritersLeftovers_goAtTheNextWrite_andAMissingFolderStaysMissing()
    {
        QTemporaryDir dir;
        const QByteArray big(256 << 20, 'x');
        const pid_t child = ::fork();
        if (child == 0) {
            fw::writeNewFile(dir.filePath("Capture.jpg"), big);
            ::_exit(0);
        }
        auto leftovers = [&] {
            QStringList names = QDir(dir.path()).entryList(QDir::Files | QDir::Hidden);
            names.removeIf([](const QString &n) { return !fw::isTemporaryName(n); });
            return names.size();
        };
        QTRY_VERIFY_WITH_TIMEOUT(leftovers() == 1, 10000);
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);
        QVERIFY(!QFile::exists(dir.filePath("Capture.jpg")));
        QCOMPARE(leftovers(), 1);
        QCOMPARE(fw::writeNewFile(dir.filePath("Capture.jpg"), "picture"), fw::NewFileResult::Written);
        QCOMPARE(leftovers(), 0);

        QCOMPARE(fw::writeNewFile(dir.filePath("gone/Capture.jpg"), "picture"), fw::NewFileResult::Failed);
        QVERIFY(!QFileInfo::exists(dir.filePath("gone")));
    }

    void quickSaveName_fillsTheFirstGap_data()
    {
        QTest::addColumn<QStringList>("present");
        QTest::addColumn<QString>("extension");
        QTest::addColumn<QString>("expected");
        QTest::newRow("empty folder") << QStringList{} << "png" << "Capture.png";
        QTest::newRow("Capture.png present") << QStringList{"Capture.png"} << "png" << "Capture1.png";
        QTest::newRow("two present") << QStringList{"Capture.png", "Capture1.png"} << "png" << "Capture2.png";
        QTest::newRow("a gap is filled") << QStringList{"Capture.png", "Capture2.png"} << "png" << "Capture1.png";
        QTest::newRow("another format's files don't count") << QStringList{"Capture.jpg"} << "png" << "Capture.png";
        QTest::newRow("upper-case extension kept") << QStringList{"Capture.TGA"} << "TGA" << "Capture1.TGA";
    }
    void quickSaveName_fillsTheFirstGap()
    {
        QFETCH(QStringList, present);
        QFETCH(QString, extension);
        QFETCH(QString, expected);
        QCOMPARE(output::quickSaveName(extension, [&](const QString &n) { return present.contains(n); }),
                 expected);
    }

    void mailFileName_triesVtp1Twice()
    {
        QStringList asked;
        auto search = [&](const QStringList &present) {
            asked.clear();
            return output::mailFileName([&](const QString &n) {
                asked << n;
                return present.contains(n);
            });
        };
        QCOMPARE(search({}), QString("vtp1"));
        QCOMPARE(search({"vtp1"}), QString("vtp2"));
        QCOMPARE(asked, (QStringList{"vtp1", "vtp1", "vtp2"}));
        QCOMPARE(search({"vtp1", "vtp2", "vtp3", "vtp4", "vtp5"}), QString("vtp6"));
        QCOMPARE(output::saveAsSuggestion("TGA"), QString("capture.tga"));
    }

    void save_writesCaptureThenCapture1_hidesAndWritesItsKeys()
    {
        TestProgram t;
        Window1 &w = loaded(t);
        w.SaveTB_Action();
        QVERIFY(QFile::exists(t.home.path() + "/Desktop/Capture.jpg"));
        QVERIFY(!w.isVisible());
        QCOMPARE(t.dialogsShown.size(), 1);
        loaded(t);
        t.shiftDown = true; // Save does not look at Shift
        w.SaveTB_Action();
        QVERIFY(QFile::exists(t.home.path() + "/Desktop/Capture1.jpg"));
        QVERIFY(!w.isVisible());
        QCOMPARE(t.dialogsShown.size(), 1);
        QVERIFY(stored(t, PrefKeys::Settings)->isA(fw::StoreValue::Kind::Data));
        QCOMPARE(stored(t, PrefKeys::LastScale)->toString(), QString("100"));
        QCOMPARE(stored(t, PrefKeys::LastFormat)->toString(), QString("JPEG"));
    }

    void save_aCancelledSettingsDialogStillWritesAndStores()
    {
        TestProgram t;
        t.confirmSettings = false;
        Window1 &w = loaded(t);
        w.SaveTB_Action();
        QVERIFY(QFile::exists(t.home.path() + "/Desktop/Capture.jpg"));
        QVERIFY(!w.settings.isEmpty());
    }

    void saveAs_suggestsLowerCase_shiftAtTheClickKeepsItOpen_cancelWritesNothing()
    {
        TestProgram t;
        Window1 &w = loaded(t);
        prefwin::instance().PopupMenu1->setCurrentIndex(3); // Photoshop
        t.saveAsAnswer.clear();
        w.SaveasTB_Action();
        QCOMPARE(t.saveAsShown, QStringList{t.home.path() + "/Desktop|capture.psd"});
        QVERIFY(w.isVisible());
        QVERIFY(!stored(t, PrefKeys::LastFormat));
        t.saveAsAnswer = t.home.path() + "/chosen name.png"; // any extension; Photoshop is written
        t.shiftDown = true;
        w.SaveasTB_Action();
        QVERIFY(w.isVisible());
        QFile written(t.saveAsAnswer);
        QVERIFY(written.open(QIODevice::ReadOnly));
        QCOMPARE(written.read(4), QByteArray("8BPS"));
        QCOMPARE(stored(t, PrefKeys::LastFormat)->toString(), QString("Photoshop"));
    }

    void mail_eachRowGetsItsScriptAndPathForm_data()
    {
        QTest::addColumn<int>("row");
        QTest::addColumn<QString>("script");
        QTest::addColumn<bool>("url");
        QTest::newRow("default mailer") << 0 << "168" << false;
        QTest::newRow("Thunderbird row") << 1 << "170" << true;
        QTest::newRow("Evolution row") << 2 << "169" << true;
        QTest::newRow("no selection") << -1 << "" << false;
    }
    void mail_eachRowGetsItsScriptAndPathForm()
    {
        QFETCH(int, row);
        QFETCH(QString, script);
        QFETCH(bool, url);
        TestProgram t;
        const QString odd = t.home.path() + "/tmp/it's \"odd\", zoë & co";
        QDir().mkpath(odd);
        QFile::setPermissions(odd, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        t.services->temporaryFolder = [odd] { return odd; };
        Window1 &w = loaded(t);
        w.settings = fw::ExporterSettings{}.toText(fw::ExportFormat::JPEG);
        prefwin::instance().emaildefault->setCurrentIndex(row);
        t.runner->calls.clear();
        w.MailTB_Action();
        const QString file = odd + "/vtp1";
        QVERIFY(QFile::exists(file));
        QVERIFY(!w.isVisible());
        if (script.isEmpty()) {
            QVERIFY(t.runner->calls.isEmpty());
            return;
        }
        QCOMPARE(t.runner->calls.size(), 1);
        const QStringList argv = t.runner->calls.first();
        QCOMPARE(argv.first(), t.bundlePath() + "/Contents/Resources/Scripts/" + script);
        QCOMPARE(argv.size(), 2);
        if (url) {
            QVERIFY(argv[1].startsWith("file:///"));
            QVERIFY(!argv[1].contains('\'') && !argv[1].contains(',') && !argv[1].contains(' '));
            QCOMPARE(QUrl(argv[1]).toLocalFile(), file);
        } else {
            QCOMPARE(argv[1], file);
        }
        QVERIFY(stored(t, PrefKeys::Settings)->isA(fw::StoreValue::Kind::String));
    }

    // The real mail scripts, with stand-ins of the mail programs on PATH that decode what they get
    // the way the real ones do: every odd path reaches the mail program intact.
    void mailScripts_deliverAwkwardPathsIntact_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("percent and hash") << "100% #1 %41.png";
        QTest::newRow("query characters") << "a&b=c+d;e?f";
        QTest::newRow("blanks and quotes") << "it's \"quoted\", ok  twice";
        QTest::newRow("not ASCII") << "zoë ✓ 写真";
    }
    void mailScripts_deliverAwkwardPathsIntact()
    {
        QFETCH(QString, name);
        QTemporaryDir dir;
        QDir().mkpath(dir.filePath("bin"));
        for (const char *mailer : {"xdg-email", "thunderbird", "evolution"}) {
            // Like a real mail program: it takes a moment, and hands over to a child that is
            // not ready when it exits.
            QFile fake(dir.filePath(QString("bin/") + mailer));
            QVERIFY(fake.open(QIODevice::WriteOnly));
            fake.write("#!/bin/sh\nsleep 0.1\n(sleep 0.2; printf '%s\\n' \"$@\" > \"$0.log.tmp\" && mv \"$0.log.tmp\" \"$0.log\") &\nexit 0\n");
            fake.close();
            fake.setPermissions(fake.permissions() | QFile::ExeOwner);
        }
        const QString path = dir.filePath(name);
        auto run = [&](const char *id, const QString &arg, const char *mailer) -> QStringList {
            QProcess p;
            QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
            env.insert("PATH", dir.filePath("bin") + ":/usr/bin:/bin");
            p.setProcessEnvironment(env);
            p.start(QStringLiteral(VANTREL_BUILT_RESOURCES "/Scripts/") + id, {arg});
            p.waitForFinished();
            QFile log(dir.filePath(QString("bin/") + mailer + ".log"));
            if (!QTest::qWaitFor([&] { return log.exists(); }, 5000)) return {};
            log.open(QIODevice::ReadOnly);
            return QString::fromUtf8(log.readAll()).split('\n', Qt::SkipEmptyParts);
        };
        QCOMPARE(run("168", output::unixPath(path), "xdg-email"), (QStringList{"--attach", path}));
        const QStringList tb = run("170", output::absolutePath(path), "thunderbird");
        QCOMPARE(tb.size(), 2);
        QVERIFY(tb[1].startsWith("attachment='") && tb[1].endsWith('\''));
        QCOMPARE(QUrl::fromEncoded(tb[1].mid(12).chopped(1).toUtf8()).toLocalFile(), path);
        // Evolution decodes the value once, then opens it as a URI, which decodes again.
        const QStringList ev = run("169", output::absolutePath(path), "evolution");
        QCOMPARE(ev.size(), 1);
        QVERIFY(ev[0].startsWith("mailto:?attach="));
        const QString once = QUrl::fromPercentEncoding(ev[0].mid(15).toUtf8());
        QCOMPARE(QUrl::fromEncoded(once.toUtf8()).toLocalFile(), path);
    }

    void mail_settingsAskedEachTimeUntilSaved_shiftAtTheEndKeepsItOpen()
    {
        TestProgram t;
        Window1 &w = loaded(t);
        w.MailTB_Action();
        loaded(t);
        t.shiftDown = true;
        w.MailTB_Action();
        QCOMPARE(t.dialogsShown.size(), 2);
        QVERIFY(w.settings.isEmpty());
        QVERIFY(w.isVisible());
        QVERIFY(QFile::exists(t.home.path() + "/tmp/vtp2"));
    }

    void mail_aPlantedLinkIsNeverWrittenThrough()
    {
        TestProgram t;
        const QString target = t.home.path() + "/precious";
        QFile f(target);
        f.open(QIODevice::WriteOnly);
        f.write("keep me");
        f.close();
        QFile::link(target, t.home.path() + "/tmp/vtp1");
        QFile::link(t.home.path() + "/nowhere", t.home.path() + "/tmp/vtp2"); // dangling
        Window1 &w = loaded(t);
        w.MailTB_Action();
        f.open(QIODevice::ReadOnly);
        QCOMPARE(f.readAll(), QByteArray("keep me"));
        QVERIFY(!QFile::exists(t.home.path() + "/nowhere"));
        QVERIFY(QFileInfo(t.home.path() + "/tmp/vtp3").isFile());
    }

    void privateTemporaryFolder_refusesALinkAndTightensItsMode()
    {
        QTemporaryDir dir;
        const QString runtime = dir.path() + "/runtime";
        QDir().mkpath(runtime);
        QFile::setPermissions(runtime, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        qputenv("XDG_RUNTIME_DIR", runtime.toUtf8());
        QDir().mkpath(dir.path() + "/elsewhere");
        QFile::link(dir.path() + "/elsewhere", runtime + "/Vantrel");
        QCOMPARE(fw::privateTemporaryFolder(), QString());
        QFile::remove(runtime + "/Vantrel");
        QDir().mkpath(runtime + "/Vantrel");
        QFile::setPermissions(runtime + "/Vantrel", QFile::Permissions(0x7777));
        QCOMPARE(fw::privateTemporaryFolder(), runtime + "/Vantrel");
        QCOMPARE(int(QFileInfo(runtime + "/Vantrel").permissions() & 0x0077), 0);
        qunsetenv("XDG_RUNTIME_DIR");
    }

    void copy_putsTheScaledCaptionedPicture_andTurnsSettingsIntoText()
    {
        TestProgram t;
        Window1 &w = loaded(t);
        w.settings = "vantrel-export-settings 1\njpeg.quality=50\n";
        w.scaleField->setText("50");
        w.captionText->setText("Hello");
        t.shiftDown = true;
        w.ToolbarItem1_Action();
        QVERIFY(w.isVisible());
        const QImage clip = QGuiApplication::clipboard()->image();
        QCOMPARE(clip.convertToFormat(QImage::Format_RGB32), w.getoutputimage().convertToFormat(QImage::Format_RGB32));
        QCOMPARE(stored(t, PrefKeys::Settings)->toString(), QString::fromUtf8(w.settings));
        QCOMPARE(stored(t, PrefKeys::LastScale)->toString(), QString("50"));
        t.shiftDown = false;
        w.ToolbarItem1_Action();
        QVERIFY(!w.isVisible());
        QVERIFY(t.dialogsShown.isEmpty());

        QFile f(t.plistPath());
        f.open(QIODevice::ReadOnly);
        TestProgram again(false);
        again.writePlist(f.readAll());
        again.app->_Startup();
        QVERIFY2(again.app->windows().existing<Window1>()->settings.isEmpty(), "text settings are not read");
    }

    void toolbar_itemsInOrder_recentTogglesTheDrawer()
    {
        TestProgram t;
        Window1 &w = loaded(t);
        QStringList texts;
        for (QAction *a : w.toolBar->actions())
            texts << (w.toolBar->widgetForAction(a) == w.StandardToolbarItem1 ? "<space>" : a->text());
        QCOMPARE(texts, (QStringList{"Save", "Save as", "E-Mail", "Copy", "<space>", "Recent", "Preferences"}));
        for (QAction *a : {w.SaveTB, w.SaveasTB, w.MailTB, w.ToolbarItem1, w.ToolbarItem3, w.ToolbarItem2})
            QVERIFY(!a->icon().isNull());
        QVERIFY(!recentwin::instance().isVisible());
        w.ToolbarItem3->trigger();
        QVERIFY(recentwin::instance().isVisible());
        w.ToolbarItem3->trigger();
        QVERIFY(!recentwin::instance().isVisible());
    }

    void firstStart_theFormatListOpensTheExporterForItsFirstRow()
    {
        TestProgram t;
        Window1 &w = loaded(t);
        QCOMPARE(w.exporter->format(), fw::ExportFormat::JPEG);
        prefwin::instance().PopupMenu1->setCurrentIndex(1);
        QCOMPARE(w.exporter->format(), fw::ExportFormat::TIFF);
        QCOMPARE(w.exporter->GetDefaultFileNameExtension(), QString("tif"));
    }
};

QTEST_MAIN(OutputTest)
#include "tst_output.moc"
