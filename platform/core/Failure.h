#pragma once
// Failures that no handler catches all end in one place (the application's unhandled-exception
// event). Qt is not exception safe, so an exception must never unwind through Qt's frames: every
// entry point from Qt into our code runs inside fw::guarded(), and every property write that may
// run nested handlers goes through a writer that re-raises what those handlers left behind.

#include <QImage>
#include <QObject>
#include <exception>
#include <functional>
#include <stdexcept>

namespace fw {

class RuntimeException : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Use of a nil object (a null picture, a missing window, an unset store).
class NilObjectException : public RuntimeException {
public:
    NilObjectException() : RuntimeException("nil object") {}
};

// A checked cast that met a value of another class.
class IllegalCastException : public RuntimeException {
public:
    IllegalCastException() : RuntimeException("illegal cast") {}
};

using UnhandledHandler = std::function<void(std::exception_ptr)>;

// Installs the one destination of unhandled failures (App does this at start).
void setUnhandledHandler(UnhandledHandler handler);

// Runs an event handler. A failure in it goes to the unhandled handler when this is the
// outermost handler of its event loop (the stack's first, or the first inside a dialog's
// loop); one nested in a property write is parked and re-raised by rethrowPending() in the
// frame of ours that made the nested call.
void guarded(const std::function<void()> &handler) noexcept;

// Re-raises a failure that a nested handler parked (called right after a Qt setter returns).
void rethrowPending();

// Depth of guarded handlers on the stack (0 when none runs).
int handlerDepth();

namespace detail {
// An event handler wrapped in guarded(), taking the same arguments as the handler.
template <class Handler, class Method = decltype(&Handler::operator())> struct Guarded;
template <class Handler, class R, class C, class... Args>
struct Guarded<Handler, R (C::*)(Args...) const> {
    static auto wrap(Handler handler)
    {
        return [handler](Args... args) { guarded([&] { handler(args...); }); };
    }
};
} // namespace detail

// Connects a signal to an event handler of ours, run through guarded(). The handler takes the
// signal's first arguments, or none.
template <class Sender, class Signal, class Handler>
QMetaObject::Connection connectGuarded(Sender *sender, Signal signal, QObject *context,
                                       Handler handler)
{
    return QObject::connect(sender, signal, context,
                            detail::Guarded<Handler>::wrap(std::move(handler)));
}

template <class T> T *nilCheck(T *p)
{
    if (!p) throw NilObjectException();
    return p;
}

inline const QImage &nilCheck(const QImage &picture)
{
    if (picture.isNull()) throw NilObjectException();
    return picture;
}

} // namespace fw
