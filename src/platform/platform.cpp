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

bool cpu_suits_bmi2_build() {
  unsigned eax = 0, ebx = 0, ecx = 0, edx = 0;
  if (!__get_cpuid(1, &eax, &ebx, &ecx, &edx)) return false;
  const unsigned base_family = (eax >> 8) & 0xF;
  const unsigned family = base_family == 0xF ? base_family + ((eax >> 20) & 0xFF) : base_family;
  // FMA, MOVBE, POPCNT, XSAVE, OSXSAVE, AVX, F16C.
  const unsigned leaf1_ecx = (1u << 12) | (1u << 22) | (1u << 23) | (1u << 26) | (1u << 27) | (1u << 28) | (1u << 29);
  if ((ecx & leaf1_ecx) != leaf1_ecx) return false;
  // The system saves the SSE and AVX register state.
  unsigned xcr0_low = 0, xcr0_high = 0;
  __asm__("xgetbv" : "=a"(xcr0_low), "=d"(xcr0_high) : "c"(0));
  if ((xcr0_low & 6) != 6) return false;
  // BMI1, AVX2, BMI2.
  if (!__get_cpuid_count(7, 0, &eax, &ebx, &ecx, &edx)) return false;
  const unsigned leaf7_ebx = (1u << 3) | (1u << 5) | (1u << 8);
  if ((ebx & leaf7_ebx) != leaf7_ebx) return false;
  // LZCNT.
  if (!__get_cpuid(0x80000001, &eax, &ebx, &ecx, &edx) || !((ecx >> 5) & 1)) return false;
  unsigned vendor[3] = {};
  __get_cpuid(0, &eax, &vendor[0], &vendor[2], &vendor[1]);
  // "Auth" of AuthenticAMD and "Hygo" of HygonGenuine (the same cores).
  const bool amd = vendor[0] == 0x68747541 || vendor[0] == 0x6f677948;
  return !(amd && family < 0x19);
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
