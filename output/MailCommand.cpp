// E-Mail: the picture into a new file of the private temporary folder, then that file to the
// mail program chosen in the preferences.

#include "editor/Window1.h"
#include "output/MailScripts.h"

#include "app/App.h"
#include "output/OutputNaming.h"
#include "platform/core/Failure.h"
#include "output/export/GraphicsExporter.h"
#include "platform/framework/Services.h"
#include "prefs/Preferences.h"
#include "prefs/prefwin.h"

#include <QComboBox>
#include <QDir>
#include <QLineEdit>

namespace {
// Runs a stored script of the bundle with its arguments (an argv, never a shell line).
void runStoredScript(int id, const QStringList &values)
{
    if (fw::Application::ending()) return; // no mail program starts while the session ends
    fw::Services &services = App::instance().services();
    const QString script = services.bundle.resources() + "/Scripts/" + QString::number(id);
    services.commands->run(QStringList{script} + values);
}

QString temporaryFolder()
{
    const QString folder = App::instance().services().temporaryFolder();
    if (folder.isEmpty()) throw fw::NilObjectException();
    return folder;
}
} // namespace

void AttachMail(const QStringList &values) { runStoredScript(168, values); }
void AttachEntourage(const QStringList &values) { runStoredScript(169, values); }
void AttachUdora(const QStringList &values) { runStoredScript(170, values); }

void Window1::MailTB_Action()
{
    // The name comes first, also when there turns out to be no exporter.
    auto freeName = [] {
        const QString name = output::mailFileName(
            [](const QString &n) { return output::nameTaken(QDir(temporaryFolder()).filePath(n)); });
        return QDir(temporaryFolder()).filePath(name);
    };
    QString file = freeName();
    if (!exporter) {
        App::instance().MsgBox(QStringLiteral("Please select a format"));
        return;
    }
    settingsStep(false);
    exporter->InputPicture = getoutputimage();
    exporter->Description = captionText->text();
    exporter->OutputFile = file;
    exporter->OutputFileMustBeNew = true;
    [[maybe_unused]] const int status =
        output::exportUnderFreeName(*exporter, [&] { exporter->OutputFile = file = freeName(); });

    Preferences &prefs = Preferences::module();
    prefs.prefaddstringvalue(PrefKeys::LastScale, scaleField->text());
    prefs.prefaddstringvalue(PrefKeys::Settings, settings);
    prefs.prefaddstringvalue(PrefKeys::LastFormat, prefwin::instance().PopupMenu1->currentText());

    switch (prefwin::instance().emaildefault->currentIndex()) {
    case 0:
        AttachMail({output::unixPath(file)});
        break;
    case 1:
        AttachUdora({output::absolutePath(file)});
        break;
    case 2:
        AttachEntourage({output::absolutePath(file)});
        break;
    default:
        break;
    }
    if (!services().shiftKeyDown()) Hide();
}
