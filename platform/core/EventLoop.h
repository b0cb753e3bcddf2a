#pragma once
// A loop that may run long (a walk over files, a search for a free name) yields once a pass:
// timers and paints go on, but no user input is taken, so no second command starts inside it.

#include <QCoreApplication>

namespace fw {
inline void yieldOnce()
{
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}
} // namespace fw
