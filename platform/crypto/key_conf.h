#ifndef PLATFORM_CRYPTO_KEY_CONF_H
#define PLATFORM_CRYPTO_KEY_CONF_H

#include "platform/export.h"

namespace korvel_com {
namespace ZQ {
namespace crypto {

// The size of the management server's keys.
enum KeySize {
  KEY_SIZE_LEGACY = 0,  // shorter than 2048 bits
  KEY_SIZE_2048 = 1,    // 2048 bits
};

// The configuration of keys.
class PLATFORM_API KeyConf {
 public:
  // Returns the key size that the agent is configured for. Any thread. The first call may block,
  // because it reads the agent's settings.
  static KeySize getCryptoKeySize();
};

}  // namespace crypto
}  // namespace ZQ
}  // namespace korvel_com

#endif
