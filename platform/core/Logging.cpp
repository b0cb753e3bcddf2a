#include "platform/core/Logging.h"

Q_LOGGING_CATEGORY(lcFramework, "vantrel.framework", QtWarningMsg)
Q_LOGGING_CATEGORY(lcCapture, "vantrel.capture", QtWarningMsg)
Q_LOGGING_CATEGORY(lcEditor, "vantrel.editor", QtWarningMsg)
Q_LOGGING_CATEGORY(lcRecent, "vantrel.recent", QtWarningMsg)
Q_LOGGING_CATEGORY(lcOutput, "vantrel.output", QtWarningMsg)
Q_LOGGING_CATEGORY(lcStore, "vantrel.store", QtWarningMsg)
Q_LOGGING_CATEGORY(lcDisplay, "vantrel.display", QtWarningMsg)
Q_LOGGING_CATEGORY(lcDesktop, "vantrel.desktop", QtWarningMsg)
Q_LOGGING_CATEGORY(lcHotKeys, "vantrel.hotkeys", QtWarningMsg)
