#ifndef BENCH_FLOORS_H
#define BENCH_FLOORS_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "sitehlp/site.h"

// What the operations are measured against: the least that somebody else needs for a part of the
// same work. All abort the program when they fail.
namespace bench {

// expat with handlers that do nothing.
void parseWithExpat(const std::string& bytes);
// libxml2, with its tree.
void parseWithLibxml2(const std::string& bytes);
// pugixml, which does not check, with its tree.
void parseWithPugixml(const std::string& bytes);

// pugixml: parses a document without checks, prints it and replaces the file with it.
void rewriteWithPugixml(const std::string& bytes, const std::string& path);
// The same after expat has checked it.
void rewriteChecked(const std::string& bytes, const std::string& path);
// The same with libxml2, which checks.
void rewriteWithLibxml2(const std::string& bytes, const std::string& path);

// pugixml: builds the tree of a document anew, element by element, and prints it. Holds what it
// takes to do so.
class TreeRecipe {
 public:
  explicit TreeRecipe(const std::string& document);
  std::string buildAndPrint() const;

 private:
  struct Text {
    std::uint32_t offset;
    std::uint32_t size;
  };
  struct Step {
    enum Kind : std::uint8_t { Open, Attribute, Value, Close } kind;
    Text name;
    Text value;
  };
  template <typename Node>
  void record(Node node);
  Text store(const char* text);
  const char* text(Text text) const { return m_texts.data() + text.offset; }

  std::string m_texts;  // each with its terminator
  std::vector<Step> m_steps;
};

// Records with the fields of a list: each allocated with calloc, every field of its kind written
// and the rest of the field's capacity zeroed. Holds the list's texts close together.
class RecordRecipe {
 public:
  explicit RecordRecipe(const sitehlp::tag_Site* list);
  sitehlp::tag_Site* build() const;
  void buildAndFree() const;

 private:
  std::wstring m_texts;
  std::vector<std::uint32_t> m_lengths;  // of the texts, in the order of the fields
  std::vector<std::int32_t> m_numbers;
  std::vector<std::int32_t> m_kinds;
};

// Copies of all records, in the given order of lists, each allocated with calloc.
sitehlp::tag_Site* copyRecords(const std::vector<const sitehlp::tag_Site*>& lists);

void freeRecords(sitehlp::tag_Site* list);

// One read lock taken and given back.
void lockAndUnlock(const char* name);

// The whole file replaced with the bytes.
void writeAtomically(const std::string& path, const std::string& bytes);

}  // namespace bench

#endif
