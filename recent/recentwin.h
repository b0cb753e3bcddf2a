#pragma once
// The drawer of the last ten captures of this run, attached to the editor's right edge. A click
// on a thumbnail hands that capture back to the editor (captureChosen).

#include "platform/framework/Window.h"
#include "recent/RecentStore.h"

#include <QImage>
#include <QList>
#include <QPointer>

class QScrollBar;
class QPushButton;
namespace fw {
class Canvas;
}

class recentwin : public fw::Window {
    Q_OBJECT
public:
    recentwin(fw::Services &services, fw::WindowRegistry &registry);
    ~recentwin() override;

    static recentwin &instance();

    // Oldest first, at most ten, kept packed.
    recent::RecentStore recentimages;

    fw::Canvas *Canvas2 = nullptr;       // the column of thumbnails
    QScrollBar *ScrollBar1 = nullptr;    // scrolls the column
    QPushButton *BevelButton1 = nullptr; // Clear All

    void addimage(const QImage &picture);
    void setscroll();

    void Canvas2_Paint(QPainter &g);
    bool Canvas2_MouseDown(int x, int y);
    void Canvas2_MouseUp(int x, int y);
    void ScrollBar1_ValueChanged();
    void BevelButton1_Action();
    void Event_Resized() override;

    // The window the drawer belongs to and follows.
    void attachTo(fw::Window *editor) { m_editor = editor; }
    // Keeps the drawer against the editor's right edge, as tall as its content area.
    void followEditor();
    // The sound of a click that hits nothing; tests count it.
    std::function<void()> Beep;

signals:
    // A thumbnail was clicked: the capture made of its picture, opaque.
    void captureChosen(const QImage &mypic);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void showEvent(QShowEvent *e) override;

private:
    QPointer<fw::Window> m_editor;
};
