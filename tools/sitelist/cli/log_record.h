#ifndef TOOLS_SITELIST_CLI_LOG_RECORD_H
#define TOOLS_SITELIST_CLI_LOG_RECORD_H

#include <string>
#include <vector>

#include "platform/common/log.h"

namespace tool {

struct LogRecord {
  LogLevel level;
  std::wstring text;
};

// Keeps log records from information level on, except those that the tool reports itself. With
// `verbose` every message also goes to standard error as it comes. Call it again after setAgent,
// which resets the threshold.
void recordLog(bool verbose);

// What was logged so far in this process.
const std::vector<LogRecord>& logRecords();
void clearLogRecords();

// Prints the errors among the records, which nobody has seen yet without --verbose, to standard
// error. A line that only repeats a result code is left out when `withCodes` is false.
void reportLoggedErrors(bool withCodes);

}  // namespace tool

#endif
