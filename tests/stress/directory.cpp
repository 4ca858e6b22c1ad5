#include "tests/stress/directory.h"

#include "tests/support/directory_objects.h"
#include "tests/support/import_patch.h"

#include <gtest/gtest.h>

#include <oleauto.h>

#include <lmcons.h>

#include <atomic>
#include <cstring>
#include <string>

namespace {

constexpr int kObjects = 250; // three batches

void (*pauseHere)() = [] {
};
std::atomic<long> references = 0;

/// Tells of itself what is alive.
template <class Interface>
class Counted : public ComObject<Interface> {
public:
    Counted() { ++references; }
    ~Counted() override { --references; }
};

class Object : public DirectoryEntry<Counted<IADs>> {
public:
    explicit Object(int number)
        : m_number(number)
    {
    }
    HRESULT WINAPI get_Name(BSTR* name) override
    {
        *name = SysAllocString((L"object" + std::to_wstring(m_number)).c_str());
        return S_OK;
    }
    HRESULT WINAPI Get(BSTR, VARIANT* value) override
    {
        if (m_number % 50 == 0) {
            pauseHere();
        }
        const unsigned char sid[] = {1, 1, 0, 0, 0, 0, 0, 5, static_cast<unsigned char>(m_number), 1, 0, 0};
        SAFEARRAYBOUND bound{sizeof sid, 0};
        value->vt = VT_ARRAY | VT_UI1;
        value->parray = SafeArrayCreate(VT_UI1, 1, &bound);
        std::memcpy(value->parray->pvData, sid, sizeof sid);
        return S_OK;
    }

private:
    int m_number;
};

class Container : public DirectoryContainer<Counted<IADsContainer>> {
public:
    HRESULT WINAPI put_Filter(VARIANT) override { return S_OK; }
};

/// Only handed back to the functions here.
struct Enumerator {
    Enumerator() { ++references; }
    Enumerator(const Enumerator&) = delete;
    Enumerator& operator=(const Enumerator&) = delete;
    ~Enumerator() { --references; }
    int next = 0;
};

HRESULT WINAPI getObject(LPCWSTR, REFIID, void** object)
{
    pauseHere();
    *object = new Container;
    return S_OK;
}

HRESULT WINAPI buildArray(LPWSTR*, DWORD, VARIANT*)
{
    return S_OK; // nobody looks at the filter
}

HRESULT WINAPI buildEnumerator(IADsContainer*, IEnumVARIANT** enumerator)
{
    *enumerator = reinterpret_cast<IEnumVARIANT*>(new Enumerator);
    return S_OK;
}

HRESULT WINAPI enumerateNext(IEnumVARIANT* enumerator, ULONG wanted, VARIANT* batch, ULONG* fetched)
{
    pauseHere();
    int& next = reinterpret_cast<Enumerator*>(enumerator)->next;
    *fetched = 0;
    while (*fetched < wanted && next < kObjects) {
        VARIANT& element = batch[(*fetched)++];
        element.vt = VT_DISPATCH;
        element.pdispVal = new Object(next++);
    }
    return *fetched == wanted ? S_OK : S_FALSE;
}

HRESULT WINAPI freeEnumerator(IEnumVARIANT* enumerator)
{
    delete reinterpret_cast<Enumerator*>(enumerator);
    return S_OK;
}

NET_API_STATUS WINAPI useAdd(LMSTR, DWORD, LPBYTE, LPDWORD)
{
    pauseHere();
    ++references;
    return 0;
}

NET_API_STATUS WINAPI useDel(LMSTR, LMSTR, DWORD)
{
    --references;
    return 0;
}

template <class Function>
void replace(HMODULE library, const char* name, Function* replacement)
{
    ImportPatch patch(library, name, replacement);
    EXPECT_EQ(patch.count(), 1) << name;
    patch.keep();
}

} // namespace

void serveDirectory(HMODULE library, void (*pause)())
{
    pauseHere = pause;
    replace(library, "ADsGetObject", &getObject);
    replace(library, "ADsBuildVarArrayStr", &buildArray);
    replace(library, "ADsBuildEnumerator", &buildEnumerator);
    replace(library, "ADsEnumerateNext", &enumerateNext);
    replace(library, "ADsFreeEnumerator", &freeEnumerator);
    replace(library, "NetUseAdd", &useAdd);
    replace(library, "NetUseDel", &useDel);
}

long directoryReferences()
{
    return references;
}
