// Owners of what COM and OLE automation hand out.
//
// Each lets go of its resource before it releases it: when the releasing faults, nobody tries again.
#pragma once

#include "frame/platform.h"

#include <oaidl.h>
#include <oleauto.h>

#include <utility>

/// A COM object.
template <class T>
class ComPtr {
public:
    ComPtr() = default;
    ComPtr(const ComPtr&) = delete;
    ComPtr& operator=(const ComPtr&) = delete;
    ~ComPtr() { reset(); }

    T* get() const { return m_object; }
    T* operator->() const { return m_object; }
    explicit operator bool() const { return m_object != nullptr; }

    void reset()
    {
        if (T* const object = std::exchange(m_object, nullptr)) {
            object->Release();
        }
    }

    /// Where a function puts a new object.
    T** put()
    {
        reset();
        return &m_object;
    }
    void** putVoid() { return reinterpret_cast<void**>(put()); }

private:
    T* m_object = nullptr;
};

/// A string of OLE automation.
class OwnedBstr {
public:
    OwnedBstr() = default;
    OwnedBstr(const OwnedBstr&) = delete;
    OwnedBstr& operator=(const OwnedBstr&) = delete;
    ~OwnedBstr() { reset(); }

    BSTR get() const { return m_text; }
    void reset() { SysFreeString(std::exchange(m_text, nullptr)); }

    /// Where a function puts a new string.
    BSTR* put()
    {
        reset();
        return &m_text;
    }

private:
    BSTR m_text = nullptr;
};

/// A value of OLE automation.
class OwnedVariant {
public:
    OwnedVariant() = default;
    OwnedVariant(const OwnedVariant&) = delete;
    OwnedVariant& operator=(const OwnedVariant&) = delete;
    ~OwnedVariant() { reset(); }

    const VARIANT& get() const { return m_value; }
    void reset()
    {
        VARIANT value = std::exchange(m_value, VARIANT{});
        VariantClear(&value);
    }

    /// Where a function puts a new value.
    VARIANT* put()
    {
        reset();
        return &m_value;
    }

private:
    VARIANT m_value{};
};

/// Values of OLE automation that are fetched many at a time.
template <ULONG N>
class VariantBatch {
public:
    VariantBatch() = default;
    VariantBatch(const VariantBatch&) = delete;
    VariantBatch& operator=(const VariantBatch&) = delete;
    ~VariantBatch() { reset(); }

    static constexpr ULONG capacity() { return N; }
    const VARIANT& operator[](ULONG index) const { return m_values[index]; }
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

/// The elements of a safe array, locked while they are read.
class SafeArrayAccess {
public:
    SafeArrayAccess() = default;
    SafeArrayAccess(const SafeArrayAccess&) = delete;
    SafeArrayAccess& operator=(const SafeArrayAccess&) = delete;
    ~SafeArrayAccess() { reset(); }

    /// @return the first element, null when the array cannot be locked.
    const void* lock(SAFEARRAY* array)
    {
        reset();
        void* data = nullptr;
        if (FAILED(SafeArrayAccessData(array, &data))) {
            return nullptr;
        }
        m_array = array;
        return data;
    }

    void reset()
    {
        if (SAFEARRAY* const array = std::exchange(m_array, nullptr)) {
            SafeArrayUnaccessData(array);
        }
    }

private:
    SAFEARRAY* m_array = nullptr;
};
