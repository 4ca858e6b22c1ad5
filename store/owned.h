// One owner for all that is taken over from another module or from the platform, and given back by a function.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <type_traits>
#include <utility>

/// Owns a handle, a block or an object. It lets go before it gives back: when that faults, nobody tries again.
/// @tparam T         what is held: a pointer, or a handle of the platform.
/// @tparam giveBack  function that takes it back; never called with what stands for nothing.
/// @tparam none      what stands for nothing: -1 for handles of files.
template <class T, auto giveBack, std::intptr_t none = 0>
class Owned {
    static_assert(std::is_pointer_v<T>);

public:
    Owned() = default;
    Owned(std::nullptr_t) {}
    explicit Owned(T what)
        : m_what(what)
    {
    }
    Owned(Owned&& other) noexcept
        : m_what(other.release())
    {
    }
    Owned& operator=(Owned&& other) noexcept
    {
        reset(other.release());
        return *this;
    }
    Owned(const Owned&) = delete;
    Owned& operator=(const Owned&) = delete;
    ~Owned() { reset(); }

    T get() const { return m_what; }
    T operator->() const { return m_what; }
    decltype(auto) operator*() const { return *m_what; }
    explicit operator bool() const { return m_what != nothing(); }
    friend bool operator==(const Owned& owner, std::nullptr_t) { return !owner; }

    /// Hands it out: it is the caller's.
    [[nodiscard]] T release() { return std::exchange(m_what, nothing()); }

    void reset(T what = nothing())
    {
        if (const T before = std::exchange(m_what, what); before != nothing()) {
            giveBack(before);
        }
    }

    /// Where a function puts a new one. In place, so that one put there is given back even if the function then faults.
    T* put()
    {
        reset();
        return &m_what;
    }

private:
    static T nothing() { return reinterpret_cast<T>(none); }

    T m_what = nothing();
};

inline void freeBlock(void* block)
{
    std::free(block);
}

/// Owns a malloc block of the shared C runtime, as modules hand them to each other.
template <class T>
using CBlock = Owned<T*, freeBlock>;
