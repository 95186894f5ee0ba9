#include "host/crypto/key_span.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <functional>
#include <new>
#include <string>
#include <utility>

#include "host/agent.h"
#include "host/crypto/key_file.h"
#include "platform/common/log.h"

namespace host {
namespace {

using korvel_com::ZQ::crypto::ENCRYPTION_TYPE_PASSWORD;
using korvel_com::ZQ::crypto::EncryptionType;

std::atomic<std::uint64_t> g_lastSpan{0};

thread_local std::uint64_t t_span = 0;
thread_local unsigned int t_depth = 0;
thread_local unsigned long t_unopened = 0;        // with the password key
thread_local unsigned long t_unopenedServer = 0;  // with the server key

// The hashes of the errors that were logged in this span. An error that does not fit is logged
// again. The hashes are in an array, because a thread_local object with a destructor ends the
// process when there is no memory for it.
thread_local std::array<std::size_t, 8> t_logged;
thread_local std::size_t t_loggedCount = 0;

bool isLogged(std::size_t hash) {
  const auto end = t_logged.begin() + static_cast<std::ptrdiff_t>(t_loggedCount);
  return std::find(t_logged.begin(), end, hash) != end;
}

void logUnopened(unsigned long count, const char* keyName, const wchar_t* adviceForOne,
                 const wchar_t* adviceForMore) {
  if (count == 0) return;
  const std::string path = keyFilePath(agent().dataDirectory, keyName);
  AString text(std::to_wstring(count));
  text.append(count == 1 ? L" protected password cannot be decrypted"
                         : L" protected passwords cannot be decrypted")
      .append(L" with the key file ")
      .append(AString(path.c_str()))
      .append(count == 1 ? L" and is read as empty. " : L" and are read as empty. ")
      .append(count == 1 ? adviceForOne : adviceForMore);
  logError(c_cryptoComponent, text);
}

void logUnopened() {
  const unsigned long own = std::exchange(t_unopened, 0);
  const unsigned long server = std::exchange(t_unopenedServer, 0);
  logUnopened(own, c_passwordKeyName,
              L"Restore the key file that protected it, or set the password again.",
              L"Restore the key file that protected them, or set the passwords again.");
  logUnopened(server, c_serverKeyName, L"The server must send it under the key in that file.",
              L"The server must send them under the key in that file.");
}

}  // namespace

std::uint64_t currentSpan() { return t_span; }

void logErrorOnce(const AString& text) {
  if (t_span != 0) {
    const std::size_t hash = std::hash<std::wstring>()(text.str());
    if (isLogged(hash)) return;
    if (t_loggedCount < t_logged.size()) t_logged[t_loggedCount++] = hash;
  }
  logError(c_cryptoComponent, text);
}

void reportUnopened(EncryptionType type) {
  ++(type == ENCRYPTION_TYPE_PASSWORD ? t_unopened : t_unopenedServer);
  if (t_span == 0) logUnopened();
}

}  // namespace host

namespace korvel_com {
namespace ZQ {
namespace crypto {

KeptKeys::KeptKeys() noexcept {
  if (host::t_depth++ == 0) host::t_span = ++host::g_lastSpan;
}

KeptKeys::~KeptKeys() {
  if (--host::t_depth != 0) return;
  host::t_span = 0;
  host::t_loggedCount = 0;
  try {
    host::logUnopened();
  } catch (const std::bad_alloc&) {
    // A failure to log must not change the result of the operation.
  }
}

}  // namespace crypto
}  // namespace ZQ
}  // namespace korvel_com
