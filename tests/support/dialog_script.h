// Works a modal dialog from inside, step by step, as a person would.
#pragma once

#include "tests/support/message_box_look.h"

#include <windows.h>

#include <functional>
#include <string>
#include <vector>

/// Steps that run in the modal loops of this thread: those of dialogs, of message boxes and of the system's own
/// dialogs.
///
/// A step sees the dialog in front, and runs when the thread's message queue is empty. When it gives false, it
/// is tried again. What is not done after so many looks in a row fails the test by its name, and then all dialogs are
/// ended, so that the test comes to its end. So does a dialog that the last step leaves open.
class DialogScript {
public:
    using Try = std::function<bool(HWND front)>;
    using Act = std::function<void(HWND front)>;

    /// How often in a row it looks in vain before it gives up. Looks are counted and not the time: on a machine that does
    /// much else they come late, as all does.
    DialogScript& patience(int looks)
    {
        m_patience = looks;
        return *this;
    }

    /// Tried until it gives true.
    DialogScript& step(std::string what, Try tryIt);

    /// Done once, on the first dialog in front that is not a message box.
    DialogScript& onDialog(std::string what, Act act);

    /// Waits for a message box, compares it, and presses its button. The box must have the one button and no
    /// icon.
    DialogScript& answerBox(std::string text, std::string caption);

    /// Owner of the last box that answerBox saw.
    HWND boxOwner() const { return m_boxOwner; }

    /// Makes the call that opens the dialog.
    /// @return its result.
    template <class Call>
    auto run(Call&& call)
    {
        const Running running(*this);
        return call();
    }

    /// All dialogs of this thread that can be seen, those in front first.
    static std::vector<HWND> dialogs();

    /// The one of them that is not blocked by another, null when there is none.
    static HWND front();

private:
    struct Step {
        std::string what;
        Try tryIt;
    };

    class Running {
    public:
        explicit Running(DialogScript& script);
        ~Running();
        Running(const Running&) = delete;
        Running& operator=(const Running&) = delete;

    private:
        static void CALLBACK onTimer(HWND window, UINT message, UINT_PTR id, DWORD time);
        UINT_PTR m_timer;
        DialogScript& m_script;
        DialogScript* m_outer;
    };

    void tick();
    void giveUp();

    std::vector<Step> m_steps;
    size_t m_next = 0;
    int m_patience = 1500;
    int m_ticksInVain = 0;
    bool m_gaveUp = false;
    HWND m_boxOwner = nullptr;
};
