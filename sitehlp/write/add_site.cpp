#include "sitehlp/sites_helper.h"
#include "sitehlp/write/element_writer.h"
#include "sitehlp/write/site_writers.h"

// The operations that write one record into a tree.
namespace sitehlp {
namespace {

using WriteSite = void (*)(CSitesHelper& helper, tag_Site& site, ElementWriter& writer);

int addSite(CSitesHelper& helper, WriteSite write, tag_Site* site, int position,
            AdvXMLParser::Element* anchor) {
  if (!anchor) return 0;
  TreeElementWriter writer(*anchor, position);
  write(helper, *site, writer);
  *anchor = writer.added();
  return 0;
}

}  // namespace

int CSitesHelper::AddHTTPSite(tag_Site* site, int position) {
  return addSite(*this, writeHttpSite, site, position, m_pSiteListElement);
}

int CSitesHelper::AddFTPSite(tag_Site* site, int position) {
  return addSite(*this, writeFtpSite, site, position, m_pSiteListElement);
}

int CSitesHelper::AddUNCSite(tag_Site* site, int position) {
  return addSite(*this, writeUncSite, site, position, m_pSiteListElement);
}

int CSitesHelper::AddLocalSite(tag_Site* site, int position) {
  return addSite(*this, writeLocalSite, site, position, m_pSiteListElement);
}

int CSitesHelper::AddProxySite(tag_Site* site, int position) {
  return addSite(*this, writeProxySite, site, position, m_pSiteListElement);
}

}  // namespace sitehlp
