#include <gtest/gtest.h>
#include <unistd.h>

#include <cstddef>

#include "sitehlp/sites_helper.h"
#include "tests/resilience/workshop.h"
#include "tests/support/faulty_file_system.h"

namespace {

using namespace test;

// An install that brings a public key alone removes the request key, also while another thread or
// process is about to look whether it can write that file.
TEST(AKeyFileThatGoesMeanwhile, DoesNotStopAnImport) {
  Workshop workshop;
  const std::string key = workshop.agent.etc("reqseckey.bin");
  std::size_t looks = 1;
  for (std::size_t at = 0; at < looks; ++at) {
    workshop.reset();
    int result = -1;
    {
      FaultyFileSystem files;
      std::size_t look = 0;
      files.beforeEach([&](FileCall call) {
        if (call == FileCall::Access && look++ == at) ::unlink(key.c_str());
      });
      result = sitehlp::CSitesHelper(wide(workshop.own()))
                   .ImportSiteList(wide(workshop.incoming()), L"");
      looks = look;
    }
    ASSERT_EQ(result, 0) << "gone before look " << at;
    EXPECT_EQ(readFile(key), "new reqseckey.bin");
  }
  EXPECT_GT(looks, 1U);
}

}  // namespace
