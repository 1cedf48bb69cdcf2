// Every way to make a state of the cosine transform, as a table that the tests walk through.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "kit/random.h"
#include "model/dct_lifter.h"
#include "qorsr.h"

namespace forms {

struct Args {
  int32_t n, m, length;
  float scale, weight0;
  std::vector<float> weights;
  std::vector<int32_t> wholeWeights;

  static Args random(kit::Random& r, int32_t n, int32_t m) {
    return {n,
            m,
            static_cast<int32_t>(r.integer(1, 40)),
            r.small<float>() * 4,
            r.small<float>() * 4,
            r.vector<float>(m),
            r.vector<int32_t>(m, kit::Random::kSmall)};
  }
};

using Lifter = std::vector<float> (*)(const Args&);
inline std::vector<float> sine(const Args& a) { return model::sineLifter(a.m, a.length, a.scale); }
inline std::vector<float> sineC0(const Args& a) {
  std::vector<float> l = sine(a);
  l[0] = a.weight0;
  return l;
}
inline std::vector<float> given(const Args& a) { return model::givenLifter(a.weights); }
inline std::vector<float> givenC0(const Args& a) {
  std::vector<float> l = given(a);
  l[0] = a.weights.back();
  return l;
}
inline std::vector<float> wholeC0(const Args& a) {
  std::vector<float> l = model::givenLifter(a.wholeWeights);
  l[0] = static_cast<float>(a.wholeWeights.back());
  return l;
}

// A state made in a block of the caller.
template <class State>
struct InBlock {
  const char* name;
  bool hasC0;
  Lifter lifter;
  QorStatus (*size)(int32_t, int32_t, int32_t*);
  QorStatus (*init)(State*, const Args&);
};

// A state made in allocated memory.
template <class State>
struct Allocated {
  const char* name;
  bool hasC0;
  Lifter lifter;
  QorStatus (*make)(State**, const Args&);
};

using F = DCTLifterState_32f;
using I = DCTLifterState_16s;

inline const InBlock<F> kInBlock32f[] = {
    {"plain", false, sine, qorsDCTLifterGetSize_32f,
     [](F* s, const Args& a) { return qorsDCTLifterInit_32f(s, a.n, a.m, a.length, a.scale); }},
    {"C0", true, sineC0, qorsDCTLifterGetSize_C0_32f,
     [](F* s, const Args& a) { return qorsDCTLifterInit_C0_32f(s, a.n, a.m, a.length, a.scale, a.weight0); }},
    {"Mul", false, given, qorsDCTLifterGetSize_Mul_32f,
     [](F* s, const Args& a) { return qorsDCTLifterInit_Mul_32f(s, a.n, a.weights.data(), a.m); }},
    {"MulC0", true, givenC0, qorsDCTLifterGetSize_MulC0_32f,
     [](F* s, const Args& a) { return qorsDCTLifterInit_MulC0_32f(s, a.n, a.weights.data(), a.m); }},
};
inline const InBlock<I> kInBlock16s[] = {
    {"plain", false, sine, qorsDCTLifterGetSize_16s,
     [](I* s, const Args& a) { return qorsDCTLifterInit_16s(s, a.n, a.m, a.length, a.scale); }},
    {"C0", true, sineC0, qorsDCTLifterGetSize_C0_16s,
     [](I* s, const Args& a) { return qorsDCTLifterInit_C0_16s(s, a.n, a.m, a.length, a.scale, a.weight0); }},
    {"Mul", false, given, qorsDCTLifterGetSize_Mul_16s,
     [](I* s, const Args& a) { return qorsDCTLifterInit_Mul_16s(s, a.n, a.weights.data(), a.m); }},
    {"MulC0", true, wholeC0, qorsDCTLifterGetSize_MulC0_16s,
     [](I* s, const Args& a) { return qorsDCTLifterInit_MulC0_16s(s, a.n, a.wholeWeights.data(), a.m); }},
};
inline const Allocated<F> kAllocated32f[] = {
    {"plain", false, sine, [](F** s, const Args& a) { return qorsDCTLifterInitAlloc_32f(s, a.n, a.m, a.length, a.scale); }},
    {"C0", true, sineC0,
     [](F** s, const Args& a) { return qorsDCTLifterInitAlloc_C0_32f(s, a.n, a.m, a.length, a.scale, a.weight0); }},
    {"Mul", false, given, [](F** s, const Args& a) { return qorsDCTLifterInitAlloc_Mul_32f(s, a.n, a.weights.data(), a.m); }},
    {"MulC0", true, givenC0, [](F** s, const Args& a) { return qorsDCTLifterInitAlloc_MulC0_32f(s, a.n, a.weights.data(), a.m); }},
};
inline const Allocated<I> kAllocated16s[] = {
    {"plain", false, sine, [](I** s, const Args& a) { return qorsDCTLifterInitAlloc_16s(s, a.n, a.m, a.length, a.scale); }},
    {"C0", true, sineC0,
     [](I** s, const Args& a) { return qorsDCTLifterInitAlloc_C0_16s(s, a.n, a.m, a.length, a.scale, a.weight0); }},
    {"Mul", false, given, [](I** s, const Args& a) { return qorsDCTLifterInitAlloc_Mul_16s(s, a.n, a.weights.data(), a.m); }},
    {"MulC0", true, givenC0,  // float weights, unlike its counterpart in a block
     [](I** s, const Args& a) { return qorsDCTLifterInitAlloc_MulC0_16s(s, a.n, a.weights.data(), a.m); }},
};

}  // namespace forms
