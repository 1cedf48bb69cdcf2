// The senone scorer as a program: its features and scores against the definitions in double precision, reports, damaged models.
#include <gtest/gtest.h>

#include "programs/program.h"
#include "programs/senone_model.h"

namespace {

namespace fs = std::filesystem;
using acoustic::Model;
using acoustic::Rows;
using program::lineCount;

constexpr int kRate = 16000, kTop = 4;

// 32-bit floats, so many a row.
Rows readRows(const fs::path& file, size_t width) {
  const std::string bytes = program::contents(file);
  Rows rows;
  for (size_t at = 0; at + 4 * width <= bytes.size(); at += 4 * width) {
    std::vector<double>& row = rows.emplace_back();
    for (size_t i = 0; i < width; ++i)
      row.push_back(static_cast<double>(std::bit_cast<float>(acoustic::wordAt(bytes, at + 4 * i))));
  }
  return rows;
}

// The samples of a WAV file of the simplest kind, as 16-bit numbers.
std::vector<double> samplesOf(const std::string& wav) {
  std::vector<double> samples;
  for (size_t at = wav.find("data") + 8; at + 2 <= wav.size(); at += 2) {
    const auto low = static_cast<unsigned char>(wav[at]), high = static_cast<unsigned char>(wav[at + 1]);
    samples.push_back(static_cast<int16_t>(low | high << 8));
  }
  return samples;
}

std::vector<float> speech(int word) { return program::spoken(word, 0, 0, kRate); }

program::Outcome score(const fs::path& model, const std::string& arguments) {
  return program::run(SENONE_SCORES, "--quiet --model " + program::quote(model) + " " + arguments);
}

// Scores a recording and compares features, and scores from these features, with the definitions.
//
// Bounds. A power spectrum in float is off by a few 1e-7 of its largest bin; in a quiet filter that is 1e-3 of its logarithm at
// most, times the lifter (12) and the orthonormal sum: 0.02 of a coefficient. A stream's score is a float of magnitude up to some
// thousand after 13 terms: 1e-6 of it, and the fast log addition 2e-7 a term.
void expectDefinitions(const Model& model, const fs::path& modelFolder, const std::string& wav) {
  const program::Folder folder;
  program::write(folder / "it.wav", wav);
  const program::Outcome outcome =
      score(modelFolder, program::quote(folder / "it.wav") + " --write-scores --report " + program::quote(folder / "report"));
  ASSERT_EQ(outcome.code, 0) << outcome.err;
  const Rows features = readRows(folder / "report" / "it_features.f32", 39);
  const Rows expectedFeatures = acoustic::features(samplesOf(wav));
  ASSERT_EQ(features.size(), expectedFeatures.size());
  double largest = 0;
  for (size_t f = 0; f < features.size(); ++f) {
    for (size_t i = 0; i < 39; ++i) largest = std::max(largest, std::fabs(features[f][i] - expectedFeatures[f][i]));
  }
  EXPECT_LT(largest, 0.02);
  testing::Test::RecordProperty("largestFeatureError", std::to_string(largest));
  const auto senones = static_cast<size_t>(model.senones());
  const Rows scores = readRows(folder / "report" / "it_senones.f32", senones);
  ASSERT_EQ(scores.size(), features.size());
  const std::vector<double> weights = acoustic::logWeights(model);
  double worst = 0;
  for (size_t f = 0; f < features.size(); ++f) {
    const std::vector<double> expected = acoustic::senoneScores(model, weights, features[f], kTop);
    for (size_t n = 0; n < senones; ++n)
      worst = std::max(worst, std::fabs(scores[f][n] - expected[n]) / (1 + std::fabs(expected[n])));
  }
  EXPECT_LT(worst, 3e-6);
  testing::Test::RecordProperty("worstScoreError", std::to_string(worst));
  std::printf("features within %.2g, scores within %.2g of themselves\n", largest, worst);
}

class SenoneScores : public testing::Test {
 protected:
  SenoneScores() : model_(acoustic::randomModel()) {
    acoustic::writeModel(modelFolder(), model_);
    program::write(folder_ / "a.wav", program::wav(speech(1), kRate));
  }
  fs::path modelFolder() const { return folder_ / "model"; }
  std::string quoted(const std::string& name) const { return program::quote(folder_ / name); }

  Model model_;
  program::Folder folder_;
};

TEST_F(SenoneScores, FeaturesAndScoresAreThoseOfTheDefinitions) {
  expectDefinitions(model_, modelFolder(), program::wav(speech(0), kRate));
}

TEST_F(SenoneScores, AnOddNumberOfFramesAndASingleOne) {
  const std::vector<float> samples = speech(2);
  for (const size_t count : {size_t{410}, size_t{570}, size_t{730}, size_t{2000}}) {
    expectDefinitions(
        model_, modelFolder(),
        program::wav(std::vector<float>(samples.begin() + 3000, samples.begin() + 3000 + static_cast<std::ptrdiff_t>(count)),
                     kRate));
  }
}

// The package's own model on one of the recordings that its test data hold.
TEST(InstalledModel, FeaturesAndScoresAreThoseOfTheDefinitions) {
  const fs::path folder = "/usr/share/pocketsphinx/model/en-us/en-us", wav = "/usr/share/pocketsphinx/test/data/cards/001.wav";
  if (!fs::exists(folder / "means") || !fs::exists(wav))
    GTEST_SKIP() << "pocketsphinx-en-us or pocketsphinx-testdata is not installed";
  expectDefinitions(acoustic::readModel(folder), folder, program::contents(wav));
}

// Frames of nothing but zeros do not move the mean: those of speech score as they do without them. Where there is nothing else the
// mean is theirs.
TEST_F(SenoneScores, DigitalSilenceHasNoPartInTheMean) {
  std::vector<float> inside;
  for (int word = 0; word < 8; ++word) {
    const std::vector<float> one = speech(word);
    inside.insert(inside.end(), one.begin(), one.end());
  }
  std::vector<float> padded(7 * 160), silent(4000);
  padded.insert(padded.end(), inside.begin(), inside.end());
  padded.resize(padded.size() + 5000);
  for (const std::vector<float>& samples : {padded, silent}) {
    expectDefinitions(model_, modelFolder(), program::wav(samples, kRate));
  }
  const auto rowsOf = [&](const std::vector<float>& samples) {
    program::write(folder_ / "b.wav", program::wav(samples, kRate));
    EXPECT_EQ(score(modelFolder(), quoted("b.wav") + " --write-scores --report " + quoted("report")).code, 0);
    return readRows(folder_ / "report" / "b_senones.f32", static_cast<size_t>(model_.senones()));
  };
  const Rows alone = rowsOf(inside), among = rowsOf(padded);
  for (size_t f = 6; f + 8 < alone.size(); ++f) {  // but for frames whose derivatives or window reach into the silence
    for (size_t n = 0; n < alone[f].size(); ++n) EXPECT_NEAR(among[f + 7][n], alone[f][n], 5) << f;
  }
}

TEST_F(SenoneScores, SettingsThatSayWhatIsDoneAnywayChangeNothing) {
  const auto rows = [&] {
    EXPECT_EQ(score(modelFolder(), quoted("a.wav") + " --write-scores --report " + quoted("report")).code, 0);
    return program::contents(folder_ / "report" / "a_senones.f32");
  };
  const std::string before = rows(), whole = program::contents(modelFolder() / "feat.params");
  for (const char* line : {"-remove_noise no", "-dither no", "-round_filters yes", "-remove_dc no", "-unit_area yes"}) {
    SCOPED_TRACE(line);
    program::write(modelFolder() / "feat.params", whole + line + "\n");
    EXPECT_EQ(rows(), before);
  }
  program::write(modelFolder() / "feat.params", whole + "-remove_noise no\n-dither no\n");
  EXPECT_EQ(score(modelFolder(), quoted("a.wav") + " --report " + quoted("report")).out.find("stationary noise"),
            std::string::npos);
}

TEST_F(SenoneScores, WritesATableAPictureAndAPage) {
  program::write(folder_ / "other", "");
  fs::create_directory(folder_ / "second");
  program::write(folder_ / "second/a.wav", program::wav(speech(3), kRate));
  const program::Outcome outcome =
      score(modelFolder(), quoted("a.wav") + " " + quoted("second/a.wav") + " --best 3 --report " + quoted("report"));
  ASSERT_EQ(outcome.code, 0) << outcome.err;
  EXPECT_NE(outcome.out.find("3 codebooks x 3 streams x 6 densities"), std::string::npos) << outcome.out;
  EXPECT_NE(outcome.out.find("million Gaussians a second"), std::string::npos) << outcome.out;
  EXPECT_NE(outcome.out.find("Left out"), std::string::npos) << outcome.out;
  const std::string table = program::contents(folder_ / "report/a.tsv"), page = program::contents(folder_ / "report/index.html");
  EXPECT_EQ(lineCount(table), (speech(1).size() - 410) / 160 + 2);
  EXPECT_EQ(table.substr(0, table.find('\n')), "seconds\tsenone\tstate\tscore\tsenone\tstate\tscore\tsenone\tstate\tscore");
  EXPECT_TRUE(fs::exists(folder_ / "report/a_2.tsv"));
  EXPECT_FALSE(fs::exists(folder_ / "report/a_senones.f32"));
  if (std::system("gnuplot --version >/dev/null 2>&1") == 0) {
    EXPECT_NE(page.find("a.png"), std::string::npos);
    EXPECT_EQ(program::contents(folder_ / "report/a.png").substr(1, 3), "PNG");
  }
}

TEST_F(SenoneScores, SaysWhyARecordingIsSkipped) {
  program::write(folder_ / "high.wav", program::wav(program::spoken(1, 0, 0, 44100), 44100));  // is resampled
  program::write(folder_ / "short.wav", program::wav(std::vector<float>(409), kRate));
  program::write(folder_ / "stereo.wav", program::wav(speech(1), kRate, 2));
  program::write(folder_ / "empty.wav", "");
  program::write(folder_ / "text.wav", "this is not a recording");
  std::string cut = program::wav(speech(1), kRate);
  cut.resize(cut.size() - 1000);
  program::write(folder_ / "cut.wav", cut);
  fs::create_directory(folder_ / "folder.wav");
  std::string files;
  for (const char* name : {"a.wav", "high.wav", "short.wav", "stereo.wav", "empty.wav", "text.wav", "cut.wav", "folder.wav"}) {
    files += quoted(name) + " ";
  }
  const program::Outcome some = score(modelFolder(), files + "--report " + quoted("report"));
  EXPECT_EQ(some.code, 0);
  EXPECT_EQ(lineCount(some.err), 6u) << some.err;
  EXPECT_NE(some.out.find("skipped    6 of 8 files\n"), std::string::npos) << some.out;
  EXPECT_NE(some.err.find("stereo.wav: 2 channels; one is needed\n"), std::string::npos) << some.err;
  EXPECT_NE(some.err.find("empty.wav: empty file\n"), std::string::npos) << some.err;
  EXPECT_NE(some.err.find("text.wav: not a WAV file\n"), std::string::npos) << some.err;
  EXPECT_NE(some.err.find("folder.wav: not a file\n"), std::string::npos) << some.err;
  EXPECT_NE(some.err.find("cut.wav: truncated: "), std::string::npos) << some.err;
  EXPECT_NE(some.err.find("short.wav: shorter than one frame\n"), std::string::npos) << some.err;
  const program::Outcome none =
      score(modelFolder(), quoted("short.wav") + " " + quoted("missing.wav") + " --report " + quoted("nothing"));
  EXPECT_EQ(none.code, 1);
  EXPECT_NE(none.err.find("missing.wav: cannot be opened"), std::string::npos) << none.err;
  EXPECT_NE(none.err.find("no usable recording: all 2 files were skipped\n"), std::string::npos) << none.err;
  EXPECT_FALSE(fs::exists(folder_ / "nothing"));
}

TEST_F(SenoneScores, WithoutGnuplotThereIsAReportWithoutPictures) {
  const program::Outcome outcome = program::run(
      SENONE_SCORES, "--quiet --model " + program::quote(modelFolder()) + " " + quoted("a.wav") + " --report " + quoted("report"),
      "PATH=/nowhere");
  EXPECT_EQ(outcome.code, 0);
  EXPECT_NE(outcome.err.find("no pictures: gnuplot cannot be run"), std::string::npos) << outcome.err;
  EXPECT_TRUE(fs::exists(folder_ / "report/index.html"));
}

TEST_F(SenoneScores, RefusesWrongOptions) {
  EXPECT_EQ(score(modelFolder(), "").code, 2);
  EXPECT_EQ(score(modelFolder(), quoted("a.wav") + " --densities 0").code, 2);
  EXPECT_EQ(score(modelFolder(), quoted("a.wav") + " --best many").code, 2);
  EXPECT_EQ(score(modelFolder(), quoted("a.wav") + " --unheard-of").code, 2);
  EXPECT_EQ(score(modelFolder(), "--help").code, 0);
}

// ---- Damaged models ----

struct Damage {
  const char* file;
  const char* said;  // part of the line
  std::function<void(std::string&)> spoil;
};

void replace(std::string& text, const std::string& what, const std::string& with) {
  text.replace(text.find(what), what.size(), with);
}
void setWord(std::string& bytes, size_t at, uint32_t value) { bytes.replace(at, 4, acoustic::word(value)); }

// Damage that no checksum would tell of.
void dropChecksum(std::string& bytes) {
  replace(bytes, "yes", "no ");
  bytes.resize(bytes.size() - 4);
}

// Words of 32 bits from here on with their bytes in the other order.
void swapBytes(std::string& bytes, size_t from) {
  for (size_t at = from; at + 4 <= bytes.size(); at += 4) {
    std::swap(bytes[at], bytes[at + 3]);
    std::swap(bytes[at + 1], bytes[at + 2]);
  }
}

constexpr size_t kCounts = 44;      // of the Gaussian files: behind the header and the byte-order mark
constexpr size_t kDefinition = 16;  // of mdef: behind its description

TEST_F(SenoneScores, RefusesADamagedModelWithOneLine) {
  const Damage damages[] = {
      {"means", "empty", [](std::string& s) { s.clear(); }},
      {"means", "truncated", [](std::string& s) { s.resize(s.size() - 100); }},
      {"means", "truncated", [](std::string& s) { s.resize(46); }},
      {"means", "no end of the header", [](std::string& s) { s.resize(20); }},
      {"means", "does not begin with \"s3\"", [](std::string& s) { s[0] = 'x'; }},
      {"means", "byte-order mark", [](std::string& s) { std::swap(s[40], s[43]); }},
      {"means", "byte-swapped", [](std::string& s) { swapBytes(s, kCounts - 4); }},
      {"variances", "byte-swapped", [](std::string& s) { swapBytes(s, kCounts - 4); }},
      {"sendump", "byte-swapped", [](std::string& s) { setWord(s, 0, 0x1E000000); }},
      {"mdef", "byte-swapped", [](std::string& s) { swapBytes(s, 0); }},
      {"mdef", "byte-swapped", [](std::string& s) { setWord(s, 4, 0x01000000); }},
      {"mdef", "control characters", [](std::string& s) { replace(s, "SIL", "S\nL"); }},
      {"means", "checksum", [](std::string& s) { s[1000] ^= 4; }},
      {"means", "checksum", [](std::string& s) { s[s.size() - 1] ^= 1; }},
      {"means", "bytes too many", [](std::string& s) { s += "more"; }},
      {"means", "number of codebooks", [](std::string& s) { setWord(s, kCounts, 0); }},
      {"means", "number of codebooks", [](std::string& s) { setWord(s, kCounts, 0xFFFFFFFF); }},
      {"means", "number of densities", [](std::string& s) { setWord(s, kCounts + 8, 0x7FFFFFFF); }},
      {"means", "does not follow", [](std::string& s) { setWord(s, kCounts, 4); }},
      {"means", "does not follow", [](std::string& s) { setWord(s, kCounts + 8, 1 << 20); }},
      {"means", "not finite", [](std::string& s) { dropChecksum(s), setWord(s, 1000, 0x7FC00000); }},
      {"variances", "negative", [](std::string& s) { dropChecksum(s), setWord(s, 1000, 0xC0000000); }},
      {"variances", "another shape", [](std::string& s) { dropChecksum(s), setWord(s, kCounts, 6), setWord(s, kCounts + 8, 3); }},
      {"sendump", "truncated", [](std::string& s) { s.resize(s.size() - 1); }},
      {"sendump", "truncated", [](std::string& s) { s.resize(10); }},
      {"sendump", "header line", [](std::string& s) { setWord(s, 0, 0x7FFFFFFF); }},
      {"sendump", "bytes too many", [](std::string& s) { s += "more"; }},
      {"sendump", "clustered", [](std::string& s) { replace(s, "cluster_count 0", "cluster_count 9"); }},
      {"sendump", "streams", [](std::string& s) { replace(s, "feature_count 3", "feature_count 2"); }},
      {"sendump", "densities", [](std::string& s) { setWord(s, s.size() - 18 * 18 - 8, 7); }},
      {"mdef", "not a binary model definition", [](std::string& s) { s[0] = 'X'; }},
      {"mdef", "version", [](std::string& s) { setWord(s, 4, 2); }},
      {"mdef", "truncated", [](std::string& s) { s.resize(s.size() - 2); }},
      {"mdef", "truncated", [](std::string& s) { setWord(s, 8, 1 << 20); }},
      {"mdef", "number of base phones", [](std::string& s) { setWord(s, kDefinition, 256); }},
      {"mdef", "phone 5 has no base phone", [](std::string& s) { s[s.size() - 43] = 3; }},
      {"mdef", "number of states", [](std::string& s) { setWord(s, kDefinition + 8, 0); }},
      {"mdef", "senones", [](std::string& s) { setWord(s, kDefinition + 16, 19); }},
      {"mdef", "two phones", [](std::string& s) { s[s.size() - 2] = 3; }},
      {"mdef", "belongs to no phone", [](std::string& s) { s[s.size() - 2] = s[s.size() - 4]; }},
      {"mdef", "without a senone", [](std::string& s) { s[s.size() - 1] = 1; }},
      {"feat.params", "-transform legacy is not offered", [](std::string& s) { replace(s, "dct", "legacy"); }},
      {"feat.params", "-feat 4s_13d is not offered", [](std::string& s) { replace(s, "1s_c_d_dd", "4s_13d"); }},
      {"feat.params", "-nfilt many is not offered", [](std::string& s) { replace(s, "25", "many"); }},
      {"feat.params", "-unheard of is not offered", [](std::string& s) { s += "-unheard of\n"; }},
      {"feat.params", "-remove_noise yes is not offered", [](std::string& s) { s += "-remove_noise yes\n"; }},
      {"feat.params", "-dither yes is not offered", [](std::string& s) { s += "-dither yes\n"; }},
      {"feat.params", "-round_filters no is not offered", [](std::string& s) { s += "-round_filters no\n"; }},
      {"feat.params", "-wlen nan is not offered", [](std::string& s) { s += "-wlen nan\n"; }},
      {"feat.params", "-upperf", [](std::string& s) { replace(s, "6800", "9000"); }},
      {"feat.params", "too many for these frequencies", [](std::string& s) { replace(s, "-nfilt 25", "-nfilt 199"); }},
      {"feat.params", "line 13 is not of the form", [](std::string& s) { s += "nonsense\n"; }},
      {"feat.params", "empty", [](std::string& s) { s.clear(); }},
      {"feat.params", "-nfilt is missing", [](std::string& s) { replace(s, "-nfilt 25\n", ""); }},
      {"feat.params", "-feat is missing", [](std::string& s) { replace(s, "-feat 1s_c_d_dd\n", ""); }},
      {"feat.params", "-svspec 0-38", [](std::string& s) { replace(s, "0-12/13-25/26-38", "0-38"); }},
      {"variances", "empty", [](std::string& s) { s.clear(); }},
      {"sendump", "empty", [](std::string& s) { s.clear(); }},
      {"mdef", "empty", [](std::string& s) { s.clear(); }},
      {"sendump", "densities", [](std::string& s) { setWord(s, s.size() - 18 * 18 - 8, 0x06000000); }},
      {"feat.params", "elements", [](std::string& s) { s += "-ncep 12\n"; }},
  };
  for (const Damage& damage : damages) {
    SCOPED_TRACE(std::string(damage.file) + ": " + damage.said);
    const std::string whole = program::contents(modelFolder() / damage.file);
    std::string spoilt = whole;
    damage.spoil(spoilt);
    program::write(modelFolder() / damage.file, spoilt);
    const program::Outcome outcome = score(modelFolder(), quoted("a.wav") + " --report " + quoted("report"));
    EXPECT_EQ(outcome.code, 1) << outcome.err;
    EXPECT_EQ(lineCount(outcome.err), 1u) << outcome.err;
    EXPECT_NE(outcome.err.find(damage.file), std::string::npos) << outcome.err;
    EXPECT_NE(outcome.err.find(damage.said), std::string::npos) << outcome.err;
    EXPECT_FALSE(fs::exists(folder_ / "report"));
    program::write(modelFolder() / damage.file, whole);
  }
  for (const char* file : {"means", "variances", "sendump", "mdef", "feat.params"}) {
    const fs::path hidden = folder_ / "hidden";
    fs::rename(modelFolder() / file, hidden);
    const program::Outcome outcome = score(modelFolder(), quoted("a.wav") + " --report " + quoted("report"));
    EXPECT_EQ(outcome.code, 1);
    EXPECT_NE(outcome.err.find(std::string(file) + ": cannot be opened"), std::string::npos) << outcome.err;
    fs::rename(hidden, modelFolder() / file);
  }
}

}  // namespace
