#include "common/text.h"

namespace program {
namespace {

// The length of the control character at a place, 0 where there is none. Those of Latin-1 are two bytes in UTF-8.
size_t controlAt(const std::string& text, size_t at) {
  const auto byte = [&](size_t i) { return i < text.size() ? static_cast<unsigned char>(text[i]) : 0xFFU; };
  if (byte(at) < 0x20 || byte(at) == 0x7F) return 1;
  return byte(at) == 0xC2 && byte(at + 1) >= 0x80 && byte(at + 1) < 0xA0 ? 2 : 0;
}

std::string escape(const std::string& control) {
  if (control == "\n") return "\\n";
  if (control == "\t") return "\\t";
  char text[8];
  std::snprintf(text, sizeof text, "\\x%02X", static_cast<unsigned>(static_cast<unsigned char>(control.back())));
  return text;
}

}  // namespace

bool hasControls(const std::string& text) {
  for (size_t i = 0; i < text.size(); ++i) {
    if (controlAt(text, i) > 0) return true;
  }
  return false;
}

std::string printable(const std::string& text) {
  std::string result;
  for (size_t i = 0; i < text.size();) {
    const size_t length = controlAt(text, i);
    result += length > 0 ? escape(text.substr(i, length)) : text.substr(i, 1);
    i += length > 0 ? length : 1;
  }
  return result;
}

std::string tabSeparated(const std::vector<std::vector<std::string>>& rows) {
  std::string text;
  for (const auto& row : rows) {
    for (size_t c = 0; c < row.size(); ++c) {
      if (c > 0) text += '\t';
      text += printable(row[c]);
    }
    text += '\n';
  }
  return text;
}

}  // namespace program
