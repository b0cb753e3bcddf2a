#include "platform/framework/WindowRegistry.h"

namespace fw {

WindowRegistry::~WindowRegistry()
{
    destroyAll();
}

std::vector<Window *> WindowRegistry::windows() const
{
    std::vector<Window *> out;
    for (const auto &e : m_windows)
        out.push_back(e.window.get());
    return out;
}

void WindowRegistry::released(Window *w)
{
    for (auto it = m_windows.begin(); it != m_windows.end(); ++it) {
        if (it->window.get() == w) {
            // The window is inside its own close event, maybe inside its own loop: delete it
            // once both have returned.
            it->window.release()->deleteWhenFree();
            m_windows.erase(it);
            return;
        }
    }
}

bool WindowRegistry::closeAll()
{
    m_quitting = true;
    for (Window *w : windows()) {
        if (!w->close()) {
            m_quitting = false;
            return false;
        }
    }
    m_quitting = false;
    return true;
}

void WindowRegistry::forceCloseAll()
{
    m_forcing = true;
    for (Window *w : windows())
        w->close();
    m_forcing = false;
}

void WindowRegistry::destroyAll()
{
    // Newest first, as later windows may refer to earlier ones while going.
    while (!m_windows.empty()) {
        auto owned = std::move(m_windows.back().window);
        m_windows.pop_back();
        owned.reset();
    }
}

} // namespace fw
