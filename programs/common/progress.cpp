#include "common/progress.h"

#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <utility>

#include "common/fault.h"

namespace program {
namespace {

using namespace std::chrono_literals;

volatile std::sig_atomic_t interrupted = 0;
void interrupt(int) { interrupted = 1; }

constexpr size_t barWidth = 32;

}  // namespace

void catchInterrupts() {
  std::signal(SIGINT, interrupt);
  std::signal(SIGTERM, interrupt);
}

bool isInterrupted() { return interrupted != 0; }

void stopIfInterrupted() {
  if (isInterrupted()) throw Interrupted();
}

Progress::Progress(std::string title, size_t total, bool quiet)
    : title_(std::move(title)),
      total_(total),
      quiet_(quiet),
      terminal_(isatty(STDERR_FILENO) != 0),
      next_(std::chrono::steady_clock::now() + (terminal_ ? 0s : 2s)) {}

Progress::~Progress() {
  if (!quiet_) show(true);
}

void Progress::step(const std::string& note) {
  stopIfInterrupted();
  ++done_;
  note_ = note;
  if (quiet_ || std::chrono::steady_clock::now() < next_ || (total_ > 0 && done_ >= total_)) return;
  show(false);
  next_ = std::chrono::steady_clock::now() + (terminal_ ? 100ms : 2000ms);
}

std::string Progress::count() const { return std::to_string(done_) + (total_ > 0 ? " of " + std::to_string(total_) : ""); }

void Progress::show(bool last) {
  const char* gap = note_.empty() ? "" : "  ";
  if (!terminal_) {
    std::fprintf(stderr, "%s: %s%s%s\n", title_.c_str(), count().c_str(), gap, note_.c_str());
    return;
  }
  const size_t filled = total_ > 0 ? std::min(barWidth, barWidth * done_ / total_) : last ? barWidth : 0;
  const std::string bar = std::string(filled, '#') + std::string(barWidth - filled, '.');
  std::fprintf(stderr, "\r\033[K%-10s [%s] %s%s%s%s", title_.c_str(), bar.c_str(), count().c_str(), gap, note_.c_str(),
               last ? "\n" : "");
  std::fflush(stderr);
}

}  // namespace program
