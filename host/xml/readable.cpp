#include "host/xml/readable.h"

#include <algorithm>
#include <iterator>

#include "host/xml/limits.h"
#include "host/xml/well_formed.h"
#include "platform/xml/advxmlparser.h"

namespace host {
namespace {

template <typename Range>
bool hasMoreThan(std::size_t limit, const Range& range) {
  return static_cast<std::size_t>(std::distance(range.begin(), range.end())) > limit;
}

// Compares the numbers of children and attributes, and the depth, with the limits.
class Counts : public pugi::xml_tree_walker {
 public:
  bool for_each(pugi::xml_node& node) override {
    constexpr std::size_t c_depthOfChildren =
        2;  // the depth of the root's children; the walk counts it as 0
    return static_cast<std::size_t>(depth()) + c_depthOfChildren <= c_maxDepth && check(node);
  }

  // A result of false also ends the walk.
  static bool check(pugi::xml_node node) {
    return !hasMoreThan(c_maxAttributes, node.attributes()) &&
           !hasMoreThan(c_maxChildren, node.children());
  }
};

}  // namespace

void requireDocumentSize(std::size_t size) {
  if (size <= c_maxDocumentBytes) return;
  throw AdvXMLParser::ReadWriteException(AdvXMLParser::ReadWriteException::LIMIT_EXCEEDED, 0,
                                         "document over the limit: number of bytes");
}

bool hasOnlyShortTokens(const std::string& text) {
  if (text.size() <= c_maxTokenBytes) return true;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t next = std::min(text.find('<', at + 1), text.size());
    const bool isDeclaration = at == 0;
    const char kind = text[at + 1];
    if (next - at > c_maxTokenBytes || kind == '!' || (kind == '?' && !isDeclaration)) return false;
    at = next;
  }
  return true;
}

void requireReadable(pugi::xml_node root, const std::string& text) {
  requireDocumentSize(text.size());
  // Counting takes much less time than parsing again.
  Counts counts;
  if (hasOnlyShortTokens(text) && Counts::check(root) && root.traverse(counts)) return;
  checkWellFormed(text.data(), text.size());
}

}  // namespace host
