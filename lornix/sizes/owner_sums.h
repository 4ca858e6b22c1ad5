// The bytes of every owner of some files.
#pragma once

#include "lornix/sizes/tree_walk.h"

#include <condition_variable>
#include <deque>
#include <exception>
#include <functional>
#include <mutex>
#include <string_view>
#include <thread>
#include <unordered_map>

namespace lornix {

/// Bytes by owner, and the files whose owner could not be read.
struct OwnedBytes {
    struct Hash {
        using is_transparent = void;
        std::size_t operator()(std::string_view sid) const { return std::hash<std::string_view>()(sid); }
    };
    std::unordered_map<std::string, std::int64_t, Hash, std::equal_to<>> bySid; ///< by the bytes of the SID
    Unread unread;

    void add(const OwnedBytes& others);

    /// @param owners  binary SIDs, each once.
    std::int64_t of(const std::vector<std::string>& owners) const;
};

/// Adds up files, several at a time: asking for an owner opens the file, which is mostly waiting.
/// The caller's thread helps, and does all by itself where there are few files. A fault or an exception of any of the
/// threads ends the work, and goes on in the caller's.
class OwnerSums {
public:
    OwnerSums();
    OwnerSums(const OwnerSums&) = delete;
    OwnerSums& operator=(const OwnerSums&) = delete;

    /// stop() must have been called.
    ~OwnerSums() = default;

    void add(const std::wstring& file, std::int64_t size);

    /// Waits until all is added up.
    OwnedBytes finish();

    /// Ends the threads; to be called in any case.
    void stop();

private:
    struct File {
        std::wstring path;
        std::int64_t size;
    };
    using Batch = std::vector<File>;

    void hand(Batch batch);
    void startThread();
    bool takeBatch(Batch& batch, bool wait);
    void work();
    void sumUp(const Batch& batch, OwnedBytes& sums);
    void rethrow();

    Batch m_next;
    OwnedBytes m_sums; ///< of the caller's thread
    std::size_t m_mostThreads;
    std::vector<std::thread> m_threads;

    std::mutex m_guard; ///< of all below
    std::condition_variable m_changed;
    std::deque<Batch> m_waiting;
    OwnedBytes m_others; ///< of the threads that are done
    bool m_isEnd = false;
    DWORD m_fault = 0;
    std::exception_ptr m_exception;
};

} // namespace lornix
