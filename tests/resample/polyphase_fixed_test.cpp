// Resampling by a fixed ratio: rows against a design in extended precision, bits against the plain model, far positions, streams, faults.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
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

struct Short {
  typedef int16_t T;
  typedef ResamplePolyphaseFixedState_16s State;
  static constexpr auto getSize = qorsResamplePolyphaseFixedGetSize_16s;
  static constexpr auto init = qorsResamplePolyphaseFixedInit_16s;
  static constexpr auto make = qorsResamplePolyphaseFixedInitAlloc_16s;
  static constexpr auto free = qorsResamplePolyphaseFixedFree_16s;
  static constexpr auto run = qorsResamplePolyphaseFixed_16s;
  static constexpr auto get = qorsResamplePolyphaseGetFixedFilter_16s;
  static constexpr auto set = qorsResamplePolyphaseSetFixedFilter_16s;
};
struct Float {
  typedef float T;
  typedef ResamplePolyphaseFixedState_32f State;
  static constexpr auto getSize = qorsResamplePolyphaseFixedGetSize_32f;
  static constexpr auto init = qorsResamplePolyphaseFixedInit_32f;
  static constexpr auto make = qorsResamplePolyphaseFixedInitAlloc_32f;
  static constexpr auto free = qorsResamplePolyphaseFixedFree_32f;
  static constexpr auto run = qorsResamplePolyphaseFixed_32f;
  static constexpr auto get = qorsResamplePolyphaseGetFixedFilter_32f;
  static constexpr auto set = qorsResamplePolyphaseSetFixedFilter_32f;
};

struct Design {
  int32_t in, out, filterLength;
  float rollOff, alpha;
  int32_t hint;
};

template <class M>
class Filter {
 public:
  explicit Filter(const Design& d)
      : hint(d.hint),
        model(model::fixedFilter(d.in, d.out, d.filterLength, d.rollOff, d.alpha, std::is_same_v<M, Short> && d.hint != 2)) {
    EXPECT_EQ(M::make(&state, d.in, d.out, d.filterLength, d.rollOff, d.alpha, d.hint), qorStatusOk);
  }
  ~Filter() { EXPECT_EQ(M::free(state), qorStatusOk); }
  Filter(const Filter&) = delete;
  Filter& operator=(const Filter&) = delete;

  int32_t hint;
  model::FixedFilter model;
  typename M::State* state = nullptr;
};

// ---- Sizes ----

TEST(PolyphaseFixed, SizesAndReducedRates) {
  for (const auto& [in, out, reduced] : {std::tuple<int32_t, int32_t, int32_t>{8000, 16000, 2},
                                         {48000, 44100, 147},
                                         {44100, 48000, 160},
                                         {5, 5, 1},
                                         {1, 1, 1},
                                         {16000, 8000, 1},
                                         {INT32_MAX, 1, 1},
                                         {12, 18, 3},
                                         {7, 11, 11}}) {
    for (int32_t length = 1; length < 20; ++length) {
      const int64_t row = (int64_t{length} + 4) / 4 * 4, phases = reduced;
      int32_t size = 0, rowLength = 0, rows = 0;
      ASSERT_EQ(qorsResamplePolyphaseFixedGetSize_16s(in, out, length, &size, &rowLength, &rows, 1), qorStatusOk);
      EXPECT_EQ(size, (phases + 7) / 8 * 16 + 32 + (phases + 4) / 4 * 16 + row * phases * 2);
      EXPECT_EQ(rowLength, row);
      EXPECT_EQ(rows, phases);
      ASSERT_EQ(qorsResamplePolyphaseFixedGetSize_32f(in, out, length, &size, &rowLength, &rows, 77), qorStatusOk);
      EXPECT_EQ(size, (phases + 7) / 8 * 16 + 28 + (phases + 4) / 4 * 16 + row * phases * 4);
      EXPECT_EQ(rowLength, row);
      EXPECT_EQ(rows, phases);
    }
  }
}

// With one phase a 16-bit size is 32 + 32 + 2 row, a float one 16 + 28 + 16 + 4 row.
TEST(PolyphaseFixed, TheLargestSizes) {
  int32_t size = 0, rowLength = 0, rows = 0;
  EXPECT_EQ(qorsResamplePolyphaseFixedGetSize_16s(1, 1, 1073741787, &size, &rowLength, &rows, 1), qorStatusOk);
  EXPECT_EQ(size, 2147483640);
  EXPECT_EQ(qorsResamplePolyphaseFixedGetSize_16s(1, 1, 1073741788, &size, &rowLength, &rows, 1), qorStatusBadSize);
  EXPECT_EQ(qorsResamplePolyphaseFixedGetSize_32f(1, 1, 536870895, &size, &rowLength, &rows, 1), qorStatusOk);
  EXPECT_EQ(size, 60 + 4 * 536870896);
  EXPECT_EQ(qorsResamplePolyphaseFixedGetSize_32f(1, 1, 536870896, &size, &rowLength, &rows, 1), qorStatusBadSize);
  for (const int32_t out : {INT32_MAX, 1 << 30, 65536}) {
    for (const int32_t length : {INT32_MAX, 1 << 30, 65536}) {
      EXPECT_EQ(qorsResamplePolyphaseFixedGetSize_16s(1, out, length, &size, &rowLength, &rows, 1), qorStatusBadSize);
      EXPECT_EQ(qorsResamplePolyphaseFixedGetSize_32f(1, out, length, &size, &rowLength, &rows, 1), qorStatusBadSize);
      ResamplePolyphaseFixedState_16s* state = nullptr;
      EXPECT_EQ(qorsResamplePolyphaseFixedInitAlloc_16s(&state, 1, out, length, 1, 5, 1), qorStatusBadArgument);
      EXPECT_EQ(qorsResamplePolyphaseFixedInitAlloc_16s(&state, 1, out, length, 1, 5, 2), qorStatusBadArgument);
    }
  }
}

// ---- Design ----

template <class M>
void checkRows(const Design& d) {
  const Filter<M> f(d);
  if (std::is_same_v<M, Short> && d.hint == 2) return;
  std::vector<typename M::T> rows(static_cast<std::size_t>(f.model.rowLength * f.model.out)), expected;
  ASSERT_EQ(M::get(f.state, rows.data(), static_cast<int32_t>(f.model.rowLength), static_cast<int32_t>(f.model.out)), qorStatusOk);
  for (const model::Reals& row : f.model.rows) {
    for (const double v : row) expected.push_back(static_cast<typename M::T>(v));
  }
  ASSERT_BITS(rows, expected) << d.in << " to " << d.out << ", length " << d.filterLength;
}

TEST(PolyphaseFixed, TheRowsAreTheDesign) {
  for (const int32_t hint : {1, 2}) {
    for (const Design& d :
         {Design{48000, 16000, 216, 0.9F, 8, hint}, Design{16000, 48000, 72, 0.9F, 8, hint},
          Design{44100, 48000, 64, 0.95F, 9, hint}, Design{48000, 44100, 63, 0.9F, 6, hint}, Design{1, 1, 16, 1, 5, hint},
          Design{3, 1, 1, 0.5F, 1, hint}, Design{1, 3, 2, 0.5F, 1, hint}, Design{100, 1, 30, 0.5F, 2, hint},
          Design{5, 7, 29, 0.1F, 50, hint}, Design{300001, 300000, 4, 0.9F, 4, hint}, Design{3, 400001, 5, 0.9F, 4, hint},
          Design{1000000, 3, 4, 0.9F, 4, hint}}) {
      checkRows<Float>(d);
      checkRows<Short>(d);
    }
  }
}

TEST(PolyphaseFixed, RowsMirrorEachOther) {
  const Filter<Float> f({48000, 44100, 64, 0.9F, 6, 1});
  const int32_t phases = 147, length = 68, n = 32;
  std::vector<float> rows(phases * length);
  ASSERT_EQ(qorsResamplePolyphaseGetFixedFilter_32f(f.state, rows.data(), length, phases), qorStatusOk);
  const auto tap = [&](int32_t p, int32_t k) { return rows[static_cast<std::size_t>(p * length + k)]; };
  for (int32_t p = 1; p < phases; ++p) {
    for (int32_t k = 0; k < 2 * n; ++k) ASSERT_EQ(tap(p, k), tap(phases - p, 2 * n - 1 - k));
    for (int32_t k = 2 * n; k < length; ++k) ASSERT_EQ(tap(p, k), 0.0F);
  }
  for (int32_t k = 0; k <= 2 * n; ++k) ASSERT_EQ(tap(0, k), tap(0, 2 * n - k));
}

// ---- Samples ----

template <class M>
void expectModel(const typename M::State* state, const model::FixedFilter& f, const std::vector<typename M::T>& x, int32_t length,
                 float norm, double time, bool accurate, kit::Place place) {
  using T = typename M::T;
  const auto expected = model::resampleFixed(f, x.data(), length, norm, time, accurate);
  const int64_t lowest = std::min<int64_t>(expected.lowest, static_cast<int64_t>(x.size()) - 1),
                highest = std::max(expected.highest, lowest);
  const kit::Area<T> source(std::vector<T>(x.begin() + lowest, x.begin() + highest + 1), kit::Place::kAtGuard);
  const kit::Area<T> destination(static_cast<int64_t>(expected.samples.size()), place);
  double after = time;
  int32_t count = -1;
  SCOPED_TRACE(testing::Message() << f.in << " to " << f.out << ", 2n " << 2 * f.half << " length " << length << " time " << time);
  ASSERT_EQ(M::run(state, source.data() - lowest, length, destination.data(), norm, &after, &count), qorStatusOk);
  ASSERT_EQ(count, static_cast<int32_t>(expected.samples.size()));
  ASSERT_BITS(destination.values(), expected.samples);
  ASSERT_BITS(after, expected.time);
  ASSERT_TRUE(destination.edgesKept());
}

template <class M>
void manyCalls() {
  kit::Random random;
  int round = 0;
  for (const int32_t hint : {1, 2}) {
    for (int32_t filterLength : {1, 2, 3, 4, 5, 8, 11, 12, 13, 16, 20, 24, 27, 28, 32, 33, 36, 40, 60, 61, 64, 128, 216}) {
      for (const auto& [in, out] :
           {std::pair<int32_t, int32_t>{3, 1}, {1, 3}, {1, 1}, {160, 147}, {147, 160}, {7, 2}, {1, 40000}, {90, 1}}) {
        if (out == 40000 && filterLength > 5) continue;
        const Filter<M> f({in, out, filterLength, 0.9F, 6, hint});
        for (const double time : {300.0, 300.4999, 300.75, 301 - 1e-12, 300 + 1.0 / 3}) {
          const auto x = random.vector<typename M::T>(800, kit::kKinds[round % 3]);
          const int32_t length =
              out == 40000 ? 1 : kit::shortLengths()[static_cast<std::size_t>(round) % kit::shortLengths().size()] % 70 + 1;
          const auto norm = static_cast<float>(random.real(-1.5, 1.5));
          expectModel<M>(f.state, f.model, x, length, norm, time, hint == 2, kit::kPlaces[round % 3]);
          if (testing::Test::HasFatalFailure()) return;
          ++round;
        }
      }
    }
  }
}

TEST(PolyphaseFixed, FloatsAgainstTheModel) { manyCalls<Float>(); }
TEST(PolyphaseFixed, ShortsAgainstTheModel) { manyCalls<Short>(); }

template <class M>
void nearTheLimits() {
  kit::Random random;
  for (const int32_t hint : {1, 2}) {
    for (const auto& [in, out] : {std::pair<int32_t, int32_t>{3, 1}, {1, 1}, {147, 160}, {3, 2}, {100, 99}}) {
      const Filter<M> f({in, out, 12, 0.9F, 6, hint});
      const auto x = random.vector<typename M::T>(400);
      const double perPhase = 2147483647.0 / out;  // positions in phases reach 2^31 here
      for (const double base :
           {std::trunc(perPhase) - 100, std::trunc(perPhase), 2147483647.0 - 99, -2147483548.0, -7.0, -std::trunc(perPhase) - 50}) {
        for (const double rest : {0.0, 0.25, 0.8}) {
          const double time = base + rest;
          const auto* source = x.data() + 100 - static_cast<int64_t>(base);
          const auto expected = model::resampleFixed(f.model, source, 150, 1.0F, time, hint == 2);
          std::vector<typename M::T> y(200);
          double after = time;
          int32_t count = 0;
          ASSERT_EQ(M::run(f.state, source, 150, y.data(), 1.0F, &after, &count), qorStatusOk);
          ASSERT_EQ(count, static_cast<int32_t>(expected.samples.size()));
          y.resize(expected.samples.size());
          ASSERT_BITS(y, expected.samples) << base << " " << rest;
          ASSERT_BITS(after, expected.time);
        }
      }
      for (const double time : {2147483648.0, -2147483649.0, 1e300, kInfinity, -kInfinity, kNaN}) {
        double after = time;
        int32_t count = 7;
        typename M::T y = 77;
        ASSERT_EQ(M::run(f.state, x.data(), 5, &y, 1.0F, &after, &count), qorStatusOk);
        EXPECT_EQ(count, 0);
        EXPECT_BITS(after, time);
        EXPECT_EQ(y, typename M::T{77});
      }
    }
  }
}
TEST(PolyphaseFixed, TimesNearTheLimits) {
  nearTheLimits<Float>();
  nearTheLimits<Short>();
}

// Steps of more samples than 16 bits can say.
TEST(PolyphaseFixed, FarApart) {
  const Filter<Short> f({200000, 1, 4, 0.9F, 6, 1});
  kit::Random random;
  const auto x = random.vector<int16_t>(700000);
  expectModel<Short>(f.state, f.model, x, 600000, 1.0F, 10, false, kit::Place::kAligned);
}

// In front of the first sample a time goes to the phase after the nearest; the span does not count the sample that it lies in.
TEST(PolyphaseFixed, NegativeTimes) {
  const Filter<Float> f({1, 4, 8, 0.9F, 6, 1});
  kit::Random random;
  const auto x = random.vector<float>(60);
  for (const auto& [time, phases] :
       {std::pair<double, int>{-0.125, 0}, {-0.25, 0}, {-0.3125, 0}, {-0.5, -1}, {-0.9375, -3}, {-2.75, -10}}) {
    const auto expected = model::resampleFixed(f.model, x.data() + 30, 3, 1.0F, time, false);
    std::vector<float> y(16), after(16);
    double now = time;
    int32_t count = 0;
    ASSERT_EQ(qorsResamplePolyphaseFixed_32f(f.state, x.data() + 30, 3, y.data(), 1.0F, &now, &count), qorStatusOk);
    EXPECT_EQ(count, (static_cast<int>(time) + 3) * 4 - phases) << time;
    ASSERT_LE(count, 16);  // (length + 1) * out / in
    y.resize(static_cast<std::size_t>(count));
    ASSERT_BITS(y, expected.samples) << time;
    double exact = 8 + phases / 4.0;  // the same position, in front of no sample
    ASSERT_EQ(qorsResamplePolyphaseFixed_32f(f.state, x.data() + 22, 4, after.data(), 1.0F, &exact, &count), qorStatusOk);
    EXPECT_BITS(std::vector<float>(y.begin(), y.begin() + 4), std::vector<float>(after.begin(), after.begin() + 4)) << time;
  }
}

TEST(PolyphaseFixed, ATimeIsSnappedToTheNearestPhaseAndKept) {
  const Filter<Float> f({3, 4, 16, 0.9F, 6, 1});
  kit::Random random;
  const auto x = random.vector<float>(100);
  std::vector<float> atPhase(40), near(40);
  for (const double away : {0.1, -0.1, 0.1249}) {
    double phaseTime = 30.25, time = 30.25 + away;
    int32_t count = 0;
    ASSERT_EQ(qorsResamplePolyphaseFixed_32f(f.state, x.data(), 20, atPhase.data(), 1.0F, &phaseTime, &count), qorStatusOk);
    ASSERT_EQ(qorsResamplePolyphaseFixed_32f(f.state, x.data(), 20, near.data(), 1.0F, &time, &count), qorStatusOk);
    EXPECT_BITS(near, atPhase);
    EXPECT_NEAR(time, phaseTime + away, 1e-12);
  }
}

// ---- Filters of the caller ----

template <class M>
void ownFilters(int32_t hint) {
  kit::Random random;
  for (int32_t filterLength = 1; filterLength <= 18; ++filterLength) {
    for (const auto& [in, out] : {std::pair<int32_t, int32_t>{3, 2}, {2, 5}, {1, 1}}) {
      int32_t size = 0, rowLength = 0, rows = 0;
      ASSERT_EQ(M::getSize(in, out, filterLength, &size, &rowLength, &rows, hint), qorStatusOk);
      model::FixedFilter f = model::emptyFixed(in, out, filterLength, std::is_same_v<M, Short>);
      ASSERT_EQ(rowLength, f.rowLength);
      for (const std::size_t offset : {0u, 4u, 8u, 20u}) {
        kit::Area<std::byte> block(static_cast<int64_t>(offset) + size, kit::Place::kAtGuard);
        auto* state = reinterpret_cast<typename M::State*>(block.data() + offset);
        ASSERT_EQ(M::init(state, in, out, filterLength, hint), qorStatusOk);
        // Rows longer and shorter than the state's, and more or fewer than it has.
        for (const int32_t width : {rowLength, rowLength + 3, 1, std::max(1, rowLength - 2)}) {
          for (const int32_t height : {rows, 1, rows + 2}) {
            const auto taps = random.vector<typename M::T>(int64_t{width} * height);
            const kit::Area<typename M::T> buffer(taps, kit::Place::kAtGuard);
            ASSERT_EQ(M::set(state, buffer.data(), width, height), qorStatusOk);
            for (int32_t r = 0; r < std::min(height, rows); ++r) {
              for (int32_t k = 0; k < std::min(width, rowLength); ++k)
                f.rows[static_cast<std::size_t>(r)][static_cast<std::size_t>(k)] =
                    static_cast<double>(taps[static_cast<std::size_t>(r * width + k)]);
            }
            kit::Area<typename M::T> back(int64_t{rowLength} * rows, kit::Place::kAtGuard);
            ASSERT_EQ(M::get(state, back.data(), rowLength, rows), qorStatusOk);
            std::vector<typename M::T> expected;
            for (const auto& row : f.rows) {
              for (const double v : row) expected.push_back(static_cast<typename M::T>(v));
            }
            ASSERT_BITS(back.values(), expected);
            const kit::Area<typename M::T> partly(int64_t{width} * height, kit::Place::kAtGuard);
            ASSERT_EQ(M::get(state, partly.data(), width, height), qorStatusOk);
            ASSERT_BITS(partly[0], taps[0]);
            ASSERT_TRUE(block.edgesKept() && back.edgesKept() && partly.edgesKept());
          }
        }
        // What the rows hold behind their taps changes nothing.
        const auto x = random.vector<typename M::T>(120);
        expectModel<M>(state, f, x, 40, 0.01F, 50.0, hint == 2, kit::Place::kAligned);
        std::vector<std::byte> moved(block.data() + offset, block.data() + offset + size);
        expectModel<M>(reinterpret_cast<typename M::State*>(moved.data()), f, x, 40, 0.01F, 50.5, hint == 2, kit::Place::kAligned);
        if (testing::Test::HasFatalFailure()) return;
      }
    }
  }
}
TEST(PolyphaseFixed, FiltersOfTheCaller) {
  ownFilters<Float>(1);
  ownFilters<Float>(2);
  ownFilters<Short>(1);
}

// Rows whose sums just fit 32 bits, just do not, and are as large as can be, on the largest samples.
TEST(PolyphaseFixed, SumsOfTheLargestTaps) {
  for (const int32_t filterLength : {4, 16, 40, 64, 216}) {
    model::FixedFilter f = model::emptyFixed(1, 1, filterLength, true);
    const auto width = static_cast<int32_t>(f.rowLength);
    int32_t size = 0, rowLength = 0, rows = 0;
    ASSERT_EQ(qorsResamplePolyphaseFixedGetSize_16s(1, 1, filterLength, &size, &rowLength, &rows, 1), qorStatusOk);
    std::vector<int32_t> block(static_cast<std::size_t>(size) / 4 + 1);
    auto* state = reinterpret_cast<ResamplePolyphaseFixedState_16s*>(block.data());
    ASSERT_EQ(qorsResamplePolyphaseFixedInit_16s(state, 1, 1, filterLength, 1), qorStatusOk);
    const int32_t inClass = 2 * ((width + 7) / 8);  // taps that one of four sums takes at most
    for (const int32_t tap : {65535 / inClass, 65535 / inClass + 1, 32767, -32768, 32768 - 16384 / inClass}) {
      const auto value = static_cast<int16_t>(std::clamp(tap, -32768, 32767));
      const std::vector<int16_t> taps(static_cast<std::size_t>(width), value);
      ASSERT_EQ(qorsResamplePolyphaseSetFixedFilter_16s(state, taps.data(), width, 1), qorStatusOk);
      std::fill(f.rows[0].begin(), f.rows[0].end(), value);
      for (const int16_t x : {INT16_MIN, INT16_MAX}) {
        for (const float norm : {1.0F, 1e-4F, 1e-6F}) {
          expectModel<Short>(state, f, std::vector<int16_t>(700, x), 3, norm, 300.0, false, kit::Place::kAligned);
        }
      }
    }
  }
}

TEST(PolyphaseFixed, WithoutAFilterThereIsSilence) {
  int32_t size = 0, rowLength = 0, rows = 0, count = 0;
  ASSERT_EQ(qorsResamplePolyphaseFixedGetSize_32f(3, 2, 8, &size, &rowLength, &rows, 1), qorStatusOk);
  std::vector<float> block(static_cast<std::size_t>(size) / 4 + 1, 5.0F), y(20, 77.0F);
  auto* state = reinterpret_cast<ResamplePolyphaseFixedState_32f*>(block.data());
  ASSERT_EQ(qorsResamplePolyphaseFixedInit_32f(state, 3, 2, 8, 1), qorStatusOk);
  const std::vector<float> x(60, 1.0F);
  double time = 20;
  ASSERT_EQ(qorsResamplePolyphaseFixed_32f(state, x.data(), 10, y.data(), 1.0F, &time, &count), qorStatusOk);
  for (int32_t i = 0; i < count; ++i) EXPECT_BITS(y[static_cast<std::size_t>(i)], 0.0F);
}

// ---- Streams and signals ----

template <class M>
void pieces() {
  kit::Random random;
  for (const int32_t hint : {1, 2}) {
    for (const auto& [in, out] : {std::pair<int32_t, int32_t>{3, 1}, {2, 1}, {1, 2}, {160, 147}, {1, 1}, {3, 4}}) {
      const Filter<M> f({in, out, 32, 0.9F, 6, hint});
      const auto x = random.vector<typename M::T>(3000);
      std::vector<typename M::T> whole(6000), parts(6000);
      double time = 100;
      int32_t count = 0;
      ASSERT_EQ(M::run(f.state, x.data(), 2500, whole.data(), 1.0F, &time, &count), qorStatusOk);
      for (const bool moved : {false, true}) {
        double now = 100;
        int64_t begin = 0;
        int32_t made = 0;
        while (made < count) {
          const auto limit = static_cast<int32_t>(2600 - begin - static_cast<int64_t>(now));
          const int32_t length = std::min(static_cast<int32_t>(random.integer(1, 40)), limit);
          int32_t n = 0;
          ASSERT_EQ(M::run(f.state, x.data() + begin, length, parts.data() + made, 1.0F, &now, &n), qorStatusOk);
          made += n;
          if (moved && now > 150) {
            begin += 100;
            now -= 100;
          }
        }
        ASSERT_EQ(made, count);
        ASSERT_NEAR(now + static_cast<double>(begin), time, 1e-9);
        whole.resize(static_cast<std::size_t>(count));
        parts.resize(static_cast<std::size_t>(count));
        ASSERT_BITS(parts, whole) << in << " " << out;
        parts.resize(6000);
      }
    }
  }
}
TEST(PolyphaseFixed, PiecesOfAnyLengthsEqualTheWhole) {
  pieces<Float>();
  pieces<Short>();
}

TEST(PolyphaseFixed, ATonePassesAndAnAliasDoesNot) {
  const auto peak = [](int32_t in, int32_t out, double frequency) {
    const Filter<Float> f({in, out, 216, 0.92F, 8, 2});
    std::vector<float> x(6000), y(13000);
    for (std::size_t i = 0; i < x.size(); ++i)
      x[i] = static_cast<float>(std::cos(2 * std::numbers::pi * frequency * static_cast<double>(i)));
    double time = 500;
    int32_t count = 0;
    qorsResamplePolyphaseFixed_32f(f.state, x.data(), 5000, y.data(), 1.0F, &time, &count);
    std::pair<double, double> largest{0, 0};
    for (int32_t i = 0; i < count; ++i) {
      const auto v = static_cast<double>(y[static_cast<std::size_t>(i)]);
      const double exact = std::cos(2 * std::numbers::pi * frequency * (500 + static_cast<double>(i) * in / out));
      largest = {std::max(largest.first, std::fabs(v)), std::max(largest.second, std::fabs(v - exact))};
    }
    return largest;
  };
  for (const auto& [in, out] : {std::pair<int32_t, int32_t>{48000, 16000}, {44100, 16000}, {16000, 32000}, {48000, 44100}}) {
    const double band = std::min(static_cast<double>(out) / in, 1.0) * 0.5;
    EXPECT_LT(peak(in, out, band * 0.3).second, 1e-4);
    EXPECT_LT(peak(in, out, band * 0.8).second, 1e-4);
    if (out < in) {
      EXPECT_LT(peak(in, out, std::min(band * 1.12, 0.5)).first, 1e-3);
    }
  }
}

// ---- Faults, memory, environment ----

template <class M>
void checkSizing(bool hintMatters) {
  struct A {
    int32_t in, out, filterLength, *size, *rowLength, *rows, hint;
  };
  int32_t size = 77, rowLength = 77, rows = 77;
  const A valid = {3, 2, 16, &size, &rowLength, &rows, 1};
  kit::FaultTable<A> table(valid,
                           [](const A& a) { return M::getSize(a.in, a.out, a.filterLength, a.size, a.rowLength, a.rows, a.hint); },
                           {{&size, 1}, {&rowLength, 1}, {&rows, 1}});
  table.fault("null size", qorStatusNullPointer, &A::size, nullptr)
      .fault("null row length", qorStatusNullPointer, &A::rowLength, nullptr)
      .fault("null rows", qorStatusNullPointer, &A::rows, nullptr)
      .fault("input rate zero", qorStatusBadSize, &A::in, 0)
      .fault("output rate zero", qorStatusBadSize, &A::out, 0)
      .fault("filter length zero", qorStatusBadSize, &A::filterLength, 0);
  if (hintMatters) table.fault("hint 2", qorStatusBadArgument, &A::hint, 2);
  table.fault("too large", qorStatusBadSize, &A::filterLength, INT32_MAX).check();

  struct B {
    typename M::State* state;
    int32_t in, out, filterLength, hint;
  };
  std::vector<float> block(static_cast<std::size_t>(size));
  const B validB = {reinterpret_cast<typename M::State*>(block.data()), 3, 2, 16, 1};
  kit::FaultTable<B> init(validB, [](const B& a) { return M::init(a.state, a.in, a.out, a.filterLength, a.hint); },
                          {{block.data(), size}});
  init.fault("null state", qorStatusNullPointer, &B::state, nullptr)
      .fault("input rate zero", qorStatusBadSize, &B::in, 0)
      .fault("output rate negative", qorStatusBadSize, &B::out, -1)
      .fault("filter length zero", qorStatusBadSize, &B::filterLength, 0);
  if (hintMatters) init.fault("hint 2", qorStatusBadArgument, &B::hint, 2);
  init.fault("too large", qorStatusBadSize, &B::filterLength, INT32_MAX).check();
}
TEST(PolyphaseFixedFaults, SizesAndBlocks) {
  checkSizing<Float>(false);
  checkSizing<Short>(true);
}

template <class M>
void checkMaking() {
  struct A {
    typename M::State** state;
    int32_t in, out, filterLength;
    float rollOff, alpha;
    int32_t hint;
  };
  typename M::State* state = nullptr;
  const A valid = {&state, 3, 2, 16, 0.9F, 6, 1};
  const auto call = [](const A& a) {
    const QorStatus status = M::make(a.state, a.in, a.out, a.filterLength, a.rollOff, a.alpha, a.hint);
    if (status == qorStatusOk) {
      M::free(*a.state);
      *a.state = nullptr;
    }
    return status;
  };
  kit::FaultTable<A>(valid, call, {{&state, 1}})
      .fault("null state", qorStatusNullPointer, &A::state, nullptr)
      .fault("input rate zero", qorStatusBadSize, &A::in, 0)
      .fault("output rate zero", qorStatusBadSize, &A::out, INT32_MIN)
      .fault("filter length zero", qorStatusBadSize, &A::filterLength, 0)
      .fault("roll-off zero", qorStatusBadArgument, &A::rollOff, -0.0F)
      .fault("roll-off above 1", qorStatusBadArgument, &A::rollOff, 1.0000001F)
      .fault("alpha below 1", qorStatusBadArgument, &A::alpha, -kInfinity)
      .fault("too large", qorStatusBadArgument, &A::filterLength, INT32_MAX)
      .check();
  for (const float value : {std::numeric_limits<float>::quiet_NaN(), 1e30F, std::numeric_limits<float>::infinity()}) {
    EXPECT_EQ(M::make(&state, 3, 2, 16, 0.9F, value, 1), qorStatusOk);
    M::free(state);
  }
  state = nullptr;
  EXPECT_EQ(kit::expectEveryRefusalReported([&] {
              typename M::State* made = nullptr;
              const QorStatus status = M::make(&made, 3, 2, 16, 0.9F, 6, 1);
              if (status == qorStatusOk) M::free(made);
              EXPECT_EQ(made == nullptr, status != qorStatusOk);
              return status;
            }),
            2);
  EXPECT_EQ(M::free(nullptr), qorStatusNullPointer);
}
TEST(PolyphaseFixedFaults, Making) {
  checkMaking<Float>();
  checkMaking<Short>();
}

template <class M>
void checkRunning() {
  using T = typename M::T;
  struct A {
    typename M::State* state;
    const T* source;
    int32_t length;
    T* destination;
    double* time;
    int32_t *count, rowLength, rows;
  };
  const Filter<M> f({3, 2, 8, 0.9F, 6, 1});
  const std::vector<T> x(100, 1);
  std::vector<T> y(40, 77);
  double time = 50;
  int32_t count = 77;
  const A valid = {f.state, x.data(), 5, y.data(), &time, &count, 12, 2};
  kit::FaultTable<A>(valid, [](const A& a) { return M::run(a.state, a.source, a.length, a.destination, 1.0F, a.time, a.count); },
                     {{y.data(), 40}, {&time, 1}, {&count, 1}})
      .fault("null state", qorStatusNullPointer, &A::state, nullptr)
      .fault("null source", qorStatusNullPointer, &A::source, nullptr)
      .fault("null destination", qorStatusNullPointer, &A::destination, nullptr)
      .fault("null count", qorStatusNullPointer, &A::count, nullptr)
      .fault("null time", qorStatusNullPointer, &A::time, nullptr)
      .fault("length zero", qorStatusBadSize, &A::length, 0)
      .check();
  const auto rowFaults = [&](auto call) {
    kit::FaultTable<A>(valid, call, {{y.data(), 40}})
        .fault("null state", qorStatusNullPointer, &A::state, nullptr)
        .fault("null filter", qorStatusNullPointer, &A::destination, nullptr)
        .fault("row length zero", qorStatusBadSize, &A::rowLength, 0)
        .fault("rows negative", qorStatusBadSize, &A::rows, -1)
        .check();
  };
  rowFaults([](const A& a) { return M::get(a.state, a.destination, a.rowLength, a.rows); });
  rowFaults([](const A& a) { return M::set(a.state, a.destination, a.rowLength, a.rows); });
}
TEST(PolyphaseFixedFaults, Running) {
  checkRunning<Float>();
  checkRunning<Short>();
}

TEST(PolyphaseFixed, KeepsTheEnvironmentAndAllocatesNothing) {
  const std::vector<float> x(200, 1.5F);
  const std::vector<int16_t> x16(200, 1000);
  std::vector<float> y(200);
  std::vector<int16_t> y16(200);
  for (const int32_t hint : {1, 2}) {
    const Filter<Float> f({3, 2, 16, 0.9F, 6, hint});
    const Filter<Short> s({3, 2, 16, 0.9F, 6, hint});
    const int64_t before = kit::Core::calls();
    kit::expectEnvironmentKept([&] {
      double time = 50;
      int32_t count;
      qorsResamplePolyphaseFixed_32f(f.state, x.data(), 50, y.data(), 1.0F, &time, &count);
      time = 50;
      qorsResamplePolyphaseFixed_16s(s.state, x16.data(), 50, y16.data(), 1.0F, &time, &count);
    });
    EXPECT_EQ(kit::Core::calls(), before);
  }
}

}  // namespace
