// The features that a model was trained on, by its feat.params: spectrum, mel bank, cosine transform with lifter, means and time
// derivatives by the library; pre-emphasis, window and logarithm, for which it has no functions, here.
#pragma once

#include <string>
#include <vector>

#include "common/filter_bank.h"
#include "common/wav.h"
#include "model_files.h"

namespace senones {

struct FrontEndSettings {
  int rate = 16000, hop = 160, frame = 410, transform = 512;
  float preEmphasis = 0.97F;
  float lowHz = 130, highHz = 6800;
  int filters = 25, cepstra = 13, lifter = 22;

  /** From feat.params; throws program::Fault for a setting that is missing or that this front-end does not offer. */
  static FrontEndSettings from(const Parameters& parameters);
};

struct Features {
  int frames = 0, filters = 0, width = 0;
  std::vector<float> logMel;   ///< frames x filters
  std::vector<float> vectors;  ///< frames x width: cepstra, first, second derivatives
};

class FrontEnd {
 public:
  explicit FrontEnd(const FrontEndSettings& settings);

  /** Of a recording of any rate. Throws program::BadSound for too few samples. */
  Features analyse(const program::Sound& recording);

  const FrontEndSettings& settings() const { return settings_; }

 private:
  program::FilterBank makeMel() const;
  void evaluateFrame(const std::vector<float>& emphasised, size_t begin, float* logMel, float* cepstra);
  void centre(std::vector<float>& cepstra, int frames) const;

  FrontEndSettings settings_;
  program::FilterBank spectrum_, mel_;
  program::CosineTransform lifter_;
  std::vector<float> window_, frame_, power_, coefficients_;
};

}  // namespace senones
