// Lanes<T, N>: arithmetic lane by lane, loads that widen, conversions, choices.
#pragma once

#include <bit>
#include <cstdint>
#include <limits>
#include <type_traits>

#include "frame/lanes/native.h"

namespace qorsr {

template <class T, int N>
struct Lanes {
  static_assert(N > 0 && (N & (N - 1)) == 0, "the number of lanes is a power of two");
  static constexpr int kPart = N * static_cast<int>(sizeof(T)) <= kNativeBytes ? N : kNativeBytes / static_cast<int>(sizeof(T));
  static constexpr int kParts = N / kPart;
  using Element = T;
  using Part = native::Vector<T, kPart>;

  Part part[kParts];

  Lanes() = default;
  explicit Lanes(T value) {
    for (Part& p : part) p = value - Part{};  // minus: keeps the sign of a zero
  }

  // Four lanes from four numbers, without a detour through memory.
  static Lanes of(T l0, T l1, T l2, T l3) requires(N == 4) {
    Lanes v;
    if constexpr (kParts == 1) {
      v.part[0] = Part{l0, l1, l2, l3};
    } else {
      v.part[0] = Part{l0, l1};
      v.part[1] = Part{l2, l3};
    }
    return v;
  }
  static Lanes load(const T* p) {
    Lanes v;
    for (int i = 0; i < kParts; ++i) v.part[i] = native::load<Part>(p + i * kPart);
    return v;
  }
  void store(T* p) const {
    for (int i = 0; i < kParts; ++i) native::store(p + i * kPart, part[i]);
  }

  // Applies `f` to each native part of `a` (and of `b`).
  template <class F>
  static Lanes each(const Lanes& a, F f) {
    Lanes v;
    for (int i = 0; i < kParts; ++i) v.part[i] = f(a.part[i]);
    return v;
  }
  template <class F>
  static Lanes each(const Lanes& a, const Lanes& b, F f) {
    Lanes v;
    for (int i = 0; i < kParts; ++i) v.part[i] = f(a.part[i], b.part[i]);
    return v;
  }

  friend Lanes operator+(const Lanes& a, const Lanes& b) {
    return each(a, b, [](Part x, Part y) { return x + y; });
  }
  friend Lanes operator-(const Lanes& a, const Lanes& b) {
    return each(a, b, [](Part x, Part y) { return x - y; });
  }
  friend Lanes operator*(const Lanes& a, const Lanes& b) {
    return each(a, b, [](Part x, Part y) { return x * y; });
  }
  friend Lanes operator/(const Lanes& a, const Lanes& b) {
    return each(a, b, [](Part x, Part y) { return x / y; });
  }
  Lanes& operator+=(const Lanes& b) { return *this = *this + b; }
  Lanes& operator-=(const Lanes& b) { return *this = *this - b; }
  Lanes& operator*=(const Lanes& b) { return *this = *this * b; }

  friend Lanes min(const Lanes& a, const Lanes& b) {
    return each(a, b, [](Part x, Part y) { return Part(native::min(x, y)); });
  }
  friend Lanes max(const Lanes& a, const Lanes& b) {
    return each(a, b, [](Part x, Part y) { return Part(native::max(x, y)); });
  }
  // Without the sign, also of a NaN.
  friend Lanes abs(const Lanes& a) {
    using Bits = std::conditional_t<sizeof(T) == 8, int64_t, int32_t>;
    return each(a, [](Part x) {
      return std::bit_cast<Part>(std::bit_cast<native::Vector<Bits, kPart>>(x) & std::numeric_limits<Bits>::max());
    });
  }
  // -|a|; a NaN stays a NaN.
  friend Lanes minusAbs(const Lanes& a) {
    using Bits = std::conditional_t<sizeof(T) == 8, int64_t, int32_t>;
    return each(a, [](Part x) {
      return std::bit_cast<Part>(std::bit_cast<native::Vector<Bits, kPart>>(x) | std::numeric_limits<Bits>::min());
    });
  }
  friend Lanes sqrt(const Lanes& a) {
    return each(a, [](Part x) { return Part(native::sqrt(x)); });
  }
  // Arithmetic for signed lanes; `count` from 0 to the width - 1.
  friend Lanes operator>>(const Lanes& a, int count) {
    return each(a, [=](Part x) { return Part(x >> static_cast<T>(count)); });
  }

  // x < y ? a : b, lane by lane: a NaN in x or y gives b.
  friend Lanes selectLess(const Lanes& x, const Lanes& y, const Lanes& a, const Lanes& b) {
    Lanes v;
    for (int i = 0; i < kParts; ++i) v.part[i] = x.part[i] < y.part[i] ? a.part[i] : b.part[i];
    return v;
  }
  friend bool anyLess(const Lanes& x, const Lanes& y) {
    auto any = x.part[0] < y.part[0];
    for (int i = 1; i < kParts; ++i) any |= x.part[i] < y.part[i];
    return native::anyHolds(any);
  }
  friend bool allLess(const Lanes& x, const Lanes& y) {
    bool all = true;
    for (int i = 0; i < kParts; ++i) all &= native::allLess(x.part[i], y.part[i]);
    return all;
  }
};

// ---- Loads that convert ----

// N numbers of type `From` at p, as lanes of type T. int16 to float, double or int32, and float to double, are exact.
template <class T, int N, class From>
inline Lanes<T, N> loadAs(const From* p) {
  using L = Lanes<T, N>;
  if constexpr (std::is_same_v<T, From>) {
    return L::load(p);
  } else if constexpr (N == 1) {
    return L(static_cast<T>(*p));
  } else {
    L v;
    for (int i = 0; i < L::kParts; ++i) {
      const From* source = p + i * L::kPart;
      if constexpr (std::is_same_v<From, int16_t> && std::is_same_v<T, double>) {
        v.part[i] = native::widenInt16ToDouble<L::kPart>(source);
      } else if constexpr (std::is_same_v<From, int16_t> && std::is_same_v<T, int32_t>) {
        v.part[i] = native::widenInt16<L::kPart>(source);
      } else if constexpr (std::is_same_v<From, int16_t>) {
        v.part[i] = __builtin_convertvector(native::widenInt16<L::kPart>(source), typename L::Part);
      } else if constexpr (std::is_same_v<T, double>) {
        v.part[i] = native::widenToDouble<L::kPart>(source);
      } else {
        v.part[i] = __builtin_convertvector(native::load<native::Vector<From, L::kPart>>(source), typename L::Part);
      }
    }
    return v;
  }
}

// ---- Conversions between registers ----

// The numbers as type To, as static_cast does. To a wider type exact; int32 or double to float rounds in the mode in force; between
// signed and unsigned modulo two to the width. To fewer bits: see saturated(), truncated() and nearest().
template <class To, class T, int N>
inline Lanes<To, N> as(const Lanes<T, N>& a) {
  using L = Lanes<To, N>;
  constexpr int kPart = Lanes<T, N>::kPart;
  if constexpr (std::is_same_v<T, To>) {
    return a;
  } else if constexpr (std::is_integral_v<T> && std::is_integral_v<To> && sizeof(T) == sizeof(To)) {
    return std::bit_cast<L>(a);
  } else if constexpr (std::is_same_v<T, int16_t> && std::is_floating_point_v<To>) {
    return as<To>(as<int32_t>(a));
  } else {
    static_assert(std::is_floating_point_v<To> || sizeof(To) > sizeof(T));
    using Part = typename L::Part;
    L v;
    for (int i = 0; i < L::kParts; ++i) {
      if constexpr (N == 1) {
        v.part[i] = static_cast<To>(a.part[i]);
      } else if constexpr (L::kPart == kPart) {
        v.part[i] = native::converted<Part>(a.part[i]);
      } else if constexpr (L::kPart < kPart) {
        const auto both = a.part[i / 2];
        v.part[i] = i % 2 == 0 ? native::widenedHalf<Part, false>(both) : native::widenedHalf<Part, true>(both);
      } else {
        v.part[i] = native::narrowPair<kPart>(a.part[2 * i], a.part[2 * i + 1]);
      }
    }
    return v;
  }
}

// Floats to integers, toward zero; a NaN or a value out of range gives the most negative one.
template <int N>
inline Lanes<int32_t, N> truncated(const Lanes<float, N>& a) {
  Lanes<int32_t, N> v;
  for (int i = 0; i < v.kParts; ++i) v.part[i] = native::truncated(a.part[i]);
  return v;
}

}  // namespace qorsr
