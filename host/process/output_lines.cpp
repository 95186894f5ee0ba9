#include "host/process/output_lines.h"

#include <utility>

namespace host {

OutputLines::OutputLines(std::function<void(const std::string& line)> take)
    : m_take(std::move(take)) {}

void OutputLines::add(const char* bytes, std::size_t size) {
  for (std::size_t i = 0; i < size; ++i) addByte(bytes[i]);
}

void OutputLines::end() {
  endLine();
  if (m_leftOut > 0) m_take("(" + std::to_string(m_leftOut) + " more bytes)");
  m_leftOut = 0;
}

void OutputLines::addByte(char byte) {
  if (m_lines == c_maxLines || m_bytes == c_maxBytes) {
    ++m_leftOut;
  } else if (byte == '\n') {
    endLine();
  } else {
    m_line += byte;
    ++m_bytes;
  }
}

void OutputLines::endLine() {
  if (m_line.empty()) return;
  ++m_lines;
  m_take(m_line);
  m_line.clear();
}

}  // namespace host
