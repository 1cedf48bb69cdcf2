// The version record: constant, the same for the life of the library.
#include "qorsr.h"

namespace {
constexpr QorLibraryVersion kVersion = {QORSR_VERSION_MAJOR,         QORSR_VERSION_MINOR, QORSR_VERSION_BUILD_MAJOR,
                                        QORSR_VERSION_BUILD_MINOR,   {'t', '7', 0, 0},    "qorsrt7-6.0.dll",
                                        "6.0 Update 2 build 167.41", "Feb 23 2009"};
}

const QorLibraryVersion* qorsrGetLibVersion(void) { return &kVersion; }
