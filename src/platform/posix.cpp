// The platform layer on Linux and other POSIX systems.
#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>

#include "platform/platform.h"

namespace platform {

const char* const PATH_LIST_SEPARATORS = ";:";

int64_t now_ms() {
  timespec ts;
  clock_gettime(CLOCK_MONOTONIC, &ts);
  return int64_t(ts.tv_sec) * 1000 + ts.tv_nsec / 1000000;
}

void sleep_ms(int ms) {
  if (ms <= 0) return;
  timespec ts{ms / 1000, long(ms % 1000) * 1000000L};
  while (nanosleep(&ts, &ts) != 0 && errno == EINTR) {
  }
}

void read_standard_input_as_bytes() {}

MappedFile map_file(const std::string& path) {
  MappedFile f;
  const int fd = ::open(path.c_str(), O_RDONLY);
  if (fd < 0) {
    f.failure = MapFailure::OPEN;
    f.error = errno;
    return f;
  }
  struct stat st;
  if (::fstat(fd, &st) != 0) {
    f.failure = MapFailure::SIZE;
    f.error = errno;
  } else if (!S_ISREG(st.st_mode)) {
    f.failure = MapFailure::OPEN;
    f.error = EISDIR;
  } else if (st.st_size > 0) {
    void* p = ::mmap(nullptr, size_t(st.st_size), PROT_READ, MAP_SHARED, fd, 0);
    if (p != MAP_FAILED) {
      f.data = static_cast<const uint8_t*>(p);
      f.size = size_t(st.st_size);
    } else {
      f.failure = MapFailure::MAP;
      f.error = errno;
    }
  }
  ::close(fd);
  return f;
}

void unmap_file(MappedFile& f) {
  if (f.data) ::munmap(const_cast<uint8_t*>(f.data), f.size);
  f = MappedFile{};
}

bool is_readable_file(const std::string& path) {
  const int fd = ::open(path.c_str(), O_RDONLY);
  if (fd < 0) return false;
  struct stat st;
  const bool regular = ::fstat(fd, &st) == 0 && S_ISREG(st.st_mode);
  ::close(fd);
  return regular;
}

std::vector<std::string> list_directory(const std::string& dir) {
  std::vector<std::string> names;
  DIR* d = ::opendir(dir.c_str());
  if (!d) return names;
  while (dirent* e = ::readdir(d)) {
    std::string name = e->d_name;
    if (name == "." || name == "..") continue;
    struct stat st;
    if (::stat((dir + "/" + name).c_str(), &st) == 0 && S_ISREG(st.st_mode)) names.push_back(name);
  }
  ::closedir(d);
  return names;
}

namespace {

uint64_t read_limit_file(const char* path) {
  std::ifstream in(path);
  uint64_t v = 0;
  if (in >> v) return v;
  return UINT64_MAX;  // missing file or "max"
}

}  // namespace

// Physical memory or a smaller control-group limit, less an eighth (at least
// 512 MB) for the rest, and within any address-space or data limit set on
// the process.
uint64_t usable_memory() {
  constexpr uint64_t MB = uint64_t(1) << 20;
  const long pages = sysconf(_SC_PHYS_PAGES), page_size = sysconf(_SC_PAGESIZE);
  uint64_t total = pages > 0 && page_size > 0 ? uint64_t(pages) * uint64_t(page_size) : UINT64_MAX;
  total = std::min({total, read_limit_file("/sys/fs/cgroup/memory.max"),
                    read_limit_file("/sys/fs/cgroup/memory/memory.limit_in_bytes")});
  const uint64_t headroom = std::max(total / 8, 512 * MB);
  uint64_t usable = total > headroom ? total - headroom : 0;
  for (int resource : {RLIMIT_AS, RLIMIT_DATA}) {
    rlimit rl;
    if (getrlimit(resource, &rl) == 0 && rl.rlim_cur != RLIM_INFINITY) usable = std::min(usable, uint64_t(rl.rlim_cur));
  }
  return usable;
}

// Anonymous pages arrive zero-filled. The mapping has room to start the
// memory on an `align` boundary, so that the kernel can back it with huge
// pages: fewer page faults while it fills and fewer translation misses.
LargeMemory allocate_large(size_t bytes, size_t align) {
  LargeMemory m;
  void* p = ::mmap(nullptr, bytes + align, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (p == MAP_FAILED) return m;
  m.base = p;
  m.size = bytes + align;
  m.aligned = reinterpret_cast<void*>((reinterpret_cast<uintptr_t>(p) + align - 1) & ~uintptr_t(align - 1));
#ifdef MADV_HUGEPAGE
  ::madvise(m.aligned, bytes, MADV_HUGEPAGE);
#endif
  return m;
}

void free_large(LargeMemory& m) {
  if (m.base) ::munmap(m.base, m.size);
  m = LargeMemory{};
}

}  // namespace platform
