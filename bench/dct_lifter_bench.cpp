// Cosine transform with lifter: an utterance of frames, against the plain loop and a matrix-vector product of BLAS.
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#if QORSR_HAVE_OPENBLAS
#include <cblas.h>
#endif
#if QORSR_HAVE_FFTW3F
#include <fftw3.h>
#endif

#include "dct_lifter_plain.h"
#include "kit/bench.h"
#include "qorsr.h"

namespace {

constexpr int32_t kFrames = 100;

// One configuration, its data, and a state from each level's module.
struct Task {
  int32_t n, m;
  bool c0;
  std::vector<float> source, rows, lifter, result;
  std::vector<int16_t> source16, result16;

  Task(int32_t inputs, int32_t orders, bool withC0)
      : n(inputs), m(orders), c0(withC0), source(static_cast<std::size_t>(kFrames * n)), result(source.size()) {
    for (std::size_t i = 0; i < source.size(); ++i) {
      source16.push_back(static_cast<int16_t>(i * 40503 % 4096));
      source[i] = static_cast<float>(source16[i]) / 300.0F;
    }
    result16.resize(source.size());
    for (int32_t i = 1; i <= m + (c0 ? 1 : 0); ++i) {
      const int32_t order = i <= m ? i : 0;
      lifter.push_back(static_cast<float>(1.0 + 11.0 * std::sin(M_PI * order / 22)));
      for (int32_t j = 0; j < n; ++j) rows.push_back(static_cast<float>(std::cos(M_PI * order * (j + 0.5) / n)));
    }
  }
  int32_t results() const { return m + (c0 ? 1 : 0); }
  std::string name(const char* type) const {
    return std::string("DCTLifter ") + type + ", " + std::to_string(n) + " filters to " + std::to_string(m) + " cepstra" +
           (c0 ? " and c0" : "");
  }
};

template <class F>
std::function<void()> eachFrame(F f) {
  return [=] {
    for (int32_t t = 0; t < kFrames; ++t) f(t);
  };
}

#define OURS(name) level.ours<decltype(name)>(#name)
#define PLAIN(name) level.plain<decltype(name)>(#name)

void addFloat(const bench::Level& level, Task& t) {
  DCTLifterState_32f* state = nullptr;
  if (t.c0) {
    OURS(qorsDCTLifterInitAlloc_C0_32f)(&state, t.n, t.m, 22, 1.0F, 1.0F);
  } else {
    OURS(qorsDCTLifterInitAlloc_32f)(&state, t.n, t.m, 22, 1.0F);
  }
  const float* x = t.source.data();
  float* y = t.result.data();
  const bench::Entry entry{t.name("32f"), "ours", level.name, kFrames, "frames"};
  bench::add(entry, eachFrame([=, &t, f = OURS(qorsDCTLifter_32f)](int32_t i) { f(x + i * t.n, y + i * t.results(), state); }));
  bench::add({entry.task, "plain", level.name, kFrames, "frames"}, eachFrame([=, &t, f = PLAIN(plainDctLifter_32f)](int32_t i) {
               f(x + i * t.n, y + i * t.results(), t.rows.data(), t.lifter.data(), t.n, t.results());
             }));
  bench::add({entry.task, "read", level.name, kFrames, "frames"},
             bench::readPass(level, t.source.data(), t.source.size() * sizeof(float)));
}

void addInt16(const bench::Level& level, Task& t) {
  DCTLifterState_16s* state = nullptr;
  if (t.c0) {
    OURS(qorsDCTLifterInitAlloc_C0_16s)(&state, t.n, t.m, 22, 1.0F, 1.0F);
  } else {
    OURS(qorsDCTLifterInitAlloc_16s)(&state, t.n, t.m, 22, 1.0F);
  }
  const int16_t* x = t.source16.data();
  int16_t* y = t.result16.data();
  const bench::Entry entry{t.name("16s"), "ours", level.name, kFrames, "frames"};
  bench::add(entry,
             eachFrame([=, &t, f = OURS(qorsDCTLifter_16s_Sfs)](int32_t i) { f(x + i * t.n, y + i * t.results(), state, 4); }));
  bench::add({entry.task, "plain", level.name, kFrames, "frames"}, eachFrame([=, &t, f = PLAIN(plainDctLifter_16s)](int32_t i) {
               f(x + i * t.n, y + i * t.results(), t.rows.data(), t.lifter.data(), t.n, t.results(), 0.0625F);
             }));
}

void addPeers(Task& t) {
  [[maybe_unused]] const std::string task = t.name("32f");
#if QORSR_HAVE_OPENBLAS
  openblas_set_num_threads(1);
  static std::vector<std::vector<float>> liftered;
  std::vector<float>& matrix = liftered.emplace_back(t.rows);
  for (std::size_t i = 0; i < matrix.size(); ++i) matrix[i] *= t.lifter[i / static_cast<std::size_t>(t.n)];
  bench::add({task, "openblas sgemv", "", kFrames, "frames"}, eachFrame([&t, a = matrix.data()](int32_t i) {
               cblas_sgemv(CblasRowMajor, CblasNoTrans, t.results(), t.n, 1.0F, a, t.n, t.source.data() + i * t.n, 1, 0.0F,
                           t.result.data() + i * t.results(), 1);
             }));
#endif
#if QORSR_HAVE_FFTW3F
  static std::vector<float> all(1024), transformed(1024);
  const auto plan = fftwf_plan_r2r_1d(t.n, all.data(), transformed.data(), FFTW_REDFT10, FFTW_MEASURE | FFTW_UNALIGNED);
  bench::add({task, "fftw, all orders", "", kFrames, "frames"}, eachFrame([&t, plan](int32_t i) {
               fftwf_execute_r2r(plan, t.source.data() + i * t.n, transformed.data());
               for (int32_t k = 0; k < t.results(); ++k) {
                 t.result[static_cast<std::size_t>(i) * static_cast<std::size_t>(t.results()) + static_cast<std::size_t>(k)] =
                     t.lifter[static_cast<std::size_t>(k)] * transformed[static_cast<std::size_t>(k) + 1];
               }
             }));
#endif
}

}  // namespace

int main(int argc, char** argv) {
  static Task tasks[] = {{26, 13, false}, {26, 12, true}, {23, 12, true}, {40, 20, false}};
  for (const bench::Level& level : bench::levels()) {
    for (Task& task : tasks) addFloat(level, task);
    addInt16(level, tasks[0]);
  }
  for (Task& task : tasks) addPeers(task);
  return bench::run(argc, argv);
}
