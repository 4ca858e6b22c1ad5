// What this process has seen of files that others change too: so that nobody replaces what he never saw.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace lornix {

class SeenFiles {
public:
    /// Stands for a text. Two texts with the same mark are taken for the same.
    using Mark = std::size_t;
    static Mark markOf(std::string_view text) { return std::hash<std::string_view>{}(text); }

    /// A file was read, or written after it had been. A missing one holds an empty text.
    /// @param mended  what the file holds when it was damaged and could be mended; else the same again.
    void saw(const std::wstring& path, Mark text, Mark mended);

    /// A file could not be read: whatever it holds was not seen.
    void missed(const std::wstring& path);

    enum class Standing : std::uint8_t {
        kUntouched, ///< nobody asked for the file, or it is as it was seen
        kChanged,   ///< somebody else wrote it
        kUnseen     ///< it could not be read
    };
    Standing standingOf(const std::wstring& path, Mark now) const;

    /// Whether anybody asked for the file.
    bool knows(const std::wstring& path) const { return seen_.contains(path); }

private:
    struct Seen {
        Mark text;
        Mark mended;
    };
    std::unordered_map<std::wstring, std::optional<Seen>> seen_; ///< nothing: missed
};

} // namespace lornix
