// Numbers, names and tables as text.
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

/** Whether a text holds characters that are not printed but act: line breaks, tabs, the escapes of terminals. */
bool hasControls(const std::string& text);

/** A text as part of one line: its control characters are written as \n, \t, \x1B. */
std::string printable(const std::string& text);

/** Rows of cells as tab-separated lines; cells are made printable. */
std::string tabSeparated(const std::vector<std::vector<std::string>>& rows);

/** A speed as a multiple of real time: "1240 times real time". */
inline std::string timesRealTime(double speechSeconds, double workSeconds) {
  return workSeconds > 0 ? fixed(speechSeconds / workSeconds, 0) + " times real time" : "too fast to measure";
}

}  // namespace program
