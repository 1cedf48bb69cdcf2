// A folder that appears whole or not at all.
#pragma once

#include <filesystem>
#include <set>
#include <string>

namespace program {

/** Files are written to a folder of a temporary name beside the target; publish() gives it its name. Without publish() it is
 * removed. */
class ReportFolder {
 public:
  /** Throws Fault when the place cannot be written, or when something other than an earlier report stands there. */
  explicit ReportFolder(const std::filesystem::path& target);
  ~ReportFolder();
  ReportFolder(const ReportFolder&) = delete;
  ReportFolder& operator=(const ReportFolder&) = delete;

  /** Where to write until publish(). */
  const std::filesystem::path& path() const { return unfinished_; }
  /** The folder takes its name; an earlier report of that name is replaced. Returns the target. */
  std::filesystem::path publish();

 private:
  std::filesystem::path target_, unfinished_;
};

/** Names of recordings in a report: those of their files without the extension; a number behind them where one is taken. */
class UniqueNames {
 public:
  std::string of(const std::filesystem::path& file) const;
  void take(const std::string& name) { taken_.insert(name); }

 private:
  std::set<std::string> taken_;
};

/** The report takes its name, which is told on stdout; on stderr why pictures are missing, where a reason is given. */
void publish(ReportFolder& folder, const std::string& pictureProblem);

}  // namespace program
