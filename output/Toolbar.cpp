#include "output/Toolbar.h"

#include "output/Commands.h"
#include "output/ToolbarPictures.h"
#include "platform/core/Failure.h"
#include "platform/framework/Application.h"
#include "prefs/prefwin.h"
#include "recent/recentwin.h"

#include <QAction>
#include <QCoreApplication>
#include <QPixmap>
#include <QPointer>
#include <QSizePolicy>
#include <QToolBar>
#include <QWindow>

namespace {
// The item's picture with its mask applied; a missing picture fails here.
QIcon itemImage(const QImage &picture, const QImage &mask)
{
    return QIcon(QPixmap::fromImage(withMask(fw::nilCheck(picture), mask)));
}
} // namespace

namespace output {

Toolbar::Toolbar(Commands &commands, QWidget *parent) : QToolBar(parent)
{
    setObjectName(QStringLiteral("toolbar"));
    setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    setIconSize(QSize(32, 32));
    setMovable(false);
    SaveTB = addItem("SaveTB", "Save", [&commands] { commands.SaveTB_Action(); });
    SaveasTB = addItem("SaveasTB", "Untitled", [&commands] { commands.SaveasTB_Action(); });
    MailTB = addItem("MailTB", "Untitled", [&commands] { commands.MailTB_Action(); });
    ToolbarItem1 =
        addItem("ToolbarItem1", "Untitled", [&commands] { commands.ToolbarItem1_Action(); });
    // The standard item: a flexible space, with no action of its own.
    StandardToolbarItem1 = new QWidget(this);
    StandardToolbarItem1->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    addWidget(StandardToolbarItem1);
    ToolbarItem3 = addItem("ToolbarItem3", "Recent", [this] { ToolbarItem3_Action(); });
    ToolbarItem2 = addItem("ToolbarItem2", "Untitled", [this] { ToolbarItem2_Action(); });
    SaveTB_Open();
    SaveasTB_Open();
    MailTB_Open();
    ToolbarItem1_Open();
    ToolbarItem3_Open();
    ToolbarItem2_Open();
}

QAction *Toolbar::addItem(const char *name, const QString &layoutCaption,
                          const std::function<void()> &action)
{
    QAction *item = addAction(layoutCaption);
    item->setObjectName(QString::fromLatin1(name));
    fw::connectGuarded(item, &QAction::triggered, this, action);
    return item;
}

void Toolbar::SaveTB_Open()
{
    SaveTB->setIcon(itemImage(HD(), HDMask()));
    SaveTB->setText(QStringLiteral("Save"));
}

void Toolbar::SaveasTB_Open()
{
    SaveasTB->setIcon(itemImage(HD(), HDMask()));
    SaveasTB->setText(QStringLiteral("Save as"));
}

void Toolbar::MailTB_Open()
{
    MailTB->setIcon(itemImage(mail(), mailmask()));
    MailTB->setText(QStringLiteral("E-Mail"));
}

void Toolbar::ToolbarItem1_Open()
{
    ToolbarItem1->setIcon(itemImage(copyimg(), copymask()));
    ToolbarItem1->setText(QStringLiteral("Copy"));
}

void Toolbar::ToolbarItem3_Open()
{
    ToolbarItem3->setIcon(itemImage(drawericon(), drawermask()));
}

void Toolbar::ToolbarItem2_Open()
{
    ToolbarItem2->setText(QStringLiteral("Preferences"));
    ToolbarItem2->setIcon(itemImage(preficon(), prefmask()));
}

void Toolbar::ToolbarItem3_Action()
{
    recentwin &drawer = recentwin::instance();
    drawer.setVisible(!drawer.isVisible());
}

void Toolbar::ToolbarItem2_Action()
{
    // Modal on the editor, unlike the menu's Preferences: back here once that window is gone.
    QWidget *editor = window();
    QPointer<prefwin> p = &prefwin::instance();
    // A dialog of the editor while it is modal on it: window managers keep a window that says
    // whom it belongs to (WM_TRANSIENT_FOR, which Qt sets for dialogs only) above its owner.
    p->setWindowFlag(Qt::Dialog, true);
    p->setWindowModality(Qt::WindowModal);
    p->winId();
    if (p->windowHandle() && editor->windowHandle())
        p->windowHandle()->setTransientParent(editor->windowHandle());
    p->Show();
    p->raise();
    p->activateWindow();
    while (p && p->isVisible() && !fw::Application::ending())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    if (p && !fw::Application::ending()) {
        p->setWindowModality(Qt::NonModal);
        if (p->windowHandle()) p->windowHandle()->setTransientParent(nullptr);
        p->setWindowFlag(Qt::Dialog, false); // the menu's Preferences is a window of its own
    }
}

} // namespace output
