// The frame of every program: command line, interrupts, one line for each way to fail.
#pragma once

#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <iostream>
#include <sstream>
#include <string>

#include "common/fault.h"
#include "common/progress.h"
#include "common/text.h"

namespace program {

/** The check of an option: a number from low to high. CLI::Range lets pass what is not a number. */
template <class T>
CLI::Validator inRange(T low, T high) {
  std::ostringstream range;
  range << low << " to " << high;
  return {[low, high, text = range.str()](const std::string& input) {
            T value{};
            const bool good = CLI::detail::lexical_cast(input, value) && value >= low && value <= high;
            return good ? "" : input + " is not a number from " + text;
          },
          CLI::detail::type_name<T>() + std::string(" in [") + range.str() + "]"};
}

/** Parses the command line and, when it is right and asks for no help, calls action(). Answers the exit code. */
template <class Action>
int runProgram(const char* name, CLI::App& app, int argc, const char* const* argv, Action action) {
  catchInterrupts();
  try {
    app.parse(argc, argv);
    action();
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) throw Fault("what is printed cannot be written");
    return 0;
  } catch (const CLI::ParseError& error) {
    const bool good = app.exit(error) == 0;
    if (good && !std::cout.flush()) {
      std::fprintf(stderr, "%s: the help cannot be written\n", name);
      return exitRefused;
    }
    return good ? 0 : exitUsage;
  } catch (const Interrupted& interrupted) {
    std::fprintf(stderr, "%s: %s; nothing was written\n", name, interrupted.what());
    return exitInterrupted;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s: %s\n", name, printable(error.what()).c_str());
    return exitRefused;
  }
}

}  // namespace program
