#include "host/quota_list.h"

namespace host {
namespace {

class ById : public QuotaList {
public:
    ById(HWND dialog, int id)
        : m_dialog(dialog)
        , m_id(id)
    {
    }

    void initialize(const PathList* folders) override { initializeListCtrl(m_dialog, m_id, folders); }
    void fill(const PathList* folders) override { fillUpListCtrl(folders, m_dialog, m_id); }
    bool add(void* sid, const PathList* folders) override
    {
        return addToListCtrl(m_dialog, m_id, sid, folders) != 0;
    }
    bool addMakesKnown() const override { return true; }
    bool edit() override { return editFromListCtrl(m_dialog, m_id) != 0; }
    bool drop() override { return dropFromListCtrl(m_dialog, m_id) != 0; }
    QuotaRule* chain() const override { return getDataModified(m_dialog, m_id); }
    void sort(int column) override { sortListCtrl(m_dialog, m_id, column); }
    int count() const override { return countItems(m_dialog, m_id); }
    void checkForButtons(int button, int otherButton) const override
    {
        ::checkForButtons(m_dialog, m_id, button, otherButton, 0);
    }

private:
    HWND m_dialog;
    int m_id;
};

class ByObject : public QuotaList {
public:
    ByObject(HWND dialog, int id)
        : m_dialog(dialog)
        , m_object{{}, GetDlgItem(dialog, id)}
        , m_list(reinterpret_cast<CListCtrl*>(&m_object))
    {
    }

    void initialize(const PathList* folders) override { initializeListCtrl2(m_list, folders); }
    void fill(const PathList* folders) override { fillUpListCtrl2(folders, m_list); }
    bool add(void* sid, const PathList* folders) override
    {
        return addToListCtrl2(m_list, sid, folders) != 0;
    }
    bool addMakesKnown() const override { return false; }
    bool edit() override { return editFromListCtrl2(m_list) != 0; }
    bool drop() override { return dropFromListCtrl2(m_list) != 0; }
    QuotaRule* chain() const override { return getDataModified2(m_list); }
    void sort(int column) override { sortListCtrl2(m_list, column); }
    int count() const override { return countItems2(m_list); }
    void checkForButtons(int button, int otherButton) const override
    {
        checkForButtons2(m_dialog, m_list, button, otherButton, 0);
    }

private:
    HWND m_dialog;
    CorvaneListObject m_object;
    CListCtrl* m_list;
};

} // namespace

std::unique_ptr<QuotaList> quotaListById(HWND dialog, int id)
{
    return std::make_unique<ById>(dialog, id);
}

std::unique_ptr<QuotaList> quotaListByObject(HWND dialog, int id)
{
    return std::make_unique<ByObject>(dialog, id);
}

} // namespace host
