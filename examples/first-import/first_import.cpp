#include <host/agent.h>
#include <sitehlp/sites_helper.h>

#include <iostream>

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  host::AgentSettings agent;  // in a deployment beside the agent its own libraries know this
  agent.dataDirectory = argv[1];
  host::setAgent(agent);

  sitehlp::CSitesHelper helper(false);  // serves <data directory>/etc/SiteList.xml
  const int result = helper.ImportSiteList(AString(argv[2]).str(), L"");
  if (result != sitehlp::c_success) return std::cerr << "import: " << result << '\n', 1;

  sitehlp::tag_Site* list = nullptr;
  if (helper.ReadSiteList(L"", &list, true) != sitehlp::c_success) return 1;
  for (const sitehlp::tag_Site* site = list; site; site = site->pNext) {
    std::cout << site->iOrder << ' ' << ACharString(AString(site->szType)).str() << '\n';
  }
  return helper.FreeSiteListMemory(list);
}
