#pragma once
// The menu bar: its items by name, text and shortcut. One description serves the application
// (the tray menu) and Window1 (its own bar); every item sends its command through the
// application's menu chain.

#include <QList>
#include <QString>

class QMenuBar;
class QMenu;
class QAction;
class QObject;
class QWidget;

namespace fw {
class Application;
}

struct MenuItemSpec {
    QString parent; // empty for a top item of the bar
    QString name;
    QString text;
    QString shortcut; // the framework's notation, "Cmd+Q"; empty for none
};

class MenuBar1 {
public:
    static const QList<MenuItemSpec> &items();
    // "Cmd+p" and "Cmd+Q" read as Control plus the letter.
    static QString toQtShortcut(const QString &shortcut);
    // A menu bar for a window, each action named after its item.
    static QMenuBar *buildBar(fw::Application &app, QWidget *parent);
    // Whether the item can be used now: a handler on the front window or the application, or a
    // focused text field that can do the Edit command.
    static bool isAvailable(fw::Application &app, const QString &name);
    // The item of that name in a built bar, or nullptr (so an unknown name gives nil).
    static QAction *find(QMenuBar *bar, const QString &name);
    // Quit's shortcut on a window without the bar, so that Quit works from the keyboard in
    // whatever window is in front, the editor hidden or not.
    static void addQuitShortcut(fw::Application &app, QWidget *window);
};
