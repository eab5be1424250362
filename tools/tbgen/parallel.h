// Splitting index ranges over worker threads.
#pragma once

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <thread>
#include <vector>

namespace vx::tbgen {

// Runs work(begin, end) over [0, count) in chunks taken by `threads` workers.
template <typename F>
void ParallelFor(uint64_t count, uint64_t chunk, int threads, F&& work) {
  std::atomic<uint64_t> next{0};
  auto run = [&] {
    for (uint64_t b; (b = next.fetch_add(chunk)) < count;) work(b, std::min(count, b + chunk));
  };
  std::vector<std::thread> pool;
  for (int t = 1; t < threads; ++t) pool.emplace_back(run);
  run();
  for (std::thread& t : pool) t.join();
}

}  // namespace vx::tbgen
