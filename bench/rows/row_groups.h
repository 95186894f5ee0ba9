#ifndef BENCH_ROW_GROUPS_H
#define BENCH_ROW_GROUPS_H

// Each function adds the rows of one group of operations to the table.
namespace bench {

void addReadRows();
void addPeerRows();
void addWriteRows();
void addMergeRows();
void addEditRows();
void addTraceRows();
// `program` is the path of this program. It runs itself, so that each measurement has its own
// process.
void addGrowthRows(const char* program);
void addMemoryRows(const char* program);
// The tool must be next to this program.
void addProcessRows(const char* program);
void addFleetRows(const char* program);

}  // namespace bench

#endif
