#include "tests/edit/edit_fixture.h"
#include "tests/edit/edit_model.h"
#include "tests/edit/unsynced_file_system.h"

using namespace sitehlp;
using namespace test;

namespace {

std::string attributesOf(const Repository& repository, const std::string& name) {
  return "Name=\"" + name + "\"" +
         (repository.order ? " Order=\"" + *repository.order + "\"" : "") +
         (repository.type ? " Type=\"" + *repository.type + "\"" : "");
}

class ModifyRepositories : public EditFixture {
 protected:
  // Replaces the repositories of the target with those of the source, and compares the result with
  // the model.
  void check(const Repositories& targets, const Repositories& sources) {
    target(
        document("<First/>" + (targets.http ? vendorHttp(attributesOf(*targets.http, "th")) : "") +
                 "<Between/>" + (targets.ftp ? vendorFtp(attributesOf(*targets.ftp, "tf")) : "") +
                 httpElement("last")));
    source(
        document((sources.ftp ? vendorFtp(attributesOf(*sources.ftp, "sf"), "<F>f</F>") : "") +
                 (sources.http ? vendorHttp(attributesOf(*sources.http, "sh"), "<H>h</H>") : "") +
                 httpElement("unused")));
    const Replacement slots = modelReplacement(targets, sources);
    std::string expected = "<First/>";
    if (targets.http && !slots.http) expected += vendorHttp(attributesOf(*targets.http, "th"));
    expected += "<Between/>";
    if (targets.ftp && !slots.ftp) expected += vendorFtp(attributesOf(*targets.ftp, "tf"));
    expected += httpElement("last");
    if (slots.http) {
      expected +=
          vendorHttp(attributesOf(in(*slots.http, *targets.http, *sources.http), "sh"), "<H>h</H>");
    }
    if (slots.ftp) {
      expected +=
          vendorFtp(attributesOf(in(*slots.ftp, *targets.ftp, *sources.ftp), "sf"), "<F>f</F>");
    }
    ASSERT_TRUE(modify(true, false));
    ASSERT_EQ(result(), canonical(document(expected)));
  }
  // Returns the repository `fresh` of the source with the order `slot`. `fresh` replaces `former`.
  // If `fresh` has a type and that of `former` is not empty, the result has the type of `former`.
  static Repository in(int slot, const Repository& former, const Repository& fresh) {
    Repository repository{std::to_string(slot), fresh.type};
    if (fresh.type && former.type && !former.type->empty()) repository.type = former.type;
    return repository;
  }

  UnsyncedFileSystem files;
};

TEST_F(ModifyRepositories, EveryCombinationOfOrdersAndTypesIsEditedAsTheModelSays) {
  using Text = std::optional<std::string>;
  const std::vector<Text> orders = {std::nullopt, "1", "2"};
  const std::vector<Text> types = {std::nullopt, "fallback", "Fallback"};
  for (int i = 0; i < 81; ++i) {
    const Text& targetHttp = orders[static_cast<std::size_t>(i % 3)];
    const Text& targetFtp = orders[static_cast<std::size_t>(i / 3 % 3)];
    const Text& sourceHttp = orders[static_cast<std::size_t>(i / 9 % 3)];
    const Text& sourceFtp = orders[static_cast<std::size_t>(i / 27)];
    for (const Text& httpType : types) {
      for (const Text& ftpType : types) {
        ASSERT_NO_FATAL_FAILURE(
            check({Repository{targetHttp, httpType}, Repository{targetFtp, ftpType}},
                  {Repository{sourceHttp, "mirror"}, Repository{sourceFtp, "mirror"}}))
            << i;
      }
    }
  }
}

TEST_F(ModifyRepositories, EveryCombinationOfPresenceIsEditedAsTheModelSays) {
  const std::optional<Repository> one = Repository{"1", "repository"};
  const std::optional<Repository> two = Repository{"2", std::nullopt};
  for (int i = 0; i < 16; ++i) {
    const auto present = [i](int bit, const std::optional<Repository>& repository) {
      return i & bit ? repository : std::nullopt;
    };
    ASSERT_NO_FATAL_FAILURE(
        check({present(1, one), present(2, two)}, {present(4, two), present(8, one)}))
        << i;
    ASSERT_NO_FATAL_FAILURE(
        check({present(1, two), present(2, one)}, {present(4, two), present(8, one)}))
        << i;
  }
}

TEST_F(ModifyRepositories, OrdersAreReadAsNumbersFromTheFrontOfTheirText) {
  for (const char* order : {"0", "-1", "", "x", " 3", "+2", "2x", "65535", "007"}) {
    ASSERT_NO_FATAL_FAILURE(check({Repository{order, std::nullopt}, Repository{"2", std::nullopt}},
                                  {Repository{"5", std::nullopt}, Repository{"3", std::nullopt}}))
        << order;
    ASSERT_NO_FATAL_FAILURE(check({Repository{"1", std::nullopt}, Repository{"2", std::nullopt}},
                                  {Repository{order, std::nullopt}, Repository{"1", std::nullopt}}))
        << order;
  }
}

TEST_F(ModifyRepositories, TheSourcesPreferenceTakesTheTargetsSlots) {
  target(document(vendorHttp(R"(Name="th" Order="1")") + vendorFtp(R"(Name="tf" Order="2")")));
  source(document(vendorHttp(R"(Name="sh" Order="5")") + vendorFtp(R"(Name="sf" Order="3")")));
  EXPECT_TRUE(modify(true, false));
  EXPECT_EQ(result(), canonical(document(vendorHttp(R"(Name="sh" Order="2")") +
                                         vendorFtp(R"(Name="sf" Order="1")"))));
}

TEST_F(ModifyRepositories, AFallbackKeepsItsSlot) {
  target(document(vendorHttp(R"(Name="th" Order="1" Type="fallback")") +
                  vendorFtp(R"(Name="tf" Order="2" Type="repository")")));
  source(document(vendorHttp(R"(Name="sh" Order="5" Type="mirror")") +
                  vendorFtp(R"(Name="sf" Order="3" Type="mirror")")));
  EXPECT_TRUE(modify(true, false));
  EXPECT_EQ(result(), canonical(document(vendorHttp(R"(Name="sh" Order="1" Type="fallback")") +
                                         vendorFtp(R"(Name="sf" Order="2" Type="repository")"))));
}

TEST_F(ModifyRepositories, OnlyTheVendorsOwnServersAreRepositoriesOfThisKind) {
  const std::string others = "<HttpSite Name=\"a\" Order=\"1\" Server=\"" VENDOR_HTTP_HOST
                             "\"/>"
                             "<HttpSite Name=\"b\" Order=\"1\" Server=\"" VENDOR_HTTP_HOST
                             ":8080\"/>"
                             "<FTPSite Name=\"c\" Order=\"1\" Server=\"" VENDOR_HTTP_HOST
                             ":80\"/>"
                             "<FTPSite Name=\"d\" Order=\"1\" Server=\"" VENDOR_FTP_HOST
                             ":80\"/>"
                             "<UNCSite Name=\"e\" Order=\"1\" Server=\"" VENDOR_FTP_HOST ":21\"/>";
  target(document(others));
  source(document(vendorHttp(R"(Name="sh" Order="1")") + vendorFtp(R"(Name="sf" Order="2")")));
  EXPECT_TRUE(modify(true, false));
  EXPECT_EQ(result(), canonical(document(others)));
}

TEST_F(ModifyRepositories, TheFirstOfSeveralIsTheOne) {
  target(document(vendorHttp(R"(Name="t1" Order="4")")));
  source(document(vendorHttp(R"(Name="s1" Order="1")") + vendorHttp(R"(Name="s2" Order="2")")));
  EXPECT_TRUE(modify(true, false));
  EXPECT_EQ(result(), canonical(document(vendorHttp(R"(Name="s1" Order="4")"))));
}

TEST_F(ModifyRepositories, ChildrenOfTheSourceReplaceThoseOfTheTarget) {
  target(document(vendorHttp(R"(Name="t" Order="4" old="x")", "<Old>o</Old>")));
  source(document(vendorHttp(R"(Name="s" Order="1" Enabled="1")",
                             "<RelativePath>p</RelativePath><New a=\"b\">n<Deep/></New>")));
  EXPECT_TRUE(modify(true, false));
  EXPECT_EQ(result(),
            canonical(document(vendorHttp(R"(Name="s" Order="4" Enabled="1")",
                                          "<RelativePath>p</RelativePath><New a=\"b\">n</New>"))));
}

TEST_F(ModifyRepositories, TheEditedListIsReadWithTheNewRepositories) {
  target(document(vendorHttp(R"(Name="th" Order="2" Enabled="1")") + httpElement("a")));
  source(document(vendorHttp(R"(Name="sh" Order="1" Enabled="1")")));
  EXPECT_TRUE(modify(true, false));
  CSitesHelper helper{wide(own)};
  ListOwner list;
  ASSERT_EQ(helper.ReadSiteList(L"", list.out(), true), 0);
  ASSERT_EQ(std::distance(list.begin(), list.end()), 2);
  const tag_Site& edited = *std::next(list.begin());
  EXPECT_EQ(std::wstring(edited.http.szName), L"sh");
  EXPECT_EQ(edited.iOrder, 2);
  EXPECT_EQ(std::wstring(edited.http.szServer), wide(VENDOR_HTTP_HOST));
}

}  // namespace
