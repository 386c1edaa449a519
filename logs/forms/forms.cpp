#include <array>

#include "logs/forms/form.hpp"

namespace zelk::logs {

namespace {

constexpr std::size_t kShownBytes = 60;  // of a malformed line

bool is_any(std::string_view) { return true; }

constexpr std::array kForms = {
    FormRow{
        {"candump", "lines as candump writes them, to a file or a terminal, or of frames alone"},
        is_any,
        open_candump},
};

}  // namespace

std::span<const FormRow> forms() { return kForms; }

void note_malformed(ZelkLogBlock& block, std::uint64_t number, std::string_view line) {
  ++block.counts.malformed;
  if (block.malformed.size() < ZelkLogBlock::kMostMalformed)
    block.malformed.push_back({number, std::string(line.substr(0, kShownBytes))});
}

}  // namespace zelk::logs
