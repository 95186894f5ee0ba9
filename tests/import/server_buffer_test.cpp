#include <gmock/gmock.h>

#include <filesystem>

#include "tests/import/documents.h"
#include "tests/import/log_lines.h"
#include "tests/import/records.h"
#include "tests/support/server_password.h"
#include "tests/support/test_agent.h"

using namespace sitehlp;
using namespace test;
using korvel_com::ZQ::crypto::AnObjectBuffer;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::Not;
using testing::Pair;

namespace {

constexpr int c_limitExceeded = AdvXMLParser::ReadWriteException::LIMIT_EXCEEDED;

AnObjectBuffer<unsigned char> bufferOf(const std::string& bytes) {
  return AnObjectBuffer<unsigned char>(static_cast<unsigned int>(bytes.size()),
                                       reinterpret_cast<const unsigned char*>(bytes.data()));
}

class ServerBuffer : public testing::Test {
 protected:
  ServerBuffer() {
    writeFile(agent.dataDirectory() + "/keystore/server.key", std::string(32, 'K'), 0600);
    keySize(korvel_com::ZQ::crypto::KEY_SIZE_2048);
  }
  void keySize(korvel_com::ZQ::crypto::KeySize size) {
    agent.settings.cryptoKeySize = size;
    agent.apply();
  }
  int create(const std::string& bytes, bool adjustPasswords) {
    AnObjectBuffer<unsigned char> buffer(static_cast<unsigned int>(bytes.size()),
                                         reinterpret_cast<const unsigned char*>(bytes.data()));
    agent.clearLog();
    return helper.CreateServerSiteList(buffer, adjustPasswords);
  }
  int adjust(const std::string& bytes) {
    AnObjectBuffer<unsigned char> buffer(static_cast<unsigned int>(bytes.size()),
                                         reinterpret_cast<const unsigned char*>(bytes.data()));
    agent.clearLog();
    return helper.AdjustPwd(buffer);
  }
  // The stored list as a helper reads it.
  SiteChain stored() {
    SiteChain list;
    OpenHelper reader(true);
    EXPECT_EQ(reader.ReadSiteList(wide(file), list.address(), true), 0);
    return list;
  }
  std::vector<std::wstring> certificates() {
    std::vector<std::wstring> texts;
    EXPECT_EQ(helper.GetCaCertificates(wide(file), texts), 0);
    return texts;
  }
  static std::string withPassword(const std::string& sealed) {
    return "<HttpSite Name=\"a\" Server=\"a:80\"><Password Encrypted=\"1\">" + sealed +
           "</Password></HttpSite>";
  }

  TestAgent agent;
  const std::string own = agent.etc("SiteList.xml");
  const std::string file = agent.dataDirectory() + "/ServerSiteList.xml";
  OpenHelper helper{wide(own)};
};

TEST_F(ServerBuffer, WithoutAdjustmentTheBytesAreStoredUnchanged) {
  std::string bytes("not even <xml\0\xff\xfe", 16);
  for (const bool adjustPasswords : {false, true}) {
    keySize(adjustPasswords ? korvel_com::ZQ::crypto::KEY_SIZE_LEGACY
                            : korvel_com::ZQ::crypto::KEY_SIZE_2048);
    bytes += "x";
    EXPECT_EQ(create(bytes, adjustPasswords), 1);
    EXPECT_EQ(readFile(file), bytes);
    EXPECT_TRUE(tracedScope(agent, L"CreateServerSiteList"));
    EXPECT_THAT(libraryTraces(agent), Not(Contains(L"Reading Sitelist")));
  }
  keySize(korvel_com::ZQ::crypto::KEY_SIZE_LEGACY);
  EXPECT_EQ(create("", false), 1);
  EXPECT_EQ(readFile(file), "");
}

TEST_F(ServerBuffer, APlainWriteThatFailsGivesZero) {
  std::filesystem::create_directory(file);
  EXPECT_EQ(create(document(httpElement("a")), false), 0);
}

// Shows: server-passwords, store-server-list
TEST_F(ServerBuffer, AdjustedPasswordsMoveFromTheServersProtectionToTheAgents) {
  const std::string sealed = test::sealServerPassword("open sesame");
  ASSERT_FALSE(sealed.empty());
  EXPECT_EQ(create(document(withPassword(sealed)), true), 1);
  EXPECT_THAT(readFile(file), Not(HasSubstr("open sesame")));
  EXPECT_THAT(readFile(file), Not(HasSubstr(sealed)));
  const SiteChain list = stored();
  ASSERT_NE(list.head(), nullptr);
  EXPECT_EQ(std::wstring(list.head()->http.szPassword), L"open sesame");
  EXPECT_TRUE(tracedScope(agent, L"CreateServerSiteList"));
  EXPECT_TRUE(tracedScope(agent, L"Reading Sitelist"));
  for (const LogLine& line : agent.log()) {
    EXPECT_THAT(narrow(line.text), Not(HasSubstr("open sesame")));
  }
}

TEST_F(ServerBuffer, TheServersRecoveryIsUsedForTheCallOnly) {
  const std::string sealed = test::sealServerPassword("open sesame");
  EXPECT_EQ(create(document(withPassword(sealed)), true), 1);
  EXPECT_EQ(helper.m_bUseDecryptData, 0);
  EXPECT_EQ(create("<broken", true), 1);
  EXPECT_EQ(helper.m_bUseDecryptData, 0);
}

TEST_F(ServerBuffer, AdjustedListsKeepVersionsAndCertificatesOfTheRoot) {
  EXPECT_EQ(create(document(serverElement("s", "5.1") + httpElement("a"),
                            "<CaBundle><CaCertificate>2</CaCertificate><Other/>"
                            "<CaCertificate>1</CaCertificate></CaBundle>",
                            R"(GlobalVersion="G" LocalVersion="L" Type="Server")"),
                   true),
            1);
  std::wstring global, local, type;
  ASSERT_EQ(helper.GetSitelistVersions(wide(file), global, local, type), 0);
  EXPECT_EQ(global, L"G");
  EXPECT_EQ(local, L"L");
  EXPECT_EQ(type, L"Server");
  EXPECT_THAT(certificates(), ElementsAre(L"2", L"1"));
  EXPECT_THAT(namesOf(stored().head()), ElementsAre(L"s", L"a"));
}

TEST_F(ServerBuffer, AnAdjustedListWithoutTypeIsAClientList) {
  writeFile(own, document("", "", R"(GlobalVersion="g" LocalVersion="l" Type="Server")"));
  OpenHelper ofAServer{wide(own)};
  AnObjectBuffer<unsigned char> buffer =
      bufferOf(document(httpElement("a"), "", R"(GlobalVersion="G" LocalVersion="L")"));
  EXPECT_EQ(ofAServer.CreateServerSiteList(buffer, true), 1);
  std::wstring global, local, type;
  ASSERT_EQ(helper.GetSitelistVersions(wide(file), global, local, type), 0);
  EXPECT_EQ(type, L"Client");
}

TEST_F(ServerBuffer, AnAdjustedListWithoutVersionsGetsTheWriters) {
  EXPECT_EQ(create(document(httpElement("a"), "", ""), true), 1);
  std::wstring global, local, type;
  ASSERT_EQ(helper.GetSitelistVersions(wide(file), global, local, type), 0);
  EXPECT_THAT(narrow(local), MatchesRegex("[0-9]{14}"));
  EXPECT_EQ(global, local);
}

TEST_F(ServerBuffer, WithoutABundleTheAgentsOwnCertificatesAreNotConsulted) {
  writeFile(own, document("", "<CaBundle><CaCertificate>own</CaCertificate></CaBundle>"));
  EXPECT_EQ(create(document(httpElement("a")), true), 1);
  EXPECT_THAT(readFile(file), Not(HasSubstr("CaBundle")));
}

TEST_F(ServerBuffer, PolicySettingsAreReadKeptAndWritten) {
  EXPECT_EQ(create(document(httpElement("a"), policies("p", "v"), "", policies("late", "l")), true),
            1);
  EXPECT_THAT(helper.m_policySettings, ElementsAre(Pair(L"p", L"v")));
  EXPECT_THAT(readFile(file), HasSubstr("name=\"p\""));
}

TEST_F(ServerBuffer, AnyUnicodeEncodingIsAdjusted) {
  const std::string text = document(httpElement("a"));
  std::string utf16 = "\xff\xfe";
  for (const char c : text.substr(text.find("<ns:"))) (utf16 += c) += '\0';
  EXPECT_EQ(create(utf16, true), 1);
  EXPECT_THAT(namesOf(stored().head()), ElementsAre(L"a"));
}

TEST_F(ServerBuffer, TheAdjustedPathAnswersOneWhateverHappens) {
  for (const std::string& bytes : {std::string("<broken"), std::string(), std::string("text"),
                                   std::string("<a>\xff\xff</a>")}) {
    EXPECT_EQ(create(bytes, true), 1);
    EXPECT_FALSE(exists(file)) << "nothing is written if the text is not a document";
  }
  std::filesystem::create_directory(file);
  EXPECT_EQ(create(document(httpElement("a")), true), 1);
}

TEST_F(ServerBuffer, TheFormerListStaysWhenTheBytesAreNoDocument) {
  writeFile(file, "former");
  EXPECT_EQ(create("<broken", true), 1);
  EXPECT_EQ(readFile(file), "former");
  EXPECT_EQ(create(document(httpElement("a")), true), 1);
  EXPECT_THAT(namesOf(stored().head()), ElementsAre(L"a"));
}

using AdjustPasswords = ServerBuffer;

// Shows: AdjustPwd=0, AdjustPwd=-1
TEST_F(AdjustPasswords, GiveTheResultOfTheLastSite) {
  EXPECT_EQ(adjust(document("<Unheard/>" + httpElement("a"))), 0);
  EXPECT_TRUE(tracedScope(agent, L"Reading Sitelist"));
  EXPECT_EQ(adjust(document(httpElement("b") + "<Unheard/>")), c_errorGeneral);
  EXPECT_THAT(namesOf(stored().head()), ElementsAre(L"b", L"")) << "it is written all the same";
  EXPECT_EQ(adjust(document("")), 0);
  EXPECT_THAT(namesOf(stored().head()), IsEmpty());
}

TEST_F(AdjustPasswords, DoNotReportAFailedWrite) {
  std::filesystem::create_directory(file);
  EXPECT_EQ(adjust(document(httpElement("a"))), 0);
}

// Shows: AdjustPwd=-5, AdjustPwd=-104
TEST_F(AdjustPasswords, RefuseBytesThatAreNoDocument) {
  EXPECT_EQ(adjust("<broken"), c_errorParse);
  EXPECT_EQ(adjust("text"), c_errorParse);
  EXPECT_EQ(adjust(""), c_errorParse);
  EXPECT_EQ(adjust("<a>\xff\xff</a>"), c_errorParse);
  std::string deep;
  for (int i = 0; i < 100000; ++i) deep += "<a>";
  for (int i = 0; i < 100000; ++i) deep += "</a>";
  EXPECT_EQ(adjust(deep), c_limitExceeded);
  EXPECT_FALSE(exists(file));
}

TEST_F(AdjustPasswords, CalledDirectlyUseTheRecoveryThatIsSet) {
  std::wstring agents;
  ASSERT_NE(helper.EncryptPassword(L"of the agent", agents), 0);
  EXPECT_EQ(adjust(document(withPassword(narrow(agents)))), 0);
  EXPECT_EQ(std::wstring(stored().head()->http.szPassword), L"of the agent");

  const std::string servers = test::sealServerPassword("of the server");
  EXPECT_EQ(adjust(document(withPassword(servers))), 0);
  EXPECT_EQ(std::wstring(stored().head()->http.szPassword), L"");
  helper.m_bUseDecryptData = 1;
  EXPECT_EQ(adjust(document(withPassword(servers))), 0);
  EXPECT_EQ(std::wstring(stored().head()->http.szPassword), L"of the server");
  EXPECT_EQ(helper.m_bUseDecryptData, 1);
}

}  // namespace
