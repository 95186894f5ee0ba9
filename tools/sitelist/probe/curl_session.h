#ifndef TOOLS_SITELIST_PROBE_CURL_SESSION_H
#define TOOLS_SITELIST_PROBE_CURL_SESSION_H

namespace tool {

// Prepares libcurl for the process. Afterwards libcurl wipes memory before it releases it, because
// the memory may hold passwords. Removes SSLKEYLOGFILE from the environment, because libcurl would
// write the keys of connections to that file. Must be called once, before any thread starts.
void openCurlSession();

}  // namespace tool

#endif
