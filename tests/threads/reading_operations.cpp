#include "platform/common/abuffer.h"
#include "tests/import/records.h"
#include "tests/threads/operations.h"

// Operations that read the agent's files.
namespace test {
namespace {

using namespace sitehlp;

struct Versions : CSitesHelper {
  using CSitesHelper::CSitesHelper;
  std::string remembered() const {
    return told(0, {m_strSiteListFile, m_strGlobalVersion, m_strLocalVersion, m_strSiteListType});
  }
};

std::string runMake(const Workshop&) { return Versions(false).remembered(); }
std::string runMakeWithPath(const Workshop& w) { return Versions(wide(w.own())).remembered(); }
std::string runMakeWithLiteral(const Workshop& w) {
  return Versions(wide(w.own()).c_str()).remembered();
}

std::string runDirectory(const Workshop&) {
  wchar_t buffer[c_textCapacity];
  const int result = CSitesHelper(true).GetSiteListFilename(buffer, c_textCapacity);
  return told(result, {buffer});
}

std::string read(const Workshop& w, bool useLock) {
  SiteChain list;
  OpenHelper helper(true);
  const int result = helper.ReadSiteList(wide(w.own()), list.address(), useLock);
  std::string text = told(result, list.head());
  for (const auto& [name, value] : helper.m_policySettings) text += narrow(name + L"=" + value);
  return text;
}
std::string runRead(const Workshop& w) { return read(w, true); }
std::string runReadUnlocked(const Workshop& w) { return read(w, false); }

std::string runMustRead(const Workshop& w) {
  SiteChain list;
  const int result = CSitesHelper(true).MustReadSiteList(wide(w.own()), list.address());
  return told(result, list.head());
}

std::string runSmartRead(const Workshop& w) {
  tag_Site* list = nullptr;  // the class keeps it
  const int result = CSitesHelper(true).SmartReadSiteList(wide(w.own()), &list);
  return told(result, list);
}

std::string runNotice(const Workshop&) {
  CSitesHelper(true).needToUpdateInMemSiteList();
  return "told";
}

std::string servers(const Workshop& w, bool allSites) {
  std::wstring text[5];
  int port = 0;
  const int result =
      CSitesHelper(wide(w.own()))
          .GetPYXServerInfo(text[0], text[1], text[2], text[3], port, text[4], allSites, false);
  return told(result, {text[0], text[1], text[2], text[3], std::to_wstring(port), text[4]});
}
std::string runServers(const Workshop& w) { return servers(w, true); }
// The list is read again, as in a process after a change.
std::string runServersAnew(const Workshop& w) {
  runNotice(w);
  runNotice(w);
  return servers(w, false);
}

std::string runText(const Workshop& w) {
  std::wstring text;
  const bool done = CSitesHelper(wide(w.own())).GetSiteListBuffer(text);
  return std::to_string(done) + normalForm("", narrow(text));
}

std::string runVersions(const Workshop& w) {
  std::wstring text[3];
  const int result =
      CSitesHelper(true).GetSitelistVersions(wide(w.own()), text[0], text[1], text[2]);
  return told(result, {text[0], text[1], text[2]});
}
std::string runGlobalVersion(const Workshop& w) {
  std::wstring version;
  const int result = CSitesHelper(wide(w.own())).GetGlobalSitelistVersion(version);
  return told(result, {version});
}
std::string runFipsMode(const Workshop& w) {
  std::wstring mode;
  const int result = CSitesHelper(true).GetSitelistFipsMode(wide(w.own()), mode);
  return told(result, {mode});
}
std::string runCertificates(const Workshop& w) {
  std::vector<std::wstring> certificates;
  const int result = CSitesHelper(true).GetCaCertificates(wide(w.own()), certificates);
  return told(result, certificates);
}

std::string runContents(const Workshop& w) {
  ListContents contents;
  std::string sites;
  const int result =
      CSitesHelper::ReadListContents(wide(w.own()), contents, [&sites](tag_Site* site) {
        const SiteChain owner(site);
        sites += told(0, owner.head());
      });
  std::vector<std::wstring> texts = {contents.globalVersion, contents.localVersion, contents.type,
                                     contents.fipsMode.value_or(L"-")};
  for (const auto& [name, value] : contents.policySettings) texts.push_back(name + L"=" + value);
  texts.insert(texts.end(), contents.certificates.begin(), contents.certificates.end());
  return told(result, texts) + sites;
}

std::string runMergeOwn(const Workshop& w) {
  const SiteChain first{serverSite(L"server"), typed(httpSite(L"fall"), L"fallback")};
  SiteChain list;
  const int result =
      CSitesHelper(wide(w.own())).MergeSiteLists(first.head(), nullptr, false, list.address());
  return told(result, list.head());
}
std::string runMergeIntoSecond(const Workshop& w) {
  const SiteChain second{serverSite(L"server"), httpSite(L"http")};
  SiteChain list;
  const int result =
      CSitesHelper(wide(w.own())).MergeSiteLists(nullptr, second.head(), true, list.address());
  return told(result, list.head());
}

std::string runValidate(const Workshop& w) {
  return told(CSitesHelper(true).ValidateSiteListForInstall(wide(w.own()), true));
}

std::string runReadKey(const Workshop& w) {
  ABuffer key;
  const bool done = CSitesHelper(true).readKeyFile(AString(wide(w.etcDirectory())),
                                                   AString(L"srpubkey.bin"), key);
  return std::to_string(done) +
         std::string(reinterpret_cast<const char*>(key.data()), done ? key.size() : 0);
}
std::string runReadKeys(const Workshop& w) {
  tag_Site server = serverSite(L"server");
  ABuffer keys[4];
  bool has[4] = {};
  const bool done =
      CSitesHelper(true).readKeyFiles(wide(w.own()), &server, L"", keys[0], keys[1], keys[2],
                                      keys[3], has[0], has[1], has[2], has[3]);
  std::string text = std::to_string(done);
  for (const bool flag : has) text += std::to_string(flag);
  return text;
}
std::string runWritable(const Workshop& w) {
  return told(CSitesHelper(true).writable(AString(wide(w.own()))));
}

}  // namespace

SharedOperations readingSharedOperations() {
  return {
      {"CSitesHelper(false)", runMake},
      {"CSitesHelper(path)", runMakeWithPath},
      {"CSitesHelper(literal)", runMakeWithLiteral},
      {"GetSiteListFilename", runDirectory},
      {"ReadSiteList", runRead},
      {"ReadSiteList without the lock", runReadUnlocked},
      {"MustReadSiteList", runMustRead},
      {"SmartReadSiteList", runSmartRead, false, Cache::HandsOut},
      {"needToUpdateInMemSiteList", runNotice},
      {"GetPYXServerInfo", runServers, false, Cache::Releases},
      {"GetPYXServerInfo after changes", runServersAnew, false, Cache::Releases},
      {"GetSiteListBuffer", runText},
      {"GetSitelistVersions", runVersions},
      {"GetGlobalSitelistVersion", runGlobalVersion},
      {"GetSitelistFipsMode", runFipsMode},
      {"GetCaCertificates", runCertificates},
      {"ReadListContents", runContents},
      {"MergeSiteLists with the own list", runMergeOwn},
      {"MergeSiteLists into the second list", runMergeIntoSecond},
      {"ValidateSiteListForInstall", runValidate},
      {"readKeyFile", runReadKey},
      {"readKeyFiles", runReadKeys},
      {"writable", runWritable},
  };
}

}  // namespace test
