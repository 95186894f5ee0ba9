#include <algorithm>
#include <nlohmann/json.hpp>

#include "tools/sitelist/generator/manual_page.h"
#include "tools/sitelist/generator/pages.h"
#include "tools/sitelist/generator/roff.h"

namespace tool {
namespace {

using Json = nlohmann::ordered_json;

// Returns the words in the form "a, b or c".
std::string enumerated(const std::vector<std::string>& words) {
  std::string text;
  for (std::size_t i = 0; i < words.size(); ++i) {
    if (i > 0) text += i + 1 == words.size() ? " or " : ", ";
    text += words[i];
  }
  return text;
}

std::vector<std::string> wordsOf(const Json& value) {
  return value.is_array() ? value.get<std::vector<std::string>>()
                          : std::vector<std::string>{value.get<std::string>()};
}

class SchemaPage {
 public:
  SchemaPage(const Json& schema, const std::string& date)
      : m_schema(schema), m_page("sitelist.json", 5, date, "what sitelist prints as JSON") {}

  std::string make() {
    describe();
    m_page.section("EVERY DOCUMENT");
    m_page.paragraph("Every document has these members. Only `error` may be missing.");
    list(firstDocument(), [&](const std::string& name) { return isEverywhere(name); });
    m_page.section("DOCUMENTS");
    m_page.paragraph(
        "In addition, a document has the members of its command. An optional member depends on the "
        "options of the command. After a failure, any of these members may be missing, empty or "
        "incomplete.");
    for (const Json& document : m_schema.at("oneOf")) {
      describeDocument(nameOfReference(document), resolved(document));
    }
    m_page.section("RECORDS");
    for (const auto& [name, record] : m_schema.at("definitions").items()) {
      if (isRecord(name)) describeRecord(name, record);
    }
    close();
    return m_page.source();
  }

 private:
  using Filter = std::function<bool(const std::string& name)>;

  static std::string nameOfReference(const Json& node) {
    const std::string path = node.at("$ref");
    return path.substr(path.rfind('/') + 1);
  }

  const Json& resolved(const Json& node) const {
    return node.contains("$ref") ? m_schema.at("definitions").at(nameOfReference(node)) : node;
  }

  const Json& firstDocument() const { return resolved(m_schema.at("oneOf").front()); }

  bool isEverywhere(const std::string& name) const {
    return std::all_of(
        m_schema.at("oneOf").begin(), m_schema.at("oneOf").end(),
        [&](const Json& document) { return resolved(document).at("properties").contains(name); });
  }

  // Returns whether the definition is that of a record inside documents, not of a document.
  bool isRecord(const std::string& name) const {
    const Json& definition = m_schema.at("definitions").at(name);
    return definition.contains("properties") && !definition.at("properties").contains("command");
  }

  static std::string plainTypeOf(const Json& node) {
    if (!node.contains("const")) {
      std::vector<std::string> words = wordsOf(node.at("type"));
      if (node.contains("items")) {
        std::replace(words.begin(), words.end(), std::string("array"),
                     "array of " + plainTypeOf(node.at("items")) + 's');
      }
      return enumerated(words);
    }
    return node.at("const").is_string() ? "string" : node.at("const").dump();
  }

  std::string typeOf(const Json& property) const {
    if (property.contains("$ref") && isRecord(nameOfReference(property)))
      return "object, see below";
    const Json& node = resolved(property);
    if (!node.contains("items")) return plainTypeOf(node);
    const Json& items = node.at("items");
    if (items.contains("$ref")) return "array of " + nameOfReference(items) + ", see below";
    return plainTypeOf(node);
  }

  static std::vector<std::string> choicesOf(const Json& node) {
    std::vector<std::string> values;
    for (const Json& value : node.at("enum")) {
      const bool isWord = value.is_string() && !value.get<std::string>().empty();
      values.push_back('`' + (isWord ? value.get<std::string>() : value.dump()) + '`');
    }
    return values;
  }

  static std::string choiceSentence(const Json& node) {
    if (!node.contains("enum")) return "";
    const std::vector<std::string> values = choicesOf(node);
    return (values.size() == 1 ? " Always " : " One of ") + enumerated(values) + '.';
  }

  void list(const Json& object, const Filter& isWanted) {
    m_page.beginList();
    for (const auto& [name, property] : object.at("properties").items()) {
      if (!isWanted(name)) continue;
      const Json& node = resolved(property);
      const bool mayMiss = !isRequired(object, name) && name != "error";
      m_page.item("Ic " + roffLiteral(name) + " Pq " + typeOf(property),
                  node.at("description").get<std::string>() + choiceSentence(node) +
                      (mayMiss ? " Optional." : ""));
      if (node.contains("items") && node.at("items").contains("properties")) {
        list(node.at("items"), [](const std::string&) { return true; });
      }
    }
    m_page.endList();
  }

  // The members of a document after "then" are those that it has after a success, and for one list
  // those after another "then".
  static bool isRequired(const Json& object, const std::string& name) {
    const Json afterSuccess = object.value("then", Json::object());
    for (const Json& each : {object, afterSuccess, afterSuccess.value("then", Json::object())}) {
      const Json required = each.value("required", Json::array());
      if (std::find(required.begin(), required.end(), name) != required.end()) return true;
    }
    return false;
  }

  void describe() {
    m_page.section("SYNOPSIS");
    m_page.macro(".Nm sitelist");
    m_page.macro(".Fl \\-format Cm json");
    m_page.macro(".Ar COMMAND");
    m_page.macro(".Op Ar ARGUMENT ...");
    m_page.section("DESCRIPTION");
    m_page.paragraph(m_schema.at("description").get<std::string>() +
                     " Messages for people go to standard error as well.");
    m_page.paragraph(
        "JSON and XML are ASCII. All other characters are escaped. A program must ignore unknown "
        "names. The meaning of a name does not change as long as `schema_version` stays the "
        "same. Every release may add names, and the JSON Schema accepts unknown ones.");
    m_page.paragraph(
        "With `--format xml`, the first four names are attributes of the root element and the "
        "others are elements. A null value has no element. An array of strings has an element "
        "`item` for each string. With `--format csv`, there is a line "
        "of names and a row for each record. A program must find a column by its name, because a "
        "release may add columns at any place. If a command has no records, each row has a name "
        "and "
        "its value. CSV has neither `changed` nor `warnings`, and an array of strings is one value "
        "with `;` between the strings. CSV is UTF-8 in the form of RFC 4180, with LF at the end of "
        "a record. A value "
        "may have a line end of its own. On a terminal, control characters and invisible ones are "
        "escaped.");
    m_page.paragraph(
        "With `--format jsonl`, each record is one object in one line. A command without records "
        "prints one line with its own members. A failure of the command is a line of the kind "
        "`failed`.");
    m_page.paragraph(
        "With several lists or a directory, a document has the counts of the run in place of the "
        "members about one list. Each record then begins with the path of its list. The record of "
        "a list that failed has `status` and `error` in place of its other members.");
  }

  void describeDocument(const std::string& name, const Json& document) {
    const Json& command = document.at("properties").at("command");
    if (command.contains("const")) {
      m_page.subsection(command.at("const").get<std::string>());
      m_page.paragraph(document.at("description").get<std::string>());
    } else {
      const std::vector<std::string> commands = wordsOf(command.at("enum"));
      const bool isCommand = std::find(commands.begin(), commands.end(), name) != commands.end();
      m_page.subsection(isCommand ? name : "other commands");
      m_page.paragraph(document.at("description").get<std::string>() +
                       " The value of `command` is one of: " + enumerated(choicesOf(command)) +
                       '.');
    }
    const auto isOwn = [&](const std::string& property) { return !isEverywhere(property); };
    const Json& properties = document.at("properties");
    if (std::any_of(properties.items().begin(), properties.items().end(),
                    [&](const auto& property) { return isOwn(property.key()); })) {
      list(document, isOwn);
    }
  }

  void describeRecord(const std::string& name, const Json& record) {
    m_page.subsection(name);
    m_page.paragraph(record.at("description").get<std::string>());
    list(record, [](const std::string&) { return true; });
  }

  void close() {
    m_page.section("FILES");
    m_page.beginList();
    m_page.item("Pa share/sitehlp/sitelist.schema.json",
                "The JSON Schema of all these documents, in the installation prefix.");
    m_page.endList();
    m_page.section("EXAMPLES");
    m_page.paragraph("The names of all sites that may be used:");
    m_page.literal({"sitelist show --format json | jq -r '.sites[] | select(.enabled).name'"});
    m_page.section("SEE ALSO");
    m_page.macro(".Xr sitelist 1");
    m_page.section("HISTORY");
    m_page.paragraph(
        "Version 2 added `changed` and `warnings`. Values with several texts became arrays: "
        "`exclusionList` of proxy settings, also as `value`, `before` and `after`; `exclusions` of "
        "`explain`; and all texts of `servers`. The JSON Schema of version 1 refused unknown "
        "names.");
  }

  const Json& m_schema;
  ManualPage m_page;
};

}  // namespace

std::string schemaPage(const std::string& schema, const std::string& date) {
  const Json parsed = Json::parse(schema);
  return SchemaPage(parsed, date).make();
}

}  // namespace tool
