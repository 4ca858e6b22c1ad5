// Objects carried in 32 bits: in a list row's item data, in a dialog's end code.
#pragma once

#include "frame/platform.h"

#include <cstdint>

/// The 32-bit value that stands for an object.
///
/// An object below 4 GiB, the normal case, is stood for by its own address, and hosts read item data as a
/// pointer. An object above gets a stand-in: a number inside address space that this library keeps reserved,
/// so that it can never be the address of anything, and neither 0 nor -1, whichever way it is extended. An object keeps
/// its stand-in while a row of a list carries it that was handed in here, and for some thousand others after that. Then
/// the stand-in stands for nothing: whoever kept it finds no object, rather than another one.
class NarrowHandle {
public:
    /// The handle of an object. Null has the value 0; so has an object above 4 GiB for which no stand-in can
    /// be had.
    static NarrowHandle of(const void* object);

    /// The same, for a row of a list.
    static NarrowHandle inRow(HWND list, const void* object);

    /// The handle in an item data or an end code, of which the low 32 bits count, whichever way it was
    /// extended.
    static NarrowHandle fromCarrier(INT_PTR carried)
    {
        return NarrowHandle(static_cast<std::uint32_t>(static_cast<UINT_PTR>(carried)));
    }

    std::uint32_t value() const { return m_value; }

    /// Zero-extended, as item data and end codes carry it.
    INT_PTR carrier() const { return static_cast<INT_PTR>(static_cast<UINT_PTR>(m_value)); }

    /// Sign-extended, as an end code that has been through a 32-bit signed integer comes back.
    INT_PTR signedCarrier() const { return static_cast<std::int32_t>(m_value); }

    /// The object that the handle stands for; null for a stand-in that stands for nothing any more.
    /// @param list  whose row carries it, null when none does.
    void* object(HWND list = nullptr) const;

private:
    explicit NarrowHandle(std::uint32_t value)
        : m_value(value)
    {
    }
    std::uint32_t m_value;
};
