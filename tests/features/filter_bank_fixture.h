// Filter banks of one element type behind one set of names, and random banks with their models.
#pragma once

#include <cstdint>
#include <vector>

#include "kit/memory.h"
#include "kit/random.h"
#include "model/filter_bank.h"
#include "qorsr.h"

namespace banks {

struct Float {
  using State = FBankState_32f;
  using Weight = float;
  static constexpr auto empty = qorsEmptyFBankInitAlloc_32f;
  static constexpr auto release = qorsFBankFree_32f;
  static constexpr auto getCenters = qorsFBankGetCenters_32f;
  static constexpr auto setCenters = qorsFBankSetCenters_32f;
  static constexpr auto getCoeffs = qorsFBankGetCoeffs_32f;
  static constexpr auto setCoeffs = qorsFBankSetCoeffs_32f;
  static constexpr auto melSize = qorsMelFBankGetSize_32f;
  static constexpr auto melInit = qorsMelFBankInit_32f;
  static constexpr auto melAlloc = qorsMelFBankInitAlloc_32f;
  static constexpr auto mixedAlloc = qorsMelLinFBankInitAlloc_32f;
  static Weight stored(float value) { return value; }
  static float exchanged(Weight weight) { return weight; }
};

struct Int16 {
  using State = FBankState_16s;
  using Weight = int32_t;
  static constexpr auto empty = qorsEmptyFBankInitAlloc_16s;
  static constexpr auto release = qorsFBankFree_16s;
  static constexpr auto getCenters = qorsFBankGetCenters_16s;
  static constexpr auto setCenters = qorsFBankSetCenters_16s;
  static constexpr auto getCoeffs = qorsFBankGetCoeffs_16s;
  static constexpr auto setCoeffs = qorsFBankSetCoeffs_16s;
  static constexpr auto melSize = qorsMelFBankGetSize_16s;
  static constexpr auto melInit = qorsMelFBankInit_16s;
  static constexpr auto melAlloc = qorsMelFBankInitAlloc_16s;
  static constexpr auto mixedAlloc = qorsMelLinFBankInitAlloc_16s;
  static Weight stored(float value) { return model::storedWeight(value); }
  static float exchanged(Weight weight) { return static_cast<float>(weight) * 6.103515625e-5F; }
};

// A state that is released with its owner.
template <class Kind>
struct Bank {
  typename Kind::State* state = nullptr;
  int32_t order = -1;

  Bank() = default;
  Bank(const Bank&) = delete;
  Bank& operator=(const Bank&) = delete;
  ~Bank() {
    if (state != nullptr) Kind::release(state);
  }
};

// Rising centres, `n` + 2 of them from 0 to `half`.
inline std::vector<int32_t> randomCenters(kit::Random& random, int32_t n, int32_t half, bool withEqualOnes) {
  std::vector<int32_t> c;
  for (int32_t i = 0; i < n + 2; ++i) c.push_back(static_cast<int32_t>(random.integer(0, half)));
  std::sort(c.begin(), c.end());
  if (!withEqualOnes) c.erase(std::unique(c.begin(), c.end()), c.end());
  while (static_cast<int32_t>(c.size()) < n + 2) c.push_back(c.back());
  return c;
}

// A bank with given centres and weights, and the same as plain filters.
template <class Kind>
struct RandomBank : Bank<Kind> {
  using Weight = typename Kind::Weight;
  std::vector<int32_t> centers;
  std::vector<model::Filter<Weight>> filters;  // filters[0] is filter 1

  RandomBank(kit::Random& random, int32_t length, std::vector<int32_t> c, kit::Random::Kind kind) : centers(std::move(c)) {
    const auto n = static_cast<int32_t>(centers.size()) - 2;
    EXPECT_EQ(Kind::empty(&this->state, &this->order, length, n, 1), qorStatusOk);
    EXPECT_EQ(Kind::setCenters(this->state, centers.data()), qorStatusOk);
    const int64_t half = model::powerOfTwoFor(length) / 2;
    const auto weight = [&](int64_t) { return random.value<float>(kind); };
    for (std::size_t k = 1; k + 1 < centers.size(); ++k) {
      const auto drawn = model::makeFilter<float>(centers, k, half, weight, weight);
      auto exchanged = drawn.all();
      exchanged.push_back(0);  // so that the area of an empty filter has an address
      EXPECT_EQ(Kind::setCoeffs(this->state, static_cast<int32_t>(k), exchanged.data()), qorStatusOk);
      model::Filter<Weight> f{drawn.risingFirst, drawn.fallingFirst, {}, {}};
      for (const float w : drawn.rising) f.rising.push_back(Kind::stored(w));
      for (const float w : drawn.falling) f.falling.push_back(Kind::stored(w));
      filters.push_back(f);
    }
  }
};

}  // namespace banks
