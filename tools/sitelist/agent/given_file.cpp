#include "tools/sitelist/agent/given_file.h"

#include <sys/stat.h>

#include <cstring>

#include "host/fs/files.h"
#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/cli/shown_name.h"

namespace tool {

GivenFile::GivenFile(const std::string& name) : m_path(name) {
  if (isReadOnce(name)) m_input = readInput(name);
}

const std::string& GivenFile::path() {
  if (m_input && !m_scratch) {
    m_scratch.emplace();
    m_path = storeInput(*m_scratch, *m_input);
  }
  return m_path;
}

// The list gets a directory of its own inside the private one. A FIPS marker would be beside the
// directory of the list, and another user must not be able to create it.
std::string storeInput(const ScratchDirectory& scratch, const Input& input) {
  const std::string directory = scratch.path() + "/input";
  const std::string path = directory + "/SiteList.xml";
  showAs(path, input.name);
  int error = host::makeDirectory(directory, S_IRWXU);
  if (error == 0) {
    error = host::replaceFile(path, input.bytes.data(), input.bytes.size(), S_IRUSR | S_IWUSR);
  }
  if (error == 0) return path;
  throw failureAt(
      path, exitFile,
      std::string("it could not be stored in a temporary file: ") + std::strerror(error),
      "free space there, or set TMPDIR to another directory");
}

}  // namespace tool
