#ifndef TOOLS_SITELIST_REPORT_ROW_SPOOL_H
#define TOOLS_SITELIST_REPORT_ROW_SPOOL_H

#include <cstdio>
#include <iosfwd>
#include <memory>
#include <string>

namespace tool {

// Keeps the rows of a document until its head is known. A small amount is kept in memory, the rest
// in a temporary file without a name.
class RowSpool {
 public:
  // With `isSecret`, all rows are kept in memory, because they may have clear passwords.
  explicit RowSpool(bool isSecret) : m_isSecret(isSecret) {}

  // Fails when the temporary file cannot be written.
  void add(const std::string& rows);
  bool isEmpty() const { return m_rows.empty() && !m_file; }
  // Writes all rows. If the temporary file cannot be read, `out` is bad afterwards.
  void copyTo(std::ostream& out);

 private:
  struct Close {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };

  void store();

  bool m_isSecret;
  std::string m_rows;
  std::unique_ptr<std::FILE, Close> m_file;
};

}  // namespace tool

#endif
