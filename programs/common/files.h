// Files opened, read and written with one clear line where that fails.
#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

namespace program {

/** Opens a file for reading. Throws Fault, "FILE: cannot be opened: ...", where it cannot, or where FILE is a folder. */
std::ifstream openFile(const std::filesystem::path& file);

/** Writes a text file; throws Fault, "FILE cannot be written: ...", where it cannot be written whole. */
void writeFile(const std::filesystem::path& file, const std::string& text);

/** A file that appears whole or not at all. It is written under a temporary name beside its own; publish() gives it its name, and
 * without that it is removed. */
class WholeFile {
 public:
  /** what: how the file is called in messages, "model file". Throws Fault where something other than a regular file stands there:
   * a device, a folder, or a link, whose target would be left behind. */
  WholeFile(const std::filesystem::path& target, std::string what);
  ~WholeFile();
  WholeFile(const WholeFile&) = delete;
  WholeFile& operator=(const WholeFile&) = delete;

  /** Throws Fault. */
  void write(const std::string& text);
  void publish();

 private:
  [[noreturn]] void refuse(const std::string& why) const;
  void checkTarget() const;

  std::filesystem::path target_, unfinished_;
  std::string what_;
};

/** Four bytes, the lowest first. */
uint32_t littleEndian(const char* bytes);

}  // namespace program
