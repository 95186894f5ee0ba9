#include "tests/links/plants.h"

#include <filesystem>

#include "tests/links/two_users.h"

namespace fs = std::filesystem;

namespace test {
namespace {

constexpr const char* c_fixedScratch = "/Library/Korvel/orb/scratch";

bool isFile(const Name& name) { return name.kind != Name::Kind::Directory; }

}  // namespace

std::vector<Name> namesOf(const Workshop& workshop) {
  using Kind = Name::Kind;
  const std::string data = workshop.agent.dataDirectory() + "/";
  std::vector<Name> names;
  const auto add = [&](const std::string& path, Kind kind) { names.push_back({path, kind, path}); };
  for (const char* name :
       {"etc/SiteList.xml", "ServerSiteList.xml", "mesh/SiteList.xml", "etc/srpubkey.bin",
        "etc/reqseckey.bin", "etc/sr2048pubkey.bin", "etc/req2048seckey.bin", "etc\\agentfipsmode",
        "keystore/password.key"}) {
    add(data + name, Kind::File);
  }
  for (const char* lock : {"locks/SiteListLock", "locks/SmartSiteListLock"}) {
    add(data + lock + ".lock", Kind::LockFile);
    add(data + lock + ".gate", Kind::LockFile);
  }
  for (const char* directory : {"etc", "mesh", "locks", "keystore"}) {
    add(data + directory + "/.sitehlp-0123456789abcdef.tmp", Kind::LeftOver);
    add(data + directory, Kind::Directory);
  }
  add(data + "fresh", Kind::Directory);
  const std::string scratch = workshop.scratchRoot();
  const std::string fixed = c_fixedScratch;
  names.push_back({workshop.scratchList(), Kind::File, fixed + "/etc/SiteList.xml"});
  names.push_back({scratch + "/etc", Kind::Directory, fixed + "/etc"});
  names.push_back({scratch, Kind::Directory, fixed});
  return names;
}

const char* nameOf(Plant plant) {
  static const char* const names[] = {"link to a file", "dangling link", "link to a directory",
                                      "chain of links", "hard link"};
  return names[static_cast<std::size_t>(plant)];
}

std::vector<Plant> plantsFor(const Name& name) {
  std::vector<Plant> plants = {Plant::LinkToFile, Plant::DanglingLink, Plant::LinkToDirectory,
                               Plant::ChainOfLinks};
  if (isFile(name)) plants.push_back(Plant::HardLink);
  return plants;
}

Planted::Planted(const Name& name, Plant plant, const Outside& outside)
    : m_path(name.path), m_aside(name.path + ".aside"), m_second(name.path + ".second") {
  const std::string parent = fs::path(m_path).parent_path();
  fs::create_directories(parent);
  giveToAgent(parent);
  if (fs::exists(fs::symlink_status(m_path))) fs::rename(m_path, m_aside);
  switch (plant) {
    case Plant::LinkToFile:
      fs::create_symlink(outside.file(), m_path);
      break;
    case Plant::DanglingLink:
      fs::create_symlink(outside.missing(), m_path);
      break;
    case Plant::LinkToDirectory:
      fs::create_symlink(outside.directory(), m_path);
      break;
    case Plant::ChainOfLinks:
      fs::create_symlink(isFile(name) ? outside.file() : outside.directory(), m_second);
      fs::create_symlink(fs::path(m_second).filename(), m_path);
      break;
    case Plant::HardLink:
      fs::create_hard_link(outside.file(), m_path);
      return;  // it has the owner of the file
  }
  giveToAgent(parent);
}

Planted::~Planted() {
  std::error_code ignored;
  for (const std::string& path : {m_path, m_second}) {
    // Also removes what was created in place of a removed link.
    fs::remove_all(path, ignored);
  }
  if (fs::exists(fs::symlink_status(m_aside, ignored))) fs::rename(m_aside, m_path, ignored);
}

PlantedFileSystem::PlantedFileSystem(const Workshop& workshop, const Name& name)
    : WorkshopFileSystem(workshop), m_name(fs::path(name.path).filename()) {}

int PlantedFileSystem::readLink(int directory, const std::string& path, std::string& target,
                                struct stat& link) {
  const int result = WorkshopFileSystem::readLink(directory, path, target, link);
  if (!haveTwoUsers() && path.rfind(m_name, 0) == 0) ++link.st_uid;
  return result;
}

}  // namespace test
