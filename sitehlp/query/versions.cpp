#include "sitehlp/query/versions.h"

#include "platform/common/log.h"
#include "sitehlp/common/component.h"
#include "sitehlp/sites_helper.h"
#include "sitehlp/xmlschema/sitelist.h"

namespace sitehlp {

using AdvXMLParser::Attribute;
using AdvXMLParser::Element;
using namespace korvel_com::orb::xmlschema::sitelist;  // NOLINT(google-build-using-namespace)

namespace {

// Calls `query` with the root of a list and returns its result, or -1 when there is no root.
template <typename Query>
int queryRoot(ListSource& source, Query query) {
  try {
    const AdvXMLParser::Document* const document = source.document();
    return document ? query(document->GetRoot()) : c_errorGeneral;
  } catch (const AdvXMLParser::ParsingException&) {
    return c_errorGeneral;
  } catch (const AdvXMLParser::ReadWriteException&) {
    return c_errorGeneral;
  }
}

}  // namespace

void readVersions(const Element& root, std::wstring& globalVersion, std::wstring& localVersion,
                  std::wstring& type) {
  globalVersion = root.GetAttribute(WX_XML_SITELISTS_GLOBAL_VERSION).GetValue();
  localVersion = root.GetAttribute(WX_XML_SITELISTS_LOCAL_VERSION).GetValue();
  const Attribute typeAttribute = root.GetAttribute(WX_XML_SITELISTS_TYPE);
  type = typeAttribute.IsNull() ? WX_XML_SITELIST_TYPE_CLIENT : typeAttribute.GetValue();
}

bool readFipsMode(const Element& root, std::wstring& fipsMode) {
  const Attribute attribute = root.GetAttribute(WX_XML_SITELISTS_FIPSMODE);
  if (attribute.IsNull()) return false;
  fipsMode = attribute.GetValue();
  return true;
}

int queryVersions(ListSource& source, std::wstring& globalVersion, std::wstring& localVersion,
                  std::wstring& type) {
  const ADetailTrace trace(c_component, L"Getting Sitelist versions");
  const int readResult = source.read(true);
  if (readResult == c_errorFileMissing) return readResult;
  globalVersion.clear();
  localVersion.clear();
  if (readResult != c_success) return readResult;
  return queryRoot(source, [&](const Element& root) {
    readVersions(root, globalVersion, localVersion, type);
    return c_success;
  });
}

int CSitesHelper::GetSitelistVersions(const std::wstring& path, std::wstring& globalVersion,
                                      std::wstring& localVersion, std::wstring& type) {
  ListSource source(path.empty() ? m_strSiteListFile : path);
  return queryVersions(source, globalVersion, localVersion, type);
}

int CSitesHelper::GetGlobalSitelistVersion(std::wstring& globalVersion) {
  std::wstring localVersion;
  std::wstring type;
  return GetSitelistVersions(m_strSiteListFile, globalVersion, localVersion, type);
}

int CSitesHelper::GetSitelistFipsMode(const std::wstring& path, std::wstring& fipsMode) {
  const ADetailTrace trace(c_component, L"Getting Sitelist fips mode");
  ListSource source(path.empty() ? m_strSiteListFile : path);
  const int readResult = source.read(true);
  if (readResult != c_success) return readResult;
  return queryRoot(source, [&](const Element& root) {
    return readFipsMode(root, fipsMode) ? c_success : c_errorGeneral;
  });
}

}  // namespace sitehlp
