// scripts/mutate links this with a test program whose library sources are compiled with
// -fsanitize-coverage=trace-pc. It records which places of these sources each test runs. A place is
// an offset from the start of the program. All child processes of a test map the same file, so
// their places are recorded for the test.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>

extern "C" {
extern const char __executable_start;
extern const char etext;
void __sanitizer_cov_trace_pc();
}

namespace {

std::size_t size() { return static_cast<std::size_t>(&etext - &__executable_start); }

unsigned char* openMap() {
  const char* const path = std::getenv("MUTATE_MAP");
  const int file = path ? ::open(path, O_RDWR | O_CREAT, 0600) : -1;
  if (file < 0 || ::ftruncate(file, static_cast<off_t>(size())) != 0) std::abort();
  void* const map = ::mmap(nullptr, size(), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
  if (map == MAP_FAILED) std::abort();
  ::close(file);
  return static_cast<unsigned char*>(map);
}

unsigned char* placesRun() {
  static unsigned char* const map = openMap();
  return map;
}

class Recorder : public testing::EmptyTestEventListener {
  void OnTestEnd(const testing::TestInfo& test) override {
    const char* const path = std::getenv("MUTATE_RECORD");
    std::FILE* const out = path ? std::fopen(path, "a") : nullptr;
    if (!out) std::abort();
    std::fprintf(out, "%s.%s %lld", test.test_suite_name(), test.name(),
                 static_cast<long long>(test.result()->elapsed_time()));
    unsigned char* const map = placesRun();
    const std::size_t end = size();
    for (std::size_t at = 0; at < end; ++at) {
      if (map[at]) std::fprintf(out, " %zx", at);
    }
    std::fprintf(out, "\n");
    std::fclose(out);
    std::memset(map, 0, end);
  }
};

const bool g_listening = [] {
  testing::UnitTest::GetInstance()->listeners().Append(new Recorder);
  return true;
}();

}  // namespace

void __sanitizer_cov_trace_pc() {
  placesRun()[static_cast<const char*>(__builtin_return_address(0)) - &__executable_start] = 1;
}
