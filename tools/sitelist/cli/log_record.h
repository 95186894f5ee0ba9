#ifndef TOOLS_SITELIST_CLI_LOG_RECORD_H
#define TOOLS_SITELIST_CLI_LOG_RECORD_H

#include <string>
#include <vector>

#include "platform/common/log.h"

namespace tool {

struct LogRecord {
  LogLevel level;
  std::wstring component;
  std::wstring text;
};

// Keeps log records from information level on, except those that the tool reports itself. With
// `verbose` every message also goes to standard error as it comes. Call it again after setAgent,
// which resets the threshold.
void recordLog(bool verbose);

// What was logged so far in this process.
const std::vector<LogRecord>& logRecords();
void clearLogRecords();

// How many passwords were read as empty, because the agent's key does not decrypt them, since the
// last call.
unsigned long takeUnreadPasswords();

// Shows a path of records that begins with `actual` as one that begins with `shown`.
void replaceInLog(const std::string& actual, const std::string& shown);

struct LoggedReason {
  std::string reason;
  std::string advice;  // empty when the record has none
};

// Take the records away that say why `path` could not be written, or why a key file cannot be used,
// and return what they say. Both texts are printable, and empty when there is no such record.
LoggedReason takeReasonOfWrite(const std::string& path);
LoggedReason takeReasonOfKeyFile();

// Prints the errors among the records, which nobody has seen yet without --verbose, to standard
// error. The lines of the library's class are left out when the command succeeded, because what it
// logs as an error need not be one for the command. After a failure, those are left out that only
// repeat a result code.
void reportLoggedErrors(bool hasSucceeded);

}  // namespace tool

#endif
