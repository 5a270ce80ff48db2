#include "ProgressRelay_p.h"

#include "UtilsUniProgThread.h"

#include <QList>

#include <mutex>
#include <utility>

struct ProgressRelay::Target
{
    std::recursive_mutex mutex; // recursive: who is told of progress may delete the object
    UtilsUniProgThread *object = nullptr;
};

namespace {

/// All relays together. The mutex also stands between the beginning of a relay and its first use on another thread.
struct Registry
{
    std::mutex mutex;
    QList<ProgressRelay *> retired;
};

Registry *registry()
{
    static auto *const all = new Registry; // never deleted: a worker that is left behind uses it to the end
    return all;
}

} // namespace

ProgressRelay::ProgressRelay(const QObject *driver, UtilsUniProgThread *thread)
{
    {
        const std::lock_guard<std::mutex> lock(registry()->mutex);
        target = std::make_shared<Target>();
        target->object = thread;
    }
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
        const std::lock_guard<std::mutex> lock(registry()->mutex);
        registry()->retired.append(this);
    }
    if (!UtilsUniProgThread::mutexAccessThread->tryLock())
        return; // the procedure that has the turn does it at its end
    deleteRetired();
    UtilsUniProgThread::mutexAccessThread->unlock();
}

void ProgressRelay::deleteRetired()
{
    std::unique_lock<std::mutex> lock(registry()->mutex);
    const QList<ProgressRelay *> relays = std::exchange(registry()->retired, {});
    lock.unlock();
    qDeleteAll(relays);
}

void ProgressRelay::forward(int percent)
{
    std::unique_lock<std::mutex> beginning(registry()->mutex);
    const std::shared_ptr<Target> receiver = target; // outlives this relay, which may go in the middle of the signal
    beginning.unlock();
    const std::lock_guard<std::recursive_mutex> lock(receiver->mutex);
    if (receiver->object)
        Q_EMIT receiver->object->SignalOperationProgress(percent);
}
