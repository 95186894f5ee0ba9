#include "tools/sitelist/edit/new_value.h"

#include <algorithm>
#include <cstdlib>

#include "platform/common/astring.h"
#include "platform/common/text.h"
#include "sitehlp/common/document_values.h"
#include "sitehlp/xmlschema/sitelist.h"
#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/cli/matching.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/model/kinds.h"
#include "tools/sitelist/model/site_report.h"

namespace tool {
namespace {

namespace schema = korvel_com::orb::xmlschema::sitelist;

// The reader counts a delimiter even for the first host.
constexpr std::size_t c_hostsLimit = sitehlp::c_exclusionLimit;

[[noreturn]] void refuse(const DocumentField& field, const std::string& what,
                         const std::string& advice) {
  throw Failure(exitUsage, std::string(field.name) + ": " + what, advice);
}

bool isXmlCharacter(wchar_t c) {
  return c == L'\t' || c == L'\n' || c == L'\r' || (c >= 0x20 && c != 0xFFFE && c != 0xFFFF);
}

std::wstring checkedText(const DocumentField& field, const std::string& value) {
  const std::wstring text = wide(value);
  if (narrow(text) != value) refuse(field, "the value is not valid UTF-8", "give it as UTF-8");
  if (!std::all_of(text.begin(), text.end(), isXmlCharacter)) {
    refuse(field, "the value has a character that XML does not allow",
           "leave the control characters out");
  }
  const auto limit = static_cast<std::size_t>(field.limit);
  if (field.form != FieldForm::Hosts && text.size() > limit) {
    refuse(field, "the value has " + std::to_string(text.size()) + " characters",
           "give at most " + std::to_string(limit) + "; the agent cuts the rest");
  }
  if (field.form == FieldForm::NetbiosName && text.find(L'.') != std::wstring::npos) {
    refuse(field, "a computer name must not have a dot", "give only the part before the first dot");
  }
  return text;
}

// Refuses an unknown type, because a misspelt one has no meaning.
std::wstring checkedType(const DocumentField& field, const std::wstring& type) {
  std::string known;
  for (const wchar_t* each :
       {schema::STR_SITE_TYPE_MASTER, schema::STR_SITE_TYPE_REPOSITORY,
        schema::STR_SITE_TYPE_MIRROR, c_fallbackType, schema::STR_SITE_TYPE_REMEDIATION}) {
    if (wcsicmp(type.c_str(), each) == 0) return type;
    known += (known.empty() ? "" : ", ") + narrow(each);
  }
  refuse(field, "\"" + shown(type) + "\" is not a type of sites", "use one of " + known);
}

std::wstring checkedHost(const DocumentField& field, const std::wstring& host) {
  if (host.find_first_of(L" \t\r\n") != std::wstring::npos) {
    refuse(field, "\"" + shown(host) + "\" has white space", "give the host without it");
  }
  return host;
}

// Returns the hosts in the form of a record, without empty ones.
std::wstring checkedHosts(const DocumentField& field, const std::wstring& text) {
  std::wstring hosts;
  std::size_t begin = 0;
  while (begin <= text.size()) {
    const std::size_t end = std::min(text.find(L';', begin), text.size());
    if (end != begin) {
      if (hosts.size() + (end - begin) + 1 >= c_hostsLimit) {
        const std::size_t most = c_hostsLimit - (hosts.empty() ? 2 : 1);
        refuse(field, hosts.empty() ? "the host is too long" : "there are too many hosts",
               "give at most " + std::to_string(most) + " characters; the agent drops the rest");
      }
      if (!hosts.empty()) hosts += L';';
      hosts.append(text, begin, end - begin);
    }
    begin = end + 1;
  }
  return hosts;
}

std::wstring checkedFlag(const DocumentField& field, const std::string& value) {
  if (value == "1" || value == "true") return L"1";
  if (value == "0" || value == "false") return L"0";
  refuse(field, "\"" + shown(value) + "\" is not a flag", "give 1, 0, true or false");
}

std::wstring checkedNumber(const DocumentField& field, const std::string& value) {
  constexpr std::size_t c_maxDigits = 18;
  const std::int64_t least = field.form == FieldForm::Port ? 1 : 0;
  const bool isNumber = !value.empty() && value.size() <= c_maxDigits &&
                        value.find_first_not_of("0123456789") == std::string::npos;
  const std::int64_t number = isNumber ? std::strtoll(value.c_str(), nullptr, 10) : -1;
  if (number < least || number > field.limit) {
    refuse(field, "\"" + shown(value) + "\" is not a valid number",
           "give a number from " + std::to_string(least) + " to " + std::to_string(field.limit));
  }
  return std::to_wstring(number);
}

bool isPasswordName(const std::string& name) {
  for (const NamedKind& kind : c_kinds) {
    const DocumentField* const field = findField(*findKind(kind.name), name);
    if (field && field->form == FieldForm::Password) return true;
  }
  return false;
}

[[noreturn]] void refuseField(const DocumentKind& kind, const std::string& name) {
  if (name == "name") {
    throw Failure(exitUsage, "the field \"name\" cannot be set",
                  "use `sitelist edit rename OLD NEW`");
  }
  const std::vector<std::string>& known = siteFieldNames();
  const bool isKnown = std::find(known.begin(), known.end(), name) != known.end();
  const std::string field = "field \"" + shown(name) + "\"";
  const std::string kindName = kind.name;
  std::vector<std::string> settable;
  for (const DocumentField& each : kind.fields) {
    if (each.name && each.name != std::string("name")) settable.emplace_back(each.name);
  }
  throw Failure(exitUsage,
                isKnown ? "a site of kind " + kindName + " has no " + field + " that can be set"
                        : "unknown " + field + suggestion(name, settable),
                "use one of the fields of kind " + kindName + ":\n" + fieldNames(kind, "  "));
}

NewValue parse(const DocumentKind& kind, const std::string& assignment, std::size_t number) {
  const std::size_t equals = assignment.find('=');
  // A word without "=" may be a mistyped password, so the message does not repeat it.
  if (equals == std::string::npos) {
    throw Failure(exitUsage, "FIELD=VALUE number " + std::to_string(number) + " has no \"=\"",
                  "give every field as FIELD=VALUE");
  }
  const std::string name = assignment.substr(0, equals);
  if (isPasswordName(name)) {
    throw Failure(
        exitUsage,
        name +
            ": a password must not be on the command line, because other users can read it there",
        std::string("use --password-stdin or --password-file FILE") +
            (name == "password" ? "" : " with --password-field " + name));
  }
  const DocumentField* const field = findField(kind, name);
  if (!field || name == "name") refuseField(kind, name);
  return textValue(*field, assignment.substr(equals + 1));
}

NewValue givenPassword(const DocumentKind& kind, const GivenPassword& password) {
  const DocumentField* const field = findField(kind, password.field);
  if (field && field->form == FieldForm::Password)
    return {field, *password.protectedText, password.clear};
  std::string names;
  for (const DocumentField& each : kind.fields) {
    if (each.form == FieldForm::Password)
      names += (names.empty() ? "" : ", ") + std::string(each.name);
  }
  throw Failure(exitUsage,
                "\"" + shown(password.field) + "\" is not a password field of kind " + kind.name,
                "use one of these with --password-field: " + names);
}

}  // namespace

std::int64_t NewValue::number() const { return std::wcstoll(text.c_str(), nullptr, 10); }

Field NewValue::recordField() const {
  switch (field->form) {
    case FieldForm::Flag:
      return {field->name, number() != 0};
    case FieldForm::Number:
    case FieldForm::Port:
    case FieldForm::PortOrNone:
      return {field->name, number()};
    default:
      return {field->name, (clear ? *clear : text).c_str(), field->form == FieldForm::Password};
  }
}

NewValue initialValue(const DocumentField& field) { return {&field, field.initial}; }

NewValue numberValue(const DocumentField& field, std::int64_t number) {
  return {&field, std::to_wstring(number)};
}

NewValue textValue(const DocumentField& field, const std::string& value) {
  switch (field.form) {
    case FieldForm::Flag:
      return {&field, checkedFlag(field, value)};
    case FieldForm::Number:
    case FieldForm::Port:
    case FieldForm::PortOrNone:
      return {&field, checkedNumber(field, value)};
    case FieldForm::Hosts:
      return {&field, checkedHosts(field, checkedText(field, value))};
    default:
      break;
  }
  const std::wstring text = checkedText(field, value);
  if (field.place == FieldPlace::Host) return {&field, checkedHost(field, text)};
  const bool isType = field.xmlName == schema::WX_XML_SITE_TYPE;
  return {&field, isType ? checkedType(field, text) : text};
}

bool hasValue(const sitehlp::tag_Site& site, const NewValue& value) {
  for (const Field& field : fieldsOf(site)) {
    if (value.field->name == std::string(field.name)) return isSame(field, value.recordField());
  }
  return false;
}

std::vector<NewValue> newValues(const DocumentKind& kind,
                                const std::vector<std::string>& assignments,
                                const GivenPassword& password) {
  std::vector<NewValue> values;
  for (const std::string& assignment : assignments) {
    NewValue value = parse(kind, assignment, values.size() + 1);
    const bool isTwice = std::any_of(values.begin(), values.end(), [&](const NewValue& before) {
      return before.field == value.field;
    });
    if (isTwice) refuse(*value.field, "given twice", "give every field once");
    values.push_back(std::move(value));
  }
  if (password.clear) values.push_back(givenPassword(kind, password));
  return values;
}

void refusePortAlone(const sitehlp::tag_Site* record, const std::vector<NewValue>& values) {
  const DocumentKind& kind = *findKind("proxy");
  for (const auto& [port, server] : {std::pair("httpProxyPort", "httpProxyServer"),
                                     std::pair("ftpProxyPort", "ftpProxyServer")}) {
    const DocumentField* const serverField = findField(kind, server);
    bool hasPort = false;
    bool hasServer = record && record->eSiteKind == sitehlp::SITE_KIND_PROXY &&
                     !hasValue(*record, initialValue(*serverField));
    for (const NewValue& value : values) {
      if (value.field == findField(kind, port)) hasPort = value.number() != 0;
      if (value.field == serverField) hasServer = !value.text.empty();
    }
    if (!hasPort || hasServer) continue;
    throw Failure(exitUsage, std::string(port) + ": there is no " + server + " for this port",
                  std::string("set ") + server + " as well");
  }
}

}  // namespace tool
