#include <gmock/gmock.h>

#include "tests/support/child_process.h"

int main(int argc, char** argv) {
  test::runChildIfAsked(argc, argv);
  testing::InitGoogleMock(&argc, argv);
  return RUN_ALL_TESTS();
}
