/** @file qorcore.h
 *  The core module of the qor libraries: the one allocator that they share.
 *
 * An application that wants the libraries to allocate from memory of its own defines these two functions itself, or supplies
 * another libqorcore.so.6. Both must be safe to call from several threads at once. No alignment beyond that of malloc is relied
 * upon, and not even that: the libraries align their inner areas by hand. */
#ifndef QORCORE_H
#define QORCORE_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Returns a block of `size` bytes, or null when there is none; null for a size below 1. */
void* qorMalloc(int32_t size);

/** Releases a block that qorMalloc returned. Null is allowed and does nothing. */
void qorFree(void* block);

#ifdef __cplusplus
}
#endif

#endif
