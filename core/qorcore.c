/* The allocation pair on the C library's allocator, which is safe to call from several threads. */
#include "qorcore.h"

#include <stdlib.h>

#define QOR_EXPORT __attribute__((visibility("default")))

QOR_EXPORT void* qorMalloc(int32_t size) { return size < 1 ? NULL : malloc((size_t)size); }

QOR_EXPORT void qorFree(void* block) { free(block); }
