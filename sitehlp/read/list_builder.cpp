#include "sitehlp/read/list_builder.h"

#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <string>

#include "platform/common/text.h"
#include "sitehlp/common/document_values.h"
#include "sitehlp/read/decoder.h"
#include "sitehlp/read/field_reader.h"
#include "sitehlp/records/record.h"
#include "sitehlp/records/record_limits.h"
#include "sitehlp/sites_helper.h"
#include "sitehlp/xmlschema/sitelist.h"

namespace sitehlp {

using AdvXMLParser::Element;
using namespace korvel_com::orb::xmlschema::sitelist;  // NOLINT(google-build-using-namespace)

namespace {

struct ReleaseRecord {
  void operator()(tag_Site* record) const { releaseRecord(record); }
};
using RecordOwner = std::unique_ptr<tag_Site, ReleaseRecord>;

// An element of unknown kind becomes an empty record of the first kind.
SiteKind kindOf(SiteElement element) {
  switch (element) {
    case SiteElement::Http:
    case SiteElement::Vesta:
    case SiteElement::Keystone:
    case SiteElement::None:
      return SITE_KIND_HTTP;
    case SiteElement::Ftp:
      return SITE_KIND_FTP;
    case SiteElement::Unc:
      return SITE_KIND_UNC;
    case SiteElement::Local:
      return SITE_KIND_LOCAL;
    case SiteElement::Proxy:
      break;
  }
  return SITE_KIND_PROXY;
}

// Returns the kind of an element directly in a list. A ProxyConfigList there has the kind Proxy. A
// ProxyConfig is unknown there, because it must be in a ProxyConfigList.
SiteElement classifySite(const Element& element) {
  if (element.HasName(WX_XML_PROXY_CONFIG_LIST)) return SiteElement::Proxy;
  const SiteElement kind = classify(element);
  return kind == SiteElement::Proxy ? SiteElement::None : kind;
}

void readCommonAttributes(const SiteAttributes& attributes, tag_Site& site) {
  readAttributes<fields::c_head>(attributes, site);
  site.bMirror = wcsicmp(site.szType, STR_SITE_TYPE_MIRROR) == 0 ? 1 : 0;
  if (attributes.get<&WX_XML_SITE_ORDER>().IsNull() && isFallback(site)) {
    site.iOrder = c_orderOfFallback;
  }
}

// Decodes each child over the data of the one before it, so the last one is used. Any site element
// may be in a ProxyConfigList. A smaller record does not overwrite the rest of a larger one.
void readProxyConfigList(const Element& element, const SiteAttributes& attributes,
                         bool useDecryptData, tag_Site& site, int& result) {
  bool hasChild = false;
  for (const Element child : element.Elements()) {
    const SiteElement kind = classify(child);
    result = kind == SiteElement::None ? c_errorGeneral : c_success;
    if (hasChild) std::memset(&site.proxy, 0, recordSize(kind));
    hasChild = true;
    decodeSite(kind, child, SiteAttributes(child), useDecryptData, &site.proxy);
  }
  if (!hasChild) {
    site.proxy.bUseIEConfig =
        readNumber(attributes.get<&WX_XML_PROXY_USE_IE_CONFIG>()) != 0 ? 1 : 0;
  }
}

void readSite(const Element& element, SiteElement kind, bool useDecryptData, tag_Site& site,
              int& result) {
  const SiteAttributes attributes(element);
  readCommonAttributes(attributes, site);
  site.eSiteKind = kindOf(kind);
  if (kind == SiteElement::Proxy) {
    readProxyConfigList(element, attributes, useDecryptData, site, result);
    return;
  }
  site.bVestaSite = kind == SiteElement::Vesta || kind == SiteElement::Keystone ? 1 : 0;
  result = kind == SiteElement::None ? c_errorGeneral : c_success;
  decodeSite(kind, element, attributes, useDecryptData, &site.http);
}

}  // namespace

void readSiteListElement(const Element& siteList, bool useDecryptData, const TakeSite& take,
                         int& result) {
  RecordLimits limits;
  for (const Element element : siteList.Elements()) {
    const SiteElement kind = classifySite(element);
    if (const char* const limit = limits.add(kind != SiteElement::None)) {
      throw AdvXMLParser::ReadWriteException(AdvXMLParser::ReadWriteException::LIMIT_EXCEEDED, 0,
                                             std::string("list over the limit: ") + limit);
    }
    RecordOwner site(static_cast<tag_Site*>(std::calloc(1, sizeof(tag_Site))));
    if (!site) throw std::bad_alloc();
    readSite(element, kind, useDecryptData, *site, result);
    take(site.release());
  }
}

}  // namespace sitehlp
