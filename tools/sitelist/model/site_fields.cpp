#include <algorithm>
#include <cwchar>
#include <string_view>
#include <type_traits>
#include <utility>

#include "sitehlp/fields.h"
#include "tools/sitelist/model/kinds.h"
#include "tools/sitelist/model/site_list.h"

namespace tool {
namespace {

using sitehlp::FieldForm;
using sitehlp::tag_Site;

// A flag becomes true or false. A number is unchanged.
template <typename Row, typename Value>
Field fieldOf(const Row& row, const Value& value) {
  if constexpr (std::is_array_v<Value>) {
    return {row.name, value, row.form == FieldForm::Password, row.form == FieldForm::Hosts};
  } else if (row.form == FieldForm::Flag) {
    return {row.name, value != 0};
  } else {
    return {row.name, static_cast<std::int64_t>(value)};
  }
}

}  // namespace

const char* kindOf(const tag_Site& site) {
  // Only SITE_KIND_HTTP has several elements.
  const bool isHttp = site.eSiteKind == sitehlp::SITE_KIND_HTTP;
  for (const NamedKind& kind : c_kinds) {
    if (site.eSiteKind != kind.siteKind) continue;
    if (!isHttp || std::wcscmp(site.http.szElement, *kind.element) == 0) return kind.name;
  }
  return c_unknownKind;
}

const wchar_t* nameOf(const tag_Site& site) {
  const wchar_t* name = L"";
  sitehlp::eachFieldOf(site, [&](const auto& row, const auto& value) {
    if constexpr (std::is_array_v<std::remove_reference_t<decltype(value)>>) {
      if (row.name == std::string_view("name")) name = value;
    }
  });
  return name;
}

std::vector<Field> fieldsOf(const tag_Site& site) {
  std::vector<std::pair<int, Field>> shown;
  sitehlp::eachFieldOf(site, [&](const auto& row, const auto& value) {
    shown.emplace_back(row.shown, fieldOf(row, value));
  });
  std::stable_sort(shown.begin(), shown.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
  std::vector<Field> fields;
  fields.reserve(shown.size());
  for (auto& [place, field] : shown) fields.push_back(field);
  return fields;
}

bool isSame(const Field& a, const Field& b) {
  const auto* left = std::get_if<const wchar_t*>(&a.value);
  const auto* right = std::get_if<const wchar_t*>(&b.value);
  if (left && right) return std::wcscmp(*left, *right) == 0;
  return a.value == b.value;
}

std::vector<std::wstring> hostsIn(const std::wstring& text) {
  std::vector<std::wstring> hosts;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = std::min(text.find(L';', at), text.size());
    if (end > at) hosts.push_back(text.substr(at, end - at));
    at = end + 1;
  }
  return hosts;
}

}  // namespace tool
