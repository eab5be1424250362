#pragma once

namespace vx {

class ThreadPool;

void RunBench(ThreadPool& pool, int offset);
bool RunSelfTest(ThreadPool& pool);

}  // namespace vx
