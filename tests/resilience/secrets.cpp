#include "tests/resilience/secrets.h"

#include <fcntl.h>

#include <cerrno>
#include <exception>
#include <filesystem>

#include "sitehlp/sites_helper.h"
#include "tests/resilience/workshop.h"

namespace fs = std::filesystem;

namespace test {
namespace {

// Returns the bytes of the canary in each encoding.
std::vector<std::string> forms() {
  std::vector<std::string> all;
  for (const std::size_t unit : {1, 2, 4}) {
    std::string text;
    for (const char c : c_canary) {
      text += c;
      text += std::string(unit - 1, '\0');
    }
    all.push_back(text);
  }
  return all;
}

bool holdsCanary(const std::string& bytes) {
  static const std::vector<std::string> all = forms();
  for (const std::string& form : all) {
    if (bytes.find(form) != std::string::npos) return true;
  }
  return false;
}

// Searches all written bytes, so that removed files are searched as well.
class WatchingFileSystem : public WorkshopFileSystem {
 public:
  WatchingFileSystem(const Workshop& workshop, SecretFigures& figures, std::string where)
      : WorkshopFileSystem(workshop), m_figures(figures), m_where(std::move(where)) {}

  ssize_t write(int fd, const void* data, std::size_t size) override {
    ++m_figures.files;
    if (holdsCanary(std::string(static_cast<const char*>(data), size))) {
      m_figures.faults.add(m_where, "writes the password");
    }
    return WorkshopFileSystem::write(fd, data, size);
  }

 private:
  SecretFigures& m_figures;
  std::string m_where;
};

bool runWatched(const Operation& operation, Workshop& workshop, SecretFigures& figures,
                std::size_t failing) {
  const std::string where = std::string(operation.name) + ", call " + std::to_string(failing);
  workshop.reset(operation);
  workshop.agent.clearLog();
  bool failed = false;
  {
    WatchingFileSystem files(workshop, figures, where);
    files.failCall(failing, EIO);
    try {
      operation.run(workshop);
    } catch (const std::exception& e) {
      if (holdsCanary(e.what())) figures.faults.add(where, "throws the password");
    }
    failed = !files.failed().empty();
  }
  ++figures.runs;
  for (const LogLine& line : workshop.agent.log()) {
    ++figures.lines;
    if (holdsCanary(narrow(line.text))) figures.faults.add(where, "logs " + narrow(line.text));
  }
  for (const auto& file : workshop.state()) {
    ++figures.files;
    if (holdsCanary(file.second)) figures.faults.add(where, file.first + " holds the password");
  }
  return failed;
}

}  // namespace

SecretFigures lookForTheCanary(const Progress& progress) {
  SecretFigures figures;
  Workshop workshop;
  workshop.agent.settings.logLevel = LogLevel::Detail;
  workshop.agent.apply();
  for (const auto* operations : {&writingOperations(), &readingOperations()}) {
    for (const Operation& operation : *operations) {
      for (std::size_t n = 0; runWatched(operation, workshop, figures, n); ++n) {
        if (progress) progress(figures.runs);
      }
    }
  }
  return figures;
}

namespace {

// During a call that is relative to an open directory, the path of that directory leads outside.
class SwappingFileSystem : public WorkshopFileSystem {
 public:
  SwappingFileSystem(const Workshop& workshop, std::string outside, bool fileToo)
      : WorkshopFileSystem(workshop),
        m_roots(workshop.roots()),
        m_outside(std::move(outside)),
        m_fileToo(fileToo) {}

  unsigned long swaps() const { return m_swaps; }

  int open(int directory, const std::string& path, int flags, mode_t mode) override {
    const std::string name = full(directory, path);
    int fd = 0;
    {
      const Swap swap(*this, directory, std::string());
      fd = WorkshopFileSystem::open(directory, path, flags, mode);
    }
    if (fd >= 0 && (flags & O_DIRECTORY) != 0) m_directories[fd] = name;
    return fd;
  }
  int close(int fd) override {
    m_directories.erase(fd);
    return WorkshopFileSystem::close(fd);
  }
  int stat(int directory, const std::string& path, bool follow, struct stat& out) override {
    const Swap swap(*this, directory, std::string());
    return WorkshopFileSystem::stat(directory, path, follow, out);
  }
  int list(int directory, std::vector<std::string>& names) override {
    const Swap swap(*this, directory, std::string());
    return WorkshopFileSystem::list(directory, names);
  }
  int rename(int directory, const std::string& from, const std::string& to) override {
    const Swap swap(*this, directory, to);
    return WorkshopFileSystem::rename(directory, from, to);
  }
  int unlink(int directory, const std::string& path) override {
    const Swap swap(*this, directory, std::string());
    return WorkshopFileSystem::unlink(directory, path);
  }

 private:
  std::string full(int directory, const std::string& path) const {
    const auto above = m_directories.find(directory);
    if (above == m_directories.end() || (!path.empty() && path.front() == '/')) return path;
    return above->second + (above->second.back() == '/' ? "" : "/") + path;
  }

  // Only directories of the workshop are moved.
  bool mayMove(const std::string& path) const {
    for (const std::string& root : m_roots) {
      if (path == root || path.rfind(root + "/", 0) == 0) return fs::is_directory(path);
    }
    return false;
  }

  class Swap {
   public:
    Swap(SwappingFileSystem& files, int directory, const std::string& name) {
      const auto found = files.m_directories.find(directory);
      if (found == files.m_directories.end() || !files.mayMove(found->second)) return;
      m_path = found->second;
      // A link to a file outside in the place of the file that is about to be replaced.
      if (files.m_fileToo && !name.empty()) {
        fs::remove(m_path + "/" + name);
        fs::create_symlink(files.m_outside + "/victim", m_path + "/" + name);
        ++files.m_swaps;
      }
      fs::rename(m_path, m_path + ".real");
      fs::create_directory_symlink(files.m_outside, m_path);
      ++files.m_swaps;
    }
    ~Swap() {
      if (m_path.empty()) return;
      fs::remove(m_path);
      fs::rename(m_path + ".real", m_path);
    }
    Swap(const Swap&) = delete;
    Swap& operator=(const Swap&) = delete;

   private:
    std::string m_path;
  };

  std::vector<std::string> m_roots;
  std::string m_outside;
  bool m_fileToo;
  unsigned long m_swaps = 0;
  std::map<int, std::string> m_directories;
};

}  // namespace

SwapFigures swapLinks(unsigned long swaps, const Progress& progress) {
  SwapFigures figures;
  Workshop workshop;
  const TempDir outside;
  writeFile(outside.file("victim"), "untouched", 0600);
  const std::map<std::string, std::string> before = snapshot(outside.path());
  while (figures.swaps < swaps) {
    for (const bool fileToo : {false, true}) {
      for (const Operation& operation : writingOperations()) {
        workshop.reset(operation);
        unsigned long made = 0;
        int code = 0;
        {
          SwappingFileSystem files(workshop, outside.path(), fileToo);
          code = operation.run(workshop);
          made = files.swaps();
        }
        ++figures.writes;
        figures.swaps += made;
        if (code != 0) figures.faults.add(operation.name, "fails: " + std::to_string(code));
        if (snapshot(outside.path()) != before) {
          figures.faults.add(operation.name, "writes outside");
        }
        const std::vector<std::string> left = workshop.temporaryFiles();
        if (!left.empty()) figures.faults.add(operation.name, "leaves " + left.front());
        if (progress) progress(figures.swaps);
      }
    }
  }
  return figures;
}

}  // namespace test
