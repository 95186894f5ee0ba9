#include "platform/common/abuffer.h"
#include "tests/import/records.h"
#include "tests/threads/operations.h"

// Operations that write the agent's files.
namespace test {
namespace {

using namespace sitehlp;

template <const char* const& name>
std::string runNamed(const Workshop& w) {
  return told(writingOperation(name).run(w));
}

constexpr const char* c_import = "import";
constexpr const char* c_importNew = "import-new-directory";
constexpr const char* c_install = "install";
constexpr const char* c_create = "create";
constexpr const char* c_fromBuffer = "create-from-buffer";
constexpr const char* c_serverList = "server-list";
constexpr const char* c_adjusted = "server-list-adjusted";
constexpr const char* c_modify = "modify";
constexpr const char* c_derive = "derive";

std::string runInternalImport(const Workshop& w) {
  const SiteChain sites{serverSite(L"internal"), httpSite(L"http")};
  return told(
      CSitesHelper(wide(w.own())).InternalImportSiteList(wide(w.incoming()), sites.head(), L""));
}

std::string runAdjust(const Workshop& w) {
  const std::string& bytes = w.serverBuffer();
  korvel_com::ZQ::crypto::AnObjectBuffer<unsigned char> buffer(
      static_cast<unsigned int>(bytes.size()),
      reinterpret_cast<const unsigned char*>(bytes.data()));
  return told(CSitesHelper(wide(w.own())).AdjustPwd(buffer));
}

std::string runCopyKeys(const Workshop& w) {
  tag_Site server = serverSite(L"server");
  return told(CSitesHelper(wide(w.own()))
                  .createDirectoriesAndCopyKeyFiles(wide(w.incoming()), &server, L""));
}

ABuffer bytesOf(const std::string& text) {
  return ABuffer(reinterpret_cast<const unsigned char*>(text.data()), text.size());
}

std::string runWriteKey(const Workshop& w) {
  return told(CSitesHelper(true).writeKeyFile(bytesOf("a key"), AString(L"srpubkey.bin"), AString(),
                                              AString(wide(w.etcDirectory()))));
}
std::string runWriteKeys(const Workshop& w) {
  const ABuffer key = bytesOf("one of four keys");
  return told(CSitesHelper(true).writeKeyFiles(true, true, key, key, true, true, key, key,
                                               AString(wide(w.etcDirectory()))));
}

}  // namespace

SharedOperations writingSharedOperations() {
  return {
      {"ImportSiteList", runNamed<c_import>, true},
      {"ImportSiteList into a new directory", runNamed<c_importNew>, true},
      {"InstallSiteList", runNamed<c_install>, true},
      {"InternalImportSiteList", runInternalImport, true},
      {"CreateSiteList", runNamed<c_create>, true},
      {"CreateSiteListFromBuffer", runNamed<c_fromBuffer>, true},
      {"CreateServerSiteList", runNamed<c_serverList>, true},
      {"CreateServerSiteList with adjusted passwords", runNamed<c_adjusted>, true},
      {"AdjustPwd", runAdjust, true},
      {"modifySiteList", runNamed<c_modify>, true},
      {"createServerSiteListFromSiteList", runNamed<c_derive>, true},
      {"createDirectoriesAndCopyKeyFiles", runCopyKeys, true},
      {"writeKeyFile", runWriteKey, true},
      {"writeKeyFiles", runWriteKeys, true},
  };
}

}  // namespace test
