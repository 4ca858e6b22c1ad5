#include "lornix/disk/seen_files.h"

namespace lornix {

void SeenFiles::saw(const std::wstring& path, Mark text, Mark mended)
{
    seen_[path] = Seen{text, mended};
}

void SeenFiles::missed(const std::wstring& path)
{
    seen_[path] = std::nullopt;
}

SeenFiles::Standing SeenFiles::standingOf(const std::wstring& path, Mark now) const
{
    const auto found = seen_.find(path);
    if (found == seen_.end()) {
        return Standing::kUntouched;
    }
    if (!found->second) {
        return Standing::kUnseen;
    }
    const Seen& seen = *found->second;
    return now == seen.text || now == seen.mended ? Standing::kUntouched : Standing::kChanged;
}

} // namespace lornix
