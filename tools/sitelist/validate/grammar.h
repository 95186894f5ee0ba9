#ifndef TOOLS_SITELIST_VALIDATE_GRAMMAR_H
#define TOOLS_SITELIST_VALIDATE_GRAMMAR_H

#include <string>
#include <vector>

#include "platform/xml/advxmlparser.h"
#include "sitehlp/site.h"

namespace tool {

// How the library reads a value.
enum class ValueType {
  Text,
  Address,       // host and port
  ComputerName,  // the same, with the host cut to its NetBIOS form
  Flag,
  Port,
  Order,
  Password,
  Elements,  // no value: an element with others in it, or one that may be there several times
  Any,       // read as it stands
  Unread,    // part of the vocabulary that the library leaves alone
};

// An attribute or a child element that an element may have.
struct ValueGrammar {
  const wchar_t* name;
  ValueType type;
  std::size_t capacity = sitehlp::c_textCapacity;  // of the record's field, terminator included
};

// What an element may hold.
struct ElementGrammar {
  const wchar_t* name;
  const char* kind;  // of the site that it stands for; null for what is no site
  std::vector<ValueGrammar> attributes;
  std::vector<ValueGrammar> children;
};

// The root, whatever its name.
const ElementGrammar& rootGrammar();
// Found by the name of the element; null for one that holds at most text, or is not known.
const ElementGrammar* grammarOf(const AdvXMLParser::Element& element);

// Null when there is none of that name.
const ValueGrammar* findGrammar(const std::vector<ValueGrammar>& values, const std::wstring& name);

}  // namespace tool

#endif
