#ifndef SITEHLP_WRITE_SITES_HELPER_UTIL_H
#define SITEHLP_WRITE_SITES_HELPER_UTIL_H

#include <atomic>

#include "platform/xml/advxmlparser.h"

namespace sitehlp {

// Tells the mesh service of a new site list. One instance, made at first use and never released.
// Any thread.
class SitesHelperUtil {
 public:
  static SitesHelperUtil* getInstance();

  // Writes the mesh service's copy of a document and has the service load it.
  // Failures are logged only.
  void writeMeshServiceSiteList(const AdvXMLParser::DocumentWriter& document);

 private:
  static std::atomic<SitesHelperUtil*> m_ptr;
};

}  // namespace sitehlp

#endif
