#include "common/report_folder.h"

#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <system_error>

#include "common/fault.h"
#include "common/html.h"
#include "common/text.h"

namespace fs = std::filesystem;

namespace program {
namespace {

constexpr const char* pageName = "index.html";

bool isReport(const fs::path& folder) {
  if (!fs::is_directory(folder)) return false;
  if (fs::is_empty(folder)) return true;
  if (!fs::is_regular_file(folder / pageName)) return false;
  std::ifstream in(folder / pageName, std::ios::binary);
  return isReportPage({std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()});
}

fs::path besides(const fs::path& target, const char* suffix) {
  fs::path name = target;
  name += suffix + std::to_string(getpid());
  return name;
}

}  // namespace

ReportFolder::ReportFolder(const fs::path& target) {
  std::error_code error;
  target_ = fs::weakly_canonical(fs::absolute(target, error), error);  // through links, which stay
  if (error) target_ = fs::absolute(target, error).lexically_normal();
  if (!target_.has_filename()) target_ = target_.parent_path();
  unfinished_ = besides(target_, ".unfinished-");
  if (fs::exists(target_, error) && !isReport(target_)) {
    throw Fault("report folder " + target.string() + " exists and is not a report; name another with --report");
  }
  if (target_.has_parent_path()) fs::create_directories(target_.parent_path(), error);
  if (!fs::create_directory(unfinished_, error)) {
    throw Fault("report folder " + target.string() + " cannot be created: " + error.message());
  }
}

ReportFolder::~ReportFolder() {
  std::error_code ignored;
  if (!unfinished_.empty()) fs::remove_all(unfinished_, ignored);
}

fs::path ReportFolder::publish() {
  std::error_code error;
  const fs::path old = besides(target_, ".old-");
  const bool replaces = fs::exists(target_, error);
  if (replaces) fs::rename(target_, old, error);
  if (!error) fs::rename(unfinished_, target_, error);
  if (error) throw Fault("report folder " + target_.string() + " cannot be written: " + error.message());
  unfinished_.clear();
  if (replaces) fs::remove_all(old, error);
  return target_;
}

std::string UniqueNames::of(const fs::path& file) const {
  const std::string stem = file.stem().string();
  std::string name = stem;
  for (int i = 2; taken_.count(name) > 0; ++i) name = stem + "_" + std::to_string(i);
  return name;
}

void publish(ReportFolder& folder, const std::string& pictureProblem) {
  if (!pictureProblem.empty()) std::fprintf(stderr, "no pictures: %s\n", pictureProblem.c_str());
  std::printf("report     %s\n", printable((folder.publish() / pageName).string()).c_str());
}

}  // namespace program
