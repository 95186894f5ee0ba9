#include <cstddef>
#include <iterator>

#include "platform/common/afile.h"
#include "platform/common/log.h"
#include "sitehlp/common/caught.h"
#include "sitehlp/edit/edit_document.h"
#include "sitehlp/records/site_elements.h"
#include "sitehlp/sites_helper.h"
#include "sitehlp/xmlschema/sitelist.h"

namespace sitehlp {

using namespace korvel_com::orb::xmlschema::sitelist;  // NOLINT(google-build-using-namespace)

namespace {

constexpr const wchar_t* c_local = L"1";

// Returns whether a derived server list omits the local sites with this element.
constexpr bool isRepository(SiteElement element) {
  switch (element) {
    case SiteElement::Http:
    case SiteElement::Ftp:
    case SiteElement::Unc:
    case SiteElement::Local:
      return true;
    case SiteElement::Vesta:
    case SiteElement::Keystone:
    case SiteElement::Proxy:
    case SiteElement::None:
      break;
  }
  return false;
}

constexpr SiteElement c_repositories[] = {SiteElement::Ftp, SiteElement::Http, SiteElement::Unc,
                                          SiteElement::Local};  // in the order of their removal

constexpr std::size_t repositoryCount() {
  std::size_t count = 0;
  for (std::size_t i = 0; i < c_siteElementCount; ++i) {
    if (isRepository(static_cast<SiteElement>(i))) ++count;
  }
  return count;
}
static_assert(std::size(c_repositories) == repositoryCount());

void removeLocalSites(const AnXmlNode& siteList, const wchar_t* elementName) {
  AnXmlChildIndex sites(siteList, elementName);
  AnXmlNode site;
  AString local;
  while (sites.moveNext(site)) {
    if (site.tryGetValue(WX_XML_SITE_LOCAL, local) && local.str() == c_local) sites.remove();
  }
}

}  // namespace

bool CSitesHelper::createServerSiteListFromSiteList(const wchar_t* sourceDir,
                                                    const wchar_t* targetDir) {
  const AnInfoTrace trace(c_editComponent, L"Creating ServerSiteList.xml");
  const std::wstring sourcePath = joinPath(AString(sourceDir).str(), c_sitelistName);
  AnXml document;
  if (!openLocked(document, sourcePath)) return false;
  AnXmlNode siteList(&document);
  if (!siteList.tryGetChildMove(WX_XML_SITELIST, nullptr, nullptr, nullptr, nullptr)) {
    // The quote is not closed, because people search logs for this exact line.
    logError(c_editComponent, AString(L"Site list '")
                                  .append(sourcePath)
                                  .append(L" missing section ")
                                  .append(WX_XML_SITELIST));
    return false;
  }
  for (const SiteElement element : c_repositories) {
    removeLocalSites(siteList, c_siteElementNames[static_cast<std::size_t>(element)]);
  }
  const std::wstring targetPath =
      joinPath(AString(targetDir ? targetDir : sourceDir).str(), c_serverSitelistName);
  // Without this check, a link between the two names would make the source list lose its local
  // sites.
  if (AFiler::isSameFile(targetPath, sourcePath)) {
    logCause(L"Server site list not written: " + targetPath + L" and " + sourcePath +
             L" may be the same file; next: remove the symbolic link between them");
    return false;
  }
  return isWithinRecordLimits(siteList, targetPath) && writeLocked(document, targetPath);
}

}  // namespace sitehlp
