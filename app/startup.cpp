#include "app/startup.h"

#include <cstdlib>  // defines __GLIBC__ where it applies

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace talvex::app {

void tuneMemoryAllocator() noexcept {
#if defined(__GLIBC__)
    // Blocks below the largest threshold the allocator accepts (32 MiB) come from the heap,
    // and up to 512 MiB of freed heap stays for the next calculation.
    mallopt(M_MMAP_THRESHOLD, 32 * 1024 * 1024);
    mallopt(M_TRIM_THRESHOLD, 512 * 1024 * 1024);
#endif
}

}  // namespace talvex::app
