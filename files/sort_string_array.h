// A list of strings that sorts in place without regard to case.
#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

class CSortStringArray {
public:
    void add(std::wstring text) { m_texts.push_back(std::move(text)); }
    std::size_t size() const { return m_texts.size(); }
    const std::wstring& operator[](std::size_t index) const { return m_texts[index]; }
    auto begin() const { return m_texts.begin(); }
    auto end() const { return m_texts.end(); }

    /// Sorts upwards; equal texts keep their order. The last element is left out and keeps its place: b, c, a
    /// comes out as b, c, a. A comparison that raises leaves its pair as it stands and writes one line to the
    /// debug channel, and the sort goes on.
    void sort();

private:
    struct Pass {
        bool swapped = false;
        bool raised = false;
    };

    Pass pass();
    bool compareAndSwap(std::size_t index);
    bool sortAtOnce();

    std::vector<std::wstring> m_texts;
};
