#include "ProgrammerSession.h"

#include "FirmwareFile.h"

#include <algorithm>

const QList<ProgrammerSession::Description> &ProgrammerSession::descriptions()
{
    static const QList<Description> all{
        {Operation::Write, "write", QT_TRANSLATE_NOOP("MainWindow", "Write"),
         QT_TRANSLATE_NOOP("MainWindow", "Writing the image to the target"), true},
        {Operation::Read, "read", QT_TRANSLATE_NOOP("MainWindow", "Read"),
         QT_TRANSLATE_NOOP("MainWindow", "Reading the target"), false},
        {Operation::Verify, "verify", QT_TRANSLATE_NOOP("MainWindow", "Verify"),
         QT_TRANSLATE_NOOP("MainWindow", "Comparing the target with the image"), true},
        {Operation::BlankCheck, "blank", QT_TRANSLATE_NOOP("MainWindow", "Blank check"),
         QT_TRANSLATE_NOOP("MainWindow", "Looking for data in the target"), false},
        {Operation::Detect, "detect", QT_TRANSLATE_NOOP("MainWindow", "Detect"),
         QT_TRANSLATE_NOOP("MainWindow", "Looking for the target"), false},
        {Operation::Erase, "erase", QT_TRANSLATE_NOOP("MainWindow", "Erase"),
         QT_TRANSLATE_NOOP("MainWindow", "Erasing the target"), false},
        {Operation::Reset, "reset", QT_TRANSLATE_NOOP("MainWindow", "Reset"),
         QT_TRANSLATE_NOOP("MainWindow", "Resetting the target"), false},
    };
    return all;
}

const ProgrammerSession::Description &ProgrammerSession::describe(Operation operation)
{
    const QList<Description> &all = descriptions();
    return *std::find_if(all.cbegin(), all.cend(), [=](const Description &d) { return d.operation == operation; });
}

ProgrammerSession::ProgrammerSession(QObject *parent)
    : QObject(parent)
    , operationThread(&device, nullptr)
    , target(device.GetTargetDescriptor())
{
    operationThread.setObjectName(QStringLiteral("programmer"));
    connect(&operationThread, &UtilsUniProgThread::SignalProcedureCompleted, this,
            &ProgrammerSession::procedureCompleted);
}

ProgrammerSession::~ProgrammerSession()
{
    // The thread waits for a running procedure, so that one must not take long, or hang because a fault says so.
    device.clearFaults();
    device.setPluggedIn(false);
}

SimulatedProgrammer &ProgrammerSession::programmer()
{
    return device;
}

UtilsUniProgThread &ProgrammerSession::thread()
{
    return operationThread;
}

TargetOptionsOperation &ProgrammerSession::operationOptions()
{
    return *target->getOperationOptions();
}

TargetOptionsConnection &ProgrammerSession::connectionOptions()
{
    return *target->getConnectionOptions();
}

const MemoryManager &ProgrammerSession::image() const
{
    return firmware;
}

QString ProgrammerSession::imagePath() const
{
    return firmwarePath;
}

bool ProgrammerSession::loadImage(const QString &path, quint32 binaryBase, QString *error)
{
    if (running) {
        *error = QStringLiteral("The image is in use. Please wait for the end of the operation.");
        return false;
    }
    if (!FirmwareFile::load(path, binaryBase, &firmware, error))
        return false;
    firmwarePath = path;
    Q_EMIT imageChanged();
    return true;
}

const MemoryManager &ProgrammerSession::contents() const
{
    return readMemory;
}

bool ProgrammerSession::answer() const
{
    return result;
}

bool ProgrammerSession::addFault(const QString &text, QString *error)
{
    if (!device.addFault(text, error))
        return false;
    plannedFaults.append(text);
    Q_EMIT faultsChanged();
    return true;
}

void ProgrammerSession::clearFaults()
{
    device.clearFaults();
    plannedFaults.clear();
    Q_EMIT faultsChanged();
}

QStringList ProgrammerSession::faults() const
{
    return plannedFaults;
}

bool ProgrammerSession::isRunning() const
{
    return running;
}

bool ProgrammerSession::canStart(Operation operation) const
{
    return !running && !(describe(operation).needsImage && firmware.isEmpty());
}

void ProgrammerSession::start(Operation operation)
{
    if (!canStart(operation))
        return;
    running = true;
    current = operation;
    result = false;
    switch (operation) {
    case Operation::Write:
        operationThread.WriteTarget(&firmware);
        break;
    case Operation::Read:
        readMemory.clear(); // an empty image is filled with all of the target
        operationThread.ReadTarget(&readMemory);
        break;
    case Operation::Verify:
        operationThread.VerifyTarget(&firmware, &result);
        break;
    case Operation::BlankCheck:
        operationThread.CheckTargetBlank(&result);
        break;
    case Operation::Detect:
        operationThread.DetectTarget(&result);
        break;
    case Operation::Erase:
        operationThread.EraseTargetMass();
        break;
    case Operation::Reset:
        operationThread.ResetTarget();
        break;
    }
}

void ProgrammerSession::procedureCompleted(int status, const QString &message)
{
    running = false;
    Q_EMIT completed(current, status, message);
}
