// Products of a matrix and a vector against the plain loop, a reading pass, and OpenBLAS on one thread.
#include <cstdint>
#include <string>
#include <vector>

#if QORSR_HAVE_OPENBLAS
#include <cblas.h>
#endif

#include "kit/bench.h"
#include "products_plain.h"
#include "qorsr.h"

namespace {

// A square matrix and a vector in all three types.
struct Square {
  int32_t n;
  std::vector<float> x, v, y;
  std::vector<int16_t> x16, v16, y16;
  std::vector<int32_t> x32, v32, y32;

  explicit Square(int32_t size) : n(size) {
    const auto count = static_cast<std::size_t>(n) * static_cast<std::size_t>(n);
    for (std::size_t i = 0; i < count; ++i) {
      x16.push_back(static_cast<int16_t>(i * 40503 % 65536 - 32768));
      x.push_back(static_cast<float>(x16.back()) / 1000.0F);
      x32.push_back(x16.back() * 1000);
    }
    v.assign(x.begin(), x.begin() + n);
    v16.assign(x16.begin(), x16.begin() + n);
    v32.assign(x32.begin(), x32.begin() + n);
    y.resize(static_cast<std::size_t>(n));
    y16.resize(y.size());
    y32.resize(y.size());
  }
  std::string task(const std::string& operation) const { return operation + ", " + std::to_string(n) + " x " + std::to_string(n); }
};

#define OURS(name) level.ours<decltype(name)>(#name)
#define PLAIN(name) level.plain<decltype(name)>(#name)

template <class Ours, class Plain>
void compare(const bench::Level& level, const std::string& task, Ours ours, Plain plain) {
  bench::add({task, "ours", level.name, 1, "products"}, ours);
  bench::add({task, "plain", level.name}, plain);
}

void addTasks(const bench::Level& level, Square& s) {
  const int32_t n = s.n;
  const float *x = s.x.data(), *v = s.v.data();
  const int16_t *x16 = s.x16.data(), *v16 = s.v16.data();
  const int32_t *x32 = s.x32.data(), *v32 = s.v32.data();
  float* y = s.y.data();
  int16_t* y16 = s.y16.data();
  int32_t* y32 = s.y32.data();
  const double power = 1.0 / (1 << 20);
  compare(
      level, s.task("MatVecMul 32f"), [=, f = OURS(qorsMatVecMul_32f_D2)] { f(x, n, v, n, y, n); },
      [=, f = PLAIN(plainMatVecMul_32f)] { f(x, n, v, n, y, n); });
  bench::add({s.task("MatVecMul 32f"), "read", level.name}, bench::readPass(level, x, s.x.size() * sizeof(float)));
  compare(
      level, s.task("MatVecMul 16s32s"), [=, f = OURS(qorsMatVecMul_16s32s_D2Sfs)] { f(x16, n, v16, n, y32, n, 20); },
      [=, f = PLAIN(plainMatVecMul_16s32s)] { f(x16, n, v16, n, y32, n, 20); });
  bench::add({s.task("MatVecMul 16s32s"), "our 32f", level.name}, [=, f = OURS(qorsMatVecMul_32f_D2)] { f(x, n, v, n, y, n); });
  bench::add({s.task("MatVecMul 16s"), "ours", level.name, 1, "products"},
             [=, f = OURS(qorsMatVecMul_16s_D2Sfs)] { f(x16, n, v16, n, y16, n, 20); });
  bench::add({s.task("MatVecMul 16s"), "our 32f", level.name}, [=, f = OURS(qorsMatVecMul_32f_D2)] { f(x, n, v, n, y, n); });
  compare(
      level, s.task("MatVecMul 32s"), [=, f = OURS(qorsMatVecMul_32s_D2Sfs)] { f(x32, n, v32, n, y32, n, 20); },
      [=, f = PLAIN(plainMatVecMul_32s)] { f(x32, n, v32, n, y32, n, power); });
  compare(
      level, s.task("VecMatMul 32f"), [=, f = OURS(qorsVecMatMul_32f_D2)] { f(v, x, n, n, y, n); },
      [=, f = PLAIN(plainVecMatMul_32f)] { f(v, x, n, n, y, n); });
  compare(
      level, s.task("VecMatMul 16s32s"), [=, f = OURS(qorsVecMatMul_16s32s_D2Sfs)] { f(v16, x16, n, n, y32, n, 20); },
      [=, f = PLAIN(plainVecMatMul_16s32s)] { f(v16, x16, n, n, y32, n, power); });
  bench::add({s.task("VecMatMul 16s32s"), "our 32f", level.name}, [=, f = OURS(qorsVecMatMul_32f_D2)] { f(v, x, n, n, y, n); });
  bench::add({s.task("VecMatMul 16s"), "ours", level.name, 1, "products"},
             [=, f = OURS(qorsVecMatMul_16s_D2Sfs)] { f(v16, x16, n, n, y16, n, 20); });
  bench::add({s.task("VecMatMul 16s"), "our 32f", level.name}, [=, f = OURS(qorsVecMatMul_32f_D2)] { f(v, x, n, n, y, n); });
  compare(
      level, s.task("VecMatMul 32s"), [=, f = OURS(qorsVecMatMul_32s_D2Sfs)] { f(v32, x32, n, n, y32, n, 20); },
      [=, f = PLAIN(plainVecMatMul_32s)] { f(v32, x32, n, n, y32, n, power); });
}

void addPeer(Square& s) {
#if QORSR_HAVE_OPENBLAS
  const int n = s.n;
  const float *x = s.x.data(), *v = s.v.data();
  float* y = s.y.data();
  bench::add({s.task("MatVecMul 32f"), "OpenBLAS", ""},
             [=] { cblas_sgemv(CblasRowMajor, CblasNoTrans, n, n, 1.0F, x, n, v, 1, 0.0F, y, 1); });
  bench::add({s.task("VecMatMul 32f"), "OpenBLAS", ""},
             [=] { cblas_sgemv(CblasRowMajor, CblasTrans, n, n, 1.0F, x, n, v, 1, 0.0F, y, 1); });
#else
  (void)s;
#endif
}

}  // namespace

int main(int argc, char** argv) {
#if QORSR_HAVE_OPENBLAS
  openblas_set_num_threads(1);
#endif
  static Square squares[] = {Square(13), Square(39), Square(40), Square(128), Square(512), Square(2048)};
  for (Square& s : squares) {
    for (const bench::Level& level : bench::levels()) addTasks(level, s);
    addPeer(s);
  }
  return bench::run(argc, argv);
}
