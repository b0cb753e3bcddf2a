#pragma once
// The preferences window, and the live home of three settings that the rest of the program reads
// straight from its controls: quartz, emaildefault and PopupMenu1. Its instance therefore
// exists, hidden, from the first use on.

#include "platform/framework/Window.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QPushButton;

class prefwin : public fw::Window {
    Q_OBJECT
public:
    prefwin(fw::Services &services, fw::WindowRegistry &registry);
    ~prefwin() override;

    static prefwin &instance();

    QPushButton *PushButton1 = nullptr;
    QCheckBox *CheckBox1 = nullptr;
    QCheckBox *quartz = nullptr;
    QComboBox *emaildefault = nullptr;
    QLabel *StaticText1 = nullptr;
    QComboBox *PopupMenu1 = nullptr;
    QLabel *StaticText2 = nullptr;
    QPushButton *PushButton2 = nullptr;
    QLabel *StaticText3 = nullptr;
    QLabel *savefolder = nullptr;
    QPushButton *PushButton3 = nullptr;
    QCheckBox *CheckBox2 = nullptr;
    // Shown on desktops that hand out no key: what to bind instead. Grows the window.
    QLabel *keyHint = nullptr;

    void openControls() override;
    void Event_Close() override;

    void PushButton1_Action();
    void CheckBox1_Open();
    void CheckBox1_Action();
    void quartz_Open();
    void quartz_Action();
    void quartz_Close();
    void emaildefault_Open();
    void emaildefault_Close();
    void PopupMenu1_Open();
    void PopupMenu1_Change();
    void PushButton2_Action();
    void savefolder_Open();
    void PushButton3_Action();
    void CheckBox2_Open();
    void CheckBox2_Action();

    // Writes that run the controls' handlers nested.
    void setPopupMenu1ListIndex(int i);
    void setChecked(QCheckBox *box, bool on);

private:
    void showKeyHint();
};
