// Exports: Bhattacharyya distance.
#include "estimation/bhattacharyya.h"

using namespace qorsr;

QorStatus qorsBhatDist_32f(const float* mean1, const float* variance1, const float* mean2, const float* variance2, int32_t length,
                           float* result) {
  return bhatDist({mean1, variance1, mean2, variance2}, length, result);
}
QorStatus qorsBhatDist_32f64f(const float* mean1, const float* variance1, const float* mean2, const float* variance2,
                              int32_t length, double* result) {
  return bhatDist({mean1, variance1, mean2, variance2}, length, result);
}
QorStatus qorsBhatDistSLog_32f(const float* mean1, const float* variance1, const float* mean2, const float* variance2,
                               int32_t length, float* result, float logs1, float logs2) {
  return bhatDistSLog({mean1, variance1, mean2, variance2}, length, result, logs1, logs2);
}
QorStatus qorsBhatDistSLog_32f64f(const float* mean1, const float* variance1, const float* mean2, const float* variance2,
                                  int32_t length, double* result, float logs1, float logs2) {
  return bhatDistSLog({mean1, variance1, mean2, variance2}, length, result, logs1, logs2);
}
