// The version record: constant, the same for the life of the library.
#include "qorsr.h"

namespace {
constexpr QorLibraryVersion kVersion = {
    6, 0, 167, 665, {'t', '7', 0, 0}, "qorsrt7-6.0.dll", "6.0 Update 2 build 167.41", "Feb 23 2009"};
}

const QorLibraryVersion* qorsrGetLibVersion(void) { return &kVersion; }
