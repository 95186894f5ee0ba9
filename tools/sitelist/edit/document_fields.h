#ifndef TOOLS_SITELIST_EDIT_DOCUMENT_FIELDS_H
#define TOOLS_SITELIST_EDIT_DOCUMENT_FIELDS_H

#include <cstdint>
#include <string>
#include <vector>

#include "sitehlp/fields.h"

namespace tool {

using sitehlp::FieldForm;
using sitehlp::FieldPlace;

// Whether a new site has the attribute or child element without being given a value, too.
enum class Presence { Always, WhenGiven };

// How a field of a record, by the name that it has in the output, stands in a document.
struct DocumentField {
  const char* name;  // null: an attribute that is written and never read
  FieldForm form;
  FieldPlace place;
  const wchar_t* xmlName;
  const wchar_t* initial;  // what a new site has
  std::int64_t limit = 0;  // the most characters or the greatest number
  Presence presence = Presence::Always;
};

// How a site of a kind stands in a document.
struct DocumentKind {
  const char* name;
  const wchar_t* element;
  std::vector<DocumentField> fields;  // in the order in which the library writes them
};

// Null for a kind that is none.
const DocumentKind* findKind(const std::string& name);
const DocumentField* findField(const DocumentKind& kind, const std::string& name);

std::vector<std::string> kinds();
std::string kindNames();  // with "," between them

// The fields of a kind that can be set, in lines that begin with `indent`.
std::string fieldNames(const DocumentKind& kind, const std::string& indent);
// The same for every kind, for the help.
std::string fieldHelp();

}  // namespace tool

#endif
