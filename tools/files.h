#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace zavri::tools {

using Bytes = std::vector<uint8_t>;

// "-" is stdin and stdout. All throw an Error that names the path.
Bytes read_file(const std::string& path);

// Throws when `path` exists and `force` is not set. Call it before the work that makes the output.
void check_output(const std::string& path, bool force);

// The file is complete under its name or not there at all.
void write_file(const std::string& path, const Bytes& bytes);

}  // namespace zavri::tools
