// One call of a function, prepared as its description says: numbers within their values, areas of exactly the sizes, records made.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "interface/arena.h"
#include "interface/calls.h"
#include "kit/random.h"

namespace interface_calls {

// How a call is drawn. The same values draw the same call, but that what is only written holds other rubbish beforehand.
struct Draw {
  uint64_t stream;
  kit::Random::Kind contents;
  Place place;
  bool large;   // one number goes to some hundreds
  int rubbish;  // 0 or 1
};

class Instance;

// An area of the caller: its rows, in one stretch of memory.
class LaidArea {
 public:
  LaidArea(const Parameter& parameter, const Numbers& numbers, const Draw& draw, kit::Random& random);
  // A block of memory without a shape: of a record, or for a handle.
  LaidArea(const Parameter& parameter, std::size_t bytes, std::size_t alignment, const Draw& draw, kit::Random& random);
  LaidArea(LaidArea&&) = default;
  ~LaidArea();

  void* argument() const { return pointers_ ? static_cast<void*>(pointers_->base_) : base_; }
  const Parameter& parameter() const { return *parameter_; }
  std::span<const int32_t> counts() const;
  std::vector<std::byte> contents() const;  // of the rows, one after the other

  void remember() { before_.assign(base_, base_ + bytes_); }
  // Empty, or what was touched that may not be. Without `mayWrite` nothing may be.
  std::string touched(bool mayWrite) const;
  void digest() const;

 private:
  struct Row {
    std::size_t offset, bytes;
  };
  void lay(std::size_t alignment, const Draw& draw);
  void layRows(const Numbers& numbers, kit::Random& random);
  void fill(const Numbers& numbers, const Draw& draw, kit::Random& random);
  void fillWithRubbish(int rubbish);

  const Parameter* parameter_;
  std::size_t bytes_ = 0, elementBytes_ = 1;
  std::vector<Row> rows_;
  std::unique_ptr<Arena> arena_;
  std::byte* base_ = nullptr;
  std::vector<std::byte> before_;
  std::unique_ptr<LaidArea> pointers_;  // the row pointers, if the parameter is an array of them
};

// A record, made by one of the functions that make it; released when it goes, unless it was freed.
class MadeRecord {
 public:
  MadeRecord(const Parameter& parameter, const Draw& draw, kit::Random& random);
  ~MadeRecord();
  void* record() const { return record_; }
  const Numbers& numbers() const;
  void freed() { record_ = nullptr; }
  bool blockTouched() const;  // the record's memory, or that of another record of the caller, has changed

 private:
  std::unique_ptr<Instance> maker_;
  void* record_ = nullptr;
  int frees_ = -1;
};

class Instance {
 public:
  Instance(const Function& function, const Draw& draw, int depth = 0);
  ~Instance();

  const Function& function() const { return *function_; }
  const Numbers& numbers() const { return numbers_; }
  std::vector<Argument>& arguments() { return arguments_; }
  const std::vector<LaidArea>& areas() const { return areas_; }
  std::string text() const;  // the arguments, for people

  // Makes the call. A record that it made is released, one that it freed is forgotten, unless kept.
  QorStatus call();
  // Empty, or what was touched that may not be. Without `mayWrite` nothing may be.
  std::string touched(bool mayWrite) const;

 private:
  friend class MadeRecord;
  bool drawAll(const Draw& draw, kit::Random& random);
  bool draw(const Parameter& parameter, const Draw& draw, kit::Random& random);
  bool drawValue(const Parameter& parameter, const Draw& draw, kit::Random& random);
  std::optional<std::size_t> blockBytes(const Function& sizer) const;

  const Function* function_;
  Numbers numbers_;
  std::vector<Argument> arguments_;
  std::vector<LaidArea> areas_;
  std::vector<std::unique_ptr<MadeRecord>> records_;  // by parameter; null where it is none
  std::vector<std::unique_ptr<MadeRecord>> listed_;   // of arrays of records
  std::vector<std::byte> coreBefore_;
  int largest_ = -1;  // the name of the number that may be large
};

// Values on either side of those that a number may have; none where it may have any.
std::vector<Argument> valuesOutside(const Parameter& parameter, const Numbers& numbers);

// What each kind of element is in C++: calls body(T{}).
template <class Body>
auto withElement(Element element, Body body) {
  switch (element) {
    case Element::k8u:
      return body(uint8_t{});
    case Element::k16s:
      return body(int16_t{});
    case Element::k16u:
      return body(uint16_t{});
    case Element::k32s:
      return body(int32_t{});
    case Element::k64s:
      return body(int64_t{});
    case Element::k32f:
      return body(float{});
    default:
      return body(double{});
  }
}

}  // namespace interface_calls
