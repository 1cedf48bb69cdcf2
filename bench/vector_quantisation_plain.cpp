// Plain loops of vector quantisation: what one would write first.
#include "vector_quantisation_plain.h"

#include <algorithm>
#include <cfloat>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace {

template <class T>
float squaredDistance(const T* x, const T* y, int32_t width) {
  float sum = 0;
  for (int32_t j = 0; j < width; ++j) {
    const float d = static_cast<float>(x[j]) - static_cast<float>(y[j]);
    sum += d * d;
  }
  return sum;
}

template <class T>
void nearest(const T* source, int32_t height, const T* book, int32_t count, int32_t width, int32_t* indices) {
  for (int32_t r = 0; r < height; ++r) {
    float best = FLT_MAX;
    for (int32_t k = 0; k < count; ++k) {
      const float d = squaredDistance(source + int64_t{r} * width, book + int64_t{k} * width, width);
      if (d < best) {
        best = d;
        indices[r] = k;
      }
    }
  }
}

bool isBelow(float a, float b) { return static_cast<double>(b) > static_cast<double>(a) * 1.000001; }

template <class T>
T* array(int64_t count) {
  return static_cast<T*>(std::calloc(static_cast<std::size_t>(count), sizeof(T)));
}

}  // namespace

void plainNearest_32f(const float* source, int32_t height, const float* book, int32_t count, int32_t width, int32_t* indices) {
  nearest(source, height, book, count, width, indices);
}
void plainNearest_16s(const int16_t* source, int32_t height, const int16_t* book, int32_t count, int32_t width, int32_t* indices) {
  nearest(source, height, book, count, width, indices);
}

void plainTrain_32f(const float* source, int32_t height, int32_t width, int32_t size, float* book) {
  auto *label = array<int32_t>(height), *members = array<int32_t>(size), *order = array<int32_t>(height);
  auto *stored = array<float>(height), *spread = array<float>(size);
  const auto centroids = [=](int32_t leaves) {
    std::memset(book, 0, sizeof(float) * static_cast<std::size_t>(leaves) * static_cast<std::size_t>(width));
    std::memset(members, 0, sizeof(int32_t) * static_cast<std::size_t>(leaves));
    for (int64_t r = 0; r < height; ++r) {
      ++members[label[r]];
      for (int32_t j = 0; j < width; ++j) book[int64_t{label[r]} * width + j] += source[r * width + j];
    }
    for (int64_t i = 0; i < leaves; ++i) {
      for (int32_t j = 0; j < width; ++j) book[i * width + j] /= static_cast<float>(members[i]);
    }
  };
  centroids(1);
  for (int64_t r = 0; r < height; ++r) stored[r] = squaredDistance(source + r * width, book, width);
  spread[0] = 1;
  for (int32_t leaves = 1; leaves < size; ++leaves) {
    const auto s = static_cast<int32_t>(std::max_element(spread, spread + leaves) - spread), t = leaves;
    int32_t count = 0;
    for (int32_t r = 0; r < height; ++r) {
      if (label[r] == s) order[count++] = r;
    }
    std::sort(order, order + count, [=](int32_t a, int32_t b) { return stored[a] < stored[b]; });
    for (int32_t i = 0; i < count / 2; ++i) label[order[i]] = t;
    for (int round = 0; round < 20; ++round) {
      centroids(leaves + 1);
      int32_t moves = 0;
      for (int64_t r = 0; r < height; ++r) {
        float best = FLT_MAX;
        int32_t winner = label[r];
        for (int64_t i = 0; i <= leaves; ++i) {
          const float d = squaredDistance(source + r * width, book + i * width, width);
          if (isBelow(d, best)) {
            best = d;
            winner = static_cast<int32_t>(i);
          }
        }
        stored[r] = best;
        if (winner == label[r] || members[label[r]] < 2) continue;
        --members[label[r]];
        ++members[winner];
        label[r] = winner;
        ++moves;
      }
      if (moves == 0) break;
    }
    std::fill_n(spread, size, 0.0F);
    for (int32_t r = 0; r < height; ++r) spread[label[r]] = std::max(spread[label[r]], stored[r]);
  }
  for (void* area : {static_cast<void*>(label), static_cast<void*>(members), static_cast<void*>(order), static_cast<void*>(stored),
                     static_cast<void*>(spread)}) {
    std::free(area);
  }
}
