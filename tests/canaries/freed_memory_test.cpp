#include <gmock/gmock.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <iterator>
#include <map>
#include <memory>
#include <new>
#include <set>
#include <utility>

#include "sitehlp/sites_helper.h"
#include "tests/canaries/passwords.h"
#include "tests/import/documents.h"
#include "tests/import/records.h"
#include "tests/resilience/experiment.h"
#include "tests/resilience_memory/every_allocation.h"
#include "tests/threads/operations.h"

// No operation releases memory that has a password or a key.
namespace {

using namespace sitehlp;
using namespace test;
using testing::IsEmpty;

// Maps names of operations in tests/threads to the names of their steps, which are those in
// tests/resilience.
const std::map<std::string, std::string> c_underAnotherName = {
    {"FreeSiteListMemory", "release"},
    {"MergeSiteLists of two lists", "merge of two lists"},
    {"ReadSiteList", "read"},
    {"ReadSiteList without the lock", "read-unlocked"},
    {"MustReadSiteList", "must-read"},
    {"SmartReadSiteList", "smart-read"},
    {"needToUpdateInMemSiteList", "change-notice"},
    {"GetPYXServerInfo", "servers"},
    {"GetSiteListBuffer", "buffer"},
    {"GetSitelistVersions", "versions"},
    {"GetSitelistFipsMode", "fips-mode"},
    {"GetCaCertificates", "certificates"},
    {"MergeSiteLists with the own list", "merge"},
    {"ValidateSiteListForInstall", "validate"},
    {"ImportSiteList", "import"},
    {"ImportSiteList into a new directory", "import-new-directory"},
    {"InstallSiteList", "install"},
    {"CreateSiteList", "create"},
    {"CreateSiteListFromBuffer", "create-from-buffer"},
    {"CreateServerSiteList", "server-list"},
    {"CreateServerSiteList with adjusted passwords", "server-list-adjusted"},
    {"modifySiteList", "modify"},
    {"createServerSiteListFromSiteList", "derive"},
};

class FreedMemory : public testing::Test {
 protected:
  // One operation to test. `prepare` runs without the search for secrets, `run` with it.
  struct Step {
    std::string name;
    std::function<void()> prepare;
    std::function<void()> run;
  };

  FreedMemory() {
    // A value that is too long for its field is logged at detail level, by design.
    workshop.agent.settings.logLevel = LogLevel::Error;
    workshop.agent.apply();
    secrets = secretsOf(workshop);
  }
  ~FreedMemory() override {
    EXPECT_THAT(faults.lines(), IsEmpty());
    EXPECT_EQ(faults.count(), 0U);
  }

  void watch(const Step& step, const std::string& what) {
    workshop.agent.clearLog();
    unsigned long found = 0;
    {
      const FreedBlocks freed(secrets);
      try {
        step.run();
      } catch (const std::bad_alloc&) {
      }
      found = freed.found();
    }
    ++runs;
    if (found != 0) faults.add(step.name + what, std::to_string(found) + " blocks");
  }
  void tryPlainly(const Step& step) {
    step.prepare();
    watch(step, "");
  }
  void tryEachFileCall(const Step& step) {
    bool failed = true;
    for (std::size_t number = 0; failed; ++number) {
      step.prepare();
      WorkshopFileSystem files(workshop);
      files.failCall(number, EIO);
      watch(step, ", call " + std::to_string(number) + " fails");
      failed = !files.failed().empty();
    }
  }
  void tryEachAllocation(const Step& step, unsigned long stride) {
    for (const bool forGood : {false, true}) {
      bool failed = true;
      for (unsigned long number = 0; failed; number += stride) {
        step.prepare();
        const Step failing = {step.name, nullptr, [&] {
                                const FailingAllocations failure(number, forGood);
                                step.run();
                                failed = failure.failed() != 0;
                              }};
        failed = true;
        watch(failing, ", allocation " + std::to_string(number) + " fails");
      }
    }
  }

  // Returns a step for every operation. The clear passwords of the caller are created before `run`.
  std::vector<Step> operations() {
    std::vector<Step> steps = fileOperations();
    for (std::vector<Step>& some : std::vector<std::vector<Step>>{recordOperations(), writers()}) {
      std::move(some.begin(), some.end(), std::back_inserter(steps));
    }
    std::set<std::string> names;
    for (const Step& step : steps) names.insert(step.name);
    for (const auto& [operation, step] : c_underAnotherName) {
      EXPECT_EQ(names.count(step), 1U) << step;
      names.insert(operation);
    }
    // The other operations get no clear password from the caller.
    for (const SharedOperation& operation : sharedOperations()) {
      if (names.count(operation.name) != 0) continue;
      steps.push_back({operation.name, [this] { workshop.reset(); },
                       [this, &operation] { operation.run(workshop); }});
    }
    return steps;
  }

  std::vector<Step> fileOperations() {
    std::vector<Step> steps;
    for (const auto* operations : {&writingOperations(), &readingOperations()}) {
      for (const Operation& operation : *operations) {
        // These operations create the caller's clear passwords themselves. Steps below replace
        // them.
        const std::string name = operation.name;
        if (name == "create" || name == "first-password") continue;
        steps.push_back({name, [this, &operation] { workshop.reset(operation); },
                         [this, &operation] { operation.run(workshop); }});
      }
    }
    steps.push_back({"create",
                     [this] {
                       workshop.reset();
                       fillList();
                     },
                     [this] {
                       CSitesHelper(wide(workshop.own()))
                           .CreateSiteList(list.head(), L"", L"G", L"L", L"Client", {L"c"});
                     }});
    steps.push_back({"EncryptPassword", [this] { workshop.reset(); },
                     [this] {
                       std::wstring sealed;
                       CSitesHelper(true).EncryptPassword(clear, sealed);
                     }});
    steps.push_back({"EncryptPassword with a new key",
                     [this] {
                       workshop.reset();
                       writeFile(workshop.keystore() + "/password.key", std::string(32, 'n'), 0600);
                     },
                     [this] {
                       std::wstring sealed;
                       CSitesHelper(true).EncryptPassword(clear, sealed);
                     }});
    steps.push_back({"merge of two lists",
                     [this] {
                       workshop.reset();
                       fillList();
                     },
                     [this] {
                       SiteChain merged;
                       CSitesHelper(true).MergeSiteLists(list.head(), list.head(), true,
                                                         merged.address());
                     }});
    steps.push_back({"release", [this] { fillList(); }, [this] { list.clear(); }});
    return steps;
  }

  // A step on the caller's list.
  Step onList(const std::string& name, std::function<void()> run) {
    return {name,
            [this] {
              workshop.reset();
              fillList();
              target.take(list.release());
              fillList();
              setText(list.head()->szType, L"fallback");
            },
            std::move(run)};
  }

  std::vector<Step> recordOperations() {
    return {
        onList("MergeThisSiteList",
               [this] {
                 SiteChain merged;
                 tag_Site* tail = nullptr;
                 CSitesHelper(true).MergeThisSiteList(list.head(), true, &tail, merged.address());
               }),
        onList("GetFallbackSite and UpdateFallbackSite",
               [this] {
                 tag_Site* fallback = nullptr;
                 tag_Site* tail = target.last();
                 CSitesHelper helper(true);
                 setText(target.head()->szType, L"fallback");  // is replaced
                 for (int i = 0; i < 2; ++i) {
                   if (helper.GetFallbackSite(list.head(), &fallback) != 0) return;
                   helper.UpdateFallbackSite(fallback, &tail, target.address());
                   setText(target.head()->szType, L"repository");  // the next one is appended
                 }
               }),
        onList("GetVestaSite and UpdateVestaSite",
               [this] {
                 SiteChain servers;
                 if (CSitesHelper(true).GetVestaSite(list.head(), servers.address()) != 0) return;
                 tag_Site* tail = target.last();
                 CSitesHelper(true).UpdateVestaSite(servers.release(), &tail, target.address());
               }),
        onList("MergeSiteLists into the second list",
               [this] {
                 SiteChain merged;
                 CSitesHelper(wide(workshop.own()))
                     .MergeSiteLists(nullptr, list.head(), true, merged.address());
               }),
        onList("SourceSiteListCheck",
               [this] { CSitesHelper(true).SourceSiteListCheck(list.head(), true); }),
        onList("AdjustSitesOrder", [this] { CSitesHelper(true).AdjustSitesOrder(list.head()); }),
        onList("InternalImportSiteList",
               [this] {
                 CSitesHelper(wide(workshop.own()))
                     .InternalImportSiteList(wide(workshop.incoming()), list.head(), L"");
               }),
        onList("createDirectoriesAndCopyKeyFiles",
               [this] {
                 CSitesHelper(wide(workshop.own()))
                     .createDirectoriesAndCopyKeyFiles(wide(workshop.incoming()), list.head(), L"");
               }),
        {"ReadListContents", [this] { workshop.reset(); },
         [this] {
           ListContents contents;
           CSitesHelper::ReadListContents(wide(workshop.own()), contents, [](tag_Site* site) {
             CSitesHelper::FreeSiteListMemory(site);
           });
         }},
        // A direct call decrypts with the password key, as a read of the agent's own list does.
        {"AdjustPwd", [this] { workshop.reset(); },
         [this] {
           const std::string bytes = readFile(workshop.own());
           korvel_com::ZQ::crypto::AnObjectBuffer<unsigned char> buffer(
               static_cast<unsigned int>(bytes.size()),
               reinterpret_cast<const unsigned char*>(bytes.data()));
           CSitesHelper(wide(workshop.own())).AdjustPwd(buffer);
         }},
        {"decrypt_data",
         [this] {
           workshop.reset();
           recovered.assign(recovered.capacity(), L'\0');
           recovered.clear();
         },
         [this, sealed = wide(protect(workshop, c_canary, Owner::Server))] {
           decrypt_data(sealed, recovered);
         }},
    };
  }

  // The operations that add the element of one record to a tree.
  std::vector<Step> writers() {
    struct Writer : CSitesHelper {
      using CSitesHelper::CSitesHelper;
      using CSitesHelper::m_pSiteListElement;
    };
    using Add = int (CSitesHelper::*)(tag_Site*, int);
    std::vector<Step> steps;
    const auto add = [&](const std::string& name, Add member, std::int32_t kind) {
      steps.push_back(onList(name, [this, member, kind] {
        AdvXMLParser::Document document(L"SiteList");
        AdvXMLParser::Element anchor = document.GetRoot();
        Writer writer(true);
        writer.m_pSiteListElement = &anchor;
        for (tag_Site* site = list.head(); site; site = site->pNext) {
          if (site->eSiteKind == kind) (writer.*member)(site, 0);
        }
      }));
    };
    add("AddHTTPSite", &CSitesHelper::AddHTTPSite, SITE_KIND_HTTP);
    add("AddFTPSite", &CSitesHelper::AddFTPSite, SITE_KIND_FTP);
    add("AddUNCSite", &CSitesHelper::AddUNCSite, SITE_KIND_UNC);
    add("AddLocalSite", &CSitesHelper::AddLocalSite, SITE_KIND_LOCAL);
    add("AddProxySite", &CSitesHelper::AddProxySite, SITE_KIND_PROXY);
    return steps;
  }

  void fillList() {
    list.clear();
    list.add(httpSite(L"http"));
    list.add(ftpSite(L"ftp"));
    list.add(uncSite(L"unc"));
    list.add(localSite(L"local"));
    list.add(proxySite(L"proxy"));
    list.add(serverSite(L"server"));
    for (tag_Site* site = list.head(); site; site = site->pNext) fillPasswords(*site);
  }
  void fillPasswords(tag_Site& site) const {
    switch (site.eSiteKind) {
      case SITE_KIND_HTTP:
        return setText(site.http.szPassword, clear);
      case SITE_KIND_FTP:
        return setText(site.ftp.szPassword, clear);
      case SITE_KIND_UNC:
        return setText(site.unc.szPassword, clear);
      case SITE_KIND_LOCAL:
        return setText(site.local.szPassword, clear);
      default:
        setText(site.proxy.szHttpProxyPassword, clear);
        setText(site.proxy.szFtpProxyPassword, clear);
        setText(site.proxy.szAlternateHttpProxyPassword, clear);
        setText(site.proxy.szAlternateFtpProxyPassword, clear);
    }
  }

  Workshop workshop;
  std::vector<std::string> secrets;
  const std::wstring clear = wide(c_canary);
  SiteChain list;
  SiteChain target;
  // The caller must wipe the clear passwords that it receives.
  std::wstring recovered = std::wstring(4096, L'\0');
  Faults faults;
  unsigned long runs = 0;
};

TEST_F(FreedMemory, IsLookedInto) {
  const FreedBlocks freed(secrets);
  std::free(std::malloc(100));
  EXPECT_EQ(freed.found(), 0U);
  unsigned long found = 0;
  for (const std::string& secret : secrets) {
    char* block = static_cast<char*>(std::malloc(secret.size() + 100));
    std::memcpy(block + 50, secret.data(), secret.size());
    // The block is too large to grow in place.
    block = static_cast<char*>(std::realloc(block, std::size_t{1} << 20));
    found += 1;
    EXPECT_EQ(freed.found(), found);
    std::free(block);
    found += 1;
    EXPECT_EQ(freed.found(), found);
    // A new block must not contain the content of an earlier block.
    std::free(std::malloc(secret.size() + 100));
    EXPECT_EQ(freed.found(), found);
  }
}

TEST_F(FreedMemory, HoldsNothingAfterAnyOperation) {
  for (const Step& step : operations()) tryPlainly(step);
  EXPECT_GT(runs, 20U);
}

TEST_F(FreedMemory, HoldsNothingWhateverFileCallFails) {
  for (const Step& step : operations()) tryEachFileCall(step);
  EXPECT_GT(runs, 500U);
}

// Every fourth allocation of an operation fails in turn.
TEST_F(FreedMemory, HoldsNothingWhateverAllocationFails) {
  for (const Step& step : operations()) tryEachAllocation(step, 4);
  EXPECT_GT(runs, 1000U);
}

TEST_F(FreedMemory, HoldsNothingWhenTheKindOfARecordWasChanged) {
  for (const std::int32_t kind : {0, 1, 2, 3, 4, 5, -1}) {
    tryPlainly({"kind " + std::to_string(kind),
                [&] {
                  fillList();
                  for (tag_Site* site = list.head(); site; site = site->pNext) {
                    site->eSiteKind = kind;
                  }
                },
                [&] { list.clear(); }});
  }
}

TEST_F(FreedMemory, HoldsNothingOfARecordThatWasReadAndChanged) {
  for (const std::int32_t kind : {0, 1, 2, 3, 4, 5, -1}) {
    tryPlainly({"kind " + std::to_string(kind),
                [&] {
                  list.clear();
                  ASSERT_EQ(
                      CSitesHelper(true).ReadSiteList(wide(workshop.own()), list.address(), true),
                      0);
                  for (tag_Site* site = list.head(); site; site = site->pNext) {
                    site->eSiteKind = kind;
                  }
                },
                [&] { list.clear(); }});
  }
}

// The kinds share memory, so a member of another kind may put a zero into a password.
TEST_F(FreedMemory, HoldsNothingBehindAZeroInAPassword) {
  const auto hide = [this](wchar_t(&field)[c_textCapacity]) {
    setText(field, L"x" + clear);
    field[0] = L'\0';
  };
  tryPlainly({"zero before a password",
              [&] {
                fillList();
                for (tag_Site* site = list.head(); site; site = site->pNext) {
                  if (site->eSiteKind == SITE_KIND_HTTP) hide(site->http.szPassword);
                  if (site->eSiteKind == SITE_KIND_FTP) hide(site->ftp.szPassword);
                  if (site->eSiteKind == SITE_KIND_UNC) hide(site->unc.szPassword);
                  if (site->eSiteKind == SITE_KIND_LOCAL) hide(site->local.szPassword);
                }
              },
              [&] { list.clear(); }});
}

// A password in every place that a document has for one.
std::string everyPlace(const std::string& sealed) {
  const std::string password = "<Password Encrypted=\"1\">" + sealed + "</Password>";
  std::string proxy = "<ProxyConfigList><ProxyConfig Name=\"p\">";
  for (const std::string name : {"HttpProxyPassword", "FtpProxyPassword",
                                 "AlternateHttpProxyPassword", "AlternateFtpProxyPassword"}) {
    proxy += "<" + name + ">" + sealed + "</" + name + ">";
  }
  std::string sites;
  for (const std::string kind : {"HttpSite", "FTPSite", "UNCSite", "LocalSite"}) {
    sites += "<" + kind + " Name=\"s\">" + password + "</" + kind + ">";
  }
  return document(sites + proxy + "</ProxyConfig></ProxyConfigList>");
}

class FreedOddPasswords : public FreedMemory {
 protected:
  // Every operation that decrypts a password of a document, with each of the two keys.
  std::vector<Step> readingOf(const std::string& name, const std::string& byAgent,
                              const std::string& byServer) {
    const std::string path = workshop.incoming();
    const auto store = [this, path, document = everyPlace(byAgent)] {
      workshop.reset();
      writeFile(path, document, 0600);
    };
    const std::wstring text = wide(everyPlace(byAgent));
    const std::wstring value = wide(byServer);
    return {
        {"read of " + name, store,
         [path] {
           SiteChain read;
           CSitesHelper(true).ReadSiteList(wide(path), read.address(), true);
         }},
        {"import of " + name, store,
         [this, path] { CSitesHelper(wide(workshop.own())).ImportSiteList(wide(path), L""); }},
        {"text with " + name, [this] { workshop.reset(); },
         [this, text] { CSitesHelper(wide(workshop.own())).CreateSiteListFromBuffer(text); }},
        {"server's list with " + name, [this] { workshop.reset(); },
         [this, bytes = everyPlace(byServer)] {
           korvel_com::ZQ::crypto::AnObjectBuffer<unsigned char> buffer(
               static_cast<unsigned int>(bytes.size()),
               reinterpret_cast<const unsigned char*>(bytes.data()));
           CSitesHelper(wide(workshop.own())).CreateServerSiteList(buffer, true);
         }},
        {"decrypt_data of " + name,
         [this] {
           // The caller must wipe what it receives.
           recovered.assign(recovered.capacity(), L'\0');
           recovered.clear();
         },
         [this, value] { decrypt_data(value, recovered); }},
    };
  }

  std::vector<Step> everyReading() {
    std::vector<Step> steps;
    const auto add = [&](const std::vector<Step>& more) {
      steps.insert(steps.end(), more.begin(), more.end());
    };
    for (const OddPassword& odd : oddPasswords()) {
      add(readingOf("a password, " + odd.name, protect(workshop, odd.clear, Owner::Agent),
                    protect(workshop, odd.clear, Owner::Server)));
    }
    const std::string foreign = protect(workshop, c_canary, Owner::OtherAgent);
    add(readingOf("a password of another key", foreign, foreign));
    const std::string byAgent = protect(workshop, c_canary, Owner::Agent);
    const std::string byServer = protect(workshop, c_canary, Owner::Server);
    add(readingOf("a password that is not base64", byAgent + "*", byServer + "*"));
    add(readingOf("a password that is cut", byAgent.substr(4), byServer.substr(4)));
    return steps;
  }
};

TEST_F(FreedOddPasswords, AreGoneAfterAnyRead) {
  for (const Step& step : everyReading()) tryPlainly(step);
  EXPECT_GT(runs, 50U);
}

TEST_F(FreedOddPasswords, AreGoneWhateverFileCallFails) {
  for (const Step& step : everyReading()) tryEachFileCall(step);
}

// Every seventh allocation of a read fails in turn.
TEST_F(FreedOddPasswords, AreGoneWhateverAllocationFails) {
  for (const Step& step : everyReading()) tryEachAllocation(step, 7);
}

// A single password, so that every allocation can fail.
TEST_F(FreedOddPasswords, OfOneElementAreGoneWhateverAllocationFails) {
  for (const OddPassword& odd : oddPasswords()) {
    const std::string sealed = protect(workshop, odd.clear, Owner::Agent);
    const std::wstring byServer = wide(protect(workshop, odd.clear, Owner::Server));
    const std::wstring text =
        L"<r><HttpSite><Password>" + wide(sealed) + L"</Password></HttpSite></r>";
    const std::unique_ptr<AdvXMLParser::Document> document(
        AdvXMLParser::Parser().Parse(text.data(), text.size()));
    for (AdvXMLParser::Element element : document->GetRoot().Elements()) {
      tryEachAllocation({"an element, " + odd.name, [] {},
                         [&] {
                           void* record = nullptr;
                           CSitesHelper(true).ReadSiteFromSiteList(&element, &record);
                           if (record) std::memset(record, 0, sizeof(tag_HttpSite));
                           std::free(record);
                         }},
                        1);
    }
    tryEachAllocation({"decrypt_data, " + odd.name,
                       [this] {
                         recovered.assign(recovered.capacity(), L'\0');
                         recovered.clear();
                       },
                       [&] { decrypt_data(byServer, recovered); }},
                      1);
  }
}

}  // namespace
