// The toolbar: Save, Save as, E-Mail, Copy, a flexible space, Recent, Preferences.

#include "editor/Window1.h"
#include "platform/framework/Application.h"

#include "app/App.h"
#include "output/ToolbarPictures.h"
#include "platform/core/Failure.h"
#include "prefs/prefwin.h"
#include "recent/recentwin.h"

#include <QAction>
#include <QCoreApplication>
#include <QPointer>
#include <QWindow>
#include <QPixmap>
#include <QSizePolicy>
#include <QToolBar>

namespace {
// The item's picture with its mask applied; a missing picture fails here.
QIcon itemImage(const QImage &picture, const QImage &mask)
{
    return QIcon(QPixmap::fromImage(withMask(fw::nilCheck(picture), mask)));
}
} // namespace

void Window1::buildToolbar()
{
    toolBar = new QToolBar(this);
    toolBar->setObjectName(QStringLiteral("toolbar"));
    toolBar->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    toolBar->setIconSize(QSize(32, 32));
    toolBar->setMovable(false);
    auto add = [this](QAction *&item, const char *name, const QString &layoutCaption, void (Window1::*handler)()) {
        item = toolBar->addAction(layoutCaption);
        item->setObjectName(QString::fromLatin1(name));
        connect(item, &QAction::triggered, this, [this, handler] { fw::guarded([this, handler] { (this->*handler)(); }); });
    };
    add(SaveTB, "SaveTB", "Save", &Window1::SaveTB_Action);
    add(SaveasTB, "SaveasTB", "Untitled", &Window1::SaveasTB_Action);
    add(MailTB, "MailTB", "Untitled", &Window1::MailTB_Action);
    add(ToolbarItem1, "ToolbarItem1", "Untitled", &Window1::ToolbarItem1_Action);
    // The standard item: a flexible space, with no action of its own.
    StandardToolbarItem1 = new QWidget(toolBar);
    StandardToolbarItem1->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    toolBar->addWidget(StandardToolbarItem1);
    add(ToolbarItem3, "ToolbarItem3", "Recent", &Window1::ToolbarItem3_Action);
    add(ToolbarItem2, "ToolbarItem2", "Untitled", &Window1::ToolbarItem2_Action);
}

// Narrower than the items with their captions, the bar shows their pictures only (a caption stays
// the item's tool tip and accessible name), so that all seven stay in reach; the bar keeps its
// height, so that the content below it stays where it is.
void Window1::fitToolbar(int width)
{
    if (toolBar->toolButtonStyle() == Qt::ToolButtonTextUnderIcon)
        m_captionedToolbar = toolBar->sizeHint();
    toolBar->setMinimumHeight(m_captionedToolbar.height());
    toolBar->setToolButtonStyle(width < m_captionedToolbar.width() ? Qt::ToolButtonIconOnly
                                                                   : Qt::ToolButtonTextUnderIcon);
}

void Window1::SaveTB_Open()
{
    SaveTB->setIcon(itemImage(HD(), HDMask()));
    SaveTB->setText(QStringLiteral("Save"));
}

void Window1::SaveasTB_Open()
{
    SaveasTB->setIcon(itemImage(HD(), HDMask()));
    SaveasTB->setText(QStringLiteral("Save as"));
}

void Window1::MailTB_Open()
{
    MailTB->setIcon(itemImage(mail(), mailmask()));
    MailTB->setText(QStringLiteral("E-Mail"));
}

void Window1::ToolbarItem1_Open()
{
    ToolbarItem1->setIcon(itemImage(copyimg(), copymask()));
    ToolbarItem1->setText(QStringLiteral("Copy"));
}

void Window1::ToolbarItem3_Open() { ToolbarItem3->setIcon(itemImage(drawericon(), drawermask())); }

void Window1::ToolbarItem2_Open()
{
    ToolbarItem2->setText(QStringLiteral("Preferences"));
    ToolbarItem2->setIcon(itemImage(preficon(), prefmask()));
}

void Window1::ToolbarItem3_Action()
{
    recentwin &drawer = recentwin::instance();
    drawer.setVisible(!drawer.isVisible());
}

void Window1::ToolbarItem2_Action()
{
    // Modal on the editor, unlike the menu's Preferences: back here once that window is gone.
    QPointer<prefwin> p = &prefwin::instance();
    // A dialog of the editor while it is modal on it: window managers keep a window that says
    // whom it belongs to (WM_TRANSIENT_FOR, which Qt sets for dialogs only) above its owner.
    p->setWindowFlag(Qt::Dialog, true);
    p->setWindowModality(Qt::WindowModal);
    p->winId();
    if (p->windowHandle() && windowHandle()) p->windowHandle()->setTransientParent(windowHandle());
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
