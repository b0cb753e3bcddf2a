#include "platform/system/Memory.h"

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace fw {

void returnFreedMemory()
{
#if defined(__GLIBC__)
    malloc_trim(0);
#endif
}

} // namespace fw
