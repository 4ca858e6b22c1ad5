// The functions of the quota list in their two forms: by dialog and control id, and by list-control object. A host
// takes the form that fits what it holds. This one can do with either, so that both are seen at work.
#pragma once

#include "corvane.h"

#include <memory>

namespace host {

class QuotaList {
public:
    virtual ~QuotaList() = default;
    QuotaList(const QuotaList&) = delete;
    QuotaList& operator=(const QuotaList&) = delete;

    virtual void initialize(const PathList* folders) = 0;
    virtual void fill(const PathList* folders) = 0;

    /// @return false when a dialog was cancelled.
    virtual bool add(void* sid, const PathList* folders) = 0;

    /// Whether an add that gave true has stored the folders as known ones.
    virtual bool addMakesKnown() const = 0;

    virtual bool edit() = 0;
    virtual bool drop() = 0;

    /// The records behind the rows, in their order; null when there are none.
    virtual QuotaRule* chain() const = 0;

    virtual void sort(int column) = 0;
    virtual int count() const = 0;

    /// Enables two buttons of the dialog while a row is selected, and disables them otherwise.
    virtual void checkForButtons(int button, int otherButton) const = 0;

protected:
    QuotaList() = default;
};

/// The form by dialog and control id.
std::unique_ptr<QuotaList> quotaListById(HWND dialog, int id);

/// The form by list-control object, for panels that have such objects. This one has none, and makes the little that
/// the library reads of one.
std::unique_ptr<QuotaList> quotaListByObject(HWND dialog, int id);

} // namespace host
