#include "interface/instance.h"

#include <cmath>
#include <cstdio>

#include "interface/values.h"
#include "kit/core.h"

namespace interface_calls {
namespace {

const Function& functionAt(int index) { return functions()[static_cast<std::size_t>(index)]; }

}  // namespace

MadeRecord::MadeRecord(const Parameter& parameter, const Draw& draw, kit::Random& random) {
  const auto which = static_cast<std::size_t>(random.integer(0, static_cast<int64_t>(parameter.makers.size()) - 1));
  const Function& maker = functionAt(parameter.makers[which]);
  for (int attempt = 0; attempt < 50; ++attempt) {  // contents may make a constructor fail
    maker_ = std::make_unique<Instance>(maker, Draw{random.bits(), draw.contents, draw.place, false, draw.rubbish}, 1);
    if (maker.invoke(maker_->arguments_.data()) < 0) continue;
    for (std::size_t i = 0; i < maker.parameters.size(); ++i) {
      const Parameter& made = maker.parameters[i];
      if (made.kind != Kind::kMakes && made.kind != Kind::kBlock) continue;
      record_ = maker_->arguments_[i].pointer;
      if (made.kind == Kind::kMakes) std::memcpy(&record_, record_, sizeof(record_));
      if (made.kind == Kind::kMakes) frees_ = made.partner;
    }
    for (LaidArea& area : maker_->areas_) area.remember();
    return;
  }
  std::fprintf(stderr, "%s made no record in 50 attempts\n", maker.name);
  std::abort();
}

MadeRecord::~MadeRecord() {
  if (record_ == nullptr || frees_ < 0) return;
  const Argument argument{.pointer = record_};
  functionAt(frees_).invoke(&argument);
}

const Numbers& MadeRecord::numbers() const { return maker_->numbers_; }
bool MadeRecord::blockTouched() const {
  return std::any_of(maker_->areas_.begin(), maker_->areas_.end(),
                     [](const LaidArea& area) { return !area.touched(false).empty(); });
}

Instance::Instance(const Function& function, const Draw& draw, int depth) : function_(&function) {
  kit::Random random(draw.stream);
  if (draw.large && depth == 0 && !function.parameters.empty()) {
    const auto i = static_cast<std::size_t>(random.integer(0, static_cast<int64_t>(function.parameters.size()) - 1));
    largest_ = function.parameters[i].id;
  }
  int attempts = 0;
  while (!drawAll(draw, random)) {
    if (++attempts == 50) {
      std::fprintf(stderr, "no numbers were found for %s\n", text().c_str());
      std::abort();
    }
  }
}

// False if a number has no value, as what was drawn for others leaves none, or a block no size: one function may refuse what the other
// accepts.
bool Instance::drawAll(const Draw& draw, kit::Random& random) {
  numbers_.assign(nameCount(), {});
  arguments_.assign(function_->parameters.size(), {});
  records_.clear();
  listed_.clear();
  records_.resize(function_->parameters.size());
  areas_.clear();
  areas_.reserve(function_->parameters.size());
  for (const int item : function_->order) {
    if (item >= 0) {
      if (!this->draw(function_->parameters[static_cast<std::size_t>(item)], draw, random)) return false;
    } else {
      const Named& named = function_->names[static_cast<std::size_t>(-1 - item)];
      Number& number = numbers_[static_cast<std::size_t>(named.id)];
      number.whole = named.formula(numbers_);
      number.real = static_cast<double>(number.whole);
    }
  }
  return true;
}

Instance::~Instance() = default;

bool Instance::draw(const Parameter& parameter, const Draw& draw, kit::Random& random) {
  const auto index = static_cast<std::size_t>(&parameter - function_->parameters.data());
  Number& number = numbers_[static_cast<std::size_t>(parameter.id)];
  switch (parameter.kind) {
    case Kind::kValue:
      return drawValue(parameter, draw, random);
    case Kind::kArea:
    case Kind::kRows:
      areas_.emplace_back(parameter, numbers_, draw, random);
      number.counts = areas_.back().counts();
      break;
    case Kind::kRecords: {
      std::vector<void*> pointers;
      for (int64_t i = 0; i < parameter.shape.width(numbers_); ++i) {
        listed_.push_back(std::make_unique<MadeRecord>(parameter, draw, random));
        number.records.push_back(&listed_.back()->numbers());
        pointers.push_back(listed_.back()->record());
      }
      areas_.emplace_back(parameter, pointers.size() * sizeof(void*), sizeof(void*), draw, random);
      std::memcpy(areas_.back().argument(), pointers.data(), pointers.size() * sizeof(void*));
      areas_.back().remember();
      break;
    }
    case Kind::kMakes:
      areas_.emplace_back(parameter, sizeof(void*), sizeof(void*), draw, random);
      break;
    case Kind::kBlock:
      if (const auto bytes = blockBytes(functionAt(parameter.partner))) {
        areas_.emplace_back(parameter, *bytes, sizeof(float), draw, random);
        break;
      }
      return false;
    case Kind::kRecord:
    case Kind::kFrees:
      records_[index] = std::make_unique<MadeRecord>(parameter, draw, random);
      number.record = &records_[index]->numbers();
      arguments_[index].pointer = records_[index]->record();
      return true;
  }
  arguments_[index].pointer = areas_.back().argument();
  return true;
}

bool Instance::drawValue(const Parameter& parameter, const Draw& draw, kit::Random& random) {
  const auto index = static_cast<std::size_t>(&parameter - function_->parameters.data());
  Number& number = numbers_[static_cast<std::size_t>(parameter.id)];
  const int64_t span = parameter.exponent ? 9 : parameter.id == largest_ ? 300 : draw.large || random.integer(0, 1) == 0 ? 9 : 40;
  return withElement(parameter.element, [&](auto zero) {
    using T = decltype(zero);
    const Domain& domain = parameter.domain;
    if (const auto [low, high] = range<T>(domain, numbers_); low > high) return false;
    const T value = !domain.choices.empty() ? drawElement<T>(domain, numbers_, draw, random)
                    : domain.any()          ? drawAny<T>(draw, random)
                                            : drawWithin<T>(domain, numbers_, span, random);
    number.real = static_cast<double>(value);
    if constexpr (std::is_floating_point_v<T>) {
      arguments_[index].real = static_cast<double>(value);
      number.whole = std::isnan(number.real) ? 0 : static_cast<int64_t>(std::ceil(std::clamp(number.real, -1e15, 1e15)));
    } else {
      number.whole = arguments_[index].whole = value;
    }
    return true;
  });
}

std::optional<std::size_t> Instance::blockBytes(const Function& sizer) const {
  std::vector<Argument> arguments(sizer.parameters.size());
  int32_t size = 0, more[8] = {};  // the size is told first
  int32_t* next = &size;
  for (std::size_t i = 0; i < sizer.parameters.size(); ++i) {
    const Parameter& p = sizer.parameters[i];
    const Number& number = numbers_[static_cast<std::size_t>(p.id)];
    if (p.kind != Kind::kValue) {
      arguments[i].pointer = next;
      next = next == &size ? more : next + 1;
    } else if (p.element == Element::k32f || p.element == Element::k64f) {
      arguments[i].real = number.real;
    } else {
      arguments[i].whole = number.whole;
    }
  }
  if (sizer.invoke(arguments.data()) < 0) return std::nullopt;
  return static_cast<std::size_t>(size);
}

std::string Instance::text() const {
  std::string all = std::string(function_->name) + "(";
  for (std::size_t i = 0; i < arguments_.size(); ++i) {
    const Parameter& p = function_->parameters[i];
    all += std::string(i == 0 ? "" : ", ") + p.name;
    if (p.kind != Kind::kValue) {
      if (arguments_[i].pointer == nullptr) all += " = null";
      continue;
    }
    char number[40];
    if (p.element == Element::k32f || p.element == Element::k64f) {
      std::snprintf(number, sizeof(number), " = %.9g", arguments_[i].real);
    } else {
      std::snprintf(number, sizeof(number), " = %lld", static_cast<long long>(arguments_[i].whole));
    }
    all += number;
  }
  return all + ")";
}

QorStatus Instance::call() {
  coreBefore_ = kit::Core::contents();
  const QorStatus status = function_->invoke(arguments_.data());
  if (status < 0) return status;
  for (std::size_t i = 0; i < arguments_.size(); ++i) {
    const Parameter& p = function_->parameters[i];
    if (arguments_[i].pointer == nullptr) continue;
    if (p.kind == Kind::kFrees) {
      records_[i]->freed();
      coreBefore_ = kit::Core::contents();
    } else if (p.kind == Kind::kMakes) {
      Argument made{};
      std::memcpy(&made.pointer, arguments_[i].pointer, sizeof(void*));
      functionAt(p.partner).invoke(&made);
    }
  }
  return status;
}

std::string Instance::touched(bool mayWrite) const {
  for (const LaidArea& area : areas_) {
    if (std::string what = area.touched(mayWrite); !what.empty()) return what;
  }
  bool recordsMayChange = false;
  for (std::size_t i = 0; i < records_.size(); ++i) {
    if (!records_[i]) continue;
    if (mayWrite && function_->parameters[i].written) {
      recordsMayChange = true;
    } else if (function_->parameters[i].kind != Kind::kFrees && records_[i]->blockTouched()) {
      return std::string(function_->parameters[i].name) + ": the record was changed";
    }
  }
  for (const auto& record : listed_) {
    if (record->blockTouched()) return "a record of an array was changed";
  }
  if (!recordsMayChange && kit::Core::contents() != coreBefore_) return "a record in the library's memory was changed";
  return {};
}

std::vector<Argument> valuesOutside(const Parameter& parameter, const Numbers& numbers) {
  std::vector<Argument> outside;
  const Domain& domain = parameter.domain;
  if (parameter.kind != Kind::kValue || domain.any()) return outside;
  withElement(parameter.element, [&](auto zero) {
    using T = decltype(zero);
    using Limits = std::numeric_limits<T>;
    const auto add = [&](T value) {
      if constexpr (std::is_floating_point_v<T>) {
        outside.push_back({.real = static_cast<double>(value)});
      } else {
        outside.push_back({.whole = value});
      }
    };
    auto [low, high] = range<T>(domain, numbers);
    bool below = domain.low.whole != nullptr, above = domain.high.whole != nullptr;
    if (!domain.choices.empty()) {
      low = Limits::max();
      high = Limits::lowest();
      for (const Bound& c : domain.choices) {
        low = std::min(low, choice<T>(c, numbers));
        high = std::max(high, choice<T>(c, numbers));
      }
      below = above = true;
    }
    if constexpr (!std::is_floating_point_v<T>) {
      if (domain.step != nullptr && domain.step(numbers) > 1) add(neighbour(low, true));
    }
    if (below && low > Limits::lowest()) {
      add(Limits::lowest());
      add(neighbour(low, false));
    }
    if (above && high < Limits::max()) {
      add(Limits::max());
      add(neighbour(high, true));
    }
  });
  return outside;
}

}  // namespace interface_calls
