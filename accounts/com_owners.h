// Owners of what COM and OLE automation hand out.
#pragma once

#include "frame/platform.h"
#include "store/owned.h"

#include <oaidl.h>
#include <oleauto.h>

#include <utility>

template <class T>
void releaseObject(T* object)
{
    object->Release();
}
/// A COM object.
template <class T>
using ComPtr = Owned<T*, releaseObject<T>>;

/// Where a function puts an object that it is asked for by its interface.
template <class T>
void** putVoid(ComPtr<T>& object)
{
    return reinterpret_cast<void**>(object.put());
}

/// A string of OLE automation.
using OwnedBstr = Owned<BSTR, SysFreeString>;

/// Values of OLE automation, fetched many at a time. As the other owners, each lets go before it gives back.
template <ULONG N>
class OwnedVariants {
public:
    OwnedVariants() = default;
    OwnedVariants(const OwnedVariants&) = delete;
    OwnedVariants& operator=(const OwnedVariants&) = delete;
    ~OwnedVariants() { reset(); }

    static constexpr ULONG capacity() { return N; }
    const VARIANT& get(ULONG index = 0) const { return m_values[index]; }
    void reset(ULONG index)
    {
        VARIANT value = std::exchange(m_values[index], VARIANT{});
        VariantClear(&value);
    }
    void reset()
    {
        for (ULONG i = 0; i < N; ++i) {
            reset(i);
        }
    }

    /// Where a function puts new values; all are empty.
    VARIANT* put()
    {
        reset();
        return m_values;
    }

private:
    VARIANT m_values[N] = {};
};
using OwnedVariant = OwnedVariants<1>;

/// The elements of a safe array, locked while they are read.
class SafeArrayAccess {
public:
    /// @return the first element, null when the array cannot be locked.
    const void* lock(SAFEARRAY* array)
    {
        m_array.reset();
        void* data = nullptr;
        if (FAILED(SafeArrayAccessData(array, &data))) {
            return nullptr;
        }
        m_array.reset(array);
        return data;
    }

    void reset() { m_array.reset(); }

private:
    Owned<SAFEARRAY*, SafeArrayUnaccessData> m_array;
};
