// Anonymous connections to a server.
#pragma once

#include "store/owned.h"

/// Opens or closes an anonymous connection to a server's IPC$ share.
/// @param server   name with or without leading backslashes.
/// @param connect  non-zero to open, 0 to close.
/// @return non-zero on success. 0 with the thread's last error set on failure: 1210 for a name that is null, empty
///         or longer than 15 characters, otherwise what the platform reports.
int EstablishNullSession(const wchar_t* server, int connect);

/// A server with the anonymous connection of a fill.
class ServerSession {
public:
    ServerSession() = default;
    ServerSession(const ServerSession&) = delete;
    ServerSession& operator=(const ServerSession&) = delete;
    ~ServerSession() = default; // a fault must be caught by who knows its line

    /// @param name  a malloc copy; null for no server.
    void setName(wchar_t* name) { m_name.reset(name); }
    const wchar_t* name() const { return m_name.get(); }

    /// Without a session the server may still answer, so nobody asks how it went.
    void open() { m_open = EstablishNullSession(name(), 1) != 0; }
    /// Closes it, whether it could be opened or not.
    void close()
    {
        m_open = false;
        EstablishNullSession(name(), 0);
    }
    bool isOpen() const { return m_open; }
    void leaveOpen() { m_open = false; }

private:
    CBlock<wchar_t> m_name;
    bool m_open = false;
};
