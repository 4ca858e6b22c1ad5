// A notification as the list and its entry dialog hand it to each other.
#pragma once

#include "policies/wiped_text.h"
#include "store/lornix.h"

#include <array>
#include <string>

struct NotificationRecord {
    std::wstring script;
    std::array<WipedText, NOTIFICATION_ATTRIBUTE_COUNT> attributes;

    /// The text of an attribute, null when it is not set.
    const wchar_t* text(std::size_t attribute) const { return attributes[attribute].get(); }

    /// A notification that is not there yet: for anyone, once a day, any increment.
    static NotificationRecord fresh()
    {
        NotificationRecord record;
        for (const std::size_t zero : {NOTIFICATION_FOR_WHOM, NOTIFICATION_RATE, NOTIFICATION_MIN_INCREMENT})
        {
            record.attributes[zero].set(L"0");
        }
        return record;
    }
};
