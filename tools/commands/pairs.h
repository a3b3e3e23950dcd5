#pragma once

#include <string>
#include <vector>

namespace zavri::tools {

// Holds two files of one name in different folders.
struct FilePair {
  std::string name;  // without a size and the extension: "frame0" of frame0_4000x3000.nv12
  std::string a;
  std::string b;
};

// Returns pairs by their names in ascending order. Throws an Error unless there is one at least.
std::vector<FilePair> pair_files(const std::string& folder_a, const std::string& folder_b);

// Returns the file of this name in a folder; a path that is no folder stands for all names. Throws
// an Error where the folder has no such file.
std::string file_named(const std::string& name, const std::string& path);

}  // namespace zavri::tools
