#ifndef TESTS_SITEHLP_PASSWORD_FIXTURE_H
#define TESTS_SITEHLP_PASSWORD_FIXTURE_H

#include <filesystem>
#include <string>

#include "sitehlp/common/password.h"
#include "tests/sitehlp/sites_helper_fixture.h"
#include "tests/support/server_password.h"

namespace test {

class PasswordTest : public SitesHelperTest {
 protected:
  // Returns the form of a password in a document of this agent.
  std::wstring sealed(const std::wstring& clear) {
    std::wstring out;
    EXPECT_NE(helper.EncryptPassword(clear, out), 0);
    return out;
  }
  std::string sealedUtf8(const std::wstring& clear) { return narrow(sealed(clear)); }
  static std::wstring unsealed(const std::wstring& value) {
    std::wstring out = L"could not be recovered";
    sitehlp::EncryptDecryptPassword(value, out, false);
    return out;
  }

  // Writes the server key. `fill` distinguishes keys.
  void storeServerKey(char fill = 'K') {
    writeFile(agent.dataDirectory() + "/keystore/server.key", std::string(32, fill), 0600);
    agent.apply();
  }
  static std::wstring serverSealed(const std::string& clear) {
    const std::wstring value = wide(sealServerPassword(clear));
    EXPECT_FALSE(value.empty());
    return value;
  }

  // From now on the crypto service cannot get a key.
  void makeKeysUnobtainable() {
    std::filesystem::remove_all(agent.dataDirectory() + "/keystore");
    writeFile(agent.dataDirectory() + "/keystore", "in the way");
    agent.apply();
  }
};

}  // namespace test

#endif
