#ifndef SITEHLP_WRITE_SITES_HELPER_UTIL_H
#define SITEHLP_WRITE_SITES_HELPER_UTIL_H

#include <atomic>

#include "platform/xml/advxmlparser.h"

namespace sitehlp {

// Writes the mesh copy. The only instance is created at its first use and never released. Any
// thread.
class SitesHelperUtil {
 public:
  static SitesHelperUtil* getInstance();

  // Writes the mesh copy of a document and runs the load command. Failures are only logged.
  void writeMeshServiceSiteList(const AdvXMLParser::DocumentWriter& document);

 private:
  static std::atomic<SitesHelperUtil*> m_ptr;
};

}  // namespace sitehlp

#endif
