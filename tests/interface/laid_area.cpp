#include <algorithm>
#include <cstddef>
#include <cstring>

#include "interface/instance.h"
#include "interface/values.h"
#include "kit/compare.h"

namespace interface_calls {
namespace {

std::size_t bytesOf(Element element) {
  return withElement(element, [](auto zero) { return sizeof(zero); });
}
std::size_t size(int64_t n) { return n < 0 ? 0 : static_cast<std::size_t>(n); }

}  // namespace

LaidArea::LaidArea(const Parameter& parameter, const Numbers& numbers, const Draw& draw, kit::Random& random)
    : parameter_(&parameter), elementBytes_(bytesOf(parameter.element)) {
  layRows(numbers, random);
  lay(elementBytes_, draw);
  if (parameter.kind == Kind::kRows) {
    pointers_ = std::unique_ptr<LaidArea>(new LaidArea(parameter, rows_.size() * sizeof(void*), sizeof(void*), draw, random));
    for (std::size_t r = 0; r < rows_.size(); ++r) {
      std::byte* const row = base_ + rows_[r].offset;
      std::memcpy(pointers_->base_ + r * sizeof(void*), &row, sizeof(void*));
    }
    pointers_->remember();
  }
  fill(numbers, draw, random);
  remember();
}

LaidArea::LaidArea(const Parameter& parameter, std::size_t bytes, std::size_t alignment, const Draw& draw, kit::Random&)
    : parameter_(&parameter), bytes_(bytes) {
  rows_.push_back({0, bytes});
  lay(alignment, draw);
  fillWithRubbish(draw.rubbish);
  remember();
}

LaidArea::~LaidArea() {
  if (arena_) Arenas::giveBack(std::move(arena_));
}

// Where the rows lie in the stretch. Row pointers lead to rows in any order, with gaps between them.
void LaidArea::layRows(const Numbers& numbers, kit::Random& random) {
  const Shape& shape = parameter_->shape;
  std::vector<int32_t> each = {0};
  if (shape.each >= 0) {
    const auto counts = numbers[static_cast<std::size_t>(shape.each)].counts;
    each.assign(counts.begin(), counts.end());
  }
  Numbers inner = numbers;
  for (const int32_t n : each) {
    if (shape.eachName >= 0) inner[static_cast<std::size_t>(shape.eachName)].whole = n;
    const std::size_t width = size(shape.width(inner)) * elementBytes_;
    const int64_t rows = shape.rows != nullptr ? shape.rows(inner) : 1;
    const std::size_t pitch = shape.stride != nullptr ? size(shape.stride(inner)) * elementBytes_ : width;
    for (int64_t r = 0; r < rows; ++r) {
      rows_.push_back({bytes_, width});
      bytes_ += r + 1 < rows ? pitch : width;
    }
  }
  if (parameter_->kind != Kind::kRows) return;
  std::vector<std::size_t> order(rows_.size());
  for (std::size_t r = 0; r < order.size(); ++r) order[r] = r;
  for (std::size_t r = order.size(); r > 1; --r)
    std::swap(order[r - 1], order[size(random.integer(0, static_cast<int64_t>(r) - 1))]);
  bytes_ = 0;
  for (std::size_t i = 0; i < order.size(); ++i) {
    rows_[order[i]].offset = bytes_;
    bytes_ += rows_[order[i]].bytes + (i + 1 < order.size() ? elementBytes_ * size(random.integer(0, 9)) : 0);
  }
}

void LaidArea::lay(std::size_t alignment, const Draw& draw) {
  arena_ = Arenas::take(bytes_);
  base_ = arena_->lay(bytes_, draw.place, alignment);
}

void LaidArea::fillWithRubbish(int rubbish) {
  kit::Random random(static_cast<uint64_t>(rubbish) + 77);
  for (std::size_t i = 0; i < bytes_; ++i) base_[i] = static_cast<std::byte>(random.bits());
}

void LaidArea::fill(const Numbers& numbers, const Draw& draw, kit::Random& random) {
  fillWithRubbish(parameter_->read ? 0 : draw.rubbish);
  if (!parameter_->read) return;
  withElement(parameter_->element, [&](auto zero) {
    using T = decltype(zero);
    for (const Row& row : rows_) {
      for (std::size_t at = row.offset; at < row.offset + row.bytes; at += sizeof(T)) {
        const T value = drawElement<T>(parameter_->domain, numbers, draw, random);
        std::memcpy(base_ + at, &value, sizeof(T));
      }
    }
  });
}

std::span<const int32_t> LaidArea::counts() const {
  if (parameter_->element != Element::k32s || parameter_->kind != Kind::kArea) return {};
  return {reinterpret_cast<const int32_t*>(base_), bytes_ / sizeof(int32_t)};
}

std::vector<std::byte> LaidArea::contents() const {
  std::vector<std::byte> all;
  for (const Row& row : rows_) all.insert(all.end(), base_ + row.offset, base_ + row.offset + row.bytes);
  return all;
}

std::string LaidArea::touched(bool mayWrite) const {
  const std::string name = parameter_->name;
  if (!arena_->edgesKept()) return "memory around " + name + " was written";
  if (pointers_) {
    if (const std::string what = pointers_->touched(false); !what.empty()) return what + " (the row pointers)";
  }
  std::vector<std::byte> expected = before_;
  const bool written = mayWrite && (parameter_->written || parameter_->kind == Kind::kMakes || parameter_->kind == Kind::kBlock);
  if (written) {
    for (const Row& row : rows_)
      std::copy_n(base_ + row.offset, row.bytes, expected.begin() + static_cast<std::ptrdiff_t>(row.offset));
  }
  for (std::size_t i = 0; i < bytes_; ++i) {
    if (base_[i] == expected[i]) continue;
    return name + (written ? ": a gap between the rows" : ": what may not be written") + " was written, " +
           std::to_string(i / elementBytes_) + " elements behind its begin";
  }
  return {};
}

void LaidArea::digest() const {
  withElement(parameter_->element, [&](auto zero) {
    using T = decltype(zero);
    for (const Row& row : rows_) {
      for (std::size_t at = row.offset; at < row.offset + row.bytes; at += sizeof(T)) {
        T value;
        std::memcpy(&value, base_ + at, sizeof(T));
        kit::digestBits(kit::canonicalBits(value));
      }
    }
  });
}

}  // namespace interface_calls
