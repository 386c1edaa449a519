/// \file
/// Writing of SVG elements.
///
/// A file that is shown by anyone's viewer cannot measure its texts. Widths are estimated for a
/// wide sans-serif face (that of DejaVu Sans), so that in a narrower one texts leave room and never
/// run into each other.

#ifndef ZELK_CHECK_PICTURE_SVG_HPP
#define ZELK_CHECK_PICTURE_SVG_HPP

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace zelk::check {

/// A face of the style sheet. Sizes and widths are in pixels, here and below.
struct Font {
  std::string_view name;  ///< its class
  int size;
  bool is_bold = false;
};

inline constexpr Font kTitleFont{"title", 20, true};
inline constexpr Font kHeadingFont{"heading", 13, true};
inline constexpr Font kTextFont{"body", 12};
inline constexpr Font kStrongFont{"strong", 12, true};
inline constexpr Font kCellFont{"cell", 12};  // in coloured cells
inline constexpr Font kMarkFont{"mark", 8, true};
inline constexpr Font kNumberFont{"number", 9};
inline constexpr Font kFreeNumberFont{"number free", 9};  // of unused bits

/// Estimated width of a line of text in UTF-8.
int text_width(std::string_view text, const Font& font);

/// The text if it is no wider than `width`; else its beginning and its end around an ellipsis,
/// because names that stand side by side often differ at their ends. Empty when nothing fits.
std::string fitted(std::string_view text, int width, const Font& font);

/// The text in lines no wider than `width`, as far as its blanks allow. What needs more than
/// `most_lines` ends in an ellipsis.
std::vector<std::string> wrapped(std::string_view text, int width, const Font& font,
                                 std::size_t most_lines);

struct Box {
  int x;
  int y;
  int width;
  int height;
};

enum class Anchor { kStart, kMiddle, kEnd };

/// Elements as text, valid XML whatever the texts hold: they are in UTF-8, and control characters
/// in them become "\x1B". Classes are static words.
class Svg {
 public:
  void rectangle(const Box& box, std::string_view classes);
  void line(int x1, int y1, int x2, int y2, std::string_view classes);
  /// A triangle in a square of 8 pixels with this upper left corner.
  void arrow(int x, int y, bool points_down);
  /// @param y  of the baseline
  void text(int x, int y, const Font& font, std::string_view text, Anchor anchor = Anchor::kStart);
  /// A text that is cut to a width; cut ones have a group of their own with the whole text as
  /// title.
  void fitted_text(int x, int y, int width, const Font& font, std::string_view text,
                   Anchor anchor = Anchor::kStart);

  /// A group with a title and, unless empty, a description for readers who hear the picture.
  class Group {
   public:
    Group(Svg& svg, std::string_view title, std::string_view description = {});
    ~Group() { svg_.content_ += "</g>\n"; }
    Group(const Group&) = delete;
    Group& operator=(const Group&) = delete;

   private:
    Svg& svg_;
  };

  /// Of all elements so far, in bytes.
  std::size_t size() const { return content_.size(); }

  /// The elements as a whole file.
  ///
  /// @param style  style sheet and definitions, as XML
  std::string document(int width, int height, std::string_view title, std::string_view description,
                       std::string_view style) const;

 private:
  void element(std::string_view name, std::string_view text);

  std::string content_;
};

}  // namespace zelk::check

#endif
