// Reproducible test data: random numbers, and the nasty values that arithmetic goes wrong on.
//
// Everything follows from the seed (QORSR_SEED, printed at the start of each run) and from nothing else, so that runs at different
// instruction levels and with different compilers see the same inputs.
#pragma once

#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>
#include <vector>

namespace kit {

uint64_t seed();  // of this run

class Random {
 public:
  // `stream` tells apart the generators of one test.
  explicit Random(uint64_t stream = 0) : state_(seed() * 0x9E3779B97F4A7C15u + stream) {}

  // One that does not follow the seed: the figures that the documentation states are measured on the same data in every run.
  static Random fixed(uint64_t stream = 0) {
    Random random(0);
    random.state_ = stream;
    return random;
  }

  uint64_t bits() {  // SplitMix64 (Steele, Lea and Flood, 2014)
    uint64_t z = (state_ += 0x9E3779B97F4A7C15u);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
    return z ^ (z >> 31);
  }

  // A whole number from low to high, both included.
  int64_t integer(int64_t low, int64_t high) {
    const uint64_t span = static_cast<uint64_t>(high) - static_cast<uint64_t>(low) + 1;
    return static_cast<int64_t>(static_cast<uint64_t>(low) + (span == 0 ? bits() : bits() % span));
  }

  // Uniform from low to high. The arithmetic is exact enough to be the same everywhere: one product, one sum, in double.
  double real(double low, double high) {
    const double unit = static_cast<double>(bits() >> 11) * 0x1.0p-53;
    return low + (high - low) * unit;
  }

  // Uniform from low to high, times a power of two from 2^first to 2^last: numbers of many magnitudes. One after the other, since the
  // order in which a call's arguments are evaluated is the compiler's.
  double scaled(double low, double high, int first, int last) {
    const double factor = real(low, high);
    return std::ldexp(factor, static_cast<int>(integer(first, last)));
  }

  // A plain value: features around zero for reals, the whole range for integers.
  template <class T>
  T plain() {
    if constexpr (std::is_floating_point_v<T>) {
      return static_cast<T>(real(-10.0, 10.0));
    } else {
      return static_cast<T>(integer(std::numeric_limits<T>::min(), std::numeric_limits<T>::max()));
    }
  }

  // A small value: sums stay far from the limits of the type.
  template <class T>
  T small() {
    if constexpr (std::is_floating_point_v<T>) {
      return static_cast<T>(real(-1.0, 1.0));
    } else {
      return static_cast<T>(integer(std::is_signed_v<T> ? -100 : 0, 100));
    }
  }

  // A nasty value: at the limits, zero of either sign, denormal, infinite, NaN, or of any magnitude.
  template <class T>
  T nasty() {
    using Limits = std::numeric_limits<T>;
    if constexpr (std::is_floating_point_v<T>) {
      switch (integer(0, 15)) {
        case 0:
          return T(0);
        case 1:
          return -T(0);
        case 2:
          return Limits::infinity();
        case 3:
          return -Limits::infinity();
        case 4:
          return Limits::quiet_NaN();
        case 5:
          return Limits::max();
        case 6:
          return Limits::lowest();
        case 7:
          return Limits::denorm_min() * static_cast<T>(integer(1, 1000));
        case 8:
          return T(32767.5);
        case 9:
          return T(-2147483648.0);
        case 10:
          return T(2147483520.0);
        default: {
          const double fraction = real(-1.0, 1.0);  // in an order of its own: compilers differ in that of arguments
          return static_cast<T>(std::ldexp(fraction, static_cast<int>(integer(-60, 60))));
        }
      }
    } else {
      switch (integer(0, 7)) {
        case 0:
          return Limits::min();
        case 1:
          return Limits::max();
        case 2:
          return static_cast<T>(Limits::min() + 1);
        case 3:
          return T(0);
        default:
          return plain<T>();
      }
    }
  }

  // How a test fills its inputs.
  enum Kind { kPlain, kSmall, kNasty };
  template <class T>
  T value(Kind kind) {
    return kind == kPlain ? plain<T>() : kind == kSmall ? small<T>() : nasty<T>();
  }

  template <class T>
  std::vector<T> vector(int64_t count, Kind kind = kPlain) {
    std::vector<T> v(static_cast<std::size_t>(count));
    for (T& x : v) x = value<T>(kind);
    return v;
  }

 private:
  uint64_t state_;
};

inline constexpr Random::Kind kKinds[] = {Random::kPlain, Random::kSmall, Random::kNasty};

// Lengths that meet every remainder of every block, and a few long ones.
const std::vector<int32_t>& lengths();       // 1 to 40, 63, 64, 65, 100, 257
const std::vector<int32_t>& shortLengths();  // a dozen of them, for loops within loops

}  // namespace kit
