// The last columns of the widest matrix: no index leaves 32 bits. Run under the sanitizers, which see an overflow.
#include <gtest/gtest.h>
#include <sys/mman.h>

#include <cstddef>
#include <cstdint>

#include "frame/matrix/products.h"

namespace {

using namespace qorsr;

// So many zeros, of which only those that are touched take memory.
class Zeros {
 public:
  explicit Zeros(std::size_t bytes)
      : bytes_(bytes), start_(mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0)) {}
  ~Zeros() { munmap(start_, bytes_); }
  Zeros(const Zeros&) = delete;
  Zeros& operator=(const Zeros&) = delete;

  bool there() const { return start_ != MAP_FAILED; }
  int16_t* elements() const { return static_cast<int16_t*>(start_); }

 private:
  std::size_t bytes_;
  void* start_;
};

constexpr int32_t kWidest = INT32_MAX;

template <int N>
void expectLastColumns(const Zeros& row, const Zeros& results) {
  const int16_t vector[1] = {3};
  const int16_t* const list[1] = {row.elements()};
  for (int32_t left = 1; left <= 4 * N; ++left) {
    for (int32_t c = kWidest - 4 * N; c < kWidest; ++c) {
      row.elements()[c] = static_cast<int16_t>(c % 100);
      results.elements()[c] = -1;
    }
    shortColumns<N>(SplitPairs(vector, 1), listed(list), 1, results.elements(), kWidest - left, kWidest, ShiftedResult<int16_t>(0));
    for (int32_t c = kWidest - left; c < kWidest; ++c) ASSERT_EQ(results.elements()[c], 3 * (c % 100)) << left << " columns left";
  }
}

TEST(Products, TheLastColumnsOfTheWidestMatrix) {
  const Zeros row(std::size_t{2} * kWidest), results(std::size_t{2} * kWidest);
  if (!row.there() || !results.there()) GTEST_SKIP() << "no address space for rows of " << kWidest << " columns";
  expectLastColumns<8>(row, results);
  expectLastColumns<kNativeLanes<int16_t>>(row, results);
}

}  // namespace
