#include "host/xml/limits.h"
#include "platform/common/anxml.h"
#include "tests/limits/limits_fixture.h"

// Edited lists that a reader would refuse are not written.
namespace {

using namespace sitehlp;
using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

std::string server(const std::string& name, const std::string& children = "") {
  return "<VestaSite Type=\"master\" Name='" + name +
         "' Server=\"s:80\" ServerName=\"s:80\" ServerIP=\"10.0.0.1:80\">" + children +
         "</VestaSite>";
}

std::string withAttributes(const std::string& element, const std::string& prefix,
                           std::size_t number) {
  std::string text = "<" + element;
  for (std::size_t i = 0; i < number; ++i) text += " " + prefix + std::to_string(i) + "=\"v\"";
  return text + "/>";
}

class EditLimits : public LimitsTest {
 protected:
  EditLimits() {
    agent.settings.logLevel = LogLevel::Error;
    agent.apply();
  }

  // Adds the servers of another list to one with these children.
  bool addServers(const std::string& children, const std::string& servers) {
    writeFile(own, document(children));
    writeFile(incoming, document(servers));
    agent.clearLog();
    return CSitesHelper(wide(own)).modifySiteList(wide(incoming).c_str(), false, true, L"");
  }
  void expectAdded(const std::string& children, const std::string& servers) {
    EXPECT_TRUE(addServers(children, servers));
    EXPECT_THAT(agent.texts(LogLevel::Error), IsEmpty());
    EXPECT_EQ(readCode(own), c_success);
    EXPECT_TRUE(readFile(own) != document(children)) << "nothing was added";
  }
  void expectRefused(const std::string& children, const std::string& servers,
                     const std::wstring& line) {
    EXPECT_FALSE(addServers(children, servers));
    EXPECT_THAT(agent.texts(LogLevel::Error), ElementsAre(line));
    EXPECT_TRUE(readFile(own) == document(children)) << "the list has changed";
  }

  const std::wstring notWritten = L"Cannot write the edited list " + wide(own) + L": ";
  const std::wstring tooMuch = notWritten + L"document over the limit: ";
  const TempDir work;
  const std::string incoming = work.file("SiteList.xml");
};

TEST_F(EditLimits, HoldForTheSitesOfAList) {
  expectAdded(repeated("<LocalSite/>", host::c_maxChildren - 1), server("new"));
  expectRefused(repeated("<LocalSite/>", host::c_maxChildren), server("new"),
                tooMuch + L"number of child elements");
}

// A quotation mark between apostrophes becomes "&quot;" when it is written.
TEST_F(EditLimits, HoldForATagThatGrows) {
  expectAdded("", server(std::string(host::c_maxTokenBytes / 8, '"')));
  expectRefused("", server(std::string(host::c_maxTokenBytes / 6, '"')),
                tooMuch + L"length of a token");
}

// Child elements of a site with the same name become one element with the attributes of all.
TEST_F(EditLimits, HoldForTheAttributesOfElementsThatBecomeOne) {
  const std::string most = withAttributes("Odd", "a", host::c_maxAttributes);
  expectAdded("", server("new", most + withAttributes("Odd", "a", 1)));
  expectRefused("", server("new", most + withAttributes("Odd", "b", 1)),
                tooMuch + L"number of attributes");
}

TEST_F(EditLimits, HoldForTheMemoryOfTheRecordsThatAReaderMakes) {
  agent.settings.maxRecordMegabytes = 1;
  agent.apply();
  const std::size_t most = (std::size_t{1} << 20) / sizeof(tag_Site);
  expectAdded(repeated("<LocalSite/>", most - 2), server("a") + server("b"));
  expectRefused(repeated("<LocalSite/>", most - 2), server("a") + server("b") + server("c"),
                notWritten + L"list over the limit: memory for records");
}

// The list may have had too many sites before the edit.
TEST_F(EditLimits, HoldForTheSitesThatAnEditLeavesAlone) {
  const std::wstring tooMany = L"list over the limit: number of elements of unknown kind";
  writeFile(incoming, document(server("new")));
  for (const std::size_t more : {0, 1}) {
    const std::string list = document(repeated("<Odd/>", c_mostUnknown + more));
    for (const bool repositories : {false, true}) {
      writeFile(own, list);
      agent.clearLog();
      EXPECT_EQ(
          CSitesHelper(wide(own)).modifySiteList(wide(incoming).c_str(), repositories, false, L""),
          more == 0);
      if (more == 0) continue;
      EXPECT_THAT(agent.texts(LogLevel::Error), ElementsAre(notWritten + tooMany));
      EXPECT_TRUE(readFile(own) == list) << "the list has changed";
    }
  }
}

TEST_F(EditLimits, HoldForADerivedList) {
  const std::string derived = work.file("ServerSiteList.xml");
  const std::wstring from = wide(agent.dataDirectory() + "/etc");
  const std::string local = "<HttpSite Local='1'/>";  // is left out
  writeFile(own, document(local + repeated("<Odd/>", c_mostUnknown)));
  EXPECT_TRUE(
      CSitesHelper::createServerSiteListFromSiteList(from.c_str(), wide(work.path()).c_str()));
  EXPECT_EQ(readCode(derived), c_errorGeneral);
  writeFile(derived, "old");
  writeFile(own, document(local + repeated("<Odd/>", c_mostUnknown + 1)));
  agent.clearLog();
  EXPECT_FALSE(
      CSitesHelper::createServerSiteListFromSiteList(from.c_str(), wide(work.path()).c_str()));
  EXPECT_THAT(agent.texts(LogLevel::Error),
              ElementsAre(L"Cannot write the edited list " + wide(derived) +
                          L": list over the limit: number of elements of unknown kind"));
  EXPECT_EQ(readFile(derived), "old");
}

// The reason of a failed call names the file as well.
TEST_F(EditLimits, LeaveTheNameOfTheFileOnceInTheLineOfAFailedWrite) {
  writeFile(own, document(""));
  AnXml list;
  ASSERT_TRUE(list.useExistingFile(wide(own), L"ns:SiteLists", nullptr, nullptr));
  const std::string directory = work.file("missing");
  agent.clearLog();
  EXPECT_FALSE(list.writeFile(wide(directory + "/SiteList.xml"), false, false));
  EXPECT_THAT(agent.texts(LogLevel::Error),
              ElementsAre(L"Cannot write the edited list " + wide(directory) +
                          L"/SiteList.xml: No such file or directory"));
}

// A document that was edited node by node.
class EditedDocument : public EditLimits {
 protected:
  EditedDocument() {
    writeFile(own, document(""));
    EXPECT_TRUE(list.useExistingFile(wide(own), L"ns:SiteLists", nullptr, nullptr));
  }

  bool isWritten() {
    agent.clearLog();
    const bool written = list.writeFile(wide(own), false, false);
    EXPECT_EQ(agent.texts(LogLevel::Error).size(), written ? 0U : 1U);
    EXPECT_TRUE(AnXml().useExistingFile(wide(own), L"ns:SiteLists", nullptr, nullptr));
    return written;
  }
  void expectTooMuch(const std::wstring& what) {
    const std::string before = readFile(own);
    EXPECT_FALSE(isWritten());
    EXPECT_THAT(agent.texts(LogLevel::Error), ElementsAre(tooMuch + what));
    EXPECT_TRUE(readFile(own) == before) << "the document has changed";
  }

  AnXml list;
};

TEST_F(EditedDocument, IsWrittenWithTheMostAttributesOfItsRootAndNotWithMore) {
  AnXmlNode root(&list);
  AnXmlValueIndex values(root);
  AString name;
  AString value;
  std::size_t number = 0;
  while (values.moveNext(name, value)) ++number;
  for (; number < host::c_maxAttributes; ++number) {
    root.setValue((L"a" + std::to_wstring(number)).c_str(), L"v");
  }
  EXPECT_TRUE(isWritten());
  root.setValue(L"another", L"v");
  expectTooMuch(L"number of attributes");
}

TEST_F(EditedDocument, IsWrittenWithTheMostChildrenOfItsRootAndNotWithMore) {
  AnXmlNode root(&list);
  AnXmlNode child;
  AnXmlChildIndex children(root, nullptr);
  std::size_t number = 0;
  while (children.moveNext(child)) ++number;
  for (; number < host::c_maxChildren; ++number) root.addChild(child, L"Odd", nullptr, nullptr);
  EXPECT_TRUE(isWritten());
  root.addChild(child, L"Odd", nullptr, nullptr);
  expectTooMuch(L"number of child elements");
}

TEST_F(EditedDocument, IsWrittenAtTheGreatestDepthAndNotBeyond) {
  AnXmlNode node(&list);
  for (std::size_t depth = 1; depth < host::c_maxDepth; ++depth) {
    ASSERT_TRUE(node.addChild(node, L"Odd", nullptr, nullptr));
  }
  EXPECT_TRUE(isWritten());
  node.setValue(nullptr, L"a text is no element");
  EXPECT_TRUE(isWritten());
  ASSERT_TRUE(node.addChild(node, L"Odd", nullptr, nullptr));
  expectTooMuch(L"depth");
}

}  // namespace
