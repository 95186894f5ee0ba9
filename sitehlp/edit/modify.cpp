#include <utility>

#include "platform/common/log.h"
#include "sitehlp/common/component.h"
#include "sitehlp/common/document_values.h"
#include "sitehlp/common/number.h"
#include "sitehlp/edit/edit_document.h"
#include "sitehlp/read/document_reader.h"
#include "sitehlp/records/record.h"
#include "sitehlp/sites_helper.h"
#include "sitehlp/vendor_hosts.h"
#include "sitehlp/xmlschema/sitelist.h"

namespace sitehlp {

using namespace korvel_com::orb::xmlschema::sitelist;  // NOLINT(google-build-using-namespace)

namespace {

// A default vendor repository in a document.
struct VendorSite {
  VendorSite(const AnXmlNode& siteList, const wchar_t* elementName, const std::wstring& server) {
    AString orderText;
    if (!siteList.tryGetChild(node, elementName, WX_XML_SITE_SERVER, server.c_str(),
                              WX_XML_SITE_ORDER, &orderText)) {
      return;
    }
    order = toInt(ACharString(orderText).c_str());
    node.tryGetValue(WX_XML_SITE_TYPE, type);
  }

  AnXmlNode node;
  int order = 0;  // 0 if the repository or its order is missing
  AString type;
};

struct VendorSites {
  explicit VendorSites(const AnXmlNode& siteList)
      : http(siteList, WX_XML_SITELIST_HTTP_SITE, std::wstring(c_vendorHttpHost) + L":80"),
        ftp(siteList, WX_XML_SITELIST_FTP_SITE, std::wstring(c_vendorFtpHost) + L":21") {}

  bool haveOrders() const { return http.order != 0 && ftp.order != 0; }
  bool httpFirst() const { return http.order < ftp.order; }
  bool hasFallback() const {
    return http.type.str() == c_fallbackType || ftp.type.str() == c_fallbackType;
  }

  VendorSite http;
  VendorSite ftp;
};

// Keeps the two orders of the target. The source determines which repository gets which order.
void replaceRepositoriesIn(CSitesHelper& helper, AnXmlNode& targetSiteList,
                           const AnXmlNode& sourceSiteList) {
  VendorSites target(targetSiteList);
  VendorSites source(sourceSiteList);
  int httpOrder = target.http.order;
  int ftpOrder = target.ftp.order;
  if (!target.hasFallback() && target.haveOrders() && source.haveOrders() &&
      source.httpFirst() != target.httpFirst()) {
    std::swap(httpOrder, ftpOrder);
  }
  if (httpOrder != 0 && source.http.order != 0) {
    helper.replaceWexRepository(source.http.node, targetSiteList, target.http.node, httpOrder,
                                target.http.type.c_str());
  }
  if (ftpOrder != 0 && source.ftp.order != 0) {
    helper.replaceWexRepository(source.ftp.node, targetSiteList, target.ftp.node, ftpOrder,
                                target.ftp.type.c_str());
  }
}

// Does the same as MustReadSiteList, but keeps only one record. This record determines which key
// files come with the list: the first server with a version, otherwise the first record. Allocating
// the other records would take more time than all other steps together.
int mustReadDecidingSite(ListSource& source, bool useDecryptData, PolicySettings& policySettings,
                         ListOwner& deciding) {
  const auto take = [&deciding](tag_Site* site) {
    const tag_Site* const kept = deciding.get();
    if (kept && (isVersionedServer(*kept) || !isVersionedServer(*site))) {
      releaseRecord(site);
      return;
    }
    if (kept) releaseRecord(deciding.release());
    *deciding.out() = site;
  };
  int result = c_success;
  {
    const ADetailTrace trace(c_component, L"Reading Sitelist");
    result = readSites(source, useDecryptData, policySettings, take);
  }
  if (result < 0 || !deciding.get()) logFailedRead(result);
  return result;
}

}  // namespace

bool CSitesHelper::modifySiteList(const wchar_t* sourcePath, bool replaceRepositories,
                                  bool replaceServerSites, const AString& keyDir) {
  const ADetailTrace trace(c_editComponent, L"modifying site list");
  AnXml target;
  if (!openLocked(target, m_strSiteListFile)) return false;
  ListSource incomingFile(AString(sourcePath).str());
  AnXml source;
  if (incomingFile.read(false) != c_success || !openSiteListText(source, incomingFile)) {
    return false;
  }
  AnXmlNode targetRoot(&target);
  AnXmlNode sourceRoot(&source);
  AnXmlNode targetSiteList;
  AnXmlNode sourceSiteList;
  if (!findSiteList(targetRoot, targetSiteList) || !findSiteList(sourceRoot, sourceSiteList)) {
    return false;
  }
  if (replaceRepositories) replaceRepositoriesIn(*this, targetSiteList, sourceSiteList);
  if (replaceServerSites) doReplacePyxSite(targetRoot, sourceRoot);
  if (!isWithinRecordLimits(targetSiteList, m_strSiteListFile)) return false;
  m_strCurrentFile = incomingFile.path();
  ListOwner incoming;
  if (mustReadDecidingSite(incomingFile, m_bUseDecryptData == 1, m_policySettings, incoming) < 0) {
    return false;
  }
  if (!createDirectoriesAndCopyKeyFiles(m_strCurrentFile, incoming.get(), keyDir.str()))
    return false;
  return writeLocked(target, m_strSiteListFile);
}

void CSitesHelper::replaceWexRepository(AnXmlNode& source, AnXmlNode& targetSiteList,
                                        AnXmlNode& target, int order, const wchar_t* type) {
  target.remove();
  AString server;
  source.tryGetValue(WX_XML_SITE_SERVER, server);
  targetSiteList.setChild(target, source.getName().c_str(), WX_XML_SITE_SERVER, server.c_str(),
                          nullptr, nullptr);
  copyXmlAttributesAlter(source, target, order, type);
  copyXmlSubNodes(source, target);
}

}  // namespace sitehlp
