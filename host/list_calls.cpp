#include "host/list_calls.h"

namespace host {

const ListCalls kListById{
    .initialize = [](const ListName& list,
                     const PathList* folders) { initializeListCtrl(list.dialog, list.id, folders); },
    .fill = [](const ListName& list,
               const PathList* folders) { fillUpListCtrl(folders, list.dialog, list.id); },
    .add = [](const ListName& list, void* sid,
              const PathList* folders) { return addToListCtrl(list.dialog, list.id, sid, folders) != 0; },
    .addMakesKnown = true,
    .edit = [](const ListName& list) { return editFromListCtrl(list.dialog, list.id) != 0; },
    .drop = [](const ListName& list) { return dropFromListCtrl(list.dialog, list.id) != 0; },
    .chain = [](const ListName& list) { return getDataModified(list.dialog, list.id); },
    .sort = [](const ListName& list, int column) { sortListCtrl(list.dialog, list.id, column); },
    .count = [](const ListName& list) { return countItems(list.dialog, list.id); },
    .checkForButtons = [](const ListName& list, int button,
                          int otherButton) { checkForButtons(list.dialog, list.id, button, otherButton, 0); },
};

const ListCalls kListByObject{
    .initialize = [](const ListName& list,
                     const PathList* folders) { initializeListCtrl2(list.object, folders); },
    .fill = [](const ListName& list, const PathList* folders) { fillUpListCtrl2(folders, list.object); },
    .add = [](const ListName& list, void* sid,
              const PathList* folders) { return addToListCtrl2(list.object, sid, folders) != 0; },
    .addMakesKnown = false,
    .edit = [](const ListName& list) { return editFromListCtrl2(list.object) != 0; },
    .drop = [](const ListName& list) { return dropFromListCtrl2(list.object) != 0; },
    .chain = [](const ListName& list) { return getDataModified2(list.object); },
    .sort = [](const ListName& list, int column) { sortListCtrl2(list.object, column); },
    .count = [](const ListName& list) { return countItems2(list.object); },
    .checkForButtons =
        [](const ListName& list, int button, int otherButton) {
            checkForButtons2(list.dialog, list.object, button, otherButton, 0);
        },
};

} // namespace host
