// Everything that leaves the editor: the seven formats, the settings, the name searches, the
// keys each command writes, the mail scripts and the clipboard.

#include "TestSupport.h"

#include "editor/Window1.h"
#include "output/OutputNaming.h"
#include "platform/GraphicsExporter.h"
#include "platform/TemporaryFolder.h"
#include "prefs/prefwin.h"
#include "recent/recentwin.h"

#include <Magick++.h>
#include <QAction>
#include <QClipboard>
#include <QComboBox>
#include <QLineEdit>
#include <QPainter>
#include <QToolBar>
#include <QtTest>

namespace {

Window1 &loaded(TestProgram &t, const QImage &pic = patternImage(200, 150))
{
    t.captureGives(pic);
    t.pressHotKey();
    return Window1::instance();
}

// The file as ImageMagick reads it, as RGB32.
QImage readBack(const QString &path)
{
    Magick::Image img;
    img.read(path.toStdString());
    QImage out(int(img.columns()), int(img.rows()), QImage::Format_RGB32);
    img.write(0, 0, img.columns(), img.rows(), "BGRP", Magick::CharPixel, out.bits());
    return out;
}

// Something like a screen: smooth areas and edges, no pixel noise (which no JPEG keeps).
QImage photoLike(int w, int h)
{
    QImage img(w, h, QImage::Format_RGB32);
    QPainter p(&img);
    QLinearGradient g(0, 0, w, h);
    g.setColorAt(0, QColor(40, 90, 160));
    g.setColorAt(1, QColor(230, 210, 170));
    p.fillRect(img.rect(), g);
    p.fillRect(QRect(w / 4, h / 4, w / 3, h / 3), QColor(200, 60, 40));
    return img;
}

double meanDifference(const QImage &a, const QImage &b)
{
    double sum = 0;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x) {
            const QRgb p = a.pixel(x, y), q = b.pixel(x, y);
            sum += qAbs(qRed(p) - qRed(q)) + qAbs(qGreen(p) - qGreen(q)) + qAbs(qBlue(p) - qBlue(q));
        }
    return sum / (3.0 * a.width() * a.height());
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
    void initTestCase() { Magick::InitializeMagick(nullptr); }

    void everyFormat_writesTheCaptionedHalfSizePicture_data()
    {
        QTest::addColumn<int>("row");
        QTest::addColumn<QByteArray>("settings");
        QTest::addColumn<QString>("magick");
        QTest::addColumn<double>("tolerance");
        QTest::newRow("JPEG") << 0 << QByteArray() << "JPEG" << 4.0;
        QTest::newRow("JPEG progressive") << 0 << QByteArray("vantrel-export-settings 1\njpeg.progressive=1\njpeg.quality=90") << "JPEG" << 4.0;
        QTest::newRow("TIFF LZW") << 1 << QByteArray() << "TIFF" << 0.0;
        QTest::newRow("TIFF none") << 1 << QByteArray("vantrel-export-settings 1\ntiff.compression=none") << "TIFF" << 0.0;
        QTest::newRow("PICT") << 2 << QByteArray() << "PICT" << 0.0;
        QTest::newRow("Photoshop") << 3 << QByteArray() << "PSD" << 0.0;
        QTest::newRow("Photoshop raw") << 3 << QByteArray("vantrel-export-settings 1\npsd.rle=0") << "PSD" << 0.0;
        QTest::newRow("PNG") << 4 << QByteArray() << "PNG" << 0.0;
        QTest::newRow("PNG interlaced") << 4 << QByteArray("vantrel-export-settings 1\npng.interlaced=1") << "PNG" << 0.0;
        QTest::newRow("BMP 24") << 5 << QByteArray() << "BMP" << 0.0;
        QTest::newRow("BMP 32") << 5 << QByteArray("vantrel-export-settings 1\nbmp.depth=32") << "BMP" << 0.0;
        QTest::newRow("Targa") << 6 << QByteArray() << "TGA" << 0.0;
        QTest::newRow("Targa raw") << 6 << QByteArray("vantrel-export-settings 1\ntarga.rle=0") << "TGA" << 0.0;
    }
    void everyFormat_writesTheCaptionedHalfSizePicture()
    {
        QFETCH(int, row);
        QFETCH(QByteArray, settings);
        QFETCH(QString, magick);
        QFETCH(double, tolerance);
        TestProgram t;
        Window1 &w = loaded(t, photoLike(200, 150));
        w.scaleField->setText("50");
        w.captionText->setText("Caption");
        prefwin::instance().PopupMenu1->setCurrentIndex(row);
        w.exporter->setSettings(settings);
        w.exporter->InputPicture = w.getoutputimage();
        w.exporter->OutputFile = t.home.path() + "/out." + w.exporter->GetDefaultFileNameExtension();
        QCOMPARE(w.exporter->Export(), 0);
        Magick::Image ping;
        ping.ping(w.exporter->OutputFile.toStdString());
        QVERIFY(QString::fromStdString(ping.magick()).startsWith(magick)); // BMP reads as BMP3
        const QImage back = readBack(w.exporter->OutputFile);
        QCOMPARE(back.size(), QSize(100, 75));
        const QImage expected = w.ScaledImage.convertToFormat(QImage::Format_RGB32);
        QVERIFY2(meanDifference(back, expected) <= tolerance,
                 qPrintable(QString::number(meanDifference(back, expected))));
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
        Magick::Image ping;
        ping.ping(t.saveAsAnswer.toStdString());
        QCOMPARE(QString::fromStdString(ping.magick()), QString("PSD"));
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
        QCOMPARE(clip.convertToFormat(QImage::Format_RGB32), w.ScaledImage.convertToFormat(QImage::Format_RGB32));
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
