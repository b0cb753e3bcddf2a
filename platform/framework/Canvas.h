#pragma once
// A plain drawing surface whose paint and mouse events go to handlers of the window that owns
// it, each run as a guarded event handler.

#include <QWidget>
#include <functional>

namespace fw {

class Canvas : public QWidget {
public:
    explicit Canvas(QWidget *parent = nullptr);

    std::function<void(QPainter &, int width, int height)> onPaint;
    // Returning true claims the mouse: only then do drag and up events follow.
    std::function<bool(int x, int y)> onMouseDown;
    std::function<void(int x, int y)> onMouseDrag;
    std::function<void(int x, int y)> onMouseUp;
    std::function<void(int x, int y)> onMouseMove;

    // Repaint now, erasing the background first.
    void Refresh(bool eraseBackground = true);

protected:
    void paintEvent(QPaintEvent *) override;
    void mousePressEvent(QMouseEvent *) override;
    void mouseMoveEvent(QMouseEvent *) override;
    void mouseReleaseEvent(QMouseEvent *) override;

private:
    bool m_claimed = false;
};

} // namespace fw
