#ifndef SITEHLP_XMLSCHEMA_SITELIST_H
#define SITEHLP_XMLSCHEMA_SITELIST_H

#include "sitehlp/export.h"

// The names of the elements and attributes of a site list document, and some of their values. They
// are constant for the life of the process; docs/site-list-format.md says where each stands.
namespace korvel_com {
namespace orb {
namespace xmlschema {
namespace sitelist {

extern SITEHLP_API const wchar_t* const WX_XML_SITELIST_LOCAL_SITE;
extern SITEHLP_API const wchar_t* const WX_XML_UNCSITE_USE_LOGON_USER_ACCOUNT;
extern SITEHLP_API const wchar_t* const WX_XML_UNCSITE_SHARENAME;
extern SITEHLP_API const wchar_t* const WX_XML_SITELIST_UNC_SITE;
extern SITEHLP_API const wchar_t* const WX_XML_SITELIST_KEYSTONE_SITE;
extern SITEHLP_API const wchar_t* const WX_XML_SITELIST_PYX_MASTER_SITE;
extern SITEHLP_API const wchar_t* const WX_XML_SITELIST_VESTA_IPADDR;
extern SITEHLP_API const wchar_t* const WX_XML_SITELIST_VESTA_SITE;
extern SITEHLP_API const wchar_t* const WX_XML_SITELIST_FTPHTTP_SITE;
extern SITEHLP_API const wchar_t* const WX_XML_HTTPSITE_REPLICATION_UNC;
extern SITEHLP_API const wchar_t* const WX_XML_HTTPSITE_USE_AUTH;
extern SITEHLP_API const wchar_t* const WX_XML_SITELIST_HTTP_SITE;
extern SITEHLP_API const wchar_t* const WX_XML_FTPSITE_PASSIVE;
extern SITEHLP_API const wchar_t* const WX_XML_SITELIST_FTP_SITE;
extern SITEHLP_API const wchar_t* const WX_XML_SITE_REPLICATION_PASSWORD;
extern SITEHLP_API const wchar_t* const WX_XML_SITE_REPLICATION_DOMAIN_NAME;
extern SITEHLP_API const wchar_t* const WX_XML_SITE_REPLICATION_USER_NAME;
extern SITEHLP_API const wchar_t* const STR_SITE_NAME_REMEDIATION;
extern SITEHLP_API const wchar_t* const STR_SITE_TYPE_REMEDIATION;
extern SITEHLP_API const wchar_t* const STR_SITE_TYPE_MIRROR;
extern SITEHLP_API const wchar_t* const STR_SITE_TYPE_REPOSITORY;
extern SITEHLP_API const wchar_t* const STR_SITE_TYPE_MASTER;
extern SITEHLP_API const wchar_t* const WX_XML_SSL_PORT;
extern SITEHLP_API const wchar_t* const WX_XML_SERVER_PORT;
extern SITEHLP_API const wchar_t* const WX_XML_SITE_PASSWORD;
extern SITEHLP_API const wchar_t* const WX_XML_SITE_USER_NAME;
extern SITEHLP_API const wchar_t* const WX_XML_SITE_DOMAIN_NAME;
extern SITEHLP_API const wchar_t* const WX_XML_SITE_RELATIVEPATH;
extern SITEHLP_API const wchar_t* const WX_XML_SITE_ENABLED;
extern SITEHLP_API const wchar_t* const WX_XML_SITE_ORDER;
extern SITEHLP_API const wchar_t* const WX_XML_SITE_TYPE;
extern SITEHLP_API const wchar_t* const WX_XML_SITE_SERVER_IP;
extern SITEHLP_API const wchar_t* const WX_XML_SERVER_NETBIOS_NAME;
extern SITEHLP_API const wchar_t* const WX_XML_SITE_SERVER_FQDN;
extern SITEHLP_API const wchar_t* const WX_XML_SITE_SERVER_VERSION;
extern SITEHLP_API const wchar_t* const WX_XML_SITE_SERVER;
extern SITEHLP_API const wchar_t* const WX_XML_SITE_LOCAL;
extern SITEHLP_API const wchar_t* const WX_XML_SITE_ID;
extern SITEHLP_API const wchar_t* const WX_XML_SITE_NAME;
extern SITEHLP_API const wchar_t* const WX_XML_FTP_PROXY_ALT_PROXYPASSWORD;
extern SITEHLP_API const wchar_t* const WX_XML_FTP_PROXY_ALT_PROXYUSERNAME;
extern SITEHLP_API const wchar_t* const WX_XML_HTTP_PROXY_ALT_PROXYPASSWORD;
extern SITEHLP_API const wchar_t* const WX_XML_HTTP_PROXY_ALT_PROXYUSERNAME;
extern SITEHLP_API const wchar_t* const WX_XML_PROXY_ALT_HTTP_USEAUTH;
extern SITEHLP_API const wchar_t* const WX_XML_PROXY_ALT_FTP_USEAUTH;
extern SITEHLP_API const wchar_t* const WX_XML_FTP_PROXY_PROXYPASSWORD;
extern SITEHLP_API const wchar_t* const WX_XML_FTP_PROXY_PROXYUSERNAME;
extern SITEHLP_API const wchar_t* const WX_XML_HTTP_PROXY_PROXYPASSWORD;
extern SITEHLP_API const wchar_t* const WX_XML_HTTP_PROXY_PROXYUSERNAME;
extern SITEHLP_API const wchar_t* const WX_XML_PROXY_HTTP_USEAUTH;
extern SITEHLP_API const wchar_t* const WX_XML_PROXY_FTP_USEAUTH;
extern SITEHLP_API const wchar_t* const WX_XML_PROXY_EXCLUSIONHOST;
extern SITEHLP_API const wchar_t* const WX_XML_PROXY_EXCLUSIONLIST;
extern SITEHLP_API const wchar_t* const WX_XML_PROXY_USE_IP_MASK;
extern SITEHLP_API const wchar_t* const WX_XML_PROXY_IPEND;
extern SITEHLP_API const wchar_t* const WX_XML_PROXY_IPSTART;
extern SITEHLP_API const wchar_t* const WX_XML_PROXY_RANGE;
extern SITEHLP_API const wchar_t* const WX_XML_PROXY_ADDRLIST;
extern SITEHLP_API const wchar_t* const WX_XML_PROXY_BYPASSLOCALADDR;
extern SITEHLP_API const wchar_t* const WX_XML_PROXY_ALLOWUSERTOCONFIGPROXY;
extern SITEHLP_API const wchar_t* const WX_XML_PROXY_FTP_PROXY_PORT;
extern SITEHLP_API const wchar_t* const WX_XML_PROXY_FTP_PROXY_SERVER;
extern SITEHLP_API const wchar_t* const WX_XML_PROXY_HTTP_PROXY_PORT;
extern SITEHLP_API const wchar_t* const WX_XML_PROXY_HTTP_PROXY_SERVER;
extern SITEHLP_API const wchar_t* const WX_XML_PROXY_USE_IE_CONFIG;
extern SITEHLP_API const wchar_t* const WX_XML_PROXY_CONFIG;
extern SITEHLP_API const wchar_t* const WX_XML_PROXY_CONFIG_LIST;
extern SITEHLP_API const wchar_t* const WX_XML_SITELIST_TYPE_CLIENT;
extern SITEHLP_API const wchar_t* const WX_XML_SITELIST_TYPE_SERVER;
extern SITEHLP_API const wchar_t* const WX_XML_CACERTIFICATE;
extern SITEHLP_API const wchar_t* const WX_XML_CABUNDLE;
extern SITEHLP_API const wchar_t* const WX_XML_POLICIES;
extern SITEHLP_API const wchar_t* const WX_XML_SITELIST_DEFAULT;
extern SITEHLP_API const wchar_t* const WX_XML_SITELIST;
extern SITEHLP_API const wchar_t* const WX_XML_SITELISTS_FIPSMODE;
extern SITEHLP_API const wchar_t* const WX_XML_SITELISTS_TYPE;
extern SITEHLP_API const wchar_t* const WX_XML_SITELISTS_LOCAL_VERSION;
extern SITEHLP_API const wchar_t* const WX_XML_SITELISTS_GLOBAL_VERSION;
extern SITEHLP_API const wchar_t* const WX_XML_SITELISTS;
extern SITEHLP_API const wchar_t* const WX_XML_SITELISTS_NAMESPACE;
extern SITEHLP_API const wchar_t* const WX_XML_NAMESPACE;

}  // namespace sitelist
}  // namespace xmlschema
}  // namespace orb
}  // namespace korvel_com

#endif
