#include "tools/sitelist/report/row_spool.h"

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ostream>

#include "tools/sitelist/cli/failure.h"

namespace tool {
namespace {

constexpr std::size_t c_mostInMemory = std::size_t{1} << 20;

std::string directory() {
  const char* const set = std::getenv("TMPDIR");
  return set && *set ? set : "/tmp";
}

[[noreturn]] void fail(int error) {
  throw failureAt(
      directory(), exitFile,
      std::string("the rows could not be stored in a temporary file: ") + std::strerror(error),
      "free space there, set TMPDIR to another directory, or use --format jsonl");
}

std::FILE* openWithoutName() {
  std::string path = directory() + "/sitelist-XXXXXX";
  const int descriptor = ::mkstemp(path.data());
  if (descriptor < 0) fail(errno);
  ::unlink(path.c_str());
  std::FILE* const file = ::fdopen(descriptor, "w+b");
  if (!file) fail(errno);
  return file;
}

}  // namespace

void RowSpool::add(const std::string& rows) {
  m_rows += rows;
  if (m_rows.size() > c_mostInMemory && !m_isSecret) store();
}

void RowSpool::store() {
  if (!m_file) m_file.reset(openWithoutName());
  if (std::fwrite(m_rows.data(), 1, m_rows.size(), m_file.get()) != m_rows.size()) fail(errno);
  m_rows.clear();
}

void RowSpool::copyTo(std::ostream& out) {
  if (m_file) {
    if (std::fflush(m_file.get()) != 0) return out.setstate(std::ios::badbit);
    std::rewind(m_file.get());
    char buffer[65536];
    while (const std::size_t count = std::fread(buffer, 1, sizeof(buffer), m_file.get())) {
      if (!out.write(buffer, static_cast<std::streamsize>(count))) return;
    }
    if (std::ferror(m_file.get()) != 0) return out.setstate(std::ios::badbit);
  }
  out << m_rows;
}

}  // namespace tool
