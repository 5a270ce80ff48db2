#include "ProgressRelay_p.h"

#include "UtilsUniProgThread.h"

#include <QList>

#include <mutex>
#include <utility>

struct ProgressRelay::Target
{
    std::recursive_mutex mutex; // recursive: who is told of progress may delete the object
    UtilsUniProgThread *object;
};

namespace {

struct Retired
{
    std::mutex mutex;
    QList<ProgressRelay *> relays;
};

Retired *retired()
{
    static auto *const all
        = new Retired; // never deleted: workers that are left behind use it to the end of the process
    return all;
}

} // namespace

ProgressRelay::ProgressRelay(const QObject *driver, UtilsUniProgThread *thread)
    : target(std::make_shared<Target>())
{
    target->object = thread;
    connect(driver, SIGNAL(SignalUpdateProgress(int)), this, SLOT(forward(int)), Qt::DirectConnection);
}

ProgressRelay::~ProgressRelay() = default;

void ProgressRelay::retire()
{
    {
        const std::lock_guard<std::recursive_mutex> lock(target->mutex);
        target->object = nullptr;
    }
    {
        const std::lock_guard<std::mutex> lock(retired()->mutex);
        retired()->relays.append(this);
    }
    if (!UtilsUniProgThread::mutexAccessThread->tryLock())
        return; // the procedure that has the turn does it at its end
    deleteRetired();
    UtilsUniProgThread::mutexAccessThread->unlock();
}

void ProgressRelay::deleteRetired()
{
    std::unique_lock<std::mutex> lock(retired()->mutex);
    const QList<ProgressRelay *> relays = std::exchange(retired()->relays, {});
    lock.unlock();
    qDeleteAll(relays);
}

void ProgressRelay::forward(int percent)
{
    const std::shared_ptr<Target> receiver = target; // outlives this relay, which may go in the middle of the signal
    const std::lock_guard<std::recursive_mutex> lock(receiver->mutex);
    if (receiver->object)
        Q_EMIT receiver->object->SignalOperationProgress(percent);
}
