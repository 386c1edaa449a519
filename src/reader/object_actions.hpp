/// \file
/// Actions of the statements about environment variables, signal types, categories and the view
/// filter.

#ifndef ZELK_READER_OBJECT_ACTIONS_HPP
#define ZELK_READER_OBJECT_ACTIONS_HPP

#include "reader/read_context.hpp"
#include "reader/segments.hpp"

namespace zelk {

/// What stands on an "EV_" line besides the access nodes.
struct VariableLine {
  TokenText name;
  std::uint32_t type;
  RealPair range;
  TokenText unit;
  double initial;
  std::uint32_t id;
  TokenText access;  ///< "DUMMY_NODE_OSTREL" and the access code
};

/// What stands on an "SGTYPE_" line.
struct SignalTypeLine {
  TokenText name;
  Segment segment;  ///< order 0 is Motorola, all others Intel
  bool is_signed;
  RealPair factor_offset;
  RealPair range;
  TokenText unit;
  double default_value;
  TokenText table;  ///< empty for none
};

class ObjectActions {
 public:
  explicit ObjectActions(ReadContext& context) : context_(context) {}

  /// The access nodes are in the context's names.
  void variable(const VariableLine& line);
  void data_variable(TokenText name, std::uint32_t size);

  void signal_type(const SignalTypeLine& line);
  void signal_type_value_type(TokenText name, std::uint32_t value_type);
  void signal_type_reference(std::uint32_t id, TokenText signal_name, TokenText type_name);

  void define_category(std::int64_t number, TokenText name, std::uint32_t level);
  void node_category(TokenText name, std::int64_t number);
  void message_category(std::uint32_t id, std::int64_t number);
  void variable_category(TokenText name, std::int64_t number);

  // The lists of a filter, then the filter.
  void filter_category(std::int64_t number) { filter_categories_.push_back(number); }
  void filter_node(TokenText name) { filter_nodes_.push_back({name, false}); }
  void quoted_filter_node(TokenText text) { filter_nodes_.push_back({text, true}); }
  void filter(std::int64_t mode);

 private:
  struct FilterNode {
    TokenText text;
    bool is_quoted;
  };

  std::uint32_t access_code(TokenText access) const;
  cat* category(std::int64_t number) const;
  catlink* filter_categories();
  rxblk* filter_nodes();

  ReadContext& context_;
  std::vector<std::int64_t> filter_categories_;
  std::vector<FilterNode> filter_nodes_;
};

}  // namespace zelk

#endif
