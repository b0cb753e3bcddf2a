// Save (a free name in the default folder, no dialog) and Save as (the user names the file).

#include "output/Commands.h"

#include "output/OutputNaming.h"
#include "output/Source.h"
#include "platform/framework/Application.h"
#include "platform/framework/Services.h"
#include "prefs/Session.h"

namespace output {

void Commands::SaveTB_Action()
{
    if (!exporter) {
        fw::Application::instance().MsgBox(QStringLiteral("Please select a format"));
        return;
    }
    settingsStep(true);
    if (!m_session.DefaultFolder) return;
    const QDir folder = *m_session.DefaultFolder;
    auto freeName = [&] {
        return folder.filePath(
            output::quickSaveName(exporter->GetDefaultFileNameExtension(), [&](const QString &n) {
                return output::nameTaken(folder.filePath(n));
            }));
    };
    exporter->OutputFile = freeName();
    exporter->InputPicture = m_source.outputImage();
    exporter->Description = m_source.caption();
    // A file that took the name meanwhile is never replaced: the picture goes under the next
    // free name.
    exporter->OutputFileMustBeNew = true;
    logExport("Save", exportUnderFreeName(*exporter, [&] { exporter->OutputFile = freeName(); }));
    m_source.hide();
    writeOutputKeys();
}

void Commands::SaveasTB_Action()
{
    const bool keepOpen = m_services.shiftKeyDown();
    if (!exporter) {
        fw::Application::instance().MsgBox(QStringLiteral("Please select a format"));
        return;
    }
    settingsStep(true);
    const QString chosen = m_services.saveAsDialog(
        m_source.window(),
        m_session.DefaultFolder ? m_session.DefaultFolder->absolutePath() : QString(),
        output::saveAsSuggestion(exporter->GetDefaultFileNameExtension()));
    if (chosen.isEmpty()) return;
    exporter->InputPicture = m_source.outputImage();
    exporter->Description = m_source.caption();
    exporter->OutputFile = chosen;
    exporter->OutputFileMustBeNew = false;
    logExport("Save as", exporter->Export());
    if (!keepOpen) m_source.hide();
    writeOutputKeys();
}

} // namespace output
