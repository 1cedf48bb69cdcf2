// Gaussian scorers against the plain loop, Eigen, OpenBLAS on the expanded square, and a pass that only reads the model.
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "gaussian_plain.h"
#include "kit/bench.h"
#include "qorsr.h"

#if QORSR_HAVE_OPENBLAS
#include <cblas.h>
#endif

namespace {

constexpr int32_t kWidest = 39, kMostFrames = 256;

// A model in both element types, and what the peers want of it.
struct Model {
  std::string name;
  int32_t count, width;
  std::vector<float> means, variances, vals, turnedMeans, turnedVariances, weightedMeans, constants;
  std::vector<int16_t> shortMeans, shortVariances;
  std::vector<int32_t> shortVals;
  std::vector<double> wideMeans, wideVariances, wideVals;

  Model(std::string label, int32_t n, int32_t w) : name(std::move(label)), count(n), width(w) {
    const auto columns = static_cast<std::size_t>(w), size = static_cast<std::size_t>(n) * columns;
    uint32_t seed = 1;
    const auto next = [&] { return seed = seed * 1664525u + 1013904223u, static_cast<int32_t>(seed >> 16); };
    for (std::size_t i = 0; i < size; ++i) {
      shortMeans.push_back(static_cast<int16_t>(next() % 4096 - 2048));
      shortVariances.push_back(static_cast<int16_t>(next() % 1000 + 1));
      means.push_back(static_cast<float>(shortMeans[i]) / 512.0F);
      variances.push_back(static_cast<float>(shortVariances[i]) / 500.0F);
    }
    vals.assign(static_cast<std::size_t>(n), -30.0F);
    shortVals.assign(static_cast<std::size_t>(n), -30);
    wideMeans.assign(means.begin(), means.end());
    wideVariances.assign(variances.begin(), variances.end());
    wideVals.assign(vals.begin(), vals.end());
    turnedMeans.resize(size), turnedVariances.resize(size);
    for (std::size_t g = 0; g < static_cast<std::size_t>(n); ++g) {
      float constant = 0;
      for (std::size_t c = 0; c < columns; ++c) {
        const float m = means[g * columns + c], v = variances[g * columns + c];
        turnedMeans[c * static_cast<std::size_t>(n) + g] = m;
        turnedVariances[c * static_cast<std::size_t>(n) + g] = v;
        weightedMeans.push_back(m * v);
        constant += m * m * v;
      }
      constants.push_back(vals[g] - constant / 2);
    }
  }
  std::string task(const std::string& operation) const {
    return operation + ", " + std::to_string(count) + " x " + std::to_string(width) + " (" + name + ")";
  }
};

// `count` features, of one frame or many.
std::vector<float> realFeatures(int32_t count) {
  std::vector<float> v;
  for (int32_t i = 0; i < count; ++i) v.push_back(static_cast<float>(i * 40503 % 2048 - 1024) / 256.0F);
  return v;
}
std::vector<int16_t> shortFeatures(int32_t count) {
  std::vector<int16_t> v;
  for (int32_t i = 0; i < count; ++i) v.push_back(static_cast<int16_t>(i * 40503 % 4096 - 2048));
  return v;
}

#define OURS(name) level.ours<decltype(name)>(#name)
#define PLAIN(name) level.plain<decltype(name)>(#name)

// One frame against a whole model.
void addModel(const bench::Level& level, const Model& m, [[maybe_unused]] bool first) {
  static std::vector<float> scores(1000000);
  static std::vector<double> wideScores(1000000);
  static std::vector<int32_t> shortScores(1000000);
  static const std::vector<float> x = realFeatures(kWidest);
  static const std::vector<int16_t> shortX = shortFeatures(kWidest);
  static const std::vector<double> wideX(x.begin(), x.end());
  const int32_t n = m.count, w = m.width;
  const std::size_t bytes = m.means.size() * sizeof(float);
  float* s = scores.data();
  const auto add = [&](const std::string& task, const std::string& contender, const std::function<void()>& body) {
    bench::add({m.task(task), contender, level.name, static_cast<double>(n), "Gaussians"}, body);
  };
  // The vector that holds the vals receives the scores: they grow from call to call, which costs nothing.
  const auto ours32 = [=, &m, f = OURS(qorsLogGaussMultiMix_32f_D2)] {
    f(m.means.data(), m.variances.data(), w, x.data(), w, s, n);
  };
  const std::string real = "LogGaussMultiMix 32f";
  add(real, "ours", ours32);
  add(real, "plain",
      [=, &m, f = PLAIN(plainGaussians_32f)] { f(m.means.data(), m.variances.data(), w, x.data(), w, m.vals.data(), s, n); });
  add(real, "read", [a = bench::readPass(level, m.means.data(), bytes), b = bench::readPass(level, m.variances.data(), bytes)] {
    a();
    b();
  });
#if QORSR_HAVE_EIGEN3
  add(real, "Eigen",
      [=, &m, f = PLAIN(eigenGaussians_32f)] { f(m.means.data(), m.variances.data(), w, x.data(), w, m.vals.data(), s, n); });
  add(real, "Eigen turned", [=, &m, f = PLAIN(eigenTurnedGaussians_32f)] {
    f(m.turnedMeans.data(), m.turnedVariances.data(), n, x.data(), w, m.vals.data(), s, n);
  });
#endif
#if QORSR_HAVE_OPENBLAS
  if (first) {
    openblas_set_num_threads(1);
    bench::add({m.task(real), "OpenBLAS", "", static_cast<double>(n), "Gaussians"}, [=, &m] {
      float squares[kWidest];
      for (int32_t c = 0; c < w; ++c) squares[c] = x[static_cast<std::size_t>(c)] * x[static_cast<std::size_t>(c)];
      std::memcpy(s, m.constants.data(), m.constants.size() * sizeof(float));
      cblas_sgemv(CblasRowMajor, CblasNoTrans, n, w, -0.5F, m.variances.data(), w, squares, 1, 1.0F, s, 1);
      cblas_sgemv(CblasRowMajor, CblasNoTrans, n, w, 1.0F, m.weightedMeans.data(), w, x.data(), 1, 1.0F, s, 1);
    });
  }
#endif
  add("LogGaussMultiMix 64f", "ours", [=, &m, f = OURS(qorsLogGaussMultiMix_64f_D2)] {
    f(m.wideMeans.data(), m.wideVariances.data(), w, wideX.data(), w, wideScores.data(), n);
  });
  add("LogGaussMultiMix 64f", "plain", [=, &m, f = PLAIN(plainGaussians_64f)] {
    f(m.wideMeans.data(), m.wideVariances.data(), w, wideX.data(), w, m.wideVals.data(), wideScores.data(), n);
  });
  add("LogGaussMaxMultiMix 32f", "ours", [=, &m, f = OURS(qorsLogGaussMaxMultiMix_32f_D2)] {
    f(m.means.data(), m.variances.data(), w, x.data(), w, m.vals.data(), s, n);
  });
  add("LogGaussAddMultiMix 32f", "ours", [=, &m, f = OURS(qorsLogGaussAddMultiMix_32f_D2)] {
    f(m.means.data(), m.variances.data(), w, x.data(), w, m.vals.data(), s, n);
  });
  add("LogGaussMixture 32f", "ours", [=, &m, f = OURS(qorsLogGaussMixture_32f_D2)] {
    f(x.data(), m.means.data(), m.variances.data(), n, w, w, m.vals.data(), s);
  });
  add("LogGaussMixture 32f", "plain",
      [=, &m, f = PLAIN(plainMixture_32f)] { f(x.data(), m.means.data(), m.variances.data(), n, w, w, m.vals.data(), s); });
  // 16 bits beside the float form.
  const auto addShort = [&](const std::string& task, const std::function<void()>& ours) {
    add(task, "ours", ours);
    add(task, "ours 32f", ours32);
    add(task, "plain", [=, &m, f = PLAIN(plainGaussians_16s32f)] {
      f(m.shortMeans.data(), m.shortVariances.data(), w, shortX.data(), w, m.vals.data(), s, n, 1e-6F);
    });
    add(task, "read",
        [a = bench::readPass(level, m.shortMeans.data(), bytes / 2),
         b = bench::readPass(level, m.shortVariances.data(), bytes / 2)] {
          a();
          b();
        });
  };
  addShort("LogGaussMultiMix Low 16s32s", [=, &m, f = OURS(qorsLogGaussMultiMix_Low_16s32s_D2Sfs)] {
    f(m.shortMeans.data(), m.shortVariances.data(), w, shortX.data(), w, shortScores.data(), n, 12);
  });
  addShort("LogGaussMultiMix Scaled 16s32f", [=, &m, f = OURS(qorsLogGaussMultiMix_Scaled_16s32f_D2)] {
    f(m.shortMeans.data(), m.shortVariances.data(), w, shortX.data(), w, s, n, 12);
  });
  addShort("LogGaussMultiMix 16s32s", [=, &m, f = OURS(qorsLogGaussMultiMix_16s32s_D2Sfs)] {
    f(m.shortMeans.data(), m.shortVariances.data(), w, shortX.data(), w, shortScores.data(), n, 12);
  });
}

// Blocks of frames against one Gaussian, and against a model.
void addFrames(const bench::Level& level, const Model& m, int32_t height, [[maybe_unused]] bool first) {
  static std::vector<float> scores(1000000);
  static std::vector<int32_t> shortScores(1000000);
  static const std::vector<float> frames = realFeatures(kMostFrames * kWidest);
  static const std::vector<int16_t> shorts = shortFeatures(kMostFrames * kWidest);
  float* s = scores.data();
  const int32_t w = m.width;
  const auto add = [&](const std::string& task, const std::string& contender, const std::function<void()>& body) {
    bench::add({task + ", " + std::to_string(height) + " frames", contender, level.name, static_cast<double>(height), "Gaussians"},
               body);
  };
  const float *mean = m.means.data(), *variance = m.variances.data();
  const int16_t *shortMean = m.shortMeans.data(), *shortVariance = m.shortVariances.data();
  const auto ours32 = [=, f = OURS(qorsLogGauss_32f_D2)] { f(frames.data(), w, mean, variance, w, s, height, -30); };
  const auto plain = [=, f = PLAIN(plainFrames_32f)] { f(frames.data(), w, mean, variance, w, s, height, -30); };
  add("LogGauss 32f", "ours", ours32);
  add("LogGauss 32f", "plain", plain);
#if QORSR_HAVE_EIGEN3
  add("LogGauss 32f", "Eigen", [=, f = PLAIN(eigenFrames_32f)] { f(frames.data(), w, mean, variance, w, s, height, -30); });
#endif
  add("LogGaussAdd 32f", "ours", [=, f = OURS(qorsLogGaussAdd_32f_D2)] { f(frames.data(), w, mean, variance, w, s, height, -30); });
  add("LogGauss Low 16s32s", "ours", [=, f = OURS(qorsLogGauss_Low_16s32s_D2Sfs)] {
    f(shorts.data(), w, shortMean, shortVariance, w, shortScores.data(), height, -30, 12);
  });
  add("LogGauss Low 16s32s", "ours 32f", ours32);
  add("LogGauss Scaled 16s32f", "ours",
      [=, f = OURS(qorsLogGauss_Scaled_16s32f_D2)] { f(shorts.data(), w, shortMean, shortVariance, w, s, height, -30, 12); });
  add("LogGauss Scaled 16s32f", "ours 32f", ours32);
  add("LogGauss Scaled 16s32f", "plain",
      [=, f = PLAIN(plainFrames_16s32f)] { f(shorts.data(), w, shortMean, shortVariance, w, s, height, -30, 1e-6F); });
  const std::string whole = "LogGauss 32f for each Gaussian, " + m.task(std::to_string(height) + " frames");
  const double items = static_cast<double>(height) * m.count;
  bench::add({whole, "ours", level.name, items, "Gaussians"}, [=, &m, f = OURS(qorsLogGauss_32f_D2)] {
    for (int32_t g = 0; g < m.count; ++g) f(frames.data(), w, mean + g * w, variance + g * w, w, s + g * height, height, m.vals[0]);
  });
  bench::add({whole, "plain", level.name, items, "Gaussians"}, [=, &m, f = PLAIN(plainFrames_32f)] {
    for (int32_t g = 0; g < m.count; ++g) f(frames.data(), w, mean + g * w, variance + g * w, w, s + g * height, height, m.vals[0]);
  });
#if QORSR_HAVE_OPENBLAS
  if (first) {  // the expanded square: cheap, and useless far from the origin
    bench::add({whole, "OpenBLAS", "", items, "Gaussians"}, [=, &m] {
      static float squares[kMostFrames * kWidest];
      for (int32_t i = 0; i < height * w; ++i)
        squares[i] = frames[static_cast<std::size_t>(i)] * frames[static_cast<std::size_t>(i)];
      for (int32_t g = 0; g < m.count; ++g) {
        for (int32_t r = 0; r < height; ++r) s[g * height + r] = m.constants[static_cast<std::size_t>(g)];
      }
      cblas_sgemm(CblasRowMajor, CblasNoTrans, CblasTrans, m.count, height, w, -0.5F, variance, w, squares, w, 1.0F, s, height);
      cblas_sgemm(CblasRowMajor, CblasNoTrans, CblasTrans, m.count, height, w, 1.0F, m.weightedMeans.data(), w, frames.data(), w,
                  1.0F, s, height);
    });
  }
#endif
}

}  // namespace

int main(int argc, char** argv) {
  static const Model narrow("in cache", 1024, 13), small("in cache", 1024, 39), large("beyond the caches", 400000, 39);
  bool first = true;
  for (const bench::Level& level : bench::levels()) {
    addModel(level, narrow, first);
    addModel(level, small, first);
    addModel(level, large, first);
    addFrames(level, small, 64, first);
    first = false;
  }
  return bench::run(argc, argv);
}
