#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>
#include <vector>

#include "host/common/base64.h"
#include "host/common/encoding.h"
#include "host/crypto/sealed_value.h"
#include "tests/host_crypto/encryption_object.h"
#include "tests/support/test_agent.h"

// Looks into every block of memory that is given back, for as long as a secret is watched; and
// gives out none for as long as there is to be none.
namespace {

constexpr std::size_t c_head = alignof(std::max_align_t);
std::atomic<bool> g_watching{false};
std::atomic<int> g_found{0};
constexpr int c_unlimited = INT_MIN;
std::atomic<int> g_allocationsLeft{c_unlimited};
unsigned char g_needle[64];
std::size_t g_needleSize = 0;

void* allocate(std::size_t size) {
  const bool isExhausted = g_allocationsLeft != c_unlimited && g_allocationsLeft-- <= 0;
  unsigned char* const block =
      isExhausted ? nullptr : static_cast<unsigned char*>(std::malloc(size + c_head));
  if (!block) throw std::bad_alloc();
  std::memcpy(block, &size, sizeof size);
  return block + c_head;
}

void release(void* memory) noexcept {
  if (!memory) return;
  unsigned char* const bytes = static_cast<unsigned char*>(memory);
  if (g_watching) {
    std::size_t size = 0;
    std::memcpy(&size, bytes - c_head, sizeof size);
    g_found += std::search(bytes, bytes + size, g_needle, g_needle + g_needleSize) != bytes + size;
  }
  std::free(bytes - c_head);
}

}  // namespace

void* operator new(std::size_t size) { return allocate(size); }
void* operator new[](std::size_t size) { return allocate(size); }
void operator delete(void* memory) noexcept { release(memory); }
void operator delete[](void* memory) noexcept { release(memory); }
void operator delete(void* memory, std::size_t) noexcept { release(memory); }
void operator delete[](void* memory, std::size_t) noexcept { release(memory); }

namespace {

using test::ENCRYPTION_TYPE_PASSWORD;
using test::ENCRYPTION_TYPE_SERVER_BUFFER;
using test::EncryptionObject;

// How many blocks with these bytes in them were given back while the work was done.
template <typename Work>
int blocksGivenBackWith(const void* needle, std::size_t size, Work work) {
  std::memcpy(g_needle, needle, size);
  g_needleSize = size;
  g_found = 0;
  g_watching = true;
  work();
  g_watching = false;
  return g_found;
}

const std::string c_secret = "a quite long secret";

template <typename Work>
void expectNoTraceOfTheSecret(Work work) {
  const std::wstring wide(c_secret.begin(), c_secret.end());
  EXPECT_EQ(0, blocksGivenBackWith(c_secret.data(), c_secret.size(), work)) << "as bytes";
  // A part of it: a string that grows gives back blocks with its beginning.
  EXPECT_EQ(0, blocksGivenBackWith(wide.data(), 4 * sizeof(wchar_t), work)) << "as wide text";
}

// What the caller's own copy leaves behind is not the matter here.
void wipe(std::wstring& text) { std::fill(text.begin(), text.end(), L' '); }

TEST(CryptoMemory, WatchFindsWhatIsNotWiped) {
  EXPECT_EQ(1, blocksGivenBackWith(c_secret.data(), c_secret.size(), [] {
              const std::vector<char> copy(c_secret.begin(), c_secret.end());
            }));
}

TEST(CryptoMemory, HoldsNoPasswordAfterItWasEncryptedOrDecrypted) {
  const test::TestAgent agent;
  const std::wstring clear(c_secret.begin(), c_secret.end());
  std::wstring text;
  std::wstring result;
  expectNoTraceOfTheSecret([&] {
    const EncryptionObject object(ENCRYPTION_TYPE_PASSWORD);
    ASSERT_TRUE(object && object->encrypt_string(clear, text));
    ASSERT_TRUE(object->decrypt_string(text, result));
  });
  EXPECT_EQ(result, clear);
}

TEST(CryptoMemory, HoldsNoPasswordAfterAServerBufferWasDecrypted) {
  const test::TestAgent agent;
  test::writeFile(test::serverKeyPath(agent.dataDirectory()), std::string(32, 'k'), 0600);
  std::vector<unsigned char> sealed;
  ASSERT_TRUE(host::fromBase64(host::sealServerPassword(c_secret), sealed));
  int result = 0;
  expectNoTraceOfTheSecret([&] {
    const EncryptionObject object(ENCRYPTION_TYPE_SERVER_BUFFER);
    const test::CryptoBuffer in(static_cast<unsigned int>(sealed.size()), sealed.data());
    test::CryptoBuffer out(0, nullptr);
    result = object->decrypt_buffer(in, out);
    out.assign(1, reinterpret_cast<const unsigned char*>("x"));
  });
  EXPECT_NE(result, 0);
}

// The password that a server sealed may be anything.
TEST(CryptoMemory, HoldsNoPasswordThatWasMadeValid) {
  const std::string clear = c_secret + "\xFF\xFF\xFF" + c_secret;
  const std::wstring expected = test::wide(c_secret) + L"\uFFFD\uFFFD\uFFFD" + test::wide(c_secret);
  bool isRight = true;
  expectNoTraceOfTheSecret([&] {
    std::wstring result = host::toWide(clear.data(), clear.size());
    isRight = isRight && result == expected;
    wipe(result);
  });
  EXPECT_TRUE(isRight);
}

TEST(CryptoMemory, HoldsNoPasswordThatIsNoText) {
  const test::TestAgent agent;
  std::wstring text;
  ASSERT_TRUE(EncryptionObject(ENCRYPTION_TYPE_PASSWORD)->encrypt_string(L"", text));
  const std::string key = test::readFile(test::passwordKeyPath(agent.dataDirectory()));
  const std::string clear = c_secret + "\xFF";
  std::vector<unsigned char> sealed;
  ASSERT_TRUE(
      host::Sealer(host::SecretBytes(key.begin(), key.end()))
          .seal(reinterpret_cast<const unsigned char*>(clear.data()), clear.size(), sealed));
  const std::wstring in = test::wide(host::toBase64(sealed));
  expectNoTraceOfTheSecret(
      [&] { EXPECT_FALSE(EncryptionObject(ENCRYPTION_TYPE_PASSWORD)->decrypt_string(in, text)); });
}

TEST(CryptoMemory, HoldsNoPasswordThatTheOutputHasNoRoomFor) {
  const test::TestAgent agent;
  const std::wstring clear = test::wide(c_secret);
  std::wstring text;
  ASSERT_TRUE(EncryptionObject(ENCRYPTION_TYPE_PASSWORD)->encrypt_string(clear, text));
  const EncryptionObject object(ENCRYPTION_TYPE_PASSWORD);
  std::wstring again;
  ASSERT_TRUE(object->decrypt_string(text, again));
  int refused = 0;
  bool done = false;
  expectNoTraceOfTheSecret([&] {
    for (int before = 0; !done; ++before) {
      std::wstring out;
      g_allocationsLeft = before;
      try {
        done = object->decrypt_string(text, out) != 0;
      } catch (const std::bad_alloc&) {
        ++refused;
      }
      g_allocationsLeft = c_unlimited;
      wipe(out);
    }
    done = false;
  });
  EXPECT_GT(refused, 3);
}

TEST(CryptoMemory, HoldsNoSecretThatABufferHeld) {
  expectNoTraceOfTheSecret([] {
    test::CryptoBuffer buffer = test::bufferOf(c_secret);
    buffer.assign(static_cast<unsigned int>(c_secret.size()),
                  reinterpret_cast<const unsigned char*>(c_secret.data()));
  });
}

TEST(CryptoMemory, HoldsNoKeyAfterTheKeyWasMadeOrReplaced) {
  const test::TestAgent agent;
  const std::string path = test::passwordKeyPath(agent.dataDirectory());
  const std::string key = "this key has 32 bytes, no more,.";
  test::writeFile(path, key, 0600);
  EXPECT_EQ(0, blocksGivenBackWith(key.data(), key.size(), [&] {
              EXPECT_TRUE(EncryptionObject(ENCRYPTION_TYPE_PASSWORD));
              EXPECT_EQ(::unlink(path.c_str()), 0);
              EXPECT_TRUE(EncryptionObject(ENCRYPTION_TYPE_PASSWORD));
            }));
}

TEST(CryptoMemory, IsNotNeededToGiveAnObjectBack) {
  const test::TestAgent agent;
  auto* const service = korvel_com::ZQ::crypto::CryptShim::instance();
  std::vector<korvel_com::ZQ::crypto::IEncryption*> objects(20);
  for (auto*& object : objects) {
    object = service->create_encryption_object(ENCRYPTION_TYPE_PASSWORD);
    ASSERT_NE(object, nullptr);
  }
  std::size_t givenBack = 0;
  g_allocationsLeft = 0;
  try {
    for (auto* object : objects) {
      service->destroy_encryption_object(object);
      ++givenBack;
    }
  } catch (const std::bad_alloc&) {
  }
  g_allocationsLeft = c_unlimited;
  EXPECT_EQ(givenBack, objects.size());
}

}  // namespace
