#ifndef HOST_PROCESS_SUPERVISOR_H
#define HOST_PROCESS_SUPERVISOR_H

namespace host {

// Data for a supervisor and its program, created before the fork.
struct SupervisorPlan {
  char* const* argv;  // argv[0] is the full path of the program
  unsigned int timeoutSeconds;
  int output;           // receives what the program prints; greater than 3
  int report;           // receives the reports; greater than 3
  int descriptorLimit;  // of descriptorLimit()
};

// The report of a supervisor, in one write. Only the first report counts.
struct SupervisorReport {
  enum Kind : int { NotStarted, Ended, TimedOut, NotEnded };
  Kind kind;
  int value;  // NotStarted: an errno; NotEnded: 0; otherwise the status as of waitpid
};

// Runs a supervisor in the child of a fork. The supervisor starts a program, waits for its end and
// reports it. Its parent therefore does not depend on the result of waitpid. It also reports a
// program that cannot be ended, and leaves that program running. Calls only functions that are safe
// in the child of a process with threads. All signals must be blocked before the call.
[[noreturn]] void supervise(const SupervisorPlan& plan);

}  // namespace host

#endif
