// Filter banks with a transform front: from a frame of samples to the filters' outputs.
#include <gtest/gtest.h>

#include <cmath>

#include "features/filter_bank_fixture.h"
#include "kit/compare.h"
#include "kit/environment.h"
#include "model/filter_bank.h"
#include "model/mel_bank.h"
#include "model/transform.h"

namespace {

using banks::Float;
using banks::Int16;

// An index-shaped mel bank with a transform front, and its filters. The weights, being ratios of small integers, are known in bits.
template <class Kind>
struct FrontBank : banks::Bank<Kind> {
  model::MelArguments a;
  std::vector<model::Filter<typename Kind::Weight>> filters;

  FrontBank(int32_t length, int32_t n) : a{length, 16000, 20, 8000, n, 1127.01048F, 700, 6} {
    EXPECT_EQ(Kind::melAlloc(&this->state, &this->order, length, a.sampleFrequency, a.low, a.high, n, a.melMul, a.melDiv, a.flags),
              qorStatusOk);
    const model::MelBankModel m{a};
    const auto centers = m.centers();
    for (std::size_t k = 1; k + 1 < centers.size(); ++k) filters.push_back(m.filter<typename Kind::Weight>(centers, k));
  }
};

std::vector<double> magnitudesOf(const model::Spectrum& spectrum) {
  std::vector<double> v;
  for (const auto& bin : spectrum) v.push_back(std::abs(bin));
  return v;
}

template <class Weight>
double sumOf(const model::Filter<Weight>& f, const std::vector<double>& magnitudes) {
  double sum = 0;
  for (std::size_t i = 0; i < f.rising.size(); ++i) {
    sum += static_cast<double>(f.rising[i]) * magnitudes[static_cast<std::size_t>(f.risingFirst) + i];
  }
  for (std::size_t i = 0; i < f.falling.size(); ++i) {
    sum += static_cast<double>(f.falling[i]) * magnitudes[static_cast<std::size_t>(f.fallingFirst) + i];
  }
  return sum;
}
template <class Weight>
double weightOf(const model::Filter<Weight>& f) {
  double sum = 0;
  for (const auto w : f.all()) sum += static_cast<double>(w);
  return sum;
}

TEST(FilterBankFront, FloatOutputsAreThoseOfTheMagnitudeSpectrum) {
  kit::Random random;
  for (int32_t order = 1; order <= 13; ++order) {
    const int32_t length = 1 << order;
    for (const int32_t n : {1, 5, 26}) {
      const FrontBank<Float> bank(length, n);
      for (int trial = 0; trial < 3; ++trial) {  // the work memory of one call must not reach the next
        const auto x = random.vector<float>(length);
        const auto spectrum = model::realFourier(x);
        const auto magnitudes = magnitudesOf(spectrum);
        for (const kit::Place place : kit::kPlaces) {
          const kit::Area<float> source(x, place), result(n, place);
          ASSERT_EQ(qorsEvalFBank_32f(source.data(), result.data(), bank.state), qorStatusOk);
          for (int32_t k = 0; k < n; ++k) {
            const auto& f = bank.filters[static_cast<std::size_t>(k)];
            // A bin is off by a few roundings of the usual bin's size (see the transform's own test), a sum by one a term.
            const double expected = sumOf(f, magnitudes),
                         tolerance = 0x1.0p-24 * (3 + 0.7 * order) * model::rms(spectrum) * weightOf(f);
            const float value = result[k];
            ASSERT_TRUE(kit::within(&value, &expected, 1, tolerance + 0x1.0p-23 * (4 + length / 16.0) * expected))
                << "order " << order << " filter " << k + 1 << " of " << n;
          }
          ASSERT_TRUE(source.edgesKept() && result.edgesKept());
        }
      }
    }
  }
}

TEST(FilterBankFront, AnImpulseGivesTheSumOfTheWeights) {
  for (const int32_t length : {2, 4, 16, 512}) {
    const FrontBank<Float> bank(length, 3);
    std::vector<float> x(static_cast<std::size_t>(length)), result(3), expected;
    x[0] = -2.0F;
    ASSERT_EQ(qorsEvalFBank_32f(x.data(), result.data(), bank.state), qorStatusOk);
    const std::vector<float> flat(static_cast<std::size_t>(length) / 2 + 1, 2.0F);
    for (const auto& f : bank.filters) expected.push_back(model::evaluate(f, expected.empty(), flat));
    EXPECT_BITS(result, expected);
  }
}

// A frame whose spectrum is exact: the first sample alone. Every magnitude is then 64 |x0|, as long as nothing is limited.
TEST(FilterBankFront, Int16OutputsOfAnImpulseAgreeInBits) {
  for (const int32_t length : {2, 8, 64, 512}) {
    const FrontBank<Int16> bank(length, 4);
    const auto n = bank.filters.size();
    for (const int16_t sample : {0, 1, -1, 7, -300, 2047, 2049, 32767, -32768}) {
      std::vector<int16_t> x(static_cast<std::size_t>(length));
      x[0] = sample;
      const std::vector<int32_t> magnitudes(static_cast<std::size_t>(length) / 2 + 1, std::abs(sample) * 64);
      for (const int32_t sf : {0, 3, -3, -20, -90, 60, INT32_MAX, INT32_MIN}) {
        std::vector<int16_t> narrow(n), expectedNarrow;
        std::vector<int32_t> wide(n), expectedWide;
        for (const auto& f : bank.filters) {
          expectedNarrow.push_back(model::limited<int16_t>(model::evaluateMagnitudes(f, magnitudes, sf)));
          expectedWide.push_back(model::limited<int32_t>(model::evaluateMagnitudes(f, magnitudes, sf)));
        }
        ASSERT_EQ(qorsEvalFBank_16s_Sfs(x.data(), narrow.data(), bank.state, sf), qorStatusOk);
        ASSERT_BITS(narrow, expectedNarrow) << "sample " << sample << " sf " << sf;
        ASSERT_EQ(qorsEvalFBank_16s32s_Sfs(x.data(), wide.data(), bank.state, sf), qorStatusOk);
        ASSERT_BITS(wide, expectedWide) << "sample " << sample << " sf " << sf;
      }
    }
  }
}

// Small samples: products stay within 32 bits. A spectrum value is off by half of 1/8, the magnitude of both parts by less than
// 1/8, and rounded to 1/64.
TEST(FilterBankFront, Int16OutputsAreThoseOfTheMagnitudeSpectrum) {
  kit::Random random;
  for (int32_t order = 1; order <= 10; ++order) {
    const int32_t length = 1 << order;
    const FrontBank<Int16> bank(length, 6);
    const auto x = random.vector<int16_t>(length, kit::Random::kSmall);
    const auto magnitudes = magnitudesOf(model::realFourier(x));
    std::vector<int32_t> result(6);
    ASSERT_EQ(qorsEvalFBank_16s32s_Sfs(x.data(), result.data(), bank.state, -6), qorStatusOk);
    for (std::size_t k = 0; k < 6; ++k) {
      if (*std::max_element(magnitudes.begin(), magnitudes.end()) * 64 * 16384 > 2147483000.0) continue;
      const double expected = sumOf(bank.filters[k], magnitudes) * 64 / 16384;
      ASSERT_TRUE(kit::within(&result[k], &expected, 1, (0.125 + 0.01) * weightOf(bank.filters[k]) * 64 / 16384 + 1))
          << "order " << order;
    }
  }
}

TEST(FilterBankFront, Int16MagnitudesAreLimited) {
  const int32_t length = 1 << 14;  // 32767 * 16384 * 64 is far beyond 32 bits
  const FrontBank<Int16> bank(length, 1);
  const std::vector<int16_t> x(static_cast<std::size_t>(length), 32767);
  std::vector<int32_t> magnitudes(static_cast<std::size_t>(length) / 2 + 1);
  magnitudes[0] = INT32_MAX;
  banks::Bank<Int16> narrow;
  const std::vector<int32_t> centers = {0, 0, 1};
  ASSERT_EQ(qorsFBankSetCenters_16s(bank.state, centers.data()), qorStatusOk);
  const float one[2] = {3.0F / 16384.0F, 0};
  ASSERT_EQ(qorsFBankSetCoeffs_16s(bank.state, 1, one), qorStatusOk);
  int32_t result = 0;
  ASSERT_EQ(qorsEvalFBank_16s32s_Sfs(x.data(), &result, bank.state, -20), qorStatusOk);
  EXPECT_BITS(result, static_cast<int32_t>(0x7FFFFFFFU * 3U));
}

TEST(FilterBankFront, KeepsTheEnvironment) {
  const FrontBank<Float> real(64, 5);
  const FrontBank<Int16> whole(64, 5);
  kit::Random random;
  const auto x = random.vector<float>(64, kit::Random::kNasty);
  const auto samples = random.vector<int16_t>(64, kit::Random::kNasty);
  float y[5];
  int16_t narrow[5];
  int32_t wide[5];
  kit::expectEnvironmentKept([&] { qorsEvalFBank_32f(x.data(), y, real.state); });
  kit::expectEnvironmentKept([&] { qorsEvalFBank_16s_Sfs(samples.data(), narrow, whole.state, 0); });
  kit::expectEnvironmentKept([&] { qorsEvalFBank_16s32s_Sfs(samples.data(), wide, whole.state, 0); });
}

}  // namespace
