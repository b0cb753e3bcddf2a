#include "platform/system/Memory.h"

#include <cstdlib> // defines __GLIBC__ where it is the C library

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace fw {

void keepLargeBlocksApart()
{
#if defined(__GLIBC__)
    mallopt(M_MMAP_THRESHOLD, 1 << 20);
#endif
}

void returnFreedMemory()
{
#if defined(__GLIBC__)
    malloc_trim(0);
#endif
}

} // namespace fw
