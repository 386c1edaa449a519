/// \file
/// What the module zelk-png does for the program.
///
/// It stands apart because librsvg brings some fifty libraries along, which every start of the
/// program would load.

#ifndef ZELK_TOOL_PLOT_PNG_MODULE_H
#define ZELK_TOOL_PLOT_PNG_MODULE_H

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

/// Takes the next part of a result. `receiver` is what the caller of `zelk_png` gave.
///
/// @return 0 when there is no room for it
typedef int (*zelk_png_take)(void* receiver, const char* bytes, size_t count);

/// Draws an SVG file as a PNG file.
///
/// @param svg     `svg_bytes` bytes
/// @param width   of the PNG in pixels, above 0, as `height`
/// @param png     takes the PNG, in parts; what it took before a failure is of no use
/// @param reason  takes, in UTF-8, why it cannot be drawn
/// @return 1 when it was drawn, else 0
typedef int zelk_png_function(const char* svg, size_t svg_bytes, int width, int height,
                              zelk_png_take png, zelk_png_take reason, void* receiver);

/// The function that the module exports.
zelk_png_function zelk_png;

#ifdef __cplusplus
}
#endif

#endif
