#include "bench/peers/record_filler.h"

#include <utf8.h>
#include <wchar.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "bench/check.h"
#include "sitehlp/fields.h"

namespace bench {

using sitehlp::FieldForm;
using sitehlp::FieldPlace;
using sitehlp::tag_Site;

namespace {

constexpr std::uint32_t c_defaultPort = 80;

// Appends the text up to `end`, cut at the end of the field.
void decode(const char* text, const char* end, wchar_t* field, const wchar_t* last) {
  while (text != end && field != last) {
    const auto byte = static_cast<unsigned char>(*text);
    if (byte < 0x80) {
      *field++ = static_cast<wchar_t>(byte);
      ++text;
    } else {
      *field++ = static_cast<wchar_t>(utf8::unchecked::next(text));
    }
  }
}

template <std::size_t N>
void setText(wchar_t (&field)[N], const char* text, const char* end) {
  decode(text, end, field, field + N - 1);
}

const char* endOf(const char* text) { return text + std::strlen(text); }

int toNumber(const char* text) { return static_cast<int>(std::strtol(text, nullptr, 10)); }

std::uint32_t toPort(const char* text) {
  return static_cast<std::uint32_t>(std::strtoul(text, nullptr, 10));
}

// The host of an address is before its last colon.
template <std::size_t N>
void setHost(wchar_t (&field)[N], FieldForm form, const char* address) {
  const char* end = std::strrchr(address, ':');
  if (!end) end = endOf(address);
  if (form == FieldForm::NetbiosName) {
    const void* const dot = std::memchr(address, '.', static_cast<std::size_t>(end - address));
    if (dot) end = static_cast<const char*>(dot);
  }
  setText(field, address, end);
}

template <typename At>
void setValue(typename At::Record& record, const char* text) {
  constexpr const auto& row = At::row;
  auto& value = record.*row.member;
  if constexpr (row.place == FieldPlace::Host) {
    setHost(value, row.form, text);
  } else if constexpr (row.place == FieldPlace::Port) {
    const char* const colon = std::strrchr(text, ':');
    value = colon ? toPort(colon + 1) : c_defaultPort;
  } else if constexpr (sitehlp::isText(row.form)) {
    setText(value, text, endOf(text));
  } else if constexpr (row.form == FieldForm::Flag) {
    value = toNumber(text) != 0 ? 1 : 0;
  } else if constexpr (std::is_unsigned_v<std::decay_t<decltype(value)>>) {
    value = toPort(text);
  } else {
    value = toNumber(text);
  }
}

template <typename Record>
struct Setter {
  std::string name;
  void (*set)(Record& record, const char* text);
};

template <typename Record>
class Setters {
 public:
  void set(Record& record, std::string_view name, const char* text) const {
    // Two fields have the same name if an address has a host and a port.
    for (const Setter<Record>& setter : m_setters) {
      if (setter.name == name) setter.set(record, text);
    }
  }

  void add(const wchar_t* name, void (*setter)(Record&, const char*)) {
    m_setters.push_back({std::string(name, name + std::wcslen(name)), setter});
  }

 private:
  std::vector<Setter<Record>> m_setters;
};

// The fields of a table that are in the record itself, by their names in the document.
template <const auto& Table, typename Record>
struct Fields {
  Fields() {
    sitehlp::eachField<Table>([this](auto at) {
      using At = decltype(at);
      constexpr const auto& row = At::row;
      if constexpr (std::is_same_v<typename At::Record, Record>) {
        if constexpr (sitehlp::isInAttribute(row.place)) {
          attributes.add(*row.xmlName, setValue<At>);
        } else if constexpr (row.place == FieldPlace::Child) {
          children.add(*row.xmlName, setValue<At>);
        }
      }
    });
  }

  Setters<Record> attributes;
  Setters<Record> children;
};

// Calls visit(record, its fields) for the part of a record that only its kind has.
template <typename Visit>
void withOwnFields(tag_Site& site, const Visit& visit) {
  static const Fields<sitehlp::c_serverFields, sitehlp::tag_HttpSite> http;
  static const Fields<sitehlp::c_ftpFields, sitehlp::tag_FtpSite> ftp;
  static const Fields<sitehlp::c_uncFields, sitehlp::tag_UncSite> unc;
  static const Fields<sitehlp::c_localFields, sitehlp::tag_LocalSite> local;
  static const Fields<sitehlp::c_proxyFields, sitehlp::tag_ProxySite> proxy;
  switch (static_cast<sitehlp::SiteKind>(site.eSiteKind)) {
    case sitehlp::SITE_KIND_HTTP:
      return visit(site.http, http);
    case sitehlp::SITE_KIND_FTP:
      return visit(site.ftp, ftp);
    case sitehlp::SITE_KIND_UNC:
      return visit(site.unc, unc);
    case sitehlp::SITE_KIND_LOCAL:
      return visit(site.local, local);
    case sitehlp::SITE_KIND_PROXY:
      return visit(site.proxy, proxy);
  }
}

sitehlp::SiteKind kindOf(const char* element) {
  if (std::strcmp(element, "FTPSite") == 0) return sitehlp::SITE_KIND_FTP;
  if (std::strcmp(element, "UNCSite") == 0) return sitehlp::SITE_KIND_UNC;
  if (std::strcmp(element, "LocalSite") == 0) return sitehlp::SITE_KIND_LOCAL;
  if (std::strcmp(element, "ProxyConfigList") == 0) return sitehlp::SITE_KIND_PROXY;
  return sitehlp::SITE_KIND_HTTP;
}

}  // namespace

RecordFiller::RecordFiller(const char* element)
    : m_site(static_cast<tag_Site*>(std::calloc(1, sizeof(tag_Site)))) {
  check(m_site != nullptr, "out of memory");
  m_site->eSiteKind = kindOf(element);
  if (m_site->eSiteKind == sitehlp::SITE_KIND_FTP) m_site->ftp.uServerPort = c_defaultPort;
  if (m_site->eSiteKind != sitehlp::SITE_KIND_HTTP) return;
  sitehlp::tag_HttpSite& http = m_site->http;
  http.uServerPort = http.uServerIPPort = http.uServerNamePort = c_defaultPort;
  setText(http.szElement, element, endOf(element));
  m_site->bVestaSite =
      std::strcmp(element, "VestaSite") == 0 || std::strcmp(element, "KeystoneSite") == 0 ? 1 : 0;
}

void RecordFiller::setAttribute(std::string_view name, const char* value) {
  static const Fields<sitehlp::fields::c_head, tag_Site> head;
  if (!isProxy()) head.attributes.set(*m_site, name, value);
  withOwnFields(*m_site, [&](auto& record, const auto& fields) {
    fields.attributes.set(record, name, value);
  });
}

void RecordFiller::setChild(std::string_view name, const char* text) {
  withOwnFields(*m_site,
                [&](auto& record, const auto& fields) { fields.children.set(record, name, text); });
}

void RecordFiller::addExclusion(const char* host) {
  sitehlp::tag_ProxySite& proxy = m_site->proxy;
  wchar_t* end = proxy.szExclusionList + std::wcslen(proxy.szExclusionList);
  if (proxy.iExclusionCount++ != 0) *end++ = L';';
  decode(host, endOf(host), end, proxy.szExclusionList + sitehlp::c_exclusionListCapacity - 1);
}

tag_Site* RecordFiller::finish() {
  m_site->bMirror = ::wcscasecmp(m_site->szType, L"mirror") == 0 ? 1 : 0;
  if (isProxy()) {
    sitehlp::tag_ProxySite& proxy = m_site->proxy;
    const bool http = proxy.szHttpProxyServer[0] != L'\0';
    const bool ftp = proxy.szFtpProxyServer[0] != L'\0';
    const char* const which = http && ftp ? "FtpHttp" : http ? "HttpSite" : ftp ? "FTPSite" : "";
    setText(proxy.szElement, which, endOf(which));
  }
  return m_site;
}

}  // namespace bench
