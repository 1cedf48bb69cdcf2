#include "acoustic_model.h"

#include <algorithm>
#include <cmath>

#include "common/fault.h"

namespace senones {
namespace {

// One step of a stored weight: 1024 steps of a logarithm to the base 1.0001.
const float weightStep = static_cast<float>(1024 * std::log(1.0001));

// Gaussians of all codebooks of a stream in a row; variances floored and inverted.
void copyGaussians(const GaussianFile& means, const GaussianFile& variances, int s, Stream& stream, size_t& floored) {
  const auto block = static_cast<size_t>(means.densities) * static_cast<size_t>(stream.width);
  for (int k = 0; k < means.codebooks; ++k) {
    stream.means.insert(stream.means.end(), means.block(k, s), means.block(k, s) + block);
    for (size_t i = 0; i < block; ++i) {
      const float variance = variances.block(k, s)[i];
      floored += variance < leastVariance ? 1 : 0;
      stream.inverse.push_back(1 / std::max(variance, leastVariance));
    }
  }
}

// The constant of each Gaussian: its normalisation, halved and subtracted from a log weight of 0 (the weights belong to the
// senones).
void prepareConstants(Stream& stream) {
  const size_t count = stream.inverse.size() / static_cast<size_t>(stream.width);
  const std::vector<float> noWeights(count, 0.0F);
  stream.constants.resize(count);
  for (size_t g = 0; g < count; ++g) {
    program::check(
        qorsUpdateGConst_32f(stream.inverse.data() + g * static_cast<size_t>(stream.width), stream.width, &stream.constants[g]),
        "qorsUpdateGConst_32f");
  }
  program::check(qorsOutProbPreCalc_32f_I(noWeights.data(), stream.constants.data(), static_cast<int32_t>(count)),
                 "qorsOutProbPreCalc_32f_I");
}

// The log weights of a senone, which were rounded to bytes, made to sum to 1 again.
void unpackWeights(const WeightFile& file, int s, const AcousticModel& model, Stream& stream) {
  const auto densities = static_cast<size_t>(file.densities), senones = static_cast<size_t>(file.senones);
  const uint8_t* const steps = file.steps.data() + static_cast<size_t>(s) * densities * senones;
  std::vector<float> logs(densities);
  stream.weights.resize(densities * senones);
  for (size_t k = 0; k + 1 < model.begin.size(); ++k) {
    const size_t count = model.begin[k + 1] - model.begin[k];
    float* const block = stream.weights.data() + model.begin[k] * densities;
    for (size_t i = 0; i < count; ++i) {
      const auto senone = static_cast<size_t>(model.ordered[model.begin[k] + i]);
      for (size_t d = 0; d < densities; ++d) logs[d] = -weightStep * static_cast<float>(steps[d * senones + senone]);
      float sum = 0;
      program::check(qorsLogSum_32f(logs.data(), &sum, file.densities, qorLogAddAccurate), "qorsLogSum_32f");
      for (size_t d = 0; d < densities; ++d) block[d * count + i] = logs[d] - sum;
    }
  }
}

void orderSenones(AcousticModel& model) {
  for (size_t i = 0; i < model.senones.size(); ++i) model.ordered.push_back(static_cast<int>(i));
  const auto codebookOf = [&](int senone) { return model.senones[static_cast<size_t>(senone)].phone; };
  std::stable_sort(model.ordered.begin(), model.ordered.end(), [&](int a, int b) { return codebookOf(a) < codebookOf(b); });
  for (int k = 0; k <= model.codebooks; ++k) {
    const auto at = std::partition_point(model.ordered.begin(), model.ordered.end(), [&](int s) { return codebookOf(s) < k; });
    model.begin.push_back(static_cast<size_t>(at - model.ordered.begin()));
  }
}

// "0-12/13-25": the elements of each stream, as feat.params names them.
std::string streamsText(const std::vector<int>& widths) {
  std::string text;
  int first = 0;
  for (const int width : widths) {
    if (first > 0) text += '/';
    text += std::to_string(first) + '-' + std::to_string(first + width - 1);
    first += width;
  }
  return text;
}

[[noreturn]] void refuse(const std::filesystem::path& file, const std::string& why) {
  throw program::Fault(file.string() + ": " + why);
}

}  // namespace

AcousticModel loadModel(const std::filesystem::path& folder) {
  AcousticModel model;
  model.parameters = readParameters(folder / "feat.params");
  const GaussianFile means = readGaussians(folder / "means"), variances = readGaussians(folder / "variances");
  if (variances.codebooks != means.codebooks || variances.densities != means.densities || variances.widths != means.widths) {
    refuse(folder / "variances", "of another shape than the means");
  }
  if (*std::min_element(variances.values.begin(), variances.values.end()) < 0) refuse(folder / "variances", "a negative variance");
  const auto streams = model.parameters.find("svspec");
  if (streams != model.parameters.end() && streams->second != streamsText(means.widths)) {
    refuse(folder / "feat.params", "-svspec " + streams->second + ", the streams of the means are " + streamsText(means.widths));
  }
  const WeightFile weights = readWeights(folder / "sendump", means.streams(), means.densities);
  const Definition definition = readDefinition(folder / "mdef");
  if (definition.phones.size() != static_cast<size_t>(means.codebooks)) {
    refuse(folder / "mdef", std::to_string(definition.phones.size()) + " base phones, " + std::to_string(means.codebooks) +
                                " codebooks: one codebook a phone is supported");
  }
  if (definition.senones.size() != static_cast<size_t>(weights.senones)) {
    refuse(folder / "mdef",
           std::to_string(definition.senones.size()) + " senones, the weights have " + std::to_string(weights.senones));
  }
  for (size_t i = 0; i < definition.senones.size(); ++i) {
    if (definition.senones[i].phone < 0) refuse(folder / "mdef", "senone " + std::to_string(i) + " belongs to no phone");
  }
  model.phones = definition.phones;
  model.senones = definition.senones;
  model.codebooks = means.codebooks;
  model.densities = means.densities;
  orderSenones(model);
  for (int s = 0; s < means.streams(); ++s) {
    Stream& stream = model.streams.emplace_back();
    stream.first = model.width;
    stream.width = means.widths[static_cast<size_t>(s)];
    model.width += stream.width;
    copyGaussians(means, variances, s, stream, model.floored);
    prepareConstants(stream);
    unpackWeights(weights, s, model, stream);
  }
  return model;
}

}  // namespace senones
