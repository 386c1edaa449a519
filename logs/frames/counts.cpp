#include "zelk/logs/counts.hpp"

ZelkFrameCounts& ZelkFrameCounts::operator+=(const ZelkFrameCounts& other) {
  outside += other.outside;
  decoded += other.decoded;
  unknown += other.unknown;
  packets += other.packets;
  remote += other.remote;
  errors += other.errors;
  too_short += other.too_short;
  for (const auto& [id, count] : other.unknown_ids) unknown_ids[id] += count;
  return *this;
}
