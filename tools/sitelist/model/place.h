#ifndef TOOLS_SITELIST_MODEL_PLACE_H
#define TOOLS_SITELIST_MODEL_PLACE_H

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/xml/advxmlparser.h"
#include "tools/sitelist/cli/read_error.h"

namespace tool {

// A place in a document: line and character. Both count from 1, or are 0 for no place.
struct Place {
  unsigned long line = 0;
  unsigned long column = 0;
};

inline bool operator<(const Place& a, const Place& b) {
  return a.line != b.line ? a.line < b.line : a.column < b.column;
}

// An element of a document, with the place of its start tag.
struct PlacedElement {
  AdvXMLParser::Element element;
  Place place;
  std::vector<PlacedElement> children;

  // Returns the first child with that name, or null.
  const PlacedElement* child(const wchar_t* name) const;
  // Returns the value of an attribute, or an empty text.
  std::wstring attribute(const wchar_t* name) const;
  // Returns the value of the last child with that name, or an empty text. The library uses the last
  // one.
  std::wstring lastValue(const wchar_t* name) const;
};

// A document with the places of its elements.
class PlacedDocument {
 public:
  // Reads a file. If it is not a document, returns the reason.
  std::optional<ReadError> read(const std::string& path);
  const PlacedElement& root() const { return m_root; }

 private:
  std::unique_ptr<AdvXMLParser::Document> m_document;
  PlacedElement m_root;
};

}  // namespace tool

#endif
