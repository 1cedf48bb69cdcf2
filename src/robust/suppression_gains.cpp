// Exports: gains that suppress noise.
#include "robust/suppression_gains.h"

using namespace qorsr;

QorStatus qorsFilterUpdateEMNS_32f(const float* prior, const float* posterior, float* gain, int32_t length) {
  return ephraimMalahGains(prior, posterior, gain, length);
}
QorStatus qorsFilterUpdateEMNS_32s(const int32_t* prior, const int32_t* posterior, int32_t* gain, int32_t length) {
  return ephraimMalahGains(prior, posterior, gain, length);
}

QorStatus qorsFilterUpdateWiener_32f(const float* snr, float* gain, int32_t length) { return wienerGains(snr, gain, length); }
QorStatus qorsFilterUpdateWiener_32s(const int32_t* snr, int32_t* gain, int32_t length) { return wienerGains(snr, gain, length); }
