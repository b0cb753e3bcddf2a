#pragma once
// A window of the program: one implicit instance per class (see WindowRegistry), framework
// events as virtual functions, a menu handler table, and geometry in the framework's terms,
// measured on the content area (below a window's own menu bar and tool bar, if any).

#include <QHash>
#include <QMargins>
#include <QWidget>
#include <functional>
#include <optional>

namespace fw {

struct Services;
class WindowRegistry;

class Window : public QWidget {
    Q_OBJECT
public:
    Window(Services &services, WindowRegistry &registry);
    ~Window() override;

    // Creation: the controls' open handlers, then the window's Event_Open. The registry runs
    // this after the instance is reachable through its accessor.
    void create();

    // Framework events.
    virtual void openControls() {}
    virtual void Event_Open() {}
    // True refuses the close. appQuitting is true on the road of Quit.
    virtual bool Event_CancelClose(bool appQuitting);
    // The controls' Close handlers, on a real close.
    virtual void Event_Close() {}
    virtual void Event_Resized() {}

    // Menu handlers bound by item name.
    void AddMenuHandler(const QString &name, std::function<bool()> handler);
    // The handler's result, or nothing when this window has no handler of that name.
    std::optional<bool> runMenuHandler(const QString &name);
    bool hasMenuHandler(const QString &name) const { return m_menuHandlers.contains(name); }

    // Geometry of the content area, in screen coordinates.
    int Left() const;
    int Top() const;
    int Width() const;
    int Height() const;
    void setLeft(int v);
    void setTop(int v);
    // Left and Top at once: one request to the window manager.
    void moveContentTo(int left, int top);
    void setWidth(int v);
    void setHeight(int v);
    // All four at once: one request to the window manager, so a shown window moves in one step
    // instead of showing each intermediate size and place.
    void setBounds(int left, int top, int width, int height);
    void setMaxWidth(int v);
    void setMaxHeight(int v);
    void setMinSize(int w, int h);
    // A move by the pointer from where a press held the window, to the device pixel where the
    // platform can; false where it cannot.
    bool holdForMove();
    bool moveWithPointer();
    // What the window manager's frame adds around the content, once known (else nothing).
    QMargins frameMargins() const;

    void Show();
    void Hide();
    // Runs `body` (a modal window's show and loop) with the window kept: a close inside it, by
    // whatever event, deletes the window only once `body` has returned, never under it.
    void keptDuring(const std::function<void()> &body);
    // The registry lets go of a closed window: deleted from the event loop, after its own loops.
    void deleteWhenFree();
    bool Visible() const { return isVisible(); }

    Services &services() const { return m_services; }
    WindowRegistry &registry() const { return m_registry; }

protected:
    // Height of the bars above the content area (menu bar, tool bar).
    virtual int barsHeight() const { return 0; }
    // Places the controls for a window of this size; runs at once on a size write, so controls
    // follow before the write returns, even while the window is hidden.
    virtual void layoutFor(const QSize &) {}
    void closeEvent(QCloseEvent *e) override;
    void resizeEvent(QResizeEvent *e) override;

private:
    Services &m_services;
    WindowRegistry &m_registry;
    QHash<QString, std::function<bool()>> m_menuHandlers;
    void applySizeLimits();
    int boundedWidth(int v) const;
    int boundedHeight(int v) const;
    int m_maxW = 32000, m_maxH = 32000;
    int m_minW = 0, m_minH = 0;
    mutable bool m_frameAsked = false;
    std::optional<QPoint> m_hold; // the window's top left less the pointer, in device pixels
    int m_kept = 0;
    bool m_released = false;
};

} // namespace fw
