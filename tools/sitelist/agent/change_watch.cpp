#include "tools/sitelist/agent/change_watch.h"

#include <fcntl.h>
#include <openssl/crypto.h>
#include <sys/stat.h>

#include <cerrno>
#include <chrono>
#include <exception>
#include <filesystem>
#include <system_error>

#include "host/fs/file_system.h"
#include "platform/config/mesh_service.h"
#include "tools/sitelist/agent/key_files.h"
#include "tools/sitelist/agent/lost_passwords.h"
#include "tools/sitelist/cli/input.h"
#include "tools/sitelist/cli/text.h"

namespace fs = std::filesystem;

namespace tool {

std::string stateOfFile(const std::string& path) {
  struct stat status;
  if (host::fileSystem().stat(AT_FDCWD, path, true, status) != 0) return "missing";
  std::error_code error;
  const auto modified = std::chrono::duration_cast<std::chrono::nanoseconds>(
      fs::last_write_time(path, error).time_since_epoch());
  return std::to_string(status.st_dev) + " " + std::to_string(status.st_ino) + " " +
         std::to_string(status.st_size) + " " + std::to_string(modified.count());
}

FileContent::FileContent(const std::string& path) : m_path(path) {
  m_error = tryReadBytes(path, m_bytes);
  if (m_error == EFBIG) m_bytes = stateOfFile(path);
}

FileContent::~FileContent() { OPENSSL_cleanse(m_bytes.data(), m_bytes.size()); }

bool FileContent::isChanged() const {
  const FileContent now(m_path);
  return now.m_error != m_error || now.m_bytes != m_bytes;
}

ChangeWatch::ChangeWatch(Context& context, const std::vector<std::string>& files)
    : m_context(context) {
  for (const std::string& file : files) m_files.emplace_back(file);
}

ChangeWatch::~ChangeWatch() {
  try {
    for (const FileContent& file : m_files) {
      if (file.isChanged()) m_context.changed = true;
    }
  } catch (const std::exception&) {
    m_context.changed =
        true;  // there is no memory to find out, and a script must not miss a change
  }
}

std::vector<std::string> filesOfAgent(const Context& context) {
  const std::string etc = context.agentDirectory + "/etc";
  std::vector<std::string> files = {
      etc + "/SiteList.xml",
      etc + narrow(sitehlp::c_fipsMarker),
      context.agentDirectory + "/ServerSiteList.xml",
      context.agentDirectory + "/agent.toml",
      passwordKeyPath(context.agentDirectory),
      narrow(MeshServiceConfiguration::GetInstance()->GetMeshSiteListPath()),
  };
  for (const wchar_t* name : c_keyFiles) files.push_back(etc + "/" + narrow(name));
  return files;
}

}  // namespace tool
