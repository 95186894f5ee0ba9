#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <sstream>
#include <string_view>

#include "host/agent.h"
#include "host/common/level_names.h"
#include "host/config/setting_names.h"
#include "host/config/settings_path.h"
#include "host/config/toml_parser.h"
#include "host/fs/files.h"
#include "host/process/failure_text.h"

namespace host {
namespace {

constexpr std::size_t c_maxSettingsBytes = std::size_t{1} << 20;
constexpr std::int64_t c_maxLoadTimeoutSeconds = 86'400;
constexpr std::int64_t c_maxRecordMegabytes = 1'048'576;
constexpr std::int64_t c_maxHistoryLength = 10'000;
constexpr const char* c_legacyKeySize = "legacy";
constexpr const char* c_keySize2048 = "2048";

// Reads one settings file and finds the place of a fault in it.
class SettingsReader {
 public:
  SettingsReader(const std::string& file, AgentSettings& settings)
      : m_file(file), m_settings(settings) {}

  struct Setting {
    std::string_view table;  // empty for a key outside of a table
    std::string_view key;
    void (SettingsReader::*read)(const std::string& name, const toml::node& value);

    std::string name() const {
      return table.empty() ? std::string(key) : std::string(table).append(".").append(key);
    }
  };
  using Settings = std::array<Setting, 8>;
  static const Settings& settings();

  void read(const toml::table& entries, const std::string& tableName = "") {
    for (const auto& [key, value] : entries) {
      const std::string_view name = key.str();
      const auto isThis = [&](const Setting& setting) {
        return setting.table == tableName && setting.key == name;
      };
      const auto isInside = [&](const Setting& setting) {
        return !name.empty() && setting.table == name;
      };
      const auto setting = std::find_if(settings().begin(), settings().end(), isThis);
      if (setting != settings().end()) {
        (this->*setting->read)(setting->name(), value);
      } else if (tableName.empty() && std::any_of(settings().begin(), settings().end(), isInside)) {
        read(table(std::string(name), value), std::string(name));
      } else {
        failUnknown(key, tableName.empty() ? "" : tableName + ".");
      }
    }
  }

 private:
  void readManaged(const std::string& name, const toml::node& value) {
    m_settings.managed = as<bool>(name, value, "true or false");
  }

  void readKeySize(const std::string& name, const toml::node& value) {
    const std::string size = text(name, value);
    if (size != c_legacyKeySize && size != c_keySize2048) {
      fail(value, name + " must be \"legacy\" or \"2048\"");
    }
    m_settings.cryptoKeySize = size == c_legacyKeySize ? korvel_com::ZQ::crypto::KEY_SIZE_LEGACY
                                                       : korvel_com::ZQ::crypto::KEY_SIZE_2048;
  }

  void readMeshPath(const std::string& name, const toml::node& value) {
    m_settings.meshSiteListPath = pathFrom(m_settings.dataDirectory, path(name, value));
  }

  void readMeshCommand(const std::string& name, const toml::node& value) {
    const toml::array* words = value.as_array();
    if (!words) fail(value, name + " must be an array of strings");
    m_settings.meshLoadCommand.clear();
    for (const toml::node& word : *words) {
      m_settings.meshLoadCommand.push_back(
          m_settings.meshLoadCommand.empty() ? pathFrom(m_settings.dataDirectory, path(name, word))
                                             : text(name, word));
    }
  }

  void readMeshTimeout(const std::string& name, const toml::node& value) {
    m_settings.meshLoadTimeoutSeconds = number(name, value, 1, c_maxLoadTimeoutSeconds);
  }

  void readRecordMegabytes(const std::string& name, const toml::node& value) {
    m_settings.maxRecordMegabytes = number(name, value, 1, c_maxRecordMegabytes);
  }

  void readHistory(const std::string& name, const toml::node& value) {
    m_settings.historyLength = number(name, value, 0, c_maxHistoryLength);
  }

  void readLogLevel(const std::string& name, const toml::node& value) {
    const auto level = levelNamed(text(name, value));
    if (!level) fail(value, name + " must be detail, info, error, internal-error or off");
    m_settings.logLevel = *level;
  }

  std::string path(const std::string& name, const toml::node& value) const {
    std::string result = text(name, value);
    if (result.empty()) fail(value, name + " must not be empty");
    return result;
  }

  std::string text(const std::string& name, const toml::node& value) const {
    std::string result = as<std::string>(name, value, "a string");
    if (result.find('\0') != std::string::npos) {
      fail(value, name + " must not hold a zero character");
    }
    return result;
  }

  unsigned int number(const std::string& name, const toml::node& value, std::int64_t smallest,
                      std::int64_t largest) const {
    const auto result = as<std::int64_t>(name, value, "a whole number");
    if (result < smallest || result > largest) {
      fail(value,
           name + " must be from " + std::to_string(smallest) + " to " + std::to_string(largest));
    }
    return static_cast<unsigned int>(result);
  }

  const toml::table& table(const std::string& name, const toml::node& value) const {
    if (!value.is_table()) fail(value, name + " must be a table");
    return *value.as_table();
  }

  template <typename T>
  T as(const std::string& name, const toml::node& value, const char* wanted) const {
    const toml::value<T>* found = value.as<T>();
    if (!found) fail(value, name + " must be " + wanted);
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

const SettingsReader::Settings& SettingsReader::settings() {
  static constexpr Settings all = {{
      {"", "managed", &SettingsReader::readManaged},
      {"", "crypto_key_size", &SettingsReader::readKeySize},
      {"", "history", &SettingsReader::readHistory},
      {"mesh", "site_list_path", &SettingsReader::readMeshPath},
      {"mesh", "load_command", &SettingsReader::readMeshCommand},
      {"mesh", "load_timeout_seconds", &SettingsReader::readMeshTimeout},
      {"limits", "record_megabytes", &SettingsReader::readRecordMegabytes},
      {"log", "level", &SettingsReader::readLogLevel},
  }};
  return all;
}

}  // namespace

std::vector<std::string> settingNames() {
  std::vector<std::string> names;
  for (const auto& setting : SettingsReader::settings()) names.push_back(setting.name());
  return names;
}

namespace {

// Replaces the parser's texts, which name parts of a grammar: "Error while parsing key-value pair:
// expected '=', saw 'y'".
std::string syntaxError(std::string_view description) {
  if (description.find("expected '='") != std::string_view::npos) {
    return "the line is not KEY = VALUE";
  }
  constexpr std::string_view start = "Error while parsing ";
  if (description.substr(0, start.size()) == start) description.remove_prefix(start.size());
  return "not valid TOML: " + std::string(description);
}

}  // namespace

AgentSettings readAgentSettings(const std::string& dataDirectory) {
  AgentSettings settings;
  settings.dataDirectory = fullDirectory(dataDirectory);
  requireUsableLength(settings.dataDirectory);
  const std::string file = pathFrom(settings.dataDirectory, "agent.toml");
  std::string bytes;
  const int error = readRegularFile(file, c_maxSettingsBytes, bytes);
  if (error == ENOENT) return settings;
  if (error) throw SettingsError(file + ": " + errorText(error));

  SettingsReader reader(file, settings);
  try {
    reader.read(toml::parse(bytes));
  } catch (const toml::parse_error& fault) {
    reader.fail(fault.source(), syntaxError(fault.description()));
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
  mesh.insert("load_timeout_seconds", settings.meshLoadTimeoutSeconds);

  const toml::table root{{"managed", settings.managed},
                         {"crypto_key_size", legacy ? c_legacyKeySize : c_keySize2048},
                         {"history", settings.historyLength},
                         {"mesh", std::move(mesh)},
                         {"limits", toml::table{{"record_megabytes", settings.maxRecordMegabytes}}},
                         {"log", toml::table{{"level", levelName(settings.logLevel)}}}};
  // Writes every string with escapes. The formatter has other forms for strings, but they lose a
  // leading line feed and do not escape quotes at the end.
  constexpr toml::format_flags c_otherStrings =
      toml::format_flags::allow_literal_strings | toml::format_flags::allow_multi_line_strings;
  std::ostringstream text;
  text << toml::toml_formatter(root, toml::toml_formatter::default_flags & ~c_otherStrings) << "\n";
  return text.str();
}

}  // namespace host
