#include "tools/commands/pairs.h"

#include <filesystem>
#include <map>

#include "tools/error.h"
#include "tools/images/raw_format.h"

namespace zavri::tools {
namespace {

namespace fs = std::filesystem;

// Finds the files of a folder. Throws an Error where two have one name.
std::map<std::string, std::string> files_by_name(const std::string& folder) {
  std::map<std::string, std::string> files;
  for (const auto& entry : fs::directory_iterator(folder)) {
    if (!entry.is_regular_file()) continue;
    const auto [other, added] = files.insert({name_without_size(entry.path()), entry.path()});
    if (!added) throw Error(folder + ": two files are called " + other->first);
  }
  return files;
}

}  // namespace

std::vector<FilePair> pair_files(const std::string& folder_a, const std::string& folder_b) {
  const std::map<std::string, std::string> others = files_by_name(folder_b);
  std::vector<FilePair> pairs;
  for (const auto& [name, path] : files_by_name(folder_a)) {
    const auto other = others.find(name);
    if (other != others.end()) pairs.push_back({name, path, other->second});
  }
  if (pairs.empty()) throw Error(folder_b + ": no file is called as one of " + folder_a);
  return pairs;
}

std::string file_named(const std::string& name, const std::string& path) {
  if (!fs::is_directory(path)) return path;
  const std::map<std::string, std::string> files = files_by_name(path);
  const auto found = files.find(name);
  if (found == files.end()) throw Error(path + ": no file is called " + name);
  return found->second;
}

}  // namespace zavri::tools
