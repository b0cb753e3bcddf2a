#include "capture/CaptureCommand.h"

#include "editor/EditorMath.h"

namespace capture {
QString captureCommandFor(const QString &osVersion)
{
    const int minor = editor::toInt(editor::Val(osVersion.mid(12, 1)));
    return minor < 5 ? QStringLiteral("screencapture -ci") : QStringLiteral("screencapture -cio");
}
} // namespace capture
