#include "common/html.h"

#include <algorithm>
#include <cctype>

#include "common/text.h"

namespace program {
namespace {

// By this line a page is known as a report, of earlier versions too, so it stays.
constexpr const char* firstRule = R"(
body { font-family: system-ui, "Segoe UI", "Liberation Sans", sans-serif; color: #1c2430; background: #fbfbfd; max-width: 1180px;)";
constexpr const char* style = R"(
       margin: 2em auto; padding: 0 1em; line-height: 1.45; }
h1 { font-size: 1.6em; margin-bottom: .2em; } h2 { font-size: 1.2em; margin-top: 2em; border-bottom: 1px solid #d5dae2; }
table { border-collapse: collapse; margin: .6em 0; font-variant-numeric: tabular-nums; }
th, td { padding: .2em .65em; border-bottom: 1px solid #e3e7ee; text-align: left; white-space: nowrap; }
th.number, td.number { text-align: right; }
th { background: #eef1f6; font-weight: 600; }
table.confusion td, table.confusion th { text-align: center; min-width: 1.7em; padding: .2em .3em; border: 1px solid #e3e7ee; }
table.confusion th.row { text-align: right; padding-right: .6em; }
table.dense { font-size: .72em; } table.dense td, table.dense th { padding: .05em .2em; min-width: 1.3em; }
.side { display: flex; flex-wrap: wrap; gap: 0 3em; align-items: flex-start; }
.big { font-size: 2.2em; font-weight: 600; } .dim { color: #66707f; } .right { color: #15703a; } .wrong { color: #b3261e; }
figure { margin: 1.6em 0; } figure img { width: 100%; border: 1px solid #d5dae2; background: #fff; } figcaption { margin-bottom: .3em; }
.wide { overflow-x: auto; }
)";

bool looksLikeNumber(const std::string& text) {
  return !text.empty() && text.find_first_not_of("0123456789.,+-% ") == std::string::npos;
}

// Whether every cell of a column, its heading apart, looks like a number.
bool holdsNumbers(const std::vector<std::vector<std::string>>& rows, size_t column) {
  return std::all_of(rows.begin() + 1, rows.end(), [&](const auto& row) { return looksLikeNumber(row[column]); });
}

}  // namespace

std::string escaped(const std::string& text) {
  std::string result;
  for (const char c : printable(text)) {
    switch (c) {
      case '&':
        result += "&amp;";
        break;
      case '<':
        result += "&lt;";
        break;
      case '>':
        result += "&gt;";
        break;
      case '"':
        result += "&quot;";
        break;
      default:
        result += c;
    }
  }
  return result;
}

std::string address(const std::string& name) {
  std::string result;
  for (const char c : name) {
    const auto byte = static_cast<unsigned char>(c);
    char code[4];
    std::snprintf(code, sizeof code, "%%%02X", static_cast<unsigned>(byte));
    result += std::isalnum(byte) != 0 || c == '.' || c == '_' || c == '-' ? std::string(1, c) : code;
  }
  return result;
}

bool isReportPage(const std::string& page) { return page.find(firstRule) != std::string::npos; }

std::string htmlPage(const std::string& title, const std::string& body) {
  return "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
         "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n<title>" +
         escaped(title) + "</title>\n<style>" + firstRule + style + "</style>\n</head>\n<body>\n" + body + "</body>\n</html>\n";
}

std::string htmlTable(const std::vector<std::vector<std::string>>& rows) {
  std::string text = "<table>\n";
  for (size_t r = 0; r < rows.size(); ++r) {
    const std::string tag = r == 0 ? "th" : "td";
    text += "<tr>";
    for (size_t c = 0; c < rows[r].size(); ++c) {
      text += "<" + tag + (holdsNumbers(rows, c) ? " class=\"number\">" : ">") + escaped(rows[r][c]) + "</" + tag + ">";
    }
    text += "</tr>\n";
  }
  return text + "</table>\n";
}

}  // namespace program
