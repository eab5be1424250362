#include "engine/options.h"

#include <cctype>
#include <cerrno>
#include <climits>
#include <cstdlib>

#include "egdb/bases/bases.h"
#include "egdb/syzygy/syzygy.h"
#include "engine/output.h"
#include "eval/evaluate.h"
#include "search/thread.h"
#include "search/tt.h"

namespace vx {

namespace {

std::vector<UCI::Option> option_table;

bool SameNameIgnoringCase(const std::string& a, const std::string& b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i)
    if (std::tolower(static_cast<unsigned char>(a[i])) != std::tolower(static_cast<unsigned char>(b[i]))) return false;
  return true;
}

// The piece-square tables with or without the strength-limitation noise.
void RebuildEvalTables(bool noise) { init_eval(noise, OptionInt("UCI_Elo")); }

}  // namespace

namespace UCI {

Option Option::Spin(const char* name, int32_t def, int32_t min, int32_t max, Handler on_change) {
  return Option{"spin", name, std::to_string(def), min, max, {}, std::move(on_change)};
}

Option Option::Check(const char* name, bool def, Handler on_change) {
  return Option{"check", name, def ? "true" : "false", 0, 0, {}, std::move(on_change)};
}

Option Option::String(const char* name, const char* def, Handler on_change) {
  return Option{"string", name, def, 0, 0, {}, std::move(on_change)};
}

Option Option::Button(const char* name, Handler on_change) {
  return Option{"button", name, "", 0, 0, {}, std::move(on_change)};
}

bool Option::Accepts(const std::string& v) const {
  if (type == "spin") {
    int64_t n = 0;
    return !v.empty() && ParseInteger(v, n) && n >= min && n <= max;
  }
  if (type == "check") return v == "true" || v == "false";
  if (type == "combo") {
    for (const std::string& var : vars)
      if (var == v) return true;
    return false;
  }
  return true;
}

void Option::SetValue(const std::string& v) {
  if (!Accepts(v)) return;
  value = v;
  if (on_change) on_change(*this);
}

}  // namespace UCI

bool ParseInteger(const std::string& text, int64_t& value) {
  const char* begin = text.c_str();
  char* end = nullptr;
  errno = 0;
  const long long n = std::strtoll(begin, &end, 10);
  if (end == begin || errno == ERANGE) return false;
  value = n;
  return true;
}

void InitOptions(ThreadPool& pool) {
  using UCI::Option;
  ThreadPool* p = &pool;
  option_table = {
      Option::Spin("Hash", 64, 1, 65536,
                   [p](const Option& o) {
                     int64_t mb = 0;
                     ParseInteger(o.value, mb);
                     p->main().table->resize(uint32_t(mb));
                     p->main().table->clear();
                   }),
      Option::Check("Ponder", false),
      Option::Spin("MultiPV", 1, 1, 20),
      Option::String("UCI_EngineAbout", "Vorlaxen by Quenstel, https://vorlaxen.org"),
      Option::Check("UCI_Chess960", false),
      Option::Check("UCI_ShowCurrLine", false),
      Option::Check("UCI_LimitStrength", false, [](const Option& o) { RebuildEvalTables(o.value == "true"); }),
      Option::Spin("UCI_Elo", 1400, 850, 2800,
                   [](const Option&) { RebuildEvalTables(OptionTrue("UCI_LimitStrength")); }),
      Option::Check("Keep Hash Tables", true),
      Option::Button("Clear Hash",
                     [p](const Option&) {
                       p->main().table->clear();
                       for (Thread* t : p->threads) t->state->reset_history();
                     }),
      Option::Check("Use Vorlaxenbases", true),
      Option::String("UCI_VorlaxenbasesPath", "vorlaxenbases/bases.ini",
                     [](const Option& o) { LoadVorlaxenbases(o.value); }),
      Option::Check("Use Syzygy Databases", true),
      Option::Check("Syzygy 50 Moves Rule", true),
      Option::String("Syzygy Path", "<empty>", [](const Option& o) { InitSyzygy(o.value); }),
      Option::Spin("Contempt", 0, -300, 300),
      Option::Spin("Time Buffer (sec)", 1, 0, 60),
      Option::Spin("Time Usage Percent", 100, 50, 200),
      Option::Spin("Threads", 1, 1, 1024,
                   [p](const Option& o) {
                     int64_t n = 1;
                     ParseInteger(o.value, n);
                     p->SetThreadCount(size_t(n));
                   }),
      Option::Check("UCI_ShowWDL", false),
  };
}

UCI::Option* FindOption(const std::string& name) {
  for (UCI::Option& o : option_table)
    if (SameNameIgnoringCase(o.name, name)) return &o;
  return nullptr;
}

void SetOption(const std::string& name, const std::string& value) {
  if (UCI::Option* o = FindOption(name)) o->SetValue(value);
}

std::string OptionLine(const UCI::Option& o) {
  std::string s = "option name " + o.name + " type " + o.type;
  if (o.type == "spin") s += " min " + std::to_string(o.min) + " max " + std::to_string(o.max);
  if (o.type != "button") s += " default " + o.value;
  if (o.type == "combo")
    for (const std::string& var : o.vars) s += " var " + var;
  return s;
}

void PrintOptions() {
  const std::vector<UCI::Option> listing = option_table;
  for (const UCI::Option& o : listing) WriteLine(OptionLine(o));
}

int OptionInt(const char* name) {
  const UCI::Option* o = FindOption(name);
  int64_t n = 0;
  if (!o || !ParseInteger(o->value, n)) return 0;
  return n < INT_MIN ? INT_MIN : n > INT_MAX ? INT_MAX : int(n);
}

bool OptionTrue(const char* name) {
  const UCI::Option* o = FindOption(name);
  return o && o->value == "true";
}

std::string OptionText(const char* name) {
  const UCI::Option* o = FindOption(name);
  return o ? o->value : std::string();
}

}  // namespace vx
