#include "tools/sitelist/model/kinds.h"

#include "sitehlp/fields.h"
#include "sitehlp/xmlschema/sitelist.h"

namespace tool {

using namespace korvel_com::orb::xmlschema::sitelist;  // NOLINT(google-build-using-namespace)

constexpr NamedKind c_kinds[] = {
    {"server", &WX_XML_SITELIST_VESTA_SITE, sitehlp::SITE_KIND_HTTP},
    {"agent", &WX_XML_SITELIST_KEYSTONE_SITE, sitehlp::SITE_KIND_HTTP},
    {"http", &WX_XML_SITELIST_HTTP_SITE, sitehlp::SITE_KIND_HTTP},
    {"ftp", &WX_XML_SITELIST_FTP_SITE, sitehlp::SITE_KIND_FTP},
    {"unc", &WX_XML_SITELIST_UNC_SITE, sitehlp::SITE_KIND_UNC},
    {"local", &WX_XML_SITELIST_LOCAL_SITE, sitehlp::SITE_KIND_LOCAL},
    {"proxy", &WX_XML_PROXY_CONFIG_LIST, sitehlp::SITE_KIND_PROXY},
};

namespace {

constexpr bool hasName(sitehlp::SiteKind siteKind) {
  for (const NamedKind& kind : c_kinds) {
    if (kind.siteKind == siteKind) return true;
  }
  return false;
}

constexpr bool haveNames() {
  for (const sitehlp::SiteKind siteKind : sitehlp::c_siteKinds) {
    if (!hasName(siteKind)) return false;
  }
  return true;
}

static_assert(haveNames(), "a kind of the library has no name");
static_assert(c_kinds[c_kindCount - 1].name, "c_kindCount is too large");

}  // namespace

std::vector<std::string> kinds() {
  std::vector<std::string> names;
  for (const NamedKind& kind : c_kinds) names.emplace_back(kind.name);
  return names;
}

std::vector<std::string> kindsInOutput() {
  std::vector<std::string> names = kinds();
  names.emplace_back(c_unknownKind);
  return names;
}

std::string kindNames() {
  std::string names;
  for (const NamedKind& kind : c_kinds) names.append(names.empty() ? "" : ", ").append(kind.name);
  return names;
}

}  // namespace tool
