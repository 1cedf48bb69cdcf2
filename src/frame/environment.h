// The caller's floating-point environment, brought back whole.
#pragma once

#include <cstdint>

#if defined(__SSE__)
#include <immintrin.h>
#elif !defined(__aarch64__)
#error "The floating-point control register of this processor is not known: add its two accesses here."
#endif

namespace qorsr {

enum class Rounding { kNearest, kTowardZero };

// From construction to the end of the scope: the given rounding mode, exceptions masked, denormals read as they are. Afterwards the
// rounding mode, the masks and the exception flags are the caller's again; a flag raised inside is forgotten.
//
// A compiler may move arithmetic across a change of mode. So the function that holds the guard computes nothing itself: it calls
// one function, marked QORSR_IN_GUARDED_MODE, that does the work.
class EnvironmentGuard {
 public:
  explicit EnvironmentGuard(Rounding rounding) {
#if defined(__SSE__)
    saved_ = _mm_getcsr();
    const uint32_t wanted = kAllMasked | (rounding == Rounding::kTowardZero ? kTowardZeroBits : 0) | (saved_ & kFlushToZero);
    // The flags that stand do no harm inside, so the common case leaves the register alone.
    changed_ = (saved_ & ~kFlags) != wanted;
    if (changed_) _mm_setcsr(wanted | (saved_ & kFlags));
#else
    asm volatile("mrs %0, fpcr" : "=r"(control_));
    asm volatile("mrs %0, fpsr" : "=r"(status_));
    setControl((control_ & ~(kRounding | kTraps)) | (rounding == Rounding::kTowardZero ? kRounding : 0));
#endif
  }
  ~EnvironmentGuard() {
#if defined(__SSE__)
    if (changed_ || _mm_getcsr() != saved_) _mm_setcsr(saved_);
#else
    setControl(control_);
    asm volatile("msr fpsr, %0" : : "r"(status_));
#endif
  }

  // Whether the caller's environment is what a guard that rounds to nearest would set up.
  static bool isCallersNearest() {
#if defined(__SSE__)
    return (_mm_getcsr() & ~(kFlags | kFlushToZero)) == kAllMasked;
#else
    uint64_t control;
    asm volatile("mrs %0, fpcr" : "=r"(control));
    return (control & (kRounding | kTraps)) == 0;
#endif
  }

  EnvironmentGuard(const EnvironmentGuard&) = delete;
  EnvironmentGuard& operator=(const EnvironmentGuard&) = delete;

 private:
#if defined(__SSE__)
  static constexpr uint32_t kFlags = 0x003F, kAllMasked = 0x1F80, kTowardZeroBits = 0x6000, kFlushToZero = 0x8000;
  uint32_t saved_;
  bool changed_;
#else  // both bits of the rounding mode are set toward zero; a trap that the processor lacks reads as 0
  static constexpr uint64_t kRounding = uint64_t{3} << 22, kTraps = 0x9F00;
  static void setControl(uint64_t control) { asm volatile("msr fpcr, %0" : : "r"(control)); }
  uint64_t control_, status_;
#endif
};

// The caller's exception flags, read at construction: bringBack() forgets those that were raised since. Rounding mode and masks stay the
// caller's. What it spans is one function, marked QORSR_IN_GUARDED_MODE. It costs a read, and a write only where it is asked.
class CallersFlags {
 public:
  CallersFlags() : saved_(flags()) {}
  void bringBack() const { setFlags(saved_); }

 private:
#if defined(__SSE__)
  static uint32_t flags() { return _mm_getcsr(); }
  static void setFlags(uint32_t saved) { _mm_setcsr(saved); }
  uint32_t saved_;
#else
  static uint64_t flags() {
    uint64_t status;
    asm volatile("mrs %0, fpsr" : "=r"(status));
    return status;
  }
  static void setFlags(uint64_t saved) { asm volatile("msr fpsr, %0" : : "r"(saved)); }
  uint64_t saved_;
#endif
};

#define QORSR_IN_GUARDED_MODE [[gnu::noinline]]

}  // namespace qorsr
