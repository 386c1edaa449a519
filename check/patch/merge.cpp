#include "check/patch/merge.hpp"

#include <algorithm>
#include <string_view>

#include "base/characters.hpp"

namespace zelk::check {

namespace {

std::vector<std::uint64_t> values_of(const std::vector<Piece>& pieces) {
  std::vector<std::uint64_t> values;
  values.reserve(pieces.size());
  for (const Piece& piece : pieces) values.push_back(piece.value);
  return values;
}

/// By which the pieces of two spellings of a statement are matched: numbers and texts by what they
/// are for, names by their objects.
std::vector<std::uint64_t> parts_of(const std::vector<Piece>& pieces) {
  std::vector<std::uint64_t> parts;
  parts.reserve(pieces.size());
  for (const Piece& piece : pieces)
    parts.push_back(piece.object == Cast::kNone ? piece.shape : piece.value);
  return parts;
}

/// For each piece the index of that of the other spelling; none when that has no such part.
Partners places_in(const std::vector<Piece>& pieces, const std::vector<Piece>& other) {
  Partners places(pieces.size(), kNoPartner);
  std::uint32_t at = 0;
  std::uint32_t there = 0;
  const auto match_up_to = [&](std::uint32_t end) {
    while (at < end) places[at++] = there++;
  };
  for (const Divergence& divergence : divergences(parts_of(pieces), parts_of(other))) {
    match_up_to(divergence.begin);
    at = divergence.end;
    there = divergence.new_end;
  }
  match_up_to(static_cast<std::uint32_t>(pieces.size()));
  return places;
}

bool touch(char left, char right) { return is_name_character(left) && is_name_character(right); }

}  // namespace

bool Merge::are_equal(std::uint32_t before, std::uint32_t after) const {
  return values_of(pieces_of(casts_.before, before)) == values_of(pieces_of(casts_.after, after));
}

void Merge::change(std::uint32_t original, std::uint32_t before, std::uint32_t after) {
  const Pair pair{pieces_of(casts_.original, original), pieces_of(casts_.after, after)};
  std::vector<Divergence> changes;
  const bool is_located =
      before != Statement::kNone && locate(pieces_of(casts_.before, before), pair, changes);
  if (!is_located) changes = divergences(values_of(pair.old), values_of(pair.wanted));
  for (const Divergence& change : changes) apply(pair, change);
}

/// What changes from `before` to the wanted statement, in terms of the old one.
///
/// @return false when the old one has no such parts, or has them elsewhere
bool Merge::locate(const std::vector<Piece>& before, const Pair& pair,
                   std::vector<Divergence>& changes) const {
  const Partners places = places_in(before, pair.old);
  const auto behind = [&](std::uint32_t index) {  // place behind the piece in front of `index`
    return index == 0 || places[index - 1] == kNoPartner ? kNoPartner : places[index - 1] + 1;
  };
  for (Divergence change : divergences(values_of(before), values_of(pair.wanted))) {
    const std::uint32_t begin = behind(change.begin);
    if (begin == kNoPartner) return false;
    for (std::uint32_t i = change.begin; i < change.end; ++i)
      if (places[i] != begin + (i - change.begin)) return false;
    const std::uint32_t end = begin + (change.end - change.begin);
    std::uint32_t behind_change = change.end;  // what the old one has
    while (behind_change < before.size() && places[behind_change] == kNoPartner) ++behind_change;
    const std::uint32_t next = behind_change == before.size()
                                   ? static_cast<std::uint32_t>(pair.old.size())
                                   : places[behind_change];
    if (next != end) return false;
    change.begin = begin;
    change.end = end;
    changes.push_back(change);
  }
  return true;
}

void Merge::apply(const Pair& pair, const Divergence& change) {
  const std::uint32_t size = change.end - change.begin;
  if (change.new_begin == change.new_end) return erase(pair, change);
  if (size == 0) return add(pair, change);
  const auto is_same_part = [&](std::uint32_t i) {
    return pair.old[change.begin + i].shape == pair.wanted[change.new_begin + i].shape;
  };
  bool is_one_to_one = size == change.new_end - change.new_begin;
  for (std::uint32_t i = 0; is_one_to_one && i < size; ++i) is_one_to_one = is_same_part(i);
  if (!is_one_to_one) {
    return splices_.replace(begin_of(pair.old[change.begin]), end_of(pair.old[change.end - 1]),
                            wanted_text(pair.wanted, change.new_begin, change.new_end));
  }
  for (std::uint32_t i = 0; i < size; ++i) {
    const Piece& old = pair.old[change.begin + i];
    const Piece& wanted = pair.wanted[change.new_begin + i];
    if (old.value != wanted.value) splices_.replace(begin_of(old), end_of(old), spelled(wanted));
  }
}

/// Whether the pieces of a statement end in front of `index`, but for the semicolon.
bool Merge::ends_at(const Pair& pair, std::uint32_t index) const {
  if (index == pair.old.size()) return true;
  const Document& document = casts_.original.document();
  return document.tokens[pair.old[index].first].is_mark(';');
}

/// With the space in front of the pieces at the end of a statement, elsewhere with that behind.
void Merge::erase(const Pair& pair, const Divergence& change) {
  const Document& document = casts_.original.document();
  std::uint32_t begin = begin_of(pair.old[change.begin]);
  std::uint32_t end = end_of(pair.old[change.end - 1]);
  const bool is_end = ends_at(pair, change.end);
  const std::uint32_t before = document.tokens[pair.old[change.begin].first - 1].end;
  const std::uint32_t behind = change.end < pair.old.size() ? begin_of(pair.old[change.end]) : end;
  if (is_end && is_blank(document.source.text(before, begin))) begin = before;
  if (!is_end && is_blank(document.source.text(end, behind))) end = behind;
  splices_.replace(begin, end, "");
}

void Merge::add(const Pair& pair, const Divergence& change) {
  const std::string_view text = casts_.original.document().source.text();
  std::string added = wanted_text(pair.wanted, change.new_begin, change.new_end);
  const std::uint32_t before = end_of(pair.old[change.begin - 1]);
  const bool is_end = ends_at(pair, change.begin);
  const std::uint32_t next = is_end ? before : begin_of(pair.old[change.begin]);
  if (!is_end && next != before) {
    added += gap(casts_.after.document(), pair.wanted, change.new_end);
    return splices_.replace(next, next, added);
  }
  added.insert(0, lead(pair, change));
  if (before < text.size() && touch(added.back(), text[before])) added += ' ';
  splices_.replace(before, before, added);
}

/// The space in front of pieces that go to the end of a list: that of an element that is there.
std::string Merge::lead(const Pair& pair, const Divergence& change) const {
  const Document& original = casts_.original.document();
  const Piece& added = pair.wanted[change.new_begin];
  for (std::uint32_t i = change.begin; i-- > 1;) {
    const bool is_alike = pair.old[i].shape == added.shape &&
                          pair.old[i - 1].shape == pair.old[change.begin - 1].shape;
    const std::string_view space = gap(original, pair.old, i);
    if (is_alike && is_blank(space)) return std::string(space);
    if (change.begin - i > 8) break;
  }
  return splices_.with_line_ends(gap(casts_.after.document(), pair.wanted, change.new_begin));
}

/// What stands in front of a piece, behind the one before it.
std::string_view Merge::gap(const Document& document, const std::vector<Piece>& pieces,
                            std::uint32_t index) const {
  if (index == 0 || index == pieces.size()) return {};
  return document.source.text(document.tokens[pieces[index - 1].end - 1].end,
                              document.tokens[pieces[index].first].begin);
}

std::string Merge::wanted_text(const std::vector<Piece>& pieces, std::uint32_t begin,
                               std::uint32_t end) const {
  std::string text;
  for (std::uint32_t i = begin; i < end; ++i) {
    if (i > begin) text += splices_.with_line_ends(gap(casts_.after.document(), pieces, i));
    text += spelled(pieces[i]);
  }
  return text;
}

std::string Merge::spelled(const Piece& piece) const {
  const Document& after = casts_.after.document();
  const std::string_view text =
      after.source.text(after.tokens[piece.first].begin, after.tokens[piece.end - 1].end);
  const Role role = after.tokens[piece.first].role;
  const auto [has, kind] = Cast::kind_of(role);
  if (!has || role == Role::kMessage || piece.object == Cast::kNone)
    return splices_.with_line_ends(text);
  const Token* const before = casts_.before.token(kind, piece.object);
  const Token* const original = casts_.original.token(kind, piece.object);
  const bool is_kept = before && original && casts_.before.document().text_of(*before) == text;
  return std::string(is_kept ? casts_.original.document().text_of(*original) : text);
}

std::string Merge::text_of(std::uint32_t after) const {
  const std::vector<Piece> pieces = pieces_of(casts_.after, after);
  return wanted_text(pieces, 0, static_cast<std::uint32_t>(pieces.size()));
}

std::string Merge::name_in(std::uint32_t after, Role role) const {
  const Document& document = casts_.after.document();
  for (const Piece& piece : pieces_of(casts_.after, after))
    if (document.tokens[piece.first].role == role) return spelled(piece);
  return {};
}

std::uint32_t Merge::begin_of(const Piece& piece) const {
  return casts_.original.document().tokens[piece.first].begin;
}

std::uint32_t Merge::end_of(const Piece& piece) const {
  return casts_.original.document().tokens[piece.end - 1].end;
}

}  // namespace zelk::check
