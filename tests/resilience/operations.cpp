#include <filesystem>
#include <stdexcept>

#include "sitehlp/sites_helper.h"
#include "tests/import/records.h"
#include "tests/resilience/workshop.h"

using namespace sitehlp;

namespace test {
namespace {

constexpr int c_refused = 1;  // the result for `false` and for a zero that means failure

int fromBool(bool done) { return done ? 0 : c_refused; }

using Buffer = korvel_com::ZQ::crypto::AnObjectBuffer<unsigned char>;

Buffer serverBytes(const Workshop& workshop) {
  const std::string& bytes = workshop.serverBuffer();
  return Buffer(static_cast<unsigned int>(bytes.size()),
                reinterpret_cast<const unsigned char*>(bytes.data()));
}

SiteChain oneOfEach() {
  SiteChain chain{serverSite(L"server"), httpSite(L"http"),   ftpSite(L"ftp"),
                  uncSite(L"unc"),       localSite(L"local"), proxySite(L"proxy")};
  for (tag_Site* site = chain.head(); site; site = site->pNext) {
    const std::wstring canary = wide(c_canary);
    if (site->eSiteKind == SITE_KIND_HTTP) setText(site->http.szPassword, canary);
    if (site->eSiteKind == SITE_KIND_FTP) setText(site->ftp.szPassword, canary);
    if (site->eSiteKind == SITE_KIND_UNC) setText(site->unc.szPassword, canary);
    if (site->eSiteKind == SITE_KIND_LOCAL) setText(site->local.szPassword, canary);
    if (site->eSiteKind != SITE_KIND_PROXY) continue;
    setText(site->proxy.szHttpProxyPassword, canary);
    setText(site->proxy.szFtpProxyPassword, canary);
    setText(site->proxy.szAlternateHttpProxyPassword, canary);
    setText(site->proxy.szAlternateFtpProxyPassword, canary);
  }
  return chain;
}

int runImport(const Workshop& w) {
  return CSitesHelper(wide(w.own())).ImportSiteList(wide(w.incoming()), L"");
}
int runImportIntoNewDirectory(const Workshop& w) {
  return CSitesHelper(wide(w.newOwn())).ImportSiteList(wide(w.incoming()), L"");
}
int runInstall(const Workshop& w) {
  return CSitesHelper(wide(w.own()))
      .InstallSiteList(wide(w.plainIncoming()), wide(w.keyDirectory()));
}
int runCreate(const Workshop& w) {
  const SiteChain chain = oneOfEach();
  return CSitesHelper(wide(w.own()))
      .CreateSiteList(chain.head(), L"", L"G5", L"L5", L"Client", {L"created certificate"});
}
int runFromBuffer(const Workshop& w) {
  return CSitesHelper(true).CreateSiteListFromBuffer(w.incomingText());
}
int runServerList(const Workshop& w) {
  Buffer buffer = serverBytes(w);
  return fromBool(CSitesHelper(wide(w.own())).CreateServerSiteList(buffer, false) == 1);
}
int runAdjusted(const Workshop& w) {
  Buffer buffer = serverBytes(w);
  return fromBool(CSitesHelper(wide(w.own())).CreateServerSiteList(buffer, true) == 1);
}
int runModify(const Workshop& w) {
  return fromBool(CSitesHelper(wide(w.own()))
                      .modifySiteList(wide(w.incoming()).c_str(), true, true, AString()));
}
int runDerive(const Workshop& w) {
  return fromBool(CSitesHelper::createServerSiteListFromSiteList(
      wide(w.etcDirectory()).c_str(), wide(w.agent.dataDirectory()).c_str()));
}
int runProtect(const Workshop&) {
  std::wstring sealed;
  return fromBool(CSitesHelper(true).EncryptPassword(wide(c_canary), sealed) != 0);
}

template <typename Read>
int withList(Read read) {
  SiteChain list;
  return read(list.address());
}

int runRead(const Workshop& w) {
  return withList(
      [&](tag_Site** list) { return CSitesHelper(true).ReadSiteList(wide(w.own()), list, true); });
}
int runReadUnlocked(const Workshop& w) {
  return withList(
      [&](tag_Site** list) { return CSitesHelper(true).ReadSiteList(wide(w.own()), list, false); });
}
int runMustRead(const Workshop& w) {
  return withList(
      [&](tag_Site** list) { return CSitesHelper(true).MustReadSiteList(wide(w.own()), list); });
}
int runSmartRead(const Workshop& w) {
  CSitesHelper::FreeSiteListMemory(CSitesHelper::m_pSiteList);
  CSitesHelper::m_pSiteList = nullptr;
  tag_Site* list = nullptr;
  return CSitesHelper(true).SmartReadSiteList(wide(w.own()), &list);
}
int runServers(const Workshop& w) {
  CSitesHelper::FreeSiteListMemory(CSitesHelper::m_pSiteList);
  CSitesHelper::m_pSiteList = nullptr;
  std::wstring text[5];
  int port = 0;
  return CSitesHelper(wide(w.own()))
      .GetPYXServerInfo(text[0], text[1], text[2], text[3], port, text[4], true, false);
}
int runVersions(const Workshop& w) {
  std::wstring text[3];
  return CSitesHelper(true).GetSitelistVersions(wide(w.own()), text[0], text[1], text[2]);
}
int runFipsMode(const Workshop& w) {
  std::wstring mode;
  return CSitesHelper(true).GetSitelistFipsMode(wide(w.own()), mode);
}
int runCertificates(const Workshop& w) {
  std::vector<std::wstring> certificates;
  return CSitesHelper(true).GetCaCertificates(wide(w.own()), certificates);
}
int runBuffer(const Workshop& w) {
  std::wstring text;
  try {
    return fromBool(CSitesHelper(wide(w.own())).GetSiteListBuffer(text));
  } catch (const AdvXMLParser::ReadWriteException& e) {
    return e.GetErrorCode();
  }
}
int runValidate(const Workshop& w) {
  return fromBool(CSitesHelper(true).ValidateSiteListForInstall(wide(w.own()), true));
}
int runMerge(const Workshop& w) {
  return withList([&](tag_Site** list) {
    const SiteChain first{serverSite(L"server"), httpSite(L"http")};
    return CSitesHelper(wide(w.own())).MergeSiteLists(first.head(), nullptr, false, list);
  });
}
int runNotice(const Workshop&) {
  CSitesHelper(true).needToUpdateInMemSiteList();
  return 0;
}

}  // namespace

const std::vector<Operation>& writingOperations() {
  static const std::set<int> bringIn = {c_errorGeneral, c_errorFileMissing, c_errorParse,
                                        c_errorRead,    c_errorValidation,  c_errorNoServerSite};
  static const std::set<int> no = {c_refused};
  static const auto own = [](const Workshop& w) { return w.own(); };
  static const auto newOwn = [](const Workshop& w) { return w.newOwn(); };
  static const auto serverList = [](const Workshop& w) { return w.serverList(); };
  static const auto scratchList = [](const Workshop& w) { return w.scratchList(); };
  static const auto dropNew = [](const Workshop& w) {
    std::filesystem::remove_all(w.agent.dataDirectory() + "/fresh");
  };
  static const auto installKeys = [](const Workshop& w) {
    for (const char* key : c_keyFileNames) writeFile(w.agent.etc(key), w.incomingKey(key), 0600);
  };
  static const auto dropKeys = [](const Workshop& w) { std::filesystem::remove_all(w.keystore()); };
  static const std::vector<Operation> all = {
      {"import", runImport, bringIn, own},
      {"import-new-directory", runImportIntoNewDirectory, bringIn, newOwn, dropNew},
      {"import-same-keys", runImport, bringIn, own, installKeys},
      {"install", runInstall, bringIn, own},
      {"create", runCreate, {c_errorWrite}, own},
      {"create-from-buffer", runFromBuffer, {c_errorWrite}, scratchList},
      {"server-list", runServerList, no, serverList},
      {"server-list-adjusted", runAdjusted, {}},
      {"modify", runModify, no, own},
      {"derive", runDerive, no, serverList},
      {"first-password", runProtect, no, nullptr, dropKeys},
  };
  return all;
}

const Operation& writingOperation(const std::string& name) {
  for (const Operation& operation : writingOperations()) {
    if (operation.name == name) return operation;
  }
  throw std::runtime_error("no operation " + name);
}

const std::vector<Operation>& readingOperations() {
  static const std::set<int> read = {c_errorRead};
  static const std::vector<Operation> all = {
      {"read", runRead, read},
      {"read-unlocked", runReadUnlocked, read},
      {"must-read", runMustRead, read},
      {"smart-read", runSmartRead, read},
      {"servers", runServers, {c_errorRead, c_errorNoServerSite, c_errorNoMemory}},
      {"versions", runVersions, read},
      {"fips-mode", runFipsMode, read},
      {"certificates", runCertificates, read},
      {"buffer", runBuffer, {AdvXMLParser::ReadWriteException::READ_FAILED}},
      {"validate", runValidate, {c_refused}},
      {"merge", runMerge, {c_errorRead, c_errorNoMemory}},
      {"change-notice", runNotice, {}},
  };
  return all;
}

}  // namespace test
