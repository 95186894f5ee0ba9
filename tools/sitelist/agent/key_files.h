#ifndef TOOLS_SITELIST_AGENT_KEY_FILES_H
#define TOOLS_SITELIST_AGENT_KEY_FILES_H

#include <string>

#include "sitehlp/install/key_file_names.h"
#include "sitehlp/site.h"

namespace tool {

// The names of all key files.
constexpr const wchar_t* c_keyFiles[] = {sitehlp::c_srPubKey, sitehlp::c_reqSecKey,
                                         sitehlp::c_sr2048PubKey, sitehlp::c_req2048SecKey};

// Returns whether a list has a management server with a version. Only such a list needs key files.
bool hasVersionedServer(const sitehlp::tag_Site* sites);

// Returns why a key file cannot be used, or an empty text. Does not read the key.
std::string whyUnusable(const std::string& path);

}  // namespace tool

#endif
