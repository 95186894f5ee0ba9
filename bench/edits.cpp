#include "bench/edits.h"

#include <filesystem>
#include <memory>

#include "bench/check.h"
#include "bench/fresh_documents.h"
#include "bench/sample_agent.h"
#include "sitehlp/sites_helper.h"

namespace bench {

using sitehlp::CSitesHelper;

Edit modifyOf(const std::string& list, const std::string& source) {
  for (const char* key : {"srpubkey.bin", "reqseckey.bin"}) {
    writeFile(inEtc(key), std::string(256, 'k'));
  }
  const std::string directory = agentDirectory() + "/modified";
  std::filesystem::create_directories(directory);
  const std::string from = inEtc("edit-source.xml");
  Edit edit;
  edit.target = directory + "/" + std::filesystem::path(list).filename().string();
  edit.bytes = readFile(list);
  edit.restore = [target = edit.target, bytes = edit.bytes, from,
                  sourceBytes = readFile(source)]() mutable {
    writeFresh(target, bytes);
    writeFresh(from, sourceBytes);
  };
  edit.restore();
  const auto helper = std::make_shared<CSitesHelper>(widePath(edit.target));
  edit.perform = [helper, from = widePath(from)] {
    check(helper->modifySiteList(from.c_str(), true, true, AString()), "cannot modify the list");
  };
  return edit;
}

Edit deriveOf(const std::string& list) {
  const std::string directory =
      agentDirectory() + "/derived-" + std::filesystem::path(list).stem().string();
  std::filesystem::create_directories(directory);
  Edit edit;
  edit.target = directory + "/ServerSiteList.xml";
  edit.bytes = readFile(list);
  edit.restore = [path = directory + "/SiteList.xml", bytes = edit.bytes]() mutable {
    writeFresh(path, bytes);
  };
  edit.restore();
  edit.perform = [from = widePath(directory)] {
    check(CSitesHelper::createServerSiteListFromSiteList(from.c_str(), nullptr),
          "cannot derive the list");
  };
  return edit;
}

}  // namespace bench
