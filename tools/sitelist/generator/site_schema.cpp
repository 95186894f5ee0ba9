#include <map>
#include <memory>
#include <nlohmann/json.hpp>

#include "sitehlp/fields.h"
#include "tools/sitelist/generator/pages.h"
#include "tools/sitelist/model/kinds.h"
#include "tools/sitelist/model/site_report.h"

namespace tool {
namespace {

using Json = nlohmann::ordered_json;
using sitehlp::FieldForm;

template <typename Row>
Json schemaOf(const Row& row) {
  const char* const type = sitehlp::isText(row.form)     ? "string"
                           : row.form == FieldForm::Flag ? "boolean"
                                                         : "integer";
  std::string description = row.help;
  if (row.form == FieldForm::Password) {
    description += std::string(" A password that is not empty is ") + c_mask +
                   " unless --show-secrets is given.";
  }
  Json schema = {{"type", type}, {"description", description}};
  if (row.form == FieldForm::Hosts) {
    schema["type"] = "array";
    schema["items"] = {{"type", "string"}};
  }
  return schema;
}

}  // namespace

std::string completeSchema(const std::string& schema) {
  std::map<std::string, Json> fields;
  const auto site = std::make_unique<sitehlp::tag_Site>();
  for (const sitehlp::SiteKind kind : sitehlp::c_siteKinds) {
    site->eSiteKind = kind;
    sitehlp::eachFieldOf(
        *site, [&](const auto& row, const auto&) { fields.emplace(row.name, schemaOf(row)); });
  }
  Json whole = Json::parse(schema);
  Json& kindDefinition = whole.at("definitions").at("kind");
  kindDefinition.erase("$comment");
  kindDefinition["enum"] = kindsInOutput();
  Json& definition = whole.at("definitions").at("site");
  definition.erase("$comment");
  for (const std::string& name : siteFieldNames()) {
    const auto field = fields.find(name);
    if (field != fields.end()) definition.at("properties")[name] = field->second;
  }
  return whole.dump(2) + '\n';
}

}  // namespace tool
