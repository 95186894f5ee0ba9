#include "host/process/secret.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <new>
#include <string>
#include <vector>

#include "tests/support/allocation/searched_new.h"

namespace {

TEST(Wipe, ZeroesEveryByte) {
  unsigned char bytes[] = {1, 2, 3, 4};
  host::wipe(bytes + 1, 2);
  EXPECT_EQ(bytes[0], 1);
  EXPECT_EQ(bytes[1], 0);
  EXPECT_EQ(bytes[2], 0);
  EXPECT_EQ(bytes[3], 4);
  host::wipe(nullptr, 0);
}

// Returns whether the memory of a destroyed object still has the bytes.
template <typename T>
bool remains(const unsigned char (&memory)[sizeof(T)], const void* bytes, std::size_t size) {
  for (std::size_t at = 0; at + size <= sizeof(T); ++at) {
    if (std::memcmp(memory + at, bytes, size) == 0) return true;
  }
  return false;
}

template <typename Text>
void expectAShortTextIsWiped(const Text& text) {
  const std::size_t size = text.size() * sizeof(typename Text::value_type);
  alignas(host::Secret<Text>) unsigned char memory[sizeof(host::Secret<Text>)] = {};
  auto* const secret = new (memory) host::Secret<Text>;
  secret->operator*() = text;
  EXPECT_TRUE(remains<host::Secret<Text>>(memory, text.data(), size))
      << "the text is not in the object itself";
  secret->~Secret();
  EXPECT_FALSE(remains<host::Secret<Text>>(memory, text.data(), size));
}

TEST(Secret, WipesATextThatIsInTheObjectItself) {
  expectAShortTextIsWiped(std::string("hidden"));
  expectAShortTextIsWiped(std::wstring(L"pin"));
}

// A text that released memory blocks must not contain.
const std::string c_hidden = "hidden where no short text can be";

template <typename Bytes>
int foundAfterGrowthAndEnd() {
  const test::SearchedDeletes freed(c_hidden.data(), c_hidden.size());
  {
    Bytes bytes(c_hidden.begin(), c_hidden.end());
    bytes.reserve(10 * c_hidden.size());
    EXPECT_TRUE(std::equal(bytes.begin(), bytes.end(), c_hidden.begin(), c_hidden.end()));
  }
  return freed.found();
}

TEST(SecretBytes, AreWipedWhenTheyGrowAndWhenTheyDie) {
  EXPECT_EQ(foundAfterGrowthAndEnd<std::vector<unsigned char>>(), 2) << "the search is blind";
  EXPECT_EQ(foundAfterGrowthAndEnd<host::SecretBytes>(), 0);
}

TEST(Secret, WipesATextThatIsInMemoryOfItsOwn) {
  const test::SearchedDeletes freed(c_hidden.data(), c_hidden.size());
  { const std::string plain = c_hidden; }
  EXPECT_EQ(freed.found(), 1) << "the search is blind";
  {
    host::SecretText secret(c_hidden.size());
    secret->assign(c_hidden);
  }
  EXPECT_EQ(freed.found(), 1);
}

TEST(Secret, HoldsATextOfTheSizeThatItIsMadeWith) {
  host::SecretText text(3);
  EXPECT_EQ(*text, std::string(3, '\0'));
  host::SecretWideText none;
  EXPECT_TRUE(none->empty());
}

}  // namespace
