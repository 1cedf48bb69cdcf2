#include "training.h"

#include <limits>

#include "common/fault.h"
#include "estimation.h"

namespace words {
namespace {

constexpr float constantVariance = 1e-8F;
constexpr size_t fewestRecordings = 2;

// Variances of all training data, the measure of floors.
std::vector<float> pooledVariances(const std::vector<Lesson>& lessons, int width) {
  std::vector<const float*> rows;
  for (const Lesson& lesson : lessons) {
    for (const Matrix* utterance : lesson.utterances) {
      for (int t = 0; t < utterance->rows; ++t) rows.push_back(utterance->row(t));
    }
  }
  const Matrix all = stacked(rows, width);
  std::vector<float> means(static_cast<size_t>(width)), variances(means.size());
  program::check(qorsMeanVarColumn_32f_D2(all.values.data(), all.rows, width, means.data(), variances.data(), width),
                 "qorsMeanVarColumn_32f_D2");
  for (size_t c = 0; c < variances.size(); ++c) {
    if (!(variances[c] > constantVariance)) {
      throw program::Fault("feature " + std::to_string(c + 1) + " is the same in all recordings; no model can be trained on it");
    }
  }
  return variances;
}

void checkLessons(const std::vector<Lesson>& lessons, const TrainingOptions& options) {
  if (lessons.empty()) throw program::Fault("no word to train a model for");
  for (const Lesson& lesson : lessons) {
    const size_t count = lesson.utterances.size();
    if (count < fewestRecordings) {
      throw program::Fault("word '" + lesson.word + "' has " + (count == 0 ? "no recording" : "one recording") +
                           " to be trained on; a model needs at least " + std::to_string(fewestRecordings));
    }
    for (const Matrix* utterance : lesson.utterances) {
      if (WordModel::canPass(options.states, utterance->rows)) continue;
      throw program::Fault("a recording of word '" + lesson.word + "' has " + std::to_string(utterance->rows) +
                           " frames, too few for " + std::to_string(options.states) + " states");
    }
  }
}

class Trainer {
 public:
  Trainer(const std::vector<Lesson>& lessons, const TrainingOptions& options, const std::function<void(const Iteration&)>& told)
      : lessons_(lessons), options_(options), told_(told), width_(lessons.front().utterances.front()->columns) {
    floors_.weight = options.shareFloor;
    for (const float variance : pooledVariances(lessons, width_)) floors_.variances.push_back(options.varianceFloor * variance);
    for (const Lesson& lesson : lessons) {
      trained_.words.push_back(lesson.number);
      trained_.models.push_back(flatModel());
      for (const Matrix* utterance : lesson.utterances) frames_ += utterance->rows;
    }
  }

  WordModels run() {
    segmentEvenly();
    improve(
        "best path", [this] { estimatePaths(); }, [this] { return alignAll(); });
    expectAll();
    for (int gaussians = 1; gaussians <= options_.mixtures; ++gaussians) {
      if (gaussians > 1) {
        if (!splitAll()) break;
        expectAll();
      }
      improve(
          "all paths", [this] { maximiseAll(); }, [this] { return expectAll(); });
    }
    return trained_;
  }

 private:
  WordModel flatModel() const {
    Mixture mixture{Matrix(1, width_), Matrix(1, width_), {1.0F}, {}, {}};
    mixture.variances.values = floors_.variances;
    mixture.prepare();
    const auto states = static_cast<size_t>(options_.states);
    WordModel model;
    model.states.assign(states, mixture);
    model.arcWeights.assign(states, {0.6F, 0.3F, 0.1F});
    model.arcWeights.back() = {0.6F, 0.4F, 0.0F};
    return model;
  }

  // The states of every recording share its frames evenly.
  void segmentEvenly() {
    for (const Lesson& lesson : lessons_) {
      std::vector<Path>& paths = paths_.emplace_back();
      for (const Matrix* utterance : lesson.utterances) {
        Path& path = paths.emplace_back();
        for (int t = 0; t < utterance->rows; ++t) path.states.push_back(t * options_.states / utterance->rows);
      }
    }
  }

  void estimatePaths() {
    for (size_t w = 0; w < lessons_.size(); ++w) {
      estimateFromPaths(trained_.models[w], lessons_[w].utterances, paths_[w], floors_, warnings_);
    }
  }

  double alignAll() {
    double sum = 0;
    for (size_t w = 0; w < lessons_.size(); ++w) {
      for (size_t u = 0; u < lessons_[w].utterances.size(); ++u) {
        paths_[w][u] = bestPath(trained_.models[w], stateScores(trained_.models[w], *lessons_[w].utterances[u]));
        sum += paths_[w][u].logLikelihood;
      }
    }
    return sum / frames_;
  }

  double expectAll() {
    double sum = 0;
    sums_.clear();
    for (size_t w = 0; w < lessons_.size(); ++w) {
      sums_.emplace_back(trained_.models[w]);
      for (const Matrix* utterance : lessons_[w].utterances) expect(trained_.models[w], *utterance, sums_.back());
      sum += sums_.back().logLikelihood;
    }
    return sum / frames_;
  }

  void maximiseAll() {
    for (size_t w = 0; w < lessons_.size(); ++w) maximise(trained_.models[w], sums_[w], floors_, warnings_);
  }

  bool splitAll() {
    bool any = false;
    for (size_t w = 0; w < lessons_.size(); ++w) {
      for (size_t s = 0; s < sums_[w].states.size(); ++s) {
        any |= split(trained_.models[w].states[s], sums_[w].states[s].counts, options_.splitFactor, options_.framesPerGaussian);
      }
    }
    return any;
  }

  // Estimates anew and measures, until that gains little.
  template <class Estimate, class Measure>
  void improve(const char* stage, Estimate estimate, Measure measure) {
    double before = -std::numeric_limits<double>::infinity();
    for (int i = 0; i < options_.iterations; ++i) {
      warnings_ = {};
      estimate();
      const double now = measure();
      told_({stage, countGaussians(trained_), now, warnings_.floored, warnings_.starved});
      if (now - before < options_.leastGain) return;
      before = now;
    }
  }

  const std::vector<Lesson>& lessons_;
  const TrainingOptions& options_;
  const std::function<void(const Iteration&)>& told_;
  int width_;
  double frames_ = 0;
  Floors floors_;
  WordModels trained_;
  std::vector<std::vector<Path>> paths_;  // of each word's recordings
  std::vector<WordSums> sums_;            // of each word
  Warnings warnings_;
};

}  // namespace

int countGaussians(const WordModels& models) {
  int count = 0;
  for (const WordModel& model : models.models) {
    for (const Mixture& state : model.states) count += state.count();
  }
  return count;
}

WordModels train(const std::vector<Lesson>& lessons, const TrainingOptions& options,
                 const std::function<void(const Iteration&)>& told) {
  checkLessons(lessons, options);
  return Trainer(lessons, options, told).run();
}

}  // namespace words
