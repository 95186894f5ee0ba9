#ifndef TESTS_HOST_XML_DOCUMENTS_H
#define TESTS_HOST_XML_DOCUMENTS_H

#include <cstddef>
#include <memory>
#include <string>

#include "host/crypto/cipher.h"
#include "platform/xml/advxmlparser.h"
#include "tests/support/test_agent.h"

namespace test {

using DocumentPtr = std::unique_ptr<AdvXMLParser::Document>;

inline DocumentPtr parse(const std::wstring& text) {
  return DocumentPtr(AdvXMLParser::Parser().Parse(text.data(), text.size()));
}

inline DocumentPtr parse(const std::string& utf8) { return parse(wide(utf8)); }

// As parse, but without a conversion of the text, which takes most of the time for a long document.
inline DocumentPtr parseUtf8(const std::string& utf8) {
  return DocumentPtr(AdvXMLParser::Parser().ParseUtf8(utf8.data(), utf8.size()));
}

// Parses until the process remembers documents. Returns false if it does not.
inline bool startRemembering() {
  const std::string text = "<r>" + std::string(500000, 'x') + "</r>";
  for (int i = 0; i < 2; ++i) parseUtf8(text);
  return host::isCipherFetched();
}

const std::string c_declaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>";

// Returns the document as UTF-8, without its XML declaration.
inline std::string written(const AdvXMLParser::Document& document, bool indent = false) {
  const std::string text = narrow(document.GenerateXML(indent));
  return text.compare(0, c_declaration.size(), c_declaration) == 0
             ? text.substr(c_declaration.size())
             : "no declaration: " + text;
}

inline std::string repeated(const std::string& piece, std::size_t count) {
  std::string text;
  text.reserve(piece.size() * count);
  for (std::size_t i = 0; i < count; ++i) text += piece;
  return text;
}

}  // namespace test

#endif
