#include "context_states.h"

#include <map>
#include <tuple>

#include "common/fault.h"

namespace states {
namespace {

using program::check;
using Key = std::tuple<int, int, int, int>;

// Sums of x and of x^2 over the frames of a state.
struct Moments {
  float frames = 0;
  std::vector<float> first, second;
};

// The Gaussian of a state, and from it the pair of vectors that clusters are pooled from.
ContextState stateOf(const Key& key, const Moments& moments) {
  const auto width = static_cast<int32_t>(moments.first.size());
  const float frames = moments.frames;
  std::vector<float> mean(moments.first.size()), variance(mean.size()), floors(mean.size(), leastVariance);
  check(qorsUpdateMean_32f(moments.first.data(), mean.data(), width, frames), "qorsUpdateMean_32f");
  check(qorsUpdateVar_32f(moments.first.data(), moments.second.data(), floors.data(), variance.data(), width, frames, frames),
        "qorsUpdateVar_32f");
  const auto [left, phone, right, part] = key;
  ContextState state{left, phone, right, part, frames, std::vector<float>(mean.size()), std::vector<float>(mean.size())};
  check(qorsDcsClustLAccumulate_DirectVar_32f(mean.data(), variance.data(), state.sum.data(), state.squares.data(), width, frames),
        "qorsDcsClustLAccumulate_DirectVar_32f");
  return state;
}

}  // namespace

std::vector<ContextState> gather(const std::vector<Utterance>& utterances, int parts, int silenceNumber) {
  const auto width = static_cast<size_t>(utterances[0].features->columns);
  const std::vector<float> origin(width);
  std::map<Key, Moments> moments;
  for (const Utterance& utterance : utterances) {
    const size_t count = utterance.phones.size();
    for (size_t p = 0; p < count; ++p) {
      const int left = p > 0 ? utterance.phones[p - 1] : silenceNumber;
      const int right = p + 1 < count ? utterance.phones[p + 1] : silenceNumber;
      const int begin = utterance.begins[p], length = utterance.begins[p + 1] - begin;
      for (int t = 0; t < length; ++t) {
        Moments& m = moments[{left, utterance.phones[p], right, t * parts / length}];
        m.first.resize(width);
        m.second.resize(width);
        m.frames += 1;
        check(qorsMeanVarAcc_32f(utterance.features->row(begin + t), origin.data(), m.first.data(), m.second.data(),
                                 static_cast<int32_t>(width), 1),
              "qorsMeanVarAcc_32f");
      }
    }
  }
  std::vector<ContextState> states;
  for (const auto& [key, m] : moments) states.push_back(stateOf(key, m));
  return states;
}

}  // namespace states
