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
        m_process = OpenProcess(PROCESS_VM_OPERATION | PROCESS_VM_READ | PROCESS_VM_WRITE, FALSE, process);
        m_block = VirtualAllocEx(m_process, nullptr, kSize, MEM_COMMIT, PAGE_READWRITE);
        if (m_block == nullptr) {
            throw Missing{"the memory of the program"};
        }
    }
    ~RemoteBlock()
    {
        VirtualFreeEx(m_process, m_block, 0, MEM_RELEASE);
        CloseHandle(m_process);
    }
    RemoteBlock(const RemoteBlock&) = delete;
    RemoteBlock& operator=(const RemoteBlock&) = delete;

    template <class T>
    void put(const T& value)
    {
        WriteProcessMemory(m_process, m_block, &value, sizeof value, nullptr);
    }
    template <class T>
    T get() const
    {
        T value{};
        ReadProcessMemory(m_process, m_block, &value, sizeof value, nullptr);
        return value;
    }

    static constexpr int kTextRoom = 1024;
    wchar_t* textAddress() const { return reinterpret_cast<wchar_t*>(static_cast<char*>(m_block) + kTextAt); }
    std::wstring text() const
    {
        wchar_t buffer[kTextRoom + 1] = L"";
        ReadProcessMemory(m_process, textAddress(), buffer, kTextRoom * sizeof(wchar_t), nullptr);
        return buffer;
    }
    LPARAM address() const { return reinterpret_cast<LPARAM>(m_block); }

private:
    static constexpr size_t kSize = 4096;
    static constexpr size_t kTextAt = 1024;
    HANDLE m_process = nullptr;
    void* m_block = nullptr;
};

} // namespace peek
