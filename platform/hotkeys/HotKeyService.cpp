#include "platform/hotkeys/HotKeyService.h"
