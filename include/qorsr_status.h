/** @file qorsr_status.h
 *  The words of a status, for messages and logs. Everything here is inline: the library exports nothing of it.
 *
 *      QorStatus status = qorsMeanColumn_32f_D2(frames, height, stride, mean, width);
 *      if (status < 0) fprintf(stderr, "%s: %s\n", qorStatusName(status), qorStatusText(status));
 */
#ifndef QORSR_STATUS_H
#define QORSR_STATUS_H

#include "qorsr.h"

/** @addtogroup status
 *  @{ */

/** The name of a status: "qorStatusBadSize"; "unknown" if there is no such status. */
static inline const char* qorStatusName(QorStatus status) {
  switch (status) {
    case qorStatusOk:
      return "qorStatusOk";
    case qorStatusDegenerateInput:
      return "qorStatusDegenerateInput";
    case qorStatusDivideByZero:
      return "qorStatusDivideByZero";
    case qorStatusLogZero:
      return "qorStatusLogZero";
    case qorStatusLogNegative:
      return "qorStatusLogNegative";
    case qorStatusAllFloored:
      return "qorStatusAllFloored";
    case qorStatusZeroOccupancy:
      return "qorStatusZeroOccupancy";
    case qorStatusCdbkSizeChanged:
      return "qorStatusCdbkSizeChanged";
    case qorStatusFailed:
      return "qorStatusFailed";
    case qorStatusBadArgument:
      return "qorStatusBadArgument";
    case qorStatusBadSize:
      return "qorStatusBadSize";
    case qorStatusBadRange:
      return "qorStatusBadRange";
    case qorStatusNullPointer:
      return "qorStatusNullPointer";
    case qorStatusNoMemory:
      return "qorStatusNoMemory";
    case qorStatusZeroDivisor:
      return "qorStatusZeroDivisor";
    case qorStatusBadFftOrder:
      return "qorStatusBadFftOrder";
    case qorStatusBadFftFlag:
      return "qorStatusBadFftFlag";
    case qorStatusBadContext:
      return "qorStatusBadContext";
    case qorStatusBadStride:
      return "qorStatusBadStride";
    case qorStatusNoConvergence:
      return "qorStatusNoConvergence";
    case qorStatusBadCodebookMode:
      return "qorStatusBadCodebookMode";
    case qorStatusBadStatistic:
      return "qorStatusBadStatistic";
    case qorStatusFBankNotReady:
      return "qorStatusFBankNotReady";
    case qorStatusBadFBankFlag:
      return "qorStatusBadFBankFlag";
    case qorStatusBadFBankFrequency:
      return "qorStatusBadFBankFrequency";
    case qorStatusLspRootsLost:
      return "qorStatusLspRootsLost";
    case qorStatusBadLspOrder:
      return "qorStatusBadLspOrder";
    case qorStatusUnstableReflection:
      return "qorStatusUnstableReflection";
    case qorStatusUnstableFilter:
      return "qorStatusUnstableFilter";
    case qorStatusBadLength:
      return "qorStatusBadLength";
    case qorStatusBadMode:
      return "qorStatusBadMode";
    default:
      return "unknown";
  }
}

/** What a status says, as a sentence: "A required pointer is null."; for a warning it begins with "Warning:". */
static inline const char* qorStatusText(QorStatus status) {
  switch (status) {
    case qorStatusOk:
      return "Success.";
    case qorStatusDegenerateInput:
      return "Warning: the input carries no range; the output holds the fill values.";
    case qorStatusDivideByZero:
      return "Warning: a divisor was exactly zero; the output holds what the family defines.";
    case qorStatusLogZero:
      return "Warning: a logarithm met a zero; the result is plus infinity.";
    case qorStatusLogNegative:
      return "Warning: a logarithm met a negative argument; the result is a quiet NaN.";
    case qorStatusAllFloored:
      return "Warning: every element of an update came out at its floor.";
    case qorStatusZeroOccupancy:
      return "Warning: an occupancy is too small to divide by; nothing was updated.";
    case qorStatusCdbkSizeChanged:
      return "Warning: the trained codebook has another number of rows than was asked for.";
    case qorStatusFailed:
      return "A search failed.";
    case qorStatusBadArgument:
      return "A scalar argument outside its domain.";
    case qorStatusBadSize:
      return "A length, width, height or count below its minimum.";
    case qorStatusBadRange:
      return "A value inside the data, or a rate, outside its allowed range.";
    case qorStatusNullPointer:
      return "A required pointer is null.";
    case qorStatusNoMemory:
      return "Scratch or state memory could not be allocated.";
    case qorStatusZeroDivisor:
      return "A vector was to be divided by zero.";
    case qorStatusBadFftOrder:
      return "Transform order outside 0 to 30.";
    case qorStatusBadFftFlag:
      return "Transform flag word not one of 1, 2, 4, 8.";
    case qorStatusBadContext:
      return "The identifier word of a transform record is wrong.";
    case qorStatusBadStride:
      return "A row stride smaller than the row that the operation touches.";
    case qorStatusNoConvergence:
      return "An iteration limit was reached.";
    case qorStatusBadCodebookMode:
      return "Codebook training mode not supported by this function.";
    case qorStatusBadStatistic:
      return "Negative occupancy or count.";
    case qorStatusFBankNotReady:
      return "Filter bank without centres or coefficients.";
    case qorStatusBadFBankFlag:
      return "Filter bank flag word invalid.";
    case qorStatusBadFBankFrequency:
      return "Filter bank low and high frequencies invalid.";
    case qorStatusLspRootsLost:
      return "Fewer line spectral pairs found than the order.";
    case qorStatusBadLspOrder:
      return "Line spectral pairs not monotonic or out of bounds.";
    case qorStatusUnstableReflection:
      return "Reflection coefficient of magnitude one.";
    case qorStatusUnstableFilter:
      return "Residual energy not positive.";
    case qorStatusBadLength:
      return "Length outside the limits of the family.";
    case qorStatusBadMode:
      return "Unknown mode word in a state record.";
    default:
      return "No status of this library.";
  }
}
/** @} */

#endif
