// Linear prediction of a frame of speech against the plain loop.
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include "kit/bench.h"
#include "linear_prediction_plain.h"
#include "qorsr.h"

namespace {

#define OURS(name) level.ours<decltype(name)>(#name)
#define PLAIN(name) level.plain<decltype(name)>(#name)

struct Frame {
  int32_t length, order;
  std::vector<float> x, lags, result = std::vector<float>(128);
  std::vector<int16_t> x16, result16 = std::vector<int16_t>(128);

  Frame(int32_t n, int32_t p) : length(n), order(p), lags(static_cast<std::size_t>(p) + 1) {
    uint32_t noise = 1;
    float before = 0.0F, second = 0.0F;
    for (int32_t i = 0; i < n; ++i) {
      noise = noise * 1664525U + 1013904223U;
      const float value = static_cast<float>(noise >> 16) / 327.68F - 100.0F + 1.5F * before - 0.8F * second;
      second = before;
      before = value;
      x.push_back(value);
      x16.push_back(static_cast<int16_t>(value * 10.0F));
    }
    for (int32_t k = 0; k <= p; ++k) {
      for (int32_t i = 0; i < n - k; ++i) {
        lags[static_cast<std::size_t>(k)] += x[static_cast<std::size_t>(i)] * x[static_cast<std::size_t>(i + k)];
      }
    }
  }
  std::string task(const std::string& member) const {
    return member + ", " + std::to_string(length) + " samples, order " + std::to_string(order);
  }
};

template <class Ours, class Plain>
void compare(const bench::Level& level, const std::string& task, Ours ours, Plain plain) {
  bench::add({task, "ours", level.name, 1, "frames"}, ours);
  bench::add({task, "plain", level.name, 1, "frames"}, plain);
}

void addTasks(const bench::Level& level, Frame& frame) {
  const float *x = frame.x.data(), *r = frame.lags.data();
  const int16_t* x16 = frame.x16.data();
  float* a = frame.result.data();
  int16_t* a16 = frame.result16.data();
  const int32_t n = frame.length, p = frame.order;
  compare(
      level, frame.task("LinearPrediction_Auto_32f"), [=, f = OURS(qorsLinearPrediction_Auto_32f)] { f(x, n, a, p); },
      [=, f = PLAIN(plainLinearPrediction_32f)] { f(x, n, a, p); });
  compare(
      level, frame.task("LinearPrediction_Auto_16s_Sfs"),
      [=, f = OURS(qorsLinearPrediction_Auto_16s_Sfs)] { f(x16, n, a16, p, -12); },
      [=, f = PLAIN(plainLinearPrediction_16s)] { f(x16, n, a16, p, 4096.0F); });
  if (p > 64) return;
  compare(
      level, frame.task("LinearPrediction_Cov_32f"), [=, f = OURS(qorsLinearPrediction_Cov_32f)] { f(x, n, a, p); },
      [=, f = PLAIN(plainCovariancePrediction)] { f(x, n, a, p); });
  compare(
      level, frame.task("Durbin_32f"), [=, f = OURS(qorsDurbin_32f)] { f(r, a, p, a + 127); },
      [=, f = PLAIN(plainDurbin)] { f(r, a, p, a + 127); });
  compare(
      level, frame.task("Schur_32f"), [=, f = OURS(qorsSchur_32f)] { f(r, a, p, a + 127); },
      [=, f = PLAIN(plainSchur)] { f(r, a, p, a + 127); });
}

}  // namespace

int main(int argc, char** argv) {
  static Frame frames[] = {{240, 12}, {400, 16}, {400, 33}};
  for (const bench::Level& level : bench::levels()) {
    for (Frame& frame : frames) addTasks(level, frame);
  }
  return bench::run(argc, argv);
}
