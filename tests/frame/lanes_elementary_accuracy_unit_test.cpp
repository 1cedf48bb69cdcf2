// The errors of the elementary functions on many arguments, beside GNU MPFR with 160 bits: what elementary.h states is asserted.
// Compiled once at every instruction level; skipped where MPFR is not installed.
#include <gtest/gtest.h>

#if QORSR_HAVE_MPFR
#include <mpfr.h>
#endif

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <type_traits>

#include "frame/elementary.h"
#include "kit/random.h"

namespace {

#if QORSR_HAVE_MPFR

using namespace qorsr;

class Exact {
 public:
  Exact() { mpfr_init2(value_, 160); }
  ~Exact() { mpfr_clear(value_); }
  Exact(const Exact&) = delete;
  Exact& operator=(const Exact&) = delete;
  mpfr_ptr get() { return value_; }

 private:
  mpfr_t value_;
};

// |actual - exact| in last places of `exact`; what overflows is compared with what would stand behind the largest number.
template <class T>
double error(T actual, mpfr_ptr exact) {
  using Limits = std::numeric_limits<T>;
  if (mpfr_nan_p(exact)) return std::isnan(actual) ? 0 : HUGE_VAL;
  if (std::isnan(actual)) return HUGE_VAL;
  if (mpfr_inf_p(exact)) return static_cast<double>(actual) == mpfr_get_d(exact, MPFR_RNDN) ? 0 : HUGE_VAL;
  if (mpfr_zero_p(exact)) return actual == 0 ? 0 : HUGE_VAL;
  const long exponent = mpfr_get_exp(exact);
  if (std::isinf(actual) && exponent > Limits::max_exponent && std::signbit(actual) == (mpfr_signbit(exact) != 0)) return 0;
  const long least = Limits::min_exponent - Limits::digits, last = std::max(exponent - Limits::digits, least);
  static Exact difference;
  if (std::isinf(actual)) {
    mpfr_set_si_2exp(difference.get(), actual < 0 ? -1 : 1, Limits::max_exponent, MPFR_RNDN);
  } else {
    mpfr_set_d(difference.get(), static_cast<double>(actual), MPFR_RNDN);
  }
  mpfr_sub(difference.get(), difference.get(), exact, MPFR_RNDN);
  mpfr_mul_2si(difference.get(), difference.get(), -last, MPFR_RNDN);
  return std::fabs(mpfr_get_d(difference.get(), MPFR_RNDN));
}

// Arguments: uniform in a range, of any magnitude in a range of exponents with either sign, any bits.
enum class Spread { kUniform, kMagnitudes, kBits };
struct Arguments {
  Spread spread;
  double low, high;

  template <class T>
  T next(kit::Random& random) const {
    if (spread == Spread::kBits) return std::bit_cast<T>(static_cast<elementary::BitsOf<T>>(random.bits()));
    if (spread == Spread::kUniform) return static_cast<T>(random.real(low, high));
    const double size = std::exp2(random.real(low, high));
    return static_cast<T>(random.bits() % 2 == 0 ? size : -size);
  }
};

constexpr int kCount = 30000;

template <class T, class Ours, class Reference>
void expectError(const char* name, double bound, std::initializer_list<Arguments> all, Ours ours, Reference reference) {
  double worst = 0;
  T at = 0;
  uint64_t stream = 0;
  Exact x, y;
  for (const Arguments& arguments : all) {
    kit::Random random = kit::Random::fixed(++stream);
    for (int i = 0; i < kCount; i += 8) {
      T source[8], result[8];
      for (T& s : source) s = arguments.next<T>(random);
      ours(Lanes<T, 8>::load(source)).store(result);
      for (int k = 0; k < 8; ++k) {
        mpfr_set_d(x.get(), static_cast<double>(source[k]), MPFR_RNDN);
        reference(y.get(), x.get());
        const double e = error(result[k], y.get());
        if (e > worst) worst = e, at = source[k];
      }
    }
  }
  std::printf("%s of %s: %.4f last places, at %a\n", name, std::is_same_v<T, float> ? "floats" : "doubles", worst,
              static_cast<double>(at));
  EXPECT_LE(worst, bound) << name << " of " << at;
}

#define QORSR_EXPECT_ERROR(name, doubleBound, floatBound, ...)                           \
  {                                                                                      \
    const auto reference = [](mpfr_ptr y, mpfr_ptr x) { mpfr_##name(y, x, MPFR_RNDN); }; \
    const auto ours = [](const auto& x) { return qorsr::name(x); };                      \
    expectError<double>(#name, doubleBound, __VA_ARGS__, ours, reference);               \
    expectError<float>(#name, floatBound, __VA_ARGS__, ours, reference);                 \
  }
#define QORSR_SPREADS(...) \
  { __VA_ARGS__ }

TEST(ElementaryAccuracy, Exponential) {
  QORSR_EXPECT_ERROR(exp, 0.80, 0.80,
                     QORSR_SPREADS({Spread::kUniform, -1, 1}, {Spread::kUniform, -104, 89}, {Spread::kUniform, -746, 710},
                                   {Spread::kUniform, -746, -706}, {Spread::kMagnitudes, -40, 6}, {Spread::kBits, 0, 0}));
}
TEST(ElementaryAccuracy, Logarithms) {
  QORSR_EXPECT_ERROR(log, 0.65, 0.65,
                     QORSR_SPREADS({Spread::kUniform, 0.5, 2}, {Spread::kUniform, 0.99, 1.01}, {Spread::kUniform, 0, 1000},
                                   {Spread::kMagnitudes, -1074, 1023}, {Spread::kMagnitudes, -149, 127}, {Spread::kBits, 0, 0}));
  QORSR_EXPECT_ERROR(log10, 0.65, 0.65,
                     QORSR_SPREADS({Spread::kUniform, 0.5, 2}, {Spread::kUniform, 0.99, 1.01}, {Spread::kUniform, 0, 1000},
                                   {Spread::kMagnitudes, -1074, 1023}, {Spread::kMagnitudes, -149, 127}, {Spread::kBits, 0, 0}));
}
TEST(ElementaryAccuracy, SineAndCosine) {
  QORSR_EXPECT_ERROR(sin, 0.85, 0.65,
                     QORSR_SPREADS({Spread::kUniform, -0.8, 0.8}, {Spread::kUniform, -7, 7}, {Spread::kUniform, -1e4, 1e4},
                                   {Spread::kUniform, -2e7, 2e7}, {Spread::kMagnitudes, -60, 60}, {Spread::kBits, 0, 0}));
  QORSR_EXPECT_ERROR(cos, 0.85, 0.65,
                     QORSR_SPREADS({Spread::kUniform, -0.8, 0.8}, {Spread::kUniform, -7, 7}, {Spread::kUniform, -1e4, 1e4},
                                   {Spread::kUniform, -2e7, 2e7}, {Spread::kMagnitudes, -60, 60}, {Spread::kBits, 0, 0}));
}

template <class T>
void expectPowerError(double bound, Arguments bases, Arguments exponents, uint64_t stream) {
  kit::Random random = kit::Random::fixed(stream);
  Exact x, y, z;
  double worst = 0;
  for (int i = 0; i < kCount; i += 4) {
    T base[4], exponent[4], result[4];
    for (int k = 0; k < 4; ++k) base[k] = bases.next<T>(random), exponent[k] = exponents.next<T>(random);
    pow(Lanes<T, 4>::load(base), Lanes<T, 4>::load(exponent)).store(result);
    for (int k = 0; k < 4; ++k) {
      mpfr_set_d(x.get(), static_cast<double>(base[k]), MPFR_RNDN);
      mpfr_set_d(y.get(), static_cast<double>(exponent[k]), MPFR_RNDN);
      mpfr_pow(z.get(), x.get(), y.get(), MPFR_RNDN);
      const double e = error(result[k], z.get());
      EXPECT_LE(e, bound) << base[k] << " to the " << exponent[k];
      worst = std::fmax(worst, e);
    }
  }
  std::printf("pow of %s: %.4f last places\n", std::is_same_v<T, float> ? "floats" : "doubles", worst);
}
template <class T>
void expectPowerErrors(double bound) {
  expectPowerError<T>(bound, {Spread::kUniform, 0, 100}, {Spread::kUniform, -100, 100}, 1);
  expectPowerError<T>(bound, {Spread::kUniform, 0.999, 1.001}, {Spread::kUniform, -5e5, 5e5}, 2);
  expectPowerError<T>(bound, {Spread::kMagnitudes, -1074, 1023}, {Spread::kUniform, -3, 3}, 3);
  expectPowerError<T>(bound, {Spread::kBits, 0, 0}, {Spread::kUniform, -3, 3}, 4);
}
TEST(ElementaryAccuracy, Power) {
  expectPowerErrors<double>(0.80);
  expectPowerErrors<float>(0.51);
}

#else

TEST(ElementaryAccuracy, BesideMpfr) { GTEST_SKIP() << "GNU MPFR is not installed"; }

#endif

}  // namespace
