#include "host/process/secret.h"

#include <gtest/gtest.h>

#include <cstring>
#include <new>
#include <string>

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

// Whether the bytes stand in the memory of an object that was destroyed there.
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
  EXPECT_TRUE(remains<host::Secret<Text>>(memory, text.data(), size)) << "no short text";
  secret->~Secret();
  EXPECT_FALSE(remains<host::Secret<Text>>(memory, text.data(), size));
}

TEST(Secret, WipesATextThatIsInTheObjectItself) {
  expectAShortTextIsWiped(std::string("hidden"));
  expectAShortTextIsWiped(std::wstring(L"pin"));
}

TEST(Secret, HoldsATextOfTheSizeThatItIsMadeWith) {
  host::SecretText text(3);
  EXPECT_EQ(*text, std::string(3, '\0'));
  host::SecretWideText none;
  EXPECT_TRUE(none->empty());
}

}  // namespace
