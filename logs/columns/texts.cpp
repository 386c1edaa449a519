#include "logs/columns/texts.hpp"

#include <algorithm>
#include <cstring>
#include <stdexcept>

#include "base/list.hpp"

namespace zelk::logs {

namespace {

constexpr std::size_t kNearValues = 256;

}  // namespace

TextArray::TextArray(std::span<const std::string> texts)
    : count(texts.size()), offsets((texts.size() + 1) * sizeof(std::int32_t)) {
  std::size_t size = 0;
  for (const std::string& text : texts) size += text.size();
  if (size > INT32_MAX) throw std::length_error("a dictionary has more than 2 GiB of texts");
  bytes = Buffer(std::max(size, Buffer::kAlignment));
  auto* const offset = reinterpret_cast<std::int32_t*>(offsets.data());
  std::size_t end = 0;
  for (std::size_t i = 0; i < texts.size(); ++i) {
    offset[i] = static_cast<std::int32_t>(end);
    std::ranges::copy(texts[i], bytes.data() + end);
    end += texts[i].size();
  }
  offset[texts.size()] = static_cast<std::int32_t>(end);
  offsets.pad((texts.size() + 1) * sizeof(std::int32_t));
  std::memset(bytes.data() + end, 0, bytes.size() - end);
}

std::int32_t TextTable::enter(const std::string& text) {
  const auto [entry, is_new] = indices_.try_emplace(text, static_cast<std::int32_t>(texts_.size()));
  if (!is_new) return entry->second;
  texts_.push_back(text);
  array_ = nullptr;
  return entry->second;
}

std::shared_ptr<const TextArray> TextTable::array() {
  if (!array_) array_ = std::make_shared<const TextArray>(texts_);
  return array_;
}

DescriptionTexts::DescriptionTexts(const sigblk& signal, Encoding encoding)
    : far_(each(signal.values).size()) {
  TextTable texts;
  for (const val& description : each(signal.values)) {
    const auto value = static_cast<std::uint32_t>(description.value);
    if (far_.find(value) != kNoText) continue;
    const std::int32_t text = texts.enter(to_utf8(view(description.text), encoding));
    far_.enter(value, text);
    if (value < kNearValues) near_.resize(kNearValues, kNoText);
    if (value < kNearValues) near_[value] = text;
  }
  array_ = texts.array();
}

}  // namespace zelk::logs
