#include "platform/HotKeyService.h"
