// Weighted statistics and the edits of rows and columns against the plain loop and a reading pass.
#include <cstdint>
#include <string>
#include <vector>

#include "kit/bench.h"
#include "qorsr.h"
#include "row_edits_plain.h"

namespace {

struct Block {
  std::string name;
  int32_t height, width;
  std::vector<float> reals, weights, means, variances, gathered, sums, squares;
  std::vector<double> doubles, doubleWeights, doubleMeans, doubleVariances;
  std::vector<int16_t> integers, row;
  std::vector<int32_t> columns, indices;
  std::vector<uint16_t> second;
  std::vector<const double*> rows;

  Block(std::string label, int32_t h, int32_t w) : name(std::move(label)), height(h), width(w) {
    const auto count = static_cast<std::size_t>(h) * static_cast<std::size_t>(w), n = static_cast<std::size_t>(w);
    for (std::size_t i = 0; i < count; ++i) {
      integers.push_back(static_cast<int16_t>(i * 40503 % 65536 - 32768));
      reals.push_back(static_cast<float>(integers[i]) / 1000.0F);
    }
    doubles.assign(reals.begin(), reals.end());
    weights.assign(static_cast<std::size_t>(h), 1.0F / static_cast<float>(h));
    doubleWeights.assign(weights.begin(), weights.end());
    means.assign(n, 0.0F);  // so that repeated edits in place keep the data as they are
    variances.assign(n, 1.0F);
    sums.resize(n);
    squares.resize(n);
    doubleMeans.resize(n);
    doubleVariances.resize(n);
    row.assign(n, 0);
    gathered.resize(count);
    for (int32_t c = 0; c < w; ++c) columns.push_back((c * 7) % w);
    for (int32_t r = 0; r < h; ++r) {
      second.push_back(static_cast<uint16_t>(r % 1000));
      indices.push_back(r - second.back());
      rows.push_back(doubles.data() + static_cast<std::ptrdiff_t>(r) * w);
    }
  }
  std::string task(const std::string& operation) const {
    return operation + ", " + std::to_string(height) + " x " + std::to_string(width) + " (" + name + ")";
  }
};

#define OURS(name) level.ours<decltype(name)>(#name)
#define PLAIN(name) level.plain<decltype(name)>(#name)

template <class Ours, class Plain>
void compare(const bench::Level& level, const std::string& task, Ours ours, Plain plain) {
  bench::add({task, "ours", level.name}, ours);
  bench::add({task, "plain", level.name}, plain);
}

void addStatistics(const bench::Level& level, Block& b) {
  Block* p = &b;
  const int32_t h = b.height, w = b.width;
  const float *x = b.reals.data(), *weights = b.weights.data();
  float *m = b.sums.data(), *v = b.squares.data();
  const double *x64 = b.doubles.data(), *weights64 = b.doubleWeights.data();
  double *m64 = b.doubleMeans.data(), *v64 = b.doubleVariances.data();
  compare(
      level, b.task("WeightedMeanColumn 32f"), [=, f = OURS(qorsWeightedMeanColumn_32f_D2)] { f(x, w, weights, h, m, w); },
      [=, f = PLAIN(plainWeightedMeanColumn_32f)] { f(x, w, weights, h, m, w); });
  bench::add({b.task("WeightedMeanColumn 32f"), "read", level.name}, bench::readPass(level, x, b.reals.size() * sizeof(float)));
  compare(
      level, b.task("WeightedVarColumn 32f"), [=, f = OURS(qorsWeightedVarColumn_32f_D2)] { f(x, w, weights, h, m, v, w); },
      [=, f = PLAIN(plainWeightedVarColumn_32f)] { f(x, w, weights, h, m, v, w); });
  compare(
      level, b.task("WeightedMeanVarColumn 32f"), [=, f = OURS(qorsWeightedMeanVarColumn_32f_D2)] { f(x, w, weights, h, m, v, w); },
      [=, f = PLAIN(plainWeightedMeanVarColumn_32f)] { f(x, w, weights, h, m, v, w); });
  compare(
      level, b.task("WeightedMeanVarColumn 64f"),
      [=, f = OURS(qorsWeightedMeanVarColumn_64f_D2)] { f(x64, w, weights64, h, m64, v64, w); },
      [=, f = PLAIN(plainWeightedMeanVarColumn_64f)] { f(x64, w, weights64, h, m64, v64, w); });
  compare(
      level, b.task("AddAllRowSum 32f"), [=, f = OURS(qorsAddAllRowSum_32f_D2)] { f(x, w, h, m, w); },
      [=, f = PLAIN(plainAddAllRowSum_32f)] { f(x, w, h, m, w); });
  compare(
      level, b.task("AddNRows 32f"),
      [=, f = OURS(qorsAddNRows_32f_D2)] { f(x, h, 0, w, p->indices.data(), p->second.data(), h, m, w, 1.0F); },
      [=, f = PLAIN(plainAddNRows_32f)] { f(x, h, 0, w, p->indices.data(), p->second.data(), h, m, w, 1.0F); });
}

void addEdits(const bench::Level& level, Block& b) {
  Block* p = &b;
  const int32_t h = b.height, w = b.width;
  float* x = b.reals.data();
  int16_t* x16 = b.integers.data();
  const int16_t* row16 = b.row.data();
  const float *zeros = b.means.data(), *ones = b.variances.data();
  compare(
      level, b.task("NormalizeColumn 32f"), [=, f = OURS(qorsNormalizeColumn_32f_D2)] { f(x, w, h, zeros, ones, w); },
      [=, f = PLAIN(plainNormalizeColumn_32f)] { f(x, w, h, zeros, ones, w); });
  compare(
      level, b.task("NormalizeColumn 16s"), [=, f = OURS(qorsNormalizeColumn_16s_D2Sfs)] { f(x16, w, h, row16, row16, w, 3); },
      [=, f = PLAIN(plainNormalizeColumn_16s)] { f(x16, w, h, row16, row16, w, 3); });
  compare(
      level, b.task("SubRow 16s"), [=, f = OURS(qorsSubRow_16s_D2)] { f(row16, w, x16, w, h); },
      [=, f = PLAIN(plainSubRow_16s)] { f(row16, w, x16, w, h); });
  compare(
      level, b.task("SubRow 32f"), [=, f = OURS(qorsSubRow_32f_D2)] { f(zeros, w, x, w, h); },
      [=, f = PLAIN(plainSubRow_32f)] { f(zeros, w, x, w, h); });
  compare(
      level, b.task("CopyColumn 32f"), [=, f = OURS(qorsCopyColumn_32f_D2)] { f(x, w, p->gathered.data(), w, h); },
      [=, f = PLAIN(plainCopyColumn_32f)] { f(x, w, p->gathered.data(), w, h); });
  compare(
      level, b.task("CopyColumn_Indirect 32f"),
      [=, f = OURS(qorsCopyColumn_Indirect_32f_D2)] { f(x, w, w, p->gathered.data(), p->columns.data(), w, w, h); },
      [=, f = PLAIN(plainCopyColumn_Indirect_32f)] { f(x, w, w, p->gathered.data(), p->columns.data(), w, w, h); });
  compare(
      level, b.task("AddMulRow 64f"), [=, f = OURS(qorsAddMulRow_64f)] { f(p->doubleWeights.data(), p->doubles.data(), h, 0.0); },
      [=, f = PLAIN(plainAddMulRow_64f)] { f(p->doubleWeights.data(), p->doubles.data(), h, 0.0); });
  compare(
      level, b.task("DotProdColumn 64f"),
      [=, f = OURS(qorsDotProdColumn_64f_D2L)] { f(p->rows.data(), w, h, p->doubleMeans.data(), 0, 1, 0); },
      [=, f = PLAIN(plainDotProdColumn_64f)] { f(p->rows.data(), h, p->doubleMeans.data(), 0, 1, 0); });
}

}  // namespace

int main(int argc, char** argv) {
  static Block blocks[] = {{"an utterance", 100, 39}, {"in cache", 1000, 13}, {"beyond the caches", 100000, 40}};
  for (const bench::Level& level : bench::levels()) {
    for (Block& block : blocks) {
      addStatistics(level, block);
      addEdits(level, block);
    }
  }
  return bench::run(argc, argv);
}
