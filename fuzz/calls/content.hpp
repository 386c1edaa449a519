/// What stands in databases: files to begin with, and edits.
#ifndef ZELK_FUZZ_CALLS_CONTENT_HPP
#define ZELK_FUZZ_CALLS_CONTENT_HPP

#include <cstdint>
#include <string>

#include "choices.hpp"
#include "zelk/write_manager.hpp"

/// One of a few small files, some of them faulty.
const char* content_from(Choices& choices);
/// A name for databases and records; some are none.
const char* name_from(Choices& choices);

/// Makes one change of a database.
void edit(ZelkWriteManager& manager, const char* db, Choices& choices);

/// A number that changes with what stands in a database.
std::uint64_t fingerprint(const ZelkDatabase& database);
/// The records in words, without counts, which edits by hand may leave wrong.
std::string words_of(const ZelkDatabase& database);
/// Whether a file has the names of some records cut.
bool has_lost_names(const ZelkDatabase& database);
/// The words of a file.
///
/// @return whether it can be read
bool read_words(const std::string& path, std::string& words);

#endif
