// The platform layer on Windows.
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include <fcntl.h>
#include <io.h>

#include <cstdio>

#include <algorithm>

#include "platform/platform.h"

namespace platform {

// Paths start with a drive letter and ':', so only ';' separates them.
const char* const PATH_LIST_SEPARATORS = ";";

namespace {

int64_t counter_frequency() {
  LARGE_INTEGER f;
  QueryPerformanceFrequency(&f);
  return f.QuadPart;
}

}  // namespace

int64_t now_ms() {
  static const int64_t frequency = counter_frequency();
  LARGE_INTEGER c;
  QueryPerformanceCounter(&c);
  // Whole seconds and the remainder apart, so the product cannot overflow.
  return c.QuadPart / frequency * 1000 + c.QuadPart % frequency * 1000 / frequency;
}

void sleep_ms(int ms) {
  if (ms > 0) Sleep(DWORD(ms));
}

void read_standard_input_as_bytes() { _setmode(_fileno(stdin), _O_BINARY); }

MappedFile map_file(const std::string& path) {
  MappedFile f;
  HANDLE file = CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                            FILE_FLAG_RANDOM_ACCESS, nullptr);
  if (file == INVALID_HANDLE_VALUE) {
    f.failure = MapFailure::OPEN;
    f.error = int(GetLastError());
    return f;
  }
  LARGE_INTEGER size;
  if (!GetFileSizeEx(file, &size)) {
    f.failure = MapFailure::SIZE;
    f.error = int(GetLastError());
  } else if (size.QuadPart > 0) {
    HANDLE mapping = CreateFileMappingA(file, nullptr, PAGE_READONLY, 0, 0, nullptr);
    void* p = mapping ? MapViewOfFile(mapping, FILE_MAP_READ, 0, 0, 0) : nullptr;
    if (p) {
      f.data = static_cast<const uint8_t*>(p);
      f.size = size_t(size.QuadPart);
      f.handle = mapping;
    } else {
      f.failure = MapFailure::MAP;
      f.error = int(GetLastError());
      if (mapping) CloseHandle(mapping);
    }
  }
  CloseHandle(file);
  return f;
}

void unmap_file(MappedFile& f) {
  if (f.data) UnmapViewOfFile(f.data);
  if (f.handle) CloseHandle(f.handle);
  f = MappedFile{};
}

bool is_readable_file(const std::string& path) {
  HANDLE file = CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                            FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) return false;
  const bool regular = GetFileType(file) == FILE_TYPE_DISK &&
                       !(GetFileAttributesA(path.c_str()) & FILE_ATTRIBUTE_DIRECTORY);
  CloseHandle(file);
  return regular;
}

std::vector<std::string> list_directory(const std::string& dir) {
  std::vector<std::string> names;
  WIN32_FIND_DATAA found;
  HANDLE search = FindFirstFileA((dir + "\\*").c_str(), &found);
  if (search == INVALID_HANDLE_VALUE) return names;
  do {
    if (!(found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)) names.push_back(found.cFileName);
  } while (FindNextFileA(search, &found));
  FindClose(search);
  return names;
}

// Physical memory less an eighth (at least 512 MB) for the rest.
uint64_t usable_memory() {
  constexpr uint64_t MB = uint64_t(1) << 20;
  MEMORYSTATUSEX status;
  status.dwLength = sizeof(status);
  const uint64_t total = GlobalMemoryStatusEx(&status) ? uint64_t(status.ullTotalPhys) : UINT64_MAX;
  const uint64_t headroom = std::max(total / 8, 512 * MB);
  return total > headroom ? total - headroom : 0;
}

// VirtualAlloc gives zero-filled pages on a 64 KB boundary; the extra `align`
// bytes let the memory start on a larger boundary.
LargeMemory allocate_large(size_t bytes, size_t align) {
  LargeMemory m;
  void* p = VirtualAlloc(nullptr, bytes + align, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
  if (!p) return m;
  m.base = p;
  m.size = bytes + align;
  m.aligned = reinterpret_cast<void*>((reinterpret_cast<uintptr_t>(p) + align - 1) & ~uintptr_t(align - 1));
  return m;
}

void free_large(LargeMemory& m) {
  if (m.base) VirtualFree(m.base, 0, MEM_RELEASE);
  m = LargeMemory{};
}

}  // namespace platform
