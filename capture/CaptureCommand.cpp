#include "capture/CaptureCommand.h"

#include "platform/core/Numbers.h"

namespace capture {
QString captureCommandFor(const QString &osVersion)
{
    const int minor = fw::toInt(fw::Val(osVersion.mid(12, 1)));
    return minor < 5 ? QStringLiteral("screencapture -ci") : QStringLiteral("screencapture -cio");
}
} // namespace capture
