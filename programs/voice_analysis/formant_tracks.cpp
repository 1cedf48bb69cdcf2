#include <algorithm>
#include <cmath>

#include "common/progress.h"
#include "formants.h"

namespace voice {
namespace {

constexpr float awayCost = 1.0F;     // of a kilohertz between a formant and where it usually lies
constexpr float widthCost = 1.0F;    // of a bandwidth as large as the frequency
constexpr float jumpCost = 2.0F;     // of an octave from frame to frame
constexpr float skipCost = 1.0F;     // of a narrow resonance that lies between formants and is none
constexpr float missingCost = 1.5F;  // of a formant that no resonance is taken for
constexpr float narrow = 400;
constexpr size_t mostResonances = 8;
constexpr float highestUsual = 5500;

// Which resonance is taken for each formant; -1: none.
using Choice = std::array<int, mostFormants>;

// All choices in rising order that leave out as few formants as can be.
void choose(int formants, int resonances, int formant, int next, int missing, Choice& choice, std::vector<Choice>& all) {
  if (formant == formants) {
    all.push_back(choice);
    return;
  }
  const auto place = static_cast<size_t>(formant);
  const int left = formants - formant;
  for (int r = next; r < resonances; ++r) {
    if (missing == 0 && resonances - r < left) break;
    choice[place] = r;
    choose(formants, resonances, formant + 1, r + 1, missing, choice, all);
  }
  if (missing > 0) {
    choice[place] = -1;
    choose(formants, resonances, formant + 1, next, missing - 1, choice, all);
  }
}

class Tracker {
 public:
  Tracker(int formants, double ceilingHz) : formants_(formants) {
    choices_.resize(mostResonances + 1);
    for (int n = 0; n <= static_cast<int>(mostResonances); ++n) {
      Choice choice;
      choice.fill(-1);
      choose(formants, n, 0, 0, std::max(0, formants - n), choice, choices_[static_cast<size_t>(n)]);
    }
    const float scale = std::min(1.0F, static_cast<float>(std::max(ceilingHz, 4500.0)) / highestUsual);
    for (int k = 0; k < formants; ++k) usual_[static_cast<size_t>(k)] = scale * (550 + 1100 * static_cast<float>(k));
  }

  std::vector<Formants> track(const std::vector<std::vector<Resonance>>& frames) {
    std::vector<std::vector<int>> from(frames.size());
    std::vector<float> best, now;
    for (size_t f = 0; f < frames.size(); ++f) {
      program::stopIfInterrupted();
      const std::vector<Choice>& choices = choicesOf(frames[f]);
      if (f > 0) measureJumps(frames[f - 1], frames[f]);
      now.clear();
      for (const Choice& choice : choices) {
        float least = f == 0 ? 0 : 1e30F;
        int origin = 0;
        for (size_t b = 0; b < best.size(); ++b) {
          const float cost = best[b] + jump(choicesOf(frames[f - 1])[b], choice);
          if (cost < least) least = cost, origin = static_cast<int>(b);
        }
        now.push_back(least + local(choice, frames[f]));
        from[f].push_back(origin);
      }
      best.swap(now);
    }
    std::vector<Formants> result(frames.size());
    auto at = best.empty() ? 0 : std::min_element(best.begin(), best.end()) - best.begin();
    for (size_t f = frames.size(); f-- > 0;) {
      const Choice& choice = choicesOf(frames[f])[static_cast<size_t>(at)];
      for (size_t k = 0; k < static_cast<size_t>(formants_); ++k) {
        if (choice[k] >= 0) result[f][k] = frames[f][static_cast<size_t>(choice[k])];
      }
      at = from[f][static_cast<size_t>(at)];
    }
    return result;
  }

 private:
  const std::vector<Choice>& choicesOf(const std::vector<Resonance>& frame) const {
    return choices_[std::min(mostResonances, frame.size())];
  }
  float local(const Choice& choice, const std::vector<Resonance>& frame) const {
    float cost = 0;
    for (size_t k = 0; k < static_cast<size_t>(formants_); ++k) {
      if (choice[k] < 0) {
        cost += missingCost;
        continue;
      }
      const Resonance& r = frame[static_cast<size_t>(choice[k])];
      cost += awayCost * std::fabs(r.hertz - usual_[k]) / 1000 + widthCost * r.bandwidth / r.hertz;
    }
    int next = 0;
    for (size_t k = 0; k < static_cast<size_t>(formants_); ++k) {
      for (; next < choice[k]; ++next) {
        cost += skipCost * std::max(0.0F, 1 - frame[static_cast<size_t>(next)].bandwidth / narrow);
      }
      if (choice[k] >= 0) next = choice[k] + 1;
    }
    return cost;
  }
  void measureJumps(const std::vector<Resonance>& before, const std::vector<Resonance>& frame) {
    std::array<float, mostResonances> old;
    for (size_t b = 0; b < std::min(mostResonances, before.size()); ++b) old[b] = std::log2(before[b].hertz);
    for (size_t r = 0; r < std::min(mostResonances, frame.size()); ++r) {
      const float pitch = std::log2(frame[r].hertz);
      for (size_t b = 0; b < std::min(mostResonances, before.size()); ++b) jumps_[b][r] = jumpCost * std::fabs(pitch - old[b]);
    }
  }
  float jump(const Choice& before, const Choice& choice) const {
    float cost = 0;
    for (size_t k = 0; k < static_cast<size_t>(formants_); ++k) {
      if (before[k] >= 0 && choice[k] >= 0) cost += jumps_[static_cast<size_t>(before[k])][static_cast<size_t>(choice[k])];
    }
    return cost;
  }

  int formants_;
  std::vector<std::vector<Choice>> choices_;  // by the number of resonances
  std::array<float, mostFormants> usual_{};
  std::array<std::array<float, mostResonances>, mostResonances> jumps_{};
};

}  // namespace

std::vector<Formants> trackFormants(const std::vector<std::vector<Resonance>>& frames, int formants, double ceilingHz) {
  return Tracker(formants, ceilingHz).track(frames);
}

}  // namespace voice
