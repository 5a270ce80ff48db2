#include "ProcedureRig.h"

#include <QEventLoop>
#include <QTimer>

bool spinUntil(const std::function<bool()> &condition)
{
    QEventLoop loop;
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &loop, [&] {
        if (condition())
            loop.exit(0);
    });
    look.start(1);
    QTimer limit; // a single shot would live on for all of its time
    QObject::connect(&limit, &QTimer::timeout, &loop, [&] { loop.exit(1); });
    limit.start(TestLimitMs);
    return loop.exec() == 0;
}

// By name, so that no functor is shared between the threads: ThreadSanitizer cannot see how Qt hands it over.
ProcedureLog::ProcedureLog(UtilsUniProgThread *thread)
{
    connect(thread, SIGNAL(SignalOperationLogMessage(QString, LOGGER_MESSAGE_TYPE)), this,
            SLOT(addLine(QString, LOGGER_MESSAGE_TYPE)));
    connect(thread, SIGNAL(SignalOperationProgress(int)), this, SLOT(addProgress(int)));
    connect(thread, SIGNAL(SignalProcedureCompleted(int, QString)), this, SLOT(addCompletion(int, QString)));
    connect(thread, SIGNAL(finished()), this, SLOT(addEnd()));
}

void ProcedureLog::addLine(const QString &text, LOGGER_MESSAGE_TYPE type)
{
    events.append(line(text, type));
}

void ProcedureLog::addProgress(int percent)
{
    events.append(progress(percent));
}

void ProcedureLog::addCompletion(int status, const QString &message)
{
    events.append(completed(status, message));
    ++completions;
    lastStatus = status;
    lastMessage = message;
}

void ProcedureLog::addEnd()
{
    events.append(QStringLiteral("finished"));
    ++ends;
}

QString ProcedureLog::line(const QString &text, LOGGER_MESSAGE_TYPE type)
{
    return QStringLiteral("log %1: %2").arg(int(type)).arg(text);
}

QString ProcedureLog::progress(int percent)
{
    return QStringLiteral("progress %1").arg(percent);
}

QString ProcedureLog::completed(int status, const QString &message)
{
    return QStringLiteral("completed %1: %2").arg(status).arg(message);
}

QStringList ProcedureLog::targetRun(const QStringList &inner, int status, const QString &message)
{
    QStringList events{line("Starting operation..."), line("Connecting to target MCU...")};
    events += inner;
    if (status != 0)
        events.append(line(message, LOGGER_MESSAGE_ERROR));
    events += {line("Disconnected from target."), completed(status, message), "finished"};
    return events;
}

QStringList ProcedureLog::controlRun(const QStringList &inner, int status, const QString &message)
{
    QStringList events{line("Starting operation...")};
    events += inner;
    if (status != 0)
        events.append(line(message, LOGGER_MESSAGE_ERROR));
    events += {completed(status, message), "finished"};
    return events;
}

ProcedureRig::ProcedureRig()
    : thread(&driver, nullptr)
    , log(&thread)
{
    driver.reset(); // forgets that the constructor asked for the descriptor
}

bool ProcedureRig::settle(int requests)
{
    return spinUntil([&] { return log.ends >= requests && !thread.IsProcedureInProgress(); });
}

QString LogLines::info(const char *text)
{
    return ProcedureLog::line(QString::fromLatin1(text));
}

QString LogLines::success(const char *text)
{
    return ProcedureLog::line(QString::fromLatin1(text), LOGGER_MESSAGE_SUCCESS);
}

QString LogLines::error(const char *text)
{
    return ProcedureLog::line(QString::fromLatin1(text), LOGGER_MESSAGE_ERROR);
}
