#include "EventMonitor.h"

#include <UtilsLogger.h>

EventMonitor::EventMonitor(UtilsLogger *log, QObject *parent)
    : QObject(parent)
    , m_log(log)
{ }

EventMonitor::~EventMonitor() = default;

void EventMonitor::clear()
{
    m_log->clear();
}

void EventMonitor::report(const QString &signal, const QStringList &arguments)
{
    m_log->addMessage(QStringLiteral("%1(%2)").arg(signal, arguments.join(QLatin1String(", "))), LOGGER_MESSAGE_INFO);
}
