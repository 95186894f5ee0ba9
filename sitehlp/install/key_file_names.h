#ifndef SITEHLP_INSTALL_KEY_FILE_NAMES_H
#define SITEHLP_INSTALL_KEY_FILE_NAMES_H

namespace sitehlp {

// The key files that accompany a site list: the server's public key and the request secret key, in
// the older and in the 2048-bit set.
constexpr const wchar_t* c_srPubKey = L"srpubkey.bin";
constexpr const wchar_t* c_reqSecKey = L"reqseckey.bin";
constexpr const wchar_t* c_sr2048PubKey = L"sr2048pubkey.bin";
constexpr const wchar_t* c_req2048SecKey = L"req2048seckey.bin";

// Appended to a directory unchanged, including the backslash.
constexpr const wchar_t* c_fipsMarker = L"\\agentfipsmode";

}  // namespace sitehlp

#endif
