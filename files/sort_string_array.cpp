#include "files/sort_string_array.h"

#include "frame/crash_guard.h"
#include "store/lornix.h"

#include <algorithm>
#include <cwchar>

// QUIRK: the order is that of a bubble sort which never looks at the last element: the last file of a listing stands
// apart. SortStringArrayTest.LeavesTheLastElementWhereItIs
//
// Passes over neighbours are quadratic, so only the first one is made. It reads every text, and when nothing
// raised, what further passes would come to is a stable sort: neighbours change places only when the first is
// greater, so equal texts never do.
void CSortStringArray::sort()
{
    Pass last = pass();
    if (last.swapped && !last.raised && sortAtOnce()) {
        return;
    }
    while (last.swapped) {
        last = pass();
    }
}

CSortStringArray::Pass CSortStringArray::pass()
{
    Pass result;
    for (std::size_t i = 0; i + 2 < m_texts.size(); ++i) {
        bool swapped = false;
        if (runGuarded([&] { swapped = compareAndSwap(i); })) {
            result.swapped |= swapped;
            continue;
        }
        result.raised = true;
        // The channel belongs to the store: it may be what is broken.
        runGuarded([&] {
            ODS("*** SIGSEGV ***: %d of %d\n", static_cast<int>(i), static_cast<int>(m_texts.size()) - 2);
        });
    }
    return result;
}

bool CSortStringArray::compareAndSwap(std::size_t index)
{
    std::wstring& first = m_texts[index];
    std::wstring& second = m_texts[index + 1];
    if (_wcsicmp(first.c_str(), second.c_str()) <= 0) {
        return false;
    }
    first.swap(second);
    return true;
}

// @return false when a comparison raised; the texts then stand as they stood.
bool CSortStringArray::sortAtOnce()
{
    // Sorted are pointers, and in place: a fault half-way leaves the texts alone and no buffer behind.
    std::vector<std::wstring*> order;
    order.reserve(m_texts.size());
    for (std::wstring& text : m_texts) {
        order.push_back(&text);
    }
    const auto before = [](const std::wstring* first, const std::wstring* second) {
        const int difference = _wcsicmp(first->c_str(), second->c_str());
        return difference < 0 || (difference == 0 && first < second);
    };
    if (!runGuarded([&] { std::sort(order.begin(), order.end() - 1, before); })) {
        return false;
    }
    std::vector<std::wstring> sorted;
    sorted.reserve(order.size());
    for (std::wstring* text : order) {
        sorted.push_back(std::move(*text));
    }
    m_texts = std::move(sorted);
    return true;
}
