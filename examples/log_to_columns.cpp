/// \file
/// Decodes a recorded log into columns, and tells of each table its rows and the mean of each
/// signal.
///
///     log_to_columns examples/powertrain.dbc examples/drive.log

#include <cstdint>
#include <cstdio>
#include <vector>

#include "zelk/logs/columns.hpp"
#include "zelk/logs/reader.hpp"
#include "zelk/manager.hpp"

namespace {

struct Mean {
  double sum = 0;
  std::int64_t count = 0;
};

struct Summary {
  std::int64_t rows = 0;
  std::vector<Mean> means;
};

/// Rows whose bit is clear have no value; without a bitmap, all have one.
bool has_value(const ArrowArray& column, std::int64_t row) {
  const auto* const bits = static_cast<const std::uint8_t*>(column.buffers[0]);
  return bits == nullptr || (bits[row / 8] >> row % 8 & 1) != 0;
}

void add(const ArrowArray& batch, Summary& summary) {
  summary.rows += batch.length;
  summary.means.resize(static_cast<std::size_t>(batch.n_children));
  for (std::int64_t c = 2; c < batch.n_children; ++c) {  // behind time and channel
    const ArrowArray& column = *batch.children[c];
    const auto* const values = static_cast<const double*>(column.buffers[1]);
    Mean& mean = summary.means[static_cast<std::size_t>(c)];
    for (std::int64_t row = 0; row < column.length; ++row) {
      if (!has_value(column, row)) continue;
      mean.sum += values[row];
      ++mean.count;
    }
  }
}

void take_batches(ZelkColumnDecoder& decoder, bool is_end, std::vector<Summary>& summaries) {
  for (std::size_t table = 0; table < summaries.size(); ++table) {
    ArrowArray batch;
    while (decoder.TakeBatch(table, is_end, &batch)) {
      add(batch, summaries[table]);
      batch.release(&batch);
    }
  }
}

void print(const ZelkColumnTable& table, const Summary& summary) {
  if (summary.rows == 0) return;
  std::printf("%s: %lld rows\n", table.name.c_str(), static_cast<long long>(summary.rows));
  for (std::size_t c = 2; c < table.columns.size(); ++c) {
    const Mean& mean = summary.means[c];
    if (mean.count == 0) continue;
    std::printf("  %s: %.6g %s\n", table.columns[c].name.c_str(),
                mean.sum / static_cast<double>(mean.count), table.columns[c].unit.c_str());
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fputs("usage: log_to_columns DATABASE LOG\n", stderr);
    return 2;
  }
  ZelkManager manager(static_cast<void*>(nullptr));
  const char* name = nullptr;
  if (manager.OpenDatabase(argv[1], &name, 0) != ZelkErrorOk) {
    std::fprintf(stderr, "%s: no database\n", argv[1]);
    return 1;
  }
  ZelkColumnDecoder decoder;
  decoder.AddDatabase(*manager.GetDatabase(name), name);
  std::vector<Summary> summaries(decoder.Tables().size());
  try {
    ZelkLogReader log(argv[2]);
    ZelkLogBlock block;
    while (log.Next(block)) {
      decoder.Decode(block.frames);
      take_batches(decoder, false, summaries);
    }
  } catch (const ZelkLogError& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
  take_batches(decoder, true, summaries);
  for (std::size_t i = 0; i < summaries.size(); ++i) print(decoder.Tables()[i], summaries[i]);
}
