#include "sitehlp/read/proxy_decoder.h"

#include <iterator>

#include "platform/common/log.h"
#include "sitehlp/common/component.h"
#include "sitehlp/read/child_value.h"
#include "sitehlp/read/text_field.h"
#include "sitehlp/xmlschema/sitelist.h"

namespace sitehlp {

using AdvXMLParser::Element;
using namespace korvel_com::orb::xmlschema::sitelist;  // NOLINT(google-build-using-namespace)

namespace {

// The list stays below this length, the delimiter in front of each host counted.
constexpr std::size_t c_exclusionListLimit = 4000;

std::int32_t readFlag(const Element& element) {
  wchar_t text[c_textCapacity] = {};
  setField(text, element);
  return toInt(ACharString(AString(text)).c_str()) != 0 ? 1 : 0;
}

void decodeExclusions(const Element& element, tag_ProxySite& site) {
  std::size_t length = std::wcslen(site.szExclusionList);
  for (const Element child : element.Elements()) {
    if (!child.HasName(WX_XML_PROXY_EXCLUSIONHOST)) continue;
    // The delimiter counts against the limit even for the first host, which has none.
    const std::size_t room = c_exclusionListLimit - length;
    const std::size_t start = site.iExclusionCount != 0 ? length + 1 : length;
    if (room > 1 && child.CopyValue(site.szExclusionList + start, room - 1)) {
      if (start != length) site.szExclusionList[length] = c_proxyParamDelimiter[0];
      length = start + std::wcslen(site.szExclusionList + start);
      ++site.iExclusionCount;
      continue;
    }
    std::wmemset(site.szExclusionList + length, L'\0', c_exclusionListCapacity - length);
    if (!logEnabled(LogLevel::Detail)) continue;
    logDetail(c_component, AString(L"Exclusion list of proxy settings is truncated to ")
                               .append(site.szExclusionList)
                               .append(L" in ReadSiteFromSiteList"));
  }
}

// The children that proxy elements have.
enum class ProxyChild {
  AllowUserToConfigure,
  BypassLocalAddress,
  ExclusionList,
  FtpUseAuth,
  HttpUseAuth,
  HttpUser,
  HttpPassword,
  FtpUser,
  FtpPassword,
  AlternateFtpUseAuth,
  AlternateHttpUseAuth,
  AlternateHttpUser,
  AlternateHttpPassword,
  AlternateFtpUser,
  AlternateFtpPassword,
  None,
};

const wchar_t* const c_proxyChildNames[] = {
    WX_XML_PROXY_ALLOWUSERTOCONFIGPROXY, WX_XML_PROXY_BYPASSLOCALADDR,
    WX_XML_PROXY_EXCLUSIONLIST,          WX_XML_PROXY_FTP_USEAUTH,
    WX_XML_PROXY_HTTP_USEAUTH,           WX_XML_HTTP_PROXY_PROXYUSERNAME,
    WX_XML_HTTP_PROXY_PROXYPASSWORD,     WX_XML_FTP_PROXY_PROXYUSERNAME,
    WX_XML_FTP_PROXY_PROXYPASSWORD,      WX_XML_PROXY_ALT_FTP_USEAUTH,
    WX_XML_PROXY_ALT_HTTP_USEAUTH,       WX_XML_HTTP_PROXY_ALT_PROXYUSERNAME,
    WX_XML_HTTP_PROXY_ALT_PROXYPASSWORD, WX_XML_FTP_PROXY_ALT_PROXYUSERNAME,
    WX_XML_FTP_PROXY_ALT_PROXYPASSWORD,
};
static_assert(std::size(c_proxyChildNames) == static_cast<std::size_t>(ProxyChild::None));

ProxyChild proxyChildOf(const Element& element) {
  return static_cast<ProxyChild>(element.FindName(c_proxyChildNames, std::size(c_proxyChildNames)));
}

void decodeChild(const Element& child, bool useDecryptData, tag_ProxySite& site) {
  switch (proxyChildOf(child)) {
    case ProxyChild::AllowUserToConfigure:
      site.bAllowUserToConfigureProxy = readFlag(child);
      break;
    case ProxyChild::BypassLocalAddress:
      site.bBypassLocalAddress = readFlag(child);
      break;
    case ProxyChild::ExclusionList:
      decodeExclusions(child, site);
      break;
    case ProxyChild::FtpUseAuth:
      site.bFtpUseAuth = readFlag(child);
      break;
    case ProxyChild::HttpUseAuth:
      site.bHttpUseAuth = readFlag(child);
      break;
    case ProxyChild::HttpUser:
      setField(site.szHttpProxyUser, child);
      break;
    case ProxyChild::HttpPassword:
      // The one password that is always in the agent's own protection.
      setPassword(site.szHttpProxyPassword, child, false);
      break;
    case ProxyChild::FtpUser:
      setField(site.szFtpProxyUser, child);
      break;
    case ProxyChild::FtpPassword:
      setPassword(site.szFtpProxyPassword, child, useDecryptData);
      break;
    case ProxyChild::AlternateFtpUseAuth:
      site.bAlternateFtpUseAuth = readFlag(child);
      break;
    case ProxyChild::AlternateHttpUseAuth:
      site.bAlternateHttpUseAuth = readFlag(child);
      break;
    case ProxyChild::AlternateHttpUser:
      setField(site.szAlternateHttpProxyUser, child);
      break;
    case ProxyChild::AlternateHttpPassword:
      setPassword(site.szAlternateHttpProxyPassword, child, useDecryptData);
      break;
    case ProxyChild::AlternateFtpUser:
      setField(site.szAlternateFtpProxyUser, child);
      break;
    case ProxyChild::AlternateFtpPassword:
      setPassword(site.szAlternateFtpProxyPassword, child, useDecryptData);
      break;
    case ProxyChild::None:
      break;
  }
}

}  // namespace

void decodeProxy(const Element& element, const SiteAttributes& attributes, bool useDecryptData,
                 tag_ProxySite& site) {
  const wchar_t* which = L"";
  setField(site.szName, attributes.name);
  const bool http = !attributes.httpProxyServer.IsEmpty();
  const bool ftp = !attributes.ftpProxyServer.IsEmpty();
  if (http) {
    setField(site.szHttpProxyServer, attributes.httpProxyServer);
    site.iHttpProxyPort = readNumber(attributes.httpProxyPort);
    which = WX_XML_SITELIST_HTTP_SITE;
  }
  if (ftp) {
    setField(site.szFtpProxyServer, attributes.ftpProxyServer);
    site.iFtpProxyPort = readNumber(attributes.ftpProxyPort);
    which = WX_XML_SITELIST_FTP_SITE;
  }
  if (http && ftp) which = WX_XML_SITELIST_FTPHTTP_SITE;
  setField(site.szElement, which, std::wcslen(which));
  if (!attributes.useIeConfig.IsEmpty()) {
    site.bUseIEConfig = readNumber(attributes.useIeConfig) != 0 ? 1 : 0;
  }
  for (const Element child : element.Elements()) decodeChild(child, useDecryptData, site);
}

}  // namespace sitehlp
