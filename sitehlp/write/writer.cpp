#include <ctime>
#include <cwchar>

#include "platform/common/log.h"
#include "platform/crypto/crypt_shim.h"
#include "platform/lock/interprocess_lock.h"
#include "sitehlp/common/caught.h"
#include "sitehlp/common/component.h"
#include "sitehlp/common/document_values.h"
#include "sitehlp/common/process_state.h"
#include "sitehlp/read/document_reader.h"
#include "sitehlp/records/record_limits.h"
#include "sitehlp/sites_helper.h"
#include "sitehlp/write/element_writer.h"
#include "sitehlp/write/site_writers.h"
#include "sitehlp/write/sites_helper_util.h"
#include "sitehlp/xmlschema/sitelist.h"

namespace sitehlp {

using korvel_com::orb::lock::c_waitForEver;
using korvel_com::orb::lock::InterProcessWriteLock;
using namespace korvel_com::orb::xmlschema::sitelist;  // NOLINT(google-build-using-namespace)

namespace {

constexpr const wchar_t* c_notWritten = L"Site list not written: ";

// Returns fourteen digits, or an empty text if the system cannot give the local time.
std::wstring localTimeStamp() {
  const std::time_t now = std::time(nullptr);
  std::tm local = {};
  if (!toLocalTime(now, local)) return std::wstring();
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

void writeCertificates(ElementWriter& writer, const std::vector<std::wstring>& certificates) {
  if (certificates.empty()) return;
  writer.open(WX_XML_CABUNDLE);
  for (const std::wstring& certificate : certificates) {
    writer.addElement(WX_XML_CACERTIFICATE, certificate);
  }
  writer.close();
}

void writePolicies(ElementWriter& writer, const PolicySettings& policySettings) {
  if (policySettings.empty()) return;
  writer.open(WX_XML_POLICIES);
  for (const auto& [name, value] : policySettings) {
    writer.open(c_policySetting);
    writer.addAttribute(c_policySettingName, name);
    writer.addText(value.data(), value.size());
    writer.close();
  }
  writer.close();
}

void prefetchNext(const tag_Site& site) {
  const tag_Site* const next = site.pNext;
  if (!next) return;
  prefetchRecord(*next);
  if (next->pNext) prefetchHead(*next->pNext);
}

// Refuses a document with more records, or more elements of unknown kind, than a reader accepts.
void refuseUnreadable(const tag_Site* list, AdvXMLParser::DocumentWriter& document) {
  RecordLimits limits;
  for (; list; list = list->pNext) {
    if (const char* const limit = limits.add(!isWrittenAsUnknown(*list))) {
      document.Refuse(limit);
      return;
    }
  }
}

// Writes "SiteList" with the records. `result` receives the result of the last record, even if an
// exception is thrown.
void writeSites(CSitesHelper& helper, tag_Site* list, ElementWriter& writer, int& result) {
  // All passwords of a list are encrypted with the same key.
  const korvel_com::ZQ::crypto::KeptKeys kept;
  writer.open(WX_XML_SITELIST);
  writer.addAttribute(WX_XML_SITELIST_DEFAULT, L"1");
  writer.addAttribute(WX_XML_SITE_NAME, L"SomeGUID");
  for (tag_Site* site = list; site; site = site->pNext) {
    prefetchNext(*site);
    result = writeSite(helper, *site, writer) ? c_success : c_errorGeneral;
    // If the first record is of unknown kind, the other records are written after the list.
    if (site == list && result != c_success) writer.close();
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
    AdvXMLParser::DocumentWriter document(WX_XML_SITELISTS);
    TextElementWriter writer(document);
    writer.addAttribute(WX_XML_NAMESPACE, WX_XML_SITELISTS_NAMESPACE);
    writer.addAttribute(WX_XML_SITELISTS_GLOBAL_VERSION,
                        firstNonEmpty(globalVersion, m_strGlobalVersion, local));
    writer.addAttribute(WX_XML_SITELISTS_LOCAL_VERSION, local);
    writer.addAttribute(WX_XML_SITELISTS_TYPE,
                        firstNonEmpty(type, m_strSiteListType, WX_XML_SITELIST_TYPE_CLIENT));
    writeCertificates(writer, certificates);
    writePolicies(writer, m_policySettings);
    writeSites(*this, list, writer, result);
    document.Finish();
    refuseUnreadable(list, document);
    // Created before the list is written, because a failure after the write must not reach the
    // outer handler.
    SitesHelperUtil* const meshService = SitesHelperUtil::getInstance();

    InterProcessWriteLock lock(c_siteListLock);
    lock.lock(c_waitForEver);
    try {
      AdvXMLParser::WriteDocumentToFile(target, document);
    } catch (...) {
      // The mesh copy is still written, so that the mesh service gets the list that the caller
      // intended.
      logCaught(c_notWritten, target);
      result = c_errorWrite;
    }
    lock.unlock();
    meshService->writeMeshServiceSiteList(document);
  } catch (...) {
    // Nothing was written. The caller gets the result so far.
    logCaught(c_notWritten, path.empty() ? m_strSiteListFile : path);
  }
  return result;
}

}  // namespace sitehlp
