#include "engine/input.h"

#include <iostream>

namespace vx {

InputHandler::~InputHandler() {
  if (reader_.joinable()) reader_.detach();
}

void InputHandler::Start() {
  reader_running_ = true;
  reader_ = std::thread(&InputHandler::Input, this);
}

void InputHandler::Input() {
  std::string line;
  while (line != "quit") {
    if (!std::getline(std::cin, line)) line = "quit";
    // A GUI on Windows ends its lines with "\r\n": the same command.
    if (!line.empty() && line.back() == '\r') line.pop_back();
    Push(line);
  }
  reader_running_ = false;
}

void InputHandler::AcquireSpin() {
  while (lock_.fetch_or(1, std::memory_order_acquire) != 0) std::this_thread::yield();
}

void InputHandler::Push(std::string line) {
  AcquireSpin();
  queue_.push_back(std::move(line));
  ++size_;
  ReleaseSpin();

  std::lock_guard<std::mutex> guard(mutex_);
  ++count_;
  cond_.notify_one();
}

std::string InputHandler::GetLine() {
  {
    std::unique_lock<std::mutex> guard(mutex_);
    cond_.wait(guard, [this] { return count_ >= 1; });
  }
  AcquireSpin();
  std::string line = std::move(queue_.front());
  queue_.pop_front();
  --size_;
  ReleaseSpin();

  std::lock_guard<std::mutex> guard(mutex_);
  --count_;
  return line;
}

size_t InputHandler::Pending() {
  AcquireSpin();
  const size_t n = size_;
  ReleaseSpin();
  return n;
}

bool InputHandler::CanDeliver() { return reader_running_ || Pending() > 0; }

bool InputHandler::Finish() {
  if (!reader_.joinable()) return true;
  if (reader_running_) {
    reader_.detach();
    return false;
  }
  reader_.join();
  return true;
}

}  // namespace vx
