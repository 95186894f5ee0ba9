#include "sitehlp/common/caught.h"

#include <exception>

#include "platform/common/log.h"
#include "platform/xml/advxmlparser.h"

namespace sitehlp {
namespace {

// A separate component, because people search logs for the fixed lines of the class.
constexpr const wchar_t* c_causeComponent = L"Host";

AString reasonOf(const std::wstring& path) {
  try {
    throw;
  } catch (const AdvXMLParser::ReadWriteException& failure) {
    return AString(failure.what());  // the text has the path of the file
  } catch (const std::bad_alloc&) {
    return AString(path).append(L": not enough memory");
  } catch (const std::exception& failure) {
    return AString(path).append(L": ").append(AString(failure.what()));
  } catch (...) {
    return AString(path).append(L": unknown exception");
  }
}

}  // namespace

void logCause(const std::wstring& text) noexcept {
  try {
    logError(c_causeComponent, text);
  } catch (...) {
    // There is not enough memory for the line.
  }
}

void logCaught(const wchar_t* what, const std::wstring& path) noexcept {
  try {
    logCause(AString(what).append(reasonOf(path)).str());
  } catch (...) {
    // There is not enough memory for the line.
  }
}

}  // namespace sitehlp
