#pragma once

namespace vx {

class ThreadPool;

// The fixed positions to their depths (plus offset) and the totals. The
// engine's "bench" runs on the main thread alone; with `helpers` the pool's
// helper threads search too (the developer tool's time-to-depth measurement).
void RunBench(ThreadPool& pool, int offset, bool helpers = false);
bool RunSelfTest(ThreadPool& pool);

}  // namespace vx
