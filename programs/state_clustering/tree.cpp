#include "tree.h"

#include <algorithm>
#include <limits>
#include <set>

#include "common/fault.h"
#include "common/progress.h"
#include "common/text.h"

namespace states {
namespace {

using program::check;
using program::fixed;

constexpr double unlikely = -std::numeric_limits<double>::infinity();

class Grower {
 public:
  Grower(const std::vector<ContextState>& states, const std::vector<Question>& questions, const TreeOptions& options)
      : states_(states), questions_(questions), options_(options) {
    std::vector<size_t> all(states.size());
    for (size_t i = 0; i < all.size(); ++i) all[i] = i;
    nodes_.push_back(pooled(all));
    if (nodes_[0].frames < options.frames) throw program::Fault("too few frames for a tree");
    double separate = 0;
    for (size_t i = 0; i < states.size(); ++i) separate += pooled({i}).logLikelihood;
    leastGain_ = options.gain * (separate - nodes_[0].logLikelihood);
  }

  // The leaf and question of the greatest gain, until none is worth it.
  std::vector<Node> grow() {
    std::vector<Split> splits = {bestSplit(nodes_[0])};
    for (int leaves = 1; leaves < options_.leaves; ++leaves) {
      const auto best = std::max_element(splits.begin(), splits.end(), [](auto& a, auto& b) { return a.gain < b.gain; });
      if (best->question < 0 || best->gain < leastGain_) break;
      const auto at = static_cast<size_t>(best - splits.begin());
      Node& node = nodes_[at];
      node.question = best->question;
      node.gain = best->gain;
      node.yes = static_cast<int>(nodes_.size());
      node.no = node.yes + 1;
      const Node yes = best->yes, no = best->no;
      *best = Split();
      for (const Node& child : {yes, no}) {
        nodes_.push_back(child);
        splits.push_back(bestSplit(child));
      }
    }
    return nodes_;
  }

 private:
  struct Split {
    int question = -1;
    double gain = unlikely;
    Node yes, no;
  };

  // The states as one Gaussian. Statistics without a likelihood (a variance of zero) make the node unlikely.
  Node pooled(const std::vector<size_t>& members) const {
    Node node{members};
    std::vector<const float*> sums, squares;
    for (const size_t i : members) {
      sums.push_back(states_[i].sum.data());
      squares.push_back(states_[i].squares.data());
      node.frames += states_[i].occupancy;
    }
    const auto count = static_cast<int32_t>(members.size()), width = static_cast<int32_t>(states_[0].sum.size());
    std::vector<float> sum(states_[0].sum.size()), square(sum.size());
    check(qorsAddAllRowSum_32f_D2L(sums.data(), count, sum.data(), width), "qorsAddAllRowSum_32f_D2L");
    check(qorsAddAllRowSum_32f_D2L(squares.data(), count, square.data(), width), "qorsAddAllRowSum_32f_D2L");
    const QorStatus status = check(qorsDcsClustLCompute_32f64f(sum.data(), square.data(), width, &node.logLikelihood, node.frames),
                                   "qorsDcsClustLCompute_32f64f");
    if (status != qorStatusOk) node.logLikelihood = unlikely;
    return node;
  }

  Split bestSplit(const Node& node) const {
    Split best;
    for (size_t q = 0; q < questions_.size(); ++q) {
      program::stopIfInterrupted();
      std::vector<size_t> yes, no;
      for (const size_t i : node.states) (questions_[q].answers[i] ? yes : no).push_back(i);
      if (framesOf(yes) < options_.frames || framesOf(no) < options_.frames) continue;
      Node a = pooled(yes), b = pooled(no);
      const double gain = a.logLikelihood + b.logLikelihood - node.logLikelihood;
      if (gain > best.gain) best = {static_cast<int>(q), gain, std::move(a), std::move(b)};
    }
    return best;
  }

  float framesOf(const std::vector<size_t>& members) const {
    float frames = 0;
    for (const size_t i : members) frames += states_[i].occupancy;
    return frames;
  }

  const std::vector<ContextState>& states_;
  const std::vector<Question>& questions_;
  TreeOptions options_;
  double leastGain_ = 0;
  std::vector<Node> nodes_;
};

class Describer {
 public:
  Describer(const std::vector<Node>& tree, const std::vector<Question>& questions, const std::vector<ContextState>& states,
            const std::vector<std::string>& phones)
      : tree_(tree), questions_(questions), states_(states), phones_(phones) {}

  std::string text() {
    add(0, "", "");
    return text_;
  }

 private:
  void add(int number, const std::string& lead, const std::string& below) {
    const Node& node = tree_[static_cast<size_t>(number)];
    if (node.question < 0) {
      text_ += lead + fixed(static_cast<double>(node.frames), 0) + " frames: " + sounds(node) + "\n";
      return;
    }
    text_ += lead + questions_[static_cast<size_t>(node.question)].text + "?   gain " + fixed(node.gain, 0) + ", " +
             fixed(node.gain / static_cast<double>(node.frames), 2) + " a frame of " + fixed(static_cast<double>(node.frames), 0) +
             "\n";
    add(node.yes, below + "|- yes  ", below + "|       ");
    add(node.no, below + "`- no   ", below + "        ");
  }

  // The phones of a leaf, each once.
  std::string sounds(const Node& node) const {
    std::set<int> numbers;
    for (const size_t i : node.states) numbers.insert(states_[i].phone);
    std::string list;
    for (const int phone : numbers) list += (list.empty() ? "" : " ") + phones_[static_cast<size_t>(phone)];
    return list + " (" + std::to_string(node.states.size()) + (node.states.size() == 1 ? " state)" : " states)");
  }

  const std::vector<Node>& tree_;
  const std::vector<Question>& questions_;
  const std::vector<ContextState>& states_;
  const std::vector<std::string>& phones_;
  std::string text_;
};

}  // namespace

std::vector<Node> growTree(const std::vector<ContextState>& states, const std::vector<Question>& questions,
                           const TreeOptions& options) {
  return Grower(states, questions, options).grow();
}

std::string describe(const std::vector<Node>& tree, const std::vector<Question>& questions, const std::vector<ContextState>& states,
                     const std::vector<std::string>& phones) {
  return Describer(tree, questions, states, phones).text();
}

}  // namespace states
