#include "check/includes/includes.hpp"

#include <algorithm>
#include <map>
#include <optional>
#include <system_error>
#include <utility>
#include <vector>

#include "base/check_memory.hpp"
#include "base/encoding.hpp"
#include "check/includes/include_folder.hpp"
#include "check/repair/decoding.hpp"

namespace zelk::check {

namespace {

constexpr std::string_view kLead = "IMPORT ";

/// A comment that names a file.
struct Comment {
  Span span;
  std::string name;
  bool is_among_signals;  ///< those behind it would become signals of the file's last message
};

std::string_view trimmed(std::string_view text) {
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  return text;
}

/// The file that a comment of the network names.
std::optional<std::string_view> included_name(const Document& document,
                                              const Statement& statement) {
  if (statement.kind != Word::kComment || !statement.is_readable) return std::nullopt;
  const auto tokens = document.tokens_of(statement);
  if (tokens.size() < 2 || tokens[1].role != Role::kComment) return std::nullopt;
  std::string_view content = document.content_of(tokens[1]);
  if (!content.starts_with(kLead)) return std::nullopt;
  return trimmed(content.substr(kLead.size()));
}

std::vector<Comment> comments_of(const Document& document) {
  std::vector<Comment> comments;
  const auto& statements = document.statements;
  for (std::size_t i = 0; i < statements.size(); ++i) {
    const auto name = included_name(document, statements[i]);
    if (!name) continue;
    const Span span = {document.begin_of(statements[i]), document.end_of(statements[i])};
    const bool is_among_signals =
        i + 1 < statements.size() && statements[i + 1].kind == Word::kSignal;
    comments.push_back({span, std::string(*name), is_among_signals});
  }
  return comments;
}

/// Signals that would become those of a message in front of the file.
bool has_signals_of_no_message(const Document& document) {
  return std::ranges::any_of(document.statements, [](const Statement& statement) {
    return statement.kind == Word::kSignal && statement.owner == Statement::kNone;
  });
}

/// Most files name none, and need no reading for that.
bool may_name_files(const Source& source) {
  return source.text().find(kLead) != source.text().npos;
}

std::string in_quotes(std::string_view name) { return '"' + std::string(name) + '"'; }

/// Empty for a path that the system does not take.
std::filesystem::path canonical_path(const std::string& path) try {
  std::error_code error;
  std::filesystem::path canonical = std::filesystem::weakly_canonical(path_of(path), error);
  check_memory(error);
  return canonical;
} catch (const std::system_error&) {
  return {};
}

class Includer {
 public:
  Includer(Source main, const std::string& folder) : folder_(folder), folder_name_(folder) {
    encoding_ = encoding_of(main.text());
    numbers_.emplace(canonical_path(main.path()), 0);
    enter(read_document(std::move(main)));
  }

  Included run() && {
    while (!visits_.empty()) step();
    std::vector<Source::Stretch> stretches;
    for (const Part& part : parts_) {
      const Source& file = files_[part.file];
      stretches.push_back({part.file, part.begin, part.text});
      if (part.text.empty()) stretches.back().text = file.text(part.begin, part.end);
    }
    const auto count = static_cast<std::uint32_t>(files_.size() - 1);
    return {Source(std::move(files_), stretches), count, std::move(findings_)};
  }

 private:
  /// A file under way.
  struct Visit {
    std::uint32_t file;
    std::vector<Comment> comments;
    std::size_t next = 0;  ///< comment
    std::uint32_t at = 0;  ///< behind what stands in `parts_` already
  };
  /// A stretch; files are still to come.
  struct Part {
    std::uint32_t file;
    std::uint32_t begin;
    std::uint32_t end;
    std::string_view text = {};  ///< that stands for it; empty for the file's own; static
  };

  void enter(Document document) {
    size_ += document.source.size() + 1;  // it may need a line end
    visits_.push_back({static_cast<std::uint32_t>(files_.size()), comments_of(document)});
    files_.push_back(std::move(document.source));
  }

  void step() {
    Visit& visit = visits_.back();
    if (visit.next < visit.comments.size()) return include(visit, visit.comments[visit.next++]);
    const Source& file = files_[visit.file];
    add({visit.file, visit.at, file.size()});
    if (visits_.size() > 1 && !file.text().ends_with('\n'))
      add({visit.file, file.size(), file.size(), "\n"});
    visits_.pop_back();
  }

  void include(Visit& visit, const Comment& comment) {
    IncludeFolder::Place place = folder_.find(comment.name);
    if (!place.fault.empty()) return refuse(visit, comment, place.fault);
    if (const auto known = numbers_.find(place.path); known != numbers_.end())
      return drop_again(visit, comment, known->second);
    if (comment.is_among_signals)
      return refuse(visit, comment, "the comment stands among the signals of a message");
    std::optional<std::string> bytes = read(place.path);
    if (!bytes) return refuse(visit, comment, "it cannot be read, or is too large");
    Document document = read_document({folder_name_ + '/' + place.name, *std::move(bytes)});
    if (has_signals_of_no_message(document))
      return refuse(visit, comment, "it begins with signals of no message");
    numbers_.emplace(std::move(place.path), files_.size());
    drop(visit, comment, Severity::kNote, "included " + in_quotes(place.name));
    enter(std::move(document));
  }

  std::optional<std::string> read(const std::filesystem::path& path) const {
    const std::size_t room = Source::kLongest - size_;
    std::optional<std::string> bytes = bytes_of(path, room);
    if (!bytes) return std::nullopt;
    std::string text = converted(std::move(*bytes));
    return text.size() < room ? std::optional(std::move(text)) : std::nullopt;
  }

  /// The file is known.
  void drop_again(Visit& visit, const Comment& comment, std::uint32_t file) {
    if (std::ranges::find(visits_, file, &Visit::file) == visits_.end()) {
      return drop(visit, comment, Severity::kNote,
                  in_quotes(comment.name) + " is included already");
    }
    drop(visit, comment, Severity::kWarning, in_quotes(comment.name) + " includes itself this way");
  }

  /// A line end takes the place of the comment, of which the finding is.
  void drop(Visit& visit, const Comment& comment, Severity severity, std::string message) {
    add({visit.file, visit.at, comment.span.begin});
    find(severity, {length_, length_ + 1}, std::move(message));
    add({visit.file, comment.span.begin, comment.span.begin + 1, "\n"});
    visit.at = comment.span.end;
  }

  /// The comment stays.
  void refuse(const Visit& visit, const Comment& comment, std::string_view why) {
    const std::uint32_t shift = length_ - visit.at;
    find(Severity::kError, {comment.span.begin + shift, comment.span.end + shift},
         "cannot include " + in_quotes(comment.name) + ": " + std::string(why));
  }

  void find(Severity severity, Span span, std::string message) {
    findings_.add(
        {.severity = severity, .rule = kIncludeRule, .span = span, .message = std::move(message)});
  }

  void add(const Part& part) {
    parts_.push_back(part);
    length_ +=
        part.text.empty() ? part.end - part.begin : static_cast<std::uint32_t>(part.text.size());
  }

  /// Texts of one encoding can be read together.
  std::string converted(std::string bytes) const {
    if (auto decoded = decoded_utf16(bytes)) bytes = *std::move(decoded);
    const Encoding own = encoding_of(bytes);
    if (own == encoding_) return bytes;
    if (encoding_ == Encoding::kUtf8) return to_utf8(bytes, own);
    return from_utf8(bytes, encoding_).value_or(std::move(bytes));
  }

  IncludeFolder folder_;
  std::string folder_name_;
  Encoding encoding_;
  std::map<std::filesystem::path, std::uint32_t> numbers_;  ///< of files, by canonical path
  std::vector<Source> files_;
  std::vector<Visit> visits_;
  std::vector<Part> parts_;
  std::size_t size_ = 0;      ///< of all files
  std::uint32_t length_ = 0;  ///< of all parts
  Findings findings_;
};

}  // namespace

bool Included::is_whole() const {
  return std::ranges::find(findings.list, Severity::kError, &Finding::severity) ==
         findings.list.end();
}

Included include_files(Source source, const std::string& folder) {
  if (!may_name_files(source)) return {std::move(source)};
  return Includer(std::move(source), folder).run();
}

Findings find_includes(const Source& source) {
  Findings findings;
  if (!may_name_files(source)) return findings;
  for (const Comment& comment : comments_of(read_document(source))) {
    findings.add(
        {.severity = Severity::kNote,
         .rule = kIncludeRule,
         .span = comment.span,
         .message = "the comment names a file to include: " + in_quotes(comment.name),
         .cause = "its statements are missing here; --include DIR takes them from a folder"});
  }
  return findings;
}

}  // namespace zelk::check
