#pragma once
// The program's presence in the panel: a status icon whose menu carries the application's
// commands (Preferences, Quit), sent through the application's menu chain.

#include <QObject>
#include <memory>

class QMenu;
class QSystemTrayIcon;

namespace fw {

class Application;

class TrayIcon : public QObject {
public:
    TrayIcon(Application &app, const QString &iconFile);
    ~TrayIcon() override;
    QMenu *menu() const { return m_menu.get(); }
    bool isVisible() const;

private:
    std::unique_ptr<QMenu> m_menu;
    std::unique_ptr<QSystemTrayIcon> m_icon;
};

} // namespace fw
