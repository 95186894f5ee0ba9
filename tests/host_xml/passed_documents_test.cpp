#include "host/xml/passed_documents.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "tests/host_process/in_child.h"
#include "tests/host_xml/documents.h"

// Documents that are not checked again.
namespace {

using AdvXMLParser::ParsingException;
using AdvXMLParser::UTF_16LE;
using AdvXMLParser::UTF_8;
using AdvXMLParser::WrittenIn;
using host::Standalone;

class PassedDocument : public testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(test::startRemembering()); }

  static Standalone check(const std::string& text, const WrittenIn* writtenIn = nullptr) {
    return host::checkWellFormedOnce(text.data(), text.size(), writtenIn);
  }
  static std::optional<Standalone> find(const std::string& text,
                                        const WrittenIn* writtenIn = nullptr) {
    const auto digest = host::digestOfDocument(text.data(), text.size(), writtenIn);
    EXPECT_TRUE(digest);
    return digest ? host::findPassedDocument(*digest) : std::nullopt;
  }
};

TEST_F(PassedDocument, IsRememberedWithItsResult) {
  const std::string plain = "<a>1</a>";
  const std::string alone = "<?xml version='1.0' standalone='yes'?><a/>";
  const std::string notAlone = "<?xml version='1.0' standalone='no'?><a/>";
  EXPECT_FALSE(find(plain));
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(check(plain), Standalone::NotSaid);
    EXPECT_EQ(check(alone), Standalone::Yes);
    EXPECT_EQ(check(notAlone), Standalone::No);
  }
  EXPECT_EQ(find(plain), Standalone::NotSaid);
  EXPECT_EQ(find(alone), Standalone::Yes);
  EXPECT_EQ(find(notAlone), Standalone::No);
}

// For every change of one byte, a remembered document must not affect the result of the check.
TEST_F(PassedDocument, IsAnotherOneWithOneByteChanged) {
  const std::string text = "<?xml version='1.0'?><a b='c'>d<e/><!--f--></a>";
  std::size_t refused = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    for (const char c : {'<', '>', '&', '\'', '-', 'x', '\x01', '\xC3'}) {
      check(text);
      std::string changed = text;
      changed[i] = c;
      if (changed == text) continue;
      EXPECT_FALSE(find(changed)) << changed;
      bool isGood = true;
      try {
        host::checkWellFormed(changed.data(), changed.size());
      } catch (const ParsingException&) {
        isGood = false;
        ++refused;
      }
      for (int turn = 0; turn < 2; ++turn) {
        if (isGood) {
          EXPECT_NO_THROW(check(changed)) << changed;
        } else {
          EXPECT_THROW(check(changed), ParsingException) << changed;
        }
      }
      EXPECT_EQ(find(changed).has_value(), isGood) << changed;
    }
  }
  EXPECT_GT(refused, text.size());
}

TEST_F(PassedDocument, IsNoneThatWasRefused) {
  for (const char* text :
       {"<a>", "<a></b>", "<!DOCTYPE a><a/>", "<a b='1' b='2'/>", "<a>\x01</a>"}) {
    for (int i = 0; i < 3; ++i) EXPECT_THROW(check(text), ParsingException);
    EXPECT_FALSE(find(text)) << text;
  }
}

TEST_F(PassedDocument, IsCheckedAgainInAnotherEncoding) {
  const std::string text = "<?xml version='1.0' encoding='UTF-16'?><a/>";
  const WrittenIn wide{UTF_16LE, true};
  const WrittenIn marked{UTF_8, true};
  const WrittenIn narrow{UTF_8, false};
  check(text, &wide);
  EXPECT_TRUE(find(text, &wide));
  EXPECT_FALSE(find(text, &narrow));
  EXPECT_FALSE(find(text));
  EXPECT_THROW(check(text, &narrow), ParsingException);
  EXPECT_THROW(check(text, &marked), ParsingException);
  const std::string other = "<?xml version='1.0' encoding='ISO-8859-1'?><a/>";
  check(other, &narrow);
  EXPECT_THROW(check(other, &marked), ParsingException) << "the mark counts as well";
}

TEST_F(PassedDocument, IsForgottenWhenFourOthersHavePassed) {
  const auto text = [](std::size_t number) { return "<n" + std::to_string(number) + "/>"; };
  for (std::size_t i = 0; i <= host::c_passedDocuments; ++i) check(text(i));
  EXPECT_FALSE(find(text(0)));
  for (std::size_t i = 1; i <= host::c_passedDocuments; ++i) EXPECT_TRUE(find(text(i))) << i;
}

TEST_F(PassedDocument, IsCheckedEachTimeIfItIsVeryLong) {
  const auto text = [](std::size_t size) {
    const std::string piece = "<b>" + std::string(1000, 'x') + "</b>";
    std::string body = test::repeated(piece, size / piece.size());
    const std::size_t frame = std::string("<a></a>").size();
    return "<a>" + body + std::string(size - frame - body.size(), ' ') + "</a>";
  };
  const std::string longest = text(host::c_longestDigested);
  check(longest);
  EXPECT_TRUE(find(longest));
  const std::string longer = text(host::c_longestDigested + 1);
  for (int i = 0; i < 2; ++i) check(longer);
  EXPECT_FALSE(host::digestOfDocument(longer.data(), longer.size(), nullptr));
}

TEST_F(PassedDocument, IsFoundOnceByThreadsThatReadItTogether) {
  check("<first/>");
  std::vector<std::thread> threads;
  std::atomic<int> wrong{0};
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&wrong, i] {
      for (int turn = 0; turn < 200; ++turn) {
        const std::string own = "<t" + std::to_string(i) + " n='" + std::to_string(turn) + "'/>";
        try {
          check(turn % 2 == 0 ? "<shared/>" : own);
        } catch (const ParsingException&) {
          ++wrong;
        }
        try {
          check("<shared>");
          ++wrong;
        } catch (const ParsingException&) {
        }
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
  EXPECT_FALSE(find("<shared>"));
}

TEST_F(PassedDocument, IsKnownToAChildWhichRefusesWhatIsNotWellFormed) {
  const std::string text = "<parent/>";
  check(text);
  EXPECT_EQ(test::inChild([&] {
              if (!find(text) || check(text) != Standalone::NotSaid) return false;
              try {
                check("<parent>");
                return false;
              } catch (const ParsingException&) {
                return !find("<parent>");
              }
            }),
            0);
}

}  // namespace
