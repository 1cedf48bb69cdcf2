// Features and senone scores by their definitions, in double precision, the plainest way.
#pragma once

#include <algorithm>
#include <cmath>
#include <complex>
#include <functional>
#include <iterator>
#include <numbers>
#include <vector>

#include "programs/acoustic_model_files.h"

namespace acoustic {

using Rows = std::vector<std::vector<double>>;

// ---- Features ----

constexpr int kFrame = 410, kHop = 160, kTransform = 512, kFilters = 25;

inline double melOf(double hertz) { return 2595 * std::log10(1 + hertz / 700); }

// The bins at the corners of the filters.
inline std::vector<double> corners() {
  std::vector<double> bins;
  for (int i = 0; i <= kFilters + 1; ++i) {
    const double mel = melOf(130) + i * (melOf(6800) - melOf(130)) / (kFilters + 1);
    bins.push_back(std::round(700 * (std::pow(10, mel / 2595) - 1) * kTransform / 16000));
  }
  return bins;
}

inline std::vector<double> powerSpectrum(const std::vector<double>& frame) {
  std::vector<double> power;
  for (int k = 0; k <= kTransform / 2; ++k) {
    std::complex<double> sum = 0;
    for (size_t i = 0; i < frame.size(); ++i) {
      sum +=
          std::polar(frame[i], -2 * std::numbers::pi * static_cast<double>(static_cast<size_t>(k) * i % kTransform) / kTransform);
    }
    power.push_back(std::norm(sum));
  }
  return power;
}

inline std::vector<double> cepstrum(const std::vector<double>& samples, size_t begin) {
  std::vector<double> frame;
  for (size_t i = 0; i < kFrame; ++i) {
    const double before = begin + i > 0 ? samples[begin + i - 1] : 0;
    frame.push_back((samples[begin + i] - 0.97 * before) *
                    (0.54 - 0.46 * std::cos(2 * std::numbers::pi * static_cast<double>(i) / (kFrame - 1))));
  }
  const std::vector<double> power = powerSpectrum(frame), corner = corners();
  std::vector<double> logs, result;
  for (size_t k = 0; k < kFilters; ++k) {
    const double left = corner[k], centre = corner[k + 1], right = corner[k + 2];
    double sum = 0;
    for (size_t j = 0; j < power.size(); ++j) {
      const auto bin = static_cast<double>(j);
      const double height = std::min((bin - left) / (centre - left), (right - bin) / (right - centre));
      if (height > 0) sum += height * 2 / ((right - left) * 16000 / kTransform) * power[j];
    }
    logs.push_back(std::log(sum + 1e-4));
  }
  for (int i = 0; i < kWidth; ++i) {
    double sum = 0;
    for (int j = 0; j < kFilters; ++j) sum += logs[static_cast<size_t>(j)] * std::cos(std::numbers::pi * i * (j + 0.5) / kFilters);
    const double lifter =
        i == 0 ? std::sqrt(1.0 / kFilters) : std::sqrt(2.0 / kFilters) * (1 + 11 * std::sin(std::numbers::pi * i / 22));
    result.push_back(lifter * sum);
  }
  return result;
}

// samples: 16-bit numbers. Rows of cepstra without their mean, differences over four frames, differences of those over two.
inline Rows features(const std::vector<double>& samples) {
  Rows cepstra;
  for (size_t begin = 0; begin + kFrame <= samples.size(); begin += kHop) cepstra.push_back(cepstrum(samples, begin));
  Rows heard;  // all but digital silence, or all
  std::copy_if(cepstra.begin(), cepstra.end(), std::back_inserter(heard), [](const auto& row) { return row[0] >= 0; });
  if (heard.empty()) heard = cepstra;
  std::vector<double> mean(kWidth);
  for (const auto& row : heard) {
    for (size_t i = 0; i < kWidth; ++i) mean[i] += row[i] / static_cast<double>(heard.size());
  }
  for (auto& row : cepstra) {
    for (size_t i = 0; i < kWidth; ++i) row[i] -= mean[i];
  }
  const auto x = [&](std::ptrdiff_t t, size_t i) {
    return cepstra[static_cast<size_t>(std::clamp<std::ptrdiff_t>(t, 0, std::ssize(cepstra) - 1))][i];
  };
  const auto d = [&](std::ptrdiff_t t, size_t i) { return x(t + 2, i) - x(t - 2, i); };
  Rows rows;
  for (std::ptrdiff_t t = 0; t < std::ssize(cepstra); ++t) {
    std::vector<double>& row = rows.emplace_back();
    for (size_t i = 0; i < kWidth; ++i) row.push_back(x(t, i));
    for (size_t i = 0; i < kWidth; ++i) row.push_back(d(t, i));
    for (size_t i = 0; i < kWidth; ++i) row.push_back(d(t + 1, i) - d(t - 1, i));
  }
  return rows;
}

// ---- Scores ----

struct Density {
  double score;
  int number;
};

// The `top` best densities of a codebook and stream for the elements x.
inline std::vector<Density> bestDensities(const Model& model, int phone, int stream, const double* x, int top) {
  std::vector<Density> all;
  for (int g = 0; g < model.densities; ++g) {
    const float* const mean = model.gaussian(model.means, phone, stream, g);
    const float* const variance = model.gaussian(model.variances, phone, stream, g);
    double score = 0;
    for (int i = 0; i < kWidth; ++i) {
      const double v = std::max(static_cast<double>(variance[i]), 1e-4), off = x[i] - static_cast<double>(mean[i]);
      score -= 0.5 * (std::log(2 * std::numbers::pi * v) + off * off / v);
    }
    all.push_back({score, g});
  }
  std::stable_sort(all.begin(), all.end(), [](const Density& a, const Density& b) { return a.score > b.score; });
  all.resize(static_cast<size_t>(std::min(top, model.densities)));
  return all;
}

// Log weights that sum to 1: [stream][density][senone].
inline std::vector<double> logWeights(const Model& model) {
  std::vector<double> logs;
  for (const uint8_t step : model.steps) logs.push_back(-1024 * std::log(1.0001) * step);
  const auto senones = static_cast<size_t>(model.senones()), densities = static_cast<size_t>(model.densities);
  for (size_t s = 0; s < kStreams; ++s) {
    for (size_t n = 0; n < senones; ++n) {
      double sum = 0;
      for (size_t g = 0; g < densities; ++g) sum += std::exp(logs[(s * densities + g) * senones + n]);
      for (size_t g = 0; g < densities; ++g) logs[(s * densities + g) * senones + n] -= std::log(sum);
    }
  }
  return logs;
}

// The score of every senone for one feature vector: the sum over the streams of log sum of weight * density, the best densities
// only.
inline std::vector<double> senoneScores(const Model& model, const std::vector<double>& weights, const std::vector<double>& x,
                                        int top) {
  const auto senones = static_cast<size_t>(model.senones()), densities = static_cast<size_t>(model.densities);
  std::vector<double> scores(senones);
  for (int s = 0; s < kStreams; ++s) {
    std::vector<std::vector<Density>> best;
    for (int p = 0; p < static_cast<int>(model.phones.size()); ++p)
      best.push_back(bestDensities(model, p, s, &x[static_cast<size_t>(s * kWidth)], top));
    for (size_t n = 0; n < senones; ++n) {
      const std::vector<Density>& chosen = best[static_cast<size_t>(model.phoneOf[n])];
      double sum = 0;
      for (const Density& density : chosen) {
        const size_t weight = (static_cast<size_t>(s) * densities + static_cast<size_t>(density.number)) * senones + n;
        sum += std::exp(density.score - chosen[0].score + weights[weight]);
      }
      scores[n] += chosen[0].score + std::log(sum);
    }
  }
  return scores;
}

}  // namespace acoustic
