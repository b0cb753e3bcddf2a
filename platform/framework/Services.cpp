#include "platform/framework/Services.h"

#include "platform/files/TemporaryFolder.h"
#include "platform/system/SystemInformation.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileDialog>
#include <QGuiApplication>
#include <QPageSetupDialog>
#include <QPrintDialog>
#include <QPrinter>
#include <QStandardPaths>

namespace fw {

Services::Services(Bundle b, QString configFolder)
    : bundle(std::move(b)), preferenceDomains(std::move(configFolder)),
      cursors(bundle.resources() + "/Cursors"), hotKeys(std::make_unique<NullHotKeyService>()),
      commands(std::make_unique<ProcessRunner>(bundle.executableDir())),
      osVersionString(&OSVersionString), desktopFolder(&userDesktopFolder),
      selectFolder([](QWidget *parent, const QString &start) {
          return QFileDialog::getExistingDirectory(parent, QString(), start);
      }),
      saveAsDialog([](QWidget *parent, const QString &folder, const QString &suggested) {
          const QString start = folder.isEmpty() ? suggested : folder + "/" + suggested;
          return QFileDialog::getSaveFileName(parent, QString(), start);
      }),
      shiftKeyDown(
          [] { return QGuiApplication::queryKeyboardModifiers().testFlag(Qt::ShiftModifier); }),
      printDialog([](QWidget *parent) -> std::unique_ptr<QPrinter> {
          auto printer = std::make_unique<QPrinter>(QPrinter::HighResolution);
          printer->setDocName(QStringLiteral("Vantrel capture"));
          QPrintDialog dialog(printer.get(), parent);
          if (dialog.exec() != QDialog::Accepted) return nullptr;
          return printer;
      }),
      pageSetupDialog([](QPrinter &printer) {
          QPageSetupDialog dialog(&printer, nullptr);
          return dialog.exec() == QDialog::Accepted;
      }),
      temporaryFolder(&privateTemporaryFolder)
{
}

Services::~Services() = default;

QString configHome()
{
    const QString xdg = qEnvironmentVariable("XDG_CONFIG_HOME");
    if (!xdg.isEmpty() && QDir::isAbsolutePath(xdg)) return xdg;
    return QDir::homePath() + "/.config";
}

QString userDesktopFolder()
{
    const QString env = qEnvironmentVariable("XDG_DESKTOP_DIR");
    if (!env.isEmpty() && QDir::isAbsolutePath(env)) return env;
    const QString std = QStandardPaths::writableLocation(QStandardPaths::DesktopLocation);
    return std.isEmpty() ? QDir::homePath() + "/Desktop" : std;
}

bool isWaylandSession(const QString &sessionType, const QString &waylandDisplay)
{
    return sessionType.compare(QLatin1String("wayland"), Qt::CaseInsensitive) == 0 ||
           !waylandDisplay.isEmpty();
}

} // namespace fw
