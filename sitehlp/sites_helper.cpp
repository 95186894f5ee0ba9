#include "sitehlp/sites_helper.h"

#include <cwchar>
#include <utility>

#include "platform/common/afile.h"
#include "platform/common/log.h"
#include "platform/config/configuration.h"
#include "platform/lock/interprocess_lock.h"
#include "sitehlp/common/component.h"
#include "sitehlp/common/process_state.h"
#include "sitehlp/xmlschema/sitelist.h"

namespace sitehlp {

using korvel_com::orb::lock::c_waitForEver;
using korvel_com::orb::lock::InterProcessWriteLock;
using korvel_com::orb::xmlschema::sitelist::WX_XML_SITELIST_TYPE_CLIENT;

tag_Site* CSitesHelper::m_pSiteList = nullptr;
std::int32_t CSitesHelper::m_iChange = 0;

CSitesHelper::CSitesHelper(bool skipDefaultFile)
    : m_strSiteListType(WX_XML_SITELIST_TYPE_CLIENT),
      m_pSiteListElement(nullptr),
      m_iManagedOverride(0),
      m_iReserved(0),
      m_bUseDecryptData(0) {
  const ADetailTrace trace(c_component, L"Constructing sites helper object");
  if (skipDefaultFile) return;
  wchar_t directory[c_textCapacity] = {};
  if (GetSiteListFilename(directory, c_textCapacity) == 0) {
    m_strSiteListFile = joinPath(directory, c_sitelistName);
  } else {
    m_strSiteListFile = c_sitelistName;
  }
  GetSitelistVersions(m_strSiteListFile, m_strGlobalVersion, m_strLocalVersion, m_strSiteListType);
}

CSitesHelper::CSitesHelper(std::wstring fullPath)
    : m_strSiteListFile(std::move(fullPath)),
      m_strSiteListType(WX_XML_SITELIST_TYPE_CLIENT),
      m_pSiteListElement(nullptr),
      m_iManagedOverride(0),
      m_iReserved(0),
      m_bUseDecryptData(0) {
  const ADetailTrace trace(c_component, L"Constructing sites helper object with full path");
  GetSitelistVersions(m_strSiteListFile, m_strGlobalVersion, m_strLocalVersion, m_strSiteListType);
}

CSitesHelper::~CSitesHelper() = default;

int CSitesHelper::GetSiteListFilename(wchar_t* buffer, unsigned long capacity) {
  const ADetailTrace trace(c_component, L"Getting Sitelist file name");
  const std::wstring directory =
      IConfiguration::GetConfiguration()->GetFrameworkDataDirectory() + L"/etc";
  std::wcsncpy(buffer, directory.c_str(), capacity);
  buffer[capacity - 1] = L'\0';
  return 0;
}

int CSitesHelper::IsOrbManaged() {
  const ADetailTrace trace(c_component, L"IsOrbManaged");
  if (m_iManagedOverride == c_overrideNotManaged) return 0;
  if (m_iManagedOverride == c_overrideManaged) return 1;
  return IConfiguration::GetConfiguration()->IsManaged();
}

void CSitesHelper::SetManagedOverride(std::int32_t managedOverride) {
  m_iManagedOverride = managedOverride;
}

void CSitesHelper::needToUpdateInMemSiteList() {
  const CacheGuard guard;
  InterProcessWriteLock lock(smartSiteListLock);
  lock.lock(c_waitForEver);
  ++m_iChange;
  lock.unlock();
}

}  // namespace sitehlp
