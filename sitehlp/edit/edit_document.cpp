#include "sitehlp/edit/edit_document.h"

#include <cstddef>

#include "platform/lock/interprocess_lock.h"
#include "sitehlp/common/caught.h"
#include "sitehlp/records/record_limits.h"
#include "sitehlp/records/site_elements.h"
#include "sitehlp/sites_helper.h"
#include "sitehlp/xmlschema/sitelist.h"

namespace sitehlp {

using korvel_com::orb::lock::c_waitForEver;
using korvel_com::orb::lock::InterProcessReadLock;
using korvel_com::orb::lock::InterProcessWriteLock;
using namespace korvel_com::orb::xmlschema::sitelist;  // NOLINT(google-build-using-namespace)

namespace {

std::size_t numberOfChildren(const AnXmlNode& node) {
  AnXmlChildIndex children(node, nullptr);
  AnXmlNode child;
  std::size_t number = 0;
  while (children.moveNext(child)) ++number;
  return number;
}

}  // namespace

bool openSiteListText(AnXml& document, ListSource& source) {
  if (!document.useText(source.path(), source.utf8(), source.writtenIn(), WX_XML_SITELISTS,
                        WX_XML_NAMESPACE, WX_XML_SITELISTS_NAMESPACE)) {
    return false;
  }
  source.setDocument(document.newDocument());
  return true;
}

bool openLocked(AnXml& document, const AString& path) {
  InterProcessReadLock lock(c_siteListLock);
  lock.lock(c_waitForEver);
  const bool opened = document.useExistingFile(path, WX_XML_SITELISTS, WX_XML_NAMESPACE,
                                               WX_XML_SITELISTS_NAMESPACE);
  lock.unlock();
  return opened;
}

bool isWithinRecordLimits(const AnXmlNode& siteList, const std::wstring& path) {
  // Comparing names takes time. It is needed only if the list has more elements than the limit on
  // elements of unknown kind.
  const bool namesMatter = numberOfChildren(siteList) > c_maxUnknownElements;
  RecordLimits limits;
  AnXmlChildIndex sites(siteList, nullptr);
  AnXmlNode site;
  while (sites.moveNext(site)) {
    const bool isKnown = !namesMatter || isKnownInList(site.getName().c_str());
    if (const char* const limit = limits.add(isKnown)) {
      logCause(L"Cannot write the edited list " + path + L": list over the limit: " +
               AString(limit).str());
      return false;
    }
  }
  return true;
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
