#include "accounts/directory_walk.h"

#include "accounts/account_name.h"
#include "accounts/account_sink.h"
#include "frame/crash_guard.h"
#include "frame/format_text.h"
#include "store/lornix.h"

#include <algorithm>
#include <cstring>

namespace {

// Written out: not every compiler's libraries hold them.
constexpr IID kIdContainer{0x001677D0, 0xFD16, 0x11CE, {0xAB, 0xC4, 0x02, 0x60, 0x8C, 0x9E, 0x75, 0x53}};
constexpr IID kIdObject{0xFD8256D0, 0xFD15, 0x11CE, {0xAB, 0xC4, 0x02, 0x60, 0x8C, 0x9E, 0x75, 0x53}};

constexpr std::size_t kTextLimit = 256;

// Bytes that a SID says it has; more than `size` when it is cut off.
std::size_t statedSidSize(const unsigned char* bytes, std::size_t size)
{
    constexpr std::size_t kHead = 8; // revision, number of sub-authorities, authority
    return size < kHead ? kHead : kHead + std::size_t{4} * bytes[1];
}

} // namespace

void DirectoryWalk::freeList()
{
    freeSidList(std::exchange(m_list, nullptr));
}

DirectoryWalk::~DirectoryWalk()
{
    // A walk that came to its end holds nothing any more. After a fault each piece is tried by itself: the one
    // that is broken must not keep the others.
    runGuarded([&] { m_sidBytes.reset(); });
    runGuarded([&] { m_sidValue.reset(); });
    runGuarded([&] { m_name.reset(); });
    runGuarded([&] { m_className.reset(); });
    runGuarded([&] { m_object.reset(); });
    for (ULONG i = 0; i < m_batch.capacity(); ++i) {
        runGuarded([&] { m_batch.reset(i); });
    }
    runGuarded([&] { m_enumerator.reset(); });
    runGuarded([&] { m_filter.reset(); });
    runGuarded([&] { m_container.reset(); });
    if (m_list != nullptr) {
        runGuarded([&] { freeList(); });
    }
}

/// The steps of a walk.
class Walker {
public:
    Walker(const wchar_t* path, DirectoryKind kind, FillContext* context, DirectoryWalk& walk)
        : m_path(path)
        , m_kind(kind)
        , m_context(context)
        , m_walk(walk)
    {
        walk.m_presetOwners = PresetOwners(context != nullptr ? context->presetOwners : nullptr);
        if (context != nullptr) {
            formatText(m_host, L"%ls", context->host);
            m_hasDomain = directoryDomain(m_host, m_domain);
        }
    }

    SidList* run();

private:
    /// Whether the list is gone: what is still to come takes as long as the network does.
    bool abandoned() const { return m_context != nullptr && !m_context->sink->alive(); }

    // Each gives S_OK when it succeeded and the error of the call that failed; S_FALSE for a failure without one.
    HRESULT open();
    HRESULT enumerate();
    HRESULT handleElement(ULONG index);

    void handleObject();
    void* readSid();
    void insertRow(const wchar_t* name, const wchar_t* className, void* sid);
    void releaseWalk();

    const wchar_t* m_path;
    DirectoryKind m_kind;
    FillContext* m_context;
    DirectoryWalk& m_walk;
    wchar_t m_host[kTextLimit + 1] = {};
    bool m_hasDomain = false;
    std::wstring_view m_domain; ///< in m_host
    int m_total = 0;
};

SidList* Walker::run()
{
    m_walk.m_list = createEmptySidList();
    HRESULT result = open();
    if (result == S_OK) {
        result = enumerate();
    }
    if (result != S_OK) {
        if (FAILED(result)) {
            ODS("Unable to list contents of: %S\n", m_path);
        }
        releaseWalk();
        m_walk.freeList();
        return nullptr;
    }
    ODS("Total Number of Objects enumerated is %d\n", m_total);
    releaseWalk();
    return std::exchange(m_walk.m_list, nullptr);
}

HRESULT Walker::open()
{
    if (abandoned()) {
        return S_FALSE;
    }
    HRESULT result = ADsGetObject(m_path, kIdContainer, putVoid(m_walk.m_container));
    if (FAILED(result)) {
        ODS("\"%S\" is not a valid container object.\n", m_path);
        return result;
    }
    if (!m_walk.m_container) {
        return S_FALSE;
    }
    wchar_t user[] = L"User";
    wchar_t group[] = L"Group";
    wchar_t* classNames[2] = {
        m_kind == DirectoryKind::kUsersAndGroups || m_kind == DirectoryKind::kUsers ? user : group,
        m_kind == DirectoryKind::kUsersAndGroups ? group : nullptr};
    if (abandoned()) {
        return S_FALSE;
    }
    // Always two: the directory service takes the null entry for "no further class".
    result = ADsBuildVarArrayStr(classNames, 2, m_walk.m_filter.put());
    if (FAILED(result)) {
        return result;
    }
    result = m_walk.m_container->put_Filter(m_walk.m_filter.get());
    if (FAILED(result)) {
        return result;
    }
    if (abandoned()) {
        return S_FALSE;
    }
    result = ADsBuildEnumerator(m_walk.m_container.get(), m_walk.m_enumerator.put());
    if (FAILED(result)) {
        return result;
    }
    return m_walk.m_enumerator.get() != nullptr ? S_OK : S_FALSE;
}

HRESULT Walker::enumerate()
{
    *m_walk.m_sidAttribute.put() = SysAllocString(L"objectSid");
    for (;;) {
        if (abandoned()) {
            return S_FALSE;
        }
        ULONG fetched = 0;
        const HRESULT result = ADsEnumerateNext(m_walk.m_enumerator.get(), m_walk.m_batch.capacity(),
                                                m_walk.m_batch.put(), &fetched);
        if (FAILED(result)) {
            return result;
        }
        fetched = std::min(fetched, m_walk.m_batch.capacity());
        for (ULONG i = 0; i < fetched; ++i) {
            if (abandoned()) {
                return S_FALSE;
            }
            const HRESULT handled = handleElement(i);
            if (handled != S_OK) {
                return handled;
            }
        }
        m_total += static_cast<int>(fetched);
        if (result == S_FALSE) {
            return S_OK;
        }
    }
}

HRESULT Walker::handleElement(ULONG index)
{
    const VARIANT& element = m_walk.m_batch.get(index);
    if ((element.vt != VT_DISPATCH && element.vt != VT_UNKNOWN) || element.punkVal == nullptr) {
        return E_NOINTERFACE;
    }
    const HRESULT result = element.punkVal->QueryInterface(kIdObject, putVoid(m_walk.m_object));
    if (FAILED(result)) {
        return result;
    }
    if (!m_walk.m_object) {
        return S_FALSE;
    }
    handleObject();
    m_walk.m_object.reset();
    m_walk.m_batch.reset(index);
    return S_OK;
}

void Walker::handleObject()
{
    m_walk.m_object->get_Name(m_walk.m_name.put());
    m_walk.m_object->get_Class(m_walk.m_className.put());
    const wchar_t* const name = m_walk.m_name.get();
    const wchar_t* const className = m_walk.m_className.get();
    ODS("  %S(%S)\n", name, className);
    if (abandoned()) {
        return;
    }
    void* const sid = readSid();
    if (sid != nullptr) {
        m_walk.m_list = appendToSidList(std::exchange(m_walk.m_list, nullptr), sid);
    }
    if (m_context != nullptr) {
        insertRow(name, className, sid);
    }
    m_walk.m_name.reset();
    m_walk.m_className.reset();
}

void* Walker::readSid()
{
    if (FAILED(m_walk.m_object->Get(m_walk.m_sidAttribute.get(), m_walk.m_sidValue.put()))) {
        m_walk.m_sidValue.reset();
        return nullptr;
    }
    void* sid = nullptr;
    const VARIANT& value = m_walk.m_sidValue.get();
    LONG lower = 0;
    LONG upper = 0;
    if (value.vt == (VT_ARRAY | VT_UI1) && value.parray != nullptr && SafeArrayGetDim(value.parray) == 1 &&
        SUCCEEDED(SafeArrayGetLBound(value.parray, 1, &lower)) &&
        SUCCEEDED(SafeArrayGetUBound(value.parray, 1, &upper)) && upper >= lower)
    {
        const std::size_t size = static_cast<std::size_t>(static_cast<long long>(upper) - lower + 1);
        if (const void* const bytes = m_walk.m_sidBytes.lock(value.parray)) {
            const auto* const first = static_cast<const unsigned char*>(bytes);
            m_walk.m_sidBuffer.assign(first, first + size);
            m_walk.m_sidBytes.reset();
            // The store reads as much as the SID says it has: one that is cut off is not readable.
            if (statedSidSize(m_walk.m_sidBuffer.data(), size) <= size) {
                sid = sidDup(m_walk.m_sidBuffer.data());
            }
        }
    }
    m_walk.m_sidValue.reset();
    return sid;
}

void Walker::insertRow(const wchar_t* name, const wchar_t* className, void* sid)
{
    if (m_walk.m_presetOwners.excludes(sid)) {
        return;
    }
    wchar_t account[kTextLimit + 1];
    if (m_hasDomain && name != nullptr) {
        // Formatting would cost as much as the rest of the row.
        std::size_t length = 0;
        for (const std::wstring_view part : {m_domain, std::wstring_view(L"\\"), std::wstring_view(name)}) {
            length += part.copy(account + length, kTextLimit - length);
        }
        account[length] = L'\0';
    } else if (m_hasDomain) {
        formatText(account, L"%.*ls\\%ls", static_cast<int>(m_domain.size()), m_domain.data(), name);
    } else {
        formatText(account, L"%ls", name);
    }
    const wchar_t* const type = className != nullptr ? className : L"User";
    const int image = std::wcscmp(type, L"User") == 0 ? m_context->userImage : m_context->groupImage;
    AccountSink& sink = *m_context->sink;
    if (sink.alive()) {
        sink.insert(sink.rowCount(), image, afterBackslash(account), account, type, sidDup(sid));
    }
}

void Walker::releaseWalk()
{
    m_walk.m_batch.reset();
    m_walk.m_object.reset();
    m_walk.m_enumerator.reset();
    m_walk.m_filter.reset();
    m_walk.m_container.reset();
}

SidList* DoList(const wchar_t* path, DirectoryKind kind, FillContext* context, DirectoryWalk& walk)
{
    return Walker(path, kind, context, walk).run();
}
