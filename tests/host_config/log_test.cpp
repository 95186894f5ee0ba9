#include "platform/common/log.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>

#include "host/log_sink.h"
#include "tests/support/test_agent.h"

namespace {

using test::LogLine;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;

// Stores the messages during its life, then restores the default sink and threshold.
class Log : public testing::Test {
 protected:
  Log() {
    host::setLogSink(
        [this](LogLevel level, const std::wstring& component, const std::wstring& text) {
          lines.push_back({level, component, text});
        });
    host::setLogThreshold(LogLevel::Detail);
  }
  ~Log() override {
    host::setLogSink(nullptr);
    host::setLogThreshold(LogLevel::Error);
  }

  static void logEach() {
    logDetail(L"C", AString(L"d"));
    logInfo(L"C", AString(L"i"));
    logError(L"C", AString(L"e"));
    logInternalError(L"C", AString(L"x"));
  }

  std::vector<std::wstring> texts() const {
    std::vector<std::wstring> result;
    for (const LogLine& line : lines) result.push_back(line.text);
    return result;
  }

  std::vector<LogLine> lines;
};

TEST_F(Log, DeliversLevelComponentAndText) {
  logEach();
  EXPECT_THAT(
      lines, ElementsAre(LogLine{LogLevel::Detail, L"C", L"d"}, LogLine{LogLevel::Info, L"C", L"i"},
                         LogLine{LogLevel::Error, L"C", L"e"},
                         LogLine{LogLevel::InternalError, L"C", L"x"}));
}

TEST_F(Log, DeliversNothingBelowTheThreshold) {
  host::setLogThreshold(LogLevel::Info);
  logEach();
  EXPECT_THAT(texts(), ElementsAre(L"i", L"e", L"x"));
  lines.clear();
  host::setLogThreshold(LogLevel::InternalError);
  logEach();
  EXPECT_THAT(texts(), ElementsAre(L"x"));
  lines.clear();
  host::setLogThreshold(LogLevel::Off);
  logEach();
  EXPECT_THAT(lines, IsEmpty());
}

TEST_F(Log, TellsWhetherALevelIsDelivered) {
  host::setLogThreshold(LogLevel::Error);
  EXPECT_FALSE(logEnabled(LogLevel::Info));
  EXPECT_TRUE(logEnabled(LogLevel::Error));
  host::setLogThreshold(LogLevel::Off);
  EXPECT_FALSE(logEnabled(LogLevel::InternalError));
}

TEST_F(Log, TakesAMissingComponent) {
  logError(nullptr, AString(L"text"));
  EXPECT_THAT(lines, ElementsAre(LogLine{LogLevel::Error, L"", L"text"}));
}

TEST_F(Log, TracesAScope) {
  {
    const ADetailTrace outer(L"C", L"outer");
    const AnInfoTrace inner(L"D", L"inner");
    logError(L"C", AString(L"between"));
  }
  EXPECT_THAT(lines, ElementsAre(LogLine{LogLevel::Detail, L"C", L"Enter: outer"},
                                 LogLine{LogLevel::Info, L"D", L"Enter: inner"},
                                 LogLine{LogLevel::Error, L"C", L"between"},
                                 LogLine{LogLevel::Info, L"D", L"Leave: inner"},
                                 LogLine{LogLevel::Detail, L"C", L"Leave: outer"}));
}

TEST_F(Log, DecidesAboutATraceOnce) {
  {
    const ADetailTrace delivered(L"C", L"delivered");
    host::setLogThreshold(LogLevel::Error);
    const ADetailTrace dropped(L"C", L"dropped");
    host::setLogThreshold(LogLevel::Detail);
    const ADetailTrace last(L"C", L"last");
    host::setLogThreshold(LogLevel::Off);
  }
  EXPECT_THAT(texts(), ElementsAre(L"Enter: delivered", L"Enter: last", L"Leave: last",
                                   L"Leave: delivered"));
}

TEST_F(Log, LeavesATraceWhenAnExceptionPasses) {
  try {
    const ADetailTrace trace(L"C", L"scope");
    throw std::runtime_error("passes");
  } catch (const std::runtime_error&) {
    logDetail(L"C", AString(L"caught"));
  }
  EXPECT_THAT(texts(), ElementsAre(L"Enter: scope", L"Leave: scope", L"caught"));
}

TEST_F(Log, DropsWhatASinkThrows) {
  int calls = 0;
  host::setLogSink([&](LogLevel, const std::wstring&, const std::wstring&) {
    ++calls;
    if (calls % 2 == 0) throw 1;
    throw std::runtime_error("sink");
  });
  logEach();
  { const ADetailTrace trace(L"C", L"scope"); }
  EXPECT_EQ(calls, 6);
}

TEST_F(Log, GivesASinkOneMessageAtATimeWhileSinksAreExchanged) {
  int inside = 0;
  int first = 0;
  int second = 0;
  const auto counting = [&inside](int& count) {
    return [&inside, &count](LogLevel, const std::wstring&, const std::wstring&) {
      EXPECT_EQ(++inside, 1);
      ++count;
      --inside;
    };
  };
  host::setLogSink(counting(first));
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([] {
      for (int n = 0; n < 250; ++n) logError(L"C", AString(L"text"));
    });
  }
  for (int i = 0; i < 20; ++i) host::setLogSink(i % 2 == 0 ? counting(second) : counting(first));
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(first + second, 1000);
}

class StandardError : public testing::Test {
 protected:
  StandardError() { host::setLogSink(nullptr); }
  ~StandardError() override { host::setLogThreshold(LogLevel::Error); }

  template <typename Action>
  static std::string written(Action action) {
    testing::internal::CaptureStderr();
    action();
    return testing::internal::GetCapturedStderr();
  }
};

constexpr const char* c_time =
    "[0-9]+-[0-9][0-9]-[0-9][0-9]T[0-9][0-9]:[0-9][0-9]:[0-9][0-9]\\.[0-9]+[+-][0-9:]+ ";

TEST_F(StandardError, GetsOneLineForEachMessage) {
  host::setLogThreshold(LogLevel::Detail);
  const std::string text = written([] {
    logDetail(L"SiteHlp", AString(L"one"));
    logInfo(L"SiteHlp", AString(L"two"));
    logError(L"Host", AString(L"\u00FC\u20AC {} %s"));
    logInternalError(L"StSHlp", AString(L"four"));
  });
  const std::string t = c_time;
  EXPECT_THAT(text, MatchesRegex(t + "detail SiteHlp: one\n" + t + "info SiteHlp: two\n" + t +
                                 "error Host: \xC3\xBC\xE2\x82\xAC \\{\\} %s\n" + t +
                                 "internal-error StSHlp: four\n"));
}

TEST_F(StandardError, GetsErrorsOnlyByDefault) {
  const std::string text = written([] {
    logInfo(L"C", AString(L"quiet"));
    logError(L"C", AString(L"loud"));
  });
  EXPECT_THAT(text, MatchesRegex(c_time + std::string("error C: loud\n")));
}

TEST_F(StandardError, GetsNoControlCharacters) {
  const std::string text = written(
      [] { logError(L"C\n", AString(std::wstring(L"a\nb\r\x1B[2J\x7F\u009B") + L'\0' + L"end")); });
  EXPECT_THAT(text,
              MatchesRegex(c_time + std::string("error C\\?: a\\?b\\?\\?\\[2J\\?\\?\\?end\n")));
}

}  // namespace
