#include "binary_file.h"

#include <bit>
#include <iterator>

#include "common/fault.h"
#include "common/files.h"

namespace senones {
BinaryFile::BinaryFile(const std::filesystem::path& file) : name_(file.string()) {
  std::ifstream in = program::openFile(file);
  content_.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  if (in.bad() || content_.empty()) refuse(content_.empty() ? "empty or unreadable" : "cannot be read");
}

void BinaryFile::refuse(const std::string& why) const { throw program::Fault(name_ + ": " + why); }

const char* BinaryFile::take(size_t count, const char* what) {
  if (count > left()) {
    refuse("truncated: " + std::to_string(count) + " bytes of " + what + " expected, " + std::to_string(left()) + " left");
  }
  const char* const bytes = content_.data() + at_;
  at_ += count;
  return bytes;
}

int32_t BinaryFile::integer(const char* what) { return static_cast<int32_t>(program::littleEndian(take(4, what))); }

int32_t BinaryFile::integer(const char* what, int32_t low, int32_t high) {
  const int32_t value = integer(what);
  if (value < low || value > high) {
    const auto swapped = static_cast<int32_t>(__builtin_bswap32(static_cast<uint32_t>(value)));
    if (swapped >= low && swapped <= high) {
      refuse(std::string(otherOrder) + " (" + what + " would be " + std::to_string(value) + ")");
    }
    refuse(std::string(what) + " of " + std::to_string(value) + ", outside " + std::to_string(low) + " to " + std::to_string(high));
  }
  return value;
}

std::vector<int16_t> BinaryFile::shortIntegers(size_t count, const char* what) {
  const char* const bytes = take(2 * count, what);
  std::vector<int16_t> values(count);
  for (size_t i = 0; i < count; ++i) {
    values[i] = static_cast<int16_t>(static_cast<unsigned char>(bytes[2 * i]) | static_cast<unsigned char>(bytes[2 * i + 1]) << 8);
  }
  return values;
}

std::vector<float> BinaryFile::floats(size_t count, const char* what) {
  const char* bytes = take(4 * count, what);
  std::vector<float> values(count);
  for (float& value : values) {
    value = std::bit_cast<float>(program::littleEndian(bytes));
    bytes += 4;
  }
  return values;
}

std::vector<uint8_t> BinaryFile::bytes(size_t count, const char* what) {
  const char* const from = take(count, what);
  return {from, from + count};
}

std::string BinaryFile::text(const char* what) { return upTo(std::string_view("\0", 1), what); }

std::string BinaryFile::text(size_t count, const char* what) {
  const char* const from = take(count, what);
  return {from, from + count};
}

std::string BinaryFile::upTo(std::string_view marker, const char* what) {
  const size_t found = content_.find(marker, at_);
  if (found == std::string::npos) refuse(std::string("truncated, or not of this kind: no end of ") + what);
  std::string between = content_.substr(at_, found - at_);
  at_ = found + marker.size();
  return between;
}

void BinaryFile::expectEnd() const {
  if (left() > 0) refuse(std::to_string(left()) + " bytes too many");
}

uint32_t BinaryFile::checksum(size_t begin, size_t end) const {
  uint32_t sum = 0;
  for (size_t i = begin; i + 4 <= end; i += 4) sum = std::rotl(sum, 20) + program::littleEndian(content_.data() + i);
  return sum;
}

}  // namespace senones
