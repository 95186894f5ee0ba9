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

// Keeps log records from information level on, except those that the tool itself reports. If
// `verbose` is set, each message also goes to standard error immediately. Call it again after
// setAgent, which resets the threshold.
void recordLog(bool verbose);

// Returns the records of this thread so far. A message is recorded for the thread that logged it.
const std::vector<LogRecord>& logRecords();
void clearLogRecords();

// Adds errors of `logged` to `kept`, for example those of another thread. Omits errors that the
// library logged, and errors that `kept` has already. Keeps a limited number of errors.
void keepErrors(const std::vector<LogRecord>& logged, std::vector<LogRecord>& kept);
// Replaces the records of this thread.
void setLogRecords(std::vector<LogRecord> kept);

// Returns how many passwords this thread read as empty since its last call, because they cannot be
// decrypted.
unsigned long takeUnreadPasswords();

struct LoggedReason {
  std::string reason;
  std::string advice;  // may be empty
};

// Remove the record that says why `path` could not be written, or why a key file cannot be used.
// They return its reason and advice. Both texts are printable, and empty if there is no such
// record.
LoggedReason takeReasonOfWrite(const std::string& path);
LoggedReason takeReasonOfKeyFile();

// Prints errors among the records to standard error. After a success, they are printed as warnings.
// The errors of the library's class are omitted, because a command can succeed although an
// operation logged one. After a failure, errors that only repeat a result code are omitted. With
// --verbose, nothing is printed after a failure, because each error was printed when it was logged.
void reportLoggedErrors(bool hasSucceeded);

}  // namespace tool

#endif
