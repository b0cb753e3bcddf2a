#pragma once
// Where failures and the steps of a capture or an output leave a trace: one logging category per
// area. Debug lines are off unless QT_LOGGING_RULES turns them on ("vantrel.*=true"); warnings
// are kept for failures, so a normal run prints nothing.

#include <QLoggingCategory>

Q_DECLARE_LOGGING_CATEGORY(lcFramework) // vantrel.framework: failures that reach the one message
Q_DECLARE_LOGGING_CATEGORY(lcCapture)   // vantrel.capture: the hot key, the helper, the clipboard
Q_DECLARE_LOGGING_CATEGORY(lcEditor)    // vantrel.editor: loading a capture
Q_DECLARE_LOGGING_CATEGORY(lcRecent)    // vantrel.recent: the drawer packing its captures
Q_DECLARE_LOGGING_CATEGORY(lcOutput)    // vantrel.output: save, mail, copy, print, the exporter
Q_DECLARE_LOGGING_CATEGORY(lcStore)     // vantrel.store: property lists and preference files
Q_DECLARE_LOGGING_CATEGORY(lcDisplay)   // vantrel.display: monitors, work areas, window frames
Q_DECLARE_LOGGING_CATEGORY(lcDesktop)   // vantrel.desktop: bus, tray, login items, bundle
Q_DECLARE_LOGGING_CATEGORY(lcHotKeys)   // vantrel.hotkeys: key grabs and the shortcuts portal
