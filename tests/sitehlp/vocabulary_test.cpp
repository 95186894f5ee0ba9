#include <gtest/gtest.h>

#include <cwchar>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <type_traits>

#include "sitehlp/sites_helper.h"
#include "sitehlp/xmlschema/sitelist.h"

// Callers build and inspect documents with these names, so each text is fixed.
namespace {

using namespace korvel_com::orb::xmlschema::sitelist;

struct Constant {
  const char* name;
  const wchar_t* value;
  const wchar_t* text;
};

// clang-format off
const Constant c_constants[] = {
    {"WX_XML_SITELIST_LOCAL_SITE", WX_XML_SITELIST_LOCAL_SITE, L"LocalSite"},
    {"WX_XML_UNCSITE_USE_LOGON_USER_ACCOUNT", WX_XML_UNCSITE_USE_LOGON_USER_ACCOUNT, L"UseLoggedonUserAccount"},
    {"WX_XML_UNCSITE_SHARENAME", WX_XML_UNCSITE_SHARENAME, L"ShareName"},
    {"WX_XML_SITELIST_UNC_SITE", WX_XML_SITELIST_UNC_SITE, L"UNCSite"},
    {"WX_XML_SITELIST_KEYSTONE_SITE", WX_XML_SITELIST_KEYSTONE_SITE, L"KeystoneSite"},
    {"WX_XML_SITELIST_PYX_MASTER_SITE", WX_XML_SITELIST_PYX_MASTER_SITE, L"Pyx_MasterSite"},
    {"WX_XML_SITELIST_VESTA_IPADDR", WX_XML_SITELIST_VESTA_IPADDR, L"ServerIP"},
    {"WX_XML_SITELIST_VESTA_SITE", WX_XML_SITELIST_VESTA_SITE, L"VestaSite"},
    {"WX_XML_SITELIST_FTPHTTP_SITE", WX_XML_SITELIST_FTPHTTP_SITE, L"FtpHttp"},
    {"WX_XML_HTTPSITE_REPLICATION_UNC", WX_XML_HTTPSITE_REPLICATION_UNC, L"ReplicationUNC"},
    {"WX_XML_HTTPSITE_USE_AUTH", WX_XML_HTTPSITE_USE_AUTH, L"UseAuth"},
    {"WX_XML_SITELIST_HTTP_SITE", WX_XML_SITELIST_HTTP_SITE, L"HttpSite"},
    {"WX_XML_FTPSITE_PASSIVE", WX_XML_FTPSITE_PASSIVE, L"Passive"},
    {"WX_XML_SITELIST_FTP_SITE", WX_XML_SITELIST_FTP_SITE, L"FTPSite"},
    {"WX_XML_SITE_REPLICATION_PASSWORD", WX_XML_SITE_REPLICATION_PASSWORD, L"ReplicationPassword"},
    {"WX_XML_SITE_REPLICATION_DOMAIN_NAME", WX_XML_SITE_REPLICATION_DOMAIN_NAME, L"ReplicationDomainName"},
    {"WX_XML_SITE_REPLICATION_USER_NAME", WX_XML_SITE_REPLICATION_USER_NAME, L"ReplicationUserName"},
    {"STR_SITE_NAME_REMEDIATION", STR_SITE_NAME_REMEDIATION, L"Remediation"},
    {"STR_SITE_TYPE_REMEDIATION", STR_SITE_TYPE_REMEDIATION, L"remediation"},
    {"STR_SITE_TYPE_MIRROR", STR_SITE_TYPE_MIRROR, L"mirror"},
    {"STR_SITE_TYPE_REPOSITORY", STR_SITE_TYPE_REPOSITORY, L"repository"},
    {"STR_SITE_TYPE_MASTER", STR_SITE_TYPE_MASTER, L"master"},
    {"WX_XML_SSL_PORT", WX_XML_SSL_PORT, L"SecurePort"},
    {"WX_XML_SERVER_PORT", WX_XML_SERVER_PORT, L"Port"},
    {"WX_XML_SITE_PASSWORD", WX_XML_SITE_PASSWORD, L"Password"},
    {"WX_XML_SITE_USER_NAME", WX_XML_SITE_USER_NAME, L"UserName"},
    {"WX_XML_SITE_DOMAIN_NAME", WX_XML_SITE_DOMAIN_NAME, L"DomainName"},
    {"WX_XML_SITE_RELATIVEPATH", WX_XML_SITE_RELATIVEPATH, L"RelativePath"},
    {"WX_XML_SITE_ENABLED", WX_XML_SITE_ENABLED, L"Enabled"},
    {"WX_XML_SITE_ORDER", WX_XML_SITE_ORDER, L"Order"},
    {"WX_XML_SITE_TYPE", WX_XML_SITE_TYPE, L"Type"},
    {"WX_XML_SITE_SERVER_IP", WX_XML_SITE_SERVER_IP, L"ServerIP"},
    {"WX_XML_SERVER_NETBIOS_NAME", WX_XML_SERVER_NETBIOS_NAME, L"ServerName"},
    {"WX_XML_SITE_SERVER_FQDN", WX_XML_SITE_SERVER_FQDN, L"ServerDNS"},
    {"WX_XML_SITE_SERVER_VERSION", WX_XML_SITE_SERVER_VERSION, L"Version"},
    {"WX_XML_SITE_SERVER", WX_XML_SITE_SERVER, L"Server"},
    {"WX_XML_SITE_LOCAL", WX_XML_SITE_LOCAL, L"Local"},
    {"WX_XML_SITE_ID", WX_XML_SITE_ID, L"ID"},
    {"WX_XML_SITE_NAME", WX_XML_SITE_NAME, L"Name"},
    {"WX_XML_FTP_PROXY_ALT_PROXYPASSWORD", WX_XML_FTP_PROXY_ALT_PROXYPASSWORD, L"AlternateFtpProxyPassword"},
    {"WX_XML_FTP_PROXY_ALT_PROXYUSERNAME", WX_XML_FTP_PROXY_ALT_PROXYUSERNAME, L"AlternateFtpProxyUser"},
    {"WX_XML_HTTP_PROXY_ALT_PROXYPASSWORD", WX_XML_HTTP_PROXY_ALT_PROXYPASSWORD, L"AlternateHttpProxyPassword"},
    {"WX_XML_HTTP_PROXY_ALT_PROXYUSERNAME", WX_XML_HTTP_PROXY_ALT_PROXYUSERNAME, L"AlternateHttpProxyUser"},
    {"WX_XML_PROXY_ALT_HTTP_USEAUTH", WX_XML_PROXY_ALT_HTTP_USEAUTH, L"AlternateHttpUseAuth"},
    {"WX_XML_PROXY_ALT_FTP_USEAUTH", WX_XML_PROXY_ALT_FTP_USEAUTH, L"AlternateFtpUseAuth"},
    {"WX_XML_FTP_PROXY_PROXYPASSWORD", WX_XML_FTP_PROXY_PROXYPASSWORD, L"FtpProxyPassword"},
    {"WX_XML_FTP_PROXY_PROXYUSERNAME", WX_XML_FTP_PROXY_PROXYUSERNAME, L"FtpProxyUser"},
    {"WX_XML_HTTP_PROXY_PROXYPASSWORD", WX_XML_HTTP_PROXY_PROXYPASSWORD, L"HttpProxyPassword"},
    {"WX_XML_HTTP_PROXY_PROXYUSERNAME", WX_XML_HTTP_PROXY_PROXYUSERNAME, L"HttpProxyUser"},
    {"WX_XML_PROXY_HTTP_USEAUTH", WX_XML_PROXY_HTTP_USEAUTH, L"HttpUseAuth"},
    {"WX_XML_PROXY_FTP_USEAUTH", WX_XML_PROXY_FTP_USEAUTH, L"FtpUseAuth"},
    {"WX_XML_PROXY_EXCLUSIONHOST", WX_XML_PROXY_EXCLUSIONHOST, L"ExclusionHost"},
    {"WX_XML_PROXY_EXCLUSIONLIST", WX_XML_PROXY_EXCLUSIONLIST, L"ExclusionList"},
    {"WX_XML_PROXY_USE_IP_MASK", WX_XML_PROXY_USE_IP_MASK, L"UseIPMask"},
    {"WX_XML_PROXY_IPEND", WX_XML_PROXY_IPEND, L"IPAddrEnd"},
    {"WX_XML_PROXY_IPSTART", WX_XML_PROXY_IPSTART, L"IPAddrStart"},
    {"WX_XML_PROXY_RANGE", WX_XML_PROXY_RANGE, L"LocalAddrRange"},
    {"WX_XML_PROXY_ADDRLIST", WX_XML_PROXY_ADDRLIST, L"LocalAddrRangeList"},
    {"WX_XML_PROXY_BYPASSLOCALADDR", WX_XML_PROXY_BYPASSLOCALADDR, L"BypassLocalAddress"},
    {"WX_XML_PROXY_ALLOWUSERTOCONFIGPROXY", WX_XML_PROXY_ALLOWUSERTOCONFIGPROXY, L"AllowUserToConfigureProxy"},
    {"WX_XML_PROXY_FTP_PROXY_PORT", WX_XML_PROXY_FTP_PROXY_PORT, L"FtpProxyPort"},
    {"WX_XML_PROXY_FTP_PROXY_SERVER", WX_XML_PROXY_FTP_PROXY_SERVER, L"FtpProxyServer"},
    {"WX_XML_PROXY_HTTP_PROXY_PORT", WX_XML_PROXY_HTTP_PROXY_PORT, L"HttpProxyPort"},
    {"WX_XML_PROXY_HTTP_PROXY_SERVER", WX_XML_PROXY_HTTP_PROXY_SERVER, L"HttpProxyServer"},
    {"WX_XML_PROXY_USE_IE_CONFIG", WX_XML_PROXY_USE_IE_CONFIG, L"UseIEConfig"},
    {"WX_XML_PROXY_CONFIG", WX_XML_PROXY_CONFIG, L"ProxyConfig"},
    {"WX_XML_PROXY_CONFIG_LIST", WX_XML_PROXY_CONFIG_LIST, L"ProxyConfigList"},
    {"WX_XML_SITELIST_TYPE_CLIENT", WX_XML_SITELIST_TYPE_CLIENT, L"Client"},
    {"WX_XML_SITELIST_TYPE_SERVER", WX_XML_SITELIST_TYPE_SERVER, L"Server"},
    {"WX_XML_CACERTIFICATE", WX_XML_CACERTIFICATE, L"CaCertificate"},
    {"WX_XML_CABUNDLE", WX_XML_CABUNDLE, L"CaBundle"},
    {"WX_XML_POLICIES", WX_XML_POLICIES, L"Policies"},
    {"WX_XML_SITELIST_DEFAULT", WX_XML_SITELIST_DEFAULT, L"Default"},
    {"WX_XML_SITELIST", WX_XML_SITELIST, L"SiteList"},
    {"WX_XML_SITELISTS_FIPSMODE", WX_XML_SITELISTS_FIPSMODE, L"FipsMode"},
    {"WX_XML_SITELISTS_TYPE", WX_XML_SITELISTS_TYPE, L"Type"},
    {"WX_XML_SITELISTS_LOCAL_VERSION", WX_XML_SITELISTS_LOCAL_VERSION, L"LocalVersion"},
    {"WX_XML_SITELISTS_GLOBAL_VERSION", WX_XML_SITELISTS_GLOBAL_VERSION, L"GlobalVersion"},
    {"WX_XML_SITELISTS", WX_XML_SITELISTS, L"ns:SiteLists"},
    {"WX_XML_SITELISTS_NAMESPACE", WX_XML_SITELISTS_NAMESPACE, L"wxSiteList"},
    {"WX_XML_NAMESPACE", WX_XML_NAMESPACE, L"xmlns:ns"},
};
// clang-format on

TEST(Vocabulary, EveryConstantHasItsText) {
  for (const Constant& constant : c_constants) {
    EXPECT_STREQ(constant.value, constant.text) << constant.name;
  }
}

TEST(Vocabulary, HasEightyOneConstants) {
  std::set<std::string> names;
  for (const Constant& constant : c_constants) names.insert(constant.name);
  EXPECT_EQ(std::size(c_constants), 81u);
  EXPECT_EQ(names.size(), 81u);
}

TEST(Vocabulary, ConstantsArePointersToConstantText) {
  static_assert(std::is_same<decltype(WX_XML_SITELISTS), const wchar_t* const>::value, "");
}

TEST(Vocabulary, ThreeTextsAreShared) {
  EXPECT_STREQ(WX_XML_SITELIST_VESTA_IPADDR, WX_XML_SITE_SERVER_IP);
  EXPECT_STREQ(WX_XML_SITE_SERVER, WX_XML_SITELIST_TYPE_SERVER);
  EXPECT_STREQ(WX_XML_SITE_TYPE, WX_XML_SITELISTS_TYPE);
  std::map<std::wstring, int> uses;
  for (const Constant& constant : c_constants) ++uses[constant.value];
  int shared = 0;
  for (const auto& use : uses) shared += use.second > 1 ? 1 : 0;
  EXPECT_EQ(shared, 3);
}

TEST(SharedNames, AreThoseOfTheAgentsOtherProcesses) {
  using namespace sitehlp;
  EXPECT_STREQ(c_sitelistName, L"SiteList.xml");
  EXPECT_STREQ(c_serverSitelistName, L"ServerSiteList.xml");
  EXPECT_STREQ(c_siteListLock, "SiteListLock");
  EXPECT_STREQ(smartSiteListLock, "SmartSiteListLock");
  EXPECT_STREQ(c_proxyParamDelimiter, L";");
  EXPECT_STREQ(c_agentEnvMacroStartDelimiter, L"<");
  EXPECT_STREQ(c_agentEnvMacroEndDelimiter, L">");
  EXPECT_STREQ(c_agentEnvMacroStartDelimiterExpanded, L"%%lt%%");
  EXPECT_STREQ(c_agentEnvMacroEndDelimiterExpanded, L"%%gt%%");
}

TEST(ResultCodes, HaveTheirNumbers) {
  using namespace sitehlp;
  EXPECT_EQ(c_success, 0);
  EXPECT_EQ(c_errorGeneral, -1);
  EXPECT_EQ(c_errorNoPath, -2);
  EXPECT_EQ(c_errorNoMemory, -3);
  EXPECT_EQ(c_errorFileMissing, -4);
  EXPECT_EQ(c_errorParse, -5);
  EXPECT_EQ(c_errorNoServerSite, -8);
  EXPECT_EQ(c_errorValidation, -9);
  EXPECT_EQ(c_errorRead, -10);
  EXPECT_EQ(c_errorWrite, -11);
  EXPECT_EQ(static_cast<std::uint32_t>(c_errorFileMissing), 0xFFFFFFFCu);
}

}  // namespace
