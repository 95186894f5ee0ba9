#include "sitehlp/fields.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "tests/sitehlp/writer_fixture.h"

// The tables of fields, and what the library reads and writes, row by row.
namespace {

using sitehlp::FieldForm;
using sitehlp::FieldPlace;
using sitehlp::tag_Site;
using sitehlp::Written;
using testing::ElementsAreArray;
using testing::IsEmpty;

// A row without its types.
struct Row {
  std::string name;
  std::string xmlName;
  FieldPlace place;
  FieldForm form;
  Written written;
};

struct Kind {
  std::string element;
  sitehlp::SiteKind kind;
  std::vector<Row> rows;  // in the order of the table

  bool isProxy() const { return kind == sitehlp::SITE_KIND_PROXY; }
  bool isManagementServer() const { return element == "VestaSite"; }
};

template <typename Table>
std::vector<Row> rowsOf(const Table& table) {
  std::vector<Row> rows;
  std::apply(
      [&](const auto&... each) {
        (rows.push_back({each.name, each.xmlName ? test::narrow(*each.xmlName) : "", each.place,
                         each.form, each.written}),
         ...);
      },
      table);
  return rows;
}

const std::vector<Kind>& kinds() {
  static const std::vector<Kind> all = {
      {"HttpSite", sitehlp::SITE_KIND_HTTP, rowsOf(sitehlp::c_httpFields)},
      {"VestaSite", sitehlp::SITE_KIND_HTTP, rowsOf(sitehlp::c_serverFields)},
      {"KeystoneSite", sitehlp::SITE_KIND_HTTP, rowsOf(sitehlp::c_httpFields)},
      {"FTPSite", sitehlp::SITE_KIND_FTP, rowsOf(sitehlp::c_ftpFields)},
      {"UNCSite", sitehlp::SITE_KIND_UNC, rowsOf(sitehlp::c_uncFields)},
      {"LocalSite", sitehlp::SITE_KIND_LOCAL, rowsOf(sitehlp::c_localFields)},
      {"ProxyConfig", sitehlp::SITE_KIND_PROXY, rowsOf(sitehlp::c_proxyFields)},
  };
  return all;
}

using Values = std::map<std::string, std::wstring>;

Values valuesOf(const tag_Site& site) {
  Values values;
  sitehlp::eachFieldOf(site, [&](const auto& row, const auto& value) {
    if constexpr (std::is_arithmetic_v<std::remove_reference_t<decltype(value)>>) {
      values[row.name] = std::to_wstring(value);
    } else {
      values[row.name] = value;
    }
  });
  return values;
}

// The names of the fields that differ.
std::set<std::string> changes(const Values& before, const Values& after) {
  std::set<std::string> names;
  for (const auto& [name, value] : after) {
    if (before.at(name) != value) names.insert(name);
  }
  return names;
}

// Returns a value that is not the initial value of the field. Only flags share a value.
std::wstring sampleOf(const Row& row) {
  const auto number = std::to_wstring(1000 + std::hash<std::string>()(row.name) % 9000);
  switch (row.form) {
    case FieldForm::Flag:
      return L"1";
    case FieldForm::Number:
    case FieldForm::Port:
    case FieldForm::PortOrNone:
      return number;
    case FieldForm::Hosts:
      return L"one.example;two.example";
    default:
      return L"of-" + test::wide(row.name);
  }
}

class FieldTables : public test::WriterTest {
 protected:
  // The element with these attributes and children, in the list that a proxy configuration needs.
  static std::string documentOf(const Kind& kind, const std::string& attributes,
                                const std::string& children) {
    const std::string element =
        "<" + kind.element + attributes + ">" + children + "</" + kind.element + ">";
    return kind.isProxy() ? "<ProxyConfigList>" + element + "</ProxyConfigList>" : element;
  }

  Values read(const Kind& kind, const std::string& attributes, const std::string& children) {
    return valuesOf(*decode(documentOf(kind, attributes, children)));
  }

  // Reads a document that has only this field. An address always has a port. The port of a proxy is
  // used only with its server.
  Values readAlone(const Kind& kind, const Row& row) {
    const std::string value = test::narrow(sampleOf(row));
    switch (row.place) {
      case FieldPlace::Attribute: {
        std::string attributes = " " + row.xmlName + "=\"" + value + "\"";
        if (row.name == "httpProxyPort") attributes += " HttpProxyServer=\"proxy\"";
        if (row.name == "ftpProxyPort") attributes += " FtpProxyServer=\"proxy\"";
        return read(kind, attributes, "");
      }
      case FieldPlace::Host:
        return read(kind, " " + row.xmlName + "=\"" + value + ":80\"", "");
      case FieldPlace::Port:
        return read(kind, " " + row.xmlName + "=\":" + value + "\"", "");
      case FieldPlace::Child: {
        const std::string text =
            row.form == FieldForm::Password ? sealedUtf8(sampleOf(row)) : value;
        return read(kind, "", "<" + row.xmlName + ">" + text + "</" + row.xmlName + ">");
      }
      case FieldPlace::ExclusionHosts:
        return read(kind, "",
                    "<" + row.xmlName +
                        "><ExclusionHost>one.example</ExclusionHost>"
                        "<ExclusionHost>two.example</ExclusionHost></" +
                        row.xmlName + ">");
      case FieldPlace::None:
        break;
    }
    return read(kind, "", "");
  }

  // Returns a record with a sample in every field, or in no field.
  static tag_Site* record(const Kind& kind, bool isFull) {
    tag_Site* const site = test::newSite(kind.kind);
    if (isFull) {
      sitehlp::eachFieldOf(*site, [&](const auto& row, auto& value) {
        const std::wstring sample = sampleOf({row.name, "", row.place, row.form, row.written});
        if constexpr (std::is_arithmetic_v<std::remove_reference_t<decltype(value)>>) {
          value = static_cast<std::remove_reference_t<decltype(value)>>(std::stoul(sample));
        } else {
          test::put(value, sample);
        }
      });
    }
    if (kind.kind == sitehlp::SITE_KIND_HTTP) {
      test::put(site->http.szElement, test::wide(kind.element));
    }
    return site;
  }

  struct Element {
    std::vector<std::pair<std::string, std::string>> attributes;
    std::vector<std::pair<std::string, std::string>> children;
  };

  // Returns the element that is written for the record.
  Element written(const Kind& kind, bool isFull) {
    const std::string text = siteOf(record(kind, isFull));
    const std::size_t begin = text.find("<" + kind.element + " ") + kind.element.size() + 1;
    const std::size_t end = text.find('>', begin);
    Element element;
    collect(text.substr(begin, end - begin), R"_( (\w+)="([^"]*)")_", element.attributes);
    collect(text.substr(end), R"_(<(\w+)(?: [^>]*)?>([^<]*))_", element.children);
    return element;
  }

  static void collect(const std::string& text, const char* pattern,
                      std::vector<std::pair<std::string, std::string>>& found) {
    const std::regex regex(pattern);
    for (std::sregex_iterator at(text.begin(), text.end(), regex), end; at != end; ++at) {
      found.push_back({(*at)[1], (*at)[2]});
    }
  }

  // Returns the element that the table requires.
  static Element expected(const Kind& kind, bool isFull) {
    Element element;
    for (const Row& row : kind.rows) {
      if (!isWritten(kind, row, isFull)) continue;
      std::string value = test::narrow(sampleOf(row));
      if (!isFull) value = emptyValueOf(row);
      switch (row.place) {
        case FieldPlace::Attribute:
        case FieldPlace::Host:
          element.attributes.push_back({row.xmlName, value});
          break;
        case FieldPlace::Port:
          element.attributes.back().second += ":" + value;
          break;
        case FieldPlace::Child:
          element.children.push_back({row.xmlName, value});
          break;
        case FieldPlace::ExclusionHosts:
          element.children.push_back({row.xmlName, ""});
          if (isFull) element.children.push_back({"ExclusionHost", "one.example"});
          if (isFull) element.children.push_back({"ExclusionHost", "two.example"});
          break;
        case FieldPlace::None:
          ADD_FAILURE() << row.name << " has no place";
      }
      // Attributes that the writers add and that are not fields.
      if (row.name == "useIEConfig") element.attributes.push_back({"Local", "1"});
      if (row.name == "local" && kind.element == "LocalSite") {
        element.attributes.push_back({"Server", "127.0.0.1"});
      }
    }
    if (kind.isProxy() && !isFull) element.attributes.push_back({"Local", "1"});
    return element;
  }

  static bool isWritten(const Kind& kind, const Row& row, bool isFull) {
    switch (row.written) {
      case Written::Always:
        return true;
      case Written::WhenSet:
        return isFull;
      case Written::ByElement:
        return kind.isManagementServer() || (kind.element == "KeystoneSite" && isFull);
      case Written::Never:
        break;
    }
    return false;
  }

  static std::string emptyValueOf(const Row& row) {
    if (row.name == "type") return "repository";
    const bool isNumber =
        row.form == FieldForm::Flag || row.form == FieldForm::Number || isPort(row.form);
    return isNumber ? "0" : "";
  }
};

TEST(FieldForms, OfPortsAreNumbersAndNumbersAreNoTexts) {
  for (const FieldForm form : {FieldForm::Port, FieldForm::PortOrNone}) {
    EXPECT_TRUE(sitehlp::isPort(form));
    EXPECT_FALSE(sitehlp::isText(form));
  }
  for (const FieldForm form : {FieldForm::Flag, FieldForm::Number}) {
    EXPECT_FALSE(sitehlp::isPort(form));
    EXPECT_FALSE(sitehlp::isText(form));
  }
  for (const FieldForm form : {FieldForm::Text, FieldForm::MacroText, FieldForm::Address,
                               FieldForm::NetbiosName, FieldForm::Hosts, FieldForm::Password}) {
    EXPECT_FALSE(sitehlp::isPort(form));
    EXPECT_TRUE(sitehlp::isText(form));
  }
}

// Shows: site-fields
TEST_F(FieldTables, EveryRowIsReadByItself) {
  for (const Kind& kind : kinds()) {
    const Values nothing = read(kind, "", "");
    for (const Row& row : kind.rows) {
      if (row.place == FieldPlace::None) continue;
      SCOPED_TRACE(kind.element + " " + row.name);
      const Values values = readAlone(kind, row);
      EXPECT_EQ(values.at(row.name), sampleOf(row));
      std::set<std::string> others = changes(nothing, values);
      others.erase(row.name);
      // The reader derives these fields from the row. The document of a proxy port also has a
      // server.
      if (row.name == "exclusionList") others.erase("exclusionCount");
      if (kind.isProxy() && row.place == FieldPlace::Attribute) others.erase("element");
      if (row.name == "httpProxyPort") others.erase("httpProxyServer");
      if (row.name == "ftpProxyPort") others.erase("ftpProxyServer");
      EXPECT_THAT(others, IsEmpty());
    }
  }
}

// Shows: site-fields
TEST_F(FieldTables, NothingElseIsRead) {
  std::set<std::string> names = {"Unknown",      "ID",        "Port",        "Passive",
                                 "Encrypted",    "UseIPMask", "IPAddrStart", "LocalAddrRangeList",
                                 "ExclusionHost"};
  for (const Kind& kind : kinds()) {
    for (const Row& row : kind.rows) names.insert(row.xmlName);
  }
  names.erase("");
  for (const Kind& kind : kinds()) {
    const Values nothing = read(kind, "", "");
    std::set<std::string> attributes;
    std::set<std::string> children;
    for (const Row& row : kind.rows) {
      if (isInAttribute(row.place)) attributes.insert(row.xmlName);
      if (isChild(row.place)) children.insert(row.xmlName);
    }
    for (const std::string& name : names) {
      SCOPED_TRACE(kind.element + " " + name);
      if (!attributes.count(name)) {
        EXPECT_THAT(changes(nothing, read(kind, " " + name + "=\"1\"", "")), IsEmpty());
      }
      if (!children.count(name)) {
        EXPECT_THAT(changes(nothing, read(kind, "", "<" + name + ">1</" + name + ">")), IsEmpty());
      }
    }
  }
}

// Shows: site-fields
TEST_F(FieldTables, EveryRowIsWrittenInTheOrderOfTheTableAndNothingElse) {
  for (const Kind& kind : kinds()) {
    for (const bool isFull : {true, false}) {
      SCOPED_TRACE(kind.element + (isFull ? " full" : " empty"));
      const Element element = written(kind, isFull);
      const Element table = expected(kind, isFull);
      EXPECT_THAT(element.attributes, ElementsAreArray(table.attributes));
      EXPECT_THAT(element.children, ElementsAreArray(table.children));
    }
  }
}

// Returns the lines of the format document about an element, without the element's name in the
// first line.
std::string documented(const std::string& element) {
  const std::string page =
      test::readFile(std::string(TEST_SOURCE_DIR) + "/docs/site-list-format.md");
  const std::regex start("\n" + element + " +(?:= <" + element + " )?");
  std::smatch found;
  EXPECT_TRUE(std::regex_search(page, found, start)) << element;
  const std::string rest = found.suffix();
  static const std::regex c_next("\n(?! )");
  std::smatch next;
  std::regex_search(rest, next, c_next);
  return next.prefix();
}

// Returns the name of the value format in docs/site-list-format.md for this form.
std::string wordOf(const Kind& kind, const Row& row) {
  switch (row.form) {
    case FieldForm::Address:
    case FieldForm::NetbiosName:
      return "address";
    case FieldForm::Flag:
      return "flag";
    case FieldForm::Number:
      return "number";
    case FieldForm::PortOrNone:
      return kind.isProxy() ? "number" : "port";
    default:
      return row.place == FieldPlace::Attribute ? "text" : "";
  }
}

// Shows: site-fields
TEST_F(FieldTables, FormatDocumentHasTheRowsOfEveryKind) {
  for (const Kind& kind : kinds()) {
    SCOPED_TRACE(kind.element);
    std::string text = documented(kind.element);
    const bool isLikeHttp = text.find("as HttpSite") == 0;
    const std::string whole = isLikeHttp ? documented("HttpSite") : text;
    if (isLikeHttp) text += whole;
    using Names = std::map<std::string, std::string>;
    Names attributes;
    static const std::regex c_attribute(R"_(\[(\w+)(?: (\w+)|(="1"))?\])_");
    for (std::sregex_iterator at(text.begin(), text.end(), c_attribute), end; at != end; ++at) {
      attributes[(*at)[1]] = (*at)[3].matched ? "fixed" : (*at)[2].str();
    }
    Names children;
    const std::string below = std::regex_replace(whole, std::regex(R"_(\[[^\]]*\]>?)_"), "");
    static const std::regex c_child(R"_((\w+)(?:\((\w+)\))?)_");
    for (std::sregex_iterator at(below.begin(), below.end(), c_child), end; at != end; ++at) {
      children[(*at)[1]] = (*at)[2];
    }
    // Names that are not fields.
    EXPECT_EQ(attributes.erase("ServerDNS"), kind.element == "KeystoneSite" ? 1U : 0U);
    EXPECT_EQ(attributes.erase("Local"), kind.isProxy() ? 1U : 0U);
    Names expectedAttributes;
    Names expectedChildren;
    for (const Row& row : kind.rows) {
      const bool isCommon = row.name == "type" || row.name == "name" || row.name == "order" ||
                            row.name == "enabled" || row.name == "local";
      if (isCommon && !kind.isProxy()) continue;
      if (isChild(row.place)) expectedChildren[row.xmlName] = wordOf(kind, row);
      if (isInAttribute(row.place) && row.place != FieldPlace::Port) {
        expectedAttributes[row.xmlName] = isCommon ? "" : wordOf(kind, row);
      }
    }
    EXPECT_EQ(attributes, expectedAttributes);
    EXPECT_EQ(children, expectedChildren);
  }
}

TEST_F(FieldTables, EveryKindIsListed) {
  for (std::int32_t kind = -3; kind < 100; ++kind) {
    tag_Site* const site = test::newSite(static_cast<sitehlp::SiteKind>(kind));
    const test::ListPtr owner(site);
    const bool isKnown = valuesOf(*site).count("name") != 0;
    EXPECT_EQ(std::count(std::begin(sitehlp::c_siteKinds), std::end(sitehlp::c_siteKinds), kind),
              isKnown ? 1 : 0)
        << kind;
    EXPECT_EQ(std::any_of(kinds().begin(), kinds().end(),
                          [&](const Kind& each) { return each.kind == kind; }),
              isKnown)
        << kind;
  }
}

TEST_F(FieldTables, NoKindHasANameTwice) {
  for (const Kind& kind : kinds()) {
    std::set<std::string> names;
    for (const Row& row : kind.rows) EXPECT_TRUE(names.insert(row.name).second) << row.name;
  }
}

}  // namespace
