#include "tools/sitelist/cli/log_record.h"

#include <algorithm>
#include <cwchar>
#include <iostream>
#include <set>
#include <utility>

#include "host/log_sink.h"
#include "tools/sitelist/cli/messages.h"
#include "tools/sitelist/cli/text.h"

namespace tool {
namespace {

bool g_verbose = false;
thread_local unsigned long t_unreadPasswords = 0;

std::vector<LogRecord>& records() {
  thread_local std::vector<LogRecord> kept;
  return kept;
}

const char* nameOfLevel(LogLevel level) {
  switch (level) {
    case LogLevel::Detail:
      return "detail";
    case LogLevel::Info:
      return "info";
    default:
      return "error";
  }
}

// The component of the library's class. The class logs a failed step as an error even if the
// operation continues.
constexpr const wchar_t* c_libraryComponent = L"SiteHlp";
constexpr const wchar_t* c_cryptoComponent = L"Crypto";
// In a record of the host library, the text after this is advice.
constexpr const wchar_t* c_beforeAdvice = L"; next: ";

bool begins(const std::wstring& text, const wchar_t* start) { return text.rfind(start, 0) == 0; }

// "3 protected passwords cannot be decrypted with ...": the tool prints its own message, which
// names the list.
bool isOfUnreadPasswords(const LogRecord& record) {
  return record.component == c_cryptoComponent &&
         record.text.find(L" protected password") != std::wstring::npos;
}

void keep(const LogRecord& record) {
  if (isOfUnreadPasswords(record)) {
    t_unreadPasswords += std::wcstoul(record.text.c_str(), nullptr, 10);
    return;
  }
  // The tool prints its own reason why a file cannot be read.
  if (begins(record.text, L"Site list not read: ")) return;
  records().push_back(record);
}

LoggedReason inTwoParts(const std::wstring& text) {
  const std::size_t at = text.find(c_beforeAdvice);
  if (at == std::wstring::npos) return {shown(text), ""};
  return {shown(text.substr(0, at)), shown(text.substr(at + std::wcslen(c_beforeAdvice)))};
}

// Returns the reason of a failed write of `path`, or an empty text for any other record.
std::wstring reasonOfWrite(const std::wstring& text, const std::wstring& path) {
  for (const wchar_t* start : {L"Site list not written: ", L"Server site list not written: ",
                               L"Cannot write the edited list ", L"Cannot write ",
                               L"Cannot delete ", L"Cannot create directory "}) {
    const std::size_t length = std::wcslen(start);
    if (text.compare(0, length, start) != 0 || text.compare(length, path.size(), path) != 0) {
      continue;
    }
    const std::wstring rest = text.substr(length + path.size());
    if (begins(rest, L": ")) return rest.substr(2);
    if (begins(rest, L" and ")) return text.substr(length);  // "A and B may be the same file"
  }
  return L"";
}

// Removes the records for which `reasonIn` returns a text. Returns the first text that has advice,
// otherwise the first text. A refused link gives two records: one with advice, and one with only
// its errno.
template <typename ReasonIn>
LoggedReason takeReason(ReasonIn reasonIn) {
  LoggedReason found;
  const auto isTaken = [&](const LogRecord& record) {
    const std::wstring text = reasonIn(record);
    if (text.empty()) return false;
    const LoggedReason each = inTwoParts(text);
    if (found.reason.empty() || (found.advice.empty() && !each.advice.empty())) found = each;
    return true;
  };
  std::vector<LogRecord>& all = records();
  all.erase(std::remove_if(all.begin(), all.end(), isTaken), all.end());
  return found;
}

}  // namespace

void recordLog(bool verbose) {
  g_verbose = verbose;
  host::setLogThreshold(verbose ? LogLevel::Detail : LogLevel::Info);
  host::setLogSink([](LogLevel level, const std::wstring& component, const std::wstring& text) {
    const LogRecord record = {level, component, text};
    if (level >= LogLevel::Info) keep(record);
    if (g_verbose) {
      std::cerr << nameOfLevel(level) << ' ' << shown(component) << ": " << shown(record.text)
                << '\n';
    }
  });
}

const std::vector<LogRecord>& logRecords() { return records(); }
void clearLogRecords() { records().clear(); }

void keepErrors(const std::vector<LogRecord>& logged, std::vector<LogRecord>& kept) {
  constexpr std::size_t c_most = 20;
  for (const LogRecord& each : logged) {
    const bool isWanted = each.level >= LogLevel::Error && each.component != c_libraryComponent;
    const bool isKnown = std::any_of(kept.begin(), kept.end(), [&](const LogRecord& record) {
      return record.text == each.text;
    });
    if (isWanted && !isKnown && kept.size() < c_most) kept.push_back(each);
  }
}

void setLogRecords(std::vector<LogRecord> kept) { records() = std::move(kept); }

unsigned long takeUnreadPasswords() { return std::exchange(t_unreadPasswords, 0UL); }

LoggedReason takeReasonOfWrite(const std::string& path) {
  const std::wstring name = wide(path);
  return takeReason([&](const LogRecord& record) { return reasonOfWrite(record.text, name); });
}

LoggedReason takeReasonOfKeyFile() {
  return takeReason([](const LogRecord& record) {
    const bool isOne = record.level >= LogLevel::Error && record.component == c_cryptoComponent;
    return isOne && begins(record.text, L"Key file ") ? record.text : std::wstring();
  });
}

void reportLoggedErrors(bool hasSucceeded) {
  if (g_verbose && !hasSucceeded) return;
  std::set<std::wstring> printed;  // a missing key is logged for each password
  for (const LogRecord& record : records()) {
    const bool isOmitted = hasSucceeded ? record.component == c_libraryComponent
                                        : record.text.find(L" hr=") != std::wstring::npos;
    if (record.level < LogLevel::Error || isOmitted || !printed.insert(record.text).second) {
      continue;
    }
    const LoggedReason parts = inTwoParts(record.text);
    if (hasSucceeded) {
      printWarning(parts.reason, parts.advice);
      continue;
    }
    printError(parts.reason, parts.advice);
  }
}

}  // namespace tool
