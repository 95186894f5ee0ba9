#include <gtest/gtest.h>

#include <string>

#include "sitehlp/sites_helper.h"
#include "tests/sitehlp/password_fixture.h"

// The documented format of passwords that a management server encrypts. The value was made by
// another implementation of the cipher.
namespace {

const std::string c_value = "AQABAgMEBQYHCAkKCyFjv2nlkqd6+Sny+UhcP9u+MQo3Jg14vntNzTU=";
const std::string c_withoutVersionAuthenticated =
    "AQABAgMEBQYHCAkKCyFjv2nlkqd6+Sny+dOVY6ATasAxmleC+LX2t8o=";

class ServerPasswordForm : public test::PasswordTest {
 protected:
  ServerPasswordForm() {
    std::string key;
    for (char byte = 0; byte < 32; ++byte) key.push_back(byte);
    test::writeFile(agent.dataDirectory() + "/keystore/server.key", key, 0600);
    agent.apply();
  }
  static std::wstring recovered(const std::string& value) {
    std::wstring out = L"could not be recovered";
    sitehlp::decrypt_data(test::wide(value), out);
    return out;
  }
};

// Shows: password-example, server-passwords
TEST_F(ServerPasswordForm, OfTheDocumentedExampleIsRecovered) {
  EXPECT_EQ(recovered(c_value), L"fair weather");
  EXPECT_NE(
      test::readFile(std::string(TEST_SOURCE_DIR) + "/docs/site-list-format.md").find(c_value),
      std::string::npos);
}

TEST_F(ServerPasswordForm, MayBeBrokenIntoLines) {
  EXPECT_EQ(recovered(c_value.substr(0, 20) + "\r\n  " + c_value.substr(20) + "\n"),
            L"fair weather");
}

// Shows: server-passwords, password-cipher
TEST_F(ServerPasswordForm, HasTheVersionAuthenticated) {
  EXPECT_EQ(recovered(c_withoutVersionAuthenticated), L"could not be recovered");
}

}  // namespace
