#include <cwchar>

#include "platform/common/log.h"
#include "sitehlp/common/component.h"
#include "sitehlp/common/document_values.h"
#include "sitehlp/sites_helper.h"
#include "sitehlp/write/field_writer.h"
#include "sitehlp/write/site_writers.h"
#include "sitehlp/xmlschema/sitelist.h"

namespace sitehlp {

using namespace korvel_com::orb::xmlschema::sitelist;  // NOLINT(google-build-using-namespace)

namespace {

void addServer(CSitesHelper& helper, ElementWriter& writer, const wchar_t* serverName,
               wchar_t (&server)[c_textCapacity], const wchar_t* portName, std::int32_t port) {
  if (server[0] == L'\0') return;
  writer.addAttribute(serverName, formatField(helper, server));
  writer.addAttribute(portName, Decimal(static_cast<unsigned int>(port)));
}

}  // namespace

void writeExclusions(CSitesHelper& helper, wchar_t (&hosts)[c_exclusionListCapacity],
                     ElementWriter& writer) {
  hosts[c_exclusionListCapacity - 1] = L'\0';
  helper.FormatEnvSymbols(hosts, c_exclusionLimit);
  writer.open(WX_XML_PROXY_EXCLUSIONLIST);
  wchar_t* position = nullptr;
  for (const wchar_t* host = std::wcstok(hosts, c_proxyParamDelimiter, &position); host;
       host = std::wcstok(nullptr, c_proxyParamDelimiter, &position)) {
    writer.addElement(WX_XML_PROXY_EXCLUSIONHOST, host);
  }
  writer.close();
}

void writeProxySite(CSitesHelper& helper, tag_Site& site, ElementWriter& writer) {
  const ADetailTrace trace(c_component, L"Adding Proxy site");
  tag_ProxySite& proxy = site.proxy;
  writer.open(WX_XML_PROXY_CONFIG_LIST);
  writer.open(WX_XML_PROXY_CONFIG);
  writer.addAttribute(WX_XML_SITE_NAME, proxy.szName);
  if (proxy.bUseIEConfig != 0) writer.addAttribute(WX_XML_PROXY_USE_IE_CONFIG, L"1");
  writer.addAttribute(WX_XML_SITE_LOCAL, L"1");
  addServer(helper, writer, WX_XML_PROXY_HTTP_PROXY_SERVER, proxy.szHttpProxyServer,
            WX_XML_PROXY_HTTP_PROXY_PORT, proxy.iHttpProxyPort);
  addServer(helper, writer, WX_XML_PROXY_FTP_PROXY_SERVER, proxy.szFtpProxyServer,
            WX_XML_PROXY_FTP_PROXY_PORT, proxy.iFtpProxyPort);

  writeChildren<c_proxyFields>(helper, proxy, writer);
  writer.close();
  writer.close();
}

}  // namespace sitehlp
