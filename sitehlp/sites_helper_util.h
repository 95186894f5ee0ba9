#ifndef SITEHLP_SITES_HELPER_UTIL_H
#define SITEHLP_SITES_HELPER_UTIL_H

#include <string>

namespace sitehlp {

// Tells the mesh service of a new site list. One instance, made at first use and never released;
// the first use must not be in two threads at once.
class SitesHelperUtil {
 public:
  static SitesHelperUtil* getInstance();

  // Writes the mesh service's copy and has the service load it. Failures are logged only.
  void writeMeshServiceSiteList(std::wstring text);

 private:
  static SitesHelperUtil* m_ptr;
};

}  // namespace sitehlp

#endif
