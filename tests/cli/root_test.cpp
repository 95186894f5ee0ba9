#include "tests/cli/cli_fixture.h"
#include "tests/cli/documents.h"

// The root element of a list, for every command that reads one.
namespace test {
namespace {

using testing::HasSubstr;

std::string withRoot(const std::string& name, const std::string& namespaces = "") {
  return "<" + name + namespaces + "><SiteList>" + httpSite("depot") + "</SiteList></" + name + ">";
}

std::string inUtf16(const std::string& ascii) {
  std::string text = "\xFF\xFE";
  for (const char c : ascii) text.append(1, c).append(1, '\0');
  return text;
}

using CliRoot = CliTest;

TEST_F(CliRoot, OfAListMayHaveAnyPrefixEncodingAndProlog) {
  for (const std::string& text :
       {withRoot("SiteLists"), withRoot("x:SiteLists", " xmlns:x=\"other\""),
        inUtf16(withRoot("SiteLists")), "\xEF\xBB\xBF" + withRoot("SiteLists"),
        "<?xml version=\"1.0\"?><!-- <other> --><?other?>" + withRoot("SiteLists")}) {
    const Output output = sitelist({"show", write("list.xml", text)});
    EXPECT_EQ(output.status, 0) << output.err;
    EXPECT_THAT(output.out, HasSubstr("depot"));
  }
}

TEST_F(CliRoot, ThatIsAnotherElementIsRefusedEvenAboveSites) {
  for (const char* name : {"other", "SiteListsToo", "sitelists", "SiteLists:other"}) {
    const std::string list = write("list.xml", withRoot(name, " xmlns:SiteLists=\"x\""));
    const Output output = sitelist({"show", list});
    EXPECT_EQ(output.status, 3) << name;
    EXPECT_EQ(output.out, "");
    EXPECT_EQ(output.err,
              "sitelist: " + list + ": the document is not a site list\n  its root is \"" + name +
                  "\", not \"ns:SiteLists\"\n" + "  next: check that it is the right file\n");
  }
}

}  // namespace
}  // namespace test
