// From samples to feature vectors: pre-emphasis, window and logarithm are computed here, transform, mel bank, cosine transform with
// lifter, time derivatives and normalisation by the library.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "common/filter_bank.h"
#include "common/wav.h"

namespace words {

/** Rows of equal width, one after the other; a row is a frame. */
struct Matrix {
  int rows = 0, columns = 0;
  std::vector<float> values;

  Matrix() = default;
  Matrix(int r, int c) : rows(r), columns(c), values(static_cast<size_t>(r) * static_cast<size_t>(c)) {}
  float* row(int r) { return values.data() + static_cast<size_t>(r) * static_cast<size_t>(columns); }
  const float* row(int r) const { return values.data() + static_cast<size_t>(r) * static_cast<size_t>(columns); }
};

enum class Normalise { none, mean, variance };

struct FrontEndOptions {
  int filters = 24;          ///< filters of the mel bank
  int cepstra = 12;          ///< cepstral coefficients, the one of order 0 not counted
  int lifter = 22;           ///< length of the lifter
  int deltas = 2;            ///< 0: none, 1: first derivative, 2: and second
  float frameMs = 32;        ///< length of a frame
  float hopMs = 10;          ///< from one frame to the next
  float lowHz = 150;         ///< lower end of the mel bank
  float highHz = 0;          ///< upper end; 0: what the lowest rate of the corpus allows
  float preEmphasis = 0.5F;  ///< coefficient at 16 kHz; at other rates the one with the same corner frequency
  float floorDb = 50;        ///< logarithms stop so far below the loudest filter output of a recording
  float trimDb = 40;         ///< frames so far below the loudest are cut at both ends; 0: none are
  Normalise normalise = Normalise::variance;
  float energyWeight = 2;           ///< of the coefficient of order 0; 0: it is not a feature
  float deltaWeight = 0.6F;         ///< of the first derivatives
  float accelerationWeight = 0.3F;  ///< of the second derivatives
};

/** Visits every setting: visit(name, value, lowest, highest, help), and visit("normalise", value). */
template <class Options, class Visitor>
void eachSetting(Options& options, Visitor visit) {
  visit("filters", options.filters, 2, 200, "Filters of the mel bank");
  visit("cepstra", options.cepstra, 1, 200, "Cepstral coefficients, at most the filters");
  visit("lifter", options.lifter, 1, 1000, "Length of the lifter");
  visit("deltas", options.deltas, 0, 2, "Time derivatives: none, first, first and second");
  visit("frame-ms", options.frameMs, 5.0F, 200.0F, "Length of a frame");
  visit("hop-ms", options.hopMs, 1.0F, 100.0F, "From one frame to the next");
  visit("low-hz", options.lowHz, 1.0F, 20000.0F, "Lower end of the mel bank");
  visit("high-hz", options.highHz, 10.0F, 24000.0F,
        "Upper end of the mel bank; by default 0.475 of the lowest rate of the corpus, at most 8000");
  visit("pre-emphasis", options.preEmphasis, 0.0F, 0.999F, "Coefficient at 16 kHz; other rates get the same corner frequency");
  visit("floor-db", options.floorDb, 10.0F, 200.0F, "Filter outputs so far below the loudest are raised to there");
  visit("trim-db", options.trimDb, 0.0F, 200.0F, "Frames so far below the loudest are cut at both ends; 0: none");
  visit("normalise", options.normalise);
  visit("energy-weight", options.energyWeight, 0.0F, 100.0F, "Weight of the coefficient of order 0; 0: it is not a feature");
  visit("delta-weight", options.deltaWeight, 0.0F, 100.0F, "Weight of the first derivatives");
  visit("acceleration-weight", options.accelerationWeight, 0.0F, 100.0F, "Weight of the second derivatives");
}

/** What the front-end makes of one recording. */
struct Analysis {
  Matrix logMel;       ///< logarithms of the mel bank's outputs, every frame
  Matrix cepstra;      ///< liftered cepstra of every frame; the last column is the coefficient of order 0
  int firstFrame = 0;  ///< of the frames that were kept
  Matrix features;     ///< of the frames that were kept: cepstra, first, second derivatives, normalised
};

/** The front-end for one sample rate. It holds the library's state records and work space, so one thread uses it at a time. */
class FrontEnd {
 public:
  /** options.highHz must be set. tract: the frequencies of the mel bank are multiplied by it, as if the speaker's vocal tract were
   * so much shorter (below 1) or longer; highHz times tract is at most half the rate. */
  FrontEnd(const FrontEndOptions& options, int rate, float tract = 1);

  /** Throws program::BadSound for a recording of too few frames. */
  Analysis analyse(const program::Sound& sound);

 private:
  void makeBank(float tract);
  void makeWindow();
  int frameCount(size_t samples) const;
  void evaluateFrames(const program::Sound& sound, Analysis& analysis, std::vector<float>& energies);
  Matrix derive(const Analysis& analysis, int first, int count) const;
  void normalise(Matrix& features) const;

  FrontEndOptions options_;
  int rate_, frameLength_, hop_, transformLength_ = 0;
  float preEmphasis_;
  program::FilterBank bank_;
  program::CosineTransform lifter_;
  std::vector<float> window_, emphasised_, frame_;
};

/** Width of the static features, and of whole feature vectors. */
inline int staticWidth(const FrontEndOptions& options) { return options.cepstra + (options.energyWeight > 0 ? 1 : 0); }
inline int featureWidth(const FrontEndOptions& options) { return staticWidth(options) * (options.deltas + 1); }

/** The upper end of the mel bank that suits all rates of a corpus: a little below half the lowest. */
float commonUpperHz(int lowestRate);

}  // namespace words
