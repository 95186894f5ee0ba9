#include "sitehlp/xmlschema/sitelist.h"

namespace korvel_com {
namespace orb {
namespace xmlschema {
namespace sitelist {

const wchar_t* const WX_XML_SITELIST_LOCAL_SITE = L"LocalSite";
const wchar_t* const WX_XML_UNCSITE_USE_LOGON_USER_ACCOUNT = L"UseLoggedonUserAccount";
const wchar_t* const WX_XML_UNCSITE_SHARENAME = L"ShareName";
const wchar_t* const WX_XML_SITELIST_UNC_SITE = L"UNCSite";
const wchar_t* const WX_XML_SITELIST_KEYSTONE_SITE = L"KeystoneSite";
const wchar_t* const WX_XML_SITELIST_PYX_MASTER_SITE = L"Pyx_MasterSite";
const wchar_t* const WX_XML_SITELIST_VESTA_IPADDR = L"ServerIP";
const wchar_t* const WX_XML_SITELIST_VESTA_SITE = L"VestaSite";
const wchar_t* const WX_XML_SITELIST_FTPHTTP_SITE = L"FtpHttp";
const wchar_t* const WX_XML_HTTPSITE_REPLICATION_UNC = L"ReplicationUNC";
const wchar_t* const WX_XML_HTTPSITE_USE_AUTH = L"UseAuth";
const wchar_t* const WX_XML_SITELIST_HTTP_SITE = L"HttpSite";
const wchar_t* const WX_XML_FTPSITE_PASSIVE = L"Passive";
const wchar_t* const WX_XML_SITELIST_FTP_SITE = L"FTPSite";
const wchar_t* const WX_XML_SITE_REPLICATION_PASSWORD = L"ReplicationPassword";
const wchar_t* const WX_XML_SITE_REPLICATION_DOMAIN_NAME = L"ReplicationDomainName";
const wchar_t* const WX_XML_SITE_REPLICATION_USER_NAME = L"ReplicationUserName";
const wchar_t* const STR_SITE_NAME_REMEDIATION = L"Remediation";
const wchar_t* const STR_SITE_TYPE_REMEDIATION = L"remediation";
const wchar_t* const STR_SITE_TYPE_MIRROR = L"mirror";
const wchar_t* const STR_SITE_TYPE_REPOSITORY = L"repository";
const wchar_t* const STR_SITE_TYPE_MASTER = L"master";
const wchar_t* const WX_XML_SSL_PORT = L"SecurePort";
const wchar_t* const WX_XML_SERVER_PORT = L"Port";
const wchar_t* const WX_XML_SITE_PASSWORD = L"Password";
const wchar_t* const WX_XML_SITE_USER_NAME = L"UserName";
const wchar_t* const WX_XML_SITE_DOMAIN_NAME = L"DomainName";
const wchar_t* const WX_XML_SITE_RELATIVEPATH = L"RelativePath";
const wchar_t* const WX_XML_SITE_ENABLED = L"Enabled";
const wchar_t* const WX_XML_SITE_ORDER = L"Order";
const wchar_t* const WX_XML_SITE_TYPE = L"Type";
const wchar_t* const WX_XML_SITE_SERVER_IP = L"ServerIP";
const wchar_t* const WX_XML_SERVER_NETBIOS_NAME = L"ServerName";
const wchar_t* const WX_XML_SITE_SERVER_FQDN = L"ServerDNS";
const wchar_t* const WX_XML_SITE_SERVER_VERSION = L"Version";
const wchar_t* const WX_XML_SITE_SERVER = L"Server";
const wchar_t* const WX_XML_SITE_LOCAL = L"Local";
const wchar_t* const WX_XML_SITE_ID = L"ID";
const wchar_t* const WX_XML_SITE_NAME = L"Name";
const wchar_t* const WX_XML_FTP_PROXY_ALT_PROXYPASSWORD = L"AlternateFtpProxyPassword";
const wchar_t* const WX_XML_FTP_PROXY_ALT_PROXYUSERNAME = L"AlternateFtpProxyUser";
const wchar_t* const WX_XML_HTTP_PROXY_ALT_PROXYPASSWORD = L"AlternateHttpProxyPassword";
const wchar_t* const WX_XML_HTTP_PROXY_ALT_PROXYUSERNAME = L"AlternateHttpProxyUser";
const wchar_t* const WX_XML_PROXY_ALT_HTTP_USEAUTH = L"AlternateHttpUseAuth";
const wchar_t* const WX_XML_PROXY_ALT_FTP_USEAUTH = L"AlternateFtpUseAuth";
const wchar_t* const WX_XML_FTP_PROXY_PROXYPASSWORD = L"FtpProxyPassword";
const wchar_t* const WX_XML_FTP_PROXY_PROXYUSERNAME = L"FtpProxyUser";
const wchar_t* const WX_XML_HTTP_PROXY_PROXYPASSWORD = L"HttpProxyPassword";
const wchar_t* const WX_XML_HTTP_PROXY_PROXYUSERNAME = L"HttpProxyUser";
const wchar_t* const WX_XML_PROXY_HTTP_USEAUTH = L"HttpUseAuth";
const wchar_t* const WX_XML_PROXY_FTP_USEAUTH = L"FtpUseAuth";
const wchar_t* const WX_XML_PROXY_EXCLUSIONHOST = L"ExclusionHost";
const wchar_t* const WX_XML_PROXY_EXCLUSIONLIST = L"ExclusionList";
const wchar_t* const WX_XML_PROXY_USE_IP_MASK = L"UseIPMask";
const wchar_t* const WX_XML_PROXY_IPEND = L"IPAddrEnd";
const wchar_t* const WX_XML_PROXY_IPSTART = L"IPAddrStart";
const wchar_t* const WX_XML_PROXY_RANGE = L"LocalAddrRange";
const wchar_t* const WX_XML_PROXY_ADDRLIST = L"LocalAddrRangeList";
const wchar_t* const WX_XML_PROXY_BYPASSLOCALADDR = L"BypassLocalAddress";
const wchar_t* const WX_XML_PROXY_ALLOWUSERTOCONFIGPROXY = L"AllowUserToConfigureProxy";
const wchar_t* const WX_XML_PROXY_FTP_PROXY_PORT = L"FtpProxyPort";
const wchar_t* const WX_XML_PROXY_FTP_PROXY_SERVER = L"FtpProxyServer";
const wchar_t* const WX_XML_PROXY_HTTP_PROXY_PORT = L"HttpProxyPort";
const wchar_t* const WX_XML_PROXY_HTTP_PROXY_SERVER = L"HttpProxyServer";
const wchar_t* const WX_XML_PROXY_USE_IE_CONFIG = L"UseIEConfig";
const wchar_t* const WX_XML_PROXY_CONFIG = L"ProxyConfig";
const wchar_t* const WX_XML_PROXY_CONFIG_LIST = L"ProxyConfigList";
const wchar_t* const WX_XML_SITELIST_TYPE_CLIENT = L"Client";
const wchar_t* const WX_XML_SITELIST_TYPE_SERVER = L"Server";
const wchar_t* const WX_XML_CACERTIFICATE = L"CaCertificate";
const wchar_t* const WX_XML_CABUNDLE = L"CaBundle";
const wchar_t* const WX_XML_POLICIES = L"Policies";
const wchar_t* const WX_XML_SITELIST_DEFAULT = L"Default";
const wchar_t* const WX_XML_SITELIST = L"SiteList";
const wchar_t* const WX_XML_SITELISTS_FIPSMODE = L"FipsMode";
const wchar_t* const WX_XML_SITELISTS_TYPE = L"Type";
const wchar_t* const WX_XML_SITELISTS_LOCAL_VERSION = L"LocalVersion";
const wchar_t* const WX_XML_SITELISTS_GLOBAL_VERSION = L"GlobalVersion";
const wchar_t* const WX_XML_SITELISTS = L"ns:SiteLists";
const wchar_t* const WX_XML_SITELISTS_NAMESPACE = L"wxSiteList";
const wchar_t* const WX_XML_NAMESPACE = L"xmlns:ns";

}  // namespace sitelist
}  // namespace xmlschema
}  // namespace orb
}  // namespace korvel_com
