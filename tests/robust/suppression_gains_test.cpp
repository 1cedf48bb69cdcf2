// Suppression gains: bits against the model over all lengths and the whole range, every octave and step, faults, environment.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "kit/compare.h"
#include "kit/core.h"
#include "kit/environment.h"
#include "kit/faults.h"
#include "kit/memory.h"
#include "kit/random.h"
#include "model/suppression_gains.h"
#include "qorsr.h"

namespace {

QorStatus ephraimMalah(const float* p, const float* s, float* g, int32_t n) { return qorsFilterUpdateEMNS_32f(p, s, g, n); }
QorStatus ephraimMalah(const int32_t* p, const int32_t* s, int32_t* g, int32_t n) { return qorsFilterUpdateEMNS_32s(p, s, g, n); }
QorStatus wiener(const float* s, float* g, int32_t n) { return qorsFilterUpdateWiener_32f(s, g, n); }
QorStatus wiener(const int32_t* s, int32_t* g, int32_t n) { return qorsFilterUpdateWiener_32s(s, g, n); }

template <class T>
class Gains : public testing::Test {};
struct NameOfType {
  template <class T>
  static std::string GetName(int) {
    return std::is_same_v<T, float> ? "32f" : "32s";
  }
};
using Types = testing::Types<float, int32_t>;
TYPED_TEST_SUITE(Gains, Types, NameOfType);

const std::vector<int32_t>& gainLengths() {
  static const auto lengths = [] {
    std::vector<int32_t> all = kit::lengths();
    all.push_back(4096);
    all.push_back(65535);
    return all;
  }();
  return lengths;
}

template <class T>
void expectEphraimMalah(const std::vector<T>& prior, const std::vector<T>& posterior, kit::Place place) {
  const auto length = static_cast<int32_t>(prior.size());
  const kit::Area<T> p(prior, place), snr(posterior, place), gain(length, place);
  std::vector<T> expected;
  for (std::size_t i = 0; i < prior.size(); ++i) expected.push_back(model::ephraimMalah(prior[i], posterior[i]));
  ASSERT_EQ(ephraimMalah(p.data(), snr.data(), gain.data(), length), qorStatusOk);
  for (std::size_t i = 0; i < prior.size(); ++i) {
    if (kit::canonicalBits(gain[static_cast<int64_t>(i)]) != kit::canonicalBits(expected[i])) {
      ADD_FAILURE() << "prior " << prior[i] << " posterior " << posterior[i];
      break;
    }
  }
  ASSERT_BITS(gain.values(), expected) << "length " << length;
  ASSERT_TRUE(gain.edgesKept());
}

// Priors and ratios over their whole range, most of them as speech has them, some at the ends.
float drawPrior(kit::Random& random, float) {
  const double exponent = random.real(-8, 0);
  const float ends[] = {0.0F, -0.0F, 1.0F, 1e-40F, 3e-5F};
  return random.integer(0, 4) == 0 ? ends[random.integer(0, 4)] : static_cast<float>(std::pow(10.0, exponent));
}
int32_t drawPrior(kit::Random& random, int32_t) {
  const int32_t ends[] = {0, 1, INT32_MAX, 1 << 24, 127};
  const int64_t shift = random.integer(0, 30), value = random.integer(0, INT32_MAX);
  return random.integer(0, 4) == 0 ? ends[random.integer(0, 4)] : static_cast<int32_t>(value >> shift);
}
float drawPosterior(kit::Random& random, float) {
  const double exponent = random.real(-5, 2.2);
  return random.integer(0, 7) == 0 ? random.nasty<float>() : static_cast<float>(std::pow(10.0, exponent));
}
int32_t drawPosterior(kit::Random& random, int32_t) {
  const int64_t shift = random.integer(8, 30), value = random.integer(0, INT32_MAX);
  return random.integer(0, 7) == 0 ? random.nasty<int32_t>() : static_cast<int32_t>(value >> shift);
}

TYPED_TEST(Gains, EphraimMalahOfEveryLength) {
  using T = TypeParam;
  kit::Random random;
  for (const int32_t length : gainLengths()) {
    for (const kit::Place place : kit::kPlaces) {
      std::vector<T> prior, posterior;
      for (int32_t i = 0; i < length; ++i) {
        prior.push_back(drawPrior(random, T()));
        posterior.push_back(drawPosterior(random, T()));
      }
      expectEphraimMalah(prior, posterior, place);
    }
  }
}

// Every q up to 3000, both ends of every octave, and q at the limits. Of floats a prior of 1, so that 2^22 v is posterior 2^22.
TEST(GainsOfFloats, EphraimMalahOfEveryOctave) {
  std::vector<float> posterior;
  const auto add = [&](double q) { posterior.push_back(static_cast<float>(q / 4194304)); };
  for (int q = 0; q <= 3000; ++q) add(q);
  for (int b = 7; b <= 28; ++b) {
    for (const double share : {1.0, 1.0000001, 1.25, 1.5, 1.9, 1.9999999}) add(share * std::ldexp(1.0, b));
  }
  for (const double q : {128.0, 128.9, 129.0, 130.0, 130.02342, 130.1, 419430400.0, 419430432.0, 1e12}) add(q);
  expectEphraimMalah(std::vector<float>(posterior.size(), 1.0F), posterior, kit::Place::kAtGuard);
}
TEST(GainsOfIntegers, EphraimMalahOfEveryOctave) {
  kit::Random random;
  std::vector<int32_t> prior, posterior;
  const auto add = [&](int64_t p, int64_t snr) {
    prior.push_back(static_cast<int32_t>(std::clamp<int64_t>(p, 0, INT32_MAX)));
    posterior.push_back(static_cast<int32_t>(std::clamp<int64_t>(snr, INT32_MIN, INT32_MAX)));
  };
  for (int64_t q = 0; q <= 3000; ++q) {  // snr is a power of two: q is exact, and one less beside it
    add(q << 9, 1 << 15);
    add((q << 9) - 1, 1 << 15);
  }
  for (int b = 7; b <= 28; ++b) {
    for (const int64_t snr : {1, 1000, 32768, 3276799, 3276800, 3276801}) {
      for (int k = -2; k <= 2; ++k) add((int64_t{1} << (b + 24)) / snr + k, snr);
      add(random.integer(0, INT32_MAX), snr);
    }
  }
  for (const int64_t snr : {INT32_MIN, -1, 0, 1, 2, INT32_MAX}) add(INT32_MAX, snr);
  expectEphraimMalah(prior, posterior, kit::Place::kAtGuard);
}

TEST(GainsOfFloats, NaNsPassThroughAPrior) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  const float prior[] = {nan, 0.5F, nan, 0.0F}, posterior[] = {1.0F, nan, nan, 0.0F};
  float gain[4];
  ASSERT_EQ(qorsFilterUpdateEMNS_32f(prior, posterior, gain, 4), qorStatusOk);
  EXPECT_TRUE(std::isnan(gain[0]) && std::isnan(gain[2]));
  EXPECT_BITS(gain[1], model::ephraimMalah(0.5F, 0.0F));
  EXPECT_BITS(gain[3], 0.0F);
}

template <class T>
void expectWiener(const std::vector<T>& x, kit::Place place) {
  const auto length = static_cast<int32_t>(x.size());
  const kit::Area<T> snr(x, place), gain(length, place);
  std::vector<T> expected;
  bool negative = false;
  for (const T value : x) {
    expected.push_back(model::wiener(value));
    negative = negative || value < 0;
  }
  ASSERT_EQ(wiener(snr.data(), gain.data(), length), negative ? qorStatusBadArgument : qorStatusOk);
  ASSERT_BITS(gain.values(), expected) << "length " << length;
  ASSERT_TRUE(gain.edgesKept());
}

TYPED_TEST(Gains, WienerOfEveryLength) {
  using T = TypeParam;
  kit::Random random;
  for (const int32_t length : gainLengths()) {
    for (const kit::Place place : kit::kPlaces) {
      std::vector<T> x;
      for (int32_t i = 0; i < length; ++i) {
        const T value = drawPosterior(random, T());
        x.push_back(value < 0 && place != kit::Place::kAtGuard ? T(0) : value);
      }
      expectWiener(x, place);
    }
  }
}

TEST(GainsOfIntegers, EveryStepOfTheStaircase) {
  std::vector<int32_t> x = {INT32_MAX, INT32_MAX - 1};
  for (int64_t v = 0; v <= (1 << 25) + (1 << 21); v += v < 1 << 17 ? 1 << 11 : v < 1 << 21 ? 1 << 17 : 1 << 21) {
    for (int64_t k = -1; k <= 1; ++k) {
      if (v + k >= 0) x.push_back(static_cast<int32_t>(v + k));
    }
  }
  expectWiener(x, kit::Place::kAtGuard);
  const int32_t ends[] = {(1 << 25) - 1, 1 << 25, 1 << 24, 0, 2047, 2048};
  int32_t gain[6];
  ASSERT_EQ(qorsFilterUpdateWiener_32s(ends, gain, 6), qorStatusOk);
  const int32_t expected[] = {2143297520, 0x7fffffff, 2143297520, 0, 0, 126322567};
  EXPECT_BITS(gain, expected, 6);
}

// A negative ratio anywhere is reported, and everything is written all the same: in the first block, in the middle, and in a last one.
TYPED_TEST(Gains, ANegativeRatioIsReported) {
  using T = TypeParam;
  for (const int32_t length : {1, 3, 8, 17, 40}) {
    for (int32_t at = 0; at < length; ++at) {
      std::vector<T> x(static_cast<std::size_t>(length), T(70000));
      x[static_cast<std::size_t>(at)] = std::is_same_v<T, float> ? -std::numeric_limits<T>::denorm_min() : T(-1);
      expectWiener(x, kit::Place::kAtGuard);
    }
  }
}

// ---- Faults ----

template <class T>
struct Args {
  const T *prior, *posterior;
  T* gain;
  int32_t length;
};

TYPED_TEST(Gains, Faults) {
  using T = TypeParam;
  using A = Args<T>;
  const T one = std::is_same_v<T, float> ? T(1) : std::numeric_limits<T>::max();
  const std::vector<T> prior(70000, one), posterior(70000, T(3));
  std::vector<T> low = prior, gain(70000, T(7));
  low[19] = std::is_same_v<T, float> ? -std::numeric_limits<T>::denorm_min() : T(-1);
  kit::FaultTable<A> table({prior.data(), posterior.data(), gain.data(), 20},
                           [](const A& a) { return ephraimMalah(a.prior, a.posterior, a.gain, a.length); }, {{gain.data(), 70000}});
  table.fault("null prior", qorStatusNullPointer, &A::prior, nullptr)
      .fault("null posterior", qorStatusNullPointer, &A::posterior, nullptr)
      .fault("null gain", qorStatusNullPointer, &A::gain, nullptr)
      .fault("length zero", qorStatusBadLength, &A::length, 0)
      .fault("length negative", qorStatusBadLength, &A::length, INT32_MIN)
      .fault("length above 65535", qorStatusBadLength, &A::length, 65536)
      .fault("prior below 0", qorStatusBadRange, &A::prior, low.data(), kit::against(&A::length));
  std::vector<T> high = prior;
  if constexpr (std::is_same_v<T, float>) {
    high[0] = std::nextafter(1.0F, 2.0F);
    table.fault("prior above 1", qorStatusBadRange, &A::prior, high.data(), kit::against(&A::length));
  }
  table.check();
  EXPECT_EQ(ephraimMalah(low.data(), posterior.data(), gain.data(), 19), qorStatusOk);  // not behind the end
  kit::FaultTable<A>({prior.data(), posterior.data(), gain.data(), 20},
                     [](const A& a) { return wiener(a.posterior, a.gain, a.length); }, {{gain.data(), 70000}})
      .fault("null snr", qorStatusNullPointer, &A::posterior, nullptr)
      .fault("null gain", qorStatusNullPointer, &A::gain, nullptr)
      .fault("length zero", qorStatusBadLength, &A::length, 0)
      .fault("length negative", qorStatusBadLength, &A::length, INT32_MIN)
      .fault("length above 65535", qorStatusBadLength, &A::length, 65536)
      .check();
}

TYPED_TEST(Gains, KeepTheEnvironmentAndAllocateNothing) {
  using T = TypeParam;
  const int64_t before = kit::Core::calls();
  const std::vector<T> prior(21, T(1)), posterior(21, T(3));
  std::vector<T> gain(21);
  kit::expectEnvironmentKept([&] {
    ephraimMalah(prior.data(), posterior.data(), gain.data(), 21);
    wiener(posterior.data(), gain.data(), 21);
  });
  EXPECT_EQ(kit::Core::calls(), before);
}

}  // namespace
