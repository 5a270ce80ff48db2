#ifndef EVENTMONITOR_H
#define EVENTMONITOR_H

#include <QDebug>
#include <QObject>
#include <QStringList>

#include <type_traits>

class UtilsLogger;

/// Shows which signals the widgets of the gallery emit, with their arguments, in a log.
class EventMonitor : public QObject
{
    Q_OBJECT

public:
    /// The log stays the caller's, and lives as long as the monitor.
    EventMonitor(UtilsLogger *log, QObject *parent);
    ~EventMonitor() override;

    /// From now on every emission of \a signal is shown under \a name.
    template <typename Sender, typename Signal>
    void watch(const Sender *sender, Signal signal, const QString &name)
    {
        connect(sender, signal, this,
                [this, name](const auto &...arguments) { report(name, QStringList{describe(arguments)...}); });
    }

    void clear();

private:
    template <typename Argument>
    static QString describe(const Argument &argument)
    {
        QString text;
        if constexpr (std::is_pointer_v<Argument>)
            text = argument ? argument->objectName() : QStringLiteral("null");
        else
            QDebug(&text).nospace() << argument;
        return text;
    }

    void report(const QString &signal, const QStringList &arguments);

    UtilsLogger *m_log;
};

#endif // EVENTMONITOR_H
