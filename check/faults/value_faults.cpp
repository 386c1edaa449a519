#include <charconv>
#include <limits>

#include "check/faults/analysis.hpp"

namespace zelk::check {

namespace {

constexpr std::int64_t kRegisterMax = 255;  // the reader keeps the low 8 bits, with a note
constexpr std::int64_t kVariableTypeMax = 3;
constexpr std::string_view kNoFilterNode = "<<none>>";
constexpr std::string_view kAccessCodePrefix = "DUMMY_NODE_OSTREL";

template <typename Number>
bool is_in(std::int64_t value) {
  return value >= std::numeric_limits<Number>::min() && value <= std::numeric_limits<Number>::max();
}

bool is_access_code(std::string_view text) {
  if (!text.starts_with(kAccessCodePrefix)) return false;
  std::uint32_t code = 0;
  const char* const end = text.data() + text.size();
  const auto result = std::from_chars(text.data() + kAccessCodePrefix.size(), end, code, 16);
  return result.ec == std::errc{} && result.ptr == end;
}

class ValueFaults {
 public:
  explicit ValueFaults(const Analysis& analysis) : in_(analysis) {}

  void find() {
    for (std::uint32_t i = 0; i < in_.document.statements.size(); ++i)
      if (in_.statement(i).is_readable) find(i);
  }

 private:
  void find(std::uint32_t index) const {
    switch (in_.statement(index).kind) {
      case Word::kBitTiming:
        return check_registers(index);
      case Word::kVariable:
        return check_variable(index);
      case Word::kCategoryDefinition:
        check(index, Role::kCategoryNumber, is_in<std::int16_t>,
              "a category number, -32768 to 32767");
        return check(index, Role::kLevel, is_in<std::uint16_t>, "a level, 0 to 65535");
      case Word::kFilter:
        check(index, Role::kMode, is_in<std::int32_t>, "a filter mode of 32 bits");
        return check_filter_nodes(index);
      case Word::kAnnounced:
        in_.add(FaultKind::kSkipped, index).is_accepted = true;
        return;
      default:
        return;
    }
  }

  void check(std::uint32_t index, Role role, bool (*is_right)(std::int64_t),
             std::string_view expected) const {
    const auto value = signed_value(in_.document, in_.statement(index), role);
    if (!value || is_right(*value)) return;
    const Token& token = *in_.document.find(in_.statement(index), role);
    in_.add(FaultKind::kWrongValue, index, token).expected = expected;
  }

  void check_registers(std::uint32_t index) const {
    for (const Token& token : in_.document.tokens_of(in_.statement(index))) {
      const auto value = whole_value(in_.document, token);
      if (token.role != Role::kRegister || !value || *value <= kRegisterMax) continue;
      Fault& fault = in_.add(FaultKind::kWrongValue, index, token);
      fault.expected = "a bit timing register, 0 to 255";
      fault.is_accepted = true;
    }
  }

  void check_variable(std::uint32_t index) const {
    check(
        index, Role::kVariableType, [](std::int64_t value) { return value <= kVariableTypeMax; },
        "a type from 0 to 3");
    const Token* const access = in_.document.find(in_.statement(index), Role::kAccess);
    if (!access || is_access_code(in_.document.text_of(*access))) return;
    in_.add(FaultKind::kAccessCode, index, *access).is_accepted = true;
  }

  void check_filter_nodes(std::uint32_t index) const {
    for (const Token& token : in_.document.tokens_of(in_.statement(index))) {
      const bool is_wrong =
          token.kind == TokenKind::kText && text_value(in_.document, token) != kNoFilterNode;
      if (is_wrong) in_.add(FaultKind::kWrongValue, index, token).expected = "\"<<none>>\"";
    }
  }

  const Analysis& in_;
};

}  // namespace

void find_value_faults(const Analysis& analysis) { ValueFaults(analysis).find(); }

}  // namespace zelk::check
