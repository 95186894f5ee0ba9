#include "tools/sitelist/agent/change_watch.h"

#include <openssl/crypto.h>
#include <openssl/sha.h>

#include <algorithm>
#include <exception>

#include "host/fs/files.h"
#include "platform/config/mesh_service.h"
#include "sitehlp/install/key_file_names.h"
#include "tools/sitelist/agent/lost_passwords.h"
#include "tools/sitelist/cli/text.h"

namespace tool {
namespace {

// Returns a text for the content of a file. Does not keep the content, because it may be a key.
std::string digestOf(const std::string& path) {
  constexpr std::size_t noLimit = static_cast<std::size_t>(-1);
  std::string bytes;
  if (const int error = host::readRegularFile(path, noLimit, bytes)) return std::to_string(error);
  unsigned char digest[SHA256_DIGEST_LENGTH];
  SHA256(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size(), digest);
  OPENSSL_cleanse(bytes.data(), bytes.size());
  return std::string(std::begin(digest), std::end(digest));
}

}  // namespace

ChangeWatch::ChangeWatch(Context& context, const std::vector<std::string>& files)
    : m_context(context) {
  for (const std::string& file : files) m_digests.emplace_back(file, digestOf(file));
}

ChangeWatch::~ChangeWatch() {
  try {
    for (const auto& [file, digest] : m_digests) {
      if (digestOf(file) != digest) m_context.changed = true;
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
