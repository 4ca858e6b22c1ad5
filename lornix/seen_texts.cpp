#include "lornix/seen_texts.h"

namespace lornix {

void SeenTexts::saw(const std::wstring& path, Mark text, Mark mended)
{
    seen_[path] = Seen{text, mended};
}

void SeenTexts::missed(const std::wstring& path)
{
    seen_[path] = std::nullopt;
}

SeenTexts::Standing SeenTexts::standingOf(const std::wstring& path, Mark now) const
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
