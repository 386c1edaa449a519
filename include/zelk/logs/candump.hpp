/// \file
/// Frames as candump spells them in its logs.

#ifndef ZELK_LOGS_CANDUMP_HPP
#define ZELK_LOGS_CANDUMP_HPP

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "zelk/export.h"
#include "zelk/logs/frame.hpp"

/// Longest name of a channel, in bytes.
inline constexpr std::size_t kZelkLongestChannel = 64;

/// Reads a frame alone: "123#DEADBEEF", "12345678##1DEAD", "123#R8".
///
/// @param frame  receives identifier, flags, length and data; its time and channel do not change
/// @return false for other texts
ZELK_LOGS_API bool ZelkParseFrame(std::string_view text, ZelkFrame& frame);

/// The frame alone, in that form.
///
/// @throws std::bad_alloc
ZELK_LOGS_API std::string ZelkFrameText(const ZelkFrame& frame);

/// Appends a line as "candump -l" writes it: "(1436509052.249713) can0 123#DEADBEEF". The time has
/// six decimals, or nine where they are needed, and is left out where there is none; a frame that
/// was sent has a " T" behind it.
///
/// @param index    of the frame
/// @param channel  stands for the name of the channel where that is empty
/// @param time     stands for the frame's time; none: as it is
/// @throws std::length_error for data of more than 64 bytes, which that form has no place for
ZELK_LOGS_API void ZelkAppendLogLine(const ZelkFrameBlock& frames, std::size_t index,
                                     std::string_view channel, std::string& text,
                                     std::optional<std::int64_t> time = std::nullopt);

#endif
