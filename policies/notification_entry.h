// The dialog on one notification: script, for whom, run as whom, least increment, how often.
#pragma once

#include "frame/platform.h"
#include "policies/notification_record.h"

#include <memory>

/// @param record  the notification to change, null for a new one.
/// @return the record after OK, null otherwise.
std::unique_ptr<NotificationRecord> askNotification(HWND owner, std::unique_ptr<NotificationRecord> record);
