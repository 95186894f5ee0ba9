#include "sitehlp/read/document_reader.h"

#include "platform/common/log.h"
#include "platform/crypto/crypt_shim.h"
#include "sitehlp/common/caught.h"
#include "sitehlp/common/component.h"
#include "sitehlp/common/document_values.h"
#include "sitehlp/read/list_builder.h"
#include "sitehlp/records/record.h"
#include "sitehlp/sites_helper.h"
#include "sitehlp/xmlschema/sitelist.h"

namespace sitehlp {

using AdvXMLParser::Element;
using namespace korvel_com::orb::xmlschema::sitelist;  // NOLINT(google-build-using-namespace)

namespace {

void readPolicies(const Element& policies, PolicySettings& policySettings) {
  for (const Element setting : policies.Elements()) {
    if (!setting.HasName(c_policySetting)) continue;
    policySettings[setting.GetAttribute(c_policySettingName).GetValue()] = setting.GetValue();
  }
}

void walkRoot(const Element& root, bool useDecryptData, PolicySettings& policySettings,
              const TakeSite& take, int& result) {
  for (const Element child : root.Elements()) {
    if (child.HasName(WX_XML_POLICIES)) {
      readPolicies(child, policySettings);
    } else if (child.HasName(WX_XML_SITELIST)) {
      readSiteListElement(child, useDecryptData, take, result);
      return;
    }
  }
}

// `open` must return the document, or null when there is no markup.
template <typename Open>
int readDocument(const Open& open, bool useDecryptData, PolicySettings& policySettings,
                 const TakeSite& take, const Inspect& inspect) {
  int result = c_success;
  try {
    const AdvXMLParser::Document* const document = open();
    if (!document) return c_errorParse;
    const Element root = document->GetRoot();
    if (inspect) inspect(root);
    const korvel_com::ZQ::crypto::KeptKeys keys;
    walkRoot(root, useDecryptData, policySettings, take, result);
  } catch (const AdvXMLParser::ParsingException&) {
    return c_errorParse;
  } catch (const AdvXMLParser::ReadWriteException& e) {
    return e.GetErrorCode();
  }
  return result;
}

TakeSite appendTo(tag_Site** list) {
  return [link = list](tag_Site* site) mutable {
    *link = site;
    link = &site->pNext;
  };
}

}  // namespace

int readSites(ListSource& source, bool useDecryptData, PolicySettings& policySettings,
              const TakeSite& take, const Inspect& inspect) {
  return readDocument([&] { return source.document(); }, useDecryptData, policySettings, take,
                      inspect);
}

int readList(ListSource& source, bool useDecryptData, PolicySettings& policySettings,
             tag_Site** list, const Inspect& inspect) {
  return readSites(source, useDecryptData, policySettings, appendTo(list), inspect);
}

int readList(const std::wstring& text, bool useDecryptData, PolicySettings& policySettings,
             tag_Site** list, const Inspect& inspect) {
  DocumentPtr document;
  const auto parse = [&] {
    document.reset(AdvXMLParser::Parser().Parse(text.data(), text.size()));
    return document.get();
  };
  return readDocument(parse, useDecryptData, policySettings, appendTo(list), inspect);
}

int mustReadList(ListSource& source, std::wstring& currentFile, bool useDecryptData,
                 PolicySettings& policySettings, tag_Site** list) {
  if (source.path().empty()) {
    logInternalError(c_component, L"path is empty");
    return c_errorGeneral;
  }
  int result = c_success;
  {
    const ADetailTrace trace(c_component, L"Reading Sitelist");
    currentFile = source.path();
    result = source.read(true);
    if (result == c_success) {
      ListOwner sites;
      result = readList(source, useDecryptData, policySettings, sites.out());
      *list = sites.release();
    }
  }
  if (result < 0 || !*list) logFailedRead(result);
  return result;
}

void logFailedRead(int result) { logResult(L"Failed hr=", result); }

}  // namespace sitehlp
