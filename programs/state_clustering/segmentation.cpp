#include "segmentation.h"

#include <algorithm>
#include <limits>

#include "common/fault.h"
#include "common/progress.h"

namespace states {
namespace {

using program::check;
using words::Matrix;

struct Gaussian {
  std::vector<float> mean, inverse;
  float constant = 0;
};

void spreadEvenly(Utterance& utterance) {
  const auto count = static_cast<int>(utterance.phones.size());
  utterance.begins.resize(utterance.phones.size() + 1);
  for (int p = 0; p <= count; ++p) utterance.begins[static_cast<size_t>(p)] = p * utterance.features->rows / count;
}

// The frames of each phone, as rows.
std::vector<std::vector<const float*>> framesOf(const std::vector<Utterance>& utterances, int phoneCount) {
  std::vector<std::vector<const float*>> frames(static_cast<size_t>(phoneCount));
  for (const Utterance& utterance : utterances) {
    for (size_t p = 0; p < utterance.phones.size(); ++p) {
      auto& rows = frames[static_cast<size_t>(utterance.phones[p])];
      for (int t = utterance.begins[p]; t < utterance.begins[p + 1]; ++t) rows.push_back(utterance.features->row(t));
    }
  }
  return frames;
}

Gaussian estimate(const std::vector<const float*>& rows, int width) {
  Gaussian g{std::vector<float>(static_cast<size_t>(width)), std::vector<float>(static_cast<size_t>(width))};
  check(qorsMeanVarColumn_32f_D2L(rows.data(), static_cast<int32_t>(rows.size()), g.mean.data(), g.inverse.data(), width),
        "qorsMeanVarColumn_32f_D2L");
  for (float& v : g.inverse) v = 1 / std::max(v, leastVariance);
  float gconst = 0;
  check(qorsUpdateGConst_32f(g.inverse.data(), width, &gconst), "qorsUpdateGConst_32f");
  g.constant = -0.5F * gconst;
  return g;
}

// The most likely begins. A phone is a chain of fewestFramesAPhone steps, of which the last one may be repeated.
double align(Utterance& utterance, const std::vector<Gaussian>& gaussians) {
  const int frames = utterance.features->rows, width = utterance.features->columns;
  const auto phones = static_cast<int>(utterance.phones.size()), steps = phones * fewestFramesAPhone;
  std::vector<std::vector<float>> scores;
  for (const int phone : utterance.phones) {
    const Gaussian& g = gaussians[static_cast<size_t>(phone)];
    std::vector<float>& row = scores.emplace_back(static_cast<size_t>(frames));
    check(qorsLogGauss_32f_D2(utterance.features->values.data(), width, g.mean.data(), g.inverse.data(), width, row.data(), frames,
                              g.constant),
          "qorsLogGauss_32f_D2");
  }
  constexpr double never = -std::numeric_limits<double>::infinity();
  std::vector<double> best(static_cast<size_t>(steps), never);
  std::vector<std::vector<bool>> entered(static_cast<size_t>(frames), std::vector<bool>(static_cast<size_t>(steps)));
  best[0] = static_cast<double>(scores[0][0]);
  for (int t = 1; t < frames; ++t) {
    for (int s = steps - 1; s >= 0; --s) {
      const auto at = static_cast<size_t>(s);
      const double stay = s % fewestFramesAPhone == fewestFramesAPhone - 1 ? best[at] : never;
      const double enter = s > 0 ? best[at - 1] : never;
      entered[static_cast<size_t>(t)][at] = enter > stay;
      best[at] = std::max(stay, enter) + static_cast<double>(scores[at / fewestFramesAPhone][static_cast<size_t>(t)]);
    }
  }
  int s = steps - 1;
  for (int t = frames - 1; t > 0; --t) {
    if (!entered[static_cast<size_t>(t)][static_cast<size_t>(s)]) continue;
    if (s % fewestFramesAPhone == 0) utterance.begins[static_cast<size_t>(s / fewestFramesAPhone)] = t;
    --s;
  }
  return best.back();
}

}  // namespace

std::vector<double> segment(std::vector<Utterance>& utterances, int phoneCount, int rounds) {
  double frames = 0;
  for (Utterance& utterance : utterances) {
    spreadEvenly(utterance);
    frames += utterance.features->rows;
  }
  std::vector<double> history;
  for (int round = 0; round < rounds; ++round) {
    std::vector<Gaussian> gaussians;
    for (const auto& rows : framesOf(utterances, phoneCount)) gaussians.push_back(estimate(rows, utterances[0].features->columns));
    double total = 0;
    for (Utterance& utterance : utterances) {
      program::stopIfInterrupted();
      total += align(utterance, gaussians);
    }
    history.push_back(total / frames);
  }
  return history;
}

}  // namespace states
