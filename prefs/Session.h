#pragma once
// The working state that the editor, the outputs and the preferences window share for the whole
// run: the exporter's settings as an opaque text, and the folder of the quick save. The exporter
// itself belongs to the outputs; the preferences window asks for its settings dialog here.

#include <QByteArray>
#include <QDir>
#include <QObject>
#include <optional>

class Preferences;

class Session : public QObject {
    Q_OBJECT
public:
    Session();
    ~Session() override;

    // The one session of the running program.
    static Session &instance();

    QByteArray settings;               // the exporter's settings; empty when there are none yet
    std::optional<QDir> DefaultFolder; // nothing is nil

    // What the editor's creation takes from the store: settings kept as binary data (a text
    // value is skipped); for the folder, a URL of an existing folder, the Desktop when no value
    // is stored, and nil for a value that names no folder. A value of another type fails.
    void restore(Preferences &prefs, const QString &desktopFolder);

    // The preferences window's Settings button.
    void requestExporterSettings();

signals:
    void exporterSettingsRequested();
};
