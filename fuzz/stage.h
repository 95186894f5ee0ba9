#ifndef FUZZ_STAGE_H
#define FUZZ_STAGE_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tests/support/memory_file_system.h"

// The common parts of the targets. Every input starts with the same agent, whose files are in
// memory.
namespace fuzz {

// The library uses the system itself to check whether a list exists. A list to be read therefore
// has the name of a file that exists on every system.
constexpr const char* c_list = "/dev/null";
constexpr const wchar_t* c_widePath = L"/dev/null";
constexpr const char* c_directory = "/agent";

class Stage {
 public:
  // Clears the file system of this process, so that it has only the agent's keys and lock files.
  static test::MemoryFileSystem& clear();
};

// The bytes of an input, taken piece by piece from the start. After the end they are zero or empty.
class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size) : m_data(data), m_left(size) {}

  std::uint8_t byte();
  // Returns all remaining bytes.
  std::string rest();
  // Returns the bytes up to the next separator and drops the separator. Without one, returns all
  // remaining bytes.
  std::string part();
  // Returns a printable text of at most `most` characters. It may have characters with a meaning in
  // markup.
  std::wstring text(std::size_t most);

 private:
  const std::uint8_t* m_data;
  std::size_t m_left;
};

// Ends the process with a message if a property does not hold.
void require(bool holds, const char* property);

}  // namespace fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

#endif
