#ifndef SITEHLP_INSTALL_KEY_FILE_NAMES_H
#define SITEHLP_INSTALL_KEY_FILE_NAMES_H

namespace sitehlp {

// The key files of a site list: the management server's public key and the request key, each in an
// older and a 2048-bit version.
constexpr const wchar_t* c_srPubKey = L"srpubkey.bin";
constexpr const wchar_t* c_reqSecKey = L"reqseckey.bin";
constexpr const wchar_t* c_sr2048PubKey = L"sr2048pubkey.bin";
constexpr const wchar_t* c_req2048SecKey = L"req2048seckey.bin";

// Is appended to the path of a directory, without a separator between them. The first character is
// a backslash.
constexpr const wchar_t* c_fipsMarker = L"\\agentfipsmode";

}  // namespace sitehlp

#endif
