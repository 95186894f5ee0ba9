#include <algorithm>
#include <cstdint>
#include <ostream>

#include "tools/sitelist/report.h"
#include "tools/sitelist/text.h"

namespace tool {
namespace {

bool isPlain(char c) { return c >= 0x20 && c < 0x7F && c != '"' && c != '\\'; }

void appendUnit(std::string& out, std::uint32_t unit) {
  out += "\\u";
  for (int shift = 12; shift >= 0; shift -= 4) out += "0123456789abcdef"[unit >> shift & 0xF];
}

// The letter that stands for a character behind a backslash, or 0.
char shortEscape(wchar_t c) {
  switch (c) {
    case L'"':
    case L'\\':
      return static_cast<char>(c);
    case L'\b':
      return 'b';
    case L'\f':
      return 'f';
    case L'\n':
      return 'n';
    case L'\r':
      return 'r';
    case L'\t':
      return 't';
  }
  return '\0';
}

// Down to ASCII: what a document holds does nothing to a terminal.
void append(std::string& out, wchar_t c) {
  const auto code = static_cast<std::uint32_t>(c);
  if (code < 0x80 && isPlain(static_cast<char>(code))) {
    out += static_cast<char>(code);
  } else if (const char letter = shortEscape(c)) {
    out += '\\';
    out += letter;
  } else if (code < 0x10000) {
    appendUnit(out, code);
  } else {
    appendUnit(out, 0xD800 + ((code - 0x10000) >> 10));
    appendUnit(out, 0xDC00 + (code & 0x3FF));
  }
}

void append(std::string& out, const std::string& text) {
  out += '"';
  if (std::all_of(text.begin(), text.end(), isPlain)) {
    out += text;
  } else {
    // What the command line or a file name brought need not be UTF-8; all else already is.
    for (const wchar_t c : wide(text)) append(out, c);
  }
  out += '"';
}

void append(std::string& out, const Scalar& value) {
  if (const auto* const text = std::get_if<std::string>(&value)) return append(out, *text);
  out += std::holds_alternative<std::monostate>(value) ? "null" : textOf(value);
}

// One member of an object, whose first one `isFirst` is.
void appendName(std::string& out, const char* indent, const std::string& name, bool isFirst) {
  out += isFirst ? "\n" : ",\n";
  out += indent;
  append(out, name);
  out += ": ";
}

void appendMembers(std::string& out, const char* indent, const Record& record) {
  bool isFirst = true;
  for (const auto& [name, value] : record) {
    appendName(out, indent, name, isFirst);
    append(out, value);
    isFirst = false;
  }
}

}  // namespace

void appendJsonRow(std::string& rows, const Record& row) {
  rows += rows.empty() ? "\n    {" : ",\n    {";
  appendMembers(rows, "      ", row);
  rows += "\n    }";
}

void printJson(std::ostream& out, const Report* report, const Ending& ending) {
  constexpr const char* indent = "  ";
  std::string text = "{";
  appendMembers(text, indent,
                {{"schema_version", std::int64_t{c_schemaVersion}},
                 {"command", ending.command},
                 {"status", std::int64_t{ending.status}}});
  if (report) {
    for (const auto& [name, value] : report->facts) {
      appendName(text, indent, name, false);
      append(text, value);
    }
    if (!report->rowsName.empty()) {
      appendName(text, indent, report->rowsName, false);
      std::string rows;
      for (const Record& row : report->rows) appendJsonRow(rows, row);
      out << text << '[' << rows << report->writtenRows;
      text = rows.empty() && report->writtenRows.empty() ? "]" : "\n  ]";
    }
  }
  if (ending.failure) {
    appendName(text, indent, "error", false);
    text += '{';
    appendMembers(text, "    ", factsOf(*ending.failure));
    text += "\n  }";
  }
  out << text << "\n}\n";
}

}  // namespace tool
