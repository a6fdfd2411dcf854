// A folder of its own for a test that reads and writes files: made empty when the guard is
// created and removed, with everything in it, when the guard goes.  Its name carries the test's
// name and a random number, so that tests run in parallel never share one.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "kernel/platform/string.h"

namespace veska::test {

class TempFolder {
 public:
  TempFolder()
      : folder_(std::filesystem::temp_directory_path() /
                ("veska_" + std::string(::testing::UnitTest::GetInstance()->current_test_info()->name()) + "_" +
                 std::to_string(std::random_device{}()))) {
    std::filesystem::create_directories(folder_);
  }
  ~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  // The folder itself, or a file in it, as the library's file functions take it.
  String Path(std::string_view name = {}) const { return FromUtf8((folder_ / name).string()); }

  // Writes the bytes as they stand and returns the file's path.
  String Write(std::string_view name, std::string_view bytes) const {
    std::ofstream(folder_ / name, std::ios::binary) << bytes;
    return Path(name);
  }

  // The bytes of a file in the folder; empty when it is missing.
  std::string Read(std::string_view name) const {
    std::ifstream file(folder_ / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  }

 private:
  std::filesystem::path folder_;
};

}  // namespace veska::test
