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

// Functions that write fields according to their rows. Attributes are not written from the tables.
// Their order and conditions differ between kinds, so each kind has its own code.
namespace sitehlp {

constexpr const wchar_t* c_formatScope = L"Formatting environment symbols";

// Does the same as FormatEnvSymbols, but leaves a text without an expanded macro unchanged,
// including the bytes after its end. Clearing these bytes took more time than any other step of
// writing.
template <std::size_t N>
const wchar_t* formatField(CSitesHelper& helper, wchar_t (&field)[N]) {
  const std::size_t length = ::wcsnlen(field, N);
  if (length == N) field[N - 1] = L'\0';  // no terminator, so reading must stop here
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
