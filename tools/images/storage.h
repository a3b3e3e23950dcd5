#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace zavri::tools {

using Bytes = std::vector<uint8_t>;

// All of these functions throw an Error that names the path. "-" is stdin and stdout.
Bytes read_file(const std::string& path);

// Throws unless the folder that is to hold `path` exists, and where `path` exists and `force` is
// not set. Call it before the work that makes the file.
void check_file(const std::string& path, bool force);

// Creates the folder, and those above it, if it is missing.
void make_folder(const std::string& folder);

// Writes the bytes. A regular file is complete under its name or not there at all, and keeps its
// mode. Behind a symbolic link its target is written; a pipe or a device takes the bytes as they
// come.
void write_file(const std::string& path, const Bytes& bytes);

}  // namespace zavri::tools
