#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "tests/edit/edit_fixture.h"

using namespace test;

namespace {

class ServerIdentity : public EditFixture {
 protected:
  static std::string server(const std::string& name, const std::string& address) {
    return "<VestaSite Name=\"" + name + "\" Server=\"" + address +
           "\" ServerName=\"n\" ServerIP=\"i\"/>";
  }
};

// The comparison joins values with a separator. No text in a value can imitate this separator.
TEST_F(ServerIdentity, IsOfTheValuesOneByOneNotOfTheirText) {
  for (int c = 0x20; c < 0x7F; ++c) {
    char reference[8];
    std::snprintf(reference, sizeof reference, "&#%d;", c);
    target(document(server(std::string("a") + reference + "b", "c")));
    source(document(server("a", std::string("b") + reference + "c")));
    ASSERT_TRUE(modify(false, true));
    EXPECT_EQ(result(), canonical(readFile(src))) << c;
  }
  target(document(server("ab", "c")));
  source(document(server("a", "bc")));
  ASSERT_TRUE(modify(false, true));
  EXPECT_EQ(result(), canonical(readFile(src)));
}

}  // namespace
