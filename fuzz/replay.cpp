#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "fuzz/stage.h"

// Runs a target once on each file of the directories, so that a fixed failure stays fixed with
// every compiler. A directory without a file is a failure.
int main(int argc, char** argv) {
  if (argc < 2) return 2;
  std::vector<std::filesystem::path> files;
  for (int i = 1; i < argc; ++i) {
    const std::size_t before = files.size();
    for (const auto& entry : std::filesystem::directory_iterator(argv[i])) {
      files.push_back(entry.path());
    }
    if (files.size() == before) return 1;
  }
  std::sort(files.begin(), files.end());
  for (const auto& file : files) {
    std::ifstream in(file, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    std::printf("%s\n", file.filename().c_str());
    std::fflush(stdout);
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
  }
  return 0;
}
