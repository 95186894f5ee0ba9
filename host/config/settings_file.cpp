#include <cerrno>
#include <sstream>

#include "host/agent.h"
#include "host/common/failure_text.h"
#include "host/common/level_names.h"
#include "host/config/settings_path.h"
#include "host/config/toml_parser.h"
#include "host/fs/files.h"

namespace host {
namespace {

constexpr std::size_t c_maxSettingsBytes = std::size_t{1} << 20;
constexpr const char* c_legacyKeySize = "legacy";
constexpr const char* c_keySize2048 = "2048";

// One settings file, with what it takes to name the place of a fault in it.
class SettingsReader {
 public:
  SettingsReader(const std::string& file, AgentSettings& settings)
      : m_file(file), m_settings(settings) {}

  void read(const toml::table& root) {
    for (const auto& [key, value] : root) {
      if (key == "managed") {
        m_settings.managed = as<bool>("managed", value, "true or false");
      } else if (key == "crypto_key_size") {
        m_settings.cryptoKeySize = keySize(value);
      } else if (key == "mesh") {
        readMesh(table("mesh", value));
      } else if (key == "log") {
        readLog(table("log", value));
      } else {
        failUnknown(key);
      }
    }
  }

 private:
  void readMesh(const toml::table& mesh) {
    for (const auto& [key, value] : mesh) {
      if (key == "site_list_path") {
        m_settings.meshSiteListPath =
            pathFrom(m_settings.dataDirectory, path("mesh.site_list_path", value));
      } else if (key == "load_command") {
        m_settings.meshLoadCommand = command(value);
      } else {
        failUnknown(key, "mesh.");
      }
    }
  }

  void readLog(const toml::table& log) {
    for (const auto& [key, value] : log) {
      if (key != "level") failUnknown(key, "log.");
      const auto level = levelNamed(text("log.level", value));
      if (!level) {
        fail(value, "log.level must be detail, info, error, internal-error or off");
      }
      m_settings.logLevel = *level;
    }
  }

  korvel_com::ZQ::crypto::KeySize keySize(const toml::node& value) const {
    const std::string name = text("crypto_key_size", value);
    if (name == c_keySize2048) return korvel_com::ZQ::crypto::KEY_SIZE_2048;
    if (name != c_legacyKeySize) fail(value, "crypto_key_size must be \"legacy\" or \"2048\"");
    return korvel_com::ZQ::crypto::KEY_SIZE_LEGACY;
  }

  std::vector<std::string> command(const toml::node& value) const {
    const toml::array* words = value.as_array();
    if (!words) fail(value, "mesh.load_command must be an array of strings");
    std::vector<std::string> result;
    for (const toml::node& word : *words) {
      result.push_back(result.empty()
                           ? pathFrom(m_settings.dataDirectory, path("mesh.load_command", word))
                           : text("mesh.load_command", word));
    }
    return result;
  }

  std::string path(const char* name, const toml::node& value) const {
    std::string result = text(name, value);
    if (result.empty()) fail(value, std::string(name) + " must not be empty");
    return result;
  }

  std::string text(const char* name, const toml::node& value) const {
    std::string result = as<std::string>(name, value, "a string");
    if (result.find('\0') != std::string::npos) {
      fail(value, std::string(name) + " must not hold a zero character");
    }
    return result;
  }

  const toml::table& table(const char* name, const toml::node& value) const {
    if (!value.is_table()) fail(value, std::string(name) + " must be a table");
    return *value.as_table();
  }

  template <typename T>
  T as(const char* name, const toml::node& value, const char* wanted) const {
    const toml::value<T>* found = value.as<T>();
    if (!found) fail(value, std::string(name) + " must be " + wanted);
    return found->get();
  }

  [[noreturn]] void failUnknown(const toml::key& key, const std::string& where = "") const {
    fail(key.source(), "unknown setting " + where + std::string(key.str()));
  }

  [[noreturn]] void fail(const toml::node& value, const std::string& reason) const {
    fail(value.source(), reason);
  }

 public:
  [[noreturn]] void fail(const toml::source_region& place, const std::string& reason) const {
    throw SettingsError(m_file + ":" + std::to_string(place.begin.line) + ":" +
                        std::to_string(place.begin.column) + ": " + reason);
  }

 private:
  const std::string& m_file;
  AgentSettings& m_settings;
};

}  // namespace

AgentSettings readAgentSettings(const std::string& dataDirectory) {
  AgentSettings settings;
  settings.dataDirectory = fullDirectory(dataDirectory);
  const std::string file = pathFrom(settings.dataDirectory, "agent.toml");
  std::string bytes;
  const int error = readRegularFile(file, c_maxSettingsBytes, bytes);
  if (error == ENOENT) return settings;
  if (error) throw SettingsError(file + ": " + errorText(error));

  SettingsReader reader(file, settings);
  try {
    reader.read(toml::parse(bytes));
  } catch (const toml::parse_error& fault) {
    reader.fail(fault.source(), std::string(fault.description()));
  }
  return settings;
}

std::string formatAgentSettings(const AgentSettings& settings) {
  const bool legacy = settings.cryptoKeySize == korvel_com::ZQ::crypto::KEY_SIZE_LEGACY;
  toml::array command;
  for (const std::string& word : settings.meshLoadCommand) command.push_back(word);
  toml::table mesh;
  if (!settings.meshSiteListPath.empty()) {
    mesh.insert("site_list_path", settings.meshSiteListPath);
  }
  mesh.insert("load_command", std::move(command));

  const toml::table root{{"managed", settings.managed},
                         {"crypto_key_size", legacy ? c_legacyKeySize : c_keySize2048},
                         {"mesh", std::move(mesh)},
                         {"log", toml::table{{"level", levelName(settings.logLevel)}}}};
  std::ostringstream text;
  text << root << "\n";
  return text.str();
}

}  // namespace host
