#pragma once
// A whole program in one test process: temporary home and configuration folder, fake capture
// command, hot keys and dialogs, a recording message box, the real windows offscreen.

#include "app/App.h"
#include "platform/framework/Services.h"
#include "platform/hotkeys/HotKeyService.h"
#include "prefs/Preferences.h"
#include "prefs/Session.h"

#include <QClipboard>
#include <QDir>
#include <QGuiApplication>
#include <QTemporaryDir>
#include <QtTest>
#include <functional>
#include <memory>

class Window1;

// A picture in which every pixel differs from its neighbours, so offsets and scaling show.
QImage patternImage(int width, int height);
// Something like a screen: flat areas, window frames, lines of text, a gradient.
QImage screenLike(int width, int height);
// Bytes of a PNG file that claims a size and carries no real pixel data.
QByteArray pngHeaderClaiming(quint32 width, quint32 height);
void writeFile(const QString &path, const QByteArray &bytes); // making the folders it needs
QByteArray readFile(const QString &path);

class FakeRunner : public fw::CommandRunner {
public:
    QList<QStringList> calls;
    std::function<void(const QStringList &)> onRun;
    int run(const QStringList &argv) override
    {
        calls << argv;
        if (onRun) onRun(argv);
        return 0;
    }
};

class FakeHotKeys : public fw::HotKeyService {
public:
    struct Claim {
        int keycode, modifiers;
        quint32 signature;
        int id;
    };
    QList<Claim> claims;
    int AsciiToKeyCode(int ascii) override { return ascii; }
    void AddKey(int keycode, int modifiers, quint32 signature, int id) override
    {
        claims.append({keycode, modifiers, signature, id});
    }
    void press(quint32 signature, int id) { emit hotKeyPressed(signature, id); }
};

class RecordingApp : public App {
public:
    using App::App;
    QStringList messages;
    void MsgBox(const QString &text) override { messages << text; }
};

class TestProgram {
public:
    // start: run the start-up (which makes the editor); otherwise only the objects exist.
    explicit TestProgram(bool start = true);
    ~TestProgram();

    QString configFolder() const { return home.path() + "/config"; }
    QString plistPath() const { return configFolder() + "/com.Morlane.Vantrel.plist"; }
    QString bundlePath() const { return home.path() + "/Vantrel.app"; }
    QString autostartFolder() const { return configFolder() + "/autostart"; }
    void writePlist(const QByteArray &xml) const
    {
        writeFile(plistPath(), xml);
    } // before it is read

    // The capture command puts these bytes on the clipboard.
    void captureGivesBytes(const QByteArray &bytes, const QString &mime);
    void pressHotKey(); // delivered as the platform would
    Window1 &capture(const QImage &picture = patternImage(40, 40)); // one press that captures it
    fw::StoreObject stored(const QString &key) const; // as a fresh reader finds it on disk
    output::Commands &commands() const { return app->commands(); }

    QTemporaryDir home;
    std::unique_ptr<fw::Services> services;
    std::unique_ptr<Preferences> prefs;
    std::unique_ptr<Session> session;
    std::unique_ptr<RecordingApp> app;
    FakeRunner *runner = nullptr;
    FakeHotKeys *keys = nullptr;

    // The fakes of the dialogs and the keyboard.
    QList<fw::ExportFormat> dialogsShown;
    bool confirmSettings = true;
    bool shiftDown = false;
    QStringList saveAsShown;
    QString saveAsAnswer;
};
