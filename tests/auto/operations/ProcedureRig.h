#ifndef PROCEDURERIG_H
#define PROCEDURERIG_H

#include <ScriptedDriver.h>
#include <UtilsUniProgThread.h>

#include <QObject>
#include <QStringList>

#include <functional>

/// The longest that anything in these tests may take.
constexpr int TestLimitMs = 30'000;

/// Runs the event loop until @p condition holds; false when that takes too long. QTest::qWaitFor() sleeps between two
/// looks, which adds up over a thousand requests.
bool spinUntil(const std::function<bool()> &condition);

/// Everything a UtilsUniProgThread says, in order and as text, as a receiver in the thread of the test hears it.
class ProcedureLog : public QObject
{
    Q_OBJECT

public:
    explicit ProcedureLog(UtilsUniProgThread *thread);

    /// One event as it is written down.
    static QString line(const QString &text, LOGGER_MESSAGE_TYPE type = LOGGER_MESSAGE_DEFAULT);
    static QString progress(int percent);
    static QString completed(int status, const QString &message = QString());

    /// The whole log of a target procedure that got as far as the target: @p inner is what the procedure itself says.
    static QStringList targetRun(const QStringList &inner, int status = 0, const QString &message = QString());
    /// The whole log of a control procedure.
    static QStringList controlRun(const QStringList &inner, int status = 0, const QString &message = QString());

    QStringList events;
    int completions = 0;
    int ends = 0; ///< finished() signals
    int lastStatus = -1;
    QString lastMessage;

private Q_SLOTS:
    void addLine(const QString &text, LOGGER_MESSAGE_TYPE type);
    void addProgress(int percent);
    void addCompletion(int status, const QString &message);
    void addEnd();
};

/// A scripted driver, a thread on it, and what the thread says.
struct ProcedureRig
{
    ProcedureRig();

    /// Waits until every request made so far has ended and the object is home again. Whatever a worker wrote may be
    /// read afterwards.
    bool settle(int requests = 1);

    ScriptedDriver driver;
    UtilsUniProgThread thread;
    ProcedureLog log;
};

/// Lines of a log by what they are, as ProcedureLog writes them down.
namespace LogLines {

QString info(const char *text);
QString success(const char *text);
QString error(const char *text);

} // namespace LogLines

#endif // PROCEDURERIG_H
