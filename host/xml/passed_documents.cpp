#include "host/xml/passed_documents.h"

#include <array>
#include <atomic>

#include "host/crypto/cipher.h"
#include "host/process/fork_lock.h"

namespace host {
namespace {

struct PassedDocument {
  KeyedDigest digest;
  Standalone standalone;
};

std::array<PassedDocument, c_passedDocuments> g_passed HOST_GUARDED_BY(c_passedDocumentsMutex);
// The number of documents remembered so far. A new one replaces the oldest.
std::size_t g_count HOST_GUARDED_BY(c_passedDocumentsMutex) = 0;

// A digest needs the cipher for passwords. Fetching the cipher takes as long as checking
// c_bytesBeforeFetch bytes. A process that uses no password and reads little, such as most commands
// of the tool, does not fetch it.
constexpr std::size_t c_bytesBeforeFetch = 400000;
std::atomic<std::size_t> g_bytes{0};

bool areDigestsWorthTheCipher(std::size_t size) {
  return isCipherFetched() ||
         g_bytes.fetch_add(size, std::memory_order_relaxed) >= c_bytesBeforeFetch;
}

const PassedDocument* find(const KeyedDigest& digest) HOST_REQUIRES(c_passedDocumentsMutex) {
  const std::size_t known = g_count < c_passedDocuments ? g_count : c_passedDocuments;
  for (std::size_t i = 0; i < known; ++i) {
    if (g_passed[i].digest == digest) return &g_passed[i];
  }
  return nullptr;
}

// Another thread may have checked the same document meanwhile.
void remember(const KeyedDigest& digest, Standalone standalone) {
  const ForkLock lock(c_passedDocumentsMutex);
  if (find(digest)) return;
  g_passed[g_count++ % c_passedDocuments] = {digest, standalone};
}

}  // namespace

Standalone checkWellFormedOnce(const char* utf8, std::size_t size,
                               const AdvXMLParser::WrittenIn* writtenIn) {
  const std::optional<KeyedDigest> digest =
      areDigestsWorthTheCipher(size) ? digestOfDocument(utf8, size, writtenIn) : std::nullopt;
  if (digest) {
    if (const std::optional<Standalone> passed = findPassedDocument(*digest)) return *passed;
  }
  const Standalone standalone = checkWellFormed(utf8, size, writtenIn);
  if (digest) remember(*digest, standalone);
  return standalone;
}

std::optional<KeyedDigest> digestOfDocument(const char* utf8, std::size_t size,
                                            const AdvXMLParser::WrittenIn* writtenIn) {
  // The same text may be refused in another encoding, because the declared encoding must agree.
  constexpr unsigned char c_unknown = 0xFF;
  const std::array<unsigned char, 2> head = {
      writtenIn ? static_cast<unsigned char>(writtenIn->encoding) : c_unknown,
      writtenIn && writtenIn->hasMark ? static_cast<unsigned char>(1)
                                      : static_cast<unsigned char>(0)};
  return keyedDigest(head, utf8, size);
}

std::optional<Standalone> findPassedDocument(const KeyedDigest& digest) {
  const ForkLock lock(c_passedDocumentsMutex);
  const PassedDocument* const passed = find(digest);
  if (passed) return passed->standalone;
  return std::nullopt;
}

}  // namespace host
