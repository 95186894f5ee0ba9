#ifndef TOOLS_SITELIST_EDIT_NEW_VALUE_H
#define TOOLS_SITELIST_EDIT_NEW_VALUE_H

#include <cstdint>
#include <string>
#include <vector>

#include "tools/sitelist/edit/document_fields.h"
#include "tools/sitelist/model/site_list.h"

namespace tool {

// A password that goes into a field: both forms outlive what is made of it.
struct GivenPassword {
  std::string field;
  const std::wstring* clear = nullptr;
  const std::wstring* protectedText = nullptr;
};

// A value that a field of a site is to have.
struct NewValue {
  const DocumentField* field;
  std::wstring text;                    // as it goes into the document
  const std::wstring* clear = nullptr;  // of a password

  std::int64_t number() const;
  // As a record has it; a text stays in this object.
  Field recordField() const;
};

// What a new site has in the field.
NewValue initialValue(const DocumentField& field);

NewValue numberValue(const DocumentField& field, std::int64_t number);

// A text is checked as the value of the field. Fails when it is none.
NewValue textValue(const DocumentField& field, const std::string& value);

// Whether the record has the value.
bool hasValue(const sitehlp::tag_Site& site, const NewValue& value);

// Understands each FIELD=VALUE for a site of that kind, and the password if one is given. Fails for
// a field that cannot be set, with the list of those that can, and for a value that is none.
std::vector<NewValue> newValues(const DocumentKind& kind,
                                const std::vector<std::string>& assignments,
                                const GivenPassword& password);

// Fails when the port of a proxy is given without its server, which neither the values nor the
// record, if there is one, have: the reader takes both or none.
void refusePortAlone(const sitehlp::tag_Site* record, const std::vector<NewValue>& values);

}  // namespace tool

#endif
