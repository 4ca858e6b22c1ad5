// A directory that a test writes, put in place of the platform's.
#pragma once

#include "frame/platform.h"
#include "imports.h"

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

/// An object of the container.
struct DirectoryObject {
    std::optional<std::wstring> name;
    std::optional<std::wstring> className;
    std::wstring listedAs = L"User"; ///< class by which the filter takes it
    unsigned sid = 0;                ///< last number of its SID; 0: the attribute cannot be read
    /// How the attribute looks when it can be read.
    enum class Form : std::uint8_t {
        kBytes,
        kFromOne,
        kText,
        kLongs,
        kEmpty,
        kCutOff,
        kTwoDimensions
    } form = Form::kBytes;
    bool isDirectoryObject = true; ///< gives the interface that is asked for
    bool isObject = true;          ///< the element is an object and not a number
};

struct Directory {
    std::vector<DirectoryObject> objects;
    std::map<std::string, HRESULT> fails; ///< calls that fail, by function name
    int failingBatch = 0;        ///< from 1: the one at which ADsEnumerateNext fails, with objects in hand
    bool fullBatchAtEnd = false; ///< the last objects come with S_OK, and S_FALSE alone after them
    std::set<std::string> giveNothing; ///< calls that succeed without giving the object asked for
    std::set<std::string>
        releaseFaults; ///< kinds of objects whose last release faults: "object", "container", "enumerator"

    // What is alive now, beyond what the test itself holds.
    int references = 0;
    int strings = 0;
    int arrays = 0;
};

extern Directory directory;

/// The directory's functions, for the time of a test.
class DirectoryPatch {
public:
    DirectoryPatch();
    ~DirectoryPatch();
    DirectoryPatch(const DirectoryPatch&) = delete;
    DirectoryPatch& operator=(const DirectoryPatch&) = delete;

private:
    Imports m_imports;
};
