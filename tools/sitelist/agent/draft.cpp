#include "tools/sitelist/agent/draft.h"

#include "host/fs/files.h"
#include "tools/sitelist/agent/scratch_directory.h"
#include "tools/sitelist/cli/library_failure.h"

namespace tool {
namespace {

std::string write(SiteList& list, const ScratchDirectory& scratch) {
  const std::string draft = scratch.path() + "/SiteList.xml";
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
  std::string bytes;
  constexpr std::size_t noLimit = static_cast<std::size_t>(-1);
  if (host::readRegularFile(draft, noLimit, bytes) != 0) {
    throw libraryFailure(draft, sitehlp::c_errorRead);
  }
  return bytes;
}

}  // namespace tool
