#ifndef TOOLS_SITELIST_COMMANDS_COMPLETE_H
#define TOOLS_SITELIST_COMMANDS_COMPLETE_H

namespace tool {

// The first argument when a shell asks for completion. It is not in the table of commands, so help
// and manual page do not show it.
constexpr const char* c_completeCommand = "__complete";

// Prints the completion of a command line. The arguments, of which there are `argc`, end with "--"
// and the words that completionsOf takes. The output is:
//
//   VALUE<TAB>DESCRIPTION   one line for each candidate; the tab only with a description
//   :files                  the last line: the shell must also offer files,
//   :directories            directories,
//   :nospace                must not put a space after the word,
//   :nothing                or none of these
//
// Never fails and never prints a message. After an error there are no candidates. Takes no lock,
// reads no key and changes no file.
void complete(int argc, const char* const* argv) noexcept;

}  // namespace tool

#endif
