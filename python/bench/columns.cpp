// The C++ library alone, for comparison: takes a log into columns and drops them.
//
//   columns DATABASE LOG
//
// Built with the static libraries of the package, in $LIB = build/python/cpython-311/lib:
//
//   g++ -std=c++20 -O2 -DZELK_STATIC -DZELK_LOGS_STATIC -Iinclude python/bench/columns.cpp
//     -L$LIB -lzelklogs -lzelkmsnx -lzelk_files -lzelk_base -lz -lzstd -o columns

#include <cstdio>

#include "zelk/database.hpp"
#include "zelk/logs/pipeline.hpp"
#include "zelk/manager.hpp"

int main(int count, char** arguments) {
  if (count != 3) return 2;
  ZelkManager manager(static_cast<void*>(nullptr));
  const char* db = nullptr;
  if (manager.OpenDatabase(arguments[1], &db, nullptr, 0) != ZelkErrorOk) return 1;
  ZelkColumnDecoder decoder;
  decoder.AddDatabase(*manager.GetConstDatabase(db), db);
  ZelkLogReader log(arguments[2]);
  std::uint64_t rows = 0;
  const auto take = [&](bool is_end) {
    ArrowArray batch;
    for (std::size_t table = 0; table < decoder.Tables().size(); ++table) {
      while (decoder.TakeBatch(table, is_end, &batch)) {
        rows += static_cast<std::uint64_t>(batch.length);
        batch.release(&batch);
      }
    }
  };
  ZelkDecodeLog(log, decoder, {}, [&] { take(false); });
  take(true);
  std::printf("%llu rows\n", static_cast<unsigned long long>(rows));
}
