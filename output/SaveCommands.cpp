// Save (a free name in the default folder, no dialog) and Save as (the user names the file).

#include "editor/Window1.h"

#include "app/App.h"
#include "output/OutputNaming.h"
#include "platform/core/Failure.h"
#include "output/export/GraphicsExporter.h"
#include "platform/framework/Services.h"
#include "prefs/Preferences.h"
#include "prefs/prefwin.h"

#include <QComboBox>
#include <QLineEdit>

namespace {
void writeOutputKeys(Window1 &w)
{
    Preferences &prefs = Preferences::module();
    prefs.prefaddstringvalue(PrefKeys::LastScale, w.scaleField->text());
    prefs.prefaddstringvalue(PrefKeys::LastFormat, prefwin::instance().PopupMenu1->currentText());
}
} // namespace

void Window1::settingsStep(bool storeRequested)
{
    if (!settings.isEmpty()) {
        exporter->setSettings(settings);
        return;
    }
    // A cancelled dialog goes on like a confirmed one, with the settings as they stand.
    (void)exporter->RequestSettings();
    if (!storeRequested) return;
    settings = exporter->Settings();
    Preferences &prefs = Preferences::module();
    // No synchronise of its own: the first string write after the export flushes it.
    fw::nilCheck(prefs.MyPref.get())
        ->SetAppValue(PrefKeys::Settings.str(), fw::NewCFBinaryData(settings), prefs.appname);
}

void Window1::SaveTB_Action()
{
    if (!exporter) {
        App::instance().MsgBox(QStringLiteral("Please select a format"));
        return;
    }
    settingsStep(true);
    if (!DefaultFolder) return;
    const QDir folder = *DefaultFolder;
    auto freeName = [&] {
        return folder.filePath(output::quickSaveName(
            exporter->GetDefaultFileNameExtension(),
            [&](const QString &n) { return output::nameTaken(folder.filePath(n)); }));
    };
    exporter->OutputFile = freeName();
    exporter->InputPicture = getoutputimage();
    exporter->Description = captionText->text();
    // A file that took the name meanwhile is never replaced: the picture goes under the next
    // free name.
    exporter->OutputFileMustBeNew = true;
    [[maybe_unused]] const int status =
        output::exportUnderFreeName(*exporter, [&] { exporter->OutputFile = freeName(); });
    Hide();
    writeOutputKeys(*this);
}

void Window1::SaveasTB_Action()
{
    const bool keepOpen = services().shiftKeyDown();
    if (!exporter) {
        App::instance().MsgBox(QStringLiteral("Please select a format"));
        return;
    }
    settingsStep(true);
    const QString chosen = services().saveAsDialog(
        this, DefaultFolder ? DefaultFolder->absolutePath() : QString(),
        output::saveAsSuggestion(exporter->GetDefaultFileNameExtension()));
    if (chosen.isEmpty()) return;
    exporter->InputPicture = getoutputimage();
    exporter->Description = captionText->text();
    exporter->OutputFile = chosen;
    exporter->OutputFileMustBeNew = false;
    [[maybe_unused]] const int status = exporter->Export();
    if (!keepOpen) Hide();
    writeOutputKeys(*this);
}
