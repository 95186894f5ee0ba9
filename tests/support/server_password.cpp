#include "tests/support/server_password.h"

#include <vector>

#include "host/agent.h"
#include "host/common/base64.h"
#include "host/crypto/key_file.h"
#include "host/crypto/sealed_value.h"

namespace test {

std::string sealServerPassword(const std::string& clear) {
  host::SecretBytes key;
  host::KeyFileState state;
  std::vector<unsigned char> sealed;
  if (!host::readKeyFile(host::keyFilePath(host::agent().dataDirectory, host::c_serverKeyName), key,
                         state)) {
    return std::string();
  }
  host::Sealer sealer(key);
  host::reportRefusal(sealer);
  return sealer.seal(reinterpret_cast<const unsigned char*>(clear.data()), clear.size(), sealed)
             ? host::toBase64(sealed)
             : std::string();
}

}  // namespace test
