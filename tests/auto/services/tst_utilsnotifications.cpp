#include <UtilsNotifications.h>
#include <UtilsNotificationsListener.h>

#include <UniProgTest.h>

#include <QApplication>
#include <QMetaEnum>
#include <QMetaMethod>
#include <QSignalSpy>

#include <limits>
#include <type_traits>
#include <utility>

namespace {

const QString SuiteText = QStringLiteral("New Suite version available");
const QString FirmwareText = QStringLiteral("New firmware version available");

/// Writes down every signal of the centre, in the order of emission, together with what was pending at that moment.
class Record : public QObject
{
public:
    Record()
    {
        UtilsNotifications *centre = &UtilsNotifications::getInstance();
        connect(centre, &UtilsNotifications::signalNotificationExecuted, this,
                [this](UtilsNotificatonsType type) { note(QStringLiteral("executed %1").arg(int(type))); });
        connect(centre, &UtilsNotifications::signalNotificationAdded, this, [this] { note(QStringLiteral("added")); });
        connect(centre, &UtilsNotifications::signalNotificationRemoved, this,
                [this] { note(QStringLiteral("removed")); });
        connect(centre, &UtilsNotifications::signalNotificationsUpdated, this,
                [this] { note(QStringLiteral("updated")); });
    }

    QStringList lines;

private:
    void note(const QString &signal)
    {
        QStringList pending;
        const QList<UtilsNotificatonsType> types = UtilsNotifications::getInstance().getNotificationTypes();
        for (const UtilsNotificatonsType type : types)
            pending.append(QString::number(type));
        lines.append(QStringLiteral("%1 [%2]").arg(signal, pending.join(QLatin1Char(' '))));
    }
};

class Listener : public UtilsNotificationsListener
{
public:
    void slotNotificationExecuted(UtilsNotificatonsType notificationType) override
    {
        heard.append(notificationType);
    }

    QList<UtilsNotificatonsType> heard;
};

} // namespace

class tst_UtilsNotifications : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();

    void nothingIsPendingAtTheStart();
    void thereIsOneCentreWithoutParent();
    void theTypesHaveTheirNumbers();
    void theSignalsStandInTheirOrder();

    void aRaisedTypeIsPendingWithItsText_data();
    void aRaisedTypeIsPendingWithItsText();
    void raisingAgainOnlyCounts();
    void theTypesAreListedInAscendingOrder();
    void askingForATypeNeverInsertsIt();
    void theItemIsACopy();

    void removingTellsTheViewsOnly();
    void removingWhatIsNotPendingStillTellsTheViews();
    void executingRemovesFirstAndTellsTheListenersThen();
    void executingWhatIsNotPendingDoesNothing();
    void clearingTellsOncePerType();
    void clearingAnEmptyCentreIsSilent();
    void aTypeCountsFromOneAfterItsRemoval();

    void aListenerHearsOfEveryType();
    void aListenerRegisteredTwiceHearsTwice();
    void anUnregisteredListenerHearsNothing();
    void unregisteringLeavesOtherConnectionsAlone();
    void aNullListenerIsRefused();

    void aReceiverMayRaiseWhileTheCentreIsCleared();
    void aReceiverMayClearWhileATypeIsRaised();
    void aReceiverMayRaiseTheTypeThatIsBeingExecuted();
};

void tst_UtilsNotifications::cleanup()
{
    UtilsNotifications::getInstance().clearAllNotifications();
}

void tst_UtilsNotifications::nothingIsPendingAtTheStart()
{
    QVERIFY(UtilsNotifications::getInstance().getNotificationTypes().isEmpty());
}

void tst_UtilsNotifications::thereIsOneCentreWithoutParent()
{
    QCOMPARE(&UtilsNotifications::getInstance(), &UtilsNotifications::getInstance());
    QVERIFY(!UtilsNotifications::getInstance().parent());
}

void tst_UtilsNotifications::theTypesHaveTheirNumbers()
{
    QCOMPARE(int(NOTIFICATION_NEW_SUITE_VERSION), 0);
    QCOMPARE(int(NOTIFICATION_NEW_FIRMWARE_VERSION), 1);
    static_assert(std::is_same_v<std::underlying_type_t<UtilsNotificatonsType>, int>);
}

void tst_UtilsNotifications::theSignalsStandInTheirOrder()
{
    const QMetaObject &metaObject = UtilsNotifications::staticMetaObject;
    QStringList signatures;
    for (int index = metaObject.methodOffset(); index < metaObject.methodCount(); ++index) {
        const QMetaMethod method = metaObject.method(index);
        QCOMPARE(method.methodType(), QMetaMethod::Signal);
        signatures.append(QString::fromLatin1(method.methodSignature() + ' ' + method.parameterNames().join(',')));
    }
    QCOMPARE(signatures,
             QStringList({QStringLiteral("signalNotificationExecuted(UtilsNotificatonsType) notificationType"),
                          QStringLiteral("signalNotificationAdded(UtilsNotificatonsType,int) notificationType,counter"),
                          QStringLiteral("signalNotificationRemoved(UtilsNotificatonsType) notificationType"),
                          QStringLiteral("signalNotificationsUpdated() ")}));
}

void tst_UtilsNotifications::aRaisedTypeIsPendingWithItsText_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("text");
    QTest::newRow("suite") << int(NOTIFICATION_NEW_SUITE_VERSION) << SuiteText;
    QTest::newRow("firmware") << int(NOTIFICATION_NEW_FIRMWARE_VERSION) << FirmwareText;
    QTest::newRow("no such type") << 2 << QString();
    QTest::newRow("negative") << -1 << QString();
    QTest::newRow("smallest") << std::numeric_limits<int>::min() << QString();
    QTest::newRow("largest") << std::numeric_limits<int>::max() << QString();
}

void tst_UtilsNotifications::aRaisedTypeIsPendingWithItsText()
{
    QFETCH(int, type);
    QFETCH(QString, text);
    UtilsNotifications &centre = UtilsNotifications::getInstance();
    const auto notification = UtilsNotificatonsType(type);

    // The second round shows that what the first one did to a type without text changes nothing.
    for (int round = 0; round < 2; ++round) {
        const Record record;
        QCOMPARE(centre.addNotification(notification), type);
        QCOMPARE(record.lines, QStringList(QStringLiteral("updated [%1]").arg(type)));
        bool found = false;
        const UtilsNotifications::UtilsNotificationItem item = centre.getNotification(notification, found);
        QVERIFY(found);
        QCOMPARE(item.counter, qint32(1));
        QCOMPARE(item.text, text);
        QCOMPARE(centre.getNotificationTypes(), QList<UtilsNotificatonsType>{notification});
        centre.removeNotification(notification);
    }
}

void tst_UtilsNotifications::raisingAgainOnlyCounts()
{
    UtilsNotifications &centre = UtilsNotifications::getInstance();
    const Record record;
    for (int round = 0; round < 3; ++round)
        QCOMPARE(centre.addNotification(NOTIFICATION_NEW_FIRMWARE_VERSION), 1);
    const QString updated = QStringLiteral("updated [1]");
    QCOMPARE(record.lines, QStringList({updated, updated, updated}));
    bool found = false;
    const UtilsNotifications::UtilsNotificationItem item
        = centre.getNotification(NOTIFICATION_NEW_FIRMWARE_VERSION, found);
    QVERIFY(found);
    QCOMPARE(item.counter, qint32(3));
    QCOMPARE(item.text, FirmwareText);
    QCOMPARE(centre.getNotificationTypes().size(), 1);
}

void tst_UtilsNotifications::theTypesAreListedInAscendingOrder()
{
    UtilsNotifications &centre = UtilsNotifications::getInstance();
    centre.addNotification(UtilsNotificatonsType(7));
    centre.addNotification(NOTIFICATION_NEW_FIRMWARE_VERSION);
    centre.addNotification(UtilsNotificatonsType(-3));
    centre.addNotification(NOTIFICATION_NEW_SUITE_VERSION);
    QCOMPARE(centre.getNotificationTypes(),
             QList<UtilsNotificatonsType>({UtilsNotificatonsType(-3), NOTIFICATION_NEW_SUITE_VERSION,
                                           NOTIFICATION_NEW_FIRMWARE_VERSION, UtilsNotificatonsType(7)}));
}

void tst_UtilsNotifications::askingForATypeNeverInsertsIt()
{
    UtilsNotifications &centre = UtilsNotifications::getInstance();
    const Record record;
    bool found = true;
    const UtilsNotifications::UtilsNotificationItem item
        = centre.getNotification(NOTIFICATION_NEW_SUITE_VERSION, found);
    QVERIFY(!found);
    QCOMPARE(item.counter, qint32(-1));
    QCOMPARE(item.text, QString());
    QVERIFY(centre.getNotificationTypes().isEmpty());
    QVERIFY(record.lines.isEmpty());
}

void tst_UtilsNotifications::theItemIsACopy()
{
    UtilsNotifications &centre = UtilsNotifications::getInstance();
    centre.addNotification(NOTIFICATION_NEW_SUITE_VERSION);
    bool found = false;
    UtilsNotifications::UtilsNotificationItem item = centre.getNotification(NOTIFICATION_NEW_SUITE_VERSION, found);
    item.counter = 9;
    item.text.clear();
    item = centre.getNotification(NOTIFICATION_NEW_SUITE_VERSION, found);
    QCOMPARE(item.counter, qint32(1));
    QCOMPARE(item.text, SuiteText);
}

void tst_UtilsNotifications::removingTellsTheViewsOnly()
{
    UtilsNotifications &centre = UtilsNotifications::getInstance();
    centre.addNotification(NOTIFICATION_NEW_SUITE_VERSION);
    centre.addNotification(NOTIFICATION_NEW_FIRMWARE_VERSION);
    const Record record;
    centre.removeNotification(NOTIFICATION_NEW_SUITE_VERSION);
    QCOMPARE(record.lines, QStringList(QStringLiteral("updated [1]")));
}

void tst_UtilsNotifications::removingWhatIsNotPendingStillTellsTheViews()
{
    const Record record;
    UtilsNotifications::getInstance().removeNotification(NOTIFICATION_NEW_SUITE_VERSION);
    QCOMPARE(record.lines, QStringList(QStringLiteral("updated []")));
}

void tst_UtilsNotifications::executingRemovesFirstAndTellsTheListenersThen()
{
    UtilsNotifications &centre = UtilsNotifications::getInstance();
    centre.addNotification(NOTIFICATION_NEW_SUITE_VERSION);
    centre.addNotification(NOTIFICATION_NEW_FIRMWARE_VERSION);
    const Record record;
    centre.executeNotification(NOTIFICATION_NEW_SUITE_VERSION);
    QCOMPARE(record.lines, QStringList({QStringLiteral("updated [1]"), QStringLiteral("executed 0 [1]")}));
    bool found = true;
    const UtilsNotifications::UtilsNotificationItem item
        = centre.getNotification(NOTIFICATION_NEW_SUITE_VERSION, found);
    QVERIFY(!found);
    QCOMPARE(item.counter, qint32(-1));
    QCOMPARE(item.text, QString());
}

void tst_UtilsNotifications::executingWhatIsNotPendingDoesNothing()
{
    UtilsNotifications &centre = UtilsNotifications::getInstance();
    centre.addNotification(NOTIFICATION_NEW_FIRMWARE_VERSION);
    const Record record;
    centre.executeNotification(NOTIFICATION_NEW_SUITE_VERSION);
    QVERIFY(record.lines.isEmpty());
}

void tst_UtilsNotifications::clearingTellsOncePerType()
{
    UtilsNotifications &centre = UtilsNotifications::getInstance();
    centre.addNotification(NOTIFICATION_NEW_FIRMWARE_VERSION);
    centre.addNotification(NOTIFICATION_NEW_SUITE_VERSION);
    centre.addNotification(NOTIFICATION_NEW_SUITE_VERSION);
    const Record record;
    centre.clearAllNotifications();
    QCOMPARE(record.lines, QStringList({QStringLiteral("updated [1]"), QStringLiteral("updated []")}));
}

void tst_UtilsNotifications::clearingAnEmptyCentreIsSilent()
{
    const Record record;
    UtilsNotifications::getInstance().clearAllNotifications();
    QVERIFY(record.lines.isEmpty());
}

void tst_UtilsNotifications::aTypeCountsFromOneAfterItsRemoval()
{
    UtilsNotifications &centre = UtilsNotifications::getInstance();
    bool found = false;
    centre.addNotification(NOTIFICATION_NEW_SUITE_VERSION);
    centre.addNotification(NOTIFICATION_NEW_SUITE_VERSION);
    centre.removeNotification(NOTIFICATION_NEW_SUITE_VERSION);
    centre.addNotification(NOTIFICATION_NEW_SUITE_VERSION);
    QCOMPARE(centre.getNotification(NOTIFICATION_NEW_SUITE_VERSION, found).counter, qint32(1));
    centre.addNotification(NOTIFICATION_NEW_SUITE_VERSION);
    centre.executeNotification(NOTIFICATION_NEW_SUITE_VERSION);
    centre.addNotification(NOTIFICATION_NEW_SUITE_VERSION);
    QCOMPARE(centre.getNotification(NOTIFICATION_NEW_SUITE_VERSION, found).counter, qint32(1));
}

void tst_UtilsNotifications::aListenerHearsOfEveryType()
{
    UtilsNotifications &centre = UtilsNotifications::getInstance();
    const UtilsNotificatonsType unnamed = UtilsNotificatonsType(-5);
    Listener first;
    Listener second;
    centre.registerListener(&first);
    centre.registerListener(&second);
    const QList<UtilsNotificatonsType> types{NOTIFICATION_NEW_FIRMWARE_VERSION, NOTIFICATION_NEW_SUITE_VERSION,
                                             unnamed};
    for (const UtilsNotificatonsType type : types) {
        centre.addNotification(type);
        centre.executeNotification(type);
    }
    QCOMPARE(first.heard, types);
    QCOMPARE(second.heard, types);
}

void tst_UtilsNotifications::aListenerRegisteredTwiceHearsTwice()
{
    UtilsNotifications &centre = UtilsNotifications::getInstance();
    Listener listener;
    centre.registerListener(&listener);
    centre.registerListener(&listener);
    centre.addNotification(NOTIFICATION_NEW_SUITE_VERSION);
    centre.executeNotification(NOTIFICATION_NEW_SUITE_VERSION);
    QCOMPARE(listener.heard, QList<UtilsNotificatonsType>(2, NOTIFICATION_NEW_SUITE_VERSION));
}

void tst_UtilsNotifications::anUnregisteredListenerHearsNothing()
{
    UtilsNotifications &centre = UtilsNotifications::getInstance();
    Listener leaving;
    Listener staying;
    centre.registerListener(&leaving);
    centre.registerListener(&staying);
    centre.registerListener(&leaving);
    centre.unRegisterListener(&leaving);
    centre.addNotification(NOTIFICATION_NEW_SUITE_VERSION);
    centre.executeNotification(NOTIFICATION_NEW_SUITE_VERSION);
    QVERIFY(leaving.heard.isEmpty());
    QCOMPARE(staying.heard.size(), 1);

    // Unregistering one who is not registered is no mistake.
    centre.unRegisterListener(&leaving);
}

void tst_UtilsNotifications::unregisteringLeavesOtherConnectionsAlone()
{
    UtilsNotifications &centre = UtilsNotifications::getInstance();
    Listener listener;
    int updates = 0;
    int executions = 0;
    connect(&centre, &UtilsNotifications::signalNotificationsUpdated, &listener, [&updates] { ++updates; });
    connect(&centre, &UtilsNotifications::signalNotificationExecuted, &listener, [&executions] { ++executions; });
    centre.registerListener(&listener);
    centre.unRegisterListener(&listener);
    centre.addNotification(NOTIFICATION_NEW_SUITE_VERSION);
    centre.executeNotification(NOTIFICATION_NEW_SUITE_VERSION);
    QVERIFY(listener.heard.isEmpty());
    QCOMPARE(updates, 2);
    QCOMPARE(executions, 1);
}

void tst_UtilsNotifications::aNullListenerIsRefused()
{
    UtilsNotifications &centre = UtilsNotifications::getInstance();
    Listener listener;
    centre.registerListener(&listener);
    QTest::ignoreMessage(QtWarningMsg, "QObject::connect(UtilsNotifications, Unknown): invalid nullptr parameter");
    centre.registerListener(nullptr);
    QTest::ignoreMessage(QtWarningMsg, "QObject::disconnect: Unexpected nullptr parameter");
    centre.unRegisterListener(nullptr);
    centre.addNotification(NOTIFICATION_NEW_SUITE_VERSION);
    centre.executeNotification(NOTIFICATION_NEW_SUITE_VERSION);
    QCOMPARE(listener.heard.size(), 1);
}

void tst_UtilsNotifications::aReceiverMayRaiseWhileTheCentreIsCleared()
{
    UtilsNotifications &centre = UtilsNotifications::getInstance();
    centre.addNotification(NOTIFICATION_NEW_SUITE_VERSION);
    centre.addNotification(NOTIFICATION_NEW_FIRMWARE_VERSION);
    QObject receiver;
    bool raised = false;
    connect(&centre, &UtilsNotifications::signalNotificationsUpdated, &receiver, [&] {
        if (std::exchange(raised, true))
            return;
        centre.addNotification(NOTIFICATION_NEW_SUITE_VERSION);
        centre.addNotification(UtilsNotificatonsType(5));
    });
    centre.clearAllNotifications();
    QCOMPARE(centre.getNotificationTypes(),
             QList<UtilsNotificatonsType>({NOTIFICATION_NEW_SUITE_VERSION, UtilsNotificatonsType(5)}));
}

void tst_UtilsNotifications::aReceiverMayClearWhileATypeIsRaised()
{
    UtilsNotifications &centre = UtilsNotifications::getInstance();
    centre.addNotification(NOTIFICATION_NEW_SUITE_VERSION);
    QObject receiver;
    connect(
        &centre, &UtilsNotifications::signalNotificationsUpdated, &receiver,
        [&centre] { centre.clearAllNotifications(); }, Qt::SingleShotConnection);
    QCOMPARE(centre.addNotification(NOTIFICATION_NEW_FIRMWARE_VERSION), 1);
    QVERIFY(centre.getNotificationTypes().isEmpty());
}

void tst_UtilsNotifications::aReceiverMayRaiseTheTypeThatIsBeingExecuted()
{
    UtilsNotifications &centre = UtilsNotifications::getInstance();
    centre.addNotification(NOTIFICATION_NEW_SUITE_VERSION);
    Listener listener;
    centre.registerListener(&listener);
    QObject receiver;
    connect(
        &centre, &UtilsNotifications::signalNotificationsUpdated, &receiver,
        [&centre] { centre.addNotification(NOTIFICATION_NEW_SUITE_VERSION); }, Qt::SingleShotConnection);
    centre.executeNotification(NOTIFICATION_NEW_SUITE_VERSION);
    QCOMPARE(listener.heard, QList<UtilsNotificatonsType>{NOTIFICATION_NEW_SUITE_VERSION});
    bool found = false;
    QCOMPARE(centre.getNotification(NOTIFICATION_NEW_SUITE_VERSION, found).counter, qint32(1));
}

UNIPROG_TEST_MAIN(tst_UtilsNotifications)
#include "tst_utilsnotifications.moc"
