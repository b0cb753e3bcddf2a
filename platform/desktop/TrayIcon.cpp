#include "platform/desktop/TrayIcon.h"

#include <QIcon>
#include <QMenu>
#include <QSystemTrayIcon>

namespace fw {

TrayIcon::TrayIcon(const QString &iconFile)
    : m_menu(std::make_unique<QMenu>()), m_icon(std::make_unique<QSystemTrayIcon>())
{
    for (const auto &[name, text] :
         {std::pair{"FilePreferences", "Preferences"}, std::pair{"FileQuit", "Quit"}}) {
        QAction *a = m_menu->addAction(QString::fromLatin1(text));
        a->setObjectName(QString::fromLatin1(name));
        const QString command = QString::fromLatin1(name);
        connect(a, &QAction::triggered, this, [this, command] { emit commandChosen(command); });
    }
    QIcon icon(iconFile);
    m_icon->setIcon(icon.isNull() ? QIcon::fromTheme("camera-photo") : icon);
    m_icon->setToolTip(QStringLiteral("Vantrel — Shift+Ctrl+2 to capture"));
    m_icon->setContextMenu(m_menu.get());
    // A left click opens the same menu: there is nothing else to show.
    connect(m_icon.get(), &QSystemTrayIcon::activated, this,
            [this](QSystemTrayIcon::ActivationReason r) {
                if (r == QSystemTrayIcon::Trigger) m_menu->popup(QCursor::pos());
            });
    m_icon->show();
}

TrayIcon::~TrayIcon() = default;

bool TrayIcon::isVisible() const
{
    return m_icon->isVisible();
}

} // namespace fw
