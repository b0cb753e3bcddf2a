#pragma once
// The program's presence in the panel: a status icon whose menu carries the application's
// commands (Preferences, Quit); a choice is announced by the command's menu item name.

#include <QObject>
#include <memory>

class QMenu;
class QSystemTrayIcon;

namespace fw {

class TrayIcon : public QObject {
    Q_OBJECT
public:
    explicit TrayIcon(const QString &iconFile);
    ~TrayIcon() override;
    QMenu *menu() const { return m_menu.get(); }
    bool isVisible() const;

signals:
    void commandChosen(const QString &name);

private:
    std::unique_ptr<QMenu> m_menu;
    std::unique_ptr<QSystemTrayIcon> m_icon;
};

} // namespace fw
