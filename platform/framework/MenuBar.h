#pragma once
// Menu bars built from the application's table of items. Every item sends its command through
// the application's menu chain; the Edit items act on the focused text field, where no handler
// takes them. Enabling follows the program's state at the moment a menu opens.

#include <QList>
#include <QString>

class QAction;
class QMenuBar;
class QWidget;

namespace fw {

class Application;

struct MenuItemSpec {
    QString parent; // empty for a top item of the bar
    QString name;
    QString text;
    QString shortcut; // the framework's notation, "Cmd+Q"; empty for none
};

namespace menus {
// "Cmd+p" and "Cmd+Q" read as Control plus the letter.
QString toQtShortcut(const QString &shortcut);
// A menu bar for a window, each action named after its item.
QMenuBar *build(Application &app, const QList<MenuItemSpec> &items, QWidget *parent);
// Whether the item can be used now: a handler on the front window or the application, or a
// focused text field that can do the Edit command.
bool isAvailable(Application &app, const QString &name);
// The item of that name in a built bar, or nullptr (so an unknown name gives nil).
QAction *find(QMenuBar *bar, const QString &name);
// Quit's shortcut on a window without the bar, so that Quit works from the keyboard in whatever
// window is in front, the editor hidden or not.
void addQuitShortcut(Application &app, const QList<MenuItemSpec> &items, QWidget *window);
} // namespace menus

} // namespace fw
