#include <utility>

#include "platform/xml/advxmlparser.h"

namespace AdvXMLParser {

ParsingException::ParsingException(unsigned long line, unsigned long column, std::string reason)
    : m_line(line),
      m_column(column),
      m_reason(std::move(reason)),
      m_what("line " + std::to_string(line) + ", column " + std::to_string(column) + ": " +
             m_reason) {}

ParsingException::ParsingException(const ParsingException&) = default;

ParsingException::~ParsingException() = default;

ReadWriteException::ReadWriteException(int errorCode, int systemError, std::string reason,
                                       unsigned long line, unsigned long column)
    : m_errorCode(errorCode),
      m_systemError(systemError),
      m_line(line),
      m_column(column),
      m_reason(std::move(reason)) {}

ReadWriteException::ReadWriteException(const ReadWriteException&) = default;

ReadWriteException::~ReadWriteException() = default;

}  // namespace AdvXMLParser
