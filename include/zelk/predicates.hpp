/// \file
/// Predicates over signals, for iterators.

#ifndef ZELK_PREDICATES_HPP
#define ZELK_PREDICATES_HPP

#include "zelk/iterator.hpp"

/// Multiplexors.
class ZELK_API MultiplexorPredicate : public ZelkPredicate<const sigblk> {
 public:
  bool operator()(const sigblk* signal, ZelkManager& manager, const char* db_name) override;
};

/// Signals that are multiplexed (`ZelkManager::SignalIsMultiplexed`).
class ZELK_API MultiplexedSignalPredicate : public ZelkPredicate<const sigblk> {
 public:
  bool operator()(const sigblk* signal, ZelkManager& manager, const char* db_name) override;
};

/// Signals whose multiplexor is this one.
class ZELK_API MultiplexedBySignalPredicate : public ZelkPredicate<const sigblk> {
 public:
  explicit MultiplexedBySignalPredicate(const sigblk& multiplexor) : multiplexor_(&multiplexor) {}
  bool operator()(const sigblk* signal, ZelkManager& manager, const char* db_name) override;

 private:
  const sigblk* multiplexor_;
};

/// Signals that a frame holds: the signal and the multiplexors above it lie within its data, and
/// the signal is present (`ZelkManager::CheckSignalModeValue`). No byte beyond the data is read.
class ZELK_API ValidSignalPredicate : public ZelkPredicate<const sigblk> {
 public:
  /// @param frame        the first data byte; the data must outlive the predicate
  /// @param data_length  in bytes
  ValidSignalPredicate(const unsigned char& frame, unsigned data_length)
      : frame_(&frame), data_length_(data_length) {}
  bool operator()(const sigblk* signal, ZelkManager& manager, const char* db_name) override;

 private:
  const unsigned char* frame_;
  unsigned data_length_;
};

/// Multiplexors that a frame holds.
class ZELK_API ValidMultiplexorPredicate : public ZelkPredicate<const sigblk> {
 public:
  ValidMultiplexorPredicate(const unsigned char& frame, unsigned data_length)
      : is_valid_(frame, data_length) {}
  bool operator()(const sigblk* signal, ZelkManager& manager, const char* db_name) override;

 private:
  ValidSignalPredicate is_valid_;
};

#endif
