// What the runtime used on Linux lacks, supplied for this program alone.
#pragma once

namespace host {

/// Fills the gaps as long as it lives; does nothing on Windows. Headers get their filter bar, and drives say that
/// they keep named streams, as every drive of a quota server does.
class RuntimeGaps {
public:
    RuntimeGaps();
    RuntimeGaps(const RuntimeGaps&) = delete;
    RuntimeGaps& operator=(const RuntimeGaps&) = delete;
    ~RuntimeGaps();

private:
    void* hook_ = nullptr;
};

} // namespace host
