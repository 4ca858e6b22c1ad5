#include "bench/support/list_view.h"
#include "host/panel.h"
#include "host/resource.h"
#include "res/resource.h"
#include "side.h"

#include <commctrl.h>

namespace {

constexpr int kInUseColumn = 3;

/// Limits above all uses are typed and OK is pressed as soon as the dialog stands.
void CALLBACK acceptSettings(HWND, UINT, UINT_PTR, DWORD)
{
    if (HWND dialog = windowOfThread(kSettingsCaption)) {
        SetDlgItemTextW(dialog, IDC_QUOTA_SOFT_LIMIT, L"90G");
        SetDlgItemTextW(dialog, IDC_QUOTA_HARD_LIMIT, L"100G");
        SendMessageW(dialog, WM_COMMAND, IDOK, 0);
    }
}

class SamplePanel : public PanelSide {
public:
    void open() override
    {
        m_panel = std::make_unique<host::Panel>(host::quotaListById);
        m_panel->open(GetModuleHandleW(nullptr), {});
        m_window = windowOfThread(L"Quota Control Panel");
        settle(m_window);
    }

    void selectAll() override { command(IDM_SELECT_ALL); }

    void clickOne() override
    {
        list_view::selectOnly(list(), 0);
        settle(m_window);
    }

    void sort() override
    {
        NMLISTVIEW click{};
        click.hdr = {list(), IDC_RULES, LVN_COLUMNCLICK};
        click.iItem = -1;
        click.iSubItem = kInUseColumn;
        SendMessageW(m_window, WM_NOTIFY, IDC_RULES, reinterpret_cast<LPARAM>(&click));
        settle(m_window);
    }

    void edit() override
    {
        const UINT_PTR timer = SetTimer(nullptr, 0, USER_TIMER_MINIMUM, acceptSettings);
        command(IDC_EDIT);
        KillTimer(nullptr, timer);
    }

    void drop() override { command(IDC_DROP); }
    void apply() override { command(IDC_APPLY); }

    void close() override
    {
        SendMessageW(m_window, WM_CLOSE, 0, 0);
        m_panel.reset();
    }

    HWND list() const override { return GetDlgItem(m_window, IDC_RULES); }

private:
    void command(int id)
    {
        SendMessageW(m_window, WM_COMMAND, static_cast<WPARAM>(id), 0);
        settle(m_window);
    }

    std::unique_ptr<host::Panel> m_panel;
    HWND m_window = nullptr;
};

} // namespace

std::unique_ptr<PanelSide> samplePanel()
{
    return std::make_unique<SamplePanel>();
}
