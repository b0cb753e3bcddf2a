#include "TestSupport.h"

#include "editor/Window1.h"

#include <QMimeData>
#include <QPainter>
#include <QtEndian>

TestProgram::TestProgram(bool start)
{
    for (const char *sub : {"/config", "/Desktop", "/Vantrel.app/Contents/MacOS"})
        QDir().mkpath(home.path() + sub);
    qputenv("HOME", home.path().toUtf8());
    qputenv("XDG_CONFIG_HOME", configFolder().toUtf8());
    qputenv("XDG_DESKTOP_DIR", (home.path() + "/Desktop").toUtf8());
    writeFile(bundlePath() + "/Contents/Info.plist",
              "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict><key>CFBundleName</key>"
              "<string>Vantrel</string><key>CFBundleExecutable</key><string>Vantrel</string></"
              "dict></plist>\n");
    // The toolbar's pictures and the stored scripts, as the build made them.
    for (const QString sub : {"Toolbar", "Scripts"}) {
        const QDir from(QStringLiteral(VANTREL_BUILT_RESOURCES) + "/" + sub);
        QDir().mkpath(bundlePath() + "/Contents/Resources/" + sub);
        for (const QString &f : from.entryList(QDir::Files))
            QFile::copy(from.filePath(f), bundlePath() + "/Contents/Resources/" + sub + "/" + f);
    }
    services = std::make_unique<fw::Services>(fw::Bundle(bundlePath() + "/Contents/MacOS"),
                                              configFolder());
    services->commands.reset(runner = new FakeRunner);
    services->hotKeys.reset(keys = new FakeHotKeys);
    services->osVersionString = [] { return QStringLiteral("Mac OS X 10.5.8"); };
    services->shiftKeyDown = [this] { return shiftDown; };
    services->saveAsDialog = [this](QWidget *, const QString &folder, const QString &suggested) {
        saveAsShown << (folder + "|" + suggested);
        return saveAsAnswer;
    };
    QDir().mkpath(home.path() + "/tmp");
    QFile::setPermissions(home.path() + "/tmp",
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    services->temporaryFolder = [this] { return home.path() + "/tmp"; };
    prefs = std::make_unique<Preferences>(services->preferenceDomains);
    session = std::make_unique<Session>();
    app = std::make_unique<RecordingApp>(*services, *prefs, *session);
    app->commands().settingsDialog = [this](fw::ExportFormat f, fw::ExporterSettings &) {
        dialogsShown << f;
        return confirmSettings;
    };
    prefs->msgBox = [this](const QString &t) { app->MsgBox(t); };
    QGuiApplication::clipboard()->clear();
    if (start) app->_Startup();
}

TestProgram::~TestProgram()
{
    app.reset();
    session.reset();
    prefs.reset();
    services.reset();
}

void TestProgram::captureGivesBytes(const QByteArray &bytes, const QString &mime)
{
    runner->onRun = [bytes, mime](const QStringList &) {
        auto *md = new QMimeData;
        md->setData(mime, bytes);
        QGuiApplication::clipboard()->setMimeData(md);
    };
}

void TestProgram::pressHotKey()
{
    keys->press(fw::OSTypeFromString("sccp"), 1);
    QCoreApplication::processEvents();
}

Window1 &TestProgram::capture(const QImage &picture)
{
    runner->onRun = [picture](const QStringList &) {
        QGuiApplication::clipboard()->setImage(picture);
    };
    pressHotKey();
    return Window1::instance();
}

fw::StoreObject TestProgram::stored(const QString &key) const
{
    fw::PreferenceDomains fresh(configFolder());
    return fw::CFPreferences(fresh).CopyAppValue(key, "com.Morlane.Vantrel");
}

QImage patternImage(int width, int height)
{
    QImage img(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            img.setPixel(x, y, qRgb((x * 7 + y) % 256, (y * 5 + x * 3) % 256, (x ^ y) % 256));
    return img;
}

QImage screenLike(int w, int h)
{
    QImage img(w, h, QImage::Format_RGB32);
    img.fill(QColor(52, 101, 164));
    QPainter p(&img);
    QLinearGradient g(0, 0, w, h / 3);
    g.setStops({{0, QColor(30, 60, 120)}, {1, QColor(90, 140, 200)}});
    p.fillRect(QRect(0, 0, w, h / 3), g);
    for (int k = 0; k < 3; ++k) {
        const QRect r(20 + k * w / 4, 30 + k * h / 6, w / 2, h / 2);
        p.fillRect(r, QColor(245, 245, 245));
        p.fillRect(r.x(), r.y(), r.width(), 20, QColor(60, 60, 60));
        for (int line = 0; line < r.height() / 16 - 2; ++line)
            p.drawText(r.x() + 6, r.y() + 36 + line * 16,
                       QString("Line %1 of some document text").arg(line));
    }
    return img;
}

QByteArray pngHeaderClaiming(quint32 width, quint32 height)
{
    auto be32 = [](quint32 v) {
        return v = qToBigEndian(v), QByteArray(reinterpret_cast<const char *>(&v), 4);
    };
    auto chunk = [&](const QByteArray &typed) { // length, type and body, CRC-32
        quint32 c = 0xffffffffu;
        for (char ch : typed) {
            c ^= quint8(ch);
            for (int k = 0; k < 8; ++k)
                c = (c >> 1) ^ (0xedb88320u & (0u - (c & 1u)));
        }
        return be32(quint32(typed.size() - 4)) + typed + be32(~c);
    };
    return QByteArray("\x89PNG\r\n\x1a\n", 8) +
           chunk("IHDR" + be32(width) + be32(height) + QByteArray("\x08\x02\0\0\0", 5)) +
           chunk("IDAT" + QByteArray(16, '\0')) + chunk("IEND");
}

void writeFile(const QString &path, const QByteArray &bytes)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile f(path);
    QVERIFY(f.open(QIODevice::WriteOnly) && f.write(bytes) == bytes.size());
}

QByteArray readFile(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray("(unreadable)");
}
