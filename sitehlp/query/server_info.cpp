#include "platform/common/log.h"
#include "sitehlp/common/component.h"
#include "sitehlp/common/process_state.h"
#include "sitehlp/query/servers_by_order.h"
#include "sitehlp/read/smart_read.h"
#include "sitehlp/records/record.h"
#include "sitehlp/sites_helper.h"

namespace sitehlp {
namespace {

// Copies the management servers of the list that SmartReadSiteList returns.
int readServers(CSitesHelper& helper, ListOwner& servers) {
  // Held until the sites are copied, because another thread may replace the cached list.
  const CacheGuard guard;
  tag_Site* list = nullptr;
  const int result = smartRead(helper, std::wstring(), &list);
  if (result < 0) {
    if (list) CSitesHelper::FreeSiteListMemory(list);  // it did not become the cached list
    return result;
  }
  return list ? helper.GetVestaSite(list, servers.out()) : result;
}

}  // namespace

int CSitesHelper::GetPYXServerInfo(std::wstring& names, std::wstring& servers,
                                   std::wstring& serverIPs, std::wstring& netbiosNames, int& port,
                                   std::wstring& versions, bool allSites, bool nonSecurePort) {
  const ADetailTrace trace(c_component, L"Get PYX Server IP Address");
  ListOwner chain;
  const int result = readServers(*this, chain);
  if (result < 0 || !chain.get()) return result;

  for (std::wstring* output : {&names, &servers, &serverIPs, &netbiosNames, &versions}) {
    output->clear();
  }
  port = 0;
  bool isFirst = true;
  for (const auto& [order, site] : sitesByOrder(chain.get())) {
    if (!isFirst) {
      for (std::wstring* output : {&names, &servers, &serverIPs, &netbiosNames, &versions}) {
        output->append(c_proxyParamDelimiter);
      }
    }
    isFirst = false;
    const tag_HttpSite& http = site->http;
    names += http.szName;
    servers += http.szServer;
    serverIPs += plainAddress(http.szServerIP);
    netbiosNames += http.szServerName;
    const bool plain = http.uSecurePort == 0 || nonSecurePort;
    port = static_cast<int>(plain ? http.uServerPort : http.uSecurePort);
    versions += http.szVersion;
    if (!allSites) break;
  }
  return result;
}

}  // namespace sitehlp
