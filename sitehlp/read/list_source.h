#ifndef SITEHLP_READ_LIST_SOURCE_H
#define SITEHLP_READ_LIST_SOURCE_H

#include <boost/scoped_ptr.hpp>
#include <optional>
#include <string>

#include "platform/xml/advxmlparser.h"

namespace sitehlp {

// The encoding that site lists are written in, and the hint that they are read with.
constexpr AdvXMLParser::UTF_ENCODINGS c_encoding = AdvXMLParser::UTF_8;

using DocumentPtr = boost::scoped_ptr<AdvXMLParser::Document>;

// A list for one operation. A file is read once and parsed once, so that all that the operation
// takes from it is of the same bytes, whoever exchanges the file meanwhile.
class ListSource {
 public:
  explicit ListSource(std::wstring path);
  // A text that was read already.
  ListSource(std::string utf8, const AdvXMLParser::WrittenIn& writtenIn);
  ListSource(const ListSource&) = delete;
  ListSource& operator=(const ListSource&) = delete;

  const std::wstring& path() const { return m_path; }

  // Reads the file at the first call, under the read lock "SiteListLock" when `useLock`. Returns
  // what the first call returned: 0, -4, or -10, for which an error line says why.
  int read(bool useLock);

  // What was read; empty once there is a document.
  const std::string& utf8() const { return m_utf8; }
  const AdvXMLParser::WrittenIn& writtenIn() const { return m_writtenIn; }

  // The document of what was read, parsed at the first call; null when the text holds no markup.
  // Throws what AdvXMLParser::Parser throws.
  AdvXMLParser::Document* document();

 private:
  int readFile(bool useLock);

  std::wstring m_path;
  std::optional<int> m_result;  // of the read
  std::string m_utf8;
  AdvXMLParser::WrittenIn m_writtenIn{c_encoding};
  DocumentPtr m_document;
};

}  // namespace sitehlp

#endif
