#include <unistd.h>

#include <cstddef>

#include "tests/import/import_fixture.h"
#include "tests/support/faulty_file_system.h"

namespace {

using namespace test;

using AKeyFileThatGoesMeanwhile = ImportFixture;

// An installation with only a public key removes the request key. Meanwhile another thread or
// process may check whether it can write this file.
TEST_F(AKeyFileThatGoesMeanwhile, DoesNotStopAnImport) {
  const std::string key = agent.etc("reqseckey.bin");
  incomingList(document(serverElement("s", "5.1")));
  incomingKeys("new ");
  std::size_t looks = 1;
  for (std::size_t at = 0; at < looks; ++at) {
    for (const char* name :
         {"srpubkey.bin", "reqseckey.bin", "sr2048pubkey.bin", "req2048seckey.bin"}) {
      writeFile(agent.etc(name), "old");
    }
    FaultyFileSystem files;
    std::size_t look = 0;
    files.beforeEach([&](FileCall call) {
      if (call == FileCall::Access && look++ == at) ::unlink(key.c_str());
    });
    ASSERT_EQ(import(), 0) << "gone before look " << at;
    looks = look;
    EXPECT_EQ(readFile(key), "new reqseckey.bin");
  }
  EXPECT_GT(looks, 1U);
}

}  // namespace
