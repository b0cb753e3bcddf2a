#include "platform/system/Shell.h"

#include "platform/core/Ending.h"
#include "platform/core/Logging.h"

#include <QProcess>
#include <QStandardPaths>
#include <atomic>
#include <csignal>
#include <unistd.h>

namespace fw {

namespace {
std::atomic<pid_t> g_running{0};
static_assert(std::atomic<pid_t>::is_always_lock_free);
} // namespace

void ProcessRunner::stopRunning() noexcept
{
    if (const pid_t group = g_running.load(); group > 0) ::kill(-group, SIGKILL);
}

QString ProcessRunner::resolve(const QString &program) const
{
    if (program.contains('/')) return program;
    QStringList dirs = qEnvironmentVariable("PATH").split(':', Qt::SkipEmptyParts);
    dirs << m_helperDir;
    return QStandardPaths::findExecutable(program, dirs);
}

int ProcessRunner::run(const QStringList &argv)
{
    if (argv.isEmpty()) return -1;
    const QString program = resolve(argv.first());
    if (program.isEmpty())
        qCWarning(lcCapture) << "no program" << argv.first() << "on PATH or in the bundle";
    if (program.isEmpty() || processEnding()) return -1;
    QProcess p;
    // Children that stay behind (xclip keeps the selection) must not hold our output open.
    p.setStandardInputFile(QProcess::nullDevice());
    p.setStandardOutputFile(QProcess::nullDevice());
    p.setStandardErrorFile(QProcess::nullDevice());
    p.setChildProcessModifier([] { ::setpgid(0, 0); });
    p.start(program, argv.mid(1));
    if (!p.waitForStarted(-1)) {
        qCWarning(lcCapture) << "could not start" << program << p.errorString();
        return -1;
    }
    g_running = pid_t(p.processId());
    if (processEnding()) stopRunning(); // a signal came before the group was known
    p.waitForFinished(-1);
    g_running = 0;
    const int status = p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1;
    // A cancelled selection ends the helper with a status of its own: no failure.
    qCDebug(lcCapture) << argv << "ended with status" << status;
    return status;
}

void Shell::Execute(const QString &command)
{
    m_runner.run(command.split(' ', Qt::SkipEmptyParts));
}

} // namespace fw
