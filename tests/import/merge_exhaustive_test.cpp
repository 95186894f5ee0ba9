#include <gmock/gmock.h>

#include <memory>

#include "host/log_sink.h"
#include "tests/import/documents.h"
#include "tests/import/merge_model.h"
#include "tests/import/records.h"
#include "tests/support/test_agent.h"

using namespace sitehlp;
using namespace test;

namespace {

// A kind of record for the enumeration, as a record and as an element of a document.
struct Letter {
  tag_Site (*record)(const std::wstring& name);
  std::string (*element)(const std::string& name);
};

const std::string c_fallback = R"(Type="Fallback" Enabled="1")";

const std::vector<Letter> c_alphabet = {
    {httpSite, [](const std::string& name) { return httpElement(name); }},
    {serverSite, [](const std::string& name) { return serverElement(name); }},
    {[](const std::wstring& name) {
       tag_Site site = serverSite(name);
       setText(site.http.szElement, L"vestasite");
       site.szType[0] = 0;
       return site;
     },
     [](const std::string& name) { return serverElement(name, "1.0", "4", "repository"); }},
    {[](const std::wstring& name) { return typed(httpSite(name), L"fallback"); },
     [](const std::string& name) { return httpElement(name, c_fallback); }},
    {[](const std::wstring& name) { return typed(ftpSite(name), L"FALLBACK"); },
     [](const std::string& name) { return element("FTPSite", name, c_fallback); }},
    {[](const std::wstring& name) { return typed(uncSite(name), L"fallback"); },
     [](const std::string& name) { return element("UNCSite", name, c_fallback); }},
    {proxySite, proxyElement},
    // The following letters occur only in the shorter lists.
    {[](const std::wstring& name) { return typed(serverSite(name), L"fallback"); },
     [](const std::string& name) { return serverElement(name, "", "1", "fallback"); }},
    {[](const std::wstring& name) { return typed(proxySite(name), L"fallback"); },
     [](const std::string& name) {
       return "<ProxyConfigList Type=\"fallback\"><ProxyConfig Name=\"" + name +
              "\"/></ProxyConfigList>";
     }},
};
constexpr std::size_t c_lettersOfLongLists = 7;

using Word = std::vector<std::size_t>;

// Returns every word of at most `length` letters from the first `letters` letters.
std::vector<Word> words(std::size_t length, std::size_t letters) {
  std::vector<Word> all = {{}};
  for (std::size_t begin = 0, n = 0; n < length; ++n) {
    const std::size_t end = all.size();
    for (; begin < end; ++begin) {
      for (std::size_t letter = 0; letter < letters; ++letter) {
        all.push_back(all[begin]);
        all.back().push_back(letter);
      }
    }
  }
  return all;
}

// Every n-th of the words of exactly four letters.
std::vector<Word> someLongWords(std::size_t letters, std::size_t n) {
  std::vector<Word> some;
  std::size_t count = 0;
  for (const Word& word : words(4, letters)) {
    if (word.size() == 4 && count++ % n == 0) some.push_back(word);
  }
  return some;
}

struct List {
  explicit List(const Word& word, const std::string& prefix) {
    for (const std::size_t letter : word) {
      const std::string name = prefix + std::to_string(records.size());
      chain.add(c_alphabet[letter].record(wide(name)));
      records.push_back(chain.last());
    }
  }
  SiteChain chain;
  Records records;
};

std::vector<std::unique_ptr<List>> listsOf(const std::vector<Word>& all,
                                           const std::string& prefix) {
  std::vector<std::unique_ptr<List>> lists;
  for (const Word& word : all) lists.push_back(std::make_unique<List>(word, prefix));
  return lists;
}

std::string documentOf(const Word& word) {
  std::string sites;
  std::size_t position = 0;
  for (const std::size_t letter : word) {
    sites += c_alphabet[letter].element("current" + std::to_string(position++));
  }
  return document(sites);
}

std::string textOf(const Records& records) {
  std::string text;
  for (const tag_Site* record : records) text += narrow(nameOf(*record)) + " ";
  return text;
}

class MergeEnumeration : public testing::Test {
 protected:
  MergeEnumeration() {
    agent.settings.logLevel = LogLevel::Off;
    agent.apply();
  }

  // Writes this current list and reads it as a merge does.
  void current(const Word& word) {
    writeFile(path, documentOf(word));
    helper = std::make_unique<OpenHelper>(wide(path));
    ASSERT_EQ(helper->ReadSiteList(L"", readBack(), true), 0);
    input.readResult = 0;
    input.current = recordsOf(read.head());
    ASSERT_EQ(input.current.size(), word.size());
  }
  tag_Site** readBack() {
    read.clear();
    return read.address();
  }

  // Merges and compares code and every record with the model.
  void check(const List* first, const List* second, bool useSecond) {
    input.first = first && !first->records.empty() ? &first->records : nullptr;
    input.second = second && !second->records.empty() ? &second->records : nullptr;
    input.useSecond = useSecond;
    const MergeOutput expected = modelMerge(input);

    SiteChain result;
    const int code = helper->MergeSiteLists(first ? first->chain.head() : nullptr,
                                            second ? second->chain.head() : nullptr, useSecond,
                                            result.address());
    ++merges;
    const Records got = recordsOf(result.head());
    bool same = code == expected.code && got.size() == expected.records.size();
    for (std::size_t i = 0; same && i < got.size(); ++i) {
      same = got[i] != expected.records[i] && sameContent(*got[i], *expected.records[i]);
    }
    if (same) return;
    ADD_FAILURE() << "first: " << (first ? textOf(first->records) : "none")
                  << "\nsecond: " << (second ? textOf(second->records) : "none")
                  << "\ncurrent: " << textOf(input.current) << "(read " << input.readResult
                  << ")\nuse second: " << useSecond << "\ngot " << code << ": " << textOf(got)
                  << "\nexpected " << expected.code << ": " << textOf(expected.records);
    ASSERT_LT(++failures, 20) << "enough";
  }

  TestAgent agent;
  const std::string path = agent.etc("SiteList.xml");
  std::unique_ptr<OpenHelper> helper = std::make_unique<OpenHelper>(wide(path));
  SiteChain read;
  MergeInput input;
  std::size_t merges = 0;
  int failures = 0;
};

TEST_F(MergeEnumeration, EveryFirstListGoesIntoEveryCurrentList) {
  const auto first = listsOf(words(2, c_alphabet.size()), "first");
  for (const Word& word : words(3, c_lettersOfLongLists)) {
    ASSERT_NO_FATAL_FAILURE(current(word));
    for (const auto& list : first) {
      ASSERT_NO_FATAL_FAILURE(check(list.get(), nullptr, false));
    }
  }
  for (const Word& word : words(2, c_alphabet.size())) {
    ASSERT_NO_FATAL_FAILURE(current(word));
    for (const auto& list : first) {
      ASSERT_NO_FATAL_FAILURE(check(list.get(), nullptr, false));
    }
  }
  EXPECT_EQ(merges, (400u + 91u) * 91u);
}

TEST_F(MergeEnumeration, EveryCurrentListGoesIntoEverySecondList) {
  const auto second = listsOf(words(3, c_lettersOfLongLists), "second");
  for (const Word& word : words(2, c_alphabet.size())) {
    ASSERT_NO_FATAL_FAILURE(current(word));
    for (const auto& list : second) {
      ASSERT_NO_FATAL_FAILURE(check(nullptr, list.get(), true));
    }
  }
  EXPECT_EQ(merges, 91u * 400u);
}

TEST_F(MergeEnumeration, EveryFirstListGoesBehindEverySecondList) {
  const auto first = listsOf(words(2, c_alphabet.size()), "first");
  const auto second = listsOf(words(3, c_lettersOfLongLists), "second");
  input.readResult = c_errorFileMissing;  // there is no current list, and the merge reads none
  for (const auto& a : first) {
    for (const auto& b : second) ASSERT_NO_FATAL_FAILURE(check(a.get(), b.get(), true));
  }
  EXPECT_EQ(merges, 91u * 400u);
}

TEST_F(MergeEnumeration, ListsOfFourRecordsAreMergedAlike) {
  const auto first = listsOf(someLongWords(c_lettersOfLongLists, 61), "first");
  const auto second = listsOf(someLongWords(c_lettersOfLongLists, 17), "second");
  for (const Word& word : someLongWords(c_lettersOfLongLists, 23)) {
    ASSERT_NO_FATAL_FAILURE(current(word));
    for (const auto& list : first) ASSERT_NO_FATAL_FAILURE(check(list.get(), nullptr, false));
    for (const auto& list : second) ASSERT_NO_FATAL_FAILURE(check(nullptr, list.get(), true));
  }
  EXPECT_GT(merges, 15000u);
}

TEST_F(MergeEnumeration, EveryListMeetsAMissingCurrentList) {
  input.readResult = c_errorFileMissing;
  for (const auto& list : listsOf(words(3, c_lettersOfLongLists), "given")) {
    ASSERT_NO_FATAL_FAILURE(check(list.get(), nullptr, false));
    ASSERT_NO_FATAL_FAILURE(check(nullptr, list.get(), true));
  }
  EXPECT_EQ(merges, 800u);
}

TEST_F(MergeEnumeration, EveryListMeetsACurrentListThatCannotBeRead) {
  writeFile(path, "<ns:SiteLists>");
  input.readResult = c_errorParse;
  for (const auto& list : listsOf(words(3, c_lettersOfLongLists), "given")) {
    ASSERT_NO_FATAL_FAILURE(check(list.get(), nullptr, false));
    ASSERT_NO_FATAL_FAILURE(check(nullptr, list.get(), true));
  }
  EXPECT_EQ(merges, 800u);
}

TEST_F(MergeEnumeration, EveryListMeetsACurrentListWithAnUnknownElementAtItsEnd) {
  writeFile(path, document(serverElement("s") + httpElement("c", c_fallback) + "<Unheard/>"));
  input.readResult = c_errorGeneral;
  for (const auto& list : listsOf(words(3, c_lettersOfLongLists), "given")) {
    ASSERT_NO_FATAL_FAILURE(check(list.get(), nullptr, false));
    ASSERT_NO_FATAL_FAILURE(check(nullptr, list.get(), true));
  }
  EXPECT_EQ(merges, 800u);
}

}  // namespace
