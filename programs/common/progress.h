// Progress of a long task on stderr: a bar on a terminal, otherwise a plain line now and then. Also where Ctrl-C takes effect.
#pragma once

#include <chrono>
#include <cstddef>
#include <string>

namespace program {

/** From here on Ctrl-C (or a request to terminate) makes the next step of any Progress throw Interrupted. */
void catchInterrupts();

bool isInterrupted();

/** Throws Interrupted after Ctrl-C, for long work that shows no Progress. */
void stopIfInterrupted();

class Progress {
 public:
  /** title: what is done; total: how many steps, 0 where that is unknown; quiet: nothing is shown. */
  Progress(std::string title, size_t total, bool quiet);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  /** One step is done. note: a few words shown behind the count, such as the latest likelihood. */
  void step(const std::string& note = {});

 private:
  std::string count() const;
  void show(bool last);

  std::string title_, note_;
  size_t total_, done_ = 0;
  bool quiet_, terminal_;
  std::chrono::steady_clock::time_point next_;
};

}  // namespace program
