// Distances, merging and splitting of Gaussians against the plain loop, at the dimensions of model building.
#include <cstdint>
#include <string>

#include "gaussian_operations_plain.h"
#include "kit/bench.h"
#include "qorsr.h"

namespace {

constexpr int32_t kLong = 512;

// Two Gaussians, and room for results. Means are positive too: the Bhattacharyya distance asks for that.
template <class T>
struct Pair {
  T m1[kLong], v1[kLong], m2[kLong], v2[kLong], m[kLong], v[kLong];

  Pair() {
    for (int32_t i = 0; i < kLong; ++i) {
      const auto noise = [i](int64_t step) { return static_cast<T>(int64_t{i} * step % 65536) / T(65536); };
      m1[i] = 1 + noise(40503), v1[i] = T(0.5) + noise(25717), m2[i] = 1 + noise(11743), v2[i] = T(0.5) + noise(52021);
    }
  }
};
Pair<float> single;
Pair<double> twofold;

#define OURS(name) level.ours<decltype(name)>(#name)
#define PLAIN(name) level.plain<decltype(name)>(#name)

// Repeated a hundred times in one body: a call of 39 elements takes some ten nanoseconds.
template <class F>
std::function<void()> often(F f) {
  return [f] {
    for (int i = 0; i < 100; ++i) f();
  };
}

template <class Ours, class Plain>
void addPair(const bench::Level& level, const std::string& task, Ours ours, Plain plain) {
  bench::add({task, "ours", level.name}, often(ours));
  bench::add({task, "plain", level.name}, often(plain));
}

template <class T, class Dist, class Merge, class Split, class PlainDist, class PlainMerge, class PlainSplit>
void addOperations(const bench::Level& level, const std::string& type, int32_t n, Pair<T>& p, Dist dist, Merge merge, Split split,
                   PlainDist plainDist, PlainMerge plainMerge, PlainSplit plainSplit) {
  const std::string size = " " + type + ", " + std::to_string(n) + " elements";
  Pair<T>* const q = &p;
  addPair(
      level, "GaussianDist" + size,
      [=] {
        T result;
        dist(q->m1, q->v1, q->m2, q->v2, n, &result, T(3), T(1), T(5), T(2));
      },
      [=] { plainDist(q->m1, q->v1, q->m2, q->v2, n, T(3), T(1), T(5), T(2)); });
  addPair(
      level, "GaussianMerge" + size,
      [=] {
        T det;
        merge(q->m1, q->v1, q->m2, q->v2, q->m, q->v, n, &det, T(3), T(5));
      },
      [=] { plainMerge(q->m1, q->v1, q->m2, q->v2, q->m, q->v, n, T(3), T(5)); });
  addPair(
      level, "GaussianSplit" + size, [=] { split(q->m1, q->v1, q->m, q->v, n, T(0)); },
      [=] { plainSplit(q->m1, q->v1, q->m, q->v, n, T(0)); });
}

void addDistances(const bench::Level& level, int32_t n) {
  const std::string size = ", " + std::to_string(n) + " elements";
  const Pair<float>* const q = &single;
  const auto plain = [=, f = PLAIN(plainBhatDist)] { f(q->m1, q->v1, q->m2, q->v2, n); };
  const auto plainSLog = [=, f = PLAIN(plainBhatDistSLog)] { f(q->m1, q->v1, q->m2, q->v2, n, 1.0F, 2.0F); };
  addPair(
      level, "BhatDist 32f" + size,
      [=, f = OURS(qorsBhatDist_32f)] {
        float result;
        f(q->m1, q->v1, q->m2, q->v2, n, &result);
      },
      plain);
  addPair(
      level, "BhatDist 32f64f" + size,
      [=, f = OURS(qorsBhatDist_32f64f)] {
        double result;
        f(q->m1, q->v1, q->m2, q->v2, n, &result);
      },
      plain);
  addPair(
      level, "BhatDistSLog 32f" + size,
      [=, f = OURS(qorsBhatDistSLog_32f)] {
        float result;
        f(q->m1, q->v1, q->m2, q->v2, n, &result, 1.0F, 2.0F);
      },
      plainSLog);
  addPair(
      level, "BhatDistSLog 32f64f" + size,
      [=, f = OURS(qorsBhatDistSLog_32f64f)] {
        double result;
        f(q->m1, q->v1, q->m2, q->v2, n, &result, 1.0F, 2.0F);
      },
      plainSLog);
}

void addTasks(const bench::Level& level, int32_t n) {
  addOperations(level, "32f", n, single, OURS(qorsGaussianDist_32f), OURS(qorsGaussianMerge_32f), OURS(qorsGaussianSplit_32f),
                PLAIN(plainGaussianDist_32f), PLAIN(plainGaussianMerge_32f), PLAIN(plainGaussianSplit_32f));
  addOperations(level, "64f", n, twofold, OURS(qorsGaussianDist_64f), OURS(qorsGaussianMerge_64f), OURS(qorsGaussianSplit_64f),
                PLAIN(plainGaussianDist_64f), PLAIN(plainGaussianMerge_64f), PLAIN(plainGaussianSplit_64f));
  addDistances(level, n);
}

#undef OURS
#undef PLAIN

}  // namespace

int main(int argc, char** argv) {
  for (const bench::Level& level : bench::levels()) {
    for (const int32_t n : {39, 512}) addTasks(level, n);
  }
  return bench::run(argc, argv);
}
