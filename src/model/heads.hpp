/// \file
/// The twelve parts of a database: the one list of them, from which the others follow.

#ifndef ZELK_MODEL_HEADS_HPP
#define ZELK_MODEL_HEADS_HPP

#include <tuple>
#include <type_traits>
#include <utility>

#include "zelk/records.h"

namespace zelk {

/// The heads of the lists, and the texts. `As<T>` is how a part of the type `T` is held.
template <template <typename> typename As>
struct ModelParts {
  As<symblk*> nodes;
  As<msgblk*> messages;
  As<env_var_blk*> env_vars;
  As<btlblk*> bit_timings;
  As<attr_def*> attr_defs;
  As<attr*> net_attrs;
  As<cat*> categories;
  As<filter_t> filter;
  As<char*> comment;
  As<char*> version;
  As<sigtype*> sig_types;
  As<valtable*> val_tables;

  /// References to all parts, in the order in which the C interface takes them.
  auto all() const {
    return std::tie(nodes, messages, env_vars, bit_timings, attr_defs, net_attrs, categories,
                    filter, comment, version, sig_types, val_tables);
  }
};

template <typename T>
using AsReadOnly =
    std::conditional_t<std::is_pointer_v<T>, const std::remove_pointer_t<T>*, const T&>;

/// Heads that somebody else has, to be changed.
using ModelHeads = ModelParts<std::add_lvalue_reference_t>;
/// What is only read.
using ModelView = ModelParts<AsReadOnly>;
/// Parts that are on their way from one owner to another.
using ModelContent = ModelParts<std::type_identity_t>;

/// Empties the heads.
///
/// @return what they had; the caller's
inline ModelContent take(const ModelHeads& model) {
  return std::apply([](auto&... parts) { return ModelContent{std::exchange(parts, {})...}; },
                    model.all());
}

inline void swap_content(const ModelHeads& a, const ModelHeads& b) {
  auto parts = a.all();
  auto others = b.all();
  parts.swap(others);
}

}  // namespace zelk

#endif
