#ifndef BENCH_ROW_GROUPS_H
#define BENCH_ROW_GROUPS_H

// Each adds the lines of one group of operations to the table.
namespace bench {

void addReadRows();
void addWriteRows();
void addMergeRows();
void addEditRows();
void addGrowthRows();
void addTraceRows();
// `program` is this program, which runs itself to have memory of its own.
void addMemoryRows(const char* program);
// The tool is looked for beside this program.
void addProcessRows(const char* program);

}  // namespace bench

#endif
