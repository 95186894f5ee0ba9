#include "platform/common/anxml.h"
#include "tests/import/documents.h"
#include "tests/threads/operations.h"

// Operations that edit documents of the caller node by node.
namespace test {
namespace {

using namespace sitehlp;

// The incoming list as a document of its own, whose nodes an operation works on.
class Opened {
 public:
  explicit Opened(const Workshop& w) {
    m_isOpen = m_xml.useExistingFile(AString(wide(w.incoming())), L"ns:SiteLists", L"xmlns:ns",
                                     L"wxSiteList");
    root = AnXmlNode(&m_xml);
    root.tryGetChild(sites, L"SiteList", nullptr, nullptr, nullptr, nullptr);
  }
  AnXmlNode site(const wchar_t* element) const {
    AnXmlNode node;
    sites.tryGetChild(node, element, nullptr, nullptr, nullptr, nullptr);
    return node;
  }
  // The elements, their names and their orders.
  std::string told() const {
    std::string text = std::to_string(m_isOpen);
    AnXmlChildIndex index(sites, nullptr);
    for (AnXmlNode node; index.moveNext(node);) text += " " + of(node);
    return text;
  }
  static std::string of(const AnXmlNode& node) {
    std::string text = narrow(node.getName().str());
    AnXmlValueIndex index(node);
    AString name;
    AString value;
    while (index.moveNext(name, value)) text += narrow(L" " + name.str() + L"=" + value.str());
    AnXmlChildIndex children(node, nullptr);
    for (AnXmlNode child; children.moveNext(child);) text += "/" + narrow(child.getName().str());
    return text;
  }

  AnXmlNode root;
  AnXmlNode sites;

 private:
  AnXml m_xml;
  bool m_isOpen = false;
};

std::string runReplaceRepository(const Workshop& w) {
  const Opened source(w);
  Opened target(w);
  AnXmlNode from = source.site(L"FTPSite");
  AnXmlNode to = target.site(L"HttpSite");
  CSitesHelper(true).replaceWexRepository(from, target.sites, to, 9, L"repository");
  return target.told();
}

std::string runSame(const Workshop& w) {
  const Opened source(w);
  AnXmlNode one = source.site(L"VestaSite");
  AnXmlNode other = source.site(L"HttpSite");
  CSitesHelper helper(true);
  return std::to_string(helper.IstheSamePyxSite(one, one)) +
         std::to_string(helper.IstheSamePyxSite(one, other));
}

std::string runReplaceServers(const Workshop& w) {
  Opened source(w);
  Opened target(w);
  target.site(L"VestaSite").remove();
  CSitesHelper(true).doReplacePyxSite(target.root, source.root);
  return target.told();
}

std::string runCopyAltered(const Workshop& w) {
  const Opened document(w);
  AnXmlNode from = document.site(L"VestaSite");
  AnXmlNode to = document.site(L"LocalSite");
  CSitesHelper(true).copyXmlAttributesAlter(from, to, 5, L"master");
  return Opened::of(to);
}
std::string runCopyAttributes(const Workshop& w) {
  const Opened document(w);
  AnXmlNode from = document.site(L"VestaSite");
  AnXmlNode to = document.site(L"LocalSite");
  CSitesHelper(true).copyXmlAttributes(from, to);
  return Opened::of(to);
}
std::string runCopyChildren(const Workshop& w) {
  const Opened document(w);
  AnXmlNode from = document.site(L"UNCSite");
  AnXmlNode to = document.site(L"VestaSite");
  CSitesHelper(true).copyXmlSubNodes(from, to);
  return Opened::of(to);
}

}  // namespace

SharedOperations editingOperations() {
  return {
      {"replaceWexRepository", runReplaceRepository}, {"IstheSamePyxSite", runSame},
      {"doReplacePyxSite", runReplaceServers},        {"copyXmlAttributesAlter", runCopyAltered},
      {"copyXmlAttributes", runCopyAttributes},       {"copyXmlSubNodes", runCopyChildren},
  };
}

}  // namespace test
