#include "prefs/PrefKeys.h"
