// Deltas and accelerations of an utterance against the plain loop, a pass that only reads or writes the rows, and matrix expressions
// of Eigen. Windows of two frames take four additions an element, whose order is given: on a machine that adds two registers a cycle,
// these and not the stores are the limit of narrow rows.
#include <cstdint>
#include <string>
#include <vector>

#if QORSR_HAVE_EIGEN3
#include <Eigen/Core>
#endif

#include "delta_plain.h"
#include "kit/bench.h"
#include "qorsr.h"

namespace {

struct Utterance {
  std::string name;
  int32_t height, width;
  std::vector<float> source, rows;
  std::vector<int16_t> source16, rows16;

  Utterance(std::string label, int32_t h, int32_t w) : name(std::move(label)), height(h), width(w) {
    source.resize(static_cast<std::size_t>(h) * static_cast<std::size_t>(w + 1));  // Aurora has one element more a row
    rows.resize(static_cast<std::size_t>(h) * static_cast<std::size_t>(w) * 3);
    for (std::size_t i = 0; i < source.size(); ++i) {
      source16.push_back(static_cast<int16_t>(i * 40503 % 4096));
      source[i] = static_cast<float>(source16[i]) / 300.0F;
    }
    rows16.resize(rows.size());
  }
  std::string task(const std::string& member) const {
    return member + ", " + std::to_string(height) + " frames of " + std::to_string(width) + " (" + name + ")";
  }
};

#define OURS(name) level.ours<decltype(name)>(#name)
#define PLAIN(name) level.plain<decltype(name)>(#name)

template <class Ours, class Plain>
void compare(const bench::Level& level, const std::string& task, double frames, Ours ours, Plain plain) {
  bench::add({task, "ours", level.name, frames, "frames"}, ours);
  bench::add({task, "plain", level.name, frames, "frames"}, plain);
}

void addTasks(const bench::Level& level, Utterance& u) {
  const float* x = u.source.data();
  const int16_t* x16 = u.source16.data();
  float* y = u.rows.data();
  int16_t* y16 = u.rows16.data();
  const int32_t h = u.height, w = u.width;
  compare(
      level, u.task("Delta Win2 32f"), h, [=, f = OURS(qorsDelta_Win2_32f_D2)] { f(x, w, y, 2 * w, h, 0.1F, 3); },
      [=, f = PLAIN(plainDelta_Win2_32f)] { f(x, w, y, 2 * w, h, 0.1F); });
  const auto write = PLAIN(plainWriteRows_32f);
  bench::add({u.task("Delta Win2 32f"), "write", level.name}, [=] { write(y, 2 * w, h, 0.5F); });
  const std::string both = u.task("DeltaDelta Win2 32f");
  compare(
      level, both, h, [=, f = OURS(qorsDeltaDelta_Win2_32f_D2)] { f(x, w, y, 3 * w, h, 0.1F, 0.1F, 3); },
      [=, f = PLAIN(plainDeltaDelta_Win2_32f)] { f(x, w, y, 3 * w, h, 0.1F, 0.1F); });
  bench::add({both, "read", level.name, static_cast<double>(h), "frames"},
             bench::readPass(level, u.rows.data(), u.rows.size() * sizeof(float)));
  bench::add({both, "write", level.name}, [=] { write(y, 3 * w, h, 0.5F); });
  compare(
      level, u.task("DeltaDelta Win2 16s"), h,
      [=, f = OURS(qorsDeltaDelta_Win2_16s_D2Sfs)] { f(x16, w, y16, 3 * w, h, 100, 100, 3, 10); },
      [=, f = PLAIN(plainDeltaDelta_Win2_16s)] { f(x16, w, y16, 3 * w, h, 100, 100, 10); });
  compare(
      level, u.task("EvalDelta 32f, window 2"), h, [=, f = OURS(qorsEvalDelta_32f_D2)] { f(y, h, 3 * w, w, 0, 2, 0.1F); },
      [=, f = PLAIN(plainEvalDelta_32f)] { f(y, h, 3 * w, w, 0, 2, 0.1F); });
  compare(
      level, u.task("EvalDelta 16s, window 2"), h, [=, f = OURS(qorsEvalDelta_16s_D2Sfs)] { f(y16, h, 3 * w, w, 0, 2, 100, 10); },
      [=, f = PLAIN(plainEvalDelta_16s)] { f(y16, h, 3 * w, w, 0, 2, 100, 10); });
  if (w != 13) return;
  compare(
      level, u.task("DeltaDelta Aurora 32f"), h, [=, f = OURS(qorsDeltaDelta_Aurora_32f_D2)] { f(x, y, 39, h, 3); },
      [=, f = PLAIN(plainDeltaDelta_Aurora_32f)] { f(x, y, 39, h); });
}

void addPeers([[maybe_unused]] Utterance& u) {
#if QORSR_HAVE_EIGEN3
  using Rows = Eigen::Matrix<float, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor>;
  bench::add({u.task("DeltaDelta Win2 32f"), "eigen", "", static_cast<double>(u.height), "frames"}, [&u] {
    const int32_t h = u.height, w = u.width;
    const Eigen::Map<const Rows> x(u.source.data(), h, w);
    Eigen::Map<Rows> y(u.rows.data(), h, 3 * w);
    y.leftCols(w) = x;
    for (int32_t k = 1; k <= 2; ++k) {  // inner rows; the few at the edges are left out
      const auto in = y.middleCols((k - 1) * w, w);
      y.block(2, k * w, h - 4, w) =
          ((in.middleRows(3, h - 4) - in.middleRows(1, h - 4)) + 2.0F * (in.middleRows(4, h - 4) - in.middleRows(0, h - 4))) * 0.1F;
    }
  });
#endif
}

}  // namespace

int main(int argc, char** argv) {
  static Utterance utterances[] = {{"an utterance", 300, 13}, {"an utterance", 300, 39}};
  for (const bench::Level& level : bench::levels()) {
    for (Utterance& u : utterances) addTasks(level, u);
  }
  for (Utterance& u : utterances) addPeers(u);
  return bench::run(argc, argv);
}
