#include "tools/sitelist/edit/list_editor.h"

#include <algorithm>
#include <filesystem>

#include "platform/xml/advxmlparser.h"
#include "sitehlp/result_codes.h"
#include "sitehlp/xmlschema/sitelist.h"
#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/cli/library_failure.h"
#include "tools/sitelist/cli/read_error.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/edit/element_edit.h"

namespace tool {
namespace {

using namespace korvel_com::orb::xmlschema::sitelist;  // NOLINT(google-build-using-namespace)
using sitehlp::tag_Site;

bool isSameSite(const tag_Site& a, const tag_Site& b) {
  const std::vector<Field> left = fieldsOf(a);
  const std::vector<Field> right = fieldsOf(b);
  return a.eSiteKind == b.eSiteKind &&
         std::equal(left.begin(), left.end(), right.begin(), right.end(), isSame);
}

// Returns whether there is a password that the key cannot decrypt. It is read as an empty one.
bool isLostPassword(const AnXmlNode& site, const NewValue& value) {
  if (value.field->form != FieldForm::Password || !value.clear || !value.clear->empty())
    return false;
  const std::wstring text = protectedTextOf(site, *value.field);
  return !text.empty() && !opensWithAgentKey(text);
}

}  // namespace

void failIfNotEditable(const std::string& path) {
  std::error_code error;
  if (!std::filesystem::exists(path, error)) {
    throw libraryFailure(path, sitehlp::c_errorFileMissing);
  }
  if (findReadError(path)) throw libraryFailure(path, sitehlp::c_errorParse);
  AnXml document;
  if (!document.useExistingFile(wide(path), WX_XML_SITELISTS, WX_XML_NAMESPACE,
                                WX_XML_SITELISTS_NAMESPACE)) {
    throw failureAt(path, exitDocument,
                    "the document is not a site list\n  its root is not \"ns:SiteLists\" with "
                    "xmlns:ns=\"wxSiteList\"",
                    "check that it is the right file");
  }
  AnXmlNode siteList;
  if (!AnXmlNode(&document).getExistingChild(siteList, WX_XML_SITELIST, nullptr, nullptr, nullptr,
                                             nullptr)) {
    throw failureAt(path, exitDocument, "the document has no \"SiteList\"",
                    "check that it is the right file");
  }
}

void failIfOverLimit(const std::string& path) {
  const int result = readSiteList(path).result;
  if (result == AdvXMLParser::ReadWriteException::LIMIT_EXCEEDED) {
    throw libraryFailure(path, result);
  }
}

ListEditor::ListEditor(const SiteList& list) : m_list(list) {
  const tag_Site* record = list.sites.get();
  if (m_document.useExistingFile(wide(list.path), WX_XML_SITELISTS, WX_XML_NAMESPACE,
                                 WX_XML_SITELISTS_NAMESPACE) &&
      AnXmlNode(&m_document)
          .getExistingChild(m_siteList, WX_XML_SITELIST, nullptr, nullptr, nullptr, nullptr)) {
    AnXmlChildIndex index(m_siteList, nullptr);
    AnXmlNode element;
    for (; record && index.moveNext(element); record = record->pNext) {
      m_entries.push_back({element, record, {}, false});
    }
    if (!record && !index.moveNext(element)) return;
  }
  throw failureAt(list.path, exitConflict, "the file changed while it was read", "try again");
}

void ListEditor::set(Entry& entry, const NewValue& value) {
  if (hasValue(*entry.record, value) && !isLostPassword(entry.element, value)) return;
  writeField(entry.element, value);
  entry.changes.push_back(value);
  m_isChanged = true;
}

void ListEditor::add(const wchar_t* element, const std::vector<NewValue>& values) {
  Entry entry;
  m_siteList.addChild(entry.element, element, nullptr, nullptr);
  for (const NewValue& value : values) {
    writeField(entry.element, value);
    if (value.field->name) entry.changes.push_back(value);
  }
  m_entries.push_back(std::move(entry));
  m_isChanged = true;
}

void ListEditor::remove(Entry& entry) {
  entry.element.remove();
  entry.isRemoved = true;
  m_isChanged = true;
}

bool ListEditor::write(const std::string& path) const {
  return m_document.writeFile(wide(path), false, false);
}

bool ListEditor::isAsMeant(const SiteList& after) const {
  if (after.result != 0) return false;
  const tag_Site* site = after.sites.get();
  for (const Entry& entry : m_entries) {
    if (entry.isRemoved) continue;
    if (!site) return false;
    const bool isUntouched = entry.changes.empty();
    if (isUntouched && !isSameSite(*entry.record, *site)) return false;
    for (const NewValue& value : entry.changes) {
      if (!hasValue(*site, value)) return false;
    }
    site = site->pNext;
  }
  return !site;
}

}  // namespace tool
