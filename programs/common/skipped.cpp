#include "common/skipped.h"

#include <cstdio>

#include "common/html.h"
#include "common/text.h"

namespace program {

void tellSkipped(const Skipped& skipped) {
  std::fprintf(stderr, "skipped %s: %s\n", printable(skipped.file).c_str(), skipped.reason.c_str());
}

std::string allSkipped(const std::vector<Skipped>& skipped) {
  return "no usable recording: all " + std::to_string(skipped.size()) + " files were skipped";
}

std::string skippedHtml(const std::vector<Skipped>& skipped) {
  if (skipped.empty()) return "";
  std::vector<std::vector<std::string>> rows = {{"file", "why it was skipped"}};
  for (const Skipped& one : skipped) rows.push_back({one.file, one.reason});
  return "<h2>Skipped files (" + std::to_string(skipped.size()) + ")</h2>\n" + htmlTable(rows);
}

}  // namespace program
