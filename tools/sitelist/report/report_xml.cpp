#include <cstdint>
#include <ostream>

#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/report/report.h"
#include "tools/sitelist/report/row_spool.h"

namespace tool {
namespace {

// Characters beyond ASCII become references, so a text of a document cannot control a terminal. A
// character that XML does not allow becomes U+FFFD. Only file names and messages can have one.
std::string escaped(const std::string& raw) {
  std::string text;
  for (const wchar_t c : wide(raw)) {
    const auto code = static_cast<std::uint32_t>(c);
    const bool isCarried = code >= 0x20
                               ? code != 0xFFFE && code != 0xFFFF && (code & 0xFFFFF800) != 0xD800
                               : code == '\t' || code == '\n' || code == '\r';
    if (isCarried && code >= 0x20 && code < 0x7F && code != '<' && code != '>' && code != '&') {
      text += static_cast<char>(code);
    } else {
      text += "&#" + std::to_string(isCarried ? code : 0xFFFD) + ";";
    }
  }
  return text;
}

void append(std::string& text, const std::vector<std::string>& items, const char* indent) {
  for (const std::string& item : items) {
    text.append("\n").append(indent).append("  <item>").append(escaped(item)).append("</item>");
  }
  if (!items.empty()) text.append("\n").append(indent);
}

// A null value has no element. An empty text has one.
void append(std::string& text, const Record& record, const char* indent) {
  for (const auto& [name, value] : record) {
    if (std::holds_alternative<std::monostate>(value)) continue;
    text.append(indent).append("<").append(name).append(">");
    if (const auto* const object = std::get_if<std::shared_ptr<const Object>>(&value)) {
      const std::string inner = std::string(indent) + "  ";
      text.append("\n");
      append(text, (*object)->members, inner.c_str());
      text.append(indent);
    } else if (const auto* const texts = std::get_if<Texts>(&value)) {
      append(text, texts->each, indent);
    } else {
      text.append(escaped(textOf(value)));
    }
    text.append("</").append(name).append(">\n");
  }
}

}  // namespace

void appendXmlRow(std::string& rows, const std::string& name, const Record& row) {
  rows.append("    <").append(name).append(">\n");
  append(rows, row, "      ");
  rows.append("    </").append(name).append(">\n");
}

void printXml(std::ostream& out, const Report* report, const Ending& ending) {
  out << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<sitelist schema_version=\""
      << c_schemaVersion << "\" command=\"" << ending.command << "\" status=\"" << ending.status
      << "\" changed=\"" << textOf(ending.changed) << "\">\n";
  std::string facts;
  append(facts, {{"warnings", Texts{ending.warnings, ""}}}, "  ");
  if (report) append(facts, report->facts, "  ");
  out << facts;
  if (report) {
    if (!report->rowsName.empty()) {
      std::string rows;
      for (const Record& row : report->rows) appendXmlRow(rows, report->rowName, row);
      out << "  <" << report->rowsName << ">\n" << rows << report->writtenRows;
      if (report->spool) report->spool->copyTo(out);
      out << "  </" << report->rowsName << ">\n";
    }
    for (const RowGroup& group : report->groups) {
      std::string rows;
      for (const Record& row : group.rows) appendXmlRow(rows, group.rowName, row);
      out << "  <" << group.rowsName << ">\n" << rows << "  </" << group.rowsName << ">\n";
    }
  }
  if (ending.failure) {
    std::string error;
    append(error, factsOf(*ending.failure), "    ");
    out << "  <error>\n" << error << "  </error>\n";
  }
  out << "</sitelist>\n";
}

}  // namespace tool
