#pragma once
// The only sign of life at start: a small white box in the middle of the main screen with the
// icon, the version and the credits, for a second and a half. The hot key already works.

#include "platform/framework/Window.h"

class QEventLoop;
class QLabel;
class QTimer;
namespace fw {
class Canvas;
}

class splash : public fw::Window {
    Q_OBJECT
public:
    splash(fw::Services &services, fw::WindowRegistry &registry);
    ~splash() override;

    static splash &instance();

    fw::Canvas *Canvas1 = nullptr;
    QLabel *StaticText1 = nullptr;
    QLabel *StaticText2 = nullptr;
    QLabel *StaticText4 = nullptr;
    QTimer *Timer2 = nullptr;

    void openControls() override;
    void Event_Open() override;
    void StaticText1_Open();
    void Timer2_Action();

    // Shows the window and stays in a nested event loop until it is closed.
    void ShowModal();

protected:
    void closeEvent(QCloseEvent *e) override;

private:
    QImage m_icon;
    bool m_closed = false;
    QEventLoop *m_loop = nullptr;
};
