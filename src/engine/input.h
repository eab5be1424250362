// The standard-input reader: a thread that turns input lines into a queue
// the main thread takes them from, in order.
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <list>
#include <mutex>
#include <string>
#include <thread>

namespace vx {

class InputHandler {
 public:
  InputHandler() = default;
  ~InputHandler();
  InputHandler(const InputHandler&) = delete;
  InputHandler& operator=(const InputHandler&) = delete;

  // Starts the reader thread on standard input.
  void Start();
  // The reader thread's body: queues every line read; ends after queueing
  // "quit", which it also queues when the input ends.
  void Input();
  // Appends one line to the queue and counts it.
  void Push(std::string line);
  // Blocks until a line is queued; removes and returns the oldest one.
  std::string GetLine();
  // Lines waiting in the queue, read under the spin lock only; never blocks.
  size_t Pending();
  // A line will be there for GetLine: one is queued, or the reader still runs.
  bool CanDeliver();
  // At program end: joins the reader when it has ended and returns true;
  // otherwise (it still waits for input) lets it go and returns false.
  bool Finish();

 private:
  void AcquireSpin();
  void ReleaseSpin() { lock_.store(0, std::memory_order_release); }

  std::condition_variable cond_;
  std::mutex mutex_;
  int32_t count_ = 0;
  std::atomic<int32_t> lock_{0};
  std::thread reader_;
  std::atomic<bool> reader_running_{false};
  std::list<std::string> queue_;
  size_t size_ = 0;
};

}  // namespace vx
