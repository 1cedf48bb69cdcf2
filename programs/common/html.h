// The few pieces of HTML that reports are made of. Pages are self-contained: style inside, links relative.
#pragma once

#include <string>
#include <vector>

namespace program {

/** Text as HTML: characters that mean something there are replaced, control characters are made printable. */
std::string escaped(const std::string& text);

/** The name of a file of the report as the address of a link or picture. */
std::string address(const std::string& name);

/** Whether a page was written by htmlPage. */
bool isReportPage(const std::string& page);

/** A whole page around the body. */
std::string htmlPage(const std::string& title, const std::string& body);

/** A table; the first row is the heading, and all rows have as many cells. Cells are text and are escaped; columns of numbers stand
 * to the right. */
std::string htmlTable(const std::vector<std::vector<std::string>>& rows);

}  // namespace program
