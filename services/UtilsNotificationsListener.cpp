#include "UtilsNotificationsListener.h"

UtilsNotificationsListener::UtilsNotificationsListener() = default;

UtilsNotificationsListener::~UtilsNotificationsListener() = default;
