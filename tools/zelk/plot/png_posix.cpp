#include <cairo.h>
#include <fmt/format.h>
#include <librsvg/rsvg.h>

#include <memory>

#include "base/escaping.hpp"
#include "input/lookup.hpp"
#include "plot/png.hpp"

namespace zelk::tool {

const char* const kWhyNoPng = nullptr;

namespace {

struct Releaser {
  void operator()(RsvgHandle* handle) const { g_object_unref(handle); }
  void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
  void operator()(cairo_t* context) const { cairo_destroy(context); }
};
template <typename Type>
using Held = std::unique_ptr<Type, Releaser>;

[[noreturn]] void fail(std::string_view reason) {
  throw RequestError(fmt::format("the picture cannot be drawn: {}", escaped(reason)));
}

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

Held<RsvgHandle> read_svg(const std::string& svg) {
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

cairo_status_t append_png(void* png, const unsigned char* data, unsigned length) {
  try {
    static_cast<std::string*>(png)->append(reinterpret_cast<const char*>(data), length);
    return CAIRO_STATUS_SUCCESS;
  } catch (const std::bad_alloc&) {
    return CAIRO_STATUS_NO_MEMORY;
  }
}

}  // namespace

std::string png_of(const std::string& svg, const PictureSize& size, double scale) {
  check_fonts();
  const Held<RsvgHandle> handle = read_svg(svg);
  const int width = static_cast<int>(size.width * scale);
  const int height = static_cast<int>(size.height * scale);
  const RsvgRectangle viewport{0, 0, static_cast<double>(width), static_cast<double>(height)};
  const Held<cairo_surface_t> surface(
      cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height));
  check(cairo_surface_status(surface.get()));
  const Held<cairo_t> context(cairo_create(surface.get()));
  Failure failure;
  failure.check(
      rsvg_handle_render_document(handle.get(), context.get(), &viewport, failure.slot()));
  check(cairo_status(context.get()));
  std::string png;
  check(cairo_surface_write_to_png_stream(surface.get(), append_png, &png));
  return png;
}

}  // namespace zelk::tool
