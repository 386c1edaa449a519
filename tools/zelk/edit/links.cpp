#include "edit/links.hpp"

#include <algorithm>
#include <new>
#include <utility>

#include "base/list.hpp"
#include "zelk/model.h"

namespace zelk::tool {

namespace {

void release(rxblk* link) {
  while (attr* const value = link->attrs) {
    link->attrs = value->next;
    if (value->def && value->def->value_type == ZELK_ATTR_STRING) zelk_mfree(value->value.text);
    zelk_mfree(value);
  }
  zelk_mfree(link);
}

/// Takes the link to the node out of the list, or makes one.
rxblk* link_to(rxblk*& links, symblk* node) {
  rxblk** at = &links;
  while (*at && (*at)->node != node) at = &(*at)->next;
  if (!*at) return zelk_create_rx(node);
  rxblk* const found = std::exchange(*at, (*at)->next);
  found->next = nullptr;
  return found;
}

/// Where a new number belongs.
val*& place_for(val*& list, std::int32_t number) {
  const auto is_before = [](bool ascends, std::int32_t a, std::int32_t b) {
    return ascends ? a < b : a > b;
  };
  const bool ascends = !list || !list->next || list->value < list->next->value;
  bool is_sorted = true;
  for (const val* at = list; at && at->next; at = at->next)
    is_sorted = is_sorted && is_before(ascends, at->value, at->next->value);
  val** at = &list;
  while (*at && (!is_sorted || is_before(ascends, (*at)->value, number))) at = &(*at)->next;
  return *at;
}

}  // namespace

char* owned_text(std::string_view text) {
  auto* const copy = static_cast<char*>(zelk_malloc(text.size() + 1));
  if (!copy) throw std::bad_alloc();
  std::ranges::copy(text, copy);
  return copy;
}

void set_links(rxblk*& links, const std::vector<symblk*>& nodes) {
  rxblk* wanted = nullptr;
  ListTail tail(wanted);
  for (symblk* const node : nodes) tail.append(link_to(links, node));
  while (links) release(std::exchange(links, links->next));
  links = wanted;
}

bool set_description(val*& list, std::int32_t number, std::string_view text) {
  char* const copy = owned_text(text);
  val* const found =
      find_first(list, [number](const val& description) { return description.value == number; });
  if (found) {
    zelk_mfree(std::exchange(found->text, copy));
    return true;
  }
  val* const added = zelk_create_value();
  added->value = number;
  added->text = copy;
  val*& place = place_for(list, number);
  added->next = place;
  place = added;
  return false;
}

bool delete_description(val*& list, std::int32_t number) {
  val** at = &list;
  while (*at && (*at)->value != number) at = &(*at)->next;
  if (!*at) return false;
  val* const gone = std::exchange(*at, (*at)->next);
  zelk_mfree(gone->text);
  zelk_mfree(gone);
  return true;
}

void move_to_end(attr*& values) {
  if (!values || !values->next) return;
  attr* const first = std::exchange(values, values->next);
  first->next = nullptr;
  end_of(values) = first;
}

}  // namespace zelk::tool
