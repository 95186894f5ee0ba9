#include "tools/sitelist/edit/document_fields.h"

#include <algorithm>
#include <limits>
#include <tuple>

#include "sitehlp/common/document_values.h"
#include "sitehlp/xmlschema/sitelist.h"
#include "tools/sitelist/model/kinds.h"
#include "tools/sitelist/model/site_list.h"

namespace tool {
namespace {

using namespace korvel_com::orb::xmlschema::sitelist;  // NOLINT(google-build-using-namespace)

using Fields = std::vector<DocumentField>;

constexpr std::int64_t c_maxNumber = std::numeric_limits<std::int32_t>::max();

template <typename Row>
std::int64_t limitOf(const Row& row) {
  if (sitehlp::isText(row.form)) return static_cast<std::int64_t>(row.capacity) - 1;
  if (sitehlp::isPort(row.form)) return c_maxPort;
  return row.form == FieldForm::Number ? c_maxNumber : 0;
}

// A management server always has its computer name and IP address. Agent repositories and HTTP
// sites have them only if they are known.
Presence presenceOf(sitehlp::Written written, bool isServer) {
  const bool isAlways =
      written == sitehlp::Written::Always || (written == sitehlp::Written::ByElement && isServer);
  return isAlways ? Presence::Always : Presence::WhenGiven;
}

template <typename Table>
Fields fieldsIn(const Table& table, bool isServer = false) {
  Fields fields;
  const auto add = [&](const auto& row) {
    if (row.place == FieldPlace::None) return;
    fields.push_back({row.name, row.form, row.place, *row.xmlName, row.initial, limitOf(row),
                      presenceOf(row.written, isServer)});
  };
  std::apply([&](const auto&... rows) { (add(rows), ...); }, table);
  return fields;
}

// Inserts an attribute that is not a field.
Fields withAttribute(Fields fields, const std::string& before, const wchar_t* xmlName,
                     const wchar_t* value) {
  const auto found = std::find_if(fields.begin(), fields.end(),
                                  [&](const DocumentField& field) { return before == field.name; });
  fields.insert(found + 1, {nullptr, FieldForm::Text, FieldPlace::Attribute, xmlName, value});
  return fields;
}

Fields serverFields() {
  Fields fields = fieldsIn(sitehlp::c_serverFields, true);
  for (DocumentField& field : fields) {
    if (field.xmlName == WX_XML_SITE_TYPE) field.initial = STR_SITE_TYPE_MASTER;
  }
  return fields;
}

Fields documentFieldsOf(const NamedKind& kind) {
  switch (kind.siteKind) {
    case sitehlp::SITE_KIND_HTTP:
      return kind.element == &WX_XML_SITELIST_VESTA_SITE ? serverFields()
                                                         : fieldsIn(sitehlp::c_httpFields);
    case sitehlp::SITE_KIND_FTP:
      return fieldsIn(sitehlp::c_ftpFields);
    case sitehlp::SITE_KIND_UNC:
      return fieldsIn(sitehlp::c_uncFields);
    case sitehlp::SITE_KIND_LOCAL:
      return withAttribute(fieldsIn(sitehlp::c_localFields), "local", WX_XML_SITE_SERVER,
                           sitehlp::c_localServer);
    case sitehlp::SITE_KIND_PROXY:
      break;
  }
  return withAttribute(fieldsIn(sitehlp::c_proxyFields), "useIEConfig", WX_XML_SITE_LOCAL, L"1");
}

std::vector<DocumentKind> makeKinds() {
  std::vector<DocumentKind> all;
  for (const NamedKind& kind : c_kinds)
    all.push_back({kind.name, *kind.element, documentFieldsOf(kind)});
  return all;
}

const std::vector<DocumentKind>& allKinds() {
  static const std::vector<DocumentKind> all = makeKinds();
  return all;
}

}  // namespace

const DocumentKind* findKind(const std::string& name) {
  for (const DocumentKind& kind : allKinds()) {
    if (name == kind.name) return &kind;
  }
  return nullptr;
}

const DocumentField* findField(const DocumentKind& kind, const std::string& name) {
  for (const DocumentField& field : kind.fields) {
    if (field.name && name == field.name) return &field;
  }
  return nullptr;
}

std::string fieldNames(const DocumentKind& kind, const std::string& indent) {
  constexpr std::size_t c_columns = 79;
  std::string text;
  std::string line;
  for (const DocumentField& field : kind.fields) {
    if (!field.name || field.name == std::string("name")) continue;
    const std::string name = field.name;
    if (!line.empty() && indent.size() + line.size() + 2 + name.size() >= c_columns) {
      text += indent + line + ",\n";
      line.clear();
    }
    line += (line.empty() ? "" : ", ") + name;
  }
  return text + indent + line;
}

std::string fieldHelp() {
  constexpr std::size_t c_indent = 10;
  std::string text;
  for (const DocumentKind& kind : allKinds()) {
    const std::string name = std::string("  ") + kind.name;
    text += name + fieldNames(kind, std::string(c_indent, ' ')).substr(name.size()) + '\n';
  }
  return text;
}

}  // namespace tool
