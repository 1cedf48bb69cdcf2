#include "questions.h"

#include <functional>

namespace states {
namespace {

struct Place {
  const char* words;
  int ContextState::*phone;
};
constexpr Place places[] = {{"sound", &ContextState::phone}, {"in front", &ContextState::left}, {"behind", &ContextState::right}};

class Asker {
 public:
  explicit Asker(const std::vector<ContextState>& states) : states_(states) {}

  // A question that all states answer alike is not worth asking.
  void add(const std::string& text, const std::function<bool(const ContextState&)>& holds) {
    std::vector<bool> answers;
    bool anyYes = false, anyNo = false;
    for (const ContextState& state : states_) {
      answers.push_back(holds(state));
      (answers.back() ? anyYes : anyNo) = true;
    }
    if (anyYes && anyNo) questions_.push_back({text, std::move(answers)});
  }
  std::vector<Question> all() { return std::move(questions_); }

 private:
  const std::vector<ContextState>& states_;
  std::vector<Question> questions_;
};

}  // namespace

std::vector<Question> askable(const std::vector<ContextState>& states, const std::vector<PhoneClass>& classes,
                              const std::vector<std::string>& phones, int parts) {
  Asker asker(states);
  for (const auto& [words, phone] : places) {
    for (const PhoneClass& c : classes) {
      asker.add(std::string(words) + ": " + c.name, [&, member = phone](const ContextState& state) {
        return c.phones.count(phones[static_cast<size_t>(state.*member)]) > 0;
      });
    }
    for (size_t p = 0; p < phones.size(); ++p) {
      asker.add(std::string(words) + ": " + (phones[p] == silence ? "silence" : "[" + phones[p] + "]"),
                [&, member = phone](const ContextState& state) { return state.*member == static_cast<int>(p); });
    }
  }
  for (int part = 0; part < parts; ++part) {
    asker.add("part: " + std::to_string(part + 1) + " of " + std::to_string(parts),
              [&](const ContextState& state) { return state.part == part; });
  }
  return asker.all();
}

}  // namespace states
