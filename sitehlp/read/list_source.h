#ifndef SITEHLP_READ_LIST_SOURCE_H
#define SITEHLP_READ_LIST_SOURCE_H

#include <boost/scoped_ptr.hpp>
#include <optional>
#include <string>

#include "platform/xml/advxmlparser.h"

namespace sitehlp {

// The encoding of written site lists, and the hint for reading them.
constexpr AdvXMLParser::UTF_ENCODINGS c_encoding = AdvXMLParser::UTF_8;

using DocumentPtr = boost::scoped_ptr<AdvXMLParser::Document>;

// The list of one operation. Its file is read and parsed only once. All values that the operation
// takes are therefore from the same bytes, even if another process replaces the file.
class ListSource {
 public:
  explicit ListSource(std::wstring path);
  // Uses a text that was already read.
  ListSource(std::string utf8, const AdvXMLParser::WrittenIn& writtenIn);
  ListSource(const ListSource&) = delete;
  ListSource& operator=(const ListSource&) = delete;

  const std::wstring& path() const { return m_path; }

  // The first call reads the file, under the read lock "SiteListLock" if `useLock` is set. Every
  // call returns the result of the first one: 0, -4 or -10. An error line gives the reason for -10.
  int read(bool useLock);

  // Returns the text that was read, or an empty text once there is a document.
  const std::string& utf8() const { return m_utf8; }
  const AdvXMLParser::WrittenIn& writtenIn() const { return m_writtenIn; }

  // Returns the document, or null if the text has no markup. The first call parses the text. Throws
  // the exceptions of AdvXMLParser::Parser.
  AdvXMLParser::Document* document();
  // Takes the document of the text, which the caller has already parsed. `document` must not be
  // null.
  void setDocument(AdvXMLParser::Document* document);

 private:
  int readFile(bool useLock);

  std::wstring m_path;
  std::optional<int> m_result;  // the result of the first read
  std::string m_utf8;
  AdvXMLParser::WrittenIn m_writtenIn{c_encoding};
  DocumentPtr m_document;
};

}  // namespace sitehlp

#endif
