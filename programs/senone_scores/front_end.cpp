#include "front_end.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <initializer_list>
#include <numbers>
#include <optional>

#include "common/fault.h"
#include "common/resampling.h"
#include "derivatives.h"

namespace senones {
namespace {

using program::melDiv;
using program::melMul;

constexpr float fullScale = 32768, smallestEnergy = 1e-4F;

[[noreturn]] void refuse(const std::string& name, const std::string& value) {
  throw program::Fault("feat.params: -" + name + " " + value + " is not offered by this front-end");
}

// Takes settings out by name; what is left over at the end is refused, because it may change the features.
class SettingReader {
 public:
  explicit SettingReader(const Parameters& parameters) : left_(parameters) {}

  float number(const std::string& name, float low, float high, std::optional<float> usual = std::nullopt) {
    const std::optional<std::string> value = take(name);
    if (!value && usual) return *usual;
    if (!value) throw program::Fault("feat.params: -" + name + " is missing");
    char* end = nullptr;
    const float parsed = std::strtof(value->c_str(), &end);
    if (*end != '\0' || !(parsed >= low && parsed <= high)) refuse(name, *value);
    return parsed;
  }
  int count(const std::string& name, float low, float high, std::optional<float> usual = std::nullopt) {
    return static_cast<int>(number(name, low, high, usual));
  }
  void only(const std::string& name, std::initializer_list<const char*> offered, bool needed) {
    const std::optional<std::string> value = take(name);
    if (!value && needed) throw program::Fault("feat.params: -" + name + " is missing");
    if (value && std::find(offered.begin(), offered.end(), *value) == offered.end()) refuse(name, *value);
  }
  void ignore(const std::string& name) { left_.erase(name); }
  void finish() const {
    if (!left_.empty()) refuse(left_.begin()->first, left_.begin()->second);
  }

 private:
  std::optional<std::string> take(const std::string& name) {
    const auto node = left_.extract(name);
    return node ? std::optional(node.mapped()) : std::nullopt;
  }

  Parameters left_;
};

}  // namespace

FrontEndSettings FrontEndSettings::from(const Parameters& parameters) {
  SettingReader in(parameters);
  FrontEndSettings s;
  s.lowHz = in.number("lowerf", 1, 20000);
  s.highHz = in.number("upperf", 10, 24000);
  s.filters = in.count("nfilt", 2, 200);
  s.lifter = in.count("lifter", 1, 1000);
  in.only("transform", {"dct"}, true);
  in.only("feat", {"1s_c_d_dd"}, true);
  in.only("cmn", {"batch", "current"}, true);
  in.only("agc", {"none"}, false);
  in.only("varnorm", {"no"}, false);
  in.only("model", {"ptm"}, false);
  for (const char* never : {"remove_noise", "remove_silence", "remove_dc", "dither", "doublebw", "smoothspec", "logspec"}) {
    in.only(never, {"no"}, false);
  }
  in.only("round_filters", {"yes"}, false);  // corners at bins
  in.only("unit_area", {"yes"}, false);
  s.cepstra = in.count("ncep", 2, 200, 13.0F);
  s.preEmphasis = in.number("alpha", 0, 1, 0.97F);
  s.rate = in.count("samprate", 8000, 48000, 16000.0F);
  s.transform = in.count("nfft", 32, 65536, 512.0F);
  const float windowSeconds = in.number("wlen", 0.005F, 0.2F, 0.025625F), framesASecond = in.number("frate", 10, 1000, 100.0F);
  in.ignore("cmninit");  // of running means only
  in.ignore("svspec");   // compared with the streams of the means when the model is loaded
  in.finish();
  s.hop = static_cast<int>(std::lround(static_cast<float>(s.rate) / framesASecond));
  s.frame = static_cast<int>(std::lround(windowSeconds * static_cast<float>(s.rate)));
  if (s.cepstra > s.filters) refuse("ncep", std::to_string(s.cepstra));
  if (s.frame > s.transform || (s.transform & (s.transform - 1)) != 0) refuse("nfft", std::to_string(s.transform));
  if (s.highHz <= s.lowHz || 2 * s.highHz > static_cast<float>(s.rate)) refuse("upperf", std::to_string(s.highHz));
  return s;
}

FrontEnd::FrontEnd(const FrontEndSettings& settings)
    : settings_(settings), spectrum_(program::makeSpectrum(settings.transform, settings.rate)), mel_(makeMel()) {
  const auto filters = static_cast<float>(settings.filters);
  DCTLifterState_32f* lifter = nullptr;  // the orthonormal cosine transform; order 0 comes last
  program::check(qorsDCTLifterInitAlloc_C0_32f(&lifter, settings.filters, settings.cepstra - 1, settings.lifter,
                                               std::sqrt(2 / filters), std::sqrt(1 / filters)),
                 "qorsDCTLifterInitAlloc_C0_32f");
  lifter_.reset(lifter);
  for (int i = 0; i < settings.frame; ++i) {  // Hamming's window
    window_.push_back(static_cast<float>(0.54 - 0.46 * std::cos(2 * std::numbers::pi * i / (settings.frame - 1))));
  }
  frame_.assign(static_cast<size_t>(settings.transform), 0.0F);
  power_.assign(static_cast<size_t>(settings.transform) / 2 + 1, 0.0F);
  coefficients_.resize(static_cast<size_t>(settings.cepstra));
}

// Triangles over a power spectrum, equally wide in mel, their corners at bins, their areas in hertz equal to 1.
program::FilterBank FrontEnd::makeMel() const {
  FBankState_32f* state = nullptr;
  int32_t order = 0;
  program::check(qorsEmptyFBankInitAlloc_32f(&state, &order, settings_.transform, settings_.filters, 0),
                 "qorsEmptyFBankInitAlloc_32f");
  program::FilterBank bank(state);
  const float edges[2] = {settings_.lowHz, settings_.highHz};
  float mel[2];
  program::check(qorsLinearToMel_32f(edges, mel, 2, melMul, melDiv), "qorsLinearToMel_32f");
  std::vector<float> corners;
  for (int i = 0; i <= settings_.filters + 1; ++i) {
    corners.push_back(mel[0] + static_cast<float>(i) * (mel[1] - mel[0]) / static_cast<float>(settings_.filters + 1));
  }
  std::vector<float> hertz(corners.size());
  program::check(qorsMelToLinear_32f(corners.data(), hertz.data(), static_cast<int32_t>(corners.size()), melMul, melDiv),
                 "qorsMelToLinear_32f");
  const float binHz = static_cast<float>(settings_.rate) / static_cast<float>(settings_.transform);
  std::vector<int32_t> centres;
  for (const float f : hertz) centres.push_back(static_cast<int32_t>(std::lround(f / binHz)));
  if (std::adjacent_find(centres.begin(), centres.end(), std::greater_equal<>()) != centres.end()) {
    throw program::Fault("feat.params: -nfilt " + std::to_string(settings_.filters) + " is too many for these frequencies");
  }
  program::check(qorsFBankSetCenters_32f(state, centres.data()), "qorsFBankSetCenters_32f");
  for (size_t k = 1; k + 1 < centres.size(); ++k) {
    const auto left = static_cast<float>(centres[k - 1]), centre = static_cast<float>(centres[k]),
               right = static_cast<float>(centres[k + 1]);
    std::vector<float> weights;
    for (int32_t j = centres[k - 1]; j <= centres[k + 1]; ++j) {
      const auto bin = static_cast<float>(j);
      const float height = bin <= centre ? (bin - left) / (centre - left) : (right - bin) / (right - centre);
      weights.push_back(2 * height / ((right - left) * binHz));
    }
    program::check(qorsFBankSetCoeffs_32f(state, static_cast<int32_t>(k), weights.data()), "qorsFBankSetCoeffs_32f");
  }
  return bank;
}

void FrontEnd::evaluateFrame(const std::vector<float>& emphasised, size_t begin, float* logMel, float* cepstra) {
  for (size_t i = 0; i < window_.size(); ++i) frame_[i] = emphasised[begin + i] * window_[i];
  program::check(qorsEvalFBank_32f(frame_.data(), power_.data() + 1, spectrum_.get()), "qorsEvalFBank_32f");
  for (float& value : power_) value *= value;
  program::check(qorsEvalFBank_32f(power_.data(), logMel, mel_.get()), "qorsEvalFBank_32f");
  for (int k = 0; k < settings_.filters; ++k) logMel[k] = std::log(logMel[k] + smallestEnergy);
  program::check(qorsDCTLifter_32f(logMel, coefficients_.data(), lifter_.get()), "qorsDCTLifter_32f");
  cepstra[0] = coefficients_.back();
  std::copy(coefficients_.begin(), coefficients_.end() - 1, cepstra + 1);
}

// Each coefficient about its mean over the recording. Frames of digital silence, whose energies are so small that the coefficient of
// order 0 is negative, have no part in the mean, unless there are no others.
void FrontEnd::centre(std::vector<float>& cepstra, int frames) const {
  const auto width = static_cast<size_t>(settings_.cepstra);
  const std::vector<float> ones(width, 1.0F);
  std::vector<float> means(width);
  std::vector<const float*> rows;
  for (size_t at = 0; at < cepstra.size(); at += width) {
    if (cepstra[at] >= 0) rows.push_back(&cepstra[at]);
  }
  if (rows.empty()) {
    for (size_t at = 0; at < cepstra.size(); at += width) rows.push_back(&cepstra[at]);
  }
  program::check(qorsMeanColumn_32f_D2L(rows.data(), static_cast<int32_t>(rows.size()), means.data(), settings_.cepstra),
                 "qorsMeanColumn_32f_D2L");
  program::check(
      qorsNormalizeColumn_32f_D2(cepstra.data(), settings_.cepstra, frames, means.data(), ones.data(), settings_.cepstra),
      "qorsNormalizeColumn_32f_D2");
}

Features FrontEnd::analyse(const program::Sound& recording) {
  const program::Sound sound = program::resampled(recording, settings_.rate);
  if (sound.samples.size() < window_.size()) throw program::BadSound("shorter than one frame");
  Features features;
  features.frames = static_cast<int>((sound.samples.size() - window_.size()) / static_cast<size_t>(settings_.hop)) + 1;
  features.filters = settings_.filters;
  features.width = 3 * settings_.cepstra;
  std::vector<float> emphasised(sound.samples.size());
  for (size_t i = 0; i < emphasised.size(); ++i) {
    const float before = i > 0 ? sound.samples[i - 1] : 0.0F;
    emphasised[i] = fullScale * (sound.samples[i] - settings_.preEmphasis * before);
  }
  const auto frames = static_cast<size_t>(features.frames), width = static_cast<size_t>(settings_.cepstra);
  std::vector<float> cepstra(frames * width);
  features.logMel.resize(frames * static_cast<size_t>(settings_.filters));
  for (size_t f = 0; f < frames; ++f) {
    evaluateFrame(emphasised, f * static_cast<size_t>(settings_.hop), &features.logMel[f * static_cast<size_t>(settings_.filters)],
                  &cepstra[f * width]);
  }
  centre(cepstra, features.frames);
  features.vectors = withDerivatives(cepstra, settings_.cepstra);
  return features;
}

}  // namespace senones
