// Noise tracking by minima: sizes, streams against the model in bits, restarts, time constants, faults, memory, environment.
#include <gtest/gtest.h>

#include <array>
#include <cfenv>
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
#include "model/noise_tracking.h"
#include "qorsr.h"

namespace {

struct Floats {
  using Number = float;
  using State = MCRAState_32f;
  static constexpr auto size = qorsGetSizeMCRA_32f;
  static constexpr auto init = qorsInitMCRA_32f;
  static constexpr auto initWithHop = qorsAltInitMCRA_32f;
  static constexpr auto update = qorsUpdateNoisePSDMCRA_32f_I;
};
struct Integers {
  using Number = int32_t;
  using State = MCRAState_32s;
  static constexpr auto size = qorsGetSizeMCRA_32s;
  static constexpr auto init = qorsInitMCRA_32s;
  static constexpr auto initWithHop = qorsAltInitMCRA_32s;
  static constexpr auto update = qorsUpdateNoisePSDMCRA_32s_I;
};

template <class Type>
class NoiseTracking : public testing::Test {};
struct NameOfType {
  template <class Type>
  static std::string GetName(int) {
    return std::is_same_v<typename Type::Number, float> ? "32f" : "32s";
  }
};
using Types = testing::Types<Floats, Integers>;
TYPED_TEST_SUITE(NoiseTracking, Types, NameOfType);

TYPED_TEST(NoiseTracking, Sizes) {
  for (int32_t length = 8; length <= 8192; length = length * 5 / 4 + 1) {
    int32_t size = 0;
    ASSERT_EQ(TypeParam::size(length, &size), qorStatusOk);
    EXPECT_BITS(size, length / 2 * 16 + 84);
  }
  int32_t size = 77;
  EXPECT_EQ(TypeParam::size(8192, &size), qorStatusOk);
  EXPECT_EQ(size, 65620);
  size = 77;
  EXPECT_EQ(TypeParam::size(7, &size), qorStatusBadSize);
  EXPECT_EQ(TypeParam::size(8193, &size), qorStatusBadSize);
  EXPECT_EQ(TypeParam::size(INT32_MIN, &size), qorStatusBadSize);
  EXPECT_EQ(TypeParam::size(INT32_MAX, &size), qorStatusBadSize);
  EXPECT_EQ(TypeParam::size(0, nullptr), qorStatusNullPointer);
  EXPECT_EQ(size, 77);
}

// A stream in a block of exactly its size, beside its model.
template <class Type>
class Stream {
 public:
  using T = typename Type::Number;

  Stream(int32_t rate, int32_t length, int32_t hop, kit::Place place)
      : block_((length / 2 * 16 + 84) / 4, place), spectrum_(length / 2 + 1, place), noise_(length / 2 + 1, place) {
    block_.fill(-77);
    noise_.fill(T(-5));
    auto* const state = reinterpret_cast<typename Type::State*>(block_.data());
    if (hop == 0) {
      EXPECT_EQ(Type::init(rate, length, state), qorStatusOk);
      model_ = model::minima<T>(rate, length);
    } else {
      EXPECT_EQ(Type::initWithHop(rate, length, hop, state), qorStatusOk);
      model_ = model::minima<T>(rate, length, hop);
    }
    expected_.assign(static_cast<std::size_t>(length / 2 + 1), T(-5));
  }

  int64_t bins() const { return spectrum_.size(); }
  const model::Minima<T>& model() const { return model_; }
  T noise(int64_t k) const { return noise_[k]; }
  const std::vector<T>& expected() const { return expected_; }

  [[nodiscard]] bool update(const std::vector<T>& x) {
    for (int64_t k = 0; k < bins(); ++k) spectrum_[k] = x[static_cast<std::size_t>(k)];
    EXPECT_EQ(Type::update(spectrum_.data(), reinterpret_cast<typename Type::State*>(block_.data()), noise_.data()), qorStatusOk);
    model::update(model_, x, expected_);
    EXPECT_BITS(noise_.values(), expected_);
    EXPECT_BITS(spectrum_.values(), x);
    EXPECT_TRUE(block_.edgesKept() && spectrum_.edgesKept() && noise_.edgesKept());
    return !testing::Test::HasFailure();
  }

 private:
  kit::Area<int32_t> block_;
  kit::Area<T> spectrum_, noise_;
  model::Minima<T> model_;
  std::vector<T> expected_;
};

// Powers of noise, each with its own level, with bursts of speech over a part of the bins.
template <class T>
std::vector<T> spectrumOf(kit::Random& random, int64_t bins, bool speech, double scale) {
  std::vector<T> x;
  for (int64_t k = 0; k < bins; ++k) {
    const double level = scale * static_cast<double>(1 + k % 7), share = random.real(0.2, 1.8);
    const double burst = speech && k % 3 != 0 ? random.real(5, 400) : 1.0;
    x.push_back(static_cast<T>(level * share * burst));
  }
  return x;
}

struct Frame {
  int32_t rate, length, hop;  // hop 0: length / 2, by Init
};
constexpr Frame kFrames[] = {{8000, 8, 0},      {8000, 9, 0},       {16000, 256, 0},  {16000, 255, 127},  {16000, 320, 0},
                             {16000, 320, 160}, {48000, 8, 1},      {48000, 8192, 0}, {8000, 8192, 4096}, {44100, 1024, 441},
                             {11025, 33, 7},    {8000, 4100, 1900}, {8000, 10, 5},    {22050, 17, 0},     {32000, 66, 33},
                             {16000, 60, 2},    {12345, 77, 38},    {8000, 2048, 0},  {47999, 22, 0},     {8001, 511, 255}};

TYPED_TEST(NoiseTracking, StreamsFollowTheModel) {
  using T = typename TypeParam::Number;
  kit::Random random;
  int index = 0;
  for (const Frame& f : kFrames) {
    Stream<TypeParam> s(f.rate, f.length, f.hop, kit::kPlaces[index++ % 3]);
    const int frames = f.length > 1000 ? 20 : 400;
    for (int n = 0; n < frames; ++n) {
      const bool speech = n % 40 >= 25;
      ASSERT_TRUE(s.update(spectrumOf<T>(random, s.bins(), speech, n % 200 < 120 ? 1000.0 : 7000.0)))
          << "rate " << f.rate << " length " << f.length << " hop " << f.hop << " frame " << n;
    }
  }
}

// Every number of bins, so that every remainder of every block is met.
TYPED_TEST(NoiseTracking, EveryLength) {
  using T = typename TypeParam::Number;
  kit::Random random;
  for (int32_t length = 8; length <= 140; ++length) {
    Stream<TypeParam> s(16000, length, 4, kit::kPlaces[length % 3]);
    for (int n = 0; n < 12; ++n) {
      ASSERT_TRUE(s.update(spectrumOf<T>(random, s.bins(), n % 3 == 0, 50.0))) << "length " << length << " frame " << n;
    }
  }
}

TYPED_TEST(NoiseTracking, NastyValuesFollowTheModel) {
  using T = typename TypeParam::Number;
  kit::Random random;
  for (const Frame& f : kFrames) {
    if (f.length > 1100) continue;
    Stream<TypeParam> s(f.rate, f.length, f.hop, kit::Place::kAtGuard);
    for (int n = 0; n < 40; ++n) {
      ASSERT_TRUE(s.update(random.vector<T>(s.bins(), kit::kKinds[random.integer(0, 2)])))
          << "rate " << f.rate << " length " << f.length << " hop " << f.hop << " frame " << n;
    }
  }
}

// A block at every address that the elements allow, of exactly its size.
TYPED_TEST(NoiseTracking, BlocksMayBeginAtAnyMultipleOfFour) {
  using T = typename TypeParam::Number;
  using State = typename TypeParam::State;
  kit::Random random;
  for (const int32_t length : {8, 31, 64, 78}) {
    const int32_t words = (length / 2 * 16 + 84) / 4, bins = length / 2 + 1;
    for (int32_t shift = 0; shift < 32; ++shift) {
      alignas(64) std::array<int32_t, 500> memory;
      memory.fill(-77);
      auto* const state = reinterpret_cast<State*>(memory.data() + shift);
      ASSERT_EQ(TypeParam::init(16000, length, state), qorStatusOk);
      auto m = model::minima<T>(16000, length);
      std::vector<T> noise(static_cast<std::size_t>(bins)), expected = noise;
      for (int n = 0; n < 5; ++n) {
        const auto x = spectrumOf<T>(random, bins, n % 2 == 0, 500.0);
        ASSERT_EQ(TypeParam::update(x.data(), state, noise.data()), qorStatusOk);
        model::update(m, x, expected);
        ASSERT_BITS(noise, expected) << "length " << length << " shift " << shift;
      }
      for (int32_t i = 0; i < 500; ++i) {
        const bool outside = i < shift || i >= shift + words;
        ASSERT_TRUE(!outside || memory[static_cast<std::size_t>(i)] == -77) << i;
      }
    }
  }
}

// A rate and hop of which every constant wraps: signs of all kinds in the products.
TEST(NoiseTrackingOfIntegers, ConstantsThatWrapFollowTheModel) {
  kit::Random random;
  int negative = 0;
  for (int32_t hop = 100; hop <= 4096; hop += 111) {
    Stream<Integers> s(8000, 8192, hop, kit::Place::kAligned);
    const auto& m = s.model();
    negative += (m.spectrumSmoothing < 0) + (m.noiseSmoothing < 0);
    for (int n = 0; n < 4; ++n) ASSERT_TRUE(s.update(random.vector<int32_t>(s.bins(), kit::kKinds[n % 3]))) << "hop " << hop;
  }
  EXPECT_GT(negative, 5);
}

TYPED_TEST(NoiseTracking, TheFirstFrameIsTheNoise) {
  using T = typename TypeParam::Number;
  Stream<TypeParam> s(16000, 64, 0, kit::Place::kAligned);
  std::vector<T> x;
  for (int k = 0; k < 33; ++k) x.push_back(static_cast<T>(100 + k));
  ASSERT_TRUE(s.update(x));
  for (int k = 0; k < 33; ++k) EXPECT_EQ(s.noise(k), x[static_cast<std::size_t>(k)]);
}

// Noise that rises twentyfold is taken for speech until the search for the minimum begins anew, then once more: two windows at most.
TYPED_TEST(NoiseTracking, ARiseIsFoundAfterTheSearchBeginsAnew) {
  using T = typename TypeParam::Number;
  Stream<TypeParam> s(16000, 256, 0, kit::Place::kAligned);
  EXPECT_EQ(s.model().window, 125);
  int frame = 0;
  const auto feed = [&](int count, double power) {
    for (int n = 0; n < count; ++n, ++frame) ASSERT_TRUE(s.update(std::vector<T>(129, static_cast<T>(power))));
  };
  feed(60, 1000.0);
  feed(60, 20000.0);
  EXPECT_LT(static_cast<double>(s.noise(7)), 10000.0);
  feed(190, 20000.0);
  EXPECT_NEAR(static_cast<double>(s.noise(7)), 20000.0, 200.0);
}

TEST(NoiseTrackingConstants, AreThoseOfEightMillisecondsAt128SamplesOf16Kilohertz) {
  // s = 0.8 s + 0.2 x: the first update after a step tells the constants, as the noise follows.
  alignas(4) uint8_t block[16 * 128 + 84];
  auto* const state = reinterpret_cast<MCRAState_32f*>(block);
  ASSERT_EQ(qorsInitMCRA_32f(16000, 256, state), qorStatusOk);
  std::vector<float> x(129, 1.0F), noise(129);
  ASSERT_EQ(qorsUpdateNoisePSDMCRA_32f_I(x.data(), state, noise.data()), qorStatusOk);
  x.assign(129, 2.0F);
  ASSERT_EQ(qorsUpdateNoisePSDMCRA_32f_I(x.data(), state, noise.data()), qorStatusOk);
  EXPECT_EQ(noise[5], 0.7F * 1.0F + (1.0F - 0.7F) * 2.0F);
}

// The warning of the header: hops up to 12 ms are within 0.01, and those of 30 ms are not near.
TEST(NoiseTrackingConstants, OfIntegersAreCloseToThoseOfFloatsForShortHops) {
  const auto worst = [](int32_t rate, int32_t hop) {
    const auto f = model::minima<float>(rate, 8192, hop);
    const auto i = model::minima<int32_t>(rate, 8192, hop);
    const auto off = [](float a, int32_t b) { return std::fabs(static_cast<double>(a) - std::ldexp(b, -31)); };
    return std::max({off(f.noiseSmoothing, i.noiseSmoothing), off(f.presenceSmoothing, i.presenceSmoothing),
                     off(f.spectrumSmoothing, i.spectrumSmoothing)});
  };
  for (const int32_t rate : {8000, 16000, 44100, 48000}) {
    for (int32_t hop = rate / 1000; hop <= rate / 1000 * 12; hop += rate / 2000) EXPECT_LT(worst(rate, hop), 0.01) << hop;
    EXPECT_GT(worst(rate, rate / 1000 * 30), 0.05);
  }
}

TYPED_TEST(NoiseTracking, WindowsAreOneSecond) {
  using T = typename TypeParam::Number;
  EXPECT_EQ(model::minima<T>(16000, 256).window, 125);
  EXPECT_EQ(model::minima<T>(16000, 320).window, 125);  // 160 samples count as 128
  EXPECT_EQ(model::minima<T>(16000, 320, 160).window, 100);
  EXPECT_EQ((model::minima<T>(8000, 8192, 4096).window), 1);
}

// ---- Faults ----

template <class State>
struct InitArgs {
  int32_t rate, length, hop;
  State* state;
};

TYPED_TEST(NoiseTracking, InitFaults) {
  using A = InitArgs<typename TypeParam::State>;
  alignas(4) uint8_t block[16 * 128 + 84] = {7};
  const A valid{16000, 256, 100, reinterpret_cast<typename TypeParam::State*>(block)};
  kit::FaultTable<A>(valid, [](const A& a) { return TypeParam::init(a.rate, a.length, a.state); }, {{block, sizeof(block)}})
      .fault("null state", qorStatusNullPointer, &A::state, nullptr)
      .fault("rate below 8000", qorStatusBadRange, &A::rate, 7999)
      .fault("rate above 48000", qorStatusBadRange, &A::rate, 48001)
      .fault("rate least", qorStatusBadRange, &A::rate, INT32_MIN)
      .fault("length below 8", qorStatusBadSize, &A::length, 7)
      .fault("length above 8192", qorStatusBadSize, &A::length, 8193)
      .fault("length least", qorStatusBadSize, &A::length, INT32_MIN)
      .check();
  kit::FaultTable<A>(valid, [](const A& a) { return TypeParam::initWithHop(a.rate, a.length, a.hop, a.state); },
                     {{block, sizeof(block)}})
      .fault("null state", qorStatusNullPointer, &A::state, nullptr)
      .fault("rate below 8000", qorStatusBadRange, &A::rate, 7999)
      .fault("rate above 48000", qorStatusBadRange, &A::rate, 48001)
      .fault("hop zero", qorStatusBadRange, &A::hop, 0)
      .fault("hop negative", qorStatusBadRange, &A::hop, INT32_MIN)
      .fault("hop above half the length", qorStatusBadRange, &A::hop, 129, kit::against(&A::length))
      .fault("length that has no hop", qorStatusBadRange, &A::length, 7, &A::hop, 4)
      .fault("length below 8", qorStatusBadSize, &A::length, 7, &A::hop, 3)
      .fault("length above 8192", qorStatusBadSize, &A::length, 8193)
      .check();
}

template <class Type>
struct UpdateArgs {
  const typename Type::Number* spectrum;
  typename Type::State* state;
  typename Type::Number* noise;
};

TYPED_TEST(NoiseTracking, UpdateFaults) {
  using A = UpdateArgs<TypeParam>;
  using T = typename TypeParam::Number;
  alignas(4) uint8_t block[16 * 4 + 84];
  auto* const state = reinterpret_cast<typename TypeParam::State*>(block);
  ASSERT_EQ(TypeParam::init(8000, 8, state), qorStatusOk);
  const T x[5] = {1, 2, 3, 4, 5};
  T noise[5] = {9, 9, 9, 9, 9};
  kit::FaultTable<A>({x, state, noise}, [](const A& a) { return TypeParam::update(a.spectrum, a.state, a.noise); },
                     {{block, sizeof(block)}, {noise, 5}})
      .fault("null spectrum", qorStatusNullPointer, &A::spectrum, nullptr)
      .fault("null state", qorStatusNullPointer, &A::state, nullptr)
      .fault("null noise", qorStatusNullPointer, &A::noise, nullptr)
      .check();
}

TYPED_TEST(NoiseTracking, KeepsTheEnvironmentAndAllocatesNothing) {
  using T = typename TypeParam::Number;
  const int64_t before = kit::Core::calls();
  alignas(4) uint8_t block[16 * 20 + 84];
  auto* const state = reinterpret_cast<typename TypeParam::State*>(block);
  const std::vector<T> x(21, T(1000));
  std::vector<T> noise(21);
  kit::expectEnvironmentKept([&] {
    TypeParam::init(16000, 40, state);
    TypeParam::initWithHop(16000, 40, 7, state);
    for (int n = 0; n < 3; ++n) TypeParam::update(x.data(), state, noise.data());
  });
  EXPECT_EQ(kit::Core::calls(), before);
}

// What integers store is rounded to nearest, whatever the caller's mode.
TEST(NoiseTrackingOfIntegers, RoundToNearestInEveryMode) {
  kit::Random random;
  std::vector<std::vector<int32_t>> results;
  std::vector<std::vector<int32_t>> frames;
  for (int n = 0; n < 10; ++n) frames.push_back(spectrumOf<int32_t>(random, 65, n % 2 == 0, 3000.0));
  for (const int mode : {FE_TONEAREST, FE_TOWARDZERO, FE_UPWARD, FE_DOWNWARD}) {
    alignas(4) uint8_t block[16 * 64 + 84];
    auto* const state = reinterpret_cast<MCRAState_32s*>(block);
    std::vector<int32_t> noise(65);
    ASSERT_EQ(qorsInitMCRA_32s(16000, 128, state), qorStatusOk);
    std::fesetround(mode);
    for (const auto& x : frames) qorsUpdateNoisePSDMCRA_32s_I(x.data(), state, noise.data());
    std::fesetround(FE_TONEAREST);
    results.push_back(noise);
  }
  for (const auto& noise : results) EXPECT_BITS(noise, results[0]);
}

}  // namespace
