#pragma once
// The preferences window. Every control takes effect when it is used; OK only hides the window.
// It is the home of three settings (smooth scaling, the mail program, the image format): its
// controls set them in Preferences, where the editor and the outputs read them through live(),
// which makes the window (hidden) on first use, as its controls are what reads them in.

#include "platform/framework/Window.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QPushButton;
class Preferences;

class prefwin : public fw::Window {
    Q_OBJECT
public:
    prefwin(fw::Services &services, fw::WindowRegistry &registry);
    ~prefwin() override;

    static prefwin &instance();
    // The three settings, as the window's controls set them.
    static Preferences &live();

    QPushButton *PushButton1 = nullptr; // OK: hides the window
    QCheckBox *CheckBox1 = nullptr;     // Launch at Login
    QCheckBox *quartz = nullptr;        // Smooth Scaling
    QComboBox *emaildefault = nullptr;  // the mail program: default mailer, Thunderbird, Evolution
    QLabel *StaticText1 = nullptr;      // "Send email using:"
    QComboBox *PopupMenu1 = nullptr;    // the image format, row tags holding the exporter codes
    QLabel *StaticText2 = nullptr;      // "Image Format:"
    QPushButton *PushButton2 = nullptr; // Settings: the exporter's dialog for the format
    QLabel *StaticText3 = nullptr;      // "Default Folder:"
    QLabel *savefolder = nullptr;       // the default folder's name
    QPushButton *PushButton3 = nullptr; // Select: choose the default folder
    QCheckBox *CheckBox2 = nullptr;     // Hide Tray Icon
    // Keeps the Launch at Login box's own write (at opening) from changing the login items.
    bool holdlaunchsetting = false;
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
