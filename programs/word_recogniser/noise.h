// Noise added to recordings, to see how recognition stands it.
#pragma once

#include "words/corpus.h"

namespace words {

/** The recording's sound with white Gaussian noise so many decibels below its mean power. The same recording always gets the same.
 */
program::Sound noisySound(const Recording& recording, double decibels);

/** The same for all recordings, in place. */
void addNoise(Corpus& corpus, double decibels);

}  // namespace words
