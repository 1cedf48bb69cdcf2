// Processor time of this program, so that speeds do not depend on what else the machine does.
#pragma once

#include <ctime>

namespace program {

class Stopwatch {
 public:
  /** Seconds of processor time spent in f, added to the total. */
  template <class F>
  decltype(auto) time(F f) {
    struct Adds {
      double& seconds;
      double begin = now();
      ~Adds() { seconds += now() - begin; }
    } adds{seconds_};
    return f();
  }
  double seconds() const { return seconds_; }

 private:
  static double now() {
    timespec t{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) + 1e-9 * static_cast<double>(t.tv_nsec);
  }

  double seconds_ = 0;
};

}  // namespace program
