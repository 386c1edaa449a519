#include "lint/configuration.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <nlohmann/json.hpp>
#include <system_error>
#include <utility>
#include <vector>

#include "base/check_memory.hpp"
#include "base/counted_characters.hpp"
#include "files/files.hpp"
#include "input/lookup.hpp"
#include "term/text.hpp"

namespace zelk::tool {

namespace {

using Base = nlohmann::json_sax<nlohmann::json>;

/// Takes the configuration from the parser's events. A value stands below the keys of `keys_`.
class ConfigurationReader : public Base {
 public:
  ConfigurationReader(const std::string& path, std::string_view text)
      : path_(path), text_(text), taken_(text.data()) {}

  LintConfiguration read() {
    const char* const end = text_.data() + text_.size();
    nlohmann::json::sax_parse(CountedCharacters(text_.data(), taken_),
                              CountedCharacters(end, taken_), this);
    return std::move(result_);
  }

  // --- What the parser finds ---

  bool null() override { return wrong_value(); }
  bool boolean(bool) override { return wrong_value(); }
  bool number_integer(number_integer_t value) override {
    return number(static_cast<double>(value));
  }
  bool number_unsigned(number_unsigned_t value) override {
    return number(static_cast<double>(value));
  }
  bool number_float(number_float_t value, const string_t&) override { return number(value); }
  bool binary(binary_t&) override { return wrong_value(); }
  bool start_array(std::size_t) override { return wrong_value(); }
  bool end_array() override { return true; }
  bool start_object(std::size_t) override;
  bool key(string_t& name) override;
  bool end_object() override;
  bool string(string_t& value) override;
  [[noreturn]] bool parse_error(std::size_t position, const std::string& token,
                                const nlohmann::json::exception& error) override;

 private:
  bool is_top_key(std::string_view name) const { return keys_.size() == 1 && keys_[0] == name; }
  bool is_rule() const { return keys_.size() == 2 && keys_[0] == "rules"; }

  void check_key();
  bool number(double value);
  bool wrong_value() { fail(expected_value()); }
  std::string expected_value() const;
  [[noreturn]] void fail(std::string_view text) const { fail_at(place_, text); }
  [[noreturn]] void fail_at(std::size_t offset, std::string_view text) const;

  const std::string& path_;
  const std::string_view text_;
  const char* taken_;
  std::vector<std::string> keys_;  ///< from the outermost object on; the last one may be empty
  std::size_t place_ = 0;          ///< of the last key
  LintConfiguration result_;
};

bool ConfigurationReader::start_object(std::size_t) {
  const bool may_be = keys_.empty() || is_top_key("rules") || is_rule();
  if (!may_be) return wrong_value();
  keys_.emplace_back();
  return true;
}

bool ConfigurationReader::end_object() {
  keys_.pop_back();
  return true;
}

bool ConfigurationReader::key(string_t& name) {
  keys_.back() = name;
  // The parser has just taken the second quote; quotes within the key are behind a backslash.
  std::size_t at = static_cast<std::size_t>(taken_ - text_.data()) - 1;
  do {
    at = text_.rfind('"', at - 1);
  } while (at > 0 && text_[at - 1] == '\\');
  place_ = at;
  check_key();
  return true;
}

void ConfigurationReader::check_key() {
  const std::string& key = keys_.back();
  if (keys_.size() == 1 && key != "fail-on" && key != "rules")
    fail(fmt::format("unknown key {}: there are \"fail-on\" and \"rules\"", in_quotes(key)));
  if (keys_.size() == 2 && !check::find_rule(key)) {
    NameSuggestion names(key);
    for (const check::Rule* const rule : check::all_rules()) names.add(rule->name);
    fail(fmt::format("there is no rule {}{}", in_quotes(key), names.text()));
  }
  if (keys_.size() != 3 || key == "severity") return;
  const check::Parameter& parameter = check::find_rule(keys_[1])->parameter;
  if (parameter.name.empty())
    fail(fmt::format("unknown key {}: the rule has no parameter", in_quotes(key)));
  if (key != parameter.name) {
    fail(fmt::format("unknown key {}: the rule's parameter is \"{}\"", in_quotes(key),
                     parameter.name));
  }
}

std::string ConfigurationReader::expected_value() const {
  if (keys_.empty()) return "expected an object";
  const std::string key = in_quotes(keys_.back());
  if (is_top_key("rules")) return "expected an object for \"rules\"";
  if (is_rule()) {
    return fmt::format("expected \"off\", \"note\", \"warning\", \"error\" or an object for {}",
                       key);
  }
  if (is_top_key("fail-on"))
    return fmt::format("expected \"note\", \"warning\" or \"error\" for {}", key);
  if (keys_.back() == "severity")
    return fmt::format("expected \"off\", \"note\", \"warning\" or \"error\" for {}", key);
  const check::Parameter& parameter = check::find_rule(keys_[1])->parameter;
  return fmt::format("expected a number from {:g} to {:g} for {}", parameter.least, parameter.most,
                     key);
}

bool ConfigurationReader::string(string_t& value) {
  const auto severity = check::severity_named(value);
  if (is_top_key("fail-on") && severity) {
    result_.fail_on = value;
    return true;
  }
  const bool is_severity = is_rule() || (keys_.size() == 3 && keys_.back() == "severity");
  if (!is_severity || (!severity && value != "off")) return wrong_value();
  const check::Rule& rule = *check::find_rule(keys_[1]);
  result_.settings.set_on(rule, severity.has_value());
  if (severity) result_.settings.set_severity(rule, *severity);
  return true;
}

bool ConfigurationReader::number(double value) {
  if (keys_.size() != 3 || keys_.back() == "severity") return wrong_value();
  const check::Rule& rule = *check::find_rule(keys_[1]);
  if (!(value >= rule.parameter.least && value <= rule.parameter.most)) return wrong_value();
  result_.settings.set_parameter(rule, value);
  return true;
}

bool ConfigurationReader::parse_error(std::size_t position, const std::string&,
                                      const nlohmann::json::exception&) {
  fail_at(std::min(position, text_.size() + 1) - (position > 0 ? 1 : 0), "this is no JSON");
}

void ConfigurationReader::fail_at(std::size_t offset, std::string_view text) const {
  const check::Source source(path_, std::string(text_));
  const auto [line, column] = source.position(static_cast<std::uint32_t>(offset));
  throw RequestError(fmt::format("{}:{}:{}: {}", escaped(path_), line, column, text));
}

}  // namespace

std::filesystem::path nearest_configuration(const std::filesystem::path& path) {
  std::error_code error;
  std::filesystem::path folder = std::filesystem::absolute(path, error).parent_path();
  check_memory(error);
  while (!folder.empty()) {
    std::filesystem::path file = folder / kConfigurationName;
    if (std::filesystem::exists(file, error)) return file;
    if (folder == folder.parent_path()) break;
    folder = folder.parent_path();
  }
  return {};
}

LintConfiguration parse_configuration(const std::string& path, std::string_view text) {
  return ConfigurationReader(path, text).read();
}

LintConfiguration read_configuration(const std::string& path) {
  try {
    return parse_configuration(path, files::read_all(path.c_str()));
  } catch (const std::system_error& error) {
    throw RequestError(fmt::format("{}: {}", escaped(path), error.code().message()));
  }
}

const check::Rule& rule_named(std::string_view name) {
  if (const check::Rule* const rule = check::find_rule(name)) return *rule;
  NameSuggestion names(name);
  for (const check::Rule* const rule : check::all_rules()) names.add(rule->name);
  throw RequestError(fmt::format("there is no rule {}{}", in_quotes(name), names.text()));
}

}  // namespace zelk::tool
