#include "model_files.h"

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <numeric>
#include <sstream>

#include "binary_file.h"
#include "common/fault.h"
#include "common/files.h"
#include "common/text.h"

namespace senones {
namespace {

// No model is larger; a damaged count is refused before memory is asked for.
constexpr int32_t most = 1 << 20;

std::vector<std::string> phoneNames(BinaryFile& in, int32_t count) {
  std::vector<std::string> names;
  for (int32_t i = 0; i < count; ++i) {
    names.push_back(in.text("a phone's name"));
    if (names.back().empty()) in.refuse("a phone without a name");
    if (program::hasControls(names.back())) in.refuse("a phone whose name holds control characters");
  }
  return names;
}

struct Phone {
  int32_t sequence, base;
};

// Base phones come first; behind them each phone of a context names its base phone.
std::vector<Phone> readPhones(BinaryFile& in, int32_t basePhones, int32_t phones, int32_t sequences) {
  std::vector<Phone> all;
  for (int32_t i = 0; i < phones; ++i) {
    Phone phone{in.integer("a state sequence", 0, sequences - 1), i};
    in.skip(4, "a transition matrix");
    const std::vector<uint8_t> attributes = in.bytes(4, "attributes of a phone");
    if (i >= basePhones) phone.base = attributes[1];
    if (phone.base >= basePhones) in.refuse("phone " + std::to_string(i) + " has no base phone");
    all.push_back(phone);
  }
  return all;
}

}  // namespace

size_t GaussianFile::codebookSize() const {
  return static_cast<size_t>(densities) * static_cast<size_t>(std::accumulate(widths.begin(), widths.end(), 0));
}

const float* GaussianFile::block(int codebook, int stream) const {
  const int before = std::accumulate(widths.begin(), widths.begin() + stream, 0);
  return values.data() + static_cast<size_t>(codebook) * codebookSize() +
         static_cast<size_t>(densities) * static_cast<size_t>(before);
}

GaussianFile readGaussians(const std::filesystem::path& file) {
  BinaryFile in(file);
  const std::string header = in.upTo("endhdr\n", "the header (\"endhdr\")");
  if (header.rfind("s3\n", 0) != 0) in.refuse("not a file of model parameters: it does not begin with \"s3\"");
  const int32_t mark = in.integer("the byte-order mark");
  if (mark == 0x44332211) in.refuse(otherOrder);
  if (mark != 0x11223344) in.refuse("byte-order mark missing");
  const size_t summed = in.position();
  GaussianFile file_;
  file_.codebooks = in.integer("the number of codebooks", 1, most);
  const int32_t streams = in.integer("the number of streams", 1, 64);
  file_.densities = in.integer("the number of densities", 1, most);
  for (int32_t s = 0; s < streams; ++s) file_.widths.push_back(in.integer("the width of a stream", 1, 4096));
  const int32_t count = in.integer("the number of values");
  if (static_cast<double>(file_.codebooks) * static_cast<double>(file_.codebookSize()) != count) {
    in.refuse("number of values " + std::to_string(count) + " does not follow from codebooks, streams and densities");
  }
  file_.values = in.floats(static_cast<size_t>(count), "values");
  const size_t end = in.position();
  if (header.find("chksum0 yes") != std::string::npos &&
      static_cast<uint32_t>(in.integer("the checksum")) != in.checksum(summed, end)) {
    in.refuse("damaged: the checksum is another");
  }
  in.expectEnd();
  for (const float value : file_.values) {
    if (!std::isfinite(value)) in.refuse("holds values that are not finite");
  }
  return file_;
}

WeightFile readWeights(const std::filesystem::path& file, int streams, int densities) {
  BinaryFile in(file);
  for (int32_t length; (length = in.integer("the length of a header line", 0, 4096)) > 0;) {
    const std::string line = in.text(static_cast<size_t>(length), "a header line");
    if (line.rfind("cluster_count", 0) == 0 && std::atoi(line.c_str() + 13) != 0) in.refuse("clustered weights are not supported");
    if (line.rfind("feature_count", 0) == 0 && std::atoi(line.c_str() + 13) != streams) {
      in.refuse("weights of" + line.substr(13, line.find('\0') - 13) + " streams, the means have " + std::to_string(streams));
    }
  }
  WeightFile weights;
  weights.streams = streams;
  weights.densities = in.integer("the number of densities", 1, most);
  if (weights.densities != densities) {
    in.refuse("weights of " + std::to_string(weights.densities) + " densities, the means have " + std::to_string(densities));
  }
  weights.senones = in.integer("the number of senones", 1, most);
  weights.steps =
      in.bytes(static_cast<size_t>(streams) * static_cast<size_t>(densities) * static_cast<size_t>(weights.senones), "weights");
  in.expectEnd();
  return weights;
}

Definition readDefinition(const std::filesystem::path& file) {
  BinaryFile in(file);
  const std::string kind = in.text(4, "the kind of file");
  if (kind == "FDMB") in.refuse(otherOrder);
  if (kind != "BMDF") in.refuse("not a binary model definition");
  in.integer("the version", 1, 1);
  in.skip(static_cast<size_t>(in.integer("the length of the description", 0, most)), "the description");
  Definition definition;
  const int32_t basePhones = in.integer("the number of base phones", 1, 255);
  const int32_t phones = in.integer("the number of phones", basePhones, 1 << 24);
  definition.states = in.integer("the number of states", 1, 32);
  in.integer("the number of senones of base phones");
  definition.senones.resize(static_cast<size_t>(in.integer("the number of senones", 1, most)));
  in.integer("the number of transition matrices");
  const int32_t sequences = in.integer("the number of state sequences", 1, 1 << 24);
  in.integer("the number of context phones");
  const int32_t treeNodes = in.integer("the number of tree nodes", 0, 1 << 24);
  in.integer("the silence phone");
  definition.phones = phoneNames(in, basePhones);
  in.alignTo(4);
  in.skip(8 * static_cast<size_t>(treeNodes), "the tree of contexts");
  const std::vector<Phone> all = readPhones(in, basePhones, phones, sequences);
  const auto states = static_cast<size_t>(definition.states);
  if (in.integer("the number of states of all sequences") != sequences * definition.states)
    in.refuse("sequences of unequal length");
  const std::vector<int16_t> senoneOf = in.shortIntegers(static_cast<size_t>(sequences) * states, "senones");
  for (const int16_t senone : senoneOf) {
    if (senone < 0 || static_cast<size_t>(senone) >= definition.senones.size()) in.refuse("a state without a senone");
  }
  in.expectEnd();
  for (const Phone& phone : all) {
    for (size_t k = 0; k < states; ++k) {
      Definition::Senone& senone =
          definition.senones[static_cast<size_t>(senoneOf[static_cast<size_t>(phone.sequence) * states + k])];
      if (senone.phone >= 0 && senone.phone != phone.base) in.refuse("a senone that belongs to two phones");
      senone = {phone.base, static_cast<int>(k)};
    }
  }
  return definition;
}

Parameters readParameters(const std::filesystem::path& file) {
  std::ifstream in = program::openFile(file);
  Parameters parameters;
  int number = 0;
  for (std::string line; std::getline(in, line);) {
    ++number;
    std::istringstream words(line);
    std::string name, value, more;
    if (!(words >> name)) continue;
    if (name[0] != '-' || !(words >> value) || (words >> more)) {
      throw program::Fault(file.string() + ": line " + std::to_string(number) + " is not of the form \"-name value\"");
    }
    parameters[name.substr(1)] = value;
  }
  if (parameters.empty()) throw program::Fault(file.string() + ": empty or unreadable");
  return parameters;
}

}  // namespace senones
