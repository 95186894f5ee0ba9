#include <gtest/gtest.h>

#include <cstdlib>
#include <new>
#include <string>

#include "host/xml/document_tree.h"
#include "host/xml/tree_edit.h"
#include "tests/support/test_agent.h"

namespace {

bool g_exhausted = false;

void* allocate(std::size_t size) { return g_exhausted ? nullptr : std::malloc(size); }

// During its life, trees can allocate no further memory.
class NoMoreMemory {
 public:
  NoMoreMemory()
      : m_allocate(pugi::get_memory_allocation_function()),
        m_free(pugi::get_memory_deallocation_function()) {
    pugi::set_memory_management_functions(allocate, m_free);
    g_exhausted = true;
  }
  ~NoMoreMemory() {
    g_exhausted = false;
    pugi::set_memory_management_functions(m_allocate, m_free);
  }
  NoMoreMemory(const NoMoreMemory&) = delete;
  NoMoreMemory& operator=(const NoMoreMemory&) = delete;

 private:
  pugi::allocation_function m_allocate;
  pugi::deallocation_function m_free;
};

// Adds to an element until there is no more memory. Returns the number of successful additions.
template <typename Add>
int addedUntilShort(Add add) {
  const NoMoreMemory none;
  for (int done = 0; done < 100000; ++done) {
    try {
      add();
    } catch (const std::bad_alloc&) {
      return done;
    }
  }
  return -1;
}

class TreeMemory : public testing::TestWithParam<std::size_t> {
 protected:
  // Checks all items except the one whose allocation failed.
  template <typename Range, typename Check>
  static void expectWhole(const Range& range, int count, Check check) {
    EXPECT_GE(count, 0);
    int number = 0;
    for (const auto& item : range) {
      if (number++ < count) {
        EXPECT_TRUE(check(item)) << number << " of " << count;
      }
    }
    EXPECT_GE(number, count);
  }

  pugi::xml_document document;
  pugi::xml_node element = host::appendNode(document, pugi::node_element, "root");
};

TEST_P(TreeMemory, ThatRunsOutIsToldAndNoNameIsLostInSilence) {
  const std::string name(GetParam(), 'n');
  const int count =
      addedUntilShort([&] { host::appendNode(element, pugi::node_element, name.c_str()); });
  expectWhole(element.children(), count, [&](pugi::xml_node node) { return node.name() == name; });
}

TEST_P(TreeMemory, ThatRunsOutIsToldAndNoAttributeIsLostInSilence) {
  const std::string name(GetParam(), 'n');
  const std::string value(GetParam(), 'v');
  const int count =
      addedUntilShort([&] { host::appendAttribute(element, name.c_str(), value.c_str()); });
  expectWhole(element.attributes(), count, [&](pugi::xml_attribute attribute) {
    return attribute.name() == name && attribute.value() == value;
  });
}

TEST_P(TreeMemory, ThatRunsOutIsToldAndNoTextIsLostInSilence) {
  const std::string value(GetParam(), 't');
  const host::XmlText text(test::wide(value));
  const int count = addedUntilShort([&] { host::appendText(element, pugi::node_pcdata, text); });
  expectWhole(element.children(), count,
              [&](pugi::xml_node node) { return node.value() == value; });
}

// Short and long texts, so that memory runs out in every part of a step.
INSTANTIATE_TEST_SUITE_P(Sizes, TreeMemory, testing::Values(1, 7, 30, 100, 300, 1000, 2990));

TEST(TreeWithoutMemory, IsNotMade) {
  const NoMoreMemory none;
  EXPECT_THROW(AdvXMLParser::DocumentTree(), std::bad_alloc);
}

}  // namespace
