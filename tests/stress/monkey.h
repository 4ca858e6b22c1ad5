// Works all dialogs of this thread at random, as fast as their modal loops go.
#pragma once

#include <windows.h>

#include <cstdint>
#include <functional>
#include <random>
#include <string>
#include <vector>

/// Clicks, types, presses keys, selects, sorts, resizes and closes, always in the dialog in front. After a number of acts
/// it only closes, so that every call that opens a dialog comes to its end.
class Monkey {
public:
    using Act = std::function<void(HWND front)>;

    /// @param seed  the acts follow from it, as far as the dialogs do.
    explicit Monkey(std::uint32_t seed);
    ~Monkey();
    Monkey(const Monkey&) = delete;
    Monkey& operator=(const Monkey&) = delete;

    /// Makes a call that opens dialogs.
    /// @param first   acts that are done before the random ones, each as soon as a dialog is in front.
    /// @param random  how many follow before it closes everything.
    void play(std::vector<Act> first, int random, const std::function<void()>& call);

    /// A random number below a bound.
    int below(int bound) { return static_cast<int>(m_random() % static_cast<std::uint32_t>(bound)); }

    long long acts() const { return m_acts; }
    /// What it did last, in words.
    const std::string& last() const { return m_last; }

private:
    static LRESULT CALLBACK windowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    void next() const;
    void act();
    void actIn(HWND front);
    void actOnDialog(HWND front);
    void actOnButton(HWND button);
    void actOnEdit(HWND edit);
    void actOnList(HWND front, HWND list);
    void actOnTree(HWND tree);
    void press(HWND control, WPARAM key);
    std::wstring oddText();

    std::mt19937 m_random;
    HWND m_window;
    std::vector<Act> m_first;
    std::size_t m_done = 0; ///< of the first acts
    int m_left = 0;         ///< of the random ones
    int m_nothing = 0;      ///< acts since there was a dialog in front
    bool m_playing = false;
    long long m_acts = 0;
    std::string m_last;
};
