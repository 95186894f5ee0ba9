#include "tools/sitelist/cli/log_record.h"

#include <iostream>
#include <set>

#include "host/log_sink.h"
#include "tools/sitelist/cli/text.h"

namespace tool {
namespace {

bool g_verbose = false;

std::vector<LogRecord>& records() {
  static std::vector<LogRecord> kept;
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

// The tool names the sites whose passwords are lost, and says itself why a file cannot be read.
bool isToldBetter(const std::wstring& component, const std::wstring& text) {
  const bool isOfPasswords =
      component == L"Crypto" && text.find(L" protected password") != std::wstring::npos;
  return isOfPasswords || text.rfind(L"Site list not read: ", 0) == 0;
}

}  // namespace

void recordLog(bool verbose) {
  g_verbose = verbose;
  host::setLogThreshold(verbose ? LogLevel::Detail : LogLevel::Info);
  host::setLogSink([](LogLevel level, const std::wstring& component, const std::wstring& text) {
    if (level >= LogLevel::Info && !isToldBetter(component, text)) {
      records().push_back({level, text});
    }
    if (g_verbose) {
      std::cerr << nameOfLevel(level) << ' ' << shown(component) << ": " << shown(text) << '\n';
    }
  });
}

const std::vector<LogRecord>& logRecords() { return records(); }
void clearLogRecords() { records().clear(); }

void reportLoggedErrors(bool withCodes) {
  if (g_verbose) return;
  std::set<std::wstring> printed;  // a missing key is logged for each password that needs it
  for (const LogRecord& record : records()) {
    const bool isCode = record.text.find(L" hr=") != std::wstring::npos;
    if (record.level >= LogLevel::Error && (withCodes || !isCode) &&
        printed.insert(record.text).second) {
      std::cerr << "sitelist: " << shown(record.text) << '\n';
    }
  }
}

}  // namespace tool
