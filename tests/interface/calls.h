// What the description of the interface says of each function, as tables, and what its formulas stand on. The tables are made from
// the public header when the tests are built (scripts/interface/call_tables.py).
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "qorsr.h"

namespace interface_calls {

// What a name stands for in formulas: a number, a record (the numbers of the call that made it), several, or an array of counts.
struct Number {
  int64_t whole = 0;
  double real = 0;
  const std::vector<Number>* record = nullptr;
  std::vector<const std::vector<Number>*> records;
  std::span<const int32_t> counts;
};
using Numbers = std::vector<Number>;  // by the id of a name; the same ids for all functions
std::size_t nameCount();

inline int64_t divided(int64_t a, int64_t b) { return a / b - ((a % b != 0 && (a < 0) != (b < 0)) ? 1 : 0); }
inline int64_t ceilDivided(int64_t a, int64_t b) { return -divided(-a, b); }
inline int64_t exp2(int64_t n) { return n < 0 ? 0 : n > 40 ? int64_t{1} << 40 : int64_t{1} << n; }
inline int64_t pow2(int64_t n) { return n < 1 ? 1 : static_cast<int64_t>(std::bit_ceil(static_cast<uint64_t>(n))); }
inline int64_t log2(int64_t n) { return n < 1 ? 0 : std::bit_width(static_cast<uint64_t>(n)) - 1; }
inline int64_t sum(const Number& array) {
  int64_t total = 0;
  for (const int32_t count : array.counts) total += count;
  return total;
}
inline int64_t sum(const Number& array, std::size_t id) {
  int64_t total = 0;
  for (const Numbers* record : array.records) total += (*record)[id].whole;
  return total;
}

using Whole = int64_t (*)(const Numbers&);
using Real = double (*)(const Numbers&);
struct Bound {
  Whole whole = nullptr;  // null: no bound
  Real real = nullptr;    // the same for numbers that are not whole
};
struct Domain {
  Bound low, high;
  bool lowOpen = false, highOpen = false;
  std::span<const Bound> choices;
  Whole step = nullptr;       // multiples of it alone
  Bound usualLow, usualHigh;  // what is drawn
  bool any() const { return low.whole == nullptr && high.whole == nullptr && choices.empty(); }
};
// width elements; or rows of width elements, stride apart. With `each`, one such block for each element of that array.
struct Shape {
  Whole width = nullptr, rows = nullptr, stride = nullptr;
  int each = -1, eachName = -1;
};

enum class Element : uint8_t { k8u, k16s, k16u, k32s, k64s, k32f, k64f, kRecord };
enum class Kind : uint8_t { kValue, kArea, kRows, kRecord, kRecords, kMakes, kBlock, kFrees };
struct Parameter {
  const char* name;
  int id;
  Kind kind;
  Element element;
  bool read, written, mayBeNull;
  Shape shape;
  Domain domain;                // of the value, or of each element
  std::span<const int> makers;  // functions that make such a record
  int partner;                  // of kMakes: the function that frees; of kBlock: the function that tells the size
  bool exponent;                // a size is two to the power of this number
};
struct Named {  // a number with a name
  int id;
  Whole formula;
};
union Argument {
  int64_t whole;
  double real;
  void* pointer;
};
struct Function {
  const char* name;
  std::span<const Parameter> parameters;
  std::span<const Named> names;
  std::span<const int> order;  // indices of parameters, and -1 - index of names: each behind what it depends on
  QorStatus (*invoke)(const Argument*);
};

struct Status {  // a value of QorStatus, with its comment in the header
  const char* name;
  QorStatus value;
  const char* text;
};

std::span<const Function> functions();
std::span<const Status> statuses();
const std::vector<std::string>& mistakes();  // of the description; what they concern is not among the functions

}  // namespace interface_calls
