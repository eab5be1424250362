#include "platform/platform.h"

#include <cpuid.h>
#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <thread>

namespace vx::platform {

int64_t now_ms() {
  using namespace std::chrono;
  return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

bool cpu_has_popcnt() {
  unsigned eax = 0, ebx = 0, ecx = 0, edx = 0;
  if (!__get_cpuid(1, &eax, &ebx, &ecx, &edx)) return false;
  return (ecx >> 23) & 1;
}

void sleep_ms(int ms) { std::this_thread::sleep_for(std::chrono::milliseconds(ms)); }

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

bool is_readable_file(const std::string& path) {
  const int fd = ::open(path.c_str(), O_RDONLY);
  if (fd < 0) return false;
  struct stat st;
  const bool regular = ::fstat(fd, &st) == 0 && S_ISREG(st.st_mode);
  ::close(fd);
  return regular;
}

void unmap_file(MappedFile& f) {
  if (f.data) ::munmap(const_cast<uint8_t*>(f.data), f.size);
  f = MappedFile{};
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

}  // namespace vx::platform
