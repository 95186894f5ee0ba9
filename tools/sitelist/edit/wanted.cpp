#include "tools/sitelist/edit/wanted.h"

#include <algorithm>
#include <cstdlib>

#include "platform/common/astring.h"
#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/cli/text.h"

namespace tool {
namespace {

// What the reader of a record takes: it counts a delimiter even for the first host.
constexpr std::size_t c_hostsLimit = 4000;

[[noreturn]] void refuse(const FieldRule& rule, const std::string& what,
                         const std::string& advice) {
  throw Failure(exitUsage, std::string(rule.name) + ": " + what, advice);
}

bool isXmlCharacter(wchar_t c) {
  return c == L'\t' || c == L'\n' || c == L'\r' || (c >= 0x20 && c != 0xFFFE && c != 0xFFFF);
}

std::wstring checkedText(const FieldRule& rule, const std::string& value) {
  const std::wstring text = wide(value);
  if (narrow(text) != value) refuse(rule, "the value is not valid UTF-8", "give it as UTF-8");
  if (!std::all_of(text.begin(), text.end(), isXmlCharacter)) {
    refuse(rule, "the value has a character that XML does not allow",
           "leave the control characters out");
  }
  const auto limit = static_cast<std::size_t>(rule.limit);
  if (rule.form != FieldForm::Hosts && text.size() > limit) {
    refuse(rule, "the value has " + std::to_string(text.size()) + " characters",
           "give at most " + std::to_string(limit) + "; the agent would cut the rest");
  }
  if (rule.form == FieldForm::NetbiosName && text.find(L'.') != std::wstring::npos) {
    refuse(rule, "a NetBIOS name must not have a dot", "give only the part before the first dot");
  }
  return text;
}

// The hosts as a record has them, without empty ones.
std::wstring checkedHosts(const FieldRule& rule, const std::wstring& text) {
  std::wstring hosts;
  std::size_t begin = 0;
  while (begin <= text.size()) {
    const std::size_t end = std::min(text.find(L';', begin), text.size());
    if (end != begin) {
      if (hosts.size() + (end - begin) + 1 >= c_hostsLimit) {
        refuse(rule, "there are too many hosts",
               "give less than " + std::to_string(c_hostsLimit - 1) +
                   " characters; the agent would drop the rest");
      }
      if (!hosts.empty()) hosts += L';';
      hosts.append(text, begin, end - begin);
    }
    begin = end + 1;
  }
  return hosts;
}

std::wstring checkedFlag(const FieldRule& rule, const std::string& value) {
  if (value == "1" || value == "true") return L"1";
  if (value == "0" || value == "false") return L"0";
  refuse(rule, "\"" + shown(value) + "\" is not a flag", "give 1, 0, true or false");
}

std::wstring checkedNumber(const FieldRule& rule, const std::string& value) {
  constexpr std::size_t c_maxDigits = 18;
  const std::int64_t least = rule.form == FieldForm::Port ? 1 : 0;
  const bool isNumber = !value.empty() && value.size() <= c_maxDigits &&
                        value.find_first_not_of("0123456789") == std::string::npos;
  const std::int64_t number = isNumber ? std::strtoll(value.c_str(), nullptr, 10) : -1;
  if (number < least || number > rule.limit) {
    refuse(rule, "\"" + shown(value) + "\" is not a valid number",
           "give a number from " + std::to_string(least) + " to " + std::to_string(rule.limit));
  }
  return std::to_wstring(number);
}

bool isPasswordName(const std::string& name) {
  for (const std::string& kind : kinds()) {
    const FieldRule* const rule = findField(*findRules(kind), name);
    if (rule && rule->form == FieldForm::Password) return true;
  }
  return false;
}

[[noreturn]] void refuseField(const KindRules& rules, const std::string& name) {
  if (name == "name") {
    throw Failure(exitUsage, "the name is not set as a field",
                  "use `sitelist edit rename OLD NEW`");
  }
  throw Failure(exitUsage,
                "\"" + shown(name) + "\" is not a field that can be set; the fields of kind " +
                    rules.kind + " are\n" + fieldNames(rules, "  "),
                "use one of them");
}

Wanted parse(const KindRules& rules, const std::string& assignment) {
  const std::size_t equals = assignment.find('=');
  // What has no "=" may be a password that was mistyped, so it is not repeated.
  if (equals == std::string::npos) {
    throw Failure(exitUsage, "an argument has no \"=\"", "give every field as FIELD=VALUE");
  }
  const std::string name = assignment.substr(0, equals);
  if (isPasswordName(name)) {
    throw Failure(
        exitUsage,
        name + ": a password does not belong on the command line, where everybody can see it",
        std::string("use --password-stdin or --password-file FILE") +
            (name == "password" ? "" : " with --password-field " + name));
  }
  const FieldRule* const rule = findField(rules, name);
  if (!rule || name == "name") refuseField(rules, name);
  return wantedText(*rule, assignment.substr(equals + 1));
}

Wanted givenPassword(const KindRules& rules, const GivenPassword& password) {
  const FieldRule* const rule = findField(rules, password.field);
  if (rule && rule->form == FieldForm::Password)
    return {rule, *password.protectedText, password.clear};
  std::string names;
  for (const FieldRule& each : rules.fields) {
    if (each.form == FieldForm::Password)
      names += (names.empty() ? "" : ", ") + std::string(each.name);
  }
  throw Failure(exitUsage,
                "\"" + shown(password.field) + "\" is not a password field of kind " + rules.kind,
                "use one of these with --password-field: " + names);
}

}  // namespace

std::int64_t Wanted::number() const { return std::wcstoll(text.c_str(), nullptr, 10); }

Field Wanted::field() const {
  switch (rule->form) {
    case FieldForm::Flag:
      return {rule->name, number() != 0};
    case FieldForm::Number:
    case FieldForm::Port:
    case FieldForm::PortOrNone:
      return {rule->name, number()};
    default:
      return {rule->name, (clear ? *clear : text).c_str(), rule->form == FieldForm::Password};
  }
}

Wanted initialValue(const FieldRule& rule) { return {&rule, rule.initial}; }

Wanted wantedNumber(const FieldRule& rule, std::int64_t number) {
  return {&rule, std::to_wstring(number)};
}

Wanted wantedText(const FieldRule& rule, const std::string& value) {
  switch (rule.form) {
    case FieldForm::Flag:
      return {&rule, checkedFlag(rule, value)};
    case FieldForm::Number:
    case FieldForm::Port:
    case FieldForm::PortOrNone:
      return {&rule, checkedNumber(rule, value)};
    case FieldForm::Hosts:
      return {&rule, checkedHosts(rule, checkedText(rule, value))};
    default:
      return {&rule, checkedText(rule, value)};
  }
}

bool has(const sitehlp::tag_Site& site, const Wanted& wanted) {
  for (const Field& field : fieldsOf(site)) {
    if (wanted.rule->name == std::string(field.name)) return isSame(field, wanted.field());
  }
  return false;
}

std::vector<Wanted> wantedFields(const KindRules& rules,
                                 const std::vector<std::string>& assignments,
                                 const GivenPassword& password) {
  std::vector<Wanted> wanted;
  for (const std::string& assignment : assignments) {
    Wanted value = parse(rules, assignment);
    const bool isTwice = std::any_of(wanted.begin(), wanted.end(), [&](const Wanted& before) {
      return before.rule == value.rule;
    });
    if (isTwice) refuse(*value.rule, "given twice", "give every field once");
    wanted.push_back(std::move(value));
  }
  if (password.clear) wanted.push_back(givenPassword(rules, password));
  return wanted;
}

void refusePortAlone(const sitehlp::tag_Site* record, const std::vector<Wanted>& values) {
  const KindRules& rules = *findRules("proxy");
  for (const auto& [port, server] : {std::pair("httpProxyPort", "httpProxyServer"),
                                     std::pair("ftpProxyPort", "ftpProxyServer")}) {
    const FieldRule* const serverRule = findField(rules, server);
    bool hasPort = false;
    bool hasServer = record && record->eSiteKind == sitehlp::SITE_KIND_PROXY &&
                     !has(*record, initialValue(*serverRule));
    for (const Wanted& value : values) {
      if (value.rule == findField(rules, port)) hasPort = value.number() != 0;
      if (value.rule == serverRule) hasServer = !value.text.empty();
    }
    if (!hasPort || hasServer) continue;
    throw Failure(exitUsage, std::string(port) + ": there is no " + server + " for this port",
                  std::string("set ") + server + " as well");
  }
}

}  // namespace tool
