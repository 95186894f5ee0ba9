#include <gtest/gtest.h>

#include <new>
#include <pugixml.hpp>

#include "tests/host_xml/documents.h"

// Hostile documents.
namespace {

using namespace AdvXMLParser;
using test::parse;
using test::repeated;

// Parses it twice: the first refusal must not be remembered as a pass.
void expectOverLimit(const std::string& xml) {
  EXPECT_TRUE(test::startRemembering());
  for (int i = 0; i < 2; ++i) {
    try {
      parse(xml);
      ADD_FAILURE() << "accepted";
    } catch (const ReadWriteException& e) {
      EXPECT_EQ(e.GetErrorCode(), ReadWriteException::LIMIT_EXCEEDED);
    }
  }
}

TEST(HostileDocument, WithEntitiesThatGrowIsRefusedAtItsFirstLine) {
  std::string xml = "<!DOCTYPE lolz [<!ENTITY l0 \"lol\">";
  for (int i = 1; i < 10; ++i) {
    const std::string entity = "&l" + std::to_string(i - 1) + ";";
    xml += "<!ENTITY l" + std::to_string(i) + " \"" + repeated(entity, 10) + "\">";
  }
  xml += "]><lolz>&l9;</lolz>";
  try {
    parse(xml);
    ADD_FAILURE() << "accepted";
  } catch (const ParsingException& e) {
    EXPECT_EQ(e.GetReason(), "a document type declaration is not allowed");
  }
}

TEST(HostileDocument, NestedDeeplyIsOverTheLimit) {
  expectOverLimit(repeated("<a>", 1000000));
  expectOverLimit(repeated("<a>", 100000) + repeated("</a>", 100000));
}

TEST(HostileDocument, WithManyAttributesIsOverTheLimit) {
  std::string xml = "<a";
  for (int i = 0; i < 100000; ++i) xml += " a" + std::to_string(i) + "=''";
  expectOverLimit(xml + "/>");
}

TEST(HostileDocument, WithSectionsThatNeverEndIsRefused) {
  const std::string filler(500000, 'x');
  for (const char* start : {"<a><![CDATA[", "<a><!--", "<a><?p ", "<a b='", "<a>", "<a ", "<a"}) {
    EXPECT_THROW(parse(start + filler), ParsingException) << start;
  }
}

TEST(HostileDocument, WithOneEndlessTokenIsRefusedWhetherItEndsOrNot) {
  const std::string filler(std::size_t{32} << 20, 'x');
  expectOverLimit("<a><!--" + filler);
  expectOverLimit("<a><!--" + filler + "--></a>");
}

TEST(HostileDocument, OfManySmallElementsIsReadWhole) {
  const std::string group = "<g>" + repeated("<a/>", 500) + "</g>";
  const test::DocumentPtr document = parse("<r>" + repeated(group, 1000) + "</r>");
  ASSERT_NE(document, nullptr);
  std::size_t count = 0;
  for (const Element child : document->GetRoot().Elements()) {
    for (const Element grandchild : child.Elements()) count += grandchild.HasName(L"a");
  }
  EXPECT_EQ(count, 500000u);
}

TEST(HostileDocument, OfOpenAngleBracketsIsRefused) {
  EXPECT_THROW(parse(std::string(1000000, '<')), ParsingException);
}

// Every cut or change of a real document must give a document or one of the two exceptions.
TEST(HostileDocument, CutOffOrChangedAnywhereEndsInOneOfTheKnownWays) {
  const std::wstring whole =
      L"<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<ns:SiteLists xmlns:ns=\"wxSiteList\" "
      L"Type='Client'>"
      L"<!-- c --><SiteList Name=\"a&amp;b\"><HttpSite Order=\"1\">t&#65;<![CDATA[x]]></HttpSite>"
      L"<?p d?></SiteList></ns:SiteLists>\n";
  ASSERT_NE(parse(whole), nullptr);
  std::size_t refused = 0;
  const auto tryOne = [&refused](const std::wstring& text) {
    try {
      parse(text);
    } catch (const ParsingException&) {
      ++refused;
    } catch (const ReadWriteException&) {
      ++refused;
    }
  };
  for (std::size_t i = 0; i < whole.size(); ++i) {
    tryOne(whole.substr(0, i));
    tryOne(whole.substr(i));
    for (const wchar_t c :
         {L'\0', L'<', L'>', L'&', L'"', L'\'', L'/', L'!', L'?', L' ', L'\xD800'}) {
      std::wstring changed = whole;
      changed[i] = c;
      tryOne(changed);
    }
  }
  EXPECT_GT(refused, whole.size());
}

// The number of allocations of the tree that succeed. All later ones fail.
std::size_t g_allocationsLeft;

void* failingAllocate(std::size_t size) {
  if (g_allocationsLeft == 0) return nullptr;
  --g_allocationsLeft;
  return std::malloc(size);
}

TEST(HostileDocument, ForWhichThereIsNoMemoryThrowsWhicheverAllocationFails) {
  const auto allocate = pugi::get_memory_allocation_function();
  const auto deallocate = pugi::get_memory_deallocation_function();
  pugi::set_memory_management_functions(failingAllocate, std::free);
  const std::string big(70000, 'x');
  const std::string xml = "<r a='" + big + "'>" + big + "<!--" + big + "--><![CDATA[" + big +
                          "]]><?p " + big + "?><" + big + "/>" + repeated("<a b='c'>d</a>", 2000) +
                          "</r>";
  std::size_t failures = 0;
  bool done = false;
  for (std::size_t count = 0; count < 1000 && !done; ++count) {
    g_allocationsLeft = count;
    try {
      done = parse(xml) != nullptr;
    } catch (const std::bad_alloc&) {
      ++failures;
    }
  }
  pugi::set_memory_management_functions(allocate, deallocate);
  EXPECT_TRUE(done);
  EXPECT_GT(failures, 10u);
}

}  // namespace
