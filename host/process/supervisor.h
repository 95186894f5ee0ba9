#ifndef HOST_PROCESS_SUPERVISOR_H
#define HOST_PROCESS_SUPERVISOR_H

namespace host {

// What a supervisor and its program need, all of it made before the fork.
struct SupervisorPlan {
  char* const* argv;  // argv[0] is the full path of the program
  unsigned int timeoutSeconds;
  int output;           // takes what the program prints; more than 3
  int report;           // takes the reports; more than 3
  int descriptorLimit;  // no descriptor of the process is this or more; not used with glibc
};

// What a supervisor writes as a whole; only its first report counts.
struct SupervisorReport {
  enum Kind : int { NotStarted, Ended, TimedOut };
  Kind kind;
  int value;  // an errno when the program was not started, else its status as of waitpid
};

// The life of a supervisor: the child of a fork that starts a program, waits for it and reports its
// end, so that its parent need not wait for a process. Calls only what is safe in the child of a
// process with threads. All signals are blocked when it begins.
[[noreturn]] void supervise(const SupervisorPlan& plan);

}  // namespace host

#endif
