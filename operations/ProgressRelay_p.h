#ifndef PROGRESSRELAY_P_H
#define PROGRESSRELAY_P_H

#include <QObject>

#include <memory>

class UtilsUniProgThread;

/// Hands a driver's progress on to the SignalOperationProgress() of a UtilsUniProgThread, on the thread that emits it.
///
/// All objects of a driver hear it, and it comes from the worker of any of them. An object that is deleted meanwhile
/// must not be a receiver itself: Qt would call it after its end.
class ProgressRelay : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ProgressRelay)

public:
    /// Connects to the SignalUpdateProgress(int) of \a driver.
    ProgressRelay(const QObject *driver, UtilsUniProgThread *thread);
    ~ProgressRelay() override;

    /// Waits until nobody is telling the target anything, which is told nothing from then on. The relay is deleted as
    /// soon as no driver can be in the middle of calling it.
    void retire();
    /// Deletes those that have retired. The caller has the turn at the device, and so no driver reports progress.
    static void deleteRetired();

public Q_SLOTS:
    void forward(int percent);

private:
    struct Target;
    std::shared_ptr<Target> target;
};

#endif // PROGRESSRELAY_P_H
