// Codebooks of both element types under one set of names, data to make them of, and their comparison with the model.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "kit/compare.h"
#include "kit/core.h"
#include "kit/memory.h"
#include "kit/random.h"
#include "model/codebook.h"
#include "model/convert.h"
#include "qorsr.h"

namespace books {

struct Float {
  using T = float;
  using State = CdbkState_32f;
  static constexpr auto getSize = qorsCdbkGetSize_32f;
  static constexpr auto init = qorsCdbkInit_L2_32f;
  static constexpr auto make = qorsCdbkInitAlloc_L2_32f;
  static constexpr auto makeWeighted = qorsCdbkInitAlloc_WgtL2_32f;
  static constexpr auto free = qorsCdbkFree_32f;
  static constexpr auto count = qorsGetCdbkSize_32f;
  static constexpr auto rows = qorsGetCodebook_32f;
  static constexpr auto quantise = qorsVQ_32f;
  static constexpr auto sort = qorsVQSingle_Sort_32f;
  static constexpr auto within = qorsVQSingle_Thresh_32f;

  using Distance = float;
  static QorStatus quantiseDist(const T* x, int32_t step, int32_t* i, float* d, int32_t height, const State* s, int32_t) {
    return qorsVQDist_32f(x, step, i, d, height, s);
  }
  static QorStatus sortDist(const T* x, int32_t* i, float* d, State* s, int32_t k, int32_t) {
    return qorsVQDistSingle_Sort_32f(x, i, d, s, k);
  }
  static QorStatus withinDist(const T* x, int32_t* i, float* d, State* s, float t, int32_t* n, int32_t) {
    return qorsVQDistSingle_Thresh_32f(x, i, d, s, t, n);
  }
  static float converted(float distance, int32_t) { return distance; }
  static int64_t bytes(int64_t dimension, int64_t stride, int64_t size) { return (dimension + size + stride * size) * 4 + 144; }
};

struct Int16 {
  using T = int16_t;
  using State = CdbkState_16s;
  static constexpr auto getSize = qorsCdbkGetSize_16s;
  static constexpr auto init = qorsCdbkInit_L2_16s;
  static constexpr auto make = qorsCdbkInitAlloc_L2_16s;
  static constexpr auto makeWeighted = qorsCdbkInitAlloc_WgtL2_16s;
  static constexpr auto free = qorsCdbkFree_16s;
  static constexpr auto count = qorsGetCdbkSize_16s;
  static constexpr auto rows = qorsGetCodebook_16s;
  static constexpr auto quantise = qorsVQ_16s;
  static constexpr auto sort = qorsVQSingle_Sort_16s;
  static constexpr auto within = qorsVQSingle_Thresh_16s;

  using Distance = int32_t;
  static constexpr auto quantiseDist = qorsVQDist_16s32s_Sfs;
  static constexpr auto sortDist = qorsVQDistSingle_Sort_16s32s_Sfs;
  static constexpr auto withinDist = qorsVQDistSingle_Thresh_16s32s_Sfs;
  static int32_t converted(float distance, int32_t scaleFactor) { return model::convertScaled<int32_t>(distance, 1, scaleFactor); }
  static int64_t bytes(int64_t dimension, int64_t stride, int64_t size) { return size * 4 + 176 + (stride * size + dimension) * 2; }
};

template <class Kind>
struct Book {
  typename Kind::State* state = nullptr;
  Book() = default;
  Book(const Book&) = delete;
  Book& operator=(const Book&) = delete;
  ~Book() {
    if (state == nullptr) return;
    EXPECT_EQ(Kind::free(state), qorStatusOk);
  }
};

// ---- Data ----

enum Data { kUniform, kClusters, kLattice, kRepeated, kConstant, kTiny, kHuge, kNanRows, kNearTies, kData };

template <class T>
T limited(double value) {
  if constexpr (sizeof(T) == 2) return static_cast<T>(std::clamp(value, -32768.0, 32767.0));
  return static_cast<T>(value);
}

template <class T>
model::Rows<T> dataOf(kit::Random& random, Data kind, int32_t height, int32_t dimension) {
  const double scale = sizeof(T) == 2 ? 1000.0 : 1.0;
  model::Rows<T> rows;
  for (int32_t r = 0; r < height; ++r) {
    model::Row<T> row;
    const double centre = static_cast<double>(random.integer(-4, 4));
    for (int32_t j = 0; j < dimension; ++j) {
      const double u = random.real(-1.0, 1.0), apart = static_cast<double>(random.integer(-3, 3));
      double x = u * 5.0 * scale;
      if (kind == kNearTies) x = std::nearbyint(u * 3.0) + (sizeof(T) == 4 ? apart * 0x1p-23 : 0.0);  // a few last places
      if (kind == kClusters) x = (centre * static_cast<double>(j % 3 + 1) + 0.2 * u) * scale;
      if (kind == kLattice) x = std::nearbyint(u * 3.0);
      if (kind == kRepeated)
        x = r % 5 == 0 || rows.empty() ? std::nearbyint(u * 50.0) : static_cast<double>(rows.back()[static_cast<std::size_t>(j)]);
      if (kind == kConstant) x = 7.0;
      if (kind == kTiny) x = sizeof(T) == 2 ? std::nearbyint(u) : 0.1 + u * 1e-4;
      if (kind == kHuge) x = sizeof(T) == 2 ? u * 40000.0 : u * 4e19;
      row.push_back(limited<T>(x));
      if (kind == kNanRows && sizeof(T) == 4 && random.integer(0, 30) == 0) row.back() = static_cast<T>(std::nanf(""));
    }
    rows.push_back(row);
  }
  return rows;
}

// Some zero, some 1, and now and then all 1.
template <class T>
model::Row<T> weightsOf(kit::Random& random, int32_t dimension) {
  model::Row<T> weights;
  const bool ones = random.integer(0, 9) == 0;
  for (int32_t j = 0; j < dimension; ++j) {
    const int64_t kind = random.integer(0, 5);
    const double w = random.real(0.0, 20.0);
    weights.push_back(ones ? T(1) : kind == 0 ? T(0) : kind == 1 ? T(1) : static_cast<T>(w));
  }
  return weights;
}

// Vectors to quantise: near rows, rows themselves, between two, far away, and nasty ones.
template <class T>
model::Rows<T> queriesOf(kit::Random& random, const model::Rows<T>& rows, int32_t count) {
  model::Rows<T> queries;
  for (int32_t q = 0; q < count; ++q) {
    const auto& a = rows[static_cast<std::size_t>(random.integer(0, std::ssize(rows) - 1))];
    const auto& b = rows[static_cast<std::size_t>(random.integer(0, std::ssize(rows) - 1))];
    const int64_t kind = random.integer(0, 7);
    model::Row<T> x;
    for (std::size_t j = 0; j < a.size(); ++j) {
      const double u = random.real(-1.0, 1.0);
      double value = static_cast<double>(a[j]);
      if (kind >= 2) value += u * (sizeof(T) == 2 ? 300.0 : 0.5);
      if (kind == 1) value = (static_cast<double>(a[j]) + static_cast<double>(b[j])) / 2;
      if (kind == 5) value = u * 1e5;
      x.push_back(limited<T>(value));
      if (kind == 6) x.back() = random.nasty<T>();
    }
    queries.push_back(x);
  }
  return queries;
}

// Rows `step` apart, in guarded memory; the gaps hold rubbish.
template <class T>
kit::Area<T> spread(const model::Rows<T>& rows, int32_t step, kit::Place place) {
  const auto width = static_cast<int64_t>(rows[0].size());
  kit::Area<T> area((static_cast<int64_t>(rows.size()) - 1) * step + width, place);
  area.fill(T(77));
  for (std::size_t r = 0; r < rows.size(); ++r)
    std::copy(rows[r].begin(), rows[r].end(), area.data() + static_cast<int64_t>(r) * step);
  return area;
}

// ---- Comparison ----

template <class Kind>
void expectRows(const typename Kind::State* state, const model::Codebook<typename Kind::T>& expected) {
  using T = typename Kind::T;
  const auto& book = expected.book();
  const auto n = static_cast<int32_t>(book[0].size());
  int32_t count = -1;
  ASSERT_EQ(Kind::count(state, &count), qorStatusOk);
  ASSERT_EQ(count, std::ssize(book));
  for (const int32_t step : {n, n + 3}) {
    kit::Matrix<T> rows(count, n, step, kit::Place::kAtGuard);
    ASSERT_EQ(Kind::rows(state, rows.block(), step), qorStatusOk);
    for (int32_t r = 0; r < count; ++r)
      ASSERT_BITS(rows.block() + int64_t{r} * step, book[static_cast<std::size_t>(r)].data(), n) << "row " << r;
    ASSERT_TRUE(rows.gapsKept());
  }
}

template <class Kind>
void expectSearch(kit::Random& random, const typename Kind::State* state, const model::Codebook<typename Kind::T>& expected,
                  const model::Rows<typename Kind::T>& queries) {
  const auto n = static_cast<int32_t>(queries[0].size()), count = static_cast<int32_t>(queries.size());
  const auto step = n + static_cast<int32_t>(random.integer(0, 3));
  const auto place = kit::kPlaces[random.integer(0, 2)];
  const auto source = spread(queries, step, place);
  std::vector<int32_t> index;
  std::vector<typename Kind::Distance> distance;
  const auto scaleFactor = static_cast<int32_t>(random.integer(-3, 4));
  for (const auto& x : queries) {
    const auto found = expected.search(x);
    index.push_back(found.index);
    distance.push_back(Kind::converted(std::sqrt(found.square), scaleFactor));
  }
  kit::Area<int32_t> indices(count, place);
  kit::Area<typename Kind::Distance> distances(count, place);
  ASSERT_EQ(Kind::quantise(source.data(), step, indices.data(), count, state), qorStatusOk);
  ASSERT_BITS(indices.values(), index);
  indices.fill(-9);
  ASSERT_EQ(Kind::quantiseDist(source.data(), step, indices.data(), distances.data(), count, state, scaleFactor), qorStatusOk);
  ASSERT_BITS(indices.values(), index);
  ASSERT_BITS(distances.values(), distance);
  ASSERT_TRUE(indices.edgesKept() && distances.edgesKept());
}

}  // namespace books
