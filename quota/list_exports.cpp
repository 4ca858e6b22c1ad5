// The exports that drive the host's quota list, by list-control object and by dialog and control id.
#include "corvane.h"
#include "frame/dialog_items.h"
#include "frame/list_ctrl.h"
#include "frame/list_sort.h"
#include "quota/label_edit.h"
#include "quota/rule_list.h"
#include "store/lornix.h"

#include <cstdarg>
#include <vector>

namespace {

const void* accountOrAnyone(void* sid)
{
    return sid == CORVANE_ANYONE ? nullptr : sid;
}

// Control ids of a variadic call, ended by 0.
std::vector<int> idsUntilZero(va_list arguments)
{
    std::vector<int> ids;
    for (int id = va_arg(arguments, int); id != 0; id = va_arg(arguments, int)) {
        ids.push_back(id);
    }
    return ids;
}

void rememberFolders(const PathList* paths)
{
    PathList* known = getKnownPaths();
    for (int i = 0; paths != nullptr && i < paths->count; ++i) {
        known = appendToPaths(known, paths->paths[i]);
    }
    storeKnownPaths(known);
    freePathList(known);
}

} // namespace

void initializeListCtrl2(CListCtrl* list, const PathList* paths)
{
    rule_list::initialize(*list, paths);
}

void fillUpListCtrl2(const PathList* paths, CListCtrl* list)
{
    rule_list::fill(*list, paths);
}

unsigned char addToListCtrl2(CListCtrl* list, void* sid, const PathList* paths)
{
    return rule_list::add(*list, accountOrAnyone(sid), paths);
}

unsigned char editFromListCtrl2(CListCtrl* list)
{
    return rule_list::editSelected(*list);
}

unsigned char dropFromListCtrl2(CListCtrl* list)
{
    return rule_list::dropSelected(*list);
}

QuotaRule* getDataModified2(CListCtrl* list)
{
    return rule_list::chain(*list);
}

void sortListCtrl2(CListCtrl* list, int column)
{
    sortRows(*list, column);
}

int countItems2(CListCtrl* list)
{
    return list->rowCount();
}

void checkForButtons2(HWND dialog, CListCtrl* list, ...)
{
    va_list arguments{};
    va_start(arguments, list);
    const std::vector<int> ids = idsUntilZero(arguments);
    va_end(arguments);
    enableBySelection(dialog, *list, ids);
}

void initializeListCtrl(HWND dialog, int listId, const PathList* paths)
{
    rule_list::initialize(DialogList(dialog, listId), paths);
}

void fillUpListCtrl(const PathList* paths, HWND dialog, int listId)
{
    rule_list::fill(DialogList(dialog, listId), paths);
}

unsigned char addToListCtrl(HWND dialog, int listId, void* sid, const PathList* paths)
{
    if (!rule_list::add(DialogList(dialog, listId), accountOrAnyone(sid), paths)) {
        return 0;
    }
    rememberFolders(paths);
    return 1;
}

unsigned char editFromListCtrl(HWND dialog, int listId)
{
    return rule_list::editSelected(DialogList(dialog, listId));
}

unsigned char dropFromListCtrl(HWND dialog, int listId)
{
    return rule_list::dropSelected(DialogList(dialog, listId));
}

QuotaRule* getDataModified(HWND dialog, int listId)
{
    return rule_list::chain(DialogList(dialog, listId));
}

void sortListCtrl(HWND dialog, int listId, int column)
{
    sortRows(DialogList(dialog, listId), column);
}

int countItems(HWND dialog, int listId)
{
    return DialogList(dialog, listId).rowCount();
}

void checkForButtons(HWND dialog, int listId, ...)
{
    va_list arguments{};
    va_start(arguments, listId);
    const std::vector<int> ids = idsUntilZero(arguments);
    va_end(arguments);
    enableBySelection(dialog, DialogList(dialog, listId), ids);
}

int hookNotify(HWND dialog, int listId, const NMHDR* notification)
{
    return answerLabelEdit(DialogList(dialog, listId), *reinterpret_cast<const NMLVDISPINFOW*>(notification));
}

void setButtonIcon(HWND dialog, int buttonId, HICON icon)
{
    SendDlgItemMessageW(dialog, buttonId, BM_SETIMAGE, IMAGE_ICON, reinterpret_cast<LPARAM>(icon));
}

int getButtonState(HWND dialog, int buttonId)
{
    return static_cast<int>(SendDlgItemMessageW(dialog, buttonId, BM_GETCHECK, 0, 0));
}

void setButtonState(HWND dialog, int buttonId, int state)
{
    SendDlgItemMessageW(dialog, buttonId, BM_SETCHECK, static_cast<WPARAM>(state), 0);
}
