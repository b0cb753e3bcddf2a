#pragma once
// Launch at login: the login items are the only record of the setting.

#include <QString>

// For the running program's bundle, in the user's autostart folder.
void SetLaunchAtLogin(bool value);
bool GetLaunchAtLogin();

namespace loginitems {
// The walks themselves, for a given bundle and autostart folder.
void setLaunchAtLogin(bool value, const QString &bundlePath, const QString &autostartFolder);
bool getLaunchAtLogin(const QString &bundlePath, const QString &autostartFolder);
// $XDG_CONFIG_HOME/autostart.
QString autostartFolder();
} // namespace loginitems
