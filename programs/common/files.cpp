#include "common/files.h"

#include <cerrno>
#include <cstring>
#include <system_error>

#include "common/fault.h"

namespace fs = std::filesystem;

namespace program {

std::ifstream openFile(const fs::path& file) {
  std::error_code ignored;
  if (fs::is_directory(file, ignored)) throw Fault(file.string() + ": cannot be opened: it is a folder");
  std::ifstream in(file, std::ios::binary);
  if (!in) throw Fault(file.string() + ": cannot be opened: " + std::strerror(errno));
  return in;
}

void writeFile(const fs::path& file, const std::string& text) {
  std::ofstream out(file, std::ios::binary);
  out << text;
  out.close();
  if (!out) throw Fault(file.string() + " cannot be written");
}

uint32_t littleEndian(const char* bytes) {
  uint32_t value = 0;
  for (int i = 3; i >= 0; --i) value = value << 8 | static_cast<unsigned char>(bytes[i]);
  return value;
}

}  // namespace program
