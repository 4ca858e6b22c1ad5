#include "bare_list.h"

#include "bench/support/list_view.h"
#include "bench_accounts.h"
#include "frame/ignore_case.h"

#include <climits>

namespace {

constexpr std::size_t kTextsOfRow = 64;

} // namespace

BareList::BareList(int users)
{
    m_texts.reserve((static_cast<std::size_t>(users) + 1) * kTextsOfRow); // no text moves
    m_rows.reserve(static_cast<std::size_t>(users) + 1);
    add(L"Anyone", L"Anyone", L"System", 0);
    for (int i = 0; i < users; ++i) {
        add(accountName(i).c_str(), accountFullName(i).c_str(), L"User", 1);
    }
}

void BareList::add(const wchar_t* account, const wchar_t* fullName, const wchar_t* type, int image)
{
    const auto keep = [&](const wchar_t* text) {
        wchar_t* const kept = m_texts.data() + m_texts.size();
        m_texts.insert(m_texts.end(), text, text + wcslen(text) + 1);
        return kept;
    };
    wchar_t* const first = keep(account);
    wchar_t* const second = keep(fullName);
    m_rows.push_back({first, second, keep(type), image});
}

void BareList::insert(HWND list, const Row& row) const
{
    wchar_t* const cells[] = {row.account, row.fullName, row.type};
    list_view::insert(list, INT_MAX, cells, reinterpret_cast<LPARAM>(&row), row.image);
}

void BareList::fill(HWND list) const
{
    list_view::setRedraw(list, false);
    for (const Row& row : m_rows) {
        insert(list, row);
    }
    list_view::setRedraw(list, true);
}

std::vector<int> BareList::rows(std::wstring_view start, bool beginning) const
{
    std::vector<int> found;
    for (std::size_t i = 0; i < m_rows.size(); ++i) {
        if (startsWithIgnoringCase(m_rows[i].account, start.data(), start.size()) == beginning) {
            found.push_back(static_cast<int>(i));
        }
    }
    return found;
}

void BareList::removeOneByOne(HWND list, const std::vector<int>& going) const
{
    list_view::setRedraw(list, false);
    for (auto row = going.rbegin(); row != going.rend(); ++row) {
        SendMessageW(list, LVM_DELETEITEM, static_cast<WPARAM>(*row), 0);
    }
    list_view::setRedraw(list, true);
}

void BareList::rebuild(HWND list, const std::vector<int>& staying) const
{
    list_view::setRedraw(list, false);
    SendMessageW(list, LVM_DELETEALLITEMS, 0, 0);
    for (const int row : staying) {
        insert(list, m_rows[static_cast<std::size_t>(row)]);
    }
    list_view::setRedraw(list, true);
}

void BareList::putBack(HWND list, const std::vector<int>& comingBack, bool fromZ) const
{
    list_view::setRedraw(list, false);
    for (const int row : comingBack) {
        insert(list, m_rows[static_cast<std::size_t>(row)]);
    }
    list_view::setRedraw(list, true);
    sort(list, fromZ);
}

void BareList::sort(HWND list, bool fromZ) const
{
    const PFNLVCOMPARE compare = [](LPARAM first, LPARAM second, LPARAM sign) {
        const auto& a = *reinterpret_cast<const Row*>(first);
        const auto& b = *reinterpret_cast<const Row*>(second);
        return static_cast<int>(sign) * compareIgnoringCase(a.account, b.account);
    };
    SendMessageW(list, LVM_SORTITEMS, static_cast<WPARAM>(fromZ ? -1 : 1), reinterpret_cast<LPARAM>(compare));
}
