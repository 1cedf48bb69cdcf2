// Resampling by any ratio: the table against a design in extended precision, bits against the plain model, streams, signals, faults.
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "kit/compare.h"
#include "kit/core.h"
#include "kit/environment.h"
#include "kit/faults.h"
#include "kit/memory.h"
#include "kit/random.h"
#include "model/resample.h"
#include "qorsr.h"

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity(), kNaN = std::numeric_limits<double>::quiet_NaN();

// The members of a sample type under one name.
struct Short {
  typedef int16_t T;
  typedef ResamplePolyphaseState_16s State;
  static constexpr auto make = qorsResamplePolyphaseInitAlloc_16s;
  static constexpr auto run = qorsResamplePolyphase_16s;
  static constexpr auto free = qorsResamplePolyphaseFree_16s;
};
struct Float {
  typedef float T;
  typedef ResamplePolyphaseState_32f State;
  static constexpr auto make = qorsResamplePolyphaseInitAlloc_32f;
  static constexpr auto run = qorsResamplePolyphase_32f;
  static constexpr auto free = qorsResamplePolyphaseFree_32f;
};

struct Design {
  float window;
  int32_t nStep;
  float rollOff, alpha;
  int32_t hint;
};

template <class M>
class Filter {
 public:
  explicit Filter(const Design& d)
      : table(model::table(d.window, d.nStep, d.rollOff, d.alpha, std::is_same_v<M, Float> || d.hint == 2)) {
    EXPECT_EQ(M::make(&state, d.window, d.nStep, d.rollOff, d.alpha, d.hint), qorStatusOk);
  }
  ~Filter() { EXPECT_EQ(M::free(state), qorStatusOk); }
  Filter(const Filter&) = delete;
  Filter& operator=(const Filter&) = delete;

  model::Table table;
  typename M::State* state = nullptr;
};

// ---- Design ----

// A single sample shows each entry of the table: nStep is a power of two, so times on entries are exact.
TEST(Polyphase, TheTableOfFloatsIsTheDesign) {
  for (const Design& d : {Design{8, 64, 0.9F, 6, 0}, Design{16, 32, 1, 1, 2}, Design{3.3F, 16, 0.25F, 12, 1}, Design{2, 1, 1, 5, 1},
                          Design{1, 2, 0.5F, 2, 1}, Design{0.125F, 16, 0.5F, 3, 1}, Design{30, 8, 0.7F, 100, 1}}) {
    const Filter<Float> f(d);
    std::vector<float> table, expected;
    for (int64_t k = 0; k < f.table.length; ++k) {
      std::vector<float> x(200, 0.0F);
      x[static_cast<std::size_t>(100 - k / d.nStep)] = 1.0F;
      double time = 100 + static_cast<double>(k % d.nStep) / d.nStep;
      int32_t count = 0;
      float y = 0;
      ASSERT_EQ(qorsResamplePolyphase_32f(f.state, x.data(), 1, &y, 1.0, 1.0F, &time, &count), qorStatusOk);
      ASSERT_EQ(count, 1);
      table.push_back(y);
      expected.push_back(static_cast<float>(f.table.entries[static_cast<std::size_t>(k)]));
    }
    ASSERT_BITS(table, expected) << "window " << d.window << " nStep " << d.nStep;
  }
}

TEST(Polyphase, TheTableOfShortsIsTheDesign) {
  for (const Design& d : {Design{8, 64, 0.9F, 6, 0}, Design{16, 32, 1, 1, 1}, Design{2, 1, 1, 5, 1}, Design{12, 16, 0.3F, 8, -1}}) {
    const Filter<Short> f(d);
    std::vector<int16_t> table, expected;
    for (int64_t k = 0; k < f.table.length; ++k) {
      std::vector<int16_t> x(200, 0);
      x[static_cast<std::size_t>(100 - k / d.nStep)] = 1;
      double time = 100 + static_cast<double>(k % d.nStep) / d.nStep;
      int32_t count = 0;
      int16_t y = 0;
      ASSERT_EQ(qorsResamplePolyphase_16s(f.state, x.data(), 1, &y, 1.0, 1 / f.table.gain, &time, &count), qorStatusOk);
      table.push_back(y);
      expected.push_back(static_cast<int16_t>(f.table.entries[static_cast<std::size_t>(k)]));
    }
    ASSERT_BITS(table, expected);
    EXPECT_EQ(*std::max_element(table.begin(), table.end()), 16383);
  }
}

TEST(Polyphase, ExtremeDesignsEnd) {
  const float infinity = std::numeric_limits<float>::infinity(), nan = std::numeric_limits<float>::quiet_NaN();
  for (const float alpha : {700.0F, 720.0F, 1e10F, 3e38F, infinity, nan}) {
    for (const int32_t hint : {1, 2}) {
      ResamplePolyphaseState_16s* state = nullptr;
      ASSERT_EQ(qorsResamplePolyphaseInitAlloc_16s(&state, 8, 16, 0.9F, alpha, hint), qorStatusOk);
      std::vector<int16_t> x(100, 1000), y(10);
      double time = 50;
      int32_t count = 0;
      EXPECT_EQ(qorsResamplePolyphase_16s(state, x.data(), 2, y.data(), 1.0, 1.0F, &time, &count), qorStatusOk);
      EXPECT_EQ(count, 2);
      qorsResamplePolyphaseFree_16s(state);
    }
  }
  ResamplePolyphaseState_32f* state = nullptr;
  EXPECT_EQ(qorsResamplePolyphaseInitAlloc_32f(&state, 8, 16, nan, 5, 1), qorStatusOk);
  qorsResamplePolyphaseFree_32f(state);
}

// ---- Samples ----

// Runs the export on an area of exactly the samples that the model read, which ends at a page that cannot be touched.
template <class M>
void expectModel(const Filter<M>& f, const std::vector<typename M::T>& x, int32_t length, double factor, float norm, double time,
                 kit::Place place) {
  using T = typename M::T;
  const auto expected = model::resample(f.table, x.data(), length, factor, norm, time);
  const int64_t lowest = std::min<int64_t>(expected.lowest, static_cast<int64_t>(x.size()) - 1),
                highest = std::max(expected.highest, lowest);
  const kit::Area<T> source(std::vector<T>(x.begin() + lowest, x.begin() + highest + 1), kit::Place::kAtGuard);
  kit::Area<T> destination(static_cast<int64_t>(expected.samples.size()), place);
  double after = time;
  int32_t count = -1;
  SCOPED_TRACE(testing::Message() << "length " << length << " factor " << factor << " time " << time << " norm " << norm);
  ASSERT_EQ(M::run(f.state, source.data() - lowest, length, destination.data(), factor, norm, &after, &count), qorStatusOk);
  ASSERT_EQ(count, static_cast<int32_t>(expected.samples.size()));
  ASSERT_BITS(destination.values(), expected.samples);
  ASSERT_BITS(after, expected.time);
  ASSERT_TRUE(destination.edgesKept());
}

template <class M>
void manyCalls(std::initializer_list<int32_t> hints) {
  kit::Random random;
  int round = 0;
  for (const int32_t hint : hints) {
    for (const Design& d : {Design{16, 64, 0.9F, 6, hint}, Design{7.7F, 100, 1, 4, hint}, Design{40, 7, 0.8F, 9, hint},
                            Design{2, 1, 1, 5, hint}, Design{0.02F, 100, 1, 5, hint}, Design{0.5F, 300, 0.3F, 5, hint}}) {
      const Filter<M> f(d);
      for (const double factor : {1.0, 1.5, 2.0, 3.999, 147.0 / 160, 1.0 / 3, 0.7, 0.05, 0.999999, 160.0 / 147}) {
        for (const double time : {600.0, 600.25, 601.999999999, 602 - 1e-13, 600 + 1e-13, 600.5}) {
          const auto x = random.vector<typename M::T>(1300, kit::kKinds[round % 3]);
          const int32_t length = kit::shortLengths()[static_cast<std::size_t>(round) % kit::shortLengths().size()] % 60 + 1;
          const auto norm = static_cast<float>(random.real(-1.5, 1.5));
          expectModel(f, x, length, factor, norm, time, kit::kPlaces[round % 3]);
          if (testing::Test::HasFatalFailure()) return;
          ++round;
        }
      }
    }
  }
}

TEST(Polyphase, FloatsAgainstTheModel) { manyCalls<Float>({1, 2}); }
TEST(Polyphase, ShortsAgainstTheModel) { manyCalls<Short>({1, 2}); }

// Midway between samples whose signs are opposed both sides cancel: what is left is the rounding of the sums, which shows their order.
template <class M>
void cancelledSums() {
  kit::Random random;
  int nonzero = 0;
  for (const int32_t hint : {1, 2}) {
    const Filter<M> f({40, 64, 0.9F, 6, hint});
    for (const double factor : {1.0, 1.5, 0.7, 0.31, 0.123}) {
      for (int trial = 0; trial < 6; ++trial) {
        auto x = random.vector<typename M::T>(1200);
        for (auto& v : x) v = v == std::numeric_limits<typename M::T>::lowest() ? typename M::T{1} : v;
        for (std::size_t k = 0; k < 500; ++k) x[601 + k] = static_cast<typename M::T>(-x[600 - k]);
        for (const float norm : {1e14F, 1e16F, 1e18F}) {
          nonzero += model::resample(f.table, x.data(), 1, factor, norm, 600.5).samples[0] != 0;
          expectModel(f, x, 1, factor, norm, 600.5, kit::Place::kAligned);
          expectModel(f, x, 4, factor, norm, 600.5, kit::Place::kAligned);
        }
      }
    }
  }
  EXPECT_GT(nonzero, 60);
}
TEST(Polyphase, SumsThatCancelShowTheirOrder) {
  cancelledSums<Float>();
  cancelledSums<Short>();
}

TEST(Polyphase, NegativeTimesAreTruncatedTowardZero) {
  kit::Random random;
  const Filter<Float> f({12, 33, 0.9F, 6, 1});
  const Filter<Short> s({12, 33, 0.9F, 6, 1}), tiny({0.1F, 40, 0.9F, 6, 1});
  for (const double factor : {1.0, 1.3, 0.6}) {
    for (const double time : {-0.0, -0.25, -0.999, -1.0, -3.5, -17.01}) {
      // The buffer of the model begins 100 samples before the pointer.
      const auto x = random.vector<float>(300);
      const auto expected = model::resample(f.table, x.data() + 100, 30, factor, 1.0F, time);
      std::vector<float> y(expected.samples.size());
      double after = time;
      int32_t count = 0;
      ASSERT_EQ(qorsResamplePolyphase_32f(f.state, x.data() + 100, 30, y.data(), factor, 1.0F, &after, &count), qorStatusOk);
      ASSERT_BITS(y, expected.samples);
      ASSERT_BITS(after, expected.time);
      const auto x16 = random.vector<int16_t>(300);
      for (const Filter<Short>* filter : {&s, &tiny}) {
        const auto expected16 = model::resample(filter->table, x16.data() + 100, 30, factor, 1.0F, time);
        std::vector<int16_t> y16(expected16.samples.size());
        after = time;
        ASSERT_EQ(qorsResamplePolyphase_16s(filter->state, x16.data() + 100, 30, y16.data(), factor, 1.0F, &after, &count),
                  qorStatusOk);
        ASSERT_BITS(y16, expected16.samples);
      }
    }
  }
}

TEST(Polyphase, FarTimes) {
  kit::Random random;
  const Filter<Float> f({10, 50, 0.9F, 6, 1});
  const auto x = random.vector<float>(400);
  for (const double base : {2147483000.0, -2147483000.0, 2147483647.0 - 200}) {
    for (const double rest : {0.0, 0.25, 0.75}) {
      const float* source = x.data() + 100 - static_cast<int64_t>(base);
      const double time = base + rest;
      const auto expected = model::resample(f.table, source, 200, 0.9, 1.0F, time);
      std::vector<float> y(expected.samples.size());
      double after = time;
      int32_t count = 0;
      ASSERT_EQ(qorsResamplePolyphase_32f(f.state, source, 200, y.data(), 0.9, 1.0F, &after, &count), qorStatusOk);
      ASSERT_BITS(y, expected.samples);
      ASSERT_BITS(after, expected.time);
    }
  }
  for (const double time : {2147483648.0, -2147483649.0, 1e300, -1e300, kInfinity, -kInfinity, kNaN}) {
    double after = time;
    int32_t count = 7;
    float y = 77.0F;
    ASSERT_EQ(qorsResamplePolyphase_32f(f.state, x.data(), 5, &y, 1.0, 1.0F, &after, &count), qorStatusOk);
    EXPECT_EQ(count, 0);
    EXPECT_BITS(after, time);
    EXPECT_BITS(y, 77.0F);
  }
}

TEST(Polyphase, FactorsThatDoNotMoveTheTime) {
  const Filter<Float> f({10, 50, 0.9F, 6, 1});
  const Filter<Short> s({10, 50, 0.9F, 6, 1});
  const std::vector<float> x(100, 1.0F);
  const std::vector<int16_t> x16(100, 1000);
  for (const double factor : {kNaN, kInfinity, 1e300, 1e17}) {
    double time = 50.25;
    int32_t count = 0;
    std::vector<float> y(3, 77.0F);
    ASSERT_EQ(qorsResamplePolyphase_32f(f.state, x.data(), 5, y.data(), factor, 1.0F, &time, &count), qorStatusOk);
    EXPECT_EQ(count, 1);
    EXPECT_BITS(y[1], 77.0F);
    EXPECT_EQ(std::isnan(y[0]), std::isnan(factor));
    time = 50.25;
    std::vector<int16_t> y16(3, 77);
    ASSERT_EQ(qorsResamplePolyphase_16s(s.state, x16.data(), 5, y16.data(), factor, 1.0F, &time, &count), qorStatusOk);
    EXPECT_EQ(count, 1);
    EXPECT_EQ(y16[1], 77);
    if (std::isnan(factor)) {
      EXPECT_EQ(y16[0], 0);
    }
  }
}

TEST(Polyphase, SixteenBitLimits) {
  const Filter<Short> f({2, 1, 1, 5, 2});  // one tap: the sample itself
  for (const auto& [x, norm, expected] : {std::tuple<int, float, int>{32767, 1.0F, 32767},
                                          {-32768, 1.0F, -32768},
                                          {-32768, 1.0000153F, -32768},
                                          {-32768, 2.0F, -32768},
                                          {32767, 2.0F, 32767},
                                          {1, 0.5F, 1},
                                          {-1, 0.5F, -1},
                                          {1, 0.49F, 0},
                                          {-1, 0.49F, 0},
                                          {5, -0.5F, -3},
                                          {100, NAN, 0}}) {
    std::vector<int16_t> samples(9, 0);
    samples[4] = static_cast<int16_t>(x);
    double time = 4;
    int32_t count = 0;
    int16_t y = 0;
    ASSERT_EQ(qorsResamplePolyphase_16s(f.state, samples.data(), 1, &y, 1.0, norm, &time, &count), qorStatusOk);
    EXPECT_EQ(y, expected) << x << " " << norm;
  }
}

// ---- Streams and signals ----

TEST(Polyphase, PiecesWhoseTimesAreExactEqualTheWhole) {
  kit::Random random;
  const Filter<Float> f({16, 64, 0.9F, 6, 1});
  const Filter<Short> s({16, 64, 0.9F, 6, 1});
  const auto x = random.vector<float>(3000);
  const auto x16 = random.vector<int16_t>(3000);
  for (const double factor : {1.0, 2.0, 0.5, 1.25, 0.75}) {  // steps that are exact, so that a moved buffer changes no bit
    std::vector<float> whole(6000), pieces(6000);
    std::vector<int16_t> whole16(6000), pieces16(6000);
    int32_t count = 0, count16 = 0;
    double time = 100.5;
    ASSERT_EQ(qorsResamplePolyphase_32f(f.state, x.data(), 2500, whole.data(), factor, 1.0F, &time, &count), qorStatusOk);
    double end = time;
    time = 100.5;
    ASSERT_EQ(qorsResamplePolyphase_16s(s.state, x16.data(), 2500, whole16.data(), factor, 1.0F, &time, &count16), qorStatusOk);
    for (const bool moved : {false, true}) {
      if (moved && factor != 1.0 && factor != 2.0 && factor != 0.5) continue;  // times that are whole numbers of 1 / 2
      int64_t begin = 0;
      int32_t made = 0;
      time = 100.5;
      while (made < count) {
        const auto limit = static_cast<int32_t>(2600 - begin - static_cast<int64_t>(time));
        const int32_t length = std::min(static_cast<int32_t>(random.integer(1, 40)), limit);
        double same = time;
        int32_t n = 0, n16 = 0;
        ASSERT_EQ(qorsResamplePolyphase_32f(f.state, x.data() + begin, length, pieces.data() + made, factor, 1.0F, &time, &n),
                  qorStatusOk);
        ASSERT_EQ(qorsResamplePolyphase_16s(s.state, x16.data() + begin, length, pieces16.data() + made, factor, 1.0F, &same, &n16),
                  qorStatusOk);
        ASSERT_EQ(n, n16);
        made += n;
        if (moved && time > 130) {
          begin += 100;
          time -= 100;
        }
      }
      ASSERT_EQ(made, count);
      ASSERT_EQ(time + static_cast<double>(begin), end);
      ASSERT_BITS(std::vector<float>(pieces.begin(), pieces.begin() + count),
                  std::vector<float>(whole.begin(), whole.begin() + count));
      ASSERT_BITS(std::vector<int16_t>(pieces16.begin(), pieces16.begin() + count),
                  std::vector<int16_t>(whole16.begin(), whole16.begin() + count));
    }
  }
}

// Times in a buffer that moves are rounded to other bits: the same outputs, but for the last bits.
TEST(Polyphase, PiecesOfAMovedBufferAreCloseToTheWhole) {
  kit::Random random;
  const Filter<Float> f({16, 64, 0.9F, 6, 1});
  const auto x = random.vector<float>(3000);
  for (const double factor : {1.37, 44100.0 / 48000, 0.3}) {
    std::vector<float> whole(6000), pieces(6000);
    int32_t count = 0;
    double time = 100;
    ASSERT_EQ(qorsResamplePolyphase_32f(f.state, x.data(), 2500, whole.data(), factor, 1.0F, &time, &count), qorStatusOk);
    int64_t begin = 0;
    int32_t made = 0, n = 0;
    for (double now = 100; made < count; made += n) {
      const auto limit = static_cast<int32_t>(2600 - begin - static_cast<int64_t>(now));
      const int32_t length = std::min(static_cast<int32_t>(random.integer(1, 40)), limit);
      ASSERT_EQ(qorsResamplePolyphase_32f(f.state, x.data() + begin, length, pieces.data() + made, factor, 1.0F, &now, &n),
                qorStatusOk);
      const int64_t past = static_cast<int64_t>(now) - 100;
      begin += past;
      now -= static_cast<double>(past);
    }
    ASSERT_LE(made - count, 1);  // at 1.37 the next output lies on the end of the whole span, on either side of it
    for (std::size_t k = 0; k < static_cast<std::size_t>(count); ++k) ASSERT_NEAR(pieces[k], whole[k], 1e-6F) << factor << " " << k;
  }
}

// A negative time lies in front of the span, so that there are more outputs than the span has samples for.
TEST(Polyphase, OutputsOfANegativeTime) {
  const Filter<Float> f({4, 16, 0.9F, 6, 1});
  const std::vector<float> x(40, 1.0F);
  std::vector<float> y(100);
  int32_t count = 0;
  double time = -0.96875;
  ASSERT_EQ(qorsResamplePolyphase_32f(f.state, x.data() + 20, 2, y.data(), 16.0, 1.0F, &time, &count), qorStatusOk);
  EXPECT_EQ(count, 48);  // (length + 1) * factor
}

TEST(Polyphase, FactorOneOnSamplesReproducesThem) {
  kit::Random random;
  const Filter<Float> f({32, 64, 1, 6, 1});
  const auto x = random.vector<float>(300);
  std::vector<float> y(200);
  double time = 50;
  int32_t count = 0;
  ASSERT_EQ(qorsResamplePolyphase_32f(f.state, x.data(), 200, y.data(), 1.0, 1.0F, &time, &count), qorStatusOk);
  ASSERT_EQ(count, 200);
  EXPECT_EQ(time, 250);
  for (std::size_t i = 0; i < 200; ++i) EXPECT_NEAR(y[i], x[i + 50], 1e-4F);
}

TEST(Polyphase, ATonePassesAndAnAliasDoesNot) {
  const Filter<Float> f({64, 512, 0.9F, 9, 1});
  const auto peak = [&](double frequency, double factor) {  // of a cosine, frequency in cycles per input sample
    std::vector<float> x(4000), y(8000);
    for (std::size_t i = 0; i < x.size(); ++i)
      x[i] = static_cast<float>(std::cos(2 * std::numbers::pi * frequency * static_cast<double>(i)));
    double time = 500;
    int32_t count = 0;
    qorsResamplePolyphase_32f(f.state, x.data(), 3000, y.data(), factor, 1.0F, &time, &count);
    double largest = 0, error = 0;
    for (int32_t i = 0; i < count; ++i) {
      const double exact = std::cos(2 * std::numbers::pi * frequency * (500 + i / factor));
      largest = std::max(largest, std::fabs(static_cast<double>(y[static_cast<std::size_t>(i)])));
      error = std::max(error, std::fabs(static_cast<double>(y[static_cast<std::size_t>(i)]) - exact));
    }
    return std::pair{largest, error};
  };
  for (const double factor : {2.0, 1.1, 0.5, 1.0 / 3}) {
    const double band = std::min(factor, 1.0) * 0.5;
    EXPECT_LT(peak(band * 0.3, factor).second, 2e-4) << factor;
    EXPECT_LT(peak(band * 0.7, factor).second, 2e-4) << factor;
    if (factor < 1) {
      EXPECT_LT(peak(band * 1.2, factor).first, 1e-4) << factor;
    }
  }
}

// ---- Faults, memory, environment ----

template <class M>
void checkMaking() {
  struct A {
    typename M::State** state;
    float window;
    int32_t nStep;
    float rollOff, alpha;
    int32_t hint;
  };
  typename M::State* state = nullptr;
  const A valid = {&state, 8, 16, 0.9F, 6, 1};
  const auto call = [](const A& a) {
    const QorStatus status = M::make(a.state, a.window, a.nStep, a.rollOff, a.alpha, a.hint);
    if (status == qorStatusOk) {
      M::free(*a.state);
      *a.state = nullptr;
    }
    return status;
  };
  kit::FaultTable<A>(valid, call, {{&state, 1}})
      .fault("null state", qorStatusNullPointer, &A::state, nullptr)
      .fault("no steps", qorStatusBadSize, &A::nStep, 0)
      .fault("negative steps", qorStatusBadSize, &A::nStep, INT32_MIN)
      .fault("window too short", qorStatusBadArgument, &A::window, 0.1249F, kit::against(&A::nStep))
      .fault("window infinite", qorStatusBadArgument, &A::window, kInfinity)
      .fault("window not a number", qorStatusBadArgument, &A::window, kNaN)
      .fault("window too long", qorStatusBadArgument, &A::window, 33554432.0F, kit::against(&A::nStep))
      .fault("roll-off zero", qorStatusBadArgument, &A::rollOff, 0.0F)
      .fault("roll-off above 1", qorStatusBadArgument, &A::rollOff, 1.0000001F)
      .fault("alpha below 1", qorStatusBadArgument, &A::alpha, 0.9999999F)
      .check();
  for (const int32_t steps : {1, 2, 3, 5, 7, 49, 1000}) {
    EXPECT_EQ(M::make(&state, 2.0F / static_cast<float>(steps), steps, 1, 1, 1), qorStatusOk);
    M::free(state);
    EXPECT_EQ(M::make(&state, std::nextafter(2.0F / static_cast<float>(steps), 0.0F), steps, 1, 1, 1), qorStatusBadArgument);
  }
  EXPECT_EQ(M::free(nullptr), qorStatusNullPointer);
}
TEST(PolyphaseFaults, Making) {
  checkMaking<Float>();
  checkMaking<Short>();
}

template <class M>
void checkRunning() {
  struct A {
    const typename M::State* state;
    const typename M::T* source;
    int32_t length;
    typename M::T* destination;
    double factor;
    double* time;
    int32_t* count;
  };
  const Filter<M> f({8, 16, 0.9F, 6, 1});
  const std::vector<typename M::T> x(100, 1);
  std::vector<typename M::T> y(20, 77);
  double time = 50;
  int32_t count = 77;
  const A valid = {f.state, x.data(), 5, y.data(), 1.5, &time, &count};
  kit::FaultTable<A>(valid,
                     [](const A& a) { return M::run(a.state, a.source, a.length, a.destination, a.factor, 1.0F, a.time, a.count); },
                     {{y.data(), 20}, {&time, 1}, {&count, 1}})
      .fault("null state", qorStatusNullPointer, &A::state, nullptr)
      .fault("null time", qorStatusNullPointer, &A::time, nullptr)
      .fault("null source", qorStatusNullPointer, &A::source, nullptr)
      .fault("null destination", qorStatusNullPointer, &A::destination, nullptr)
      .fault("null count", qorStatusNullPointer, &A::count, nullptr)
      .fault("factor zero", qorStatusBadSize, &A::factor, 0.0)
      .fault("factor negative", qorStatusBadSize, &A::factor, -kInfinity)
      .fault("length zero", qorStatusBadSize, &A::length, 0)
      .fault("length negative", qorStatusBadSize, &A::length, INT32_MIN)
      .check();
}
TEST(PolyphaseFaults, Running) {
  checkRunning<Float>();
  checkRunning<Short>();
}

TEST(PolyphaseFaults, WithoutMemory) {
  ResamplePolyphaseState_16s *kept = nullptr, *state = nullptr;
  EXPECT_EQ(kit::expectEveryRefusalReported([&] {
              const QorStatus status = qorsResamplePolyphaseInitAlloc_16s(&state, 8, 16, 0.9F, 6, 2);
              if (status == qorStatusOk) qorsResamplePolyphaseFree_16s(state);
              return status;
            }),
            2);
  // The design of a 16-bit table.
  kit::Core::refuse(0);
  EXPECT_EQ(qorsResamplePolyphaseInitAlloc_16s(&kept, 8, 16, 0.9F, 6, 1), qorStatusNullPointer);
  kit::Core::refuse(1);
  EXPECT_EQ(qorsResamplePolyphaseInitAlloc_16s(&kept, 8, 16, 0.9F, 6, 1), qorStatusNoMemory);
  kit::Core::refuse(0);
  ResamplePolyphaseState_32f* keptFloat = nullptr;
  EXPECT_EQ(qorsResamplePolyphaseInitAlloc_32f(&keptFloat, 8, 16, 0.9F, 6, 1), qorStatusNoMemory);
  kit::Core::refuseNone();
  EXPECT_EQ(kept, nullptr);
  EXPECT_EQ(keptFloat, nullptr);
  EXPECT_EQ(kit::Core::outstanding(), 0);
}

TEST(Polyphase, KeepsTheEnvironmentAndAllocatesNothing) {
  const Filter<Float> f({8, 16, 0.9F, 6, 1});
  const Filter<Short> s({8, 16, 0.9F, 6, 1});
  const std::vector<float> x(200, 1.5F);
  const std::vector<int16_t> x16(200, 1000);
  std::vector<float> y(200);
  std::vector<int16_t> y16(200);
  const int64_t before = kit::Core::calls();
  for (const double factor : {1.1, 0.6}) {
    kit::expectEnvironmentKept([&] {
      double time = 50;
      int32_t count;
      qorsResamplePolyphase_32f(f.state, x.data(), 50, y.data(), factor, 1.0F, &time, &count);
      time = 50;
      qorsResamplePolyphase_16s(s.state, x16.data(), 50, y16.data(), factor, 1.0F, &time, &count);
    });
  }
  EXPECT_EQ(kit::Core::calls(), before);
  kit::expectEnvironmentKept([&] {
    ResamplePolyphaseState_16s* state;
    qorsResamplePolyphaseInitAlloc_16s(&state, 8, 16, 0.9F, 6, 1);
    qorsResamplePolyphaseFree_16s(state);
  });
}

}  // namespace
