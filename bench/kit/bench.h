// Benchmarks that compare, in one run: ours at every instruction level, the plain loop at the same level, peers, and a pass that
// only reads the same memory. What is printed are ratios; absolute times mean little on a shared machine, and 5 % is noise.
//
// A benchmark file registers its tasks and ends in bench::run:
//
//   int main(int argc, char** argv) {
//     for (const bench::Level& level : bench::levels()) {
//       const auto ours = level.ours<decltype(qorsSumColumn_32f_D2)>("qorsSumColumn_32f_D2");
//       const auto plain = level.plain<PlainSumColumn>("plainSumColumn_32f");
//       bench::add({"sums of 39 columns, 1000 rows", "ours", level.name}, [=] { ours(...); });
//       bench::add({"sums of 39 columns, 1000 rows", "plain", level.name}, [=] { plain(...); });
//     }
//     return bench::run(argc, argv);
//   }
//
// The plain loops stand in <family>_plain.cpp: the loop that one would write first, in its natural order, extern "C". All of them
// are compiled into one module a level, with the flags of ours.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace bench {

// The modules of one instruction level, opened by path: all levels live in one process.
struct Level {
  std::string name;
  void* module;
  void* plainModule;

  template <class Function>
  Function* ours(const char* symbol) const {
    return reinterpret_cast<Function*>(find(module, symbol));
  }
  template <class Function>
  Function* plain(const char* symbol) const {
    return reinterpret_cast<Function*>(find(plainModule, symbol));
  }

 private:
  static void* find(void* module, const char* symbol);  // ends the program with a message when there is none
};

// Every level that was built and that this machine has, the baseline first.
const std::vector<Level>& levels();

struct Entry {
  std::string task;
  std::string contender;  // "ours", "plain", "read", or a peer's name
  std::string level;      // empty for a peer that chooses its own
  double items = 0;       // done by one call, for a rate; 0: none
  std::string unit = {};  // of the items: "Gaussians", "frames"
};
void add(const Entry& entry, std::function<void()> body);

// A body that only reads `bytes` bytes, at the given level.
std::function<void()> readPass(const Level& level, const void* data, std::size_t bytes);

// Times everything (least of several interleaved repetitions) and prints one table a task: ours at each level, how many times
// faster than each contender it is, and the rate. Takes the options of Google Benchmark, --benchmark_filter above all.
int run(int argc, char** argv);

}  // namespace bench
