#include "bench/row.h"
#include "bench/rows/row_groups.h"
#include "platform/common/log.h"

namespace bench {
namespace {

constexpr int c_calls = 20000;

[[gnu::noinline]] void emptyCall() { asm volatile(""); }

[[gnu::noinline]] void tracedCall() {
  const ADetailTrace trace(L"SiteHlp", L"Reading Sitelist");
  asm volatile("");
}

}  // namespace

void addTraceRows() {
  addRow({"scope trace with its level disabled", "an empty call", 2.0, 400, [] {
            return Measurement{timed(tracedCall, c_calls), timed(emptyCall, c_calls)};
          }});
}

}  // namespace bench
