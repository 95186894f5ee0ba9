#ifndef TESTS_LINKS_PLANTS_H
#define TESTS_LINKS_PLANTS_H

#include <string>
#include <vector>

#include "tests/links/outside.h"
#include "tests/resilience/workshop.h"

namespace test {

// The name of a file or directory that the library writes, creates, locks or removes.
struct Name {
  enum class Kind { File, LockFile, LeftOver, Directory };
  std::string path;
  Kind kind;
  // The form of the name in messages.
  std::string shown;
};

std::vector<Name> namesOf(const Workshop& workshop);

// A link that the agent's user creates with such a name.
enum class Plant { LinkToFile, DanglingLink, LinkToDirectory, ChainOfLinks, HardLink };

const char* nameOf(Plant plant);
std::vector<Plant> plantsFor(const Name& name);

// Creates such a link for the life of the object. Afterwards restores what had the name before.
class Planted {
 public:
  Planted(const Name& name, Plant plant, const Outside& outside);
  ~Planted();
  Planted(const Planted&) = delete;
  Planted& operator=(const Planted&) = delete;

 private:
  std::string m_path;
  std::string m_aside;
  std::string m_second;
};

// The file system of the workshop. If there is only one user, each created link appears to belong
// to another user.
class PlantedFileSystem : public WorkshopFileSystem {
 public:
  PlantedFileSystem(const Workshop& workshop, const Name& name);

  int readLink(int directory, const std::string& path, std::string& target,
               struct stat& link) override;

 private:
  std::string m_name;
};

}  // namespace test

#endif
