#ifndef TOOLS_SITELIST_PROBE_TRANSFER_FAILURE_H
#define TOOLS_SITELIST_PROBE_TRANSFER_FAILURE_H

#include <string>

#include "tools/sitelist/probe/transfer.h"

namespace tool {

// The end of a request as libcurl reports it.
struct TransferEnd {
  int code = 0;           // of libcurl
  int systemError = 0;    // errno, or 0
  int connectStatus = 0;  // what the proxy answered to CONNECT, or 0
  bool isOverLimit = false;
  std::string detail;  // of a TLS handshake
};

// Stores in the reply why the request has failed and what to do next.
void explainFailure(const Request& request, const TransferEnd& end, Reply& reply);

}  // namespace tool

#endif
