// An acoustic model of tied Gaussian mixtures for tests: made of random numbers and written to files, or read from an installed
// model, by code that shares nothing with the program under test.
#pragma once

#include <bit>
#include <cstdint>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "programs/program.h"

namespace acoustic {

namespace fs = std::filesystem;

inline constexpr int kStreams = 3, kWidth = 13;

struct Model {
  std::vector<std::string> phones;
  int densities = 0;
  std::vector<float> means, variances;  // [phone][stream][density][kWidth]
  std::vector<uint8_t> steps;           // [stream][density][senone]
  std::vector<int> phoneOf;             // of each senone

  int senones() const { return static_cast<int>(phoneOf.size()); }
  const float* gaussian(const std::vector<float>& values, int phone, int stream, int density) const {
    return &values[static_cast<size_t>(((phone * kStreams + stream) * densities + density) * kWidth)];
  }
};

inline std::string word(uint32_t value) { return program::littleEndian(value, 4); }
inline uint32_t wordAt(const std::string& bytes, size_t at) {
  uint32_t value = 0;
  for (size_t i = 0; i < 4; ++i) value |= static_cast<uint32_t>(static_cast<unsigned char>(bytes[at + i])) << (8 * i);
  return value;
}

// ---- A made-up model: base phones of three states each, and one phone in context for each of them ----

inline Model randomModel() {
  Model model;
  model.phones = {"A", "B", "SIL"};
  model.densities = 6;
  std::mt19937 random(20090223);
  const auto real = [&](double low, double high) { return low + (high - low) * (static_cast<double>(random()) / 4294967296.0); };
  const size_t values = model.phones.size() * kStreams * 6 * kWidth;
  for (size_t i = 0; i < values; ++i) {
    model.means.push_back(static_cast<float>(real(-8, 8)));
    model.variances.push_back(i % 97 == 5 ? 0.0F : static_cast<float>(real(2, 60)));
  }
  for (int phone = 0; phone < 3; ++phone) {  // senones of base phones first, then those of phones in context
    for (int state = 0; state < 3; ++state) model.phoneOf.push_back(phone);
  }
  for (int phone = 2; phone >= 0; --phone) {
    for (int state = 0; state < 3; ++state) model.phoneOf.push_back(phone);
  }
  for (size_t i = 0; i < size_t{kStreams} * 6 * model.phoneOf.size(); ++i)
    model.steps.push_back(static_cast<uint8_t>(random() % 60));
  return model;
}

inline std::string gaussianFile(const Model& model, const std::vector<float>& values) {
  std::string body =
      word(static_cast<uint32_t>(model.phones.size())) + word(kStreams) + word(static_cast<uint32_t>(model.densities));
  for (int s = 0; s < kStreams; ++s) body += word(kWidth);
  body += word(static_cast<uint32_t>(values.size()));
  for (const float value : values) body += word(std::bit_cast<uint32_t>(value));
  uint32_t sum = 0;
  for (size_t i = 0; i < body.size(); i += 4) sum = (sum << 20 | sum >> 12) + wordAt(body, i);
  return "s3\nversion 1.0\nchksum0 yes\n      endhdr\n" + word(0x11223344) + body + word(sum);
}

inline std::string weightFile(const Model& model) {
  std::string bytes;
  for (const std::string& line :
       {std::string("weights of densities"), std::string("cluster_count 0"), std::string("feature_count 3")}) {
    bytes += word(static_cast<uint32_t>(line.size() + 1)) + line + '\0';
  }
  bytes += word(0) + word(static_cast<uint32_t>(model.densities)) + word(static_cast<uint32_t>(model.senones()));
  return bytes + std::string(model.steps.begin(), model.steps.end());
}

inline std::string definitionFile(const Model& model) {
  const auto base = static_cast<uint32_t>(model.phones.size()), phones = 2 * base;
  std::string bytes = "BMDF" + word(1) + word(4) + "text";
  for (const uint32_t count :
       {base, phones, 3U, 3 * base, static_cast<uint32_t>(model.senones()), base, phones, 3U, 1U, base - 1}) {
    bytes += word(count);
  }
  for (const std::string& name : model.phones) bytes += name + '\0';
  while (bytes.size() % 4 != 0) bytes += '\0';
  bytes += std::string(8, '\0');  // the tree of contexts
  for (uint32_t p = 0; p < phones; ++p) {
    const uint32_t of = p < base ? p : phones - 1 - p;  // phones in context stand in the reverse order
    bytes += word(p) + word(of) + std::string(1, '\0') + static_cast<char>(p < base ? 0 : of) + std::string(2, '\0');
  }
  bytes += word(3 * phones);
  for (uint32_t s = 0; s < 3 * phones; ++s) bytes += program::littleEndian(s, 2);
  return bytes;
}

inline constexpr const char* kParameters =
    "-lowerf 130\n-upperf 6800\n-nfilt 25\n-transform dct\n-lifter 22\n-feat 1s_c_d_dd\n-svspec 0-12/13-25/26-38\n-agc none\n-cmn "
    "batch\n-varnorm no\n-model ptm\n-cmninit 41.00,-5.29\n";

inline void writeModel(const fs::path& folder, const Model& model) {
  fs::create_directories(folder);
  program::write(folder / "means", gaussianFile(model, model.means));
  program::write(folder / "variances", gaussianFile(model, model.variances));
  program::write(folder / "sendump", weightFile(model));
  program::write(folder / "mdef", definitionFile(model));
  program::write(folder / "feat.params", kParameters);
}

// ---- An installed model ----

inline std::vector<float> readGaussians(const fs::path& file) {
  const std::string bytes = program::contents(file);
  std::vector<float> values;
  const size_t begin =
      bytes.find("endhdr\n") + 7 + 4 + 4 * 7;  // behind counts and widths of three streams, and the number of values
  for (size_t i = begin; i + 8 <= bytes.size(); i += 4) values.push_back(std::bit_cast<float>(wordAt(bytes, i)));
  return values;
}

inline Model readModel(const fs::path& folder) {
  Model model;
  const std::string definition = program::contents(folder / "mdef");
  const size_t counts = 12 + wordAt(definition, 8);
  const auto count = [&](size_t i) { return static_cast<size_t>(wordAt(definition, counts + 4 * i)); };
  size_t at = counts + 40;
  for (size_t i = 0; i < count(0); ++i) {
    model.phones.emplace_back(definition.c_str() + at);
    at += model.phones.back().size() + 1;
  }
  const size_t phones = (at + 3) / 4 * 4 + 8 * count(8), sequences = phones + 12 * count(1) + 4;
  model.phoneOf.assign(count(4), -1);
  for (size_t p = 0; p < count(1); ++p) {
    const int base = p < count(0) ? static_cast<int>(p) : definition[phones + 12 * p + 9];
    for (size_t k = 0; k < 3; ++k) {
      const size_t senone = sequences + 2 * (3 * wordAt(definition, phones + 12 * p) + k);
      model.phoneOf[static_cast<unsigned char>(definition[senone]) + 256U * static_cast<unsigned char>(definition[senone + 1])] =
          base;
    }
  }
  model.means = readGaussians(folder / "means");
  model.variances = readGaussians(folder / "variances");
  model.densities = static_cast<int>(model.means.size() / (model.phones.size() * kStreams * kWidth));
  const std::string weights = program::contents(folder / "sendump");
  const size_t size = size_t{kStreams} * static_cast<size_t>(model.densities) * model.phoneOf.size();
  model.steps.assign(weights.end() - static_cast<std::ptrdiff_t>(size), weights.end());
  return model;
}

}  // namespace acoustic
