// Singular value decomposition with both factors against LAPACK (of OpenBLAS, on one thread): QR sweeps as ours (dgesvd), and
// divide and conquer (dgesdd).
#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#if QORSR_HAVE_OPENBLAS && QORSR_HAVE_LAPACKE
#include <cblas.h>
#include <lapacke.h>
#endif

#include "kit/bench.h"
#include "qorsr.h"
#include "singular_values_plain.h"

namespace {

// Elements in [-1/2, 1/2) without structure: a matrix of full rank.
struct Matrix {
  int32_t height, width;
  std::vector<double> a, u, w, v;

  Matrix(int32_t m, int32_t n) : height(m), width(n) {
    uint32_t state = 1;
    const auto rows = static_cast<std::size_t>(m), columns = static_cast<std::size_t>(n);
    for (std::size_t i = 0; i < rows * columns; ++i) {
      state = state * 1664525U + 1013904223U;
      a.push_back(static_cast<double>(state >> 8) / 16777216.0 - 0.5);
    }
    u.resize(rows * columns);
    w.resize(columns);
    v.resize(columns * columns);
  }
  std::string task(const std::string& name) const { return name + ", " + std::to_string(height) + " x " + std::to_string(width); }
};

void addTasks(const bench::Level& level, Matrix& x) {
  const int32_t m = x.height, n = x.width;
  const double* a = x.a.data();
  double *u = x.u.data(), *w = x.w.data(), *v = x.v.data();
  bench::add({x.task("SVD 64f"), "ours", level.name, 1, "matrices"},
             [=, f = level.ours<decltype(qorsSVD_64f_D2)>("qorsSVD_64f_D2")] { f(a, u, m, w, v, n, n, 30); });
  bench::add({x.task("SVD 64f"), "plain", level.name},
             [=, &x, e = std::vector<double>(x.w.size()), f = level.plain<decltype(plainSvd_64f)>("plainSvd_64f")]() mutable {
               x.u = x.a;
               f(u, m, w, v, n, 30, e.data());
             });
  bench::add({x.task("SVDSort 64f"), "ours", level.name, 1, "matrices"},
             [=, f = level.ours<decltype(qorsSVDSort_64f_D2)>("qorsSVDSort_64f_D2")] { f(a, u, m, w, v, n, n, 30); });
}

#if QORSR_HAVE_OPENBLAS && QORSR_HAVE_LAPACKE

// The peers overwrite what they decompose, so they begin with a copy, as ours does inside. Their matrices are stored by columns:
// they see the transposed one, whose work is the same for the square ones.
template <class Decompose>
void addPeer(Matrix& x, const std::string& name, Decompose decompose) {
  double enough = 0;
  decompose(x, x.u.data(), &enough, -1);
  const auto body = [&x, decompose, work = std::vector<double>(static_cast<std::size_t>(enough))]() mutable {
    std::copy(x.a.begin(), x.a.end(), x.u.begin());
    decompose(x, x.u.data(), work.data(), static_cast<lapack_int>(work.size()));
  };
  for (const char* task : {"SVD 64f", "SVDSort 64f"}) bench::add({x.task(task), name, ""}, body);
}

void addPeers(Matrix& x) {
  // U (height x width) replaces the matrix; V' is square.
  addPeer(x, "dgesvd", [](Matrix& s, double* a, double* work, lapack_int size) {
    LAPACKE_dgesvd_work(LAPACK_COL_MAJOR, 'O', 'S', s.height, s.width, a, s.height, s.w.data(), nullptr, 1, s.v.data(), s.width,
                        work, size);
  });
  addPeer(x, "dgesdd",
          [whole = std::vector<double>(x.u.size()), integers = std::vector<lapack_int>(8 * x.w.size())](
              Matrix& s, double* a, double* work, lapack_int size) mutable {
            LAPACKE_dgesdd_work(LAPACK_COL_MAJOR, 'S', s.height, s.width, a, s.height, s.w.data(), whole.data(), s.height,
                                s.v.data(), s.width, work, size, integers.data());
          });
}

#endif

}  // namespace

int main(int argc, char** argv) {
  static Matrix matrices[] = {Matrix(13, 13), Matrix(39, 39), Matrix(100, 39), Matrix(128, 128)};
  for (Matrix& x : matrices) {
    for (const bench::Level& level : bench::levels()) addTasks(level, x);
#if QORSR_HAVE_OPENBLAS && QORSR_HAVE_LAPACKE
    openblas_set_num_threads(1);
    addPeers(x);
#endif
  }
  return bench::run(argc, argv);
}
