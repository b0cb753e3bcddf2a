#include "platform/system/Shell.h"

#include <QProcess>
#include <QStandardPaths>

namespace fw {

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
    if (program.isEmpty()) return -1;
    QProcess p;
    // Children that stay behind (xclip keeps the selection) must not hold our output open.
    p.setStandardInputFile(QProcess::nullDevice());
    p.setStandardOutputFile(QProcess::nullDevice());
    p.setStandardErrorFile(QProcess::nullDevice());
    p.start(program, argv.mid(1));
    if (!p.waitForStarted(-1)) return -1;
    p.waitForFinished(-1);
    return p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1;
}

void Shell::Execute(const QString &command)
{
    m_runner.run(command.split(' ', Qt::SkipEmptyParts));
}

} // namespace fw
