#include <openssl/crypto.h>

#include <iostream>
#include <memory>

#include "platform/crypto/crypt_shim.h"
#include "platform/xml/advxmlparser.h"
#include "sitehlp/xmlschema/sitelist.h"
#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/cli/log_record.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/model/site_list.h"

namespace tool {
namespace {

namespace schema = korvel_com::orb::xmlschema::sitelist;
using AdvXMLParser::Element;
using korvel_com::ZQ::crypto::CryptShim;
using korvel_com::ZQ::crypto::IEncryption;

bool isPassword(const Element& element) {
  for (const wchar_t* name :
       {schema::WX_XML_SITE_PASSWORD, schema::WX_XML_HTTP_PROXY_PROXYPASSWORD,
        schema::WX_XML_FTP_PROXY_PROXYPASSWORD, schema::WX_XML_HTTP_PROXY_ALT_PROXYPASSWORD,
        schema::WX_XML_FTP_PROXY_ALT_PROXYPASSWORD}) {
    if (element.HasName(name)) return true;
  }
  return false;
}

struct GiveBack {
  void operator()(IEncryption* object) const {
    CryptShim::instance()->destroy_encryption_object(object);
  }
};

bool holdsLostPassword(const Element& site) {
  for (const Element& child : site.Elements()) {
    if (isPassword(child)) {
      const std::wstring text = child.GetValue();
      if (!text.empty() && !opensWithAgentKey(text)) return true;
    } else if (child.HasName(schema::WX_XML_PROXY_CONFIG) && holdsLostPassword(child)) {
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

}  // namespace

bool opensWithAgentKey(const std::wstring& protectedText) {
  const std::unique_ptr<IEncryption, GiveBack> object(
      CryptShim::instance()->create_encryption_object(
          korvel_com::ZQ::crypto::ENCRYPTION_TYPE_PASSWORD));
  std::wstring clear;
  const bool isOpened = object && object->decrypt_string(protectedText, clear) != 0;
  OPENSSL_cleanse(clear.data(), clear.size() * sizeof(wchar_t));
  return isOpened;
}

std::vector<std::string> sitesWithLostPasswords(const std::string& path) {
  std::wstring text;
  AdvXMLParser::UTF_ENCODINGS encoding = AdvXMLParser::UTF_8;
  AdvXMLParser::ReadBufferFromFile(wide(path), text, encoding, nullptr);
  const std::unique_ptr<AdvXMLParser::Document> document(
      AdvXMLParser::Parser().Parse(text.data(), text.size()));
  std::vector<std::string> names;
  if (!document) return names;
  for (const Element& site : document->GetRoot().GetElement(schema::WX_XML_SITELIST).Elements()) {
    if (holdsLostPassword(site)) names.push_back(siteName(site));
  }
  return names;
}

void warnOfUnreadPasswords(const std::string& path, bool isOwnList) {
  const unsigned long count = takeUnreadPasswords();
  if (count == 0) return;
  std::cerr << "sitelist: " << shown(path) << ": warning: " << count
            << (count == 1 ? " password cannot be decrypted with the password key and is read as"
                           : " passwords cannot be decrypted with the password key and are read as")
            << " empty\n  next: "
            << (isOwnList ? "restore the agent's password key, or set the passwords again\n"
                          : "name the agent that the list belongs to with --agent-dir\n");
}

void refuseLostPasswords(const std::string& path) {
  const std::vector<std::string> names = sitesWithLostPasswords(path);
  if (names.empty()) return;
  std::string text = "cannot decrypt passwords with the password key:";
  for (const std::string& name : names) text += "\n  " + name;
  throw failureAt(path, exitCrypto,
                  text + "\n  Nothing was written, because the new list would have lost them.",
                  "name the agent that the list belongs to with --agent-dir");
}

}  // namespace tool
