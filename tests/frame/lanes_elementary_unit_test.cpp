// The elementary functions: values known to many digits, special values, the same bits for any number of lanes and everywhere.
// Compiled once at every instruction level. How large the errors are on many arguments: lanes_elementary_accuracy_unit_test.cpp.
#include <gtest/gtest.h>

#include <bit>
#include <cfenv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "frame/elementary.h"
#include "frame/elementary_values.h"
#include "kit/compare.h"
#include "kit/random.h"

namespace qorsr {  // whose functions hide the system's

namespace {

using test::Reference;

// The error of `actual` in last places of the rounded value.
template <class T>
double error(T actual, const Reference<T>& reference) {
  if (!std::isfinite(actual)) return HUGE_VAL;
  const T size = std::fabs(reference.result);
  const double last = static_cast<double>(std::nextafter(size, std::numeric_limits<T>::infinity())) - static_cast<double>(size);
  return std::fabs((static_cast<double>(actual) - static_cast<double>(reference.result)) / last - reference.rest);
}

template <class T, std::size_t Size, class F>
void expectClose(const Reference<T> (&references)[Size], double bound, F f) {
  for (const Reference<T>& r : references) {
    const double e = error<T>(f(r.x, r.y), r);
    EXPECT_LE(e, bound) << testing::PrintToString(r.x) << ", " << testing::PrintToString(r.y) << ": " << f(r.x, r.y);
  }
}

#define EXPECT_CLOSE(references, bound, call)                                                                              \
  expectClose(test::references##Double, bound, []([[maybe_unused]] double x, [[maybe_unused]] double y) { return call; }); \
  expectClose(test::references##Float, bound, []([[maybe_unused]] float x, [[maybe_unused]] float y) { return call; })

// The largest errors that elementary.h states, and some room: results are the same in every run, so what passes once passes always.
TEST(Elementary, HardArgumentsAreWithinTheBound) {
  EXPECT_CLOSE(kExp, 0.8, qorsr::exp(x));
  EXPECT_CLOSE(kLog, 0.65, qorsr::log(x));
  EXPECT_CLOSE(kLog10, 0.65, qorsr::log10(x));
  EXPECT_CLOSE(kSin, 0.85, qorsr::sin(x));
  EXPECT_CLOSE(kCos, 0.85, qorsr::cos(x));
  EXPECT_CLOSE(kPow, 0.8, qorsr::pow(x, y));
}

// Numbers of every kind, and such as the functions are used on.
template <class T>
std::vector<T> arguments(uint64_t stream, int count, double low, double high) {
  kit::Random random = kit::Random::fixed(stream);
  std::vector<T> v;
  for (int i = 0; i < count; ++i) {
    const bool any = i % 4 == 3;
    const auto bits = random.bits();
    v.push_back(any ? std::bit_cast<T>(static_cast<elementary::BitsOf<T>>(bits)) : static_cast<T>(random.real(low, high)));
  }
  return v;
}

template <class T, int N, class F>
std::vector<T> inLanes(const std::vector<T>& x, F f) {
  std::vector<T> v(x.size());
  for (std::size_t i = 0; i + N <= x.size(); i += N) f(Lanes<T, N>::load(x.data() + i)).store(v.data() + i);
  return v;
}

template <class T, class F>
void expectSameInAnyLanes(F f) {
  for (const double range : {1.0, 30.0, 800.0}) {
    const auto x = arguments<T>(static_cast<uint64_t>(range), 4096, -range, range);
    const auto one = inLanes<T, 1>(x, f);
    EXPECT_TRUE(kit::sameBits(inLanes<T, 2>(x, f), one));
    EXPECT_TRUE(kit::sameBits(inLanes<T, 4>(x, f), one));
    EXPECT_TRUE(kit::sameBits(inLanes<T, 8>(x, f), one));
    EXPECT_TRUE(kit::sameBits(inLanes<T, 16>(x, f), one));
    EXPECT_TRUE(kit::sameBits(inLanes<T, 32>(x, f), one));
  }
}

// A neighbour that takes another path changes nothing, nor does the number of lanes.
TEST(Elementary, TheNumberOfLanesNeverShows) {
  const auto both = [](auto f) {
    expectSameInAnyLanes<double>(f);
    expectSameInAnyLanes<float>(f);
  };
  both([](const auto& x) { return exp(x); });
  both([](const auto& x) { return expOfMinus(abs(x)); });
  both([](const auto& x) { return log(x); });
  both([](const auto& x) { return log10(x); });
  both([](const auto& x) { return sin(x); });
  both([](const auto& x) { return cos(x); });
  both([](const auto& x) { return sinOfMagnitude(x); });
  both([](const auto& x) { return pow(abs(x), x); });
  both([](const auto& x) { return pow(x, x + x); });
}

template <class T, class F, class G>
void expectSameFunction(F f, G g) {
  for (const double range : {2.0, 110.0, 1500.0}) {
    const auto x = arguments<T>(static_cast<uint64_t>(range) + 50, 4000, -range, range);
    EXPECT_TRUE(kit::sameBits(inLanes<T, 8>(x, f), inLanes<T, 8>(x, g)));
  }
}

TEST(Elementary, ShortFormsGiveTheSameBits) {
  const auto both = [](auto f, auto g) {
    expectSameFunction<double>(f, g);
    expectSameFunction<float>(f, g);
  };
  both([](const auto& x) { return expOfMinus(abs(x)); }, [](const auto& x) { return exp(minusAbs(x)); });
  both([](const auto& x) { return sinOfMagnitude(x); }, [](const auto& x) { return sin(abs(x)); });
  both([](const auto& x) { return cos(x); }, [](const auto& x) { return cos(abs(x)); });
}

// One digest for all levels, compilers and processors, of the two types.
template <class T, class F>
void fold(uint64_t& digest, double low, double high, F f) {
  for (const T x : inLanes<T, 8>(arguments<T>(99, 20000, low, high), f)) {
    digest = (digest ^ kit::canonicalBits(x)) * 0x100000001B3;  // FNV-1a, a word at a time
  }
}
template <class T>
uint64_t digestOfAll() {
  uint64_t digest = 0xCBF29CE484222325;
  fold<T>(digest, -100, 100, [](const auto& x) { return exp(x); });
  fold<T>(digest, 0, 4, [](const auto& x) { return log(x); });
  fold<T>(digest, 0, 4, [](const auto& x) { return log10(x); });
  fold<T>(digest, -1000, 1000, [](const auto& x) { return sin(x); });
  fold<T>(digest, -1000, 1000, [](const auto& x) { return cos(x); });
  fold<T>(digest, -20, 20, [](const auto& x) { return pow(abs(x), x); });
  return digest;
}
TEST(Elementary, TheBitsAreTheSameEverywhere) {
  EXPECT_EQ(digestOfAll<double>(), 14420823000160324161u);
  EXPECT_EQ(digestOfAll<float>(), 13187121930428939359u);
}

// ---- Special values ----

template <class T>
void expectSpecialValues() {
  constexpr T kInf = std::numeric_limits<T>::infinity(), kNaN = std::numeric_limits<T>::quiet_NaN(), kZero = 0;
  constexpr T kLeast = std::numeric_limits<T>::denorm_min(), kMost = std::numeric_limits<T>::max();
  const auto same = [](T actual, T expected) { EXPECT_TRUE(kit::sameBits(actual, expected)); };
  same(exp(kZero), 1);
  same(exp(-kZero), 1);
  same(exp(kInf), kInf);
  same(exp(-kInf), 0);
  same(exp(kMost), kInf);
  same(exp(-kMost), 0);
  same(exp(kLeast), 1);
  same(exp(kNaN), kNaN);
  same(log(T(1)), 0);
  same(log(kZero), -kInf);
  same(log(-kZero), -kInf);
  same(log(kInf), kInf);
  same(log(-kLeast), kNaN);
  same(log(T(-1)), kNaN);
  same(log(-kInf), kNaN);
  same(log(kNaN), kNaN);
  same(log10(kZero), -kInf);
  same(log10(kInf), kInf);
  same(log10(T(-1)), kNaN);
  same(log10(kNaN), kNaN);
  same(sin(kZero), 0);
  same(sin(-kZero), -kZero);
  same(sin(kLeast), kLeast);
  same(sin(-kLeast), -kLeast);
  same(sin(kInf), kNaN);
  same(sin(-kInf), kNaN);
  same(sin(kNaN), kNaN);
  same(cos(kZero), 1);
  same(cos(-kZero), 1);
  same(cos(kLeast), 1);
  same(cos(kInf), kNaN);
  same(cos(kNaN), kNaN);
}
TEST(Elementary, SpecialValues) {
  expectSpecialValues<double>();
  expectSpecialValues<float>();
}

// Ends of the range of exp: the last argument of a finite result, of a normal one, of one that is not zero.
TEST(Elementary, EndsOfTheExponential) {
  EXPECT_LT(exp(0x1.62e42fefa39efp9), HUGE_VAL);
  EXPECT_EQ(exp(0x1.62e42fefa39fp9), HUGE_VAL);
  EXPECT_EQ(exp(-745.1332191019411), 0x1p-1074);
  EXPECT_EQ(exp(-745.1332191019413), 0.0);
  EXPECT_LT(exp(0x1.62e42ep6F), HUGE_VALF);
  EXPECT_EQ(exp(0x1.62e430p6F), HUGE_VALF);
  EXPECT_EQ(exp(-103.97207F), 0x1p-149F);
  EXPECT_EQ(exp(-103.98F), 0.0F);
}

TEST(Elementary, PowersOfTenHaveExactLogarithms) {
  double power = 1;
  for (int k = 0; k <= 22; ++k, power *= 10) EXPECT_EQ(log10(power), k);
  float small = 1;
  for (int k = 0; k <= 10; ++k, small *= 10) EXPECT_EQ(log10(small), static_cast<float>(k));
}

template <class T>
T odd(T x) {  // of a whole number
  return std::fmod(std::fabs(x), T(2));
}

// The table of C, Annex F, for pow: every pair of special values, by its rules in order.
template <class T>
T powByRules(T x, T y) {
  constexpr T kInf = std::numeric_limits<T>::infinity(), kNaN = std::numeric_limits<T>::quiet_NaN();
  if (y == 0 || x == 1) return 1;
  if (std::isnan(x) || std::isnan(y)) return kNaN;
  if (std::isinf(y)) {
    if (x == -1) return 1;
    return (std::fabs(x) > 1) == (y > 0) ? kInf : 0;
  }
  const bool whole = std::trunc(y) == y, turned = whole && odd(y) == 1 && std::signbit(x);
  if (x == 0 || std::isinf(x)) {
    const T size = (x == 0) == (y > 0) ? 0 : kInf;
    return turned ? -size : size;
  }
  if (x < 0 && !whole) return kNaN;
  return std::pow(x, y);  // exact for those that are tested here
}
template <class T>
void expectPowersByRules() {
  constexpr T kInf = std::numeric_limits<T>::infinity(), kNaN = std::numeric_limits<T>::quiet_NaN();
  const T all[] = {0, -T(0), 1, -1, 2, -2, 3, -3, T(0.5), T(-0.5), 4, kInf, -kInf, kNaN, T(1e18), T(-1e18), T(1e18) + 1};
  for (const T x : all) {
    for (const T y : all) {
      const bool root = y == T(0.5) || y == T(-0.5);
      if (root && x > 0 && x != 1 && x != 4) continue;  // not exact
      if (std::fabs(x) == 3 && std::fabs(y) <= 4 && y < 0) continue;
      EXPECT_TRUE(kit::sameBits(pow(x, y), powByRules(x, y))) << x << " to the " << y;
    }
  }
}
TEST(Elementary, SpecialPowers) {
  expectPowersByRules<double>();
  expectPowersByRules<float>();
}

TEST(Elementary, WholePowersOfTwoAreExact) {
  for (int n = -1074; n <= 1023; ++n) EXPECT_EQ(pow(2.0, n), std::ldexp(1.0, n)) << n;
  for (int n = -149; n <= 127; ++n) EXPECT_EQ(pow(2.0F, static_cast<float>(n)), std::ldexp(1.0F, n)) << n;
}

// In another rounding mode the number of turns, or of doublings, is rounded the wrong way and a polynomial is used on twice its range:
// fewer digits hold, as elementary.h says. Sines: of 1.
template <class T, std::size_t Size, class F>
double largestError(const Reference<T> (&references)[Size], F f, bool ofOne) {
  double worst = 0;
  for (const Reference<T>& r : references) {
    if (std::fabs(r.result) < std::numeric_limits<T>::min()) continue;
    const double expected = static_cast<double>(r.result), e = std::fabs(static_cast<double>(f(r.x)) - expected);
    worst = std::fmax(worst, ofOne ? e : e / std::fabs(expected));
  }
  return worst;
}
TEST(Elementary, OtherRoundingModesCostDigits) {
  for (const int mode : {FE_TOWARDZERO, FE_UPWARD, FE_DOWNWARD}) {
    std::fesetround(mode);
    const double doubles[] = {largestError(
                                  test::kExpDouble, [](double x) { return qorsr::exp(x); }, false),
                              largestError(
                                  test::kLogDouble, [](double x) { return qorsr::log(x); }, false),
                              largestError(
                                  test::kSinDouble, [](double x) { return qorsr::sin(x); }, true),
                              largestError(
                                  test::kCosDouble, [](double x) { return qorsr::cos(x); }, true)};
    const double floats[] = {largestError(
                                 test::kExpFloat, [](float x) { return qorsr::exp(x); }, false),
                             largestError(
                                 test::kLogFloat, [](float x) { return qorsr::log(x); }, false),
                             largestError(
                                 test::kSinFloat, [](float x) { return qorsr::sin(x); }, true),
                             largestError(
                                 test::kCosFloat, [](float x) { return qorsr::cos(x); }, true)};
    std::fesetround(FE_TONEAREST);
    for (const double e : doubles) EXPECT_LE(e, 1e-8);
    for (const double e : floats) EXPECT_LE(e, 0.02);
  }
}

}  // namespace

}  // namespace qorsr
