#include <cwchar>

#include "platform/common/log.h"
#include "sitehlp/element_writer.h"
#include "sitehlp/record.h"
#include "sitehlp/sites_helper.h"
#include "sitehlp/xmlschema/sitelist.h"

namespace sitehlp {

using AdvXMLParser::Element;
using namespace korvel_com::orb::xmlschema::sitelist;  // NOLINT(google-build-using-namespace)

namespace {

// One less than the field holds; the agent's other readers of the record count on it.
constexpr unsigned int c_exclusionFormatCapacity = 4000;

void writeServer(CSitesHelper& helper, Element& config, const wchar_t* serverName,
                 wchar_t (&server)[c_textCapacity], const wchar_t* portName, std::int32_t port) {
  if (server[0] == L'\0') return;
  helper.FormatEnvSymbols(server, c_textCapacity);
  setAttribute(config, serverName, server);
  setAttribute(config, portName, CSitesHelper::ConvertToStr(static_cast<unsigned int>(port)));
}

// Splits the record's own buffer, which is left with its first host.
void writeExclusions(Element& list, wchar_t* hosts) {
  Element first;
  wchar_t* position = nullptr;
  for (const wchar_t* host = std::wcstok(hosts, c_proxyParamDelimiter, &position); host;
       host = std::wcstok(nullptr, c_proxyParamDelimiter, &position)) {
    if (first.IsNull()) {
      first = addInto(list, WX_XML_PROXY_EXCLUSIONHOST, host);
    } else {
      addAfter(first, WX_XML_PROXY_EXCLUSIONHOST, host);
    }
  }
}

}  // namespace

int CSitesHelper::AddProxySite(tag_Site* site, int position) {
  const ADetailTrace trace(c_component, L"Adding Proxy site");
  tag_ProxySite& proxy = site->proxy;
  Element list = addSiteElement(*m_pSiteListElement, position, WX_XML_PROXY_CONFIG_LIST);
  Element config = list.AddElementInto(WX_XML_PROXY_CONFIG);
  setAttribute(config, WX_XML_SITE_NAME, proxy.szName);
  if (proxy.bUseIEConfig != 0) setAttribute(config, WX_XML_PROXY_USE_IE_CONFIG, L"1");
  setAttribute(config, WX_XML_SITE_LOCAL, L"1");
  writeServer(*this, config, WX_XML_PROXY_HTTP_PROXY_SERVER, proxy.szHttpProxyServer,
              WX_XML_PROXY_HTTP_PROXY_PORT, proxy.iHttpProxyPort);
  writeServer(*this, config, WX_XML_PROXY_FTP_PROXY_SERVER, proxy.szFtpProxyServer,
              WX_XML_PROXY_FTP_PROXY_PORT, proxy.iFtpProxyPort);

  addInto(config, WX_XML_PROXY_ALLOWUSERTOCONFIGPROXY,
          ConvertToStr(proxy.bAllowUserToConfigureProxy));
  Element bypass =
      addInto(config, WX_XML_PROXY_BYPASSLOCALADDR, ConvertToStr(proxy.bBypassLocalAddress));
  Element exclusions = bypass.AppendElement(WX_XML_PROXY_EXCLUSIONLIST);
  FormatEnvSymbols(proxy.szExclusionList, c_exclusionFormatCapacity);
  writeExclusions(exclusions, proxy.szExclusionList);

  Element ftpAuth = addAfter(exclusions, WX_XML_PROXY_FTP_USEAUTH, ConvertToStr(proxy.bFtpUseAuth));
  addAfter(ftpAuth, WX_XML_PROXY_HTTP_USEAUTH, ConvertToStr(proxy.bHttpUseAuth));
  Element user = addAfter(ftpAuth, WX_XML_HTTP_PROXY_PROXYUSERNAME, proxy.szHttpProxyUser);
  addPasswordAfter(user, WX_XML_HTTP_PROXY_PROXYPASSWORD, proxy.szHttpProxyPassword);
  user = addAfter(ftpAuth, WX_XML_FTP_PROXY_PROXYUSERNAME, proxy.szFtpProxyUser);
  addPasswordAfter(user, WX_XML_FTP_PROXY_PROXYPASSWORD, proxy.szFtpProxyPassword);

  Element altFtpAuth =
      addAfter(exclusions, WX_XML_PROXY_ALT_FTP_USEAUTH, ConvertToStr(proxy.bAlternateFtpUseAuth));
  addAfter(altFtpAuth, WX_XML_PROXY_ALT_HTTP_USEAUTH, ConvertToStr(proxy.bAlternateHttpUseAuth));
  user = addAfter(altFtpAuth, WX_XML_HTTP_PROXY_ALT_PROXYUSERNAME, proxy.szAlternateHttpProxyUser);
  addPasswordAfter(user, WX_XML_HTTP_PROXY_ALT_PROXYPASSWORD, proxy.szAlternateHttpProxyPassword);
  user = addAfter(altFtpAuth, WX_XML_FTP_PROXY_ALT_PROXYUSERNAME, proxy.szAlternateFtpProxyUser);
  addPasswordAfter(user, WX_XML_FTP_PROXY_ALT_PROXYPASSWORD, proxy.szAlternateFtpProxyPassword);
  *m_pSiteListElement = list;
  return 0;
}

}  // namespace sitehlp
