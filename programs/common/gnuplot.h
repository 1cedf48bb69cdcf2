// Pictures drawn by the plotting program gnuplot.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace program {

/** Runs a gnuplot script that draws into the PNG file given. An empty answer is success, otherwise one line says what went wrong.
 * Throws Interrupted after Ctrl-C. */
std::string drawPng(const std::filesystem::path& png, int width, int height, const std::string& script);

/** A data block of rows "x y" to be plotted as $name. */
std::string curveBlock(const std::string& name, const std::vector<double>& x, const std::vector<float>& y);

/** A data block of height rows of width values, to be plotted as $name matrix. */
std::string matrixBlock(const std::string& name, const float* values, size_t height, size_t width);

/** Any text as a gnuplot string, quoted: what is not printed stands as its octal number, so that a line break ends nothing. */
std::string quoted(const std::string& text);

}  // namespace program
