#include "tools/sitelist/diff/diff.h"

#include <algorithm>
#include <deque>
#include <map>
#include <ostream>
#include <utility>

#include "tools/sitelist/cli/shown_name.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/diff/diff_text.h"
#include "tools/sitelist/model/certificate.h"
#include "tools/sitelist/model/site_report.h"

namespace tool {
namespace {

using sitehlp::tag_Site;
using Sequence = std::vector<const tag_Site*>;

Sequence sitesOf(const SiteList& list, bool proxies) {
  Sequence sites;
  for (const tag_Site* site = list.sites.get(); site; site = site->pNext) {
    if ((site->eSiteKind == sitehlp::SITE_KIND_PROXY) == proxies) sites.push_back(site);
  }
  return sites;
}

// Returns the index of the old site for each new site, or -1. Sites with the same kind and name are
// the same. Several of them are matched in their order.
std::vector<int> pairUp(const Sequence& before, const Sequence& after) {
  std::map<std::pair<std::string, std::wstring>, std::deque<int>> left;
  for (std::size_t i = 0; i < before.size(); ++i) {
    left[{kindOf(*before[i]), nameOf(*before[i])}].push_back(static_cast<int>(i));
  }
  std::vector<int> partners;
  for (const tag_Site* site : after) {
    std::deque<int>& candidates = left[{kindOf(*site), nameOf(*site)}];
    partners.push_back(candidates.empty() ? -1 : candidates.front());
    if (!candidates.empty()) candidates.pop_front();
  }
  return partners;
}

// Returns which new sites were not moved: a longest increasing subsequence of the old places. All
// other sites in both lists were moved.
std::vector<bool> findUnmoved(const std::vector<int>& partners) {
  std::vector<int> tails;  // indices into `partners` of the last elements of the best sequences
  std::vector<int> previous(partners.size(), -1);
  for (std::size_t i = 0; i < partners.size(); ++i) {
    if (partners[i] < 0) continue;
    const auto place = std::lower_bound(tails.begin(), tails.end(), partners[i], [&](int a, int b) {
      return partners[static_cast<std::size_t>(a)] < b;
    });
    if (place != tails.begin()) previous[i] = *(place - 1);
    if (place == tails.end()) {
      tails.push_back(static_cast<int>(i));
    } else {
      *place = static_cast<int>(i);
    }
  }
  std::vector<bool> unmoved(partners.size(), false);
  for (int i = tails.empty() ? -1 : tails.back(); i >= 0;
       i = previous[static_cast<std::size_t>(i)]) {
    unmoved[static_cast<std::size_t>(i)] = true;
  }
  return unmoved;
}

std::string whereOf(const tag_Site& site) {
  const std::wstring address = addressOf(site);
  const std::wstring path = pathOf(site);
  return narrow(address + (address.empty() || path.empty() ? L"" : L" ") + path);
}

std::string subjectOf(const std::wstring& text) {
  const auto certificate = readCertificate(text);
  return certificate ? certificate->subject : "a text that is not readable as a certificate";
}

Scalar fingerprintOf(const std::wstring& text) {
  const auto certificate = readCertificate(text);
  return certificate ? Scalar(certificate->fingerprint) : Scalar();
}

// Returns whether both are the same certificate, perhaps in different forms.
bool isSameCertificate(const std::wstring& a, const std::wstring& b) {
  if (a == b) return true;
  const Scalar fingerprint = fingerprintOf(a);
  return fingerprint != Scalar() && fingerprint == fingerprintOf(b);
}

}  // namespace

Diff::Diff(const SiteList& before, const SiteList& after, bool showSecrets,
           EncryptedPasswords unread)
    : m_before(reportedName(before.path)),
      m_after(reportedName(after.path)),
      m_showSecrets(showSecrets),
      m_unread(std::move(unread)) {
  for (const char* name : {"version", "site", "proxy", "certificate", "policy", "file"}) {
    m_sections.push_back({name});
  }
  compareVersions(before, after);
  compareSites("site", sitesOf(before, false), sitesOf(after, false));
  compareSites("proxy", sitesOf(before, true), sitesOf(after, true));
  compareCertificates(before, after);
  comparePolicies(before, after);
}

Diff::Section& Diff::section(const std::string& name) {
  Section& found = *std::find_if(m_sections.begin(), m_sections.end(),
                                 [&](const Section& each) { return each.name == name; });
  found.isUsed = true;
  return found;
}

void Diff::addRow(const std::string& sectionName, const std::string& change, Scalar kind,
                  const std::string& name, Scalar field, Scalar before, Scalar after) {
  section(sectionName);
  m_rows.push_back({{"section", sectionName},
                    {"change", change},
                    {"kind", std::move(kind)},
                    {"name", name},
                    {"field", std::move(field)},
                    {"before", std::move(before)},
                    {"after", std::move(after)}});
}

void Diff::compareVersions(const SiteList& before, const SiteList& after) {
  const auto compare = [&](const char* name, const Scalar& old, const Scalar& fresh) {
    const Scalar none;
    if (old == none && fresh == none) return;
    if (old == fresh) {
      ++section("version").unchanged;
    } else {
      addRow("version", "changed", {}, name, {}, old, fresh);
    }
  };
  compare("globalVersion", orNull(narrow(before.globalVersion)),
          orNull(narrow(after.globalVersion)));
  compare("localVersion", orNull(narrow(before.localVersion)), orNull(narrow(after.localVersion)));
  compare("type", orNull(narrow(before.type)), orNull(narrow(after.type)));
  compare("fipsMode", orNull(narrow(before.fipsMode.value_or(L""))),
          orNull(narrow(after.fipsMode.value_or(L""))));
}

void Diff::compareFields(const std::string& sectionName, const tag_Site& before,
                         const tag_Site& after) {
  const std::vector<Field> old = fieldsOf(before);
  const std::vector<Field> fresh = fieldsOf(after);
  for (std::size_t i = 0; i < old.size(); ++i) {
    const std::string field = old[i].name;
    const auto oldText = m_unread.find({&before, field});
    const auto freshText = m_unread.find({&after, field});
    if (oldText != m_unread.end() || freshText != m_unread.end()) {
      const bool areBoth = oldText != m_unread.end() && freshText != m_unread.end();
      if (areBoth && oldText->second == freshText->second) continue;
      ++m_incomparable;
      addRow(sectionName, c_incomparable, kindOf(after), narrow(nameOf(after)), field, {}, {});
      continue;
    }
    if (isSame(old[i], fresh[i])) continue;
    addRow(sectionName, field == "order" ? "reordered" : "changed", kindOf(after),
           narrow(nameOf(after)), field, scalarOf(old[i], m_showSecrets),
           scalarOf(fresh[i], m_showSecrets));
  }
}

void Diff::compareSites(const std::string& sectionName, const Sequence& before,
                        const Sequence& after) {
  const std::vector<int> partners = pairUp(before, after);
  const std::vector<bool> unmoved = findUnmoved(partners);
  std::vector<bool> isLeft(before.size(), true);
  for (std::size_t i = 0; i < after.size(); ++i) {
    const tag_Site& site = *after[i];
    if (partners[i] < 0) {
      addRow(sectionName, "added", kindOf(site), narrow(nameOf(site)), {}, {}, whereOf(site));
      continue;
    }
    const auto place = static_cast<std::size_t>(partners[i]);
    isLeft[place] = false;
    const std::size_t rows = m_rows.size();
    compareFields(sectionName, *before[place], site);
    if (!unmoved[i]) {
      addRow(sectionName, "reordered", kindOf(site), narrow(nameOf(site)), "position",
             static_cast<std::int64_t>(place + 1), static_cast<std::int64_t>(i + 1));
    }
    if (m_rows.size() == rows) ++section(sectionName).unchanged;
  }
  for (std::size_t i = 0; i < before.size(); ++i) {
    if (!isLeft[i]) continue;
    const tag_Site& site = *before[i];
    addRow(sectionName, "removed", kindOf(site), narrow(nameOf(site)), {}, whereOf(site), {});
  }
}

void Diff::compareCertificates(const SiteList& before, const SiteList& after) {
  std::vector<std::wstring> left = before.certificates;
  for (const std::wstring& text : after.certificates) {
    const auto match = std::find_if(left.begin(), left.end(), [&](const std::wstring& other) {
      return isSameCertificate(text, other);
    });
    if (match == left.end()) {
      addRow("certificate", "added", {}, subjectOf(text), {}, {}, fingerprintOf(text));
    } else {
      ++section("certificate").unchanged;
      left.erase(match);
    }
  }
  for (const std::wstring& text : left) {
    addRow("certificate", "removed", {}, subjectOf(text), {}, fingerprintOf(text), {});
  }
}

void Diff::comparePolicies(const SiteList& before, const SiteList& after) {
  for (const auto& [name, value] : after.policySettings) {
    const auto old = before.policySettings.find(name);
    if (old == before.policySettings.end()) {
      addRow("policy", "added", {}, narrow(name), {}, {}, narrow(value));
    } else if (old->second == value) {
      ++section("policy").unchanged;
    } else {
      addRow("policy", "changed", {}, narrow(name), {}, narrow(old->second), narrow(value));
    }
  }
  for (const auto& [name, value] : before.policySettings) {
    if (after.policySettings.count(name) == 0) {
      addRow("policy", "removed", {}, narrow(name), {}, narrow(value), {});
    }
  }
}

void Diff::add(const std::vector<FileChange>& files) {
  for (const FileChange& file : files) {
    if (file.change == "unchanged") {
      ++section("file").unchanged;
    } else {
      addRow("file", file.change, {}, file.name, {}, {}, {});
    }
  }
}

std::vector<std::string> Diff::columns() {
  return {"section", "change", "kind", "name", "field", "before", "after"};
}

Report Diff::report(const std::string& title, const std::string& end) const {
  Report report;
  report.facts = {{"before", m_before}, {"after", m_after}, {"differs", !isEmpty()}};
  report.rowsName = "changes";
  report.rowName = "change";
  report.columns = columns();
  report.rows = m_rows;
  std::vector<DiffSection> sections;
  for (const Section& each : m_sections) {
    if (each.isUsed) sections.push_back({each.name, each.unchanged});
  }
  report.table = [rows = m_rows, sections, title, end](std::ostream& out, const Screen& screen) {
    printDiff(out, screen, title, rows, sections);
    if (!end.empty()) out << '\n' << end << '\n';
  };
  return report;
}

}  // namespace tool
