#include "tools/sitelist/agent/given_file.h"

#include <sys/stat.h>

#include <fstream>

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

// The FIPS marker is a file beside the directory of a list. Another user must not be able to create
// one.
std::string storeInput(const ScratchDirectory& scratch, const Input& input) {
  const std::string directory = scratch.path() + "/input";
  const std::string path = directory + "/SiteList.xml";
  showAs(path, input.name);
  host::makeDirectory(directory, S_IRWXU);
  std::ofstream file(path, std::ios::binary);
  file.write(input.bytes.data(), static_cast<std::streamsize>(input.bytes.size()));
  file.close();
  if (file) return path;
  throw failureAt(path, exitFile, "it could not be stored in a temporary file",
                  "free space there, or set TMPDIR to another directory");
}

}  // namespace tool
