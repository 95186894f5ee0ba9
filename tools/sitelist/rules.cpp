#include "tools/sitelist/rules.h"

#include "tools/sitelist/log_record.h"
#include "tools/sitelist/text.h"

namespace tool {
namespace {

// How the library words a broken rule: what the log line begins with and what it ends with. A rule
// without an end is one whose line ends with a value, or is the whole line.
struct Rule {
  const char* name;
  const wchar_t* begin;
  const wchar_t* end;
  bool isWhole;
  const char* meaning;
};

constexpr Rule c_rules[] = {
    {"no-sites", L"no sites in site list", L"", true, "the list has at least one site"},
    {"no-server", L"Failed to get VESTA site hr=", L"", false, "the list has a management server"},
    {"server-not-local", L"must not be local", L"", true, "the server is not local"},
    {"server-kind-http", L"type must be HTTP site not ", L"", false, "it is reached over HTTP"},
    {"server-type-master", L"site type must be master not ", L"", false, "its type is \"master\""},
    {"server-element", L"proto type must be VestaSite not ", L"", false,
     "its element is \"VestaSite\""},
    {"server-name", L"name cannot be empty", L"", true, "it has a name"},
    {"server-address", L"server name cannot be empty", L"", true, "it has an address"},
    {"server-ip-address", L"VESTA IP address cannot be empty", L"", true, "it has an IP address"},
    {"server-computer-name", L"computer name cannot be empty", L"", true, "it has a computer name"},
    {"server-path", L"path cannot be empty", L"", true, "it has a path"},
    {"server-request-key", L"", L"req2048seckey.bin is invalid", false,
     "with a version it has a request key beside the list"},
    {"server-public-key", L"", L"sr2048pubkey.bin is invalid", false, "and a public key"},
};

bool endsWith(const std::wstring& text, const std::wstring& end) {
  return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

bool isWordedAs(const std::wstring& text, const Rule& rule) {
  if (rule.isWhole) return text == rule.begin;
  return text.rfind(rule.begin, 0) == 0 && endsWith(text, rule.end);
}

}  // namespace

std::vector<BrokenRule> brokenRules() {
  std::vector<BrokenRule> broken;
  for (const LogRecord& record : logRecords()) {
    for (const Rule& rule : c_rules) {
      if (!isWordedAs(record.text, rule)) continue;
      broken.push_back({rule.name, shown(record.text)});
      break;
    }
  }
  return broken;
}

std::string ruleHelp() {
  std::string help;
  for (const Rule& rule : c_rules) {
    std::string line = std::string("  ") + rule.name;
    line.resize(24, ' ');
    help += line + rule.meaning + '\n';
  }
  return help;
}

}  // namespace tool
