// E-Mail: the picture into a new file of the private temporary folder, then that file to the
// mail program chosen in the preferences.

#include "output/Commands.h"
#include "output/MailScripts.h"

#include "output/OutputNaming.h"
#include "output/Source.h"
#include "platform/core/Failure.h"
#include "platform/core/Logging.h"
#include "platform/framework/Application.h"
#include "platform/framework/Services.h"
#include "prefs/Preferences.h"
#include "prefs/Session.h"
#include "prefs/prefwin.h"

#include <QDir>

namespace {
// Runs a stored script of the bundle with its arguments (an argv, never a shell line).
void runStoredScript(int id, const QStringList &values)
{
    if (fw::Application::ending()) return; // no mail program starts while the session ends
    fw::Services &services = fw::Application::instance().services();
    const QString script = services.bundle.resources() + "/Scripts/" + QString::number(id);
    const int status = services.commands->run(QStringList{script} + values);
    if (status != 0) qCWarning(lcOutput) << "mail script" << script << "ended with" << status;
}
} // namespace

void AttachMail(const QStringList &values)
{
    runStoredScript(168, values);
}
void AttachEntourage(const QStringList &values)
{
    runStoredScript(169, values);
}
void AttachUdora(const QStringList &values)
{
    runStoredScript(170, values);
}

namespace output {

void Commands::MailTB_Action()
{
    auto temporaryFolder = [this] {
        const QString folder = m_services.temporaryFolder();
        if (folder.isEmpty()) throw fw::NilObjectException();
        return folder;
    };
    // The name comes first, also when there turns out to be no exporter.
    auto freeName = [&] {
        const QString name = output::mailFileName([&](const QString &n) {
            return output::nameTaken(QDir(temporaryFolder()).filePath(n));
        });
        return QDir(temporaryFolder()).filePath(name);
    };
    QString file = freeName();
    if (!exporter) {
        fw::Application::instance().MsgBox(QStringLiteral("Please select a format"));
        return;
    }
    settingsStep(false);
    exporter->InputPicture = m_source.outputImage();
    exporter->Description = m_source.caption();
    exporter->OutputFile = file;
    exporter->OutputFileMustBeNew = true;
    logExport("E-Mail",
              exportUnderFreeName(*exporter, [&] { exporter->OutputFile = file = freeName(); }));

    writeOutputKeys(true);

    switch (prefwin::live().mailer()) {
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
    if (!m_services.shiftKeyDown()) m_source.hide();
}

} // namespace output
