// Mixtures scored through a selection mask: in bits against the plain model, on both roads.
#include <gtest/gtest.h>

#include "kit/core.h"
#include "kit/environment.h"
#include "kit/faults.h"
#include "scoring/gaussian_cases.h"

namespace {

using I = int32_t;
using model::Frame;

template <class T>
struct Args {
  const T *frames, *means, *variances;
  const T *const *frameRows, *const *meanRows, *const *varianceRows;
  I stride, width;
  const float* vals;
  const uint8_t* mask;
  I count;
  float* results;
  I frameCount;
  float floor;
  I sf;
};

// The shape of an argument list tells which arguments a member takes.
template <class T>
QorStatus call(QorStatus (*f)(const T*, const T*, const T*, I, I, const float*, const uint8_t*, I, float*, I, float),
               const Args<T>& a) {
  return f(a.frames, a.means, a.variances, a.stride, a.width, a.vals, a.mask, a.count, a.results, a.frameCount, a.floor);
}
template <class T>
QorStatus call(QorStatus (*f)(const T*, const T*, const T*, I, I, const float*, const uint8_t*, I, float*, I, float, I),
               const Args<T>& a) {
  return f(a.frames, a.means, a.variances, a.stride, a.width, a.vals, a.mask, a.count, a.results, a.frameCount, a.floor, a.sf);
}
template <class T>
QorStatus call(QorStatus (*f)(const T*, const T*, I, I, const float*, const uint8_t*, I, float*, I, float), const Args<T>& a) {
  return f(a.frames, a.means, a.stride, a.width, a.vals, a.mask, a.count, a.results, a.frameCount, a.floor);
}
template <class T>
QorStatus call(QorStatus (*f)(const T*, const T*, I, I, const float*, const uint8_t*, I, float*, I, float, I), const Args<T>& a) {
  return f(a.frames, a.means, a.stride, a.width, a.vals, a.mask, a.count, a.results, a.frameCount, a.floor, a.sf);
}
template <class T>
using Rows = const T* const*;
template <class T>
QorStatus call(QorStatus (*f)(Rows<T>, Rows<T>, Rows<T>, I, const float*, const uint8_t*, I, float*, I, float), const Args<T>& a) {
  return f(a.frameRows, a.meanRows, a.varianceRows, a.width, a.vals, a.mask, a.count, a.results, a.frameCount, a.floor);
}
template <class T>
QorStatus call(QorStatus (*f)(Rows<T>, Rows<T>, Rows<T>, I, const float*, const uint8_t*, I, float*, I, float, I),
               const Args<T>& a) {
  return f(a.frameRows, a.meanRows, a.varianceRows, a.width, a.vals, a.mask, a.count, a.results, a.frameCount, a.floor, a.sf);
}
template <class T>
QorStatus call(QorStatus (*f)(Rows<T>, Rows<T>, I, const float*, const uint8_t*, I, float*, I, float), const Args<T>& a) {
  return f(a.frameRows, a.meanRows, a.width, a.vals, a.mask, a.count, a.results, a.frameCount, a.floor);
}
template <class T>
QorStatus call(QorStatus (*f)(Rows<T>, Rows<T>, I, const float*, const uint8_t*, I, float*, I, float, I), const Args<T>& a) {
  return f(a.frameRows, a.meanRows, a.width, a.vals, a.mask, a.count, a.results, a.frameCount, a.floor, a.sf);
}

// How densely a mask is filled.
enum Density { kNone, kOne, kSparse, kHalf, kAll };

template <class T>
struct Selection {
  kit::Matrix<T> frames, means, variances;
  kit::Area<float> vals;
  kit::Area<uint8_t> mask;
  int32_t sf;

  Selection(kit::Random& random, int32_t width, int32_t count, int32_t frameCount, Density density, kit::Random::Kind kind,
            kit::Place place)
      : frames(frameCount, width, width + 1, place),
        means(count, width, width + 1, place),
        variances(count, width, width + 1, place),
        vals(count, place),
        mask(static_cast<int64_t>(frameCount) * rowBytes(count), place),
        sf(static_cast<int32_t>(random.integer(-3, 20))) {
    frames.fill(random, kind);
    means.fill(random, kind);
    variances.fill(random, kind);
    for (int32_t g = 0; g < count; ++g) vals[g] = static_cast<float>(random.real(-30, 0));
    mask.fill(0);
    for (int32_t f = 0; f < frameCount; ++f) {
      const auto chosen = static_cast<int32_t>(random.integer(0, count - 1));
      for (int32_t g = 0; g < rowBytes(count) * 8; ++g) {  // the bits beyond the count hold rubbish
        const bool set = density == kAll || (density == kOne && g == chosen) || (density == kSparse && random.integer(0, 9) == 0) ||
                         (density == kHalf && random.integer(0, 1) == 0) || (g >= count && random.integer(0, 1) == 0);
        if (set) mask[f * rowBytes(count) + g / 8] = static_cast<uint8_t>(mask[f * rowBytes(count) + g / 8] | 128 >> (g % 8));
      }
    }
  }

  static int32_t rowBytes(int32_t count) { return (count + 7) / 8; }
  bool selects(int32_t f, int32_t g) const { return (mask[f * rowBytes(means.height()) + g / 8] & (128 >> (g % 8))) != 0; }

  // The scores of the selected Gaussians of a frame, in ascending order.
  std::vector<float> scores(int32_t f, bool unit, float (*score)(const Frame<T>&, float, int32_t)) const {
    std::vector<float> s;
    for (int32_t g = 0; g < means.height(); ++g) {
      if (!selects(f, g)) continue;
      s.push_back(
          score({cases::row(frames, f), cases::row(means, g), unit ? std::vector<T>() : cases::row(variances, g)}, vals[g], sf));
    }
    return s;
  }
  Args<T> args(float* results, float floor) const {
    return {frames.block(),
            means.block(),
            variances.block(),
            frames.constRows(),
            means.constRows(),
            variances.constRows(),
            frames.stride(),
            frames.width(),
            vals.data(),
            mask.data(),
            means.height(),
            results,
            frames.height(),
            floor,
            sf};
  }
};

float plainSum(const std::vector<float>& scores) {
  float sum = scores[0];
  for (std::size_t i = 1; i < scores.size(); ++i) sum = model::logAddAccurate(scores[i], sum);
  return sum;
}
float gatheredSum(const std::vector<float>& scores) {
  float running = 0;
  for (std::size_t first = 0; first < scores.size(); first += 100) {
    std::vector<float> chunk;
    if (first > 0) chunk.push_back(running);
    for (std::size_t i = first; i < scores.size() && i < first + 100; ++i) chunk.push_back(scores[i]);
    running = model::logSum(chunk);
  }
  return running;
}

// Strided members with variances gather from 9 Gaussians and 2 frames on; `agree` compares their results with the plain road.
template <class T, class Strided, class Listed>
void expectSelections(Strided strided, Listed listed, bool unit, float (*score)(const Frame<T>&, float, int32_t)) {
  struct Shape {
    int32_t width, count, frames;
  };
  constexpr Shape kShapes[] = {{1, 1, 1},   {5, 8, 3},    {39, 9, 2},   {39, 9, 1},  {13, 8, 40},  {3, 20, 19}, {3, 21, 2},
                               {4, 33, 20}, {13, 64, 25}, {40, 100, 3}, {7, 101, 2}, {2, 333, 20}, {8, 9, 129}, {6, 5, 300}};
  kit::Random random;
  int round = 0;
  for (const Shape& shape : kShapes) {
    for (const Density density : {kNone, kOne, kSparse, kHalf, kAll}) {
      const auto kind = kit::kKinds[round % 3];
      const Selection<T> s(random, shape.width, shape.count, shape.frames, density, kind, kit::kPlaces[round++ % 3]);
      const float floor = static_cast<float>(random.real(-1000, 0));
      const bool gathered = !unit && shape.count >= 9 && shape.frames >= 2;
      std::vector<float> plain, first;
      for (int32_t f = 0; f < shape.frames; ++f) {
        const std::vector<float> scores = s.scores(f, unit, score);
        plain.push_back(scores.empty() ? floor : plainSum(scores));
        first.push_back(scores.empty() ? floor : gathered ? gatheredSum(scores) : plainSum(scores));
      }
      kit::Area<float> results(shape.frames, kit::Place::kAtGuard);
      results.fill(77);
      ASSERT_EQ(call(strided, s.args(results.data(), floor)), qorStatusOk);
      ASSERT_BITS(results.values(), first) << shape.count << " Gaussians, " << shape.frames << " frames, density " << density;
      results.fill(77);
      ASSERT_EQ(call(listed, s.args(results.data(), floor)), qorStatusOk);
      ASSERT_BITS(results.values(), plain) << "rows, " << shape.count << " Gaussians, " << shape.frames << " frames";
      if (kind != kit::Random::kSmall) continue;
      for (int32_t f = 0; f < shape.frames; ++f) {  // the two roads agree: each log addition rounds, and the fast one errs by 1e-6
        const auto i = static_cast<std::size_t>(f);
        EXPECT_LE(std::fabs(first[i] - plain[i]), 1e-5F * (10 + std::fabs(plain[i])));
      }
    }
  }
}

TEST(Select, Float) {
  expectSelections<float>(qorsLogGaussMixture_Select_32f_D2, qorsLogGaussMixture_Select_32f_D2L, false, model::foldedScore);
}
TEST(Select, FloatIdentity) {
  expectSelections<float>(qorsLogGaussMixture_SelectIdVar_32f_D2, qorsLogGaussMixture_SelectIdVar_32f_D2L, true,
                          model::foldedScore);
}
TEST(Select, Int16) {
  expectSelections<int16_t>(qorsLogGaussMixture_SelectScaled_16s32f_D2, qorsLogGaussMixture_SelectScaled_16s32f_D2L, false,
                            model::groupScaledScore);
}
TEST(Select, Int16Identity) {
  expectSelections<int16_t>(qorsLogGaussMixture_SelectIdVarScaled_16s32f_D2, qorsLogGaussMixture_SelectIdVarScaled_16s32f_D2L, true,
                            model::groupScaledScore);
}

// Scores of one size, where the two roads differ in their last bits: a Gaussian at the frame scores its val.
template <class T, class Strided, class Listed>
void expectRoads(Strided strided, Listed listed, bool unit) {
  kit::Random random;
  int differ = 0;
  for (const int32_t count : {2, 7, 8, 9, 20, 21, 99, 107, 215}) {
    for (const int32_t frames : {1, 2, 19, 20, 130}) {
      Selection<T> s(random, 1, count, frames, kHalf, kit::Random::kSmall, kit::Place::kAligned);
      for (int32_t f = 0; f < frames; ++f) s.frames.set(f, 0, T(0));
      for (int32_t g = 0; g < count; ++g) s.means.set(g, 0, T(0)), s.vals[g] = static_cast<float>(random.real(-3, 0));
      std::vector<float> plain, first;
      for (int32_t f = 0; f < frames; ++f) {
        std::vector<float> vals;
        for (int32_t g = 0; g < count; ++g) {
          if (s.selects(f, g)) vals.push_back(s.vals[g]);
        }
        plain.push_back(vals.empty() ? -9.0F : plainSum(vals));
        first.push_back(vals.empty() || unit || count < 9 || frames < 2 ? plain.back() : gatheredSum(vals));
        differ += !vals.empty() && plainSum(vals) != gatheredSum(vals);
      }
      std::vector<float> results(static_cast<std::size_t>(frames), 77.0F);
      ASSERT_EQ(call(strided, s.args(results.data(), -9)), qorStatusOk);
      ASSERT_BITS(results, first) << count << " Gaussians, " << frames << " frames";
      ASSERT_EQ(call(listed, s.args(results.data(), -9)), qorStatusOk);
      ASSERT_BITS(results, plain) << "rows, " << count << " Gaussians, " << frames << " frames";
    }
  }
  EXPECT_GT(differ, 0) << "otherwise the cases do not tell the roads apart";
}

TEST(Select, WhichRoadIsTaken) {
  expectRoads<float>(qorsLogGaussMixture_Select_32f_D2, qorsLogGaussMixture_Select_32f_D2L, false);
  expectRoads<float>(qorsLogGaussMixture_SelectIdVar_32f_D2, qorsLogGaussMixture_SelectIdVar_32f_D2L, true);
  expectRoads<int16_t>(qorsLogGaussMixture_SelectScaled_16s32f_D2, qorsLogGaussMixture_SelectScaled_16s32f_D2L, false);
  expectRoads<int16_t>(qorsLogGaussMixture_SelectIdVarScaled_16s32f_D2, qorsLogGaussMixture_SelectIdVarScaled_16s32f_D2L, true);
}

TEST(Select, ACounterOfSixteenBitsWraps) {  // on the plain road: 65537 Gaussians leave the score of the last one
  constexpr int32_t kCount = 65537;
  const std::vector<float> means(kCount, 0.0F), vals = [] {
    std::vector<float> v(kCount, -3.0F);
    v.back() = -5.0F;
    return v;
  }();
  const std::vector<uint8_t> mask((kCount + 7) / 8, 0xFF);
  const float frame[] = {0};
  float result = 0;
  ASSERT_EQ(qorsLogGaussMixture_SelectIdVar_32f_D2(frame, means.data(), 1, 1, vals.data(), mask.data(), kCount, &result, 1, -9),
            qorStatusOk);
  EXPECT_EQ(result, -5.0F);
  ASSERT_EQ(qorsLogGaussMixture_SelectIdVar_32f_D2(frame, means.data(), 1, 1, vals.data(), mask.data(), kCount - 1, &result, 1, -9),
            qorStatusOk);
  EXPECT_EQ(result, -9.0F);
}

// ---- Faults ----

template <class T, class Strided, class Listed>
void expectFaults(Strided strided, Listed listed, bool unit) {
  using A = Args<T>;
  kit::Random random;
  Selection<T> s(random, 4, 9, 3, kHalf, kit::Random::kSmall, kit::Place::kAligned);
  kit::Area<float> results(3, kit::Place::kAligned);
  A valid = s.args(results.data(), -1);
  static std::vector<const T*> frames, means, variances;  // with a null in them
  frames.assign(valid.frameRows, valid.frameRows + 3);
  means.assign(valid.meanRows, valid.meanRows + 9);
  variances.assign(valid.varianceRows, valid.varianceRows + 9);
  frames[2] = means[8] = variances[8] = nullptr;
  const auto fill = [&](auto& table) -> auto& {
    table.fault("null frames", qorStatusNullPointer, &A::frames, nullptr, &A::frameRows, nullptr);
    table.fault("null means", qorStatusNullPointer, &A::means, nullptr, &A::meanRows, nullptr);
    table.fault("null mask", qorStatusNullPointer, &A::mask, nullptr);
    if (!unit) table.fault("null variances", qorStatusNullPointer, &A::variances, nullptr, &A::varianceRows, nullptr);
    table.fault("null vals", qorStatusNullPointer, &A::vals, nullptr);
    table.fault("width zero", qorStatusBadSize, &A::width, 0);
    table.fault("count zero", qorStatusBadSize, &A::count, 0);
    table.fault("count negative", qorStatusBadSize, &A::count, INT32_MIN);
    table.fault("frameCount zero", qorStatusBadSize, &A::frameCount, 0);
    return table;
  };
  kit::FaultTable<A> first(valid, [=](const A& a) { return call(strided, a); }, {{results.data(), 3}});
  fill(first).fault("stride below width", qorStatusBadStride, &A::stride, 3, kit::against(&A::width));
  first.fault("null results", qorStatusNullPointer, &A::results, nullptr).check();
  kit::FaultTable<A> second(valid, [=](const A& a) { return call(listed, a); }, {{results.data(), 3}});
  fill(second)
      .fault("frames with a null row", qorStatusNullPointer, &A::frameRows, frames.data())
      .fault("means with a null row", qorStatusNullPointer, &A::meanRows, means.data());
  if (!unit) second.fault("variances with a null row", qorStatusNullPointer, &A::varianceRows, variances.data());
  second.fault("null results", qorStatusNullPointer, &A::results, nullptr).check();
}

TEST(SelectFaults, EveryMember) {
  expectFaults<float>(qorsLogGaussMixture_Select_32f_D2, qorsLogGaussMixture_Select_32f_D2L, false);
  expectFaults<float>(qorsLogGaussMixture_SelectIdVar_32f_D2, qorsLogGaussMixture_SelectIdVar_32f_D2L, true);
  expectFaults<int16_t>(qorsLogGaussMixture_SelectScaled_16s32f_D2, qorsLogGaussMixture_SelectScaled_16s32f_D2L, false);
  expectFaults<int16_t>(qorsLogGaussMixture_SelectIdVarScaled_16s32f_D2, qorsLogGaussMixture_SelectIdVarScaled_16s32f_D2L, true);
}

TEST(Select, ThePlainRoadNeedsMemoryAndTheGatheredOneDoesNot) {
  kit::Random random;
  const Selection<float> s(random, 4, 9, 2, kHalf, kit::Random::kSmall, kit::Place::kAligned);
  float results[2] = {77, 77};
  const Args<float> a = s.args(results, -1);
  EXPECT_EQ(kit::expectEveryRefusalReported([&] { return call(qorsLogGaussMixture_Select_32f_D2L, a); }), 1);
  EXPECT_EQ(kit::expectEveryRefusalReported([&] { return call(qorsLogGaussMixture_SelectIdVar_32f_D2, a); }), 1);
  EXPECT_EQ(kit::expectEveryRefusalReported([&] { return call(qorsLogGaussMixture_Select_32f_D2, a); }), 0);
  results[0] = results[1] = 77;
  kit::Core::refuse(0);
  EXPECT_EQ(call(qorsLogGaussMixture_Select_32f_D2L, a), qorStatusNoMemory);
  kit::Core::refuseNone();
  EXPECT_EQ(results[0] + results[1], 2 * 77.0F);
}

TEST(Select, KeepsTheEnvironment) {
  kit::Random random;
  const Selection<int16_t> s(random, 9, 12, 3, kHalf, kit::Random::kNasty, kit::Place::kAligned);
  float results[3];
  const Args<int16_t> a = s.args(results, -1);
  kit::expectEnvironmentKept([&] { call(qorsLogGaussMixture_SelectScaled_16s32f_D2, a); });
  kit::expectEnvironmentKept([&] { call(qorsLogGaussMixture_SelectScaled_16s32f_D2L, a); });
}

}  // namespace
