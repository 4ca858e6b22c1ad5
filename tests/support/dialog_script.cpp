#include "tests/support/dialog_script.h"

#include "tests/support/window_text.h"

#include <gtest/gtest.h>

#include <utility>

#include <algorithm>

namespace {

constexpr UINT kTickMilliseconds = 10;
DialogScript* running = nullptr;

BOOL CALLBACK collectDialog(HWND window, LPARAM dialogs)
{
    if (IsWindowVisible(window) && className(window) == "#32770") {
        reinterpret_cast<std::vector<HWND>*>(dialogs)->push_back(window);
    }
    return TRUE;
}

} // namespace

std::vector<HWND> DialogScript::dialogs()
{
    std::vector<HWND> found;
    EnumThreadWindows(GetCurrentThreadId(), collectDialog, reinterpret_cast<LPARAM>(&found));
    return found;
}

HWND DialogScript::front()
{
    const std::vector<HWND> all = dialogs();
    const auto found = std::find_if(all.begin(), all.end(), IsWindowEnabled);
    return found == all.end() ? nullptr : *found;
}

DialogScript& DialogScript::step(std::string what, Try tryIt)
{
    m_steps.push_back({std::move(what), std::move(tryIt)});
    return *this;
}

DialogScript& DialogScript::onDialog(std::string what, Act act)
{
    return step(std::move(what), [act = std::move(act)](HWND front) {
        if (isMessageBox(front)) {
            return false;
        }
        act(front);
        return true;
    });
}

DialogScript& DialogScript::answerBox(std::string text, std::string caption)
{
    std::string what = "box \"" + text + "\"";
    return step(std::move(what), [this, text = std::move(text), caption = std::move(caption)](HWND front) {
        if (!isMessageBox(front)) {
            return false;
        }
        const MessageBoxLook look = lookAt(front);
        EXPECT_EQ(look.text, text);
        EXPECT_EQ(look.caption, caption);
        EXPECT_EQ(look.buttons, 1);
        EXPECT_FALSE(look.icon);
        m_boxOwner = look.owner;
        ::answerBox(front);
        return true;
    });
}

void DialogScript::tick()
{
    if (m_gaveUp || ++m_ticksInVain > m_patience) {
        giveUp();
        return;
    }
    const HWND front = DialogScript::front();
    if (front == nullptr || m_next == m_steps.size()) {
        return;
    }
    // Counted before it runs: a step that opens a dialog goes on only when that is closed, by later steps.
    const size_t index = m_next++;
    if (m_steps[index].tryIt(front)) {
        m_ticksInVain = 0;
    } else if (m_next == index + 1) {
        m_next = index;
    }
}

void DialogScript::giveUp()
{
    if (!m_gaveUp) {
        m_gaveUp = true;
        std::string open;
        for (const HWND dialog : dialogs()) {
            open += " \"" + windowText(dialog) + "\"";
        }
        ADD_FAILURE() << (m_next < m_steps.size() ? "stuck at the step: " + m_steps[m_next].what
                                                  : std::string("no step closes the dialog"))
                      << "; open:" << open;
    }
    for (const HWND dialog : dialogs()) {
        EndDialog(dialog, IDCANCEL);
    }
}

DialogScript::Running::Running(DialogScript& script)
    : m_timer(SetTimer(nullptr, 0, kTickMilliseconds, onTimer))
    , m_script(script)
    , m_outer(std::exchange(running, &script))
{
    m_script.m_ticksInVain = 0;
}

DialogScript::Running::~Running()
{
    KillTimer(nullptr, m_timer);
    running = m_outer;
    if (!m_script.m_gaveUp) {
        EXPECT_EQ(m_script.m_next, m_script.m_steps.size())
            << "all dialogs were closed before the step: " << m_script.m_steps[m_script.m_next].what;
    }
}

void CALLBACK DialogScript::Running::onTimer(HWND /*window*/, UINT /*message*/, UINT_PTR /*id*/,
                                             DWORD /*time*/)
{
    if (running != nullptr) {
        running->tick();
    }
}
