#ifndef TOOLS_SITELIST_EXIT_STATUS_H
#define TOOLS_SITELIST_EXIT_STATUS_H

namespace tool {

enum ExitStatus : int {
  exitSuccess = 0,
  exitNegative = 1,
  exitUsage = 2,
  exitDocument = 3,
  exitFile = 4,
  exitCrypto = 5,
  exitInternal = 70,
};

constexpr const char* c_exitStatusHelp =
    "Exit status:\n"
    "   0  success\n"
    "   1  the answer is no: a rule failed, or nothing was found\n"
    "   2  wrong usage\n"
    "   3  invalid document\n"
    "   4  a file is missing, or cannot be read or written\n"
    "   5  a key or the cryptography failed\n"
    "  70  internal error\n";

}  // namespace tool

#endif
