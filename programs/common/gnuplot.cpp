#include "common/gnuplot.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>  // environ

#include <cctype>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fstream>

#include "common/files.h"
#include "common/progress.h"
#include "common/text.h"

namespace fs = std::filesystem;

namespace program {
namespace {

std::string formatted(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.6g", value);
  return text;
}

// The exit status of a child. It is ended too when this program is interrupted.
int endOf(pid_t child) {
  int status = 0;
  while (true) {
    const pid_t ended = waitpid(child, &status, WNOHANG);
    if (ended == child) return WIFEXITED(status) ? WEXITSTATUS(status) : 128;
    if (ended < 0 && errno != EINTR) return 128;
    if (isInterrupted()) kill(child, SIGTERM);
    constexpr timespec pause{0, 2'000'000};
    nanosleep(&pause, nullptr);
  }
}

// Whether a file ends as a PNG does: on a full disk it may be cut short without a word.
bool isWholePng(const fs::path& png) {
  std::ifstream in(png, std::ios::binary | std::ios::ate);
  if (!in || in.tellg() < 12) return false;
  char end[8];
  in.seekg(-8, std::ios::end);
  return in.read(end, 8) && std::memcmp(end, "IEND\xAE\x42\x60\x82", 8) == 0;
}

// The exit status of "gnuplot script" in the script's folder, its messages going to log; -1 with errno set when it could not be started.
int runGnuplot(const fs::path& script, const fs::path& log) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&actions, 1, log.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
  posix_spawn_file_actions_adddup2(&actions, 1, 2);
  posix_spawn_file_actions_addchdir_np(&actions, script.parent_path().c_str());
  std::string program = "gnuplot", argument = "./" + script.filename().string();
  char* arguments[] = {program.data(), argument.data(), nullptr};
  pid_t child = 0;
  const int error = posix_spawnp(&child, "gnuplot", &actions, nullptr, arguments, environ);
  posix_spawn_file_actions_destroy(&actions);
  if (error != 0) {
    errno = error;
    return -1;
  }
  return endOf(child);
}

// What gnuplot complained of. It repeats the wrong command first and marks the place with ^.
std::string complaint(const fs::path& log) {
  std::ifstream in(log);
  std::string first;
  for (std::string line; std::getline(in, line);) {
    const size_t begin = line.find_first_not_of(" \t^");
    if (begin == std::string::npos) continue;
    line.erase(0, begin);
    if (line.find(" line ") != std::string::npos) return line;
    if (first.empty()) first = line;
  }
  return first.empty() ? "no message" : first;
}

}  // namespace

std::string drawPng(const fs::path& png, int width, int height, const std::string& script) {
  const fs::path scriptFile = fs::path(png).replace_extension(".gp"), log = fs::path(png).replace_extension(".log");
  writeFile(scriptFile, "set terminal pngcairo size " + std::to_string(width) + "," + std::to_string(height) +
                            " font 'sans,10' noenhanced\nset output " + quoted(png.filename().string()) + "\n" + script);
  const int status = runGnuplot(scriptFile, log);
  std::string problem;
  if (status == -1 || status == 127) {
    problem = std::string("gnuplot cannot be run (") + std::strerror(status == -1 ? errno : ENOENT) + "); install gnuplot-nox";
  } else if (status != 0) {
    problem = "gnuplot failed: " + complaint(log);
  } else if (!isWholePng(png)) {
    problem = "gnuplot drew nothing, or not all: " + complaint(log);
  }
  std::error_code ignored;
  fs::remove(scriptFile, ignored);
  fs::remove(log, ignored);
  if (!problem.empty()) fs::remove(png, ignored);
  stopIfInterrupted();
  return problem;
}

std::string curveBlock(const std::string& name, const std::vector<double>& x, const std::vector<float>& y) {
  std::string text = "$" + name + " << EOD\n";
  for (size_t i = 0; i < x.size(); ++i) text += formatted(x[i]) + " " + formatted(static_cast<double>(y[i])) + "\n";
  return text + "EOD\n";
}

std::string matrixBlock(const std::string& name, const float* values, size_t height, size_t width) {
  std::string text = "$" + name + " << EOD\n";
  for (size_t r = 0; r < height; ++r) {
    for (size_t c = 0; c < width; ++c) text += formatted(static_cast<double>(values[r * width + c])) + " ";
    text += "\n";
  }
  return text + "EOD\n";
}

// Within double quotes gnuplot runs what stands between backquotes, and reads escapes; within single quotes nothing but a doubled
// quote is special, but a line break ends the string.
std::string quoted(const std::string& text) {
  std::string result;
  if (!hasControls(text)) {
    for (const char c : text) result += c == '\'' ? "''" : std::string(1, c);
    return "'" + result + "'";
  }
  for (const char c : text) {
    char code[5];
    std::snprintf(code, sizeof code, "\\%03o", static_cast<unsigned>(static_cast<unsigned char>(c)));
    result += std::isalnum(static_cast<unsigned char>(c)) != 0 ? std::string(1, c) : code;
  }
  return '"' + result + '"';
}

}  // namespace program
