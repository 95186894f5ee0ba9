#include "tools/sitelist/agent/draft.h"

#include "tools/sitelist/agent/scratch_directory.h"
#include "tools/sitelist/cli/input.h"
#include "tools/sitelist/cli/shown_name.h"

namespace tool {
namespace {

std::string write(SiteList& list, const ScratchDirectory& scratch) {
  const std::string draft = scratch.path() + "/SiteList.xml";
  showAs(draft, "a temporary copy of " + list.path);
  writeSiteList(list, draft);
  return draft;
}

}  // namespace

SiteList asWritten(SiteList& list) {
  const ScratchDirectory scratch;
  SiteList written = readSiteList(write(list, scratch));
  written.path = list.path;
  return written;
}

std::string documentOf(SiteList& list) {
  const ScratchDirectory scratch;
  const std::string draft = write(list, scratch);
  return readInput(draft).bytes;
}

}  // namespace tool
