#include "output/Commands.h"

#include "output/Source.h"
#include "output/export/ExportSettingsDialog.h"
#include "platform/core/Failure.h"
#include "platform/core/Logging.h"
#include "prefs/Preferences.h"
#include "prefs/Session.h"
#include "prefs/prefwin.h"

namespace output {

Commands::Commands(fw::Services &services, Session &session, Preferences &prefs, Source &source)
    : settingsDialog([](fw::ExportFormat f, fw::ExporterSettings &s) {
          return runExportSettingsDialog(f, s);
      }),
      m_services(services), m_session(session), m_prefs(prefs), m_source(source)
{
    exporter =
        std::make_unique<fw::GraphicsExporter>([this](fw::ExportFormat f, fw::ExporterSettings &s) {
            return settingsDialog && settingsDialog(f, s);
        });
    // The format chosen in the preferences opens the exporter for its code.
    fw::connectGuarded(&prefs, &Preferences::formatChanged, this, [this] {
        exporter->OpenExporter(m_prefs.formatCode());
        qCDebug(lcOutput) << "exporter opened for" << m_prefs.formatCode();
    });
    fw::connectGuarded(&session, &Session::exporterSettingsRequested, this,
                       [this] { PushButton2_Action(); });
}

Commands::~Commands() = default;

void Commands::settingsStep(bool storeRequested)
{
    if (!m_session.settings.isEmpty()) {
        exporter->setSettings(m_session.settings);
        return;
    }
    qCDebug(lcOutput) << "asking for the exporter's settings";
    // A cancelled dialog goes on like a confirmed one, with the settings as they stand.
    (void)exporter->RequestSettings();
    if (!storeRequested) return;
    m_session.settings = exporter->Settings();
    // No synchronise of its own: the first string write after the export flushes it.
    fw::nilCheck(m_prefs.MyPref.get())
        ->SetAppValue(PrefKeys::Settings.str(), fw::NewCFBinaryData(m_session.settings),
                      m_prefs.appname);
}

void Commands::writeOutputKeys(bool withSettings)
{
    m_prefs.prefaddstringvalue(PrefKeys::LastScale, m_source.scaleText());
    if (withSettings) m_prefs.prefaddstringvalue(PrefKeys::Settings, m_session.settings);
    m_prefs.prefaddstringvalue(PrefKeys::LastFormat, prefwin::live().formatLabel());
}

void Commands::PushButton2_Action()
{
    if (!exporter) return;
    exporter->setSettings(m_session.settings);
    if (!exporter->RequestSettings()) return;
    m_session.settings = exporter->Settings();
    fw::CFPreferences &store = *fw::nilCheck(m_prefs.MyPref.get());
    store.SetAppValue(PrefKeys::Settings.str(), fw::NewCFBinaryData(m_session.settings),
                      m_prefs.appname);
    store.AppSynchronize(m_prefs.appname);
}

void Commands::logExport(const char *command, fw::ExportStatus status) const
{
    if (status == fw::ExportStatus::Written)
        qCDebug(lcOutput) << command << "wrote" << exporter->OutputFile;
    else
        qCWarning(lcOutput) << command << "failed:" << fw::describe(status) << exporter->OutputFile;
}

} // namespace output
