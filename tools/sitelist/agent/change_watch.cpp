#include "tools/sitelist/agent/change_watch.h"

#include <openssl/crypto.h>

#include <exception>

#include "host/fs/files.h"
#include "platform/config/mesh_service.h"
#include "sitehlp/install/key_file_names.h"
#include "tools/sitelist/agent/lost_passwords.h"
#include "tools/sitelist/cli/text.h"

namespace tool {

FileContent::FileContent(const std::string& path) : m_path(path) {
  constexpr std::size_t noLimit = static_cast<std::size_t>(-1);
  m_error = host::readRegularFile(path, noLimit, m_bytes);
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
  for (const wchar_t* name : {sitehlp::c_srPubKey, sitehlp::c_reqSecKey, sitehlp::c_sr2048PubKey,
                              sitehlp::c_req2048SecKey}) {
    files.push_back(etc + "/" + narrow(name));
  }
  return files;
}

}  // namespace tool
