#include "tools/sitelist/agent/lost_passwords.h"

#include <fcntl.h>
#include <openssl/crypto.h>
#include <sys/stat.h>

#include <cerrno>
#include <functional>
#include <memory>
#include <set>

#include "host/agent.h"
#include "host/fs/file_system.h"
#include "platform/crypto/crypt_shim.h"
#include "platform/xml/advxmlparser.h"
#include "sitehlp/fields.h"
#include "sitehlp/sites_helper.h"
#include "sitehlp/xmlschema/sitelist.h"
#include "tools/sitelist/cli/log_record.h"
#include "tools/sitelist/cli/messages.h"
#include "tools/sitelist/cli/read_error.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/model/site_list.h"

namespace tool {
namespace {

namespace schema = korvel_com::orb::xmlschema::sitelist;
using AdvXMLParser::Document;
using AdvXMLParser::Element;
using korvel_com::ZQ::crypto::CryptShim;
using korvel_com::ZQ::crypto::IEncryption;

template <const auto& Table>
bool isPasswordIn(const Element& element) {
  bool isOne = false;
  sitehlp::eachField<Table>([&](auto at) {
    constexpr const auto& row = decltype(at)::row;
    if constexpr (row.form == sitehlp::FieldForm::Password) {
      isOne = isOne || element.HasName(*row.xmlName);
    }
  });
  return isOne;
}

bool isPassword(const Element& element) {
  return isPasswordIn<sitehlp::c_httpFields>(element) ||
         isPasswordIn<sitehlp::c_ftpFields>(element) ||
         isPasswordIn<sitehlp::c_uncFields>(element) ||
         isPasswordIn<sitehlp::c_localFields>(element) ||
         isPasswordIn<sitehlp::c_proxyFields>(element);
}

struct GiveBack {
  void operator()(IEncryption* object) const {
    CryptShim::instance()->destroy_encryption_object(object);
  }
};
using EncryptionObject = std::unique_ptr<IEncryption, GiveBack>;

EncryptionObject makeEncryptionObject() {
  return EncryptionObject(CryptShim::instance()->create_encryption_object(
      korvel_com::ZQ::crypto::ENCRYPTION_TYPE_PASSWORD));
}

// Returns whether a search includes a password element. The element is not empty.
using IsWanted = std::function<bool(const Element& password, const std::wstring& text)>;

bool holdsPassword(const Element& site, const IsWanted& isWanted) {
  for (const Element& child : site.Elements()) {
    if (isPassword(child)) {
      const std::wstring text = child.GetValue();
      if (!text.empty() && isWanted(child, text)) return true;
    } else if (child.HasName(schema::WX_XML_PROXY_CONFIG) && holdsPassword(child, isWanted)) {
      return true;
    }
  }
  return false;
}

std::string siteName(const Element& site) {
  if (site.HasName(schema::WX_XML_PROXY_CONFIG_LIST)) return "the proxy settings";
  const std::wstring name = site.GetAttribute(schema::WX_XML_SITE_NAME).GetValue();
  return "site \"" + shown(name.empty() ? site.GetName() : name) + "\"";
}

using TakeSite = std::function<void(const Element& site, std::size_t place)>;

void eachSite(const Document& document, const IsWanted& isWanted, const TakeSite& take) {
  std::size_t place = 0;
  for (const Element& site : document.GetRoot().GetElement(schema::WX_XML_SITELIST).Elements()) {
    if (holdsPassword(site, isWanted)) take(site, place);
    ++place;
  }
}

std::unique_ptr<Document> documentAt(const std::string& path) {
  std::wstring text;
  std::unique_ptr<Document> document;
  if (readDocument(path, text, document)) return nullptr;
  return document;
}

std::vector<std::string> findSites(const Document& document, const IsWanted& isWanted) {
  std::vector<std::string> names;
  eachSite(document, isWanted,
           [&](const Element& site, std::size_t) { names.push_back(siteName(site)); });
  return names;
}

std::vector<std::string> findSites(const std::string& path, const IsWanted& isWanted) {
  const std::unique_ptr<Document> document = documentAt(path);
  return document ? findSites(*document, isWanted) : std::vector<std::string>();
}

bool isLost(const Element& /*password*/, const std::wstring& text) {
  return !opensWithAgentKey(text);
}

// The management server encrypts all passwords except this one. This one is encrypted with the
// password key.
bool isLostFromServer(const Element& password, const std::wstring& text) {
  if (password.HasName(schema::WX_XML_HTTP_PROXY_PROXYPASSWORD)) return !opensWithAgentKey(text);
  std::wstring clear;
  const bool isOpened = sitehlp::decrypt_data(text, clear) != 0;
  OPENSSL_cleanse(clear.data(), clear.size() * sizeof(wchar_t));
  return !isOpened;
}

bool isAny(const Element& /*password*/, const std::wstring& /*text*/) { return true; }

}  // namespace

std::string passwordKeyPath(const std::string& dataDirectory) {
  return dataDirectory + "/keystore/password.key";
}

int passwordKeyError(const std::string& dataDirectory) {
  struct stat status;
  return -host::fileSystem().stat(AT_FDCWD, passwordKeyPath(dataDirectory), false, status);
}

// The crypto service would create a missing key, and the new key could not decrypt the password.
bool opensWithAgentKey(const std::wstring& protectedText) {
  if (passwordKeyError(host::agent().dataDirectory) == ENOENT) return false;
  const EncryptionObject object = makeEncryptionObject();
  std::wstring clear;
  const bool isOpened = object && object->decrypt_string(protectedText, clear) != 0;
  OPENSSL_cleanse(clear.data(), clear.size() * sizeof(wchar_t));
  return isOpened;
}

bool canEncryptWithAgentKey() { return makeEncryptionObject() != nullptr; }

std::vector<std::string> sitesWithLostPasswords(const std::string& path) {
  return findSites(path, isLost);
}

std::vector<std::string> sitesWithLostPasswords(const Document& document) {
  return findSites(document, isLost);
}

std::set<std::size_t> placesOfLostPasswords(const std::string& path) {
  std::set<std::size_t> places;
  const std::unique_ptr<Document> document = documentAt(path);
  if (!document) return places;
  eachSite(*document, isLost, [&](const Element&, std::size_t place) { places.insert(place); });
  return places;
}

std::vector<std::string> sitesWithNewLostPasswords(const std::string& path,
                                                   const std::string& before) {
  std::set<std::wstring> old;
  findSites(before, [&old](const Element& /*password*/, const std::wstring& text) {
    old.insert(text);
    return false;
  });
  return findSites(path, [&old](const Element& password, const std::wstring& text) {
    return old.count(text) == 0 && isLost(password, text);
  });
}

std::vector<std::string> sitesWithLostServerPasswords(const Document& document) {
  return findSites(document, isLostFromServer);
}

std::vector<std::string> sitesWithPasswords(const std::string& path) {
  return findSites(path, isAny);
}

std::vector<std::string> sitesWithPasswords(const Document& document) {
  return findSites(document, isAny);
}

void warnOfUnreadPasswords(const std::string& path, bool isOwnList) {
  const unsigned long count = takeUnreadPasswords();
  if (count == 0) return;
  printWarning(
      shown(path) + ": " + std::to_string(count) +
          (count == 1
               ? " password cannot be decrypted with the password key and is read as empty"
               : " passwords cannot be decrypted with the password key and are read as empty"),
      isOwnList ? "restore the agent's password key, or set the passwords again"
                : "name the agent that the list belongs to with --agent-dir");
}

void warnOfUnreadPasswordsInLists(const std::string& passwords, const std::string& lists) {
  printWarning(passwords + " in " + lists +
                   " cannot be decrypted with the password key and are read as empty",
               "read each list on its endpoint: only the key of its agent decrypts its passwords");
}

}  // namespace tool
