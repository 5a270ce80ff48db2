#ifndef UTILSLOGGERMESSAGETYPE_H
#define UTILSLOGGERMESSAGETYPE_H

#include <QMetaType>

/// The kind of a log message. It travels in UtilsUniProgThread::SignalOperationLogMessage and selects the look of a
/// UtilsLogger line. The values are fixed because they cross that signal; the name stays in the global namespace
/// because string connections compare it as text.
enum LOGGER_MESSAGE_TYPE {
    LOGGER_MESSAGE_DEFAULT = 0, ///< progress of an operation
    LOGGER_MESSAGE_INFO = 1, ///< for applications; no operation sends it
    LOGGER_MESSAGE_WARNING = 2, ///< for applications; no operation sends it
    LOGGER_MESSAGE_SUCCESS = 3, ///< result of an operation that succeeded
    LOGGER_MESSAGE_ERROR = 4 ///< what went wrong
};

Q_DECLARE_METATYPE(LOGGER_MESSAGE_TYPE)

#endif // UTILSLOGGERMESSAGETYPE_H
