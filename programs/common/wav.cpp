#include "common/wav.h"

#include <sndfile.h>

#include <array>
#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <memory>
#include <string>
#include <system_error>

#include "common/files.h"
#include "common/text.h"

namespace program {
namespace {

// The decoder trusts the file's size over its header, so a recording that was cut short would pass. This walks the chunks.
void checkWhole(const std::filesystem::path& file) {
  std::error_code ignored;
  if (std::filesystem::exists(file, ignored) && !std::filesystem::is_regular_file(file, ignored)) throw BadSound("not a file");
  std::ifstream in(file, std::ios::binary);
  if (!in) throw BadSound(std::string("cannot be opened: ") + std::strerror(errno));
  const uint64_t size = std::filesystem::file_size(file);
  if (size == 0) throw BadSound("empty file");
  std::array<char, 12> head{};
  in.read(head.data(), head.size());
  const bool riff = in.gcount() >= 4 && std::memcmp(head.data(), "RIFF", 4) == 0;
  if (riff && in.gcount() < 12) throw BadSound("truncated inside its header");
  if (!riff || std::memcmp(head.data() + 8, "WAVE", 4) != 0) throw BadSound("not a WAV file");
  uint64_t at = 12;
  while (true) {
    std::array<char, 8> chunk{};
    in.clear();
    in.seekg(static_cast<std::streamoff>(at));
    in.read(chunk.data(), chunk.size());
    if (in.gcount() < 8) throw BadSound("truncated: no samples behind its header");
    const uint64_t length = littleEndian(chunk.data() + 4);
    if (std::memcmp(chunk.data(), "data", 4) == 0) {
      const uint64_t there = size - (at + 8);
      if (length > there) {
        throw BadSound("truncated: its header promises " + std::to_string(length) + " bytes of samples, it holds " +
                       std::to_string(there));
      }
      return;
    }
    at += 8 + length + length % 2;
  }
}

// One channel of interleaved samples, or their mean.
std::vector<float> chosen(const std::vector<float>& all, size_t channels, int channel) {
  std::vector<float> samples(all.size() / channels);
  const size_t first = channel == meanOfChannels ? 0 : static_cast<size_t>(channel - 1);
  const size_t last = channel == meanOfChannels ? channels : first + 1;
  for (size_t i = 0; i < samples.size(); ++i) {
    float sum = 0;
    for (size_t c = first; c < last; ++c) sum += all[i * channels + c];
    samples[i] = sum / static_cast<float>(last - first);
  }
  return samples;
}

}  // namespace

void checkName(const std::filesystem::path& file) {
  if (hasControls(file.filename().string())) throw BadSound("its name holds control characters");
}

Sound readWav(const std::filesystem::path& file, double maximumSeconds, int channel) {
  checkWhole(file);
  SF_INFO info{};
  const std::unique_ptr<SNDFILE, decltype(&sf_close)> in(sf_open(file.c_str(), SFM_READ, &info), sf_close);
  if (!in) throw BadSound(std::string("cannot be decoded: ") + sf_strerror(nullptr));
  if (channel == onlyChannel && info.channels != 1) throw BadSound(std::to_string(info.channels) + " channels; one is needed");
  if (channel > info.channels) {
    throw BadSound("has " + std::to_string(info.channels) + (info.channels == 1 ? " channel" : " channels") + ", not a number " +
                   std::to_string(channel));
  }
  if (info.samplerate < lowestRate || info.samplerate > highestRate) {
    throw BadSound("rate of " + std::to_string(info.samplerate) + " Hz outside " + std::to_string(lowestRate) + " to " +
                   std::to_string(highestRate));
  }
  if (info.frames < 1) throw BadSound("holds no samples");
  if (static_cast<double>(info.frames) > maximumSeconds * info.samplerate) {
    throw BadSound("longer than " + std::to_string(static_cast<int>(maximumSeconds)) + " s");
  }
  const auto channels = static_cast<size_t>(info.channels);
  Sound sound{info.samplerate, std::vector<float>(static_cast<size_t>(info.frames) * channels)};
  if (sf_readf_float(in.get(), sound.samples.data(), info.frames) != info.frames) throw BadSound("truncated: samples are missing");
  if (channels > 1) sound.samples = chosen(sound.samples, channels, channel);
  for (const float sample : sound.samples) {
    if (!std::isfinite(sample)) throw BadSound("holds samples that are not finite");
  }
  return sound;
}

}  // namespace program
