#include "directory.h"

#include "account_store.h"
#include "tests/support/describe.h"
#include "tests/support/directory_objects.h"

#include <oaidl.h>
#include <oleauto.h>

#include <adshlp.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <iterator>

Directory directory;

namespace {

constexpr IID kContainer{0x001677D0, 0xFD16, 0x11CE, {0xAB, 0xC4, 0x02, 0x60, 0x8C, 0x9E, 0x75, 0x53}};
constexpr IID kObject{0xFD8256D0, 0xFD15, 0x11CE, {0xAB, 0xC4, 0x02, 0x60, 0x8C, 0x9E, 0x75, 0x53}};

std::vector<std::wstring> filter;

decltype(SysAllocString)* realAllocString;
decltype(SysFreeString)* realFreeString;
decltype(SafeArrayCreate)* realCreateArray;
decltype(VariantClear)* realVariantClear;
decltype(free)* realFree;

HRESULT outcome(const char* function, const std::string& arguments)
{
    RecordingStore::note(function, arguments);
    const auto found = directory.fails.find(function);
    return found != directory.fails.end() ? found->second : S_OK;
}

BSTR newString(const std::optional<std::wstring>& text)
{
    if (!text) {
        return nullptr;
    }
    return SysAllocString(text->c_str());
}

/// Tells of each reference.
template <class Interface>
class Counted : public ComObject<Interface> {
public:
    explicit Counted(const char* kind)
        : m_kind(kind)
    {
        ++directory.references;
    }

    ULONG WINAPI AddRef() override
    {
        ++directory.references;
        return ComObject<Interface>::AddRef();
    }
    ULONG WINAPI Release() override
    {
        const bool faults = directory.releaseFaults.contains(m_kind);
        --directory.references;
        const ULONG left = ComObject<Interface>::Release();
        if (left == 0 && faults) {
            RecordingStore::note("Release", "faults");
            *reinterpret_cast<volatile int*>(16) = 0;
        }
        return left;
    }

private:
    const char* m_kind;
};

class Object final : public DirectoryEntry<Counted<IADs>> {
public:
    explicit Object(const DirectoryObject& object)
        : DirectoryEntry("object")
        , m_object(object)
    {
    }

    HRESULT WINAPI QueryInterface(REFIID iid, void** result) override
    {
        *result = nullptr;
        const HRESULT given = outcome("QueryInterface", "");
        if (FAILED(given) || directory.giveNothing.contains("QueryInterface")) {
            return given;
        }
        if (!IsEqualIID(iid, kObject) || !m_object.isDirectoryObject) {
            return E_NOINTERFACE;
        }
        AddRef();
        *result = this;
        return S_OK;
    }
    HRESULT WINAPI get_Name(BSTR* result) override
    {
        const HRESULT given = outcome("get_Name", "");
        *result = FAILED(given) ? nullptr : newString(m_object.name);
        return given;
    }
    HRESULT WINAPI get_Class(BSTR* result) override
    {
        const HRESULT given = outcome("get_Class", "");
        *result = FAILED(given) ? nullptr : newString(m_object.className);
        return given;
    }
    HRESULT WINAPI Get(BSTR attribute, VARIANT* result) override
    {
        const HRESULT given = outcome("Get", describe(static_cast<const wchar_t*>(attribute)));
        if (FAILED(given) || m_object.sid == 0) {
            return FAILED(given) ? given : HRESULT(0x8000500D);
        }
        fill(*result);
        return given;
    }

private:
    void fill(VARIANT& result) const
    {
        using Form = DirectoryObject::Form;
        if (m_object.form == Form::kText) {
            result.vt = VT_BSTR;
            result.bstrVal = newString(L"S-1-5-21");
            return;
        }
        const void* const sid = testSid(m_object.sid);
        ULONG size = m_object.form == Form::kEmpty    ? 0
                     : m_object.form == Form::kCutOff ? GetLengthSid(testSid(m_object.sid)) - 1
                                                      : GetLengthSid(testSid(m_object.sid));
        const VARTYPE type = m_object.form == Form::kLongs ? VT_I4 : VT_UI1;
        SAFEARRAYBOUND bounds[2] = {{size, m_object.form == Form::kFromOne ? 1 : 0}, {1, 0}};
        SAFEARRAY* const array =
            SafeArrayCreate(type, m_object.form == Form::kTwoDimensions ? 2u : 1u, bounds);
        void* data = nullptr;
        SafeArrayAccessData(array, &data);
        std::memcpy(data, sid, size);
        SafeArrayUnaccessData(array);
        result.vt = static_cast<VARTYPE>(VT_ARRAY | type);
        result.parray = array;
    }

    const DirectoryObject& m_object;
};

class ObjectEnumerator final : public Counted<IEnumVARIANT> {
public:
    ObjectEnumerator()
        : Counted("enumerator")
    {
    }

    HRESULT WINAPI QueryInterface(REFIID iid, void** result) override
    {
        const bool known = IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IEnumVARIANT);
        *result = known ? this : nullptr;
        if (known) {
            AddRef();
        }
        return known ? S_OK : E_NOINTERFACE;
    }
    HRESULT WINAPI Next(ULONG wanted, VARIANT* values, ULONG* fetched) override
    {
        ++m_batch;
        ULONG given = 0;
        while (given < wanted && m_next < directory.objects.size()) {
            const DirectoryObject& object = directory.objects[m_next++];
            if (std::find(filter.begin(), filter.end(), object.listedAs) == filter.end()) {
                continue;
            }
            VARIANT& value = values[given++];
            value = VARIANT{};
            if (object.isObject) {
                value.vt = VT_DISPATCH;
                value.pdispVal = new Object(object);
            } else {
                value.vt = VT_I4;
                value.lVal = 7;
            }
        }
        *fetched = given;
        if (m_batch == directory.failingBatch) {
            return E_ACCESSDENIED;
        }
        return given < wanted && (given == 0 || !directory.fullBatchAtEnd) ? S_FALSE : S_OK;
    }
    HRESULT WINAPI Skip(ULONG) override { return E_NOTIMPL; }
    HRESULT WINAPI Reset() override { return E_NOTIMPL; }
    HRESULT WINAPI Clone(IEnumVARIANT**) override { return E_NOTIMPL; }

private:
    std::size_t m_next = 0;
    int m_batch = 0;
};

class Container final : public DirectoryContainer<Counted<IADsContainer>> {
public:
    Container()
        : DirectoryContainer("container")
    {
    }

    HRESULT WINAPI QueryInterface(REFIID iid, void** result) override
    {
        *result = nullptr;
        return IsEqualIID(iid, kContainer) ? E_UNEXPECTED : E_NOINTERFACE;
    }
    HRESULT WINAPI get__NewEnum(IUnknown** result) override
    {
        *result = new ObjectEnumerator;
        return S_OK;
    }
    HRESULT WINAPI put_Filter(VARIANT value) override
    {
        filter.clear();
        std::string names;
        if (value.vt == (VT_ARRAY | VT_VARIANT)) {
            LONG upper = -1;
            SafeArrayGetUBound(value.parray, 1, &upper);
            // Read in place: a copy of a null string would be an empty one.
            const auto* const entries = static_cast<const VARIANT*>(value.parray->pvData);
            for (LONG i = 0; i <= upper; ++i) {
                names += (i == 0 ? "" : ", ") + describe(static_cast<const wchar_t*>(entries[i].bstrVal));
                if (entries[i].bstrVal != nullptr) {
                    filter.emplace_back(entries[i].bstrVal);
                }
            }
        }
        return outcome("put_Filter", names);
    }
};

HRESULT WINAPI getObject(const wchar_t* path, REFIID iid, void** result)
{
    *result = nullptr;
    const HRESULT given = outcome("ADsGetObject", describe(path));
    if (FAILED(given)) {
        return given;
    }
    if (!IsEqualIID(iid, kContainer)) {
        return E_NOINTERFACE;
    }
    if (!directory.giveNothing.contains("ADsGetObject")) {
        *result = new Container;
    }
    return given;
}

HRESULT WINAPI buildVarArrayStr(LPWSTR* names, DWORD count, VARIANT* result)
{
    const HRESULT given = outcome("ADsBuildVarArrayStr", std::to_string(count));
    if (FAILED(given)) {
        return given;
    }
    SAFEARRAY* const array = SafeArrayCreateVector(VT_VARIANT, 0, count);
    auto* const entries = static_cast<VARIANT*>(array->pvData);
    for (DWORD i = 0; i < count; ++i) {
        entries[i].vt = VT_BSTR;
        entries[i].bstrVal = names[i] != nullptr ? realAllocString(names[i]) : nullptr;
    }
    ++directory.arrays;
    result->vt = VT_ARRAY | VT_VARIANT;
    result->parray = array;
    return given;
}

HRESULT WINAPI buildEnumerator(IADsContainer* container, IEnumVARIANT** result)
{
    *result = nullptr;
    const HRESULT given = outcome("ADsBuildEnumerator", "");
    if (FAILED(given) || directory.giveNothing.contains("ADsBuildEnumerator")) {
        return given;
    }
    IUnknown* enumerator = nullptr;
    container->get__NewEnum(&enumerator);
    *result = static_cast<ObjectEnumerator*>(static_cast<IEnumVARIANT*>(enumerator));
    return given;
}

HRESULT WINAPI enumerateNext(IEnumVARIANT* enumerator, ULONG wanted, VARIANT* values, ULONG* fetched)
{
    const HRESULT given = outcome("ADsEnumerateNext", std::to_string(wanted));
    return FAILED(given) ? given : enumerator->Next(wanted, values, fetched);
}

HRESULT WINAPI freeEnumerator(IEnumVARIANT* enumerator)
{
    enumerator->Release();
    return outcome("ADsFreeEnumerator", "");
}

HRESULT WINAPI initializeCom(void*)
{
    return outcome("CoInitialize", "");
}

BSTR WINAPI countedAllocString(const OLECHAR* text)
{
    ++directory.strings;
    return realAllocString(text);
}

void WINAPI countedFreeString(BSTR text)
{
    directory.strings -= text != nullptr ? 1 : 0;
    realFreeString(text);
}

SAFEARRAY* WINAPI countedCreateArray(VARTYPE type, UINT dimensions, SAFEARRAYBOUND* bounds)
{
    ++directory.arrays;
    return realCreateArray(type, dimensions, bounds);
}

HRESULT WINAPI countedVariantClear(VARIANT* value)
{
    const bool isString = value->vt == VT_BSTR && value->bstrVal != nullptr;
    const bool isArray = (value->vt & VT_ARRAY) != 0;
    const HRESULT result = realVariantClear(value);
    if (SUCCEEDED(result)) {
        directory.strings -= isString ? 1 : 0;
        directory.arrays -= isArray ? 1 : 0;
    }
    return result;
}

void countedFree(void* block)
{
    AccountStore::forgetString(block);
    realFree(block);
}

} // namespace

DirectoryPatch::DirectoryPatch()
{
    directory = {};
    m_imports.replace("ADsGetObject", getObject);
    m_imports.replace("ADsBuildVarArrayStr", buildVarArrayStr);
    m_imports.replace("ADsBuildEnumerator", buildEnumerator);
    m_imports.replace("ADsEnumerateNext", enumerateNext);
    m_imports.replace("ADsFreeEnumerator", freeEnumerator);
    m_imports.replace("CoInitialize", initializeCom);
    realAllocString = m_imports.replace("SysAllocString", countedAllocString);
    realFreeString = m_imports.replace("SysFreeString", countedFreeString);
    realCreateArray = m_imports.replace("SafeArrayCreate", countedCreateArray);
    realVariantClear = m_imports.replace("VariantClear", countedVariantClear);
    // Known before it is replaced: the replacing itself frees.
    realFree = reinterpret_cast<decltype(free)*>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"msvcrt"), "free")));
    m_imports.replace("free", countedFree);
}

DirectoryPatch::~DirectoryPatch() = default;
