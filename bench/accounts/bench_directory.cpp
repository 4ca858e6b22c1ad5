// A directory without a network.
#include "bench/support/account_sid.h"
#include "bench_accounts.h"

#include "frame/platform.h"
#include "tests/support/directory_objects.h"
#include "tests/support/import_patch.h"

#include <oleauto.h>

#include <lmcons.h>
#include <lmuse.h>

#include <adshlp.h>

#include <cwchar>
#include <deque>

int directoryUsers = 0;

namespace {

bool usersWanted = false;
int nextUser = 0;

class User : public DirectoryEntry<ComObject<IADs>> {
public:
    explicit User(int number)
        : m_number(number)
    {
    }
    HRESULT WINAPI get_Name(BSTR* name) override
    {
        *name = SysAllocString(std::wcschr(servedFullName(m_number), L'\\') + 1);
        return S_OK;
    }
    HRESULT WINAPI Get(BSTR, VARIANT* value) override
    {
        const AccountSid sid(static_cast<DWORD>(m_number));
        SAFEARRAYBOUND bound{sizeof sid, 0};
        value->vt = VT_ARRAY | VT_UI1;
        value->parray = SafeArrayCreate(VT_UI1, 1, &bound);
        std::memcpy(value->parray->pvData, &sid, sizeof sid);
        return S_OK;
    }

private:
    int m_number;
};

class Container : public DirectoryContainer<ComObject<IADsContainer>> {
public:
    HRESULT WINAPI put_Filter(VARIANT filter) override
    {
        VARIANT first;
        VariantInit(&first);
        LONG index = 0;
        SafeArrayGetElement(filter.parray, &index, &first);
        usersWanted = std::wcscmp(first.bstrVal, L"User") == 0;
        VariantClear(&first);
        return S_OK;
    }
};

HRESULT WINAPI getObject(LPCWSTR, REFIID, void** object)
{
    *object = new Container;
    return S_OK;
}

// The platform's own refuses the null name that the library passes on purpose.
HRESULT WINAPI buildArray(LPWSTR* texts, DWORD count, VARIANT* value)
{
    SAFEARRAYBOUND bound{count, 0};
    value->vt = VT_ARRAY | VT_VARIANT;
    value->parray = SafeArrayCreate(VT_VARIANT, 1, &bound);
    for (LONG i = 0; i < static_cast<LONG>(count); ++i) {
        VARIANT text;
        VariantInit(&text);
        text.vt = VT_BSTR;
        text.bstrVal = SysAllocString(texts[i] != nullptr ? texts[i] : L"");
        SafeArrayPutElement(value->parray, &i, &text);
        VariantClear(&text);
    }
    return S_OK;
}

HRESULT WINAPI buildEnumerator(IADsContainer*, IEnumVARIANT** enumerator)
{
    nextUser = 0;
    *enumerator = reinterpret_cast<IEnumVARIANT*>(&nextUser); // only handed back to the functions here
    return S_OK;
}

HRESULT WINAPI enumerateNext(IEnumVARIANT*, ULONG wanted, VARIANT* batch, ULONG* fetched)
{
    *fetched = 0;
    while (usersWanted && *fetched < wanted && nextUser < directoryUsers) {
        VARIANT& element = batch[(*fetched)++];
        element.vt = VT_DISPATCH;
        element.pdispVal = new User(nextUser++);
    }
    return *fetched == wanted ? S_OK : S_FALSE;
}

HRESULT WINAPI freeEnumerator(IEnumVARIANT*)
{
    return S_OK;
}

NET_API_STATUS WINAPI useAdd(LMSTR, DWORD, LPBYTE, LPDWORD)
{
    return 0;
}

NET_API_STATUS WINAPI useDel(LMSTR, LMSTR, DWORD)
{
    return 0;
}

} // namespace

void replacePlatform()
{
    static std::deque<ImportPatch> patches;
    const HMODULE program = GetModuleHandleW(nullptr);
    patches.emplace_back(program, "ADsGetObject", &getObject);
    patches.emplace_back(program, "ADsBuildVarArrayStr", &buildArray);
    patches.emplace_back(program, "ADsBuildEnumerator", &buildEnumerator);
    patches.emplace_back(program, "ADsEnumerateNext", &enumerateNext);
    patches.emplace_back(program, "ADsFreeEnumerator", &freeEnumerator);
    patches.emplace_back(program, "NetUseAdd", &useAdd);
    patches.emplace_back(program, "NetUseDel", &useDel);
}
