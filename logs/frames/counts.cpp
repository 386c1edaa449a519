#include "zelk/logs/counts.hpp"

#include "base/seeded_hash.hpp"

std::size_t ZelkFrameCounts::IdHash::operator()(std::uint32_t id) const {
  return zelk::SeededHash()(id);
}

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
