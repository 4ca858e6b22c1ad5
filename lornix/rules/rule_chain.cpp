#include "lornix/rules/rule_chain.h"

#include "lornix/last_error.h"
#include "lornix/rules/rule_book.h"
#include "lornix/sid.h"
#include "lornix/text/wide_text.h"
#include "store/lornix.h"

#include <algorithm>
#include <cstdlib>
#include <new>

namespace lornix {
namespace {

wchar_t* copyOf(std::u16string_view text)
{
    auto* copy = static_cast<wchar_t*>(std::malloc((text.size() + 1) * sizeof(wchar_t)));
    if (copy == nullptr) {
        throw std::bad_alloc();
    }
    *std::copy(text.begin(), text.end(), copy) = L'\0';
    return copy;
}

/// @param sid  empty for anyone.
Chain newRecord(std::u16string_view folder, std::span<const std::uint8_t> sid)
{
    Chain record(static_cast<QuotaRule*>(std::calloc(1, sizeof(QuotaRule))));
    if (record == nullptr) {
        throw std::bad_alloc();
    }
    record->type = sid.empty() ? QUOTA_RULE_FOR_ANYONE : QUOTA_RULE_FOR_ACCOUNT;
    if (!sid.empty()) {
        record->sid = sidDup(sid.data());
        if (record->sid == nullptr) {
            throw std::bad_alloc();
        }
    }
    record->path = copyOf(folder);
    return record;
}

QuotaRule* recordOf(const StoredRule& rule)
{
    Chain record = newRecord(rule.folder, rule.sid.bytes());
    record->inUse = rule.inUse;
    record->hardLimit = rule.hardLimit;
    record->softLimit = rule.softLimit;
    return record.release();
}

} // namespace

Chain chainOf(std::string_view lines)
{
    Chain first;
    QuotaRule* last = nullptr;
    while (!lines.empty()) {
        QuotaRule* record = recordOf(takeRule(lines));
        record->prev = last;
        if (last == nullptr) {
            first.reset(record);
        } else {
            last->next = record;
        }
        last = record;
    }
    return first;
}

} // namespace lornix

QuotaRule* lornixNewRule(const wchar_t* folder, const void* sid)
{
    using namespace lornix;
    return reporting<QuotaRule*>(nullptr, [&]() -> QuotaRule* {
        if (folder == nullptr || (sid != nullptr && !isSid(sid))) {
            report(L"A rule without a folder, or for an account that is no valid SID, was asked for.");
            return nullptr;
        }
        return newRecord(fromWide(folder), sidBytes(sid)).release();
    });
}

void lornixFree(void* block)
{
    std::free(block);
}

void lornixFreeRules(QuotaRule* chain)
{
    while (chain != nullptr) {
        QuotaRule* next = chain->next;
        std::free(chain->sid);
        std::free(chain->path);
        std::free(chain);
        chain = next;
    }
}
