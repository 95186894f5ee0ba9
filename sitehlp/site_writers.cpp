#include <cwchar>

#include "platform/common/log.h"
#include "platform/common/text.h"
#include "sitehlp/element_writer.h"
#include "sitehlp/record.h"
#include "sitehlp/sites_helper.h"
#include "sitehlp/xmlschema/sitelist.h"

namespace sitehlp {

using AdvXMLParser::Element;
using namespace korvel_com::orb::xmlschema::sitelist;  // NOLINT(google-build-using-namespace)

namespace {

constexpr const wchar_t* c_localServer = L"127.0.0.1";

void replaceAll(std::wstring& text, const std::wstring& from, const wchar_t* to) {
  for (std::size_t at = text.find(from); at != std::wstring::npos; at = text.find(from)) {
    text.replace(at, from.size(), to);
  }
}

template <std::size_t N>
const wchar_t* formatField(CSitesHelper& helper, wchar_t (&field)[N]) {
  helper.FormatEnvSymbols(field, N);
  return field;
}

}  // namespace

int CSitesHelper::FormatEnvSymbols(wchar_t* buffer, unsigned int capacity) {
  const ADetailTrace trace(c_component, L"Formatting environment symbols");
  if (!buffer || buffer[0] == L'\0') return 0;
  const std::size_t length = ::wcsnlen(buffer, capacity);
  if (std::wmemchr(buffer, c_agentEnvMacroStartDelimiterExpanded[0], length)) {
    std::wstring text(buffer, length);
    replaceAll(text, c_agentEnvMacroStartDelimiterExpanded, c_agentEnvMacroStartDelimiter);
    replaceAll(text, c_agentEnvMacroEndDelimiterExpanded, c_agentEnvMacroEndDelimiter);
    std::wcsncpy(buffer, text.c_str(), capacity);
  } else {
    std::wmemset(buffer + length, L'\0', capacity - length);
  }
  buffer[capacity - 1] = L'\0';
  return 0;
}

int CSitesHelper::AddHTTPSite(tag_Site* site, int position) {
  const ADetailTrace trace(c_component, L"Adding HTTP site");
  tag_HttpSite& http = site->http;
  const wchar_t* const name =
      http.szElement[0] != L'\0' ? http.szElement : WX_XML_SITELIST_HTTP_SITE;
  Element element = addSiteElement(*m_pSiteListElement, position, name);
  setIdentity(element, *site, http.szName);
  setAttribute(element, WX_XML_SITE_ENABLED, ConvertToStr(site->bEnabled));
  setAttribute(element, WX_XML_SITE_LOCAL, ConvertToStr(site->bLocal));
  const wchar_t* const server = formatField(*this, http.szServer);
  if (http.uSecurePort != 0) {
    setAttribute(element, WX_XML_SSL_PORT, ConvertToStr(http.uSecurePort));
  }
  setAttribute(element, WX_XML_SITE_SERVER, formatAddress(server, http.uServerPort));

  const bool isVesta = wcsicmp(name, WX_XML_SITELIST_VESTA_SITE) == 0;
  const bool isKeystone = wcsicmp(name, WX_XML_SITELIST_KEYSTONE_SITE) == 0;
  if (isVesta || isKeystone) {
    // The management server gets both addresses even when they are empty.
    const wchar_t* const netbios = formatField(*this, http.szServerName);
    if (isVesta || netbios[0] != L'\0') {
      setAttribute(element, WX_XML_SERVER_NETBIOS_NAME,
                   formatAddress(netbios, http.uServerNamePort));
    }
    const wchar_t* const ip = formatField(*this, http.szServerIP);
    if (isVesta || ip[0] != L'\0') {
      setAttribute(element, WX_XML_SITE_SERVER_IP, formatAddress(ip, http.uServerIPPort));
    }
  }
  if (isVesta && http.szVersion[0] != L'\0') {
    setAttribute(element, WX_XML_SITE_SERVER_VERSION, formatField(*this, http.szVersion));
  }

  Element child =
      addInto(element, WX_XML_SITE_RELATIVEPATH, formatField(*this, http.szRelativePath));
  child = addAfter(child, WX_XML_HTTPSITE_USE_AUTH, ConvertToStr(http.iUseAuth));
  child = addAfter(child, WX_XML_SITE_USER_NAME, http.szUserName);
  addPasswordAfter(child, WX_XML_SITE_PASSWORD, http.szPassword);
  *m_pSiteListElement = element;
  return 0;
}

int CSitesHelper::AddFTPSite(tag_Site* site, int position) {
  const ADetailTrace trace(c_component, L"Adding FTP site");
  tag_FtpSite& ftp = site->ftp;
  Element element = addSiteElement(*m_pSiteListElement, position, WX_XML_SITELIST_FTP_SITE);
  setIdentity(element, *site, ftp.szName);
  setAttribute(element, WX_XML_SITE_SERVER,
               formatAddress(formatField(*this, ftp.szServer), ftp.uServerPort));
  setAttribute(element, WX_XML_SITE_ENABLED, ConvertToStr(site->bEnabled));
  if (ftp.uSecurePort != 0) {
    setAttribute(element, WX_XML_SSL_PORT, ConvertToStr(ftp.uSecurePort));
  }
  setAttribute(element, WX_XML_SITE_LOCAL, ConvertToStr(site->bLocal));

  Element child =
      addInto(element, WX_XML_SITE_RELATIVEPATH, formatField(*this, ftp.szRelativePath));
  child = addAfter(child, WX_XML_SITE_USER_NAME, ftp.szUserName);
  addPasswordAfter(child, WX_XML_SITE_PASSWORD, ftp.szPassword);
  *m_pSiteListElement = element;
  return 0;
}

int CSitesHelper::AddUNCSite(tag_Site* site, int position) {
  const ADetailTrace trace(c_component, L"Adding UNC site");
  tag_UncSite& unc = site->unc;
  Element element = addSiteElement(*m_pSiteListElement, position, WX_XML_SITELIST_UNC_SITE);
  setIdentity(element, *site, unc.szName);
  setAttribute(element, WX_XML_SITE_SERVER, formatField(*this, unc.szServer));
  setAttribute(element, WX_XML_SITE_ENABLED, ConvertToStr(site->bEnabled));
  setAttribute(element, WX_XML_SITE_LOCAL, ConvertToStr(site->bLocal));

  Element child = addInto(element, WX_XML_UNCSITE_SHARENAME, unc.szShareName);
  child = addAfter(child, WX_XML_SITE_RELATIVEPATH, formatField(*this, unc.szRelativePath));
  child = addAfter(child, WX_XML_UNCSITE_USE_LOGON_USER_ACCOUNT,
                   ConvertToStr(unc.iUseLoggedonUserAccount));
  child = addAfter(child, WX_XML_SITE_DOMAIN_NAME, formatField(*this, unc.szDomainName));
  child = addAfter(child, WX_XML_SITE_USER_NAME, unc.szUserName);
  addPasswordAfter(child, WX_XML_SITE_PASSWORD, unc.szPassword);
  *m_pSiteListElement = element;
  return 0;
}

int CSitesHelper::AddLocalSite(tag_Site* site, int position) {
  const ADetailTrace trace(c_component, L"Adding local site");
  tag_LocalSite& local = site->local;
  Element element = addSiteElement(*m_pSiteListElement, position, WX_XML_SITELIST_LOCAL_SITE);
  setIdentity(element, *site, local.szName);
  setAttribute(element, WX_XML_SITE_ENABLED, ConvertToStr(site->bEnabled));
  setAttribute(element, WX_XML_SITE_LOCAL, ConvertToStr(site->bLocal));
  setAttribute(element, WX_XML_SITE_SERVER, c_localServer);

  Element child =
      addInto(element, WX_XML_SITE_RELATIVEPATH, formatField(*this, local.szRelativePath));
  child = addAfter(child, WX_XML_UNCSITE_USE_LOGON_USER_ACCOUNT,
                   ConvertToStr(local.iUseLoggedonUserAccount));
  child = addAfter(child, WX_XML_SITE_DOMAIN_NAME, formatField(*this, local.szDomainName));
  child = addAfter(child, WX_XML_SITE_USER_NAME, local.szUserName);
  addPasswordAfter(child, WX_XML_SITE_PASSWORD, local.szPassword);
  *m_pSiteListElement = element;
  return 0;
}

}  // namespace sitehlp
