// Feeds an utterance to a streaming delta member, in blocks, and compares every byte of the destination after each block.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <functional>
#include <vector>

#include "kit/compare.h"
#include "kit/memory.h"
#include "kit/random.h"
#include "model/table.h"
#include "qorsr.h"

namespace streaming {

template <class T>
struct Shape {
  int32_t reach, derivatives;
  bool aurora = false;  // both derivatives over the features

  int32_t lag(int32_t k) const { return aurora ? 4 * (k > 0) : k * reach; }
  int32_t lookBack() const { return aurora ? 8 : (derivatives + 1) * reach; }
};

// call(source, destination, step, height, flags)
template <class T>
using Call = std::function<QorStatus(const T*, T*, int32_t, int32_t, int32_t)>;

// The destination of a whole utterance as it must be when `rows` frames were given: canaries where nothing is ready.
template <class T>
std::vector<T> expected(const Shape<T>& shape, const model::Table<T>& rows, int64_t given, bool ended, int32_t step) {
  const auto width = static_cast<int64_t>(rows[0].size()) / (shape.derivatives + 1);
  std::vector<T> all(rows.size() * static_cast<std::size_t>(step), kit::Matrix<T>::canary());
  for (int64_t t = 0; t < given; ++t) {
    for (int32_t k = 0; k <= shape.derivatives; ++k) {
      if (!ended && t >= given - shape.lag(k)) continue;
      const auto part = rows[static_cast<std::size_t>(t)].begin() + k * width;
      std::copy(part, part + width, all.begin() + t * step + k * width);
    }
  }
  return all;
}

// Blocks of the given heights; the last one ends the utterance (a height of 0 is an end without rows).
template <class T>
void feed(const Shape<T>& shape, const Call<T>& call, const model::Table<T>& source, const model::Table<T>& rows,
          const std::vector<int32_t>& heights, int32_t step, kit::Place place) {
  const auto rowWidth = static_cast<int64_t>(rows[0].size());
  std::vector<T> all(rows.size() * static_cast<std::size_t>(step), kit::Matrix<T>::canary());
  int64_t given = 0;
  for (std::size_t b = 0; b < heights.size(); ++b) {
    const bool begin = b == 0, end = b + 1 == heights.size();
    const int32_t height = heights[b];
    std::vector<T> block;
    for (int64_t r = given; r < given + height; ++r) {
      const auto& row = source[static_cast<std::size_t>(r)];
      block.insert(block.end(), row.begin(), row.end());
    }
    if (block.empty()) block.push_back(T(1));  // an address to show, never read
    const kit::Area<T> in(block, place);
    // The destination: the rows kept of the block before, and room for the new ones, without the last row's gap.
    const int64_t kept = begin ? 0 : shape.lookBack(), top = given - kept;
    kit::Area<T> out((kept + height - 1) * step + rowWidth, place);
    std::memcpy(out.data(), all.data() + top * step, static_cast<std::size_t>(out.size()) * sizeof(T));
    const int32_t otherBits = b % 2 == 0 ? 0 : ~3;  // of the flags: without effect
    ASSERT_EQ(call(in.data(), out.data(), step, height, (begin ? 1 : 0) | (end ? 2 : 0) | otherBits), qorStatusOk);
    std::memcpy(all.data() + top * step, out.data(), static_cast<std::size_t>(out.size()) * sizeof(T));
    given += height;
    ASSERT_BITS(all, expected(shape, rows, given, end, step)) << "block " << b << " of height " << height;
    ASSERT_TRUE(in.edgesKept() && out.edgesKept());
  }
}

// Ways to cut an utterance of at least the start-up count into blocks.
inline std::vector<std::vector<int32_t>> cuts(int32_t height, int32_t startUp, kit::Random& random) {
  std::vector<std::vector<int32_t>> all = {{height}, {height, 0}};
  if (height > startUp) all.push_back({startUp, height - startUp});
  std::vector<int32_t> ones = {startUp};
  for (int32_t left = height - startUp; left > 0; --left) ones.push_back(1);
  all.push_back(ones);
  std::vector<int32_t> some = {startUp};
  for (int32_t left = height - startUp; left > 0; left -= some.back())
    some.push_back(static_cast<int32_t>(random.integer(1, left)));
  all.push_back(some);
  return all;
}

// Utterances from the start-up count on, whole and in blocks.
template <class T>
void feedAll(const Shape<T>& shape, const Call<T>& call, int32_t width, int32_t sourceWidth, kit::Random& random,
             const std::function<model::Table<T>(const model::Table<T>&)>& model) {
  const int32_t startUp = shape.lookBack(), rowWidth = width * (shape.derivatives + 1);
  for (const int32_t height : {startUp, startUp + 1, startUp + 2, startUp + 5, 31, 33, 70}) {
    const kit::Random::Kind kind = kit::kKinds[random.integer(0, 2)];
    model::Table<T> source;
    for (int32_t t = 0; t < height; ++t) source.push_back(random.vector<T>(sourceWidth, kind));
    const model::Table<T> rows = model(source);
    for (const auto& heights : cuts(height, startUp, random)) {
      const kit::Place place = kit::kPlaces[random.integer(0, 2)];
      feed(shape, call, source, rows, heights, rowWidth + static_cast<int32_t>(random.integer(0, 5)), place);
      if (testing::Test::HasFailure()) FAIL() << "width " << width << " height " << height << " blocks " << heights.size();
    }
  }
}

}  // namespace streaming
