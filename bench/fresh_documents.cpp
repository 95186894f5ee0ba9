#include "bench/fresh_documents.h"

#include <cstdio>
#include <filesystem>
#include <utility>

#include "bench/check.h"
#include "bench/sample_agent.h"

namespace bench {

void writeFresh(const std::string& path, std::string& document) {
  static unsigned int version = 0;
  constexpr const char* c_attribute = "LocalVersion=\"";
  constexpr int c_digits = 14;
  const std::size_t start = document.find(c_attribute) + std::string(c_attribute).size();
  check(document.find('"', start) == start + c_digits, "a list has no usual local version");
  char digits[c_digits + 1];
  std::snprintf(digits, sizeof digits, "%0*u", c_digits, ++version);
  document.replace(start, c_digits, digits);
  writeFile(path, document);
}

FreshDocuments::FreshDocuments(const std::string& list, std::size_t count)
    : m_bytes(readFile(list)) {
  const std::string name = std::filesystem::path(list).stem().string();
  for (std::size_t i = 0; i < count; ++i) {
    std::string path = inEtc("fresh-" + name + "-" + std::to_string(i) + ".xml");
    std::wstring wide = widePath(path);
    m_paths.push_back({std::move(path), std::move(wide)});
  }
  renew();
}

void FreshDocuments::renew() {
  for (const DocumentPath& path : m_paths) writeFresh(path.narrow, m_bytes);
}

Cost firstUse(const SharedDocuments& documents, const UseDocument& use) {
  const Cost all = timedAfter([documents] { documents->renew(); },
                              [documents, use] {
                                for (const DocumentPath& path : documents->paths()) use(path);
                              });
  return [documents, all] { return all() / static_cast<double>(documents->paths().size()); };
}

}  // namespace bench
