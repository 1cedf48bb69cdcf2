// Spectrum of an all-pole model: destination[k] = 1 / |S(k)|, S(k) = sum over n from 1 to length of source[n - 1] exp(-2 pi i n k / N),
// S(0) less `value`.
#pragma once

#include <cstdint>

#include "features/lp_conversions.h"
#include "features/real_transform.h"

namespace qorsr {

// What a magnitude of zero gives.
inline constexpr float kSpectrumOfZero = 2139095040.0F;

// Bytes of set-up, work memory, samples and spectrum of 2^(order + 1) samples that stand on the stack: up to order 6.
inline constexpr int kStackSpectrumBytes = 4096;

inline bool fitsSpectrum(int32_t length, int32_t order) {
  return length >= 1 && order >= 0 && (order > 30 || length < int64_t{2} << order);
}

// source: `length` numbers, element 0 of the samples being 0. Required: only bin 0 is reduced by `value`.
template <class T>
inline QorStatus modelSpectrum(const T* source, int32_t length, float* destination, int32_t order, float value) {
  if (order >= kMaxTransformOrder) return qorStatusNoMemory;
  const int64_t size = int64_t{2} << order, setupBytes = RealTransform::setupBytes(order + 1);
  const int64_t floatBytes = static_cast<int64_t>(sizeof(float)) * (2 * size + 2);
  const Scratch<std::byte, kStackSpectrumBytes> area(floatBytes + setupBytes + RealTransform::workBytes(order + 1));
  if (!area) return qorStatusNoMemory;
  auto* const samples = reinterpret_cast<float*>(area.get());
  float* const spectrum = samples + size;
  std::byte* const setup = area.get() + floatBytes;
  std::memset(samples, 0, static_cast<std::size_t>(size) * sizeof(float));
  for (int32_t i = 0; i < length; ++i) samples[i + 1] = static_cast<float>(source[i]);
  RealTransform::init(setup, order + 1)->transform(samples, spectrum, setup + setupBytes);
  spectrum[0] -= value;
  QorStatus status = qorStatusOk;
  for (int64_t k = 0; k < size / 2; ++k) {
    const float re = spectrum[2 * k], im = spectrum[2 * k + 1], magnitude = __builtin_sqrtf(re * re + im * im);
    if (magnitude == 0.0F) status = qorStatusDivideByZero;
    destination[k] = magnitude == 0.0F ? kSpectrumOfZero : 1.0F / magnitude;
  }
  return status;
}

template <class T>
inline Checks checkSpectrum(const T* source, int32_t length, const T* destination, int32_t order) {
  return Checks().null(source, destination).require(fitsSpectrum(length, order), qorStatusBadSize);
}

inline QorStatus predictorToSpectrum(const float* source, int32_t length, float* destination, int32_t order, float value) {
  if (QorStatus bad = checkSpectrum(source, length, destination, order)) return bad;
  return modelSpectrum(source, length, destination, order, value);
}

inline QorStatus predictorToSpectrum(const int16_t* source, int32_t length, int16_t* destination, int32_t order, int32_t value,
                                     int32_t scaleFactor) {
  if (QorStatus bad = checkSpectrum(source, length, destination, order)) return bad;
  if (order > kMaxTransformOrder) return qorStatusNoMemory;
  const Scratch<float, 64> results(int64_t{1} << order);
  if (!results) return qorStatusNoMemory;
  const QorStatus status = modelSpectrum(source, length, results.get(), order, static_cast<float>(value));
  if (status < qorStatusOk) return status;
  storeScaled(results.get(), destination, 1 << order, scaleFactor);
  return status;
}

}  // namespace qorsr
