#include "tools/sitelist/report/report.h"

#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/cli/shown_name.h"
#include "tools/sitelist/cli/text.h"

namespace tool {

void RowWriter::add(const Record& row) {
  switch (m_format) {
    case Format::Json:
      return appendJsonRow(m_report.writtenRows, row);
    case Format::Xml:
      return appendXmlRow(m_report.writtenRows, m_report.rowName, row);
    case Format::JsonLines:
      return appendJsonLine(m_report.writtenRows, row);
    case Format::Csv:
      return appendCsvRow(m_report.writtenRows, m_report.columns, row);
    case Format::Table:
      break;
  }
}

bool operator==(const Texts& a, const Texts& b) { return a.joined == b.joined && a.each == b.each; }

std::string textOf(const Scalar& value) {
  if (const bool* const flag = std::get_if<bool>(&value)) return *flag ? "true" : "false";
  if (const auto* const number = std::get_if<std::int64_t>(&value)) return std::to_string(*number);
  if (const auto* const text = std::get_if<std::string>(&value)) return *text;
  if (const auto* const texts = std::get_if<Texts>(&value)) return texts->joined;
  if (const auto* const object = std::get_if<std::shared_ptr<const Object>>(&value)) {
    return (*object)->text;
  }
  return "";
}

Scalar orNull(const std::string& text) { return text.empty() ? Scalar() : Scalar(text); }

const Scalar* find(const Record& record, const std::string& name) {
  for (const auto& [key, value] : record) {
    if (key == name) return &value;
  }
  return nullptr;
}

std::string shownText(const Record& record, const std::string& name) {
  const Scalar* const value = find(record, name);
  return value ? shown(textOf(*value)) : "";
}

Record factsOf(const Failure& failure) {
  const FailureOrigin& origin = failure.origin();
  Record facts = {{"status", std::int64_t{failure.status()}},
                  {"name", std::string(nameOf(failure.status()))},
                  {"message", std::string(failure.what())},
                  {"next", failure.advice()},
                  {"file", orNull(reportedName(origin.file))},
                  {"line", Scalar()},
                  {"column", Scalar()},
                  {"code", Scalar()}};
  if (origin.line != 0) {
    facts[5].second = static_cast<std::int64_t>(origin.line);
    facts[6].second = static_cast<std::int64_t>(origin.column);
  }
  if (origin.code != 0) facts[7].second = std::int64_t{origin.code};
  return facts;
}

Record failedRow(const std::string& file, const Failure& failure) {
  return {{"file", orNull(file)},
          {"status", std::int64_t{failure.status()}},
          {"error", std::make_shared<const Object>(Object{factsOf(failure), failure.what()})}};
}

}  // namespace tool
