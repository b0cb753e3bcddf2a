#include "platform/framework/Services.h"

#include "output/export/ExportSettingsDialog.h"
#include "platform/system/SystemInformation.h"
#include "platform/files/TemporaryFolder.h"
#include "platform/hotkeys/PortalHotKeyService.h"
#include "platform/hotkeys/X11HotKeyService.h"

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
      settingsDialog([](ExportFormat f, ExporterSettings &s) { return output::runExportSettingsDialog(f, s); }),
      shiftKeyDown([] { return QGuiApplication::queryKeyboardModifiers().testFlag(Qt::ShiftModifier); }),
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
    return sessionType.compare(QLatin1String("wayland"), Qt::CaseInsensitive) == 0 || !waylandDisplay.isEmpty();
}

// On X11 a grab on the root window. On Wayland the compositor hands out keys: the portal asks
// it, and XWayland's keyboard map (when the program runs there) names the key that types "2".
static std::unique_ptr<HotKeyService> hotKeysForThisSession()
{
    std::unique_ptr<HotKeyService> x11 = X11HotKeyService::createIfAvailable();
    if (!isWaylandSession(qEnvironmentVariable("XDG_SESSION_TYPE"), qEnvironmentVariable("WAYLAND_DISPLAY")))
        return x11;
    auto *keyboard = dynamic_cast<X11HotKeyService *>(x11.get());
    std::shared_ptr<HotKeyService> owner(std::move(x11));
    auto keyCodeOf = [owner, keyboard](int ascii) { return keyboard ? keyboard->AsciiToKeyCode(ascii) : ascii; };
    auto keysymName = [owner, keyboard](int keycode, bool shifted) {
        if (keyboard) return keyboard->keysymName(keycode, shifted);
        // No keyboard map to ask: the character itself, by its ASCII keysym name.
        return shifted || keycode < '0' || keycode > 'z' ? QString() : QString(QChar(keycode));
    };
    return std::make_unique<PortalHotKeyService>(keyCodeOf, keysymName);
}

std::unique_ptr<Services> Services::forThisMachine()
{
    auto s = std::make_unique<Services>(Bundle(QCoreApplication::applicationDirPath()), configHome());
    s->hotKeys = hotKeysForThisSession();
    return s;
}

} // namespace fw
