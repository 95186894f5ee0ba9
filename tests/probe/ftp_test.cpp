#include "tests/probe/probe_fixture.h"

// Sites over FTP, on a real FTP server.
namespace test {
namespace {

using testing::HasSubstr;

class ProbeFtp : public ProbeTest {
 protected:
  static Entry entry(const FtpServer& server, const std::string& path = "pub") {
    Entry made;
    made.element = "FTPSite";
    made.server = local(server.port());
    made.path = path;
    return made;
  }
  static Entry withLogin(const FtpServer& server, const std::string& password) {
    Entry made = entry(server);
    made.user = c_siteUser;
    made.password = password;
    return made;
  }
};

TEST_F(ProbeFtp, AnonymousUsersListTheDirectory) {
  const FtpServer server(file(""), FtpServer::Admits::Anonymous);
  JsonReport::Record site = probeSite(entry(server));
  EXPECT_EQ(site["state"], "ok") << output.out;
  EXPECT_EQ(site["answer"], "220 Depot ready");
  EXPECT_EQ(site["login"], "anonymous");
  EXPECT_EQ(site["entries"], "3");
  EXPECT_EQ(site["listingCut"], "false");
}

TEST_F(ProbeFtp, AUserLogsIn) {
  const FtpServer server(file(""), FtpServer::Admits::User);
  JsonReport::Record site = probeSite(withLogin(server, c_sitePassword));
  EXPECT_EQ(site["state"], "ok") << output.out;
  EXPECT_EQ(site["login"], "accepted");
  EXPECT_EQ(site["entries"], "3");
}

TEST_F(ProbeFtp, AWrongPasswordIsRefused) {
  const FtpServer server(file(""), FtpServer::Admits::User);
  JsonReport::Record site = probeSite(withLogin(server, "wrong"));
  EXPECT_EQ(site["state"], "failed");
  EXPECT_EQ(site["login"], "refused");
  EXPECT_THAT(site["error"], HasSubstr("refused the login"));
}

TEST_F(ProbeFtp, AServerThatRequiresALoginIsReported) {
  const FtpServer server(file(""), FtpServer::Admits::User);
  JsonReport::Record site = probeSite(entry(server));
  EXPECT_EQ(site["login"], "required");
}

TEST_F(ProbeFtp, AMissingDirectoryFails) {
  const FtpServer server(file(""), FtpServer::Admits::Anonymous);
  JsonReport::Record site = probeSite(entry(server, "none"));
  EXPECT_EQ(site["state"], "failed");
  EXPECT_EQ(site["login"], "anonymous");
  EXPECT_EQ(site.count("entries"), 0U) << output.out;
  EXPECT_THAT(site["error"], HasSubstr("no such directory"));
}

TEST_F(ProbeFtp, AnEmptyDirectoryHasNoEntries) {
  const FtpServer server(file(""), FtpServer::Admits::Anonymous);
  ASSERT_EQ(::system(("mkdir '" + file("ftp/empty") + "'").c_str()), 0);
  JsonReport::Record site = probeSite(entry(server, "empty"));
  EXPECT_EQ(site["state"], "ok");
  EXPECT_EQ(site["entries"], "0");
}

TEST_F(ProbeFtp, ALongListingIsCut) {
  const FtpServer server(file(""), FtpServer::Admits::Anonymous);
  for (int i = 0; i < 1500; ++i) write("ftp/many/" + std::to_string(i), "");
  JsonReport::Record site = probeSite(entry(server, "many"));
  EXPECT_EQ(site["state"], "ok") << output.out;
  EXPECT_EQ(site["listingCut"], "true");
}

}  // namespace
}  // namespace test
