// A decision tree over states: every inner node asks the question that raises the likelihood most.
#pragma once

#include <string>
#include <vector>

#include "context_states.h"

namespace states {

struct Question {
  std::string text;
  std::vector<bool> answers;  ///< one a state
};

struct Node {
  std::vector<size_t> states;
  float frames = 0;
  double logLikelihood = 0;  ///< of its frames under one Gaussian
  int question = -1;         ///< -1: a leaf
  double gain = 0;           ///< in log likelihood, by asking it
  int yes = -1, no = -1;     ///< numbers of the nodes behind the answers
};

struct TreeOptions {
  int leaves = 16;      ///< at most
  float frames = 50;    ///< of a node at least
  double gain = 0.002;  ///< of a question at least, as a share of the likelihood that a tree of one leaf a state would gain
};

/** Node 0 is the root. Throws program::Fault when the root itself has too few frames. */
std::vector<Node> growTree(const std::vector<ContextState>& states, const std::vector<Question>& questions,
                           const TreeOptions& options);

/** The tree as text: questions with their gains, and the sounds that the leaves hold. */
std::string describe(const std::vector<Node>& tree, const std::vector<Question>& questions, const std::vector<ContextState>& states,
                     const std::vector<std::string>& phones);

}  // namespace states
