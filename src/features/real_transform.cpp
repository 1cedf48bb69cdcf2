#include "features/real_transform.h"

#include <type_traits>
#include <utility>

#include "frame/elementary.h"
#include "frame/lanes.h"
#include "frame/memory.h"

namespace qorsr {
namespace {

// Tables and planes begin on the boundary of a cache line, which is also that of the widest register.
constexpr int64_t kLine = 64, kLineFloats = kLine / 4;
constexpr int64_t wholeLines(int64_t floats) { return (floats + kLineFloats - 1) / kLineFloats * kLineFloats; }

// ---- Tables ----
//
// A pass works on butterflies t = q + s p: stride s (the product of the radices before it), 0 <= q < s, 0 <= p < M / (4 s). The
// twiddle factors w^p, w^2p, w^3p with w = exp(-2 pi i 4 s / (4 M)) stand
//   for s < 16 at index t, so that lanes load them: six planes (w re, w im, w2 re, ...) of M/4;
//   for larger s, where all lanes have the same p, six numbers for each p.
// The last pass needs none. Behind them stand two planes of exp(-2 pi i k / N) / 2, k = 0 to M/2, for the split.

constexpr int64_t kLaneTableStride = 16;

constexpr int64_t passFloats(int64_t points, int64_t s) {
  return wholeLines(s < kLaneTableStride ? 6 * (points / 4) : 6 * (points / 4 / s));
}
constexpr int64_t splitFloats(int64_t points) { return wholeLines(points / 2 + 1); }

constexpr int64_t passesFloats(int64_t points) {
  int64_t floats = 0;
  for (int64_t s = 1; points / s > 4; s *= 4) floats += passFloats(points, s);
  return floats;
}
constexpr int64_t tableFloats(int64_t points) { return passesFloats(points) + 2 * splitFloats(points); }

struct Root {
  double re, im;
};

// exp(-2 pi i k / n), 0 <= k < n, n a power of two: angles up to pi/4 alone reach sine and cosine, so the axes are exact.
Root root(int64_t k, int64_t n) {
  const int64_t eighths = 8 * k;
  if (eighths > 4 * n) {
    const Root r = root(n - k, n);
    return {r.re, -r.im};
  }
  if (eighths > 2 * n) {  // k/n = 1/2 - k'/n
    const Root r = root(n / 2 - k, n);
    return {-r.re, r.im};
  }
  if (eighths > n) {  // 1/4 - k'/n, and so the parts change places
    const double angle = 6.283185307179586477 * (static_cast<double>(n - 4 * k) / static_cast<double>(4 * n));
    return {sin(angle), -cos(angle)};
  }
  const double angle = 6.283185307179586477 * (static_cast<double>(k) / static_cast<double>(n));
  return {cos(angle), -sin(angle)};
}

void fillPass(float* table, int64_t points, int64_t s) {
  const int64_t butterflies = points / 4, step = s < kLaneTableStride ? 1 : s;
  const auto put = [&](int64_t t, int64_t i, double value) {
    table[s < kLaneTableStride ? i * butterflies + t : t / s * 6 + i] = static_cast<float>(value);
  };
  for (int64_t t = 0; t < butterflies; t += step) {
    for (int64_t power = 1; power <= 3; ++power) {
      const Root w = root(t / s * s * power, points);
      put(t, 2 * power - 2, w.re);
      put(t, 2 * power - 1, w.im);
    }
  }
}

void fillTables(float* table, int64_t points) {
  for (int64_t s = 1; points / s > 4; s *= 4) {
    fillPass(table, points, s);
    table += passFloats(points, s);
  }
  for (int64_t k = 0; k <= points / 2; ++k) {
    const Root w = root(k, 2 * points);
    table[k] = static_cast<float>(0.5 * w.re);
    table[splitFloats(points) + k] = static_cast<float>(0.5 * w.im);
  }
}

// ---- Complex numbers in lanes ----

template <int W>
struct Complex {
  Lanes<float, W> re, im;

  friend Complex operator+(const Complex& a, const Complex& b) { return {a.re + b.re, a.im + b.im}; }
  friend Complex operator-(const Complex& a, const Complex& b) { return {a.re - b.re, a.im - b.im}; }
  friend Complex operator*(const Complex& a, const Complex& w) { return {a.re * w.re - a.im * w.im, a.im * w.re + a.re * w.im}; }
};

// a - i b and a + i b.
template <int W>
inline Complex<W> minusI(const Complex<W>& a, const Complex<W>& b) {
  return {a.re + b.im, a.im - b.re};
}
template <int W>
inline Complex<W> plusI(const Complex<W>& a, const Complex<W>& b) {
  return {a.re - b.im, a.im + b.re};
}

// Real and imaginary parts in planes.
struct Planes {
  float *re, *im;

  template <int W>
  Complex<W> load(int64_t t) const {
    return {Lanes<float, W>::load(re + t), Lanes<float, W>::load(im + t)};
  }
  template <int W>
  void store(int64_t t, const Complex<W>& z) const {
    z.re.store(re + t);
    z.im.store(im + t);
  }
};

// The signal as complex numbers, real and imaginary parts in turn.
template <class T>
struct Signal {
  const T* x;

  template <int W>
  Complex<W> load(int64_t t) const {
    if constexpr (W == 1) {
      return {loadAs<float, 1>(x + 2 * t), loadAs<float, 1>(x + 2 * t + 1)};
    } else {
      const auto first = loadAs<float, W>(x + 2 * t), second = loadAs<float, W>(x + 2 * t + W);
      return {permuted<order::everySecond<0>>(first, second), permuted<order::everySecond<1>>(first, second)};
    }
  }
};

// ---- Passes ----

template <int W>
struct Four {
  Complex<W> y[4];
};

// The transform of four numbers that lie a quarter of the array apart.
template <int W, class Source>
inline Four<W> fourPoints(const Source& in, int64_t t, int64_t quarter) {
  const auto a = in.template load<W>(t), b = in.template load<W>(t + quarter), c = in.template load<W>(t + 2 * quarter),
             d = in.template load<W>(t + 3 * quarter);
  const auto sumAC = a + c, differenceAC = a - c, sumBD = b + d, differenceBD = b - d;
  return {{sumAC + sumBD, minusI(differenceAC, differenceBD), sumAC - sumBD, plusI(differenceAC, differenceBD)}};
}

// Four results a butterfly, S lanes of each in turn: the order that the next pass reads, where its stride S is below W.
template <int S, int W>
inline void storeInTurn(float* p, const Lanes<float, W>& a, const Lanes<float, W>& b, const Lanes<float, W>& c,
                        const Lanes<float, W>& d) {
  const auto ac = interleaved<S>(a, c), bd = interleaved<S>(b, d);
  const auto low = interleaved<S>(ac.first, bd.first), high = interleaved<S>(ac.second, bd.second);
  low.first.store(p);
  low.second.store(p + W);
  high.first.store(p + 2 * W);
  high.second.store(p + 3 * W);
}

// A pass of stride S = 1 or 4: twiddle factors by lane.
template <int W, int S, class Source>
inline void lanePass(const Source& in, const Planes& out, int64_t quarter, const float* table) {
  for (int64_t t = 0; t < quarter; t += W) {
    Four<W> f = fourPoints<W>(in, t, quarter);
    for (int j = 1; j < 4; ++j) {
      const float* const w = table + 2 * (j - 1) * quarter + t;
      f.y[j] = f.y[j] * Complex<W>{Lanes<float, W>::load(w), Lanes<float, W>::load(w + quarter)};
    }
    if constexpr (S < W) {
      storeInTurn<S>(out.re + 4 * t, f.y[0].re, f.y[1].re, f.y[2].re, f.y[3].re);
      storeInTurn<S>(out.im + 4 * t, f.y[0].im, f.y[1].im, f.y[2].im, f.y[3].im);
    } else {
      const int64_t to = 4 * t - 3 * (t % S);
      for (int j = 0; j < 4; ++j) out.store(to + j * S, f.y[j]);
    }
  }
}

// A pass of a larger stride: one p, and so one set of twiddle factors, for all lanes.
template <int W>
inline void widePass(const Planes& in, const Planes& out, int64_t quarter, int64_t s, const float* table) {
  for (int64_t first = 0; first < quarter; first += s, table += 6) {
    Complex<W> w[4];
    for (int j = 1; j < 4; ++j) w[j] = {Lanes<float, W>(table[2 * j - 2]), Lanes<float, W>(table[2 * j - 1])};
    for (int64_t q = 0; q < s; q += W) {
      const Four<W> f = fourPoints<W>(in, first + q, quarter);
      const int64_t to = 4 * first + q;
      out.store(to, f.y[0]);
      for (int j = 1; j < 4; ++j) out.store(to + j * s, f.y[j] * w[j]);
    }
  }
}

// The last pass: radix 4, or radix 2 where that is left, without twiddle factors.
template <int W, class Source>
inline void lastPass(const Source& in, const Planes& out, int64_t points, int64_t radix) {
  if (radix == 4) {
    const int64_t quarter = points / 4;
    for (int64_t t = 0; t < quarter; t += W) {
      const Four<W> f = fourPoints<W>(in, t, quarter);
      for (int j = 0; j < 4; ++j) out.store(t + j * quarter, f.y[j]);
    }
  } else if (radix == 2) {
    const int64_t half = points / 2;
    for (int64_t t = 0; t < half; t += W) {
      const auto a = in.template load<W>(t), b = in.template load<W>(t + half);
      out.store(t, a + b);
      out.store(t + half, a - b);
    }
  } else {
    out.store(0, in.template load<1>(0));
  }
}

// ---- The split, and what becomes of the bins ----

struct ToSpectrum {
  float* spectrum;

  template <int W>
  void put(int64_t k, const Complex<W>& x) const {
    if constexpr (W == 1) {
      x.re.store(spectrum + 2 * k);
      x.im.store(spectrum + 2 * k + 1);
    } else {
      const auto pairs = interleaved<1>(x.re, x.im);
      pairs.first.store(spectrum + 2 * k);
      pairs.second.store(spectrum + 2 * k + W);
    }
  }
  void realEnds(int64_t points) const { spectrum[1] = spectrum[2 * points + 1] = 0.0F; }
};

struct ToMagnitudes {
  float* magnitudes;

  template <int W>
  void put(int64_t k, const Complex<W>& x) const {
    sqrt(x.re * x.re + x.im * x.im).store(magnitudes + k);
  }
  void realEnds(int64_t) const {}
};

// Bins k to k + W - 1, and points - k downwards. z holds one number more than `points`: the first one again.
template <int W, class Sink>
inline void splitBins(const Planes& z, const float* table, int64_t points, int64_t k, const Sink& sink) {
  const Lanes<float, W> half(0.5F);
  const Complex<W> w{Lanes<float, W>::load(table + k), Lanes<float, W>::load(table + splitFloats(points) + k)};
  const int64_t mirror = points - k - (W - 1);
  const Complex<W> a = z.load<W>(k), straight = z.load<W>(mirror), b{reversed(straight.re), reversed(straight.im)};
  const Complex<W> even{(a.re + b.re) * half, (a.im - b.im) * half}, odd{a.im + b.im, b.re - a.re};
  const Complex<W> turned = odd * w, low = even + turned, high = even - turned;
  sink.template put<W>(k, low);
  sink.template put<W>(mirror, {reversed(high.re), reversed(Lanes<float, W>(0.0F) - high.im)});
}

template <int W, class Sink>
inline void split(const Planes& z, const float* table, int64_t points, const Sink& sink) {
  z.re[points] = z.re[0];
  z.im[points] = z.im[0];
  int64_t k = 0;
  do {
    splitBins<W>(z, table, points, k, sink);
    k += W;
  } while (k < points / 2);
  if (points > 1) splitBins<1>(z, table, points, points / 2, sink);
  sink.realEnds(points);
}

// ---- The split backwards ----

// Bins k to k + W - 1 of a spectrum, real and imaginary parts in turn.
template <int W>
inline Complex<W> loadBins(const float* spectrum, int64_t k) {
  return Signal<float>{spectrum}.load<W>(k);
}

// Z[k] = (S + 2 i conj(w) D) / 2 with S = X[k] + conj X[M-k], D = X[k] - conj X[M-k], and Z[M-k] = conj(S - 2 i conj(w) D) / 2 likewise,
// where w is half the root of the tables.
template <int W>
inline void joinBins(const float* spectrum, const float* table, int64_t points, int64_t k, const Planes& z) {
  const Lanes<float, W> half(0.5F);
  const Complex<W> w{Lanes<float, W>::load(table + k), Lanes<float, W>::load(table + splitFloats(points) + k)};
  const int64_t mirror = points - k - (W - 1);
  const Complex<W> a = loadBins<W>(spectrum, k), straight = loadBins<W>(spectrum, mirror),
                   b{reversed(straight.re), reversed(straight.im)};
  const Complex<W> even{(a.re + b.re) * half, (a.im - b.im) * half}, difference{a.re - b.re, a.im + b.im};
  const Complex<W> odd{difference.re * w.re + difference.im * w.im, difference.im * w.re - difference.re * w.im};
  const Complex<W> low = plusI(even, odd), high = minusI(even, odd);
  z.store(k, low);
  z.store(mirror, Complex<W>{reversed(high.re), reversed(Lanes<float, W>(0.0F) - high.im)});
}

template <int W>
inline void join(const float* spectrum, const float* table, int64_t points, const Planes& z) {
  for (int64_t k = 0; k < points / 2; k += W) joinBins<W>(spectrum, table, points, k, z);
  if (points > 1) joinBins<1>(spectrum, table, points, points / 2, z);
  const float first = spectrum[0], last = spectrum[2 * points];
  z.re[0] = (first + last) * 0.5F;
  z.im[0] = (first - last) * 0.5F;
}

// The samples, in turn in the two planes, divided by their number.
template <int W>
inline void putSamples(const Planes& z, int64_t points, float* x) {
  const Lanes<float, W> factor(1.0F / static_cast<float>(points));
  for (int64_t n = 0; n < points; n += W) {
    const Complex<W> pair = z.load<W>(n);
    ToSpectrum{x}.put<W>(n, {pair.re * factor, pair.im * factor});
  }
}

// ---- The whole ----

constexpr int64_t planeFloats(int64_t points) { return wholeLines(points + 1); }

// The complex transform, from `in` by way of two pairs of planes: leaves the result in the one that is returned, and `table` at what
// stands behind the tables of the passes.
template <int W, class Source>
inline Planes transformPoints(const float*& table, const Source& in, Planes from, Planes to, int64_t points) {
  const int64_t quarter = points / 4;
  const auto turn = [&](int64_t s) {
    table += passFloats(points, s);
    std::swap(from, to);
  };
  if (points <= 4) {
    lastPass<1>(in, to, points, points);
    return to;
  }
  lanePass<W, 1>(in, to, quarter, table);
  turn(1);
  int64_t s = 4;
  if (points / s > 4) {
    lanePass<W, 4>(from, to, quarter, table);
    turn(s);
    s *= 4;
  }
  for (; points / s > 4; s *= 4) {
    widePass<W>(from, to, quarter, s, table);
    turn(s);
  }
  lastPass<W>(from, to, points, points / s);
  return to;
}

// Two pairs of planes in the work memory.
struct WorkPlanes {
  Planes first, second;

  WorkPlanes(float* work, int64_t plane) : first{work, work + plane}, second{work + 2 * plane, work + 3 * plane} {}
};

template <int W, class T, class Sink>
inline void run(const float* table, float* work, const T* x, int64_t points, const Sink& sink) {
  const WorkPlanes planes(work, planeFloats(points));
  const Planes z = transformPoints<W>(table, Signal<T>{x}, planes.first, planes.second, points);
  split<W>(z, table, points, sink);
}

template <int W>
inline void runBackwards(const float* table, float* work, const float* spectrum, int64_t points, float* x) {
  const WorkPlanes planes(work, planeFloats(points));
  join<W>(spectrum, table + passesFloats(points), points, planes.first);
  const auto exchanged = [](const Planes& z) { return Planes{z.im, z.re}; };
  const Planes z = transformPoints<W>(table, exchanged(planes.first), exchanged(planes.first), exchanged(planes.second), points);
  putSamples<W>(exchanged(z), points, x);
}

// Calls body(number of lanes, tables, work memory, points).
template <class Body>
void withLanes(const RealTransform& setup, void* work, const Body& body) {
  const auto* table = reinterpret_cast<const float*>(reinterpret_cast<const std::byte*>(&setup) + setup.tables);
  auto* area = static_cast<float*>(alignUp(work, kLine));
  const int64_t points = int64_t{1} << (setup.order - 1);
  constexpr int kLanes = kNativeLanes<float>;
  if (points >= 4 * kLanes) {
    body(std::integral_constant<int, kLanes>(), table, area, points);
  } else {
    body(std::integral_constant<int, 1>(), table, area, points);
  }
}

template <class T, class Sink>
void runWithLanes(const RealTransform& setup, const T* x, void* work, const Sink& sink) {
  withLanes(setup, work,
            [&](auto lanes, const float* table, float* area, int64_t points) { run<lanes>(table, area, x, points, sink); });
}

}  // namespace

int64_t RealTransform::setupBytes(int order) {
  return static_cast<int64_t>(sizeof(RealTransform)) + kLine - 1 + 4 * tableFloats(int64_t{1} << (order - 1));
}

int64_t RealTransform::workBytes(int order) { return kLine - 1 + 4 * 4 * planeFloats(int64_t{1} << (order - 1)); }

RealTransform* RealTransform::init(void* block, int order) {
  auto* setup = static_cast<RealTransform*>(block);
  std::byte* const begin = static_cast<std::byte*>(block);
  std::byte* const tables = alignUp(begin + sizeof(RealTransform), kLine);
  setup->order = order;
  setup->tables = static_cast<int32_t>(tables - begin);
  fillTables(reinterpret_cast<float*>(tables), int64_t{1} << (order - 1));
  return setup;
}

void RealTransform::transform(const float* x, float* spectrum, void* work) const {
  runWithLanes(*this, x, work, ToSpectrum{spectrum});
}

void RealTransform::transform(const int16_t* x, float* spectrum, void* work) const {
  runWithLanes(*this, x, work, ToSpectrum{spectrum});
}

void RealTransform::inverse(const float* spectrum, float* x, void* work) const {
  withLanes(*this, work, [&](auto lanes, const float* table, float* area, int64_t points) {
    runBackwards<lanes>(table, area, spectrum, points, x);
  });
}

void RealTransform::magnitudes(const float* x, float* magnitudes, void* work) const {
  runWithLanes(*this, x, work, ToMagnitudes{magnitudes});
}

}  // namespace qorsr
