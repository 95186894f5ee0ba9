#ifndef SITEHLP_WRITE_FIELD_WRITER_H
#define SITEHLP_WRITE_FIELD_WRITER_H

#include <cstddef>
#include <cwchar>
#include <type_traits>

#include "platform/common/log.h"
#include "sitehlp/common/component.h"
#include "sitehlp/fields.h"
#include "sitehlp/sites_helper.h"
#include "sitehlp/write/element_writer.h"
#include "sitehlp/write/site_writers.h"

// Writing derived from the tables of fields. Attributes are not: their order and when each is
// written differ from kind to kind, so the writers have a line for each.
namespace sitehlp {

constexpr const wchar_t* c_formatScope = L"Formatting environment symbols";

// As FormatEnvSymbols, but a text that has nothing to be replaced is not touched, and neither is
// what stands behind it: to clear memory that nothing else needs was the dearest part of writing.
template <std::size_t N>
const wchar_t* formatField(CSitesHelper& helper, wchar_t (&field)[N]) {
  const std::size_t length = ::wcsnlen(field, N);
  if (length == N) field[N - 1] = L'\0';  // it has no terminator, and must not be read beyond
  if (length == N || std::wmemchr(field, c_agentEnvMacroStartDelimiterExpanded[0], length)) {
    helper.FormatEnvSymbols(field, N);
  } else {
    const ADetailTrace trace(c_component, c_formatScope);
  }
  return field;
}

// Writes the rows of a table that are child elements.
template <const auto& Table, typename Record>
void writeChildren(CSitesHelper& helper, Record& record, ElementWriter& writer) {
  eachField<Table>([&](auto at) {
    constexpr const auto& row = decltype(at)::row;
    if constexpr (isChild(row.place)) {
      auto& value = record.*row.member;
      if constexpr (row.form == FieldForm::Hosts) {
        writeExclusions(helper, value, writer);
      } else if constexpr (row.form == FieldForm::Password) {
        writePassword(writer, *row.xmlName, value);
      } else if constexpr (row.form == FieldForm::MacroText) {
        writer.addElement(*row.xmlName, formatField(helper, value));
      } else if constexpr (isText(row.form)) {
        writer.addElement(*row.xmlName, value);
      } else {
        writer.addElement(*row.xmlName, Decimal(value));
      }
    }
  });
}

}  // namespace sitehlp

#endif
