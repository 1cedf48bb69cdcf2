// What tests of programs need: a folder of their own, WAV files made on the spot, and a run of a program with all that it
// says.
#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <numbers>
#include <string>
#include <vector>

namespace program {

namespace fs = std::filesystem;

inline std::string contents(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

inline void write(const fs::path& file, const std::string& bytes) { std::ofstream(file, std::ios::binary) << bytes; }

/** A folder that is removed when the test ends. */
class Folder {
 public:
  Folder() {
    std::string name = (fs::temp_directory_path() / "qorsr-program-XXXXXX").string();
    path_ = mkdtemp(name.data());
  }
  ~Folder() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  fs::path operator/(const std::string& name) const { return path_ / name; }
  const fs::path& path() const { return path_; }

 private:
  fs::path path_;
};

struct Outcome {
  int code;
  std::string out, err;
};

/** Runs a program by the shell, with settings such as "PATH=/nowhere" in front, and waits for its end. */
inline Outcome run(const fs::path& binary, const std::string& arguments, const std::string& environment = "") {
  const Folder logs;
  const std::string command = environment + " '" + binary.string() + "' " + arguments + " >'" + (logs / "out").string() + "' 2>'" +
                              (logs / "err").string() + "'";
  const int status = std::system(command.c_str());
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, contents(logs / "out"), contents(logs / "err")};
}

inline std::string littleEndian(uint32_t value, int bytes) {
  std::string text;
  for (int i = 0; i < bytes; ++i) text += static_cast<char>(value >> 8 * i & 0xFF);
  return text;
}

inline size_t lineCount(const std::string& text) { return static_cast<size_t>(std::count(text.begin(), text.end(), '\n')); }

/** A path as one word of the shell. */
inline std::string quote(const fs::path& path) {
  std::string word = "'";
  for (const char c : path.string()) word += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return word + "'";
}

/** A WAV file of 16-bit samples. */
inline std::string wav(const std::vector<float>& samples, int rate, int channels = 1) {
  std::string data;
  for (const float sample : samples) {
    data += littleEndian(static_cast<uint16_t>(static_cast<int16_t>(std::lround(32000 * sample))), 2);
  }
  const auto size = static_cast<uint32_t>(data.size());
  const auto frequency = static_cast<uint32_t>(rate), count = static_cast<uint32_t>(channels);
  return "RIFF" + littleEndian(36 + size, 4) + "WAVEfmt " + littleEndian(16, 4) + littleEndian(1, 2) + littleEndian(count, 2) +
         littleEndian(frequency, 4) + littleEndian(2 * count * frequency, 4) + littleEndian(2 * count, 2) + littleEndian(16, 2) +
         "data" + littleEndian(size, 4) + data;
}

/** Noise that is the same everywhere, from -1 to 1. */
class Noise {
 public:
  explicit Noise(uint32_t seed) : state_(seed * 2654435761U + 12345U) {}
  float next() {
    state_ = state_ * 1664525U + 1013904223U;
    return static_cast<float>(static_cast<int32_t>(state_)) / 2147483648.0F;
  }

 private:
  uint32_t state_;
};

/** A "word": three vowels in turn, each the harmonics of a voice shaped by two resonances, between silences. The word chooses the
 *  vowels, the speaker pitch and resonances, the index tempo and noise. */
inline std::vector<float> spoken(int word, int speaker, int index, int rate) {
  constexpr double first[] = {300, 700, 500, 350}, second[] = {2200, 1200, 900, 1500};
  const double pitch = 110 + 60 * speaker, tract = 1 + 0.06 * speaker, tempo = 1 + 0.12 * (index % 3 - 1);
  Noise noise(static_cast<uint32_t>(100 * word + 10 * speaker + index));
  std::vector<float> samples;
  const auto silence = [&](double seconds) {
    for (int i = 0; i < static_cast<int>(seconds * rate); ++i) samples.push_back(0.002F * noise.next());
  };
  silence(0.05);
  for (int part = 0; part < 3; ++part) {
    const int vowel = (word + part * (1 + word / 4)) % 4;
    const int count = static_cast<int>(0.11 * tempo * rate);
    for (int i = 0; i < count; ++i) {
      double value = 0;
      for (int h = 1; h * pitch < 3400; ++h) {
        const double f = h * pitch, a = (f - first[vowel] * tract) / 120, b = (f - second[vowel] * tract) / 160;
        value += (1 / (1 + a * a) + 0.5 / (1 + b * b)) * std::sin(2 * std::numbers::pi * f * i / rate);
      }
      const double fade = std::min({1.0, i / (0.01 * rate), (count - i) / (0.01 * rate)});
      samples.push_back(static_cast<float>(0.12 * fade * value) + 0.002F * noise.next());
    }
  }
  silence(0.06);
  return samples;
}

}  // namespace program
