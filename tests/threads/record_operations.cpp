#include <cstdlib>
#include <memory>

#include "tests/import/records.h"
#include "tests/threads/operations.h"

// Operations on records and values of the caller.
namespace test {
namespace {

using namespace sitehlp;

constexpr std::size_t c_capacity = 8;

SiteChain someSites() {
  return SiteChain{serverSite(L"server"), httpSite(L"http"), typed(ftpSite(L"fall"), L"fallback"),
                   localSite(L"local"), proxySite(L"proxy")};
}

std::string runAssign(const Workshop&) {
  wchar_t field[c_capacity];
  CSitesHelper::CopyWStr(field, L"cut to its room", c_capacity);
  return narrow(field);
}

std::string runRelease(const Workshop&) {
  return told(CSitesHelper::FreeSiteListMemory(someSites().release()));
}

std::string runDecimal(const Workshop&) {
  return told(0, {CSitesHelper::ConvertToStr(7u), CSitesHelper::ConvertToStr(-7),
                  CSitesHelper::ConvertToStr(true)});
}

std::string runMacros(const Workshop&) {
  wchar_t field[] = L"%%lt%%DIR%%gt%%/x";
  const int result = CSitesHelper(true).FormatEnvSymbols(field, sizeof field / sizeof *field);
  return told(result, {field});
}

std::string runSplit(const Workshop&) {
  std::wstring host;
  unsigned int port = 0;
  const bool done = split_host_and_port(L"host:81", host, port);
  return told(done, {host, std::to_wstring(port)});
}

std::string runManaged(const Workshop&) {
  CSitesHelper helper(true);
  const int before = helper.IsOrbManaged();
  helper.SetManagedOverride(-1);
  return std::to_string(before) + told(helper.IsOrbManaged());
}

std::string runPolicies(const Workshop&) {
  CSitesHelper helper(true);
  std::wstring value;
  const bool missing = helper.GetPolicySetting(L"name", value);
  helper.SetPolicySetting(L"name", L"value");
  return std::to_string(missing) + told(helper.GetPolicySetting(L"name", value), {value});
}

std::string runAppend(const Workshop&) {
  const SiteChain source = someSites();
  SiteChain list;
  tag_Site* tail = nullptr;
  const int result =
      CSitesHelper(true).MergeThisSiteList(source.head(), true, &tail, list.address());
  return told(result, list.head());
}

std::string runMerge(const Workshop&) {
  const SiteChain first = someSites();
  const SiteChain second{httpSite(L"another")};
  SiteChain list;
  const int result =
      CSitesHelper(true).MergeSiteLists(first.head(), second.head(), true, list.address());
  return told(result, list.head());
}

std::string runFallback(const Workshop&) {
  const SiteChain source = someSites();
  SiteChain list = someSites();
  tag_Site* fallback = nullptr;
  tag_Site* tail = list.last();
  const int found = CSitesHelper(true).GetFallbackSite(source.head(), &fallback);
  const int put = CSitesHelper(true).UpdateFallbackSite(fallback, &tail, list.address());
  return std::to_string(found) + told(put, list.head());
}

std::string runServers(const Workshop&) {
  const SiteChain source = someSites();
  SiteChain list = someSites();
  tag_Site* chain = nullptr;
  tag_Site* tail = list.last();
  const int found = CSitesHelper(true).GetVestaSite(source.head(), &chain);
  const int put = CSitesHelper(true).UpdateVestaSite(chain, &tail, list.address());
  return std::to_string(found) + told(put, list.head());
}

std::string runCheck(const Workshop&) {
  return told(CSitesHelper(true).SourceSiteListCheck(someSites().head(), false));
}

std::string runOrder(const Workshop&) {
  SiteChain list{httpSite(L"http"), ftpSite(L"ftp")};
  setText(list.head()->http.szServer, wide(VENDOR_HTTP_HOST));
  list.head()->http.uServerPort = 80;
  setText(list.last()->ftp.szServer, wide(VENDOR_FTP_HOST));
  list.last()->ftp.uServerPort = 21;
  list.last()->iOrder = 1;
  CSitesHelper(true).AdjustSitesOrder(list.head());
  return told(0, list.head());
}

std::string runProtect(const Workshop&) {
  std::wstring sealed;
  const int result = CSitesHelper(true).EncryptPassword(wide(c_canary), sealed);
  // Each encryption gives a different text.
  return told(result) + std::to_string(sealed.size() > c_canary.size());
}

// Decrypts the password of the first site with the server key.
std::string runRecover(const Workshop& w) {
  const std::string& bytes = w.serverBuffer();
  const std::string mark = "<Password Encrypted=\"1\">";
  const std::size_t start = bytes.find(mark) + mark.size();
  std::wstring clear;
  const int result = decrypt_data(wide(bytes.substr(start, bytes.find('<', start) - start)), clear);
  return told(result, {clear});
}

// Returns the result of decoding the element, and the name in its record.
template <typename Record>
std::string decode(const char* element) {
  const std::wstring text = L"<r>" + wide(element) + L"</r>";
  const std::unique_ptr<AdvXMLParser::Document> document(
      AdvXMLParser::Parser().Parse(text.data(), text.size()));
  for (AdvXMLParser::Element site : document->GetRoot().Elements()) {
    void* record = nullptr;
    const int result = CSitesHelper(true).ReadSiteFromSiteList(&site, &record);
    const std::string name = record ? narrow(static_cast<Record*>(record)->szName) : "none";
    std::free(record);
    return std::to_string(result) + " " + name;
  }
  return "nothing";
}

std::string runDecode(const Workshop&) {
  return decode<tag_HttpSite>("<HttpSite Name='h' Server='s:81'/>") +
         decode<tag_ProxySite>("<ProxyConfig Name='p'/>") + decode<tag_FtpSite>("<Odd/>");
}

// Gives access to the element to which the writers of one record add their elements.
struct Writer : CSitesHelper {
  using CSitesHelper::CSitesHelper;
  using CSitesHelper::m_pSiteListElement;
};

std::string add(int (CSitesHelper::*member)(tag_Site*, int), const tag_Site& record) {
  const SiteChain site{record};
  AdvXMLParser::Document document(L"SiteList");
  AdvXMLParser::Element anchor = document.GetRoot();
  Writer writer(true);
  writer.m_pSiteListElement = &anchor;
  const int result = (writer.*member)(site.head(), 0);
  writer.m_pSiteListElement = nullptr;
  return std::to_string(result) + normalForm("", narrow(document.GenerateXML(false)));
}

std::string runAddHttp(const Workshop&) {
  return add(&CSitesHelper::AddHTTPSite, serverSite(L"server"));
}
std::string runAddFtp(const Workshop&) { return add(&CSitesHelper::AddFTPSite, ftpSite(L"ftp")); }
std::string runAddUnc(const Workshop&) { return add(&CSitesHelper::AddUNCSite, uncSite(L"unc")); }
std::string runAddLocal(const Workshop&) {
  return add(&CSitesHelper::AddLocalSite, localSite(L"local"));
}
std::string runAddProxy(const Workshop&) {
  return add(&CSitesHelper::AddProxySite, proxySite(L"proxy"));
}

}  // namespace

SharedOperations recordOperations() {
  return {
      {"CopyWStr", runAssign},
      {"FreeSiteListMemory", runRelease},
      {"ConvertToStr", runDecimal},
      {"FormatEnvSymbols", runMacros},
      {"split_host_and_port", runSplit},
      {"IsOrbManaged and SetManagedOverride", runManaged},
      {"GetPolicySetting and SetPolicySetting", runPolicies},
      {"MergeThisSiteList", runAppend},
      {"MergeSiteLists of two lists", runMerge},
      {"GetFallbackSite and UpdateFallbackSite", runFallback},
      {"GetVestaSite and UpdateVestaSite", runServers},
      {"SourceSiteListCheck", runCheck},
      {"AdjustSitesOrder", runOrder},
      {"EncryptPassword", runProtect},
      {"decrypt_data", runRecover},
      {"ReadSiteFromSiteList", runDecode},
      {"AddHTTPSite", runAddHttp},
      {"AddFTPSite", runAddFtp},
      {"AddUNCSite", runAddUnc},
      {"AddLocalSite", runAddLocal},
      {"AddProxySite", runAddProxy},
  };
}

}  // namespace test
