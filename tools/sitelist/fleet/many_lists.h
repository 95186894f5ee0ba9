#ifndef TOOLS_SITELIST_FLEET_MANY_LISTS_H
#define TOOLS_SITELIST_FLEET_MANY_LISTS_H

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "tools/sitelist/cli/command_line.h"
#include "tools/sitelist/fleet/given_lists.h"
#include "tools/sitelist/fleet/list_rows.h"
#include "tools/sitelist/report/context.h"

namespace tool {

// The arguments and options of a command that reads one list or several.
struct ListArguments {
  std::vector<std::string> files;
  std::string jobs;

  // The only file, or an empty name for the agent's own list.
  std::string only() const { return files.empty() ? std::string() : files.front(); }
};

// Adds the option --jobs.
void addJobs(Command& command, std::string& jobs);
// For the help of a command.
constexpr const char* c_manyListsHelp =
    "With several lists, each row begins with the name of its file. A list that\n"
    "cannot be read gives a row with the error. The other lists are still read.\n";

// Adds the argument FILE and the option --jobs.
void addLists(Command& command, ListArguments& arguments);

// Returns whether the arguments name more than one list, or a directory. The output then has a row
// for each fact about each list. Fails as jobsOf does.
bool areMany(const ListArguments& arguments);

// Returns the number of threads. Fails if the value of --jobs is not a number.
std::size_t jobsOf(const ListArguments& arguments);

// What a command does with several lists.
struct ManyLists {
  RowLayout layout;
  // Adds the rows of one list and returns the exit status for it. Fails if the list cannot be read.
  // Any thread calls it.
  std::function<int(const GivenList& list, ListRows& rows)> read;
  // Whether `read` is also called for a stream or directory that cannot be read. If not, a row
  // with the error is added.
  bool takesErrors = false;
  // The exit status is 1 if there is no row at all.
  bool needsRow = false;
  bool isWide = false;  // columns of a table are not cut
  // Whether rows may have clear passwords.
  bool isSecret = false;
  // Adds facts to those about the run. `areAllRead` says whether there are lists and none failed.
  // May be empty.
  std::function<Record(bool areAllRead)> facts;
  // Warns of the passwords that rows have counted. May be empty.
  std::function<void(const std::string& passwords, const std::string& lists)> warn;
};

// Reads the lists in several threads and prints their rows in the order of the lists. A list that
// cannot be read gives a row with the error. Sets the report of the context. Returns the highest
// exit status of all lists.
int readManyLists(Context& context, const ListArguments& arguments, const ManyLists& many);

}  // namespace tool

#endif
