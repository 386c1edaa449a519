#include <cairo.h>
#include <librsvg/rsvg.h>

#include <exception>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

#include "plot/png_module.h"
#include "zelk/export.h"

namespace {

struct Releaser {
  void operator()(RsvgHandle* handle) const { g_object_unref(handle); }
  void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
  void operator()(cairo_t* context) const { cairo_destroy(context); }
};
template <typename Type>
using Held = std::unique_ptr<Type, Releaser>;

[[noreturn]] void fail(std::string_view reason) { throw std::runtime_error(std::string(reason)); }

/// Takes what the library reports of a failure.
class Failure {
 public:
  Failure() = default;
  Failure(const Failure&) = delete;
  Failure& operator=(const Failure&) = delete;
  ~Failure() { g_clear_error(&error_); }

  GError** slot() { return &error_; }
  void check(bool is_done) const {
    if (!is_done) fail(error_ ? error_->message : "no reason is given");
  }

 private:
  GError* error_ = nullptr;
};

void check(cairo_status_t status) {
  if (status != CAIRO_STATUS_SUCCESS) fail(cairo_status_to_string(status));
}

Held<RsvgHandle> read_svg(std::string_view svg) {
  Failure failure;
  Held<RsvgHandle> handle(rsvg_handle_new_from_data(reinterpret_cast<const guint8*>(svg.data()),
                                                    svg.size(), failure.slot()));
  failure.check(handle != nullptr);
  return handle;
}

double height_of(RsvgHandle& handle, const char* id) {
  const RsvgRectangle viewport{0, 0, 100, 100};
  RsvgRectangle ink{};
  Failure failure;
  failure.check(
      rsvg_handle_get_geometry_for_layer(&handle, id, &viewport, &ink, nullptr, failure.slot()));
  return ink.height;
}

/// Without a font all letters are boxes of one size, and nobody says so.
void check_fonts() {
  const Held<RsvgHandle> probe =
      read_svg(R"(<svg xmlns="http://www.w3.org/2000/svg" width="100" height="100">)"
               R"(<text id="dot" y="50">.</text><text id="letter" y="50">W</text></svg>)");
  if (height_of(*probe, "#dot") < height_of(*probe, "#letter")) return;
  fail("there is no font, such as that of the package fonts-dejavu-core");
}

/// Where a PNG goes.
struct Target {
  zelk_png_take take;
  void* receiver;
};

cairo_status_t hand_on(void* target, const unsigned char* data, unsigned length) {
  const auto& to = *static_cast<const Target*>(target);
  const bool is_taken = to.take(to.receiver, reinterpret_cast<const char*>(data), length) != 0;
  return is_taken ? CAIRO_STATUS_SUCCESS : CAIRO_STATUS_NO_MEMORY;
}

void draw(std::string_view svg, int width, int height, Target target) {
  check_fonts();
  const Held<RsvgHandle> handle = read_svg(svg);
  const RsvgRectangle viewport{0, 0, static_cast<double>(width), static_cast<double>(height)};
  const Held<cairo_surface_t> surface(
      cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height));
  check(cairo_surface_status(surface.get()));
  const Held<cairo_t> context(cairo_create(surface.get()));
  Failure failure;
  failure.check(
      rsvg_handle_render_document(handle.get(), context.get(), &viewport, failure.slot()));
  check(cairo_status(context.get()));
  check(cairo_surface_write_to_png_stream(surface.get(), hand_on, &target));
}

}  // namespace

extern "C" ZELK_MODULE_EXPORT int zelk_png(const char* svg, size_t svg_bytes, int width, int height,
                                           zelk_png_take png, zelk_png_take reason,
                                           void* receiver) {
  try {
    draw({svg, svg_bytes}, width, height, {png, receiver});
    return 1;
  } catch (const std::exception& error) {
    const std::string_view text = error.what();
    reason(receiver, text.data(), text.size());
    return 0;
  }
}
