#include <array>
#include <cerrno>

#include "tools/sitelist/agent/key_files.h"
#include "tools/sitelist/cli/read_error.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/doctor/checks.h"

namespace tool {
namespace {

constexpr const char* c_importAgain =
    "import the list again, with its key files next to it (see `sitelist import --help`)";

// The two files of a set. An import takes a set only if both can be used.
struct KeySet {
  const wchar_t* publicKey;
  const wchar_t* requestKey;
};
constexpr std::array<KeySet, 2> c_sets = {{{sitehlp::c_srPubKey, sitehlp::c_reqSecKey},
                                           {sitehlp::c_sr2048PubKey, sitehlp::c_req2048SecKey}}};

std::string pathOf(const ExaminedAgent& agent, const wchar_t* name) {
  return agent.path("etc/" + narrow(name));
}

bool isUsable(const ExaminedAgent& agent, const wchar_t* name) {
  return whyUnusable(pathOf(agent, name)).empty();
}

void requireOneSet(const ExaminedAgent& agent, Findings& findings) {
  for (const KeySet& set : c_sets) {
    if (isUsable(agent, set.publicKey) && isUsable(agent, set.requestKey)) return;
  }
  std::string names;
  for (const wchar_t* name : c_keyFiles) {
    const std::string reason = whyUnusable(pathOf(agent, name));
    if (reason.empty()) continue;
    names.append(names.empty() ? "" : ", ").append(narrow(name));
    if (reason != readFailureReason(ENOENT)) names.append(" (").append(reason).append(")");
  }
  findings.fail("the server has a version, but no set of key files is complete; missing: " + names,
                c_importAgain, agent.path("etc"));
}

// A set with only one file is not used. It may be left from an older server.
void reportHalfSets(const ExaminedAgent& agent, Findings& findings) {
  for (const KeySet& set : c_sets) {
    const bool hasPublic = isUsable(agent, set.publicKey);
    if (hasPublic == isUsable(agent, set.requestKey)) continue;
    const wchar_t* const lone = hasPublic ? set.publicKey : set.requestKey;
    const wchar_t* const missing = hasPublic ? set.requestKey : set.publicKey;
    findings.warn(
        narrow(lone) + " belongs to a set whose other file cannot be used: " + narrow(missing),
        c_importAgain, pathOf(agent, lone));
  }
}

// A server without a version has at most the older public key, and no request key.
void reportSurplus(const ExaminedAgent& agent, Findings& findings) {
  for (const wchar_t* name :
       {sitehlp::c_reqSecKey, sitehlp::c_sr2048PubKey, sitehlp::c_req2048SecKey}) {
    if (!isUsable(agent, name)) continue;
    findings.warn(narrow(name) + " belongs to a server with a version, but the list has none",
                  "check that the list is the right one; if so, remove the file",
                  pathOf(agent, name));
  }
}

}  // namespace

void checkKeyFiles(const ExaminedAgent& agent, Findings& findings) {
  if (!requireList(agent, findings)) return;
  if (!canActAs(agent.user)) return addUnchecked(agent, agent.path("etc"), EACCES, findings);
  if (hasVersionedServer(agent.list->sites.get())) {
    requireOneSet(agent, findings);
    if (findings.all().empty()) reportHalfSets(agent, findings);
    findings.okIfNone("the server has a version, and the agent has a complete set of key files");
  } else {
    reportSurplus(agent, findings);
    findings.okIfNone("the list has no server with a version, so it needs no key files");
  }
}

}  // namespace tool
