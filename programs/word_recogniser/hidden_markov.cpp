#include "hidden_markov.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "common/fault.h"

namespace words {
namespace {

constexpr int arcs = WordModel::arcs;
constexpr double logZero = -1e10;  // what the library's log addition takes for an impossible event

double logOf(float probability) { return probability > 0 ? std::log(static_cast<double>(probability)) : logZero; }

// Log probabilities of arcs, laid out for vector steps: arcs[k][s] is the arc of k states onwards that leaves state s.
struct LogArcs {
  explicit LogArcs(const WordModel& model) {
    for (int k = 0; k < arcs; ++k) {
      for (const auto& weights : model.arcWeights) {
        logs[static_cast<size_t>(k)].push_back(logOf(weights[static_cast<size_t>(k)]));
      }
    }
  }
  double operator()(int k, int s) const { return logs[static_cast<size_t>(k)][static_cast<size_t>(s)]; }

  std::array<std::vector<double>, arcs> logs;
};

double at(const Matrix& scores, int state, int frame) { return static_cast<double>(scores.row(state)[frame]); }

// Rows of doubles, a frame a row: log probabilities of the states.
class Lattice {
 public:
  Lattice(int frames, int states) : states_(static_cast<size_t>(states)), values_(static_cast<size_t>(frames) * states_, logZero) {}
  double* operator[](int frame) { return values_.data() + static_cast<size_t>(frame) * states_; }

 private:
  size_t states_;
  std::vector<double> values_;
};

void logAdd(const std::vector<double>& terms, double* sums) {
  program::check(qorsLogAdd_64f(terms.data(), sums, static_cast<int32_t>(terms.size()), qorLogAddAccurate), "qorsLogAdd_64f");
}

// The log probability of leaving for good, from each state.
double leaving(const LogArcs& logArcs, int states, int s) {
  const int k = states - s;
  return k < arcs ? logArcs(k, s) : logZero;
}

Lattice forward(const LogArcs& logArcs, const Matrix& scores) {
  const int states = scores.rows, frames = scores.columns;
  Lattice alpha(frames, states);
  alpha[0][0] = at(scores, 0, 0);
  std::vector<double> terms(static_cast<size_t>(states));
  for (int t = 1; t < frames; ++t) {
    for (int k = 0; k < arcs; ++k) {
      for (int s = 0; s < states; ++s) {
        terms[static_cast<size_t>(s)] = s >= k ? alpha[t - 1][s - k] + logArcs(k, s - k) : logZero;
      }
      logAdd(terms, alpha[t]);
    }
    for (int s = 0; s < states; ++s) alpha[t][s] += at(scores, s, t);
  }
  return alpha;
}

Lattice backward(const LogArcs& logArcs, const Matrix& scores) {
  const int states = scores.rows, frames = scores.columns;
  Lattice beta(frames, states);
  for (int s = 0; s < states; ++s) beta[frames - 1][s] = leaving(logArcs, states, s);
  std::vector<double> terms(static_cast<size_t>(states));
  for (int t = frames - 2; t >= 0; --t) {
    for (int k = 0; k < arcs; ++k) {
      for (int s = 0; s < states; ++s) {
        const bool inside = s + k < states;
        terms[static_cast<size_t>(s)] = inside ? logArcs(k, s) + at(scores, s + k, t + 1) + beta[t + 1][s + k] : logZero;
      }
      logAdd(terms, beta[t]);
    }
  }
  return beta;
}

}  // namespace

void Mixture::prepare() {
  const auto count32 = static_cast<int32_t>(weights.size());
  inverseVariances = Matrix(means.rows, means.columns);
  for (size_t i = 0; i < variances.values.size(); ++i) inverseVariances.values[i] = 1 / variances.values[i];
  std::vector<float> logWeights, normalisations(weights.size());
  for (int g = 0; g < count(); ++g) {
    logWeights.push_back(std::log(weights[static_cast<size_t>(g)]));
    program::check(qorsUpdateGConst_32f(inverseVariances.row(g), means.columns, &normalisations[static_cast<size_t>(g)]),
                   "qorsUpdateGConst_32f");
  }
  constants.resize(weights.size());
  program::check(qorsOutProbPreCalc_32f(logWeights.data(), normalisations.data(), constants.data(), count32),
                 "qorsOutProbPreCalc_32f");
}

Matrix gaussianScores(const Mixture& mixture, const Matrix& features) {
  Matrix scores(mixture.count(), features.rows);
  for (int g = 0; g < mixture.count(); ++g) {
    program::check(
        qorsLogGauss_32f_D2(features.values.data(), features.columns, mixture.means.row(g), mixture.inverseVariances.row(g),
                            features.columns, scores.row(g), features.rows, mixture.constants[static_cast<size_t>(g)]),
        "qorsLogGauss_32f_D2");
  }
  return scores;
}

Matrix stateScores(const WordModel& model, const Matrix& features) {
  Matrix scores(model.size(), features.rows);
  for (int s = 0; s < model.size(); ++s) {
    const Mixture& mixture = model.states[static_cast<size_t>(s)];
    for (int g = 0; g < mixture.count(); ++g) {
      const auto score = g == 0 ? qorsLogGauss_32f_D2 : qorsLogGaussAdd_32f_D2;
      program::check(score(features.values.data(), features.columns, mixture.means.row(g), mixture.inverseVariances.row(g),
                           features.columns, scores.row(s), features.rows, mixture.constants[static_cast<size_t>(g)]),
                     "qorsLogGaussAdd_32f_D2");
    }
  }
  return scores;
}

Path bestPath(const WordModel& model, const Matrix& scores) {
  const int states = scores.rows, frames = scores.columns;
  const LogArcs logArcs(model);
  Lattice best(frames, states);
  std::vector<int> from(static_cast<size_t>(frames) * static_cast<size_t>(states));
  const auto back = [&](int t, int s) -> int& {
    return from[static_cast<size_t>(t) * static_cast<size_t>(states) + static_cast<size_t>(s)];
  };
  best[0][0] = at(scores, 0, 0);
  for (int t = 1; t < frames; ++t) {
    for (int s = 0; s < states; ++s) {
      for (int k = 0; k < arcs && k <= s; ++k) {
        const double value = best[t - 1][s - k] + logArcs(k, s - k);
        if (value <= best[t][s] && k > 0) continue;
        best[t][s] = value;
        back(t, s) = k;
      }
      best[t][s] += at(scores, s, t);
    }
  }
  Path path{-std::numeric_limits<double>::infinity(), std::vector<int>(static_cast<size_t>(frames))};
  int last = states - 1;
  for (int s = 0; s < states; ++s) {
    const double value = best[frames - 1][s] + leaving(logArcs, states, s);
    if (value <= path.logLikelihood) continue;
    path.logLikelihood = value;
    last = s;
  }
  for (int t = frames - 1; t >= 0; --t) {
    path.states[static_cast<size_t>(t)] = last;
    last -= t > 0 ? back(t, last) : 0;
  }
  return path;
}

Occupancies occupancies(const WordModel& model, const Matrix& scores) {
  const int states = scores.rows, frames = scores.columns;
  const LogArcs logArcs(model);
  Lattice alpha = forward(logArcs, scores), beta = backward(logArcs, scores);
  const double total = alpha[0][0] + beta[0][0];
  Occupancies result{total, Matrix(states, frames), std::vector<std::array<float, arcs>>(static_cast<size_t>(states))};
  for (int s = 0; s < states; ++s) {
    for (int t = 0; t < frames; ++t) result.states.row(s)[t] = static_cast<float>(std::exp(alpha[t][s] + beta[t][s] - total));
    for (int k = 0; k < arcs; ++k) {
      double sum = s + k == states ? std::exp(alpha[frames - 1][s] + beta[frames - 1][s] - total) : 0;
      for (int t = 0; s + k < states && t + 1 < frames; ++t) {
        sum += std::exp(alpha[t][s] + logArcs(k, s) + at(scores, s + k, t + 1) + beta[t + 1][s + k] - total);
      }
      result.arcs[static_cast<size_t>(s)][static_cast<size_t>(k)] = static_cast<float>(sum);
    }
  }
  return result;
}

Decision WordModels::recognise(const Matrix& features) const {
  Decision decision;
  decision.score = decision.secondScore = -std::numeric_limits<float>::infinity();
  for (size_t m = 0; m < models.size(); ++m) {
    if (!WordModel::canPass(models[m].size(), features.rows)) continue;
    const Path path = bestPath(models[m], stateScores(models[m], features));
    const auto score = static_cast<float>(path.logLikelihood / features.rows);
    if (score > decision.score) {
      decision.secondWord = decision.word;
      decision.secondScore = decision.score;
      decision.word = words[m];
      decision.score = score;
    } else if (score > decision.secondScore) {
      decision.secondWord = words[m];
      decision.secondScore = score;
    }
  }
  return decision;
}

}  // namespace words
