// Numbers and tables as text.
#pragma once

#include <cstdio>
#include <string>
#include <vector>

namespace program {

/** value with so many digits behind the point. */
inline std::string fixed(double value, int digits) {
  char text[64];
  std::snprintf(text, sizeof text, "%.*f", digits, value);
  return text;
}

/** part of whole in percent, "97.33 %"; "-" of nothing. */
inline std::string percent(size_t part, size_t whole, int digits = 2) {
  return whole == 0 ? "-" : fixed(100.0 * static_cast<double>(part) / static_cast<double>(whole), digits) + " %";
}

/** Rows of cells as tab-separated lines. */
inline std::string tabSeparated(const std::vector<std::vector<std::string>>& rows) {
  std::string text;
  for (const auto& row : rows) {
    for (size_t c = 0; c < row.size(); ++c) text += (c > 0 ? "\t" : "") + row[c];
    text += '\n';
  }
  return text;
}

/** A speed as a multiple of real time: "1240 times real time". */
inline std::string timesRealTime(double speechSeconds, double workSeconds) {
  return workSeconds > 0 ? fixed(speechSeconds / workSeconds, 0) + " times real time" : "too fast to measure";
}

}  // namespace program
