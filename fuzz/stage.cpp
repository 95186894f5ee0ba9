#include "fuzz/stage.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "host/agent.h"

namespace fuzz {
namespace {

constexpr char c_separator[] = "\n=====\n";
constexpr wchar_t c_alphabet[] =
    L"abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-_./\\$#@!=?<>&\"' "
    L"\u00E4\u6F22\U0001F600";

test::MemoryFileSystem& makeFileSystem() {
  static test::MemoryFileSystem& files = *new test::MemoryFileSystem;
  host::AgentSettings settings;
  settings.dataDirectory = c_directory;
  settings.logLevel = LogLevel::Off;
  host::setAgent(settings);
  return files;
}

}  // namespace

test::MemoryFileSystem& Stage::clear() {
  static test::MemoryFileSystem& files = makeFileSystem();
  // The library keeps lock files open and checks that they exist. With new lock files for each
  // input, a target that changes lists would run half as many inputs in a second.
  files.clear(std::string(c_directory) + "/locks");
  const std::string keys = std::string(c_directory) + "/keystore/";
  files.put(keys + "password.key", std::string(32, 'p'));
  files.put(keys + "server.key", std::string(32, 's'));
  return files;
}

std::uint8_t Input::byte() {
  if (m_left == 0) return 0;
  --m_left;
  return *m_data++;
}

std::string Input::rest() {
  std::string bytes(reinterpret_cast<const char*>(m_data), m_left);
  m_data += m_left;
  m_left = 0;
  return bytes;
}

std::string Input::part() {
  const std::uint8_t* const end = m_data + m_left;
  const std::uint8_t* const found =
      std::search(m_data, end, c_separator, c_separator + sizeof c_separator - 1);
  std::string bytes(reinterpret_cast<const char*>(m_data),
                    static_cast<std::size_t>(found - m_data));
  m_data = found == end ? end : found + sizeof c_separator - 1;
  m_left = static_cast<std::size_t>(end - m_data);
  return bytes;
}

std::wstring Input::text(std::size_t most) {
  constexpr std::size_t c_letters = sizeof c_alphabet / sizeof c_alphabet[0] - 1;
  std::wstring result;
  for (std::size_t length = byte() % (most + 1); length > 0 && m_left > 0; --length) {
    result += c_alphabet[byte() % c_letters];
  }
  return result;
}

void require(bool holds, const char* property) {
  if (holds) return;
  std::fprintf(stderr, "does not hold: %s\n", property);
  std::abort();
}

}  // namespace fuzz
