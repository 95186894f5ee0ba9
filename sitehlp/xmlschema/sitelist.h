#ifndef SITEHLP_XMLSCHEMA_SITELIST_H
#define SITEHLP_XMLSCHEMA_SITELIST_H

#include "sitehlp/export.h"

// The names of the elements and attributes of a site list document, and some of their values. They
// are constant for the life of the process. docs/site-list-format.md shows where each is used.
// Reserved names are neither read nor written.
namespace korvel_com {
namespace orb {
namespace xmlschema {
namespace sitelist {

// Element "LocalSite".
extern SITEHLP_API const wchar_t* const WX_XML_SITELIST_LOCAL_SITE;
// Element "UseLoggedonUserAccount".
extern SITEHLP_API const wchar_t* const WX_XML_UNCSITE_USE_LOGON_USER_ACCOUNT;
// Element "ShareName".
extern SITEHLP_API const wchar_t* const WX_XML_UNCSITE_SHARENAME;
// Element "UNCSite".
extern SITEHLP_API const wchar_t* const WX_XML_SITELIST_UNC_SITE;
// Element "KeystoneSite".
extern SITEHLP_API const wchar_t* const WX_XML_SITELIST_KEYSTONE_SITE;
// Reserved "Pyx_MasterSite".
extern SITEHLP_API const wchar_t* const WX_XML_SITELIST_PYX_MASTER_SITE;
// Attribute "ServerIP".
extern SITEHLP_API const wchar_t* const WX_XML_SITELIST_VESTA_IPADDR;
// Element "VestaSite".
extern SITEHLP_API const wchar_t* const WX_XML_SITELIST_VESTA_SITE;
// Value "FtpHttp".
extern SITEHLP_API const wchar_t* const WX_XML_SITELIST_FTPHTTP_SITE;
// Reserved "ReplicationUNC".
extern SITEHLP_API const wchar_t* const WX_XML_HTTPSITE_REPLICATION_UNC;
// Element "UseAuth".
extern SITEHLP_API const wchar_t* const WX_XML_HTTPSITE_USE_AUTH;
// Element "HttpSite".
extern SITEHLP_API const wchar_t* const WX_XML_SITELIST_HTTP_SITE;
// Reserved "Passive".
extern SITEHLP_API const wchar_t* const WX_XML_FTPSITE_PASSIVE;
// Element "FTPSite".
extern SITEHLP_API const wchar_t* const WX_XML_SITELIST_FTP_SITE;
// Reserved "ReplicationPassword".
extern SITEHLP_API const wchar_t* const WX_XML_SITE_REPLICATION_PASSWORD;
// Reserved "ReplicationDomainName".
extern SITEHLP_API const wchar_t* const WX_XML_SITE_REPLICATION_DOMAIN_NAME;
// Reserved "ReplicationUserName".
extern SITEHLP_API const wchar_t* const WX_XML_SITE_REPLICATION_USER_NAME;
// Value "Remediation".
extern SITEHLP_API const wchar_t* const STR_SITE_NAME_REMEDIATION;
// Value "remediation".
extern SITEHLP_API const wchar_t* const STR_SITE_TYPE_REMEDIATION;
// Value "mirror".
extern SITEHLP_API const wchar_t* const STR_SITE_TYPE_MIRROR;
// Value "repository".
extern SITEHLP_API const wchar_t* const STR_SITE_TYPE_REPOSITORY;
// Value "master".
extern SITEHLP_API const wchar_t* const STR_SITE_TYPE_MASTER;
// Attribute "SecurePort".
extern SITEHLP_API const wchar_t* const WX_XML_SSL_PORT;
// Reserved "Port".
extern SITEHLP_API const wchar_t* const WX_XML_SERVER_PORT;
// Element "Password".
extern SITEHLP_API const wchar_t* const WX_XML_SITE_PASSWORD;
// Element "UserName".
extern SITEHLP_API const wchar_t* const WX_XML_SITE_USER_NAME;
// Element "DomainName".
extern SITEHLP_API const wchar_t* const WX_XML_SITE_DOMAIN_NAME;
// Element "RelativePath".
extern SITEHLP_API const wchar_t* const WX_XML_SITE_RELATIVEPATH;
// Attribute "Enabled".
extern SITEHLP_API const wchar_t* const WX_XML_SITE_ENABLED;
// Attribute "Order".
extern SITEHLP_API const wchar_t* const WX_XML_SITE_ORDER;
// Attribute "Type".
extern SITEHLP_API const wchar_t* const WX_XML_SITE_TYPE;
// Attribute "ServerIP".
extern SITEHLP_API const wchar_t* const WX_XML_SITE_SERVER_IP;
// Attribute "ServerName".
extern SITEHLP_API const wchar_t* const WX_XML_SERVER_NETBIOS_NAME;
// Attribute "ServerDNS".
extern SITEHLP_API const wchar_t* const WX_XML_SITE_SERVER_FQDN;
// Attribute "Version".
extern SITEHLP_API const wchar_t* const WX_XML_SITE_SERVER_VERSION;
// Attribute "Server".
extern SITEHLP_API const wchar_t* const WX_XML_SITE_SERVER;
// Attribute "Local".
extern SITEHLP_API const wchar_t* const WX_XML_SITE_LOCAL;
// Reserved "ID".
extern SITEHLP_API const wchar_t* const WX_XML_SITE_ID;
// Attribute "Name".
extern SITEHLP_API const wchar_t* const WX_XML_SITE_NAME;
// Element "AlternateFtpProxyPassword".
extern SITEHLP_API const wchar_t* const WX_XML_FTP_PROXY_ALT_PROXYPASSWORD;
// Element "AlternateFtpProxyUser".
extern SITEHLP_API const wchar_t* const WX_XML_FTP_PROXY_ALT_PROXYUSERNAME;
// Element "AlternateHttpProxyPassword".
extern SITEHLP_API const wchar_t* const WX_XML_HTTP_PROXY_ALT_PROXYPASSWORD;
// Element "AlternateHttpProxyUser".
extern SITEHLP_API const wchar_t* const WX_XML_HTTP_PROXY_ALT_PROXYUSERNAME;
// Element "AlternateHttpUseAuth".
extern SITEHLP_API const wchar_t* const WX_XML_PROXY_ALT_HTTP_USEAUTH;
// Element "AlternateFtpUseAuth".
extern SITEHLP_API const wchar_t* const WX_XML_PROXY_ALT_FTP_USEAUTH;
// Element "FtpProxyPassword".
extern SITEHLP_API const wchar_t* const WX_XML_FTP_PROXY_PROXYPASSWORD;
// Element "FtpProxyUser".
extern SITEHLP_API const wchar_t* const WX_XML_FTP_PROXY_PROXYUSERNAME;
// Element "HttpProxyPassword".
extern SITEHLP_API const wchar_t* const WX_XML_HTTP_PROXY_PROXYPASSWORD;
// Element "HttpProxyUser".
extern SITEHLP_API const wchar_t* const WX_XML_HTTP_PROXY_PROXYUSERNAME;
// Element "HttpUseAuth".
extern SITEHLP_API const wchar_t* const WX_XML_PROXY_HTTP_USEAUTH;
// Element "FtpUseAuth".
extern SITEHLP_API const wchar_t* const WX_XML_PROXY_FTP_USEAUTH;
// Element "ExclusionHost".
extern SITEHLP_API const wchar_t* const WX_XML_PROXY_EXCLUSIONHOST;
// Element "ExclusionList".
extern SITEHLP_API const wchar_t* const WX_XML_PROXY_EXCLUSIONLIST;
// Reserved "UseIPMask".
extern SITEHLP_API const wchar_t* const WX_XML_PROXY_USE_IP_MASK;
// Reserved "IPAddrEnd".
extern SITEHLP_API const wchar_t* const WX_XML_PROXY_IPEND;
// Reserved "IPAddrStart".
extern SITEHLP_API const wchar_t* const WX_XML_PROXY_IPSTART;
// Reserved "LocalAddrRange".
extern SITEHLP_API const wchar_t* const WX_XML_PROXY_RANGE;
// Reserved "LocalAddrRangeList".
extern SITEHLP_API const wchar_t* const WX_XML_PROXY_ADDRLIST;
// Element "BypassLocalAddress".
extern SITEHLP_API const wchar_t* const WX_XML_PROXY_BYPASSLOCALADDR;
// Element "AllowUserToConfigureProxy".
extern SITEHLP_API const wchar_t* const WX_XML_PROXY_ALLOWUSERTOCONFIGPROXY;
// Attribute "FtpProxyPort".
extern SITEHLP_API const wchar_t* const WX_XML_PROXY_FTP_PROXY_PORT;
// Attribute "FtpProxyServer".
extern SITEHLP_API const wchar_t* const WX_XML_PROXY_FTP_PROXY_SERVER;
// Attribute "HttpProxyPort".
extern SITEHLP_API const wchar_t* const WX_XML_PROXY_HTTP_PROXY_PORT;
// Attribute "HttpProxyServer".
extern SITEHLP_API const wchar_t* const WX_XML_PROXY_HTTP_PROXY_SERVER;
// Attribute "UseIEConfig".
extern SITEHLP_API const wchar_t* const WX_XML_PROXY_USE_IE_CONFIG;
// Element "ProxyConfig".
extern SITEHLP_API const wchar_t* const WX_XML_PROXY_CONFIG;
// Element "ProxyConfigList".
extern SITEHLP_API const wchar_t* const WX_XML_PROXY_CONFIG_LIST;
// Value "Client".
extern SITEHLP_API const wchar_t* const WX_XML_SITELIST_TYPE_CLIENT;
// Value "Server".
extern SITEHLP_API const wchar_t* const WX_XML_SITELIST_TYPE_SERVER;
// Element "CaCertificate".
extern SITEHLP_API const wchar_t* const WX_XML_CACERTIFICATE;
// Element "CaBundle".
extern SITEHLP_API const wchar_t* const WX_XML_CABUNDLE;
// Element "Policies".
extern SITEHLP_API const wchar_t* const WX_XML_POLICIES;
// Attribute "Default".
extern SITEHLP_API const wchar_t* const WX_XML_SITELIST_DEFAULT;
// Element "SiteList".
extern SITEHLP_API const wchar_t* const WX_XML_SITELIST;
// Attribute "FipsMode".
extern SITEHLP_API const wchar_t* const WX_XML_SITELISTS_FIPSMODE;
// Attribute "Type".
extern SITEHLP_API const wchar_t* const WX_XML_SITELISTS_TYPE;
// Attribute "LocalVersion".
extern SITEHLP_API const wchar_t* const WX_XML_SITELISTS_LOCAL_VERSION;
// Attribute "GlobalVersion".
extern SITEHLP_API const wchar_t* const WX_XML_SITELISTS_GLOBAL_VERSION;
// Element "ns:SiteLists".
extern SITEHLP_API const wchar_t* const WX_XML_SITELISTS;
// Value "wxSiteList".
extern SITEHLP_API const wchar_t* const WX_XML_SITELISTS_NAMESPACE;
// Attribute "xmlns:ns".
extern SITEHLP_API const wchar_t* const WX_XML_NAMESPACE;

}  // namespace sitelist
}  // namespace xmlschema
}  // namespace orb
}  // namespace korvel_com

#endif
