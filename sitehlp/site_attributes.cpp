#include "sitehlp/site_attributes.h"

#include "sitehlp/xmlschema/sitelist.h"

namespace sitehlp {

using namespace korvel_com::orb::xmlschema::sitelist;  // NOLINT(google-build-using-namespace)

SiteAttributes::SiteAttributes(const AdvXMLParser::Element& element) {
  const struct {
    const wchar_t* name;
    AdvXMLParser::Attribute SiteAttributes::*member;
  } wanted[] = {
      // The common ones first: they stand on every site.
      {WX_XML_SITE_TYPE, &SiteAttributes::type},
      {WX_XML_SITE_NAME, &SiteAttributes::name},
      {WX_XML_SITE_ORDER, &SiteAttributes::order},
      {WX_XML_SITE_ENABLED, &SiteAttributes::enabled},
      {WX_XML_SITE_LOCAL, &SiteAttributes::local},
      {WX_XML_SITE_SERVER, &SiteAttributes::server},
      {WX_XML_SSL_PORT, &SiteAttributes::securePort},
      {WX_XML_SERVER_NETBIOS_NAME, &SiteAttributes::serverName},
      {WX_XML_SITE_SERVER_IP, &SiteAttributes::serverIp},
      {WX_XML_SITE_SERVER_FQDN, &SiteAttributes::serverDns},
      {WX_XML_SITE_SERVER_VERSION, &SiteAttributes::version},
      {WX_XML_PROXY_HTTP_PROXY_SERVER, &SiteAttributes::httpProxyServer},
      {WX_XML_PROXY_HTTP_PROXY_PORT, &SiteAttributes::httpProxyPort},
      {WX_XML_PROXY_FTP_PROXY_SERVER, &SiteAttributes::ftpProxyServer},
      {WX_XML_PROXY_FTP_PROXY_PORT, &SiteAttributes::ftpProxyPort},
      {WX_XML_PROXY_USE_IE_CONFIG, &SiteAttributes::useIeConfig},
  };
  for (const AdvXMLParser::Attribute attribute : element.Attributes()) {
    for (const auto& entry : wanted) {
      if (!attribute.HasName(entry.name)) continue;
      this->*entry.member = attribute;
      break;
    }
  }
}

}  // namespace sitehlp
