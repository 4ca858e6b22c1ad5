#include "account_store.h"

#include "tests/support/describe.h"

#include <algorithm>
#include <array>
#include <cwchar>

namespace {

AccountStore* current = nullptr;
std::map<unsigned, void*> sids;
// Strings handed out and not freed. A fixed array: it is looked at inside free.
std::array<void*, 16> handedOut{};

wchar_t* handOut(const std::wstring& string)
{
    wchar_t* const copy = _wcsdup(string.c_str());
    *std::find(handedOut.begin(), handedOut.end(), nullptr) = copy;
    return copy;
}

} // namespace

AccountStore::AccountStore()
{
    current = this;
    sids.clear();
    handedOut = {};
    tellListsByNumber();
    answer.enumerateUsers = [this](const wchar_t* server, SidList* list) {
        return enumerate("enumerateUsers ", users, server, list);
    };
    answer.enumerateGroups = [this](const wchar_t* server, SidList* list) {
        return enumerate("enumerateGroups ", groups, server, list);
    };
    answer.getDomainServer = [this] {
        return domainServer ? handOut(*domainServer) : nullptr;
    };
    answer.getDomainServerByName = [this](const wchar_t* server) {
        const auto found = secondServers.find(server);
        return found != secondServers.end() ? handOut(found->second) : nullptr;
    };
    answer.getAccountBySidW = [this](const void* sid, wchar_t* buffer, int capacity) -> wchar_t* {
        const auto found = names.find(sidNumber(sid));
        if (found == names.end()) {
            return nullptr;
        }
        const std::wstring name = found->second.substr(0, static_cast<std::size_t>(capacity) - 1);
        return std::wcscpy(buffer, name.c_str());
    };
    m_append = answer.appendToSidList2;
    answer.appendToSidList2 = [this](SidList* destination, SidList* source) {
        if (!givenBack.empty() && listNumber(source) == givenBack) {
            answer.freeSidList(destination);
            return source;
        }
        return m_append(destination, source);
    };
    answer.sidcmp = [this, compare = answer.sidcmp](const void* a, const void* b) {
        const bool lies = sidcmpLies != nullptr && (a == sidcmpLies || b == sidcmpLies);
        return lies ? 1 : compare(a, b);
    };
}

AccountStore::~AccountStore()
{
    current = nullptr;
}

int AccountStore::strings() const
{
    return static_cast<int>(std::count_if(handedOut.begin(), handedOut.end(), [](void* p) { return p; }));
}

void AccountStore::forgetString(void* block)
{
    if (block != nullptr) {
        std::replace(handedOut.begin(), handedOut.end(), block, static_cast<void*>(nullptr));
    }
}

SidList* AccountStore::enumerate(const char* function, const Accounts& accounts, const wchar_t* server,
                                 SidList* list)
{
    if (givesNull.contains(function + describe(server))) {
        answer.freeSidList(list);
        return nullptr;
    }
    const auto found = accounts.find(server != nullptr ? server : L"");
    list = list != nullptr ? list : answer.createEmptySidList();
    return found == accounts.end() ? list : m_append(list, makePresets(found->second));
}

void* testSid(unsigned number)
{
    void*& sid = sids[number];
    if (sid == nullptr) {
        sid = current->account(std::to_string(number));
    }
    return sid;
}

unsigned sidNumber(const void* sid)
{
    const std::string name = sid == nullptr ? std::string() : RecordingStore::nameOf(sid);
    return name.empty() ? 0 : static_cast<unsigned>(std::stoul(name));
}

SidList* makePresets(const std::vector<unsigned>& numbers)
{
    std::vector<void*> list(numbers.size());
    std::transform(numbers.begin(), numbers.end(), list.begin(),
                   [](unsigned number) { return number != 0 ? testSid(number) : nullptr; });
    return current->callersSidList(list);
}

std::vector<unsigned> numbersOf(const SidList* list)
{
    std::vector<unsigned> numbers;
    for (int i = 0; list != nullptr && i < list->count; ++i) {
        numbers.push_back(sidNumber(list->sids[i]));
    }
    return numbers;
}
