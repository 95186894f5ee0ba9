#include "sitehlp/xmlschema/sitelist.h"
#include "tools/sitelist/model/certificate.h"
#include "tools/sitelist/validate/checks.h"
#include "tools/sitelist/validate/element_checks.h"

namespace tool {

using namespace korvel_com::orb::xmlschema::sitelist;  // NOLINT(google-build-using-namespace)

namespace {

void checkCertificates(const PlacedElement& bundle, Faults& faults) {
  for (const PlacedElement& child : bundle.children) {
    if (!child.element.HasName(WX_XML_CACERTIFICATE)) continue;
    const auto certificate = readCertificate(child.element.GetValue());
    if (!certificate) {
      faults.add("certificate-unreadable", child.place, "the text is not a certificate");
    } else if (certificate->isExpired) {
      faults.add(
          "certificate-expired", child.place,
          "the certificate of " + certificate->subject + " expired on " + certificate->notAfter);
    }
  }
}

void checkRoot(const PlacedElement& root, Faults& faults) {
  if (!root.element.HasName(WX_XML_SITELISTS) ||
      root.attribute(WX_XML_NAMESPACE) != WX_XML_SITELISTS_NAMESPACE) {
    faults.add("root-element", root.place,
               "the root " + inQuotes(root.element.GetName()) +
                   " is not \"ns:SiteLists\" with xmlns:ns=\"wxSiteList\"");
  }
  if (root.attribute(WX_XML_SITELISTS_GLOBAL_VERSION).empty()) {
    faults.add("missing-global-version", root.place, "the list has no \"GlobalVersion\"");
  }
  checkAttributes(root, rootGrammar(), faults);
}

}  // namespace

void checkDocument(const PlacedElement& root, bool isServerChecked, Faults& faults) {
  checkRoot(root, faults);
  const PlacedElement* const list = root.child(WX_XML_SITELIST);
  const PlacedElement* const bundle = root.child(WX_XML_CABUNDLE);
  bool isBehindList = false;
  for (const PlacedElement& child : root.children) {
    if (&child == list) {
      isBehindList = true;
      checkSites(root, *list, isServerChecked, faults);
    } else if (&child == bundle) {
      checkElement(child, *grammarOf(child.element), faults);
      checkCertificates(child, faults);
    } else if (child.element.HasName(WX_XML_SITELIST)) {
      faults.add("second-site-list", child.place,
                 "only the \"SiteList\"" + inLine(list->place) + " is read");
    } else if (child.element.HasName(WX_XML_CABUNDLE)) {
      faults.add("second-ca-bundle", child.place,
                 "only the \"CaBundle\"" + inLine(bundle->place) + " is read");
    } else if (!child.element.HasName(WX_XML_POLICIES)) {
      addUnknownChild(child, rootGrammar(), faults);
    } else if (isBehindList) {
      faults.add("policies-after-sites", child.place,
                 "these settings are after the \"SiteList\"" + inLine(list->place) +
                     " and are not loaded");
    } else {
      checkElement(child, *grammarOf(child.element), faults);
    }
  }
}

}  // namespace tool
