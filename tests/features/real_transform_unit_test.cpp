// The real transform and its inverse: accuracy at every length against double precision, known signals, linearity, memory.
#include "features/real_transform.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "kit/compare.h"
#include "kit/memory.h"
#include "kit/random.h"
#include "model/transform.h"

namespace {

using qorsr::RealTransform;

constexpr double kEpsilon = 0x1.0p-24;  // half a unit in the last place of 1
constexpr int kHighestOrder = 18;

// A set-up with its memory: blocks that end at pages that cannot be touched, `shift` bytes longer than need be, and so at another
// alignment.
struct Transform {
  explicit Transform(int o, int shift = 0)
      : order(o),
        length(int64_t{1} << o),
        block(RealTransform::setupBytes(o) + shift, kit::Place::kAtGuard),
        work(RealTransform::workBytes(o) + shift, kit::Place::kAtGuard),
        setup(RealTransform::init(block.data(), o)) {}

  template <class T>
  std::vector<float> spectrum(const std::vector<T>& x) const {
    const kit::Area<T> source(x, kit::Place::kAtGuard);
    const kit::Area<float> result(length + 2, kit::Place::kAtGuard);
    setup->transform(source.data(), result.data(), work.data());
    EXPECT_BITS(source.values(), x);
    return result.values();
  }
  std::vector<float> inverse(const std::vector<float>& spectrum) const {
    const kit::Area<float> source(spectrum, kit::Place::kAtGuard), result(length, kit::Place::kAtGuard);
    setup->inverse(source.data(), result.data(), work.data());
    EXPECT_BITS(source.values(), spectrum);
    return result.values();
  }
  std::vector<float> magnitudes(const std::vector<float>& x) const {
    const kit::Area<float> source(x, kit::Place::kAtGuard), result(length / 2 + 1, kit::Place::kAtGuard);
    setup->magnitudes(source.data(), result.data(), work.data());
    return result.values();
  }

  int order;
  int64_t length;
  kit::Area<uint8_t> block, work;
  RealTransform* setup;
};

// The largest distance of a bin from the exact one, in units of the root mean square of all.
double largestError(const std::vector<float>& actual, const model::Spectrum& exact) {
  double largest = 0;
  for (std::size_t k = 0; k < exact.size(); ++k) {
    const std::complex<double> bin(static_cast<double>(actual[2 * k]), static_cast<double>(actual[2 * k + 1]));
    largest = std::max(largest, std::abs(bin - exact[k]));
  }
  return largest / model::rms(exact);
}

// Each of the log2 N stages adds an independent error of about 0.6 epsilon times the root mean square, so the sum is as the root of
// log2 N; the largest of N such lies about sqrt(2 ln N) standard deviations out. Together: 0.7 log2 N. Few bins vary more.
double bound(int order) { return kEpsilon * (3.0 + 0.7 * order); }

TEST(RealTransform, IsAccurateAtEveryLength) {
  kit::Random random;
  for (int order = 1; order <= kHighestOrder; ++order) {
    const Transform transform(order);
    for (int trial = 0; trial < (order < 14 ? 4 : 1); ++trial) {
      const auto x = random.vector<float>(transform.length);
      const double error = largestError(transform.spectrum(x), model::realFourier(x));
      EXPECT_LE(error, bound(order)) << "order " << order << ": " << error / kEpsilon << " roundings";
      if (trial == 0) RecordProperty("roundings_of_order_" + std::to_string(order), std::to_string(error / kEpsilon));
    }
  }
}

TEST(RealTransform, EveryImpulseHasItsRoots) {
  for (int order = 1; order <= 9; ++order) {
    const Transform transform(order);
    for (int64_t at = 0; at < transform.length; ++at) {
      std::vector<float> x(static_cast<std::size_t>(transform.length));
      x[static_cast<std::size_t>(at)] = 3.0F;
      ASSERT_LE(largestError(transform.spectrum(x), model::realFourier(x)), 6 * kEpsilon) << "order " << order << " at " << at;
    }
  }
}

TEST(RealTransform, TheFirstSampleAloneGivesAFlatSpectrumExactly) {
  for (int order = 1; order <= kHighestOrder; ++order) {
    const Transform transform(order);
    std::vector<float> x(static_cast<std::size_t>(transform.length));
    x[0] = 0.1F;
    const auto spectrum = transform.spectrum(x);
    for (std::size_t k = 0; k < spectrum.size(); k += 2) {
      ASSERT_EQ(spectrum[k], 0.1F);
      ASSERT_EQ(spectrum[k + 1], 0.0F);
    }
  }
}

TEST(RealTransform, ASinusoidHasOneBin) {
  for (int order = 3; order <= 12; ++order) {
    const Transform transform(order);
    const auto n = static_cast<double>(transform.length);
    for (const int64_t bin : {int64_t{1}, transform.length / 8 + 1, transform.length / 2 - 1}) {
      std::vector<float> x;
      for (int64_t j = 0; j < transform.length; ++j) {
        x.push_back(static_cast<float>(std::cos(2 * M_PI * static_cast<double>(j * bin % transform.length) / n + 0.5)));
      }
      const auto magnitudes = transform.magnitudes(x);
      for (int64_t k = 0; k <= transform.length / 2; ++k) {
        ASSERT_NEAR(static_cast<double>(magnitudes[static_cast<std::size_t>(k)]), k == bin ? n / 2 : 0.0, 4 * kEpsilon * n)
            << "order " << order << " bin " << k;
      }
    }
  }
}

TEST(RealTransform, IsLinear) {
  kit::Random random;
  for (int order = 1; order <= 12; ++order) {
    const Transform transform(order);
    const auto a = random.vector<float>(transform.length), b = random.vector<float>(transform.length);
    std::vector<float> doubled, sum;
    for (std::size_t i = 0; i < a.size(); ++i) {
      doubled.push_back(-2.0F * a[i]);
      sum.push_back(a[i] + b[i]);
    }
    const auto ofA = transform.spectrum(a), ofB = transform.spectrum(b), ofSum = transform.spectrum(sum);
    auto expected = ofA;
    for (float& value : expected) value *= -2.0F;
    auto ofDoubled = transform.spectrum(doubled);
    for (const std::size_t end : {std::size_t{1}, expected.size() - 1}) expected[end] = 0.0F;  // zeros have no sign there
    EXPECT_BITS(ofDoubled, expected) << "a power of two is exact; order " << order;
    model::Spectrum exact;
    for (std::size_t k = 0; k < ofA.size(); k += 2) {
      exact.emplace_back(static_cast<double>(ofA[k]) + static_cast<double>(ofB[k]),
                         static_cast<double>(ofA[k + 1]) + static_cast<double>(ofB[k + 1]));
    }
    EXPECT_LE(largestError(ofSum, exact), 3 * bound(order));
  }
}

TEST(RealTransform, EndsAreRealAndMagnitudesAreThoseOfTheSpectrum) {
  kit::Random random;
  for (int order = 1; order <= 12; ++order) {
    const Transform transform(order);
    const auto x = random.vector<float>(transform.length);
    const auto spectrum = transform.spectrum(x);
    EXPECT_BITS(spectrum[1], 0.0F);
    EXPECT_BITS(spectrum.back(), 0.0F);
    std::vector<float> expected;
    for (std::size_t k = 0; k < spectrum.size(); k += 2) {
      expected.push_back(std::sqrt(spectrum[k] * spectrum[k] + spectrum[k + 1] * spectrum[k + 1]));
    }
    EXPECT_BITS(transform.magnitudes(x), expected) << "order " << order;
  }
}

TEST(RealTransform, EndsAreRealWhateverTheSignal) {
  constexpr float kInfinite = std::numeric_limits<float>::infinity(), kMost = std::numeric_limits<float>::max();
  for (int order = 1; order <= 9; ++order) {
    const Transform transform(order);
    for (const float value : {-1.0F, -0.0F, kMost, -kMost, kInfinite, -kInfinite, std::numeric_limits<float>::quiet_NaN()}) {
      for (int64_t at = 0; at < transform.length; at += transform.length / 2) {
        std::vector<float> x(static_cast<std::size_t>(transform.length), -1.0F);
        x[static_cast<std::size_t>(at)] = value;
        const auto spectrum = transform.spectrum(x);
        ASSERT_BITS(spectrum[1], 0.0F) << "order " << order << ", value " << value;
        ASSERT_BITS(spectrum[static_cast<std::size_t>(transform.length) + 1], 0.0F) << "order " << order << ", value " << value;
      }
    }
  }
}

TEST(RealTransform, WholeNumbersAreTakenAsTheyAre) {
  kit::Random random;
  for (int order = 1; order <= 10; ++order) {
    const Transform transform(order);
    const auto x = random.vector<int16_t>(transform.length);
    EXPECT_BITS(transform.spectrum(x), transform.spectrum(std::vector<float>(x.begin(), x.end()))) << "order " << order;
  }
}

TEST(RealTransform, AddressesOfSetUpAndWorkDoNotMatter) {
  kit::Random random;
  for (const int order : {1, 2, 5, 7, 8}) {
    const auto x = random.vector<float>(int64_t{1} << order);
    const auto expected = Transform(order).spectrum(x);
    for (int shift = 1; shift < 64; ++shift) EXPECT_BITS(Transform(order, shift).spectrum(x), expected) << order << " " << shift;
  }
}

// ---- The inverse ----

// As many roundings as forwards.
TEST(RealTransform, TheInverseReturnsTheSamples) {
  kit::Random random;
  for (int order = 1; order <= kHighestOrder; ++order) {
    const Transform transform(order);
    const auto x = random.vector<float>(transform.length);
    const auto back = transform.inverse(transform.spectrum(x));
    double largest = 0, power = 0;
    for (std::size_t n = 0; n < x.size(); ++n) {
      largest = std::max(largest, std::fabs(static_cast<double>(back[n]) - static_cast<double>(x[n])));
      power += static_cast<double>(x[n]) * static_cast<double>(x[n]);
    }
    EXPECT_LE(largest, 2 * bound(order) * std::sqrt(power / static_cast<double>(x.size()))) << "order " << order;
  }
}

// Of amplitude 10 at most.
TEST(RealTransform, TheInverseOfOneBinIsASinusoid) {
  for (int order = 1; order <= 9; ++order) {
    const Transform transform(order);
    const auto n = static_cast<double>(transform.length);
    for (int64_t bin = 0; bin <= transform.length / 2; ++bin) {
      std::vector<float> spectrum(static_cast<std::size_t>(transform.length + 2));
      const bool end = bin == 0 || bin == transform.length / 2;
      spectrum[static_cast<std::size_t>(2 * bin)] = 3.0F;
      spectrum[static_cast<std::size_t>(2 * bin + 1)] = -4.0F;  // not looked at in bins 0 and N/2
      const auto x = transform.inverse(spectrum);
      for (int64_t j = 0; j < transform.length; ++j) {
        const double angle = 2 * M_PI * static_cast<double>(j * bin % transform.length) / n;
        const double exact = end ? 3.0 * std::cos(angle) : 2 * (3.0 * std::cos(angle) + 4.0 * std::sin(angle));
        ASSERT_NEAR(static_cast<double>(x[static_cast<std::size_t>(j)]) * n, exact, 8 * bound(order))
            << order << " " << bin << " " << j;
      }
    }
  }
}

TEST(RealTransform, AddressesDoNotMatterToTheInverse) {
  kit::Random random;
  for (const int order : {1, 2, 5, 7, 8}) {
    const auto spectrum = random.vector<float>((int64_t{1} << order) + 2);
    const auto expected = Transform(order).inverse(spectrum);
    for (int shift = 1; shift < 64; shift += 7)
      EXPECT_BITS(Transform(order, shift).inverse(spectrum), expected) << order << " " << shift;
  }
}

}  // namespace
