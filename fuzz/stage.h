#ifndef FUZZ_STAGE_H
#define FUZZ_STAGE_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tests/support/memory_file_system.h"

// What the targets have in common. Every input starts with the same agent, whose files lie in
// memory.
namespace fuzz {

// The library asks the system itself whether a list is there before it reads it, so a list that is
// to be read has the name of a file that every system has.
constexpr const char* c_list = "/dev/null";
constexpr const wchar_t* c_widePath = L"/dev/null";
constexpr const char* c_directory = "/agent";

class Stage {
 public:
  // The file system of this process, with the agent's keys and nothing else in it.
  static test::MemoryFileSystem& clear();
};

// The bytes of an input, taken from its front piece by piece; zero and empty behind its end.
class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size) : m_data(data), m_left(size) {}

  std::uint8_t byte();
  // All that is left.
  std::string rest();
  // Up to the next separator, which is dropped, or all that is left.
  std::string part();
  // One printable text of at most so many characters, some of them of meaning in markup.
  std::wstring text(std::size_t most);

 private:
  const std::uint8_t* m_data;
  std::size_t m_left;
};

// Ends the process with a message when a property does not hold.
void require(bool holds, const char* property);

}  // namespace fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

#endif
