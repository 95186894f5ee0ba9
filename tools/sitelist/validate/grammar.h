#ifndef TOOLS_SITELIST_VALIDATE_GRAMMAR_H
#define TOOLS_SITELIST_VALIDATE_GRAMMAR_H

#include <string>
#include <vector>

#include "platform/xml/advxmlparser.h"
#include "sitehlp/site.h"

namespace tool {

// The way in which the library reads a value.
enum class ValueType {
  Text,
  Address,       // host and port
  ComputerName,  // as Address, with the host cut at its first dot
  Flag,
  Port,
  Order,
  Password,
  Elements,  // not a value: an element with child elements, or one that may be repeated
  Any,       // any text is correct
  Unread,    // in the vocabulary, but the library does not read it
};

// An attribute or a child element that an element may have.
struct ValueGrammar {
  const wchar_t* name;
  ValueType type;
  std::size_t capacity =
      sitehlp::c_textCapacity;  // of the record's field, including the terminator
};

// The attributes and child elements of an element.
struct ElementGrammar {
  const wchar_t* name;
  const char* kind;  // of the site; null for an element that is not a site
  std::vector<ValueGrammar> attributes;
  std::vector<ValueGrammar> children;
};

// Returns the grammar of the root, for any name of the root.
const ElementGrammar& rootGrammar();
// Returns the grammar of an element, by its name. Returns null for an unknown element, or for one
// that has only text.
const ElementGrammar* grammarOf(const AdvXMLParser::Element& element);

// Returns the grammar with that name, or null.
const ValueGrammar* findGrammar(const std::vector<ValueGrammar>& values, const std::wstring& name);

}  // namespace tool

#endif
