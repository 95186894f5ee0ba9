#ifndef BENCH_FRESH_DOCUMENTS_H
#define BENCH_FRESH_DOCUMENTS_H

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "bench/row.h"

// Documents that this process has not read before. The library may remember the bytes of a document
// that it has checked, so a second read can cost less than the first.
namespace bench {

// Gives the document a local version that no other document of this process has, and writes it.
void writeFresh(const std::string& path, std::string& document);

struct DocumentPath {
  std::string narrow;
  std::wstring wide;
};

// Files with the content of a list. Each has its own local version.
class FreshDocuments {
 public:
  FreshDocuments(const std::string& list, std::size_t count);

  // Writes all files with new local versions.
  void renew();
  const std::vector<DocumentPath>& paths() const { return m_paths; }

 private:
  std::string m_bytes;
  std::vector<DocumentPath> m_paths;
};

using UseDocument = std::function<void(const DocumentPath&)>;

using SharedDocuments = std::shared_ptr<FreshDocuments>;

// Returns the cost of one use of a document, as the average of all `documents`. They are renewed
// first, outside the measured time.
Cost firstUse(const SharedDocuments& documents, const UseDocument& use);

}  // namespace bench

#endif
