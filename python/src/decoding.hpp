/// \file
/// What decodes frames into tables, with the databases that it needs.

#ifndef ZELK_PYTHON_DECODING_HPP
#define ZELK_PYTHON_DECODING_HPP

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "database.hpp"
#include "table.hpp"
#include "zelk/logs/columns.hpp"

namespace zelk::python {

/// A decoder of columns that keeps its databases: what happens to the objects of Python that they
/// come from meanwhile does not matter. Used once, for one run.
class Decoding {
 public:
  struct Source {
    const Database* database;
    std::string channel;  ///< empty: all
  };

  /// @param messages  patterns of names; none: all
  /// @param signals   likewise
  /// @throws Failure for a pattern that nothing has
  Decoding(const std::vector<Source>& sources, const std::vector<std::string>& messages,
           const std::vector<std::string>& signals, ZelkColumnOptions options);

  ZelkColumnDecoder& decoder() { return decoder_; }
  const std::vector<std::shared_ptr<const TableHead>>& heads() const { return heads_; }

  /// Hands on the batches that are there, table by table, until `take`, which owns them, returns
  /// false.
  ///
  /// @param is_end  the rest of each table too
  void take_batches(bool is_end, const std::function<bool(std::size_t, ArrowArray)>& take);

 private:
  void add(const std::vector<Source>& sources);

  std::vector<std::shared_ptr<Model>> models_;
  ZelkColumnDecoder decoder_;
  std::vector<std::shared_ptr<const TableHead>> heads_;
};

void bind_table(nb::module_& module);
void bind_decoding(nb::module_& module);
void bind_log(nb::module_& module);
void bind_arrays(nb::module_& module);
void bind_frames(nb::module_& module);

}  // namespace zelk::python

#endif
