#include "input/lookup.hpp"
#include "plot/png.hpp"

namespace zelk::tool {

const char* const kWhyNoPng =
    "the program draws no PNG on Windows; write an .svg, which browsers and office programs show";

std::string png_of(const std::string&, const PictureSize&, double) {
  throw RequestError(kWhyNoPng);
}

}  // namespace zelk::tool
