#ifndef HOST_XML_PASSED_DOCUMENTS_H
#define HOST_XML_PASSED_DOCUMENTS_H

#include <cstddef>
#include <optional>

#include "host/crypto/keyed_digest.h"
#include "host/xml/well_formed.h"

// The last documents that checkWellFormed has accepted, so that a process need not check the same
// bytes again. Only digests are kept, never a text. Any thread.
namespace host {

// How many documents are remembered: the agent's own list, the mesh copy, the server's list and an
// incoming one.
constexpr std::size_t c_passedDocuments = 4;

// Has the contract of checkWellFormed, but does not check a remembered document again.
Standalone checkWellFormedOnce(const char* utf8, std::size_t size,
                               const AdvXMLParser::WrittenIn* writtenIn);

// Returns the digest by which a document is remembered. Returns nothing if it cannot be remembered.
std::optional<KeyedDigest> digestOfDocument(const char* utf8, std::size_t size,
                                            const AdvXMLParser::WrittenIn* writtenIn);

// Returns the result for a remembered document, or nothing for any other one.
std::optional<Standalone> findPassedDocument(const KeyedDigest& digest);

}  // namespace host

#endif
