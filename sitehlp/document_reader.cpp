#include "sitehlp/document_reader.h"

#include <unistd.h>

#include <utility>

#include "platform/common/astring.h"
#include "platform/common/log.h"
#include "platform/crypto/crypt_shim.h"
#include "platform/lock/interprocess_lock.h"
#include "sitehlp/list_builder.h"
#include "sitehlp/locks.h"
#include "sitehlp/record.h"
#include "sitehlp/sites_helper.h"
#include "sitehlp/xmlschema/sitelist.h"

namespace sitehlp {

using AdvXMLParser::Element;
using korvel_com::orb::lock::InterProcessReadLock;
using namespace korvel_com::orb::xmlschema::sitelist;  // NOLINT(google-build-using-namespace)

namespace {

constexpr const wchar_t* c_setting = L"Setting";
constexpr const wchar_t* c_settingName = L"name";

void readPolicies(const Element& policies, PolicySettings& policySettings) {
  for (const Element setting : policies.Elements()) {
    if (!setting.HasName(c_setting)) continue;
    policySettings[setting.GetAttribute(c_settingName).GetValue()] = setting.GetValue();
  }
}

void walkRoot(const Element& root, bool useDecryptData, PolicySettings& policySettings,
              const TakeSite& take, int& result) {
  for (const Element child : root.Elements()) {
    if (child.HasName(WX_XML_POLICIES)) {
      readPolicies(child, policySettings);
    } else if (child.HasName(WX_XML_SITELIST)) {
      readSites(child, useDecryptData, take, result);
      return;
    }
  }
}

template <typename Text>
int readSites(Text text, bool useDecryptData, PolicySettings& policySettings, const TakeSite& take,
              const Inspect& inspect) {
  int result = c_success;
  try {
    DocumentPtr document;
    parseDocument(text, document);
    if (!document) return c_errorParse;
    Text().swap(text);  // the tree holds all of it
    const Element root = document->GetRoot();
    if (inspect) inspect(root);
    const korvel_com::ZQ::crypto::KeptKeys keys;
    walkRoot(root, useDecryptData, policySettings, take, result);
  } catch (const AdvXMLParser::ParsingException&) {
    return c_errorParse;
  } catch (const AdvXMLParser::ReadWriteException& e) {
    return e.GetErrorCode();
  }
  return result;
}

template <typename Text>
int readListOf(Text text, bool useDecryptData, PolicySettings& policySettings, tag_Site** list,
               const Inspect& inspect) {
  tag_Site** link = list;
  const auto append = [&link](tag_Site* site) {
    *link = site;
    link = &site->pNext;
  };
  return readSites(std::move(text), useDecryptData, policySettings, append, inspect);
}

}  // namespace

int readDocumentText(const std::wstring& path, bool useLock, std::string& text) {
  if (::access(ACharString(path).c_str(), F_OK) != 0) return c_errorFileMissing;
  AdvXMLParser::UTF_ENCODINGS encoding = c_encoding;
  try {
    if (!useLock) {
      AdvXMLParser::ReadUtf8FromFile(path, text, encoding);
      return c_success;
    }
    InterProcessReadLock lock(c_siteListLock);
    lock.lock(c_waitForEver);
    AdvXMLParser::ReadUtf8FromFile(path, text, encoding);
    lock.unlock();
    return c_success;
  } catch (...) {
    return c_errorRead;
  }
}

void parseDocument(const std::string& utf8, DocumentPtr& document) {
  document.reset(AdvXMLParser::Parser().ParseUtf8(utf8.data(), utf8.size()));
}

void parseDocument(const std::wstring& text, DocumentPtr& document) {
  document.reset(AdvXMLParser::Parser().Parse(text.data(), text.size()));
}

int readSitesOfFile(const std::wstring& path, bool useDecryptData, PolicySettings& policySettings,
                    const TakeSite& take, const Inspect& inspect) {
  if (path.empty()) return c_errorNoPath;
  std::string text;
  const int readResult = readDocumentText(path, true, text);
  if (readResult != c_success) return readResult;
  return readSites(std::move(text), useDecryptData, policySettings, take, inspect);
}

int readList(std::string utf8, bool useDecryptData, PolicySettings& policySettings, tag_Site** list,
             const Inspect& inspect) {
  return readListOf(std::move(utf8), useDecryptData, policySettings, list, inspect);
}

int readList(std::wstring text, bool useDecryptData, PolicySettings& policySettings,
             tag_Site** list, const Inspect& inspect) {
  return readListOf(std::move(text), useDecryptData, policySettings, list, inspect);
}

void logFailedRead(int result) { logError(c_component, AString(L"Failed hr=").append(result)); }

}  // namespace sitehlp
