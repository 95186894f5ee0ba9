#include <unordered_set>

#include "platform/common/anxml.h"
#include "sitehlp/edit/edit_document.h"
#include "sitehlp/sites_helper.h"
#include "sitehlp/xmlschema/sitelist.h"

namespace sitehlp {

using namespace korvel_com::orb::xmlschema::sitelist;  // NOLINT(google-build-using-namespace)

namespace {

// Gets the values that identify a management server, as one text. Returns false if one of the
// attributes is missing; the element is then different from every other.
bool identityOf(const AnXmlNode& server, std::wstring& identity) {
  identity.clear();
  AString value;
  for (const wchar_t* name :
       {WX_XML_SITE_NAME, WX_XML_SITE_SERVER, WX_XML_SERVER_NETBIOS_NAME, WX_XML_SITE_SERVER_IP}) {
    if (!server.tryGetValue(name, value)) return false;
    identity.append(value.str());
    identity.push_back(L'\0');  // no value has this character
  }
  return true;
}

using Identities = std::unordered_set<std::wstring>;

Identities identitiesIn(const AnXmlNode& siteList) {
  Identities identities;
  AnXmlChildIndex servers(siteList, WX_XML_SITELIST_VESTA_SITE);
  AnXmlNode server;
  std::wstring identity;
  while (servers.moveNext(server)) {
    if (identityOf(server, identity)) identities.insert(identity);
  }
  return identities;
}

// Removes the servers that are not in the source. The others are unchanged.
void removeServersNotIn(const Identities& sourceIdentities, const AnXmlNode& targetSiteList) {
  AnXmlChildIndex servers(targetSiteList, WX_XML_SITELIST_VESTA_SITE);
  AnXmlNode server;
  std::wstring identity;
  while (servers.moveNext(server)) {
    if (!identityOf(server, identity) || sourceIdentities.count(identity) == 0) servers.remove();
  }
}

void addMissingServers(CSitesHelper& helper, const AnXmlNode& sourceSiteList,
                       AnXmlNode& targetSiteList) {
  Identities present = identitiesIn(targetSiteList);
  AnXmlChildIndex servers(sourceSiteList, WX_XML_SITELIST_VESTA_SITE);
  AnXmlNode server;
  std::wstring identity;
  while (servers.moveNext(server)) {
    const bool hasIdentity = identityOf(server, identity);
    if (hasIdentity && !present.insert(identity).second) continue;
    AnXmlNode added;
    targetSiteList.addChild(added, WX_XML_SITELIST_VESTA_SITE, nullptr, nullptr);
    helper.copyXmlAttributesAlter(server, added, 0, L"");
    helper.copyXmlSubNodes(server, added);
  }
}

bool findBundle(const AnXmlNode& root, AnXmlNode& bundle) {
  return root.tryGetChild(bundle, WX_XML_CABUNDLE, nullptr, nullptr, nullptr, nullptr);
}

}  // namespace

bool CSitesHelper::IstheSamePyxSite(AnXmlNode& a, AnXmlNode& b) {
  std::wstring identityA;
  std::wstring identityB;
  return identityOf(a, identityA) && identityOf(b, identityB) && identityA == identityB;
}

void CSitesHelper::doReplacePyxSite(AnXmlNode& targetRoot, AnXmlNode& sourceRoot) {
  AnXmlNode target;
  AnXmlNode source;
  if (!findSiteList(targetRoot, target) || !findSiteList(sourceRoot, source)) return;
  removeServersNotIn(identitiesIn(source), target);
  AnXmlNode bundle;
  if (findBundle(targetRoot, bundle)) bundle.remove();
  addMissingServers(*this, source, target);
  if (findBundle(sourceRoot, bundle)) targetRoot.copyAsChild(bundle);
}

}  // namespace sitehlp
