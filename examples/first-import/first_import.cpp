#include <host/agent.h>
#include <sitehlp/list.h>

#include <iostream>

int main(int argc, char** argv) try {
  if (argc != 3) return 2;
  // Not needed in a process that links the agent's own libraries.
  host::setAgent(host::readAgentSettings(argv[1]));

  sitehlp::CSitesHelper helper(false);  // uses <data directory>/etc/SiteList.xml
  int result = helper.ImportSiteList(AString(argv[2]).str(), L"");
  sitehlp::ListOwner list;
  if (result == sitehlp::c_success) result = helper.ReadSiteList(L"", list.out(), true);
  if (result != sitehlp::c_success) {
    std::cerr << argv[2] << ": " << sitehlp::resultText(result) << '\n';
    return 1;
  }
  for (const sitehlp::tag_Site& site : list) {
    std::cout << site.iOrder << ' ' << ACharString(AString(site.szType)).str() << '\n';
  }
  return 0;
} catch (const host::SettingsError& error) {
  std::cerr << error.what() << '\n';
  return 1;
}
