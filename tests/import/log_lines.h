#ifndef TESTS_IMPORT_LOG_LINES_H
#define TESTS_IMPORT_LOG_LINES_H

#include <algorithm>
#include <string>
#include <vector>

#include "tests/support/test_agent.h"

// Functions for the log lines of the library itself, without those of the host library.
namespace test {

inline LogLine detailLine(const std::wstring& text) { return {LogLevel::Detail, L"SiteHlp", text}; }
inline LogLine infoLine(const std::wstring& text) { return {LogLevel::Info, L"SiteHlp", text}; }
inline LogLine errorLine(const std::wstring& text) { return {LogLevel::Error, L"SiteHlp", text}; }
inline LogLine internalErrorLine(const std::wstring& text) {
  return {LogLevel::InternalError, L"SiteHlp", text};
}

// Returns the library's messages in order, without trace lines.
inline std::vector<LogLine> libraryMessages(const TestAgent& agent) {
  std::vector<LogLine> lines;
  for (const LogLine& line : agent.messages()) {
    if (line.component == L"SiteHlp" || line.component == L"StSHlp") lines.push_back(line);
  }
  return lines;
}

// Returns the scopes that the library entered, in order.
inline std::vector<std::wstring> libraryTraces(const TestAgent& agent,
                                               const std::wstring& component = L"SiteHlp",
                                               LogLevel level = LogLevel::Detail) {
  const std::wstring enter = L"Enter: ";
  std::vector<std::wstring> texts;
  for (const LogLine& line : agent.log()) {
    if (line.component == component && line.level == level && line.text.rfind(enter, 0) == 0) {
      texts.push_back(line.text.substr(enter.size()));
    }
  }
  return texts;
}

// Returns whether the scope was entered and left.
inline bool tracedScope(const TestAgent& agent, const std::wstring& text,
                        const std::wstring& component = L"SiteHlp",
                        LogLevel level = LogLevel::Detail) {
  const LogLine enter{level, component, L"Enter: " + text};
  const LogLine leave{level, component, L"Leave: " + text};
  const auto entered = std::find(agent.log().begin(), agent.log().end(), enter);
  return std::find(entered, agent.log().end(), leave) != agent.log().end();
}

}  // namespace test

#endif
