#include <unistd.h>

#include <utility>

#include "platform/common/afile.h"
#include "platform/common/log.h"
#include "platform/lock/interprocess_lock.h"
#include "sitehlp/common/caught.h"
#include "sitehlp/common/component.h"
#include "sitehlp/common/process_state.h"
#include "sitehlp/read/document_reader.h"
#include "sitehlp/read/smart_read.h"
#include "sitehlp/records/record.h"
#include "sitehlp/sites_helper.h"
#include "sitehlp/xmlschema/sitelist.h"

namespace sitehlp {

using korvel_com::orb::lock::c_waitForEver;
using korvel_com::orb::lock::InterProcessReadLock;
using korvel_com::orb::xmlschema::sitelist::WX_XML_CABUNDLE;

namespace {

// The file is read again when the change counter is greater than this.
constexpr std::int32_t c_changesServed = 2;

void logNumber(const wchar_t* text, int number) {
  if (logEnabled(LogLevel::Detail)) logDetail(c_component, AString(text).append(number));
}

}  // namespace

int smartRead(CSitesHelper& helper, const std::wstring& path, tag_Site** list) {
  const ADetailTrace trace(c_component, L"Smart read of Site List");
  InterProcessReadLock lock(smartSiteListLock);
  lock.lock(c_waitForEver);
  int result = c_success;
  tag_Site*& cached = CSitesHelper::m_pSiteList;
  std::int32_t& changes = CSitesHelper::m_iChange;
  if (!cached || changes > c_changesServed) {
    logNumber(L"Reading from FILE", changes);
    // Set to null before the release, so that a child of fork does not find a list that is partly
    // released.
    if (cached) CSitesHelper::FreeSiteListMemory(std::exchange(cached, nullptr));
    result = helper.ReadSiteList(path, list, true);
    if (result < 0 || !*list) {
      logResult(L"Unable to read from SiteList file, error hr=", result);
    } else {
      cached = *list;
      changes = 1;
    }
  } else {
    logNumber(L"Reading from memory", changes);
    *list = cached;
  }
  lock.unlock();
  return result;
}

int CSitesHelper::ReadSiteList(const std::wstring& path, tag_Site** list, bool useLock) {
  const ADetailTrace trace(c_component, L"Reading Sitelist");
  m_strCurrentFile = path.empty() ? m_strSiteListFile : path;
  if (m_strCurrentFile.empty()) return c_errorNoPath;
  ListSource source(m_strCurrentFile);
  const int readResult = source.read(useLock);
  if (readResult != c_success) return readResult;
  ListOwner sites;
  const int result = readList(source, m_bUseDecryptData == 1, m_policySettings, sites.out());
  *list = sites.release();
  return result;
}

int CSitesHelper::SmartReadSiteList(const std::wstring& path, tag_Site** list) {
  const CacheGuard guard;
  return smartRead(*this, path, list);
}

int CSitesHelper::MustReadSiteList(const std::wstring& path, tag_Site** list) {
  ListSource source(path);
  return mustReadList(source, m_strCurrentFile, m_bUseDecryptData == 1, m_policySettings, list);
}

bool CSitesHelper::GetSiteListBuffer(std::wstring& text) {
  const ADetailTrace trace(c_component, L"Reading Sitelist");
  if (m_strSiteListFile.empty()) return false;
  if (::access(ACharString(m_strSiteListFile).c_str(), F_OK) != 0) return false;
  InterProcessReadLock lock(c_siteListLock);
  lock.lock(c_waitForEver);
  AdvXMLParser::UTF_ENCODINGS encoding = c_encoding;
  AdvXMLParser::ReadBufferFromFile(m_strSiteListFile, text, encoding, nullptr);
  // Removes the first opening tag. The content and the closing tag remain. Callers rely on this.
  const std::wstring marker = std::wstring(L"<") + WX_XML_CABUNDLE + L">";
  const std::size_t start = text.find(marker);
  if (start != std::wstring::npos) text.erase(start, marker.size());
  lock.unlock();
  return true;
}

}  // namespace sitehlp
