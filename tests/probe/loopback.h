#ifndef TESTS_PROBE_LOOPBACK_H
#define TESTS_PROBE_LOOPBACK_H

#include <netinet/in.h>

#include <cstdint>

namespace test {

// Returns an address of this machine. With port 0 the kernel chooses the port.
inline sockaddr_in loopback(int port) {
  sockaddr_in address = {};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(static_cast<std::uint16_t>(port));
  return address;
}

}  // namespace test

#endif
