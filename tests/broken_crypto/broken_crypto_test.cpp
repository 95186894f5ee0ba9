#include <gmock/gmock.h>
#include <unistd.h>

#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "host/agent.h"
#include "host/log_sink.h"
#include "sitehlp/sites_helper.h"
#include "tests/broken_crypto/operations.h"
#include "tests/broken_crypto/situations.h"
#include "tests/import/documents.h"
#include "tests/import/records.h"
#include "tests/support/child_process.h"
#include "tests/support/rerooted_file_system.h"
#include "tests/support/server_password.h"

namespace {

using namespace sitehlp;
using namespace test;
using testing::HasSubstr;

// Returns the number of passwords of a record that are not empty.
unsigned passwordsOf(const tag_Site& site) {
  std::vector<const wchar_t*> fields;
  switch (site.eSiteKind) {
    case SITE_KIND_HTTP:
      fields = {site.http.szPassword};
      break;
    case SITE_KIND_FTP:
      fields = {site.ftp.szPassword};
      break;
    case SITE_KIND_UNC:
      fields = {site.unc.szPassword};
      break;
    case SITE_KIND_LOCAL:
      fields = {site.local.szPassword};
      break;
    default:
      fields = {site.proxy.szHttpProxyPassword, site.proxy.szFtpProxyPassword,
                site.proxy.szAlternateHttpProxyPassword, site.proxy.szAlternateFtpProxyPassword};
  }
  unsigned count = 0;
  for (const wchar_t* field : fields) count += *field != L'\0';
  return count;
}

// Runs an operation in a process that begins with the configuration and the keys as they are now.
// Sends the result of the operation and its log lines. Then sends the result, the names and the
// number of passwords that a read of the written list gives.
CHILD_PROCESS(runOperation) {
  const Places places{args[2], args[3], args[4], args[5], args[6], args[7], args[8]};
  const auto user = static_cast<uid_t>(std::stoul(args[1]));
  if (user != 0 && (::setgid(user) != 0 || ::setuid(user) != 0)) return 1;
  host::AgentSettings settings;
  settings.dataDirectory = places.data;
  settings.logLevel = LogLevel::Info;
  host::setAgent(settings);
  std::vector<LogLine> lines;
  host::setLogSink([&](LogLevel level, const std::wstring& component, const std::wstring& text) {
    lines.push_back({level, component, text});
  });
  const RerootedFileSystem scratch("/Library/Korvel/orb/scratch", places.scratch);
  const CryptoOperation& operation = cryptoOperations()[std::stoul(args[0])];
  try {
    channel.send(operation.run(places) ? "done" : "refused");
  } catch (const std::exception& e) {
    channel.send(std::string("threw ") + e.what());
  }
  const std::vector<LogLine> logged = lines;
  for (const LogLine& line : logged) {
    std::ostringstream text;
    text << "line " << line;
    channel.send(text.str());
  }
  try {
    SiteChain list;
    const int code =
        CSitesHelper(true).ReadSiteList(wide(operation.written(places)), list.address(), true);
    unsigned passwords = 0;
    std::string names;
    for (const tag_Site* site : recordsOf(list.head())) {
      passwords += passwordsOf(*site);
      names += " " + narrow(nameOf(*site));
    }
    channel.send("read " + std::to_string(code) + names);
    channel.send("passwords " + std::to_string(passwords));
  } catch (const std::exception& e) {
    channel.send(std::string("read threw ") + e.what());
  }
  host::setLogSink(nullptr);
  return 0;
}

struct Outcome {
  std::string result;
  std::vector<std::string> lines;
  std::string list;  // the result and the names that a later read gives
  std::string passwords;

  std::vector<std::string> cryptoLines(LogLevel level) const {
    const std::string head = "[" + std::to_string(static_cast<int>(level)) + "] Crypto: ";
    std::vector<std::string> found;
    for (const std::string& line : lines) {
      if (line.rfind(head, 0) == 0) found.push_back(line.substr(head.size()));
    }
    return found;
  }
};

using Parameter = std::tuple<std::size_t, std::size_t>;

std::string nameOfCase(const testing::TestParamInfo<Parameter>& param) {
  return std::string(situations()[std::get<0>(param.param)].name) + "_" +
         cryptoOperations()[std::get<1>(param.param)].name;
}

class BrokenCrypto : public testing::TestWithParam<Parameter> {
 protected:
  BrokenCrypto()
      : situation(situations()[std::get<0>(GetParam())]),
        number(std::get<1>(GetParam())),
        operation(cryptoOperations()[number]) {
    places = {workshop.agent.dataDirectory(),
              workshop.own(),
              workshop.incoming(),
              workshop.plainIncoming(),
              workshop.keyDirectory(),
              workshop.scratchRoot(),
              workshop.scratchRoot() + "/server.xml"};
    configuration = workshop.scratchRoot() + "/libcrypto.cnf";
    prepare();
  }

  void prepare() {
    workshop.reset();
    const std::string sealed = test::sealServerPassword(c_canary);
    ASSERT_FALSE(sealed.empty());
    writeFile(places.serverDocument,
              document("<HttpSite Name=\"served\"><Password Encrypted=\"1\">" + sealed +
                       "</Password></HttpSite>"),
              0600);
    if (operation.isFirst) std::filesystem::remove(places.own);
  }

  Outcome run(const char* text, uid_t user) {
    writeFile(configuration, text, 0644);
    const char* const old = std::getenv("OPENSSL_CONF");
    const std::string usual = old ? old : "";
    if (*text != '\0') ::setenv("OPENSSL_CONF", configuration.c_str(), 1);
    ChildProcess child(
        "runOperation",
        {std::to_string(number), std::to_string(user), places.data, places.own, places.incoming,
         places.plainIncoming, places.keyDirectory, places.scratch, places.serverDocument});
    if (old) {
      ::setenv("OPENSSL_CONF", usual.c_str(), 1);
    } else {
      ::unsetenv("OPENSSL_CONF");
    }
    Outcome outcome;
    outcome.result = child.receive();
    for (std::string line = child.receive(); !line.empty(); line = child.receive()) {
      EXPECT_THAT(line, testing::Not(HasSubstr(c_canary)));
      const std::size_t space = line.find(' ');
      const std::string word = line.substr(0, space);
      if (word == "line") outcome.lines.push_back(line.substr(space + 1));
      if (word == "read") outcome.list = line;
      if (word == "passwords") outcome.passwords = line;
    }
    EXPECT_EQ(child.wait(), 0);
    return outcome;
  }

  std::string bytes() const {
    const std::string path = operation.written(places);
    return exists(path) ? readFile(path) : "no file";
  }

  Workshop workshop;
  const Situation& situation;
  const std::size_t number;
  const CryptoOperation& operation;
  Places places;
  std::string configuration;
};

TEST_P(BrokenCrypto, LeavesTheNewListOnTheDiskAndSaysWhyItHasNoPasswords) {
  const Outcome usual = run("", 0);
  ASSERT_EQ(usual.result, "done");
  ASSERT_THAT(usual.list, HasSubstr("read 0 "));
  ASSERT_THAT(usual.cryptoLines(LogLevel::Error), testing::IsEmpty());

  prepare();
  const std::string old = bytes();
  situation.prepare(workshop);
  const uid_t user = situation.asOtherUser && ::geteuid() == 0 ? c_otherUser : 0;
  const Outcome outcome = run(situation.configuration, user);

  EXPECT_EQ(outcome.result, "done");
  if (outcome.result == "done") {
    EXPECT_EQ(outcome.list, usual.list);
    EXPECT_TRUE(bytes() != old) << "the old list is still there";
  } else {
    EXPECT_EQ(bytes(), old);
  }
  // Passwords that were encrypted before, or that cannot be encrypted now, are read as empty.
  const bool opensWhatItWrites =
      !situation.reasonToWrite && operation.writes > 0 && operation.reads == 0;
  EXPECT_EQ(outcome.passwords, opensWhatItWrites ? usual.passwords : "passwords 0");

  std::vector<testing::Matcher<std::string>> errors;
  const unsigned reads = operation.reads + (situation.withoutCipher ? operation.serverReads : 0);
  if (situation.reasonToRead) {
    errors.insert(errors.end(), reads, testing::ContainsRegex(situation.reasonToRead));
  }
  if (situation.reasonToWrite) {
    errors.insert(errors.end(), operation.writes, testing::ContainsRegex(situation.reasonToWrite));
  }
  EXPECT_THAT(outcome.cryptoLines(LogLevel::Error), testing::ElementsAreArray(errors));

  const bool makesKey = situation.makesKey && operation.reads + operation.writes > 0;
  unsigned warnings = 0;
  for (const std::string& line : outcome.cryptoLines(LogLevel::Info)) {
    warnings += line.rfind("WARNING: ", 0) == 0;
  }
  EXPECT_EQ(warnings, makesKey ? 1U : 0U) << testing::PrintToString(outcome.lines);
}

INSTANTIATE_TEST_SUITE_P(Situations, BrokenCrypto,
                         testing::Combine(testing::Range(std::size_t{0}, situations().size()),
                                          testing::Range(std::size_t{0},
                                                         cryptoOperations().size())),
                         nameOfCase);

}  // namespace
