#include "egdb/syzygy/registry.h"

#include <algorithm>
#include <cstdlib>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "egdb/syzygy/syzygy.h"
#include "engine/output.h"

namespace vx::syzygy {

namespace {

struct HashSlot {
  std::atomic<Key> key{0};
  TableEntry* entry = nullptr;
};

std::vector<std::string> directories;
TableEntry piece_tables[TBMAX_PIECE];
TableEntry pawn_tables[TBMAX_PAWN];
int piece_count = 0, pawn_count = 0;
HashSlot table_hash[1 << HASH_BITS][HSHMAX];
int largest = 0;
std::mutex load_mutex;

[[noreturn]] void Fatal(const std::string& message) {
  WriteLine(message);
  std::exit(1);
}

HashSlot* Bucket(Key key) { return table_hash[key >> (64 - HASH_BITS)]; }

// Directories of the path list: ";" separates them, and ":" as well where
// the system's paths hold none (not on Windows). Empty entries are skipped.
std::vector<std::string> SplitPath(const std::string& path) {
  std::vector<std::string> dirs;
  std::string dir;
  for (const char c : path + ";") {
    if (std::string_view(platform::PATH_LIST_SEPARATORS).find(c) == std::string_view::npos) {
      dir += c;
    } else if (!dir.empty()) {
      dirs.push_back(dir);
      dir.clear();
    }
  }
  return dirs;
}

// The first directory's file of that table name, or "" when none opens.
std::string FindFile(const std::string& name) {
  for (const std::string& dir : directories) {
    const std::string path = dir + "/" + name + ".rtbw";
    if (platform::is_readable_file(path)) return path;
  }
  return "";
}

void AddToHash(Key key, TableEntry* entry) {
  HashSlot* bucket = Bucket(key);
  for (int i = 0; i < HSHMAX; ++i)
    if (!bucket[i].entry) {
      bucket[i].key.store(key, std::memory_order_relaxed);
      bucket[i].entry = entry;
      return;
    }
  Fatal("HSHMAX too low!");
}

void Register(const std::string& name) {
  TableMaterial mat;
  if (!ParseTableName(name, mat)) return;
  const Key key = TableKey(mat, false), swapped = TableKey(mat, true);
  TableInfo info = DescribeTable(mat, key == swapped);
  TableEntry* entry;
  if (info.has_pawns) {
    if (pawn_count == TBMAX_PAWN) Fatal("TBMAX_PAWN limit too low!");
    entry = &pawn_tables[pawn_count++];
  } else {
    if (piece_count == TBMAX_PIECE) Fatal("TBMAX_PIECE limit too low!");
    entry = &piece_tables[piece_count++];
  }
  entry->key = key;
  entry->info = info;
  largest = std::max(largest, mat.men);
  AddToHash(key, entry);
  if (swapped != key) AddToHash(swapped, entry);
}

void Unload(TableEntry& entry) {
  platform::unmap_file(entry.file);
  entry.layout = WdlLayout{};
  entry.ready.store(false, std::memory_order_relaxed);
}

void FreeTables() {
  for (int i = 0; i < piece_count; ++i) Unload(piece_tables[i]);
  for (int i = 0; i < pawn_count; ++i) Unload(pawn_tables[i]);
  piece_count = pawn_count = largest = 0;
  for (auto& bucket : table_hash)
    for (HashSlot& slot : bucket) {
      slot.key.store(0, std::memory_order_relaxed);
      slot.entry = nullptr;
    }
  directories.clear();
}

// Maps the table's file and reads its layout. A file that is gone or
// corrupted fails the load with a message; a mapping the system refuses ends
// the program.
bool LoadTable(TableEntry& entry, const std::string& name) {
  const std::string path = FindFile(name);
  if (!path.empty()) entry.file = platform::map_file(path);
  if (path.empty() || entry.file.failure == platform::MapFailure::OPEN) {
    WriteLine("Could not find " + name + ".rtbw");
    return false;
  }
  if (entry.file.failure == platform::MapFailure::SIZE) Fatal("CreateFileMapping() failed.");
  if (entry.file.failure == platform::MapFailure::MAP)
    Fatal("MapViewOfFile() failed, name = " + name + ".rtbw, error = " + std::to_string(entry.file.error) + ".");
  const FileView view{entry.file.data, entry.file.size};
  if (!ReadWdlLayout(view, entry.info, entry.layout)) {
    WriteLine("Corrupted table.");
    Unload(entry);
    return false;
  }
  return true;
}

const std::vector<std::string>& AllNames() {
  static const std::vector<std::string> names = TableNames();
  return names;
}

}  // namespace

const TableEntry* FindTable(const Position& pos, Key key) {
  HashSlot* bucket = Bucket(key);
  HashSlot* slot = std::find_if(bucket, bucket + HSHMAX,
                                [key](const HashSlot& s) { return s.key.load(std::memory_order_relaxed) == key; });
  if (slot == bucket + HSHMAX) return nullptr;
  TableEntry* entry = slot->entry;
  if (!entry->ready.load(std::memory_order_acquire)) {
    std::lock_guard<std::mutex> lock(load_mutex);
    if (!entry->ready.load(std::memory_order_relaxed)) {
      if (!LoadTable(*entry, PositionTableName(pos, key != entry->key))) {
        slot->key.store(0, std::memory_order_relaxed);
        return nullptr;
      }
      entry->ready.store(true, std::memory_order_release);
    }
  }
  return entry;
}

int FullestBucketOfAllNames() {
  int count[1 << HASH_BITS] = {};
  for (const std::string& name : AllNames()) {
    TableMaterial mat;
    ParseTableName(name, mat);
    const Key key = TableKey(mat, false), swapped = TableKey(mat, true);
    ++count[key >> (64 - HASH_BITS)];
    if (swapped != key) ++count[swapped >> (64 - HASH_BITS)];
  }
  return *std::max_element(count, count + (1 << HASH_BITS));
}

}  // namespace vx::syzygy

namespace vx {

void InitSyzygy(const std::string& path) {
  using namespace syzygy;
  FreeTables();
  if (path.empty() || path == "<empty>") return;
  directories = SplitPath(path);
  for (const std::string& name : AllNames())
    if (!FindFile(name).empty()) Register(name);
  WriteLine("info string Found " + std::to_string(piece_count + pawn_count) + " syzygy tablebases");
}

int SyzygyLargest() { return syzygy::largest; }

}  // namespace vx
