// Noise tracking and suppression gains beside plain loops, at the bins of usual transforms.
#include <cmath>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "kit/bench.h"
#include "noise_tracking_plain.h"
#include "qorsr.h"

namespace {

#define OURS(name) level.ours<decltype(name)>(#name)
#define PLAIN(name) level.plain<decltype(name)>(#name)

constexpr int32_t kOctaves[24][3] = {{669498645, 1576642499, 72453962},
                                     {473414302, 557423223, 51231813},
                                     {334764744, 197075987, 36225125},
                                     {236728959, 69674844, 25613282},
                                     {167413213, 24632335, 18108852},
                                     {118408092, 8707825, 12801395},
                                     {83768274, 3077959, 9047010},
                                     {59291231, 1087711, 6390220},
                                     {42007360, 384201, 4508716},
                                     {29819668, 135577, 3174276},
                                     {21249233, 47749, 2225121},
                                     {15255427, 16748, 1546422},
                                     {11108711, 5823, 1056723},
                                     {8299601, 1986, 698929},
                                     {6470760, 648, 435261},
                                     {5361107, 193, 245271},
                                     {4756698, 49, 121987},
                                     {4463049, 11, 56781},
                                     {4325745, 2, 27183},
                                     {4259445, 0, 13368},
                                     {4226742, 0, 6635},
                                     {4210491, 0, 3306},
                                     {4202389, 0, 1650},
                                     {4198345, 0, 824}};

// Numbers from 10^low to 10^high, those of a frame next to each other, times the scale.
template <class T>
std::vector<T> numbers(int32_t length, double low, double high, double scale) {
  static uint32_t seed = 1;
  std::vector<T> v;
  for (int32_t i = 0; i < length; ++i) {
    seed = seed * 1664525U + 1013904223U;
    v.push_back(static_cast<T>(std::pow(10.0, low + (high - low) * (seed >> 8) / 16777216.0) * scale));
  }
  return v;
}

constexpr int kFrames = 16, kRatioFrames = 64;  // of a stream, in turn: branches are not learnt by heart

template <class T>
struct Stream {
  std::vector<std::vector<T>> frames;
  std::vector<T> noise, arrays;
  std::vector<int32_t> block;
  PlainMinima<T> plain{};

  explicit Stream(int32_t length)
      : noise(static_cast<std::size_t>(length / 2 + 1)), block(static_cast<std::size_t>(length * 2 + 21)) {
    const int32_t bins = length / 2 + 1;
    for (int n = 0; n < kFrames; ++n) frames.push_back(numbers<T>(bins, 3, 6, 1.0));
    arrays.resize(4 * noise.size());
    const double one = std::is_same_v<T, float> ? 1 : 2147483648.0;
    const auto share = [=](double a) { return static_cast<T>(std::pow(a, length / 256.0) * one); };
    plain = {bins,
             125,
             0,
             share(0.7),
             share(0.2),
             share(0.8),
             arrays.data(),
             &arrays[noise.size()],
             &arrays[2 * noise.size()],
             &arrays[3 * noise.size()]};
  }
};

template <class T, class State, class Init, class Ours, class Plain>
void addTracking(const bench::Level& level, const std::string& name, int32_t length, Init init, Ours ours, Plain plain) {
  const auto stream = std::make_shared<Stream<T>>(length);
  auto* const state = reinterpret_cast<State*>(stream->block.data());
  init(16000, length, state);
  const std::string task = name + ", " + std::to_string(length / 2 + 1) + " bins";
  const double items = static_cast<double>(kFrames) * (length / 2 + 1);
  bench::add({task, "ours", level.name, items, "bins"}, [=] {
    for (const auto& x : stream->frames) ours(x.data(), state, stream->noise.data());
  });
  bench::add({task, "plain", level.name, items, "bins"}, [=] {
    for (const auto& x : stream->frames) plain(x.data(), &stream->plain, stream->noise.data());
  });
}

// Ratios of frames: prior x / (1 + x) and posterior x + 0.1, x from 0.001 to 100.
template <class T>
struct Ratios {
  std::vector<std::vector<T>> prior, posterior;
  std::vector<T> gain;
  std::vector<int32_t> table, fine, middle, coarse;

  explicit Ratios(int32_t length) : gain(static_cast<std::size_t>(length)) {
    const bool real = std::is_same_v<T, float>;
    for (int n = 0; n < kRatioFrames; ++n) {
      prior.emplace_back();
      posterior.emplace_back();
      for (const double x : numbers<double>(length, -3, 2, 1.0)) {
        prior.back().push_back(static_cast<T>(x / (1 + x) * (real ? 1 : 2147483647.0)));
        posterior.back().push_back(static_cast<T>((x + 0.1) * (real ? 1 : 32768.0)));
      }
    }
    for (int q = 0; q <= 128; ++q) table.push_back(q == 0 ? INT32_MAX : static_cast<int32_t>(1815 / std::sqrt(q) + 0.5));
    const auto step = [](double x) { return static_cast<int32_t>(2147483648.0 * x / (1 + x)); };
    for (int k = 0; k < 64; ++k) fine.push_back(step(k / 16.0));
    for (int k = 0; k < 16; ++k) middle.push_back(step(k * 4.0));
    for (int k = 0; k < 8; ++k) coarse.push_back(step(k * 64.0));
  }
};

template <class Body>
void addGains(const bench::Level& level, const std::string& name, const std::string& contender, int32_t length, Body body) {
  bench::add(
      {name + ", " + std::to_string(length) + " bins", contender, level.name, static_cast<double>(length) * kRatioFrames, "bins"},
      [=] {
        for (std::size_t n = 0; n < kRatioFrames; ++n) body(n);
      });
}

template <class T, class Ours, class Plain>
void addEphraimMalah(const bench::Level& level, const std::string& name, int32_t length, Ours ours, Plain plain) {
  const auto r = std::make_shared<Ratios<T>>(length);
  addGains(level, name, "ours", length,
           [=](std::size_t n) { ours(r->prior[n].data(), r->posterior[n].data(), r->gain.data(), length); });
  addGains(level, name, "plain", length, [=](std::size_t n) {
    plain(r->prior[n].data(), r->posterior[n].data(), r->gain.data(), length, r->table.data(), kOctaves);
  });
}

void addWiener(const bench::Level& level, int32_t length) {
  const auto real = std::make_shared<Ratios<float>>(length);
  const auto whole = std::make_shared<Ratios<int32_t>>(length);
  addGains(level, "FilterUpdateWiener_32f", "ours", length,
           [=, f = OURS(qorsFilterUpdateWiener_32f)](std::size_t n) { f(real->posterior[n].data(), real->gain.data(), length); });
  addGains(level, "FilterUpdateWiener_32f", "plain", length,
           [=, f = PLAIN(plainWiener_32f)](std::size_t n) { f(real->posterior[n].data(), real->gain.data(), length); });
  addGains(level, "FilterUpdateWiener_32s", "ours", length,
           [=, f = OURS(qorsFilterUpdateWiener_32s)](std::size_t n) { f(whole->posterior[n].data(), whole->gain.data(), length); });
  addGains(level, "FilterUpdateWiener_32s", "plain", length, [=, f = PLAIN(plainWiener_32s)](std::size_t n) {
    f(whole->posterior[n].data(), whole->gain.data(), length, whole->fine.data(), whole->middle.data(), whole->coarse.data());
  });
}

}  // namespace

int main(int argc, char** argv) {
  for (const bench::Level& level : bench::levels()) {
    for (const int32_t length : {16, 256, 512, 1024}) {
      addTracking<float, MCRAState_32f>(level, "UpdateNoisePSDMCRA_32f_I", length, OURS(qorsInitMCRA_32f),
                                        OURS(qorsUpdateNoisePSDMCRA_32f_I), PLAIN(plainUpdateNoise_32f));
      addTracking<int32_t, MCRAState_32s>(level, "UpdateNoisePSDMCRA_32s_I", length, OURS(qorsInitMCRA_32s),
                                          OURS(qorsUpdateNoisePSDMCRA_32s_I), PLAIN(plainUpdateNoise_32s));
    }
    for (const int32_t length : {3, 25, 129, 257, 513}) {
      addEphraimMalah<float>(level, "FilterUpdateEMNS_32f", length, OURS(qorsFilterUpdateEMNS_32f), PLAIN(plainEphraimMalah_32f));
      addEphraimMalah<int32_t>(level, "FilterUpdateEMNS_32s", length, OURS(qorsFilterUpdateEMNS_32s), PLAIN(plainEphraimMalah_32s));
      addWiener(level, length);
    }
  }
  return bench::run(argc, argv);
}
