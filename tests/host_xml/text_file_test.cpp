#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "host/xml/limits.h"
#include "tests/host_xml/documents.h"
#include "tests/support/faulty_file_system.h"

namespace {

using namespace AdvXMLParser;
using test::wide;

class TextFile : public testing::Test {
 protected:
  std::wstring path(const std::string& name) const { return wide(m_directory.file(name)); }

  // Reads the file as wide text and as UTF-8. The outputs have preset values. Returns the error of
  // the file system.
  int expectReadFails(const std::string& name, int errorCode) {
    std::wstring text = L"invalid";
    std::string utf8 = "invalid";
    UTF_ENCODINGS encoding = UTF_16BE;
    WrittenIn writtenIn{UTF_16BE};
    const int systemError =
        errorOf(name, errorCode, [&] { ReadBufferFromFile(path(name), text, encoding, nullptr); });
    EXPECT_EQ(errorOf(name, errorCode, [&] { ReadUtf8FromFile(path(name), utf8, writtenIn); }),
              systemError);
    EXPECT_EQ(text, L"invalid");
    EXPECT_EQ(utf8, "invalid");
    EXPECT_EQ(encoding, UTF_16BE);
    EXPECT_EQ(writtenIn.encoding, UTF_16BE);
    EXPECT_FALSE(writtenIn.hasMark);
    return systemError;
  }

  template <typename Read>
  int errorOf(const std::string& name, int errorCode, Read readIt) {
    try {
      readIt();
      ADD_FAILURE() << "read";
    } catch (const ReadWriteException& e) {
      EXPECT_EQ(e.GetErrorCode(), errorCode);
      EXPECT_NE(std::string(e.what()).find(m_directory.file(name)), std::string::npos) << e.what();
      return e.GetSystemError();
    }
    return -1;
  }

  std::string readUtf8(const std::string& name, UTF_ENCODINGS& encoding) {
    std::string utf8 = "invalid";
    WrittenIn writtenIn{encoding};
    ReadUtf8FromFile(path(name), utf8, writtenIn);
    encoding = writtenIn.encoding;
    return utf8;
  }

  std::wstring read(const std::string& name, UTF_ENCODINGS* found = nullptr) {
    std::wstring text = L"invalid";
    UTF_ENCODINGS encoding = UTF_8;
    ReadBufferFromFile(path(name), text, encoding, nullptr);
    if (found) *found = encoding;
    return text;
  }

  test::TempDir m_directory;
};

TEST_F(TextFile, IsReadInTheEncodingThatItHas) {
  for (const UTF_ENCODINGS encoding : {UTF_16LE, UTF_16BE, UTF_32LE, UTF_32BE, UTF_8}) {
    EXPECT_TRUE(
        WriteBufferToFile(path("list"), L"<a>\x20AC\x1F600</a>", encoding, nullptr, nullptr));
    UTF_ENCODINGS found;
    EXPECT_EQ(read("list", &found), L"<a>\x20AC\x1F600</a>");
    EXPECT_EQ(found, encoding);
  }
}

TEST_F(TextFile, IsReadAsUtf8WhateverEncodingItHas) {
  for (const UTF_ENCODINGS encoding : {UTF_16LE, UTF_16BE, UTF_32LE, UTF_32BE, UTF_8}) {
    EXPECT_TRUE(
        WriteBufferToFile(path("list"), L"<a>\x20AC\x1F600</a>", encoding, nullptr, nullptr));
    UTF_ENCODINGS found = encoding == UTF_8 ? UTF_16LE : UTF_8;
    EXPECT_EQ(readUtf8("list", found), "<a>\xE2\x82\xAC\xF0\x9F\x98\x80</a>");
    EXPECT_EQ(found, encoding);
  }
}

TEST_F(TextFile, IsReadAsUtf8WithoutItsMark) {
  UTF_ENCODINGS found = UTF_16LE;
  test::writeFile(m_directory.file("list"), "\xEF\xBB\xBF<a/>");
  EXPECT_EQ(readUtf8("list", found), "<a/>");
  EXPECT_EQ(found, UTF_8);
}

TEST_F(TextFile, IsReadAsUtf8ByTheHintWhenItsBytesDoNotTell) {
  UTF_ENCODINGS hint = UTF_16BE;
  test::writeFile(m_directory.file("list"), "\x4E\x2D");
  EXPECT_EQ(readUtf8("list", hint), "\xE4\xB8\xAD");
  EXPECT_EQ(hint, UTF_16BE);
}

// An invalid byte is found anywhere, also between long runs of ASCII.
TEST_F(TextFile, OfInvalidBytesCannotBeReadWhereverTheyStand) {
  const std::string sequences[] = {"\x80",         "\xC3",         "\xC0\xBC",
                                   "\xE2\x82",     "\xED\xA0\x80", "\xF4\x90\x80\x80",
                                   "\xF0\x9F\x98", "\xFF"};
  for (const std::string& bad : sequences) {
    for (std::size_t before = 0; before < 40; ++before) {
      for (const std::size_t after : {0u, 1u, 17u, 40u}) {
        test::writeFile(m_directory.file("list"),
                        "<" + std::string(before, 'a') + bad + std::string(after, 'b'));
        expectReadFails("list", ReadWriteException::INVALID_ENCODING);
      }
    }
  }
}

TEST_F(TextFile, IsWrittenAsUtf8WithoutAMark) {
  EXPECT_TRUE(WriteBufferToFile(path("list"), L"<a>\x20AC</a>", UTF_8, nullptr, nullptr));
  EXPECT_EQ(test::readFile(m_directory.file("list")), "<a>\xE2\x82\xAC</a>");
}

TEST_F(TextFile, MayBeEmpty) {
  EXPECT_TRUE(WriteBufferToFile(path("list"), L"", UTF_8, nullptr, nullptr));
  EXPECT_EQ(read("list"), L"");
}

TEST_F(TextFile, HasANameOfAnyCharacters) {
  const std::wstring name = path("") + L"\x20AC \x1F600.xml";
  EXPECT_TRUE(WriteBufferToFile(name, L"<a/>", UTF_8, nullptr, nullptr));
  EXPECT_TRUE(test::exists(m_directory.file("\xE2\x82\xAC \xF0\x9F\x98\x80.xml")));
}

TEST_F(TextFile, ThatIsNotThereCannotBeRead) {
  EXPECT_EQ(expectReadFails("missing", ReadWriteException::READ_FAILED), ENOENT);
}

TEST_F(TextFile, MustBeARegularFileToBeRead) {
  ASSERT_EQ(::mkdir(m_directory.file("directory").c_str(), 0755), 0);
  EXPECT_EQ(expectReadFails("directory", ReadWriteException::READ_FAILED), EISDIR);
  // Nothing writes to the pipe, so a read that waits would never end.
  ASSERT_EQ(::mkfifo(m_directory.file("pipe").c_str(), 0644), 0);
  EXPECT_EQ(expectReadFails("pipe", ReadWriteException::READ_FAILED), EINVAL);
}

TEST_F(TextFile, OfInvalidBytesCannotBeRead) {
  test::writeFile(m_directory.file("list"), "<a>\xE9</a>");
  EXPECT_EQ(expectReadFails("list", ReadWriteException::INVALID_ENCODING), 0);
}

TEST_F(TextFile, HasALimit) {
  const std::string largest(host::c_maxDocumentBytes, ' ');
  test::writeFile(m_directory.file("list"), largest);
  EXPECT_EQ(read("list").size(), host::c_maxDocumentBytes);
  test::writeFile(m_directory.file("list"), largest + " ");
  EXPECT_EQ(expectReadFails("list", ReadWriteException::LIMIT_EXCEEDED), EFBIG);
}

TEST_F(TextFile, ThatFailsToBeReadSaysWhy) {
  test::writeFile(m_directory.file("list"), "<a/>");
  test::FaultyFileSystem faults;
  faults.failEvery(test::FileCall::Read, EIO);
  EXPECT_EQ(expectReadFails("list", ReadWriteException::READ_FAILED), EIO);
}

std::string reversed(const std::string& text) { return std::string(text.rbegin(), text.rend()); }
std::string inUpperCase(const std::string& text) {
  std::string upper = text;
  std::transform(upper.begin(), upper.end(), upper.begin(),
                 [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  return upper;
}
std::string notUtf8(const std::string&) { return "\xFF"; }
std::string tooLong(const std::string&) { return std::string(host::c_maxDocumentBytes + 1, ' '); }

TEST_F(TextFile, GoesThroughTheCallbackBeforeItIsConverted) {
  test::writeFile(m_directory.file("list"), ">/a<");
  std::wstring text;
  UTF_ENCODINGS encoding = UTF_8;
  ReadBufferFromFile(path("list"), text, encoding, reversed);
  EXPECT_EQ(text, L"<a/>");
}

TEST_F(TextFile, IsCheckedAfterTheCallback) {
  test::writeFile(m_directory.file("list"), "<a/>");
  std::wstring text = L"invalid";
  UTF_ENCODINGS encoding = UTF_8;
  try {
    ReadBufferFromFile(path("list"), text, encoding, notUtf8);
    ADD_FAILURE() << "read";
  } catch (const ReadWriteException& e) {
    EXPECT_EQ(e.GetErrorCode(), ReadWriteException::INVALID_ENCODING);
  }
  try {
    ReadBufferFromFile(path("list"), text, encoding, tooLong);
    ADD_FAILURE() << "read";
  } catch (const ReadWriteException& e) {
    EXPECT_EQ(e.GetErrorCode(), ReadWriteException::LIMIT_EXCEEDED);
  }
  EXPECT_EQ(text, L"invalid");
}

TEST_F(TextFile, GoesThroughTheCallbacksWhenItIsWritten) {
  EXPECT_TRUE(WriteBufferToFile(path("list"), L"<a>\xE9</a>", UTF_8, inUpperCase, nullptr));
  EXPECT_EQ(test::readFile(m_directory.file("list")), "<A>\xC3\xA9</A>");
  EXPECT_TRUE(WriteBufferToFile(path("list"), L"ab", UTF_8, nullptr, reversed));
  EXPECT_EQ(test::readFile(m_directory.file("list")), "ba");
  // The first callback gets UTF-8, the second the bytes of the file.
  EXPECT_TRUE(WriteBufferToFile(path("list"), L"ab", UTF_16LE, inUpperCase, reversed));
  EXPECT_EQ(test::readFile(m_directory.file("list")), std::string("\0B\0A\xFE\xFF", 6));
}

TEST_F(TextFile, IsNotWrittenWhenTheCallbackGivesInvalidText) {
  test::writeFile(m_directory.file("list"), "old");
  try {
    WriteBufferToFile(path("list"), L"new", UTF_8, notUtf8, nullptr);
    ADD_FAILURE() << "written";
  } catch (const ReadWriteException& e) {
    EXPECT_EQ(e.GetErrorCode(), ReadWriteException::INVALID_ENCODING);
  }
  EXPECT_EQ(test::readFile(m_directory.file("list")), "old");
}

TEST_F(TextFile, IsForItsOwnerAndForItsGroupToRead) {
  const mode_t before = ::umask(0);
  EXPECT_TRUE(WriteBufferToFile(path("list"), L"<a/>", UTF_8, nullptr, nullptr));
  ::umask(before);
  struct stat info;
  ASSERT_EQ(::stat(m_directory.file("list").c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 07777, 0640u);
}

TEST_F(TextFile, KeepsTheModeThatItHas) {
  test::writeFile(m_directory.file("list"), "old", 0604);
  EXPECT_TRUE(WriteBufferToFile(path("list"), L"new", UTF_8, nullptr, nullptr));
  struct stat info;
  ASSERT_EQ(::stat(m_directory.file("list").c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 07777, 0604u);
  EXPECT_EQ(test::readFile(m_directory.file("list")), "new");
}

TEST_F(TextFile, CannotBeWrittenWhereADirectoryIs) {
  ASSERT_EQ(::mkdir(m_directory.file("list").c_str(), 0755), 0);
  try {
    WriteBufferToFile(path("list"), L"<a/>", UTF_8, nullptr, nullptr);
    ADD_FAILURE() << "written";
  } catch (const ReadWriteException& e) {
    EXPECT_EQ(e.GetErrorCode(), ReadWriteException::WRITE_FAILED);
    EXPECT_NE(e.GetSystemError(), 0);
  }
}

TEST_F(TextFile, StaysAsItWasWhenWritingFails) {
  test::writeFile(m_directory.file("list"), "old");
  const auto before = test::snapshot(m_directory.path());
  for (const test::FileCall call : {test::FileCall::Write, test::FileCall::Rename}) {
    test::FaultyFileSystem faults;
    faults.failEvery(call, ENOSPC);
    try {
      WriteBufferToFile(path("list"), L"new", UTF_8, nullptr, nullptr);
      ADD_FAILURE() << "written";
    } catch (const ReadWriteException& e) {
      EXPECT_EQ(e.GetErrorCode(), ReadWriteException::WRITE_FAILED);
      EXPECT_EQ(e.GetSystemError(), ENOSPC);
    }
    EXPECT_EQ(test::snapshot(m_directory.path()), before);
  }
}

}  // namespace
