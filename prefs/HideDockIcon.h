#pragma once
// The tray icon's visibility, kept where the system reads it at launch: the key "LSUIElement" of
// the bundle's own property list. A change shows at the next launch. A bundle the user can't
// write (an installed package) is not changed: the user's own copy of its property list, in the
// configuration folder, takes the change and is read in its place.

#include <QString>

bool isDockIconHidden();
void setDockIconHidden(bool hidden);
// The flag as read at launch, where a value of another type must not stop the program.
bool isDockIconHiddenAtLaunch();

namespace dockicon {
// The same, for a given bundle folder.
bool isHidden(const QString &bundlePath);
void setHidden(const QString &bundlePath, bool hidden);
bool hiddenAtLaunch(const QString &bundlePath);
// A child of a folder by name; where no item has exactly that name, one whose name differs only
// in case (the bundle's property list is looked up as "info.plist"). Empty when there is none.
QString childIgnoringCase(const QString &folder, const QString &name);
} // namespace dockicon
