#include "tools/sitelist/model/place.h"

#include <expat.h>

#include <new>
#include <stdexcept>
#include <utility>

#include "tools/sitelist/cli/text.h"

namespace tool {
namespace {

struct FreeParser {
  void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
};

struct Finder {
  XML_Parser parser = nullptr;
  std::vector<Place> places;
  bool isOutOfMemory = false;
};

// No exception may pass through the parser's frames.
void onStartTag(void* data, const char*, const char**) {
  Finder& finder = *static_cast<Finder*>(data);
  try {
    finder.places.push_back(
        {XML_GetCurrentLineNumber(finder.parser), XML_GetCurrentColumnNumber(finder.parser) + 1});
  } catch (const std::bad_alloc&) {
    finder.isOutOfMemory = true;
    XML_StopParser(finder.parser, XML_FALSE);
  }
}

// Returns the places of all start tags of a well-formed text, in the order of the text.
std::vector<Place> findStartTags(const std::wstring& text) {
  // The text is already decoded, so the declared encoding is not used.
  const std::unique_ptr<XML_ParserStruct, FreeParser> parser(XML_ParserCreate("UTF-8"));
  if (!parser) throw std::bad_alloc();
  Finder finder;
  finder.parser = parser.get();
  XML_SetUserData(parser.get(), &finder);
  XML_SetStartElementHandler(parser.get(), onStartTag);
  const std::string utf8 = narrow(text);
  const XML_Status status =
      XML_Parse(parser.get(), utf8.data(), static_cast<int>(utf8.size()), XML_TRUE);
  if (finder.isOutOfMemory) throw std::bad_alloc();
  if (status != XML_STATUS_OK) {
    throw std::logic_error("a document was parsed once, but not again");
  }
  return std::move(finder.places);
}

// Assigns places to the element and all elements below it, beginning with the place at `next`.
PlacedElement place(const AdvXMLParser::Element& element, const std::vector<Place>& places,
                    std::size_t& next) {
  PlacedElement placed{element, places.at(next++), {}};
  for (const AdvXMLParser::Element child : element.Elements()) {
    placed.children.push_back(place(child, places, next));
  }
  return placed;
}

}  // namespace

const PlacedElement* PlacedElement::child(const wchar_t* name) const {
  for (const PlacedElement& each : children) {
    if (each.element.HasName(name)) return &each;
  }
  return nullptr;
}

std::wstring PlacedElement::attribute(const wchar_t* name) const {
  return element.GetAttribute(name).GetValue();
}

std::wstring PlacedElement::lastValue(const wchar_t* name) const {
  for (auto each = children.rbegin(); each != children.rend(); ++each) {
    if (each->element.HasName(name)) return each->element.GetValue();
  }
  return L"";
}

std::optional<ReadError> PlacedDocument::read(const std::string& path) {
  std::wstring text;
  if (auto error = readDocument(path, text, m_document)) return error;
  const std::vector<Place> places = findStartTags(text);
  std::size_t next = 0;
  m_root = place(m_document->GetRoot(), places, next);
  return std::nullopt;
}

}  // namespace tool
