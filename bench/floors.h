#ifndef BENCH_FLOORS_H
#define BENCH_FLOORS_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "sitehlp/site.h"

// The baselines (floors) of the operations. A baseline is the least work of other libraries for the
// same part of a task. All functions abort the program if they fail.
namespace bench {

// expat with empty handlers.
void parseWithExpat(const std::string& bytes);
// libxml2 with its tree.
void parseWithLibxml2(const std::string& bytes);
// pugixml with its tree. It does not check the document.
void parseWithPugixml(const std::string& bytes);

// pugixml: parses a document without checks, prints it and replaces the file.
void rewriteWithPugixml(const std::string& bytes, const std::string& path);
// Does the same after a check by expat.
void rewriteChecked(const std::string& bytes, const std::string& path);
// Does the same with libxml2, which includes the check.
void rewriteWithLibxml2(const std::string& bytes, const std::string& path);

// pugixml: builds the tree of a document element by element and prints it. The object has all the
// data for this.
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

  std::string m_texts;  // each text has its terminator
  std::vector<Step> m_steps;
};

// Builds records with the fields of a list. Each record is allocated with calloc. Each field of the
// record's kind is written, and the rest of the field is zeroed. The texts are close together in
// memory.
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

// Returns copies of all records, in the given order of lists. Each is allocated with calloc.
sitehlp::tag_Site* copyRecords(const std::vector<const sitehlp::tag_Site*>& lists);

void freeRecords(sitehlp::tag_Site* list);

// Takes and releases one read lock.
void lockAndUnlock(const char* name);

// Atomically replaces the file with the bytes.
void writeAtomically(const std::string& path, const std::string& bytes);

}  // namespace bench

#endif
