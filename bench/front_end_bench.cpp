// The road from samples to features, and its parts: the forward real transform beside kissfft and FFTW, the evaluation of filter
// banks beside the plain loops, and the whole front-end at 16 kHz (frames of 25 ms every 10 ms, 26 filters, 13 cepstra with deltas and
// accelerations) beside FFTW's transform of the same length alone.
#include <cmath>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#if QORSR_HAVE_KISSFFT_FLOAT
#include <kiss_fftr.h>
#endif
#if QORSR_HAVE_FFTW3F
#include <fftw3.h>
#endif

#include "front_end_plain.h"
#include "kit/bench.h"
#include "qorsr.h"

namespace {

#define OURS(name) level.ours<decltype(name)>(#name)
#define PLAIN(name) level.plain<decltype(name)>(#name)

std::vector<float> noise(std::size_t count) {
  std::vector<float> v(count);
  uint32_t state = 1;
  for (float& x : v) x = static_cast<float>(static_cast<int32_t>(state = state * 1664525U + 1013904223U)) / 65536.0F;
  return v;
}

// ---- The transform ----

#if QORSR_HAVE_FFTW3F
std::function<void()> fftwOf(int32_t length, int32_t times) {
  float* in = fftwf_alloc_real(static_cast<std::size_t>(length));
  fftwf_complex* out = fftwf_alloc_complex(static_cast<std::size_t>(length) / 2 + 1);
  const fftwf_plan plan = fftwf_plan_dft_r2c_1d(length, in, out, FFTW_MEASURE);
  for (int32_t i = 0; i < length; ++i) in[i] = static_cast<float>(i % 17);
  return [=] {
    for (int32_t i = 0; i < times; ++i) fftwf_execute(plan);
  };
}
#endif

void addTransformPeers([[maybe_unused]] const std::string& task, [[maybe_unused]] int32_t length) {
#if QORSR_HAVE_FFTW3F
  bench::add({task, "fftw measured", ""}, fftwOf(length, 1));
#endif
#if QORSR_HAVE_KISSFFT_FLOAT
  static std::vector<float> in = noise(65536);
  static std::vector<kiss_fft_cpx> out(32769);
  const kiss_fftr_cfg plan = kiss_fftr_alloc(length, 0, nullptr, nullptr);
  bench::add({task, "kissfft", ""}, [=] { kiss_fftr(plan, in.data(), out.data()); });
#endif
}

void addTransform(const bench::Level& level, const std::string& task, int32_t order) {
  static const std::vector<float> samples = noise(65536);
  static std::vector<float> spectrum(65538);
  const auto setup = std::make_shared<std::vector<char>>(PLAIN(transformSetupBytes)(order));
  const auto work = std::make_shared<std::vector<char>>(PLAIN(transformWorkBytes)(order));
  PLAIN(transformInit)(setup->data(), order);
  bench::add({task, "ours", level.name, 1, "transforms"},
             [=, f = PLAIN(transformForward)] { f(setup->data(), samples.data(), spectrum.data(), work->data()); });
}

// ---- The whole front-end ----

constexpr int32_t kRate = 16000, kFrame = 400, kHop = 160, kFft = 512, kFilters = 26, kCepstra = 13, kFrames = 300,
                  kBins = kFft / 2 + 1;

struct FrontEnd {
  FBankState_32f *bank = nullptr, *spectrumBank = nullptr;
  DCTLifterState_32f* dct = nullptr;
  std::vector<float> samples = noise(kFrames * kHop + kFrame + 1), window = std::vector<float>(kFrame);
  std::vector<float> frame = std::vector<float>(kFft), energies = std::vector<float>(kFilters);
  std::vector<float> cepstra = std::vector<float>(kFrames * kCepstra), features = std::vector<float>(kFrames * 3 * kCepstra);

  explicit FrontEnd(const bench::Level& level) {
    int32_t order = 0;
    OURS(qorsMelFBankInitAlloc_32f)
    (&bank, &order, kFft, kRate, 64.0F, 8000.0F, kFilters, 1127.0F, 700.0F, 5);
    OURS(qorsMelFBankInitAlloc_32f)
    (&spectrumBank, &order, kFft, kRate, 64.0F, 8000.0F, kFilters, 1127.0F, 700.0F, 1);
    OURS(qorsDCTLifterInitAlloc_C0_32f)(&dct, kFilters, kCepstra - 1, 22, 1.0F, 1.0F);
    for (int32_t i = 0; i < kFrame; ++i) {
      window[static_cast<std::size_t>(i)] = static_cast<float>(0.54 - 0.46 * std::cos(2 * M_PI * i / (kFrame - 1)));
    }
  }
};

void addFrontEnd(const bench::Level& level, const std::string& task) {
  const auto f = std::make_shared<FrontEnd>(level);
  const auto window = PLAIN(programWindow);
  const auto log = PLAIN(programLog);
  const auto evalBank = OURS(qorsEvalFBank_32f);
  const auto dctLifter = OURS(qorsDCTLifter_32f);
  const auto deltas = OURS(qorsDeltaDelta_Win2_32f_D2);
  bench::add({task, "ours", level.name, kFrames * 0.01, "seconds of speech"}, [=] {
    for (int32_t t = 0; t < kFrames; ++t) {
      window(f->samples.data() + t * kHop, f->window.data(), kFrame, f->frame.data(), kFft);
      evalBank(f->frame.data(), f->energies.data(), f->bank);
      log(f->energies.data(), kFilters, 1.0F);
      dctLifter(f->energies.data(), f->cepstra.data() + t * kCepstra, f->dct);
    }
    deltas(f->cepstra.data(), kCepstra, f->features.data(), 3 * kCepstra, kFrames, 0.1F, 0.1F, 3);
  });
}

// ---- Evaluation of a bank ----

// A bank's weights, one filter behind the other.
struct Dense {
  std::vector<float> weights;
  std::vector<int32_t> first, count;

  Dense(const bench::Level& level, const FBankState_32f* bank) {
    std::vector<int32_t> centers(kFilters + 2);
    OURS(qorsFBankGetCenters_32f)(bank, centers.data());
    for (int32_t k = 1; k <= kFilters; ++k) {
      const int32_t from = centers[static_cast<std::size_t>(k) - 1], to = centers[static_cast<std::size_t>(k) + 1];
      std::vector<float> filter(static_cast<std::size_t>(to - from + 1));
      OURS(qorsFBankGetCoeffs_32f)(bank, k, filter.data());
      weights.insert(weights.end(), filter.begin(), filter.end());
      first.push_back(from);
      count.push_back(to - from + 1);
    }
  }
  std::vector<int32_t> wholeWeights(float one) const {
    std::vector<int32_t> v;
    for (const float w : weights) v.push_back(static_cast<int32_t>(w * one));
    return v;
  }
};

void addEvaluation(const bench::Level& level) {
  const std::string task = "EvalFBank 32f, 26 filters over 257 bins";
  const auto f = std::make_shared<FrontEnd>(level);
  const auto spectrum = std::make_shared<std::vector<float>>(noise(kBins));
  const auto dense = std::make_shared<Dense>(level, f->spectrumBank);
  bench::add({task, "ours", level.name, 1, "spectra"},
             [=, e = OURS(qorsEvalFBank_32f)] { e(spectrum->data(), f->energies.data(), f->spectrumBank); });
  bench::add({task, "plain", level.name}, [=, e = PLAIN(plainEvalFBank)] {
    e(spectrum->data(), dense->weights.data(), dense->first.data(), dense->count.data(), kFilters, f->energies.data());
  });
}

// Banks of whole weights, and spectra and results of whole numbers.
struct WholeBanks {
  FBankState_16s* bank16 = nullptr;
  std::vector<char> block;  // of the fixed-point bank
  std::vector<int16_t> spectrum16, result16 = std::vector<int16_t>(kFilters);
  std::vector<int32_t> spectrum32, result32 = std::vector<int32_t>(kFilters);

  explicit WholeBanks(const bench::Level& level) {
    int32_t order = 0, bytes = 0;
    OURS(qorsMelFBankInitAlloc_16s)(&bank16, &order, kFft, kRate, 64.0F, 8000.0F, kFilters, 1127.0F, 700.0F, 1);
    OURS(qorsMelFBankGetSize_32s)(kFft, kFilters, 2, &bytes);
    block.resize(static_cast<std::size_t>(bytes));
    OURS(qorsMelFBankInit_32s)(bank32(), &order, kFft, kRate, 64, 8000, kFilters, 1127 << 15, 700 << 15, 2);
    for (const float x : noise(kBins)) {
      spectrum16.push_back(static_cast<int16_t>(x));
      spectrum32.push_back(static_cast<int32_t>(x * 100.0F));
    }
  }
  FBankState_32s* bank32() { return reinterpret_cast<FBankState_32s*>(block.data()); }
};

void addWholeEvaluations(const bench::Level& level) {
  const FrontEnd f(level);
  const auto dense = std::make_shared<Dense>(level, f.spectrumBank);
  const auto w = std::make_shared<WholeBanks>(level);
  const auto weights14 = std::make_shared<std::vector<int32_t>>(dense->wholeWeights(0x1p14F));
  const auto weights30 = std::make_shared<std::vector<int32_t>>(dense->wholeWeights(0x1p30F));
  const std::string task16 = "EvalFBank 16s, 26 filters over 257 bins", task32 = "EvalFBank 32s, 26 filters over 257 bins";
  bench::add({task16, "ours", level.name, 1, "spectra"},
             [=, e = OURS(qorsEvalFBank_16s_Sfs)] { e(w->spectrum16.data(), w->result16.data(), w->bank16, 4); });
  bench::add({task16, "plain", level.name}, [=, e = PLAIN(plainEvalFBank16)] {
    e(w->spectrum16.data(), weights14->data(), dense->first.data(), dense->count.data(), kFilters, w->result16.data(), 18);
  });
  bench::add({task32, "ours", level.name, 1, "spectra"},
             [=, e = OURS(qorsEvalFBank_32s_Sfs)] { e(w->spectrum32.data(), w->result32.data(), w->bank32(), 0); });
  bench::add({task32, "plain", level.name}, [=, e = PLAIN(plainEvalFBank32)] {
    e(w->spectrum32.data(), weights30->data(), dense->first.data(), dense->count.data(), kFilters, w->result32.data());
  });
}

}  // namespace

int main(int argc, char** argv) {
  const std::string whole = "front-end, 300 frames: samples to 39 features; FFTW: 300 transforms of 512 alone";
  for (const int32_t order : {8, 9, 10, 12}) {
    const std::string task = "forward real transform of " + std::to_string(1 << order) + " floats";
    for (const bench::Level& level : bench::levels()) addTransform(level, task, order);
    addTransformPeers(task, 1 << order);
  }
  for (const bench::Level& level : bench::levels()) {
    addEvaluation(level);
    addWholeEvaluations(level);
    addFrontEnd(level, whole);
  }
#if QORSR_HAVE_FFTW3F
  bench::add({whole, "fftw measured", ""}, fftwOf(kFft, kFrames));
#endif
  return bench::run(argc, argv);
}
