#include "recording.h"

#include <algorithm>
#include <fstream>
#include <limits>
#include <numeric>

#include "common/fault.h"

namespace senones {
namespace {

constexpr double longestSeconds = 600;

// Floats as they lie in memory, row after row.
class FloatFile {
 public:
  FloatFile(const std::filesystem::path& folder, const std::string& name) {
    if (folder.empty()) return;
    file_ = folder / name;
    out_.open(file_, std::ios::binary);
  }
  void write(const std::vector<float>& values) {
    if (file_.empty()) return;
    out_.write(reinterpret_cast<const char*>(values.data()), static_cast<std::streamsize>(values.size() * sizeof(float)));
    if (!out_.flush()) throw program::Fault(file_.string() + " cannot be written");
  }

 private:
  std::filesystem::path file_;
  std::ofstream out_;
};

// Frame by frame from the scores of all senones to what is kept.
class Keeper {
 public:
  Keeper(const AcousticModel& model, Recording& recording, int bestCount)
      : model_(model), recording_(recording), order_(model.senones.size()) {
    recording.bestCount = std::min(bestCount, static_cast<int>(model.senones.size()));
    const auto frames = static_cast<size_t>(recording.features.frames);
    recording.phones.reserve(frames * model.phones.size());
    recording.best.reserve(frames * static_cast<size_t>(recording.bestCount));
  }

  void keep(const std::vector<float>& scores) {
    std::vector<float> phones(model_.phones.size(), -std::numeric_limits<float>::infinity());
    for (size_t s = 0; s < scores.size(); ++s) {
      float& best = phones[static_cast<size_t>(model_.senones[s].phone)];
      best = std::max(best, scores[s]);
    }
    recording_.phones.insert(recording_.phones.end(), phones.begin(), phones.end());
    std::iota(order_.begin(), order_.end(), 0);
    const auto better = [&](int a, int b) { return scores[static_cast<size_t>(a)] > scores[static_cast<size_t>(b)]; };
    std::partial_sort(order_.begin(), order_.begin() + recording_.bestCount, order_.end(), better);
    for (int i = 0; i < recording_.bestCount; ++i) {
      const int senone = order_[static_cast<size_t>(i)];
      recording_.best.push_back({senone, scores[static_cast<size_t>(senone)]});
    }
  }

 private:
  const AcousticModel& model_;
  Recording& recording_;
  std::vector<int> order_;
};

}  // namespace

Recording scoreRecording(const std::filesystem::path& file, const std::string& name, Work& work, bool quiet) {
  Recording recording;
  recording.file = file;
  recording.name = name;
  recording.sound = program::readWav(file, longestSeconds);
  recording.features = work.frontEndTime.time([&] { return work.frontEnd.analyse(recording.sound); });
  const Features& features = recording.features;
  const AcousticModel& model = work.scorer.model();
  if (features.width != model.width) {
    throw program::Fault("feat.params: features of " + std::to_string(features.width) + " elements, the Gaussians have " +
                         std::to_string(model.width));
  }
  FloatFile(work.scoreFolder, name + "_features.f32").write(features.vectors);
  FloatFile all(work.scoreFolder, name + "_senones.f32");
  Keeper keeper(model, recording, work.bestCount);
  program::Progress progress("scoring " + name, static_cast<size_t>(features.frames), quiet);
  std::vector<float> scores(model.senones.size());
  for (int f = 0; f < features.frames; ++f) {
    const float* const x = features.vectors.data() + static_cast<size_t>(f) * static_cast<size_t>(features.width);
    work.gaussianTime.time([&] { work.scorer.rank(x); });
    work.mixtureTime.time([&] { work.scorer.combine(scores.data()); });
    ++work.framesScored;
    all.write(scores);
    keeper.keep(scores);
    progress.step();
  }
  return recording;
}

std::vector<Stretch> stretches(const AcousticModel& model, const Recording& recording, int least) {
  std::vector<Stretch> all;
  for (int f = 0; f < recording.features.frames; ++f) {
    const Best& best = recording.best[static_cast<size_t>(f) * static_cast<size_t>(recording.bestCount)];
    const int phone = model.senones[static_cast<size_t>(best.senone)].phone;
    if (!all.empty() && all.back().phone == phone) {
      ++all.back().frames;
    } else {
      all.push_back({phone, f, 1});
    }
  }
  std::vector<Stretch> kept;
  for (const Stretch& s : all) {
    if (s.frames < least) continue;
    if (!kept.empty() && kept.back().phone == s.phone && s.first - kept.back().end() < 2 * least) {
      kept.back().frames = s.end() - kept.back().first;
    } else {
      kept.push_back(s);
    }
  }
  return kept;
}

}  // namespace senones
