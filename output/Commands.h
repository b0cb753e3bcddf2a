#pragma once
// Everything that leaves the editor, and the one exporter it leaves through: Save, Save as,
// E-Mail, Copy, Print and Page Setup, and the exporter's settings dialog asked for by the
// preferences' Settings button. The exporter follows the format chosen in the preferences.
// The commands are split over files by concern (SaveCommands, MailCommand, CopyCommand,
// PrintCommands).

#include "output/export/GraphicsExporter.h"

#include <QObject>
#include <memory>

class Preferences;
class Session;
namespace fw {
struct Services;
}

namespace output {

class Source;

class Commands : public QObject {
    Q_OBJECT
public:
    Commands(fw::Services &services, Session &session, Preferences &prefs, Source &source);
    ~Commands() override;

    // The exporter's own settings dialog for a format; tests swap it.
    fw::GraphicsExporter::SettingsDialog settingsDialog;
    std::unique_ptr<fw::GraphicsExporter> exporter;

    void SaveTB_Action();       // Save: a free name in the default folder, no dialog
    void SaveasTB_Action();     // Save as: the user names the file
    void MailTB_Action();       // E-Mail: a new temporary file to the chosen mail program
    void ToolbarItem1_Action(); // Copy: the picture onto the clipboard
    bool _FilePrint_Action();   // the raw capture on one page
    bool _FilePageSetup_Action();
    void PushButton2_Action(); // the preferences' Settings button

private:
    // Before an export: settings asked for on first use, else given to the exporter.
    void settingsStep(bool storeRequested);
    // LastScale, the exporter's settings where asked, and LastFormat, after an output.
    void writeOutputKeys(bool withSettings = false);
    void logExport(const char *command, fw::ExportStatus status) const;

    fw::Services &m_services;
    Session &m_session;
    Preferences &m_prefs;
    Source &m_source;
};

} // namespace output
