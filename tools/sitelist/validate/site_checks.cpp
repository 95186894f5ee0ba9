#include <map>
#include <utility>

#include "platform/common/text.h"
#include "sitehlp/xmlschema/sitelist.h"
#include "tools/sitelist/cli/matching.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/model/kinds.h"
#include "tools/sitelist/model/site_list.h"
#include "tools/sitelist/validate/checks.h"
#include "tools/sitelist/validate/element_checks.h"
#include "tools/sitelist/validate/value_checks.h"

namespace tool {

using namespace korvel_com::orb::xmlschema::sitelist;  // NOLINT(google-build-using-namespace)

namespace {

// Cuts a text to the length in a record.
std::wstring cut(const std::wstring& text) { return text.substr(0, sitehlp::c_textCapacity - 1); }

bool isType(const PlacedElement& site, const wchar_t* type) {
  return wcsicmp(cut(site.attribute(WX_XML_SITE_TYPE)).c_str(), type) == 0;
}

int orderOf(const PlacedElement& site) {
  if (!site.element.GetAttribute(WX_XML_SITE_ORDER).IsNull()) {
    return numberIn(site.attribute(WX_XML_SITE_ORDER));
  }
  return isType(site, c_fallbackType) ? c_orderOfFallback : 0;
}

bool hasAddress(const PlacedElement& site, const std::string& kind) {
  const bool hasDnsName =
      kind == "agent" && !site.element.GetAttribute(WX_XML_SITE_SERVER_FQDN).IsNull();
  const std::wstring address =
      site.attribute(hasDnsName ? WX_XML_SITE_SERVER_FQDN : WX_XML_SITE_SERVER);
  return kind == "local" || !(kind == "unc" ? address : hostOf(address)).empty();
}

// Checks all sites of a list, one after the other.
class SiteChecks {
 public:
  explicit SiteChecks(Faults& faults) : m_faults(faults) {}

  // If `isComplete` is set, the rules for the management server check the name and the address.
  void check(const PlacedElement& site, const std::string& kind, bool isComplete) {
    const std::wstring name = cut(site.attribute(WX_XML_SITE_NAME));
    if (name.empty()) {
      if (!isComplete) m_faults.add("site-without-name", site.place, "the site has no \"Name\"");
    } else {
      checkUnique(site, kind, name);
    }
    if (!isComplete && !hasAddress(site, kind)) {
      m_faults.add("site-without-address", site.place, "the site has no \"Server\"");
    }
    const bool isEnabled = numberIn(site.attribute(WX_XML_SITE_ENABLED)) != 0;
    if (isEnabled && !isType(site, STR_SITE_TYPE_MIRROR)) checkOrder(site);
  }

 private:
  void checkUnique(const PlacedElement& site, const std::string& kind, const std::wstring& name) {
    const auto [other, isNew] = m_names.emplace(std::make_pair(kind, name), &site);
    if (isNew) return;
    m_faults.add("duplicate-name", site.place,
                 inQuotes(name) + " is also the name of the " + kind + " site" +
                     inLine(other->second->place));
  }

  void checkOrder(const PlacedElement& site) {
    const int order = orderOf(site);
    const auto [other, isNew] = m_orders.emplace(order, &site);
    if (isNew) return;
    m_faults.add("duplicate-order", site.place,
                 "the order " + std::to_string(order) + " is also that of the site " +
                     inQuotes(other->second->attribute(WX_XML_SITE_NAME)) +
                     inLine(other->second->place));
  }

  Faults& m_faults;
  std::map<std::pair<std::string, std::wstring>, const PlacedElement*> m_names;
  std::map<int, const PlacedElement*> m_orders;
};

void checkProxies(const PlacedElement& list, const ElementGrammar& grammar,
                  const PlacedElement* unknownSite, Faults& faults) {
  checkAttributes(list, grammar, faults);
  const PlacedElement* before = nullptr;
  for (const PlacedElement& child : list.children) {
    if (&child == unknownSite) continue;
    if (!child.element.HasName(WX_XML_PROXY_CONFIG)) {
      addUnknownChild(child, grammar, faults);
      continue;
    }
    if (before) {
      faults.add("second-proxy-config", child.place,
                 "this \"ProxyConfig\" replaces the one" + inLine(before->place));
    }
    before = &child;
    checkElement(child, *grammarOf(child.element), faults);
    checkProxy(child, faults);
  }
}

void addUnknownElement(const PlacedElement& element, Faults& faults) {
  std::vector<std::string> known;
  for (const NamedKind& kind : c_kinds) known.push_back(narrow(*kind.element));
  const std::wstring name = element.element.GetName();
  faults.add("unknown-element", element.place,
             inQuotes(name) + " is not a known site element" + suggestion(narrow(name), known));
}

}  // namespace

// The library's result is that of the last element that it decoded. In a proxy list it decodes the
// children instead of the list.
const PlacedElement* findUnknownSite(const PlacedElement& root) {
  const PlacedElement* const list = root.child(WX_XML_SITELIST);
  if (!list) return nullptr;
  for (auto site = list->children.rbegin(); site != list->children.rend(); ++site) {
    if (!site->element.HasName(WX_XML_PROXY_CONFIG_LIST)) {
      const ElementGrammar* const grammar = grammarOf(site->element);
      return grammar && grammar->kind ? nullptr : &*site;
    }
    if (site->children.empty()) continue;
    const PlacedElement& last = site->children.back();
    if (last.element.HasName(WX_XML_PROXY_CONFIG)) return nullptr;
    const ElementGrammar* const grammar = grammarOf(last.element);
    const bool isSite = grammar && grammar->kind && !last.element.HasName(WX_XML_PROXY_CONFIG_LIST);
    return isSite ? nullptr : &last;
  }
  return nullptr;
}

void checkSites(const PlacedElement& root, const PlacedElement& list, bool isServerChecked,
                Faults& faults) {
  const PlacedElement* const unknownSite = findUnknownSite(root);
  const PlacedElement* const server =
      isServerChecked ? list.child(WX_XML_SITELIST_VESTA_SITE) : nullptr;
  checkAttributes(list, *grammarOf(list.element), faults);
  SiteChecks checks(faults);
  for (const PlacedElement& site : list.children) {
    if (&site == unknownSite) continue;
    const ElementGrammar* const grammar = grammarOf(site.element);
    if (!grammar || !grammar->kind) {
      addUnknownElement(site, faults);
    } else if (site.element.HasName(WX_XML_PROXY_CONFIG_LIST)) {
      checkProxies(site, *grammar, unknownSite, faults);
    } else {
      checkElement(site, *grammar, faults);
      checks.check(site, grammar->kind, &site == server);
    }
  }
}

}  // namespace tool
