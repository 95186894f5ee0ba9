#ifndef TOOLS_SITELIST_CLI_EXIT_STATUS_H
#define TOOLS_SITELIST_CLI_EXIT_STATUS_H

namespace tool {

enum ExitStatus : int {
  exitSuccess = 0,
  exitNegative = 1,
  exitUsage = 2,
  exitDocument = 3,
  exitFile = 4,
  exitCrypto = 5,
  exitConflict = 6,
  exitNotFound = 7,
  exitInternal = 70,
};

constexpr const char* c_exitStatusHelp =
    "Exit status:\n"
    "   0  success\n"
    "   1  a negative result: lists differ, a list has an error, an edit would add a\n"
    "      fault, a certificate has expired, expires within the given days or cannot\n"
    "      be read, a check of the agent or a probe fails, or there is nothing to\n"
    "      print\n"
    "   2  wrong usage, or an unknown field\n"
    "   3  invalid document or settings file\n"
    "   4  a file is missing or locked, or cannot be read or written\n"
    "   5  a key cannot be used, encryption or decryption failed, or\n"
    "      passwords would be lost\n"
    "   6  a conflict with existing data, or with a change by another program\n"
    "   7  a named site, setting, rule or list of the history does not exist, or a\n"
    "      site does not have the field\n"
    "  70  an internal error, or out of memory\n";

// Returns the name of a status in the output for programs.
constexpr const char* nameOf(ExitStatus status) {
  switch (status) {
    case exitSuccess:
      return "done";
    case exitNegative:
      return "negative";
    case exitUsage:
      return "usage";
    case exitDocument:
      return "invalid-document";
    case exitFile:
      return "file";
    case exitCrypto:
      return "crypto";
    case exitConflict:
      return "conflict";
    case exitNotFound:
      return "not-found";
    case exitInternal:
      break;
  }
  return "internal";
}

}  // namespace tool

#endif
