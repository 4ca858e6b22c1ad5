// The frame that all files of the store share: a first line that says what the file is, lines, a last line "end".
// Blank lines and lines that start with # say nothing. A file without its end was cut off. Before the end of what the
// store writes itself stands a checksum of all above, which tells what was changed behind its back.
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
    bool isChecked =
        false; ///< a checksum stands before the end; "-" in its place is for people who edit the file
};

/// Something in a file that cannot be used.
struct Flaw {
    std::size_t line;   ///< counted from 1
    const char* reason; ///< a static text, "this is so and so" in a few words
};

/// The first flaws of a file, and how many there are: a file of nothing else would cost more memory than its size.
struct Flaws {
    static constexpr std::size_t kMost = 100;
    std::vector<Flaw> first;
    std::size_t count = 0;

    void add(std::size_t line, const char* reason)
    {
        if (count++ < kMost) {
            first.push_back({line, reason});
        }
    }
};

enum class Condition : std::uint8_t {
    kGood,    ///< all of it was understood
    kDamaged, ///< the file is one of ours, and what is listed in the flaws was left out
    kForeign, ///< nothing in it is anything that the store has written
    kOther,   ///< a sound file of another kind or of a newer version: hands off
};

/// What is told of a file beside what it holds.
struct Finding {
    Condition condition = Condition::kGood;
    Flaws flaws;
};

/// Of any bytes: a change of a single one always changes it.
std::uint64_t checksumOf(std::string_view bytes);

/// The line end of the platform's plain text files.
inline constexpr std::string_view kLineEnd = "\r\n";

/// Starts the text of a file: its lines are appended, each with its line end.
std::string startText(const FileKind& kind);

/// Ends it. Nothing may follow.
void appendEnd(std::string& text, const FileKind& kind);

/// The text of a file with some lines.
std::string wholeText(const FileKind& kind, std::string_view lines);

/// Takes the text of a file apart.
class TextReader {
public:
    /// @param text  outlives the reader.
    TextReader(std::string_view text, const FileKind& kind);

    bool isOurs() const { return m_opening == Condition::kGood; }

    /// Gives the next line that says something, without blanks around it.
    /// @return false at the end, and then the flaws tell if it is missing or not the end at all.
    bool next(std::string_view& line);

    /// Counted from 1, of the line given last.
    std::size_t lineNumber() const { return m_lineNumber; }

    /// Where the line behind the one given last starts.
    std::size_t position() const { return m_text.size() - m_rest.size(); }

    /// Notes that the line given last cannot be used.
    void reject(const char* reason) { m_flaws.add(m_lineNumber, reason); }

    /// What the first line says, and what was found below.
    Finding finding();

private:
    bool takeLine(std::string_view& line);
    void readChecksum(std::string_view line, std::size_t start);
    void expectNothingMore();

    std::string_view m_text;
    std::string_view m_rest;
    bool m_isChecked;
    bool m_hasChecksum = false;
    bool m_isWhole = true; // the line taken last has its line end
    std::size_t m_lineNumber = 0;
    Condition m_opening = Condition::kForeign;
    Flaws m_flaws;
};

/// Takes a word off the front of a line, and the blanks behind it.
std::string_view takeWord(std::string_view& line);

void appendHex(std::string& line, std::uint64_t number);

} // namespace lornix
