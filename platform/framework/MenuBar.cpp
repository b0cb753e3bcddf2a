#include "platform/framework/MenuBar.h"

#include "platform/framework/Application.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QShortcut>

namespace fw::menus {

// The Edit items have no handler of the program's own: they act on the focused text field.
namespace {
void textFieldCommand(const QString &name)
{
    auto *field = qobject_cast<QLineEdit *>(QApplication::focusWidget());
    if (!field) return;
    if (name == "EditUndo")
        field->undo();
    else if (name == "EditCut")
        field->cut();
    else if (name == "EditCopy")
        field->copy();
    else if (name == "EditPaste")
        field->paste();
    else if (name == "EditClear")
        field->del();
}
} // namespace

QString toQtShortcut(const QString &shortcut)
{
    if (shortcut.isEmpty()) return {};
    QString s = shortcut;
    s.replace("Cmd+", "Ctrl+", Qt::CaseInsensitive);
    const int plus = s.lastIndexOf('+');
    return s.left(plus + 1) + s.mid(plus + 1).toUpper();
}

bool isAvailable(Application &app, const QString &name)
{
    // An item with a handler on the front window or the application is available.
    if (Window *front = app.frontWindow(); front && front->hasMenuHandler(name)) return true;
    if (app.hasMenuHandler(name)) return true;
    // The Edit items, when the focused text field can do the command.
    auto *field = qobject_cast<QLineEdit *>(QApplication::focusWidget());
    if (!field) return false;
    const bool selected = field->hasSelectedText(), writable = !field->isReadOnly();
    if (name == "EditUndo") return field->isUndoAvailable();
    if (name == "EditCut" || name == "EditClear") return selected && writable;
    if (name == "EditCopy") return selected;
    if (name == "EditPaste") return writable && !QGuiApplication::clipboard()->text().isEmpty();
    return false;
}

QMenuBar *build(Application &app, const QList<MenuItemSpec> &items, QWidget *parent)
{
    auto *bar = new QMenuBar(parent);
    QHash<QString, QMenu *> menus;
    for (const MenuItemSpec &it : items) {
        if (it.parent.isEmpty()) {
            QMenu *m = bar->addMenu(it.text);
            m->setObjectName(it.name);
            m->menuAction()->setObjectName(it.name);
            menus.insert(it.name, m);
            // Enabled as the program stands at the moment the menu opens.
            QObject::connect(m, &QMenu::aboutToShow, m, [&app, m] {
                for (QAction *a : m->actions())
                    if (!a->isSeparator()) a->setEnabled(isAvailable(app, a->objectName()));
            });
            continue;
        }
        QMenu *menu = menus.value(it.parent);
        if (it.text == "-") {
            menu->addSeparator()->setObjectName(it.name);
            continue;
        }
        QAction *a = menu->addAction(it.text);
        a->setObjectName(it.name);
        if (!it.shortcut.isEmpty()) a->setShortcut(QKeySequence(toQtShortcut(it.shortcut)));
        // The bar's shortcuts serve its window; the other windows carry Quit's themselves
        // (addQuitShortcut). A shortcut of the whole application would not fire while the
        // editor, which holds the bar, is hidden.
        const QString name = it.name;
        QObject::connect(a, &QAction::triggered, &app, [&app, name] {
            if (!app.dispatchMenuCommand(name)) textFieldCommand(name);
        });
    }
    return bar;
}

void addQuitShortcut(Application &app, const QList<MenuItemSpec> &items, QWidget *window)
{
    for (const MenuItemSpec &it : items) {
        if (it.name != "FileQuit") continue;
        auto *shortcut = new QShortcut(QKeySequence(toQtShortcut(it.shortcut)), window);
        QObject::connect(shortcut, &QShortcut::activated, &app,
                         [&app] { app.dispatchMenuCommand(QStringLiteral("FileQuit")); });
    }
}

QAction *find(QMenuBar *bar, const QString &name)
{
    if (!bar) return nullptr;
    for (QAction *a : bar->findChildren<QAction *>())
        if (a->objectName() == name) return a;
    return nullptr;
}

} // namespace fw::menus
