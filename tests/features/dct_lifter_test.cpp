// Cosine transform and lifter: bits of every form against the plain model, and known signals.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>

#include "features/dct_lifter_forms.h"
#include "kit/compare.h"
#include "kit/environment.h"
#include "kit/memory.h"

namespace {

using forms::Args;

constexpr int32_t kScaleFactors[] = {0, 1, 5, 12, 40, 160, -1, -3, -20, -130, INT32_MIN, INT32_MAX};

// Some orders for each length: the ends, and what meets every remainder of a vector.
std::vector<int32_t> ordersFor(int32_t n) {
  std::vector<int32_t> orders;
  for (const int32_t m : {1, 2, 3, 4, 5, 7, 8, 9, 12, 13, 16, 17, 23, 33, n - 1, n}) {
    if (m >= 1 && m <= n && (orders.empty() || m > orders.back())) orders.push_back(m);
  }
  return orders;
}

void forEachSize(const std::function<void(const Args&, kit::Place)>& check) {
  kit::Random random;
  for (const int32_t n : kit::lengths()) {
    for (const int32_t m : ordersFor(n)) {
      check(Args::random(random, n, m), kit::kPlaces[(n + m) % 3]);
      if (testing::Test::HasFailure()) FAIL() << "length " << n << " order " << m;
    }
  }
}

// One transform with a state, compared with the model.
void expectTransform(const DCTLifterState_32f* state, const Args& a, const std::vector<float>& lifter, bool hasC0,
                     kit::Random& random, kit::Place place) {
  const auto x = random.vector<float>(a.n, kit::kKinds[random.integer(0, 2)]);
  const kit::Area<float> source(x, place);
  kit::Area<float> result(a.m + (hasC0 ? 1 : 0), place);
  ASSERT_EQ(qorsDCTLifter_32f(source.data(), result.data(), state), qorStatusOk);
  ASSERT_BITS(result.values(), model::dctLifter(x, lifter, hasC0));
  ASSERT_TRUE(result.edgesKept() && source.edgesKept());
}
void expectTransform(DCTLifterState_16s* state, const Args& a, const std::vector<float>& lifter, bool hasC0, kit::Random& random,
                     kit::Place place) {
  const int32_t sf = kScaleFactors[random.integer(0, std::ssize(kScaleFactors) - 1)];
  const kit::Random::Kind kind = kit::kKinds[random.integer(0, 2)];
  const auto narrow = random.vector<int16_t>(a.n, kind);
  const auto wide = random.vector<int32_t>(a.n, kind);
  const kit::Area<int16_t> narrowSource(narrow, place);
  const kit::Area<int32_t> wideSource(wide, place);
  kit::Area<int16_t> result(a.m + (hasC0 ? 1 : 0), place);
  ASSERT_EQ(qorsDCTLifter_16s_Sfs(narrowSource.data(), result.data(), state, sf), qorStatusOk);
  ASSERT_BITS(result.values(), model::dctLifterScaled(narrow, lifter, hasC0, sf));
  ASSERT_EQ(qorsDCTLifter_32s16s_Sfs(wideSource.data(), result.data(), state, sf), qorStatusOk);
  ASSERT_BITS(result.values(), model::dctLifterScaled(wide, lifter, hasC0, sf));
  ASSERT_TRUE(result.edgesKept() && narrowSource.edgesKept() && wideSource.edgesKept());
}

template <class State, class Forms>
void expectAllInBlock(const Forms& forms) {
  kit::Random random(1);
  forEachSize([&](const Args& a, kit::Place place) {
    for (const auto& form : forms) {
      SCOPED_TRACE(form.name);
      int32_t bytes = 0;
      ASSERT_EQ(form.size(a.n, a.m, &bytes), qorStatusOk);
      kit::Area<std::byte> block(bytes, kit::Place::kAtGuard);
      auto* state = reinterpret_cast<State*>(block.data());
      ASSERT_EQ(form.init(state, a), qorStatusOk);
      expectTransform(state, a, form.lifter(a), form.hasC0, random, place);
      ASSERT_TRUE(block.edgesKept());
    }
  });
}

QorStatus release(DCTLifterState_32f* state) { return qorsDCTLifterFree_32f(state); }
QorStatus release(DCTLifterState_16s* state) { return qorsDCTLifterFree_16s(state); }

template <class State, class Forms>
void expectAllAllocated(const Forms& forms) {
  kit::Random random(2);
  forEachSize([&](const Args& a, kit::Place place) {
    for (const auto& form : forms) {
      SCOPED_TRACE(form.name);
      State* state = nullptr;
      ASSERT_EQ(form.make(&state, a), qorStatusOk);
      expectTransform(state, a, form.lifter(a), form.hasC0, random, place);
      ASSERT_EQ(release(state), qorStatusOk);
    }
  });
}

TEST(DctLifter, FloatInABlock) { expectAllInBlock<DCTLifterState_32f>(forms::kInBlock32f); }
TEST(DctLifter, FloatAllocated) { expectAllAllocated<DCTLifterState_32f>(forms::kAllocated32f); }
TEST(DctLifter, IntegersInABlock) { expectAllInBlock<DCTLifterState_16s>(forms::kInBlock16s); }
TEST(DctLifter, IntegersAllocated) { expectAllAllocated<DCTLifterState_16s>(forms::kAllocated16s); }

TEST(DctLifter, LongLiftersAndSourcesAtEveryAddress) {
  kit::Random random(3);
  for (const int32_t length : {1, 2, 1000, INT32_MAX}) {
    Args a = Args::random(random, 26, 13);
    a.length = length;
    DCTLifterState_32f* state = nullptr;
    ASSERT_EQ(forms::kAllocated32f[0].make(&state, a), qorStatusOk);
    const auto x = random.vector<float>(26);
    for (int shift = 0; shift < 16; ++shift) {
      kit::Area<float> source(26 + shift, kit::Place::kAligned);
      std::copy(x.begin(), x.end(), source.data() + shift);
      float result[13];
      ASSERT_EQ(qorsDCTLifter_32f(source.data() + shift, result, state), qorStatusOk);
      ASSERT_BITS(std::vector<float>(result, result + 13), model::dctLifter(x, forms::sine(a), false));
    }
    qorsDCTLifterFree_32f(state);
  }
}

// ---- Known answers ----

struct State32f {
  DCTLifterState_32f* state = nullptr;
  ~State32f() { EXPECT_EQ(qorsDCTLifterFree_32f(state), qorStatusOk); }
};
struct State16s {
  DCTLifterState_16s* state = nullptr;
  ~State16s() { EXPECT_EQ(qorsDCTLifterFree_16s(state), qorStatusOk); }
};

TEST(DctLifter, ACosineComesOutAtItsOrderAlone) {
  const std::vector<float> ones(26, 1.0F);
  State32f s;
  ASSERT_EQ(qorsDCTLifterInitAlloc_Mul_32f(&s.state, 26, ones.data(), 26), qorStatusOk);
  for (int32_t order = 1; order < 26; ++order) {
    const std::vector<float> x = model::cosineRow(order, 26);
    float result[26];
    ASSERT_EQ(qorsDCTLifter_32f(x.data(), result, s.state), qorStatusOk);
    // Rows are orthogonal, of energy N/2. 26 products of magnitude up to 1 and as many sums: an error below 26 * 26 * 2^-24.
    for (int32_t i = 1; i <= 26; ++i) EXPECT_NEAR(result[i - 1], i == order ? 13.0F : 0.0F, 5e-5F);
  }
}

TEST(DctLifter, Order0IsTheWeightedSumBehindTheOthers) {
  const std::vector<float> x = {1, 2, 3, 4, 5};
  for (const float scale : {1.0F, -7.0F}) {
    State32f s;
    ASSERT_EQ(qorsDCTLifterInitAlloc_C0_32f(&s.state, 5, 3, 22, scale, 2.5F), qorStatusOk);
    float result[5] = {9, 9, 9, 9, 9};
    ASSERT_EQ(qorsDCTLifter_32f(x.data(), result, s.state), qorStatusOk);
    EXPECT_EQ(result[3], 37.5F);
    EXPECT_EQ(result[4], 9.0F);
  }
  const std::vector<float> weights = {1, 1, -2};
  State32f s;
  ASSERT_EQ(qorsDCTLifterInitAlloc_MulC0_32f(&s.state, 5, weights.data(), 3), qorStatusOk);
  float result[4];
  ASSERT_EQ(qorsDCTLifter_32f(x.data(), result, s.state), qorStatusOk);
  EXPECT_EQ(result[3], -30.0F);
}

TEST(DctLifter, APlainStateWritesNothingBehindOrderM) {
  State32f s;
  ASSERT_EQ(qorsDCTLifterInitAlloc_32f(&s.state, 8, 5, 22, 1.0F), qorStatusOk);
  const std::vector<float> x(8, 3.0F);
  kit::Area<float> result(5, kit::Place::kAtGuard);
  ASSERT_EQ(qorsDCTLifter_32f(x.data(), result.data(), s.state), qorStatusOk);
  EXPECT_TRUE(result.edgesKept());
}

TEST(DctLifter, ALifterOfLength1IsFlat) {
  State32f s;
  const std::vector<float> ones(4, 1.0F), x = {1, -2, 3, 5, -8};
  ASSERT_EQ(qorsDCTLifterInitAlloc_32f(&s.state, 5, 4, 1, 3.0F), qorStatusOk);
  float result[4];
  ASSERT_EQ(qorsDCTLifter_32f(x.data(), result, s.state), qorStatusOk);
  const auto expected = model::dctLifter(x, model::givenLifter(ones), false);
  for (std::size_t i = 0; i < 4; ++i) EXPECT_NEAR(result[i], 3.0F * expected[i], 1e-5F);
}

TEST(DctLifter, IntegersSaturateAndRoundTiesToEven) {
  State16s s;
  ASSERT_EQ(qorsDCTLifterInitAlloc_C0_16s(&s.state, 2, 1, 22, 1.0F, 1.0F), qorStatusOk);
  const auto order0 = [&](int32_t a, int32_t b, int32_t sf) {
    const int32_t x[2] = {a, b};
    int16_t result[2] = {};
    EXPECT_EQ(qorsDCTLifter_32s16s_Sfs(x, result, s.state, sf), qorStatusOk);
    return result[1];
  };
  EXPECT_EQ(order0(32767, 1, 0), 32767);
  EXPECT_EQ(order0(-32768, -1, 0), -32768);
  EXPECT_EQ(order0(65534, 1, 1), 32767);
  EXPECT_EQ(order0(2, 1, 1), 2);  // 1.5
  EXPECT_EQ(order0(4, 1, 1), 2);  // 2.5
  EXPECT_EQ(order0(-2, -1, 1), -2);
  EXPECT_EQ(order0(10, 3, -2), 52);
  EXPECT_EQ(order0(0, 0, -200), 0);  // 0 times infinity
}

TEST(DctLifter, KeepsTheEnvironment) {
  State16s s;
  ASSERT_EQ(qorsDCTLifterInitAlloc_C0_16s(&s.state, 26, 13, 22, 1.0F, 1.0F), qorStatusOk);
  kit::Random random;
  const auto x = random.vector<int16_t>(26);
  int16_t result[14];
  kit::expectEnvironmentKept([&] { qorsDCTLifter_16s_Sfs(x.data(), result, s.state, -130); });
}

}  // namespace
