// The file is text: words and numbers between blanks, in the order in which they are written here. A float has nine digits, so that
// it comes back as it was.
#include "model_file.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <iomanip>
#include <limits>
#include <sstream>

#include "common/fault.h"
#include "common/files.h"
#include "common/text.h"

namespace fs = std::filesystem;

namespace words {
namespace {

constexpr const char* kind = "word_recogniser-models-1";
constexpr int mostStates = 1000, mostGaussians = 1000, mostWords = 100000;
constexpr float shareTolerance = 1e-3F;

class Writer {
 public:
  Writer() { out_ << std::setprecision(std::numeric_limits<float>::max_digits10); }

  template <class T>
  void operator()(const char* name, const T& value) {
    out_ << name << ' ' << value << '\n';
  }
  void operator()(const char* name, Normalise value) { (*this)(name, static_cast<int>(value)); }
  void word(const std::string& name) { out_ << "word " << std::quoted(name) << '\n'; }
  void row(const char* name, const float* values, int count) {
    out_ << name;
    for (int i = 0; i < count; ++i) out_ << ' ' << values[i];
    out_ << '\n';
  }
  std::string text() const { return out_.str(); }

 private:
  std::ostringstream out_;
};

class Reader {
 public:
  explicit Reader(const fs::path& file) : file_(file), in_(program::openFile(file)) {}

  [[noreturn]] void refuse(const std::string& why) const { throw program::Fault("model file " + file_.string() + " " + why); }

  void expect(const std::string& name) {
    std::string word;
    if (!(in_ >> word)) refuse("is cut short");
    if (word != name) refuse("is damaged: '" + word.substr(0, 40) + "' stands where '" + name + "' belongs");
  }
  void kindOfFile() {
    std::string word;
    if (!(in_ >> word) || word != kind) refuse("is not a file of word models");
  }

  int whole(const char* name, int least, int most) {
    expect(name);
    int value = 0;
    read(value);
    if (value < least || value > most) refuse(std::string("has an impossible number of ") + name);
    return value;
  }
  template <class T>
  void operator()(const char* name, T& value, T low, T high, const char*) {
    expect(name);
    read(value);
    if (!(value >= low && value <= high)) refuse(std::string("is damaged: ") + name + " is out of its range");
  }
  void operator()(const char* name, Normalise& value) { value = static_cast<Normalise>(whole(name, 0, 2)); }
  std::string word() {
    expect("word");
    std::string name;
    if (!(in_ >> std::quoted(name)) || name.empty()) refuse("is cut short");
    if (program::hasControls(name)) refuse("is damaged: a word holds a control character");
    return name;
  }
  void end() {
    expect("end");
    if (std::string more; in_ >> more) refuse("is damaged: something follows its end");
  }
  void row(const char* name, float* values, int count) {
    expect(name);
    for (int i = 0; i < count; ++i) read(values[i]);
  }

 private:
  template <class T>
  void read(T& value) {
    if (in_ >> value) return;
    refuse(in_.eof() ? "is cut short" : "is damaged: a number is missing");
  }

  fs::path file_;
  std::ifstream in_;
};

void writeState(Writer& writer, const Mixture& mixture, const std::array<float, WordModel::arcs>& arcs) {
  writer("gaussians", mixture.count());
  writer.row("arcs", arcs.data(), WordModel::arcs);
  writer.row("weights", mixture.weights.data(), mixture.count());
  for (int g = 0; g < mixture.count(); ++g) {
    writer.row("mean", mixture.means.row(g), mixture.means.columns);
    writer.row("variance", mixture.variances.row(g), mixture.means.columns);
  }
}

void checkShares(const Reader& reader, const float* shares, int count) {
  float sum = 0;
  for (int i = 0; i < count; ++i) {
    if (!(shares[i] >= 0)) reader.refuse("is damaged: a probability is negative");
    sum += shares[i];
  }
  if (!(std::fabs(sum - 1) < shareTolerance)) reader.refuse("is damaged: probabilities do not sum to 1");
}

Mixture readState(Reader& reader, int width, std::array<float, WordModel::arcs>& arcs) {
  const int count = reader.whole("gaussians", 1, mostGaussians);
  Mixture mixture{Matrix(count, width), Matrix(count, width), std::vector<float>(static_cast<size_t>(count)), {}, {}};
  reader.row("arcs", arcs.data(), WordModel::arcs);
  reader.row("weights", mixture.weights.data(), count);
  checkShares(reader, arcs.data(), WordModel::arcs);
  checkShares(reader, mixture.weights.data(), count);
  for (int g = 0; g < count; ++g) {
    reader.row("mean", mixture.means.row(g), width);
    reader.row("variance", mixture.variances.row(g), width);
  }
  for (const float mean : mixture.means.values) {
    if (!std::isfinite(mean)) reader.refuse("is damaged: a mean is not finite");
  }
  for (const float variance : mixture.variances.values) {
    if (!std::isfinite(variance) || variance <= 0) reader.refuse("is damaged: a variance is not positive");
  }
  mixture.prepare();
  return mixture;
}

}  // namespace

std::string textOf(const ModelFile& models) {
  Writer writer;
  writer(kind, "");
  eachSetting(models.frontEnd, [&writer](const char* name, const auto& value, auto...) { writer(name, value); });
  writer("width", featureWidth(models.frontEnd));
  writer("words", models.models.models.size());
  for (size_t m = 0; m < models.models.models.size(); ++m) {
    const WordModel& model = models.models.models[m];
    writer.word(models.words[static_cast<size_t>(models.models.words[m])]);
    writer("states", model.size());
    for (size_t s = 0; s < model.states.size(); ++s) writeState(writer, model.states[s], model.arcWeights[s]);
  }
  writer("end", "");
  return writer.text();
}

ModelFile readModels(const fs::path& file) {
  Reader reader(file);
  ModelFile result;
  reader.kindOfFile();
  eachSetting(result.frontEnd, [&reader](const char* name, auto& value, auto... range) { reader(name, value, range...); });
  const int width = reader.whole("width", 1, 1 << 20);
  if (width != featureWidth(result.frontEnd)) reader.refuse("is damaged: the width of its vectors is not that of its front-end");
  const int words = reader.whole("words", 1, mostWords);
  for (int w = 0; w < words; ++w) {
    result.words.push_back(reader.word());
    if (std::count(result.words.begin(), result.words.end(), result.words.back()) > 1)
      reader.refuse("is damaged: a word stands twice");
    result.models.words.push_back(w);
    WordModel& model = result.models.models.emplace_back();
    const int states = reader.whole("states", 1, mostStates);
    model.arcWeights.resize(static_cast<size_t>(states));
    for (int s = 0; s < states; ++s) {
      model.states.push_back(readState(reader, width, model.arcWeights[static_cast<size_t>(s)]));
    }
  }
  reader.end();
  return result;
}

}  // namespace words
