// The core module of the tests: every test program defines qorMalloc and qorFree itself, and so takes the place of libqorcore.
//
// It counts what is allocated, can be told to refuse, hands out blocks at odd addresses that are filled with rubbish, and watches
// the bytes in front of and behind each block.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

#include "qorsr.h"

namespace kit {

struct Core {
  static int64_t calls();                    // of qorMalloc since the start
  static int64_t outstanding();              // blocks not yet released
  static int32_t lastSize();                 // the size that the last call asked for
  static std::vector<std::byte> contents();  // of all blocks not yet released
  static void refuse(int64_t nth);           // the nth call from now (0: the next) and no other returns null
  static void refuseNone();
};

// Makes the call once, then once for each allocation that it made, with that one refused: the status must then be qorStatusNoMemory
// and nothing may be left allocated. `call` releases what a successful call allocates. Returns the number of allocations.
int64_t expectEveryRefusalReported(const std::function<QorStatus()>& call);

}  // namespace kit
