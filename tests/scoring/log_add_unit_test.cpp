// The kernels of the log addition, bit by bit against the plain model.
#include "scoring/log_add.h"

#include <gtest/gtest.h>

#include <functional>

#include "kit/compare.h"
#include "kit/memory.h"
#include "kit/random.h"
#include "model/log_arithmetic.h"

namespace {

// Log scores whose differences meet every range, the drop threshold and the floor, and nasty values.
template <class T>
std::vector<T> scores(kit::Random& random, int32_t length, int round) {
  const double spread[] = {3.0, 30.0, 1e7, 2e10};
  std::vector<T> v;
  for (int32_t i = 0; i < length; ++i) {
    v.push_back(round == 4 ? random.nasty<T>() : static_cast<T>(random.real(-spread[round], 1.0)));
  }
  return v;
}

template <class T>
void expectAdds(void (*kernel)(const T*, T*, int32_t), T (*model)(T, T)) {
  kit::Random random;
  for (const int32_t length : kit::lengths()) {
    for (int round = 0; round < 5; ++round) {
      const kit::Area<T> a(scores<T>(random, length, round), kit::kPlaces[round % 3]);
      const kit::Area<T> b(scores<T>(random, length, round), kit::kPlaces[(round + 1) % 3]);
      std::vector<T> expected;
      for (int32_t i = 0; i < length; ++i) expected.push_back(model(a[i], b[i]));
      kernel(a.data(), b.data(), length);
      ASSERT_BITS(b.values(), expected) << "length " << length << " round " << round;
      ASSERT_TRUE(b.edgesKept());
    }
  }
}

template <class T>
void expectSums() {
  kit::Random random;
  for (const int32_t length : kit::lengths()) {
    for (int round = 0; round < 5; ++round) {
      const kit::Area<T> a(scores<T>(random, length, round), kit::kPlaces[round % 3]);
      ASSERT_BITS(qorsr::logSum(a.data(), length), model::logSum(a.values())) << "length " << length << " round " << round;
    }
  }
}

TEST(LogAddVector, Accurate) { expectAdds<float>(qorsr::logAddVector, model::logAddAccurate); }
TEST(LogAddVector, Fast) { expectAdds<float>(qorsr::logAddVectorFast, model::logAddFast); }
TEST(LogAddVector, Double) { expectAdds<double>(qorsr::logAddVector, model::logAddDouble); }
TEST(LogSum, Float) { expectSums<float>(); }
TEST(LogSum, Double) { expectSums<double>(); }

}  // namespace
