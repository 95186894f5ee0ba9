#include <ctime>
#include <cwchar>

#include "platform/common/log.h"
#include "platform/lock/interprocess_lock.h"
#include "sitehlp/document_reader.h"
#include "sitehlp/element_writer.h"
#include "sitehlp/locks.h"
#include "sitehlp/record.h"
#include "sitehlp/sites_helper.h"
#include "sitehlp/sites_helper_util.h"
#include "sitehlp/xmlschema/sitelist.h"

namespace sitehlp {

using AdvXMLParser::Document;
using AdvXMLParser::Element;
using korvel_com::orb::lock::InterProcessWriteLock;
using namespace korvel_com::orb::xmlschema::sitelist;  // NOLINT(google-build-using-namespace)

namespace {

// Fourteen digits; empty when the local time is not to be had.
std::wstring localTimeStamp() {
  const std::time_t now = std::time(nullptr);
  std::tm local = {};
  if (!::localtime_r(&now, &local)) return std::wstring();
  wchar_t text[c_textCapacity];
  std::swprintf(text, c_textCapacity, L"%04d%02d%02d%02d%02d%02d", local.tm_year + 1900,
                local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec);
  return text;
}

std::wstring makeLocalVersion(const std::wstring& path) {
  const std::wstring version = localTimeStamp();
  if (version.empty()) return version;
  logDetail(c_component,
            AString(L"Local version of ").append(path).append(L" is ").append(version));
  return version;
}

const std::wstring& firstNonEmpty(const std::wstring& a, const std::wstring& b,
                                  const std::wstring& otherwise) {
  if (!a.empty()) return a;
  return !b.empty() ? b : otherwise;
}

void addCertificates(Element& root, const std::vector<std::wstring>& certificates) {
  if (certificates.empty()) return;
  Element bundle = root.AddElementInto(WX_XML_CABUNDLE);
  for (const std::wstring& certificate : certificates) {
    addInto(bundle, WX_XML_CACERTIFICATE, certificate);
  }
}

void addPolicies(Element& root, const PolicySettings& policySettings) {
  if (policySettings.empty()) return;
  Element policies = root.AddElementInto(WX_XML_POLICIES);
  for (const auto& [name, value] : policySettings) {
    Element setting = addInto(policies, L"Setting", value);
    setAttribute(setting, L"name", name);
  }
}

int addSite(CSitesHelper& helper, tag_Site* site, int position) {
  switch (site->eSiteKind) {
    case SITE_KIND_HTTP:
      return helper.AddHTTPSite(site, position);
    case SITE_KIND_FTP:
      return helper.AddFTPSite(site, position);
    case SITE_KIND_UNC:
      return helper.AddUNCSite(site, position);
    case SITE_KIND_LOCAL:
      return helper.AddLocalSite(site, position);
    case SITE_KIND_PROXY:
      return helper.AddProxySite(site, position);
    default:
      return c_errorGeneral;
  }
}

}  // namespace

int CSitesHelper::CreateSiteList(tag_Site* list, const std::wstring& path,
                                 const std::wstring& globalVersion,
                                 const std::wstring& localVersion, const std::wstring& type,
                                 const std::vector<std::wstring>& certificates) {
  const ADetailTrace trace(c_component, L"Creating Sitelist");
  int result = c_success;
  try {
    const std::wstring& target = path.empty() ? m_strSiteListFile : path;
    const std::wstring local = localVersion.empty() ? makeLocalVersion(target) : localVersion;
    const Document document(WX_XML_SITELISTS);
    Element root = document.GetRoot();
    setAttribute(root, WX_XML_NAMESPACE, WX_XML_SITELISTS_NAMESPACE);
    setAttribute(root, WX_XML_SITELISTS_GLOBAL_VERSION,
                 firstNonEmpty(globalVersion, m_strGlobalVersion, local));
    setAttribute(root, WX_XML_SITELISTS_LOCAL_VERSION, local);
    setAttribute(root, WX_XML_SITELISTS_TYPE,
                 firstNonEmpty(type, m_strSiteListType, WX_XML_SITELIST_TYPE_CLIENT));
    addCertificates(root, certificates);
    addPolicies(root, m_policySettings);
    Element anchor = root.AddElementInto(WX_XML_SITELIST);
    setAttribute(anchor, WX_XML_SITELIST_DEFAULT, L"1");
    setAttribute(anchor, WX_XML_SITE_NAME, L"SomeGUID");
    m_pSiteListElement = &anchor;
    int position = 0;
    for (tag_Site* site = list; site; site = site->pNext) {
      result = addSite(*this, site, position);
      ++position;
    }
    const std::wstring text = document.GenerateXML(false);

    InterProcessWriteLock lock(c_siteListLock);
    lock.lock(c_waitForEver);
    try {
      AdvXMLParser::WriteBufferToFile(target, text, c_encoding, nullptr, nullptr);
    } catch (...) {
      // The mesh service is told all the same: it serves the list that the caller wanted.
      result = c_errorWrite;
    }
    lock.unlock();
    SitesHelperUtil::getInstance()->writeMeshServiceSiteList(text);
  } catch (...) {
    // Nothing was written; the caller gets the result so far.
  }
  return result;
}

}  // namespace sitehlp
