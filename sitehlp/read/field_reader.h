#ifndef SITEHLP_READ_FIELD_READER_H
#define SITEHLP_READ_FIELD_READER_H

#include <array>
#include <cstddef>
#include <type_traits>
#include <utility>

#include "platform/xml/advxmlparser.h"
#include "sitehlp/fields.h"
#include "sitehlp/read/child_value.h"
#include "sitehlp/read/proxy_decoder.h"
#include "sitehlp/read/site_attributes.h"
#include "sitehlp/read/text_field.h"

// Functions that read fields according to their rows.
namespace sitehlp {

// Reads a row that is a whole attribute.
template <typename At, typename Record>
void readAttribute(At, const SiteAttributes& attributes, Record& record) {
  constexpr const auto& row = At::row;
  auto& value = record.*row.member;
  const AdvXMLParser::Attribute& attribute = attributes.get<row.xmlName>();
  if constexpr (isText(row.form)) {
    setField(value, attribute);
  } else if constexpr (row.form == FieldForm::Flag) {
    value = readNumber(attribute) != 0 ? 1 : 0;
  } else if constexpr (std::is_unsigned_v<std::decay_t<decltype(value)>>) {
    value = readUnsignedPort(attribute);
  } else {
    value = readNumber(attribute);
  }
}

// Reads the rows of the table that are whole attributes, in the order of the table, except the
// name. The decoder of each kind reads the name, so that log lines about cut values keep their
// order.
template <const auto& Table, typename Record>
void readAttributes(const SiteAttributes& attributes, Record& record) {
  eachField<Table>([&](auto at) {
    using At = decltype(at);
    if constexpr (std::is_same_v<typename At::Record, Record> &&
                  At::row.place == FieldPlace::Attribute &&
                  At::row.xmlName != &fields::xml::WX_XML_SITE_NAME) {
      readAttribute(at, attributes, record);
    }
  });
}

// The positions of the rows that are child elements.
template <std::size_t Capacity>
struct ChildRows {
  std::array<std::size_t, Capacity> rows{};
  std::size_t count = 0;
};

template <const auto& Table>
constexpr auto childRows() {
  ChildRows<std::tuple_size_v<std::decay_t<decltype(Table)>>> children;
  std::size_t row = 0;
  eachField<Table>([&](auto at) {
    if (isChild(decltype(at)::row.place)) children.rows[children.count++] = row;
    ++row;
  });
  return children;
}

// Reads child elements into the rows of a table and ignores other children. The objects are created
// when the library is loaded; see site_attributes.cpp.
template <const auto& Table>
class ChildReader {
 public:
  ChildReader() {
    std::size_t count = 0;
    eachField<Table>([&](auto at) {
      if constexpr (isChild(decltype(at)::row.place)) m_names[count++] = *decltype(at)::row.xmlName;
    });
  }

  template <typename Record>
  void read(const AdvXMLParser::Element& child, bool useDecryptData, Record& record) const {
    const std::size_t found = child.FindName(m_names, c_children.count);
    readFound(found, child, useDecryptData, record, std::make_index_sequence<c_children.count>());
  }

 private:
  static constexpr auto c_children = childRows<Table>();

  template <typename Record, std::size_t... Index>
  static void readFound(std::size_t found, const AdvXMLParser::Element& child, bool useDecryptData,
                        Record& record, std::index_sequence<Index...>) {
    static_cast<void>(((found == Index && (readValue(FieldAt<Table, c_children.rows[Index]>(),
                                                     child, useDecryptData, record),
                                           true)) ||
                       ...));
  }

  template <typename At, typename Record>
  static void readValue(At, const AdvXMLParser::Element& child, bool useDecryptData,
                        Record& record) {
    constexpr const auto& row = At::row;
    auto& value = record.*row.member;
    if constexpr (row.form == FieldForm::Hosts) {
      readExclusions(child, record);
    } else if constexpr (row.form == FieldForm::Password) {
      setPassword(value, child, useDecryptData);
    } else if constexpr (isText(row.form)) {
      setField(value, child);
    } else if constexpr (row.form == FieldForm::Flag) {
      value = readFlag(child);
    } else {
      static_assert(row.form == FieldForm::Number, "no child element is read like this");
      value = readNumber(child);
    }
  }

  const wchar_t* m_names[c_children.count];
};

}  // namespace sitehlp

#endif
