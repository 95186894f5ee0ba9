#include "sitehlp/read/decoder.h"

#include <cstdlib>
#include <iterator>
#include <new>

#include "platform/common/log.h"
#include "platform/common/text.h"
#include "sitehlp/common/component.h"
#include "sitehlp/common/number.h"
#include "sitehlp/common/password.h"
#include "sitehlp/common/wipe.h"
#include "sitehlp/read/child_value.h"
#include "sitehlp/read/proxy_decoder.h"
#include "sitehlp/read/text_field.h"
#include "sitehlp/xmlschema/sitelist.h"

namespace sitehlp {

using AdvXMLParser::Attribute;
using AdvXMLParser::Element;
using namespace korvel_com::orb::xmlschema::sitelist;  // NOLINT(google-build-using-namespace)

namespace {

constexpr unsigned int c_defaultPort = 80;

// The children that site elements have.
enum class SiteChild {
  RelativePath,
  UseAuth,
  UserName,
  Password,
  ShareName,
  DomainName,
  UseLoggedonUserAccount,
  None,
};

// Filled when the library is loaded, as in the other tables of names: the guard of a static of a
// function would stay held in the child of a fork at its first use.
const wchar_t* const c_childNames[] = {
    WX_XML_SITE_RELATIVEPATH,
    WX_XML_HTTPSITE_USE_AUTH,
    WX_XML_SITE_USER_NAME,
    WX_XML_SITE_PASSWORD,
    WX_XML_UNCSITE_SHARENAME,
    WX_XML_SITE_DOMAIN_NAME,
    WX_XML_UNCSITE_USE_LOGON_USER_ACCOUNT,
};
static_assert(std::size(c_childNames) == static_cast<std::size_t>(SiteChild::None));

SiteChild childOf(const Element& element) {
  return static_cast<SiteChild>(element.FindName(c_childNames, std::size(c_childNames)));
}

const wchar_t* const c_elementNames[] = {
    WX_XML_SITELIST_HTTP_SITE, WX_XML_SITELIST_VESTA_SITE, WX_XML_SITELIST_KEYSTONE_SITE,
    WX_XML_SITELIST_FTP_SITE,  WX_XML_SITELIST_UNC_SITE,   WX_XML_SITELIST_LOCAL_SITE,
    WX_XML_PROXY_CONFIG,
};
constexpr SiteElement c_elements[] = {
    SiteElement::Http, SiteElement::Vesta, SiteElement::Keystone, SiteElement::Ftp,
    SiteElement::Unc,  SiteElement::Local, SiteElement::Proxy,    SiteElement::None,
};
static_assert(std::size(c_elementNames) + 1 == std::size(c_elements));

// A server address, split. The host points into the object or into its long text.
class Address {
 public:
  explicit Address(const Attribute& attribute) { set(attribute); }
  Address(const Address&) = delete;
  Address& operator=(const Address&) = delete;

  // A port that cannot be read behind the ":" is 0, and never that of another address.
  void set(const Attribute& attribute) {
    m_text = m_buffer;
    m_port = 0;
    if (!attribute.CopyValue(m_buffer, sizeof m_buffer / sizeof m_buffer[0])) {
      m_long = attribute.GetValue();
      m_text = m_long.c_str();
    }
    const wchar_t* const colon = findPort(m_text);
    if (colon) {
      m_length = static_cast<std::size_t>(colon - m_text);
      toUnsigned(colon + 1, m_port);
    } else {
      m_length = std::wcslen(m_text);
      m_port = c_defaultPort;
    }
  }

  template <std::size_t N>
  void storeHost(wchar_t (&field)[N]) const {
    setField(field, m_text, m_length);
  }
  std::wstring host() const { return std::wstring(m_text, m_length); }
  bool hasHost() const { return m_length != 0; }
  unsigned int port() const { return m_port; }

 private:
  wchar_t m_buffer[c_pathCapacity];
  std::wstring m_long;
  const wchar_t* m_text = nullptr;
  std::size_t m_length = 0;
  unsigned int m_port = 0;
};

unsigned int readUnsignedPort(const Attribute& attribute) {
  unsigned int port = 0;
  wchar_t text[64];
  if (attribute.IsNull()) return port;
  if (attribute.CopyValue(text, sizeof text / sizeof text[0])) {
    toUnsigned(text, port);
  } else {
    toUnsigned(attribute.GetValue().c_str(), port);
  }
  return port;
}

void storeNetbiosName(const Address& address, tag_HttpSite& site) {
  if (!address.hasHost()) return;
  std::wstring name = address.host();
  if (convertFqdnToNetbios(name)) {
    logDetail(c_component, AString(L"truncated ").append(name).append(L" NetBIOS name at dot"));
  }
  setField(site.szServerName, name);
}

void decodeHttp(SiteElement kind, const Element& element, const SiteAttributes& attributes,
                bool useDecryptData, tag_HttpSite& site) {
  const wchar_t* const name = kind == SiteElement::Vesta      ? WX_XML_SITELIST_VESTA_SITE
                              : kind == SiteElement::Keystone ? WX_XML_SITELIST_KEYSTONE_SITE
                                                              : WX_XML_SITELIST_HTTP_SITE;
  setField(site.szElement, name, std::wcslen(name));
  Address server(attributes.server);
  if (kind == SiteElement::Vesta) setField(site.szVersion, attributes.version);
  if (kind == SiteElement::Keystone && !attributes.serverDns.IsNull()) {
    server.set(attributes.serverDns);
  }
  server.storeHost(site.szServer);
  site.uServerPort = server.port();
  setField(site.szName, attributes.name);
  const Address netbios(attributes.serverName);
  storeNetbiosName(netbios, site);
  site.uSecurePort = readUnsignedPort(attributes.securePort);
  site.uServerNamePort = netbios.port();
  const Address ip(attributes.serverIp);
  ip.storeHost(site.szServerIP);
  site.uServerIPPort = ip.port();
  for (const Element child : element.Elements()) {
    switch (childOf(child)) {
      case SiteChild::RelativePath:
        setField(site.szRelativePath, child);
        break;
      case SiteChild::UseAuth:
        site.iUseAuth = readNumber(child);
        break;
      case SiteChild::UserName:
        setField(site.szUserName, child);
        break;
      case SiteChild::Password:
        setPassword(site.szPassword, child, useDecryptData);
        break;
      default:
        break;
    }
  }
}

void decodeFtp(const Element& element, const SiteAttributes& attributes, bool useDecryptData,
               tag_FtpSite& site) {
  const Address server(attributes.server);
  server.storeHost(site.szServer);
  site.uServerPort = server.port();
  site.uSecurePort = readUnsignedPort(attributes.securePort);
  setField(site.szName, attributes.name);
  for (const Element child : element.Elements()) {
    switch (childOf(child)) {
      case SiteChild::RelativePath:
        setField(site.szRelativePath, child);
        break;
      case SiteChild::UserName:
        setField(site.szUserName, child);
        break;
      case SiteChild::Password:
        setPassword(site.szPassword, child, useDecryptData);
        break;
      default:
        break;
    }
  }
}

// The children that UNC and local sites have in common.
template <typename Record>
void decodeSharedChild(SiteChild kind, const Element& child, bool useDecryptData, Record& site) {
  switch (kind) {
    case SiteChild::RelativePath:
      return setField(site.szRelativePath, child);
    case SiteChild::DomainName:
      return setField(site.szDomainName, child);
    case SiteChild::UserName:
      return setField(site.szUserName, child);
    case SiteChild::Password:
      return setPassword(site.szPassword, child, useDecryptData);
    case SiteChild::UseLoggedonUserAccount:
      site.iUseLoggedonUserAccount = readNumber(child);
      return;
    default:
      return;
  }
}

void decodeUnc(const Element& element, const SiteAttributes& attributes, bool useDecryptData,
               tag_UncSite& site) {
  setField(site.szServer, attributes.server);
  setField(site.szName, attributes.name);
  for (const Element child : element.Elements()) {
    const SiteChild kind = childOf(child);
    if (kind == SiteChild::ShareName) {
      setField(site.szShareName, child);
    } else {
      decodeSharedChild(kind, child, useDecryptData, site);
    }
  }
}

void decodeLocal(const Element& element, const SiteAttributes& attributes, bool useDecryptData,
                 tag_LocalSite& site) {
  setField(site.szName, attributes.name);
  for (const Element child : element.Elements()) {
    decodeSharedChild(childOf(child), child, useDecryptData, site);
  }
}

}  // namespace

SiteElement classify(const Element& element) {
  return c_elements[element.FindName(c_elementNames, std::size(c_elementNames))];
}

std::size_t recordSize(SiteElement kind) {
  switch (kind) {
    case SiteElement::Http:
    case SiteElement::Vesta:
    case SiteElement::Keystone:
      return sizeof(tag_HttpSite);
    case SiteElement::Ftp:
      return sizeof(tag_FtpSite);
    case SiteElement::Unc:
      return sizeof(tag_UncSite);
    case SiteElement::Local:
      return sizeof(tag_LocalSite);
    case SiteElement::Proxy:
      return sizeof(tag_ProxySite);
    case SiteElement::None:
      break;
  }
  return 0;
}

void decodeSite(SiteElement kind, const Element& element, const SiteAttributes& attributes,
                bool useDecryptData, void* record) {
  const ADetailTrace trace(c_component, L"Reading site from SiteList");
  switch (kind) {
    case SiteElement::Http:
    case SiteElement::Vesta:
    case SiteElement::Keystone:
      return decodeHttp(kind, element, attributes, useDecryptData,
                        *static_cast<tag_HttpSite*>(record));
    case SiteElement::Ftp:
      return decodeFtp(element, attributes, useDecryptData, *static_cast<tag_FtpSite*>(record));
    case SiteElement::Unc:
      return decodeUnc(element, attributes, useDecryptData, *static_cast<tag_UncSite*>(record));
    case SiteElement::Local:
      return decodeLocal(element, attributes, useDecryptData, *static_cast<tag_LocalSite*>(record));
    case SiteElement::Proxy:
      return decodeProxy(element, attributes, useDecryptData, *static_cast<tag_ProxySite*>(record));
    case SiteElement::None:
      return;
  }
}

int CSitesHelper::ReadSiteFromSiteList(Element* element, void** record) {
  *record = nullptr;
  const SiteElement kind = classify(*element);
  void* memory = nullptr;
  if (kind != SiteElement::None) {
    memory = std::calloc(1, recordSize(kind));
    if (!memory) throw std::bad_alloc();
  }
  try {
    decodeSite(kind, *element, SiteAttributes(*element), m_bUseDecryptData == 1, memory);
  } catch (...) {
    wipeMemory(memory, recordSize(kind));
    std::free(memory);
    throw;
  }
  *record = memory;
  return memory ? c_success : c_errorGeneral;
}

}  // namespace sitehlp
