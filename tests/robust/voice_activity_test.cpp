// Voice activity: streams against the model, the ring and its flush, hangovers, records at any address, faults, environment.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <vector>

#include "kit/compare.h"
#include "kit/core.h"
#include "kit/environment.h"
#include "kit/faults.h"
#include "kit/memory.h"
#include "kit/random.h"
#include "model/voice_activity.h"
#include "qorsr.h"

namespace {

// The functions of one type.
struct Floats {
  using Element = float;
  using State = VADState_Aurora_32f;
  using Model = model::ActivityOfFloats;
  static constexpr auto size = qorsVADGetBufSize_Aurora_32f;
  static constexpr auto init = qorsVADInit_Aurora_32f;
  static constexpr auto decision = qorsVADDecision_Aurora_32f;
  static constexpr auto flush = qorsVADFlush_Aurora_32f;
};
struct Shorts {
  using Element = int16_t;
  using State = VADState_Aurora_16s;
  using Model = model::ActivityOfIntegers;
  static constexpr auto size = qorsVADGetBufSize_Aurora_16s;
  static constexpr auto init = qorsVADInit_Aurora_16s;
  static constexpr auto decision = qorsVADDecision_Aurora_16s;
  static constexpr auto flush = qorsVADFlush_Aurora_16s;
};

template <class Type>
class VoiceActivity : public testing::Test {};
struct NameOfType {
  template <class Type>
  static std::string GetName(int) {
    return sizeof(typename Type::Element) == 4 ? "32f" : "16s";
  }
};
using Types = testing::Types<Floats, Shorts>;
TYPED_TEST_SUITE(VoiceActivity, Types, NameOfType);

// A stream in a block of 64 bytes, beside its model.
template <class Type>
class Stream {
 public:
  using T = typename Type::Element;
  explicit Stream(kit::Place place = kit::Place::kAtGuard) : block_(64, place), bands_(25, place), frame_(64, place) {
    block_.fill(0xA5);
    EXPECT_EQ(Type::init(state()), qorStatusOk);
  }
  typename Type::State* state() const { return reinterpret_cast<typename Type::State*>(block_.data()); }

  int32_t decide(const std::vector<T>& bands, const std::vector<T>& frame, int32_t count = 0) {
    std::memcpy(bands_.data(), bands.data(), 25 * sizeof(T));
    std::memcpy(frame_.data(), frame.data(), 64 * sizeof(T));
    int32_t decision = 77;
    EXPECT_EQ(Type::decision(bands_.data(), frame_.data(), count, &decision, state()), qorStatusOk);
    EXPECT_BITS(decision, model_.decision(bands, frame, count)) << "frame " << model_.frames;
    return decision;
  }
  int32_t flush() {
    int32_t decision = 77;
    EXPECT_EQ(Type::flush(&decision, state()), qorStatusOk);
    EXPECT_BITS(decision, model_.flush()) << "in the flush, frame " << model_.frames;
    return decision;
  }
  // Silence: of it no measure lies above its threshold once the trackers have it.
  int32_t rest(int32_t count = 0) { return decide(constant(4), constant(0, 64), count); }
  int32_t active() { return rest(5); }

  static std::vector<T> constant(int value, std::size_t length = 25) { return std::vector<T>(length, static_cast<T>(value)); }
  bool edgesKept() const { return block_.edgesKept(); }
  const typename Type::Model& model() const { return model_; }

 private:
  kit::Area<uint8_t> block_;
  kit::Area<T> bands_, frame_;
  typename Type::Model model_;
};

TYPED_TEST(VoiceActivity, BlocksHave64Bytes) {
  int32_t size = 0;
  EXPECT_EQ(TypeParam::size(&size), qorStatusOk);
  EXPECT_EQ(size, 64);
  EXPECT_EQ(TypeParam::size(nullptr), qorStatusNullPointer);
}

// Loudness that wanders, with words and pauses, over many magnitudes.
template <class T>
struct Sound {
  kit::Random& random;
  double loudness = 100, scale;
  int left = 0;

  void frame(std::vector<T>& bands, std::vector<T>& values) {
    if (left-- == 0) {
      left = static_cast<int>(random.integer(1, 40));
      const double exponent = random.real(-1, 2);
      loudness = scale * std::pow(10.0, exponent);
    }
    const auto draw = [&](std::vector<T>& v) {
      for (T& x : v) {
        const double factor = random.real(0.3, 1.2);
        x = static_cast<T>(std::min(loudness * factor, 32000.0));
      }
    };
    draw(bands);
    draw(values);
  }
};

TYPED_TEST(VoiceActivity, StreamsFollowTheModel) {
  using T = typename TypeParam::Element;
  kit::Random random;
  int32_t speech = 0, frames = 0;
  for (int stream = 0; stream < 60; ++stream) {
    Stream<TypeParam> s(kit::kPlaces[stream % 3]);
    Sound<T> sound{random, 100, stream % 4 == 0 ? 3000.0 : stream % 4 == 1 ? 1.0 : 20.0};
    std::vector<T> bands(25), values(64);
    const int length = stream < 50 ? static_cast<int>(random.integer(0, 120)) : 1500;
    for (int n = 0; n < length; ++n) {
      sound.frame(bands, values);
      const auto count = static_cast<int32_t>(random.integer(-2, 12) == 12 ? 5 : random.integer(0, 4));
      speech += s.decide(bands, values, count) == qorVADSpeech;
      ++frames;
    }
    int flushed = 1;
    while (s.flush() != qorVADUndecided && flushed < 20) ++flushed;
    EXPECT_LE(flushed, 7);
    ASSERT_TRUE(s.edgesKept());
    if (testing::Test::HasFailure()) FAIL() << "stream " << stream;
  }
  EXPECT_GT(speech, frames / 20);  // both decisions are met
  EXPECT_LT(speech, frames - frames / 20);
}

// NaN, infinities and denormals among floats; among integers the ends of the range, whose squares fill 31 bits, and sums that wrap.
TYPED_TEST(VoiceActivity, NastyValuesFollowTheModel) {
  using T = typename TypeParam::Element;
  kit::Random random;
  for (int stream = 0; stream < 200; ++stream) {
    Stream<TypeParam> s;
    for (int n = 0; n < 40; ++n) {
      auto bands = random.vector<T>(25, kit::kKinds[random.integer(0, 1)]), values = random.vector<T>(64, kit::Random::kSmall);
      const int64_t kind = random.integer(0, 5);
      if (kind == 0) bands = random.vector<T>(25, kit::Random::kNasty);
      if (kind == 1) values = random.vector<T>(64, kit::Random::kNasty);
      if (kind == 2) values.assign(64, std::numeric_limits<T>::lowest());
      if (kind == 3) bands[static_cast<std::size_t>(random.integer(0, 24))] = random.nasty<T>();
      s.decide(bands, values, random.integer(0, 9) == 0 ? INT32_MAX : INT32_MIN);
    }
    for (int n = 0; n < 9; ++n) s.flush();
    if (testing::Test::HasFailure()) FAIL() << "stream " << stream;
  }
}

TYPED_TEST(VoiceActivity, TenFramesAreUndecided) {
  Stream<TypeParam> s;
  for (int n = 1; n <= 10; ++n) EXPECT_EQ(s.active(), qorVADUndecided) << n;
  EXPECT_EQ(s.rest(), qorVADNoSpeech);  // the active frames before did not reach the ring
  Stream<TypeParam> t;
  for (int n = 1; n <= 10; ++n) t.rest();
  EXPECT_EQ(t.active(), qorVADNoSpeech);
  EXPECT_EQ(t.active(), qorVADNoSpeech);
  EXPECT_EQ(t.active(), qorVADSpeech);
}

TYPED_TEST(VoiceActivity, ACountOfFiveMakesAFrameActive) {
  for (const int32_t count : {4, 5, 6, INT32_MAX, -5, INT32_MIN}) {
    Stream<TypeParam> s;
    for (int n = 0; n < 20; ++n) s.rest();
    int32_t last = 0;
    for (int n = 0; n < 3; ++n) last = s.rest(count);
    EXPECT_EQ(last, count >= 5 ? qorVADSpeech : qorVADNoSpeech) << count;
  }
}

// Frames of speech from the first active frame on, for a burst of so many frames.
template <class Type>
int speechOfBurst(Stream<Type>& s, int frames) {
  int speech = 0;
  for (int n = 0; n < frames; ++n) speech += s.active() == qorVADSpeech;
  while (speech < 200 && s.rest() == qorVADSpeech) ++speech;
  return speech;
}

TYPED_TEST(VoiceActivity, HangoversOfBursts) {
  const auto after = [](int frames) {
    Stream<TypeParam> s;
    for (int n = 0; n < frames; ++n) s.rest();
    return s;
  };
  // Three active frames stay in sight of the ring for five frames; then the short hangover runs, its last frame no longer speech.
  auto three = after(20);
  EXPECT_EQ(speechOfBurst(three, 3), 5 + 4);
  EXPECT_EQ(three.model().longCounter, 0);
  // Four load 23, and 40 with the next frame that still sees them.
  auto early = after(19);
  EXPECT_EQ(speechOfBurst(early, 4), 6 + 39);
  EXPECT_EQ(speechOfBurst(early, 4), 6 + 39);
  // After frame 35 the hangover stays 23.
  auto late = after(40);
  EXPECT_EQ(speechOfBurst(late, 4), 6 + 22);
  EXPECT_EQ(speechOfBurst(late, 4), 6 + 22);
  // Frame 35 is the last that makes it longer.
  auto last = after(31);
  EXPECT_EQ(speechOfBurst(last, 4), 6 + 39);
  auto next = after(32);
  EXPECT_EQ(speechOfBurst(next, 4), 6 + 22);
}

TYPED_TEST(VoiceActivity, ARunIsReadFromTheOldestFrameToTheNewest) {
  for (int shift = 0; shift < 7; ++shift) {
    Stream<TypeParam> s;
    for (int n = 0; n < 20 + shift; ++n) s.rest();
    // 1 1 0 0 0 0 1 1: newest and oldest touch in memory, but do not follow each other.
    for (const int a : {1, 1, 0, 0, 0, 0, 1}) EXPECT_EQ(a != 0 ? s.active() : s.rest(), qorVADNoSpeech) << shift;
  }
}

TYPED_TEST(VoiceActivity, AFlushEndsAfterSevenCalls) {
  for (int length = 0; length < 30; ++length) {
    Stream<TypeParam> s;
    for (int n = 0; n < length; ++n) s.active();
    for (int n = 1; n <= 7; ++n) {
      const bool decides = n < 7 && length + n >= 11;
      EXPECT_EQ(s.flush() != qorVADUndecided, decides) << length << " frames, call " << n;
    }
  }
}

TYPED_TEST(VoiceActivity, InAFlushTheCountersFallBelowZero) {
  Stream<TypeParam> s;
  for (int n = 0; n < 40; ++n) s.rest();
  for (int n = 0; n < 6; ++n) EXPECT_EQ(s.flush(), qorVADNoSpeech);
  EXPECT_EQ(s.model().longCounter, -6);
  EXPECT_EQ(s.model().shortCounter, -6);
  // Counters that are not 0 keep a later frame speech, and fall further.
  EXPECT_EQ(s.rest(), qorVADSpeech);
  EXPECT_EQ(s.model().longCounter, -7);
  // A flush goes on from what the stream left.
  Stream<TypeParam> t;
  for (int n = 0; n < 40; ++n) t.rest();
  for (int n = 0; n < 5; ++n) t.active();
  for (int n = 0; n < 12; ++n) t.rest();
  EXPECT_EQ(t.flush(), qorVADSpeech);
  EXPECT_GT(t.model().longCounter, 0);
}

TYPED_TEST(VoiceActivity, TheFlushesAreOneFunction) {
  kit::Random random;
  alignas(4) unsigned char a[64], b[64];
  Stream<TypeParam> s;
  for (int n = 0; n < 33; ++n) random.integer(0, 2) == 0 ? s.rest() : s.active();
  std::memcpy(a, s.state(), 64);
  std::memcpy(b, s.state(), 64);
  for (int n = 0; n < 7; ++n) {
    int32_t first = 0, second = 0;
    qorsVADFlush_Aurora_32f(&first, reinterpret_cast<VADState_Aurora_32f*>(a));
    qorsVADFlush_Aurora_16s(&second, reinterpret_cast<VADState_Aurora_16s*>(b));
    EXPECT_EQ(first, second);
  }
}

TYPED_TEST(VoiceActivity, BlocksMayBeginAnywhereAndMove) {
  using T = typename TypeParam::Element;
  using State = typename TypeParam::State;
  kit::Random random;
  unsigned char odd[64 + 3], even[64 + 3];
  ASSERT_EQ(TypeParam::init(reinterpret_cast<State*>(odd + 1)), qorStatusOk);
  typename TypeParam::Model m;
  Sound<T> sound{random, 100, 20};
  std::vector<T> bands(25), values(64);
  for (int n = 0; n < 60; ++n) {
    sound.frame(bands, values);
    int32_t decision = 0;
    ASSERT_EQ(TypeParam::decision(bands.data(), values.data(), 0, &decision, reinterpret_cast<State*>(odd + 1)), qorStatusOk);
    ASSERT_EQ(decision, m.decision(bands, values, 0)) << n;
    std::memcpy(even, odd + 1, 64);
    std::memcpy(odd + 1, even, 64);
  }
}

TEST(VoiceActivityOfIntegers, EnergyWrapsTo32Bits) {
  // 25 bands of 1859 and less: S = 46464, S^2 - 3 is above 2^31 and so below 0.
  Stream<Shorts> s;
  for (int n = 0; n < 20; ++n) s.rest();
  std::vector<int16_t> loud(25, 1859);
  for (int n = 0; n < 4; ++n) s.decide(loud, std::vector<int16_t>(64));
  EXPECT_LT(s.model().energy, 0);
}

// ---- Faults ----

template <class Type>
struct Args {
  const typename Type::Element *bands, *frame;
  int32_t* decision;
  typename Type::State* state;
};

TYPED_TEST(VoiceActivity, NullPointers) {
  using A = Args<TypeParam>;
  using T = typename TypeParam::Element;
  const std::vector<T> bands(25, T(3)), frame(64, T(2));
  alignas(4) unsigned char block[64];
  auto* const state = reinterpret_cast<typename TypeParam::State*>(block);
  EXPECT_EQ(TypeParam::init(nullptr), qorStatusNullPointer);
  ASSERT_EQ(TypeParam::init(state), qorStatusOk);
  int32_t decision = 77;
  kit::FaultTable<A>({bands.data(), frame.data(), &decision, state},
                     [](const A& a) { return TypeParam::decision(a.bands, a.frame, 0, a.decision, a.state); },
                     {{block, 64}, {&decision, 1}})
      .fault("null bands", qorStatusNullPointer, &A::bands, nullptr)
      .fault("null frame", qorStatusNullPointer, &A::frame, nullptr)
      .fault("null decision", qorStatusNullPointer, &A::decision, nullptr)
      .fault("null state", qorStatusNullPointer, &A::state, nullptr)
      .check();
  kit::FaultTable<A>({bands.data(), frame.data(), &decision, state},
                     [](const A& a) { return TypeParam::flush(a.decision, a.state); }, {{block, 64}, {&decision, 1}})
      .fault("null decision", qorStatusNullPointer, &A::decision, nullptr)
      .fault("null state", qorStatusNullPointer, &A::state, nullptr)
      .check();
}

TYPED_TEST(VoiceActivity, KeepsTheEnvironmentAndAllocatesNothing) {
  using T = typename TypeParam::Element;
  const int64_t before = kit::Core::calls();
  const std::vector<T> bands(25, T(3)), frame(64, T(2));
  alignas(4) unsigned char block[64];
  auto* const state = reinterpret_cast<typename TypeParam::State*>(block);
  int32_t decision = 0;
  TypeParam::init(state);
  kit::expectEnvironmentKept([&] {
    TypeParam::decision(bands.data(), frame.data(), 0, &decision, state);
    TypeParam::flush(&decision, state);
  });
  EXPECT_EQ(kit::Core::calls(), before);
}

}  // namespace
