// Log-domain operations against the loops of log1p(exp()), on scores whose differences meet every range.
#include <cstdint>
#include <string>
#include <vector>

#include "kit/bench.h"
#include "log_arithmetic_plain.h"
#include "qorsr.h"

namespace {

template <class T>
std::vector<T> scores(int32_t length, uint32_t seed) {
  std::vector<T> v;
  for (int32_t i = 0; i < length; ++i) {
    seed = seed * 1664525u + 1013904223u;
    v.push_back(T(-20) * static_cast<T>(seed >> 8) / T(1 << 24));
  }
  return v;
}

// Each call works on fresh copies of b, so that the terms stay what they are.
template <class T, class Function>
std::function<void()> additions(int32_t length, Function function) {
  return [=, a = scores<T>(length, 1), b = scores<T>(length, 2), r = std::vector<T>(static_cast<std::size_t>(length))]() mutable {
    r = b;
    function(a.data(), r.data(), length);
  };
}

template <class T, class Function>
std::function<void()> sums(int32_t length, Function function) {
  return [=, a = scores<T>(length, 1)] {
    T result;
    function(a.data(), &result, length);
    asm volatile("" ::"r"(&result) : "memory");
  };
}

#define OURS(name) level.ours<decltype(name)>(#name)
#define PLAIN(name) level.plain<decltype(name)>(#name)

void addTasks(const bench::Level& level, int32_t n) {
  const auto add = [&](const std::string& task, const std::string& contender, const std::function<void()>& body) {
    bench::add({task + ", " + std::to_string(n) + " terms", contender, level.name, static_cast<double>(n), "terms"}, body);
  };
  const auto ours = [](auto* f, int32_t hint) { return [=](const auto* a, auto* b, int32_t length) { f(a, b, length, hint); }; };
  for (const char* form : {"LogAdd 32f accurate", "LogAdd 32f fast"}) {
    const int32_t hint = form == std::string("LogAdd 32f fast") ? 1 : 0;
    add(form, "ours", additions<float>(n, ours(OURS(qorsLogAdd_32f), hint)));
    add(form, "plain", additions<float>(n, PLAIN(plainLogAdd_32f)));
    add(form, "log1pf(expf)", additions<float>(n, PLAIN(plainLogAddFloat_32f)));
#if QORSR_HAVE_SLEEF
    add(form, "SLEEF", additions<float>(n, PLAIN(sleefLogAdd_32f)));
#endif
#if QORSR_HAVE_EIGEN3
    add(form, "Eigen", additions<float>(n, PLAIN(eigenLogAdd_32f)));
#endif
  }
  add("LogAdd 64f", "ours", additions<double>(n, ours(OURS(qorsLogAdd_64f), 0)));
  add("LogAdd 64f", "plain", additions<double>(n, PLAIN(plainLogAdd_64f)));
  add("LogSum 32f", "ours", sums<float>(n, ours(OURS(qorsLogSum_32f), 0)));
  add("LogSum 32f", "plain", sums<float>(n, PLAIN(plainLogSum_32f)));
  add("LogSum 64f", "ours", sums<double>(n, ours(OURS(qorsLogSum_64f), 0)));
  add("LogSum 64f", "plain", sums<double>(n, PLAIN(plainLogSum_64f)));
}

}  // namespace

int main(int argc, char** argv) {
  for (const bench::Level& level : bench::levels()) {
    for (const int32_t n : {7, 39, 1024, 4096}) addTasks(level, n);
  }
  return bench::run(argc, argv);
}
