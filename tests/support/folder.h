#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <string>

namespace zavri {

// A folder of its own for each test.
class TestFolder : public ::testing::Test {
 protected:
  TestFolder()
      : folder_(std::filesystem::temp_directory_path() /
                ("zavri_folder" + std::to_string(getpid()))) {
    std::filesystem::remove_all(folder_);
    std::filesystem::create_directories(folder_);
  }
  ~TestFolder() override { std::filesystem::remove_all(folder_); }

  std::string path(const std::string& name) const { return folder_ / name; }

  std::filesystem::path folder_;
};

}  // namespace zavri
