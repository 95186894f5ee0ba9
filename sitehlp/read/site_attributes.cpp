#include "sitehlp/read/site_attributes.h"

#include <iterator>

#include "sitehlp/xmlschema/sitelist.h"

namespace sitehlp {

using namespace korvel_com::orb::xmlschema::sitelist;  // NOLINT(google-build-using-namespace)

namespace {

const wchar_t* const c_attributeNames[] = {
    WX_XML_SITE_TYPE,
    WX_XML_SITE_NAME,
    WX_XML_SITE_ORDER,
    WX_XML_SITE_ENABLED,
    WX_XML_SITE_LOCAL,
    WX_XML_SITE_SERVER,
    WX_XML_SSL_PORT,
    WX_XML_SERVER_NETBIOS_NAME,
    WX_XML_SITE_SERVER_IP,
    WX_XML_SITE_SERVER_FQDN,
    WX_XML_SITE_SERVER_VERSION,
    WX_XML_PROXY_HTTP_PROXY_SERVER,
    WX_XML_PROXY_HTTP_PROXY_PORT,
    WX_XML_PROXY_FTP_PROXY_SERVER,
    WX_XML_PROXY_FTP_PROXY_PORT,
    WX_XML_PROXY_USE_IE_CONFIG,
};

}  // namespace

SiteAttributes::SiteAttributes(const AdvXMLParser::Element& element) {
  constexpr AdvXMLParser::Attribute SiteAttributes::*members[] = {
      &SiteAttributes::type,          &SiteAttributes::name,
      &SiteAttributes::order,         &SiteAttributes::enabled,
      &SiteAttributes::local,         &SiteAttributes::server,
      &SiteAttributes::securePort,    &SiteAttributes::serverName,
      &SiteAttributes::serverIp,      &SiteAttributes::serverDns,
      &SiteAttributes::version,       &SiteAttributes::httpProxyServer,
      &SiteAttributes::httpProxyPort, &SiteAttributes::ftpProxyServer,
      &SiteAttributes::ftpProxyPort,  &SiteAttributes::useIeConfig,
  };
  constexpr std::size_t count = sizeof members / sizeof members[0];
  static_assert(std::size(c_attributeNames) == count);
  AdvXMLParser::Attribute found[count];
  element.FindAttributes(c_attributeNames, count, found);
  for (std::size_t i = 0; i < count; ++i) this->*members[i] = found[i];
}

}  // namespace sitehlp
