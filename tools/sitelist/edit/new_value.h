#ifndef TOOLS_SITELIST_EDIT_NEW_VALUE_H
#define TOOLS_SITELIST_EDIT_NEW_VALUE_H

#include <cstdint>
#include <string>
#include <vector>

#include "tools/sitelist/edit/document_fields.h"
#include "tools/sitelist/model/site_list.h"

namespace tool {

// A password for a field. The texts must outlive every NewValue with this password.
struct GivenPassword {
  std::string field;
  const std::wstring* clear = nullptr;
  const std::wstring* protectedText = nullptr;
};

// A new value of a site's field.
struct NewValue {
  const DocumentField* field;
  std::wstring text;                    // the text in the document
  const std::wstring* clear = nullptr;  // the clear text of a password

  std::int64_t number() const;
  // Returns the value in the form of a record's field. A text remains in this object.
  Field recordField() const;
};

// Returns the value of the field in a new site.
NewValue initialValue(const DocumentField& field);

NewValue numberValue(const DocumentField& field, std::int64_t number);

// Converts a text to a value of the field. Fails when the text is not valid for the field.
NewValue textValue(const DocumentField& field, const std::string& value);

// Returns whether the record has the value.
bool hasValue(const sitehlp::tag_Site& site, const NewValue& value);

// Parses each FIELD=VALUE for a site of that kind, and adds the password if one is given. Fails for
// a value that is not valid. Also fails for a field that cannot be set, and lists those that can.
std::vector<NewValue> newValues(const DocumentKind& kind,
                                const std::vector<std::string>& assignments,
                                const GivenPassword& password);

// Fails when the port of a proxy is given, but neither the values nor the record have its server.
// The library reads a proxy only with both. `record` may be null.
void refusePortAlone(const sitehlp::tag_Site* record, const std::vector<NewValue>& values);

}  // namespace tool

#endif
