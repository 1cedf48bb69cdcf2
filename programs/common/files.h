// Files opened, read and written with one clear line where that fails.
#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

namespace program {

/** Opens a file for reading. Throws Fault, "FILE: cannot be opened: ...", where it cannot, or where FILE is a folder. */
std::ifstream openFile(const std::filesystem::path& file);

/** Writes a text file; throws Fault when it cannot be written whole. */
void writeFile(const std::filesystem::path& file, const std::string& text);

/** Four bytes, the lowest first. */
uint32_t littleEndian(const char* bytes);

}  // namespace program
