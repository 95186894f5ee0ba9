#include "platform/crypto/key_conf.h"

#include "host/agent.h"

namespace korvel_com {
namespace ZQ {
namespace crypto {

KeySize KeyConf::getCryptoKeySize() { return host::agent().cryptoKeySize; }

}  // namespace crypto
}  // namespace ZQ
}  // namespace korvel_com
