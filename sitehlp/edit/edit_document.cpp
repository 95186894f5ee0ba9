#include "sitehlp/edit/edit_document.h"

#include "platform/lock/interprocess_lock.h"
#include "sitehlp/common/locks.h"
#include "sitehlp/sites_helper.h"
#include "sitehlp/xmlschema/sitelist.h"

namespace sitehlp {

using korvel_com::orb::lock::InterProcessReadLock;
using korvel_com::orb::lock::InterProcessWriteLock;
using namespace korvel_com::orb::xmlschema::sitelist;  // NOLINT(google-build-using-namespace)

bool openSiteListText(AnXml& document, const ListSource& source) {
  return document.useText(source.path(), source.utf8(), source.writtenIn(), WX_XML_SITELISTS,
                          WX_XML_NAMESPACE, WX_XML_SITELISTS_NAMESPACE);
}

bool openLocked(AnXml& document, const AString& path) {
  InterProcessReadLock lock(c_siteListLock);
  lock.lock(c_waitForEver);
  const bool opened = document.useExistingFile(path, WX_XML_SITELISTS, WX_XML_NAMESPACE,
                                               WX_XML_SITELISTS_NAMESPACE);
  lock.unlock();
  return opened;
}

bool writeLocked(const AnXml& document, const AString& path) {
  InterProcessWriteLock lock(c_siteListLock);
  lock.lock(c_waitForEver);
  const bool written = document.writeFile(path, false, false);
  lock.unlock();
  return written;
}

bool findSiteList(const AnXmlNode& root, AnXmlNode& siteList) {
  return root.getExistingChild(siteList, WX_XML_SITELIST, nullptr, nullptr, nullptr, nullptr);
}

}  // namespace sitehlp
