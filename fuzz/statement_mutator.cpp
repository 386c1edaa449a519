// Mutates DBC files by what they consist of: lines, which mostly are statements, and words. Half of
// the mutations are those of libFuzzer, which knows bytes and the dictionary.

#include <algorithm>
#include <array>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <string_view>
#include <vector>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t max_size);

namespace {

using Random = std::minstd_rand;

/// Numbers at the limits of what statements and records hold.
constexpr std::array<std::string_view, 24> kNumbers = {
    "0",     "1",   "-1",         "7",          "8",          "31",         "32",    "63",
    "64",    "65",  "255",        "256",        "2047",       "32767",      "32768", "65535",
    "65536", "0.1", "2147483647", "2147483648", "4294967295", "4294967296", "1E308", "-1E999"};

std::size_t below(Random& random, std::size_t count) { return random() % count; }

/// A part of a text; offset and size, which hold while the text behind it changes.
struct Part {
  std::size_t begin;
  std::size_t size;
};

std::string_view of(const std::string& text, Part part) {
  return std::string_view(text).substr(part.begin, part.size);
}

/// Lines with their line feeds.
std::vector<Part> lines_of(const std::string& text) {
  std::vector<Part> lines;
  for (std::size_t at = 0; at < text.size(); at += lines.back().size) {
    const std::size_t end = std::min(text.find('\n', at), text.size() - 1);
    lines.push_back({at, end + 1 - at});
  }
  return lines;
}

enum class Kind { kNumber, kName, kText, kOther };

bool is_in_word(char character) {
  return std::isalnum(static_cast<unsigned char>(character)) != 0 || character == '_' ||
         character == '.' || character == '-' || character == '+';
}

Kind kind_of(char first) {
  const auto character = static_cast<unsigned char>(first);
  if (first == '"') return Kind::kText;
  if (std::isdigit(character) != 0 || first == '-' || first == '.') return Kind::kNumber;
  return std::isalpha(character) != 0 || first == '_' ? Kind::kName : Kind::kOther;
}

std::size_t end_of_word(const std::string& text, std::size_t begin) {
  if (text[begin] == '"') return std::min(text.find('"', begin + 1), text.size() - 1) + 1;
  const auto* const end = std::find_if_not(text.data() + begin + 1, text.data() + text.size(),
                                           [](char c) { return is_in_word(c); });
  return static_cast<std::size_t>(end - text.data());
}

/// All words of a kind.
std::vector<Part> words_of(const std::string& text, Kind wanted) {
  std::vector<Part> words;
  for (std::size_t at = 0; at < text.size();) {
    const Kind kind = kind_of(text[at]);
    const std::size_t end = kind == Kind::kOther ? at + 1 : end_of_word(text, at);
    if (kind == wanted) words.push_back({at, end - at});
    at = end;
  }
  return words;
}

/// Moves, doubles or deletes some lines.
void mutate_lines(std::string& text, Random& random) {
  const std::vector<Part> lines = lines_of(text);
  if (lines.empty()) return;
  const std::size_t first = below(random, lines.size());
  const std::size_t last = std::min(first + below(random, 4), lines.size() - 1);
  const std::size_t begin = lines[first].begin;
  const std::string taken = text.substr(begin, lines[last].begin + lines[last].size - begin);
  const std::size_t how = below(random, 3);  // 0: delete, 1: double, 2: move
  if (how != 1) text.erase(begin, taken.size());
  if (how == 0) return;
  const std::vector<Part> places = lines_of(text);
  text.insert(places.empty() ? 0 : places[below(random, places.size())].begin, taken);
}

/// Puts another word of its kind in the place of one, or of all that are equal to it.
void mutate_words(std::string& text, Random& random) {
  const auto kind = static_cast<Kind>(below(random, 3));
  const std::vector<Part> words = words_of(text, kind);
  if (words.empty()) return;
  const Part place = words[below(random, words.size())];
  std::string with(of(text, words[below(random, words.size())]));
  if (kind == Kind::kNumber && below(random, 2) == 0) with = kNumbers[random() % kNumbers.size()];
  if (kind == Kind::kName && below(random, 4) == 0) with.append(1 + below(random, 130), 'x');
  const std::string what(of(text, place));
  if (below(random, 4) != 0) return void(text.replace(place.begin, place.size, with));
  for (auto word = words.rbegin(); word != words.rend(); ++word) {
    if (of(text, *word) == what) text.replace(word->begin, word->size, with);
  }
}

std::size_t store(const std::string& text, std::uint8_t* data, std::size_t max_size) {
  return text.copy(reinterpret_cast<char*>(data), max_size);
}

std::string text_of(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t max_size, unsigned seed) {
  Random random(seed);
  const std::size_t how = below(random, 4);
  if (how > 1 || size == 0) return LLVMFuzzerMutate(data, size, max_size);
  std::string text = text_of(data, size);
  for (std::size_t i = 1 + below(random, 3); i > 0; --i)
    how == 0 ? mutate_lines(text, random) : mutate_words(text, random);
  return store(text, data, max_size);
}

/// Some lines of one file, in the other.
extern "C" std::size_t LLVMFuzzerCustomCrossOver(const std::uint8_t* data1, std::size_t size1,
                                                 const std::uint8_t* data2, std::size_t size2,
                                                 std::uint8_t* out, std::size_t max_out_size,
                                                 unsigned seed) {
  Random random(seed);
  std::string text = text_of(data1, size1);
  const std::string other = text_of(data2, size2);
  const std::vector<Part> lines = lines_of(text);
  const std::vector<Part> others = lines_of(other);
  if (lines.empty() || others.empty()) return store(text + other, out, max_out_size);
  const std::size_t first = below(random, others.size());
  const std::size_t last = std::min(first + below(random, 8), others.size() - 1);
  const std::size_t begin = others[first].begin;
  const std::size_t size = others[last].begin + others[last].size - begin;
  text.insert(lines[below(random, lines.size())].begin, other, begin, size);
  return store(text, out, max_out_size);
}
