#pragma once
// The real services of this machine: the bundle around the running program, $XDG_CONFIG_HOME for
// preferences, X11 hot keys where there is an X server, the desktop's shortcuts portal on a
// Wayland session.

#include "platform/framework/Services.h"

std::unique_ptr<fw::Services> servicesForThisMachine();
