#include "tools/sitelist/cli/failure.h"

#include <utility>

#include "tools/sitelist/cli/text.h"

namespace tool {

Failure::Failure(ExitStatus status, const std::string& text, const std::string& advice,
                 FailureOrigin origin)
    : std::runtime_error(text), m_status(status), m_advice(advice), m_origin(std::move(origin)) {}
Failure::Failure(const Failure&) = default;
Failure::~Failure() = default;

Failure failureAt(const std::string& path, ExitStatus status, const std::string& text,
                  const std::string& advice) {
  FailureOrigin origin;
  origin.file = path;
  return Failure(status, shown(path) + ": " + text, advice, origin);
}

}  // namespace tool
