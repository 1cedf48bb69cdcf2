#include "common/files.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <system_error>
#include <utility>

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

namespace {

// 0, or the number of the error.
int written(const fs::path& file, const std::string& text) {
  std::FILE* const out = std::fopen(file.c_str(), "wb");
  if (out == nullptr) return errno;
  int error = std::fwrite(text.data(), 1, text.size(), out) == text.size() ? 0 : errno;
  if (std::fclose(out) != 0 && error == 0) error = errno;
  return error;
}

}  // namespace

void writeFile(const fs::path& file, const std::string& text) {
  if (const int error = written(file, text)) throw Fault(file.string() + " cannot be written: " + std::strerror(error));
}

WholeFile::WholeFile(const fs::path& target, std::string what) : target_(target), what_(std::move(what)) {
  checkTarget();
  const fs::path temporary = target.string() + ".unfinished-" + std::to_string(getpid());
  if (const int error = written(temporary, "")) refuse(std::strerror(error));
  unfinished_ = temporary;
}

WholeFile::~WholeFile() {
  std::error_code ignored;
  if (!unfinished_.empty()) fs::remove(unfinished_, ignored);
}

void WholeFile::refuse(const std::string& why) const { throw Fault(what_ + " " + target_.string() + " cannot be written: " + why); }

void WholeFile::checkTarget() const {
  std::error_code error;
  switch (fs::symlink_status(target_, error).type()) {
    case fs::file_type::not_found:
    case fs::file_type::regular:
      return;
    case fs::file_type::none:
      refuse(error.message());
    case fs::file_type::symlink:
      refuse("it is a link; name the file itself");
    case fs::file_type::directory:
      refuse("it is a folder");
    default:
      refuse("it is not a regular file");
  }
}

void WholeFile::write(const std::string& text) {
  if (const int error = written(unfinished_, text)) refuse(std::strerror(error));
}

void WholeFile::publish() {
  checkTarget();
  std::error_code error;
  fs::rename(unfinished_, target_, error);
  if (error) refuse(error.message());
  unfinished_.clear();
}

uint32_t littleEndian(const char* bytes) {
  uint32_t value = 0;
  for (int i = 3; i >= 0; --i) value = value << 8 | static_cast<unsigned char>(bytes[i]);
  return value;
}

}  // namespace program
