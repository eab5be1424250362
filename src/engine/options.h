// The engine's settings: one process-wide table of UCI options, listed by
// "uci", changed by "setoption" and read by name where they are needed.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace vx {

class ThreadPool;

namespace UCI {

class Option {
 public:
  using Handler = std::function<void(const Option&)>;

  static Option Spin(const char* name, int32_t def, int32_t min, int32_t max, Handler on_change = nullptr);
  static Option Check(const char* name, bool def, Handler on_change = nullptr);
  static Option String(const char* name, const char* def, Handler on_change = nullptr);
  static Option Button(const char* name, Handler on_change);

  // Validates the text, stores it and runs the handler; a rejected value
  // changes nothing and calls nothing.
  void SetValue(const std::string& v);
  bool Accepts(const std::string& v) const;

  std::string type;
  std::string name;
  std::string value;  // current value, also listed as the default
  int32_t min = 0;
  int32_t max = 0;
  std::vector<std::string> vars;  // combo only
  Handler on_change;
};

}  // namespace UCI

// Reads a decimal integer the way the standard conversion does: leading
// blanks skipped, an optional sign, digits, the rest ignored. False when
// there are no digits or the number does not fit in 64 bits.
bool ParseInteger(const std::string& text, int64_t& value);

// Builds the table; the handlers keep the pool to reach the table and threads.
void InitOptions(ThreadPool& pool);
// Option whose name equals name without regard to letter case, or nullptr.
UCI::Option* FindOption(const std::string& name);
void SetOption(const std::string& name, const std::string& value);
// One "option name ..." line.
std::string OptionLine(const UCI::Option& o);
void PrintOptions();

// Readers for the rest of the engine: the value as an integer (0 when it is
// not a number or the option is unknown), compared with "true", as text.
int OptionInt(const char* name);
bool OptionTrue(const char* name);
std::string OptionText(const char* name);

}  // namespace vx
