#include <dlfcn.h>
#include <fmt/format.h>

#include <memory>
#include <new>

#include "base/escaping.hpp"
#include "input/formats.hpp"
#include "input/lookup.hpp"
#include "plot/png.hpp"
#include "plot/png_module.h"

namespace zelk::tool {

const char* const kWhyNoPng = nullptr;

namespace {

[[noreturn]] void fail(std::string_view reason) {
  throw RequestError(fmt::format("the picture cannot be drawn: {}", escaped(reason)));
}

/// The module's function. The module stays loaded: its libraries cannot be unloaded.
zelk_png_function* load() {
  void* const module = dlopen(module_path("zelk-png").c_str(), RTLD_NOW | RTLD_LOCAL);
  void* const function = module ? dlsym(module, "zelk_png") : nullptr;
  if (!function) {
    const char* const why = dlerror();
    fail(why ? why : "the module zelk-png is none");
  }
  return reinterpret_cast<zelk_png_function*>(function);
}

struct Result {
  std::string png;
  std::string reason;
};

int append(std::string& text, const char* bytes, std::size_t count) {
  try {
    text.append(bytes, count);
    return 1;
  } catch (const std::bad_alloc&) {
    return 0;
  }
}

int take_png(void* result, const char* bytes, std::size_t count) {
  return append(static_cast<Result*>(result)->png, bytes, count);
}

int take_reason(void* result, const char* bytes, std::size_t count) {
  return append(static_cast<Result*>(result)->reason, bytes, count);
}

}  // namespace

std::string png_of(const std::string& svg, const PictureSize& size, double scale) {
  const int width = static_cast<int>(size.width * scale);
  const int height = static_cast<int>(size.height * scale);
  Result result;
  if (!load()(svg.data(), svg.size(), width, height, take_png, take_reason, &result))
    fail(result.reason);
  return std::move(result.png);
}

}  // namespace zelk::tool
