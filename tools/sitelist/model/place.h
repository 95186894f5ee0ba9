#ifndef TOOLS_SITELIST_MODEL_PLACE_H
#define TOOLS_SITELIST_MODEL_PLACE_H

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/xml/advxmlparser.h"
#include "tools/sitelist/cli/read_error.h"

namespace tool {

// A place in a document: line and character, both from 1, or both 0 for none.
struct Place {
  unsigned long line = 0;
  unsigned long column = 0;
};

// An element of a document, with the place of its start tag.
struct PlacedElement {
  AdvXMLParser::Element element;
  Place place;
  std::vector<PlacedElement> children;

  // The first child of that name; null when there is none.
  const PlacedElement* child(const wchar_t* name) const;
  // The value of an attribute, empty without one.
  std::wstring attribute(const wchar_t* name) const;
  // The value of the last child of that name, which is the one that counts; empty without one.
  std::wstring lastValue(const wchar_t* name) const;
};

// A document whose elements know their places.
class PlacedDocument {
 public:
  // Reads a file. Returns what is wrong with it when it is not a document.
  std::optional<ReadError> read(const std::string& path);
  const PlacedElement& root() const { return m_root; }

 private:
  std::unique_ptr<AdvXMLParser::Document> m_document;
  PlacedElement m_root;
};

}  // namespace tool

#endif
