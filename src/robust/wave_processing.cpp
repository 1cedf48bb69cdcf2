// Exports: weighting of waveforms.
#include "robust/wave_processing.h"

using namespace qorsr;

QorStatus qorsWaveProcessing_Aurora_32f(const float* source, float* result) { return processWave<FloatWave>(source, result); }
QorStatus qorsWaveProcessing_Aurora_16s(const int16_t* source, int16_t* result) { return processWave<ShortWave>(source, result); }
