#pragma once
// The menu bar's content: File (Quit, Print, Close, Preferences) and Edit, by name, text and
// shortcut. One table serves the application (the tray menu) and the editor (its own bar).

#include "platform/framework/MenuBar.h"

class MenuBar1 {
public:
    static const QList<fw::MenuItemSpec> &items();
};
