#include "tests/broken_crypto/operations.h"

#include "sitehlp/sites_helper.h"
#include "tests/import/records.h"
#include "tests/resilience/workshop.h"

namespace test {
namespace {

using namespace sitehlp;
using Buffer = korvel_com::ZQ::crypto::AnObjectBuffer<unsigned char>;

std::string own(const Places& p) { return p.own; }
std::string serverList(const Places& p) { return p.data + "/ServerSiteList.xml"; }
std::string scratchList(const Places& p) { return p.scratch + "/etc/SiteList.xml"; }

bool runImport(const Places& p) {
  return CSitesHelper(wide(p.own)).ImportSiteList(wide(p.incoming), L"") == 0;
}
bool runInstall(const Places& p) {
  return CSitesHelper(wide(p.own)).InstallSiteList(wide(p.plainIncoming), wide(p.keyDirectory)) ==
         0;
}
bool runCreate(const Places& p) {
  const SiteChain sites{httpSite(L"http"), ftpSite(L"ftp"), proxySite(L"proxy")};
  return CSitesHelper(wide(p.own)).CreateSiteList(sites.head(), L"", L"G", L"L", L"Client", {}) ==
         0;
}
bool runModify(const Places& p) {
  return CSitesHelper(wide(p.own)).modifySiteList(wide(p.incoming).c_str(), true, true, AString());
}
bool runBuffer(const Places& p) {
  return CSitesHelper(wide(p.own)).CreateSiteListFromBuffer(wide(readFile(p.incoming))) == 0;
}
bool runAdjusted(const Places& p) {
  const std::string bytes = readFile(p.serverDocument);
  Buffer buffer(static_cast<unsigned int>(bytes.size()),
                reinterpret_cast<const unsigned char*>(bytes.data()));
  return CSitesHelper(wide(p.own)).CreateServerSiteList(buffer, true) == 1;
}
bool runUnchanged(const Places& p) {
  const std::string bytes = readFile(p.serverDocument);
  Buffer buffer(static_cast<unsigned int>(bytes.size()),
                reinterpret_cast<const unsigned char*>(bytes.data()));
  return CSitesHelper(wide(p.own)).CreateServerSiteList(buffer, false) == 1;
}
bool runDerive(const Places& p) {
  return CSitesHelper::createServerSiteListFromSiteList(wide(p.data + "/etc").c_str(),
                                                        wide(p.data).c_str());
}

}  // namespace

const std::vector<CryptoOperation>& cryptoOperations() {
  static const std::vector<CryptoOperation> all = {
      {"import", runImport, own, 1, 1, 0},
      {"firstImport", runImport, own, 1, 1, 0, true},
      {"install", runInstall, own, 1, 1, 0},
      {"firstInstall", runInstall, own, 1, 1, 0, true},
      {"create", runCreate, own, 0, 1, 0},
      {"firstCreate", runCreate, own, 0, 1, 0, true},
      {"modify", runModify, own, 1, 0, 0},
      {"fromBuffer", runBuffer, scratchList, 1, 1, 0},
      {"serverListAdjusted", runAdjusted, serverList, 0, 1, 1},
      {"serverListUnchanged", runUnchanged, serverList, 0, 0, 0},
      {"derive", runDerive, serverList, 0, 0, 0},
  };
  return all;
}

}  // namespace test
