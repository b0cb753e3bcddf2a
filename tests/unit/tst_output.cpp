// Everything that leaves the editor: the seven formats and their settings as other readers see
// them, the keys each command writes, the mail scripts and the clipboard.

#include "TestSupport.h"

#include "editor/Window1.h"
#include "output/OutputNaming.h"
#include "output/export/GraphicsExporter.h"
#include "prefs/prefwin.h"

#include <QComboBox>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLineEdit>
#include <QPrinter>
#include <QProcess>

namespace {
// What readers that did not write the file find in it (PIL; ImageMagick's command line only for
// PICT), compared against the expected picture.
QJsonObject readBack(const QString &file, const QImage &expected)
{
    const QString reference = file + ".reference.ppm";
    expected.convertToFormat(QImage::Format_RGB888).save(reference, "PPM");
    QProcess p;
    p.start("/usr/bin/python3",
            {QStringLiteral(VANTREL_TEST_SOURCE_DIR "/unit/readback.py"), file, reference});
    p.waitForFinished(60000);
    if (p.exitCode() != 0) qWarning() << p.readAllStandardError();
    return QJsonDocument::fromJson(p.readAllStandardOutput()).object();
}

QJsonValue descriptionIn(const QString &file, const QString &reader)
{
    return readBack(file, patternImage(2, 2))["description"].toObject()[reader];
}
} // namespace

class OutputTest : public QObject {
    Q_OBJECT
private slots:
    // Every setting of every format reaches the file, as other programs read it.
    void everyFormatAndSetting_reachesTheFile()
    {
        const QByteArray h = "vantrel-export-settings 1\n";
        // format row, settings, what the reader calls it, mean difference allowed, key=value facts
        const struct {
            int row;
            QByteArray settings;
            QString format;
            double tolerance;
            QString facts;
        } cases[] = {
            {0, "", "JPEG", 4.0, "quality=85 progressive=false dpi=72"},
            {0, h + "jpeg.quality=40\njpeg.progressive=1", "JPEG", 8.0,
             "quality=40 progressive=true"},
            {1, "", "TIFF", 0.0, "compression=tiff_lzw dpi=72"},
            {1, h + "tiff.compression=none", "TIFF", 0.0, "compression=raw"},
            {1, h + "tiff.compression=zip", "TIFF", 0.0, "compression=tiff_adobe_deflate"},
            {2, "", "PICT", 0.0, "dpi=72"},
            {3, "", "PSD", 0.0, "rle=true dpi=72"},
            {3, h + "psd.rle=0", "PSD", 0.0, "rle=false"},
            {4, h + "png.compression=0", "PNG", 0.0, "minFraction=1 dpi=72"},
            {4, h + "png.compression=9", "PNG", 0.0, "maxFraction=0.1"},
            {4, h + "png.interlaced=1", "PNG", 0.0, "interlaced=true maxFraction=0.15"},
            {5, "", "BMP", 0.0, "bits=24 dpi=72"},
            {5, h + "bmp.depth=32", "BMP", 0.0, "bits=32 dpi=72"},
            {6, "", "TGA", 0.0, "rle=true top_left=true"},
            {6, h + "targa.rle=0", "TGA", 0.0, "rle=false top_left=true"},
        };
        TestProgram t;
        Window1 &w = t.capture(screenLike(640, 400));
        fw::GraphicsExporter &e = *t.commands().exporter;
        w.scaleField->setText("50");
        w.captionText->setText("Caption");
        for (const auto &c : cases) {
            prefwin::instance().PopupMenu1->setCurrentIndex(c.row);
            e.setSettings(c.settings);
            e.InputPicture = w.getoutputimage();
            e.OutputFile = t.home.path() + "/out." + e.GetDefaultFileNameExtension();
            QCOMPARE(e.Export(), fw::ExportStatus::Written);
            const QJsonObject got = readBack(e.OutputFile, w.getoutputimage());
            const QByteArray all = QJsonDocument(got).toJson(QJsonDocument::Compact);
            QCOMPARE(got["format"].toString(), c.format);
            QCOMPARE(got["size"].toArray(), (QJsonArray{320, 200}));
            QVERIFY2(got["difference"].toDouble(99) <= c.tolerance, all);
            const double bytes = got["bytes"].toDouble(), raw = 3.0 * 320 * 200;
            for (const QString &fact : c.facts.split(' ')) {
                const QString key = fact.section('=', 0, 0), value = fact.section('=', 1);
                if (key == "maxFraction")
                    QVERIFY2(bytes <= raw * value.toDouble(), all);
                else if (key == "minFraction")
                    QVERIFY2(bytes >= raw * value.toDouble(), all);
                else if (key == "dpi")
                    QVERIFY2(qAbs(got[key].toDouble() - 72) < 1.5, all);
                else
                    QVERIFY2(got[key].toVariant().toString() == value,
                             qPrintable(key + ": " + all));
            }
        }
    }

    // The caption goes into each format as its description, as other readers find it (Targa's
    // comments hold 320 bytes); nothing else in the file changes.
    void caption_isEachFormatsDescription_andChangesNothingElse()
    {
        const QString captions[] = {"A plain caption", "Zürich — 東京 🚀",
                                    QString("Zürich & <b> «東京» x|").repeated(100)}; // 2,000
        // The readers that find it, by format row.
        const QString readers[] = {"exif xmp", "exif xmp", "", "xmp", "pil png", "", "tga"};
        TestProgram t;
        Window1 &w = t.capture(screenLike(160, 100));
        w.captionText->setText("Caption");
        for (int row = 0; row < 7; ++row) {
            prefwin::instance().PopupMenu1->setCurrentIndex(row);
            fw::GraphicsExporter &e = *t.commands().exporter;
            e.InputPicture = w.getoutputimage();
            e.OutputFile = t.home.path() + "/plain." + e.GetDefaultFileNameExtension();
            e.Description.clear();
            QCOMPARE(e.Export(), fw::ExportStatus::Written);
            QJsonObject plain = readBack(e.OutputFile, e.InputPicture);
            const QJsonValue plainBytes = plain.take("bytes");
            QCOMPARE(plain.take("description").toObject(), QJsonObject());
            for (const QString &caption : captions) {
                e.Description = caption;
                e.OutputFile = t.home.path() + "/described." + e.GetDefaultFileNameExtension();
                QCOMPARE(e.Export(), fw::ExportStatus::Written);
                QJsonObject got = readBack(e.OutputFile, e.InputPicture);
                const QJsonObject found = got.take("description").toObject();
                QCOMPARE(found.keys().join(' '), readers[row]);
                for (const QJsonValue &value : found) {
                    const QString v = value.toString(); // Targa's may be the first 320 bytes
                    QVERIFY2(caption.startsWith(v) && v.size() >= qMin(caption.size(), 200),
                             qPrintable(v));
                    QVERIFY(v == caption || found.contains("tga"));
                }
                // Pixels, size, dpi and settings as read are the same; BMP and PICT get nothing.
                QCOMPARE(got.take("bytes") == plainBytes, readers[row].isEmpty());
                QCOMPARE(got, plain);
            }
        }
    }

    // Another format's settings, garbage and values out of range give the defaults; a picture
    // beyond ImageMagick's limits never reaches it.
    void exporter_refusesWhatItCannotDo()
    {
        QTemporaryDir dir;
        fw::GraphicsExporter e(nullptr);
        e.InputPicture = patternImage(20, 10);
        for (const QByteArray &bytes :
             {fw::ExporterSettings{}.toText(fw::ExportFormat::JPEG),
              QByteArray("\x00\xff\x12 not settings at all", 22),
              QByteArray("vantrel-export-settings 1\npng.compression=99\nbmp.depth=7")}) {
            e.OpenExporter("PNGf");
            e.setSettings(bytes);
            QCOMPARE(e.Settings(), fw::ExporterSettings{}.toText(fw::ExportFormat::PNG));
            e.OutputFile = dir.path() + "/x.png";
            QCOMPARE(e.Export(), fw::ExportStatus::Written);
            QCOMPARE(QImage(e.OutputFile).size(), QSize(20, 10));
        }
        e.OpenExporter("TPIC");
        e.InputPicture = QImage(17000, 8, QImage::Format_RGB32); // wider than its 16K limit
        e.InputPicture.fill(Qt::red);
        e.OutputFile = dir.path() + "/wide.tga";
        QCOMPARE(e.writerFor(e.InputPicture), fw::GraphicsExporter::Writer::None);
        QCOMPARE(e.Export(), fw::ExportStatus::NotEncoded); // and the process is still here
        e.OpenExporter("JPEG");                             // Qt takes what ImageMagick can't
        e.OutputFile = dir.path() + "/wide.jpg";
        QCOMPARE(e.Export(), fw::ExportStatus::Written);
    }

    void save_writesCaptureThenCapture1AndItsKeys()
    {
        TestProgram t;
        t.confirmSettings = false; // a cancelled settings dialog still writes and stores
        Window1 &w = t.capture();
        w.captionText->setText("Saved");
        t.commands().SaveTB_Action();
        QCOMPARE(descriptionIn(t.home.path() + "/Desktop/Capture.jpg", "xmp"), QJsonValue("Saved"));
        QVERIFY(!w.isVisible());
        QVERIFY(
            t.commands().exporter->OutputFileMustBeNew); // never over a file that arrived meanwhile
        t.capture();
        t.shiftDown = true; // Save does not look at Shift
        t.commands().SaveTB_Action();
        QVERIFY(QFile::exists(t.home.path() + "/Desktop/Capture1.jpg"));
        QVERIFY(!w.isVisible());
        QCOMPARE(t.dialogsShown.size(), 1);
        QCOMPARE(t.stored(PrefKeys::Settings.str())->toData(), t.session->settings);
        QCOMPARE(t.stored(PrefKeys::LastScale.str())->toString(), QString("100"));
        QCOMPARE(t.stored(PrefKeys::LastFormat.str())->toString(), QString("JPEG"));
    }

    void saveAs_suggestsLowerCase_shiftAtTheClickKeepsItOpen_cancelWritesNothing()
    {
        TestProgram t;
        Window1 &w = t.capture();
        prefwin::instance().PopupMenu1->setCurrentIndex(3); // Photoshop
        t.commands().SaveasTB_Action();
        QCOMPARE(t.saveAsShown, QStringList{t.home.path() + "/Desktop|capture.psd"});
        QVERIFY(w.isVisible());
        QVERIFY(!t.stored(PrefKeys::LastFormat.str()));
        t.saveAsAnswer = t.home.path() + "/chosen name.png"; // any extension; Photoshop is written
        t.shiftDown = true;
        w.captionText->setText("Chosen");
        t.commands().SaveasTB_Action();
        QVERIFY(w.isVisible());
        QCOMPARE(readFile(t.saveAsAnswer).left(4), QByteArray("8BPS"));
        QCOMPARE(descriptionIn(t.saveAsAnswer, "xmp"), QJsonValue("Chosen"));
        QCOMPARE(t.stored(PrefKeys::LastFormat.str())->toString(), QString("Photoshop"));
    }

    // The settings are asked for at each mail until something saves them; Shift at the end keeps
    // the editor open; a planted link is never written through.
    void mail_asksForSettings_andNeverWritesThroughALink()
    {
        TestProgram t;
        const QString precious = t.home.path() + "/precious";
        writeFile(precious, "keep me");
        QFile::link(precious, t.home.path() + "/tmp/vtp1");
        QFile::link(t.home.path() + "/nowhere", t.home.path() + "/tmp/vtp2"); // dangling
        Window1 &w = t.capture();
        w.captionText->setText("Mailed");
        t.commands().MailTB_Action();
        QVERIFY(!w.isVisible() && t.commands().exporter->OutputFileMustBeNew);
        QCOMPARE(descriptionIn(t.home.path() + "/tmp/vtp3", "exif"), QJsonValue("Mailed"));
        QCOMPARE(t.runner->calls.last(),
                 (QStringList{t.bundlePath() + "/Contents/Resources/Scripts/168",
                              t.home.path() + "/tmp/vtp3"}));
        t.capture();
        t.shiftDown = true;
        t.commands().MailTB_Action();
        QCOMPARE(t.dialogsShown.size(), 2);
        QVERIFY(t.session->settings.isEmpty() && w.isVisible());
        QCOMPARE(readFile(precious), QByteArray("keep me"));
        QVERIFY(!QFile::exists(t.home.path() + "/nowhere"));
        QVERIFY(QFileInfo(t.home.path() + "/tmp/vtp3").isFile() &&
                QFileInfo(t.home.path() + "/tmp/vtp4").isFile());
    }

    // Printing sends the capture itself, without its scale or caption, to the page's top left.
    void print_sendsTheRawCaptureToTheTopLeft()
    {
        TestProgram t;
        const QString pdf = t.home.path() + "/page.pdf";
        t.services->printDialog = [&](QWidget *) {
            auto printer = std::make_unique<QPrinter>(QPrinter::HighResolution);
            printer->setOutputFileName(pdf);
            printer->setPageSize(QPageSize(QPageSize::Letter));
            return printer;
        };
        const QImage capture = screenLike(300, 200);
        Window1 &w = t.capture(capture);
        w.scaleField->setText("50");
        w.captionText->setText("Caption");
        Window1::instance()._FilePrint_Action();
        QCOMPARE(QProcess::execute(
                     "pdftoppm", {"-r", "72", "-png", "-singlefile", pdf, t.home.path() + "/page"}),
                 0);
        const QImage page =
            QImage(t.home.path() + "/page.png").convertToFormat(QImage::Format_RGB32);
        QCOMPARE(page.size(), QSize(612, 792)); // points
        QCOMPARE(page.pixelColor(310, 100), QColor(Qt::white));
        QCOMPARE(page.copy(0, 0, 300, 200), capture); // one to one
    }

    void copy_putsTheScaledCaptionedPicture_andTurnsSettingsIntoText()
    {
        TestProgram t;
        Window1 &w = t.capture();
        t.session->settings = "vantrel-export-settings 1\njpeg.quality=50\n";
        w.scaleField->setText("50");
        w.captionText->setText("Hello");
        t.shiftDown = true;
        t.commands().ToolbarItem1_Action();
        QVERIFY(w.isVisible());
        QCOMPARE(QGuiApplication::clipboard()->image().convertToFormat(QImage::Format_RGB32),
                 w.getoutputimage().convertToFormat(QImage::Format_RGB32));
        const QByteArray png = QGuiApplication::clipboard()->mimeData()->data("image/png");
        QVERIFY(png.contains(QByteArray("Description\0\0\0\0\0Hello", 21)));
        QCOMPARE(t.stored(PrefKeys::Settings.str())->toString(),
                 QString::fromUtf8(t.session->settings));
        QCOMPARE(t.stored(PrefKeys::LastScale.str())->toString(), QString("50"));
        t.shiftDown = false;
        t.commands().ToolbarItem1_Action();
        QVERIFY(!w.isVisible());
        QVERIFY(t.dialogsShown.isEmpty());
    }
};

QTEST_MAIN(OutputTest)
#include "tst_output.moc"
