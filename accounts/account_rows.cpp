#include "accounts/account_rows.h"

#include "accounts/account_resolution.h"
#include "accounts/account_sink.h"
#include "store/lornix.h"

AccountRows::AccountRows(FillContext& context)
    : m_context(context)
    , m_presetOwners(context.presetOwners)
{
}

void AccountRows::insertFirst() const
{
    AccountSink& sink = *m_context.sink;
    sink.insert(0, m_context.groupImage, L"Please wait until data fetched...", L"", L"", nullptr);
    if (sink.alive()) {
        sink.insert(1, m_context.groupImage, L"Anyone", L"Anyone", L"System", reinterpret_cast<void*>(1));
    }
}

void AccountRows::insertPresetOwners()
{
    const SidList* const owners = m_context.presetOwners;
    for (int i = 0; i < owners->count; ++i) {
        insertNamed(owners->sids[i], {L"File owner", m_context.userImage});
    }
}

void AccountRows::insert(const SidList* list, AccountKind kind)
{
    const int count = list != nullptr ? list->count : 0;
    for (int i = 0; i < count; ++i) {
        if (!m_presetOwners.excludes(list->sids[i])) {
            insertNamed(list->sids[i], kind);
        }
    }
}

void AccountRows::insertNamed(void* sid, AccountKind kind)
{
    AccountSink& sink = *m_context.sink;
    if (!sink.alive()) {
        return;
    }
    const wchar_t* domain = nullptr;
    const wchar_t* name = nullptr;
    const wchar_t* const fullName = resolveAccount(sid, domain, name);
    if (fullName != nullptr && sink.alive()) {
        sink.insert(m_next, kind.image, name, fullName, kind.type, sidDup(sid));
        ++m_next;
    }
}

void AccountRows::countOn()
{
    m_next = m_context.sink->rowCount();
}
