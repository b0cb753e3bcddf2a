#pragma once
// The editor's toolbar: Save, Save as, E-Mail, Copy, a flexible space, Recent, Preferences. The
// four outputs run the commands; Recent shows or hides the drawer; Preferences is modal on the
// window the toolbar stands in.

#include <QToolBar>

class QAction;

namespace output {

class Commands;

class Toolbar : public QToolBar {
    Q_OBJECT
public:
    Toolbar(Commands &commands, QWidget *parent = nullptr);

    QAction *SaveTB = nullptr;               // Save
    QAction *SaveasTB = nullptr;             // Save as
    QAction *MailTB = nullptr;               // E-Mail
    QAction *ToolbarItem1 = nullptr;         // Copy
    QWidget *StandardToolbarItem1 = nullptr; // a flexible space
    QAction *ToolbarItem3 = nullptr;         // Recent: the drawer
    QAction *ToolbarItem2 = nullptr;         // Preferences

    void SaveTB_Open();
    void SaveasTB_Open();
    void MailTB_Open();
    void ToolbarItem1_Open();
    void ToolbarItem3_Open();
    void ToolbarItem3_Action();
    void ToolbarItem2_Open();
    void ToolbarItem2_Action();

private:
    QAction *addItem(const char *name, const QString &layoutCaption,
                     const std::function<void()> &action);
};

} // namespace output
