#include "tests/resilience/hostile_documents.h"

#include <pthread.h>
#include <time.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <functional>
#include <sstream>

#include "sitehlp/sites_helper.h"
#include "tests/import/documents.h"
#include "tests/import/records.h"
#include "tests/support/child_process.h"

namespace test {
namespace {

// A document of records is smaller by this factor, because its records take many times its size.
constexpr std::size_t c_fewer = 32;

constexpr std::size_t c_stackBytes = std::size_t{256} << 10;

std::string repeated(const std::string& text, std::size_t bytes) {
  std::string result;
  result.reserve(bytes + text.size());
  while (result.size() < bytes) result += text;
  return result;
}

std::string numbered(const std::string& before, const std::string& after, std::size_t bytes,
                     std::size_t most = ~std::size_t{0}) {
  std::string result;
  for (std::size_t i = 0; result.size() < bytes && i < most; ++i) {
    result += before + std::to_string(i) + after;
  }
  return result;
}

std::string inSite(const std::string& content) {
  return document("<HttpSite Name=\"n\" Server=\"s:80\">" + content + "</HttpSite>");
}
std::string inProxy(const std::string& content) {
  return document("<ProxyConfigList><ProxyConfig>" + content + "</ProxyConfig></ProxyConfigList>");
}

std::string nested(std::size_t depth) {
  std::string text;
  for (std::size_t i = 0; i < depth; ++i) text += "<a>";
  for (std::size_t i = 0; i < depth; ++i) text += "</a>";
  return text;
}

// Each element as deep as is allowed, and as many of them as fit.
std::string deepTrees(std::size_t bytes) { return inSite(repeated(nested(250), bytes)); }

std::string fullElements(std::size_t bytes) {
  return inSite(repeated("<a " + numbered("a", "='' ", ~std::size_t{0}, 1000) + "/>", bytes));
}

std::string laughs(std::size_t bytes) {
  std::string text = "<!DOCTYPE l [<!ENTITY e0 \"" + std::string(bytes, 'x') + "\">";
  for (int i = 1; i < 10; ++i) {
    text += "<!ENTITY e" + std::to_string(i) + " \"" +
            repeated("&e" + std::to_string(i - 1) + ";", 40) + "\">";
  }
  return text + "]><l>&e9;</l>";
}

std::string wideUnits(std::size_t bytes, std::size_t unit, bool big, const std::string& tail) {
  const std::string ascii =
      inSite("<RelativePath>" + repeated("<!--x-->y", bytes / unit) + "</RelativePath>");
  std::string text;
  for (const char c : ascii) {
    std::string one(unit, '\0');
    one[big ? unit - 1 : 0] = c;
    text += one;
  }
  return text + tail;
}

// Returns a document with invalid bytes after a long valid text.
std::string spoilt(std::size_t bytes, const std::string& spoil) {
  return inSite("<RelativePath>" + repeated("\xC3\xA4", bytes) + spoil + "</RelativePath>");
}

}  // namespace

const std::vector<HostileFamily>& hostileFamilies() {
  using Size = std::size_t;
  static const std::vector<HostileFamily> all = {
      {"attributes of one element",
       [](Size n) { return inSite("<a " + numbered("a", "='' ", n) + "/>"); }},
      {"elements full of attributes", fullElements},
      {"nesting", [](Size n) { return repeated("<a>", n); }},
      {"nesting that is allowed", deepTrees},
      {"one giant text", [](Size n) { return inSite(std::string(n, 'x')); }},
      {"many long texts",
       [](Size n) { return inSite(repeated("<a>" + std::string(500000, 'x') + "</a>", n)); }},
      {"one giant attribute",
       [](Size n) { return inSite("<a b='" + std::string(n, 'x') + "'/>"); }},
      {"one giant name", [](Size n) { return inSite("<" + std::string(n, 'x') + "/>"); }},
      {"character references", [](Size n) { return inSite(repeated("<a>&#65;&#x1F600;</a>", n)); }},
      {"character references in a row", [](Size n) { return inSite(repeated("&#65;", n)); }},
      {"predefined entities", [](Size n) { return inSite(repeated("<a b='&lt;&amp;'/>", n)); }},
      {"namespaces",
       [](Size n) {
         return inSite("<a " + numbered("xmlns:n", "='u' ", n, 1000) + "/>" +
                       repeated("<x:a xmlns:x='u'/>", n));
       }},
      {"CDATA without end", [](Size n) { return inSite("<![CDATA[" + std::string(n, ']')); }},
      {"CDATA sections", [](Size n) { return inSite(repeated("<![CDATA[x]]>", n)); }},
      {"a comment without end", [](Size n) { return inSite("<!--" + repeated("- ", n)); }},
      {"comments", [](Size n) { return inSite(repeated("<!--x-->", n)); }},
      {"instructions", [](Size n) { return inSite(repeated("<?p x?>", n)); }},
      {"angle brackets", [](Size n) { return repeated("<", n); }},
      {"DOCTYPE with growing entities", laughs},
      {"DOCTYPE with an external part",
       [](Size n) {
         return "<!DOCTYPE a SYSTEM \"file:///etc/passwd\">" + inSite(std::string(n, 'x'));
       }},
      {"DOCTYPE with parameter entities",
       [](Size n) { return "<!DOCTYPE a [" + numbered("<!ENTITY % p", " 'x'>", n) + "]><a/>"; }},
      {"DOCTYPE without end", [](Size n) { return "<!DOCTYPE a [" + std::string(n, ' '); }},
      {"UTF-8 that breaks off", [](Size n) { return spoilt(n, "\xE2\x82"); }},
      {"UTF-8 in overlong form", [](Size n) { return spoilt(n, "\xC0\xBC"); }},
      {"UTF-8 with surrogates", [](Size n) { return spoilt(n, "\xED\xA0\x80\xED\xB0\x80"); }},
      {"UTF-8 beyond the last character", [](Size n) { return spoilt(n, "\xF4\x90\x80\x80"); }},
      {"NUL", [](Size n) { return spoilt(n, std::string(1, '\0')); }},
      {"UTF-16, little end first", [](Size n) { return wideUnits(n, 2, false, ""); }},
      {"UTF-16, big end first", [](Size n) { return wideUnits(n, 2, true, ""); }},
      {"UTF-16 with half a pair", [](Size n) { return wideUnits(n, 2, false, "\x01\xD8"); }},
      {"UTF-16 of an odd length", [](Size n) { return wideUnits(n, 2, false, "x"); }},
      {"UTF-32, little end first", [](Size n) { return wideUnits(n, 4, false, ""); }},
      {"UTF-32, big end first", [](Size n) { return wideUnits(n, 4, true, ""); }},
      {"UTF-32 beyond the last character",
       [](Size n) { return wideUnits(n, 4, true, std::string("\x00\x11\x00\x00", 4)); }},
      {"small elements", [](Size n) { return inSite(repeated("<a/>", n)); }},
      {"policies",
       [](Size n) {
         return document(
             "", "<Policies>" + numbered("<Setting name='", "'>v</Setting>", n) + "</Policies>");
       }},
      {"certificates",
       [](Size n) {
         return document(
             "", "<CaBundle>" + repeated("<CaCertificate>c</CaCertificate>", n) + "</CaBundle>");
       }},
      {"exclusion hosts",
       [](Size n) {
         return inProxy("<ExclusionList>" + repeated("<ExclusionHost>h</ExclusionHost>", n) +
                        "</ExclusionList>");
       }},
      {"passwords", [](Size n) { return inSite(repeated("<Password>AQID</Password>", n)); }},
      {"sites", [](Size n) { return document(repeated("<HttpSite/>", n)); }, true},
  };
  return all;
}

namespace {

// Returns the peak memory of this process in bytes. restartPeak resets it.
std::size_t peakMemory() {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.rfind("VmHWM:", 0) == 0) return std::stoul(line.substr(6)) * 1024;
  }
  return 0;
}
void restartPeak() { std::ofstream("/proc/self/clear_refs") << "5"; }

double processorSeconds() {
  timespec used{};
  ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &used);
  return static_cast<double>(used.tv_sec) + static_cast<double>(used.tv_nsec) * 1e-9;
}

// Runs something on a thread with a small stack.
void onSmallStack(const std::function<void()>& body) {
  pthread_attr_t attributes;
  ::pthread_attr_init(&attributes);
  ::pthread_attr_setstacksize(&attributes, c_stackBytes);
  pthread_t thread{};
  auto* argument = const_cast<std::function<void()>*>(&body);
  if (::pthread_create(
          &thread, &attributes,
          [](void* function) -> void* {
            (*static_cast<const std::function<void()>*>(function))();
            return nullptr;
          },
          argument) == 0) {
    ::pthread_join(thread, nullptr);
  }
  ::pthread_attr_destroy(&attributes);
}

// Reads the list in a directory and derives the server list. Sends both results, the peak memory
// and the seconds.
CHILD_PROCESS(readHostileList) {
  host::AgentSettings settings;
  settings.dataDirectory = args[0];
  settings.logLevel = LogLevel::Off;
  host::setAgent(settings);
  const std::wstring directory = wide(args[0]);
  int code = 1;
  bool derived = false;
  std::size_t peak = 0;
  double seconds = 0;
  onSmallStack([&] {
    {
      // Creates the objects that the library creates at their first use.
      sitehlp::tag_Site* none = nullptr;
      sitehlp::CSitesHelper(true).ReadSiteList(directory + L"/small.xml", &none, true);
      sitehlp::CSitesHelper::FreeSiteListMemory(none);
    }
    restartPeak();
    const std::size_t before = peakMemory();
    const double start = processorSeconds();
    {
      SiteChain list;
      code = sitehlp::CSitesHelper(true).ReadSiteList(directory + L"/SiteList.xml", list.address(),
                                                      true);
    }
    derived = sitehlp::CSitesHelper::createServerSiteListFromSiteList(directory.c_str(), nullptr);
    seconds = processorSeconds() - start;
    peak = peakMemory() - before;
  });
  std::ostringstream answer;
  answer << code << " " << derived << " " << peak << " " << seconds;
  channel.send(answer.str());
  return 0;
}

}  // namespace

HostileReader::HostileReader() {
  writeFile(m_agent.dataDirectory() + "/small.xml",
            document(httpElement("small") + proxyElement("p")));
}

bool HostileReader::read(const HostileFamily& family, std::size_t bytes, HostileResult& result,
                         Faults& faults) {
  result.family = family.name;
  {
    const std::string document = family.make(family.makesRecords ? bytes / c_fewer : bytes);
    result.bytes = document.size();
    writeFile(m_agent.dataDirectory() + "/SiteList.xml", document);
  }
  ChildProcess child("readHostileList", {m_agent.dataDirectory()});
  std::istringstream answer(child.receive());
  std::size_t peak = 0;
  if (!(answer >> result.readCode >> result.derived >> peak >> result.seconds)) {
    faults.add(family.name, "crashed: " + std::to_string(child.wait()));
    return false;
  }
  if (child.wait() != 0) {
    faults.add(family.name, "does not end well");
    return false;
  }
  if (family.makesRecords) {
    const std::size_t records = result.bytes / std::string("<HttpSite/>").size();
    peak -= std::min(peak, records * sizeof(sitehlp::tag_Site));
  }
  result.peakFactor = static_cast<double>(peak) / static_cast<double>(result.bytes);
  return true;
}

HostileFigures readHostileDocuments(std::size_t bytes) {
  HostileFigures figures;
  HostileReader reader;
  for (const HostileFamily& family : hostileFamilies()) {
    HostileResult result;
    if (reader.read(family, bytes, result, figures.faults)) figures.results.push_back(result);
  }
  return figures;
}

}  // namespace test
