// The functions of the quota list in their two forms: by dialog and control id, and by list-control object. A host
// takes the form that fits what it holds. This one can do with either, so that both are seen at work.
#pragma once

#include "corvane.h"

namespace host {

/// A quota list, named for either form.
struct ListName {
    HWND dialog;
    int id;
    CListCtrl* object;
};

/// One form.
struct ListCalls {
    void (*initialize)(const ListName& list, const PathList* folders);
    void (*fill)(const ListName& list, const PathList* folders);
    bool (*add)(const ListName& list, void* sid, const PathList* folders);
    bool addMakesKnown; ///< whether an add that gave true has stored the folders as known ones
    bool (*edit)(const ListName& list);
    bool (*drop)(const ListName& list);
    QuotaRule* (*chain)(const ListName& list);
    void (*sort)(const ListName& list, int column);
    int (*count)(const ListName& list);
    void (*checkForButtons)(const ListName& list, int button, int otherButton);
};

extern const ListCalls kListById;
extern const ListCalls kListByObject;

} // namespace host
