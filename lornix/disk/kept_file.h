// Reading and replacing a file of the store. Reading leaves it as it is, whatever it holds. Who replaces a damaged one
// keeps it whole under another name first; one of a newer version or of another kind is never replaced.
#pragma once

#include "lornix/disk/data_folder.h"
#include "lornix/text/framed_text.h"

#include <memory>
#include <optional>

namespace lornix {

/// A file of the store, and how to tell people which one it is.
struct KeptFile {
    DataFolder folder;
    std::wstring path;
    std::wstring title;                    ///< starts a sentence: "The file with ..."
    Readers readers = Readers::kEverybody; ///< where the store has a say in that
};

enum class Reading : std::uint8_t {
    kDone,
    kMissing, ///< and the bytes are none
    kFailed   ///< which has been reported
};

/// Reads a file as it is.
/// @param stamp  receives which file was read.
Reading readBytes(const KeptFile& file, std::string& bytes, Patience& patience, FileStamp& stamp);

/// Reports what is wrong with what was read: to whoever takes errors, once for each change of the file.
/// @return false when nothing may be done with it.
bool judge(const KeptFile& file, const FileStamp& stamp, const Finding& finding);

/// Reads a file. `Content` is a Finding too, and starts out as what a missing file holds.
/// @param parse  text to Content.
/// @return nothing when the file cannot be read or is none that this store understands: that has been reported.
///         A damaged file gives what is surely good, and is reported too.
template <class Content, class Parse>
std::optional<Content> readKept(const KeptFile& file, Patience& patience, Parse parse)
{
    std::string bytes;
    FileStamp stamp;
    std::optional<Content> content;
    switch (readBytes(file, bytes, patience, stamp)) {
    case Reading::kFailed:
        break;
    case Reading::kMissing:
        content.emplace().condition = Condition::kGood;
        break;
    case Reading::kDone:
        content = parse(std::string_view(bytes));
        if (!judge(file, stamp, *content)) {
            content.reset();
        }
        break;
    }
    return content;
}

/// Makes the data folder and locks it.
/// @param doing  what cannot be done without, for the report: "The rules cannot be stored".
/// @return the lock, held as long as it lives; null with a report.
std::unique_ptr<const StoreLock> openForChange(DataFolder& data, const std::wstring& doing);

/// Puts a text in the place of a file. The caller holds the lock.
/// @param before  what the file holds: a damaged one is set aside.
/// @param stamp  receives what tells that the file is still this one, when it is not null.
/// @return false with a report; the file is then as it was.
bool replaceKept(KeptFile& file, Condition before, std::string_view text, Patience& patience,
                 FileStamp* stamp = nullptr);

} // namespace lornix
