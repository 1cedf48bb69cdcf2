// A binary file, read whole, taken apart from front to back.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace senones {

/** Why a file is refused that was written with the highest byte first. */
inline constexpr const char* otherOrder = "byte-swapped: its numbers have the highest byte first";

/** Every reader throws program::Fault with one line that begins with the file's name. Integers are little-endian. */
class BinaryFile {
 public:
  explicit BinaryFile(const std::filesystem::path& file);

  int32_t integer(const char* what);
  /** An integer from low to high. One that is so only with its bytes swapped is said to be byte-swapped. */
  int32_t integer(const char* what, int32_t low, int32_t high);
  std::vector<int16_t> shortIntegers(size_t count, const char* what);
  std::vector<float> floats(size_t count, const char* what);
  std::vector<uint8_t> bytes(size_t count, const char* what);
  /** A text that ends with a zero byte. */
  std::string text(const char* what);
  /** A text of so many bytes. */
  std::string text(size_t count, const char* what);
  /** What stands between here and the end of `marker`, which must be there; the position is behind it then. */
  std::string upTo(std::string_view marker, const char* what);
  void skip(size_t count, const char* what) { take(count, what); }
  void alignTo(size_t boundary) { at_ = (at_ + boundary - 1) / boundary * boundary; }

  size_t position() const { return at_; }
  size_t left() const { return at_ < content_.size() ? content_.size() - at_ : 0; }
  /** Nothing may follow. */
  void expectEnd() const;
  /** The sum of the 32-bit words from `begin` to `end`, rotated by 20 bits before each addition: the checksum of model files. */
  uint32_t checksum(size_t begin, size_t end) const;

  [[noreturn]] void refuse(const std::string& why) const;

 private:
  const char* take(size_t count, const char* what);

  std::string name_, content_;
  size_t at_ = 0;
};

}  // namespace senones
