#ifndef TESTS_LINKS_PLANTS_H
#define TESTS_LINKS_PLANTS_H

#include <string>
#include <vector>

#include "tests/links/outside.h"
#include "tests/resilience/workshop.h"

namespace test {

// A name that the library writes, makes, locks or cleans up.
struct Name {
  enum class Kind { File, LockFile, LeftOver, Directory };
  std::string path;
  Kind kind;
  // How messages call it.
  std::string shown;
};

std::vector<Name> namesOf(const Workshop& workshop);

// What the agent's user puts in the place of such a name.
enum class Plant { LinkToFile, DanglingLink, LinkToDirectory, ChainOfLinks, HardLink };

const char* nameOf(Plant plant);
std::vector<Plant> plantsFor(const Name& name);

// A plant, for the life of the object. What the name stood for before comes back then.
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

// The workshop's file system. With one user alone, every link that was planted seems to belong to
// another one.
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
