#ifndef BENCH_READS_H
#define BENCH_READS_H

#include "bench/fresh_documents.h"

namespace bench {

// ReadSiteList and the release of its list.
void readList(const DocumentPath& path);

}  // namespace bench

#endif
