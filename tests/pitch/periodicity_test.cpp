// Measures of periodicity: the plain model in bits, frames of known period with jitter, noise and clipping, faults.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "kit/compare.h"
#include "kit/core.h"
#include "kit/environment.h"
#include "kit/faults.h"
#include "kit/memory.h"
#include "kit/random.h"
#include "model/pitch.h"
#include "qorsr.h"

namespace {

// A frame of pulses with a decay, every `period` samples; kind: 0 clean, 1 jittered, 2 noisy, 3 clipped, 4 silent, 5 constant, 6 rubbish.
std::vector<double> frame(kit::Random& random, int kind, int32_t length, int32_t period) {
  std::vector<double> x(static_cast<std::size_t>(length));
  double next = static_cast<double>(period) / 3, value = 0;
  for (int32_t n = 0; n < length; ++n) {
    if (n >= next) {
      value = 8000;
      next += period + (kind == 1 ? random.real(-1.0, 1.0) : 0.0);
    }
    double& y = x[static_cast<std::size_t>(n)];
    y = kind == 4 ? 0.0 : kind == 5 ? 1234.0 : value;
    value *= 0.9;
    if (kind == 2) y += random.real(-2000, 2000);
    if (kind == 3) y = std::clamp(y, -1500.0, 1500.0);
  }
  return x;
}
constexpr int kKinds = 7;

template <class T>
std::vector<T> as(kit::Random& random, const std::vector<double>& x, int kind, bool positive) {
  std::vector<T> y;
  for (const double v : x) {
    T value = static_cast<T>(std::round(v));
    if (kind == 6) value = random.nasty<T>();
    if (positive && value < 0) value = value == std::numeric_limits<T>::lowest() ? T(0) : static_cast<T>(-value);
    y.push_back(value);
  }
  return y;
}

template <class T, class Value, class Member>
void expectPeriods(Member member, const auto& modelOf, bool positive, int32_t least, int32_t longest, int32_t terms) {
  kit::Random random;
  for (const int32_t length : {7, 8, 9, 20, 33, 64, 100, 161, 240, 333, 1024, 4096}) {
    if (length > longest) continue;
    for (const int32_t minimum : {least, least + 1, 9, 20, 50, 130}) {
      for (const int32_t maximum : {minimum + 1, minimum + 5, minimum * 3, length - 1}) {
        if (minimum < least || maximum <= minimum || length <= maximum || length > terms * minimum) continue;
        if (length == 4096 && maximum > 60) continue;
        for (int kind = 0; kind < kKinds; ++kind) {
          const kit::Place place = kit::kPlaces[(length + kind) % 3];
          const auto x = as<T>(random, frame(random, kind, length, (minimum + maximum) / 2), kind, positive);
          const kit::Area<T> source(x, place);
          const kit::Area<Value> value(1, place);
          const kit::Area<int32_t> period(1, place);
          const auto expected = modelOf(x, maximum, minimum);
          SCOPED_TRACE(testing::Message() << length << " samples, periods " << minimum << " to " << maximum << ", kind " << kind);
          ASSERT_EQ(member(source.data(), length, value.data(), period.data(), maximum, minimum), qorStatusOk);
          ASSERT_BITS(value[0], expected.value);
          ASSERT_BITS(period[0], expected.period);
          ASSERT_TRUE(value.edgesKept() && period.edgesKept());
        }
      }
    }
  }
}

TEST(LeastSquaresPeriodicity, Float) {
  expectPeriods<float, float>(
      qorsPeriodicityLSPE_32f, [](const auto& x, int32_t high, int32_t low) { return model::leastSquares(x, high, low); }, false, 6,
      1024, 16);
}
TEST(LeastSquaresPeriodicity, Int16) {
  expectPeriods<int16_t, int16_t>(
      qorsPeriodicityLSPE_16s, [](const auto& x, int32_t high, int32_t low) { return model::leastSquares(x, high, low); }, false, 6,
      1024, 16);
}
TEST(MeanPeriodicity, Float) {
  expectPeriods<float, float>(
      qorsPeriodicity_32f, [](const auto& x, int32_t high, int32_t low) { return model::largestMean(x, high, low); }, true, 1, 4096,
      4096);
}
TEST(MeanPeriodicity, Int32) {
  expectPeriods<int32_t, int16_t>(
      qorsPeriodicity_32s16s, [](const auto& x, int32_t high, int32_t low) { return model::largestMean(x, high, low); }, true, 1,
      4096, 4096);
}

TEST(LeastSquaresPeriodicity, FindsThePeriodOfJitteredAndNoisyFrames) {
  kit::Random random;
  for (int kind = 0; kind < 4; ++kind) {
    for (const int32_t period : {40, 57, 80, 111}) {
      const auto x = as<int16_t>(random, frame(random, kind, 600, period), kind, false);
      const std::vector<float> floats(x.begin(), x.end());
      float value = 0.0F;
      int16_t value16 = 0;
      int32_t found = 0, found16 = 0;
      ASSERT_EQ(qorsPeriodicityLSPE_32f(floats.data(), 600, &value, &found, period + 30, 38), qorStatusOk);
      ASSERT_EQ(qorsPeriodicityLSPE_16s(x.data(), 600, &value16, &found16, period + 30, 38), qorStatusOk);
      EXPECT_NEAR(found, period, kind == 1 ? 2 : 0) << "kind " << kind;
      EXPECT_NEAR(found16, found, kind == 1 ? 1 : 0);
      EXPECT_NEAR(static_cast<double>(value), value16 / 32768.0, 2e-3);
    }
  }
}

TEST(MeanPeriodicity, SilenceHasNone) {
  const std::vector<float> silence(100);
  const std::vector<int32_t> silence32(100);
  float value = 77.0F;
  int16_t value16 = 77;
  int32_t period = 77;
  EXPECT_EQ(qorsPeriodicity_32f(silence.data(), 100, &value, &period, 20, 10), qorStatusOk);
  EXPECT_BITS(value, 0.0F);
  EXPECT_EQ(period, 0);
  period = 77;
  EXPECT_EQ(qorsPeriodicity_32s16s(silence32.data(), 100, &value16, &period, 20, 10), qorStatusOk);
  EXPECT_EQ(value16, 0);
  EXPECT_EQ(period, 0);
}

// ---- Faults ----

template <class T, class Value>
struct Args {
  const T* source;
  int32_t length;
  Value* value;
  int32_t *period, maximum, minimum;
};

template <class T, class Value, class Member>
kit::FaultTable<Args<T, Value>> faults(Member member, Args<T, Value> valid) {
  using A = Args<T, Value>;
  return kit::FaultTable<A>(valid, [=](const A& a) { return member(a.source, a.length, a.value, a.period, a.maximum, a.minimum); },
                            {{valid.value, 1}, {valid.period, 1}})
      .fault("null source", qorStatusNullPointer, &A::source, nullptr)
      .fault("null value", qorStatusNullPointer, &A::value, nullptr)
      .fault("null period", qorStatusNullPointer, &A::period, nullptr);
}

template <class T, class Value, class Member>
void expectLspeFaults(Member member) {
  using A = Args<T, Value>;
  const std::vector<T> x(2000, T(3));
  Value value = 77;
  int32_t period = 77;
  faults<T, Value>(member, {x.data(), 160, &value, &period, 40, 20})
      .fault("minimum below 6", qorStatusBadRange, &A::minimum, 5)
      .fault("maximum at minimum", qorStatusBadRange, &A::maximum, 20, kit::against(&A::minimum))
      .fault("maximum least", qorStatusBadRange, &A::maximum, INT32_MIN)
      .fault("length at maximum", qorStatusBadLength, &A::length, 40, kit::against(&A::maximum))
      .fault("length zero", qorStatusBadLength, &A::length, 0)
      .fault("length above 1024", qorStatusBadLength, &A::length, 1025)
      .fault("length above 16 periods", qorStatusBadLength, &A::length, 321, kit::against(&A::minimum))
      .check();
}
TEST(PeriodicityFaults, LeastSquares) {
  expectLspeFaults<float, float>(qorsPeriodicityLSPE_32f);
  expectLspeFaults<int16_t, int16_t>(qorsPeriodicityLSPE_16s);
}

template <class T, class Value, class Member>
void expectMeanFaults(Member member) {
  using A = Args<T, Value>;
  const std::vector<T> x(5000, T(3));
  std::vector<T> negative = x;
  negative[159] = T(-1);
  Value value = 77;
  int32_t period = 77;
  faults<T, Value>(member, {x.data(), 160, &value, &period, 40, 20})
      .fault("minimum zero", qorStatusBadRange, &A::minimum, 0)
      .fault("maximum at minimum", qorStatusBadRange, &A::maximum, 20, kit::against(&A::minimum))
      .fault("length at maximum", qorStatusBadLength, &A::length, 40, kit::against(&A::maximum))
      .fault("length above 4096", qorStatusBadLength, &A::length, 4097)
      .fault("negative sample", qorStatusBadRange, &A::source, negative.data())
      .check();
  EXPECT_EQ(member(negative.data(), 159, &value, &period, 40, 20), qorStatusOk);  // not behind the end
}
TEST(PeriodicityFaults, LargestMean) {
  expectMeanFaults<float, float>(qorsPeriodicity_32f);
  expectMeanFaults<int32_t, int16_t>(qorsPeriodicity_32s16s);
}

TEST(Periodicity, KeepsTheEnvironmentAndAllocatesNothing) {
  const int64_t before = kit::Core::calls();
  const std::vector<float> x(300, 2.0F);
  float value = 0.0F;
  int32_t period = 0;
  kit::expectEnvironmentKept([&] { qorsPeriodicityLSPE_32f(x.data(), 300, &value, &period, 60, 20); });
  kit::expectEnvironmentKept([&] { qorsPeriodicity_32f(x.data(), 300, &value, &period, 60, 20); });
  EXPECT_EQ(kit::Core::calls(), before);
}

}  // namespace
