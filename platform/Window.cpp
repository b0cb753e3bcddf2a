#include "platform/Window.h"

#include "platform/Failure.h"
#include "platform/WindowRegistry.h"

#include <QCloseEvent>

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

bool Window::Event_CancelClose(bool) { return false; }

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

int Window::Left() const { return geometry().x(); }
int Window::Top() const { return geometry().y() + barsHeight(); }
int Window::Width() const { return width(); }
int Window::Height() const { return height() - barsHeight(); }

// The content's place, not the frame's: under a window manager move() would place the frame
// there, and every write would shift the window by the frame.
void Window::setLeft(int v) { setGeometry(QRect(QPoint(v, geometry().y()), geometry().size())); }
void Window::setTop(int v) { setGeometry(QRect(QPoint(geometry().x(), v - barsHeight()), geometry().size())); }
void Window::setWidth(int v)
{
    resize(qBound(minimumWidth(), v, qMin(m_maxW, maximumWidth())), height());
    layoutFor(size());
}

void Window::setHeight(int v)
{
    resize(width(), qBound(minimumHeight(), qMin(v, m_maxH) + barsHeight(), maximumHeight()));
    layoutFor(size());
}

void Window::setMaxWidth(int v)
{
    m_maxW = v;
    setMaximumWidth(qMax(v, minimumWidth()));
}

void Window::setMaxHeight(int v)
{
    m_maxH = v;
    setMaximumHeight(qMax(v + barsHeight(), minimumHeight()));
}

void Window::setMinSize(int w, int h) { setMinimumSize(w, h + barsHeight()); }

void Window::Show() { show(); }
void Window::Hide() { hide(); }

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
    layoutFor(size());
    guarded([&] { Event_Resized(); });
}

} // namespace fw
