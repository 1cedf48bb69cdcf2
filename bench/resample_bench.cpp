// Resampling against plain loops with the same filter, and against libsoxr and libsamplerate where they are installed.
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include "kit/bench.h"
#include "qorsr.h"
#include "resample_plain.h"

#if !defined(QORSR_HAVE_SOXR)
#define QORSR_HAVE_SOXR 0
#endif
#if !defined(QORSR_HAVE_SAMPLERATE)
#define QORSR_HAVE_SAMPLERATE 0
#endif
#if QORSR_HAVE_SOXR
#include <soxr.h>
#endif
#if QORSR_HAVE_SAMPLERATE
#include <samplerate.h>
#endif

namespace {

constexpr int32_t kLength = 20000, kMargin = 1000;

struct Signal {
  std::vector<float> x, y;
  std::vector<int16_t> x16, y16;
  int32_t count = 0;
  double time = 0;

  Signal() : y(4 * kLength), y16(4 * kLength) {
    for (int32_t i = 0; i < kLength + 2 * kMargin; ++i) {
      x.push_back(0.5F * std::sin(0.01F * static_cast<float>(i)) + 0.001F * static_cast<float>(i * 37 % 101));
      x16.push_back(static_cast<int16_t>(20000.0F * x.back()));
    }
  }
};

struct Rates {
  int32_t in, out;
};

void addFixed(const bench::Level& level, Signal* s, Rates r, int32_t filterLength) {
  const std::string shape = std::to_string(r.in) + " to " + std::to_string(r.out) + ", filter of " + std::to_string(filterLength);
  const auto make = level.ours<decltype(qorsResamplePolyphaseFixedInitAlloc_32f)>("qorsResamplePolyphaseFixedInitAlloc_32f");
  const auto make16 = level.ours<decltype(qorsResamplePolyphaseFixedInitAlloc_16s)>("qorsResamplePolyphaseFixedInitAlloc_16s");
  const auto run = level.ours<decltype(qorsResamplePolyphaseFixed_32f)>("qorsResamplePolyphaseFixed_32f");
  const auto run16 = level.ours<decltype(qorsResamplePolyphaseFixed_16s)>("qorsResamplePolyphaseFixed_16s");
  const auto get = level.ours<decltype(qorsResamplePolyphaseGetFixedFilter_32f)>("qorsResamplePolyphaseGetFixedFilter_32f");
  const auto get16 = level.ours<decltype(qorsResamplePolyphaseGetFixedFilter_16s)>("qorsResamplePolyphaseGetFixedFilter_16s");
  const auto getSize = level.ours<decltype(qorsResamplePolyphaseFixedGetSize_32f)>("qorsResamplePolyphaseFixedGetSize_32f");
  int32_t bytes, pitch, phases;
  getSize(r.in, r.out, filterLength, &bytes, &pitch, &phases, 1);
  const int32_t half = filterLength / 2, in = static_cast<int32_t>(int64_t{r.in} * phases / r.out), out = phases;
  // Filters live as long as the program.
  const auto add = [&](const std::string& kind, int32_t hint, auto plain) {
    ResamplePolyphaseFixedState_32f* state;
    make(&state, r.in, r.out, filterLength, 0.9F, 8, hint);
    auto* rows = new std::vector<float>(static_cast<std::size_t>(pitch) * static_cast<std::size_t>(phases));
    get(state, rows->data(), pitch, phases);
    bench::add({"fixed, " + kind + ", " + shape, "ours", level.name, kLength, "samples"}, [=] {
      s->time = kMargin;
      run(state, s->x.data(), kLength, s->y.data(), 1.0F, &s->time, &s->count);
    });
    bench::add({"fixed, " + kind + ", " + shape, "plain", level.name},
               [=] { plain(rows->data(), pitch, half, in, out, s->x.data() + kMargin, kLength, s->y.data()); });
  };
  add("float sums", 1, level.plain<decltype(plainFixed_32f)>("plainFixed_32f"));
  add("double sums", 2, level.plain<decltype(plainFixedDouble_32f)>("plainFixedDouble_32f"));
  ResamplePolyphaseFixedState_16s* state16;
  make16(&state16, r.in, r.out, filterLength, 0.9F, 8, 1);
  auto* rows16 = new std::vector<int16_t>(static_cast<std::size_t>(pitch) * static_cast<std::size_t>(phases));
  get16(state16, rows16->data(), pitch, phases);
  const auto plain16 = level.plain<decltype(plainFixed_16s)>("plainFixed_16s");
  bench::add({"fixed, 16 bits, " + shape, "ours", level.name, kLength, "samples"}, [=] {
    s->time = kMargin;
    run16(state16, s->x16.data(), kLength, s->y16.data(), 1.0F, &s->time, &s->count);
  });
  bench::add({"fixed, 16 bits, " + shape, "plain", level.name},
             [=] { plain16(rows16->data(), pitch, half, in, out, s->x16.data() + kMargin, kLength, s->y16.data()); });
}

// Any ratio, with 16 bits in a float table (hint 2) and in a 16-bit one. The plain loop needs a table of its own; its values cost nothing.
void addAny(const bench::Level& level, Signal* s, double factor, const std::string& name, float window) {
  constexpr int32_t kSteps = 256;
  const std::string shape = name + ", window " + std::to_string(static_cast<int>(window));
  const auto make = level.ours<decltype(qorsResamplePolyphaseInitAlloc_32f)>("qorsResamplePolyphaseInitAlloc_32f");
  const auto make16 = level.ours<decltype(qorsResamplePolyphaseInitAlloc_16s)>("qorsResamplePolyphaseInitAlloc_16s");
  const auto run = level.ours<decltype(qorsResamplePolyphase_32f)>("qorsResamplePolyphase_32f");
  const auto run16 = level.ours<decltype(qorsResamplePolyphase_16s)>("qorsResamplePolyphase_16s");
  const auto plain = level.plain<decltype(plainPolyphase_32f)>("plainPolyphase_32f");
  const auto plain16 = level.plain<decltype(plainPolyphase_16s)>("plainPolyphase_16s");
  const auto entries = static_cast<int32_t>(window * 0.5F * kSteps) + 1;
  auto* table = new std::vector<float>;
  auto* table16 = new std::vector<int16_t>;
  for (int32_t k = 0; k <= entries; ++k) {
    table->push_back(std::cos(0.001F * static_cast<float>(k)));
    table16->push_back(static_cast<int16_t>(16383.0F * table->back()));
  }
  ResamplePolyphaseState_32f* state;
  ResamplePolyphaseState_16s* state16;
  make(&state, window, kSteps, 0.9F, 8, 1);
  make16(&state16, window, kSteps, 0.9F, 8, 1);
  bench::add({"any ratio, float, " + shape, "ours", level.name, kLength, "samples"}, [=] {
    s->time = kMargin;
    run(state, s->x.data(), kLength, s->y.data(), factor, 1.0F, &s->time, &s->count);
  });
  bench::add({"any ratio, float, " + shape, "plain", level.name},
             [=] { plain(table->data(), entries, kSteps, s->x.data(), kLength, s->y.data(), factor, kMargin); });
  bench::add({"any ratio, 16-bit table, " + shape, "ours", level.name, kLength, "samples"}, [=] {
    s->time = kMargin;
    run16(state16, s->x16.data(), kLength, s->y16.data(), factor, 1.0F, &s->time, &s->count);
  });
  bench::add({"any ratio, 16-bit table, " + shape, "plain", level.name}, [=] {
    plain16(table16->data(), entries, kSteps, 1.0 / 16383, s->x16.data(), kLength, s->y16.data(), factor, kMargin);
  });
}

void addPeers([[maybe_unused]] Signal* s, [[maybe_unused]] Rates r, [[maybe_unused]] const std::string& task) {
#if QORSR_HAVE_SOXR
  const soxr_quality_spec_t quality = soxr_quality_spec(SOXR_HQ, 0);
  soxr_t stream = soxr_create(r.in, r.out, 1, nullptr, nullptr, &quality, nullptr);
  bench::add({task, "soxr HQ", ""}, [=] {
    std::size_t used, made;
    soxr_process(stream, s->x.data(), kLength, &used, s->y.data(), s->y.size(), &made);
  });
#endif
#if QORSR_HAVE_SAMPLERATE
  for (const auto& [converter, name] :
       {std::pair{SRC_SINC_FASTEST, "libsamplerate fastest"}, {SRC_SINC_MEDIUM_QUALITY, "libsamplerate medium"}}) {
    int error;
    SRC_STATE* state = src_new(converter, 1, &error);
    bench::add({task, name, ""}, [=] {
      SRC_DATA data = {};
      data.data_in = s->x.data();
      data.data_out = s->y.data();
      data.input_frames = kLength;
      data.output_frames = static_cast<long>(s->y.size());
      data.src_ratio = static_cast<double>(r.out) / r.in;
      src_process(state, &data);
    });
  }
#endif
}

}  // namespace

int main(int argc, char** argv) {
  static Signal signal;
  for (const bench::Level& level : bench::levels()) {
    addFixed(level, &signal, {48000, 16000}, 216);
    addFixed(level, &signal, {44100, 16000}, 216);
    addFixed(level, &signal, {16000, 48000}, 72);
    addFixed(level, &signal, {16000, 8000}, 32);
    addAny(level, &signal, 1.0 / 3, "48 to 16 kHz", 72);
    addAny(level, &signal, 160.0 / 441, "44.1 to 16 kHz", 72);
    addAny(level, &signal, 160.0 / 147, "44.1 to 48 kHz", 72);
    addAny(level, &signal, 1.5, "factor 1.5", 16);
  }
  addPeers(&signal, {48000, 16000}, "fixed, float sums, 48000 to 16000, filter of 216");
  addPeers(&signal, {44100, 16000}, "fixed, float sums, 44100 to 16000, filter of 216");
  return bench::run(argc, argv);
}
