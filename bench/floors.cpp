#include "bench/floors.h"

#include <expat.h>
#include <libxml/parser.h>
#include <libxml/tree.h>

#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <pugixml.hpp>
#include <type_traits>

#include "bench/check.h"
#include "bench/row.h"
#include "host/fs/files.h"
#include "host/xml/text_file.h"
#include "platform/lock/interprocess_lock.h"
#include "sitehlp/fields.h"

namespace bench {

using sitehlp::tag_Site;

namespace {

constexpr unsigned int c_forEver = 0x7FFFFFFF;

void startElement(void*, const char*, const char**) {}
void endElement(void*, const char*) {}
void characterData(void*, const char*, int) {}

class LibxmlDocument {
 public:
  explicit LibxmlDocument(const std::string& bytes)
      : m_document(xmlReadMemory(bytes.data(), static_cast<int>(bytes.size()), "list.xml", nullptr,
                                 XML_PARSE_NONET)) {
    check(m_document != nullptr, "libxml2 refuses the document");
  }
  ~LibxmlDocument() { xmlFreeDoc(m_document); }
  LibxmlDocument(const LibxmlDocument&) = delete;
  LibxmlDocument& operator=(const LibxmlDocument&) = delete;

  xmlDoc* get() const { return m_document; }

 private:
  xmlDoc* m_document;
};

class StringWriter : public pugi::xml_writer {
 public:
  void write(const void* data, std::size_t size) override {
    text.append(static_cast<const char*>(data), size);
  }
  std::string text;
};

std::string print(const pugi::xml_document& document) {
  StringWriter writer;
  document.save(writer, "", pugi::format_raw, pugi::encoding_utf8);
  return std::move(writer.text);
}

void load(const std::string& bytes, pugi::xml_document& document) {
  const pugi::xml_parse_result result =
      document.load_buffer(bytes.data(), bytes.size(),
                           pugi::parse_default | pugi::parse_declaration, pugi::encoding_utf8);
  check(result, "pugixml refuses the document");
}

tag_Site* allocateRecord() {
  auto* const record = static_cast<tag_Site*>(std::calloc(1, sizeof(tag_Site)));
  check(record != nullptr, "out of memory");
  return record;
}

}  // namespace

void parseWithExpat(const std::string& bytes) {
  XML_Parser parser = XML_ParserCreate("UTF-8");
  XML_SetElementHandler(parser, startElement, endElement);
  XML_SetCharacterDataHandler(parser, characterData);
  check(XML_Parse(parser, bytes.data(), static_cast<int>(bytes.size()), XML_TRUE) == XML_STATUS_OK,
        "expat refuses the document");
  XML_ParserFree(parser);
}

void parseWithLibxml2(const std::string& bytes) {
  const LibxmlDocument document(bytes);
  keep(document.get());
}

void parseWithPugixml(const std::string& bytes) {
  pugi::xml_document document;
  load(bytes, document);
  keep(document.first_child().internal_object());
}

void rewriteWithPugixml(const std::string& bytes, const std::string& path) {
  pugi::xml_document document;
  load(bytes, document);
  writeAtomically(path, print(document));
}

void rewriteChecked(const std::string& bytes, const std::string& path) {
  parseWithExpat(bytes);
  rewriteWithPugixml(bytes, path);
}

void rewriteWithLibxml2(const std::string& bytes, const std::string& path) {
  const LibxmlDocument document(bytes);
  xmlChar* text = nullptr;
  int size = 0;
  xmlDocDumpMemory(document.get(), &text, &size);
  check(text != nullptr, "libxml2 cannot print the document");
  check(
      host::replaceFile(path, text, static_cast<std::size_t>(size), host::c_modeOfNewDocument) == 0,
      "cannot write the document");
  xmlFree(text);
}

TreeRecipe::TreeRecipe(const std::string& document) {
  pugi::xml_document parsed;
  load(document, parsed);
  for (const pugi::xml_node child : parsed) record(child);
}

TreeRecipe::Text TreeRecipe::store(const char* text) {
  const Text stored{static_cast<std::uint32_t>(m_texts.size()),
                    static_cast<std::uint32_t>(std::strlen(text))};
  m_texts.append(text, stored.size + 1);
  return stored;
}

template <typename Node>
void TreeRecipe::record(Node node) {
  if (node.type() == pugi::node_pcdata) {
    m_steps.push_back({Step::Value, {}, store(node.value())});
    return;
  }
  if (node.type() != pugi::node_element) return;
  m_steps.push_back({Step::Open, store(node.name()), {}});
  for (const pugi::xml_attribute attribute : node.attributes()) {
    m_steps.push_back({Step::Attribute, store(attribute.name()), store(attribute.value())});
  }
  for (const pugi::xml_node child : node) record(child);
  m_steps.push_back({Step::Close, {}, {}});
}

std::string TreeRecipe::buildAndPrint() const {
  pugi::xml_document document;
  pugi::xml_node declaration = document.append_child(pugi::node_declaration);
  declaration.append_attribute("version").set_value("1.0");
  declaration.append_attribute("encoding").set_value("UTF-8");
  pugi::xml_node node = document;
  for (const Step& step : m_steps) {
    switch (step.kind) {
      case Step::Open:
        node = node.append_child(text(step.name));
        break;
      case Step::Attribute:
        node.append_attribute(text(step.name)).set_value(text(step.value), step.value.size);
        break;
      case Step::Value:
        node.append_child(pugi::node_pcdata).set_value(text(step.value), step.value.size);
        break;
      case Step::Close:
        node = node.parent();
        break;
    }
  }
  return print(document);
}

RecordRecipe::RecordRecipe(const tag_Site* list) {
  for (; list; list = list->pNext) {
    m_kinds.push_back(list->eSiteKind);
    sitehlp::eachFieldOf(*list, [this](const auto&, const auto& value) {
      if constexpr (std::is_array_v<std::remove_reference_t<decltype(value)>>) {
        const std::size_t length = std::wcslen(value);
        m_lengths.push_back(static_cast<std::uint32_t>(length));
        m_texts.append(value, length);
      } else {
        m_numbers.push_back(static_cast<std::int32_t>(value));
      }
    });
  }
}

tag_Site* RecordRecipe::build() const {
  tag_Site* head = nullptr;
  tag_Site** link = &head;
  const wchar_t* text = m_texts.data();
  const std::uint32_t* length = m_lengths.data();
  const std::int32_t* value = m_numbers.data();
  for (const std::int32_t kind : m_kinds) {
    tag_Site* const record = allocateRecord();
    *link = record;
    link = &record->pNext;
    record->eSiteKind = kind;
    sitehlp::eachFieldOf(*record, [&](const auto&, auto& field) {
      using Field = std::remove_reference_t<decltype(field)>;
      if constexpr (std::is_array_v<Field>) {
        std::wmemcpy(field, text, *length);
        std::wmemset(field + *length, L'\0', std::extent_v<Field> - *length);
        text += *length++;
      } else {
        field = static_cast<Field>(*value++);
      }
    });
  }
  return head;
}

void RecordRecipe::buildAndFree() const { freeRecords(build()); }

tag_Site* copyRecords(const std::vector<const tag_Site*>& lists) {
  tag_Site* head = nullptr;
  tag_Site** link = &head;
  for (const tag_Site* list : lists) {
    for (; list; list = list->pNext) {
      tag_Site* const copy = allocateRecord();
      std::memcpy(copy, list, sizeof(tag_Site));
      copy->pNext = nullptr;
      *link = copy;
      link = &copy->pNext;
    }
  }
  return head;
}

void freeRecords(tag_Site* list) {
  while (list) {
    tag_Site* const next = list->pNext;
    std::free(list);
    list = next;
  }
}

void lockAndUnlock(const char* name) {
  korvel_com::orb::lock::InterProcessReadLock lock(name);
  check(lock.lock(c_forEver), "cannot lock");
  lock.unlock();
}

void writeAtomically(const std::string& path, const std::string& bytes) {
  check(host::replaceFile(path, bytes.data(), bytes.size(), host::c_modeOfNewDocument) == 0,
        "cannot write the document");
}

}  // namespace bench
