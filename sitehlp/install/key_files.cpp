#include <vector>

#include "platform/common/afile.h"
#include "platform/common/log.h"
#include "sitehlp/common/component.h"
#include "sitehlp/common/log_texts.h"
#include "sitehlp/install/key_file_names.h"
#include "sitehlp/records/record.h"
#include "sitehlp/sites_helper.h"

namespace sitehlp {
namespace {

bool hasVersionedServer(const tag_Site* sites) {
  for (; sites; sites = sites->pNext) {
    if (isVersionedServer(*sites)) return true;
  }
  return false;
}

AString directoryOf(const std::wstring& path) {
  std::wstring directory;
  splitPath(path, &directory, nullptr);
  return directory;
}

AString fipsMarker(const AString& directory) { return AString(directory).append(c_fipsMarker); }

}  // namespace

bool CSitesHelper::readKeyFile(const AString& dir, const AString& name, ABuffer& out) {
  const APath path(dir, name);
  if (!AFile::readExisting(path.str(), out)) return false;
  if (!out.empty()) return true;
  logError(c_component, AString(path.str()).append(L" is invalid"));
  logInfo(c_component, L"There could be another set of key files to be used.");
  return false;
}

bool CSitesHelper::readKeyFiles(const std::wstring& srcSiteListPath, tag_Site* sites,
                                const std::wstring& keyDir, ABuffer& srPub, ABuffer& reqSec,
                                ABuffer& sr2048Pub, ABuffer& req2048Sec, bool& hasSrPub,
                                bool& hasReqSec, bool& hasSr2048Pub, bool& hasReq2048Sec) {
  if (!hasVersionedServer(sites)) {
    if (keyDir.empty()) {
      hasSrPub = false;
    } else {
      if (!readKeyFile(keyDir, c_srPubKey, srPub)) return false;
      hasSrPub = true;
    }
    hasReqSec = false;
    return true;
  }
  const AString directory = directoryOf(srcSiteListPath);
  if (readKeyFile(directory, c_sr2048PubKey, sr2048Pub) &&
      readKeyFile(directory, c_req2048SecKey, req2048Sec)) {
    hasReq2048Sec = true;
    hasSr2048Pub = true;
  }
  if (readKeyFile(directory, c_srPubKey, srPub) && readKeyFile(directory, c_reqSecKey, reqSec)) {
    hasReqSec = true;
    hasSrPub = true;
  }
  return hasSrPub || hasReqSec || hasSr2048Pub || hasReq2048Sec;
}

bool CSitesHelper::writeKeyFile(const ABuffer& data, const AString& name,
                                [[maybe_unused]] const AString& subDir, const AString& dir) {
  return AFile::write(APath(dir, name).str(), data);
}

bool CSitesHelper::writeKeyFiles(bool hasSrPub, bool hasReqSec, const ABuffer& srPub,
                                 const ABuffer& reqSec, bool hasSr2048Pub, bool hasReq2048Sec,
                                 const ABuffer& sr2048Pub, const ABuffer& req2048Sec,
                                 const AString& dir) {
  std::vector<AFile::NewContent> files;
  const auto add = [&files, &dir](const wchar_t* name, const ABuffer& data) {
    files.push_back({APath(dir, name).str(), &data});
  };
  if (hasSrPub) add(c_srPubKey, srPub);
  if (hasSr2048Pub) add(c_sr2048PubKey, sr2048Pub);
  if (hasReqSec) add(c_reqSecKey, reqSec);
  if (hasReq2048Sec) add(c_req2048SecKey, req2048Sec);
  if (!AFile::writeTogether(files)) return false;
  // An old request key would not belong to the new public key.
  const bool onlyPublic = (hasSrPub || hasSr2048Pub) && !hasReqSec && !hasReq2048Sec;
  return !onlyPublic || AFiler::deleteFile(APath(dir, c_reqSecKey).str());
}

bool CSitesHelper::writable(const AString& path) {
  bool exists = false;
  bool accessible = false;
  if (!AFiler::getFileAccessibility(path, AFiler::accessWrite, exists, accessible)) return false;
  if (!exists || accessible) return true;
  logError(c_component, AString(log_texts::c_notWritable).append(path));
  return false;
}

bool CSitesHelper::createDirectoriesAndCopyKeyFiles(const std::wstring& srcSiteListPath,
                                                    tag_Site* sites, const std::wstring& keyDir) {
  const AString directory = directoryOf(m_strSiteListFile);
  if (!AFiler::createDirectory(directory)) return false;
  ABuffer srPub;
  ABuffer reqSec;
  ABuffer sr2048Pub;
  ABuffer req2048Sec;
  bool hasSrPub = false;
  bool hasReqSec = false;
  bool hasSr2048Pub = false;
  bool hasReq2048Sec = false;
  if (!readKeyFiles(srcSiteListPath, sites, keyDir, srPub, reqSec, sr2048Pub, req2048Sec, hasSrPub,
                    hasReqSec, hasSr2048Pub, hasReq2048Sec)) {
    return false;
  }
  if (!writable(m_strSiteListFile)) return false;
  if (hasSrPub && !writable(APath(directory, c_srPubKey).str())) return false;
  if (hasReqSec && !writable(APath(directory, c_reqSecKey).str())) return false;
  if (hasSr2048Pub && !writable(APath(directory, c_sr2048PubKey).str())) return false;
  if (hasReq2048Sec && !writable(APath(directory, c_req2048SecKey).str())) return false;
  if (!writeKeyFiles(hasSrPub, hasReqSec, srPub, reqSec, hasSr2048Pub, hasReq2048Sec, sr2048Pub,
                     req2048Sec, directory)) {
    return false;
  }
  AFiler::copyFile(fipsMarker(directoryOf(srcSiteListPath)), fipsMarker(directory));
  return true;
}

}  // namespace sitehlp
