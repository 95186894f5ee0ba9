#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include "host/crypto/keyed_digest.h"
#include "tests/host_crypto/encryption_object.h"
#include "tests/support/child_process.h"
#include "tests/support/server_password.h"
#include "tests/support/test_agent.h"

// Processes whose configuration of libcrypto has no AES-256-GCM.
namespace {

using korvel_com::ZQ::crypto::KeptKeys;
using test::ENCRYPTION_TYPE_PASSWORD;
using test::ENCRYPTION_TYPE_SERVER_BUFFER;
using test::EncryptionObject;

constexpr const char* c_protected = "AQEBAQEBAQEBAQEBAQEBAQEBAQEBAQEBAQEBAQEBAQEB";

// Sends the result of each operation, then the logged errors.
CHILD_PROCESS(useCiphers) {
  const test::TestAgent agent;
  test::writeFile(test::serverKeyPath(agent.dataDirectory()), std::string(32, 's'), 0600);
  test::writeFile(test::passwordKeyPath(agent.dataDirectory()), std::string(32, 'p'), 0600);
  std::optional<KeptKeys> kept;
  if (args.at(0) == "span") kept.emplace();
  std::string results;
  std::wstring text = L"old";
  for (int turn = 0; turn < 2; ++turn) {
    const EncryptionObject object(ENCRYPTION_TYPE_PASSWORD);
    results += object && object->encrypt_string(L"secret", text) ? "1" : "0";
    results += object && object->decrypt_string(test::wide(c_protected), text) ? "1" : "0";
  }
  const EncryptionObject object(ENCRYPTION_TYPE_SERVER_BUFFER);
  test::CryptoBuffer out = test::bufferOf("old");
  results +=
      object && object->decrypt_buffer(test::bufferOf(std::string(40, '\1')), out) ? "1" : "0";
  results += test::sealServerPassword("secret").empty() ? "0" : "1";
  for (int turn = 0; turn < 2; ++turn) results += host::keyedDigest({}, "text", 4) ? "1" : "0";
  kept.reset();
  channel.send(results + " " + test::narrow(text) + " " + out.cpp_str());
  for (const std::wstring& error : agent.texts(LogLevel::Error)) channel.send(test::narrow(error));
  channel.send("end");
  return 0;
}

class NoCipher : public testing::TestWithParam<std::pair<const char*, const char*>> {
 protected:
  // The lines of a child that runs with the configuration.
  std::vector<std::string> linesOf(const std::string& span) {
    const test::TempDir dir;
    test::writeFile(dir.file("openssl.cnf"), GetParam().second);
    const char* const old = std::getenv("OPENSSL_CONF");
    const std::string usual = old ? old : "";
    ::setenv("OPENSSL_CONF", dir.file("openssl.cnf").c_str(), 1);
    test::ChildProcess child("useCiphers", {span});
    if (old) {
      ::setenv("OPENSSL_CONF", usual.c_str(), 1);
    } else {
      ::unsetenv("OPENSSL_CONF");
    }
    std::vector<std::string> lines;
    for (std::string line = child.receive(); !line.empty() && line != "end";
         line = child.receive()) {
      lines.push_back(line);
    }
    EXPECT_EQ(child.wait(), 0);
    return lines;
  }
};

const auto c_isAboutTheCipher =
    testing::AllOf(testing::StartsWith("AES-256-GCM is not available from libcrypto: "),
                   testing::EndsWith("; passwords cannot be encrypted or decrypted"));

TEST_P(NoCipher, NothingIsProtectedOrRecoveredAndTheOutputsStay) {
  const std::vector<std::string> lines = linesOf("no span");
  ASSERT_FALSE(lines.empty());
  EXPECT_EQ(lines[0], "00000000 old old");
  EXPECT_EQ(lines.size(), 1U + 6U) << "one error for each call";
  for (std::size_t i = 1; i < lines.size(); ++i) EXPECT_THAT(lines[i], c_isAboutTheCipher);
}

TEST_P(NoCipher, IsToldOnceForAList) {
  const std::vector<std::string> lines = linesOf("span");
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_EQ(lines[0], "00000000 old old");
  EXPECT_THAT(lines[1], c_isAboutTheCipher);
}

INSTANTIATE_TEST_SUITE_P(
    Configurations, NoCipher,
    testing::Values(std::make_pair("BaseProviderAlone",
                                   "openssl_conf = all\n[all]\nproviders = list\n[list]\n"
                                   "base = base\n[base]\nactivate = 1\n"),
                    std::make_pair("FipsWithoutAFipsProvider",
                                   "openssl_conf = all\n[all]\nalg_section = properties\n"
                                   "[properties]\ndefault_properties = fips=yes\n"),
                    std::make_pair("LegacyProviderAlone",
                                   "openssl_conf = all\n[all]\nproviders = list\n[list]\n"
                                   "legacy = legacy\n[legacy]\nactivate = 1\n"),
                    std::make_pair("LegacyProviderAskedFor",
                                   "openssl_conf = all\n[all]\nalg_section = properties\n"
                                   "providers = list\n[properties]\n"
                                   "default_properties = provider=legacy\n[list]\n"
                                   "default = on\nlegacy = on\n[on]\nactivate = 1\n")),
    [](const auto& parameter) { return std::string(parameter.param.first); });

}  // namespace
