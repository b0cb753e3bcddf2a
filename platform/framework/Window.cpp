#include "platform/framework/Window.h"

#include "platform/core/Failure.h"
#include "platform/display/DevicePixels.h"
#include "platform/display/FrameExtents.h"
#include "platform/framework/WindowRegistry.h"

#include <QCloseEvent>
#include <QScopeGuard>

namespace fw {

Window::Window(Services &services, WindowRegistry &registry)
    : QWidget(nullptr), m_services(services), m_registry(registry)
{
}

Window::~Window() = default;

void Window::create()
{
    openControls();
    Event_Open();
}

bool Window::Event_CancelClose(bool)
{
    return false;
}

void Window::keptDuring(const std::function<void()> &body)
{
    ++m_kept;
    const auto done = qScopeGuard([this] {
        if (--m_kept == 0 && m_released) deleteLater(); // nothing of it is on the stack now
    });
    body();
}

void Window::deleteWhenFree()
{
    m_released = true;
    if (m_kept == 0) deleteLater();
}

void Window::AddMenuHandler(const QString &name, std::function<bool()> handler)
{
    m_menuHandlers.insert(name, std::move(handler));
}

std::optional<bool> Window::runMenuHandler(const QString &name)
{
    auto it = m_menuHandlers.find(name);
    if (it == m_menuHandlers.end()) return std::nullopt;
    return (*it)();
}

int Window::Left() const
{
    return geometry().x();
}
int Window::Top() const
{
    return geometry().y() + barsHeight();
}
int Window::Width() const
{
    return width();
}
int Window::Height() const
{
    return height() - barsHeight();
}

// The content's place, not the frame's: under a window manager move() would place the frame
// there, and every write would shift the window by the frame.
void Window::setLeft(int v)
{
    moveContentTo(v, Top());
}
void Window::setTop(int v)
{
    moveContentTo(Left(), v);
}
void Window::moveContentTo(int left, int top)
{
    setGeometry(QRect(QPoint(left, top - barsHeight()), geometry().size()));
}

// What a write of the content's width or height gives: within the limits, bars included.
int Window::boundedWidth(int v) const
{
    return qBound(minimumWidth(), v, qMin(m_maxW, maximumWidth()));
}
int Window::boundedHeight(int v) const
{
    return qBound(minimumHeight(), qMin(v, m_maxH) + barsHeight(), maximumHeight());
}

void Window::setWidth(int v)
{
    resize(boundedWidth(v), height());
    layoutFor(size());
}

void Window::setHeight(int v)
{
    resize(width(), boundedHeight(v));
    layoutFor(size());
}

void Window::setBounds(int left, int top, int width, int height)
{
    setGeometry(QRect(left, top - barsHeight(), boundedWidth(width), boundedHeight(height)));
    layoutFor(size());
}

// The limits are on the content; the bars' height is known only once they are laid out, so the
// window's own limits are worked out anew at every resize. A maximum caps the user's resizing
// and never shrinks what the program set.
void Window::applySizeLimits()
{
    const int bars = barsHeight();
    setMinimumSize(m_minW, m_minH + bars);
    setMaximumSize(qMax(m_maxW, qMax(width(), m_minW)),
                   qMax(m_maxH + bars, qMax(height(), m_minH + bars)));
}

void Window::setMaxWidth(int v)
{
    m_maxW = v;
    applySizeLimits();
}

void Window::setMaxHeight(int v)
{
    m_maxH = v;
    applySizeLimits();
}

void Window::setMinSize(int w, int h)
{
    m_minW = w;
    m_minH = h;
    applySizeLimits();
}

QMargins Window::frameMargins() const
{
    const QRect frame = frameGeometry(), content = geometry();
    if (frame == content) {
        // Hidden, or never shown: what the window manager says its frame is. It is asked once
        // (a window manager answers at once; without one nobody does, and that costs a wait).
        if (isVisible()) return {};
        const bool ask = !m_frameAsked;
        m_frameAsked = true;
        return frameExtentsBeforeShowing(const_cast<Window *>(this), ask);
    }
    return QMargins(content.left() - frame.left(), content.top() - frame.top(),
                    frame.right() - content.right(), frame.bottom() - content.bottom());
}

bool Window::holdForMove()
{
    QPoint hold;
    m_hold.reset();
    if (pointerHold(this, &hold)) m_hold = hold;
    return bool(m_hold);
}

bool Window::moveWithPointer()
{
    return m_hold && moveHeld(this, *m_hold);
}

void Window::Show()
{
    show();
}
void Window::Hide()
{
    hide();
}

void Window::closeEvent(QCloseEvent *e)
{
    bool refuse = false;
    if (!m_registry.forcingClose())
        guarded([&] { refuse = Event_CancelClose(m_registry.quitInProgress()); });
    if (refuse) {
        e->ignore();
        return;
    }
    e->accept();
    guarded([&] { Event_Close(); });
    m_registry.released(this);
}

void Window::resizeEvent(QResizeEvent *e)
{
    QWidget::resizeEvent(e);
    if (minimumHeight() != m_minH + barsHeight()) applySizeLimits();
    layoutFor(size());
    guarded([&] { Event_Resized(); });
}

} // namespace fw
