// The one engine a fuzz target drives: built on first use with the static
// tables, one search thread, and its output thrown away (the targets look
// for crashes and sanitizer reports, not for text).
#pragma once

#include <cstdio>

#include "engine/engine.h"
#include "engine/startup.h"

namespace fuzz {

inline vx::Engine& TheEngine() {
  static vx::Engine* engine = [] {
    std::freopen("/dev/null", "w", stdout);
    vx::InitStaticTables();
    return new vx::Engine(1);
  }();
  return *engine;
}

}  // namespace fuzz
