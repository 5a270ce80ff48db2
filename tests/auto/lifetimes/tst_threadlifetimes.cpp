#include "ProcedureRig.h"

#include <UtilsUniProgThread.h>

#include <UniProgTest.h>

#include <QApplication>
#include <QMetaMethod>
#include <QPointer>
#include <QProcess>

#include <atomic>
#include <chrono>
#include <cstdlib>

using namespace std::chrono_literals;

using Operation = ScriptedDriver::Operation;
using Answer = ScriptedDriver::Answer;

namespace {

constexpr char LeaveArgument[] = "--leave";
constexpr auto AWhile = 300ms;

/// Ends the life of the thread object at the first signal that reaches it.
class Executioner : public QObject
{
    Q_OBJECT

public:
    Executioner(UtilsUniProgThread *thread, bool later)
        : victim(thread)
        , deletesLater(later)
    { }

    std::atomic_bool hasStruck{false};

public Q_SLOTS:
    void strike()
    {
        if (hasStruck.exchange(true))
            return;
        if (deletesLater)
            victim->deleteLater();
        else
            delete victim;
    }

private:
    UtilsUniProgThread *const victim;
    const bool deletesLater;
};

} // namespace

/// A thread object is deleted in the slots of its signals, and lives when the program ends.
class tst_ThreadLifetimes : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void everySlotOfItsSignals_data();
    void everySlotOfItsSignals();
    void theEndOfTheProgram_data();
    void theEndOfTheProgram();
};

void tst_ThreadLifetimes::everySlotOfItsSignals_data()
{
    QTest::addColumn<int>("signalIndex");
    QTest::addColumn<int>("connection");
    QTest::addColumn<bool>("later");
    const QMetaObject &metaObject = UtilsUniProgThread::staticMetaObject;
    for (int i = metaObject.methodOffset(); i < metaObject.methodCount(); ++i) {
        if (metaObject.method(i).methodType() != QMetaMethod::Signal)
            continue;
        const QByteArray name = metaObject.method(i).name();
        QTest::newRow(name + ", delete") << i << int(Qt::AutoConnection) << false;
        QTest::newRow(name + ", deleteLater") << i << int(Qt::AutoConnection) << true;
        // On the worker, delete is not allowed: the procedure goes on with the object.
        QTest::newRow(name + ", deleteLater on the worker") << i << int(Qt::DirectConnection) << true;
    }
}

void tst_ThreadLifetimes::everySlotOfItsSignals()
{
    QFETCH(int, signalIndex);
    QFETCH(int, connection);
    QFETCH(bool, later);
    ScriptedDriver driver;
    driver.always(Operation::ReadTarget, Answer().reporting({10, 50, 100}));
    MemoryManager memory;
    auto *thread = new UtilsUniProgThread(&driver, nullptr);
    const QPointer<UtilsUniProgThread> object = thread;
    Executioner executioner(thread, later);
    const QMetaObject &metaObject = Executioner::staticMetaObject;
    QObject::connect(thread, thread->metaObject()->method(signalIndex), &executioner,
                     metaObject.method(metaObject.indexOfSlot("strike()")), Qt::ConnectionType(connection));
    thread->ReadTarget(&memory); // from here on the object may go at any time

    QVERIFY(spinUntil([&] { return executioner.hasStruck && object.isNull(); }));
    // What had begun has ended.
    QCOMPARE(driver.callCount(Operation::ReadTarget), 1);
    QCOMPARE(driver.callCount(Operation::Disconnect), 1);
}

void tst_ThreadLifetimes::theEndOfTheProgram_data()
{
    QTest::addColumn<QString>("way");
    for (const char *way : {"deleted after the loop", "never deleted", "exits"})
        QTest::newRow(way) << QString::fromLatin1(way);
}

void tst_ThreadLifetimes::theEndOfTheProgram()
{
    QFETCH(QString, way);
    QProcess program;
    program.setProcessChannelMode(QProcess::MergedChannels);
    program.start(QCoreApplication::applicationFilePath(), {QLatin1String(LeaveArgument), way});
    QVERIFY(program.waitForFinished(TestLimitMs));
    const QByteArray output = program.readAll();
    QVERIFY2(program.exitStatus() == QProcess::NormalExit, output);
    QVERIFY2(program.exitCode() == 0, output);
}

/// A program that ends while a procedure runs.
static int leave(const QString &way)
{
    static auto *const driver = new ScriptedDriver; // static: what is left at the end is no leak
    static auto *const thread = new UtilsUniProgThread(driver, nullptr);
    driver->always(Operation::FindDevice, Answer().after(AWhile));
    QMetaObject::invokeMethod(
        qApp,
        [way] {
            thread->FindDevice();
            if (!driver->waitForCall(Operation::FindDevice))
                std::abort();
            if (way == QLatin1String("exits"))
                std::exit(0);
            QCoreApplication::quit();
        },
        Qt::QueuedConnection);
    const int code = QCoreApplication::exec();
    if (way == QLatin1String("deleted after the loop"))
        delete thread;
    return code;
}

int main(int argc, char **argv)
{
    UniProgTest::prepareProcess();
    QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == QLatin1String(LeaveArgument))
        return leave(arguments.value(2));
    tst_ThreadLifetimes test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}

#include "tst_threadlifetimes.moc"
