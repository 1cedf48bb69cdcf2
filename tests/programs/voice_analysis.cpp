// voice_analysis on sounds whose pitch and resonances are known, on sounds without a voice, and on every kind of bad input.
#include <functional>
#include <map>
#include <sstream>

#include "programs/program.h"

namespace {

using program::contents;
using program::Folder;
using program::lineCount;
using program::Outcome;
using program::quote;
namespace fs = std::filesystem;

Outcome analyse(const std::string& arguments, const std::string& environment = "") {
  return program::run(VOICE_ANALYSIS, arguments, environment);
}

// The columns of a tab-separated table by their headings; "-" is 0.
std::map<std::string, std::vector<double>> columns(const fs::path& table) {
  std::istringstream lines(contents(table));
  std::vector<std::string> names;
  std::map<std::string, std::vector<double>> result;
  std::string line, cell;
  std::getline(lines, line);
  for (std::istringstream cells(line); std::getline(cells, cell, '\t');) names.push_back(cell);
  while (std::getline(lines, line)) {
    std::istringstream cells(line);
    for (const std::string& name : names) {
      EXPECT_TRUE(std::getline(cells, cell, '\t')) << line;
      result[name].push_back(std::atof(cell.c_str()));
    }
  }
  return result;
}

std::map<std::string, std::vector<double>> framesOf(const std::string& bytes, const std::string& more = "") {
  const Folder folder;
  program::write(folder / "it.wav", bytes);
  const Outcome outcome =
      analyse(quote(folder / "it.wav") + " --quiet --pictures 0 --report " + quote(folder / "report") + " " + more);
  EXPECT_EQ(outcome.code, 0) << outcome.err;
  EXPECT_EQ(outcome.err, "");
  return columns(folder / "report" / "it.tsv");
}

double median(std::vector<double> values) {
  std::erase(values, 0.0);
  if (values.empty()) return 0;
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

// A train of pulses at a pitch that may change, falling by 6 dB an octave, through resonators in a row.
std::vector<float> voice(const std::function<double(double)>& pitch, int rate, double seconds,
                         const std::vector<std::pair<double, double>>& resonances = {
                             {500, 60}, {1500, 90}, {2500, 120}, {3500, 150}}) {
  std::vector<double> signal;
  double phase = 0, low = 0;
  const double decay = std::exp(-2 * std::numbers::pi * 100 / rate);
  for (int i = 0; i < static_cast<int>(seconds * rate); ++i) {
    phase += pitch(static_cast<double>(i) / rate) / rate;
    low *= decay;
    if (phase >= 1) {
      phase -= 1;
      const double late = phase * rate / pitch(static_cast<double>(i) / rate);  // samples since the pulse
      low += std::pow(decay, late);
    }
    signal.push_back(low);
  }
  for (const auto& [hertz, width] : resonances) {
    const double radius = std::exp(-std::numbers::pi * width / rate);
    const double b = 2 * radius * std::cos(2 * std::numbers::pi * hertz / rate), c = -radius * radius;
    double one = 0, two = 0;
    for (double& value : signal) {
      const double next = (1 - b - c) * value + b * one + c * two;
      two = one;
      one = value = next;
    }
  }
  double peak = 0;
  for (const double value : signal) peak = std::max(peak, std::fabs(value));
  std::vector<float> samples;
  for (const double value : signal) samples.push_back(static_cast<float>(0.7 * value / peak));
  return samples;
}

std::vector<float> steady(double hertz, int rate, double seconds = 0.5) {
  return voice([hertz](double) { return hertz; }, rate, seconds);
}

void addNoise(std::vector<float>& samples, double decibels) {
  double power = 0;
  for (const float sample : samples) power += static_cast<double>(sample) * static_cast<double>(sample);
  const auto height = static_cast<float>(std::sqrt(3 * power / static_cast<double>(samples.size()) * std::pow(10, -decibels / 10)));
  program::Noise noise(7);
  for (float& sample : samples) sample += height * noise.next();
}

TEST(VoiceAnalysis, FindsThePitchOfEveryHeightAndRate) {
  for (const int rate : {8000, 11025, 16000, 22050, 32000, 44100, 48000}) {
    for (const double hertz : {60.0, 83.3, 120.0, 171.0, 250.0, 333.0, 400.0, 520.0}) {
      SCOPED_TRACE(std::to_string(rate) + " Hz, voice of " + std::to_string(hertz));
      auto frames = framesOf(program::wav(steady(hertz, rate), rate));
      const std::vector<double>& found = frames["pitch Hz"];
      ASSERT_GE(found.size(), 49U);
      for (size_t f = 4; f + 4 < found.size(); ++f) EXPECT_NEAR(found[f], hertz, 0.004 * hertz) << f;
      EXPECT_NEAR(median(found), hertz, 0.0015 * hertz);
    }
  }
}

TEST(VoiceAnalysis, FollowsAPitchThatMoves) {
  const auto glide = [](double t) { return 110 * std::exp2(t); };  // an octave a second
  const auto vibrato = [](double t) { return 200 + 12 * std::sin(2 * std::numbers::pi * 5.5 * t); };
  for (const std::function<double(double)>& pitch :
       {std::function<double(double)>(glide), std::function<double(double)>(vibrato)}) {
    const Folder folder;
    program::write(folder / "it.wav", program::wav(voice(pitch, 16000, 1.2), 16000));
    ASSERT_EQ(analyse(quote(folder / "it.wav") + " --quiet --pictures 0 --report " + quote(folder / "report")).code, 0);
    auto frames = columns(folder / "report" / "it.tsv");
    for (size_t f = 4; f + 4 < frames["seconds"].size(); ++f) {
      const double expected = pitch(frames["seconds"][f]);
      EXPECT_NEAR(frames["pitch Hz"][f], expected, 0.02 * expected) << f;
    }
    auto summary = columns(folder / "report" / "summary.tsv");
    EXPECT_NEAR(summary["slope st/s"][0], pitch(0) < 150 ? 12 : 0, 0.5);
    EXPECT_NEAR(summary["voiced"][0], 100, 4);
  }
}

TEST(VoiceAnalysis, FindsThePitchInNoise) {
  for (const double hertz : {70.0, 110.0, 180.0, 260.0, 390.0}) {
    std::vector<float> samples = steady(hertz, 16000, 1);
    addNoise(samples, 10);
    auto frames = framesOf(program::wav(samples, 16000));
    size_t wrong = 0;
    for (size_t f = 4; f + 4 < 100; ++f) wrong += std::fabs(frames["pitch Hz"][f] / hertz - 1) > 0.03 ? 1 : 0;
    EXPECT_LE(wrong, 1U) << hertz;
  }
}

TEST(VoiceAnalysis, HearsNoVoiceWhereThereIsNone) {
  std::vector<float> hiss(16000), rising(16000);
  program::Noise noise(3);
  for (float& sample : hiss) sample = 0.3F * noise.next();
  float last = 0;
  for (float& sample : rising) {
    const float fresh = 0.3F * noise.next();
    sample = fresh - last;
    last = fresh;
  }
  const std::vector<float> silence(16000), offset(16000, 0.4F);
  for (const std::vector<float>& samples : {hiss, rising, silence, offset}) {
    auto frames = framesOf(program::wav(samples, 16000));
    EXPECT_EQ(frames["seconds"].size(), 100U);
    EXPECT_EQ(median(frames["pitch Hz"]), 0);
  }
  // Between silences the voiced frames are those of the voice.
  std::vector<float> samples(8000);
  const std::vector<float> inside = steady(140, 16000);
  samples.insert(samples.end(), inside.begin(), inside.end());
  samples.resize(24000);
  auto frames = framesOf(program::wav(samples, 16000));
  for (size_t f = 0; f < 150; ++f) {
    const bool outside = f < 47 || f > 103, inner = f > 53 && f < 97;
    if (outside || inner) {
      EXPECT_NEAR(frames["pitch Hz"][f], outside ? 0 : 140, outside ? 0 : 1) << f;
    }
  }
}

TEST(VoiceAnalysis, FindsFormantsOfKnownPoles) {
  const std::vector<std::vector<std::pair<double, double>>> vowels = {
      {{280, 60}, {2250, 80}, {2900, 120}, {3500, 160}}, {{400, 60}, {2050, 80}, {2600, 120}, {3450, 160}},
      {{730, 60}, {1190, 80}, {2450, 120}, {3400, 160}}, {{450, 60}, {850, 80}, {2500, 120}, {3400, 160}},
      {{310, 60}, {870, 80}, {2300, 120}, {3300, 160}},  {{500, 60}, {1500, 80}, {2500, 120}, {3500, 160}}};
  for (const int rate : {10000, 16000, 22050, 44100}) {
    for (const double hertz : {80.0, 100.0, 125.0}) {
      for (auto vowel : vowels) {
        const auto poles = vowel;
        for (double f = 4500, width = 200; f < rate / 2.0 - 200; f += 1000, width += 50) vowel.emplace_back(f, width);
        auto frames = framesOf(program::wav(voice([hertz](double) { return hertz; }, rate, 0.4, vowel), rate), "--ceiling-hz 5000");
        for (size_t k = 0; k < 4; ++k) {
          const double found = median(frames["F" + std::to_string(k + 1) + " Hz"]);
          EXPECT_NEAR(found, poles[k].first, 0.05 * poles[k].first) << rate << " Hz, pitch " << hertz << ", F" << k + 1;
        }
      }
    }
  }
}

TEST(VoiceAnalysis, MeasuresLevelAndSignChanges) {
  std::vector<float> sine;
  for (int i = 0; i < 16000; ++i) sine.push_back(static_cast<float>(0.5 * std::sin(2 * std::numbers::pi * 440 * i / 16000)));
  auto frames = framesOf(program::wav(sine, 16000));
  for (size_t f = 2; f < 98; ++f) {
    EXPECT_NEAR(frames["level dB"][f], 20 * std::log10(0.5 * 32000 / 32768) - 3.01, 0.05);
    EXPECT_NEAR(frames["sign changes a second"][f], 880, 41);
    EXPECT_NEAR(frames["pitch Hz"][f], 440, 0.5);
    EXPECT_GT(frames["periodicity"][f], 0.99);
  }
  EXPECT_EQ(framesOf(program::wav(sine, 16000), "--hop-ms 5")["seconds"].size(), 200U);
}

TEST(VoiceAnalysis, TakesTheChannelThatIsAskedFor) {
  const std::vector<float> left = steady(100, 16000), right = steady(170, 16000);
  std::vector<float> both;
  for (size_t i = 0; i < left.size(); ++i) {
    both.push_back(left[i]);
    both.push_back(right[i]);
  }
  const std::string stereo = program::wav(both, 16000, 2);
  EXPECT_NEAR(median(framesOf(stereo, "--channel 1")["pitch Hz"]), 100, 0.2);
  EXPECT_NEAR(median(framesOf(stereo, "--channel 2")["pitch Hz"]), 170, 0.3);
  for (size_t i = 1; i < both.size(); i += 2) both[i] = -both[i - 1];
  EXPECT_EQ(median(framesOf(program::wav(both, 16000, 2))["pitch Hz"]), 0);  // the mean is silence
  const Folder folder;
  program::write(folder / "it.wav", stereo);
  program::write(folder / "one.wav", program::wav(left, 16000));
  const std::string files = quote(folder / "it.wav") + " " + quote(folder / "one.wav") + " --quiet --report " + quote(folder / "r");
  EXPECT_EQ(analyse(files + " --channel 3").err,
            "skipped " + (folder / "it.wav").string() + ": has 2 channels, not a number 3\nskipped " +
                (folder / "one.wav").string() +
                ": has 1 channel, not a number 3\nvoice_analysis: no usable recording: all 2 files were skipped\n");
  EXPECT_EQ(analyse(files + " --channel 2").code, 0);
  for (const char* channel : {"0", "-1", "x", "1.5", "", "1 2"}) {
    EXPECT_EQ(analyse(files + " --channel '" + channel + "'").code, 2) << channel;
  }
}

TEST(VoiceAnalysis, WritesTablesPicturesAndAPage) {
  const Folder folder;
  fs::create_directory(folder / "voices");
  fs::create_directory(folder / "more");
  program::write(folder / "voices" / "a.wav", program::wav(steady(120, 16000), 16000));
  program::write(folder / "voices" / "b.WAV", program::wav(steady(210, 8000), 8000));
  program::write(folder / "voices" / ".hidden.wav", "nothing");
  program::write(folder / "more" / "summary.wav", program::wav(std::vector<float>(8000), 8000));
  program::write(folder / "more" / "a.wav", program::wav(steady(150, 48000), 48000));
  const std::string start = quote(folder / "voices") + " " + quote(folder / "more" / "summary.wav") + " " +
                            quote(folder / "more" / "a.wav") + " --report " + quote(folder / "report");
  const Outcome outcome = analyse(start + " --pictures 3 --at 0.2");
  ASSERT_EQ(outcome.code, 0) << outcome.err;
  EXPECT_NE(outcome.err.find("analysing: 4 of 4"), std::string::npos) << outcome.err;
  for (const char* words :
       {"4 recordings, 2.5 s", "\na          ", "\na_2        ", "\nb          ", "\nsummary_2  ", "times real time"}) {
    EXPECT_NE(outcome.out.find(words), std::string::npos) << words << outcome.out;
  }
  const std::string page = contents(folder / "report" / "index.html");
  EXPECT_EQ(lineCount(contents(folder / "report" / "summary.tsv")), 5U);
  for (const char* name : {"a.tsv", "b.tsv", "summary_2.tsv", "a_2.tsv"}) EXPECT_TRUE(fs::exists(folder / "report" / name)) << name;
  auto summary = columns(folder / "report" / "summary.tsv");
  EXPECT_NEAR(summary["pitch Hz"][0], 120, 0.3);
  EXPECT_NEAR(summary["pitch Hz"][1], 210, 0.3);
  EXPECT_EQ(summary["pitch Hz"][2], 0);
  EXPECT_NEAR(summary["pitch Hz"][3], 150, 0.3);
  if (std::system("gnuplot --version >/dev/null 2>&1") == 0) {
    EXPECT_NE(page.find("Pictures of the first 3 recordings"), std::string::npos);
    for (const char* name : {"a.png", "b.png", "summary_2.png"}) {
      EXPECT_EQ(contents(folder / "report" / name).substr(1, 3), "PNG") << name;
      EXPECT_NE(page.find(std::string("src=\"") + name), std::string::npos);
    }
    EXPECT_FALSE(fs::exists(folder / "report" / "a_2.png"));
    EXPECT_EQ(analyse(start + " --quiet --at 3000").code, 0);  // beyond the end: the last frame
    EXPECT_EQ(contents(folder / "report" / "index.html").find("of the first"), std::string::npos);
  }
  const Outcome without = analyse(start + " --quiet", "PATH=/nowhere");
  EXPECT_EQ(without.code, 0);
  EXPECT_EQ(lineCount(without.err), 1U) << without.err;
  EXPECT_NE(without.err.find("no pictures: gnuplot cannot be run"), std::string::npos) << without.err;
}

TEST(VoiceAnalysis, SameRunSameData) {
  const Folder folder;
  program::write(folder / "a.wav", program::wav(program::spoken(1, 0, 0, 16000), 16000));
  const auto tables = [&] {
    EXPECT_EQ(analyse(quote(folder / "a.wav") + " --quiet --pictures 0 --report " + quote(folder / "report")).code, 0);
    return contents(folder / "report" / "a.tsv") + contents(folder / "report" / "summary.tsv");
  };
  EXPECT_EQ(tables(), tables());
}

TEST(VoiceAnalysis, SaysWhyARecordingIsSkipped) {
  const Folder folder;
  const fs::path voices = folder / "voices";
  fs::create_directory(voices);
  const std::string good = program::wav(steady(120, 16000), 16000);
  const std::vector<std::pair<std::string, std::string>> files = {{"a.wav", good},
                                                                  {"cut.wav", good.substr(0, good.size() - 100)},
                                                                  {"empty.wav", ""},
                                                                  {"fast.wav", program::wav(std::vector<float>(9600), 96000)},
                                                                  {"none.wav", program::wav({}, 16000)},
                                                                  {"short.wav", program::wav(std::vector<float>(100), 16000)},
                                                                  {"single.wav", program::wav(std::vector<float>(1), 16000)},
                                                                  {"slow.wav", program::wav(std::vector<float>(4000), 4000)},
                                                                  {"text.txt", "not a recording"}};
  for (const auto& [name, bytes] : files) program::write(voices / name, bytes);
  fs::create_directory(voices / "folder.wav");
  const std::string end = " --quiet --pictures 0 --report " + quote(folder / "report");
  const Outcome outcome = analyse(quote(voices) + end);
  EXPECT_EQ(outcome.code, 0);
  EXPECT_EQ(lineCount(outcome.err), 9U) << outcome.err;
  EXPECT_NE(outcome.out.find("skipped    9 of 10 files\n"), std::string::npos) << outcome.out;
  for (const char* line :
       {"cut.wav: truncated: ", "empty.wav: empty file\n", "fast.wav: rate of 96000 Hz outside 8000 to 48000\n",
        "none.wav: holds no samples\n", "short.wav: shorter than one frame\n", "single.wav: shorter than one frame\n",
        "slow.wav: rate of 4000 Hz", "text.txt: not a WAV file\n", "folder.wav: not a file\n"}) {
    EXPECT_NE(outcome.err.find(line), std::string::npos) << line << outcome.err;
  }
  EXPECT_NE(contents(folder / "report" / "index.html").find("Skipped files (9)"), std::string::npos);
  const Outcome none =
      analyse(quote(voices / "text.txt") + " " + quote(folder / "missing.wav") + " --report " + quote(folder / "r"));
  EXPECT_EQ(none.code, 1);
  EXPECT_NE(none.err.find("missing.wav: cannot be opened"), std::string::npos) << none.err;
  EXPECT_NE(none.err.find("no usable recording: all 2 files were skipped\n"), std::string::npos) << none.err;
  EXPECT_FALSE(fs::exists(folder / "r"));
  fs::create_directory(folder / "nothing");
  EXPECT_NE(analyse(quote(folder / "nothing") + end).err.find("is empty"), std::string::npos);
}

// Whatever the samples are, it ends, and what it finds is within bounds.
TEST(VoiceAnalysis, StandsStrangeSounds) {
  std::vector<float> square, clicks(16000), step(16000), loudest(16000, 1.02F);
  for (int i = 0; i < 16000; ++i) square.push_back(i / 40 % 2 == 0 ? 1.0F : -1.0F);
  clicks[5000] = 1;
  clicks[5001] = -1;
  for (size_t i = 8000; i < 16000; ++i) step[i] = 0.5F;
  const std::vector<float> brief(161, 0.1F);
  for (const std::vector<float>& samples : {square, clicks, step, loudest, brief}) {
    for (const char* more : {"", "--lowest-hz 20 --highest-hz 1500", "--lowest-hz 300 --highest-hz 600", "--voicing 0 --hop-ms 1",
                             "--voicing 1", "--ceiling-hz 2000", "--ceiling-hz 8000"}) {
      SCOPED_TRACE(more);
      auto frames = framesOf(program::wav(samples, 16000), more);
      EXPECT_FALSE(frames["seconds"].empty());
      for (const double hertz : frames["pitch Hz"]) EXPECT_TRUE(hertz == 0 || (hertz >= 20 && hertz <= 1500)) << hertz;
      for (const double value : frames["periodicity"]) EXPECT_TRUE(value >= 0 && value <= 1) << value;
      for (const double hertz : frames["F1 Hz"]) EXPECT_TRUE(hertz >= 0 && hertz <= 8000) << hertz;
    }
  }
  EXPECT_NEAR(median(framesOf(program::wav(square, 16000))["pitch Hz"]), 200, 0.2);
}

TEST(VoiceAnalysis, RefusesWrongOptions) {
  const Folder folder;
  program::write(folder / "a.wav", program::wav(steady(120, 16000), 16000));
  const std::string start = quote(folder / "a.wav") + " --report " + quote(folder / "report") + " ";
  for (const char* more : {"--hop-ms 0", "--lowest-hz 0", "--highest-hz 5000", "--voicing 2", "--ceiling-hz 100", "--at -1",
                           "--pictures many", "--unheard-of"}) {
    EXPECT_EQ(analyse(start + more).code, 2) << more;
  }
  EXPECT_EQ(analyse("").code, 2);
  EXPECT_EQ(analyse("--help").code, 0);
  const Outcome narrow = analyse(start + "--lowest-hz 300 --highest-hz 500");
  EXPECT_EQ(narrow.code, 1);
  EXPECT_EQ(narrow.err, "voice_analysis: the highest pitch must be at least twice the lowest\n");
  EXPECT_FALSE(fs::exists(folder / "report"));
}

}  // namespace
