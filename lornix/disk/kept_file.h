// Reading a file of the store, and what is done with one that is damaged or foreign: it is set aside whole, under
// a name that was free, and what can still be used goes on in a new file under the old name.
#pragma once

#include "lornix/disk/data_folder.h"
#include "lornix/text/framed_text.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace lornix {

/// A file of the store, and how to tell people which one it is.
struct KeptFile {
    DataFolder folder;
    std::wstring path;
    std::wstring title; ///< starts a sentence: "The file with ..."
};

enum class Reading : std::uint8_t {
    kDone,
    kMissing, ///< and the bytes are none
    kFailed   ///< which has been reported
};

/// Puts a text in the place of a file.
/// @return false with a report; the file is then as it was.
bool replaceWith(const KeptFile& file, std::string_view text, Patience& patience);

/// Makes the data folder and locks it.
/// @param doing  what cannot be done without, for the report: "The rules cannot be stored".
/// @return the lock, held as long as it lives; null with a report.
std::unique_ptr<const StoreLock> openForChange(const DataFolder& data, const std::wstring& doing);

/// Reads a file as it is.
Reading readBytes(const KeptFile& file, std::string& bytes, Patience& patience);

namespace kept_file_detail {

void reportLockFailure(const KeptFile& file, DWORD error);

/// Keeps the file under another name. A file that is to be replaced stays where it is until then.
/// @param replacement  what goes on under the old name; null for nothing.
/// @return false when it cannot be done; it has been reported, and the file is as it was.
bool setAside(const KeptFile& file, std::string_view bytes, const std::vector<Flaw>& flaws,
              const std::string* replacement, Patience& patience);

} // namespace kept_file_detail

/// Reads a file. `Content` has a condition and flaws and starts out as what a missing file holds.
/// @param lock     the caller's, when it holds one; else null: reading needs none, only setting aside does.
/// @param parse    text to Content.
/// @param rewrite  Content to text.
/// @return nothing when the file cannot be read, or stands in the way of being written: that has been reported.
///         A damaged file gives what could be used, also when it could not be set aside, if `onlyToRead`.
template <class Content, class Parse, class Rewrite>
std::optional<Content> readKept(const KeptFile& file, const StoreLock* lock, Patience& patience, Parse parse,
                                Rewrite rewrite)
{
    using namespace kept_file_detail;
    const bool onlyToRead = lock == nullptr;
    std::string bytes;
    const auto load = [&]() -> std::optional<Content> {
        switch (readBytes(file, bytes, patience)) {
        case Reading::kFailed:
            return std::nullopt;
        case Reading::kDone:
            return parse(std::string_view(bytes));
        case Reading::kMissing:
            break;
        }
        Content nothing;
        nothing.condition = Condition::kGood;
        return nothing;
    };
    std::optional<Content> content = load();
    if (!content || content->condition == Condition::kGood) {
        return content;
    }
    std::optional<StoreLock> ownLock;
    if (onlyToRead) {
        ownLock.emplace(file.folder);
        if (ownLock->error() != ERROR_SUCCESS) {
            reportLockFailure(file, ownLock->error());
            return content;
        }
        // Another process may have mended it meanwhile.
        content = load();
        if (!content || content->condition == Condition::kGood) {
            return content;
        }
    }
    const bool isForeign = content->condition == Condition::kForeign;
    const std::string replacement = isForeign ? std::string() : rewrite(*content);
    if (!setAside(file, bytes, content->flaws, isForeign ? nullptr : &replacement, patience) && !onlyToRead) {
        return std::nullopt;
    }
    content->condition = Condition::kGood;
    return content;
}

} // namespace lornix
