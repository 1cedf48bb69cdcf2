// The questions that a tree may ask.
#pragma once

#include <string>
#include <vector>

#include "pronunciation.h"
#include "tree.h"

namespace states {

/** Whether the sound itself, the one in front of it, or the one behind it is of a class, or is one phone; and which part of the
 * sound a state is. phones: the names behind the numbers, silence among them. */
std::vector<Question> askable(const std::vector<ContextState>& states, const std::vector<PhoneClass>& classes,
                              const std::vector<std::string>& phones, int parts);

}  // namespace states
