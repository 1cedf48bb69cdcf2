#include "kit/bench.h"

#include <benchmark/benchmark.h>
#include <dlfcn.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <map>

namespace bench {
namespace {

[[noreturn]] void die(const std::string& message) {
  std::fprintf(stderr, "%s\n", message.c_str());
  std::exit(EXIT_FAILURE);
}

void* openModule(const std::string& path) {
  void* module = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (module == nullptr) die(dlerror());
  return module;
}

bool machineHas(const std::string& level) {
#if defined(__x86_64__)
  if (level == "x86-64-v3") return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma");
  if (level == "x86-64-v4") return __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512vl");
#endif
  return true;
}

std::vector<Entry> entries;

std::string keyOf(const Entry& entry) { return entry.task + " | " + entry.contender + " | " + entry.level; }

// Keeps the least time of each entry, and shows what is running.
class LeastTimes : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context&) override { return true; }
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& r : runs) {
      if (r.run_type == Run::RT_Aggregate) continue;
      const std::string name = r.run_name.function_name;
      const double ns = r.real_accumulated_time / static_cast<double>(r.iterations) * 1e9;
      const auto [found, fresh] = nanoseconds.emplace(name, ns);
      if (!fresh) found->second = std::min(found->second, ns);
      if (isatty(STDERR_FILENO) != 0)
        std::fprintf(stderr, "\r\033[K%zu of %zu: %s", nanoseconds.size(), entries.size(), name.c_str());
    }
  }
  void Finalize() override {
    if (isatty(STDERR_FILENO) != 0) std::fprintf(stderr, "\r\033[K");
  }

  std::map<std::string, double> nanoseconds;
};

const Entry* findEntry(const std::string& task, const std::string& contender, const std::string& level) {
  for (const Entry& e : entries) {
    if (e.task == task && e.contender == contender && (e.level == level || e.level.empty())) return &e;
  }
  return nullptr;
}

// One line a level: ours, then every contender's time over ours.
void printTask(const std::string& task, const std::map<std::string, double>& times) {
  std::vector<std::string> contenders, levelNames;
  for (const Entry& e : entries) {
    if (e.task != task) continue;
    if (e.contender != "ours" && std::ranges::find(contenders, e.contender) == contenders.end()) contenders.push_back(e.contender);
    if (e.contender == "ours" && std::ranges::find(levelNames, e.level) == levelNames.end()) levelNames.push_back(e.level);
  }
  std::printf("\n%s\n  %-12s %12s", task.c_str(), "level", "ours [ns]");
  for (const std::string& c : contenders) std::printf("  %12s", c.c_str());
  std::printf("\n");
  for (const std::string& level : levelNames) {
    const Entry* ours = findEntry(task, "ours", level);
    const auto time = times.find(keyOf(*ours));
    if (time == times.end()) continue;
    std::printf("  %-12s %12.1f", level.c_str(), time->second);
    for (const std::string& c : contenders) {
      const Entry* other = findEntry(task, c, level);
      const auto otherTime = other != nullptr ? times.find(keyOf(*other)) : times.end();
      if (otherTime == times.end()) {
        std::printf("  %12s", "");
      } else {
        std::printf("  %11.2fx", otherTime->second / time->second);
      }
    }
    if (ours->items > 0) {
      const double perSecond = ours->items / time->second * 1e9;
      const bool many = perSecond >= 1e6;
      std::printf("  %10.2f %s %s/s", perSecond / (many ? 1e6 : 1e3), many ? "million" : "thousand", ours->unit.c_str());
    }
    std::printf("\n");
  }
}

}  // namespace

void* Level::find(void* module, const char* symbol) {
  void* found = dlsym(module, symbol);
  if (found == nullptr) die(std::string("no symbol ") + symbol);
  return found;
}

const std::vector<Level>& levels() {
  static const std::vector<Level> all = [] {
    std::vector<Level> v;
    const std::string folder = QORSR_MODULE_FOLDER, names = QORSR_LEVEL_NAMES;
    for (std::size_t begin = 0; begin < names.size();) {
      const std::size_t end = std::min(names.find(' ', begin), names.size());
      const std::string name = names.substr(begin, end - begin);
      const std::string place = folder + (v.empty() ? "" : "/glibc-hwcaps/" + name);
      if (machineHas(name)) {
        v.push_back({name, openModule(place + "/libqorsr.so.6"), openModule(place + "/libqorsr_plain.so.6")});
      } else {
        std::printf("skipped: this machine has no %s\n", name.c_str());
      }
      begin = end + 1;
    }
    return v;
  }();
  return all;
}

void add(const Entry& entry, std::function<void()> body) {
  entries.push_back(entry);
  benchmark::RegisterBenchmark(keyOf(entry).c_str(), [body = std::move(body)](benchmark::State& state) {
    for (auto _ : state) {
      body();
      benchmark::ClobberMemory();
    }
  });
}

std::function<void()> readPass(const Level& level, const void* data, std::size_t bytes) {
  const auto read = level.plain<uint64_t(const void*, std::size_t)>("plainReadPass");
  return [=] { benchmark::DoNotOptimize(read(data, bytes)); };
}

int run(int argc, char** argv) {
  // Short, often, interleaved: the least of several looks at a noisy machine. What the caller gives comes later, and so wins.
  std::string defaults[] = {"--benchmark_min_time=0.02", "--benchmark_repetitions=7",
                            "--benchmark_enable_random_interleaving=true"};
  std::vector<char*> arguments = {argv[0]};
  for (std::string& option : defaults) arguments.push_back(option.data());
  arguments.insert(arguments.end(), argv + 1, argv + argc);
  int count = static_cast<int>(arguments.size());
  benchmark::Initialize(&count, arguments.data());
  if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return EXIT_FAILURE;
  LeastTimes reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  std::printf("ours in nanoseconds; a contender's column is its time over ours: above 1, ours is faster\n");
  std::vector<std::string> tasks;
  for (const Entry& e : entries) {
    if (reporter.nanoseconds.contains(keyOf(e)) && std::ranges::find(tasks, e.task) == tasks.end()) tasks.push_back(e.task);
  }
  for (const std::string& task : tasks) printTask(task, reporter.nanoseconds);
  return EXIT_SUCCESS;
}

}  // namespace bench
