#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <stdexcept>

#include "tools/sitelist/commands/program.h"
#include "tools/sitelist/generator/pages.h"

// sitelist-generator DIRECTORY DATE SCHEMA STATUSES: writes the manual pages and the JSON Schema of
// the tool's output below DIRECTORY. DATE is the date of the pages, for example "May 1, 2001".
// SCHEMA is the file with the JSON Schema, without the kinds and fields of sites. STATUSES is the
// file with the exit statuses of each command.

namespace tool {
namespace {

void write(const std::filesystem::path& path, const std::string& text) {
  std::filesystem::create_directories(path.parent_path());
  std::ofstream file(path, std::ios::binary);
  file << text;
  file.close();
  if (!file) throw std::runtime_error(path.string() + ": cannot be written");
}

std::string read(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  if (!file) throw std::runtime_error(path + ": cannot be read");
  return text.str();
}

void generate(const std::filesystem::path& directory, const std::string& date,
              const std::string& schema, const std::string& statuses) {
  Context context;
  const CommandInfo program = makeCommandLine(context)->describe();
  const std::string whole = completeSchema(schema);
  write(directory / "sitelist.schema.json", whole);
  write(directory / "man/sitelist.1", toolPage(program, statusTable(program, statuses), date));
  write(directory / "man/sitelist.json.5", schemaPage(whole, date));
  write(directory / "man/agent.toml.5", settingsPage(date));
}

}  // namespace
}  // namespace tool

int main(int argc, char** argv) {
  if (argc != 5) {
    std::cerr << "usage: sitelist-generator DIRECTORY DATE SCHEMA STATUSES\n";
    return 2;
  }
  try {
    tool::generate(argv[1], argv[2], tool::read(argv[3]), tool::read(argv[4]));
  } catch (const std::exception& e) {
    std::cerr << "sitelist-generator: " << e.what() << '\n';
    return 1;
  }
  return 0;
}
