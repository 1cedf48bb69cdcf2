// The frame of every program: command line, interrupts, one line for each way to fail.
#pragma once

#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>

#include "common/fault.h"
#include "common/progress.h"

namespace program {

/** Parses the command line and, when it is right and asks for no help, calls action(). Answers the exit code. */
template <class Action>
int runProgram(const char* name, CLI::App& app, int argc, const char* const* argv, Action action) {
  catchInterrupts();
  try {
    app.parse(argc, argv);
    action();
    return 0;
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : exitUsage;
  } catch (const Interrupted& interrupted) {
    std::fprintf(stderr, "%s: %s; nothing was written\n", name, interrupted.what());
    return exitInterrupted;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s: %s\n", name, error.what());
    return exitRefused;
  }
}

}  // namespace program
