// What objects of a directory must have and nobody here asks for.
#pragma once

#include <windows.h>

#include <oaidl.h>
#include <oleauto.h>

#include <iads.h>

#include <atomic>

/// An object of an interface that counts its references.
template <class Interface>
class ComObject : public Interface {
public:
    virtual ~ComObject() = default;

    HRESULT WINAPI QueryInterface(REFIID, void** object) override
    {
        *object = this;
        this->AddRef();
        return S_OK;
    }
    ULONG WINAPI AddRef() override { return ++m_references; }
    ULONG WINAPI Release() override
    {
        const ULONG left = --m_references;
        if (left == 0) {
            delete this;
        }
        return left;
    }

private:
    std::atomic<ULONG> m_references = 1;
};

/// @param Base  a ComObject of an interface for automation.
template <class Base>
class Automation : public Base {
public:
    using Base::Base;
    HRESULT WINAPI GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    HRESULT WINAPI GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT WINAPI GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
    HRESULT WINAPI Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override
    {
        return E_NOTIMPL;
    }
};

/// An account, of which only name, class and attributes are asked for. A user, if it says nothing else.
/// @param Base  a ComObject<IADs>.
template <class Base>
class DirectoryEntry : public Automation<Base> {
public:
    using Automation<Base>::Automation;
    HRESULT WINAPI get_Class(BSTR* name) override
    {
        *name = SysAllocString(L"User");
        return S_OK;
    }
    HRESULT WINAPI get_GUID(BSTR*) override { return E_NOTIMPL; }
    HRESULT WINAPI get_ADsPath(BSTR*) override { return E_NOTIMPL; }
    HRESULT WINAPI get_Parent(BSTR*) override { return E_NOTIMPL; }
    HRESULT WINAPI get_Schema(BSTR*) override { return E_NOTIMPL; }
    HRESULT WINAPI GetInfo() override { return E_NOTIMPL; }
    HRESULT WINAPI SetInfo() override { return E_NOTIMPL; }
    HRESULT WINAPI Put(BSTR, VARIANT) override { return E_NOTIMPL; }
    HRESULT WINAPI GetEx(BSTR, VARIANT*) override { return E_NOTIMPL; }
    HRESULT WINAPI PutEx(LONG, BSTR, VARIANT) override { return E_NOTIMPL; }
    HRESULT WINAPI GetInfoEx(VARIANT, LONG) override { return E_NOTIMPL; }
};

/// A container, which is only given its filter.
/// @param Base  a ComObject<IADsContainer>.
template <class Base>
class DirectoryContainer : public Automation<Base> {
public:
    using Automation<Base>::Automation;
    HRESULT WINAPI get__NewEnum(IUnknown**) override { return E_NOTIMPL; }
    HRESULT WINAPI get_Count(LONG*) override { return E_NOTIMPL; }
    HRESULT WINAPI get_Filter(VARIANT*) override { return E_NOTIMPL; }
    HRESULT WINAPI get_Hints(VARIANT*) override { return E_NOTIMPL; }
    HRESULT WINAPI put_Hints(VARIANT) override { return E_NOTIMPL; }
    HRESULT WINAPI GetObject(BSTR, BSTR, IDispatch**) override { return E_NOTIMPL; }
    HRESULT WINAPI Create(BSTR, BSTR, IDispatch**) override { return E_NOTIMPL; }
    HRESULT WINAPI Delete(BSTR, BSTR) override { return E_NOTIMPL; }
    HRESULT WINAPI CopyHere(BSTR, BSTR, IDispatch**) override { return E_NOTIMPL; }
    HRESULT WINAPI MoveHere(BSTR, BSTR, IDispatch**) override { return E_NOTIMPL; }
};
