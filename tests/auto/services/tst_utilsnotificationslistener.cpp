#include <UtilsNotificationsListener.h>

#include <UtilsNotifications.h>

#include <UniProgTest.h>

#include <QApplication>
#include <QMetaMethod>
#include <QSemaphore>
#include <QThread>

#include <atomic>
#include <memory>
#include <type_traits>

namespace {

constexpr int PatienceMs = 30'000;

class Listener : public UtilsNotificationsListener
{
public:
    void slotNotificationExecuted(UtilsNotificatonsType notificationType) override
    {
        heard = notificationType;
        thread = QThread::currentThread();
        calls.release();
    }

    std::atomic<int> heard{-1}; // atomic: the semaphore's hand-over is invisible to ThreadSanitizer
    std::atomic<QThread *> thread{nullptr};
    QSemaphore calls;
};

} // namespace

class tst_UtilsNotificationsListener : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();

    void itIsAbstractAndHasNoParent();
    void theSlotIsTheFirstOwnMethodOfTheMetaObject();
    void theSlotIsCalledByNameToo();
    void aDeletedListenerIsForgotten();
    void aListenerMayUnregisterItselfInItsSlot();
    void aListenerInAnotherThreadHearsThere();
};

void tst_UtilsNotificationsListener::cleanup()
{
    UtilsNotifications::getInstance().clearAllNotifications();
}

void tst_UtilsNotificationsListener::itIsAbstractAndHasNoParent()
{
    static_assert(std::is_abstract_v<UtilsNotificationsListener>);
    static_assert(std::has_virtual_destructor_v<UtilsNotificationsListener>);
    static_assert(std::is_base_of_v<QObject, UtilsNotificationsListener>);
    const Listener listener;
    QVERIFY(!listener.parent());
}

void tst_UtilsNotificationsListener::theSlotIsTheFirstOwnMethodOfTheMetaObject()
{
    const QMetaObject &metaObject = UtilsNotificationsListener::staticMetaObject;
    QCOMPARE(metaObject.methodCount(), metaObject.methodOffset() + 1);
    const QMetaMethod slot = metaObject.method(metaObject.methodOffset());
    QCOMPARE(slot.methodSignature(), QByteArray("slotNotificationExecuted(UtilsNotificatonsType)"));
    QCOMPARE(slot.parameterNames(), QList<QByteArray>{"notificationType"});
    QCOMPARE(slot.methodType(), QMetaMethod::Slot);
    QCOMPARE(slot.access(), QMetaMethod::Public);
}

void tst_UtilsNotificationsListener::theSlotIsCalledByNameToo()
{
    UtilsNotifications &centre = UtilsNotifications::getInstance();
    Listener listener;
    QVERIFY(connect(&centre, SIGNAL(signalNotificationExecuted(UtilsNotificatonsType)), &listener,
                    SLOT(slotNotificationExecuted(UtilsNotificatonsType))));
    centre.addNotification(NOTIFICATION_NEW_FIRMWARE_VERSION);
    centre.executeNotification(NOTIFICATION_NEW_FIRMWARE_VERSION);
    QCOMPARE(listener.heard.load(), int(NOTIFICATION_NEW_FIRMWARE_VERSION));
}

void tst_UtilsNotificationsListener::aDeletedListenerIsForgotten()
{
    UtilsNotifications &centre = UtilsNotifications::getInstance();
    auto listener = std::make_unique<Listener>();
    centre.registerListener(listener.get());
    listener.reset();
    centre.addNotification(NOTIFICATION_NEW_SUITE_VERSION);
    centre.executeNotification(NOTIFICATION_NEW_SUITE_VERSION);
    QVERIFY(centre.getNotificationTypes().isEmpty());
}

void tst_UtilsNotificationsListener::aListenerMayUnregisterItselfInItsSlot()
{
    class OneShot : public UtilsNotificationsListener
    {
    public:
        void slotNotificationExecuted(UtilsNotificatonsType) override
        {
            ++calls;
            UtilsNotifications::getInstance().unRegisterListener(this);
        }
        int calls = 0;
    };
    UtilsNotifications &centre = UtilsNotifications::getInstance();
    OneShot listener;
    centre.registerListener(&listener);
    for (int round = 0; round < 2; ++round) {
        centre.addNotification(NOTIFICATION_NEW_SUITE_VERSION);
        centre.executeNotification(NOTIFICATION_NEW_SUITE_VERSION);
    }
    QCOMPARE(listener.calls, 1);
}

void tst_UtilsNotificationsListener::aListenerInAnotherThreadHearsThere()
{
    UtilsNotifications &centre = UtilsNotifications::getInstance();
    QThread thread;
    Listener listener;
    listener.moveToThread(&thread);
    centre.registerListener(&listener);
    centre.addNotification(NOTIFICATION_NEW_FIRMWARE_VERSION);
    centre.executeNotification(NOTIFICATION_NEW_FIRMWARE_VERSION);
    QCOMPARE(listener.calls.available(), 0); // queued: its thread does not run yet
    thread.start();
    const bool called = listener.calls.tryAcquire(1, PatienceMs);
    thread.quit();
    QVERIFY(thread.wait(PatienceMs));
    QVERIFY(called);
    QCOMPARE(listener.heard.load(), int(NOTIFICATION_NEW_FIRMWARE_VERSION));
    QCOMPARE(listener.thread.load(), &thread);
}

UNIPROG_TEST_MAIN(tst_UtilsNotificationsListener)
#include "tst_utilsnotificationslistener.moc"
