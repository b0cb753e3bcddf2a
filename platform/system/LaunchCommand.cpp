#include "platform/system/LaunchCommand.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <QStandardPaths>

namespace fw {

QString launchCommand(const QString &program, const QStringList &searchPath)
{
    const QString name = QStringLiteral("vantrel");
    const QString found = QStandardPaths::findExecutable(name, searchPath);
    const QString self = QFileInfo(program).canonicalFilePath();
    if (!found.isEmpty() && !self.isEmpty() && QFileInfo(found).canonicalFilePath() == self)
        return name;
    static const QRegularExpression plain(QStringLiteral("^[A-Za-z0-9/._+-]+$"));
    if (plain.match(program).hasMatch()) return program;
    return QLatin1Char('\'') +
           QString(program).replace(QLatin1Char('\''), QStringLiteral("'\\''")) + QLatin1Char('\'');
}

} // namespace fw
