#ifndef HOST_XML_TEXT_FILE_H
#define HOST_XML_TEXT_FILE_H

#include <sys/types.h>

namespace host {

// A new document file is for its owner, and for its group to read.
constexpr mode_t c_modeOfNewDocument = 0640;

}  // namespace host

#endif
