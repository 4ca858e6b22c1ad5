#include "lornix/rules/rule_file.h"

namespace lornix {
namespace {

/// What is in memory of a file. Reading a folder's rules looks no further than at its stamp.
struct Remembered {
    std::wstring path;
    FileStamp stamp;
    bool isSettled = false; ///< the stamp alone tells a change
    RuleBook book;
};
std::optional<Remembered> remembered;

/// Whether a file that changes again has another time then: clocks of disks stand still for some milliseconds.
bool isSettled(const FileStamp& stamp)
{
    constexpr std::uint64_t kMoment = 2000000; // 0.2 s in the platform's unit
    FILETIME now{};
    GetSystemTimeAsFileTime(&now);
    return joined(now) > stamp.changed + kMoment;
}

} // namespace

RuleFile::RuleFile(const DataFolder& data)
    : m_file{data, data.path(L"rules.txt"), L"The file with the rules"}
{
}

bool RuleFile::isRemembered(Patience& patience) const
{
    if (!remembered || remembered->path != m_file.path || !m_file.folder.mayHoldFiles()) {
        return false;
    }
    FileStamp stamp;
    if (readStamp(m_file.path, stamp, patience) != ERROR_SUCCESS) {
        return false;
    }
    if (remembered->isSettled && stamp == remembered->stamp) {
        return true;
    }
    // What is kept of a damaged file is not what stands in it.
    const std::string& text = remembered->book.text();
    if (remembered->book.condition != Condition::kGood || stamp.size != text.size() ||
        !text.ends_with(stamp.tail) || !holdsText(m_file.path, text, patience, stamp))
    {
        return false;
    }
    remembered->isSettled = isSettled(stamp);
    remembered->stamp = std::move(stamp);
    return true;
}

const RuleBook* RuleFile::read(Patience& patience)
{
    if (!isRemembered(patience)) {
        remembered.reset(); // two at once would need twice the memory
        std::string bytes;
        FileStamp stamp;
        const Reading reading = readBytes(m_file, bytes, patience, stamp);
        if (reading == Reading::kFailed) {
            return nullptr;
        }
        const bool isDone = reading == Reading::kDone;
        const bool isStill = isDone && isSettled(stamp);
        remembered =
            Remembered{m_file.path, std::move(stamp), isStill, isDone ? RuleBook(kRules, bytes) : RuleBook()};
    }
    const RuleBook& book = remembered->book;
    return judge(m_file, remembered->stamp, book) ? &book : nullptr;
}

RuleBook RuleFile::take()
{
    RuleBook book = std::move(remembered->book);
    remembered.reset();
    return book;
}

bool RuleFile::replace(RuleBook book, Patience& patience)
{
    FileStamp stamp;
    if (!replaceKept(m_file, book.condition, book.text(), patience, &stamp)) {
        return false;
    }
    static_cast<Finding&>(book) = {};
    remembered = Remembered{m_file.path, std::move(stamp), true, std::move(book)};
    return true;
}

} // namespace lornix
