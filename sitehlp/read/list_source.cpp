#include "sitehlp/read/list_source.h"

#include <unistd.h>

#include <utility>

#include "platform/common/astring.h"
#include "platform/lock/interprocess_lock.h"
#include "sitehlp/common/caught.h"
#include "sitehlp/sites_helper.h"

namespace sitehlp {

using korvel_com::orb::lock::c_waitForEver;
using korvel_com::orb::lock::InterProcessReadLock;

ListSource::ListSource(std::wstring path) : m_path(std::move(path)) {}

ListSource::ListSource(std::string utf8, const AdvXMLParser::WrittenIn& writtenIn)
    : m_result(c_success), m_utf8(std::move(utf8)), m_writtenIn(writtenIn) {}

int ListSource::read(bool useLock) {
  if (!m_result) m_result = readFile(useLock);
  return *m_result;
}

int ListSource::readFile(bool useLock) {
  if (::access(ACharString(m_path).c_str(), F_OK) != 0) return c_errorFileMissing;
  try {
    if (!useLock) {
      AdvXMLParser::ReadUtf8FromFile(m_path, m_utf8, m_writtenIn);
      return c_success;
    }
    InterProcessReadLock lock(c_siteListLock);
    lock.lock(c_waitForEver);
    AdvXMLParser::ReadUtf8FromFile(m_path, m_utf8, m_writtenIn);
    lock.unlock();
    return c_success;
  } catch (...) {
    logCaught(L"Site list not read: ", m_path);
    return c_errorRead;
  }
}

AdvXMLParser::Document* ListSource::document() {
  if (!m_document) {
    AdvXMLParser::Document* const parsed =
        AdvXMLParser::Parser().ParseUtf8(m_utf8.data(), m_utf8.size(), &m_writtenIn);
    if (parsed) setDocument(parsed);
  }
  return m_document.get();
}

void ListSource::setDocument(AdvXMLParser::Document* document) {
  m_document.reset(document);
  std::string().swap(m_utf8);  // the tree has all of it
}

}  // namespace sitehlp
