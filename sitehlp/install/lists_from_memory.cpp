#include "platform/common/afile.h"
#include "platform/common/log.h"
#include "platform/config/configuration.h"
#include "platform/crypto/key_conf.h"
#include "sitehlp/common/component.h"
#include "sitehlp/query/certificates.h"
#include "sitehlp/query/versions.h"
#include "sitehlp/read/document_reader.h"
#include "sitehlp/records/record.h"
#include "sitehlp/sites_helper.h"

namespace sitehlp {

using AdvXMLParser::Element;
using korvel_com::ZQ::crypto::AnObjectBuffer;
using korvel_com::ZQ::crypto::KeyConf;

namespace {

constexpr const wchar_t* c_scratchSiteList = L"/Library/Korvel/orb/scratch/etc/SiteList.xml";

// The text that is used if the bytes cannot be converted. It has no markup.
constexpr const char* c_noDocument = "invalid";

std::wstring serverSiteListPath() {
  return IConfiguration::GetConfiguration()->GetFrameworkDataDirectory() + L"/" +
         c_serverSitelistName;
}

// Sets a flag of the instance until the end of the scope.
class FlagForScope {
 public:
  explicit FlagForScope(std::int32_t& flag) : m_flag(flag) { m_flag = 1; }
  ~FlagForScope() { m_flag = 0; }
  FlagForScope(const FlagForScope&) = delete;
  FlagForScope& operator=(const FlagForScope&) = delete;

 private:
  std::int32_t& m_flag;
};

}  // namespace

int CSitesHelper::CreateSiteListFromBuffer(const std::wstring& buffer) {
  const ADetailTrace trace(c_component, L"Reading Sitelist Buffer");
  if (buffer.empty()) return c_errorNoPath;
  std::vector<std::wstring> certificates;
  ListOwner list;
  const int result = readList(buffer, m_bUseDecryptData == 1, m_policySettings, list.out(),
                              [&](const Element& root) {
                                if (!readCertificates(root, certificates)) {
                                  GetCaCertificates(std::wstring(), certificates);
                                }
                              });
  if (result != c_success) return result;
  return CreateSiteList(list.get(), c_scratchSiteList, std::wstring(), std::wstring(),
                        std::wstring(), certificates);
}

int CSitesHelper::CreateServerSiteList(AnObjectBuffer<unsigned char>& buffer,
                                       bool adjustPasswords) {
  const ADetailTrace trace(c_component, L"CreateServerSiteList");
  if (KeyConf::getCryptoKeySize() == korvel_com::ZQ::crypto::KEY_SIZE_2048 && adjustPasswords) {
    const FlagForScope useDecryptData(m_bUseDecryptData);
    AdjustPwd(buffer);
    return 1;
  }
  return AFile::write(serverSiteListPath(), ABuffer(buffer.data(), buffer.length())) ? 1 : 0;
}

int CSitesHelper::AdjustPwd(AnObjectBuffer<unsigned char>& buffer) {
  const ADetailTrace trace(c_component, L"Reading Sitelist");
  std::string text = c_noDocument;
  AdvXMLParser::WrittenIn writtenIn{c_encoding};
  std::wstring globalVersion;
  std::wstring localVersion;
  std::wstring type;
  std::vector<std::wstring> certificates;
  ListOwner list;
  try {
    AdvXMLParser::ConvertBufferToUtf8(buffer.data(), buffer.length(), text, writtenIn);
  } catch (const AdvXMLParser::ReadWriteException& e) {
    return e.GetErrorCode();
  }
  ListSource source(std::move(text), writtenIn);
  const int result = readList(source, m_bUseDecryptData == 1, m_policySettings, list.out(),
                              [&](const Element& root) {
                                readVersions(root, globalVersion, localVersion, type);
                                readCertificates(root, certificates);
                              });
  // Bytes that are not a document must not replace the stored list with an empty one.
  if (result != c_success && result != c_errorGeneral) return result;
  CreateSiteList(list.get(), serverSiteListPath(), globalVersion, localVersion, type, certificates);
  return result;
}

}  // namespace sitehlp
