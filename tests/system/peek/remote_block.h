// Memory in another program.
#pragma once

#include "window.h"

namespace peek {

/// A piece of memory of the program that owns a window: messages of the common controls carry addresses there.
class RemoteBlock {
public:
    explicit RemoteBlock(HWND window)
    {
        DWORD process = 0;
        GetWindowThreadProcessId(window, &process);
        process_ = OpenProcess(PROCESS_VM_OPERATION | PROCESS_VM_READ | PROCESS_VM_WRITE, FALSE, process);
        block_ = VirtualAllocEx(process_, nullptr, kSize, MEM_COMMIT, PAGE_READWRITE);
        if (block_ == nullptr) {
            throw Missing{"the memory of the program"};
        }
    }
    ~RemoteBlock()
    {
        VirtualFreeEx(process_, block_, 0, MEM_RELEASE);
        CloseHandle(process_);
    }
    RemoteBlock(const RemoteBlock&) = delete;
    RemoteBlock& operator=(const RemoteBlock&) = delete;

    template <class T>
    void put(const T& value)
    {
        WriteProcessMemory(process_, block_, &value, sizeof value, nullptr);
    }
    template <class T>
    T get() const
    {
        T value{};
        ReadProcessMemory(process_, block_, &value, sizeof value, nullptr);
        return value;
    }

    static constexpr int kTextRoom = 1024;
    wchar_t* textAddress() const { return reinterpret_cast<wchar_t*>(static_cast<char*>(block_) + kTextAt); }
    std::wstring text() const
    {
        wchar_t buffer[kTextRoom + 1] = L"";
        ReadProcessMemory(process_, textAddress(), buffer, kTextRoom * sizeof(wchar_t), nullptr);
        return buffer;
    }
    LPARAM address() const { return reinterpret_cast<LPARAM>(block_); }

private:
    static constexpr size_t kSize = 4096;
    static constexpr size_t kTextAt = 1024;
    HANDLE process_ = nullptr;
    void* block_ = nullptr;
};

} // namespace peek
