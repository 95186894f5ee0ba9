#include <gmock/gmock.h>

#include <filesystem>

#include "tests/import/key_file_system.h"
#include "tests/import/log_lines.h"
#include "tests/import/records.h"
#include "tests/support/test_agent.h"

using namespace sitehlp;
using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

namespace {

std::string textOf(const ABuffer& buffer) {
  return std::string(buffer.data(), buffer.data() + buffer.size());
}

ABuffer bufferOf(const std::string& bytes) {
  return ABuffer(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size());
}

class KeyFiles : public testing::Test {
 protected:
  AString dirName() const { return AString(wide(dir.path())); }

  TestAgent agent;
  TempDir dir;
  OpenHelper helper{true};
};

using ReadKeyFile = KeyFiles;

TEST_F(ReadKeyFile, ReadsTheWholeFileUnchanged) {
  std::string bytes;
  for (int i = 0; i < 70000; ++i) bytes += static_cast<char>(i * 7);
  writeFile(dir.file("k.bin"), bytes);
  ABuffer out;
  EXPECT_TRUE(helper.readKeyFile(dirName(), L"k.bin", out));
  EXPECT_EQ(textOf(out), bytes);
  EXPECT_THAT(libraryMessages(agent), IsEmpty());
}

TEST_F(ReadKeyFile, AMissingFileFailsWithoutAMessage) {
  ABuffer out;
  agent.clearLog();
  EXPECT_FALSE(helper.readKeyFile(dirName(), L"k.bin", out));
  EXPECT_THAT(libraryMessages(agent), IsEmpty());
}

TEST_F(ReadKeyFile, ADirectoryFailsWithoutAMessage) {
  std::filesystem::create_directory(dir.file("k.bin"));
  ABuffer out;
  agent.clearLog();
  EXPECT_FALSE(helper.readKeyFile(dirName(), L"k.bin", out));
  EXPECT_THAT(libraryMessages(agent), IsEmpty());
}

TEST_F(ReadKeyFile, AnEmptyFileIsInvalid) {
  writeFile(dir.file("k.bin"), "");
  ABuffer out;
  agent.clearLog();
  EXPECT_FALSE(helper.readKeyFile(dirName(), L"k.bin", out));
  EXPECT_THAT(libraryMessages(agent),
              ElementsAre(errorLine(wide(dir.file("k.bin")) + L" is invalid"),
                          infoLine(L"There could be another set of key files to be used.")));
}

TEST_F(ReadKeyFile, ADirectoryWithATrailingSeparatorIsJoinedAlike) {
  writeFile(dir.file("k.bin"), "x");
  ABuffer out;
  EXPECT_TRUE(helper.readKeyFile(AString(wide(dir.path() + "/")), L"k.bin", out));
  EXPECT_EQ(textOf(out), "x");
}

using WriteKeyFile = KeyFiles;

TEST_F(WriteKeyFile, CreatesOrReplacesTheFileWithoutConsultingTheSubdirectory) {
  EXPECT_TRUE(helper.writeKeyFile(bufferOf("one"), L"k.bin", L"", dirName()));
  EXPECT_EQ(readFile(dir.file("k.bin")), "one");
  const std::string zero("t\0wo", 4);
  EXPECT_TRUE(helper.writeKeyFile(bufferOf(zero), L"k.bin", L"not/there", dirName()));
  EXPECT_EQ(readFile(dir.file("k.bin")), zero);
  EXPECT_THAT(snapshot(dir.path()), ElementsAre(Pair("k.bin", zero)));
}

TEST_F(WriteKeyFile, ANewKeyFileIsItsOwnersAlone) {
  EXPECT_TRUE(helper.writeKeyFile(bufferOf("one"), L"k.bin", L"", dirName()));
  struct stat status;
  ASSERT_EQ(::stat(dir.file("k.bin").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0600);
}

TEST_F(WriteKeyFile, FailsWhereTheFileCannotBeWritten) {
  std::filesystem::create_directory(dir.file("k.bin"));
  EXPECT_FALSE(helper.writeKeyFile(bufferOf("one"), L"k.bin", L"", dirName()));
  EXPECT_FALSE(
      helper.writeKeyFile(bufferOf("one"), L"k.bin", L"", AString(wide(dir.file("missing")))));
}

class WriteKeyFiles : public KeyFiles {
 protected:
  bool write(bool hasSrPub, bool hasReqSec, bool hasSr2048Pub, bool hasReq2048Sec) {
    return helper.writeKeyFiles(hasSrPub, hasReqSec, bufferOf("p"), bufferOf("r"), hasSr2048Pub,
                                hasReq2048Sec, bufferOf("p2"), bufferOf("r2"), dirName());
  }
};

TEST_F(WriteKeyFiles, EveryCombinationOfFlagsIsWrittenInTheFixedOrder) {
  for (int flags = 0; flags < 16; ++flags) {
    const bool srPub = flags & 1;
    const bool reqSec = flags & 2;
    const bool sr2048Pub = flags & 4;
    const bool req2048Sec = flags & 8;
    for (const char* name :
         {"srpubkey.bin", "reqseckey.bin", "sr2048pubkey.bin", "req2048seckey.bin"}) {
      writeFile(dir.file(name), "old");
    }
    const bool stale = (srPub || sr2048Pub) && !reqSec && !req2048Sec;
    std::map<std::string, std::string> expected = {
        {"srpubkey.bin", srPub ? "p" : "old"},
        {"sr2048pubkey.bin", sr2048Pub ? "p2" : "old"},
        {"reqseckey.bin", reqSec ? "r" : "old"},
        {"req2048seckey.bin", req2048Sec ? "r2" : "old"}};
    std::vector<std::string> order;
    if (srPub) order.push_back("srpubkey.bin");
    if (sr2048Pub) order.push_back("sr2048pubkey.bin");
    if (reqSec) order.push_back("reqseckey.bin");
    if (req2048Sec) order.push_back("req2048seckey.bin");
    if (stale) {
      order.push_back("-reqseckey.bin");
      expected.erase("reqseckey.bin");
    }
    KeyFileSystem files;
    EXPECT_TRUE(write(srPub, reqSec, sr2048Pub, req2048Sec)) << flags;
    EXPECT_EQ(snapshot(dir.path()), expected) << flags;
    EXPECT_EQ(files.changes, order) << flags;
  }
}

TEST_F(WriteKeyFiles, AStaleRequestKeyThatIsNotThereIsNoFailure) {
  EXPECT_TRUE(write(true, false, false, false));
  EXPECT_THAT(snapshot(dir.path()), ElementsAre(Pair("srpubkey.bin", "p")));
}

TEST_F(WriteKeyFiles, AStaleRequestKeyThatCannotBeRemovedIsAFailure) {
  writeFile(dir.file("reqseckey.bin"), "old");
  KeyFileSystem files;
  files.irremovable = {"reqseckey.bin"};
  EXPECT_FALSE(write(true, false, false, false));
  EXPECT_THAT(snapshot(dir.path()),
              ElementsAre(Pair("reqseckey.bin", "old"), Pair("srpubkey.bin", "p")));
}

TEST_F(WriteKeyFiles, TheFirstFailureEndsTheCallAndWhatWasWrittenStays) {
  const std::vector<std::string> order = {"srpubkey.bin", "sr2048pubkey.bin", "reqseckey.bin",
                                          "req2048seckey.bin"};
  for (std::size_t failing = 0; failing < order.size(); ++failing) {
    for (const std::string& name : order) std::filesystem::remove(dir.file(name));
    KeyFileSystem files;
    files.irreplaceable = {order[failing]};
    EXPECT_FALSE(write(true, true, true, true));
    EXPECT_EQ(files.changes,
              std::vector<std::string>(order.begin(),
                                       order.begin() + static_cast<std::ptrdiff_t>(failing)));
    EXPECT_EQ(snapshot(dir.path()).size(), failing);
  }
}

class Writable : public KeyFiles {
 protected:
  bool ask() {
    agent.clearLog();
    return helper.writable(AString(wide(path)));
  }
  const std::string path = dir.file("k.bin");
};

TEST_F(Writable, AFileThatIsNotThereIs) {
  EXPECT_TRUE(ask());
  EXPECT_THAT(libraryMessages(agent), IsEmpty());
  EXPECT_FALSE(exists(path)) << "it is not created";
}

TEST_F(Writable, AFileWithWriteAccessIs) {
  writeFile(path, "x");
  EXPECT_TRUE(ask());
  EXPECT_THAT(libraryMessages(agent), IsEmpty());
}

TEST_F(Writable, AFileWithoutWriteAccessIsNotAndSaysSo) {
  writeFile(path, "x");
  KeyFileSystem files;
  files.readOnly = {path};
  EXPECT_FALSE(ask());
  EXPECT_THAT(libraryMessages(agent), ElementsAre(errorLine(L"Can't write " + wide(path))));
}

TEST_F(Writable, IsNotWhenTheQuestionHasNoAnswer) {
  writeFile(path, "x");
  KeyFileSystem files;
  files.unanswerable = {path};
  EXPECT_FALSE(ask());
  EXPECT_THAT(libraryMessages(agent), IsEmpty());
}

}  // namespace
