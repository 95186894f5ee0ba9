#ifndef TOOLS_SITELIST_AGENT_GIVEN_FILE_H
#define TOOLS_SITELIST_AGENT_GIVEN_FILE_H

#include <optional>
#include <string>

#include "tools/sitelist/agent/scratch_directory.h"
#include "tools/sitelist/cli/input.h"

namespace tool {

// A file to read that the command line names. The library reads a list several times, and only from
// files. Standard input ("-") and a pipe are therefore read once and stored in a temporary
// directory. Messages and reports show the name from the command line.
class GivenFile {
 public:
  // Reads standard input or a pipe, and waits for the writer. Fails when it cannot be read. Accepts
  // an empty name, for no file.
  explicit GivenFile(const std::string& name);

  // Returns the path to read. The first call stores what was read; from then on, the rule of
  // ScratchDirectory applies. Fails when it cannot be stored.
  const std::string& path();
  // Removes the stored copy. The path must not be used afterwards.
  void discard() { m_scratch.reset(); }

  // Returns whether it is standard input or a pipe. There are no key files next to it.
  bool isStream() const { return m_input.has_value(); }

 private:
  std::string m_path;
  std::optional<Input> m_input;
  std::optional<ScratchDirectory> m_scratch;
};

// Stores a document in the directory. Returns its path, which messages show as the name of the
// document. Fails when it cannot be stored.
std::string storeInput(const ScratchDirectory& scratch, const Input& input);

}  // namespace tool

#endif
