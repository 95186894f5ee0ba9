#include "sitehlp/read/decoder.h"

#include <cstdlib>
#include <new>

#include "platform/common/log.h"
#include "platform/common/text.h"
#include "sitehlp/common/component.h"
#include "sitehlp/common/document_values.h"
#include "sitehlp/common/number.h"
#include "sitehlp/common/wipe.h"
#include "sitehlp/read/field_reader.h"
#include "sitehlp/read/proxy_decoder.h"
#include "sitehlp/read/text_field.h"
#include "sitehlp/xmlschema/sitelist.h"

namespace sitehlp {

using AdvXMLParser::Attribute;
using AdvXMLParser::Element;
using namespace korvel_com::orb::xmlschema::sitelist;  // NOLINT(google-build-using-namespace)

namespace {

const ChildReader<c_httpFields> c_httpChildren;
const ChildReader<c_ftpFields> c_ftpChildren;
const ChildReader<c_uncFields> c_uncChildren;
const ChildReader<c_localFields> c_localChildren;

template <typename Children, typename Record>
void readChildren(const Children& children, const Element& element, bool useDecryptData,
                  Record& site) {
  for (const Element child : element.Elements()) children.read(child, useDecryptData, site);
}

// A server address, divided into host and port. The host points into m_buffer or m_long.
class Address {
 public:
  explicit Address(const Attribute& attribute) { set(attribute); }
  Address(const Address&) = delete;
  Address& operator=(const Address&) = delete;

  // A port after the ":" that cannot be read becomes 0. It never keeps the value of another
  // address.
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
  const wchar_t* const name = c_siteElementNames[static_cast<std::size_t>(kind)];
  setField(site.szElement, name, std::wcslen(name));
  Address server(attributes.get<&WX_XML_SITE_SERVER>());
  if (kind == SiteElement::Vesta) {
    setField(site.szVersion, attributes.get<&WX_XML_SITE_SERVER_VERSION>());
  }
  const Attribute& serverDns = attributes.get<&WX_XML_SITE_SERVER_FQDN>();
  if (kind == SiteElement::Keystone && !serverDns.IsNull()) server.set(serverDns);
  server.storeHost(site.szServer);
  site.uServerPort = server.port();
  setField(site.szName, attributes.get<&WX_XML_SITE_NAME>());
  const Address netbios(attributes.get<&WX_XML_SERVER_NETBIOS_NAME>());
  storeNetbiosName(netbios, site);
  site.uServerNamePort = netbios.port();
  const Address ip(attributes.get<&WX_XML_SITE_SERVER_IP>());
  ip.storeHost(site.szServerIP);
  site.uServerIPPort = ip.port();
  readAttributes<c_httpFields>(attributes, site);
  readChildren(c_httpChildren, element, useDecryptData, site);
}

void decodeFtp(const Element& element, const SiteAttributes& attributes, bool useDecryptData,
               tag_FtpSite& site) {
  const Address server(attributes.get<&WX_XML_SITE_SERVER>());
  server.storeHost(site.szServer);
  site.uServerPort = server.port();
  setField(site.szName, attributes.get<&WX_XML_SITE_NAME>());
  readAttributes<c_ftpFields>(attributes, site);
  readChildren(c_ftpChildren, element, useDecryptData, site);
}

void decodeUnc(const Element& element, const SiteAttributes& attributes, bool useDecryptData,
               tag_UncSite& site) {
  readAttributes<c_uncFields>(attributes, site);
  setField(site.szName, attributes.get<&WX_XML_SITE_NAME>());
  readChildren(c_uncChildren, element, useDecryptData, site);
}

void decodeLocal(const Element& element, const SiteAttributes& attributes, bool useDecryptData,
                 tag_LocalSite& site) {
  setField(site.szName, attributes.get<&WX_XML_SITE_NAME>());
  readAttributes<c_localFields>(attributes, site);
  readChildren(c_localChildren, element, useDecryptData, site);
}

}  // namespace

SiteElement classify(const Element& element) {
  return static_cast<SiteElement>(element.FindName(c_siteElementNames, c_siteElementCount));
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
