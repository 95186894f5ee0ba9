#ifndef TESTS_SITEHLP_SITE_GENERATOR_H
#define TESTS_SITEHLP_SITE_GENERATOR_H

#include <cstring>
#include <random>
#include <set>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "sitehlp/fields.h"
#include "tests/sitehlp/sites_helper_fixture.h"

namespace test {

using Fields = std::vector<std::pair<const char*, std::wstring>>;

// Returns every field of a record by its name, as text.
inline Fields fieldsOf(const sitehlp::tag_Site& site) {
  Fields fields = {{"kind", std::to_wstring(site.eSiteKind)}};
  sitehlp::eachFieldOf(site, [&](const auto& row, const auto& value) {
    if constexpr (std::is_array_v<std::remove_reference_t<decltype(value)>>) {
      fields.push_back({row.name, value});
    } else {
      fields.push_back({row.name, std::to_wstring(value)});
    }
  });
  return fields;
}

inline ListPtr copyOf(const sitehlp::tag_Site* head) {
  std::vector<sitehlp::tag_Site*> copies;
  for (; head; head = head->pNext) {
    copies.push_back(newSite(sitehlp::SITE_KIND_HTTP));
    std::memcpy(copies.back(), head, sizeof *head);
    copies.back()->pNext = nullptr;
  }
  return chain(copies);
}

// Makes lists that are unchanged after writing and reading. A field that a document does not have
// gets the value that the reader gives it.
class SiteGenerator {
 public:
  explicit SiteGenerator(unsigned int seed) : m_random(seed) {}

  ListPtr list() {
    std::vector<sitehlp::tag_Site*> sites;
    for (std::size_t count = below(9); count > 0; --count) sites.push_back(site());
    return chain(sites);
  }

  sitehlp::tag_Site* site() {
    sitehlp::tag_Site* made = newSite(static_cast<sitehlp::SiteKind>(below(5)));
    if (made->eSiteKind == sitehlp::SITE_KIND_PROXY) {
      fillFields(*made);
      proxy(made->proxy);
      return made;
    }
    made->bEnabled = flag();
    made->bLocal = flag();
    switch (below(4)) {
      case 0:
        put(made->szType, below(2) ? L"mirror" : L"MIRROR");
        made->bMirror = 1;
        break;
      case 1:
        put(made->szType, L"fallback");
        made->iOrder = number();
        break;
      default:
        fill(made->szType, 1);
        made->iOrder = number();
    }
    // A mirror has no order, and a fallback without one has the order 65535.
    fillFields(*made);
    if (made->eSiteKind == sitehlp::SITE_KIND_HTTP) http(*made);
    return made;
  }

 private:
  std::size_t below(std::size_t limit) { return m_random() % limit; }
  int flag() { return static_cast<int>(below(2)); }
  int number() {
    static const int c_numbers[] = {0, 1, -1, 65535, 2147483647, -2147483647 - 1};
    return below(2) ? c_numbers[below(6)] : static_cast<int>(below(100000));
  }
  std::uint32_t port() {
    static const std::uint32_t c_ports[] = {0, 1, 80, 443, 65535, 4294967295u};
    return below(2) ? c_ports[below(6)] : static_cast<std::uint32_t>(m_random());
  }

  std::wstring text(std::size_t length) {
    static const std::wstring c_scripts[] = {
        L"abcXYZ0189-_./\\",
        L" <>&\"'%;:=[]{}()!?#$,@|~^`",
        L"\u00E4\u00F6\u00DF\u00E9\u0141\u017E",
        L"\u0391\u03B2\u0416\u0436\u05D0\u0645\u0631",
        L"\u65E5\u672C\u8A9E\uAC00\u0E01\u0E33\u0915\u094D",
        L"\U0001F600\U00020BB7\U0010FFFD\uFFFD\uE000",
        L"\t\n\r \u00A0\u0085\u2028",
    };
    std::wstring result;
    const std::size_t mixed = below(3);
    const std::wstring& one = c_scripts[below(7)];
    while (result.size() < length) {
      const std::wstring& script = mixed == 0 ? c_scripts[below(7)] : one;
      result += script[below(script.size())];
    }
    return result;
  }
  template <std::size_t N>
  void fill(wchar_t (&field)[N], std::size_t least = 0) {
    const std::size_t most = N - 1;
    const std::size_t lengths[] = {
        least, most, most - 1, least + below(20), least + below(20), least + below(most)};
    put(field, text(lengths[below(6)]));
  }
  template <std::size_t N>
  void fillWithout(wchar_t (&field)[N], wchar_t character, std::size_t least) {
    fill(field, least);
    for (wchar_t& one : field) {
      if (one == character) one = L'-';
    }
  }

  // Returns whether the field may have any value, independent of other fields.
  template <typename Row>
  static bool isFree(const Row& row) {
    if (row.place == sitehlp::FieldPlace::None || row.form == sitehlp::FieldForm::Hosts)
      return false;
    if (row.written == sitehlp::Written::ByElement) return false;
    static const std::set<std::string> c_bound = {"version", "httpProxyServer", "httpProxyPort",
                                                  "ftpProxyServer", "ftpProxyPort"};
    return c_bound.count(row.name) == 0;
  }

  // Fills the free fields of the kind's own record.
  void fillFields(sitehlp::tag_Site& site) {
    sitehlp::eachFieldOf(site, [&](const auto& row, auto& value) {
      using Row = std::decay_t<decltype(row)>;
      if constexpr (!std::is_same_v<typename Row::RecordType, sitehlp::tag_Site>) {
        if (!isFree(row)) return;
        if constexpr (std::is_array_v<std::remove_reference_t<decltype(value)>>) {
          fill(value);
        } else if constexpr (std::is_unsigned_v<std::remove_reference_t<decltype(value)>>) {
          value = port();
        } else {
          value = row.form == sitehlp::FieldForm::Flag ? flag() : number();
        }
      }
    });
  }

  void http(sitehlp::tag_Site& site) {
    static const wchar_t* const c_elements[] = {L"HttpSite", L"VestaSite", L"KeystoneSite"};
    const std::size_t element = below(3);
    put(site.http.szElement, c_elements[element]);
    site.bVestaSite = element == 0 ? 0 : 1;
    site.http.uServerNamePort = 80;
    site.http.uServerIPPort = 80;
    if (element == 0) return;
    if (element == 1) fill(site.http.szVersion);
    if (element == 1 || below(2)) {
      fillWithout(site.http.szServerName, L'.', 1);
      site.http.uServerNamePort = port();
    }
    if (element == 1 || below(2)) {
      fill(site.http.szServerIP, 1);
      site.http.uServerIPPort = port();
    }
  }

  void proxy(sitehlp::tag_ProxySite& data) {
    const bool http = below(2);
    const bool ftp = below(2);
    if (http) {
      fill(data.szHttpProxyServer, 1);
      data.iHttpProxyPort = number() & 0x7FFFFFFF;
    }
    if (ftp) {
      fill(data.szFtpProxyServer, 1);
      data.iFtpProxyPort = number() & 0x7FFFFFFF;
    }
    put(data.szElement, http && ftp ? L"FtpHttp" : http ? L"HttpSite" : ftp ? L"FTPSite" : L"");
    exclusions(data);
  }

  void exclusions(sitehlp::tag_ProxySite& data) {
    std::wstring joined;
    for (std::size_t count = below(2) ? below(5) : below(300); count > 0; --count) {
      std::wstring host = text(1 + below(below(5) ? 20 : 2500));
      for (wchar_t& character : host) {
        if (character == L';') character = L'-';
      }
      if (joined.size() + host.size() + 1 >= 4000) continue;
      if (data.iExclusionCount++ > 0) joined += L';';
      joined += host;
    }
    put(data.szExclusionList, joined);
  }

  std::mt19937 m_random;
};

}  // namespace test

#endif
