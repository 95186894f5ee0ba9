#ifndef SITEHLP_READ_SITE_ATTRIBUTES_H
#define SITEHLP_READ_SITE_ATTRIBUTES_H

#include "platform/xml/advxmlparser.h"

namespace sitehlp {

// The attributes of a site or proxy element that records are made of, found in one pass. An
// attribute that the element does not have is a null handle.
struct SiteAttributes {
  explicit SiteAttributes(const AdvXMLParser::Element& element);

  AdvXMLParser::Attribute type;
  AdvXMLParser::Attribute name;
  AdvXMLParser::Attribute order;
  AdvXMLParser::Attribute enabled;
  AdvXMLParser::Attribute local;
  AdvXMLParser::Attribute server;
  AdvXMLParser::Attribute serverName;
  AdvXMLParser::Attribute serverIp;
  AdvXMLParser::Attribute serverDns;
  AdvXMLParser::Attribute securePort;
  AdvXMLParser::Attribute version;
  AdvXMLParser::Attribute httpProxyServer;
  AdvXMLParser::Attribute httpProxyPort;
  AdvXMLParser::Attribute ftpProxyServer;
  AdvXMLParser::Attribute ftpProxyPort;
  AdvXMLParser::Attribute useIeConfig;
};

}  // namespace sitehlp

#endif
