// Numeric vectors against plain loops, and curves against SLEEF's functions of the same level.
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "kit/bench.h"
#include "numeric_vectors_plain.h"
#include "qorsr.h"

namespace {

template <class T>
std::vector<T> numbers(int32_t length, uint32_t seed, double low, double high) {
  std::vector<T> v;
  for (int32_t i = 0; i < length; ++i) {
    seed = seed * 1664525u + 1013904223u;
    v.push_back(static_cast<T>(low + (high - low) * static_cast<double>(seed >> 8) / (1 << 24)));
  }
  return v;
}

template <class T, class Function>
std::function<void()> curve(int32_t length, double range, Function function) {
  return [=, x = numbers<T>(length, 1, -range, range), y = std::vector<T>(static_cast<std::size_t>(length))]() mutable {
    function(x.data(), y.data(), length);
  };
}
template <class T, class Function>
std::function<void()> blend(int32_t length, Function function) {
  return [=, x = numbers<T>(length, 1, -99, 99), y = numbers<T>(length, 2, -99, 99),
          z = std::vector<T>(static_cast<std::size_t>(length))]() mutable {
    function(x.data(), y.data(), z.data(), length, 0.3F, 0.9F);
  };
}

#define OURS(name) level.ours<decltype(name)>(#name)
#define PLAIN(name) level.plain<decltype(name)>(#name)

void addTasks(const bench::Level& level, int32_t n) {
  const auto add = [&](const std::string& task, const std::string& contender, const std::function<void()>& body) {
    bench::add({task + ", " + std::to_string(n) + " numbers", contender, level.name, static_cast<double>(n), "numbers"}, body);
  };
  const bool sleef = PLAIN(hasSleef)();
#define CURVE(type, name, range)                                  \
  add(#name, "ours", curve<type>(n, range, OURS(qors##name)));    \
  add(#name, "plain", curve<type>(n, range, PLAIN(plain##name))); \
  if (sleef && n % 64 == 0) add(#name, "SLEEF", curve<type>(n, range, PLAIN(sleef##name)));
  CURVE(float, ExpNegSqr_32f, 3)
  CURVE(double, ExpNegSqr_64f, 3)
  CURVE(float, SinC_32f, 12)
  CURVE(double, SinC_64f, 12)
  add("UnitCurve_32f", "ours", curve<float>(n, 3, OURS(qorsUnitCurve_32f)));
  add("UnitCurve_32f", "plain", curve<float>(n, 3, PLAIN(plainUnitCurve_32f)));
  add("WeightedSum_32f", "ours", blend<float>(n, OURS(qorsWeightedSum_32f)));
  add("WeightedSum_32f", "plain", blend<float>(n, PLAIN(plainWeightedSum_32f)));
  add("WeightedSum_16s", "ours", blend<int16_t>(n, OURS(qorsWeightedSum_16s)));
  add("WeightedSum_16s", "plain", blend<int16_t>(n, PLAIN(plainWeightedSum_16s)));
  const auto share = [&](auto* f) {
    return [=, x = numbers<float>(n, 1, 0, 1)] {
      float result;
      f(x.data(), n, &result);
      asm volatile("" ::"r"(&result) : "memory");
    };
  };
  add("Entropy_32f", "ours", share(OURS(qorsEntropy_32f)));
  add("Entropy_32f", "plain", share(PLAIN(plainEntropy_32f)));
  add("NthMaxElement_32f", "ours", [=, f = OURS(qorsNthMaxElement_32f), x = numbers<float>(n, 1, -1, 1)] {
    float result;
    f(x.data(), n, n / 2, &result);
    asm volatile("" ::"r"(&result) : "memory");
  });
  add("NthMaxElement_32f", "plain",
      [=, f = PLAIN(plainNthMax_32f), x = numbers<float>(n, 1, -1, 1),
       y = std::vector<float>(static_cast<std::size_t>(n))]() mutable {
        float result;
        f(x.data(), y.data(), n, n / 2, &result);
        asm volatile("" ::"r"(&result) : "memory");
      });
}

}  // namespace

int main(int argc, char** argv) {
  for (const bench::Level& level : bench::levels()) {
    for (const int32_t n : {1, 3, 7, 8, 39, 199, 200, 1000, 4096}) addTasks(level, n);
  }
  return bench::run(argc, argv);
}
