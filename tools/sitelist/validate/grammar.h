#ifndef TOOLS_SITELIST_VALIDATE_GRAMMAR_H
#define TOOLS_SITELIST_VALIDATE_GRAMMAR_H

#include <string>
#include <vector>

#include "platform/xml/advxmlparser.h"
#include "sitehlp/site.h"

namespace tool {

// How the library reads a value.
enum class Form {
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

struct ValueForm {
  const wchar_t* name;
  Form form;
  std::size_t capacity = sitehlp::c_textCapacity;  // of the record's field, terminator included
};

// What an element may hold.
struct ElementForm {
  const wchar_t* name;
  const char* kind;  // of the site that it stands for; null for what is no site
  std::vector<ValueForm> attributes;
  std::vector<ValueForm> children;
};

// The form of the root, whatever its name.
const ElementForm& rootForm();
// The form of the element by its name; null for one that holds at most text, or is not known.
const ElementForm* formOf(const AdvXMLParser::Element& element);

// Null when there is none of that name.
const ValueForm* findForm(const std::vector<ValueForm>& forms, const std::wstring& name);

}  // namespace tool

#endif
