// The frame that all files of the store share: a first line that says what the file is, lines, a last line "end".
// Blank lines and lines that start with # say nothing. A file without its end was cut off.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace lornix {

/// What the first line names.
struct FileKind {
    std::string_view name; ///< one word
    int version;
};

/// Something in a file that cannot be used.
struct Flaw {
    std::size_t line;   ///< counted from 1
    const char* reason; ///< a static text, "this is so and so" in a few words
};

enum class Condition : std::uint8_t {
    kGood,    ///< all of it was understood
    kDamaged, ///< the file is one of ours, and what is listed in the flaws was left out
    kForeign, ///< no file of this kind, or none that tells what it belongs to
};

/// Builds the text of a file.
class TextWriter {
public:
    explicit TextWriter(const FileKind& kind);

    /// The text so far, to append a line to: without its end, which endLine adds.
    std::string& line() { return text_; }
    void endLine();
    void comment(std::string_view text);

    /// Adds the last line. Nothing may follow.
    std::string finish();

private:
    std::string text_;
};

/// Takes the text of a file apart.
class TextReader {
public:
    /// @param text  outlives the reader.
    TextReader(std::string_view text, const FileKind& kind);

    /// False when the first line names another kind or another version.
    bool isOurs() const { return isOurs_; }

    /// Gives the next line that says something, without blanks around it.
    /// @return false at the end, and then the flaws tell if it is missing or not the end at all.
    bool next(std::string_view& line);

    /// Counted from 1, of the line given last.
    std::size_t lineNumber() const { return lineNumber_; }

    /// Notes that the line given last cannot be used.
    void reject(const char* reason);

    std::vector<Flaw>& flaws() { return flaws_; }

private:
    bool takeLine(std::string_view& line);

    std::string_view rest_;
    std::size_t lineNumber_ = 0;
    bool isOurs_ = false;
    std::vector<Flaw> flaws_;
};

/// Takes a word off the front of a line, and the blanks behind it.
std::string_view takeWord(std::string_view& line);

} // namespace lornix
