#include "tools/sitelist/validate/element_checks.h"

#include <map>

#include "sitehlp/xmlschema/sitelist.h"
#include "tools/sitelist/cli/matching.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/validate/value_checks.h"

namespace tool {

using namespace korvel_com::orb::xmlschema::sitelist;  // NOLINT(google-build-using-namespace)

namespace {

// The limit of the decoder on the text of all hosts.
constexpr std::size_t c_exclusionListLimit = sitehlp::c_exclusionListCapacity - 1;

std::string namedAs(const std::wstring& name, const std::vector<ValueGrammar>& values) {
  std::vector<std::string> known;
  for (const ValueGrammar& value : values) {
    if (value.type != ValueType::Unread) known.push_back(narrow(value.name));
  }
  return inQuotes(name) + suggestion(narrow(name), known);
}

bool isNamespace(const std::wstring& attribute) { return attribute.rfind(L"xml", 0) == 0; }

void checkChild(const PlacedElement& child, const ElementGrammar& parent,
                std::map<std::wstring, Place>& seen, Faults& faults) {
  const std::wstring name = child.element.GetName();
  const ValueGrammar* const grammar = findGrammar(parent.children, name);
  if (!grammar) return addUnknownChild(child, parent, faults);
  if (grammar->type == ValueType::Unread) return;
  if (grammar->type == ValueType::Elements) {
    if (const ElementGrammar* const inner = grammarOf(child.element))
      checkElement(child, *inner, faults);
    return;
  }
  const auto [first, isNew] = seen.emplace(name, child.place);
  if (!isNew) {
    faults.add("repeated-child", child.place,
               inQuotes(name) + " replaces the one" + inLine(first->second));
    first->second = child.place;
  }
  checkValue(*grammar, child.element.GetValue(), child.place, faults);
}

void checkExclusions(const PlacedElement& proxyConfig, Faults& faults) {
  std::size_t length = 0;
  std::size_t count = 0;
  std::size_t dropped = 0;
  Place first;
  for (const PlacedElement& list : proxyConfig.children) {
    if (!list.element.HasName(WX_XML_PROXY_EXCLUSIONLIST)) continue;
    for (const PlacedElement& host : list.children) {
      if (!host.element.HasName(WX_XML_PROXY_EXCLUSIONHOST)) continue;
      const std::size_t size = host.element.GetValue().size();
      if (length + size + 1 < c_exclusionListLimit) {
        length += size + (count++ == 0 ? 0 : 1);
      } else if (dropped++ == 0) {
        first = host.place;
      }
    }
  }
  if (dropped == 0) return;
  faults.add("exclusions-cut", first,
             std::to_string(dropped) + " of " + std::to_string(count + dropped) +
                 " exclusion hosts do not fit and are dropped; this is the first of them");
}

}  // namespace

void addUnknownChild(const PlacedElement& child, const ElementGrammar& parent, Faults& faults) {
  faults.add("unknown-child", child.place,
             "\"" + narrow(parent.name) + "\" has no child element " +
                 namedAs(child.element.GetName(), parent.children));
}

void checkAttributes(const PlacedElement& element, const ElementGrammar& grammar, Faults& faults) {
  const bool hasDnsName = !element.element.GetAttribute(WX_XML_SITE_SERVER_FQDN).IsNull();
  for (const AdvXMLParser::Attribute attribute : element.element.Attributes()) {
    const std::wstring name = attribute.GetName();
    const ValueGrammar* const value = findGrammar(grammar.attributes, name);
    if (value) {
      // If there is a "ServerDNS", the library reads it instead of "Server".
      const bool isRead = !(hasDnsName && name == WX_XML_SITE_SERVER &&
                            findGrammar(grammar.attributes, WX_XML_SITE_SERVER_FQDN));
      if (isRead) checkValue(*value, attribute.GetValue(), element.place, faults);
    } else if (!isNamespace(name)) {
      faults.add(
          "unknown-attribute", element.place,
          "\"" + narrow(grammar.name) + "\" has no attribute " + namedAs(name, grammar.attributes));
    }
  }
}

void checkElement(const PlacedElement& element, const ElementGrammar& grammar, Faults& faults) {
  checkAttributes(element, grammar, faults);
  std::map<std::wstring, Place> seen;
  for (const PlacedElement& child : element.children) checkChild(child, grammar, seen, faults);
}

void checkProxy(const PlacedElement& proxyConfig, Faults& faults) {
  const auto requirePort = [&](const wchar_t* server, const wchar_t* port) {
    const std::wstring host = proxyConfig.attribute(server);
    const std::wstring number = proxyConfig.attribute(port);
    // Another rule reports a text that is not a number.
    if (host.empty() || number.find_first_not_of(L'0') != number.npos) return;
    faults.add("proxy-without-port", proxyConfig.place,
               "\"" + narrow(server) + "\" is " + inQuotes(host) + ", but \"" + narrow(port) +
                   "\" is missing or 0");
  };
  requirePort(WX_XML_PROXY_HTTP_PROXY_SERVER, WX_XML_PROXY_HTTP_PROXY_PORT);
  requirePort(WX_XML_PROXY_FTP_PROXY_SERVER, WX_XML_PROXY_FTP_PROXY_PORT);
  checkExclusions(proxyConfig, faults);
}

}  // namespace tool
