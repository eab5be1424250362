#include "egdb/bases/format.h"

namespace vx {

uint32_t BaseChecksum(const uint8_t* data, size_t size) {
  uint32_t sum = 0;
  for (size_t k = BASE_HEADER_SIZE; k < size; ++k) sum ^= uint32_t(data[k]) << (8 * ((k - BASE_HEADER_SIZE) & 3));
  return sum;
}

bool ParseBaseRecordName(const std::string& name, BaseRecordName& out) {
  const size_t dot = name.find('.');
  if (dot == std::string::npos || name.size() < dot + 6) return false;
  out.material = name.substr(0, dot);
  size_t i = dot + 5;
  if (name[i] < '0' || name[i] > '9') return false;
  int number = 0;
  for (; i < name.size() && name[i] >= '0' && name[i] <= '9'; ++i) {
    number = number * 10 + (name[i] - '0');
    if (number > 999) return false;
  }
  if (i == name.size() || (name[i] != 'w' && name[i] != 'b')) return false;
  out.subtable = number;
  out.lead_white = name[i] == 'w';
  out.white_to_move = name.find("wtm") != std::string::npos;
  return true;
}

std::string MakeBaseRecordName(const BaseRecordName& r) {
  const char* free_chars = r.white_to_move && !r.lead_white ? "wtm_" : "vxb_";
  return r.material + "." + free_chars + std::to_string(r.subtable) + (r.lead_white ? "wtm" : "btm");
}

}  // namespace vx
