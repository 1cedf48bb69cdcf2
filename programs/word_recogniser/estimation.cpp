#include "estimation.h"

#include <algorithm>
#include <cmath>

#include "common/fault.h"

namespace words {
namespace {

using program::check;

constexpr int arcs = WordModel::arcs;
constexpr float negligible = 1e-8F;  // shares of a frame below it are left out

// Shares of the counts, none below the floor, summing to 1: the most likely ones under these conditions. Where nothing was counted
// the old ones stay.
void estimateShares(const float* counts, float* shares, int count, float floor) {
  float total = 0, sum = 0;
  for (int i = 0; i < count; ++i) total += counts[i];
  const QorStatus status = check(qorsUpdateWeight_32f(counts, shares, count, &sum, total, floor), "qorsUpdateWeight_32f");
  if (status == qorStatusZeroOccupancy) return;
  float free = 1, above = 0;
  for (int i = 0; i < count; ++i) {
    free -= shares[i] > floor ? 0 : floor;
    above += shares[i] > floor ? shares[i] : 0;
  }
  for (int i = 0; i < count; ++i) {
    if (shares[i] > floor) shares[i] *= free / above;
  }
}

// The arcs of a state, but for those that lead beyond the end.
void estimateArcs(WordModel& model, int state, const std::array<float, arcs>& counts, float floor) {
  estimateShares(counts.data(), model.arcWeights[static_cast<size_t>(state)].data(), std::min(arcs, model.size() - state + 1),
                 floor);
}

// Occupancies of a state's Gaussians, frame by frame, join the sums.
void accumulate(const Mixture& mixture, const Matrix& features, const float* stateScores, const float* occupancy,
                MixtureSums& sums) {
  const Matrix scores = gaussianScores(mixture, features);
  for (int g = 0; g < mixture.count(); ++g) {
    for (int t = 0; t < features.rows; ++t) {
      if (occupancy[t] < negligible) continue;
      const float weight = occupancy[t] * std::exp(scores.row(g)[t] - stateScores[t]);
      if (weight < negligible) continue;
      sums.counts[static_cast<size_t>(g)] += weight;
      check(qorsMeanVarAcc_32f(features.row(t), mixture.means.row(g), sums.first.row(g), sums.second.row(g), features.columns,
                               weight),
            "qorsMeanVarAcc_32f");
    }
  }
}

void maximise(Mixture& mixture, const MixtureSums& sums, const Floors& floors, Warnings& warnings) {
  const int width = mixture.means.columns;
  for (int g = 0; g < mixture.count(); ++g) {
    const float count = sums.counts[static_cast<size_t>(g)];
    const QorStatus status = check(qorsUpdateVar_32f(sums.first.row(g), sums.second.row(g), floors.variances.data(),
                                                     mixture.variances.row(g), width, count, count),
                                   "qorsUpdateVar_32f");
    warnings.floored += status == qorStatusAllFloored ? 1 : 0;
    warnings.starved += status == qorStatusZeroOccupancy ? 1 : 0;
    check(qorsUpdateMean_32f(sums.first.row(g), mixture.means.row(g), width, count), "qorsUpdateMean_32f");
  }
  estimateShares(sums.counts.data(), mixture.weights.data(), mixture.count(), floors.weight);
  mixture.prepare();
}

// One Gaussian from frames. The library's variance has the divisor n - 1; the most likely one has n.
void estimateGaussian(Mixture& mixture, const std::vector<const float*>& rows, const Floors& floors, Warnings& warnings) {
  const int width = mixture.means.columns;
  float* variances = mixture.variances.row(0);
  float unbiased = 0;
  if (rows.empty()) {
    ++warnings.starved;
    return;
  }
  if (rows.size() == 1) {
    std::copy(rows[0], rows[0] + width, mixture.means.row(0));
  } else {
    const Matrix all = stacked(rows, width);
    check(qorsMeanVarColumn_32f_D2(all.values.data(), all.rows, width, mixture.means.row(0), variances, width),
          "qorsMeanVarColumn_32f_D2");
    unbiased = static_cast<float>(rows.size() - 1) / static_cast<float>(rows.size());
  }
  bool allFloored = true;
  for (int c = 0; c < width; ++c) {
    const float floor = floors.variances[static_cast<size_t>(c)];
    const float variance = unbiased > 0 ? variances[c] * unbiased : 0;
    allFloored = allFloored && !(variance > floor);
    variances[c] = std::max(variance, floor);
  }
  warnings.floored += allFloored ? 1 : 0;
  mixture.prepare();
}

}  // namespace

MixtureSums::MixtureSums(const Mixture& mixture)
    : first(mixture.count(), mixture.means.columns),
      second(mixture.count(), mixture.means.columns),
      counts(static_cast<size_t>(mixture.count())) {}

WordSums::WordSums(const WordModel& model) : arcCounts(model.states.size()) {
  for (const Mixture& state : model.states) states.emplace_back(state);
}

Matrix stacked(const std::vector<const float*>& rows, int width) {
  Matrix all(static_cast<int>(rows.size()), width);
  for (size_t r = 0; r < rows.size(); ++r) std::copy(rows[r], rows[r] + width, all.row(static_cast<int>(r)));
  return all;
}

void expect(const WordModel& model, const Matrix& features, WordSums& sums) {
  const Matrix scores = stateScores(model, features);
  const Occupancies occupied = occupancies(model, scores);
  sums.logLikelihood += occupied.logLikelihood;
  for (int s = 0; s < model.size(); ++s) {
    const auto place = static_cast<size_t>(s);
    accumulate(model.states[place], features, scores.row(s), occupied.states.row(s), sums.states[place]);
    for (size_t k = 0; k < arcs; ++k) sums.arcCounts[place][k] += occupied.arcs[place][k];
  }
}

void maximise(WordModel& model, const WordSums& sums, const Floors& floors, Warnings& warnings) {
  for (int s = 0; s < model.size(); ++s) {
    const auto place = static_cast<size_t>(s);
    maximise(model.states[place], sums.states[place], floors, warnings);
    estimateArcs(model, s, sums.arcCounts[place], floors.weight);
  }
}

void estimateFromPaths(WordModel& model, const std::vector<const Matrix*>& utterances, const std::vector<Path>& paths,
                       const Floors& floors, Warnings& warnings) {
  std::vector<std::vector<const float*>> rows(model.states.size());
  std::vector<std::array<float, arcs>> arcCounts(model.states.size());
  for (size_t u = 0; u < paths.size(); ++u) {
    const std::vector<int>& states = paths[u].states;
    for (size_t t = 0; t < states.size(); ++t) {
      const auto state = static_cast<size_t>(states[t]);
      const int next = t + 1 < states.size() ? states[t + 1] : model.size();
      rows[state].push_back(utterances[u]->row(static_cast<int>(t)));
      arcCounts[state][static_cast<size_t>(next - states[t])] += 1;
    }
  }
  for (int s = 0; s < model.size(); ++s) {
    const auto place = static_cast<size_t>(s);
    estimateGaussian(model.states[place], rows[place], floors, warnings);
    estimateArcs(model, s, arcCounts[place], floors.weight);
  }
}

bool split(Mixture& mixture, const std::vector<float>& counts, float factor, int framesPerGaussian) {
  const auto heaviest = std::max_element(counts.begin(), counts.end()) - counts.begin();
  if (counts[static_cast<size_t>(heaviest)] < static_cast<float>(2 * framesPerGaussian)) return false;
  const int width = mixture.means.columns, old = mixture.count(), g = static_cast<int>(heaviest);
  for (Matrix* matrix : {&mixture.means, &mixture.variances}) {
    ++matrix->rows;
    matrix->values.resize(matrix->values.size() + static_cast<size_t>(width));
  }
  check(qorsGaussianSplit_32f(mixture.means.row(g), mixture.variances.row(g), mixture.means.row(old), mixture.variances.row(old),
                              width, factor),
        "qorsGaussianSplit_32f");
  const float half = mixture.weights[static_cast<size_t>(g)] / 2;
  mixture.weights[static_cast<size_t>(g)] = half;
  mixture.weights.push_back(half);
  mixture.prepare();
  return true;
}

}  // namespace words
