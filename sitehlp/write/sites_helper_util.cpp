#include "sitehlp/write/sites_helper_util.h"

#include <memory>

#include "platform/common/log.h"
#include "platform/config/mesh_service.h"
#include "sitehlp/common/caught.h"
#include "sitehlp/common/component.h"

namespace sitehlp {

std::atomic<SitesHelperUtil*> SitesHelperUtil::m_ptr{nullptr};

SitesHelperUtil* SitesHelperUtil::getInstance() {
  SitesHelperUtil* instance = m_ptr.load(std::memory_order_acquire);
  if (instance) return instance;
  // Two threads may create an object at the same time. No lock is used, because it could stay
  // locked in a child of fork.
  auto made = std::make_unique<SitesHelperUtil>();
  return m_ptr.compare_exchange_strong(instance, made.get()) ? made.release() : instance;
}

void SitesHelperUtil::writeMeshServiceSiteList(const AdvXMLParser::DocumentWriter& document) {
  std::wstring path;
  try {
    path = MeshServiceConfiguration::GetInstance()->GetMeshSiteListPath();
    if (path.empty()) return;
    AdvXMLParser::WriteDocumentToFile(path, document);
    logInfo(c_component, L"Command to mesh service to load new sitelist.");
    MeshServiceStartupControl* const control =
        MeshServiceStartupControl::GetInstance(nullptr, nullptr);
    if (control->RunMeshServiceLoadSiteListCmd() != 1) {
      logFixed(L"Load new sitelist command failed.");
    }
  } catch (...) {
    logFixed(L"Failed to write mesh service sitelist.");
    logCaught(L"Mesh copy not written: ", path);
  }
}

}  // namespace sitehlp
