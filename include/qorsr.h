/** @file qorsr.h
 *  libqorsr: numeric primitives for speech recognition.
 *
 *  Plain functions on plain buffers, for C11 and C++. Every function checks its arguments, runs to completion on the caller's
 *  thread and returns a #QorStatus. The library has no state, starts no thread, opens no file, and allocates only through
 *  qorMalloc and qorFree of libqorcore.
 *
 *  Functions come in families (the groups of this reference). A family's text tells meaning, formula and scales, then all
 *  parameters in a table (what is read and written, how many elements), then errors, statuses and traps; how sums are grouped and
 *  which quirks are kept stands last, under "Exact arithmetic".
 *
 *  **Reading a name.** `qors`, the operation, then words for variant, element types, layout and scaling:
 *  `qorsMeanVarColumn_16s32s_D2LSfs`.
 *  - Types: `16s`, `32s`, `64s` signed integers, `8u` bytes, `1u` packed bits, `32f` float, `64f` double. One type word: source
 *    and result alike. Two: source, result. Three: source, first result, second result.
 *  - `_D2`: a matrix is one block; row r begins at base + r * stride. A stride counts elements of the source type, never bytes.
 *  - `_D2L`: a matrix is an array of row pointers, in any order and at any address. The row pointers are not checked for null.
 *  - `I`: in place. `Sfs`: the last argument is a scale factor.
 *  - Variant words are told by their families.
 *
 *  @warning The order of arguments is each family's own. qorsSumColumn_32f_D2() takes source, stride, height, result, width;
 *  qorsMeanColumn_32f_D2() source, height, stride, result, width; qorsSumRow_32f_D2() source, width, stride, result, height. All
 *  are 32-bit integers, so a compiler does not see a mistake: look at the declaration.
 *
 *  **Scale factors.** The exact result times 2^-sf is rounded and saturated: a positive sf makes results smaller, a negative one
 *  larger, 0 leaves them. Where a product of data with a and b fraction bits is to have q, sf = a + b - q. How a family rounds
 *  stands with it; scorers scale as told in @ref gaussian_single.
 *
 *  **What every function promises.**
 *  - **Statuses.** A negative status: a fault in the arguments (or no memory); no result was written, unless the function says
 *    otherwise. A positive one: a warning, with all results written. The checks run in the order in which a family lists them, and
 *    the first that fails decides. "Null" in such a list: a required pointer is null (#qorStatusNullPointer); a size below its
 *    minimum, 1 unless a family says otherwise, is #qorStatusBadSize, a stride below the width #qorStatusBadStride.
 *  - **No crash.** No value of a number makes a call crash or hang: sizes are computed in 64 bits. What stays the caller's: memory
 *    that is smaller than described, not initialised or released; null row pointers, unless the family tests them; records that
 *    were never made, were freed, or serve two calls at a time.
 *  - **Data** are not searched for NaN or infinity; these pass through float arithmetic by the rules of IEEE 754.
 *  - **Sources and destinations** do not overlap, unless a function is defined to work in place.
 *  - **Environment.** Rounding mode and exception masks are as before when a call returns, and a raised exception flag still is. A
 *    call may raise flags as any arithmetic does (a float sum raises inexact); they tell nothing of its result. Results are
 *    defined for rounding to nearest and for denormals that are not flushed.
 *  - **The same bits.** The same call gives the same bits at every instruction level, with either compiler and for every
 *    alignment, but for the payload and sign of a NaN. These functions alone are defined to differ where the vectors that are
 *    named are not all on 16-byte boundaries:
 *
 *    | Functions | aligned | not aligned |
 *    |---|---|---|
 *    | qorsMeanColumn_16s_D2L(), qorsVarColumn_16s_D2LSfs(), qorsMeanVarColumn_16s_D2LSfs(): rows | rounded | truncated |
 *    | qorsMahDistSingle_16s32s_Sfs(): x, mean, variance | not scaled | exact sum, scaled |
 *    | qorsOutProbPreCalc_32s(), qorsOutProbPreCalc_32s_I(): all vectors | a last pair rounds down | it rounds up |
 *    | qorsGaussianSplit_32f(): all vectors | root in float | root in double |
 *    | qorsNewVar_32s_Sfs(), qorsNewVar_32s_ISfs(): means, squares | rounded, saturated | truncated |
 *    | qorsDcsClustLAccumulate_32f(), qorsDcsClustLAccumulate_64f(): all vectors, length at least 8 | shared divisions | plain |
 *    | qorsRecSqrt_32s_Sfs(): values | rounded | truncated |
 *    | qorsWeightedSum_16s(), qorsWeightedSumHalf_16s(): all vectors, length at least 8 | rounded | truncated |
 *
 *  - **Threads.** Functions are re-entrant. A state record that a function changes serves one call at a time.
 */
#ifndef QORSR_H
#define QORSR_H

#include <stdint.h>

/** @def QORSR_API
 *  Marks what the library exports. */
#if defined(__GNUC__)
#define QORSR_API __attribute__((visibility("default")))
#else
#define QORSR_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup status Status
 *  Every function returns one of these values: 0 is success, negative a failure with no result, positive a warning with results. @{
 */

/** The result of a call. */
typedef int32_t QorStatus;

enum {
  qorStatusOk = 0,                    /**< Success. */
  qorStatusDegenerateInput = 4,       /**< Warning: the input carries no range; the output holds the fill values. */
  qorStatusDivideByZero = 6,          /**< Warning: a divisor was exactly zero; the output holds what the family defines. */
  qorStatusLogZero = 7,               /**< Warning: a logarithm met a zero; the result is plus infinity. */
  qorStatusLogNegative = 8,           /**< Warning: a logarithm met a negative argument; the result is a quiet NaN. */
  qorStatusAllFloored = 11,           /**< Warning: every element of an update came out at its floor. */
  qorStatusZeroOccupancy = 16,        /**< Warning: an occupancy is too small to divide by; nothing was updated. */
  qorStatusCdbkSizeChanged = 31,      /**< Warning: the trained codebook has another number of rows than was asked for. */
  qorStatusFailed = -2,               /**< A search failed. */
  qorStatusBadArgument = -5,          /**< A scalar argument outside its domain. */
  qorStatusBadSize = -6,              /**< A length, width, height or count below its minimum. */
  qorStatusBadRange = -7,             /**< A value inside the data, or a rate, outside its allowed range. */
  qorStatusNullPointer = -8,          /**< A required pointer is null. */
  qorStatusNoMemory = -9,             /**< Scratch or state memory could not be allocated. */
  qorStatusZeroDivisor = -10,         /**< A vector was to be divided by zero. */
  qorStatusBadFftOrder = -15,         /**< Transform order outside 0 to 30. */
  qorStatusBadFftFlag = -16,          /**< Transform flag word not one of 1, 2, 4, 8. */
  qorStatusBadContext = -17,          /**< The identifier word of a transform record is wrong. */
  qorStatusBadStride = -37,           /**< A row stride smaller than the row that the operation touches. */
  qorStatusNoConvergence = -65,       /**< An iteration limit was reached. */
  qorStatusBadCodebookMode = -66,     /**< Codebook training mode not supported by this function. */
  qorStatusBadStatistic = -67,        /**< Negative occupancy or count. */
  qorStatusFBankNotReady = -69,       /**< Filter bank without centres or coefficients. */
  qorStatusBadFBankFlag = -70,        /**< Filter bank flag word invalid. */
  qorStatusBadFBankFrequency = -71,   /**< Filter bank low and high frequencies invalid. */
  qorStatusLspRootsLost = -114,       /**< Fewer line spectral pairs found than the order. */
  qorStatusBadLspOrder = -115,        /**< Line spectral pairs not monotonic or out of bounds. */
  qorStatusUnstableReflection = -116, /**< Reflection coefficient of magnitude one. */
  qorStatusUnstableFilter = -117,     /**< Residual energy not positive. */
  qorStatusBadLength = -119,          /**< Length outside the limits of the family. */
  qorStatusBadMode = -9999            /**< Unknown mode word in a state record. */
};
/** @} */

/** @defgroup version Version
 *  @{ */

#define QORSR_VERSION_MAJOR 6 /**< The version of this header: qorsrGetLibVersion() tells that of the module that is loaded. */
#define QORSR_VERSION_MINOR 0 /**< Second number of the version. */
#define QORSR_VERSION_BUILD_MAJOR 167 /**< First number of the build. */
#define QORSR_VERSION_BUILD_MINOR 665 /**< Second number of the build. */

/** What qorsrGetLibVersion() returns: constant for the life of the library. */
typedef struct QorLibraryVersion {
  int32_t versionMajor;    /**< #QORSR_VERSION_MAJOR */
  int32_t versionMinor;    /**< #QORSR_VERSION_MINOR */
  int32_t buildMajor;      /**< #QORSR_VERSION_BUILD_MAJOR */
  int32_t buildMinor;      /**< #QORSR_VERSION_BUILD_MINOR */
  char targetCode[4];      /**< "t7" and two zero bytes */
  const char* fileName;    /**< name of the module */
  const char* versionText; /**< version in words */
  const char* buildDate;   /**< date of the version */
} QorLibraryVersion;

/** The version of the library. Never null, the same pointer on every call; the caller neither changes nor frees the record. */
QORSR_API const QorLibraryVersion* qorsrGetLibVersion(void);
/** @} */

/* ================================ Frame: version and matrices ================================ */

/** @defgroup column_statistics Column and row statistics
 *  Sums, means and variances of a matrix of feature vectors, one frame a row: height n rows (time), width columns (features).
 *  Units are the caller's.
 *
 *  - `SumColumn`: result[c] = sum over r of x[r][c]. `SumRow`: result[r] = sum over c of x[r][c].
 *  - `MeanColumn`: mean[c] = column sum / n.
 *  - `VarColumn` with the means given, `MeanVarColumn` with means that it forms: var[c] = (sum over r of x[r][c]^2 - n mean[c]^2)
 *    / (n - 1), in one pass over the data.
 *  - `SumRowAbs`, `SumRowSqr`, `SumColumnAbs`, `SumColumnSqr`: sums of magnitudes or squares of one vector or column.
 *
 *  Sums of 16-bit data run in float, so a 32-bit sum carries the 24 bits of a float; those of doubles, and both moments of
 *  `MeanVarColumn_16s32s` and `MeanVarColumn_16s16s32s`, run in double. Integer results are rounded to nearest, ties to even, and
 *  saturated; a NaN gives 0. A scale factor applies to sums and to variances, never to means.
 *
 *  | Parameter | Use | Elements, or values | |
 *  |---|---|---|---|
 *  | `source` | in | height x width, stride apart | frames, one a row |
 *  | `source` of `SumRowAbs_*` | in | length | |
 *  | `source` of `SumRowSqr_*` | in, out | length | |
 *  | `rows` | in | height x width | row pointers |
 *  | `rows` of `SumColumnSqr_*` | in, out | height x width | |
 *  | `result` | out | width | `SumColumn`, `MeanColumn`, `VarColumn` |
 *  | `result` of `SumRow_*` | out | height | |
 *  | `result` of `SumRowAbs_*`, `SumRowSqr_*`, `SumColumnAbs_*`, `SumColumnSqr_*` | out | 1 | |
 *  | `means` | out | width | never scaled |
 *  | `means` of `VarColumn_*` | in | width | |
 *  | `variances` | out | width | |
 *  | `width`, `height`, `length` | value | at least 1 | |
 *  | `height` of `VarColumn_*`, `MeanVarColumn_*` | value | at least 2 | |
 *  | `stride` | value | at least width | |
 *  | `column` | value | 0 to width - 1 | |
 *  | `firstRow` | value | 0 to height - 1 | |
 *  | `scaleFactor`, `scale` | value | any | |
 *
 *  | Members | Statuses: first test | second | third |
 *  |---|---|---|---|
 *  | `SumColumn`, `SumRow` | null | height or width below 1 | stride below width (`_D2`) |
 *  | `MeanColumn_D2`, `VarColumn_D2` | stride below width | null | width below 1; height below 1 (mean) or 2 (variance) |
 *  | `MeanVarColumn` | null | width below 1 or height below 2 | stride below width (`_D2`) |
 *  | `MeanColumn_D2L`, `VarColumn_D2L` | null | width below 1; height below 1 (mean) or 2 (variance) | |
 *  | of a single vector or column | null | length, width or height below 1, column or firstRow out of range | |
 *
 *  Last: #qorStatusNoMemory, where 16-bit results need scratch (not with unaligned row pointers).
 *
 *  @warning The one-pass variance cancels: a column of large mean and small spread loses digits, and rounding may leave a constant
 *  column with a variance slightly below zero. There is no floor.
 *
 *  @warning The 16-bit `MeanColumn_D2L`, `VarColumn_D2L` and `MeanVarColumn_16s_D2LSfs` round when all row pointers are 16-byte
 *  aligned and truncate when one is not.
 *
 *  **Exact arithmetic**
 *  - **Column sums.** Rows are added in pairs, from the top down: ((r0 + r1) + (r2 + r3)) + (r4 + r5), an odd last row last.
 *    Height 1 copies the row.
 *  - **Row sums.** Four lanes: x[8k + j] + x[8k + 4 + j] joins lane j, a last group of four joins the lanes, and up to three
 *    remaining elements join lanes 0 to 2 (in the last row of an odd height: lane 0, one by one); then (l0 + l1) + (l2 + l3).
 *  - **Means.** Column sum * (1/n). 1/n is formed in double and rounded to float in qorsMeanColumn_32f_D2() and
 *    qorsMeanVarColumn_32f_D2(), in float elsewhere; where sums are double it is a double.
 *  - **Variances.** In float (((mean * mean) * -n) + x0^2 + x1^2 + ...) * q, with q = 1/(n - 1). q is formed in float in
 *    qorsVarColumn_32f_D2L() and qorsMeanVarColumn_16s32s_D2LSfs(), in double (and rounded to float for float sums) elsewhere. The
 *    variance uses the mean before its rounding.
 *  - **16-bit data.** Elements are converted to float exactly. `MeanVarColumn_16s32s` and `MeanVarColumn_16s16s32s`: the mean is
 *    limited to the 32-bit range and that limited mean is the one in the variance; the 16-bit mean is the low half of the 32-bit
 *    one. required: the 16-bit `_D2L` members of the second warning, when any row pointer is not 16-byte aligned, sum exactly in
 *    64-bit integers and truncate instead of rounding; variances are truncated before they are shifted by the scale factor.
 *
 *  Source of the method: textbook sample statistics; for the one-pass variance and its cancellation see Chan, Golub and LeVeque,
 *  "Algorithms for Computing the Sample Variance", The American Statistician 37 (1983). @{ */

/** Sums of columns: 16-bit to float. @see @ref column_statistics */
QORSR_API QorStatus qorsSumColumn_16s32f_D2(const int16_t* source, int32_t stride, int32_t height, float* result, int32_t width);
/** Sums of columns: 16-bit to float, row pointers. @see @ref column_statistics */
QORSR_API QorStatus qorsSumColumn_16s32f_D2L(const int16_t* const* rows, int32_t height, float* result, int32_t width);
/** Sums of columns: 16 to 32 bits, scaled. @see @ref column_statistics */
QORSR_API QorStatus qorsSumColumn_16s32s_D2Sfs(const int16_t* source, int32_t stride, int32_t height, int32_t* result,
                                               int32_t width, int32_t scaleFactor);
/** Sums of columns: 16 to 32 bits, row pointers, scaled. @see @ref column_statistics */
QORSR_API QorStatus qorsSumColumn_16s32s_D2LSfs(const int16_t* const* rows, int32_t height, int32_t* result, int32_t width,
                                                int32_t scaleFactor);
/** Sums of columns: float. @see @ref column_statistics */
QORSR_API QorStatus qorsSumColumn_32f_D2(const float* source, int32_t stride, int32_t height, float* result, int32_t width);
/** Sums of columns: float, row pointers. @see @ref column_statistics */
QORSR_API QorStatus qorsSumColumn_32f_D2L(const float* const* rows, int32_t height, float* result, int32_t width);
/** Sums of columns: double. @see @ref column_statistics */
QORSR_API QorStatus qorsSumColumn_64f_D2(const double* source, int32_t stride, int32_t height, double* result, int32_t width);
/** Sums of columns: double, row pointers. @see @ref column_statistics */
QORSR_API QorStatus qorsSumColumn_64f_D2L(const double* const* rows, int32_t height, double* result, int32_t width);

/** Sums of rows: 16-bit to float. @see @ref column_statistics */
QORSR_API QorStatus qorsSumRow_16s32f_D2(const int16_t* source, int32_t width, int32_t stride, float* result, int32_t height);
/** Sums of rows: 16-bit to float, row pointers. @see @ref column_statistics */
QORSR_API QorStatus qorsSumRow_16s32f_D2L(const int16_t* const* rows, int32_t width, float* result, int32_t height);
/** Sums of rows: 16 to 32 bits, scaled. @see @ref column_statistics */
QORSR_API QorStatus qorsSumRow_16s32s_D2Sfs(const int16_t* source, int32_t width, int32_t stride, int32_t* result, int32_t height,
                                            int32_t scaleFactor);
/** Sums of rows: 16 to 32 bits, row pointers, scaled. @see @ref column_statistics */
QORSR_API QorStatus qorsSumRow_16s32s_D2LSfs(const int16_t* const* rows, int32_t width, int32_t* result, int32_t height,
                                             int32_t scaleFactor);
/** Sums of rows: float. @see @ref column_statistics */
QORSR_API QorStatus qorsSumRow_32f_D2(const float* source, int32_t width, int32_t stride, float* result, int32_t height);
/** Sums of rows: float, row pointers. @see @ref column_statistics */
QORSR_API QorStatus qorsSumRow_32f_D2L(const float* const* rows, int32_t width, float* result, int32_t height);
/** Sums of rows: double. @see @ref column_statistics */
QORSR_API QorStatus qorsSumRow_64f_D2(const double* source, int32_t width, int32_t stride, double* result, int32_t height);
/** Sums of rows: double, row pointers. @see @ref column_statistics */
QORSR_API QorStatus qorsSumRow_64f_D2L(const double* const* rows, int32_t width, double* result, int32_t height);

/** Means of columns: 16-bit. @see @ref column_statistics */
QORSR_API QorStatus qorsMeanColumn_16s_D2(const int16_t* source, int32_t height, int32_t stride, int16_t* result, int32_t width);
/** Means of columns: 16-bit, row pointers. @see @ref column_statistics */
QORSR_API QorStatus qorsMeanColumn_16s_D2L(const int16_t* const* rows, int32_t height, int16_t* result, int32_t width);
/** Means of columns: float. @see @ref column_statistics */
QORSR_API QorStatus qorsMeanColumn_32f_D2(const float* source, int32_t height, int32_t stride, float* result, int32_t width);
/** Means of columns: float, row pointers. @see @ref column_statistics */
QORSR_API QorStatus qorsMeanColumn_32f_D2L(const float* const* rows, int32_t height, float* result, int32_t width);

/** Variances of columns, from given means: 16-bit, scaled. @see @ref column_statistics */
QORSR_API QorStatus qorsVarColumn_16s_D2Sfs(const int16_t* source, int32_t height, int32_t stride, const int16_t* means,
                                            int16_t* result, int32_t width, int32_t scaleFactor);
/** Variances of columns, from given means: 16-bit, row pointers, scaled. @see @ref column_statistics */
QORSR_API QorStatus qorsVarColumn_16s_D2LSfs(const int16_t* const* rows, int32_t height, const int16_t* means, int16_t* result,
                                             int32_t width, int32_t scaleFactor);
/** Variances of columns, from given means: float. @see @ref column_statistics */
QORSR_API QorStatus qorsVarColumn_32f_D2(const float* source, int32_t height, int32_t stride, const float* means, float* result,
                                         int32_t width);
/** Variances of columns, from given means: float, row pointers. @see @ref column_statistics */
QORSR_API QorStatus qorsVarColumn_32f_D2L(const float* const* rows, int32_t height, const float* means, float* result,
                                          int32_t width);

/** Means and variances of columns: 16-bit, scaled. @see @ref column_statistics */
QORSR_API QorStatus qorsMeanVarColumn_16s_D2Sfs(const int16_t* source, int32_t height, int32_t stride, int16_t* means,
                                                int16_t* variances, int32_t width, int32_t scaleFactor);
/** Means and variances of columns: 16-bit, row pointers, scaled. @see @ref column_statistics */
QORSR_API QorStatus qorsMeanVarColumn_16s_D2LSfs(const int16_t* const* rows, int32_t height, int16_t* means, int16_t* variances,
                                                 int32_t width, int32_t scaleFactor);
/** Means and variances of columns: 16 to 32 bits, scaled. @see @ref column_statistics */
QORSR_API QorStatus qorsMeanVarColumn_16s32s_D2Sfs(const int16_t* source, int32_t height, int32_t stride, int32_t* means,
                                                   int32_t* variances, int32_t width, int32_t scaleFactor);
/** Means and variances of columns: 16 to 32 bits, row pointers, scaled. @see @ref column_statistics */
QORSR_API QorStatus qorsMeanVarColumn_16s32s_D2LSfs(const int16_t* const* rows, int32_t height, int32_t* means, int32_t* variances,
                                                    int32_t width, int32_t scaleFactor);
/** Means and variances of columns: 16-bit to 16-bit means and 32-bit variances. @see @ref column_statistics */
QORSR_API QorStatus qorsMeanVarColumn_16s16s32s_D2(const int16_t* source, int32_t height, int32_t stride, int16_t* means,
                                                   int32_t* variances, int32_t width);
/** Means and variances of columns: 16-bit to 16-bit means and 32-bit variances, row pointers. @see @ref column_statistics */
QORSR_API QorStatus qorsMeanVarColumn_16s16s32s_D2L(const int16_t* const* rows, int32_t height, int16_t* means, int32_t* variances,
                                                    int32_t width);
/** Means and variances of columns: float. @see @ref column_statistics */
QORSR_API QorStatus qorsMeanVarColumn_32f_D2(const float* source, int32_t height, int32_t stride, float* means, float* variances,
                                             int32_t width);
/** Means and variances of columns: float, row pointers. @see @ref column_statistics */
QORSR_API QorStatus qorsMeanVarColumn_32f_D2L(const float* const* rows, int32_t height, float* means, float* variances,
                                              int32_t width);

/** result = sum of |source[i]|. Two partial sums or more: the last bits are free, but the same at every level.
 *  Statuses: null; length below 1. @see @ref column_statistics */
QORSR_API QorStatus qorsSumRowAbs_64f(const double* source, int32_t length, double* result);

/** source[i] *= scale, in place; result = sum of the squares of the scaled elements. Statuses: null; length below 1.
 *  @see @ref column_statistics */
QORSR_API QorStatus qorsSumRowSqr_64f(double* source, int32_t length, double* result, double scale);

/** result = sum of |rows[r][column]| for r from firstRow to height - 1.
 *  Statuses: null; width or height below 1, column outside 0 to width - 1 or firstRow outside 0 to height - 1 (#qorStatusBadSize).
 *  @see @ref column_statistics */
QORSR_API QorStatus qorsSumColumnAbs_64f_D2L(const double* const* rows, int32_t width, int32_t height, double* result,
                                             int32_t column, int32_t firstRow);

/** rows[r][column] *= scale, in place, for r from firstRow to height - 1; result = sum of the squares of the scaled elements.
 *  Statuses: as qorsSumColumnAbs_64f_D2L(). @see @ref column_statistics */
QORSR_API QorStatus qorsSumColumnSqr_64f_D2L(double* const* rows, int32_t width, int32_t height, double* result, int32_t column,
                                             int32_t firstRow, double scale);
/** @} */

/** @defgroup weighted_moments Weighted column statistics
 *  Weighted means and variances of the columns of a matrix of height rows (frames) and width columns (features). `weights` holds
 *  one number a row, as used for soft assignments. Units are the caller's.
 *
 *  - `WeightedMean`: mean[c] = sum over r of x[r][c] w[r].
 *  - `WeightedVar`: variance[c] = sum over r of x[r][c]^2 w[r] - mean[c]^2, the mean being given.
 *  - `WeightedMeanVar`: both in one pass.
 *
 *  | Parameter | Use | Elements, or values | |
 *  |---|---|---|---|
 *  | `source` | in | height x width, stride apart | frames, one a row |
 *  | `rows` | in | height x width | row pointers |
 *  | `weights` | in | height | one a row |
 *  | `means` | out | width | |
 *  | `means` of `WeightedVarColumn_*` | in | width | |
 *  | `variances` | out | width | |
 *  | `height`, `width` | value | at least 1 | |
 *  | `stride` | value | at least width | |
 *
 *  | Status, in order | When |
 *  |---|---|
 *  | #qorStatusNullPointer | a pointer is null |
 *  | #qorStatusBadStride | stride below width (`_D2`) |
 *  | #qorStatusBadSize | width or height below 1 |
 *
 *  @warning The weights are used as given: divide them by their sum first, or the results are no mean and no variance.
 *
 *  @warning No floor is applied: by rounding, or with a mean that is not the weighted one, a variance may be negative.
 *
 *  **Exact arithmetic**
 *  - Sums run in the element type, rows in pairs from the top down, (p0 + p1) + (p2 + p3) ..., an odd last row alone.
 *  - `WeightedMeanVar` forms the terms of the second sum as (x * w) * x, `WeightedVar` as (x * x) * w.
 *  - Nothing is allocated. @{ */
/** Weighted means of columns: float. @see @ref weighted_moments */
QORSR_API QorStatus qorsWeightedMeanColumn_32f_D2(const float* source, int32_t stride, const float* weights, int32_t height,
                                                  float* means, int32_t width);
/** Weighted variances of columns, from given means: float. @see @ref weighted_moments */
QORSR_API QorStatus qorsWeightedVarColumn_32f_D2(const float* source, int32_t stride, const float* weights, int32_t height,
                                                 const float* means, float* variances, int32_t width);
/** Weighted means and variances of columns: float. @see @ref weighted_moments */
QORSR_API QorStatus qorsWeightedMeanVarColumn_32f_D2(const float* source, int32_t stride, const float* weights, int32_t height,
                                                     float* means, float* variances, int32_t width);
/** Weighted means of columns: float, row pointers. @see @ref weighted_moments */
QORSR_API QorStatus qorsWeightedMeanColumn_32f_D2L(const float* const* rows, const float* weights, int32_t height, float* means,
                                                   int32_t width);
/** Weighted variances of columns, from given means: float, row pointers. @see @ref weighted_moments */
QORSR_API QorStatus qorsWeightedVarColumn_32f_D2L(const float* const* rows, const float* weights, int32_t height,
                                                  const float* means, float* variances, int32_t width);
/** Weighted means and variances of columns: float, row pointers. @see @ref weighted_moments */
QORSR_API QorStatus qorsWeightedMeanVarColumn_32f_D2L(const float* const* rows, const float* weights, int32_t height, float* means,
                                                      float* variances, int32_t width);
/** Weighted means of columns: double. @see @ref weighted_moments */
QORSR_API QorStatus qorsWeightedMeanColumn_64f_D2(const double* source, int32_t stride, const double* weights, int32_t height,
                                                  double* means, int32_t width);
/** Weighted variances of columns, from given means: double. @see @ref weighted_moments */
QORSR_API QorStatus qorsWeightedVarColumn_64f_D2(const double* source, int32_t stride, const double* weights, int32_t height,
                                                 const double* means, double* variances, int32_t width);
/** Weighted means and variances of columns: double. @see @ref weighted_moments */
QORSR_API QorStatus qorsWeightedMeanVarColumn_64f_D2(const double* source, int32_t stride, const double* weights, int32_t height,
                                                     double* means, double* variances, int32_t width);
/** Weighted means of columns: double, row pointers. @see @ref weighted_moments */
QORSR_API QorStatus qorsWeightedMeanColumn_64f_D2L(const double* const* rows, const double* weights, int32_t height, double* means,
                                                   int32_t width);
/** Weighted variances of columns, from given means: double, row pointers. @see @ref weighted_moments */
QORSR_API QorStatus qorsWeightedVarColumn_64f_D2L(const double* const* rows, const double* weights, int32_t height,
                                                  const double* means, double* variances, int32_t width);
/** Weighted means and variances of columns: double, row pointers. @see @ref weighted_moments */
QORSR_API QorStatus qorsWeightedMeanVarColumn_64f_D2L(const double* const* rows, const double* weights, int32_t height,
                                                      double* means, double* variances, int32_t width);
/** @} */

/** @defgroup row_edits Edits of rows
 *  Matrices of height rows and width columns, changed in place or gathered.
 *
 *  - `NormalizeColumn`: x[r][c] = (x[r][c] - means[c]) * scales[c], in place.
 *  - `SubRow`: x[r][c] = x[r][c] - row[c] for every row, in place.
 *  - `AddAllRowSum`: sum[c] += x[r][c] over all rows.
 *  - `AddNRows`: destination[c] = start + sum over i of source[(indices1[i] + indices2[i]) * stride + offset + c].
 *  - `AddMulRow`: destination[i] += source[i] * factor.
 *
 *  | Parameter | Use | Elements, or values | |
 *  |---|---|---|---|
 *  | `matrix` | in, out | height x width, stride apart | |
 *  | `rows` | in, out | height x width | row pointers |
 *  | `rows` of `AddAllRowSum_*` | in | height x width | |
 *  | `row`, `means`, `scales` | in | width | |
 *  | `source` of `AddAllRowSum_*` | in | height x width, stride apart | |
 *  | `source` of `AddNRows_*` | in | height x offset + width, stride apart | |
 *  | `source` of `AddMulRow_*` | in | length | |
 *  | `sum` | in, out | width | |
 *  | `indices1`, `indices2` | in | indexCount; each 0 to (height - 1) / 2 | their sums name rows, 0 to height - 1 |
 *  | `destination` of `AddNRows_*` | out | width | |
 *  | `destination` of `AddMulRow_*` | in, out | length | |
 *  | `height`, `width`, `length`, `indexCount` | value | at least 1 | |
 *  | `offset` | value | at least 0 | elements in front of the columns that are added |
 *  | `stride` | value | at least width | |
 *  | `stride` of `AddNRows_*` | value | at least offset + width | |
 *  | `scaleFactor`, `start`, `factor` | value | any | |
 *
 *  | Members | Statuses: first test | second | third |
 *  |---|---|---|---|
 *  | `NormalizeColumn`, `SubRow`, `AddAllRowSum` | null | height or width below 1 | stride below width (`_D2`) |
 *  | `AddMulRow` | null | length below 1 | |
 *  | `AddNRows` | null | indexCount, height or width below 1, offset below 0 (#qorStatusBadSize) | stride below offset + width |
 *
 *  `AddNRows`, last: a sum of two indices outside 0 to height - 1 (#qorStatusBadSize); all are tested before anything is written.
 *
 *  @warning `AddAllRowSum` does not clear `sum`: start from zeros.
 *
 *  **Exact arithmetic**
 *  - `NormalizeColumn_16s`: the exact 32-bit product is shifted, without rounding, by the scale factor: above 0 right by sf modulo
 *    32, with copies of the sign; below 0 left by -sf modulo 32, where bits beyond 32 are lost (required); then saturated to 16
 *    bits.
 *  - `SubRow_16s` saturates.
 *  - `AddAllRowSum` adds row after row; `AddNRows` takes the start value first, then the rows in the order of i.
 *  - Nothing is allocated. @{ */
/** (x - mean) * scale in every column, in place: float. @see @ref row_edits */
QORSR_API QorStatus qorsNormalizeColumn_32f_D2(float* matrix, int32_t stride, int32_t height, const float* means,
                                               const float* scales, int32_t width);
/** (x - mean) * scale in every column, in place: float, row pointers. @see @ref row_edits */
QORSR_API QorStatus qorsNormalizeColumn_32f_D2L(float* const* rows, int32_t height, const float* means, const float* scales,
                                                int32_t width);
/** (x - mean) * scale in every column, in place: 16-bit, scaled. @see @ref row_edits */
QORSR_API QorStatus qorsNormalizeColumn_16s_D2Sfs(int16_t* matrix, int32_t stride, int32_t height, const int16_t* means,
                                                  const int16_t* scales, int32_t width, int32_t scaleFactor);
/** (x - mean) * scale in every column, in place: 16-bit, row pointers, scaled. @see @ref row_edits */
QORSR_API QorStatus qorsNormalizeColumn_16s_D2LSfs(int16_t* const* rows, int32_t height, const int16_t* means,
                                                   const int16_t* scales, int32_t width, int32_t scaleFactor);

/** A row is subtracted from every row, in place: 16-bit. @see @ref row_edits */
QORSR_API QorStatus qorsSubRow_16s_D2(const int16_t* row, int32_t width, int16_t* matrix, int32_t stride, int32_t height);
/** A row is subtracted from every row, in place: 16-bit, row pointers. @see @ref row_edits */
QORSR_API QorStatus qorsSubRow_16s_D2L(const int16_t* row, int32_t width, int16_t* const* rows, int32_t height);
/** A row is subtracted from every row, in place: float. @see @ref row_edits */
QORSR_API QorStatus qorsSubRow_32f_D2(const float* row, int32_t width, float* matrix, int32_t stride, int32_t height);
/** A row is subtracted from every row, in place: float, row pointers. @see @ref row_edits */
QORSR_API QorStatus qorsSubRow_32f_D2L(const float* row, int32_t width, float* const* rows, int32_t height);

/** Adds all rows to sum, which is read and written: float. @see @ref row_edits */
QORSR_API QorStatus qorsAddAllRowSum_32f_D2(const float* source, int32_t stride, int32_t height, float* sum, int32_t width);
/** Adds all rows to sum, which is read and written: float, row pointers. @see @ref row_edits */
QORSR_API QorStatus qorsAddAllRowSum_32f_D2L(const float* const* rows, int32_t height, float* sum, int32_t width);
/** Start value plus chosen rows of a matrix: float. @see @ref row_edits */
QORSR_API QorStatus qorsAddNRows_32f_D2(const float* source, int32_t height, int32_t offset, int32_t stride,
                                        const int32_t* indices1, const uint16_t* indices2, int32_t indexCount, float* destination,
                                        int32_t width, float start);
/** destination += source * factor, read and written: double. @see @ref row_edits */
QORSR_API QorStatus qorsAddMulRow_64f(const double* source, double* destination, int32_t length, double factor);
/** @} */

/** @defgroup column_edits Columns copied and edited
 *  Columns copied, chosen and edited, in matrices of height rows and width columns.
 *
 *  - `CopyColumn`: destination[r][c] = source[r][c], from rows of width elements without a gap to rows with a stride.
 *  - `CopyColumn_Indirect`: destination[r][k] = source[r][columns[k]] for k = 0 to columnCount - 1.
 *  - `CopyWithPadding`: `length` elements, then zeros up to `paddedLength`.
 *  - Single columns, for rows r from firstRow to height - 1: `AddMulColumn`: row[destinationColumn] += row[sourceColumn] * factor.
 *    `MulColumn`: row[column] *= factor. `DotProdColumn`: result = sum of row[firstColumn] * row[secondColumn].
 *
 *  | Parameter | Use | Elements, or values | |
 *  |---|---|---|---|
 *  | `source` of `CopyColumn_16s_D2`, `CopyColumn_32f_D2` | in | height x width | |
 *  | `source` of `CopyColumn_Indirect_*_D2` | in | height x sourceWidth, sourceStride apart | |
 *  | `source` of `CopyColumn_Indirect_*_D2L` | in | height x sourceWidth | row pointers |
 *  | `source` of `CopyWithPadding_*` | in | length | |
 *  | `destination` of `CopyColumn_16s_D2`, `CopyColumn_32f_D2` | out | height x width, destinationStride apart | |
 *  | `destination` of `CopyColumn_Indirect_*_D2` | out | height x columnCount, destinationStride apart | |
 *  | `destination` of `CopyColumn_Indirect_*_D2L` | out | height x columnCount | row pointers |
 *  | `destination` of `CopyWithPadding_*` | out | paddedLength | |
 *  | `columns` | in | columnCount; each 0 to sourceWidth - 1 | |
 *  | `rows` | in, out | height x width | row pointers |
 *  | `rows` of `DotProdColumn_*` | in | height x width | row pointers |
 *  | `result` | out | 1 | |
 *  | `height`, `width`, `length`, `sourceWidth`, `columnCount` | value | at least 1 | |
 *  | `paddedLength` | value | at least length | |
 *  | `sourceStride` | value | at least sourceWidth | |
 *  | `destinationStride` | value | at least width | |
 *  | `destinationStride` of `CopyColumn_Indirect_*` | value | at least columnCount | |
 *  | `column`, `sourceColumn`, `destinationColumn`, `firstColumn`, `secondColumn` | value | 0 to width - 1 | |
 *  | `firstRow` | value | 0 to height - 1 | |
 *  | `factor` | value | any | |
 *
 *  | Members | Statuses, in order |
 *  |---|---|
 *  | `CopyColumn` | null; height or width below 1; stride below width |
 *  | `CopyColumn_Indirect_D2` | null; sourceWidth; sourceStride below it; columnCount; destinationStride below it; height |
 *  | `CopyColumn_Indirect_D2L` | null; sourceWidth, columnCount or height below 1 |
 *  | `CopyWithPadding` | null; length or paddedLength below 1, or paddedLength below length (#qorStatusBadSize) |
 *  | single columns | null; width or height below 1, a column or firstRow out of range (#qorStatusBadSize) |
 *
 *  @warning `CopyColumn_Indirect` meets an entry of `columns` outside 0 to source width - 1 only while it copies the first row:
 *  the status is #qorStatusBadSize, but what stands in front of that entry has been copied (required).
 *
 *  **Exact arithmetic**
 *  - `DotProdColumn`: row firstRow + k goes to running sum k mod 4, joined as (s0 + s2) + (s1 + s3).
 *  - Nothing is allocated. @{ */
/** Copies dense rows to rows with a stride: 16-bit. @see @ref column_edits */
QORSR_API QorStatus qorsCopyColumn_16s_D2(const int16_t* source, int32_t width, int16_t* destination, int32_t destinationStride,
                                          int32_t height);
/** Copies dense rows to rows with a stride: float. @see @ref column_edits */
QORSR_API QorStatus qorsCopyColumn_32f_D2(const float* source, int32_t width, float* destination, int32_t destinationStride,
                                          int32_t height);

/** Copies columns that a list names: 16-bit. @see @ref column_edits */
QORSR_API QorStatus qorsCopyColumn_Indirect_16s_D2(const int16_t* source, int32_t sourceWidth, int32_t sourceStride,
                                                   int16_t* destination, const int32_t* columns, int32_t columnCount,
                                                   int32_t destinationStride, int32_t height);
/** Copies columns that a list names: 16-bit, row pointers. @see @ref column_edits */
QORSR_API QorStatus qorsCopyColumn_Indirect_16s_D2L(const int16_t* const* source, int32_t sourceWidth, int16_t* const* destination,
                                                    const int32_t* columns, int32_t columnCount, int32_t height);
/** Copies columns that a list names: float. @see @ref column_edits */
QORSR_API QorStatus qorsCopyColumn_Indirect_32f_D2(const float* source, int32_t sourceWidth, int32_t sourceStride,
                                                   float* destination, const int32_t* columns, int32_t columnCount,
                                                   int32_t destinationStride, int32_t height);
/** Copies columns that a list names: float, row pointers. @see @ref column_edits */
QORSR_API QorStatus qorsCopyColumn_Indirect_32f_D2L(const float* const* source, int32_t sourceWidth, float* const* destination,
                                                    const int32_t* columns, int32_t columnCount, int32_t height);
/** Copies columns that a list names: double. @see @ref column_edits */
QORSR_API QorStatus qorsCopyColumn_Indirect_64f_D2(const double* source, int32_t sourceWidth, int32_t sourceStride,
                                                   double* destination, const int32_t* columns, int32_t columnCount,
                                                   int32_t destinationStride, int32_t height);
/** Copies columns that a list names: double, row pointers. @see @ref column_edits */
QORSR_API QorStatus qorsCopyColumn_Indirect_64f_D2L(const double* const* source, int32_t sourceWidth, double* const* destination,
                                                    const int32_t* columns, int32_t columnCount, int32_t height);

/** Copies a vector and fills up with zeros: 16-bit. @see @ref column_edits */
QORSR_API QorStatus qorsCopyWithPadding_16s(const int16_t* source, int32_t length, int16_t* destination, int32_t paddedLength);
/** Copies a vector and fills up with zeros: float. @see @ref column_edits */
QORSR_API QorStatus qorsCopyWithPadding_32f(const float* source, int32_t length, float* destination, int32_t paddedLength);

/** Adds a multiple of a column to another one, in place: double, row pointers. @see @ref column_edits */
QORSR_API QorStatus qorsAddMulColumn_64f_D2L(double* const* rows, int32_t width, int32_t height, int32_t sourceColumn,
                                             int32_t destinationColumn, int32_t firstRow, double factor);
/** Multiplies a column by a factor, in place: double, row pointers. @see @ref column_edits */
QORSR_API QorStatus qorsMulColumn_64f_D2L(double* const* rows, int32_t width, int32_t height, int32_t column, int32_t firstRow,
                                          double factor);
/** Dot product of two columns: double, row pointers. @see @ref column_edits */
QORSR_API QorStatus qorsDotProdColumn_64f_D2L(const double* const* rows, int32_t width, int32_t height, double* result,
                                              int32_t firstColumn, int32_t secondColumn, int32_t firstRow);
/** @} */

/** @defgroup products Products of a matrix and a vector
 *  A matrix of height rows and width columns, times a vector.
 *
 *  - `MatVecMul`: result[r] = sum over c of x[r][c] v[c], a vector of width elements in, height results out.
 *  - `VecMatMul`: result[c] = sum over r of v[r] x[r][c], a vector of height elements in, width results out.
 *
 *  The stride belongs to the matrix. Integer results are the sum times 2^-sf: with a and b fraction bits in matrix and vector and
 *  q in the result, sf = a + b - q.
 *
 *  | Parameter | Use | Elements, or values | |
 *  |---|---|---|---|
 *  | `matrix` | in | height x width, stride apart | |
 *  | `rows` | in | height x width | row pointers |
 *  | `vector` of `MatVecMul_*` | in | width | |
 *  | `vector` of `VecMatMul_*` | in | height | |
 *  | `result` of `MatVecMul_*` | out | height | |
 *  | `result` of `VecMatMul_*` | out | width | |
 *  | `height`, `width` | value | at least 1 | |
 *  | `stride` | value | at least width | |
 *  | `scaleFactor` | value | any | |
 *
 *  | Status, in order | When |
 *  |---|---|
 *  | #qorStatusNullPointer | a pointer is null |
 *  | #qorStatusBadSize | height or width below 1 |
 *  | #qorStatusBadStride | stride below width (`_D2`) |
 *
 *  **Exact arithmetic**
 *  - `MatVecMul_32f`: In float: groups of 16 elements in 16 lanes, joined by halves to four; groups of four in these; up to
 *    three last elements in lane 0; (l0 + l2) + (l1 + l3).
 *  - `MatVecMul_16s`, `_16s32s`: The sum is exact (64 bits). A scale factor above 0 shifts it right without rounding, toward
 *    minus infinity (64 and more: 0 or -1); below 0 it is multiplied by the power of two; then saturated to the result's type.
 *  - `VecMatMul_32f`: In float, row after row.
 *  - `VecMatMul_16s`, `_16s32s`: The sum in double, times 2^-sf, limited to the result's range, rounded to nearest, ties to
 *    even. That one of the two 16-bit families truncates and the other rounds is required.
 *  - `_32s`: Products and sums in double (`MatVecMul`: even and odd elements in two sums, joined at the end; `VecMatMul`: row
 *    after row), times 2^-sf, limited to 32 bits, rounded to nearest, ties to even.
 *  - Nothing is allocated. @{ */
/** Matrix times vector, a result a row: float. @see @ref products */
QORSR_API QorStatus qorsMatVecMul_32f_D2(const float* matrix, int32_t stride, const float* vector, int32_t width, float* result,
                                         int32_t height);
/** Matrix times vector, a result a row: float, row pointers. @see @ref products */
QORSR_API QorStatus qorsMatVecMul_32f_D2L(const float* const* rows, const float* vector, int32_t width, float* result,
                                          int32_t height);
/** Matrix times vector, a result a row: 16-bit, scaled. @see @ref products */
QORSR_API QorStatus qorsMatVecMul_16s_D2Sfs(const int16_t* matrix, int32_t stride, const int16_t* vector, int32_t width,
                                            int16_t* result, int32_t height, int32_t scaleFactor);
/** Matrix times vector, a result a row: 16-bit, row pointers, scaled. @see @ref products */
QORSR_API QorStatus qorsMatVecMul_16s_D2LSfs(const int16_t* const* rows, const int16_t* vector, int32_t width, int16_t* result,
                                             int32_t height, int32_t scaleFactor);
/** Matrix times vector, a result a row: 16 to 32 bits, scaled. @see @ref products */
QORSR_API QorStatus qorsMatVecMul_16s32s_D2Sfs(const int16_t* matrix, int32_t stride, const int16_t* vector, int32_t width,
                                               int32_t* result, int32_t height, int32_t scaleFactor);
/** Matrix times vector, a result a row: 16 to 32 bits, row pointers, scaled. @see @ref products */
QORSR_API QorStatus qorsMatVecMul_16s32s_D2LSfs(const int16_t* const* rows, const int16_t* vector, int32_t width, int32_t* result,
                                                int32_t height, int32_t scaleFactor);
/** Matrix times vector, a result a row: 32-bit, scaled. @see @ref products */
QORSR_API QorStatus qorsMatVecMul_32s_D2Sfs(const int32_t* matrix, int32_t stride, const int32_t* vector, int32_t width,
                                            int32_t* result, int32_t height, int32_t scaleFactor);
/** Matrix times vector, a result a row: 32-bit, row pointers, scaled. @see @ref products */
QORSR_API QorStatus qorsMatVecMul_32s_D2LSfs(const int32_t* const* rows, const int32_t* vector, int32_t width, int32_t* result,
                                             int32_t height, int32_t scaleFactor);

/** Vector times matrix, a result a column: float. @see @ref products */
QORSR_API QorStatus qorsVecMatMul_32f_D2(const float* vector, const float* matrix, int32_t stride, int32_t height, float* result,
                                         int32_t width);
/** Vector times matrix, a result a column: float, row pointers. @see @ref products */
QORSR_API QorStatus qorsVecMatMul_32f_D2L(const float* vector, const float* const* rows, int32_t height, float* result,
                                          int32_t width);
/** Vector times matrix, a result a column: 16-bit, scaled. @see @ref products */
QORSR_API QorStatus qorsVecMatMul_16s_D2Sfs(const int16_t* vector, const int16_t* matrix, int32_t stride, int32_t height,
                                            int16_t* result, int32_t width, int32_t scaleFactor);
/** Vector times matrix, a result a column: 16-bit, row pointers, scaled. @see @ref products */
QORSR_API QorStatus qorsVecMatMul_16s_D2LSfs(const int16_t* vector, const int16_t* const* rows, int32_t height, int16_t* result,
                                             int32_t width, int32_t scaleFactor);
/** Vector times matrix, a result a column: 16 to 32 bits, scaled. @see @ref products */
QORSR_API QorStatus qorsVecMatMul_16s32s_D2Sfs(const int16_t* vector, const int16_t* matrix, int32_t stride, int32_t height,
                                               int32_t* result, int32_t width, int32_t scaleFactor);
/** Vector times matrix, a result a column: 16 to 32 bits, row pointers, scaled. @see @ref products */
QORSR_API QorStatus qorsVecMatMul_16s32s_D2LSfs(const int16_t* vector, const int16_t* const* rows, int32_t height, int32_t* result,
                                                int32_t width, int32_t scaleFactor);
/** Vector times matrix, a result a column: 32-bit, scaled. @see @ref products */
QORSR_API QorStatus qorsVecMatMul_32s_D2Sfs(const int32_t* vector, const int32_t* matrix, int32_t stride, int32_t height,
                                            int32_t* result, int32_t width, int32_t scaleFactor);
/** Vector times matrix, a result a column: 32-bit, row pointers, scaled. @see @ref products */
QORSR_API QorStatus qorsVecMatMul_32s_D2LSfs(const int32_t* vector, const int32_t* const* rows, int32_t height, int32_t* result,
                                             int32_t width, int32_t scaleFactor);
/** @} */

/* ================================ Acoustic scoring ================================ */

/** @defgroup log_arithmetic Log-domain arithmetic
 *  Addition, subtraction and sum of probabilities that are held as natural logarithms.
 *
 *  - `LogAdd`: result[i] = log(exp(source[i]) + exp(result[i])).
 *  - `LogSub`: result[i] = log(exp(source[i]) - exp(result[i])). Every result[i] must be below its source[i].
 *  - `LogSum`: *result = log of the sum of exp(source[i]). The hint is accepted and not read.
 *
 *  Where one term of an addition is much smaller it is dropped; then, and only then, a larger term below the floor is raised to
 *  it. In fixed point (`Sfs`) the real value is integer * 2^-scaleFactor.
 *
 *  | Parameter | Use | Elements, or values | |
 *  |---|---|---|---|
 *  | `source` | in | length | logarithms |
 *  | `result` | in, out | length | logarithms |
 *  | `result` of `LogSum_*` | out | 1 | |
 *  | `length` | value | at least 1 | |
 *  | `hint` | value | any | #qorLogAddAccurate, #qorLogAddFast or 2 |
 *  | `scaleFactor` | value | any | fraction bits |
 *
 *  **Error** of log(1 + exp(d)), d the smaller term minus the larger one, largest of 1000000 points of d from 0 to the drop
 *  threshold; to these comes the rounding of the larger term plus that:
 *
 *  | | error | smaller term dropped below | floor: a larger term below |
 *  |---|---|---|---|
 *  | float, #qorLogAddAccurate | 3.2e-8 | d = -15.3196 (it adds 2.3e-7) | -4500000 gives -4500000 |
 *  | float, #qorLogAddFast; `LogSum_32f` | 1.5e-7 | the same | the same |
 *  | `LogAdd_64f` | 5.1e-15 | d = -23.0259 (it adds 1.0e-10) | -9000000000 gives -10000000000 |
 *  | `LogSum_64f` | 3.8e-14 | the same | the same |
 *
 *  | Status, in order | When |
 *  |---|---|
 *  | #qorStatusBadSize | length below 1 |
 *  | #qorStatusNullPointer | a pointer is null |
 *  | #qorStatusBadRange | `LogSub`: a result[i] that is not below its source[i], equal terms and NaN too; nothing is written |
 *
 *  @warning Two equal infinities give a NaN: their difference is no number. Do not start a sum from minus infinity, but from a
 *  finite log zero: -4500000 in float, -1e10 in double, the floors. Adding a real term to these gives that term. A NaN term gives
 *  a NaN; in fixed point, where one can arise from an extreme scale factor, 0.
 *
 *  @warning A hint other than 0, 1 and 2 does nothing and gives #qorStatusOk (required).
 *
 *  **Exact arithmetic**
 *  - **Addition.** hi + P(d), hi the larger term, d = -|a - b|. No exponential and no logarithm is called: P is a polynomial on
 *    each of three ranges of d, of degree 10 (float: ranges end at 0, -2.55, -6.8) or 21 (double: 0, -3.5, -9). Hints 0 and 2
 *    evaluate the float polynomial in double and round once, 1 evaluates it in float; in double 0, 1 and 2 are alike. The float
 *    polynomials themselves are within 4.6e-9.
 *  - **Subtraction.** a + log(1 - exp(b - a)), a = source[i], b = result[i], with exp and log in double. With b -
 *    a below the drop threshold the result is a, raised to the floor; where 1 - exp(d) is at most 1.0057e-37 (double: 2.45e-308),
 *    it is the floor.
 *  - **Sum.** In float by the fast form. Four lanes (two in double) take every fourth (second) element when there are at least 8
 *    (5) of them, lane i is added to lane i + 2 (i + 1) and so on, and what remains is added one by one from the left. One element
 *    is copied. The polynomial of the double sum evaluates even and odd powers apart.
 *  - **Fixed point.** `LogAdd` goes through float and truncates toward zero, with saturation; with an unknown hint the result
 *    still takes that road and may lose the bits that a float has no room for (required). `LogSum` of 2 to 6 elements runs in
 *    double and rounds to float after each step, a longer one in float in chunks of 128, what was summed so far standing in front
 *    of the next chunk; the result is truncated, with saturation. `LogSub` forms d in float, scaled, from differences of the
 *    integers (which wrap in 32 bits where they are tested), but adds log(1 - exp(d)) to the integer a as it stands, unscaled
 *    (required); the sum is limited to 32 bits and truncated, and a 16-bit result is the low half of that.
 *
 *  Source of the method: the log-sum rule of hidden Markov models, as in Rabiner, "A Tutorial on Hidden Markov Models and Selected
 *  Applications in Speech Recognition", Proceedings of the IEEE 77 (1989). @{ */

/** Hints: how the polynomial of log-domain addition is evaluated in float. In double both give the same. */
enum {
  qorLogAddAccurate = 0, /**< In double, rounded once. The value 2 is another name of this form. */
  qorLogAddFast = 1      /**< In float. */
};

/** result = log(exp(source) + exp(result)); result is read and written: float. @see @ref log_arithmetic */
QORSR_API QorStatus qorsLogAdd_32f(const float* source, float* result, int32_t length, int32_t hint);
/** result = log(exp(source) + exp(result)); result is read and written: double. @see @ref log_arithmetic */
QORSR_API QorStatus qorsLogAdd_64f(const double* source, double* result, int32_t length, int32_t hint);
/** result = log(exp(source) + exp(result)); result is read and written: 16-bit, scaled. @see @ref log_arithmetic */
QORSR_API QorStatus qorsLogAdd_16s_Sfs(const int16_t* source, int16_t* result, int32_t length, int32_t scaleFactor, int32_t hint);
/** result = log(exp(source) + exp(result)); result is read and written: 32-bit, scaled. @see @ref log_arithmetic */
QORSR_API QorStatus qorsLogAdd_32s_Sfs(const int32_t* source, int32_t* result, int32_t length, int32_t scaleFactor, int32_t hint);

/** result = log(exp(source) - exp(result)); result is read and written: float. @see @ref log_arithmetic */
QORSR_API QorStatus qorsLogSub_32f(const float* source, float* result, int32_t length);
/** result = log(exp(source) - exp(result)); result is read and written: double. @see @ref log_arithmetic */
QORSR_API QorStatus qorsLogSub_64f(const double* source, double* result, int32_t length);
/** result = log(exp(source) - exp(result)); result is read and written: 16-bit, scaled. @see @ref log_arithmetic */
QORSR_API QorStatus qorsLogSub_16s_Sfs(const int16_t* source, int16_t* result, int32_t length, int32_t scaleFactor);
/** result = log(exp(source) - exp(result)); result is read and written: 32-bit, scaled. @see @ref log_arithmetic */
QORSR_API QorStatus qorsLogSub_32s_Sfs(const int32_t* source, int32_t* result, int32_t length, int32_t scaleFactor);

/** Logarithm of the sum of exp(source): float. @see @ref log_arithmetic */
QORSR_API QorStatus qorsLogSum_32f(const float* source, float* result, int32_t length, int32_t hint);
/** Logarithm of the sum of exp(source): double. @see @ref log_arithmetic */
QORSR_API QorStatus qorsLogSum_64f(const double* source, double* result, int32_t length, int32_t hint);
/** Logarithm of the sum of exp(source): 16-bit, scaled. @see @ref log_arithmetic */
QORSR_API QorStatus qorsLogSum_16s_Sfs(const int16_t* source, int16_t* result, int32_t length, int32_t scaleFactor, int32_t hint);
/** Logarithm of the sum of exp(source): 32-bit, scaled. @see @ref log_arithmetic */
QORSR_API QorStatus qorsLogSum_32s_Sfs(const int32_t* source, int32_t* result, int32_t length, int32_t scaleFactor, int32_t hint);
/** @} */

/** @defgroup model_preparation Model preparation
 *  What a model goes through before it is scored with: the constant of each Gaussian, block-diagonal inverse covariances, and the
 *  scale of a decoder's language model.
 *
 *  - `UpdateGConst`, n inverse variances v: result = n log(2 pi) - sum of log v[i]; `DirectVar`, n variances v: n log(2 pi) + sum
 *    of log v[i]. It is the logarithm of (2 pi)^n |Sigma|, so half of it, subtracted from a log weight, is the constant term of a
 *    diagonal Gaussian's log density.
 *  - `OutProbPreCalc`: result[i] = weights[i] - gconsts[i] / 2, that constant; `_I` members overwrite the gconsts. It is the `val`
 *    of the scorers (@ref gaussian_single).
 *  - `BlockDMatrix`: a record of a block-diagonal inverse covariance, for the `BlockDVar` scorers.
 *  - `ScaleLM`: result[i] = max(source[i], floor) * scale + offset, in that order.
 *
 *  | Parameter | Use | Elements, or values | |
 *  |---|---|---|---|
 *  | `inverseVariances`, `variances` | in | length | |
 *  | `result` of `UpdateGConst_*` | out | 1 | |
 *  | `weights` | in | length | logarithms of weights |
 *  | `gconsts` | in | length | |
 *  | `gconsts` of `OutProbPreCalc_*_I` | in, out | length | the constants of the density, afterwards |
 *  | `source` | in | length | scores of a language model |
 *  | `result` | out | length | |
 *  | `length` | value | at least 1 | |
 *  | `floor`, `scale`, `offset` | value | any | |
 *  | `record` | makes | | |
 *  | `record` of `BlockDMatrixFree_*` | frees | | |
 *  | `rows` | in | size x size for size in blockSizes | |
 *  | `dimension` of `BlockDMatrixInitAlloc_*` | is | sum(blockSizes) | T |
 *  | `blockSizes` | in | blockCount; each at least 1 | |
 *  | `blockCount` | value | at least 1 | |
 *
 *  **Block-diagonal records.** `rows` holds one pointer for each of the T = sum of blockSizes rows, in order of the blocks; a row
 *  has the width of its block. The record copies all of it, in one allocation; once made it is only read, by any number of scorers
 *  at a time. The three `Free` functions are one.
 *
 *  | Status, in order | When |
 *  |---|---|
 *  | #qorStatusNullPointer | a pointer is null |
 *  | #qorStatusBadSize | length below 1; blockCount, then any block size, below 1 |
 *  | #qorStatusNoMemory | `InitAlloc`; the caller's pointer stays as it was |
 *  | #qorStatusLogZero | `UpdateGConst`, a warning: an element is zero, of either sign; the result is plus infinity |
 *  | #qorStatusLogNegative | `UpdateGConst`, a warning: an element is negative; the result is a quiet NaN |
 *
 *  The first element that has no logarithm decides; a NaN gives a NaN and #qorStatusOk.
 *
 *  @warning Scorers multiply by inverse variances: qorsUpdateGConst_32f() and qorsUpdateGConst_64f() take these too, the
 *  `DirectVar` members the variances. The `det` of @ref gaussian_operations is another number.
 *
 *  @warning Block count and T are kept in 16 bits; larger ones are not refused, but wrap, and a scorer then takes only the blocks
 *  that lie within its length.
 *
 *  @warning The 32-bit `OutProbPreCalc` halves odd gconsts differently by their place and, for a last pair, by the alignment of
 *  the vectors.
 *
 *  **Exact arithmetic**
 *  - log(2 pi) = 1.8378770664093. The sum of logarithms takes one logarithm for 512 elements: exponents are added, mantissas
 *    multiplied. In float both terms are rounded to float, then subtracted (added). The NaN of a negative element is 0xFFC00000 in
 *    float, 0xFFF8000000000000 in double.
 *  - `OutProbPreCalc_32s` wraps. required: elements in groups of four from the first on, and with all pointers 16-byte aligned a
 *    pair behind them, halve rounding down (3 gives 1); what is left halves as (gconst + 1) >> 1 (3 gives 2).
 *  - `ScaleLM`: in float a source that is not above the floor, a NaN too, gives the floor. In `16s32s` the product is exact and
 *    the offset is added in 32 bits with wrap.
 *
 *  Source of the method: multivariate normal density with diagonal or block-diagonal covariance, as in Rabiner and Juang,
 *  "Fundamentals of Speech Recognition" (1993). @{ */

/** Block-diagonal inverse covariance, 16-bit elements. */
typedef struct BlockDMatrix_16s BlockDMatrix_16s;
/** Block-diagonal inverse covariance, float elements. */
typedef struct BlockDMatrix_32f BlockDMatrix_32f;
/** Block-diagonal inverse covariance, double elements. */
typedef struct BlockDMatrix_64f BlockDMatrix_64f;

/** log((2 pi)^n |Sigma|) of a diagonal Gaussian from its inverse variances: float. @see @ref model_preparation */
QORSR_API QorStatus qorsUpdateGConst_32f(const float* inverseVariances, int32_t length, float* result);
/** log((2 pi)^n |Sigma|) of a diagonal Gaussian from its inverse variances: double. @see @ref model_preparation */
QORSR_API QorStatus qorsUpdateGConst_64f(const double* inverseVariances, int32_t length, double* result);
/** log((2 pi)^n |Sigma|) of a diagonal Gaussian from its variances: float. @see @ref model_preparation */
QORSR_API QorStatus qorsUpdateGConst_DirectVar_32f(const float* variances, int32_t length, float* result);
/** log((2 pi)^n |Sigma|) of a diagonal Gaussian from its variances: double. @see @ref model_preparation */
QORSR_API QorStatus qorsUpdateGConst_DirectVar_64f(const double* variances, int32_t length, double* result);

/** result = weights - gconsts / 2: constants of Gaussians, float. @see @ref model_preparation */
QORSR_API QorStatus qorsOutProbPreCalc_32f(const float* weights, const float* gconsts, float* result, int32_t length);
/** result = weights - gconsts / 2: constants of Gaussians, 32-bit. @see @ref model_preparation */
QORSR_API QorStatus qorsOutProbPreCalc_32s(const int32_t* weights, const int32_t* gconsts, int32_t* result, int32_t length);
/** result = weights - gconsts / 2: constants of Gaussians, double. @see @ref model_preparation */
QORSR_API QorStatus qorsOutProbPreCalc_64f(const double* weights, const double* gconsts, double* result, int32_t length);
/** gconsts = weights - gconsts / 2, in place: constants of Gaussians, float. @see @ref model_preparation */
QORSR_API QorStatus qorsOutProbPreCalc_32f_I(const float* weights, float* gconsts, int32_t length);
/** gconsts = weights - gconsts / 2, in place: constants of Gaussians, 32-bit. @see @ref model_preparation */
QORSR_API QorStatus qorsOutProbPreCalc_32s_I(const int32_t* weights, int32_t* gconsts, int32_t length);
/** gconsts = weights - gconsts / 2, in place: constants of Gaussians, double. @see @ref model_preparation */
QORSR_API QorStatus qorsOutProbPreCalc_64f_I(const double* weights, double* gconsts, int32_t length);

/** Makes a block-diagonal inverse covariance: 16-bit elements. @see @ref model_preparation */
QORSR_API QorStatus qorsBlockDMatrixInitAlloc_16s(BlockDMatrix_16s** record, const int16_t* const* rows, const int32_t* blockSizes,
                                                  int32_t blockCount);
/** Makes a block-diagonal inverse covariance: float elements. @see @ref model_preparation */
QORSR_API QorStatus qorsBlockDMatrixInitAlloc_32f(BlockDMatrix_32f** record, const float* const* rows, const int32_t* blockSizes,
                                                  int32_t blockCount);
/** Makes a block-diagonal inverse covariance: double elements. @see @ref model_preparation */
QORSR_API QorStatus qorsBlockDMatrixInitAlloc_64f(BlockDMatrix_64f** record, const double* const* rows, const int32_t* blockSizes,
                                                  int32_t blockCount);
/** Releases a block-diagonal inverse covariance: 16-bit elements. @see @ref model_preparation */
QORSR_API QorStatus qorsBlockDMatrixFree_16s(BlockDMatrix_16s* record);
/** Releases a block-diagonal inverse covariance: float elements. @see @ref model_preparation */
QORSR_API QorStatus qorsBlockDMatrixFree_32f(BlockDMatrix_32f* record);
/** Releases a block-diagonal inverse covariance: double elements. @see @ref model_preparation */
QORSR_API QorStatus qorsBlockDMatrixFree_64f(BlockDMatrix_64f* record);

/** Scores of a language model: max(source, floor) * scale + offset, float. @see @ref model_preparation */
QORSR_API QorStatus qorsScaleLM_32f(const float* source, float* result, int32_t length, float floor, float scale, float offset);
/** Scores of a language model: max(source, floor) * scale + offset, 16 to 32 bits. @see @ref model_preparation */
QORSR_API QorStatus qorsScaleLM_16s32s(const int16_t* source, int32_t* result, int32_t length, int16_t floor, int16_t scale,
                                       int32_t offset);
/** @} */

/** @defgroup gaussian_selection Gaussian selection
 *  Bit tables that say which Gaussians of a large model are worth scoring for a frame; the `Select` scorers of @ref
 *  gaussian_mixture take them as their mask.
 *
 *  A table has one bit a Gaussian: position p of a row is the bit 128 >> (p % 8) of byte p / 8, so the most significant bit of a
 *  byte is the lowest position. Rows are row pointers, `stride` bytes long. `shift` is a bit offset: position 0 of a list is bit
 *  `shift` of a row, so that several calls fill fields of one wide row.
 *
 *  **Short lists** (`FillShortlist`) toggle bits:
 *  - `Row`: the indices are `height` groups of `count`; an index i of group r toggles bit shift + i of row r, 0 <= i < width.
 *  - `RowVar`: the same, group r having counts[r] indices.
 *  - `Column`: the indices are `width` groups of `count`; an index i of group c toggles bit shift + c of row i, 0 <= i < height.
 *  - `ColumnVar`: the same, group c having counts[c] indices.
 *
 *  **Sign tables** (`BuildSignTable`) condense a table. The result is contiguous, (resultBits + 7) / 8 bytes a row, and zeroed
 *  first.
 *  - qorsBuildSignTable_8u1u(): bit b of result row r is the OR of the bits shift + b of the source rows that the `count` indices
 *    of group r name.
 *  - qorsBuildSignTable_Var_8u1u(): see the warning.
 *
 *  | Parameter | Use | Elements, or values | |
 *  |---|---|---|---|
 *  | `indices` of `FillShortlist_Row_*` | in | height * count; each 0 to width - 1 | |
 *  | `indices` of `FillShortlist_RowVar_*` | in | sum(counts); each 0 to width - 1 | |
 *  | `indices` of `FillShortlist_Column_*` | in | width * count; each 0 to height - 1 | |
 *  | `indices` of `FillShortlist_ColumnVar_*` | in | sum(counts); each 0 to height - 1 | |
 *  | `indices` of `BuildSignTable_8u1u` | in | resultRows * count; each 0 to sourceHeight - 1 | |
 *  | `indices` of `BuildSignTable_Var_*` | in | sum(counts); each 0 to sourceHeight - 1 | |
 *  | `counts` of `FillShortlist_RowVar_*` | in | height; each at least 1 | |
 *  | `counts` of `FillShortlist_ColumnVar_*` | in | width; each at least 1 | |
 *  | `counts` of `BuildSignTable_Var_*` | in | resultRows; each at least 1 | |
 *  | `table` | in, out | height x ceil((shift + width) / 8) | row pointers, bytes |
 *  | `source` | in | sourceHeight x ceil((shift + resultBits) / 8) | row pointers, bytes |
 *  | `result` | out | resultRows * ceil(resultBits / 8) | bytes |
 *  | `width`, `height`, `count` | value | at least 1 | |
 *  | `sourceHeight`, `resultRows`, `resultBits` | value | at least 1 | |
 *  | `shift` | value | at least 0 | bits |
 *  | `stride` | value | at least ceil((shift + width) / 8) | bytes |
 *  | `sourceStride` | value | at least ceil((shift + resultBits) / 8) | bytes |
 *
 *  | Status, in order | When |
 *  |---|---|
 *  | #qorStatusNullPointer | a pointer is null |
 *  | #qorStatusBadSize | a size, count or stride below 1, shift below 0; `RowVar`, `ColumnVar`: an entry of counts below 1 |
 *  | #qorStatusBadStride | a stride that does not hold shift + width (shift + resultBits) bits |
 *  | #qorStatusBadSize | `BuildSignTable_Var`: an entry of counts below 1 |
 *  | #qorStatusBadArgument | an index out of range; all are tested before anything is written |
 *
 *  @warning Short lists toggle: start from a table of zeros. An index that stands twice in a group clears its bit again
 *  (required).
 *
 *  @warning qorsBuildSignTable_Var_8u1u(), required: result row r looks at the first counts[r] indices of the whole list (not at a
 *  group of its own); if any of them names a source row with a bit set among shift to shift + resultBits - 1, the top bit of the
 *  first byte of result row r is set, and no other bit ever is.
 *
 *  Source of the method: Gaussian selection by short lists, Bocchieri, "Vector quantization for the efficient computation of
 *  continuous density likelihoods", ICASSP 1993. @{ */

/** Toggles, in each row, the bits that a list of fixed length names. @see @ref gaussian_selection */
QORSR_API QorStatus qorsFillShortlist_Row_1u(const int32_t* indices, int32_t width, int32_t count, uint8_t* const* table,
                                             int32_t height, int32_t stride, int32_t shift);
/** Toggles, in each row, the bits that a list of its own length names. @see @ref gaussian_selection */
QORSR_API QorStatus qorsFillShortlist_RowVar_1u(const int32_t* indices, const int32_t* counts, int32_t width, uint8_t* const* table,
                                                int32_t height, int32_t stride, int32_t shift);
/** For each column, toggles a bit in the rows that a list of fixed length names. @see @ref gaussian_selection */
QORSR_API QorStatus qorsFillShortlist_Column_1u(const int32_t* indices, int32_t count, uint8_t* const* table, int32_t height,
                                                int32_t stride, int32_t shift, int32_t width);
/** For each column, toggles a bit in the rows that a list of its own length names. @see @ref gaussian_selection */
QORSR_API QorStatus qorsFillShortlist_ColumnVar_1u(const int32_t* indices, const int32_t* counts, uint8_t* const* table,
                                                   int32_t height, int32_t stride, int32_t shift, int32_t width);
/** Each row of the result is the OR of the rows that its group of indices names. @see @ref gaussian_selection */
QORSR_API QorStatus qorsBuildSignTable_8u1u(const int32_t* indices, int32_t count, const uint8_t* const* source,
                                            int32_t sourceHeight, int32_t sourceStride, int32_t shift, uint8_t* result,
                                            int32_t resultRows, int32_t resultBits);
/** The first bit of a row of the result: whether the rows named have any bit. @see @ref gaussian_selection */
QORSR_API QorStatus qorsBuildSignTable_Var_8u1u(const int32_t* indices, const int32_t* counts, const uint8_t* const* source,
                                                int32_t sourceHeight, int32_t sourceStride, int32_t shift, uint8_t* result,
                                                int32_t resultRows, int32_t resultBits);
/** @} */

/** @defgroup gaussian_single Gaussian scores: one frame
 *  One feature vector x against one Gaussian with mean m: the log likelihood (`LogGaussSingle`), val - Q / 2, or the squared
 *  Mahalanobis distance (`MahDistSingle`), Q. What stands here of variances, scales and sums holds for all scorers.
 *
 *  **Quadratic term** Q, by the variance word of a name:
 *  - none: sum over c of (x[c] - m[c])^2 * v[c], v holds inverse variances;
 *  - `IdVar`: sum of (x[c] - m[c])^2, there is no variance argument;
 *  - `DirectVar`: sum of (x[c] - m[c])^2 / v[c], v holds variances;
 *  - `BlockDVar`: d^T A d with d = x - m and A a block-diagonal inverse covariance (qorsBlockDMatrixInitAlloc_32f()).
 *
 *  val is the constant of the Gaussian: log weight minus half of what qorsUpdateGConst_32f() gives (qorsOutProbPreCalc_32f()).
 *
 *  | Words | x, mean, variance | val, result | sums of Q |
 *  |---|---|---|---|
 *  | `32f` | float | float | float |
 *  | `64f` | double | double | double |
 *  | `32f64f` | float | double | double |
 *  | `16s32s` | 16-bit | 32-bit | float |
 *  | `Scaled_16s32f` | 16-bit | float | float |
 *  | `Low_16s32s` | 16-bit | 32-bit | 32-bit integers, which wrap |
 *  | `LowScaled_16s32f` | 16-bit | float | 32-bit integers, which wrap |
 *  | `MahDistSingle_16s32f` | 16-bit | float | float |
 *
 *  | Parameter | Use | Elements, or values | |
 *  |---|---|---|---|
 *  | `x`, `mean`, `variance` | in | length | variances inverted, but with `DirectVar` |
 *  | `covariance` | in | | made of blocks whose sizes add up to length |
 *  | `result` | out | 1 | |
 *  | `length` | value | at least 1 | |
 *  | `length` of `*_BlockDVar*` | value | covariance.dimension | |
 *  | `val` | value | any | not scaled |
 *  | `scaleFactor` | value | any | |
 *
 *  **Scale of 16-bit data.** The score is val - Q * 2^-(sf + 1), Q taken of the integers. With f fraction bits in features and
 *  means, g in the inverse variances and q in val and score,
 *
 *      sf = 2 f + g - q                                                  q = 0 for float results
 *
 *  `IdVar` has g = 0; `DirectVar`, whose variances have g fraction bits, sf = 2 f - g - q. val is never scaled.
 *
 *  **Error** of Q, relative to Q, the largest of random vectors of 1 to 100 elements (`BlockDVar`: relative to the sum of the
 *  magnitudes of the terms); to these comes the rounding of val - Q / 2:
 *
 *  | | inverse variances | `IdVar` | `DirectVar` | `BlockDVar` |
 *  |---|---|---|---|---|
 *  | `32f` | 2.6e-7 | 1.7e-7 | 2.1e-7 | 9e-8 |
 *  | `64f` | 4.8e-16 | 3.2e-16 | 5.8e-16 | 1.2e-16 |
 *  | `32f64f` | 5.1e-16 | | | |
 *  | `16s32s`, `Scaled_16s32f` | 2.8e-7 | | | |
 *
 *  A `Low` score, where nothing wraps, lies above the exact one by v * 2^-(sf + 1) for each odd difference, and less than 8 below.
 *
 *  | Status, in order | When |
 *  |---|---|
 *  | #qorStatusNullPointer | x, mean, variance or covariance, or result is null |
 *  | #qorStatusBadSize | length below 1; `BlockDVar`: length is not the dimension of the covariance |
 *  | #qorStatusNoMemory | scratch is needed (`DirectVar` with reciprocals; `BlockDVar` from length 112 on) |
 *  | #qorStatusDivideByZero | `DirectVar`, a warning: a variance is zero, of either sign |
 *
 *  With a variance of zero the result follows by IEEE rules, but it is not written by `DirectVar_32f64f`; `DirectVar_64f` gives
 *  the IEEE result and #qorStatusOk.
 *
 *  @warning `Low` members stop scaling at 15: with sf above 15 the low words of the squares are still shifted by 15 only
 *  (required), so scores are too low. Choose f, g and q so that sf lies between 0 and 15.
 *
 *  @warning The sums of `Low` members wrap at 32 bits. They do not where no inverse variance exceeds 32767 / (length / 8), the
 *  inner quotient rounded down (at 39 features: 8191), and the score itself fits.
 *
 *  @warning A score of 2^31 or above becomes the most negative integer (required) wherever a scorer limits or truncates.
 *
 *  @warning qorsMahDistSingle_16s32s_Sfs() heeds its scale factor only where x, mean and variance are not all 16-byte aligned
 *  (required).
 *
 *  **Exact arithmetic**
 *  - The difference is formed before it is squared, so a constant offset of all features costs no precision.
 *  - **Float and double.** Float: (val + val - Q) * 0.5, so val + val may overflow; double: val - Q * 0.5; `32f64f`: float data,
 *    all arithmetic in double. Elements are summed in N = 8 lanes (doubles: 4), joined by halves, the same in every scorer, layout
 *    and alignment. The last group comes first: of a whole number of groups of N a whole one, else the length mod N last elements,
 *    at the end of the lanes (at their beginning where the length is below N). Then element N k + j joins lane j. `DirectVar_32f`
 *    and the 16-bit `DirectVar` members form the reciprocals of the variances in float first; the double ones divide term by term.
 *    `BlockDVar` sums in 8 lanes (doubles: 4); the last step of `BlockDVar_32f` is in double, rounded once.
 *  - `16s32s`, `Scaled_16s32f`: For each group of eight elements d = x - m is saturated to 16 bits, d^2 * v is formed in
 *    float, the eight are added as ((p0 + p4) + (p2 + p6)) + ((p1 + p5) + (p3 + p7)), and that joins one float total. The last
 *    zero to seven elements follow one at a time, without saturation (required); so in mixtures too, but blocks of frames and
 *    scorers of many Gaussians add the same terms in lanes, as of floats. `16s32s`: Q / 2^(sf + 1) exactly, then float(val)
 *    minus that, limited to -2^31 ... 2^31 and rounded in the caller's rounding mode. `Scaled`: in float, with the power of two
 *    limited to 2^128 (infinity) above and 0 below 2^-149.
 *  - `Low_16s32s`, `LowScaled_16s32f`: 32-bit integers that wrap. d is saturated throughout; d^2 = 65536 u + w; H = -sum of u
 *    v and L = -sum of (w / 2) v run in four lanes of neighbouring pairs over all groups of eight; each lane then gives H * 2^(15 -
 *    sf) + L / 2^sf by shifts, and each pair of the remainder, or a last odd element, gives its own. The lanes and val are added
 *    (`LowScaled`: as floats). With sf above 15, H is shifted right by sf - 15 and L by 15 (required). A negative sf takes the
 *    float sums instead, truncated toward zero in `Low` (out of range: the most negative value).
 *  - `IdVarLow_16s32s`: The same with v = 1; a negative sf shifts left. The last odd element is a plain difference, not
 *    saturated.
 *  - `IdVarLowScaled_16s32f`: Squares of neighbouring elements are added as 32-bit integers that wrap, converted to float and
 *    summed in four lanes; a last odd element is a plain difference whose 32-bit square wraps.
 *  - `BlockDVar_16s32s` truncates, and saturates above 2^31. `DirectVar_16s32s` rounds Q / 2^(sf + 1) to nearest,
 *    saturates it, and saturates the difference.
 *  - **16-bit distances.** `16s32f`: Q in the float arithmetic above. qorsMahDistSingle_16s32s_Sfs() has two roads (required):
 *    with all three vectors 16-byte aligned that float Q, limited and rounded, and the scale factor has no effect; else the exact
 *    sum in 64-bit integers, shifted right by sf (left for a negative sf), saturated.
 *
 *  Source of the method: the log of a multivariate normal density; Rabiner and Juang, "Fundamentals of Speech Recognition" (1993),
 *  section 6.6. P. C. Mahalanobis, "On the generalised distance in statistics" (1936). @{ */

/** Log likelihood of one frame: float, inverse variances. @see @ref gaussian_single */
QORSR_API QorStatus qorsLogGaussSingle_32f(const float* x, const float* mean, const float* variance, int32_t length, float* result,
                                           float val);
/** Log likelihood of one frame: double, inverse variances. @see @ref gaussian_single */
QORSR_API QorStatus qorsLogGaussSingle_64f(const double* x, const double* mean, const double* variance, int32_t length,
                                           double* result, double val);
/** Log likelihood of one frame: float data, in double, inverse variances. @see @ref gaussian_single */
QORSR_API QorStatus qorsLogGaussSingle_32f64f(const float* x, const float* mean, const float* variance, int32_t length,
                                              double* result, double val);
/** Log likelihood of one frame: float, identity variance. @see @ref gaussian_single */
QORSR_API QorStatus qorsLogGaussSingle_IdVar_32f(const float* x, const float* mean, int32_t length, float* result, float val);
/** Log likelihood of one frame: double, identity variance. @see @ref gaussian_single */
QORSR_API QorStatus qorsLogGaussSingle_IdVar_64f(const double* x, const double* mean, int32_t length, double* result, double val);
/** Log likelihood of one frame: float data, in double, identity variance. @see @ref gaussian_single */
QORSR_API QorStatus qorsLogGaussSingle_IdVar_32f64f(const float* x, const float* mean, int32_t length, double* result, double val);
/** Log likelihood of one frame: float, variances. @see @ref gaussian_single */
QORSR_API QorStatus qorsLogGaussSingle_DirectVar_32f(const float* x, const float* mean, const float* variance, int32_t length,
                                                     float* result, float val);
/** Log likelihood of one frame: double, variances. @see @ref gaussian_single */
QORSR_API QorStatus qorsLogGaussSingle_DirectVar_64f(const double* x, const double* mean, const double* variance, int32_t length,
                                                     double* result, double val);
/** Log likelihood of one frame: float data, in double, variances. @see @ref gaussian_single */
QORSR_API QorStatus qorsLogGaussSingle_DirectVar_32f64f(const float* x, const float* mean, const float* variance, int32_t length,
                                                        double* result, double val);
/** Log likelihood of one frame: float, block-diagonal inverse covariance. @see @ref gaussian_single */
QORSR_API QorStatus qorsLogGaussSingle_BlockDVar_32f(const float* x, const float* mean, const BlockDMatrix_32f* covariance,
                                                     int32_t length, float* result, float val);
/** Log likelihood of one frame: double, block-diagonal inverse covariance. @see @ref gaussian_single */
QORSR_API QorStatus qorsLogGaussSingle_BlockDVar_64f(const double* x, const double* mean, const BlockDMatrix_64f* covariance,
                                                     int32_t length, double* result, double val);
/** Log likelihood of one frame: float data, in double, block-diagonal inverse covariance. @see @ref gaussian_single */
QORSR_API QorStatus qorsLogGaussSingle_BlockDVar_32f64f(const float* x, const float* mean, const BlockDMatrix_32f* covariance,
                                                        int32_t length, double* result, double val);
/** Squared Mahalanobis distance of one frame: float, inverse variances. @see @ref gaussian_single */
QORSR_API QorStatus qorsMahDistSingle_32f(const float* x, const float* mean, const float* variance, int32_t length, float* result);
/** Squared Mahalanobis distance of one frame: double, inverse variances. @see @ref gaussian_single */
QORSR_API QorStatus qorsMahDistSingle_64f(const double* x, const double* mean, const double* variance, int32_t length,
                                          double* result);
/** Squared Mahalanobis distance of one frame: float data, in double, inverse variances. @see @ref gaussian_single */
QORSR_API QorStatus qorsMahDistSingle_32f64f(const float* x, const float* mean, const float* variance, int32_t length,
                                             double* result);

/** Log likelihood of one frame: 16 to 32 bits, inverse variances. @see @ref gaussian_single */
QORSR_API QorStatus qorsLogGaussSingle_16s32s_Sfs(const int16_t* x, const int16_t* mean, const int16_t* variance, int32_t length,
                                                  int32_t* result, int32_t val, int32_t scaleFactor);
/** Log likelihood of one frame: 16-bit to float, inverse variances. @see @ref gaussian_single */
QORSR_API QorStatus qorsLogGaussSingle_Scaled_16s32f(const int16_t* x, const int16_t* mean, const int16_t* variance, int32_t length,
                                                     float* result, float val, int32_t scaleFactor);
/** Log likelihood of one frame: 16 to 32 bits, inverse variances, integers. @see @ref gaussian_single */
QORSR_API QorStatus qorsLogGaussSingle_Low_16s32s_Sfs(const int16_t* x, const int16_t* mean, const int16_t* variance,
                                                      int32_t length, int32_t* result, int32_t val, int32_t scaleFactor);
/** Log likelihood of one frame: 16-bit to float, inverse variances, integers. @see @ref gaussian_single */
QORSR_API QorStatus qorsLogGaussSingle_LowScaled_16s32f(const int16_t* x, const int16_t* mean, const int16_t* variance,
                                                        int32_t length, float* result, float val, int32_t scaleFactor);
/** Log likelihood of one frame: 16 to 32 bits, identity variance. @see @ref gaussian_single */
QORSR_API QorStatus qorsLogGaussSingle_IdVar_16s32s_Sfs(const int16_t* x, const int16_t* mean, int32_t length, int32_t* result,
                                                        int32_t val, int32_t scaleFactor);
/** Log likelihood of one frame: 16-bit to float, identity variance. @see @ref gaussian_single */
QORSR_API QorStatus qorsLogGaussSingle_IdVarScaled_16s32f(const int16_t* x, const int16_t* mean, int32_t length, float* result,
                                                          float val, int32_t scaleFactor);
/** Log likelihood of one frame: 16 to 32 bits, identity variance, integers. @see @ref gaussian_single */
QORSR_API QorStatus qorsLogGaussSingle_IdVarLow_16s32s_Sfs(const int16_t* x, const int16_t* mean, int32_t length, int32_t* result,
                                                           int32_t val, int32_t scaleFactor);
/** Log likelihood of one frame: 16-bit to float, identity variance, integers. @see @ref gaussian_single */
QORSR_API QorStatus qorsLogGaussSingle_IdVarLowScaled_16s32f(const int16_t* x, const int16_t* mean, int32_t length, float* result,
                                                             float val, int32_t scaleFactor);
/** Log likelihood of one frame: 16 to 32 bits, variances. @see @ref gaussian_single */
QORSR_API QorStatus qorsLogGaussSingle_DirectVar_16s32s_Sfs(const int16_t* x, const int16_t* mean, const int16_t* variance,
                                                            int32_t length, int32_t* result, int32_t val, int32_t scaleFactor);
/** Log likelihood of one frame: 16-bit to float, variances. @see @ref gaussian_single */
QORSR_API QorStatus qorsLogGaussSingle_DirectVarScaled_16s32f(const int16_t* x, const int16_t* mean, const int16_t* variance,
                                                              int32_t length, float* result, float val, int32_t scaleFactor);
/** Log likelihood of one frame: 16 to 32 bits, block-diagonal inverse covariance. @see @ref gaussian_single */
QORSR_API QorStatus qorsLogGaussSingle_BlockDVar_16s32s_Sfs(const int16_t* x, const int16_t* mean,
                                                            const BlockDMatrix_16s* covariance, int32_t length, int32_t* result,
                                                            int32_t val, int32_t scaleFactor);
/** Log likelihood of one frame: 16-bit to float, block-diagonal inverse covariance. @see @ref gaussian_single */
QORSR_API QorStatus qorsLogGaussSingle_BlockDVarScaled_16s32f(const int16_t* x, const int16_t* mean,
                                                              const BlockDMatrix_16s* covariance, int32_t length, float* result,
                                                              float val, int32_t scaleFactor);
/** Squared Mahalanobis distance of one frame: 16-bit to float, inverse variances. @see @ref gaussian_single */
QORSR_API QorStatus qorsMahDistSingle_16s32f(const int16_t* x, const int16_t* mean, const int16_t* variance, int32_t length,
                                             float* result);
/** Squared Mahalanobis distance of one frame: 16 to 32 bits, inverse variances. @see @ref gaussian_single */
QORSR_API QorStatus qorsMahDistSingle_16s32s_Sfs(const int16_t* x, const int16_t* mean, const int16_t* variance, int32_t length,
                                                 int32_t* result, int32_t scaleFactor);
/** @} */

/** @defgroup gaussian_block Gaussian scores: a block of frames
 *  Every frame of a block, one a row, against one Gaussian. The score s(i) of frame i, its variances, scales and errors are those
 *  of @ref gaussian_single, with the same words and sums.
 *
 *  - `LogGauss`: result[i] = s(i).
 *  - `LogGaussMax`: result[i] = the larger of s(i) and result[i]. A score that is NaN replaces nothing.
 *  - `LogGaussAdd`: result[i] = log(exp(result[i]) + exp(s(i))), by @ref log_arithmetic.
 *  - `MahDist`: result[i] = Q.
 *
 *  | Parameter | Use | Elements, or values | |
 *  |---|---|---|---|
 *  | `source` | in | height x width, stride apart | frames, one a row |
 *  | `rows` | in | height x width | row pointers |
 *  | `mean`, `variance` | in | width | variances inverted |
 *  | `result` of `LogGauss_*`, `MahDist_*` | out | height | |
 *  | `result` | in, out | height | |
 *  | `width`, `height` | value | at least 1 | |
 *  | `stride` | value | at least width | |
 *  | `val` | value | any | not scaled |
 *  | `scaleFactor` | value | any | sf = 2 f + g - q |
 *
 *  | Status, in order | When |
 *  |---|---|
 *  | #qorStatusBadStride | stride below width (`_D2`) |
 *  | #qorStatusNullPointer | a pointer is null; row pointers are not checked |
 *  | #qorStatusBadSize | width or height below 1 |
 *
 *  @warning `LogGaussMax` and `LogGaussAdd` read `result`: fill it first. Minus infinity is a good start for the former, but not
 *  for the latter, where two of them give a NaN; see the log zero of @ref log_arithmetic.
 *
 *  @warning `LogGaussMax_16s32s` and `LogGaussMax_Low_16s32s` send old results through floats: one that wins comes back with 24
 *  bits (required).
 *
 *  **Exact arithmetic**
 *  - `LogGaussAdd` uses the accurate kernel of qorsLogAdd_32f() or that of qorsLogAdd_64f(), their drop threshold and floor.
 *  - `LogGauss_16s32s`, `LogGauss_IdVar_16s32s`: the score is truncated toward zero and not limited; out of range it is the most
 *    negative value.
 *  - `LogGaussMax` with 32-bit results rounds every step toward zero. `16s32s` and `IdVar_16s32s`: s = float(val) - Q * 2^-(sf +
 *    1), with the power of two limited as in `Scaled`, limited to -2^31 ... 2^31. `Low` and `IdVarLow`: the integer score
 *    converted to float. The old result is converted to float too, and the larger of the two is truncated: an old result that wins
 *    comes back with 24 bits (required), and a score of 2^31 as the most negative value.
 *
 *  Source of the method: as in @ref gaussian_single. @{ */

/** Log likelihoods of frames: 16 to 32 bits, inverse variances. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGauss_16s32s_D2Sfs(const int16_t* source, int32_t stride, const int16_t* mean, const int16_t* variance,
                                              int32_t width, int32_t* result, int32_t height, int32_t val, int32_t scaleFactor);
/** Log likelihoods of frames: 16 to 32 bits, inverse variances, row pointers. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGauss_16s32s_D2LSfs(const int16_t* const* rows, const int16_t* mean, const int16_t* variance,
                                               int32_t width, int32_t* result, int32_t height, int32_t val, int32_t scaleFactor);
/** Log likelihoods of frames: float, inverse variances. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGauss_32f_D2(const float* source, int32_t stride, const float* mean, const float* variance,
                                        int32_t width, float* result, int32_t height, float val);
/** Log likelihoods of frames: float, inverse variances, row pointers. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGauss_32f_D2L(const float* const* rows, const float* mean, const float* variance, int32_t width,
                                         float* result, int32_t height, float val);
/** Log likelihoods of frames: double, inverse variances. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGauss_64f_D2(const double* source, int32_t stride, const double* mean, const double* variance,
                                        int32_t width, double* result, int32_t height, double val);
/** Log likelihoods of frames: double, inverse variances, row pointers. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGauss_64f_D2L(const double* const* rows, const double* mean, const double* variance, int32_t width,
                                         double* result, int32_t height, double val);
/** Log likelihoods of frames: 16 to 32 bits, identity variance. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGauss_IdVar_16s32s_D2Sfs(const int16_t* source, int32_t stride, const int16_t* mean, int32_t width,
                                                    int32_t* result, int32_t height, int32_t val, int32_t scaleFactor);
/** Log likelihoods of frames: 16 to 32 bits, identity variance, row pointers. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGauss_IdVar_16s32s_D2LSfs(const int16_t* const* rows, const int16_t* mean, int32_t width,
                                                     int32_t* result, int32_t height, int32_t val, int32_t scaleFactor);
/** Log likelihoods of frames: float, identity variance. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGauss_IdVar_32f_D2(const float* source, int32_t stride, const float* mean, int32_t width, float* result,
                                              int32_t height, float val);
/** Log likelihoods of frames: float, identity variance, row pointers. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGauss_IdVar_32f_D2L(const float* const* rows, const float* mean, int32_t width, float* result,
                                               int32_t height, float val);
/** Log likelihoods of frames: double, identity variance. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGauss_IdVar_64f_D2(const double* source, int32_t stride, const double* mean, int32_t width,
                                              double* result, int32_t height, double val);
/** Log likelihoods of frames: double, identity variance, row pointers. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGauss_IdVar_64f_D2L(const double* const* rows, const double* mean, int32_t width, double* result,
                                               int32_t height, double val);
/** Log likelihoods of frames: 16 to 32 bits, identity variance, integers. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGauss_IdVarLow_16s32s_D2Sfs(const int16_t* source, int32_t stride, const int16_t* mean, int32_t width,
                                                       int32_t* result, int32_t height, int32_t val, int32_t scaleFactor);
/** Log likelihoods of frames: 16 to 32 bits, identity variance, integers, row pointers. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGauss_IdVarLow_16s32s_D2LSfs(const int16_t* const* rows, const int16_t* mean, int32_t width,
                                                        int32_t* result, int32_t height, int32_t val, int32_t scaleFactor);
/** Log likelihoods of frames: 16-bit to float, identity variance, integers. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGauss_IdVarLowScaled_16s32f_D2(const int16_t* source, int32_t stride, const int16_t* mean, int32_t width,
                                                          float* result, int32_t height, float val, int32_t scaleFactor);
/** Log likelihoods of frames: 16-bit to float, identity variance, integers, row pointers. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGauss_IdVarLowScaled_16s32f_D2L(const int16_t* const* rows, const int16_t* mean, int32_t width,
                                                           float* result, int32_t height, float val, int32_t scaleFactor);
/** Log likelihoods of frames: 16-bit to float, identity variance. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGauss_IdVarScaled_16s32f_D2(const int16_t* source, int32_t stride, const int16_t* mean, int32_t width,
                                                       float* result, int32_t height, float val, int32_t scaleFactor);
/** Log likelihoods of frames: 16-bit to float, identity variance, row pointers. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGauss_IdVarScaled_16s32f_D2L(const int16_t* const* rows, const int16_t* mean, int32_t width,
                                                        float* result, int32_t height, float val, int32_t scaleFactor);
/** Log likelihoods of frames: 16 to 32 bits, inverse variances, integers. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGauss_Low_16s32s_D2Sfs(const int16_t* source, int32_t stride, const int16_t* mean,
                                                  const int16_t* variance, int32_t width, int32_t* result, int32_t height,
                                                  int32_t val, int32_t scaleFactor);
/** Log likelihoods of frames: 16 to 32 bits, inverse variances, integers, row pointers. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGauss_Low_16s32s_D2LSfs(const int16_t* const* rows, const int16_t* mean, const int16_t* variance,
                                                   int32_t width, int32_t* result, int32_t height, int32_t val,
                                                   int32_t scaleFactor);
/** Log likelihoods of frames: 16-bit to float, inverse variances, integers. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGauss_LowScaled_16s32f_D2(const int16_t* source, int32_t stride, const int16_t* mean,
                                                     const int16_t* variance, int32_t width, float* result, int32_t height,
                                                     float val, int32_t scaleFactor);
/** Log likelihoods of frames: 16-bit to float, inverse variances, integers, row pointers. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGauss_LowScaled_16s32f_D2L(const int16_t* const* rows, const int16_t* mean, const int16_t* variance,
                                                      int32_t width, float* result, int32_t height, float val, int32_t scaleFactor);
/** Log likelihoods of frames: 16-bit to float, inverse variances. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGauss_Scaled_16s32f_D2(const int16_t* source, int32_t stride, const int16_t* mean,
                                                  const int16_t* variance, int32_t width, float* result, int32_t height, float val,
                                                  int32_t scaleFactor);
/** Log likelihoods of frames: 16-bit to float, inverse variances, row pointers. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGauss_Scaled_16s32f_D2L(const int16_t* const* rows, const int16_t* mean, const int16_t* variance,
                                                   int32_t width, float* result, int32_t height, float val, int32_t scaleFactor);

/** result = max(result, score): 16 to 32 bits, inverse variances. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGaussMax_16s32s_D2Sfs(const int16_t* source, int32_t stride, const int16_t* mean,
                                                 const int16_t* variance, int32_t width, int32_t* result, int32_t height,
                                                 int32_t val, int32_t scaleFactor);
/** result = max(result, score): 16 to 32 bits, inverse variances, row pointers. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGaussMax_16s32s_D2LSfs(const int16_t* const* rows, const int16_t* mean, const int16_t* variance,
                                                  int32_t width, int32_t* result, int32_t height, int32_t val, int32_t scaleFactor);
/** result = max(result, score): float, inverse variances. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGaussMax_32f_D2(const float* source, int32_t stride, const float* mean, const float* variance,
                                           int32_t width, float* result, int32_t height, float val);
/** result = max(result, score): float, inverse variances, row pointers. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGaussMax_32f_D2L(const float* const* rows, const float* mean, const float* variance, int32_t width,
                                            float* result, int32_t height, float val);
/** result = max(result, score): double, inverse variances. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGaussMax_64f_D2(const double* source, int32_t stride, const double* mean, const double* variance,
                                           int32_t width, double* result, int32_t height, double val);
/** result = max(result, score): double, inverse variances, row pointers. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGaussMax_64f_D2L(const double* const* rows, const double* mean, const double* variance, int32_t width,
                                            double* result, int32_t height, double val);
/** result = max(result, score): 16 to 32 bits, identity variance. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGaussMax_IdVar_16s32s_D2Sfs(const int16_t* source, int32_t stride, const int16_t* mean, int32_t width,
                                                       int32_t* result, int32_t height, int32_t val, int32_t scaleFactor);
/** result = max(result, score): 16 to 32 bits, identity variance, row pointers. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGaussMax_IdVar_16s32s_D2LSfs(const int16_t* const* rows, const int16_t* mean, int32_t width,
                                                        int32_t* result, int32_t height, int32_t val, int32_t scaleFactor);
/** result = max(result, score): float, identity variance. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGaussMax_IdVar_32f_D2(const float* source, int32_t stride, const float* mean, int32_t width,
                                                 float* result, int32_t height, float val);
/** result = max(result, score): float, identity variance, row pointers. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGaussMax_IdVar_32f_D2L(const float* const* rows, const float* mean, int32_t width, float* result,
                                                  int32_t height, float val);
/** result = max(result, score): double, identity variance. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGaussMax_IdVar_64f_D2(const double* source, int32_t stride, const double* mean, int32_t width,
                                                 double* result, int32_t height, double val);
/** result = max(result, score): double, identity variance, row pointers. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGaussMax_IdVar_64f_D2L(const double* const* rows, const double* mean, int32_t width, double* result,
                                                  int32_t height, double val);
/** result = max(result, score): 16 to 32 bits, identity variance, integers. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGaussMax_IdVarLow_16s32s_D2Sfs(const int16_t* source, int32_t stride, const int16_t* mean, int32_t width,
                                                          int32_t* result, int32_t height, int32_t val, int32_t scaleFactor);
/** result = max(result, score): 16 to 32 bits, identity variance, integers, row pointers. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGaussMax_IdVarLow_16s32s_D2LSfs(const int16_t* const* rows, const int16_t* mean, int32_t width,
                                                           int32_t* result, int32_t height, int32_t val, int32_t scaleFactor);
/** result = max(result, score): 16-bit to float, identity variance, integers. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGaussMax_IdVarLowScaled_16s32f_D2(const int16_t* source, int32_t stride, const int16_t* mean,
                                                             int32_t width, float* result, int32_t height, float val,
                                                             int32_t scaleFactor);
/** result = max(result, score): 16-bit to float, identity variance, integers, row pointers. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGaussMax_IdVarLowScaled_16s32f_D2L(const int16_t* const* rows, const int16_t* mean, int32_t width,
                                                              float* result, int32_t height, float val, int32_t scaleFactor);
/** result = max(result, score): 16-bit to float, identity variance. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGaussMax_IdVarScaled_16s32f_D2(const int16_t* source, int32_t stride, const int16_t* mean, int32_t width,
                                                          float* result, int32_t height, float val, int32_t scaleFactor);
/** result = max(result, score): 16-bit to float, identity variance, row pointers. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGaussMax_IdVarScaled_16s32f_D2L(const int16_t* const* rows, const int16_t* mean, int32_t width,
                                                           float* result, int32_t height, float val, int32_t scaleFactor);
/** result = max(result, score): 16 to 32 bits, inverse variances, integers. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGaussMax_Low_16s32s_D2Sfs(const int16_t* source, int32_t stride, const int16_t* mean,
                                                     const int16_t* variance, int32_t width, int32_t* result, int32_t height,
                                                     int32_t val, int32_t scaleFactor);
/** result = max(result, score): 16 to 32 bits, inverse variances, integers, row pointers. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGaussMax_Low_16s32s_D2LSfs(const int16_t* const* rows, const int16_t* mean, const int16_t* variance,
                                                      int32_t width, int32_t* result, int32_t height, int32_t val,
                                                      int32_t scaleFactor);
/** result = max(result, score): 16-bit to float, inverse variances, integers. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGaussMax_LowScaled_16s32f_D2(const int16_t* source, int32_t stride, const int16_t* mean,
                                                        const int16_t* variance, int32_t width, float* result, int32_t height,
                                                        float val, int32_t scaleFactor);
/** result = max(result, score): 16-bit to float, inverse variances, integers, row pointers. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGaussMax_LowScaled_16s32f_D2L(const int16_t* const* rows, const int16_t* mean, const int16_t* variance,
                                                         int32_t width, float* result, int32_t height, float val,
                                                         int32_t scaleFactor);
/** result = max(result, score): 16-bit to float, inverse variances. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGaussMax_Scaled_16s32f_D2(const int16_t* source, int32_t stride, const int16_t* mean,
                                                     const int16_t* variance, int32_t width, float* result, int32_t height,
                                                     float val, int32_t scaleFactor);
/** result = max(result, score): 16-bit to float, inverse variances, row pointers. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGaussMax_Scaled_16s32f_D2L(const int16_t* const* rows, const int16_t* mean, const int16_t* variance,
                                                      int32_t width, float* result, int32_t height, float val, int32_t scaleFactor);

/** Log-adds scores to result: float, inverse variances. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGaussAdd_32f_D2(const float* source, int32_t stride, const float* mean, const float* variance,
                                           int32_t width, float* result, int32_t height, float val);
/** Log-adds scores to result: float, inverse variances, row pointers. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGaussAdd_32f_D2L(const float* const* rows, const float* mean, const float* variance, int32_t width,
                                            float* result, int32_t height, float val);
/** Log-adds scores to result: double, inverse variances. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGaussAdd_64f_D2(const double* source, int32_t stride, const double* mean, const double* variance,
                                           int32_t width, double* result, int32_t height, double val);
/** Log-adds scores to result: double, inverse variances, row pointers. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGaussAdd_64f_D2L(const double* const* rows, const double* mean, const double* variance, int32_t width,
                                            double* result, int32_t height, double val);
/** Log-adds scores to result: float, identity variance. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGaussAdd_IdVar_32f_D2(const float* source, int32_t stride, const float* mean, int32_t width,
                                                 float* result, int32_t height, float val);
/** Log-adds scores to result: float, identity variance, row pointers. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGaussAdd_IdVar_32f_D2L(const float* const* rows, const float* mean, int32_t width, float* result,
                                                  int32_t height, float val);
/** Log-adds scores to result: double, identity variance. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGaussAdd_IdVar_64f_D2(const double* source, int32_t stride, const double* mean, int32_t width,
                                                 double* result, int32_t height, double val);
/** Log-adds scores to result: double, identity variance, row pointers. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGaussAdd_IdVar_64f_D2L(const double* const* rows, const double* mean, int32_t width, double* result,
                                                  int32_t height, double val);
/** Log-adds scores to result: 16-bit to float, identity variance, integers. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGaussAdd_IdVarLowScaled_16s32f_D2(const int16_t* source, int32_t stride, const int16_t* mean,
                                                             int32_t width, float* result, int32_t height, float val,
                                                             int32_t scaleFactor);
/** Log-adds scores to result: 16-bit to float, identity variance, integers, row pointers. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGaussAdd_IdVarLowScaled_16s32f_D2L(const int16_t* const* rows, const int16_t* mean, int32_t width,
                                                              float* result, int32_t height, float val, int32_t scaleFactor);
/** Log-adds scores to result: 16-bit to float, identity variance. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGaussAdd_IdVarScaled_16s32f_D2(const int16_t* source, int32_t stride, const int16_t* mean, int32_t width,
                                                          float* result, int32_t height, float val, int32_t scaleFactor);
/** Log-adds scores to result: 16-bit to float, identity variance, row pointers. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGaussAdd_IdVarScaled_16s32f_D2L(const int16_t* const* rows, const int16_t* mean, int32_t width,
                                                           float* result, int32_t height, float val, int32_t scaleFactor);
/** Log-adds scores to result: 16-bit to float, inverse variances, integers. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGaussAdd_LowScaled_16s32f_D2(const int16_t* source, int32_t stride, const int16_t* mean,
                                                        const int16_t* variance, int32_t width, float* result, int32_t height,
                                                        float val, int32_t scaleFactor);
/** Log-adds scores to result: 16-bit to float, inverse variances, integers, row pointers. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGaussAdd_LowScaled_16s32f_D2L(const int16_t* const* rows, const int16_t* mean, const int16_t* variance,
                                                         int32_t width, float* result, int32_t height, float val,
                                                         int32_t scaleFactor);
/** Log-adds scores to result: 16-bit to float, inverse variances. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGaussAdd_Scaled_16s32f_D2(const int16_t* source, int32_t stride, const int16_t* mean,
                                                     const int16_t* variance, int32_t width, float* result, int32_t height,
                                                     float val, int32_t scaleFactor);
/** Log-adds scores to result: 16-bit to float, inverse variances, row pointers. @see @ref gaussian_block */
QORSR_API QorStatus qorsLogGaussAdd_Scaled_16s32f_D2L(const int16_t* const* rows, const int16_t* mean, const int16_t* variance,
                                                      int32_t width, float* result, int32_t height, float val, int32_t scaleFactor);

/** Squared Mahalanobis distances of frames: float, inverse variances. @see @ref gaussian_block */
QORSR_API QorStatus qorsMahDist_32f_D2(const float* source, int32_t stride, const float* mean, const float* variance, int32_t width,
                                       float* result, int32_t height);
/** Squared Mahalanobis distances of frames: float, inverse variances, row pointers. @see @ref gaussian_block */
QORSR_API QorStatus qorsMahDist_32f_D2L(const float* const* rows, const float* mean, const float* variance, int32_t width,
                                        float* result, int32_t height);
/** Squared Mahalanobis distances of frames: double, inverse variances. @see @ref gaussian_block */
QORSR_API QorStatus qorsMahDist_64f_D2(const double* source, int32_t stride, const double* mean, const double* variance,
                                       int32_t width, double* result, int32_t height);
/** Squared Mahalanobis distances of frames: double, inverse variances, row pointers. @see @ref gaussian_block */
QORSR_API QorStatus qorsMahDist_64f_D2L(const double* const* rows, const double* mean, const double* variance, int32_t width,
                                        double* result, int32_t height);
/** @} */

/** @defgroup gaussian_mixture Gaussian mixtures
 *  The log likelihood of a whole mixture: log of the sum over g of exp(s(g)), s(g) the score of x against Gaussian g, with the
 *  words, scales and sums of @ref gaussian_single. vals[g] is the constant of Gaussian g with the log mixture weight in it.
 *
 *  - `LogGaussMixture`: one frame x, all `count` Gaussians.
 *  - `Select`: every frame of a block against those Gaussians that a mask selects for it. A frame with no selected Gaussian gets
 *    `floor`. Gaussian g is bit 128 >> (g mod 8) of byte g / 8 of the frame's row of the mask (@ref gaussian_selection makes such
 *    rows); bits beyond count are ignored.
 *
 *  | Parameter | Use | Elements, or values | |
 *  |---|---|---|---|
 *  | `x` | in | width | |
 *  | `frames` | in | frameCount x width, stride apart | |
 *  | `frameRows` | in | frameCount x width | row pointers |
 *  | `means`, `variances` | in | count x width, stride apart | one stride for both, and for frames |
 *  | `meanRows`, `varianceRows` | in | count x width | row pointers; variances inverted |
 *  | `vals` | in | count | not scaled |
 *  | `mask` | in | frameCount * ceil(count / 8) | bytes |
 *  | `result` | out | 1 | |
 *  | `results` | out | frameCount | |
 *  | `width`, `count`, `frameCount` | value | at least 1 | |
 *  | `stride` | value | at least width | |
 *  | `floor` | value | any | |
 *  | `scaleFactor` | value | any | sf = 2 f + g |
 *
 *  **Error.** Float: 2.5e-7 of the result's magnitude, with 1 to 64 Gaussians of 39 dimensions and scores of some dozens below
 *  zero. Double: at most 1.0e-10 for each Gaussian, since smaller terms are dropped (@ref log_arithmetic).
 *
 *  | Members | Statuses: first test | second | third |
 *  |---|---|---|---|
 *  | whole | null | stride below width (`_D2`) | count or width below 1 |
 *  | `Select_D2` | null, but `results` | width, count or frameCount below 1 | stride below width |
 *  | `Select_D2L` | null, but `results` | width, count or frameCount below 1 | a null row pointer of frames, means, variances |
 *
 *  `Select`, then: `results` null (#qorStatusNullPointer); #qorStatusNoMemory where nothing is gathered.
 *
 *  **Exact arithmetic**
 *  - Float and double scores are val - Q * 0.5, for `IdVar` too. Whole mixtures take the Gaussians in chunks of 100; each chunk is
 *    reduced as by qorsLogSum_32f() (or qorsLogSum_64f()), from the second chunk on with the result so far in front of it. So one
 *    Gaussian gives its score unchanged.
 *  - `Select`: a frame with a single Gaussian gets its score as qorsLogGaussSingle_32f() gives it (or `IdVar_32f`,
 *    `Scaled_16s32f`, `IdVarScaled_16s32f`). Scores are log-added Gaussian by Gaussian in the accurate form of qorsLogAdd_32f();
 *    but `Select_32f_D2` and `SelectScaled_16s32f_D2` with at least 9 Gaussians and 2 frames gather the scores of each frame and
 *    reduce them like a whole mixture: the same within rounding. A frame against a multiple of 65536 selected Gaussians starts
 *    anew behind them (required: its counter has 16 bits), where nothing is gathered.
 *
 *  Source of the method: as in @ref gaussian_single; for the sum in the log domain see @ref log_arithmetic "log-domain
 *  arithmetic". @{ */

/** Log likelihood of a mixture: float, inverse variances. @see @ref gaussian_mixture */
QORSR_API QorStatus qorsLogGaussMixture_32f_D2(const float* x, const float* means, const float* variances, int32_t count,
                                               int32_t stride, int32_t width, const float* vals, float* result);
/** Log likelihood of a mixture: float, inverse variances, row pointers. @see @ref gaussian_mixture */
QORSR_API QorStatus qorsLogGaussMixture_32f_D2L(const float* x, const float* const* meanRows, const float* const* varianceRows,
                                                int32_t count, int32_t width, const float* vals, float* result);
/** Log likelihood of a mixture: double, inverse variances. @see @ref gaussian_mixture */
QORSR_API QorStatus qorsLogGaussMixture_64f_D2(const double* x, const double* means, const double* variances, int32_t count,
                                               int32_t stride, int32_t width, const double* vals, double* result);
/** Log likelihood of a mixture: double, inverse variances, row pointers. @see @ref gaussian_mixture */
QORSR_API QorStatus qorsLogGaussMixture_64f_D2L(const double* x, const double* const* meanRows, const double* const* varianceRows,
                                                int32_t count, int32_t width, const double* vals, double* result);
/** Log likelihood of a mixture: float, identity variance. @see @ref gaussian_mixture */
QORSR_API QorStatus qorsLogGaussMixture_IdVar_32f_D2(const float* x, const float* means, int32_t count, int32_t stride,
                                                     int32_t width, const float* vals, float* result);
/** Log likelihood of a mixture: float, identity variance, row pointers. @see @ref gaussian_mixture */
QORSR_API QorStatus qorsLogGaussMixture_IdVar_32f_D2L(const float* x, const float* const* meanRows, int32_t count, int32_t width,
                                                      const float* vals, float* result);
/** Log likelihood of a mixture: double, identity variance. @see @ref gaussian_mixture */
QORSR_API QorStatus qorsLogGaussMixture_IdVar_64f_D2(const double* x, const double* means, int32_t count, int32_t stride,
                                                     int32_t width, const double* vals, double* result);
/** Log likelihood of a mixture: double, identity variance, row pointers. @see @ref gaussian_mixture */
QORSR_API QorStatus qorsLogGaussMixture_IdVar_64f_D2L(const double* x, const double* const* meanRows, int32_t count, int32_t width,
                                                      const double* vals, double* result);
/** Log likelihood of a mixture: 16-bit to float, inverse variances. @see @ref gaussian_mixture */
QORSR_API QorStatus qorsLogGaussMixture_Scaled_16s32f_D2(const int16_t* x, const int16_t* means, const int16_t* variances,
                                                         int32_t count, int32_t stride, int32_t width, const float* vals,
                                                         float* result, int32_t scaleFactor);
/** Log likelihood of a mixture: 16-bit to float, inverse variances, row pointers. @see @ref gaussian_mixture */
QORSR_API QorStatus qorsLogGaussMixture_Scaled_16s32f_D2L(const int16_t* x, const int16_t* const* meanRows,
                                                          const int16_t* const* varianceRows, int32_t count, int32_t width,
                                                          const float* vals, float* result, int32_t scaleFactor);
/** Log likelihood of a mixture: 16-bit to float, inverse variances, integers. @see @ref gaussian_mixture */
QORSR_API QorStatus qorsLogGaussMixture_LowScaled_16s32f_D2(const int16_t* x, const int16_t* means, const int16_t* variances,
                                                            int32_t count, int32_t stride, int32_t width, const float* vals,
                                                            float* result, int32_t scaleFactor);
/** Log likelihood of a mixture: 16-bit to float, inverse variances, integers, row pointers. @see @ref gaussian_mixture */
QORSR_API QorStatus qorsLogGaussMixture_LowScaled_16s32f_D2L(const int16_t* x, const int16_t* const* meanRows,
                                                             const int16_t* const* varianceRows, int32_t count, int32_t width,
                                                             const float* vals, float* result, int32_t scaleFactor);
/** Log likelihood of a mixture: 16-bit to float, identity variance. @see @ref gaussian_mixture */
QORSR_API QorStatus qorsLogGaussMixture_IdVarScaled_16s32f_D2(const int16_t* x, const int16_t* means, int32_t count, int32_t stride,
                                                              int32_t width, const float* vals, float* result, int32_t scaleFactor);
/** Log likelihood of a mixture: 16-bit to float, identity variance, row pointers. @see @ref gaussian_mixture */
QORSR_API QorStatus qorsLogGaussMixture_IdVarScaled_16s32f_D2L(const int16_t* x, const int16_t* const* meanRows, int32_t count,
                                                               int32_t width, const float* vals, float* result,
                                                               int32_t scaleFactor);
/** Log likelihood of a mixture: 16-bit to float, identity variance, integers. @see @ref gaussian_mixture */
QORSR_API QorStatus qorsLogGaussMixture_IdVarLowScaled_16s32f_D2(const int16_t* x, const int16_t* means, int32_t count,
                                                                 int32_t stride, int32_t width, const float* vals, float* result,
                                                                 int32_t scaleFactor);
/** Log likelihood of a mixture: 16-bit to float, identity variance, integers, row pointers. @see @ref gaussian_mixture */
QORSR_API QorStatus qorsLogGaussMixture_IdVarLowScaled_16s32f_D2L(const int16_t* x, const int16_t* const* meanRows, int32_t count,
                                                                  int32_t width, const float* vals, float* result,
                                                                  int32_t scaleFactor);

/** Scores of frames by the Gaussians of a mask: float, inverse variances. @see @ref gaussian_mixture */
QORSR_API QorStatus qorsLogGaussMixture_Select_32f_D2(const float* frames, const float* means, const float* variances,
                                                      int32_t stride, int32_t width, const float* vals, const uint8_t* mask,
                                                      int32_t count, float* results, int32_t frameCount, float floor);
/** Scores of frames by the Gaussians of a mask: float, inverse variances, row pointers. @see @ref gaussian_mixture */
QORSR_API QorStatus qorsLogGaussMixture_Select_32f_D2L(const float* const* frameRows, const float* const* meanRows,
                                                       const float* const* varianceRows, int32_t width, const float* vals,
                                                       const uint8_t* mask, int32_t count, float* results, int32_t frameCount,
                                                       float floor);
/** Scores of frames by the Gaussians of a mask: 16-bit to float, inverse variances. @see @ref gaussian_mixture */
QORSR_API QorStatus qorsLogGaussMixture_SelectScaled_16s32f_D2(const int16_t* frames, const int16_t* means,
                                                               const int16_t* variances, int32_t stride, int32_t width,
                                                               const float* vals, const uint8_t* mask, int32_t count,
                                                               float* results, int32_t frameCount, float floor,
                                                               int32_t scaleFactor);
/** Scores of frames by the Gaussians of a mask: 16-bit to float, inverse variances, row pointers. @see @ref gaussian_mixture */
QORSR_API QorStatus qorsLogGaussMixture_SelectScaled_16s32f_D2L(const int16_t* const* frameRows, const int16_t* const* meanRows,
                                                                const int16_t* const* varianceRows, int32_t width,
                                                                const float* vals, const uint8_t* mask, int32_t count,
                                                                float* results, int32_t frameCount, float floor,
                                                                int32_t scaleFactor);
/** Scores of frames by the Gaussians of a mask: float, identity variance. @see @ref gaussian_mixture */
QORSR_API QorStatus qorsLogGaussMixture_SelectIdVar_32f_D2(const float* frames, const float* means, int32_t stride, int32_t width,
                                                           const float* vals, const uint8_t* mask, int32_t count, float* results,
                                                           int32_t frameCount, float floor);
/** Scores of frames by the Gaussians of a mask: float, identity variance, row pointers. @see @ref gaussian_mixture */
QORSR_API QorStatus qorsLogGaussMixture_SelectIdVar_32f_D2L(const float* const* frameRows, const float* const* meanRows,
                                                            int32_t width, const float* vals, const uint8_t* mask, int32_t count,
                                                            float* results, int32_t frameCount, float floor);
/** Scores of frames by the Gaussians of a mask: 16-bit to float, identity variance. @see @ref gaussian_mixture */
QORSR_API QorStatus qorsLogGaussMixture_SelectIdVarScaled_16s32f_D2(const int16_t* frames, const int16_t* means, int32_t stride,
                                                                    int32_t width, const float* vals, const uint8_t* mask,
                                                                    int32_t count, float* results, int32_t frameCount, float floor,
                                                                    int32_t scaleFactor);
/** Scores of frames by the Gaussians of a mask: 16-bit to float, identity variance, row pointers. @see @ref gaussian_mixture */
QORSR_API QorStatus qorsLogGaussMixture_SelectIdVarScaled_16s32f_D2L(const int16_t* const* frameRows,
                                                                     const int16_t* const* meanRows, int32_t width,
                                                                     const float* vals, const uint8_t* mask, int32_t count,
                                                                     float* results, int32_t frameCount, float floor,
                                                                     int32_t scaleFactor);
/** @} */

/** @defgroup gaussian_multi_mixture Gaussian scores: many Gaussians
 *  One feature vector x against many Gaussians, each with a slot of its own: a frame against the states of a whole model. s(g) is
 *  the score of Gaussian g with the words, scales, sums and errors of @ref gaussian_single, vals[g] its constant.
 *
 *  - `LogGaussMultiMix`: the vector that holds the vals receives the scores.
 *  - `LogGaussMaxMultiMix`: result[g] = the larger of s(g) and result[g]; a NaN score replaces nothing.
 *  - `LogGaussAddMultiMix`: result[g] = log(exp(result[g]) + exp(s(g))), by @ref log_arithmetic.
 *  - `MahDistMultiMix`: result[g] = Q.
 *
 *  | Parameter | Use | Elements, or values | |
 *  |---|---|---|---|
 *  | `means`, `variances` | in | count x width, stride apart | one stride for both; variances inverted |
 *  | `meanRows`, `varianceRows` | in | count x width | row pointers |
 *  | `x` | in | width | |
 *  | `vals` | in | count | not scaled |
 *  | `valsAndResult` | in, out | count | |
 *  | `result` of `MahDistMultiMix_*` | out | count | |
 *  | `result` | in, out | count | |
 *  | `width`, `count` | value | at least 1 | |
 *  | `stride` | value | at least width | |
 *  | `scaleFactor` | value | any | sf = 2 f + g - q |
 *
 *  | Status, in order | When |
 *  |---|---|
 *  | #qorStatusBadStride | stride below width (`_D2`) |
 *  | #qorStatusNullPointer | a pointer is null; row pointers are not checked |
 *  | #qorStatusBadSize | width or count below 1 |
 *
 *  @warning `LogGaussMultiMix` overwrites the constants: keep a copy of them for the next frame.
 *
 *  @warning `LogGaussMaxMultiMix` and `LogGaussAddMultiMix` read `result`: fill it first, the latter with a finite log zero (@ref
 *  log_arithmetic).
 *
 *  **Exact arithmetic**
 *  - Float and double: val - Q * 0.5. `LogGaussAddMultiMix` adds as qorsLogAdd_32f() with hint 0, or qorsLogAdd_64f().
 *  - `16s32s` scores are truncated toward zero and not limited, as in qorsLogGauss_16s32s_D2Sfs(). `LogGaussMaxMultiMix` with
 *    32-bit results rounds every step toward zero; `16s32s` compares as qorsLogGaussMax_16s32s_D2Sfs() does, through floats
 *    (required), but `Low_16s32s` compares integers, so an old result that wins is kept exactly.
 *
 *  Source of the method: as in @ref gaussian_single. @{ */

/** Vals become log likelihoods: 16 to 32 bits, inverse variances. @see @ref gaussian_multi_mixture */
QORSR_API QorStatus qorsLogGaussMultiMix_16s32s_D2Sfs(const int16_t* means, const int16_t* variances, int32_t stride,
                                                      const int16_t* x, int32_t width, int32_t* valsAndResult, int32_t count,
                                                      int32_t scaleFactor);
/** Vals become log likelihoods: 16 to 32 bits, inverse variances, row pointers. @see @ref gaussian_multi_mixture */
QORSR_API QorStatus qorsLogGaussMultiMix_16s32s_D2LSfs(const int16_t* const* meanRows, const int16_t* const* varianceRows,
                                                       const int16_t* x, int32_t width, int32_t* valsAndResult, int32_t count,
                                                       int32_t scaleFactor);
/** Vals become log likelihoods: float, inverse variances. @see @ref gaussian_multi_mixture */
QORSR_API QorStatus qorsLogGaussMultiMix_32f_D2(const float* means, const float* variances, int32_t stride, const float* x,
                                                int32_t width, float* valsAndResult, int32_t count);
/** Vals become log likelihoods: float, inverse variances, row pointers. @see @ref gaussian_multi_mixture */
QORSR_API QorStatus qorsLogGaussMultiMix_32f_D2L(const float* const* meanRows, const float* const* varianceRows, const float* x,
                                                 int32_t width, float* valsAndResult, int32_t count);
/** Vals become log likelihoods: double, inverse variances. @see @ref gaussian_multi_mixture */
QORSR_API QorStatus qorsLogGaussMultiMix_64f_D2(const double* means, const double* variances, int32_t stride, const double* x,
                                                int32_t width, double* valsAndResult, int32_t count);
/** Vals become log likelihoods: double, inverse variances, row pointers. @see @ref gaussian_multi_mixture */
QORSR_API QorStatus qorsLogGaussMultiMix_64f_D2L(const double* const* meanRows, const double* const* varianceRows, const double* x,
                                                 int32_t width, double* valsAndResult, int32_t count);
/** Vals become log likelihoods: 16 to 32 bits, inverse variances, integers. @see @ref gaussian_multi_mixture */
QORSR_API QorStatus qorsLogGaussMultiMix_Low_16s32s_D2Sfs(const int16_t* means, const int16_t* variances, int32_t stride,
                                                          const int16_t* x, int32_t width, int32_t* valsAndResult, int32_t count,
                                                          int32_t scaleFactor);
/** Vals become log likelihoods: 16 to 32 bits, inverse variances, integers, row pointers. @see @ref gaussian_multi_mixture */
QORSR_API QorStatus qorsLogGaussMultiMix_Low_16s32s_D2LSfs(const int16_t* const* meanRows, const int16_t* const* varianceRows,
                                                           const int16_t* x, int32_t width, int32_t* valsAndResult, int32_t count,
                                                           int32_t scaleFactor);
/** Vals become log likelihoods: 16-bit to float, inverse variances, integers. @see @ref gaussian_multi_mixture */
QORSR_API QorStatus qorsLogGaussMultiMix_LowScaled_16s32f_D2(const int16_t* means, const int16_t* variances, int32_t stride,
                                                             const int16_t* x, int32_t width, float* valsAndResult, int32_t count,
                                                             int32_t scaleFactor);
/** Vals become log likelihoods: 16-bit to float, inverse variances, integers, row pointers. @see @ref gaussian_multi_mixture */
QORSR_API QorStatus qorsLogGaussMultiMix_LowScaled_16s32f_D2L(const int16_t* const* meanRows, const int16_t* const* varianceRows,
                                                              const int16_t* x, int32_t width, float* valsAndResult, int32_t count,
                                                              int32_t scaleFactor);
/** Vals become log likelihoods: 16-bit to float, inverse variances. @see @ref gaussian_multi_mixture */
QORSR_API QorStatus qorsLogGaussMultiMix_Scaled_16s32f_D2(const int16_t* means, const int16_t* variances, int32_t stride,
                                                          const int16_t* x, int32_t width, float* valsAndResult, int32_t count,
                                                          int32_t scaleFactor);
/** Vals become log likelihoods: 16-bit to float, inverse variances, row pointers. @see @ref gaussian_multi_mixture */
QORSR_API QorStatus qorsLogGaussMultiMix_Scaled_16s32f_D2L(const int16_t* const* meanRows, const int16_t* const* varianceRows,
                                                           const int16_t* x, int32_t width, float* valsAndResult, int32_t count,
                                                           int32_t scaleFactor);

/** result = max(result, score): 16 to 32 bits, inverse variances. @see @ref gaussian_multi_mixture */
QORSR_API QorStatus qorsLogGaussMaxMultiMix_16s32s_D2Sfs(const int16_t* means, const int16_t* variances, int32_t stride,
                                                         const int16_t* x, int32_t width, const int32_t* vals, int32_t* result,
                                                         int32_t count, int32_t scaleFactor);
/** result = max(result, score): 16 to 32 bits, inverse variances, row pointers. @see @ref gaussian_multi_mixture */
QORSR_API QorStatus qorsLogGaussMaxMultiMix_16s32s_D2LSfs(const int16_t* const* meanRows, const int16_t* const* varianceRows,
                                                          const int16_t* x, int32_t width, const int32_t* vals, int32_t* result,
                                                          int32_t count, int32_t scaleFactor);
/** result = max(result, score): float, inverse variances. @see @ref gaussian_multi_mixture */
QORSR_API QorStatus qorsLogGaussMaxMultiMix_32f_D2(const float* means, const float* variances, int32_t stride, const float* x,
                                                   int32_t width, const float* vals, float* result, int32_t count);
/** result = max(result, score): float, inverse variances, row pointers. @see @ref gaussian_multi_mixture */
QORSR_API QorStatus qorsLogGaussMaxMultiMix_32f_D2L(const float* const* meanRows, const float* const* varianceRows, const float* x,
                                                    int32_t width, const float* vals, float* result, int32_t count);
/** result = max(result, score): double, inverse variances. @see @ref gaussian_multi_mixture */
QORSR_API QorStatus qorsLogGaussMaxMultiMix_64f_D2(const double* means, const double* variances, int32_t stride, const double* x,
                                                   int32_t width, const double* vals, double* result, int32_t count);
/** result = max(result, score): double, inverse variances, row pointers. @see @ref gaussian_multi_mixture */
QORSR_API QorStatus qorsLogGaussMaxMultiMix_64f_D2L(const double* const* meanRows, const double* const* varianceRows,
                                                    const double* x, int32_t width, const double* vals, double* result,
                                                    int32_t count);
/** result = max(result, score): 16 to 32 bits, inverse variances, integers. @see @ref gaussian_multi_mixture */
QORSR_API QorStatus qorsLogGaussMaxMultiMix_Low_16s32s_D2Sfs(const int16_t* means, const int16_t* variances, int32_t stride,
                                                             const int16_t* x, int32_t width, const int32_t* vals, int32_t* result,
                                                             int32_t count, int32_t scaleFactor);
/** result = max(result, score): 16 to 32 bits, inverse variances, integers, row pointers. @see @ref gaussian_multi_mixture */
QORSR_API QorStatus qorsLogGaussMaxMultiMix_Low_16s32s_D2LSfs(const int16_t* const* meanRows, const int16_t* const* varianceRows,
                                                              const int16_t* x, int32_t width, const int32_t* vals, int32_t* result,
                                                              int32_t count, int32_t scaleFactor);
/** result = max(result, score): 16-bit to float, inverse variances, integers. @see @ref gaussian_multi_mixture */
QORSR_API QorStatus qorsLogGaussMaxMultiMix_LowScaled_16s32f_D2(const int16_t* means, const int16_t* variances, int32_t stride,
                                                                const int16_t* x, int32_t width, const float* vals, float* result,
                                                                int32_t count, int32_t scaleFactor);
/** result = max(result, score): 16-bit to float, inverse variances, integers, row pointers. @see @ref gaussian_multi_mixture */
QORSR_API QorStatus qorsLogGaussMaxMultiMix_LowScaled_16s32f_D2L(const int16_t* const* meanRows, const int16_t* const* varianceRows,
                                                                 const int16_t* x, int32_t width, const float* vals, float* result,
                                                                 int32_t count, int32_t scaleFactor);
/** result = max(result, score): 16-bit to float, inverse variances. @see @ref gaussian_multi_mixture */
QORSR_API QorStatus qorsLogGaussMaxMultiMix_Scaled_16s32f_D2(const int16_t* means, const int16_t* variances, int32_t stride,
                                                             const int16_t* x, int32_t width, const float* vals, float* result,
                                                             int32_t count, int32_t scaleFactor);
/** result = max(result, score): 16-bit to float, inverse variances, row pointers. @see @ref gaussian_multi_mixture */
QORSR_API QorStatus qorsLogGaussMaxMultiMix_Scaled_16s32f_D2L(const int16_t* const* meanRows, const int16_t* const* varianceRows,
                                                              const int16_t* x, int32_t width, const float* vals, float* result,
                                                              int32_t count, int32_t scaleFactor);

/** Log-adds scores to result: float, inverse variances. @see @ref gaussian_multi_mixture */
QORSR_API QorStatus qorsLogGaussAddMultiMix_32f_D2(const float* means, const float* variances, int32_t stride, const float* x,
                                                   int32_t width, const float* vals, float* result, int32_t count);
/** Log-adds scores to result: float, inverse variances, row pointers. @see @ref gaussian_multi_mixture */
QORSR_API QorStatus qorsLogGaussAddMultiMix_32f_D2L(const float* const* meanRows, const float* const* varianceRows, const float* x,
                                                    int32_t width, const float* vals, float* result, int32_t count);
/** Log-adds scores to result: double, inverse variances. @see @ref gaussian_multi_mixture */
QORSR_API QorStatus qorsLogGaussAddMultiMix_64f_D2(const double* means, const double* variances, int32_t stride, const double* x,
                                                   int32_t width, const double* vals, double* result, int32_t count);
/** Log-adds scores to result: double, inverse variances, row pointers. @see @ref gaussian_multi_mixture */
QORSR_API QorStatus qorsLogGaussAddMultiMix_64f_D2L(const double* const* meanRows, const double* const* varianceRows,
                                                    const double* x, int32_t width, const double* vals, double* result,
                                                    int32_t count);
/** Log-adds scores to result: 16-bit to float, inverse variances, integers. @see @ref gaussian_multi_mixture */
QORSR_API QorStatus qorsLogGaussAddMultiMix_LowScaled_16s32f_D2(const int16_t* means, const int16_t* variances, int32_t stride,
                                                                const int16_t* x, int32_t width, const float* vals, float* result,
                                                                int32_t count, int32_t scaleFactor);
/** Log-adds scores to result: 16-bit to float, inverse variances, integers, row pointers. @see @ref gaussian_multi_mixture */
QORSR_API QorStatus qorsLogGaussAddMultiMix_LowScaled_16s32f_D2L(const int16_t* const* meanRows, const int16_t* const* varianceRows,
                                                                 const int16_t* x, int32_t width, const float* vals, float* result,
                                                                 int32_t count, int32_t scaleFactor);
/** Log-adds scores to result: 16-bit to float, inverse variances. @see @ref gaussian_multi_mixture */
QORSR_API QorStatus qorsLogGaussAddMultiMix_Scaled_16s32f_D2(const int16_t* means, const int16_t* variances, int32_t stride,
                                                             const int16_t* x, int32_t width, const float* vals, float* result,
                                                             int32_t count, int32_t scaleFactor);
/** Log-adds scores to result: 16-bit to float, inverse variances, row pointers. @see @ref gaussian_multi_mixture */
QORSR_API QorStatus qorsLogGaussAddMultiMix_Scaled_16s32f_D2L(const int16_t* const* meanRows, const int16_t* const* varianceRows,
                                                              const int16_t* x, int32_t width, const float* vals, float* result,
                                                              int32_t count, int32_t scaleFactor);

/** Squared Mahalanobis distances from many Gaussians: float, inverse variances. @see @ref gaussian_multi_mixture */
QORSR_API QorStatus qorsMahDistMultiMix_32f_D2(const float* means, const float* variances, int32_t stride, const float* x,
                                               int32_t width, float* result, int32_t count);
/** Squared Mahalanobis distances from many Gaussians: float, inverse variances, row pointers. @see @ref gaussian_multi_mixture */
QORSR_API QorStatus qorsMahDistMultiMix_32f_D2L(const float* const* meanRows, const float* const* varianceRows, const float* x,
                                                int32_t width, float* result, int32_t count);
/** Squared Mahalanobis distances from many Gaussians: double, inverse variances. @see @ref gaussian_multi_mixture */
QORSR_API QorStatus qorsMahDistMultiMix_64f_D2(const double* means, const double* variances, int32_t stride, const double* x,
                                               int32_t width, double* result, int32_t count);
/** Squared Mahalanobis distances from many Gaussians: double, inverse variances, row pointers. @see @ref gaussian_multi_mixture */
QORSR_API QorStatus qorsMahDistMultiMix_64f_D2L(const double* const* meanRows, const double* const* varianceRows, const double* x,
                                                int32_t width, double* result, int32_t count);
/** @} */

/* ================================ Feature extraction ================================ */

/** @defgroup filter_bank Filter banks
 *  Overlapping triangular filters over the bins of a spectrum: one output a filter. A bank has n = filterCount filters and n + 2
 *  centres c[0] to c[n+1], bin numbers. Filter k, from 1 to n, rises from c[k-1] to c[k] and falls to c[k+1]:
 *
 *      y[k-1] = sum for j = c[k-1] .. c[k] of rising_k[j - c[k-1]] x[j]
 *             + sum for j = c[k]+1 .. c[k+1] of falling_k[j - c[k] - 1] x[j]
 *
 *  `length`, the transform's length as requested, is taken up to a power of two L, at least 2 (500 gives 512); its base-2
 *  logarithm is written to `order`. Bins run from 0 to L/2.
 *
 *  **Banks.** qorsEmptyFBankInitAlloc_32f() makes a bank without centres, with zero weights; qorsMelFBankInitAlloc_32f() and its
 *  relatives (@ref mel_bank) make complete ones. A bank from `InitAlloc` ends with qorsFBankFree_32f(). A bank that `Init` built
 *  in the caller's block ends with that block.
 *
 *  **Transform front.** A bank made with #qorFBankTransform takes a frame of L samples in place of a spectrum, and its filters run
 *  over the magnitudes sqrt(re^2 + im^2) of bins 0 to L/2 of the frame's unnormalised discrete Fourier transform.
 *
 *  **Weights** are floats in `FBankState_32f`; 32-bit integers with 14 fraction bits (1.0 is 16384) in `FBankState_16s`; with 30
 *  fraction bits in `FBankState_32s`. Outputs have the scale of the spectrum, times 2^-scaleFactor.
 *
 *  | Parameter | Use | Elements, or values | |
 *  |---|---|---|---|
 *  | `state` of `EmptyFBankInitAlloc_*` | makes | |  |
 *  | `state` of `FBankFree_*` | frees | |  |
 *  | `state` of `FBankGet*` | in | |  |
 *  | `state` of `FBankSet*` | in, out | |  |
 *  | `state` of `EvalFBank_*` | in, out | | changed by a transform front alone, which works in it |
 *  | `state` of `EvalFBank_32s_*` | in | |  |
 *  | `order` | out | 1 | of the transform: log2 L |
 *  | `length`, `filterCount` | value | at least 1 | |
 *  | `flags`, `scaleFactor` | value | any | |
 *  | `scaleFactor` of `EvalFBank_32s_*` | value | -31 to 31 | |
 *  | `centers` of `FBankGetCenters_*` | out | state.filterCount + 2 | bins |
 *  | `centers` of `FBankSetCenters_*` | in | state.filterCount + 2; each 0 to state.bins - 1 | bins, in rising order |
 *  | `weights` of `FBankGetCoeffs_*` | in, out | state.bins | as many as lie within the filter's edges |
 *  | `weights` of `FBankSetCoeffs_*` | in | state.bins | |
 *  | `filter` of `FBankGetCoeffs_*` | value | 1 to state.filterCount + 1 | |
 *  | `filter` of `FBankSetCoeffs_*` | value | 1 to state.filterCount | |
 *  | `source` | in | state.inputs | L / 2 + 1 bins, or L samples |
 *  | `result` | out | state.filterCount | |
 *  | `bins`, `inputs` of `EmptyFBankInitAlloc_*` | is | max(pow2(length), 2) / 2 + 1 | L / 2 + 1 |
 *
 *  **Error** of the transform front in float: no magnitude is off by more than 2.7e-7 of the frame's largest one (L up to 16384;
 *  noise, tones and an impulse). To these come the roundings of the filters' products and sums.
 *
 *  @warning An evaluation with a transform front writes work memory inside the bank, so such a bank serves one thread at a time;
 *  all other evaluations and `Get` functions only read it.
 *
 *  @warning A bank in the caller's block must not be moved or copied, and is never passed to `Free`.
 *
 *  @warning An empty bank always evaluates spectra, whatever its flags.
 *
 *  **Exact arithmetic**
 *  - Bins outside 0 to L/2 do not exist: sections are cut there, and an empty section adds nothing.
 *  - Float evaluation, with eight lanes a filter: a section's bins go to lanes 0 to 7 in blocks of eight, and the bins that remain
 *    to lane 0; the first bin of a rising section (filter 1 apart) goes to lane 0 ahead of the blocks. The sum is ((l0 + l4) +
 *    (l2 + l6)) + ((l1 + l5) + (l3 + l7)).
 *  - 16-bit evaluation is exact: the sum of the products in 64 bits is shifted right (arithmetically, without rounding) by
 *    scaleFactor + 14, or left when that is negative, and saturated. With a transform front, the transform runs in float; its
 *    values are rounded to integers with three fraction bits, the magnitudes of those again to integers with three more (to
 *    nearest, at most 2^31 - 1), the shift grows by these 6, and required: of each product of magnitude and weight the low 32 bits
 *    are added, as a signed number.
 *  - 32-bit evaluation: each product loses its 8 low bits (arithmetic shift), the 64-bit sum v becomes v * 2^-scaleFactor (right:
 *    arithmetic shift; left: limited above to 2^63 - 1), and then (v >> 22) plus bit 21 of v. The result is limited to 2^31 - 1;
 *    required: below, its low 32 bits are stored as they are.
 *
 *  Source of the method: Davis and Mermelstein, "Comparison of parametric representations for monosyllabic word recognition in
 *  continuously spoken sentences", IEEE Transactions on Acoustics, Speech, and Signal Processing 28 (1980). @{ */

/** A bank with float weights. */
typedef struct FBankState_32f FBankState_32f;
/** A bank with weights of 14 fraction bits, for 16-bit spectra or frames. */
typedef struct FBankState_16s FBankState_16s;
/** A bank with weights of 30 fraction bits, for 32-bit spectra; made by qorsMelFBankInit_32s(). */
typedef struct FBankState_32s FBankState_32s;

/** Flags of a filter bank: one of the first two, and the third in addition (banks of floats or 16 bits). */
enum {
  qorFBankMelShaped = 1,   /**< Weights follow the mel scale; centres are truncated to bins. */
  qorFBankIndexShaped = 2, /**< Weights follow the bin numbers; centres are rounded to bins. */
  qorFBankTransform = 4    /**< The bank evaluates frames of samples: a Fourier transform stands in front. */
};

/** An empty bank, to be given centres and then weights. It always evaluates spectra: bit value 4 of `flags` only makes the memory
 *  of a transform, and other bits are ignored. Statuses: length or filterCount below 1 (#qorStatusBadSize); null;
 *  #qorStatusNoMemory (the order is written). @see @ref filter_bank */
QORSR_API QorStatus qorsEmptyFBankInitAlloc_32f(FBankState_32f** state, int32_t* order, int32_t length, int32_t filterCount,
                                                int32_t flags);
/** As qorsEmptyFBankInitAlloc_32f(), for 16-bit data. @see @ref filter_bank */
QORSR_API QorStatus qorsEmptyFBankInitAlloc_16s(FBankState_16s** state, int32_t* order, int32_t length, int32_t filterCount,
                                                int32_t flags);

/** Releases a bank from `InitAlloc`. Status: null. @see @ref filter_bank */
QORSR_API QorStatus qorsFBankFree_32f(FBankState_32f* state);
/** As qorsFBankFree_32f(), for 16-bit data. @see @ref filter_bank */
QORSR_API QorStatus qorsFBankFree_16s(FBankState_16s* state);

/** centers = the filterCount + 2 centres. The two names are one function.
 *  Statuses: null; #qorStatusFBankNotReady without centres, or where a constructor made centres that qorsFBankSetCenters_32f()
 *  would refuse. @see @ref filter_bank */
QORSR_API QorStatus qorsFBankGetCenters_32f(const FBankState_32f* state, int32_t* centers);
/** As qorsFBankGetCenters_32f(), for 16-bit data. @see @ref filter_bank */
QORSR_API QorStatus qorsFBankGetCenters_16s(const FBankState_16s* state, int32_t* centers);

/** Sets the filterCount + 2 centres and makes the bank ready. Weights stay as they are, by their place in the section. The two
 *  names are one function. Statuses: null; #qorStatusFBankNotReady, with the bank unchanged, when centers[0] is negative, when for
 *  some i from 1 to filterCount - 1 centers[i] is below centers[i-1] or above centers[i+1], or when the last one exceeds L/2. Equal
 *  neighbours are accepted; required: the last two entries are not compared with each other. @see @ref filter_bank */
QORSR_API QorStatus qorsFBankSetCenters_32f(FBankState_32f* state, const int32_t* centers);
/** As qorsFBankSetCenters_32f(), for 16-bit data. @see @ref filter_bank */
QORSR_API QorStatus qorsFBankSetCenters_16s(FBankState_16s* state, const int32_t* centers);

/** weights = those of filter number `filter` (from 1), bin by bin from c[filter-1] to c[filter+1]: the rising section, then the
 *  falling one. Integer weights are multiplied by 2^-14. required: filterCount + 1 is accepted too; that row has no falling
 *  section. Statuses: null; #qorStatusFBankNotReady; filter outside 1 to filterCount + 1 (#qorStatusBadSize).
 *  @see @ref filter_bank */
QORSR_API QorStatus qorsFBankGetCoeffs_32f(const FBankState_32f* state, int32_t filter, float* weights);
/** As qorsFBankGetCoeffs_32f(), for 16-bit data. @see @ref filter_bank */
QORSR_API QorStatus qorsFBankGetCoeffs_16s(const FBankState_16s* state, int32_t filter, float* weights);

/** Sets the weights of a filter, in the order of qorsFBankGetCoeffs_32f(). Integer weights: value * 16384 in float, truncated;
 *  below -2^31 limited to it; required: what reaches 2^31 (or is NaN) is stored as -2^31. Statuses: null; #qorStatusFBankNotReady;
 *  filter outside 1 to filterCount (#qorStatusBadSize). @see @ref filter_bank */
QORSR_API QorStatus qorsFBankSetCoeffs_32f(FBankState_32f* state, int32_t filter, const float* weights);
/** As qorsFBankSetCoeffs_32f(), for 16-bit data. @see @ref filter_bank */
QORSR_API QorStatus qorsFBankSetCoeffs_16s(FBankState_16s* state, int32_t filter, const float* weights);

/** result[k-1] = y[k-1], k = 1 to filterCount; a transform front writes the bank. Statuses: null; #qorStatusFBankNotReady.
 *  @see @ref filter_bank */
QORSR_API QorStatus qorsEvalFBank_32f(const float* source, float* result, const FBankState_32f* state);

/** As qorsEvalFBank_32f(), in exact integers, times 2^-scaleFactor. A transform front writes the bank.
 *  Statuses: null; #qorStatusFBankNotReady. @see @ref filter_bank */
QORSR_API QorStatus qorsEvalFBank_16s_Sfs(const int16_t* source, int16_t* result, const FBankState_16s* state, int32_t scaleFactor);
/** As qorsEvalFBank_16s_Sfs(), with 32-bit results. A transform front writes the bank. @see @ref filter_bank */
QORSR_API QorStatus qorsEvalFBank_16s32s_Sfs(const int16_t* source, int32_t* result, const FBankState_16s* state,
                                             int32_t scaleFactor);

/** As qorsEvalFBank_32f(), in integers, times 2^-scaleFactor.
 *  Statuses: null; scaleFactor outside -31 to 31 (#qorStatusBadArgument). @see @ref filter_bank */
QORSR_API QorStatus qorsEvalFBank_32s_Sfs(const int32_t* source, int32_t* result, const FBankState_32s* state, int32_t scaleFactor);
/** @} */

/** @defgroup mel_bank Mel filter banks
 *  Construction of filter banks (@ref filter_bank) on the mel scale, or on a linear scale that a mel scale continues.
 *
 *      mel(f) = melMul ln(1 + f / melDiv)        f = melDiv (exp(m / melMul) - 1)
 *
 *  The caller chooses the constants; 1127.01048 and 700 are usual. n is filterCount, L the power of two that holds `length`,
 *  frequencies are in hertz.
 *
 *  **Mel banks.** n + 2 centres equally far apart in mel: m[i] = mel(low) + i (mel(high) - mel(low)) / (n + 1), i = 0 to n + 1;
 *  the centre is bin (L / sampleFrequency) melDiv (exp(m[i] / melMul) - 1).
 *
 *  **Mixed banks** (`MelLin`). The first T = linearFilterCount filters are spaced linearly, f[i] = low + i (join - low) / T for i
 *  = 0 to T; from the join on, centres i = T to n + 1 are equally far apart in mel up to the high frequency. With T = n all is
 *  linear, f[i] = low + i (join - low) / (n + 1), and the high frequency is tested but not used.
 *
 *  **Flags.** One of the first two, and #qorFBankTransform in addition (banks of floats or 16 bits):
 *  - #qorFBankMelShaped: centres are truncated to bins; a weight is the distance in mel of the bin's frequency from the filter's
 *    edge, over the width of the section in mel. The first weight of a mel bank's rising section is 0.
 *  - #qorFBankIndexShaped: centres are rounded to nearest, ties to even; rising weights are (j - c[k-1] + 1) / (c[k] - c[k-1] +
 *    1), falling ones (c[k+1] + 1 - j) / (c[k+1] - c[k] + 1): 1 at the centre, one step above zero at the ends.
 *
 *  Mel-shaped mixed banks have mel-shaped filters up to T and index-shaped ones beyond. Weights are not normalised by area.
 *
 *  | Parameter | Use | Elements, or values | |
 *  |---|---|---|---|
 *  | `state` of `*InitAlloc_*` | makes | |  |
 *  | `state` of `MelFBankInit_*` | block | bytes of `MelFBankGetSize_*` | |
 *  | `size` | out | 1 | bytes |
 *  | `order` | out | 1 | of the transform: log2 L |
 *  | `length` | value | at least 1 | samples |
 *  | `length` of `*_32s` | value | 32 to 8192 | |
 *  | `filterCount` | value | at least 1 | |
 *  | `filterCount` of `MelFBankGetSize_32s` | value | 1 to pow2(length) / 2 | |
 *  | `filterCount` of `MelFBankInit_32s` | value | 1 to pow2(length) / 2 + 1 | |
 *  | `flags` | value | 1, 2, 5 or 6 | |
 *  | `flags` of `*_32s` | value | 2 | |
 *  | `sampleFrequency` | value | above 0 | hertz |
 *  | `lowFrequency` | value | above 0, at most sampleFrequency / 2 | hertz |
 *  | `highFrequency` | value | lowFrequency to sampleFrequency / 2 | hertz |
 *  | `joinFrequency` | value | lowFrequency to highFrequency | hertz |
 *  | `linearFilterCount` | value | 1 to filterCount | |
 *  | `melMul`, `melDiv` | value | any | |
 *  | `sampleFrequency` of `*_32s` | value | 1 to 48000 | hertz |
 *  | `lowFrequency` of `*_32s` | value | 0 to 23999 | hertz |
 *  | `highFrequency` of `*_32s` | value | above lowFrequency, at most 24000 | hertz |
 *  | `melMul` of `*_32s` | value | 524289 to 1073741823 | 15 fraction bits |
 *  | `melDiv` of `*_32s` | value | 524289 to 268435455 | 15 fraction bits |
 *  | `melMul`, `melDiv` of `LinearToMel_*`, `MelToLinear_*` | value | above 0 | |
 *  | `source` | in | length | |
 *  | `result` | out | length | |
 *  | `bins` of `Mel*FBankInit*` | is | max(pow2(length), 2) / 2 + 1 | L / 2 + 1 |
 *  | `inputs` of `Mel*FBankInit*` | is | if(flags & 4, max(pow2(length), 2), max(pow2(length), 2) / 2 + 1) | |
 *
 *  | Status of `qorsMelFBankInit` and `qorsMelFBankInitAlloc`, in order | When |
 *  |---|---|
 *  | #qorStatusNullPointer | state or order is null |
 *  | #qorStatusBadSize | length or filterCount below 1, sample or low frequency not above 0 |
 *  | #qorStatusBadFBankFrequency | high below low, half the sample frequency below high |
 *  | #qorStatusBadFBankFlag | flags |
 *  | #qorStatusNoMemory | `InitAlloc`, with the order written |
 *  | #qorStatusBadSize | `Init`: a block beyond 2^31 - 1 bytes |
 *
 *  The others stand with their functions. A NaN passes every test.
 *
 *  @warning With many filters at low frequencies, neighbouring centres fall on one bin, and such filters are empty or hold a
 *  single bin: look at qorsFBankGetCenters_32f(), and take a longer transform.
 *
 *  **Exact arithmetic**
 *  - All is computed in double; m[i] and the position are rounded to float; Q14 weights are
 *    truncated. Negative weights become 0.
 *  - required: with #qorFBankMelShaped, the falling side of filter T of a mixed bank compares mel values with bin numbers,
 *    (c[T+1] - mel(j)) / (c[T+1] - c[T]).
 *  - qorsMelFBankInit_32s(): no floating-point arithmetic takes place. Mel values have 22 fraction bits; logarithms and
 *    exponentials are taken by shifts and multiplications (Muller, "Elementary Functions"), and centres are rounded half up.
 *
 *  Source of the method: Stevens, Volkmann and Newman, "A scale for the measurement of the psychological magnitude pitch", Journal
 *  of the Acoustical Society of America 8 (1937); Davis and Mermelstein (1980) for the bank. @{ */

/** size = bytes of the caller's block for `Init` with the same length, filterCount and flags. The block may begin at any address
 *  that the element type allows. Statuses: null; length or filterCount below 1 (#qorStatusBadSize); flags (#qorStatusBadFBankFlag);
 *  a block beyond 2^31 - 1 bytes
 *  (#qorStatusBadSize). @see @ref mel_bank */
QORSR_API QorStatus qorsMelFBankGetSize_32f(int32_t length, int32_t filterCount, int32_t flags, int32_t* size);
/** As qorsMelFBankGetSize_32f(), for 16-bit data. @see @ref mel_bank */
QORSR_API QorStatus qorsMelFBankGetSize_16s(int32_t length, int32_t filterCount, int32_t flags, int32_t* size);

/** A mel bank in the caller's block. @see @ref mel_bank */
QORSR_API QorStatus qorsMelFBankInit_32f(FBankState_32f* state, int32_t* order, int32_t length, float sampleFrequency,
                                         float lowFrequency, float highFrequency, int32_t filterCount, float melMul, float melDiv,
                                         int32_t flags);
/** As qorsMelFBankInit_32f(), for 16-bit data. @see @ref mel_bank */
QORSR_API QorStatus qorsMelFBankInit_16s(FBankState_16s* state, int32_t* order, int32_t length, float sampleFrequency,
                                         float lowFrequency, float highFrequency, int32_t filterCount, float melMul, float melDiv,
                                         int32_t flags);

/** A mel bank in memory of its own. @see @ref mel_bank */
QORSR_API QorStatus qorsMelFBankInitAlloc_32f(FBankState_32f** state, int32_t* order, int32_t length, float sampleFrequency,
                                              float lowFrequency, float highFrequency, int32_t filterCount, float melMul,
                                              float melDiv, int32_t flags);
/** As qorsMelFBankInitAlloc_32f(), for 16-bit data. @see @ref mel_bank */
QORSR_API QorStatus qorsMelFBankInitAlloc_16s(FBankState_16s** state, int32_t* order, int32_t length, float sampleFrequency,
                                              float lowFrequency, float highFrequency, int32_t filterCount, float melMul,
                                              float melDiv, int32_t flags);

/** A mixed bank in memory of its own.
 *  Statuses: length or filterCount below 1, sample or low frequency not above 0, linearFilterCount outside 1 to filterCount
 *  (#qorStatusBadSize); join below low, high below join, half the sample frequency below high (#qorStatusBadFBankFrequency); flags
 *  (#qorStatusBadFBankFlag); null; #qorStatusNoMemory, with the order written. A NaN passes every test. @see @ref mel_bank */
QORSR_API QorStatus qorsMelLinFBankInitAlloc_32f(FBankState_32f** state, int32_t* order, int32_t length, float sampleFrequency,
                                                 float lowFrequency, float highFrequency, int32_t filterCount, float joinFrequency,
                                                 int32_t linearFilterCount, float melMul, float melDiv, int32_t flags);
/** As qorsMelLinFBankInitAlloc_32f(), for 16-bit data. @see @ref mel_bank */
QORSR_API QorStatus qorsMelLinFBankInitAlloc_16s(FBankState_16s** state, int32_t* order, int32_t length, float sampleFrequency,
                                                 float lowFrequency, float highFrequency, int32_t filterCount, float joinFrequency,
                                                 int32_t linearFilterCount, float melMul, float melDiv, int32_t flags);

/** size = bytes of the caller's block for qorsMelFBankInit_32s().
 *  Statuses: null; filterCount below 1, length outside 32 to 8192 (#qorStatusBadSize); flags not 2 (#qorStatusBadFBankFlag);
 *  filterCount above L/2 (#qorStatusBadSize). @see @ref mel_bank */
QORSR_API QorStatus qorsMelFBankGetSize_32s(int32_t length, int32_t filterCount, int32_t flags, int32_t* size);

/** An index-shaped mel bank in the caller's block, in fixed point: no floating-point arithmetic takes place. Frequencies are whole
 *  hertz, melMul and melDiv have 15 fraction bits, flags is 2. Mel values have 22 fraction bits; logarithms and exponentials are
 *  taken by shifts and multiplications (Muller, "Elementary Functions"), and centres are rounded half up.
 *
 *  Statuses: null; filterCount or highFrequency below 1, length outside 32 to 8192 (#qorStatusBadSize); flags not 2
 *  (#qorStatusBadFBankFlag); sampleFrequency outside 1 to 48000, lowFrequency below 0 (#qorStatusBadSize); highFrequency not above
 *  lowFrequency or above 24000 (#qorStatusBadFBankFrequency); melDiv outside 0x80001 to 0xFFFFFFF, melMul outside 0x80001 to
 *  0x3FFFFFFF
 *  (#qorStatusBadArgument); filterCount above L/2 + 1 (#qorStatusBadSize; one more than the size function accepts).
 *  @see @ref mel_bank */
QORSR_API QorStatus qorsMelFBankInit_32s(FBankState_32s* state, int32_t* order, int32_t length, int32_t sampleFrequency,
                                         int32_t lowFrequency, int32_t highFrequency, int32_t filterCount, int32_t melMul,
                                         int32_t melDiv, int32_t flags);

/** result[i] = melMul ln(1 + source[i] (1 / melDiv)): hertz to mel, in double, rounded to float.
 *  Statuses: null; length below 1, melMul or melDiv not above 0 (#qorStatusBadSize; a NaN passes). @see @ref mel_bank */
QORSR_API QorStatus qorsLinearToMel_32f(const float* source, float* result, int32_t length, float melMul, float melDiv);

/** result[i] = melDiv (exp(source[i] (1 / melMul)) - 1): mel to hertz. Statuses: as qorsLinearToMel_32f(). @see @ref mel_bank */
QORSR_API QorStatus qorsMelToLinear_32f(const float* source, float* result, int32_t length, float melMul, float melDiv);
/** @} */

/** @defgroup dct_lifter Cosine transform and lifter
 *  Liftered cepstral coefficients from the N log outputs x[0 .. N-1] of a filter bank, in one step. With M coefficients, M <= N:
 *
 *      dst[i - 1] = lifter[i] * sum over j = 0 .. N-1 of x[j] cos(pi i (j + 1/2) / N)      i = 1 .. M
 *      dst[M]     = lifter[0] * sum over j of x[j]                                         states of the C0 and MulC0 forms
 *
 *  This is the type-II cosine transform without a normalising factor: scale by sqrt(2/N) for the usual orthonormal one. Matrix and
 *  weights are computed when the state is made; a transform costs M + 1 products of length N. There are no flags.
 *
 *  **Weights.**
 *  - plain and `C0`: lifter[i] = (1 + L/2 sin(pi i / L)) * scale, the raised-sine lifter of length L (22 is usual). Orders above L
 *    follow the same sine. `C0`: order 0 has the weight `weight0` as it stands, not scaled.
 *  - `Mul`: lifter[i] = weights[i - 1]. `MulC0`: the same, and order 0 takes weights[M - 1], see the warning.
 *
 *  **States.** In a block of the caller, of the size that `GetSize` tells, at any address (`Init`; never given to `Free`), or
 *  allocated (`InitAlloc`; released by `Free`). A `32f` state is not changed by a transform and may serve several threads; a `16s`
 *  state holds scratch and serves one call at a time.
 *
 *  | Parameter | Use | Elements, or values | |
 *  |---|---|---|---|
 *  | `state` of `DCTLifterInitAlloc_*` | makes | |  |
 *  | `state` of `DCTLifterInit_*` | block | bytes of `DCTLifterGetSize_*` | |
 *  | `state` of `DCTLifterFree_*` | frees | |  |
 *  | `state` of `DCTLifter_32f` | in | |  |
 *  | `state` of `DCTLifter_*_Sfs` | in, out | |  |
 *  | `size` | out | 1 | bytes |
 *  | `cepstrumLength`, `lifterLength` | value | at least 1 | M, L |
 *  | `dctLength` | value | at least cepstrumLength | N |
 *  | `cepstrumLength` of `DCTLifterGetSize_MulC0_16s` | value | 1 to 8192 | |
 *  | `dctLength` of `DCTLifterGetSize_MulC0_16s` | value | cepstrumLength to 8192 | |
 *  | `weights` | in | cepstrumLength | |
 *  | `scale`, `weight0`, `scaleFactor` | value | any | |
 *  | `source` | in | state.dctLength | |
 *  | `destination` | out | state.outputs | M, or M + 1 |
 *  | `outputs` of `DCTLifterInit_*`, `DCTLifterInitAlloc_*` | is | cepstrumLength | M |
 *  | `outputs` of `DCTLifterInit_*C0_*`, `DCTLifterInitAlloc_*C0_*` | is | cepstrumLength + 1 | M + 1 |
 *
 *  **Error** of a coefficient, relative to |lifter[i]| times the sum of |x[j]|, the largest for N up to 64: 8e-8 for orders 1 to
 *  M, 3.3e-7 for order 0, which is summed serially. A weight of the sine is within 9e-8 of (1 + L/2) * scale.
 *
 *  | Members | Statuses, in order |
 *  |---|---|
 *  | `GetSize` | null; N or M below 1, N below M, (`MulC0_16s` only) N above 8192, or a size above 2147483647 (#qorStatusBadSize) |
 *  | `Init` | null (block, weights); N, M or L below 1, N below M, or a size above 2147483647 (#qorStatusBadSize) |
 *  | `InitAlloc` | the same, but #qorStatusNoMemory for the size and a failed allocation; `*state` is then as it was |
 *  | transforms, `Free` | null |
 *
 *  @warning The coefficient of order 0, where there is one, comes last.
 *
 *  @warning `MulC0`, required: one weight, weights[M - 1], serves order M and order 0. qorsDCTLifterInit_MulC0_16s() takes integer
 *  weights, qorsDCTLifterInitAlloc_MulC0_16s() float ones.
 *
 *  @warning A block must not be moved: its areas are aligned to its address.
 *
 *  **Exact arithmetic**
 *  - Float throughout. The sum of an order from 1 to M runs in eight lanes: x[j] joins lane j mod 8, the last N mod 8 inputs join
 *    lane 0 one by one, and the lanes are joined as ((l0 + l4) + (l2 + l6)) + ((l1 + l5) + (l3 + l7)). The sum of order 0 runs
 *    serially. The weight is applied to the finished sum.
 *  - The cosines are computed in double and stored as float. The sine lifter: 1 + L/2 sin(pi i / L) is formed in
 *    double, rounded to float, then multiplied by scale in float.
 *  - `16s` and `32s16s`: inputs are converted to float; results are multiplied by 2^-scaleFactor, rounded to nearest, ties to
 *    even, and saturated; a NaN gives 0.
 *  - Size in bytes, with N8 = N rounded up to a multiple of 8: `32f` 4 (M N8 + N8 + 2M) + 124; `16s` 4 (N8 (M + 1) + M) + 8M +
 *    164; qorsDCTLifterGetSize_MulC0_16s() (4N + 36)(M + 1) + 8M + 132.
 *
 *  Source of the method: Davis and Mermelstein, "Comparison of Parametric Representations for Monosyllabic Word Recognition in
 *  Continuously Spoken Sentences", IEEE Transactions on Acoustics, Speech, and Signal Processing 28 (1980); the lifter: Juang,
 *  Rabiner and Wilpon, "On the Use of Bandpass Liftering in Speech Recognition", the same, 35 (1987). @{ */

/** A prepared transform on float data. */
typedef struct DCTLifterState_32f DCTLifterState_32f;
/** A prepared transform on integer data, with scratch. */
typedef struct DCTLifterState_16s DCTLifterState_16s;

/** Bytes of a caller's block: float data, sine lifter. @see @ref dct_lifter */
QORSR_API QorStatus qorsDCTLifterGetSize_32f(int32_t dctLength, int32_t cepstrumLength, int32_t* size);
/** Bytes of a caller's block: float data, sine lifter, with order 0. @see @ref dct_lifter */
QORSR_API QorStatus qorsDCTLifterGetSize_C0_32f(int32_t dctLength, int32_t cepstrumLength, int32_t* size);
/** Bytes of a caller's block: float data, given weights. @see @ref dct_lifter */
QORSR_API QorStatus qorsDCTLifterGetSize_Mul_32f(int32_t dctLength, int32_t cepstrumLength, int32_t* size);
/** Bytes of a caller's block: float data, given weights, with order 0. @see @ref dct_lifter */
QORSR_API QorStatus qorsDCTLifterGetSize_MulC0_32f(int32_t dctLength, int32_t cepstrumLength, int32_t* size);
/** Bytes of a caller's block: integer data, sine lifter. @see @ref dct_lifter */
QORSR_API QorStatus qorsDCTLifterGetSize_16s(int32_t dctLength, int32_t cepstrumLength, int32_t* size);
/** Bytes of a caller's block: integer data, sine lifter, with order 0. @see @ref dct_lifter */
QORSR_API QorStatus qorsDCTLifterGetSize_C0_16s(int32_t dctLength, int32_t cepstrumLength, int32_t* size);
/** Bytes of a caller's block: integer data, given weights. @see @ref dct_lifter */
QORSR_API QorStatus qorsDCTLifterGetSize_Mul_16s(int32_t dctLength, int32_t cepstrumLength, int32_t* size);
/** Bytes of a caller's block: integer data, given weights, with order 0. @see @ref dct_lifter */
QORSR_API QorStatus qorsDCTLifterGetSize_MulC0_16s(int32_t dctLength, int32_t cepstrumLength, int32_t* size);

/** Makes a state in the caller's block: float data, sine lifter. @see @ref dct_lifter */
QORSR_API QorStatus qorsDCTLifterInit_32f(DCTLifterState_32f* state, int32_t dctLength, int32_t cepstrumLength,
                                          int32_t lifterLength, float scale);
/** Makes a state in the caller's block: integer data, sine lifter. @see @ref dct_lifter */
QORSR_API QorStatus qorsDCTLifterInit_16s(DCTLifterState_16s* state, int32_t dctLength, int32_t cepstrumLength,
                                          int32_t lifterLength, float scale);
/** Makes a state in the caller's block: float data, sine lifter, with order 0. @see @ref dct_lifter */
QORSR_API QorStatus qorsDCTLifterInit_C0_32f(DCTLifterState_32f* state, int32_t dctLength, int32_t cepstrumLength,
                                             int32_t lifterLength, float scale, float weight0);
/** Makes a state in the caller's block: integer data, sine lifter, with order 0. @see @ref dct_lifter */
QORSR_API QorStatus qorsDCTLifterInit_C0_16s(DCTLifterState_16s* state, int32_t dctLength, int32_t cepstrumLength,
                                             int32_t lifterLength, float scale, float weight0);
/** Makes a state in the caller's block: float data, given weights. @see @ref dct_lifter */
QORSR_API QorStatus qorsDCTLifterInit_Mul_32f(DCTLifterState_32f* state, int32_t dctLength, const float* weights,
                                              int32_t cepstrumLength);
/** Makes a state in the caller's block: integer data, given weights. @see @ref dct_lifter */
QORSR_API QorStatus qorsDCTLifterInit_Mul_16s(DCTLifterState_16s* state, int32_t dctLength, const float* weights,
                                              int32_t cepstrumLength);
/** Makes a state in the caller's block: float data, given weights, with order 0. @see @ref dct_lifter */
QORSR_API QorStatus qorsDCTLifterInit_MulC0_32f(DCTLifterState_32f* state, int32_t dctLength, const float* weights,
                                                int32_t cepstrumLength);
/** Makes a state in the caller's block: integer data, given weights, with order 0. @see @ref dct_lifter */
QORSR_API QorStatus qorsDCTLifterInit_MulC0_16s(DCTLifterState_16s* state, int32_t dctLength, const int32_t* weights,
                                                int32_t cepstrumLength);

/** Makes a state in allocated memory: float data, sine lifter. @see @ref dct_lifter */
QORSR_API QorStatus qorsDCTLifterInitAlloc_32f(DCTLifterState_32f** state, int32_t dctLength, int32_t cepstrumLength,
                                               int32_t lifterLength, float scale);
/** Makes a state in allocated memory: integer data, sine lifter. @see @ref dct_lifter */
QORSR_API QorStatus qorsDCTLifterInitAlloc_16s(DCTLifterState_16s** state, int32_t dctLength, int32_t cepstrumLength,
                                               int32_t lifterLength, float scale);
/** Makes a state in allocated memory: float data, sine lifter, with order 0. @see @ref dct_lifter */
QORSR_API QorStatus qorsDCTLifterInitAlloc_C0_32f(DCTLifterState_32f** state, int32_t dctLength, int32_t cepstrumLength,
                                                  int32_t lifterLength, float scale, float weight0);
/** Makes a state in allocated memory: integer data, sine lifter, with order 0. @see @ref dct_lifter */
QORSR_API QorStatus qorsDCTLifterInitAlloc_C0_16s(DCTLifterState_16s** state, int32_t dctLength, int32_t cepstrumLength,
                                                  int32_t lifterLength, float scale, float weight0);
/** Makes a state in allocated memory: float data, given weights. @see @ref dct_lifter */
QORSR_API QorStatus qorsDCTLifterInitAlloc_Mul_32f(DCTLifterState_32f** state, int32_t dctLength, const float* weights,
                                                   int32_t cepstrumLength);
/** Makes a state in allocated memory: integer data, given weights. @see @ref dct_lifter */
QORSR_API QorStatus qorsDCTLifterInitAlloc_Mul_16s(DCTLifterState_16s** state, int32_t dctLength, const float* weights,
                                                   int32_t cepstrumLength);
/** Makes a state in allocated memory: float data, given weights, with order 0. @see @ref dct_lifter */
QORSR_API QorStatus qorsDCTLifterInitAlloc_MulC0_32f(DCTLifterState_32f** state, int32_t dctLength, const float* weights,
                                                     int32_t cepstrumLength);
/** Makes a state in allocated memory: integer data, given weights, with order 0. @see @ref dct_lifter */
QORSR_API QorStatus qorsDCTLifterInitAlloc_MulC0_16s(DCTLifterState_16s** state, int32_t dctLength, const float* weights,
                                                     int32_t cepstrumLength);

/** Releases a state from InitAlloc: float data. @see @ref dct_lifter */
QORSR_API QorStatus qorsDCTLifterFree_32f(DCTLifterState_32f* state);
/** Releases a state from InitAlloc: integer data. @see @ref dct_lifter */
QORSR_API QorStatus qorsDCTLifterFree_16s(DCTLifterState_16s* state);

/** Liftered cepstral coefficients of one frame: float. @see @ref dct_lifter */
QORSR_API QorStatus qorsDCTLifter_32f(const float* source, float* destination, const DCTLifterState_32f* state);
/** Liftered cepstral coefficients of one frame: 16-bit, scaled. The state is written. @see @ref dct_lifter */
QORSR_API QorStatus qorsDCTLifter_16s_Sfs(const int16_t* source, int16_t* destination, DCTLifterState_16s* state,
                                          int32_t scaleFactor);
/** Liftered cepstral coefficients of one frame: 32 to 16 bits, scaled. The state is written. @see @ref dct_lifter */
QORSR_API QorStatus qorsDCTLifter_32s16s_Sfs(const int32_t* source, int16_t* destination, DCTLifterState_16s* state,
                                             int32_t scaleFactor);
/** @} */

/** @defgroup delta Delta and acceleration
 *  Time derivatives of feature vectors: the first (delta, d) and the second (acceleration, a). A destination row holds, side by
 *  side, the features x(t), width elements, then d(t), and in the `DeltaDelta` members a(t). Row t is time t; `step` elements lie
 *  between destination rows.
 *
 *  **Windows**, with q the multiplier (`Delta`, `DeltaDelta`: one for d, one for a):
 *  - `Win1`: d(t) = (x(t+1) - x(t-1)) q.
 *  - `Win2`: d(t) = (x(t+1) - x(t-1) + p + p) q with p = x(t+2) - x(t-2): ten times the slope of a regression over five frames.
 *  - a(t) is the same window over d.
 *  - `Mul`: a table in place of multipliers, one entry for each element of a destination row: features are stored as x(t)[i] *
 *    table[i], the window over the stored features is multiplied by table[width + i], that over the stored deltas by table[2
 *    width + i].
 *  - `Aurora`: width 13. A source row has 14 elements: 12 coefficients, then c0 and the log energy, which become feature 12: (c0 *
 *    0.6) / 23 + logE * 0.4. Both windows span nine frames of features:
 *
 *        d(t) = -x(t-4) - 0.75 x(t-3) - 0.5 x(t-2) - 0.25 x(t-1) + 0.25 x(t+1) + 0.5 x(t+2) + 0.75 x(t+3) + x(t+4)
 *        a(t) = x(t-4) + 0.25 x(t-3) - 0.285714 x(t-2) - 0.607143 x(t-1) - 0.714286 x(t)
 *               - 0.607143 x(t+1) - 0.285714 x(t+2) + 0.25 x(t+3) + x(t+4)
 *
 *    On a constant signal these are 0 up to rounding (the coefficients of a have six digits).
 *
 *  Frames before the first and behind the last take the value of the first and the last frame; accelerations extend d in the same
 *  way.
 *
 *  **Streaming members** (`Delta`, `DeltaMul`, `DeltaDelta`, `DeltaDeltaMul`): an utterance arrives in blocks of `height` source
 *  rows, dense, width elements each. A block's rows are appended to the destination, and the derivatives that have all frames of
 *  their window are computed. Blocks of any sizes give the same bits as one. `flags`: #qorDeltaBegin marks the first block of an
 *  utterance, #qorDeltaEnd the last; other bits have no effect.
 *  - With begin, the first source row becomes destination row 0. The block has at least B rows.
 *  - Without it, the caller points the destination so that rows 0 to B - 1 are the last B rows of the block before, as that call
 *    left them; the first source row becomes row B. B is the look-back:
 *
 *     | member | `Win1` | `Win2` | `Aurora` |
 *     |---|---|---|---|
 *     | `Delta`, `DeltaMul` | 2 | 4 | |
 *     | `DeltaDelta`, `DeltaDeltaMul` | 3 | 6 | 8 |
 *
 *  - With end, the derivatives that waited for future frames are finished. An end without rows (height 0) is allowed.
 *
 *  **Whole utterances** (`EvalDelta`): the buffer holds `height` rows; in each, `width` features begin at element `offset`, and
 *  the deltas are written behind them. With W the window size and k from 1 to W:
 *
 *      rows 0 to W - 1                  d(r) = q * sum of k (x(r+k) - x(0))
 *      rows W to height - W - 1         d(r) = q * sum of k (x(r+k) - x(r-k))
 *      rows height - W to height - 1    d(r) = q * sum of k (x(height-1) - x(r-k))
 *
 *  1 / (2 sum of k^2) for q gives the slope per frame. `EvalDeltaMul` takes table[width + i] for q; features stay as they are, and
 *  the first width entries are not read.
 *
 *  **16 bits.** A positive scale factor is an arithmetic right shift of a 32-bit value, without rounding; a negative one is a left
 *  shift, which loses high bits; what results is limited to -32768 .. 32767. With a multiplier that has g fraction bits,
 *  scaleFactor g leaves deltas in the units of the features.
 *
 *  | Parameter | Use | Elements, or values | |
 *  |---|---|---|---|
 *  | `source` | in | height x width | frames, one a row |
 *  | `source` of `*_Aurora_*` | in | height x 14 | |
 *  | `multipliers` | in | 2 * width | |
 *  | `multipliers` of `DeltaDeltaMul_*` | in | 3 * width | |
 *  | `multipliers` of `DeltaDeltaMul_Aurora_*` | in | 39 | |
 *  | `destination` | in, out | rows x parts * width, step apart | |
 *  | `destination` of `*_Aurora_*` | in, out | rows x 39, step apart | |
 *  | `buffer` | in, out | height x offset + 2 * width, step apart | |
 *  | `width`, `windowSize` | value | at least 1 | |
 *  | `offset` | value | at least 0 | |
 *  | `height` | value | at least if(flags & 1, lookBack, if(flags & 2, 0, 1)) | |
 *  | `height` of `EvalDelta*` | value | at least 2 * windowSize | |
 *  | `step` | value | at least parts * width | |
 *  | `step` of `*_Aurora_*` | value | at least 39 | |
 *  | `step` of `EvalDelta*` | value | at least offset + 2 * width | |
 *  | `multiplier`, `deltaMultiplier`, `accelerationMultiplier` | value | any | |
 *  | `flags`, `scaleFactor` | value | any | |
 *  | `rows` of `Delta*` | is | height + if(flags & 1, 0, lookBack) | |
 *  | `parts` of `Delta_*`, `DeltaMul_*` | is | 2 | |
 *  | `parts` of `DeltaDelta_*`, `DeltaDeltaMul_*` | is | 3 | |
 *  | `lookBack` of `Delta_Win1_*`, `DeltaMul_Win1_*` | is | 2 | B |
 *  | `lookBack` of `Delta_Win2_*`, `DeltaMul_Win2_*` | is | 4 | |
 *  | `lookBack` of `DeltaDelta*_Win1_*` | is | 3 | |
 *  | `lookBack` of `DeltaDelta*_Win2_*` | is | 6 | |
 *  | `lookBack` of `DeltaDelta*_Aurora_*` | is | 8 | |
 *
 *  | Status of the streaming members, in order | When |
 *  |---|---|
 *  | #qorStatusNullPointer | source, destination or table is null |
 *  | #qorStatusBadSize | width below 1 or height below 0; height 0 without end |
 *  | #qorStatusBadStride | step below 2 width (`Delta`), 3 width (`DeltaDelta`) or 39 (`Aurora`) |
 *  | #qorStatusBadSize | begin with a height below B |
 *
 *  | Status of `EvalDelta`, in order | When |
 *  |---|---|
 *  | #qorStatusNullPointer | buffer or table is null |
 *  | #qorStatusBadSize | height, width or windowSize below 1, offset below 0, or height below 2 windowSize |
 *  | #qorStatusBadStride | step below offset + 2 width |
 *
 *  @warning A stream ends with #qorDeltaEnd; a call with height 0 does it, but `source` must not be null then either.
 *
 *  @warning Without #qorDeltaBegin the destination begins B rows before the first new one. These rows must be as the call before
 *  left them.
 *
 *  @warning The edge rows of `EvalDelta`, required: they subtract, or take, the edge row in every term, so they are no regression
 *  and differ from those of the streaming members.
 *
 *  **Exact arithmetic**
 *  - Columns of rows that still wait, and gaps, are not touched.
 *  - Float sums are taken in the order written; those of `Aurora` from the left, of `EvalDelta` with k in ascending order.
 *  - 16-bit `Win1`, `Win2`: differences and window sums wrap to 16 bits; their exact product with the multiplier is shifted and
 *    limited. Features are copied, or in `Mul` members multiplied, shifted and limited in the same way.
 *  - `DeltaDelta_Aurora_16s`: features are shifted and limited (feature 12: truncated first); four times the delta, an exact
 *    integer, is shifted by scaleFactor + 2 and limited; the acceleration's float sum is truncated, shifted and limited.
 *  - `DeltaDeltaMul_Aurora_16s`: features, deltas (the exact sum shifted right by 2) and accelerations (truncated) are limited to
 *    16 bits; their exact product with the table's entry is shifted and limited.
 *  - `EvalDelta_16s`: differences wrap to 16 bits; the sum of their products with k, and its product with the multiplier, wrap to
 *    32 bits; the latter is shifted and limited.
 *
 *  Source of the method: Furui, "Speaker-Independent Isolated Word Recognition Using Dynamic Features of Speech Spectrum", IEEE
 *  Transactions on Acoustics, Speech, and Signal Processing 34 (1986); the Aurora windows: ETSI ES 202 050. @{ */

/** Flags of a block of the streaming members; together for an utterance in one block. */
enum {
  qorDeltaBegin = 1, /**< The block is the first of its utterance. */
  qorDeltaEnd = 2    /**< The block is the last of its utterance. */
};

/** Features and deltas of a block: float, Win1; destination is read and written. @see @ref delta */
QORSR_API QorStatus qorsDelta_Win1_32f_D2(const float* source, int32_t width, float* destination, int32_t step, int32_t height,
                                          float multiplier, int32_t flags);
/** Features and deltas of a block: float, Win2; destination is read and written. @see @ref delta */
QORSR_API QorStatus qorsDelta_Win2_32f_D2(const float* source, int32_t width, float* destination, int32_t step, int32_t height,
                                          float multiplier, int32_t flags);
/** Features and deltas of a block: float, Win1, table; destination is read and written. @see @ref delta */
QORSR_API QorStatus qorsDeltaMul_Win1_32f_D2(const float* source, const float* multipliers, int32_t width, float* destination,
                                             int32_t step, int32_t height, int32_t flags);
/** Features and deltas of a block: float, Win2, table; destination is read and written. @see @ref delta */
QORSR_API QorStatus qorsDeltaMul_Win2_32f_D2(const float* source, const float* multipliers, int32_t width, float* destination,
                                             int32_t step, int32_t height, int32_t flags);
/** Features, deltas, accelerations of a block: float, Win1; destination is read and written. @see @ref delta */
QORSR_API QorStatus qorsDeltaDelta_Win1_32f_D2(const float* source, int32_t width, float* destination, int32_t step, int32_t height,
                                               float deltaMultiplier, float accelerationMultiplier, int32_t flags);
/** Features, deltas, accelerations of a block: float, Win2; destination is read and written. @see @ref delta */
QORSR_API QorStatus qorsDeltaDelta_Win2_32f_D2(const float* source, int32_t width, float* destination, int32_t step, int32_t height,
                                               float deltaMultiplier, float accelerationMultiplier, int32_t flags);
/** Features, deltas, accelerations of a block: float, Win1, table; destination is read and written. @see @ref delta */
QORSR_API QorStatus qorsDeltaDeltaMul_Win1_32f_D2(const float* source, const float* multipliers, int32_t width, float* destination,
                                                  int32_t step, int32_t height, int32_t flags);
/** Features, deltas, accelerations of a block: float, Win2, table; destination is read and written. @see @ref delta */
QORSR_API QorStatus qorsDeltaDeltaMul_Win2_32f_D2(const float* source, const float* multipliers, int32_t width, float* destination,
                                                  int32_t step, int32_t height, int32_t flags);

/** Features and deltas of a block: 16-bit, Win1; destination is read and written. @see @ref delta */
QORSR_API QorStatus qorsDelta_Win1_16s_D2Sfs(const int16_t* source, int32_t width, int16_t* destination, int32_t step,
                                             int32_t height, int16_t multiplier, int32_t flags, int32_t scaleFactor);
/** Features and deltas of a block: 16-bit, Win2; destination is read and written. @see @ref delta */
QORSR_API QorStatus qorsDelta_Win2_16s_D2Sfs(const int16_t* source, int32_t width, int16_t* destination, int32_t step,
                                             int32_t height, int16_t multiplier, int32_t flags, int32_t scaleFactor);
/** Features and deltas of a block: 16-bit, Win1, table; destination is read and written. @see @ref delta */
QORSR_API QorStatus qorsDeltaMul_Win1_16s_D2Sfs(const int16_t* source, const int16_t* multipliers, int32_t width,
                                                int16_t* destination, int32_t step, int32_t height, int32_t flags,
                                                int32_t scaleFactor);
/** Features and deltas of a block: 16-bit, Win2, table; destination is read and written. @see @ref delta */
QORSR_API QorStatus qorsDeltaMul_Win2_16s_D2Sfs(const int16_t* source, const int16_t* multipliers, int32_t width,
                                                int16_t* destination, int32_t step, int32_t height, int32_t flags,
                                                int32_t scaleFactor);
/** Features, deltas, accelerations of a block: 16-bit, Win1; destination is read and written. @see @ref delta */
QORSR_API QorStatus qorsDeltaDelta_Win1_16s_D2Sfs(const int16_t* source, int32_t width, int16_t* destination, int32_t step,
                                                  int32_t height, int16_t deltaMultiplier, int16_t accelerationMultiplier,
                                                  int32_t flags, int32_t scaleFactor);
/** Features, deltas, accelerations of a block: 16-bit, Win2; destination is read and written. @see @ref delta */
QORSR_API QorStatus qorsDeltaDelta_Win2_16s_D2Sfs(const int16_t* source, int32_t width, int16_t* destination, int32_t step,
                                                  int32_t height, int16_t deltaMultiplier, int16_t accelerationMultiplier,
                                                  int32_t flags, int32_t scaleFactor);
/** Features, deltas, accelerations of a block: 16-bit, Win1, table; destination is read and written. @see @ref delta */
QORSR_API QorStatus qorsDeltaDeltaMul_Win1_16s_D2Sfs(const int16_t* source, const int16_t* multipliers, int32_t width,
                                                     int16_t* destination, int32_t step, int32_t height, int32_t flags,
                                                     int32_t scaleFactor);
/** Features, deltas, accelerations of a block: 16-bit, Win2, table; destination is read and written. @see @ref delta */
QORSR_API QorStatus qorsDeltaDeltaMul_Win2_16s_D2Sfs(const int16_t* source, const int16_t* multipliers, int32_t width,
                                                     int16_t* destination, int32_t step, int32_t height, int32_t flags,
                                                     int32_t scaleFactor);

/** Features, deltas, accelerations of a block: float, Aurora; destination is read and written. @see @ref delta */
QORSR_API QorStatus qorsDeltaDelta_Aurora_32f_D2(const float* source, float* destination, int32_t step, int32_t height,
                                                 int32_t flags);
/** Features, deltas, accelerations of a block: float, Aurora, table; destination is read and written. @see @ref delta */
QORSR_API QorStatus qorsDeltaDeltaMul_Aurora_32f_D2(const float* source, const float* multipliers, float* destination, int32_t step,
                                                    int32_t height, int32_t flags);
/** Features, deltas, accelerations of a block: 16-bit, Aurora; destination is read and written. @see @ref delta */
QORSR_API QorStatus qorsDeltaDelta_Aurora_16s_D2Sfs(const int16_t* source, int16_t* destination, int32_t step, int32_t height,
                                                    int32_t flags, int32_t scaleFactor);
/** Features, deltas, accelerations of a block: 16-bit, Aurora, table; destination is read and written. @see @ref delta */
QORSR_API QorStatus qorsDeltaDeltaMul_Aurora_16s_D2Sfs(const int16_t* source, const int16_t* multipliers, int16_t* destination,
                                                       int32_t step, int32_t height, int32_t flags, int32_t scaleFactor);

/** Deltas of an utterance, written behind its features in buffer: float, one multiplier. @see @ref delta */
QORSR_API QorStatus qorsEvalDelta_32f_D2(float* buffer, int32_t height, int32_t step, int32_t width, int32_t offset,
                                         int32_t windowSize, float multiplier);
/** Deltas of an utterance, written behind its features in buffer: float, table of multipliers. @see @ref delta */
QORSR_API QorStatus qorsEvalDeltaMul_32f_D2(float* buffer, int32_t height, int32_t step, const float* multipliers, int32_t width,
                                            int32_t offset, int32_t windowSize);
/** Deltas of an utterance, written behind its features in buffer: 16-bit, one multiplier. @see @ref delta */
QORSR_API QorStatus qorsEvalDelta_16s_D2Sfs(int16_t* buffer, int32_t height, int32_t step, int32_t width, int32_t offset,
                                            int32_t windowSize, int16_t multiplier, int32_t scaleFactor);
/** Deltas of an utterance, written behind its features in buffer: 16-bit, table of multipliers. @see @ref delta */
QORSR_API QorStatus qorsEvalDeltaMul_16s_D2Sfs(int16_t* buffer, int32_t height, int32_t step, const int16_t* multipliers,
                                               int32_t width, int32_t offset, int32_t windowSize, int32_t scaleFactor);
/** @} */

/* ---------------- Linear prediction ---------------- */

/** @defgroup linear_prediction Linear prediction
 *  Each sample of a signal is predicted from the p before it; p is the order. The coefficients are those of the all-pole filter that
 *  shapes speech. With a[1] to a[p] the error filter is
 *
 *      e(n) = x(n) + a[1] x(n - 1) + ... + a[p] x(n - p)
 *
 *  and the predictor's own coefficients are -a[1] to -a[p]. destination[i] holds coefficient i + 1:
 *
 *  | Function | Method | Result |
 *  |---|---|---|
 *  | `LinearPrediction_Auto` | autocorrelations of the signal, then `Durbin` | error filter a[i] |
 *  | `LinearPredictionNeg_Auto` | the same | predictor -a[i] |
 *  | `LinearPrediction_Cov` | covariance equations | predictor -a[i] |
 *  | `Durbin` | recursion on autocorrelations | error filter a[i], and the energy of e |
 *  | `Schur` | recursion on autocorrelations | reflection coefficients k[i], and the energy of e |
 *
 *  @warning The sign of the result differs, as the table says: `Auto` and `Cov` of one signal have opposite signs.
 *
 *  No window is applied, and nothing is normalised. The signal is taken as zero outside its samples (`Auto`); the sums of `Cov` stay
 *  inside it, so that a decaying exponential is predicted exactly, but its filter need not be stable.
 *
 *  16-bit members convert at the edges: the results are those of the float member times 2^-scaleFactor, rounded to nearest, ties to
 *  even, and saturated. So a scale factor of -12 gives Q12, -15 gives Q15. Residual energies are float and never scaled.
 *
 *  | Parameter | Use | Elements, or values | |
 *  |---|---|---|---|
 *  | `source` | in | length | the signal, windowed by the caller |
 *  | `autocorrelations` | in | order + 1 | r(0) to r(p) |
 *  | `destination` of `LinearPrediction_Auto_32f`, `LinearPredictionNeg_Auto_32f`, `Durbin_32f` | in, out | order | a failure leaves a part as it was |
 *  | `destination` | out | order | 16 bits: Q(-scaleFactor) |
 *  | `residual` | out | 1 | energy of the error, where the recursion succeeds |
 *  | `order` of `LinearPrediction_*`, `LinearPredictionNeg_*` | value | 1 to length | |
 *  | `order`, `length` | value | at least 1 | |
 *  | `scaleFactor` | value | any | |
 *
 *  | Status, in order | when |
 *  |---|---|
 *  | #qorStatusNullPointer | signal, lags or destination null |
 *  | #qorStatusBadSize | length or order below 1, order above length |
 *  | #qorStatusNullPointer | `residual` null |
 *  | #qorStatusNoMemory | no scratch: `Auto_32f` takes some from order 63 on, `Auto_16s` from length 64 on, `Durbin` from order 64 on, `Schur` from order 1024 on, `Cov` always |
 *  | #qorStatusUnstableFilter | `Auto`, `Durbin`: r(0) or a residual energy is not above 0. Silence is such a signal |
 *
 *  @warning `Cov` and `Schur` test no energy: silence gives NaN or infinity, and #qorStatusOk.
 *
 *  **Exact arithmetic.** All is float, but for the sums of `Cov`.
 *  - r(k) = sum over n from 0 to length - 1 - k of x(n) x(n + k), in the order of n; a lag beyond the signal is 0. From 856 samples
 *    and lags on (the smaller of both), the lags come from the power spectrum instead, and differ by rounding.
 *  - Durbin: k = r(1) / r(0), e = r(0) (1 - k k), a[1] = -k; then for m from 2 to p k = (r(m) + sum of a[i] r(m - i)) / e, e = e (1 -
 *    k k), a[m] = -k, and a[i] = a[i] - k a[m - i] for all i below m. In the sum r(m) and the terms of odd i, and those of even i, run
 *    apart and are joined before an odd last term. The test 0 >= e follows the store of a[m] (in the first step it comes before), so a
 *    failure in step m leaves a[1] to a[m] in destination; a NaN passes. 16-bit members write nothing when they fail.
 *  - required: `LinearPredictionNeg_Auto_32f` ends with 0 - a[i] for all of destination, also when the recursion failed.
 *  - Schur: G(i) = r(i), H(i) = r(i - 1); step m: k(m) = -G(m) / H(m), then G(i) = G(i) + k H(i) and H(i) = k G(i - 1) + H(i - 1) of the
 *    old numbers for i above m. The energy is G(p) k(p) + H(p).
 *  - Cov: A(i, j) = sum over n from 0 to length - 2 - i of x(n) x(n + i - j), j <= i, products rounded to float and summed in double, and
 *    right sides c(i) = sum over n from 0 to length - 2 - i of x(n) x(n + i + 1) in float; A = L D L' row by row without pivoting.
 *
 *  Source: Makhoul, "Linear Prediction: A Tutorial Review", Proc. IEEE 63 (1975); Markel and Gray, "Linear Prediction of Speech"
 *  (1976); Le Roux and Gueguen, IEEE Trans. ASSP 25 (1977) for the recursion of Schur. @{ */

/** Error filter of a float signal by its autocorrelations. @see @ref linear_prediction */
QORSR_API QorStatus qorsLinearPrediction_Auto_32f(const float* source, int32_t length, float* destination, int32_t order);
/** Error filter of a 16-bit signal by its autocorrelations, times 2^-scaleFactor. @see @ref linear_prediction */
QORSR_API QorStatus qorsLinearPrediction_Auto_16s_Sfs(const int16_t* source, int32_t length, int16_t* destination, int32_t order,
                                                      int32_t scaleFactor);
/** Predictor of a float signal by its autocorrelations: the error filter's coefficients, negated. @see @ref linear_prediction */
QORSR_API QorStatus qorsLinearPredictionNeg_Auto_32f(const float* source, int32_t length, float* destination, int32_t order);
/** Predictor of a 16-bit signal by its autocorrelations, times 2^-scaleFactor. @see @ref linear_prediction */
QORSR_API QorStatus qorsLinearPredictionNeg_Auto_16s_Sfs(const int16_t* source, int32_t length, int16_t* destination, int32_t order,
                                                         int32_t scaleFactor);
/** Predictor of a float signal by the covariance method. @see @ref linear_prediction */
QORSR_API QorStatus qorsLinearPrediction_Cov_32f(const float* source, int32_t length, float* destination, int32_t order);
/** Predictor of a 16-bit signal by the covariance method, times 2^-scaleFactor. @see @ref linear_prediction */
QORSR_API QorStatus qorsLinearPrediction_Cov_16s_Sfs(const int16_t* source, int32_t length, int16_t* destination, int32_t order,
                                                     int32_t scaleFactor);
/** Error filter from float autocorrelations, and the energy of its error (Levinson and Durbin). @see @ref linear_prediction */
QORSR_API QorStatus qorsDurbin_32f(const float* autocorrelations, float* destination, int32_t order, float* residual);
/** Error filter from 16-bit autocorrelations, times 2^-scaleFactor, and the energy of its error. @see @ref linear_prediction */
QORSR_API QorStatus qorsDurbin_16s_Sfs(const int16_t* autocorrelations, int16_t* destination, int32_t order, float* residual,
                                       int32_t scaleFactor);
/** Reflection coefficients from float autocorrelations, and the energy of the error (Schur). @see @ref linear_prediction */
QORSR_API QorStatus qorsSchur_32f(const float* autocorrelations, float* destination, int32_t order, float* residual);
/** Reflection coefficients from 16-bit autocorrelations, times 2^-scaleFactor, and the energy of the error.
 *  @see @ref linear_prediction */
QORSR_API QorStatus qorsSchur_16s_Sfs(const int16_t* autocorrelations, int16_t* destination, int32_t order, float* residual,
                                      int32_t scaleFactor);
/** @} */

/* ---------------- Conversions of linear prediction ---------------- */

/** @defgroup lp_conversions Conversions of linear prediction
 *  One all-pole model in several representations: predictor coefficients (those of the error filter, as `Durbin` gives them: A(z) = 1 +
 *  a[1] z^-1 + ... + a[p] z^-p), cepstrum, reflection coefficients, line spectral pairs, area ratios, tilts, and the model's spectrum.
 *  Arrays hold element 1 first; all arithmetic is float.
 *
 *  | Function | Result |
 *  |---|---|
 *  | `LPToCepstrum` | c[m] = -(a[m] + 1/m sum of (m - k) a[k] c[m - k]), k = 1 to m - 1 |
 *  | `CepstrumToLP` | the inverse |
 *  | `LPToReflection` | k[m] = -a[m] of the model of order m, for m from p down (step-down) |
 *  | `ReflectionToLP` | the inverse (step-up) |
 *  | `LPToLSP` | cosines of the line frequencies, falling from 1 to -1, and how many were found |
 *  | `LSPToLP` | the inverse, for even orders |
 *  | `LPToSpectrum` | 1 / abs(S(k)) at 2^order frequencies up to half the sampling rate |
 *  | `ReflectionToAR` | (1 - k) / (1 + k) |
 *  | `ReflectionToTrueAR` | product of these up to each element: areas of a tube, each over the first |
 *  | `ReflectionToLAR` | ln((1 - c) / (1 + c)), c = k limited to -limit to limit |
 *  | `ReflectionToAbsTilt` | (abs(k1) - abs(k2)) / (abs(k1) + abs(k2)) |
 *  | `ReflectionToTilt` | (abs(k1) - abs(k2)) / (k1 + k2) |
 *
 *  @warning `LPToLSP` and `LSPToLP` take odd orders with other signs than even ones (required): only even orders go there and back.
 *
 *  @warning In `LPToSpectrum` the transform runs over 0, source[0], ..., source[length - 1], and `value` reduces the real part of bin 0
 *  alone. For the spectrum 1 / abs(A) of a model give -1 as the value and read bin 0, or transform 1, a[1], ... yourself.
 *
 *  Scale factors. Where there is one, 16-bit values are loaded times 2^scaleFactor and stored times 2^-scaleFactor: -12 is Q12 on both
 *  sides. (Tilts load 16-bit values as they are.) With two, destinationScale stores times 2^-destinationScale, and
 *
 *  | Function | loads times |
 *  |---|---|
 *  | `LPToLSP`, `LSPToLP`, `ReflectionToLAR` | 2^-sourceScale: 12 is Q12 |
 *  | `ReflectionToAR`, `ReflectionToTrueAR` | 2^+sourceScale: -12 is Q12 |
 *
 *  Exponents are limited to -150 (zero) to 128 (infinity). Results are rounded to nearest, ties to even (`ReflectionToLAR_16s`: toward
 *  zero, required), and saturated; a NaN gives 0.
 *
 *  | Parameter | Use | Elements, or values | |
 *  |---|---|---|---|
 *  | `source` of `LPToSpectrum_*` | in | length | |
 *  | `source` of `LSPToLP_*` | in | order; each 0 | cosines, falling, inside -1 to 1 |
 *  | `source`, `first`, `second` | in | order | |
 *  | `destination` of `LPToSpectrum_*` | out | exp2(order) | |
 *  | `destination` of `LPToReflection_*`, `LPToLSP_*` | in, out | order | what is not reached stays as it was |
 *  | `destination` | out | order | |
 *  | `count` | out | 1 | roots found |
 *  | `intervals` | value | at least order | of the grid over -1 to 1: 60 to 200 serve speech |
 *  | `refinements` | value | at least 1 | two for each cut into quarters |
 *  | `length` | value | 1 to 2 * exp2(order) - 1 | |
 *  | `order` of `LPToSpectrum_*` | value | at least 0 | 2^order results |
 *  | `order` | value | at least 1 | |
 *  | `limit` | value | above 0, below 1 | |
 *  | `value`, `sourceScale`, `destinationScale`, `scaleFactor` | value | any | |
 *
 *  | Status, in order | when |
 *  |---|---|
 *  | #qorStatusNullPointer | a pointer is null |
 *  | #qorStatusBadSize | order, intervals or refinements below 1, order above intervals; `LPToSpectrum`: length below 1 or not below 2^(order + 1) |
 *  | #qorStatusBadRange | `ReflectionToLAR`: limit not inside 0 to 1 |
 *  | #qorStatusBadLspOrder | `LSPToLP`: source[0] at or above 1, an element above the one before it, the last at or below -1. Equal ones pass |
 *  | #qorStatusNoMemory | no scratch: reflection from order 16 on, `LSPToLP` from 60 on, `LPToLSP` with a grid of some 200 intervals, `LPToSpectrum` from order 7 on, 16-bit measures of more than 100, other 16-bit members of more than 128 elements |
 *  | #qorStatusUnstableReflection | `LPToReflection`: a coefficient of magnitude 1. Those of higher stages are written |
 *  | #qorStatusLspRootsLost | `LPToLSP`: fewer roots than the order; count and those found are written |
 *  | #qorStatusDivideByZero | a warning: a denominator of 0, or infinity over infinity, in a measure; a pole of `ReflectionToTrueAR`; a magnitude of 0 in `LPToSpectrum` |
 *
 *  **Exact arithmetic.** Sums run in the order of k.
 *  - `LPToReflection`: d = 1 / (1 - k k), then a[i] = (a[i] + a[m - i] k) d. `ReflectionToLP`: a[i] = a[i] - k[m] a[m - i].
 *  - `LPToLSP`: f[0] = g[0] = 1. Even orders: f[i] = a[i] + a[p + 1 - i] - f[i - 1], g[i] = a[i] - a[p + 1 - i] + g[i - 1], i to p / 2. Odd:
 *    f[i] = -a[i] - a[p + 1 - i] below the degree m = (p + 1) / 2, f[m] = -2 a[m]; g[1] = a[p] - a[1], g[i] = g[i - 2] + a[p + 1 - i] -
 *    a[i], i to m - 1. They are evaluated by the recurrence of Chebyshev, the last coefficient halved (required: not that of degree 1,
 *    f[1] + 2 x). The search goes from 1 to -1 and begins with f; where the product of two values is 0 or below, the bracket is cut into
 *    quarters while the count of refinements, which falls by 2, is above 0; one secant step ends it, and the other polynomial goes on
 *    from the root to the same grid point.
 *  - `ReflectionToTrueAR`: at the first -1 the product is infinite; behind it an element outside -1 to 1 makes it +infinity if it was
 *    negative, any other +infinity if it was positive, else -infinity; 1 makes it and all behind it the NaN 0xFFC00000.
 *  - `LPToSpectrum`: a magnitude of 0 gives 2139095040.
 *  - `ReflectionToLAR_32f`: within 1.5e-6 for a limit of 0.999. `ReflectionToAR` and the tilts leave no flag of a warning behind.
 *
 *  Source: Markel and Gray, "Linear Prediction of Speech" (1976); Kabal and Ramachandran, "The Computation of Line Spectral
 *  Frequencies Using Chebyshev Polynomials", IEEE Trans. ASSP 34 (1986). @{ */

/** Cepstrum of a predictor. @see @ref lp_conversions */
QORSR_API QorStatus qorsLPToCepstrum_32f(const float* source, float* destination, int32_t order);
/** Cepstrum of a 16-bit predictor. @see @ref lp_conversions */
QORSR_API QorStatus qorsLPToCepstrum_16s_Sfs(const int16_t* source, int16_t* destination, int32_t order, int32_t scaleFactor);
/** Predictor of a cepstrum. @see @ref lp_conversions */
QORSR_API QorStatus qorsCepstrumToLP_32f(const float* source, float* destination, int32_t order);
/** Predictor of a 16-bit cepstrum. @see @ref lp_conversions */
QORSR_API QorStatus qorsCepstrumToLP_16s_Sfs(const int16_t* source, int16_t* destination, int32_t order, int32_t scaleFactor);
/** Reflection coefficients of a predictor (step-down). @see @ref lp_conversions */
QORSR_API QorStatus qorsLPToReflection_32f(const float* source, float* destination, int32_t order);
/** Reflection coefficients of a 16-bit predictor (step-down). @see @ref lp_conversions */
QORSR_API QorStatus qorsLPToReflection_16s_Sfs(const int16_t* source, int16_t* destination, int32_t order, int32_t scaleFactor);
/** Predictor of reflection coefficients (step-up). @see @ref lp_conversions */
QORSR_API QorStatus qorsReflectionToLP_32f(const float* source, float* destination, int32_t order);
/** Predictor of 16-bit reflection coefficients (step-up). @see @ref lp_conversions */
QORSR_API QorStatus qorsReflectionToLP_16s_Sfs(const int16_t* source, int16_t* destination, int32_t order, int32_t scaleFactor);
/** Line spectral pairs of a predictor, as cosines. @see @ref lp_conversions */
QORSR_API QorStatus qorsLPToLSP_32f(const float* source, float* destination, int32_t order, int32_t* count, int32_t intervals,
                                    int32_t refinements);
/** Line spectral pairs of a 16-bit predictor, as cosines. @see @ref lp_conversions */
QORSR_API QorStatus qorsLPToLSP_16s_Sfs(const int16_t* source, int32_t sourceScale, int16_t* destination, int32_t order,
                                        int32_t* count, int32_t intervals, int32_t refinements, int32_t destinationScale);
/** Predictor of line spectral pairs. @see @ref lp_conversions */
QORSR_API QorStatus qorsLSPToLP_32f(const float* source, float* destination, int32_t order);
/** Predictor of 16-bit line spectral pairs. @see @ref lp_conversions */
QORSR_API QorStatus qorsLSPToLP_16s_Sfs(const int16_t* source, int32_t sourceScale, int16_t* destination, int32_t order,
                                        int32_t destinationScale);
/** Spectrum of a model at 2^order frequencies. @see @ref lp_conversions */
QORSR_API QorStatus qorsLPToSpectrum_32f(const float* source, int32_t length, float* destination, int32_t order, float value);
/** Spectrum of a 16-bit model at 2^order frequencies. @see @ref lp_conversions */
QORSR_API QorStatus qorsLPToSpectrum_16s_Sfs(const int16_t* source, int32_t length, int16_t* destination, int32_t order,
                                             int32_t value, int32_t scaleFactor);
/** Area ratios of reflection coefficients. @see @ref lp_conversions */
QORSR_API QorStatus qorsReflectionToAR_32f(const float* source, float* destination, int32_t order);
/** Area ratios of 16-bit reflection coefficients. @see @ref lp_conversions */
QORSR_API QorStatus qorsReflectionToAR_16s_Sfs(const int16_t* source, int32_t sourceScale, int16_t* destination, int32_t order,
                                               int32_t destinationScale);
/** Areas of a tube from its reflection coefficients: the running product of area ratios. @see @ref lp_conversions */
QORSR_API QorStatus qorsReflectionToTrueAR_32f(const float* source, float* destination, int32_t order);
/** Areas of a tube from 16-bit reflection coefficients. @see @ref lp_conversions */
QORSR_API QorStatus qorsReflectionToTrueAR_16s_Sfs(const int16_t* source, int32_t sourceScale, int16_t* destination, int32_t order,
                                                   int32_t destinationScale);
/** Logarithms of area ratios, of limited reflection coefficients. @see @ref lp_conversions */
QORSR_API QorStatus qorsReflectionToLAR_32f(const float* source, float* destination, int32_t order, float limit);
/** Logarithms of area ratios, of limited 16-bit reflection coefficients; truncated. @see @ref lp_conversions */
QORSR_API QorStatus qorsReflectionToLAR_16s_Sfs(const int16_t* source, int32_t sourceScale, int16_t* destination, int32_t order,
                                                float limit, int32_t destinationScale);
/** Tilt of two reflection coefficients over the sum of their magnitudes. @see @ref lp_conversions */
QORSR_API QorStatus qorsReflectionToAbsTilt_32f(const float* first, const float* second, float* destination, int32_t order);
/** Tilt of two 16-bit reflection coefficients over the sum of their magnitudes. @see @ref lp_conversions */
QORSR_API QorStatus qorsReflectionToAbsTilt_16s_Sfs(const int16_t* first, const int16_t* second, int16_t* destination,
                                                    int32_t order, int32_t scaleFactor);
/** Tilt of two reflection coefficients over their sum. @see @ref lp_conversions */
QORSR_API QorStatus qorsReflectionToTilt_32f(const float* first, const float* second, float* destination, int32_t order);
/** Tilt of two 16-bit reflection coefficients over their sum. @see @ref lp_conversions */
QORSR_API QorStatus qorsReflectionToTilt_16s_Sfs(const int16_t* first, const int16_t* second, int16_t* destination, int32_t order,
                                                 int32_t scaleFactor);
/** @} */

/* ---------------- Signal conditioning ---------------- */

/** @defgroup offset_compensation Removal of an offset
 *  A microphone's constant offset, removed from samples before features are made of them: by a recursive high-pass of first order,
 *  which goes on from call to call, or by the mean of a whole recording.
 *
 *  **Filter** (`CompensateOffset`). With c the coefficient (0.999, say; the zero frequency is removed, the corner lies near
 *  (1 - c) fs / (2 pi)):
 *
 *      y(n) = x(n) - x(n - 1) + c y(n - 1)
 *
 *  Pieces of a signal join without a seam where the caller carries two numbers: `before`, the last sample (0 at first), which each
 *  call replaces by its own last one, and `result`, the last number of the piece before (0 at first), which is
 *  destination[length - 1] of that call.
 *
 *  @warning `CompensateOffset_16s` is not the same in pieces: the first number of each call is truncated, all others are rounded.
 *
 *  **Mean** (`ZeroMean`). The mean is kept to half a unit, and results lie from -32767 to 32767.
 *
 *  | Parameter | Use | Elements, or values | |
 *  |---|---|---|---|
 *  | `source` | in | length | samples |
 *  | `destination` | out | length | |
 *  | `buffer` | in, out | length | samples, in place |
 *  | `before` | in, out | 1 | x(-1), then x(length - 1) |
 *  | `length` | value | at least 1 | |
 *  | `length` of `CompensateOffsetQ15_*` | value | 1 to 65535 | |
 *  | `result` | value | any | y(-1) |
 *  | `coefficient` | value | any | c |
 *  | `coefficient` of `CompensateOffsetQ15_*` | value | at least 0 | Q15 |
 *
 *  | Status, in order | when |
 *  |---|---|
 *  | #qorStatusNullPointer | source, destination, buffer or `before` null (`ZeroMean`: behind the length) |
 *  | #qorStatusBadSize | length below 1; Q15: above 65535 |
 *  | #qorStatusBadArgument | Q15: coefficient below 0 |
 *
 *  **Exact arithmetic.** Every operation in float: y(0) = (c result + x(0)) - before, y(n) = (x(n) - x(n - 1)) + (c y(n - 1)).
 *  - `_16s`: the same sums; the first number is truncated toward zero, every other one gets 0.5 with its sign and is truncated;
 *    limited to 16 bits, a NaN gives 0. The stored number feeds the next one.
 *  - `Q15`: (x(n) - x(n - 1)) 2^15 + c y(n - 1) exactly, divided by 2^15 toward zero, limited to 16 bits, and fed back as stored.
 *  - `ZeroMean`: m = (2 sum) / length toward zero; t = 2 x - m; y = t / 2, a half away from zero. The sum is exact. @{ */

/** Removes the offset of float samples. */
QORSR_API QorStatus qorsCompensateOffset_32f(const float* source, float* destination, int32_t length, float* before, float result,
                                             float coefficient);
/** Removes the offset of float samples in place. */
QORSR_API QorStatus qorsCompensateOffset_32f_I(float* buffer, int32_t length, float* before, float result, float coefficient);
/** Removes the offset of 16-bit samples, computed in float. */
QORSR_API QorStatus qorsCompensateOffset_16s(const int16_t* source, int16_t* destination, int32_t length, int16_t* before,
                                             int16_t result, float coefficient);
/** Removes the offset of 16-bit samples in place, computed in float. */
QORSR_API QorStatus qorsCompensateOffset_16s_I(int16_t* buffer, int32_t length, int16_t* before, int16_t result, float coefficient);
/** Removes the offset of 16-bit samples in whole numbers, with a Q15 coefficient. */
QORSR_API QorStatus qorsCompensateOffsetQ15_16s(const int16_t* source, int16_t* destination, int32_t length, int16_t* before,
                                                int16_t result, int16_t coefficient);
/** Removes the offset of 16-bit samples in place and in whole numbers, with a Q15 coefficient. */
QORSR_API QorStatus qorsCompensateOffsetQ15_16s_I(int16_t* buffer, int32_t length, int16_t* before, int16_t result,
                                                  int16_t coefficient);
/** Subtracts the mean of 16-bit samples in place. */
QORSR_API QorStatus qorsZeroMean_16s(int16_t* buffer, int32_t length);
/** @} */

/** @defgroup sign_changes Sign changes
 *  How often neighbouring samples differ in sign: high for noise and fricatives, low for voiced speech. Counts are not divided by the
 *  length. One sample has no neighbour and counts 0.
 *
 *  | Function | Counts | Result |
 *  |---|---|---|
 *  | `SignChangeRate` | pairs with x(n) x(n + 1) < 0: a zero counts for nothing | the count |
 *  | `SignChangeRate_Count0` | half of the sum of the steps of sgn x: 1 from sign to sign, 1/2 to or from zero | float: exact to a half; 16 bits: an odd sum loses its half |
 *  | `SignChangeRateXor` | pairs whose sign bits differ: +0 is positive, -0 negative | the count |
 *
 *  | Parameter | Use | Elements, or values | |
 *  |---|---|---|---|
 *  | `source` | in | length | samples |
 *  | `result` | out | 1 | |
 *  | `length` | value | at least 1 | |
 *
 *  | Status, in order | when |
 *  |---|---|
 *  | #qorStatusNullPointer | result or source null |
 *  | #qorStatusBadSize | length below 1 |
 *
 *  **Exact arithmetic.** Counts are whole, and rounded to float only at the end (from 2^24 on). The float product of `SignChangeRate_32f`
 *  counts where it is below 0: not where it underflows to 0, and not where it is a NaN. sgn of a NaN is 0. @{ */

/** Counts the sign changes of float samples; zeros count for nothing. */
QORSR_API QorStatus qorsSignChangeRate_32f(const float* source, int32_t length, float* result);
/** Counts the sign changes of float samples; a step to or from zero counts half. */
QORSR_API QorStatus qorsSignChangeRate_Count0_32f(const float* source, int32_t length, float* result);
/** Counts the neighbours of float samples whose sign bits differ. */
QORSR_API QorStatus qorsSignChangeRateXor_32f(const float* source, int32_t length, int32_t* result);
/** Counts the sign changes of 16-bit samples; zeros count for nothing. */
QORSR_API QorStatus qorsSignChangeRate_16s(const int16_t* source, int32_t length, int32_t* result);
/** Counts the sign changes of 16-bit samples; a step to or from zero counts half, and an odd half is lost. */
QORSR_API QorStatus qorsSignChangeRate_Count0_16s(const int16_t* source, int32_t length, int32_t* result);
/** @} */

/** @defgroup energy_normalisation Normalisation of energies
 *  The log energies of an utterance, set off against the loudest frame, with silence raised to a floor:
 *
 *      floor = greatest - silence ln(10) / 10
 *      y(r)  = top - (greatest - max(e(r), floor)) scale
 *
 *  Energies are natural logarithms, `silence` is in decibels (50, say). The loudest frame becomes 1 (16 bits: `top`), silence
 *  1 - silence ln(10) / 10 scale. They are replaced in place: energy r is buffer[r * step], so that the column of the energy in a block
 *  of feature vectors can be treated where it stands.
 *
 *  `NormEnergy` looks for the greatest energy itself; `NormEnergy_RT` is told, for a track that is still running, where later frames
 *  may be louder.
 *
 *  | Parameter | Use | Elements, or values | |
 *  |---|---|---|---|
 *  | `buffer` | in, out | height x 1, step apart | energies |
 *  | `step`, `height` | value | at least 1 | |
 *  | `silence` | value | any | decibels |
 *  | `greatest`, `top`, `scale` | value | any | |
 *
 *  | Status, in order | when |
 *  |---|---|
 *  | #qorStatusNullPointer | buffer null |
 *  | #qorStatusBadSize | step or height below 1 |
 *
 *  **Exact arithmetic.** All in float, every operation rounded on its own, with 0.230259 for ln(10) / 10. The greatest energy is at least
 *  the lowest finite number; a NaN is never the greatest, and is raised to the floor. No memory is taken.
 *  - 16 bits: y is truncated toward zero and limited; a NaN gives 0.
 *  - required: 16-bit tracks with a scale below 1.001 (`NormEnergy_16s`: and 11 energies or more) go in whole numbers: the floor is
 *    rounded, a half away from zero, the scale is s = 1024 scale, truncated, and y = top - ((greatest - max(e, floor)) s >> 10),
 *    limited. The two ways may differ by one or more. @{ */

/** Normalises float energies by the greatest of them. */
QORSR_API QorStatus qorsNormEnergy_32f(float* buffer, int32_t step, int32_t height, float silence, float scale);
/** Normalises float energies by a given greatest one. */
QORSR_API QorStatus qorsNormEnergy_RT_32f(float* buffer, int32_t step, int32_t height, float silence, float greatest, float scale);
/** Normalises 16-bit energies by the greatest of them. */
QORSR_API QorStatus qorsNormEnergy_16s(int16_t* buffer, int32_t step, int32_t height, int16_t silence, int16_t top, float scale);
/** Normalises 16-bit energies by a given greatest one. */
QORSR_API QorStatus qorsNormEnergy_RT_16s(int16_t* buffer, int32_t step, int32_t height, int16_t silence, int16_t greatest,
                                          int16_t top, float scale);
/** @} */

/** @defgroup power_sums Sums and sums of squares of columns
 *  What the means and variances of feature vectors are made of, for statistics that grow from utterance to utterance:
 *
 *      sums[c]    = sum over r of x(r, c)
 *      squares[c] = sum over r of x(r, c)^2
 *
 *  Members without `I` overwrite, members with `I` add to what stands there. In spite of the name mean and variance are the caller's
 *  to form: sums / n, and squares / n - mean^2.
 *
 *  @warning `_ISfs` with a scale factor other than 0 scales what stood there again with every call.
 *
 *  | Parameter | Use | Elements, or values | |
 *  |---|---|---|---|
 *  | `source` | in | height x width, step apart | one vector a row |
 *  | `sums`, `squares` | out | width | |
 *  | `sums`, `squares` of `*_I`, `*_ISfs` | in, out | width | |
 *  | `height`, `width` | value | at least 1 | |
 *  | `step` | value | at least width | |
 *  | `scaleFactor` | value | any | |
 *
 *  | Status, in order | when |
 *  |---|---|
 *  | #qorStatusBadStride | step below width |
 *  | #qorStatusNullPointer | source, sums or squares null |
 *  | #qorStatusBadSize | height or width below 1 |
 *
 *  **Exact arithmetic.** In float, every product rounded; ((x0 + x1) + (x2 + x3)) + (x4 + x5) ..., an odd last row last, and so the squares.
 *  Members with `I` begin with the number that stands there, to which pairs of rows are added. 32-bit results are float sums times
 *  2^-scaleFactor, rounded to nearest, ties to even; what exceeds 2147483520 gives 2147483647, a NaN 0. `_ISfs` first rounds what stands
 *  there to float. @{ */

/** Sums and sums of squares of float columns. */
QORSR_API QorStatus qorsSumMeanVar_32f(const float* source, int32_t step, int32_t height, float* sums, float* squares,
                                       int32_t width);
/** Adds the sums and sums of squares of float columns. */
QORSR_API QorStatus qorsSumMeanVar_32f_I(const float* source, int32_t step, int32_t height, float* sums, float* squares,
                                         int32_t width);
/** Sums and sums of squares of 16-bit columns, in float. */
QORSR_API QorStatus qorsSumMeanVar_16s32f(const int16_t* source, int32_t step, int32_t height, float* sums, float* squares,
                                          int32_t width);
/** Adds the sums and sums of squares of 16-bit columns, in float. */
QORSR_API QorStatus qorsSumMeanVar_16s32f_I(const int16_t* source, int32_t step, int32_t height, float* sums, float* squares,
                                            int32_t width);
/** Sums and sums of squares of 16-bit columns, times 2^-scaleFactor. */
QORSR_API QorStatus qorsSumMeanVar_16s32s_Sfs(const int16_t* source, int32_t step, int32_t height, int32_t* sums, int32_t* squares,
                                              int32_t width, int32_t scaleFactor);
/** Adds the sums and sums of squares of 16-bit columns; all times 2^-scaleFactor. */
QORSR_API QorStatus qorsSumMeanVar_16s32s_ISfs(const int16_t* source, int32_t step, int32_t height, int32_t* sums, int32_t* squares,
                                               int32_t width, int32_t scaleFactor);
/** @} */

/** @defgroup range_normalisation Normalisation into a range
 *  A vector mapped onto 0 to `range`, clipped at two points of the interval from min to max in which its numbers lie: a contour for
 *  display, levels for a table, a frame scaled to 8 bits.
 *
 *      d    = max - min
 *      high = upper d + min                 low = d lower + min
 *      y(n) = max(0, min(high, x(n)) - low) gain, gain = range / (upper d - d lower)
 *
 *  With lower = 0.05 and upper = 0.95 the outer twentieths of the interval are clipped; numbers at or below `low` become 0, at or above
 *  `high` range. `NormalizeInRangeMinMax` is given min and max; `NormalizeInRange` finds them in the data, where a NaN never decides.
 *
 *  | Parameter | Use | Elements, or values | |
 *  |---|---|---|---|
 *  | `source` | in | length | |
 *  | `destination` | out | length | |
 *  | `buffer` | in, out | length | in place |
 *  | `length` | value | at least 1 | |
 *  | `minimum` | value | at most maximum | |
 *  | `maximum` | value | any | |
 *  | `lower` | value | at least 0, below upper | |
 *  | `upper` | value | above 0, at most 1 | |
 *  | `range` | value | at least 0 | |
 *
 *  | Status, in order | when |
 *  |---|---|
 *  | #qorStatusNullPointer | source, destination or buffer null |
 *  | #qorStatusBadSize | length below 1 |
 *  | #qorStatusBadArgument | lower below 0, not below upper, upper above 1, range below 0, minimum above maximum |
 *  | #qorStatusDegenerateInput | warning, no failure: min equals max, or, where they are found in the data, a length of 1; all results are 0 |
 *
 *  **Exact arithmetic.** In float, in the order that is written above; a NaN stays one. Whole results are rounded to nearest, ties to
 *  even, and limited to their type; a NaN gives 0. @{ */

/** Maps float numbers into a range. */
QORSR_API QorStatus qorsNormalizeInRange_32f(const float* source, float* destination, int32_t length, float lower, float upper,
                                             float range);
/** Maps float numbers in place into a range. */
QORSR_API QorStatus qorsNormalizeInRange_32f_I(float* buffer, int32_t length, float lower, float upper, float range);
/** Maps 16-bit numbers into a range. */
QORSR_API QorStatus qorsNormalizeInRange_16s(const int16_t* source, int16_t* destination, int32_t length, float lower, float upper,
                                             int16_t range);
/** Maps 16-bit numbers in place into a range. */
QORSR_API QorStatus qorsNormalizeInRange_16s_I(int16_t* buffer, int32_t length, float lower, float upper, int16_t range);
/** Maps 16-bit numbers into an 8-bit range. */
QORSR_API QorStatus qorsNormalizeInRange_16s8u(const int16_t* source, uint8_t* destination, int32_t length, float lower,
                                               float upper, uint8_t range);
/** Maps float numbers into a 16-bit range. */
QORSR_API QorStatus qorsNormalizeInRange_32f16s(const float* source, int16_t* destination, int32_t length, float lower, float upper,
                                                int16_t range);
/** Maps float numbers into an 8-bit range. */
QORSR_API QorStatus qorsNormalizeInRange_32f8u(const float* source, uint8_t* destination, int32_t length, float lower, float upper,
                                               uint8_t range);
/** Maps float numbers from a given interval into a range. */
QORSR_API QorStatus qorsNormalizeInRangeMinMax_32f(const float* source, float* destination, int32_t length, float minimum,
                                                   float maximum, float lower, float upper, float range);
/** Maps float numbers in place from a given interval into a range. */
QORSR_API QorStatus qorsNormalizeInRangeMinMax_32f_I(float* buffer, int32_t length, float minimum, float maximum, float lower,
                                                     float upper, float range);
/** Maps 16-bit numbers from a given interval into a range. */
QORSR_API QorStatus qorsNormalizeInRangeMinMax_16s(const int16_t* source, int16_t* destination, int32_t length, int16_t minimum,
                                                   int16_t maximum, float lower, float upper, int16_t range);
/** Maps 16-bit numbers in place from a given interval into a range. */
QORSR_API QorStatus qorsNormalizeInRangeMinMax_16s_I(int16_t* buffer, int32_t length, int16_t minimum, int16_t maximum, float lower,
                                                     float upper, int16_t range);
/** Maps 16-bit numbers from a given interval into an 8-bit range. */
QORSR_API QorStatus qorsNormalizeInRangeMinMax_16s8u(const int16_t* source, uint8_t* destination, int32_t length, int16_t minimum,
                                                     int16_t maximum, float lower, float upper, uint8_t range);
/** Maps float numbers from a given interval into a 16-bit range. */
QORSR_API QorStatus qorsNormalizeInRangeMinMax_32f16s(const float* source, int16_t* destination, int32_t length, float minimum,
                                                      float maximum, float lower, float upper, int16_t range);
/** Maps float numbers from a given interval into an 8-bit range. */
QORSR_API QorStatus qorsNormalizeInRangeMinMax_32f8u(const float* source, uint8_t* destination, int32_t length, float minimum,
                                                     float maximum, float lower, float upper, uint8_t range);
/** @} */

/* ================================ Robust front-ends ================================ */

/* ---------------- Spectral noise reduction ---------------- */

/** @defgroup noise_reduction Spectral noise reduction
 *  The frame-by-frame steps of a two-stage Wiener filter for speech at 8 kHz. The caller holds all buffers and what passes from frame to
 *  frame; nothing here keeps a state.
 *
 *  **Power spectrum** (`SmoothedPowerSpectrum`) of a packed real transform: spectrum[0] is the first bin, spectrum[1] the last one, both
 *  real; real and imaginary parts of the others follow. Neighbouring bins are merged: with n = length / 4,
 *
 *      power[k] = (x[4k]^2 + x[4k+1]^2 + x[4k+2]^2 + x[4k+3]^2) / 2, k = 1 to n - 1
 *      power[0] = (x[0]^2 + x[2]^2 + x[3]^2) / 2,   power[n] = x[1]^2, which is not halved
 *
 *  `Sfs` members give that times 2^-scaleFactor.
 *
 *  **Noise** (`NoiseSpectrumUpdate`), x the present spectrum and n the noise so far:
 *
 *      result = n ((0.1 x / (x + n)) (n / (n + 0.1 x) + 1) + 0.9)
 *
 *  It falls by a tenth a frame at most and rises more slowly. A divisor of 0 gives 0. `Sfs`: times 2^-scaleFactor. The result may be
 *  the noise itself.
 *
 *  **Gains** (`WienerFilterDesign`), with the denoised spectrum p of the frame before: a = (0.02 max(x - n, 0) + 0.98 p) / n,
 *  b = max(a / (a + 1) x / n, 10^(-22/20)), gain = b / (b + 1). `16s`: in Q14, 16384 is 1.
 *
 *  **Taps** (`TabsCalculation`) from coefficients c, with c[0] in the middle: taps[8] = c[0], taps[8 - k] = c[k] and
 *  taps[8 + k] = c[k + 1] for k = 1 to 8.
 *
 *  **Filter** (`ResidualFilter`): result[i] = sum over k = 0 to 16 of taps[k] source[i + k]. `16s`: times 2^-scaleFactor; with taps in Q15
 *  the scale factor is 15.
 *
 *  **Waveform** (`WaveProcessing`): with Teager's energy e[n] = |x[n]^2 - x[n-1] x[n+1]|, at the ends |(x[0] - x[1]) x[0]| and |(x[199] -
 *  x[198]) x[199]|, summed over 9 samples (ends repeated) to s[n], peaks are searched: the largest s; from it, forwards, the largest of
 *  s[p+25] to s[p+79] for as long as there is room behind p, and backwards the largest of s[p-79] to s[p-25] likewise. From 4 samples
 *  before each peak on, 0.8 of the way to the next one is amplified by 1.2 (behind the last peak: of the way from the one before); what is
 *  left is weakened by 0.8. Both samples at each step between the two stay as they are. `16s`: 38/32 and 27/32, over 27/32 of the way.
 *
 *  @warning The two sides of the filter are one coefficient apart: c[1] stands on the left side only and c[9] on the right one.
 *
 *  | Parameter | Use | Elements, or values | |
 *  |---|---|---|---|
 *  | `spectrum` | in | length | packed transform |
 *  | `power` | out | length / 4 + 1 | |
 *  | `present` | in | length | power spectrum of this frame |
 *  | `noise` | in | length | noise so far |
 *  | `denoised` | in | length | denoised spectrum of the frame before |
 *  | `gain` | out | length | `16s`: Q14 |
 *  | `result` of `ResidualFilter_*` | out | 80 | |
 *  | `result` of `WaveProcessing_*` | out | 200 | |
 *  | `result` | out | length | new noise |
 *  | `coefficients` | in | 10 | |
 *  | `taps` of `TabsCalculation_*` | out | 17 | |
 *  | `taps` of `ResidualFilter_*` | in | 17 | |
 *  | `source` of `ResidualFilter_*` | in | 96 | the frame with 16 samples more |
 *  | `source` of `WaveProcessing_*` | in | 200 | |
 *  | `length` of `SmoothedPowerSpectrum*` | value | at least 4, a multiple of 4 | |
 *  | `length` | value | at least 1 | |
 *  | `scaleFactor` | value | any | |
 *
 *  | Status, in order | when |
 *  |---|---|
 *  | #qorStatusNullPointer | a pointer is null |
 *  | #qorStatusBadSize | a length below 1; `SmoothedPowerSpectrum`: not a multiple of 4 |
 *
 *  **Exact arithmetic.** Every operation is rounded on its own, in the order that is written.
 *  - `SmoothedPowerSpectrum_32f`: ((x[4k]^2 + x[4k+1]^2) + (x[4k+2]^2 + x[4k+3]^2)) 0.5, without x[1]^2 in the first result. Integer squares
 *    are halved one by one, rounding down. required, at the limits:
 *    - `16s`: sums wrap in 32 bits (four times -32768 give -2^31) and are limited to 16 bits; the first and the last result are limited to
 *      32767.
 *    - `32s`: the first result is an exact sum, shifted and saturated; those in the middle are formed in double, from squares that are not
 *      halved times 2^-(scaleFactor + 1), rounded to nearest, ties to even, and what is out of range (a NaN, too) becomes the most negative
 *      integer; the last one is the square's low 32 bits, taken as a signed number, shifted and saturated.
 *    - `32s64s`: exact sums modulo 2^64, shifted; the last one from the square's low 32 bits likewise.
 *  - `NoiseSpectrumUpdate` rounds every operation toward zero, in every rounding mode of the caller. `Sfs`: integers are converted to float;
 *    r = n / d, t = n ((x / (x + n)) 0.1 (r + 1) + 0.9) 2^-scaleFactor, with d = 0.1 x + n, a zero if that is one when truncated
 *    (`32s`: d = n + 0.1 x truncated, and sums of integers are exact before they are converted). t is limited and truncated, and a NaN (0
 *    times an infinite power of two) gives 0. required: what is above 2^31 in `32s` becomes the most negative integer.
 *  - `WienerFilterDesign_32f`: r = 1 / n, a / (a + 1) times x r, with 0.07943282 as the floor, which a NaN takes too (no noise gives one).
 *    `16s`, with quotients truncated and i = 16384 / n: A = ((4014 p + 82 max(x - n, 0)) i) >> 14, g = (A 16384) / (A + 4096), b =
 *    max(((x g) >> 14) i, 1301), gain = 128 b / ((b >> 7) + 128). No noise gives 1206, and so does a divisor A + 4096 of 0.
 *  - `ResidualFilter_32f` adds in the order of the taps. `16s`: products of taps 0 and 1, of 2 and 3, and so on up to 15 are added in 32 bits
 *    that wrap (required); these sums and the last product exactly; times the power of two, limited to 16 bits, to nearest, ties to even.
 *  - `WaveProcessing`: s is a running sum (required: s[n] = (s[n-1] + e[n+4]) - e[n-5], beginning with nine terms in their order); the
 *    first of equal values is a peak. `16s`: energies have 32 bits, sums wrap there; products are rounded to nearest, ties to even, and
 *    saturated.
 *  - Nothing is allocated.
 *
 *  Source of the method: Macho and others, "Evaluation of a noise-robust DSR front-end on Aurora databases", ICSLP 2002; ETSI ES 202 050.
 *  Ephraim and Malah, "Speech enhancement using a minimum mean-square error short-time spectral amplitude estimator", IEEE Trans. ASSP 32
 *  (1984). @{ */

/** Power spectrum of a packed float transform, two bins in each result. @see @ref noise_reduction */
QORSR_API QorStatus qorsSmoothedPowerSpectrumAurora_32f(const float* spectrum, float* power, int32_t length);
/** Power spectrum of a packed 16-bit transform, two bins in each result. @see @ref noise_reduction */
QORSR_API QorStatus qorsSmoothedPowerSpectrumAurora_16s(const int16_t* spectrum, int16_t* power, int32_t length);
/** Power spectrum of a packed 32-bit transform, two bins in each result, scaled. @see @ref noise_reduction */
QORSR_API QorStatus qorsSmoothedPowerSpectrumAurora_32s_Sfs(const int32_t* spectrum, int32_t* power, int32_t length,
                                                            int32_t scaleFactor);
/** Power spectrum of a packed 32-bit transform as 64-bit numbers, two bins in each result, scaled. @see @ref noise_reduction */
QORSR_API QorStatus qorsSmoothedPowerSpectrumAurora_32s64s_Sfs(const int32_t* spectrum, int64_t* power, int32_t length,
                                                               int32_t scaleFactor);
/** New noise estimate of a float spectrum. @see @ref noise_reduction */
QORSR_API QorStatus qorsNoiseSpectrumUpdate_Aurora_32f(const float* present, const float* noise, float* result, int32_t length);
/** New noise estimate of a 16-bit spectrum, scaled. @see @ref noise_reduction */
QORSR_API QorStatus qorsNoiseSpectrumUpdate_Aurora_16s_Sfs(const int16_t* present, const int16_t* noise, int16_t* result,
                                                           int32_t length, int32_t scaleFactor);
/** New noise estimate of a 32-bit spectrum, scaled. @see @ref noise_reduction */
QORSR_API QorStatus qorsNoiseSpectrumUpdate_Aurora_32s_Sfs(const int32_t* present, const int32_t* noise, int32_t* result,
                                                           int32_t length, int32_t scaleFactor);
/** Wiener gains of a float spectrum. @see @ref noise_reduction */
QORSR_API QorStatus qorsWienerFilterDesign_Aurora_32f(const float* present, const float* noise, const float* denoised, float* gain,
                                                      int32_t length);
/** Wiener gains of a 16-bit spectrum, in Q14. @see @ref noise_reduction */
QORSR_API QorStatus qorsWienerFilterDesign_Aurora_16s(const int16_t* present, const int16_t* noise, const int16_t* denoised,
                                                      int16_t* gain, int32_t length);
/** The 17 taps of a filter from 10 float coefficients. @see @ref noise_reduction */
QORSR_API QorStatus qorsTabsCalculation_Aurora_32f(const float* coefficients, float* taps);
/** The 17 taps of a filter from 10 16-bit coefficients. @see @ref noise_reduction */
QORSR_API QorStatus qorsTabsCalculation_Aurora_16s(const int16_t* coefficients, int16_t* taps);
/** Filters a float frame of 80 samples. @see @ref noise_reduction */
QORSR_API QorStatus qorsResidualFilter_Aurora_32f(const float* source, float* result, const float* taps);
/** Filters a 16-bit frame of 80 samples; results are scaled. @see @ref noise_reduction */
QORSR_API QorStatus qorsResidualFilter_Aurora_16s_Sfs(const int16_t* source, int16_t* result, const int16_t* taps,
                                                      int32_t scaleFactor);
/** Weights a float frame of 200 samples by its energy's contour. @see @ref noise_reduction */
QORSR_API QorStatus qorsWaveProcessing_Aurora_32f(const float* source, float* result);
/** Weights a 16-bit frame of 200 samples by its energy's contour. @see @ref noise_reduction */
QORSR_API QorStatus qorsWaveProcessing_Aurora_16s(const int16_t* source, int16_t* result);
/** @} */

/* ---------------- Band split and equalisation ---------------- */

/** @defgroup band_split Band split and equalisation
 *  The wide band of a front-end for speech at 16 kHz: a filter pair splits the signal into two bands of 8 kHz each, mel banks of a fixed
 *  form measure them, the high band is coded in three values, and the cepstrum is equalised.
 *
 *  **Split** (`LowHighFilter`), with taps h of a low-pass filter of half the band, and T = tapCount:
 *
 *      low[i] = sum over k = 0 to T - 1 of h[k] x[2i + k]
 *      high[i] = s sum over k of (-1)^k h[k] x[2i + k], s = -1 for even i, 1 for odd i
 *
 *  for i = 0 to length / 2 - 1; an odd length loses its last sample. The caller supplies the T - 2 samples behind the frame (so they are
 *  the past of the next one). `16s`: times 2^-scaleFactor; with taps in Q15 the scale factor is 15.
 *
 *  **Banks** (`MelFBank...Low`, `MelFBank...High`): records of @ref filter_bank, for spectra of 128 samples at 8 kHz, bins 0 to 64; evaluated
 *  with qorsEvalFBank_32f() and its relatives, released with qorsFBankFree_32f() if they have memory of their own. Triangles from bin to
 *  bin, 0 at both ends, at centres equally far apart in mel(f) = 2595 log10(1 + f / 700).
 *  - Low: 25 filters from 1 to 4000 Hz, the first of which is half a triangle, all divided by the sum of their weights.
 *  - High: 3 filters from 80 to 4000 Hz, as they are.
 *
 *  **Coding** (`HighBandCoding`): with L(z) = log(z), at least -10, of three values b of the low band, a spectrum A of it and a spectrum B of
 *  the high one:
 *
 *      A0, A1, A2 = L of the sums of A[33] to A[38], A[39] to A[48], A[49] to A[64]
 *      T0, T1, T2 = L of half the sums of B[66] to B[76], B[78] to B[96], B[98] to B[128]
 *      result[j] = 0.1 (T0 - (A0 - L(b[j]))) + 0.2 (T1 - (A1 - L(b[j]))) + 0.7 (T2 - (A2 - L(b[j])))
 *
 *  `32s`: logarithms have 7 fraction bits, and results 2^-scaleFactor in whole numbers; -7 keeps the fraction.
 *
 *  **Equaliser** (`BlindEqualization`): the cepstrum loses the bias, and the bias follows what is left of the cepstrum towards a reference,
 *  the faster the louder the frame:
 *
 *      mu = min(max(logEnergy - 211/64, 0), 1) 9/1024
 *      cepstrum[i] -= bias[i],   bias[i] += mu (cepstrum[i] - reference[i])
 *
 *  `16s`: logEnergy counts 64ths. The bias is the caller's, one for each stream, and begins with zeros. The three vectors may overlap: then
 *  each element is read when it is its turn.
 *
 *  @warning Of all-zero spectra and a low band of zeros the coding is -10 (`32s`: -1104 / 128, since the empty sums of B gain 177 too), not 0.
 *  @warning `HighBandCoding_32s` with a scale factor below -7 shifts left by scaleFactor + 7 modulo 32: -8 by 31 (required).
 *
 *  | Parameter | Use | Elements, or values | |
 *  |---|---|---|---|
 *  | `size` | out | 1 | bytes |
 *  | `state` of `*InitAlloc*` | makes | | |
 *  | `state` of `MelFBankInitLow_*` | block | bytes of `MelFBankGetSizeLow_*` | begins at any address that the element type allows |
 *  | `state` of `MelFBankInitHigh_*` | block | bytes of `MelFBankGetSizeHigh_*` | |
 *  | `filterCount` of `MelFBankInit*Low_*` | is | 25 | |
 *  | `filterCount` of `MelFBankInit*High_*` | is | 3 | |
 *  | `bins`, `inputs` of `MelFBankInit*` | is | 65 | |
 *  | `source` | in | max(length / 2 * 2 + tapCount - 2, 1) | |
 *  | `low`, `high` | out | length / 2 | |
 *  | `taps` | in | tapCount | |
 *  | `tapCount` | value | at least 1 | |
 *  | `lowBand` | in | 3 | |
 *  | `spectrumA` | in | 65 | bins 33 to 64 are used |
 *  | `spectrumB` | in | 129 | bins 66 to 128 are used |
 *  | `result` | out | 3 | |
 *  | `reference` | in | length | |
 *  | `cepstrum`, `bias` | in, out | length | |
 *  | `length` | value | at least 1 | |
 *  | `logEnergy`, `scaleFactor` | value | any | |
 *
 *  | Functions | Statuses, in order |
 *  |---|---|
 *  | `MelFBank` | null; `InitAlloc`: #qorStatusNoMemory |
 *  | `LowHighFilter` | null source or taps; tapCount below 1; null bands; length below 1 (#qorStatusBadSize) |
 *  | `HighBandCoding` | null |
 *  | `BlindEqualization` | null; length below 1 |
 *
 *  **Exact arithmetic**
 *  - `LowHighFilter`: products of even and of odd taps are added apart, each in the order of the taps, to E and O; low = E + O, high =
 *    s (E - O). `16s`: exact sums, times the power of two in double, limited to 16 bits, to nearest, ties to even.
 *  - Banks: centres are computed in double and rounded to nearest, ties to even, to bin 64 at most. Weights are j / span and 1 - j / span in
 *    float, `16s`: in Q14, each quotient truncated. A section without width has no weights.
 *  - `HighBandCoding_32f`: sums in four lanes, joined as (l0 + l2) + (l1 + l3), with up to three bins behind them; logarithms in double
 *    where the argument is above exp(-10), each rounded to float; all else in float. `32s`: sums are exact and limited to 32 bits, those of B
 *    divided by 8 to nearest, ties to even; logarithms are rounded to nearest, -1280 of what is not above 0; those of B gain 177.
 *    required: the terms are (102 T0 - 102 d0) >> 10, (205 (T1 - d1)) >> 10 and (717 (T2 - d2)) >> 10, d = A - b, shifted one by one;
 *    their sum is shifted right by scaleFactor + 7.
 *  - `BlindEqualization_16s`: e = min(max(logEnergy - 211, 0), 64), t = c - b in 32 bits; the cepstrum is t saturated, the bias is
 *    saturated(b + ((9 e (t - reference)) >> 16)), with t as it was.
 *  - Only `InitAlloc` allocates.
 *
 *  Source of the method: ETSI ES 202 050; Mauuary, "Blind equalization in the cepstral domain for robust telephone based speech
 *  recognition", EUSIPCO 1998. @{ */

/** size = bytes of the caller's block for the low band's bank. @see @ref band_split */
QORSR_API QorStatus qorsMelFBankGetSizeLow_Aurora_32f(int32_t* size);
/** size = bytes of the caller's block for the low band's bank, for 16-bit data. @see @ref band_split */
QORSR_API QorStatus qorsMelFBankGetSizeLow_Aurora_16s(int32_t* size);
/** size = bytes of the caller's block for the high band's bank. @see @ref band_split */
QORSR_API QorStatus qorsMelFBankGetSizeHigh_Aurora_32f(int32_t* size);
/** size = bytes of the caller's block for the high band's bank, for 16-bit data. @see @ref band_split */
QORSR_API QorStatus qorsMelFBankGetSizeHigh_Aurora_16s(int32_t* size);
/** The low band's bank in the caller's block. @see @ref band_split */
QORSR_API QorStatus qorsMelFBankInitLow_Aurora_32f(FBankState_32f* state);
/** The low band's bank in the caller's block, for 16-bit data. @see @ref band_split */
QORSR_API QorStatus qorsMelFBankInitLow_Aurora_16s(FBankState_16s* state);
/** The high band's bank in the caller's block. @see @ref band_split */
QORSR_API QorStatus qorsMelFBankInitHigh_Aurora_32f(FBankState_32f* state);
/** The high band's bank in the caller's block, for 16-bit data. @see @ref band_split */
QORSR_API QorStatus qorsMelFBankInitHigh_Aurora_16s(FBankState_16s* state);
/** The low band's bank in memory of its own. @see @ref band_split */
QORSR_API QorStatus qorsMelFBankInitAllocLow_Aurora_32f(FBankState_32f** state);
/** The low band's bank in memory of its own, for 16-bit data. @see @ref band_split */
QORSR_API QorStatus qorsMelFBankInitAllocLow_Aurora_16s(FBankState_16s** state);
/** The high band's bank in memory of its own. @see @ref band_split */
QORSR_API QorStatus qorsMelFBankInitAllocHigh_Aurora_32f(FBankState_32f** state);
/** The high band's bank in memory of its own, for 16-bit data. @see @ref band_split */
QORSR_API QorStatus qorsMelFBankInitAllocHigh_Aurora_16s(FBankState_16s** state);
/** Splits a float signal into two bands of half its rate. @see @ref band_split */
QORSR_API QorStatus qorsLowHighFilter_Aurora_32f(const float* source, float* low, float* high, int32_t length, const float* taps,
                                                 int32_t tapCount);
/** Splits a 16-bit signal into two bands of half its rate; results are scaled. @see @ref band_split */
QORSR_API QorStatus qorsLowHighFilter_Aurora_16s_Sfs(const int16_t* source, int16_t* low, int16_t* high, int32_t length,
                                                     const int16_t* taps, int32_t tapCount, int32_t scaleFactor);
/** Codes the high band against the low one: three logarithms, float. @see @ref band_split */
QORSR_API QorStatus qorsHighBandCoding_Aurora_32f(const float* lowBand, const float* spectrumA, const float* spectrumB,
                                                  float* result);
/** Codes the high band against the low one: three logarithms, 32-bit, scaled. @see @ref band_split */
QORSR_API QorStatus qorsHighBandCoding_Aurora_32s_Sfs(const int32_t* lowBand, const int32_t* spectrumA, const int32_t* spectrumB,
                                                      int32_t* result, int32_t scaleFactor);
/** Corrects a float cepstrum by its bias, both in place. @see @ref band_split */
QORSR_API QorStatus qorsBlindEqualization_Aurora_32f(const float* reference, float* cepstrum, float* bias, int32_t length,
                                                     float logEnergy);
/** Corrects a 16-bit cepstrum by its bias, both in place. @see @ref band_split */
QORSR_API QorStatus qorsBlindEqualization_Aurora_16s(const int16_t* reference, int16_t* cepstrum, int16_t* bias, int32_t length,
                                                     int32_t logEnergy);
/** @} */

/* ---------------- Voice activity ---------------- */

/** @defgroup voice_activity Voice activity
 *  Speech or not, frame by frame, as front-ends need it that drop frames without speech. A frame gives three measures; each is
 *  compared with a threshold that follows a slow tracker of its own. A frame is active if one of the measures lies above its
 *  threshold, or if the caller's own count says so. The decision comes from the longest run of active frames among the last seven,
 *  and from two hangovers, so that the ends of words are kept.
 *
 *      state memory: qorsVADGetBufSize_Aurora_32f()      then, once a stream, qorsVADInit_Aurora_32f()
 *      once a frame:  qorsVADDecision_Aurora_32f()
 *      at the end:    qorsVADFlush_Aurora_32f(), until it gives #qorVADUndecided: at most seven times
 *
 *  `decision` is #qorVADSpeech, #qorVADNoSpeech or #qorVADUndecided. The first ten frames are undecided. The ring of seven frames
 *  makes the decision come late: of a word between silences, #qorVADSpeech begins two frames behind the first active frame.
 *
 *  **Measures**, with x the 64 values of `frame` and B the values of `bands`:
 *  - variance: sum x^2 / 64 - (sum x)^2 / 4096;
 *  - energy: S^2 - 3, S the sum of B[0] to B[24];
 *  - spectrum: 3/4 c + 1/4 of the c of the frame before, c = (B[1] + B[2] + B[3]) / 3.
 *
 *  What the values are is up to the caller: in the front-end of the source below they are the 25 mel bands of the first stage's
 *  Wiener filter, and its coefficients.
 *
 *  **Trackers.** T follows its measure m: in the first 14 frames T = max(T, m); then, if L T < m < U T, T = 0.8 T + 0.2 m; then, if
 *  m is at most D T (of the variance: below), T = 0.97 T + 0.03 m. The measure is active if now m > G T.
 *
 *  | measure | U | L | D | G |
 *  |---|---|---|---|---|
 *  | variance | 1.5 | 0.85 | 0.25 | 1.65 |
 *  | energy | 1.5 | 0.75 | 0.5 | 1.65 |
 *  | spectrum | 1.5 | 0.75 | 0.5 | 3.25 |
 *
 *  The energy's tracker is e in frame 1. In frames n = 1 to 14 a mean becomes ((n - 1) mean + e) 1.1 / n; once e / mean exceeds 2.5,
 *  the tracker takes the larger e no more: the stream began within a word.
 *
 *  **Decision**, with R the longest run of active frames in the ring:
 *  - R at least 4: the long hangover begins anew: 23 frames, and 40 from the next time on if this happens before frame 36;
 *  - R at least 3: the short hangover begins anew, 5 frames, and it is speech;
 *  - R below 3: each hangover that is not 0 loses one frame; if both are 0, there is no speech.
 *
 *  | Parameter | Use | Elements, or values | |
 *  |---|---|---|---|
 *  | `size` | out | 1 | bytes: 64 |
 *  | `state` of `VADInit_*` | block | bytes of `VADGetBufSize_*` | |
 *  | `state` | in, out | | |
 *  | `bands` | in | 25 | energies of bands |
 *  | `frame` | in | 64 | |
 *  | `activityCount` | value | any | at least 5: the frame is active |
 *  | `decision` | out | 1 | |
 *
 *  Statuses: null, and no other. Values are not examined: a NaN or an infinity may settle in a tracker.
 *
 *  @warning The energy of 16-bit bands is taken modulo 2^32 (required): keep the sum of the 25 bands below 46341.
 *  @warning Keep S above the root of 3 from the first frame on: negative energies in the first frames may leave the tracker negative,
 *  and then every frame is active.
 *  @warning After a flush a stream ends. A new one begins with `Init`.
 *
 *  **Exact arithmetic**
 *  - Floats: all steps in float, in the order written, c by a division. The sums of `frame` run in sixteen lanes, S in eight, B[24]
 *    behind them, all joined by halves. The larger of T and m is T where m is a NaN.
 *  - 16 bits: integers. The variance is 64 times the sum of squares less the square of the sum, undivided. Products and shifts take 64
 *    bits, shifts round down, what the state keeps wraps to 32 bits. The shares (required; they differ a little from those above):
 *
 *    | measure | L T | U T | follows: T = | D T | sinks: T = | G T |
 *    |---|---|---|---|---|---|---|
 *    | variance | 27 T >> 5 | 48 T >> 5 | (26 T >> 5) + (6 m >> 5) | 8 T >> 5 | (31 T >> 5) + m | 53 T >> 5 |
 *    | energy | 96 T >> 7 | 192 T >> 7 | (102 T >> 7) + (26 m >> 7) | 64 T >> 7 | (124 T >> 7) + (m >> 5) | 211 T >> 7 |
 *    | spectrum | 24 T >> 5 | 48 T >> 5 | (102 T >> 7) + (26 m >> 7) | 16 T >> 5 | (124 T >> 7) + (m >> 5) | 416 T >> 7 |
 *
 *    The spectrum is (8184 (B[1] + B[2] + B[3]) >> 5) + (8 c >> 5), c = 341 (B[1] + B[2] + B[3]) of the frame before; the mean of energy
 *    ((n - 1) mean + e) 141 / n, truncated, >> 7; the jump 128 e / mean, truncated, above 320, and none where the mean is 0.
 *  - Flush: the ring moves on and its oldest entry becomes the newest, with nothing written. required: there the counters fall in every
 *    frame, below 0 too, and both at or below 0 end the speech.
 *  - The count of frames stays at 2^31 - 1.
 *
 *  Source of the method: ETSI ES 202 050, "Distributed speech recognition; Advanced front-end feature extraction algorithm", annex A
 *  (2007). @{ */

/** A stream of floats. */
typedef struct VADState_Aurora_32f VADState_Aurora_32f;
/** A stream of 16-bit values. */
typedef struct VADState_Aurora_16s VADState_Aurora_16s;

/** What a decision says. */
enum {
  qorVADSpeech = 1,   /**< Speech. */
  qorVADNoSpeech = 2, /**< No speech. */
  qorVADUndecided = 4 /**< No decision: the stream's beginning, or the end of a flush. */
};

/** size = bytes of the caller's block for a stream of floats: 64. @see @ref voice_activity */
QORSR_API QorStatus qorsVADGetBufSize_Aurora_32f(int32_t* size);
/** size = bytes of the caller's block for a stream of 16-bit values: 64. @see @ref voice_activity */
QORSR_API QorStatus qorsVADGetBufSize_Aurora_16s(int32_t* size);
/** Begins a stream of floats, in the caller's block at any address. @see @ref voice_activity */
QORSR_API QorStatus qorsVADInit_Aurora_32f(VADState_Aurora_32f* state);
/** Begins a stream of 16-bit values, in the caller's block at any address. @see @ref voice_activity */
QORSR_API QorStatus qorsVADInit_Aurora_16s(VADState_Aurora_16s* state);
/** The decision of the next frame; state is read and written: float. @see @ref voice_activity */
QORSR_API QorStatus qorsVADDecision_Aurora_32f(const float* bands, const float* frame, int32_t activityCount, int32_t* decision,
                                               VADState_Aurora_32f* state);
/** The decision of the next frame; state is read and written: 16-bit. @see @ref voice_activity */
QORSR_API QorStatus qorsVADDecision_Aurora_16s(const int16_t* bands, const int16_t* frame, int32_t activityCount, int32_t* decision,
                                               VADState_Aurora_16s* state);
/** One of the decisions that still waited when a stream of floats ended; state is read and written. The two names are one function.
 *  @see @ref voice_activity */
QORSR_API QorStatus qorsVADFlush_Aurora_32f(int32_t* decision, VADState_Aurora_32f* state);
/** As qorsVADFlush_Aurora_32f(), for a stream of 16-bit values. @see @ref voice_activity */
QORSR_API QorStatus qorsVADFlush_Aurora_16s(int32_t* decision, VADState_Aurora_16s* state);
/** @} */

/* ---------------- Noise tracking by minima ---------------- */

/** @defgroup noise_tracking Noise tracking by minima
 *  The power spectrum of noise under speech, bin by bin, by minima-controlled recursive averaging (MCRA): where the power has risen far
 *  above its recent minimum, there is speech, and the estimate waits.
 *
 *      state memory: qorsGetSizeMCRA_32f()      then, once a stream, qorsInitMCRA_32f() or qorsAltInitMCRA_32f()
 *      once a frame:  qorsUpdateNoisePSDMCRA_32f_I(): the frame's power spectrum in, the noise's in and out
 *
 *  With `length` that of the transform, there are length / 2 + 1 bins. Of every bin, x its power:
 *
 *      s = as s + (1 - as) x                          smoothed power
 *      m = min(m, s),  t = min(t, s)                  minimum, and that since the last restart
 *      p = ap p + (1 - ap where s > 5 m, else 0)      probability of speech
 *      a = ad + (1 - ad) p
 *      noise = a noise + (1 - a) x
 *
 *  Once a window of frames the search for the minimum begins anew: m = min(s, t), t = s. So a rise of the noise is found after one to
 *  two windows. The first frame of a stream makes s, m, t and noise equal to x, and p to 0: what `noise` held before does not matter.
 *
 *  **Time constants** do not depend on the frame rate: with T = hop 125 / sampleRate, the hop in units of 8 ms, ad = 0.7^T, as = 0.8^T,
 *  ap = 0.2^T, and the window is one second, 125 / T frames. `Init` takes length / 2 for the hop; `AltInit` is told the hop. Their
 *  windows differ where length / 2 is no power of two: `Init` then counts hops of the power of two below it (required).
 *
 *  **Integers** (`32s`): powers of any unit, not negative; smoothing constants have 31 fraction bits.
 *
 *  | Parameter | Use | Elements, or values | |
 *  |---|---|---|---|
 *  | `size` | out | 1 | bytes |
 *  | `state` of `InitMCRA_*`, `AltInitMCRA_*` | block | bytes of `GetSizeMCRA_*` | |
 *  | `state` of `UpdateNoisePSDMCRA_*` | in, out | | |
 *  | `sampleRate` | value | 8000 to 48000 | hertz |
 *  | `length` | value | 8 to 8192 | samples of the transform, any number |
 *  | `hop` | value | 1 to length / 2 | samples between frames |
 *  | `spectrum` | in | state.bins | power |
 *  | `noise` | in, out | state.bins | power |
 *  | `bins` of `InitMCRA_*`, `AltInitMCRA_*` | is | length / 2 + 1 | |
 *
 *  | Members | Statuses, in order |
 *  |---|---|
 *  | `GetSize` | null; length (#qorStatusBadSize) |
 *  | `Init` | null; sampleRate (#qorStatusBadRange); length (#qorStatusBadSize) |
 *  | `AltInit` | null; sampleRate or hop (#qorStatusBadRange); length (#qorStatusBadSize) |
 *  | `Update` | null |
 *
 *  @warning The constants of `32s` come from a short series around T = 0 (see below): use hops up to 12 ms, where they are within 0.01
 *  of those of `32f`. Beyond 30 ms or so they are of no use.
 *  @warning A state must not be moved or copied.
 *
 *  **Exact arithmetic**
 *  - Floats: in float, every product and sum rounded, as written. min(a, b) is b where one of them is a NaN. T in float; powers in double
 *    by the library's own function; the window is trunc(125 F), F = sampleRate 0.008 / hop rounded to float (`Init`: double arithmetic,
 *    hop the power of two; `AltInit`: the product rounded to float, then divided in float).
 *  - The window counts from its restart: the counter, raised after every frame, returns to 0 when a frame finds it at the window.
 *  - Integers: s = (as s + (2^31 - 1 - as) x) >> 31, in 64 bits. p and noise are computed in double from 2^31 - 1 in place of 1, p = p
 *    ap / 2^31 + (2^31 - 1 - ap or 0), a = ad + p (2^31 - 1 - ad) / 2^31, noise = a noise / 2^31 + (2^31 - 1 - a) x / 2^31, with p not
 *    yet rounded in a; both are stored rounded to nearest even, in whatever mode the caller has; out of range as the most negative.
 *  - Constants of integers: with T in Q15 and c the logarithm in Q31, u = c T >> 31, v = (u u >> 15) >> 1, w = v u >> 15, the power is
 *    (1 + u + v + w / 3) in Q15, times 2^16, modulo 2^32. 0.2^T is the eighth power of that of ln(0.2) / 8. The window is (F + 1) 125 >>
 *    15, F = 17179869 sampleRate >> 16, shifted right by log2 of the hop's power of two (`Init`), or divided by the hop before the
 *    shift (`AltInit`).
 *
 *  Source of the method: Cohen and Berdugo, "Noise Estimation by Minima Controlled Recursive Averaging for Robust Speech Enhancement",
 *  IEEE Signal Processing Letters 9 (2002). @{ */

/** A stream of float spectra. */
typedef struct MCRAState_32f MCRAState_32f;
/** A stream of 32-bit spectra. */
typedef struct MCRAState_32s MCRAState_32s;

/** size = bytes of the caller's block: (length / 2) 16 + 84. It may begin at any multiple of 4. @see @ref noise_tracking */
QORSR_API QorStatus qorsGetSizeMCRA_32f(int32_t length, int32_t* size);
/** As qorsGetSizeMCRA_32f(), for 32-bit spectra. @see @ref noise_tracking */
QORSR_API QorStatus qorsGetSizeMCRA_32s(int32_t length, int32_t* size);
/** Begins a stream of float spectra, length / 2 samples apart. @see @ref noise_tracking */
QORSR_API QorStatus qorsInitMCRA_32f(int32_t sampleRate, int32_t length, MCRAState_32f* state);
/** Begins a stream of 32-bit spectra, length / 2 samples apart. @see @ref noise_tracking */
QORSR_API QorStatus qorsInitMCRA_32s(int32_t sampleRate, int32_t length, MCRAState_32s* state);
/** Begins a stream of float spectra, `hop` samples apart. @see @ref noise_tracking */
QORSR_API QorStatus qorsAltInitMCRA_32f(int32_t sampleRate, int32_t length, int32_t hop, MCRAState_32f* state);
/** Begins a stream of 32-bit spectra, `hop` samples apart. @see @ref noise_tracking */
QORSR_API QorStatus qorsAltInitMCRA_32s(int32_t sampleRate, int32_t length, int32_t hop, MCRAState_32s* state);
/** The noise's power spectrum after one more frame; state and noise are read and written: float. @see @ref noise_tracking */
QORSR_API QorStatus qorsUpdateNoisePSDMCRA_32f_I(const float* spectrum, MCRAState_32f* state, float* noise);
/** The noise's power spectrum after one more frame; state and noise are read and written: 32-bit. @see @ref noise_tracking */
QORSR_API QorStatus qorsUpdateNoisePSDMCRA_32s_I(const int32_t* spectrum, MCRAState_32s* state, int32_t* noise);
/** @} */

/** @defgroup suppression_gains Gains that suppress noise
 *  From ratios of signal to noise, bin by bin, the factors that a noisy spectrum is multiplied with.
 *
 *  **Wiener**: gain[i] = x / (1 + x), x = snr[i] the ratio of signal power to noise power (a priori).
 *
 *  **Ephraim and Malah** (`EMNS`): the gain of least mean square error of amplitudes. With prior = x / (1 + x), which the Wiener members
 *  give, posterior the ratio of the noisy power to the noise's, and v = posterior prior,
 *
 *      gain = prior F(v),   F(v) = sqrt(pi / v) / 2  exp(-v / 2)  ((1 + v) I0(v / 2) + v I1(v / 2)),
 *
 *  I0 and I1 modified Bessel functions. A frame of a noise suppressor:
 *
 *      noise by qorsUpdateNoisePSDMCRA_32f_I(),  posterior = power / noise,
 *      x = 0.98 gain_before^2 posterior_before + 0.02 max(posterior - 1, 0),
 *      qorsFilterUpdateWiener_32f(x, prior),  qorsFilterUpdateEMNS_32f(prior, posterior, gain),  spectrum = gain spectrum
 *
 *  **Integers** (`32s`): ratios have 15 fraction bits, prior and gain 31; a gain of 1 and more is 2^31 - 1.
 *
 *  | Parameter | Use | Elements, or values | |
 *  |---|---|---|---|
 *  | `prior` of `FilterUpdateEMNS_32f` | in | length; each 0 to 1 | x / (1 + x) |
 *  | `prior` of `FilterUpdateEMNS_32s` | in | length; each at least 0 | the same, Q31 |
 *  | `posterior` | in | length | limited to 3.1e-5 .. 100; `32s`: 2^-15 .. 100 |
 *  | `snr` | in | length; each at least 0 | x; Q15 in `32s` |
 *  | `gain` | out | length | Q31 in `32s` |
 *  | `length` | value | 1 to 65535 | |
 *
 *  | Status, in order | When |
 *  |---|---|
 *  | #qorStatusNullPointer | a pointer is null |
 *  | #qorStatusBadLength | length outside 1 to 65535 |
 *  | #qorStatusBadRange | `EMNS`: a prior below 0, or above 1 (`32f`) |
 *  | #qorStatusBadArgument | Wiener: a ratio below 0 (required: with all gains written, and 0 in its place) |
 *
 *  **Error** of `EMNS`: F is within 0.7 % of the function for v from 3.2e-5 to 100; below, v counts in few steps.
 *
 *  @warning Integer Wiener gains are a staircase: x counts in steps of 1/16 below 4, of 4 below 64, of 64 below 512; from there to 1024 the
 *  gain is that of 512, and beyond 2^31 - 1. Below 1/16 it is 0.
 *  @warning The gain of `EMNS_32f` exceeds 1 where posterior is small.
 *
 *  **Exact arithmetic**
 *  - `EMNS`: q = trunc(2^22 v), `32f` with v rounded to float, `32s` (posterior prior) >> 24. F is an integer T0[q], F rounded, for q up
 *    to 128, and of q = 0 2^31 - 1. From 129 on, with 2^b the power of two at or below q, i = b - 7 and e = q - 2^b, it is ((e ((e T2[i]
 *    >> 13) - T3[i])) >> (i + 5)) + T1[i], in integers, over 2^22; T1, T2, T3 are tables of the 22 octaves.
 *  - `32f`: gain = prior T0[q], or prior times the integer (rounded to float) over 2^22. A NaN in posterior counts as 3.1e-5, one in prior
 *    passes into the gain. `32s`: exact, limited to 2^31 - 1; (prior F) >> 22 rounds down.
 *  - Wiener: `32f` by a division in float; minus zero and a NaN stay. `32s`: trunc(2^31 x / (1 + x)), x the lower end of its step.
 *  - Nothing is allocated.
 *
 *  Source of the method: Ephraim and Malah, "Speech Enhancement Using a Minimum Mean-Square Error Short-Time Spectral Amplitude
 *  Estimator", IEEE Transactions on Acoustics, Speech, and Signal Processing 32 (1984). @{ */

/** Gains by Ephraim and Malah: float. @see @ref suppression_gains */
QORSR_API QorStatus qorsFilterUpdateEMNS_32f(const float* prior, const float* posterior, float* gain, int32_t length);
/** Gains by Ephraim and Malah: 32-bit. @see @ref suppression_gains */
QORSR_API QorStatus qorsFilterUpdateEMNS_32s(const int32_t* prior, const int32_t* posterior, int32_t* gain, int32_t length);
/** Wiener gains: float. @see @ref suppression_gains */
QORSR_API QorStatus qorsFilterUpdateWiener_32f(const float* snr, float* gain, int32_t length);
/** Wiener gains, a staircase: 32-bit. @see @ref suppression_gains */
QORSR_API QorStatus qorsFilterUpdateWiener_32s(const int32_t* snr, int32_t* gain, int32_t length);
/** @} */

/* ================================ Model estimation ================================ */

/** @defgroup re_estimation Model re-estimation
 *  New Gaussian parameters and mixture weights from accumulated statistics: the maximisation step of Baum-Welch training, and the
 *  accumulation of moments that feeds it.
 *
 *  - **Means** (`UpdateMean`): destination[i] += source[i] / occupancy. With source the sum of occ (x - mean), the old mean
 *    becomes the new one.
 *  - **Variances** (`UpdateVar`): m = first[i] / firstOccupancy, v = second[i] / secondOccupancy - m^2, and destination[i] =
 *    max(v, floors[i]).
 *  - **Weights** (`UpdateWeight`): destination[i] = max(counts[i] / total, floor); sum is the sum of the weights as stored, by
 *    which the caller normalises.
 *  - **New variances** (`NewVar`): (squares[i] - means[i]^2 * a) * b, from sums with a and b the reciprocals of counts. `32s`
 *    results are scaled by 2^-sf.
 *  - **Moments** (`MeanVarAcc`): d = source[i] - mean[i], e = d * weight; accumulatedMean[i] += e, accumulatedVariance[i] += d *
 *    e.
 *  - **Covariances** (`AccCovarianceMatrix`): with S what result holds, result = factor * (S + sum over rows of (row - mean)(row -
 *    mean)^T). Factor 1 keeps running sums over several calls.
 *
 *  | Parameter | Use | Elements, or values | |
 *  |---|---|---|---|
 *  | `source` of `UpdateMean_*`, `MeanVarAcc_*` | in | length | |
 *  | `source` of `AccCovarianceMatrix_*` | in | height x width, sourceStride apart | |
 *  | `rows` | in | height x width | row pointers |
 *  | `destination` | out | length | |
 *  | `destination` of `UpdateMean_*` | in, out | length | the old means, and the new ones |
 *  | `first`, `second`, `floors`, `counts` | in | length | |
 *  | `sum` | out | 1 | |
 *  | `means`, `squares` | in | length | |
 *  | `squares` of `NewVar_*I*` | in, out | length | |
 *  | `mean` | in | length | |
 *  | `mean` of `AccCovarianceMatrix_*` | in | width | |
 *  | `accumulatedMean`, `accumulatedVariance` | in, out | length | |
 *  | `result` of `AccCovarianceMatrix_*_D2` | in, out | width x width, resultStride apart | |
 *  | `result` of `AccCovarianceMatrix_*_D2L` | in, out | width x width | row pointers |
 *  | `length`, `height`, `width` | value | at least 1 | |
 *  | `sourceStride`, `resultStride` | value | at least width | |
 *  | `occupancy`, `firstOccupancy`, `secondOccupancy`, `total` | value | at least 0 | |
 *  | `floor`, `a`, `b`, `weight`, `factor`, `scaleFactor` | value | any | |
 *
 *  | Members | Statuses, in order |
 *  |---|---|
 *  | `UpdateMean`, `UpdateVar`, `UpdateWeight` | null; length below 1; an occupancy (total) negative, #qorStatusBadStatistic |
 *  | `NewVar`, `MeanVarAcc` | null; length below 1 |
 *  | `AccCovarianceMatrix` | null; height or width below 1; a stride below width (`_D2`); #qorStatusNoMemory for widths above 512 |
 *
 *  Warnings of `UpdateMean`, `UpdateVar`, `UpdateWeight`: #qorStatusZeroOccupancy for an occupancy of magnitude up to the smallest
 *  normal number, with nothing written; #qorStatusAllFloored when every variance or weight took its floor, with all written. A NaN
 *  occupancy passes.
 *
 *  @warning `UpdateMean`, `MeanVarAcc` and `AccCovarianceMatrix` add to what stands in their destinations: fill these first.
 *
 *  @warning `UpdateWeight` normalises nothing: with a floor the weights add up to `sum`, not to 1.
 *
 *  @warning `NewVar` has no floor: a negative result is stored.
 *
 *  **Exact arithmetic**
 *  - All arithmetic runs in the element type, each operation rounded on its own.
 *  - `UpdateMean`, `UpdateVar`: float multiplies by the reciprocal of an occupancy, formed once; double divides. The destination
 *    of `UpdateMean` may overlap the source: elements are then updated one by one, upwards.
 *  - Floors: a value is taken where floor < value, else the floor; so a value equal to its floor, and a NaN, take the floor.
 *  - `UpdateWeight` multiplies counts by 1 / total. The sum runs in four lanes of float, element 4k + j in lane j, joined as (l0 +
 *    l2) + (l1 + l3), or in two lanes of double; up to three (one) last elements go to lane 0.
 *  - `NewVar_32f`: means[i]^2 is rounded to float, all else runs in double and is rounded once. The destination may overlap the
 *    sources: elements are then computed one by one, upwards. `NewVar_32f_I`, required: all in float, so the last bits of the two
 *    differ.
 *  - `NewVar_32s`: data are rounded to float, the formula runs in float. required: with means and squares on 16-byte boundaries
 *    the result is rounded to nearest even, saturated, and a NaN gives 0; otherwise it is truncated, and a NaN or a value out of
 *    range gives -2147483648.
 *  - `AccCovarianceMatrix`: for each row in order S[i][j] += d[i] * d[j] for j up to i, in double (16-bit differences are exact,
 *    float ones are rounded to float). Then the lower triangle, diagonal included, is multiplied by `factor`, and copied to the
 *    upper one; what stood above the diagonal is overwritten.
 *
 *  Source of the method: L. R. Rabiner, "A Tutorial on Hidden Markov Models and Selected Applications in Speech Recognition",
 *  Proc. IEEE 77 (1989); S. Young et al., The HTK Book, on variance floors and parameter updates. @{ */

/** destination += source / occupancy: new means; destination is read and written: float. @see @ref re_estimation */
QORSR_API QorStatus qorsUpdateMean_32f(const float* source, float* destination, int32_t length, float occupancy);
/** destination += source / occupancy: new means; destination is read and written: double. @see @ref re_estimation */
QORSR_API QorStatus qorsUpdateMean_64f(const double* source, double* destination, int32_t length, double occupancy);

/** New variances from first and second moments, with floors: float. @see @ref re_estimation */
QORSR_API QorStatus qorsUpdateVar_32f(const float* first, const float* second, const float* floors, float* destination,
                                      int32_t length, float firstOccupancy, float secondOccupancy);
/** New variances from first and second moments, with floors: double. @see @ref re_estimation */
QORSR_API QorStatus qorsUpdateVar_64f(const double* first, const double* second, const double* floors, double* destination,
                                      int32_t length, double firstOccupancy, double secondOccupancy);

/** New mixture weights from counts, with a floor, and their sum: float. @see @ref re_estimation */
QORSR_API QorStatus qorsUpdateWeight_32f(const float* counts, float* destination, int32_t length, float* sum, float total,
                                         float floor);
/** New mixture weights from counts, with a floor, and their sum: double. @see @ref re_estimation */
QORSR_API QorStatus qorsUpdateWeight_64f(const double* counts, double* destination, int32_t length, double* sum, double total,
                                         double floor);

/** destination = (squares - means^2 * a) * b: float. @see @ref re_estimation */
QORSR_API QorStatus qorsNewVar_32f(const float* means, const float* squares, float* destination, int32_t length, float a, float b);
/** squares = (squares - means^2 * a) * b, in place: float. @see @ref re_estimation */
QORSR_API QorStatus qorsNewVar_32f_I(const float* means, float* squares, int32_t length, float a, float b);
/** destination = (squares - means^2 * a) * b: 32-bit, scaled. @see @ref re_estimation */
QORSR_API QorStatus qorsNewVar_32s_Sfs(const int32_t* means, const int32_t* squares, int32_t* destination, int32_t length, float a,
                                       float b, int32_t scaleFactor);
/** squares = (squares - means^2 * a) * b, in place: 32-bit, scaled. @see @ref re_estimation */
QORSR_API QorStatus qorsNewVar_32s_ISfs(const int32_t* means, int32_t* squares, int32_t length, float a, float b,
                                        int32_t scaleFactor);

/** Adds the weighted first and second moments of a frame; both are read and written: float. @see @ref re_estimation */
QORSR_API QorStatus qorsMeanVarAcc_32f(const float* source, const float* mean, float* accumulatedMean, float* accumulatedVariance,
                                       int32_t length, float weight);
/** Adds the weighted first and second moments of a frame; both are read and written: double. @see @ref re_estimation */
QORSR_API QorStatus qorsMeanVarAcc_64f(const double* source, const double* mean, double* accumulatedMean,
                                       double* accumulatedVariance, int32_t length, double weight);

/** Adds outer products of frames to result, read and written: 16-bit to double. @see @ref re_estimation */
QORSR_API QorStatus qorsAccCovarianceMatrix_16s64f_D2(const int16_t* source, int32_t sourceStride, int32_t height,
                                                      const int16_t* mean, double* result, int32_t width, int32_t resultStride,
                                                      double factor);
/** Adds outer products of frames to result, read and written: 16-bit to double, row pointers. @see @ref re_estimation */
QORSR_API QorStatus qorsAccCovarianceMatrix_16s64f_D2L(const int16_t* const* rows, int32_t height, const int16_t* mean,
                                                       double* const* result, int32_t width, double factor);
/** Adds outer products of frames to result, read and written: float data, in double. @see @ref re_estimation */
QORSR_API QorStatus qorsAccCovarianceMatrix_32f64f_D2(const float* source, int32_t sourceStride, int32_t height, const float* mean,
                                                      double* result, int32_t width, int32_t resultStride, double factor);
/** Adds outer products of frames to result, read and written: float data, in double, row pointers. @see @ref re_estimation */
QORSR_API QorStatus qorsAccCovarianceMatrix_32f64f_D2L(const float* const* rows, int32_t height, const float* mean,
                                                       double* const* result, int32_t width, double factor);
/** @} */

/** @defgroup gaussian_operations Gaussian distance, merging and splitting
 *  Operations on pairs of diagonal Gaussians: mean vectors mx, my and variance vectors vx, vy (variances themselves, not inverted)
 *  of n = `length` elements, with weights wx, wy, which are occupancies.
 *
 *  **Pooling.** With W = wx + wy: m = (wx mx + wy my) / W and v = ((mx^2 + vx) wx + (my^2 + vy) wy) / W - m^2.
 *  - **Distance** (`GaussianDist`): result = wx det1 + wy det2 - W (n log(2 pi) - sum of log v): twice the loss in log likelihood
 *    when the pooled Gaussian takes the place of the pair.
 *  - **Merge** (`GaussianMerge`): mean and variance receive m and v, det receives n log(2 pi) - sum of log v.
 *  - **Split** (`GaussianSplit`): e = sqrt(variance) * factor; the first Gaussian's mean becomes mean + e, in place, the second's
 *    is mean - e with a copy of the variance.
 *  - **Bhattacharyya distance** (`BhatDist`): with s = vx + vy and d = mx - my, 1/4 sum of d^2 / s + 1/4 sum of log(s^2 / (vx
 *    vy)) - 1/4 n log 4. `SLog` members are given the sums of the logarithms of both variance vectors, logs1 and logs2.
 *
 *  | Parameter | Use | Elements, or values | |
 *  |---|---|---|---|
 *  | `mean1`, `variance1`, `mean2`, `variance2` | in | length | variances, not inverted |
 *  | `mean`, `variance` of `GaussianMerge_*` | out | length | |
 *  | `mean` of `GaussianSplit_*` | in, out | length | |
 *  | `variance` of `GaussianSplit_*` | in | length | |
 *  | `mean2`, `variance2` of `GaussianSplit_*` | out | length | |
 *  | `result`, `det` | out | 1 | |
 *  | `length` | value | at least 1 | |
 *  | `weight1`, `weight2` | value | any | occupancies |
 *  | `det1`, `det2` | value | any | n log(2 pi) - sum of log v |
 *  | `logs1`, `logs2` | value | any | sums of log v |
 *  | `factor` | value | any | 0.2 is usual |
 *
 *  | Members | Statuses, in order |
 *  |---|---|
 *  | `GaussianDist`, `GaussianMerge`, qorsGaussianSplit_32f() | length below 1; null |
 *  | qorsGaussianSplit_64f(), `BhatDist` | null; length below 1 |
 *
 *  Warnings: a pooled variance of zero gives plus infinity in the result (in det) with #qorStatusLogZero, a negative one a NaN
 *  with #qorStatusLogNegative; the first such element decides. `BhatDist`: the same for elements of any of the four vectors, the
 *  means too (required).
 *
 *  @warning `det1` and `det2` are n log(2 pi) - sum of log v: what qorsGaussianMerge_32f() stores, or what qorsUpdateGConst_32f()
 *  gives when it is handed the variances. qorsUpdateGConst_DirectVar_32f(), which looks natural, has the other sign in the sum:
 *  the distance is then wrong, and the status #qorStatusOk.
 *
 *  @warning Weights that sum to zero give infinities or NaN. A negative variance gives a NaN in `GaussianSplit`.
 *
 *  **Exact arithmetic**
 *  - log(2 pi) = 1.8378770664093. Pooling runs in double (W is added in the element type). In `GaussianDist_32f` the first two
 *    products and their sum are formed in float, and the result is rounded to float.
 *  - qorsGaussianMerge_32f() stops at an element with a warning, required: elements up to it are written, later ones are not;
 *    qorsGaussianMerge_64f() writes all elements.
 *  - qorsGaussianSplit_32f(), required: e is computed in float where all four vectors are on 16-byte boundaries, otherwise in
 *    double, rounded to float.
 *  - `BhatDist`: log 4 and log 2 are taken as 1.386294 and 0.693147 (required). `32f` sums d^2 / s in float, and forms s^2 / (vx
 *    vy) as 2 + u + 1 / u with u = (1 / vx) vy; `32f64f` computes in double, with one logarithm for the product of four elements,
 *    and the term (logs1 + logs2) / 4 in float. Elements are tested for a warning in groups of four, then one by one, and within
 *    the first group with such an element a negative one decides before a zero.
 *  - A NaN gives a NaN with #qorStatusOk, unless an element with a warning comes before it (in `GaussianDist` below 13, in double
 *    11, elements, and in qorsGaussianMerge_32f(): wherever such an element stands).
 *  - Nothing is allocated.
 *
 *  Source of the method: A. Bhattacharyya, "On a Measure of Divergence between Two Statistical Populations", Bull. Calcutta Math.
 *  Soc. 35 (1943); S. Young and P. Woodland, "State Clustering in HMM-based Continuous Speech Recognition", Computer Speech and
 *  Language 8 (1994), on likelihood loss; The HTK Book on splitting mixtures. @{ */

/** Twice the loss in log likelihood when two Gaussians are pooled: float. @see @ref gaussian_operations */
QORSR_API QorStatus qorsGaussianDist_32f(const float* mean1, const float* variance1, const float* mean2, const float* variance2,
                                         int32_t length, float* result, float weight1, float det1, float weight2, float det2);
/** Twice the loss in log likelihood when two Gaussians are pooled: double. @see @ref gaussian_operations */
QORSR_API QorStatus qorsGaussianDist_64f(const double* mean1, const double* variance1, const double* mean2, const double* variance2,
                                         int32_t length, double* result, double weight1, double det1, double weight2, double det2);

/** The pooled Gaussian of two, and its det: float. @see @ref gaussian_operations */
QORSR_API QorStatus qorsGaussianMerge_32f(const float* mean1, const float* variance1, const float* mean2, const float* variance2,
                                          float* mean, float* variance, int32_t length, float* det, float weight1, float weight2);
/** The pooled Gaussian of two, and its det: double. @see @ref gaussian_operations */
QORSR_API QorStatus qorsGaussianMerge_64f(const double* mean1, const double* variance1, const double* mean2,
                                          const double* variance2, double* mean, double* variance, int32_t length, double* det,
                                          double weight1, double weight2);

/** Two Gaussians from one; mean is read and written: float. @see @ref gaussian_operations */
QORSR_API QorStatus qorsGaussianSplit_32f(float* mean, const float* variance, float* mean2, float* variance2, int32_t length,
                                          float factor);
/** Two Gaussians from one; mean is read and written: double. @see @ref gaussian_operations */
QORSR_API QorStatus qorsGaussianSplit_64f(double* mean, const double* variance, double* mean2, double* variance2, int32_t length,
                                          double factor);

/** Bhattacharyya distance of two Gaussians: float. @see @ref gaussian_operations */
QORSR_API QorStatus qorsBhatDist_32f(const float* mean1, const float* variance1, const float* mean2, const float* variance2,
                                     int32_t length, float* result);
/** Bhattacharyya distance of two Gaussians: float data, in double. @see @ref gaussian_operations */
QORSR_API QorStatus qorsBhatDist_32f64f(const float* mean1, const float* variance1, const float* mean2, const float* variance2,
                                        int32_t length, double* result);
/** Bhattacharyya distance, the sums of log variances given: float. @see @ref gaussian_operations */
QORSR_API QorStatus qorsBhatDistSLog_32f(const float* mean1, const float* variance1, const float* mean2, const float* variance2,
                                         int32_t length, float* result, float logs1, float logs2);
/** Bhattacharyya distance, the sums of log variances given: float data, in double. @see @ref gaussian_operations */
QORSR_API QorStatus qorsBhatDistSLog_32f64f(const float* mean1, const float* variance1, const float* mean2, const float* variance2,
                                            int32_t length, double* result, float logs1, float logs2);
/** @} */

/** @defgroup state_clustering Decision-tree state clustering
 *  The log likelihood of the pooled data of model states under one diagonal Gaussian, from sums alone: what a decision tree that
 *  clusters states compares before and after each question.
 *
 *  - **Statistics** (`DcsClustLAccumulate`), from the Gaussian and the occupancy of a state: sum[i] = mean[i] * occupancy, and
 *    squares[i] = (1 / variance[i] + mean[i]^2) * occupancy, the variance given inverted; with `DirectVar` (mean[i]^2 +
 *    variance[i]) * occupancy.
 *  - **Likelihood** (`DcsClustLCompute`), with N = occupancy, D = length and variances (N squares - sum^2) / N^2: result = -N/2 (D
 *    (1 + log 2 pi) + sum of log variances).
 *
 *  | Parameter | Use | Elements, or values | |
 *  |---|---|---|---|
 *  | `mean`, `variance` | in | length | variances inverted, but with `DirectVar` |
 *  | `sum`, `squares` | out | length | |
 *  | `sum`, `squares` of `DcsClustLCompute_*` | in | length | |
 *  | `result` | out | 1 | |
 *  | `length` | value | at least 1 | |
 *  | `occupancy` | value | any | |
 *  | `occupancy` of `DcsClustLCompute_*` | value | at least 0 | |
 *
 *  | Status, in order | When |
 *  |---|---|
 *  | #qorStatusNullPointer | a pointer is null |
 *  | #qorStatusBadSize | length below 1 |
 *  | #qorStatusBadStatistic | `DcsClustLCompute`: a negative occupancy |
 *  | #qorStatusZeroOccupancy | a warning: an occupancy of exactly zero; the result is -1.0e10 |
 *  | #qorStatusLogZero | a warning: the first variance without a logarithm is zero; the result is minus infinity |
 *  | #qorStatusLogNegative | a warning: the first variance without a logarithm is negative; the result is a NaN |
 *
 *  @warning `DcsClustLAccumulate` overwrites its destinations, despite its name: pooling states is adding their sums, squares and
 *  occupancies, which the caller does.
 *
 *  **Exact arithmetic**
 *  - `DcsClustLCompute`, in double: N/2 (D ((log N - 1 - log 2 pi) + log N) - sum of log d), d = squares[i] * N - sum[i]^2; the
 *    tests are those of d.
 *  - required: with an inverted variance, a length of at least 8 and all four vectors on 16-byte boundaries, squares[i] is
 *    (occupancy * mean) * mean plus, in float, (2 - v r) r * occupancy with r = 1 / v (by fours, and a last pair), in double v2 q
 *    with q = occupancy / (v0 v2), one division for elements 0 and 2 (1 and 3; a last pair), so that a product of two variances
 *    that overflows or underflows shows; a single last element: occupancy / v.
 *
 *  Source of the method: S. Young, J. Odell and P. Woodland, "Tree-based State Tying for High Accuracy Acoustic Modelling", ARPA
 *  Human Language Technology Workshop (1994). @{ */

/** Sums and sums of squares of a state, from its mean and inverse variance: float. @see @ref state_clustering */
QORSR_API QorStatus qorsDcsClustLAccumulate_32f(const float* mean, const float* variance, float* sum, float* squares,
                                                int32_t length, float occupancy);
/** Sums and sums of squares of a state, from its mean and inverse variance: double. @see @ref state_clustering */
QORSR_API QorStatus qorsDcsClustLAccumulate_64f(const double* mean, const double* variance, double* sum, double* squares,
                                                int32_t length, double occupancy);
/** Sums and sums of squares of a state, from its mean and variance: float. @see @ref state_clustering */
QORSR_API QorStatus qorsDcsClustLAccumulate_DirectVar_32f(const float* mean, const float* variance, float* sum, float* squares,
                                                          int32_t length, float occupancy);
/** Sums and sums of squares of a state, from its mean and variance: double. @see @ref state_clustering */
QORSR_API QorStatus qorsDcsClustLAccumulate_DirectVar_64f(const double* mean, const double* variance, double* sum, double* squares,
                                                          int32_t length, double occupancy);

/** Log likelihood of pooled states, from sums and sums of squares: float data, in double. @see @ref state_clustering */
QORSR_API QorStatus qorsDcsClustLCompute_32f64f(const float* sum, const float* squares, int32_t length, double* result,
                                                float occupancy);
/** Log likelihood of pooled states, from sums and sums of squares: double. @see @ref state_clustering */
QORSR_API QorStatus qorsDcsClustLCompute_64f(const double* sum, const double* squares, int32_t length, double* result,
                                             double occupancy);
/** @} */

/* ================================ Vector quantisation ================================ */

/** @defgroup codebook Codebooks
 *  A codebook is a set of rows, the codewords, that vectors are replaced by: each by the nearest of them (@ref
 *  vector_quantisation). Nearest is meant in the weighted squared distance
 *
 *      d(x, c) = sum over j of w[j] (x[j] - c[j])^2
 *
 *  with all weights 1 in the `L2` functions. Inverse variances of the elements are usual weights.
 *
 *  - **Every row** (#qorCdbkEveryRow): each training row becomes a codeword, and a search compares them all. For rows of one
 *    element or two, where that pays, a grid over their range is made, with a list of the codewords near each cell.
 *  - **Trained** (#qorCdbkSplitBySpread, #qorCdbkSplitByMembers): `size` codewords are found by splitting, first all rows, then
 *    again and again one leaf in two: the leaf with the largest distance of a member from its centroid, or the one with most
 *    members. Behind each split all centroids are refined by up to 20 rounds of Lloyd's algorithm. The splits make a tree, and a
 *    search descends in it: a small part of the distances, and nearly always the nearest codeword.
 *
 *  **States.** `InitAlloc` makes a codebook in allocated memory; `Free` releases it. `Init` wraps ready rows (height = size, mode
 *  #qorCdbkEveryRow) in a block of the caller, of the size that `GetSize` tells, at any address that an element may have; it is
 *  searched like a codebook of every row without a grid, and is never given to `Free`. A codebook holds copies of all it needs. It
 *  is not changed by a search, and may serve several threads, but for the searches of one vector (`VQSingle`, `VQDistSingle`).
 *
 *  | Parameter | Use | Elements, or values | |
 *  |---|---|---|---|
 *  | `state` of `CdbkInitAlloc_*` | makes | | |
 *  | `state` of `CdbkInit_*` | block | bytes of `CdbkGetSize_*` | |
 *  | `state` of `CdbkFree_*` | frees | | |
 *  | `state` | in | | |
 *  | `source` | in | height x dimension, step apart | training rows |
 *  | `weights` | in | dimension; each at least 0 | |
 *  | `dimension`, `height` | value | at least 1 | |
 *  | `step` | value | at least dimension | of the source |
 *  | `step` of `GetCodebook_*` | value | at least state.dimension | of the destination |
 *  | `size` | value | 1 to min(height, 16383) | codewords |
 *  | `size` of `CdbkGetSize_*`, `CdbkInit_*` | value | 1 to 16383 | |
 *  | `height` of `CdbkGetSize_*`, `CdbkInit_*` | value | size | |
 *  | `mode` | value | 1, 2 or 3 | #qorCdbkEveryRow and its fellows |
 *  | `mode` of `CdbkGetSize_*`, `CdbkInit_*` | value | -2147483647 - 1, 1, 4 or 2147483647 | any but 2 and 3: those above are tested |
 *  | `bytes` | out | 1 | |
 *  | `rows` of `CdbkInitAlloc_*` | is | if(mode == 1, height, size) | |
 *  | `rows` of `CdbkInit_*` | is | size | |
 *  | `count` | out | 1 | codewords |
 *  | `destination` | in, out | state.rows x state.dimension, step apart | as many rows as there are codewords are written |
 *
 *  | Members | Statuses, in order |
 *  |---|---|
 *  | `GetSize`, `Init` | mode 2 or 3 (#qorStatusBadCodebookMode); null; dimension, step, height or size below 1, dimension above step, size above 16383, height other than size, or more than 2147483647 bytes (#qorStatusBadSize) |
 *  | `InitAlloc` | dimension below 1, `L2` alone (#qorStatusBadSize); null source, weights; the sizes of `Init`, but height not below size (#qorStatusBadSize); a negative weight (#qorStatusBadArgument); #qorStatusNoMemory; a mode other than 1 to 3 (#qorStatusBadCodebookMode); null state; what training reports |
 *  | training | #qorStatusNoMemory; #qorStatusBadArgument: a split left two centroids in one place |
 *  | training, a warning | #qorStatusCdbkSizeChanged: the codebook is valid, but has fewer rows, because no leaf was left to split, or has height rows though size was less (#qorCdbkEveryRow) |
 *  | `Free` | null; a mode that `InitAlloc` does not make (#qorStatusBadMode), of a state that stays as it is |
 *  | `GetCdbkSize`, `GetCodebook` | null; step below 1 or below the dimension (#qorStatusBadSize) |
 *
 *  @warning With #qorCdbkEveryRow all height rows are taken, whatever the size: `GetCodebook` then writes height rows.
 *
 *  @warning Leaves of equal rows are not split, but rows that differ by less than the rounding of their mean, or by distances
 *  below 1e-5, may end in #qorStatusBadArgument, and no codebook is made: scale small features up.
 *
 *  **Cost** of training: each round of a split compares the rows with the leaves whose members changed in the round before, not
 *  with all of them. Memory while it trains: the rows in float, sixteen bytes a row, sixteen a codeword and element. An every-row
 *  codebook of two elements builds its grid in time proportional to height times cells times tries: of 4000 rows, half a second.
 *
 *  **Exact arithmetic**
 *  - Distances are float sums, in eight lanes, as those of Gaussian scores (@ref gaussian_single); 16-bit elements and weights are
 *    converted first, exactly. Comparisons are made in double: a is below b if b > a * 1.000001; a is close to b if |max(a, b)| *
 *    0.0001F >= |a - b|. Everything stands in order: of rows, of leaves, the first one found.
 *  - Root: the mean of all rows. Spread: twice the largest distance of a member to its centroid (kept as each is below the next).
 *    Float rows: distances of the root up to max(b 1e-6, a -1e-6), a and b its least and largest element, are zero.
 *  - A leaf is split if it has the largest spread, or most members and a spread above 0. The half of its rows (rounded down) with
 *    the smallest distances make the left child, which goes to the end of the leaves; the right child takes the leaf's place.
 *  - A round: centroids of all leaves from their rows, in their order (float sums divided by the count; 16-bit rows: a double sum
 *    times the reciprocal, to nearest, ties to even). If those of the two children lie within 1e-6, the left one is moved from
 *    row to row: for i = 1, 2, ..., 1000 by i / 100 of half the way to the first row that is further than 1e-5, until the relative
 *    differences of both distances sum up to more than a millionth of the members. Then each row, in order, goes to its nearest
 *    leaf, which is one that is below the best before it; a leaf's last row stays. The rounds end when no row moves.
 *  - Centroids of inner nodes: children's, each added up as often as it has members, divided by the sum of both (16-bit:
 *    truncated). Each of three leaves or more has a list of near leaves, nearest first: max(floor(log2 n), 4) of them, one more if
 *    n is greater than that power of two. Of three or four leaves it repeats some, and may hold the leaf itself.
 *  - Line of n cells: from n = 4 on while the cost 2 height / n falls by more than 0.05 of itself, in float; no grid if a cell is
 *    empty, the range below 1e-5 or the cost above height / 5. Low edge m 0.9 (m > 0) or m 1.1, cells 1.1 (M - m) / n wide, for a
 *    range m to M. Cell: (x - low) / width, truncated; 16-bit: plus 0.001. A list: rows of the cell, then the nearest row to its
 *    lower edge from below, and to its upper edge from above.
 *  - Plane: from 4 x 4 cells on, a row or a column more at a time, whichever is better, while the mean length of the lists falls by
 *    more than 0.05; no grid if it is above height / 10. A list: codewords whose least distance to the corners and the feet of the
 *    perpendiculars on the edges is below, or close to, the smallest of the largest. Rows of cells run down from the high edge.
 *    Lists around the grid are unions: of a side, of a side and its neighbour.
 *  - required: `CdbkInit_L2_32f` leaves the number of bits of an index, which bit streams use, as the caller's memory has it.
 *
 *  Source of the method: Y. Linde, A. Buzo and R. Gray, "An Algorithm for Vector Quantizer Design", IEEE Trans. Communications 28
 *  (1980); S. Lloyd, "Least Squares Quantization in PCM", IEEE Trans. Information Theory 28 (1982); A. Buzo et al., "Speech Coding
 *  Based upon Vector Quantization", IEEE Trans. ASSP 28 (1980) (trees). @{ */

/** How a codebook is made. */
enum {
  qorCdbkEveryRow = 1,      /**< Every training row is a codeword. */
  qorCdbkSplitBySpread = 2, /**< Trained: the leaf with the largest spread is split. */
  qorCdbkSplitByMembers = 3 /**< Trained: the leaf with most members is split. */
};

/** A codebook of float rows. */
typedef struct CdbkState_32f CdbkState_32f;
/** A codebook of 16-bit rows. */
typedef struct CdbkState_16s CdbkState_16s;

/** Bytes of a codebook of ready rows: float. @see @ref codebook */
QORSR_API QorStatus qorsCdbkGetSize_32f(int32_t dimension, int32_t step, int32_t height, int32_t size, int32_t mode,
                                        int32_t* bytes);
/** Bytes of a codebook of ready rows: 16-bit. @see @ref codebook */
QORSR_API QorStatus qorsCdbkGetSize_16s(int32_t dimension, int32_t step, int32_t height, int32_t size, int32_t mode,
                                        int32_t* bytes);
/** Makes a codebook of ready rows in the caller's memory: float. @see @ref codebook */
QORSR_API QorStatus qorsCdbkInit_L2_32f(CdbkState_32f* state, const float* source, int32_t dimension, int32_t step, int32_t height,
                                        int32_t size, int32_t mode);
/** Makes a codebook of ready rows in the caller's memory: 16-bit. @see @ref codebook */
QORSR_API QorStatus qorsCdbkInit_L2_16s(CdbkState_16s* state, const int16_t* source, int32_t dimension, int32_t step,
                                        int32_t height, int32_t size, int32_t mode);
/** Makes or trains a codebook: float, every weight 1. @see @ref codebook */
QORSR_API QorStatus qorsCdbkInitAlloc_L2_32f(CdbkState_32f** state, const float* source, int32_t dimension, int32_t step,
                                             int32_t height, int32_t size, int32_t mode);
/** Makes or trains a codebook: 16-bit, every weight 1. @see @ref codebook */
QORSR_API QorStatus qorsCdbkInitAlloc_L2_16s(CdbkState_16s** state, const int16_t* source, int32_t dimension, int32_t step,
                                             int32_t height, int32_t size, int32_t mode);
/** Makes or trains a codebook: float, with weights. @see @ref codebook */
QORSR_API QorStatus qorsCdbkInitAlloc_WgtL2_32f(CdbkState_32f** state, const float* source, const float* weights, int32_t dimension,
                                                int32_t step, int32_t height, int32_t size, int32_t mode);
/** Makes or trains a codebook: 16-bit, with weights. @see @ref codebook */
QORSR_API QorStatus qorsCdbkInitAlloc_WgtL2_16s(CdbkState_16s** state, const int16_t* source, const int16_t* weights,
                                                int32_t dimension, int32_t step, int32_t height, int32_t size, int32_t mode);
/** Releases an allocated codebook: float. @see @ref codebook */
QORSR_API QorStatus qorsCdbkFree_32f(CdbkState_32f* state);
/** Releases an allocated codebook: 16-bit. @see @ref codebook */
QORSR_API QorStatus qorsCdbkFree_16s(CdbkState_16s* state);
/** Number of codewords: float. @see @ref codebook */
QORSR_API QorStatus qorsGetCdbkSize_32f(const CdbkState_32f* state, int32_t* count);
/** Number of codewords: 16-bit. @see @ref codebook */
QORSR_API QorStatus qorsGetCdbkSize_16s(const CdbkState_16s* state, int32_t* count);
/** The codewords: float. @see @ref codebook */
QORSR_API QorStatus qorsGetCodebook_32f(const CdbkState_32f* state, float* destination, int32_t step);
/** The codewords: 16-bit. @see @ref codebook */
QORSR_API QorStatus qorsGetCodebook_16s(const CdbkState_16s* state, int16_t* destination, int32_t step);
/** @} */

/** @defgroup vector_quantisation Vector quantisation
 *  Each vector is replaced by the index of its nearest codeword in a @ref codebook, d(x, c) = sum over j of w[j] (x[j] - c[j])^2.
 *
 *  - **Blocks** (`VQ`, `VQDist`): one index a row, and its distance. The search uses what the codebook has, grid or tree.
 *  - **The K nearest** (`VQSingle_Sort`): of one vector, nearest first; the whole book is compared.
 *  - **All within a ratio** (`VQSingle_Thresh`): all codewords whose distance is at most threshold times that of the nearest,
 *    nearest first; the nearest is found as blocks find it.
 *
 *  Distances are Euclidean, the root of d. `32s_Sfs` members give them as round(distance * 2^-scaleFactor), ties to even, saturated.
 *
 *  | Parameter | Use | Elements, or values | |
 *  |---|---|---|---|
 *  | `source` | in | height x state.dimension, step apart | one vector a row |
 *  | `x` | in | state.dimension | |
 *  | `step` | value | at least state.dimension | |
 *  | `height` | value | at least 1 | |
 *  | `state` | in | | |
 *  | `state` of `VQ*Single_*` | in, out | `CdbkInit_*` | of any codebook; holds a table that the call overwrites |
 *  | `indices`, `distances` | in, out | height | of a state that is searched, all are written |
 *  | `indices`, `distances` of `VQ*Single_Sort_*` | out | k | |
 *  | `indices`, `distances` of `VQ*Single_Thresh_*` | in, out | state.rows | count of them are written |
 *  | `k` | value | 1 to state.rows | up to the number of codewords |
 *  | `threshold` | value | at least 1 | a ratio of distances |
 *  | `count` | out | 1 | codewords that were found |
 *  | `scaleFactor` | value | any | |
 *
 *  | Members | Statuses, in order |
 *  |---|---|
 *  | blocks | null; step, then height, below 1, step below the dimension (#qorStatusBadSize); #qorStatusNoMemory, for dimensions above 128 alone |
 *  | `Sort` | null; k below 1, or above the number of codewords (#qorStatusBadSize) |
 *  | `Thresh` | null; threshold below 1 (#qorStatusBadArgument); #qorStatusNoMemory, as blocks |
 *
 *  @warning A tree's answer is not always the nearest codeword. `Thresh` takes its limit from that answer.
 *
 *  @warning The index is -1, with the distance 1.8446743e19, where no distance is below the largest float: vectors that hold a NaN or
 *  are far off, in codebooks of every row with weights or a grid. A tree always ends at a leaf.
 *
 *  @warning `VQDistSingle_Thresh_16s32s_Sfs` takes its limits from the distance of the nearest codeword as converted: with coarse
 *  scale factors not even the nearest one may be within them.
 *
 *  @warning A state whose mode is none of #qorCdbkEveryRow and its fellows (`Init` accepts others) is not searched: blocks and
 *  `Thresh` succeed and find nothing, blocks writing nothing.
 *
 *  **Exact arithmetic.** Distances as in @ref codebook. Which codeword is found:
 *  - Every row, all weights 1, no grid: the first of those at the least distance; a NaN is passed over, but the first row is where
 *    the search begins. With weights, or by a list: in order, each that is below the best so far by the margin (best > d * 1.000001
 *    in double), from the largest float on. So near ties go to the lower index.
 *  - By a grid: cells as in @ref codebook; below the first cell the first list serves, behind the last one the last. A plane has
 *    lists of its own around it.
 *  - Tree, all weights 1. Down: of the centroids of the four grandchildren (a child that is a leaf stands for its two), right if
 *    the smaller distance of the right ones is strictly less than that of the left ones. At a leaf: the first of its list of near
 *    leaves that is strictly nearer becomes the leaf, until there is none.
 *  - Tree, weights. The same with scores, larger is nearer: those of qorsLogGauss_32f_D2L() and qorsLogGaussSingle_32f() with the
 *    vector as the mean and the weights as inverse variances; of 16-bit data qorsLogGauss_16s32s_D2LSfs() and
 *    qorsLogGaussSingle_16s32s_Sfs(), scale factor floor(log2(dimension)) + 1. Left if one left score is above both right ones,
 *    each times 1.000001; a near leaf is taken if it is above 1.000001 times the leaf's score and not close to it.
 *  - `Sort`: k times the smallest squared distance, the lowest index on a tie, a NaN last; what is taken counts as the largest float
 *    from then on (3.4028235e38), so where distances overflow an index may come again.
 *  - `Thresh`: in that order up to the first that is above limit * 1.000001 (in double), limit = threshold * threshold * d0 * d0 in
 *    float from the distance d0 of the nearest codeword. With integer results d0 is converted first; limit is that of the integer
 *    times 2^scaleFactor, and only distances are given that as integers are at most trunc(d0 * threshold).
 *
 *  Source of the method: A. Gersho and R. Gray, "Vector Quantization and Signal Compression", Kluwer (1992). @{ */

/** The nearest codeword of each vector: float. @see @ref vector_quantisation */
QORSR_API QorStatus qorsVQ_32f(const float* source, int32_t step, int32_t* indices, int32_t height, const CdbkState_32f* state);
/** The nearest codeword of each vector: 16-bit. @see @ref vector_quantisation */
QORSR_API QorStatus qorsVQ_16s(const int16_t* source, int32_t step, int32_t* indices, int32_t height, const CdbkState_16s* state);
/** The nearest codeword of each vector, and its distance: float. @see @ref vector_quantisation */
QORSR_API QorStatus qorsVQDist_32f(const float* source, int32_t step, int32_t* indices, float* distances, int32_t height,
                                   const CdbkState_32f* state);
/** The nearest codeword of each vector, and its distance: 16 to 32 bits, scaled. @see @ref vector_quantisation */
QORSR_API QorStatus qorsVQDist_16s32s_Sfs(const int16_t* source, int32_t step, int32_t* indices, int32_t* distances, int32_t height,
                                          const CdbkState_16s* state, int32_t scaleFactor);
/** The k nearest codewords of one vector: float. @see @ref vector_quantisation */
QORSR_API QorStatus qorsVQSingle_Sort_32f(const float* x, int32_t* indices, CdbkState_32f* state, int32_t k);
/** The k nearest codewords of one vector: 16-bit. @see @ref vector_quantisation */
QORSR_API QorStatus qorsVQSingle_Sort_16s(const int16_t* x, int32_t* indices, CdbkState_16s* state, int32_t k);
/** The k nearest codewords of one vector, and their distances: float. @see @ref vector_quantisation */
QORSR_API QorStatus qorsVQDistSingle_Sort_32f(const float* x, int32_t* indices, float* distances, CdbkState_32f* state, int32_t k);
/** The k nearest codewords of one vector, and their distances: 16 to 32 bits, scaled. @see @ref vector_quantisation */
QORSR_API QorStatus qorsVQDistSingle_Sort_16s32s_Sfs(const int16_t* x, int32_t* indices, int32_t* distances, CdbkState_16s* state,
                                                     int32_t k, int32_t scaleFactor);
/** All codewords nearly as near to a vector as the nearest: float. @see @ref vector_quantisation */
QORSR_API QorStatus qorsVQSingle_Thresh_32f(const float* x, int32_t* indices, CdbkState_32f* state, float threshold,
                                            int32_t* count);
/** All codewords nearly as near to a vector as the nearest: 16-bit. @see @ref vector_quantisation */
QORSR_API QorStatus qorsVQSingle_Thresh_16s(const int16_t* x, int32_t* indices, CdbkState_16s* state, float threshold,
                                            int32_t* count);
/** All codewords nearly as near to a vector as the nearest, and their distances: float. @see @ref vector_quantisation */
QORSR_API QorStatus qorsVQDistSingle_Thresh_32f(const float* x, int32_t* indices, float* distances, CdbkState_32f* state,
                                                float threshold, int32_t* count);
/** All codewords nearly as near to a vector as the nearest, and their distances: 16 to 32 bits, scaled.
 *  @see @ref vector_quantisation */
QORSR_API QorStatus qorsVQDistSingle_Thresh_16s32s_Sfs(const int16_t* x, int32_t* indices, int32_t* distances, CdbkState_16s* state,
                                                       float threshold, int32_t* count, int32_t scaleFactor);
/** @} */

/** @defgroup split_quantisation Split quantisation
 *  A vector is quantised in parts, each by a codebook of its own (@ref codebook): the first takes as many elements as its dimension, the
 *  next those behind it, and so on. A frame becomes a short list of indices, and from these the vector is put together again. Without
 *  codebook records, from plain tables: @ref vector_forming.
 *
 *  - `SplitVQ`: the index of each part of each row, as @ref vector_quantisation finds it.
 *  - `FormVectorVQ`: the codewords of these indices, one behind the other.
 *
 *  Indices of a row, bookCount of them:
 *  - `16s` and `8u`: numbers, side by side; rows indexStride elements apart. Bytes serve codebooks of up to 256 codewords.
 *  - `1u`: bits. Each index takes as many bits as its codebook's largest index needs (none, if there is one codeword), the most significant
 *    first; row r begins at bit r * indexStride, bit 0 being the most significant of byte 0. What is between the rows is cleared.
 *
 *  | Parameter | Use | Elements, or values | |
 *  |---|---|---|---|
 *  | `states` | in | bookCount; each of `CdbkInit_L2_*` | or any other codebook |
 *  | `states` of `SplitVQ_32f1u`, `FormVectorVQ_1u32f` | in | bookCount; each of `CdbkInitAlloc_*` | see the warning |
 *  | `bookCount`, `height` | value | at least 1 | |
 *  | `source` | in | height x sum(states.dimension), sourceStride apart | vectors, one a row |
 *  | `sourceStride`, `resultStride` | value | at least sum(states.dimension) | |
 *  | `indexStride` of `SplitVQ_*1u`, `FormVectorVQ_1u*` | value | at least 1, usually 31 * bookCount to 31 * bookCount + 20 | bits; not below those of a row's indices |
 *  | `indexStride` | value | at least bookCount | |
 *  | `indices` of `SplitVQ_*` | out | height x bookCount, indexStride apart | |
 *  | `indices` of `SplitVQ_*1u` | out | ceil(height * indexStride / 8) | |
 *  | `indices` of `FormVectorVQ_*` | in | height x bookCount, indexStride apart | |
 *  | `indices` of `FormVectorVQ_1u*` | in | ceil(height * indexStride / 8) | |
 *  | `result` | out | height x sum(states.dimension), resultStride apart | vectors, one a row |
 *
 *  | Members | Statuses, in order |
 *  |---|---|
 *  | `SplitVQ` | null; a stride, height or bookCount below 1 (#qorStatusBadSize); a null codebook; `8u`: a codebook of more than 256 codewords, then sourceStride below the sum of dimensions, then indexStride below bookCount or the sum of bits (#qorStatusBadSize); #qorStatusNoMemory, for a dimension above 128, with nothing written |
 *  | `FormVectorVQ` | null; a stride, height or bookCount below 1, `16s`, `8u`: indexStride below bookCount (#qorStatusBadSize); a null codebook; `8u`: a codebook of more than 256 codewords, then resultStride below the sum of dimensions, `1u`: indexStride below the sum of bits (#qorStatusBadSize) |
 *
 *  @warning qorsCdbkInit_L2_32f() does not say how many bits an index of its codebook takes (required): a `1u` stream takes what the
 *  memory held, limited to 0 to 31. Use codebooks of qorsCdbkInitAlloc_L2_32f() there.
 *
 *  @warning Indices are not checked: for one that a codebook has not its last codeword is taken.
 *
 *  **Exact arithmetic.** Where a search finds no codeword (an empty list of a grid; a codebook of another mode than 1, 2 or 3) the index is
 *  -1: a byte holds 255, bits are all set. 16-bit indices hold the low 16 bits. @{ */

/** Quantises vectors in parts: float vectors to 16-bit indices. @see @ref split_quantisation */
QORSR_API QorStatus qorsSplitVQ_32f16s(const float* source, int32_t sourceStride, int16_t* indices, int32_t indexStride,
                                       int32_t height, const CdbkState_32f* const* states, int32_t bookCount);
/** Quantises vectors in parts: float vectors to byte indices. @see @ref split_quantisation */
QORSR_API QorStatus qorsSplitVQ_32f8u(const float* source, int32_t sourceStride, uint8_t* indices, int32_t indexStride,
                                      int32_t height, const CdbkState_32f* const* states, int32_t bookCount);
/** Quantises vectors in parts: float vectors to a stream of bits. @see @ref split_quantisation */
QORSR_API QorStatus qorsSplitVQ_32f1u(const float* source, int32_t sourceStride, uint8_t* indices, int32_t indexStride,
                                      int32_t height, const CdbkState_32f* const* states, int32_t bookCount);
/** Quantises vectors in parts: 16-bit vectors to 16-bit indices. @see @ref split_quantisation */
QORSR_API QorStatus qorsSplitVQ_16s16s(const int16_t* source, int32_t sourceStride, int16_t* indices, int32_t indexStride,
                                       int32_t height, const CdbkState_16s* const* states, int32_t bookCount);
/** Quantises vectors in parts: 16-bit vectors to byte indices. @see @ref split_quantisation */
QORSR_API QorStatus qorsSplitVQ_16s8u(const int16_t* source, int32_t sourceStride, uint8_t* indices, int32_t indexStride,
                                      int32_t height, const CdbkState_16s* const* states, int32_t bookCount);
/** Quantises vectors in parts: 16-bit vectors to a stream of bits. @see @ref split_quantisation */
QORSR_API QorStatus qorsSplitVQ_16s1u(const int16_t* source, int32_t sourceStride, uint8_t* indices, int32_t indexStride,
                                      int32_t height, const CdbkState_16s* const* states, int32_t bookCount);
/** Forms vectors from the indices of their parts: 16-bit indices to 16-bit vectors. @see @ref split_quantisation */
QORSR_API QorStatus qorsFormVectorVQ_16s16s(const int16_t* indices, int32_t indexStride, int16_t* result, int32_t resultStride,
                                            int32_t height, const CdbkState_16s* const* states, int32_t bookCount);
/** Forms vectors from the indices of their parts: 16-bit indices to float vectors. @see @ref split_quantisation */
QORSR_API QorStatus qorsFormVectorVQ_16s32f(const int16_t* indices, int32_t indexStride, float* result, int32_t resultStride,
                                            int32_t height, const CdbkState_32f* const* states, int32_t bookCount);
/** Forms vectors from the indices of their parts: byte indices to 16-bit vectors. @see @ref split_quantisation */
QORSR_API QorStatus qorsFormVectorVQ_8u16s(const uint8_t* indices, int32_t indexStride, int16_t* result, int32_t resultStride,
                                           int32_t height, const CdbkState_16s* const* states, int32_t bookCount);
/** Forms vectors from the indices of their parts: byte indices to float vectors. @see @ref split_quantisation */
QORSR_API QorStatus qorsFormVectorVQ_8u32f(const uint8_t* indices, int32_t indexStride, float* result, int32_t resultStride,
                                           int32_t height, const CdbkState_32f* const* states, int32_t bookCount);
/** Forms vectors from the indices of their parts: a stream of bits to 16-bit vectors. @see @ref split_quantisation */
QORSR_API QorStatus qorsFormVectorVQ_1u16s(const uint8_t* indices, int32_t indexStride, int16_t* result, int32_t resultStride,
                                           int32_t height, const CdbkState_16s* const* states, int32_t bookCount);
/** Forms vectors from the indices of their parts: a stream of bits to float vectors. @see @ref split_quantisation */
QORSR_API QorStatus qorsFormVectorVQ_1u32f(const uint8_t* indices, int32_t indexStride, float* result, int32_t resultStride,
                                           int32_t height, const CdbkState_32f* const* states, int32_t bookCount);
/** @} */

/** @defgroup vector_forming Vectors from indices
 *  A vector that was quantised in parts, each part with a table of its own, put together again: the row that each index names, one
 *  behind the other.
 *
 *  - `FormVector`: tables of any shape. Book j gives dimensions[j] elements from tables[j][indices[j] * strides[j]] on.
 *  - `2i`, `4i`: tables whose rows have two or four elements and no gaps. There are length / 2 or length / 4 of them; what remains of the
 *    length is not touched.
 *
 *  | Parameter | Use | Elements, or values | |
 *  |---|---|---|---|
 *  | `indices` of `FormVector_2i_*` | in | length / 2; each at least 0, usually 0 to 3 | below sizes[j] |
 *  | `indices` of `FormVector_4i_*` | in | length / 4; each at least 0, usually 0 to 3 | below sizes[j] |
 *  | `indices` | in | bookCount; each at least 0, usually 0 to 3 | below sizes[j] |
 *  | `tables` of `FormVector_2i_*` | in | length / 2 x 8 | sizes[j] rows each; at the usual indices four are read |
 *  | `tables` of `FormVector_4i_*` | in | length / 4 x 16 | the same |
 *  | `tables` | in | bookCount x 21 | sizes[j] rows each, strides[j] apart; at the usual numbers 21 elements are read |
 *  | `sizes` of `FormVector_2i_*` | in | length / 2; each at least 1, usually 4 to 9 | rows of each table |
 *  | `sizes` of `FormVector_4i_*` | in | length / 4; each at least 1, usually 4 to 9 | rows of each table |
 *  | `sizes` | in | bookCount; each at least 1, usually 4 to 9 | rows of each table |
 *  | `dimensions` | in | bookCount; each at least 1, usually 1 to 6 | |
 *  | `strides` | in | bookCount; each at least 1, usually 1 to 5 | elements from one row to the next; not compared with the dimension |
 *  | `bookCount`, `length` | value | at least 1 | |
 *  | `result` of `FormVector_2i_*` | out | length / 2 * 2 | |
 *  | `result` of `FormVector_4i_*` | out | length / 4 * 4 | |
 *  | `result` | out | sum(dimensions) | |
 *
 *  Statuses: null; bookCount or length below 1 (#qorStatusBadSize); then, for each book in order, a dimension or stride below 1, or an index
 *  that is negative or not below the size (#qorStatusBadSize). Nothing is then written.
 *
 *  @warning qorsFormVector_2i_16s32f() alone lets an index pass that equals the size (required): the table must then have one row more. @{ */

/** A vector of one row from each table: 16-bit indices, 16-bit rows. @see @ref vector_forming */
QORSR_API QorStatus qorsFormVector_16s16s(const int16_t* indices, const int16_t* const* tables, const int32_t* sizes,
                                          const int32_t* dimensions, const int32_t* strides, int32_t bookCount, int16_t* result);
/** A vector of one row from each table: 16-bit indices, float rows. @see @ref vector_forming */
QORSR_API QorStatus qorsFormVector_16s32f(const int16_t* indices, const float* const* tables, const int32_t* sizes,
                                          const int32_t* dimensions, const int32_t* strides, int32_t bookCount, float* result);
/** A vector of one row from each table: byte indices, 16-bit rows. @see @ref vector_forming */
QORSR_API QorStatus qorsFormVector_8u16s(const uint8_t* indices, const int16_t* const* tables, const int32_t* sizes,
                                         const int32_t* dimensions, const int32_t* strides, int32_t bookCount, int16_t* result);
/** A vector of one row from each table: byte indices, float rows. @see @ref vector_forming */
QORSR_API QorStatus qorsFormVector_8u32f(const uint8_t* indices, const float* const* tables, const int32_t* sizes,
                                         const int32_t* dimensions, const int32_t* strides, int32_t bookCount, float* result);
/** A vector of rows of two elements: 16-bit indices, 16-bit rows. @see @ref vector_forming */
QORSR_API QorStatus qorsFormVector_2i_16s16s(const int16_t* indices, const int16_t* const* tables, const int32_t* sizes,
                                             int16_t* result, int32_t length);
/** A vector of rows of two elements: 16-bit indices, float rows. An index that equals the size passes. @see @ref vector_forming */
QORSR_API QorStatus qorsFormVector_2i_16s32f(const int16_t* indices, const float* const* tables, const int32_t* sizes,
                                             float* result, int32_t length);
/** A vector of rows of two elements: byte indices, 16-bit rows. @see @ref vector_forming */
QORSR_API QorStatus qorsFormVector_2i_8u16s(const uint8_t* indices, const int16_t* const* tables, const int32_t* sizes,
                                            int16_t* result, int32_t length);
/** A vector of rows of two elements: byte indices, float rows. @see @ref vector_forming */
QORSR_API QorStatus qorsFormVector_2i_8u32f(const uint8_t* indices, const float* const* tables, const int32_t* sizes, float* result,
                                            int32_t length);
/** A vector of rows of four elements: 16-bit indices, 16-bit rows. @see @ref vector_forming */
QORSR_API QorStatus qorsFormVector_4i_16s16s(const int16_t* indices, const int16_t* const* tables, const int32_t* sizes,
                                             int16_t* result, int32_t length);
/** A vector of rows of four elements: 16-bit indices, float rows. @see @ref vector_forming */
QORSR_API QorStatus qorsFormVector_4i_16s32f(const int16_t* indices, const float* const* tables, const int32_t* sizes,
                                             float* result, int32_t length);
/** A vector of rows of four elements: byte indices, 16-bit rows. @see @ref vector_forming */
QORSR_API QorStatus qorsFormVector_4i_8u16s(const uint8_t* indices, const int16_t* const* tables, const int32_t* sizes,
                                            int16_t* result, int32_t length);
/** A vector of rows of four elements: byte indices, float rows. @see @ref vector_forming */
QORSR_API QorStatus qorsFormVector_4i_8u32f(const uint8_t* indices, const float* const* tables, const int32_t* sizes, float* result,
                                            int32_t length);
/** @} */

/* ================================ Matching and decomposition ================================ */

/** @defgroup dtw Dynamic time warping
 *  The distance of two sequences of feature vectors, aligned in time. Height is the number of rows (time), width the number of
 *  features; both sequences share the width and, in `_D2`, the stride.
 *
 *  The longer sequence runs along the columns i = 0 to N - 1 of a grid, the shorter one along its cells j = 0 to M - 1; with equal
 *  lengths the second sequence counts as the shorter one. With d(i, j) the Euclidean distance (the root) of row i and row j,
 *
 *      D(0, j) = d(0, j)                                                   0 <= j <= delta
 *      D(i, j) = min(D(i-1, j), D(i-1, j-1), D(i-1, j-2)) + d(i, j)
 *
 *  so each step advances the shorter sequence by 0, 1 or 2 rows. The result is the least D(N - 1, j) within the search region: a
 *  start and an end within delta are free, and the sum is not divided by a path length.
 *
 *  - **Search region.** A parallelogram of slopes 2 and 1/2, widened by delta (rows). In column i: upper = delta + 2 i if 3 i < 2
 *    M - N, else M + delta + floor((i - N - 1) / 2), at most M - 1; lower = M - 2 N - delta + 2 i + 1 if 3 i > 4 N - 2 M - 2, else
 *    floor(i / 2) - delta, at least 0. A delta of M or more acts as M - 1.
 *  - **Beam.** Behind column 0, cells above (least of the column) + beam + 1.1920929e-7 are dropped from the top, then from the
 *    bottom, up to the first cell that is not above; one always stays. A negative beam, or a NaN, acts as 0.
 *  - **Integer members** compute in float; the distance is scaled by 2^-sf, rounded to nearest and saturated. `L2Low` computes the
 *    same as `L2`.
 *
 *  | Parameter | Use | Elements, or values | |
 *  |---|---|---|---|
 *  | `source1` | in | height1 x width, stride apart | one vector a row |
 *  | `source2` | in | height2 x width, stride apart | |
 *  | `rows1` | in | height1 x width | row pointers |
 *  | `rows2` | in | height2 x width | |
 *  | `distance` | out | 1 | |
 *  | `height1`, `height2`, `width` | value | at least 1 | |
 *  | `stride` | value | at least width | |
 *  | `delta` | value | any | rows |
 *  | `beam` | value | any | distance |
 *  | `scaleFactor` | value | any | |
 *
 *  **Error** of a distance, relative to it, with sequences of 2 to 200 rows: 4.3e-7 up to a width of 13, 5.8e-7 above.
 *
 *  | Status, in order | When |
 *  |---|---|
 *  | #qorStatusNullPointer | a sequence or distance is null; row pointers are not tested |
 *  | #qorStatusBadSize | a height or the width below 1, in `_D2` also a stride below the width (required) |
 *  | #qorStatusNoMemory | integer members always allocate, float ones for long sequences |
 *
 *  @warning Where no path reaches the end the distance is the sentinel 3.4028235e38, and the status #qorStatusOk. So it is for a
 *  negative delta, for N much above 2 M with a small delta, and, required, for two sequences of one row each, whatever they hold.
 *  Integer members scale and saturate the sentinel too.
 *
 *  @warning Distances of pairs of different lengths are not comparable as they stand: divide by the length of the longer sequence.
 *
 *  **Exact arithmetic**
 *  - Float. Up to a width of 13 the sum of squares, taken in pairs of elements, and the root are float; above, the squares are
 *    summed in double, in four lanes over blocks of eight elements joined as (l0 + l2) + (l1 + l3), the rest one by one, and the
 *    root is a double that is rounded to float.
 *  - Where every cell of a column is infinite the distance is infinity. No path leads through a distance that is a NaN.
 *  - Integer members convert both sequences to float, exactly, and the beam from 32-bit integer to float; the distance is
 *    converted to 32 bits with the scale factor: times 2^-sf in float, to nearest, ties to even, saturated.
 *  - Float members allocate where 2 floor4(M + 8) + 2 ceil4(N) is above 512 (floor4, ceil4: down and up to a multiple of 4).
 *
 *  Source of the method: H. Sakoe, S. Chiba, "Dynamic programming algorithm optimization for spoken word recognition", IEEE Trans.
 *  ASSP 26 (1978); L. Rabiner, A. Rosenberg, S. Levinson, "Considerations in dynamic time warping algorithms for discrete word
 *  recognition", ibid. (free ends). @{ */
/** Warping distance of two sequences of vectors: float, row pointers. @see @ref dtw */
QORSR_API QorStatus qorsDTW_L2_32f_D2L(const float* const* rows1, int32_t height1, const float* const* rows2, int32_t height2,
                                       int32_t width, float* distance, int32_t delta, float beam);
/** Warping distance of two sequences of vectors: float. @see @ref dtw */
QORSR_API QorStatus qorsDTW_L2_32f_D2(const float* source1, int32_t height1, const float* source2, int32_t height2, int32_t width,
                                      int32_t stride, float* distance, int32_t delta, float beam);
/** Warping distance of two sequences of vectors: bytes to 32-bit, row pointers, scaled. @see @ref dtw */
QORSR_API QorStatus qorsDTW_L2_8u32s_D2LSfs(const uint8_t* const* rows1, int32_t height1, const uint8_t* const* rows2,
                                            int32_t height2, int32_t width, int32_t* distance, int32_t delta, int32_t beam,
                                            int32_t scaleFactor);
/** Warping distance of two sequences of vectors: bytes to 32-bit, scaled. @see @ref dtw */
QORSR_API QorStatus qorsDTW_L2_8u32s_D2Sfs(const uint8_t* source1, int32_t height1, const uint8_t* source2, int32_t height2,
                                           int32_t width, int32_t stride, int32_t* distance, int32_t delta, int32_t beam,
                                           int32_t scaleFactor);
/** Warping distance of two sequences of vectors: 16 to 32 bits, row pointers, scaled. @see @ref dtw */
QORSR_API QorStatus qorsDTW_L2Low_16s32s_D2LSfs(const int16_t* const* rows1, int32_t height1, const int16_t* const* rows2,
                                                int32_t height2, int32_t width, int32_t* distance, int32_t delta, int32_t beam,
                                                int32_t scaleFactor);
/** Warping distance of two sequences of vectors: 16 to 32 bits, scaled. @see @ref dtw */
QORSR_API QorStatus qorsDTW_L2Low_16s32s_D2Sfs(const int16_t* source1, int32_t height1, const int16_t* source2, int32_t height2,
                                               int32_t width, int32_t stride, int32_t* distance, int32_t delta, int32_t beam,
                                               int32_t scaleFactor);
/** @} */

/** @defgroup singular_values Singular value decomposition
 *  A = U diag(w) V' for a matrix A of `height` m rows and `width` n columns, m below, at or above n. U has the shape of A, w holds
 *  n values, V is n x n and not transposed: its column k is the right singular vector of w[k].
 *
 *  - `SVD` leaves the values in the order in which the sweeps find them; `SVDSort` orders them downward, the first found of equal
 *    values first, and the columns of U and V with them.
 *  - `_I`: U takes the place of A; otherwise the source stays as it is. In `_D2` A, U and V share `stride`; nothing is written
 *    between the rows.
 *  - Values are nonnegative: the sign goes to V. With m below n, n - m values are zero and so are n - m columns of U. A zero
 *    matrix gives w = 0, V the identity and ones on the diagonal of U.
 *  - `limit`: of attempts for each value; a value that needs a sweep needs a limit of 2 or more, 30 is usual.
 *
 *  | Parameter | Use | Elements, or values | |
 *  |---|---|---|---|
 *  | `source` of `*_D2` | in | height x width, stride apart | A |
 *  | `source` of `*_D2L` | in | height x width | A, row pointers |
 *  | `matrix` | in, out | height x width, stride apart | A, then U |
 *  | `rows` | in, out | height x width | A, then U, row pointers |
 *  | `u` of `*_D2` | out | height x width, stride apart | |
 *  | `u` of `*_D2L` | out | height x width | row pointers |
 *  | `w` | out | width | singular values |
 *  | `v` of `*_D2`, `*_D2_I` | out | width x width, stride apart | |
 *  | `v` of `*_D2L`, `*_D2L_I` | out | width x width | row pointers |
 *  | `height`, `width`, `limit` | value | at least 1 | |
 *  | `stride` | value | at least width | |
 *  | `firstColumn`, `secondColumn` | value | 0 to width - 1 | |
 *  | `c`, `s` | value | any | cosine and sine |
 *
 *  **Error**, the largest of random matrices from 2 x 2 to 64 x 64 and 300 x 26: of a value 3.3e-15 and of an element of U diag(w)
 *  V' 1e-15, both relative to the largest value; of an element of U'U and V'V 4.3e-15.
 *
 *  | Status, in order | When |
 *  |---|---|
 *  | #qorStatusNullPointer | a pointer is null |
 *  | #qorStatusBadSize | height, width or limit below 1, in `_D2` also a stride below width (required) |
 *  | #qorStatusNoMemory | scratch is about width (height + width) doubles, less than 2^31 bytes; nothing is written |
 *  | #qorStatusNoConvergence | the limit was reached; w, U and V hold the partial state, unsorted |
 *
 *  @warning A NaN or an infinity in A ends in #qorStatusNoConvergence or in results that hold NaN, always within the limit; so may
 *  a matrix whose values have squares outside the range of a double.
 *
 *  **Exact arithmetic**
 *  - Householder reduction to bidiagonal form, accumulation of the reflections, then implicit-shift QR sweeps. An element counts
 *    as zero when its magnitude plus the norm of the bidiagonal form equals that norm.
 *  - Both layouts give the same bits. Sums are grouped in four and eight lanes.
 *
 *  Source of the method: G. Golub, C. Reinsch, "Singular Value Decomposition and Least Squares Solutions", Numer. Math. 14 (1970).
 *  @{ */

/** Singular values and vectors of a matrix: double. @see @ref singular_values */
QORSR_API QorStatus qorsSVD_64f_D2(const double* source, double* u, int32_t height, double* w, double* v, int32_t width,
                                   int32_t stride, int32_t limit);
/** Singular values and vectors of a matrix: double, row pointers. @see @ref singular_values */
QORSR_API QorStatus qorsSVD_64f_D2L(const double* const* source, double* const* u, int32_t height, double* w, double* const* v,
                                    int32_t width, int32_t limit);
/** Singular values and vectors of a matrix, U in its place: double. @see @ref singular_values */
QORSR_API QorStatus qorsSVD_64f_D2_I(double* matrix, int32_t height, double* w, double* v, int32_t width, int32_t stride,
                                     int32_t limit);
/** Singular values and vectors of a matrix, U in its place: double, row pointers. @see @ref singular_values */
QORSR_API QorStatus qorsSVD_64f_D2L_I(double* const* rows, int32_t height, double* w, double* const* v, int32_t width,
                                      int32_t limit);
/** Singular values, downward, and vectors of a matrix: double. @see @ref singular_values */
QORSR_API QorStatus qorsSVDSort_64f_D2(const double* source, double* u, int32_t height, double* w, double* v, int32_t width,
                                       int32_t stride, int32_t limit);
/** Singular values, downward, and vectors of a matrix: double, row pointers. @see @ref singular_values */
QORSR_API QorStatus qorsSVDSort_64f_D2L(const double* const* source, double* const* u, int32_t height, double* w, double* const* v,
                                        int32_t width, int32_t limit);
/** Singular values, downward, and vectors of a matrix, U in its place: double. @see @ref singular_values */
QORSR_API QorStatus qorsSVDSort_64f_D2_I(double* matrix, int32_t height, double* w, double* v, int32_t width, int32_t stride,
                                         int32_t limit);
/** Singular values, downward, and vectors of a matrix, U in its place: double, row pointers. @see @ref singular_values */
QORSR_API QorStatus qorsSVDSort_64f_D2L_I(double* const* rows, int32_t height, double* w, double* const* v, int32_t width,
                                          int32_t limit);

/** Turns two columns of a matrix in place (Givens). With a = row[secondColumn], b = row[firstColumn] of each row,
 *  row[secondColumn] = c a + s b and row[firstColumn] = b c - a s. Statuses: null; width or height below 1 or a column outside
 *  0 to width - 1 (#qorStatusBadSize). @see @ref singular_values */
QORSR_API QorStatus qorsQRTransColumn_64f_D2L(double* const* rows, int32_t width, int32_t height, int32_t firstColumn,
                                              int32_t secondColumn, double c, double s);
/** @} */

/* ================================ Pitch ================================ */

/** @defgroup pitch Pitch analysis
 *  What a pitch tracker measures: how alike two pieces of a signal are, how well a frame is explained by one period, frequencies from
 *  the times of pitch marks, and the peaks of a contour.
 *
 *  **Cross-correlation** (`CrossCorrCoeff`). With c = sum of first[i] second[i] and the energies e1, e2 of the two pieces,
 *  result = c / (sqrt(e1) sqrt(e2)), from -1 to 1; 0 if e1 e2 is at most 1.1754944e-38, as in silence.
 *  - `Partial`: e1 is given, so that a search that slides the second piece pays for it once.
 *  - `Decim`: the tail of `first` against the head of `second`, over growing lengths, every step-th sample. results[q] compares the last
 *    minimumLength + q step samples of first[0] to first[maximumLength - 1] with as many of second.
 *  - `Interpolation`: the peak between two neighbouring lags. position is the a in 0 <= a < 1 for which first is most like
 *    (1 - a) second[i] + a second[i + 1]; coefficient is the correlation there.
 *
 *  @warning `Interpolation` writes the coefficient only where the peak lies between the two lags: without it, position is outside of 0
 *  to 1 and the coefficient stays as it was. Where no peak exists, #qorStatusDivideByZero comes with position 0 and the plain product as
 *  coefficient.
 *
 *  **Periodicity.** The period from minimumPeriod to maximumPeriod samples that explains a frame best, and a value from 0 to about 1; the
 *  smallest period wins a tie, and without any value above 0 the period is 0.
 *  - `PeriodicityLSPE`, by least squares: with s, q, c the sum, the sum of squares and the number of the samples i, i + p, i + 2p, ... of
 *    each phase, A = sum of s^2 / c, B = sum of q / c, and E the energy, the value is (A - B) / (E - B).
 *  - `Periodicity`, for contours that are not negative, such as a rectified signal or an autocorrelation: the sum of the up to six
 *    samples i, i + p, ..., i + 5p whose mean is largest, as a share of the sum of all.
 *
 *  `16s` values are Q15, limited to 32767.
 *
 *  **Pitch marks** (`PitchmarkToF0Cand`). candidates[i] = 1 / (marks[i] - marks[i - 1]), marks[-1] being 0; `16s`: times 2^-scaleFactor,
 *  rounded to nearest, ties to even, and limited to 16 bits. Equal marks give infinity (32767), with #qorStatusDivideByZero.
 *
 *  **Peaks** (`FindPeaks`). flags[i] = 1 at local maxima that rise over at least searchSize steps and fall over as many, 0 elsewhere; near
 *  both ends the rise and the fall shrink to what is left of the contour. Plateaus are no peaks. With halfWidth w above 0 the contour is
 *  first replaced by its means over i - w to i + w, cut at the ends.
 *
 *  | Parameter | Use | Elements, or values | |
 *  |---|---|---|---|
 *  | `first` | in | length | |
 *  | `second` of `CrossCorrCoeffInterpolation_*` | in | length + 1 | |
 *  | `first`, `second` of `CrossCorrCoeffDecim_*` | in | maximumLength | |
 *  | `second` | in | length | |
 *  | `result`, `position` | out | 1 | |
 *  | `coefficient` | in, out | 1 | |
 *  | `results` | out | (maximumLength - minimumLength) / step + 1 | |
 *  | `energy` | value | any | not 0 |
 *  | `maximumLength` | value | at least minimumLength | |
 *  | `minimumLength`, `step` | value | at least 1 | |
 *  | `source` of `Periodicity_*` | in | length; each at least 0 | |
 *  | `source` | in | length | |
 *  | `value`, `period` | out | 1 | `16s`: Q15; samples |
 *  | `marks` | in | length | times, rising |
 *  | `candidates` | out | length | frequencies, in one over the unit of the marks |
 *  | `flags` | out | length | 0 or 1 |
 *  | `minimumPeriod` of `PeriodicityLSPE_*` | value | at least 6 | samples |
 *  | `minimumPeriod` | value | at least 1 | samples |
 *  | `maximumPeriod` | value | at least minimumPeriod + 1 | samples |
 *  | `length` of `PeriodicityLSPE_*` | value | maximumPeriod + 1 to min(1024, 16 * minimumPeriod) | |
 *  | `length` of `Periodicity_*` | value | maximumPeriod + 1 to 4096 | |
 *  | `length` of `FindPeaks_*` | value | 1 to 65535 | |
 *  | `length` | value | at least 1 | |
 *  | `searchSize` | value | 1 to 127 | |
 *  | `halfWidth` | value | 0 to 127 | |
 *  | `scaleFactor` | value | any | |
 *
 *  | Status, in order | when |
 *  |---|---|
 *  | #qorStatusNullPointer | a pointer is null |
 *  | #qorStatusBadSize | `CrossCorrCoeff`, `PitchmarkToF0Cand`: a length or the step below 1, maximumLength below minimumLength |
 *  | #qorStatusBadRange | `Partial`: energy is 0. `Periodicity`: a period outside its limits |
 *  | #qorStatusBadLength | `Periodicity`, `FindPeaks`: the length outside its limits |
 *  | #qorStatusBadRange | `Periodicity_32f`, `Periodicity_32s16s`: a negative sample |
 *  | #qorStatusBadSize | `FindPeaks`: searchSize or halfWidth outside its limits |
 *  | #qorStatusNoMemory | `FindPeaks` with a halfWidth, `PitchmarkToF0Cand_16s_Sfs` of more than 100 marks: no scratch |
 *  | #qorStatusDivideByZero | `Interpolation`, `PitchmarkToF0Cand`: a warning, as above |
 *
 *  **Exact arithmetic.** Sums of 16-bit products are exact in 64 bits, then rounded to float (`Interpolation`: to double); `Decim` adds
 *  floats in the order of the samples, and its energies grow by one term a result. Roots and quotients of `CrossCorrCoeff` are double.
 *  - required: `PeriodicityLSPE` and `Periodicity` use 1 / sqrt(c) and 1 / c to six digits (0.707107, 0.333333, 0.0769231, ...). Phases
 *    are added in their order, in float. The sum of `Periodicity_32f` runs from the end in two sums, one for each parity, joined in
 *    front of an odd first sample.
 *  - Integers: E (or the sum) is shifted right by sh until it fits 31 bits, and every square (or the best sum) with it; the tables are
 *    2^30 / sqrt(c) and 2^30 / c, truncated; s times its entry, shifted right by 30 + sh / 2 (rounded down), times the same, shifted by
 *    30 + sh - sh / 2; q times its entry shifted by 30. Values are quotients of 64 bits, truncated.
 *  - Means of `FindPeaks` are double sums, rounded to float once divided; of integers exact, and truncated.
 *  - required: where a contour falls up to its last value but one, that last value is a peak only for a searchSize of 1 and by
 *    comparison of the source itself, smoothed or not.
 *
 *  Source: Medan, Yair and Chazan, "Super Resolution Pitch Determination of Speech Signals", IEEE Trans. Signal Processing 39 (1991);
 *  Wise, Caprio and Parks, "Maximum Likelihood Pitch Estimation", IEEE Trans. ASSP 24 (1976). @{ */

/** Normalised cross-correlation of two pieces of a signal. @see @ref pitch */
QORSR_API QorStatus qorsCrossCorrCoeff_16s32f(const int16_t* first, const int16_t* second, int32_t length, float* result);
/** Normalised cross-correlation where the energy of the first piece is given. @see @ref pitch */
QORSR_API QorStatus qorsCrossCorrCoeffPartial_16s32f(const int16_t* first, const int16_t* second, int32_t length, float energy,
                                                     float* result);
/** Normalised cross-correlations over growing lengths, every step-th sample. @see @ref pitch */
QORSR_API QorStatus qorsCrossCorrCoeffDecim_16s32f(const int16_t* first, const int16_t* second, int32_t maximumLength,
                                                   int32_t minimumLength, float* results, int32_t step);
/** Peak of the cross-correlation between two neighbouring lags; coefficient is written only where there is one. @see @ref pitch */
QORSR_API QorStatus qorsCrossCorrCoeffInterpolation_16s32f(const int16_t* first, const int16_t* second, int32_t length,
                                                           float* position, float* coefficient);
/** Period of a float frame by least squares. @see @ref pitch */
QORSR_API QorStatus qorsPeriodicityLSPE_32f(const float* source, int32_t length, float* value, int32_t* period,
                                            int32_t maximumPeriod, int32_t minimumPeriod);
/** Period of a 16-bit frame by least squares; the value in Q15. @see @ref pitch */
QORSR_API QorStatus qorsPeriodicityLSPE_16s(const int16_t* source, int32_t length, int16_t* value, int32_t* period,
                                            int32_t maximumPeriod, int32_t minimumPeriod);
/** Period of the largest mean over up to six periods of a float contour that is not negative. @see @ref pitch */
QORSR_API QorStatus qorsPeriodicity_32f(const float* source, int32_t length, float* value, int32_t* period, int32_t maximumPeriod,
                                        int32_t minimumPeriod);
/** Period of the largest mean over up to six periods of a 32-bit contour that is not negative; the value in Q15. @see @ref pitch */
QORSR_API QorStatus qorsPeriodicity_32s16s(const int32_t* source, int32_t length, int16_t* value, int32_t* period,
                                           int32_t maximumPeriod, int32_t minimumPeriod);
/** Frequencies from the times of pitch marks. @see @ref pitch */
QORSR_API QorStatus qorsPitchmarkToF0Cand_32f(const float* marks, float* candidates, int32_t length);
/** Frequencies from the times of 16-bit pitch marks, times 2^-scaleFactor. @see @ref pitch */
QORSR_API QorStatus qorsPitchmarkToF0Cand_16s_Sfs(const int16_t* marks, int16_t* candidates, int32_t length, int32_t scaleFactor);
/** Marks the peaks of a float contour. @see @ref pitch */
QORSR_API QorStatus qorsFindPeaks_32f8u(const float* source, uint8_t* flags, int32_t length, int32_t searchSize, int32_t halfWidth);
/** Marks the peaks of a 32-bit contour. @see @ref pitch */
QORSR_API QorStatus qorsFindPeaks_32s8u(const int32_t* source, uint8_t* flags, int32_t length, int32_t searchSize,
                                        int32_t halfWidth);
/** @} */

/* ================================ Resampling ================================ */

/* ---------------- Arbitrary ratios ---------------- */

/** @defgroup resample Resampling by any ratio
 *  One stored low-pass filter converts a signal by any ratio, given with each call. Where the ratio is known in advance, @ref
 *  resample_fixed is several times faster.
 *
 *  The filter is a sinc of cut-off rollOff (1: half the sample rate) under a Kaiser window of shape alpha that spans `window` samples,
 *  tabulated nStep entries a sample and interpolated linearly. With h that filter, y(t) = norm * sum over k of h(t - k) x[k]. With a
 *  factor below 1 the filter is stretched by 1 / factor, so that it cuts at half the new rate, and multiplied by factor; the gain at
 *  frequency zero is norm.
 *
 *  Good values: a window of 16 (fast) to 64 (steep) samples, nStep 128 (16-bit) to 1024, rollOff 0.9 to 0.95, alpha 6 (aliases at -60
 *  dB) to 9 (-90 dB).
 *
 *  **Time and history** are the caller's. `time` is where the next output lies, in input samples from `source`. Outputs are made
 *  while the time is below trunc(time) + length, 1 / factor apart; `count` says how many, and `time` is then where the next one would
 *  lie. Samples on both sides of these times are read: window / 2 of them, divided by factor where it is below 1, and one more. A stream
 *  keeps these in its buffer: after a call it moves the samples that are still needed to the front, by a whole number of samples, and takes
 *  that number from `time`. Pieces of any lengths then give the outputs of the whole: the same bits if the buffer stays in its place or no
 *  time is rounded (a factor of 2 or 0.5), else the same to the last bits, since a smaller time is rounded less; one that falls on the
 *  end of a span may then come with the next.
 *
 *  | Parameter | Use | Elements, or values | |
 *  |---|---|---|---|
 *  | `state` of `ResamplePolyphaseInitAlloc_*` | makes | | |
 *  | `state` of `ResamplePolyphaseFree_*` | frees | | |
 *  | `state` | in | | may be shared by streams and threads |
 *  | `window` | value | at least 2 / nStep, usually 4 to 32 | input samples |
 *  | `nStep` | value | at least 1 | table entries a sample |
 *  | `rollOff` | value | above 0, at most 1 | |
 *  | `alpha` | value | at least 1 | |
 *  | `hint` | value | any | of 16-bit states: 2: float table; else a 16-bit table |
 *  | `length` | value | at least 1 | input samples |
 *  | `factor` | value | above 0, usually 0.25 to 4 | output rate / input rate |
 *  | `norm` | value | any | gain |
 *  | `time` | in, out | 1; each 80 to 90 | the next output, in input samples |
 *  | `source` | in | length + 180 | around `time`, see above: at these values at most 65 samples on either side |
 *  | `destination` | in, out | length * factor + 1 | |
 *  | `count` | out | 1 | of outputs |
 *
 *  | Members | Statuses, in order |
 *  |---|---|
 *  | `InitAlloc` | null; nStep below 1 (#qorStatusBadSize); window below 2 / nStep, rollOff not above 0 or above 1, alpha below 1, window nStep / 2 above 268435453 or, unlike the others, a NaN (#qorStatusBadArgument); no memory (#qorStatusNoMemory; required: #qorStatusNullPointer where the design of a 16-bit table has no scratch). `*state` is then as it was |
 *  | `ResamplePolyphase_16s`, `_32f` | null; factor not above 0 (a NaN passes) or length below 1 (#qorStatusBadSize) |
 *  | `Free` | null |
 *
 *  @warning The samples around the span are not checked for: a small factor reads far to both sides, window / (2 factor) samples.
 *
 *  @warning The destination must hold length * factor outputs, and one more. A negative time lies in front of trunc(time), up to a sample:
 *  then (length + 1) * factor, and one more.
 *
 *  **Exact arithmetic**
 *  - The table: L = trunc(window * 0.5 * nStep) + 1 entries, the products float. t[0] = rollOff, t[k] = sin(rollOff w k) / (w k) *
 *    I0(alpha sqrt(1 - (k / (L - 1))^2)) / I0(alpha) with w = pi / nStep, and all of it over t[0] plus twice the sum of t[nStep], t[2
 *    nStep], ..., each of these quotients of a whole table being a product with the reciprocal; in double, then float. I0 is summed until a term is below 1e-21 of the sum. 16-bit tables are scaled to a largest
 *    magnitude of 16383 and rounded, halves away from zero. An entry that repeats the last follows.
 *  - With i = trunc(time) and f = time - i, the samples i, i - 1, ... begin at u = f nStep, and then the samples i + 1, i + 2, ... at
 *    (1 - f) nStep. Factor at least 1: the index is trunc(u + 1e-5) and then nStep more a sample, q = u - index stays, samples are added
 *    while the index is below L. Factor below 1: u is multiplied by factor, factor nStep is added for each sample, index and q are those
 *    of each u, samples are added while u is below L - 1e-5. A sample counts t[index] (1 - q) + t[index + 1] q.
 *  - Sums are double: while at least four steps of the table remain, groups ((p0 + p1) + p2) + p3, each then added to the sum (groups of eight
 *    where the factor is below 1 and the table 16-bit); the rest one by one. The 16-bit result is the nearest number, halves away from
 *    zero, limited to 16 bits; a NaN gives 0.
 *  - A negative time is truncated toward zero like any other; the filter is then read at the mirror image of a negative index. A time
 *    outside the 32-bit range, or a NaN: no output, the time stays. A factor of infinity or NaN, or so large that the time does not grow:
 *    one output.
 *
 *  Source of the method: Smith and Gossett, "A Flexible Sampling-Rate Conversion Method", Proc. ICASSP (1984); the window: Kaiser,
 *  "Nonrecursive Digital Filter Design Using the I0-sinh Window Function", Proc. IEEE Symp. Circuits and Systems (1974). @{ */

/** A filter for any ratio: 16-bit samples. */
typedef struct ResamplePolyphaseState_16s ResamplePolyphaseState_16s;
/** A filter for any ratio: float samples. */
typedef struct ResamplePolyphaseState_32f ResamplePolyphaseState_32f;

/** Designs a filter for any ratio: 16-bit samples. @see @ref resample */
QORSR_API QorStatus qorsResamplePolyphaseInitAlloc_16s(ResamplePolyphaseState_16s** state, float window, int32_t nStep,
                                                       float rollOff, float alpha, int32_t hint);
/** Designs a filter for any ratio: float samples. @see @ref resample */
QORSR_API QorStatus qorsResamplePolyphaseInitAlloc_32f(ResamplePolyphaseState_32f** state, float window, int32_t nStep,
                                                       float rollOff, float alpha, int32_t hint);
/** Releases a filter for any ratio: 16-bit samples. @see @ref resample */
QORSR_API QorStatus qorsResamplePolyphaseFree_16s(ResamplePolyphaseState_16s* state);
/** Releases a filter for any ratio: float samples. @see @ref resample */
QORSR_API QorStatus qorsResamplePolyphaseFree_32f(ResamplePolyphaseState_32f* state);
/** Resamples by any ratio: 16-bit samples. @see @ref resample */
QORSR_API QorStatus qorsResamplePolyphase_16s(const ResamplePolyphaseState_16s* state, const int16_t* source, int32_t length,
                                              int16_t* destination, double factor, float norm, double* time, int32_t* count);
/** Resamples by any ratio: float samples. @see @ref resample */
QORSR_API QorStatus qorsResamplePolyphase_32f(const ResamplePolyphaseState_32f* state, const float* source, int32_t length,
                                              float* destination, double factor, float norm, double* time, int32_t* count);
/** @} */

/* ---------------- Fixed ratios ---------------- */

/** @defgroup resample_fixed Resampling by a fixed ratio
 *  For two rates that are known in advance, say 48000 and 16000: a filter row for each output phase, one dot product an output. The
 *  filter is that of @ref resample, at the lower of the two rates' cut-off, or the caller's own (`SetFixedFilter`).
 *
 *  The rates are reduced by their common divisor to in and out (48000 and 44100: 160 and 147). With F = filterLength rounded up to a
 *  multiple of 4 and n = F / 2, an output at the time i + p / out is min(out / in, 1) * norm * the dot product of row p with the samples i + 1 - n
 *  to i + n; row 0, whose time is a sample, has one tap more, and begins one sample earlier. There are `out` rows of
 *  (filterLength + 4) / 4 * 4 elements.
 *
 *  **Time and history** as in @ref resample, with n samples in front of trunc(time) and n behind the last sample of the span. The time
 *  is taken to the nearest phase; what that leaves is kept in it, so nothing drifts: after a call it is exact.
 *
 *  **States** with the hint 2 are accurate: float taps, double sums. Otherwise a `32f` state sums floats, and a `16s` state has 16-bit taps in
 *  Q14 with exact integer sums, the fastest form. In a block of the caller of the size that `GetSize` tells, at any address (`Init`: rows
 *  of zeros, `16s` with the hint 1 only; never given to `Free`), or allocated (`InitAlloc`: with a designed filter). A block may be moved.
 *
 *  **Filters of the caller.** Row p in Q14 (`16s` states) or float, for rows of rowLength elements in the buffer: the samples i + 1 - n to i +
 *  n (row 0: i - n to i + n) in their order. `GetFixedFilter` and `SetFixedFilter` copy the first elements of each row, as many as both rows
 *  have, of `rows` rows or all that the state has.
 *
 *  | Parameter | Use | Elements, or values | |
 *  |---|---|---|---|
 *  | `state` of `ResamplePolyphaseFixedInitAlloc_*` | makes | | |
 *  | `state` of `ResamplePolyphaseFixedInit_*` | block | bytes of `ResamplePolyphaseFixedGetSize_*` | |
 *  | `state` of `ResamplePolyphaseFixedFree_*` | frees | | |
 *  | `state` of `ResamplePolyphaseSetFixedFilter_*` | in, out | | |
 *  | `state` | in | | may be shared by streams and threads |
 *  | `inRate`, `outRate`, `filterLength` | value | at least 1 | |
 *  | `rollOff` | value | above 0, at most 1 | |
 *  | `alpha` | value | at least 1 | |
 *  | `hint` of `*GetSize_16s`, `*FixedInit_16s` | value | 1 | |
 *  | `hint` | value | any | 2: accurate |
 *  | `size` | out | 1 | bytes |
 *  | `rowLength` of `ResamplePolyphaseFixedGetSize_*` | out | 1 | elements of a row |
 *  | `rows` of `ResamplePolyphaseFixedGetSize_*` | out | 1 | phases |
 *  | `length` | value | at least 1 | input samples |
 *  | `norm` | value | any | gain |
 *  | `time` | in, out | 1; each state.filterLength + 2 to state.filterLength + 4 | the next output, in input samples |
 *  | `source` | in | length + 2 * state.filterLength + 10 | around `time`, see above |
 *  | `destination` | in, out | ceil(length * state.outRate / state.inRate) + 1 | |
 *  | `count` | out | 1 | of outputs |
 *  | `rowLength`, `rows` | value | at least 1 | |
 *  | `filter` of `ResamplePolyphaseSetFixedFilter_*` | in | rows x rowLength | |
 *  | `filter` | in, out | rows x rowLength | |
 *
 *  | Members | Statuses, in order |
 *  |---|---|
 *  | `GetSize`, `Init` | null; rates or filterLength below 1 (#qorStatusBadSize); `16s`: a hint other than 1 (#qorStatusBadArgument); a size above 2147483646, `32f`: 2147483645 (#qorStatusBadSize) |
 *  | `InitAlloc` | null; rates or filterLength below 1 (#qorStatusBadSize); rollOff not above 0 or above 1, alpha below 1, a size above 2147483646 (#qorStatusBadArgument); #qorStatusNoMemory. `*state` is then as it was |
 *  | `ResamplePolyphaseFixed_16s`, `_32f` | null; length below 1 (#qorStatusBadSize) |
 *  | `GetFixedFilter`, `SetFixedFilter` | null; rowLength or rows below 1 (#qorStatusBadSize) |
 *  | `Free` | null |
 *
 *  @warning Where filterLength is no multiple of 4 a row has no place for the extra tap of phase 0, and that tap is 0: use multiples of 4.
 *
 *  @warning The destination must hold length * out / in outputs, rounded up; for a negative time (length + 1) * out / in.
 *
 *  @warning The rows of a `16s` state that was allocated with the hint 2 are floats: qorsResamplePolyphaseGetFixedFilter_16s() and
 *  qorsResamplePolyphaseSetFixedFilter_16s() make no sense of them.
 *
 *  **Exact arithmetic**
 *  - The filter: t[k] as in @ref resample for w = pi / max(in, out), from k = 0 to last = trunc(F / 2 * out), which is formed in floats with
 *    1e-5 added to F (to F out / in where out is below in). Phase p has t[p + j out] as tap j on its left side, row 0 has
 *    t[last] at both ends. All of it over the sum of row 0, or, where out is below in, of t at the multiples of in. 16-bit taps: times 16384
 *    and rounded, halves away from zero.
 *  - The nearest phase is trunc((time - trunc(time)) out + 0.5); for a negative time that is the phase after the nearest, unless trunc(time)
 *    itself is the nearest. Outputs are made while position < (trunc(time) + length) out, where position
 *    counts phases in whole numbers of 64 bits; afterwards time = (position - phase) / out + (time - trunc(time)).
 *  - Float and double sums have 16 lanes that whole sets of 16 taps join, and four lanes for the sets of four behind them; lanes are
 *    joined by halves, then (sixteen + four) + the last tap of phase 0. Sums of `16s` states with the hint 2 are rounded to float. The sum
 *    is multiplied in double by (min(out / in, 1) * (16-bit taps: 2^-14)) * norm; 16-bit results are the nearest number, halves away
 *    from zero, limited to 16 bits; a NaN gives 0. A time outside the 32-bit range, or a NaN: no output, the time stays.
 *  - Size in bytes, divisions rounded down: (out + 7) / 8 * 16 + (out + 4) / 4 * 16 + rowLength * out * 2 + 32 (`16s`), * 4 + 28 (`32f`).
 *
 *  Source of the method: Crochiere and Rabiner, "Multirate Digital Signal Processing", Prentice-Hall (1983). @{ */

/** A filter for a fixed ratio: 16-bit samples. */
typedef struct ResamplePolyphaseFixedState_16s ResamplePolyphaseFixedState_16s;
/** A filter for a fixed ratio: float samples. */
typedef struct ResamplePolyphaseFixedState_32f ResamplePolyphaseFixedState_32f;

/** Bytes of a block, elements of a row, and phases: 16-bit samples. @see @ref resample_fixed */
QORSR_API QorStatus qorsResamplePolyphaseFixedGetSize_16s(int32_t inRate, int32_t outRate, int32_t filterLength, int32_t* size,
                                                          int32_t* rowLength, int32_t* rows, int32_t hint);
/** Bytes of a block, elements of a row, and phases: float samples. @see @ref resample_fixed */
QORSR_API QorStatus qorsResamplePolyphaseFixedGetSize_32f(int32_t inRate, int32_t outRate, int32_t filterLength, int32_t* size,
                                                          int32_t* rowLength, int32_t* rows, int32_t hint);
/** Lays out a state for a filter of the caller in the caller's block: 16-bit samples. @see @ref resample_fixed */
QORSR_API QorStatus qorsResamplePolyphaseFixedInit_16s(ResamplePolyphaseFixedState_16s* state, int32_t inRate, int32_t outRate,
                                                       int32_t filterLength, int32_t hint);
/** Lays out a state for a filter of the caller in the caller's block: float samples. @see @ref resample_fixed */
QORSR_API QorStatus qorsResamplePolyphaseFixedInit_32f(ResamplePolyphaseFixedState_32f* state, int32_t inRate, int32_t outRate,
                                                       int32_t filterLength, int32_t hint);
/** Designs a filter for a fixed ratio: 16-bit samples. @see @ref resample_fixed */
QORSR_API QorStatus qorsResamplePolyphaseFixedInitAlloc_16s(ResamplePolyphaseFixedState_16s** state, int32_t inRate,
                                                            int32_t outRate, int32_t filterLength, float rollOff, float alpha,
                                                            int32_t hint);
/** Designs a filter for a fixed ratio: float samples. @see @ref resample_fixed */
QORSR_API QorStatus qorsResamplePolyphaseFixedInitAlloc_32f(ResamplePolyphaseFixedState_32f** state, int32_t inRate,
                                                            int32_t outRate, int32_t filterLength, float rollOff, float alpha,
                                                            int32_t hint);
/** Releases an allocated filter for a fixed ratio: 16-bit samples. @see @ref resample_fixed */
QORSR_API QorStatus qorsResamplePolyphaseFixedFree_16s(ResamplePolyphaseFixedState_16s* state);
/** Releases an allocated filter for a fixed ratio: float samples. @see @ref resample_fixed */
QORSR_API QorStatus qorsResamplePolyphaseFixedFree_32f(ResamplePolyphaseFixedState_32f* state);
/** Resamples by a fixed ratio: 16-bit samples. @see @ref resample_fixed */
QORSR_API QorStatus qorsResamplePolyphaseFixed_16s(const ResamplePolyphaseFixedState_16s* state, const int16_t* source,
                                                   int32_t length, int16_t* destination, float norm, double* time, int32_t* count);
/** Resamples by a fixed ratio: float samples. @see @ref resample_fixed */
QORSR_API QorStatus qorsResamplePolyphaseFixed_32f(const ResamplePolyphaseFixedState_32f* state, const float* source,
                                                   int32_t length, float* destination, float norm, double* time, int32_t* count);
/** Copies filter rows from a state: 16-bit samples. @see @ref resample_fixed */
QORSR_API QorStatus qorsResamplePolyphaseGetFixedFilter_16s(const ResamplePolyphaseFixedState_16s* state, int16_t* filter,
                                                            int32_t rowLength, int32_t rows);
/** Copies filter rows from a state: float samples. @see @ref resample_fixed */
QORSR_API QorStatus qorsResamplePolyphaseGetFixedFilter_32f(const ResamplePolyphaseFixedState_32f* state, float* filter,
                                                            int32_t rowLength, int32_t rows);
/** Copies filter rows into a state: 16-bit samples. @see @ref resample_fixed */
QORSR_API QorStatus qorsResamplePolyphaseSetFixedFilter_16s(ResamplePolyphaseFixedState_16s* state, const int16_t* filter,
                                                            int32_t rowLength, int32_t rows);
/** Copies filter rows into a state: float samples. @see @ref resample_fixed */
QORSR_API QorStatus qorsResamplePolyphaseSetFixedFilter_32f(ResamplePolyphaseFixedState_32f* state, const float* filter,
                                                            int32_t rowLength, int32_t rows);
/** @} */

/* ================================ Numeric vectors ================================ */

/** @defgroup numeric_vectors Curves, roots, ranks, entropy and blends of vectors
 *  Small functions of vectors that recognisers need around the main chain. Words `_I`: in place.
 *
 *  **Curves**, result[i] a function of x = source[i]:
 *  - `ExpNegSqr`: exp(-x^2), an unnormalised Gaussian; `32f64f` squares in float.
 *  - `SinC`: sin(x) / x, and 1 at 0. x as it stands, with no factor of pi.
 *  - `UnitCurve`: a smooth step from 0 to 2: 0 below 0, x^2 up to 1, 2 - (2 - x)^2 up to 2, 2 beyond (a NaN too). `16s`: x has
 *    fractionBits fraction bits, the result is the curve times 2^-scaleFactor, rounded down and limited to 32767.
 *
 *  **Reciprocal roots** (`RecSqrt`): 1 / sqrt(x) where x lies above the floor. `Sfs`: x is a 32-bit integer, and the result is
 *  1 / sqrt(x) times 2^-scaleFactor, so that scaleFactor is negative as a rule.
 *
 *  **Rank** (`NthMaxElement`): the n-th largest element, 0 the largest; length / 2 gives a median. The source is not changed.
 *
 *  **Entropy**: the sum of x log2(x). required: it is not negated, so that of a distribution it is at or below 0, and the caller changes
 *  the sign. `16s32s`: x = source[i] 2^-sourceScaleFactor, the result times 2^-scaleFactor, truncated.
 *
 *  **Blends**: with W = firstWeight + secondWeight,
 *  - `WeightedSum`: result[i] = (first[i] firstWeight + second[i] secondWeight) / W;
 *  - `WeightedSumHalf`: result[i] = (first[i] + second[i] secondWeight) / W. required: the first weight counts in W alone.
 *
 *  @warning `RecSqrt` stores the floor itself, not its root, where x does not lie above it. `RecSqrt_32f` does so where x equals the
 *  floor too, the integer functions do not (required).
 *  @warning Scale factors of `UnitCurve` and `Entropy` count modulo 32 (required): 32 is 0.
 *  @warning `RecSqrt_32s_Sfs` rounds to nearest on addresses that are multiples of 16, and truncates on others. `WeightedSum_16s` and
 *  `WeightedSumHalf_16s` round to nearest if all three addresses are such and length is at least 8, and truncate otherwise (required).
 *
 *  | Parameter | Use | Elements, or values | |
 *  |---|---|---|---|
 *  | `source` of `Entropy_*` | in | length; each at least 0 | |
 *  | `source`, `first`, `second` | in | length | |
 *  | `values` | in, out | length | |
 *  | `result` of `NthMaxElement_*`, `Entropy_*` | out | 1 | |
 *  | `result` | out | length | |
 *  | `length` | value | at least 1 | |
 *  | `floor` of `RecSqrt_32f` | value | above 0 | |
 *  | `floor` | value | at least 1 | |
 *  | `n` | value | 0 to length - 1 | |
 *  | `fractionBits` | value | any | 0 to 14; any other: all results are 0 |
 *  | `sourceScaleFactor`, `scaleFactor` | value | any | |
 *  | `firstWeight`, `secondWeight` | value | any | |
 *
 *  | Status, in order | when |
 *  |---|---|
 *  | #qorStatusNullPointer | a pointer is null |
 *  | #qorStatusBadSize | length below 1 |
 *  | #qorStatusBadArgument | `RecSqrt`: a floor not above 0. `NthMaxElement`: n outside of the vector |
 *  | #qorStatusNoMemory | `NthMaxElement`: no scratch for a copy of the vector |
 *  | #qorStatusLogNegative | `Entropy`: an element below 0; the result is a NaN (bits FFC00000; `16s32s`: not written) |
 *  | #qorStatusDegenerateInput | `RecSqrt`: a warning, all elements took the floor |
 *  | #qorStatusDivideByZero | `WeightedSum`, `WeightedSumHalf`: a warning, W is 0 |
 *
 *  **Error.** `ExpNegSqr` of the square as it is rounded: 0.78 last places, `SinC` 1.7 in float and 2.2 in double; over the whole range,
 *  of any angle.
 *
 *  **Exact arithmetic.** Exponential, sine and logarithm are the library's own; every other operation is rounded on its own, in the type
 *  of the result (the square of `ExpNegSqr_32f64f` in float).
 *  - `SinC` divides sin |x| by |x|, in place as elsewhere. `UnitCurve_16s`: t with 2 fractionBits fraction bits in 32-bit integers; with s =
 *    scaleFactor + 2 fractionBits, t is shifted right by s modulo 32 if s is at least 1, else left by -s modulo 32, losing high bits.
 *  - `RecSqrt`: r = 1 / sqrt(x), then (3 - (x r) r) (r / 2), in float. `Sfs`: times the power of two; `16s` limited to -32768 to 32767
 *    and truncated; `32s` limited to 32 bits, where 2^31 on an address that is no multiple of 16 gives the most negative value.
 *  - `NthMaxElement` where elements have no order (NaN, zeros of both signs): what a quickselect finds whose pivot is the first
 *    element of its range; that takes time in proportion to the square of length at worst, all else in proportion to length.
 *  - `Entropy` adds x log(x) in the order of the elements, in float, and divides by 0.6931472. Zeros add nothing. `16s32s`: scale
 *    factors are floats, the quotient is limited to 32 bits.
 *  - Blends: r = 1 / W, result = first (firstWeight r) + second (secondWeight r), or first r + second (secondWeight r). `16s`: in float,
 *    limited to -32768 to 32767. With W = 0 the sign of first firstWeight + second secondWeight decides: infinity above 0, minus infinity
 *    below, a NaN elsewhere (16 bits: 32767, -32768, 0).
 *
 *  Source: Hoare, "Algorithm 65: Find", Communications of the ACM 4 (1961); Shannon, "A Mathematical Theory of Communication" (1948);
 *  Cody and Waite, "Software Manual for the Elementary Functions" (1980). @{ */

/** exp(-x^2) of floats. @see @ref numeric_vectors */
QORSR_API QorStatus qorsExpNegSqr_32f(const float* source, float* result, int32_t length);
/** exp(-x^2) of doubles. @see @ref numeric_vectors */
QORSR_API QorStatus qorsExpNegSqr_64f(const double* source, double* result, int32_t length);
/** exp(-x^2) of floats as doubles; the square is rounded to float. @see @ref numeric_vectors */
QORSR_API QorStatus qorsExpNegSqr_32f64f(const float* source, double* result, int32_t length);
/** exp(-x^2) of floats, in place. @see @ref numeric_vectors */
QORSR_API QorStatus qorsExpNegSqr_32f_I(float* values, int32_t length);
/** exp(-x^2) of doubles, in place. @see @ref numeric_vectors */
QORSR_API QorStatus qorsExpNegSqr_64f_I(double* values, int32_t length);
/** sin(x) / x of floats. @see @ref numeric_vectors */
QORSR_API QorStatus qorsSinC_32f(const float* source, float* result, int32_t length);
/** sin(x) / x of doubles. @see @ref numeric_vectors */
QORSR_API QorStatus qorsSinC_64f(const double* source, double* result, int32_t length);
/** sin(x) / x of floats as doubles. @see @ref numeric_vectors */
QORSR_API QorStatus qorsSinC_32f64f(const float* source, double* result, int32_t length);
/** sin(x) / x of floats, in place. @see @ref numeric_vectors */
QORSR_API QorStatus qorsSinC_32f_I(float* values, int32_t length);
/** sin(x) / x of doubles, in place. @see @ref numeric_vectors */
QORSR_API QorStatus qorsSinC_64f_I(double* values, int32_t length);
/** Reciprocal square roots of floats above a floor, in place. @see @ref numeric_vectors */
QORSR_API QorStatus qorsRecSqrt_32f(float* values, int32_t length, float floor);
/** Reciprocal square roots of integers from a floor on, as scaled 16-bit integers. @see @ref numeric_vectors */
QORSR_API QorStatus qorsRecSqrt_32s16s_Sfs(const int32_t* source, int16_t* result, int32_t length, int32_t floor,
                                           int32_t scaleFactor);
/** Reciprocal square roots of integers from a floor on, scaled, in place. @see @ref numeric_vectors */
QORSR_API QorStatus qorsRecSqrt_32s_Sfs(int32_t* values, int32_t length, int32_t floor, int32_t scaleFactor);
/** Smooth step from 0 to 2, of floats. @see @ref numeric_vectors */
QORSR_API QorStatus qorsUnitCurve_32f(const float* source, float* result, int32_t length);
/** Smooth step from 0 to 2, of floats, in place. @see @ref numeric_vectors */
QORSR_API QorStatus qorsUnitCurve_32f_I(float* values, int32_t length);
/** Smooth step from 0 to 2, of 16-bit numbers with fraction bits. @see @ref numeric_vectors */
QORSR_API QorStatus qorsUnitCurve_16s_Sfs(const int16_t* source, int32_t fractionBits, int16_t* result, int32_t length,
                                          int32_t scaleFactor);
/** Smooth step from 0 to 2, of 16-bit numbers with fraction bits, in place. @see @ref numeric_vectors */
QORSR_API QorStatus qorsUnitCurve_16s_ISfs(int16_t* values, int32_t fractionBits, int32_t length, int32_t scaleFactor);
/** The n-th largest float. @see @ref numeric_vectors */
QORSR_API QorStatus qorsNthMaxElement_32f(const float* source, int32_t length, int32_t n, float* result);
/** The n-th largest 32-bit integer. @see @ref numeric_vectors */
QORSR_API QorStatus qorsNthMaxElement_32s(const int32_t* source, int32_t length, int32_t n, int32_t* result);
/** The n-th largest double. @see @ref numeric_vectors */
QORSR_API QorStatus qorsNthMaxElement_64f(const double* source, int32_t length, int32_t n, double* result);
/** Sum of x log2(x) of floats, not negated. @see @ref numeric_vectors */
QORSR_API QorStatus qorsEntropy_32f(const float* source, int32_t length, float* result);
/** Sum of x log2(x) of scaled 16-bit numbers, not negated, scaled. @see @ref numeric_vectors */
QORSR_API QorStatus qorsEntropy_16s32s_Sfs(const int16_t* source, int32_t sourceScaleFactor, int32_t length, int32_t* result,
                                           int32_t scaleFactor);
/** Weighted mean of two 16-bit vectors. @see @ref numeric_vectors */
QORSR_API QorStatus qorsWeightedSum_16s(const int16_t* first, const int16_t* second, int16_t* result, int32_t length,
                                        float firstWeight, float secondWeight);
/** Weighted mean of two float vectors. @see @ref numeric_vectors */
QORSR_API QorStatus qorsWeightedSum_32f(const float* first, const float* second, float* result, int32_t length, float firstWeight,
                                        float secondWeight);
/** Weighted mean of two double vectors. @see @ref numeric_vectors */
QORSR_API QorStatus qorsWeightedSum_64f(const double* first, const double* second, double* result, int32_t length,
                                        double firstWeight, double secondWeight);
/** Weighted mean of two 16-bit vectors, the first one taken once. @see @ref numeric_vectors */
QORSR_API QorStatus qorsWeightedSumHalf_16s(const int16_t* first, const int16_t* second, int16_t* result, int32_t length,
                                            float firstWeight, float secondWeight);
/** Weighted mean of two float vectors, the first one taken once. @see @ref numeric_vectors */
QORSR_API QorStatus qorsWeightedSumHalf_32f(const float* first, const float* second, float* result, int32_t length,
                                            float firstWeight, float secondWeight);
/** Weighted mean of two double vectors, the first one taken once. @see @ref numeric_vectors */
QORSR_API QorStatus qorsWeightedSumHalf_64f(const double* first, const double* second, double* result, int32_t length,
                                            double firstWeight, double secondWeight);
/** @} */

#ifdef __cplusplus
}
#endif

#endif
