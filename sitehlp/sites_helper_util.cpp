#include "sitehlp/sites_helper_util.h"

#include "platform/common/log.h"
#include "platform/config/mesh_service.h"
#include "sitehlp/record.h"

namespace sitehlp {

SitesHelperUtil* SitesHelperUtil::m_ptr = nullptr;

SitesHelperUtil* SitesHelperUtil::getInstance() {
  if (!m_ptr) m_ptr = new SitesHelperUtil;
  return m_ptr;
}

void SitesHelperUtil::writeMeshServiceSiteList(const AdvXMLParser::DocumentWriter& document) {
  try {
    const std::wstring path = MeshServiceConfiguration::GetInstance()->GetMeshSiteListPath();
    AdvXMLParser::WriteUtf8ToFile(path, document.Data(), document.Size());
    logInfo(c_component, L"Command to mesh service to load new sitelist.");
    MeshServiceStartupControl* const control =
        MeshServiceStartupControl::GetInstance(nullptr, nullptr);
    if (control->RunMeshServiceLoadSiteListCmd() != 1) {
      logError(c_component, L"Load new sitelist command failed.");
    }
  } catch (...) {
    logError(c_component, L"Failed to write mesh service sitelist.");
  }
}

}  // namespace sitehlp
