#include "tools/sitelist/probe/curl_session.h"

#include <curl/curl.h>
#include <openssl/crypto.h>

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>

namespace tool {
namespace {

// The size of a block is stored before it.
union Head {
  std::size_t size;
  std::max_align_t alignment;
};

Head* headOf(void* block) { return static_cast<Head*>(block) - 1; }

void* allocate(std::size_t size) {
  if (size > std::numeric_limits<std::size_t>::max() - sizeof(Head)) return nullptr;
  auto* const head = static_cast<Head*>(std::malloc(sizeof(Head) + size));
  if (!head) return nullptr;
  head->size = size;
  return head + 1;
}

void release(void* block) {
  if (!block) return;
  Head* const head = headOf(block);
  OPENSSL_cleanse(block, head->size);
  std::free(head);
}

void* resize(void* block, std::size_t size) {
  void* const larger = allocate(size);
  if (!larger || !block) return larger;
  const std::size_t old = headOf(block)->size;
  std::memcpy(larger, block, old < size ? old : size);
  release(block);
  return larger;
}

char* duplicate(const char* text) {
  const std::size_t size = std::strlen(text) + 1;
  void* const copy = allocate(size);
  if (copy) std::memcpy(copy, text, size);
  return static_cast<char*>(copy);
}

void* allocateZeros(std::size_t count, std::size_t size) {
  if (size != 0 && count > std::numeric_limits<std::size_t>::max() / size) return nullptr;
  void* const block = allocate(count * size);
  if (block) std::memset(block, 0, count * size);
  return block;
}

}  // namespace

void openCurlSession() {
  ::unsetenv("SSLKEYLOGFILE");
  const CURLcode code =
      curl_global_init_mem(CURL_GLOBAL_ALL, allocate, release, resize, duplicate, allocateZeros);
  if (code != CURLE_OK) throw std::bad_alloc();
}

}  // namespace tool
