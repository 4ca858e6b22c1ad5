#include "side.h"

namespace {

class CorvaneSide : public Side {
public:
    void fill(HWND list, const PathList& folders) override { fillUpListCtrl2(&folders, object(list)); }
    void refill(HWND list, const PathList& folders) override { fillUpListCtrl2(&folders, object(list)); }
    void sort(HWND list, int column) override { sortListCtrl2(object(list), column); }
    QuotaRule* chain(HWND list) override { return getDataModified2(object(list)); }
    void drop(HWND list) override { dropFromListCtrl2(object(list)); }

private:
    CListCtrl* object(HWND list)
    {
        m_list.window = list;
        return reinterpret_cast<CListCtrl*>(&m_list);
    }
    CorvaneListObject m_list{};
};

} // namespace

std::unique_ptr<Side> corvaneSide()
{
    return std::make_unique<CorvaneSide>();
}
