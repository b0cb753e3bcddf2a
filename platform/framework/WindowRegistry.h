#pragma once
// One implicit instance per window class. The accessor of a class creates its instance on the
// first call, makes it reachable at once (its own open handlers may reach it again), then runs
// its creation. A window that really closes is gone; the next use makes a new one.

#include "platform/framework/Window.h"

#include <QPointer>
#include <functional>
#include <map>
#include <memory>
#include <typeindex>
#include <vector>

namespace fw {

class WindowRegistry {
public:
    explicit WindowRegistry(Services &services) : m_services(services) {}
    ~WindowRegistry();

    template <class W> W &get()
    {
        if (W *w = existing<W>()) return *w;
        auto owned = std::make_unique<W>(m_services, *this);
        W *raw = owned.get();
        m_windows.push_back({std::type_index(typeid(W)), std::move(owned)});
        if (auto hook = m_onMade.find(std::type_index(typeid(W))); hook != m_onMade.end())
            hook->second(*raw);
        raw->create();
        return *raw;
    }

    // What the composition root joins to a window of that class each time one is made: run
    // after construction, before the window's open handlers.
    template <class W> void onMade(std::function<void(W &)> join)
    {
        m_onMade[std::type_index(typeid(W))] = [join](Window &w) { join(static_cast<W &>(w)); };
    }

    template <class W> W *existing() const
    {
        for (const auto &e : m_windows)
            if (e.type == std::type_index(typeid(W))) return static_cast<W *>(e.window.get());
        return nullptr;
    }

    // The Quit road: asks every window in creation order; a refusal ends the attempt.
    // Returns true when all windows closed.
    bool closeAll();
    // Closes every window whatever it answers (the system is ending the session).
    void forceCloseAll();
    // Deletes every window at once (end of process, and between tests).
    void destroyAll();

    bool quitInProgress() const { return m_quitting; }
    bool forcingClose() const { return m_forcing; }

    // Called by a window that really closed.
    void released(Window *w);

    std::vector<Window *> windows() const;

private:
    struct Entry {
        std::type_index type;
        std::unique_ptr<Window> window;
    };
    Services &m_services;
    std::vector<Entry> m_windows;
    std::map<std::type_index, std::function<void(Window &)>> m_onMade;
    bool m_quitting = false;
    bool m_forcing = false;
};

} // namespace fw
