#include "sitehlp/common/caught.h"

#include <exception>

#include "platform/common/log.h"
#include "platform/xml/advxmlparser.h"
#include "sitehlp/common/component.h"

namespace sitehlp {
namespace {

// People search logs for the fixed lines of component "SiteHlp". The reason of a failure therefore
// has another component.
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

template <typename Log>
void dropIfNoMemory(Log log) noexcept {
  try {
    log();
  } catch (...) {
    // There is not enough memory for the line.
  }
}

}  // namespace

void logCause(const std::wstring& text) noexcept {
  dropIfNoMemory([&] { logError(c_causeComponent, text); });
}

void logCaught(const wchar_t* what, const std::wstring& path) noexcept {
  dropIfNoMemory([&] { logCause(AString(what).append(reasonOf(path)).str()); });
}

void logFixed(const wchar_t* text) noexcept {
  dropIfNoMemory([&] { logError(c_component, text); });
}

void logResult(const wchar_t* text, int result) noexcept {
  dropIfNoMemory([&] { logError(c_component, AString(text).append(result)); });
}

}  // namespace sitehlp
