// Model re-estimation, covariance accumulation and state clustering against the plain loop, at the sizes of a trainer.
#include <cstdint>
#include <string>
#include <vector>

#include "kit/bench.h"
#include "qorsr.h"
#include "re_estimation_plain.h"

namespace {

constexpr int32_t kLong = 4096;
// Somewhat longer than used, so that elements of one index do not share their place in a page.
constexpr int32_t kRoom = kLong + 144;
float a32[kRoom], b32[kRoom], c32[kRoom], d32[kRoom];
double a64[kRoom], b64[kRoom], c64[kRoom], d64[kRoom];
float rows32[1000 * 160], mean32[160];
int16_t rows16[1000 * 160], mean16[160];
double covariance[160 * 160];
int32_t means[kRoom], squares[kRoom], integers[kRoom];

void fill() {
  for (int32_t i = 0; i < kLong; ++i) {
    const double x = static_cast<double>(int64_t{i} * 40503 % 65536) / 65536.0;
    a64[i] = x - 0.5, b64[i] = 1.0 + x, c64[i] = 0.01, d64[i] = 1.0;
    means[i] = static_cast<int32_t>(a64[i] * 1000), squares[i] = static_cast<int32_t>(b64[i] * 1000000);
    a32[i] = static_cast<float>(a64[i]), b32[i] = static_cast<float>(b64[i]), c32[i] = 0.01F, d32[i] = 1.0F;
  }
  for (int32_t i = 0; i < 1000 * 160; ++i) {
    rows16[i] = static_cast<int16_t>(int64_t{i} * 40503 % 65536 - 32768);
    rows32[i] = static_cast<float>(rows16[i]) / 1000.0F;
  }
}

#define OURS(name) level.ours<decltype(name)>(#name)
#define PLAIN(name) level.plain<decltype(name)>(#name)

void addPair(const bench::Level& level, const std::string& task, std::function<void()> ours, std::function<void()> plain) {
  bench::add({task, "ours", level.name}, std::move(ours));
  bench::add({task, "plain", level.name}, std::move(plain));
}

// Repeated a hundred times in one body: a call of 39 elements takes some ten nanoseconds.
template <class F>
std::function<void()> often(F f) {
  return [f] {
    for (int i = 0; i < 100; ++i) f();
  };
}

void addMoments(const bench::Level& level, const std::string& size, int32_t n) {
  addPair(level, "NewVar 32f" + size, often([=, f = OURS(qorsNewVar_32f)] { f(a32, b32, d32, n, 0.5F, 0.25F); }),
          often([=, f = PLAIN(plainNewVar_32f)] { f(a32, b32, d32, n, 0.5F, 0.25F); }));
  addPair(level, "NewVar 32f, in place" + size, often([=, f = OURS(qorsNewVar_32f_I)] { f(a32, d32, n, 1e-9F, 1.0F); }),
          often([=, f = PLAIN(plainNewVar_32f_I)] { f(a32, d32, n, 1e-9F, 1.0F); }));
  addPair(level, "NewVar 32s" + size, often([=, f = OURS(qorsNewVar_32s_Sfs)] { f(means, squares, integers, n, 0.5F, 0.25F, 1); }),
          often([=, f = PLAIN(plainNewVar_32s)] { f(means, squares, integers, n, 0.5F, 0.25F, 0.5F); }));
  addPair(level, "NewVar 32s, not aligned" + size,
          often([=, f = OURS(qorsNewVar_32s_Sfs)] { f(means + 1, squares + 1, integers, n, 0.5F, 0.25F, 1); }),
          often([=, f = PLAIN(plainNewVar_32s)] { f(means + 1, squares + 1, integers, n, 0.5F, 0.25F, 0.5F); }));
  addPair(level, "MeanVarAcc 32f" + size, often([=, f = OURS(qorsMeanVarAcc_32f)] { f(a32, b32, c32, d32, n, 1e-9F); }),
          often([=, f = PLAIN(plainMeanVarAcc_32f)] { f(a32, b32, c32, d32, n, 1e-9F); }));
  addPair(level, "MeanVarAcc 64f" + size, often([=, f = OURS(qorsMeanVarAcc_64f)] { f(a64, b64, c64, d64, n, 1e-9); }),
          often([=, f = PLAIN(plainMeanVarAcc_64f)] { f(a64, b64, c64, d64, n, 1e-9); }));
}

void addUpdates(const bench::Level& level, int32_t n) {
  const std::string size = ", " + std::to_string(n) + " elements";
  addPair(level, "UpdateMean 32f" + size, often([=, f = OURS(qorsUpdateMean_32f)] { f(a32, d32, n, 3e9F); }),
          often([=, f = PLAIN(plainUpdateMean_32f)] { f(a32, d32, n, 3e9F); }));
  addPair(level, "UpdateMean 64f" + size, often([=, f = OURS(qorsUpdateMean_64f)] { f(a64, d64, n, 3e9); }),
          often([=, f = PLAIN(plainUpdateMean_64f)] { f(a64, d64, n, 3e9); }));
  addPair(level, "UpdateVar 32f" + size, often([=, f = OURS(qorsUpdateVar_32f)] { f(a32, b32, c32, d32, n, 3.0F, 5.0F); }),
          often([=, f = PLAIN(plainUpdateVar_32f)] { f(a32, b32, c32, d32, n, 3.0F, 5.0F); }));
  addPair(level, "UpdateVar 64f" + size, often([=, f = OURS(qorsUpdateVar_64f)] { f(a64, b64, c64, d64, n, 3.0, 5.0); }),
          often([=, f = PLAIN(plainUpdateVar_64f)] { f(a64, b64, c64, d64, n, 3.0, 5.0); }));
  addPair(level, "UpdateWeight 32f" + size, often([=, f = OURS(qorsUpdateWeight_32f)] {
            float sum;
            f(b32, d32, n, &sum, 50.0F, 0.01F);
          }),
          often([=, f = PLAIN(plainUpdateWeight_32f)] {
            float sum;
            f(b32, d32, n, &sum, 50.0F, 0.01F);
          }));
  addPair(level, "UpdateWeight 64f" + size, often([=, f = OURS(qorsUpdateWeight_64f)] {
            double sum;
            f(b64, d64, n, &sum, 50.0, 0.01);
          }),
          often([=, f = PLAIN(plainUpdateWeight_64f)] {
            double sum;
            f(b64, d64, n, &sum, 50.0, 0.01);
          }));
  addMoments(level, size, n);
}

void addClustering(const bench::Level& level, int32_t n) {
  const std::string size = ", " + std::to_string(n) + " elements";
  addPair(level, "DcsClustLAccumulate 32f" + size,
          often([=, f = OURS(qorsDcsClustLAccumulate_32f)] { f(a32, b32, c32, d32, n, 3.0F); }),
          often([=, f = PLAIN(plainDcsClustLAccumulate_32f)] { f(a32, b32, c32, d32, n, 3.0F); }));
  addPair(level, "DcsClustLAccumulate 64f" + size,
          often([=, f = OURS(qorsDcsClustLAccumulate_64f)] { f(a64, b64, c64, d64, n, 3.0); }),
          often([=, f = PLAIN(plainDcsClustLAccumulate_64f)] { f(a64, b64, c64, d64, n, 3.0); }));
  addPair(level, "DcsClustLAccumulate_DirectVar 32f" + size,
          often([=, f = OURS(qorsDcsClustLAccumulate_DirectVar_32f)] { f(a32, b32, c32, d32, n, 3.0F); }),
          often([=, f = PLAIN(plainDcsClustLAccumulate_DirectVar_32f)] { f(a32, b32, c32, d32, n, 3.0F); }));
  addPair(level, "DcsClustLAccumulate_DirectVar 64f" + size,
          often([=, f = OURS(qorsDcsClustLAccumulate_DirectVar_64f)] { f(a64, b64, c64, d64, n, 3.0); }),
          often([=, f = PLAIN(plainDcsClustLAccumulate_DirectVar_64f)] { f(a64, b64, c64, d64, n, 3.0); }));
  addPair(level, "DcsClustLCompute 64f" + size, often([=, f = OURS(qorsDcsClustLCompute_64f)] {
            double result;
            f(a64, b64, n, &result, 3.0);
          }),
          often([=, f = PLAIN(plainDcsClustLCompute_64f)] { f(a64, b64, n, 3.0); }));
  addPair(level, "DcsClustLCompute 32f64f" + size, often([=, f = OURS(qorsDcsClustLCompute_32f64f)] {
            double result;
            f(a32, b32, n, &result, 3.0F);
          }),
          often([=, f = PLAIN(plainDcsClustLCompute_32f64f)] { f(a32, b32, n, 3.0F); }));
}

void addCovariance(const bench::Level& level, int32_t height, int32_t width) {
  const std::string size = ", " + std::to_string(height) + " x " + std::to_string(width);
  addPair(
      level, "AccCovarianceMatrix 32f64f" + size,
      [=, f = OURS(qorsAccCovarianceMatrix_32f64f_D2)] { f(rows32, width, height, mean32, covariance, width, width, 0.5); },
      [=, f = PLAIN(plainAccCovariance_32f64f)] { f(rows32, width, height, mean32, covariance, width, width, 0.5); });
  addPair(
      level, "AccCovarianceMatrix 16s64f" + size,
      [=, f = OURS(qorsAccCovarianceMatrix_16s64f_D2)] { f(rows16, width, height, mean16, covariance, width, width, 0.5); },
      [=, f = PLAIN(plainAccCovariance_16s64f)] { f(rows16, width, height, mean16, covariance, width, width, 0.5); });
}

#undef OURS
#undef PLAIN

}  // namespace

int main(int argc, char** argv) {
  fill();
  for (const bench::Level& level : bench::levels()) {
    for (const int32_t n : {39, 512}) addUpdates(level, n);
    for (const int32_t n : {39, 512}) addClustering(level, n);
    for (const int32_t width : {13, 39, 160}) addCovariance(level, 1000, width);
    addCovariance(level, 20, 39);
  }
  return bench::run(argc, argv);
}
