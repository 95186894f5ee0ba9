#include "tests/resilience/workshop.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <stdexcept>

#include "host/crypto/sealed_value.h"
#include "sitehlp/sites_helper.h"
#include "tests/import/documents.h"
#include "tests/support/server_password.h"

namespace fs = std::filesystem;

namespace test {

const std::string c_canary = "Canary-7f3a9c-Geheim";

namespace {

constexpr const char* c_memoryDisk = "/dev/shm";
std::string sealedForAgent(const std::string& clear) {
  std::wstring sealed;
  if (sitehlp::CSitesHelper(true).EncryptPassword(wide(clear), sealed) == 0) {
    throw std::runtime_error("the agent has no password key");
  }
  return narrow(sealed);
}

std::string credentials(const std::string& sealed) {
  return "<UserName>user</UserName><Password Encrypted=\"1\">" + sealed + "</Password>";
}

std::string repositories(const std::string& tag, const std::string& sealed,
                         const std::string& local) {
  const std::string common = R"(Type="repository" Enabled="1" Local=")" + local + "\" ";
  const std::string secret = credentials(sealed);
  std::string text;
  text += element("HttpSite", tag + "http",
                  common + R"(Order="4" Server="h.example:8080" SecurePort="8443")",
                  "<UseAuth>1</UseAuth>" + secret);
  text += element("FTPSite", tag + "ftp", common + R"(Order="5" Server="f.example:21")", secret);
  text += element("UNCSite", tag + "unc", common + R"(Order="6" Server="u")",
                  "<ShareName>s</ShareName><DomainName>d</DomainName>" + secret);
  text += element("LocalSite", tag + "local", common + R"(Order="7")", secret);
  return text;
}

std::string vendorSites(const std::string& path) {
  return std::string(
             R"(<HttpSite Type="repository" Name="WexHttp" Order="1" Enabled="1" Local="0")") +
         " Server=\"" VENDOR_HTTP_HOST ":80\"><RelativePath>" + path +
         R"(</RelativePath></HttpSite>)" +
         R"(<FTPSite Type="repository" Name="WexFtp" Order="2" Enabled="1" Local="0")" +
         " Server=\"" VENDOR_FTP_HOST ":21\"><RelativePath>" + path + "</RelativePath></FTPSite>";
}

// The password of the HTTP proxy is encrypted with the password key in every document.
std::string proxies(const std::string& ofHttpProxy, const std::string& ofOthers) {
  std::string text =
      R"(<ProxyConfigList><ProxyConfig Name="p" HttpProxyServer="p.example" HttpProxyPort="3128")"
      R"( FtpProxyServer="q.example" FtpProxyPort="3129"><HttpProxyUser>u</HttpProxyUser>)";
  for (const char* name : {"HttpProxyPassword", "FtpProxyPassword", "AlternateHttpProxyPassword",
                           "AlternateFtpProxyPassword"}) {
    const bool isOfHttpProxy = std::string(name) == "HttpProxyPassword";
    text += std::string("<") + name + " Encrypted=\"1\">" +
            (isOfHttpProxy ? ofHttpProxy : ofOthers) + "</" + name + ">";
  }
  return text +
         "<ExclusionList><ExclusionHost>x.example</ExclusionHost></ExclusionList>"
         "</ProxyConfig></ProxyConfigList>";
}

std::string bundle(const std::string& tag) {
  return "<CaBundle><CaCertificate>" + tag + " certificate</CaCertificate></CaBundle>";
}

std::string versions(const std::string& tag) {
  return "GlobalVersion=\"G" + tag + "\" LocalVersion=\"L" + tag +
         "\" Type=\"Client\" FipsMode=\"0\"";
}

// Replaces the text between each `open` and the next `close`.
void blank(std::string& text, const std::string& open, char close) {
  for (std::size_t at = text.find(open); at != std::string::npos; at = text.find(open, at)) {
    at += open.size();
    const std::size_t end = text.find(close, at);
    if (end == std::string::npos) return;
    text.erase(at, end - at);
  }
}

constexpr std::size_t c_stampLength = 14;

void blankStamps(std::string& text) {
  std::size_t run = 0;
  for (std::size_t i = 0; i <= text.size(); ++i) {
    if (i < text.size() && text[i] >= '0' && text[i] <= '9') {
      ++run;
      continue;
    }
    if (run == c_stampLength) {
      text.replace(i - run, run, "#");
      i -= run - 1;
    }
    run = 0;
  }
}

std::string normal(std::string text) {
  for (const char* mark : {"Password Encrypted=\"1\">", "Password>"}) blank(text, mark, '<');
  // An element without text is written with a tag of its own.
  const std::string empty = "Password Encrypted=\"1\" />";
  for (std::size_t at = text.find(empty); at != std::string::npos; at = text.find(empty, at)) {
    const std::size_t start = text.rfind('<', at) + 1;
    const std::string name = text.substr(start, at - start) + "Password";
    text.replace(at, empty.size(), "Password Encrypted=\"1\"></" + name + ">");
    at += empty.size();
  }
  blankStamps(text);
  return text;
}

std::string withoutCertificates(std::string text) {
  const std::size_t start = text.find("<CaBundle>");
  const std::string end = "</CaBundle>";
  const std::size_t stop = text.find(end);
  if (start == std::string::npos || stop == std::string::npos) return text;
  return text.erase(start, stop + end.size() - start);
}

}  // namespace

std::string normalForm(const std::string& path, const std::string& bytes) {
  // The keys differ but have the same length.
  return fs::path(path).extension() == ".key" ? std::string(bytes.size(), 'k') : normal(bytes);
}

bool isTemporaryFile(const std::string& path) {
  return fs::path(path).filename().string().rfind(".sitehlp-", 0) == 0;
}

bool isLockFile(const std::string& path) {
  return fs::path(path).parent_path().filename() == "locks";
}

bool useMemoryDisk() {
  if (!std::getenv("TMPDIR") && ::access(c_memoryDisk, W_OK) == 0) {
    ::setenv("TMPDIR", c_memoryDisk, 0);
  }
  return true;
}

Workshop::Workshop() : agent((useMemoryDisk(), false)) {
  agent.settings.meshLoadCommand.clear();
  agent.settings.logLevel = LogLevel::Error;
  agent.apply();
  const std::string data = agent.dataDirectory();
  // The key is created before the operations, as part of the first state.
  const std::string sealed = sealedForAgent(c_canary);
  add(data + "/keystore/password.key", readFile(data + "/keystore/password.key"));
  add(data + "/keystore/server.key", std::string(host::c_keySize, 'k'));

  add(own(),
      document(vendorSites("old") + repositories("old", sealed, "1") +
                   serverElement("oldserver", "5.0") + proxies(sealed, sealed),
               bundle("old"), versions("1"), policies("Policy", "old")),
      0640);
  for (const char* key : c_keyFileNames) {
    add(agent.etc(key), std::string("old ") + key);
    add(m_work.file("in/") + key, incomingKey(key));
  }
  add(agent.dataDirectory() + "/etc\\agentfipsmode", "0");
  add(m_work.file("in\\agentfipsmode"), "1");
  add(incoming(), document(vendorSites("new") + serverElement("newserver", "5.1", "3") +
                               repositories("new", sealed, "0") + proxies(sealed, sealed),
                           bundle("new") + policies("Policy", "new"), versions("2")));
  add(keyDirectory() + "/srpubkey.bin", "another srpubkey.bin");
  add(plainIncoming(), document(vendorSites("plain") + repositories("plain", sealed, "0"),
                                bundle("plain"), versions("3")));
  add(data + "/mesh/SiteList.xml", document(httpElement("oldmesh")));
  add(data + "/ServerSiteList.xml", document(httpElement("oldserverlist")));
  add(scratchRoot() + "/etc/SiteList.xml", document(httpElement("oldscratch")));
  reset();
  m_incomingText = wide(readFile(incoming()));

  const std::string byServer = sealServerPassword(c_canary);
  m_serverBuffer = document(repositories("served", byServer, "0") + proxies(sealed, byServer),
                            bundle("served"), versions("4"));
}

void Workshop::add(const std::string& path, const std::string& bytes, mode_t mode) {
  m_initial[path] = {bytes, mode};
}

void Workshop::reset() {
  for (const std::string& root : roots()) {
    std::vector<fs::path> others;
    for (const auto& entry : fs::recursive_directory_iterator(root)) {
      if (!entry.is_directory() && m_initial.count(entry.path().string()) == 0 &&
          !isLockFile(entry.path().string())) {
        others.push_back(entry.path());
      }
    }
    for (const fs::path& path : others) fs::remove(path);
  }
  for (const auto& [path, file] : m_initial) {
    struct stat info {};
    const bool there = ::lstat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode);
    if (there && (info.st_mode & 07777) == file.mode && readFile(path) == file.bytes) continue;
    writeFile(path, file.bytes, file.mode);
  }
  fs::permissions(keystore(), fs::perms::owner_all);
}

void Workshop::reset(const Operation& operation) {
  reset();
  if (operation.prepare) operation.prepare(*this);
}

State Workshop::state() const {
  State state;
  for (const std::string& root : roots()) {
    for (const auto& entry : fs::recursive_directory_iterator(root)) {
      const std::string path = entry.path().string();
      if (!entry.is_regular_file() || isTemporaryFile(path) || isLockFile(path)) continue;
      state[path] = normalForm(path, readFile(path));
    }
  }
  return state;
}

std::vector<std::string> Workshop::temporaryFiles() const {
  std::vector<std::string> found;
  for (const std::string& root : roots()) {
    for (const auto& entry : fs::recursive_directory_iterator(root)) {
      if (isTemporaryFile(entry.path().string())) found.push_back(entry.path().string());
    }
  }
  return found;
}

std::map<std::string, mode_t> Workshop::modes() const {
  std::map<std::string, mode_t> modes;
  for (const std::string& root : roots()) {
    for (const auto& entry : fs::recursive_directory_iterator(root)) {
      struct stat info {};
      if (::lstat(entry.path().c_str(), &info) == 0) {
        modes[entry.path().string()] = info.st_mode & 07777;
      }
    }
  }
  return modes;
}

std::ptrdiff_t Workshop::openDescriptors() {
  agent.apply();
  const fs::directory_iterator all("/dev/fd");
  return std::distance(begin(all), end(all));
}

std::string mixture(const State& now, const State& before, const State& after,
                    bool certificatesMayBeMissing) {
  std::set<std::string> paths;
  for (const State* state : {&now, &before, &after}) {
    for (const auto& file : *state) paths.insert(file.first);
  }
  const auto at = [](const State& state, const std::string& path) {
    const auto found = state.find(path);
    return found == state.end() ? nullptr : &found->second;
  };
  const auto same = [](const std::string* a, const std::string* b) {
    return a == b || (a && b && *a == *b);
  };
  for (const std::string& path : paths) {
    const std::string* const is = at(now, path);
    const std::string* const fresh = at(after, path);
    if (same(is, at(before, path)) || same(is, fresh)) continue;
    if (certificatesMayBeMissing && is && fresh && *is == withoutCertificates(*fresh)) continue;
    return path + (is ? " holds: " + *is : " is missing");
  }
  return std::string();
}

}  // namespace test
