// Errors that end a program with one line, and the check of the library's statuses.
#pragma once

#include <stdexcept>
#include <string>

#include "qorsr.h"

namespace program {

/** Ends the program: main() prints the message in one line and returns exitRefused. */
struct Fault : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/** The user pressed Ctrl-C: what was begun is cleared away and the program returns exitInterrupted. */
struct Interrupted : std::runtime_error {
  Interrupted() : std::runtime_error("interrupted") {}
};

inline constexpr int exitRefused = 1;        ///< nothing to work on, or nothing could be written
inline constexpr int exitUsage = 2;          ///< the command line is wrong
inline constexpr int exitInterrupted = 130;  ///< as a shell reports it

/** A negative status of the library is a fault of this program; a positive one is a warning that the caller may look at. */
inline QorStatus check(QorStatus status, const char* call) {
  if (status < 0) throw Fault(std::string(call) + " failed with status " + std::to_string(status));
  return status;
}

}  // namespace program
