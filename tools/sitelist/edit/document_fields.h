#ifndef TOOLS_SITELIST_EDIT_DOCUMENT_FIELDS_H
#define TOOLS_SITELIST_EDIT_DOCUMENT_FIELDS_H

#include <cstdint>
#include <string>
#include <vector>

#include "sitehlp/fields.h"

namespace tool {

using sitehlp::FieldForm;
using sitehlp::FieldPlace;

// Whether a new site always has the attribute or child element, or only if its value is given.
enum class Presence { Always, WhenGiven };

// The form of a record's field in a document. `name` is the name of the field in the output.
struct DocumentField {
  const char* name;  // null for an attribute that is written but never read
  FieldForm form;
  FieldPlace place;
  const wchar_t* xmlName;
  const wchar_t* initial;  // value in a new site
  std::int64_t limit = 0;  // largest number of characters, or largest number
  Presence presence = Presence::Always;
};

// The form of the sites of one kind in a document.
struct DocumentKind {
  const char* name;
  const wchar_t* element;
  std::vector<DocumentField> fields;  // in the order in which the library writes them
};

// Returns null for an unknown kind.
const DocumentKind* findKind(const std::string& name);
const DocumentField* findField(const DocumentKind& kind, const std::string& name);

// Returns lines with the fields of a kind that can be set. Each line begins with `indent`.
std::string fieldNames(const DocumentKind& kind, const std::string& indent);
// Returns these lines for every kind, for the help.
std::string fieldHelp();

}  // namespace tool

#endif
