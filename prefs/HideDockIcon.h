#pragma once
// The tray icon's visibility, kept where the system reads it at launch: the key "LSUIElement" of
// the bundle's own property list. A change shows at the next launch.

#include <QString>

bool isDockIconHidden();
void setDockIconHidden(bool hidden);

namespace dockicon {
// The same, for a given bundle folder.
bool isHidden(const QString &bundlePath);
void setHidden(const QString &bundlePath, bool hidden);
// A child of a folder by name; where no item has exactly that name, one whose name differs only
// in case (the bundle's property list is looked up as "info.plist"). Empty when there is none.
QString childIgnoringCase(const QString &folder, const QString &name);
} // namespace dockicon
