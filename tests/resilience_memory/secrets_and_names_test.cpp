#include <gtest/gtest.h>
#include <openssl/provider.h>
#include <openssl/rand.h>

#include <functional>
#include <new>
#include <string>
#include <vector>

#include "host/common/base64.h"
#include "host/crypto/sealed_value.h"
#include "host/xml/xml_name.h"
#include "platform/crypto/crypt_shim.h"
#include "tests/resilience_memory/every_allocation.h"
#include "tests/support/child_process.h"
#include "tests/support/server_password.h"
#include "tests/support/test_agent.h"

namespace {

using host::SecretBytes;
using test::FailingAllocations;

// Does something with its first allocation failing, then its second, and so on until none is left
// to fail. `work` returns whether it succeeded. Returns the number of failures.
int refusals(const std::function<bool()>& work) {
  EXPECT_TRUE(work());  // creates the objects that a process creates only once
  bool failed = true;
  bool done = false;
  int refused = 0;
  for (unsigned long n = 0; failed; ++n) {
    const FailingAllocations failing(n, false);
    done = false;
    try {
      done = work();
    } catch (const std::bad_alloc&) {
    }
    failed = failing.failed() != 0;
    refused += failed && !done;
  }
  EXPECT_TRUE(done);
  return refused;
}

TEST(Shortage, LeavesTheOutputOfAPasswordThatIsNotProtectedAsItWas) {
  const test::TestAgent agent;
  auto* const service = korvel_com::ZQ::crypto::CryptShim::instance();
  auto* const object =
      service->create_encryption_object(korvel_com::ZQ::crypto::ENCRYPTION_TYPE_PASSWORD);
  ASSERT_NE(object, nullptr);
  const std::wstring clear(40, L'ж');  // takes more room in UTF-8 than it has characters
  const std::wstring old(100, L'o');   // has room for nothing else
  std::wstring text;
  std::wstring again;
  const int refused = refusals([&] {
    text = old;
    bool done = false;
    try {
      done = object->encrypt_string(clear, text) != 0;
    } catch (const std::bad_alloc&) {
    }
    if (!done) {
      EXPECT_EQ(text, old);
    }
    return done;
  });
  EXPECT_GT(refused, 2);
  EXPECT_NE(object->decrypt_string(text, again), 0);
  EXPECT_EQ(again, clear);
  service->destroy_encryption_object(object);
}

// Encrypts a value for the first time in this process while an allocation fails, then encrypts it
// again. Sends whether an allocation failed and whether both attempts ended correctly.
CHILD_PROCESS(sealForTheFirstTime) {
  // Allocations of libcrypto for its first use must not fail.
  unsigned char random = 0;
  if (RAND_bytes(&random, 1) != 1 || OSSL_PROVIDER_available(nullptr, "default") != 1) return 1;
  const SecretBytes key(host::c_keySize, 'k');
  std::vector<unsigned char> sealed;
  const auto seal = [&] { return host::Sealer(key).seal(key.data(), key.size(), sealed); };
  bool first = false;
  bool failed = false;
  {
    const FailingAllocations failing(std::stoul(args[0]), false);
    try {
      first = seal();
    } catch (const std::bad_alloc&) {
    }
    failed = failing.failed() != 0;
  }
  bool second = false;
  try {
    second = seal();
  } catch (const std::bad_alloc&) {
  }
  channel.send(std::string(failed ? "failed" : "all there") + (first ? " done" : " refused") +
               (second ? " done" : " refused"));
  return 0;
}

TEST(Shortage, OfAMomentLeavesTheCipherForLater) {
  unsigned long refused = 0;
  std::string answer;
  for (unsigned long n = 0; answer.rfind("all there", 0) != 0; ++n) {
    test::ChildProcess child("sealForTheFirstTime", {std::to_string(n)});
    answer = child.receive();
    ASSERT_EQ(child.wait(), 0);
    refused += answer == "failed refused done";
    EXPECT_EQ(answer.substr(answer.rfind(' ')), " done") << "allocation " << n << ": " << answer;
  }
  EXPECT_EQ(answer, "all there done done");
  EXPECT_GT(refused, 0U);
}

TEST(Shortage, MakesNoSealerThatDoesNotWork) {
  const SecretBytes key(host::c_keySize, 'k');
  const unsigned char clear[] = "clear";
  std::vector<unsigned char> sealed;
  EXPECT_GT(refusals([&] {
              host::Sealer sealer(key);
              return sealer.seal(clear, sizeof clear, sealed);
            }),
            0);
  SecretBytes opened;
  EXPECT_TRUE(host::Sealer(key).open(sealed.data(), sealed.size(), opened));
  EXPECT_EQ(opened, SecretBytes(clear, clear + sizeof clear));
}

TEST(Shortage, MakesNoServerPasswordThatDoesNotOpen) {
  const test::TestAgent agent;
  const std::string key(32, 'k');
  test::writeFile(agent.dataDirectory() + "/keystore/server.key", key, 0600);
  std::string password;
  EXPECT_GT(refusals([&] {
              password = test::sealServerPassword("secret");
              return !password.empty();
            }),
            2);
  std::vector<unsigned char> sealed;
  ASSERT_TRUE(host::fromBase64(password, sealed));
  SecretBytes opened;
  EXPECT_TRUE(
      host::Sealer(SecretBytes(key.begin(), key.end())).open(sealed.data(), sealed.size(), opened));
}

TEST(Shortage, LeavesNoElementNameHalfRepaired) {
  for (const std::wstring name : {L"größer_als_ein_kurzer_Name", L"größe mit Leerzeichen darin",
                                  L"a\x20AC and more to it than that"}) {
    const std::string usual = host::XmlName(name.c_str()).c_str();
    EXPECT_GT(refusals([&] {
                EXPECT_EQ(host::XmlName(name.c_str()).c_str(), usual);
                return true;
              }),
              0);
  }
}

}  // namespace
