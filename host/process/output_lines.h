#ifndef HOST_PROCESS_OUTPUT_LINES_H
#define HOST_PROCESS_OUTPUT_LINES_H

#include <cstddef>
#include <functional>
#include <string>

namespace host {

// Cuts what a program prints into lines and hands on the first ones. Empty lines do not count. One
// object is used by one thread at a time.
class OutputLines {
 public:
  static constexpr std::size_t c_maxLines = 64;
  static constexpr std::size_t c_maxBytes = 8192;  // of all lines together

  // `take` gets each line without its end.
  explicit OutputLines(std::function<void(const std::string& line)> take);

  void add(const char* bytes, std::size_t size);
  // Hands on a last line that has no end, then one that says how much was left out, if any.
  void end();

 private:
  void addByte(char byte);
  void endLine();

  std::function<void(const std::string& line)> m_take;
  std::string m_line;
  std::size_t m_lines = 0;
  std::size_t m_bytes = 0;
  unsigned long long m_leftOut = 0;  // in bytes
};

}  // namespace host

#endif
