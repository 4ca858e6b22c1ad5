// A notification as the list and its entry dialog hand it to each other.
#pragma once

#include "store/lornix.h"

#include <array>
#include <optional>
#include <string>

struct NotificationRecord {
    using Attribute = std::optional<std::wstring>; ///< nothing: not set

    std::wstring script;
    std::array<Attribute, NOTIFICATION_ATTRIBUTE_COUNT> attributes;

    /// The text of an attribute, null when it is not set.
    const wchar_t* text(std::size_t attribute) const
    {
        const Attribute& value = attributes[attribute];
        return value ? value->c_str() : nullptr;
    }

    /// A notification that is not there yet: for anyone, once a day, any increment.
    static NotificationRecord fresh()
    {
        NotificationRecord record;
        record.attributes[NOTIFICATION_FOR_WHOM] = L"0";
        record.attributes[NOTIFICATION_RATE] = L"0";
        record.attributes[NOTIFICATION_MIN_INCREMENT] = L"0";
        return record;
    }
};
