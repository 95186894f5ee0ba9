#ifndef SITEHLP_FIELD_ROW_H
#define SITEHLP_FIELD_ROW_H

#include <cstddef>
#include <cstdint>
#include <type_traits>

// One row of the tables in sitehlp/fields.h.
namespace sitehlp {

// The place of a value in the element of its site.
enum class FieldPlace {
  Attribute,
  Host,  // in an attribute, before the last ":"
  Port,  // in an attribute, after the last ":"
  Child,
  ExclusionHosts,  // one child element for each host, in a common parent
  None,            // not in the document; the reader derives it
};

// The kind of a value.
enum class FieldForm {
  Text,
  MacroText,    // a text; writing turns expanded macros back
  Address,      // a host; writing turns expanded macros back
  NetbiosName,  // as Address; reading cuts it at its first dot
  Flag,         // 0 or 1
  Number,       // written as it was read
  Port,
  PortOrNone,  // 0 means none
  Hosts,       // names, separated by ";"
  Password,    // clear in the record, encrypted in the document
};

// When a field is written.
enum class Written {
  Always,
  WhenSet,    // if it, or the value that it belongs to, is neither 0 nor empty
  ByElement,  // management server: as Always; agent repository: as WhenSet; others: as Never
  Never,
};

template <typename Record, typename Value>
struct FieldRow {
  using RecordType = Record;
  // In characters, including the terminator; 0 for a number.
  static constexpr std::size_t capacity = std::is_array_v<Value> ? std::extent_v<Value> : 0;
  static constexpr std::size_t size = sizeof(Value);  // in bytes

  const char* name;               // for people and programs
  const wchar_t* const* xmlName;  // of the attribute or child element; null for FieldPlace::None
  FieldPlace place;
  FieldForm form;
  Value Record::*member;
  Written written;
  const wchar_t* initial;  // value in a new site
  int shown;               // fields are shown in the order of this number, then of the table
  const char* help;        // in one line
};

constexpr bool isText(FieldForm form) {
  return form != FieldForm::Flag && form != FieldForm::Number && form != FieldForm::Port &&
         form != FieldForm::PortOrNone;
}

constexpr bool isPort(FieldForm form) {
  return form == FieldForm::Port || form == FieldForm::PortOrNone;
}

constexpr bool isChild(FieldPlace place) {
  return place == FieldPlace::Child || place == FieldPlace::ExclusionHosts;
}

constexpr bool isInAttribute(FieldPlace place) {
  return place == FieldPlace::Attribute || place == FieldPlace::Host || place == FieldPlace::Port;
}

// Makes a row. A row that contradicts itself does not compile.
template <typename Record, typename Value>
constexpr FieldRow<Record, Value> field(const char* name, const wchar_t* const* xmlName,
                                        FieldPlace place, FieldForm form, Value Record::*member,
                                        Written written, const wchar_t* initial, int shown,
                                        const char* help) {
  if (isText(form) != std::is_array_v<Value>) throw "the member does not hold such a value";
  if (std::is_same_v<Value, std::uint32_t> && !isPort(form)) throw "only a port has no sign";
  if ((place == FieldPlace::None) != (xmlName == nullptr))
    throw "a field has a name in XML if and only if it has a place";
  if ((place == FieldPlace::None) != (written == Written::Never))
    throw "a field is never written if and only if it has no place";
  return {name, xmlName, place, form, member, written, initial, shown, help};
}

}  // namespace sitehlp

#endif
