#include <UtilsSingleInstance.h>

#include <UniProgTest.h>

#include <QApplication>
#include <QPointer>

#include <memory>
#include <type_traits>

class tst_UtilsSingleInstance : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void startsWithTheOrganisationOnly();
    void theApplicationIsNamed();
    void theMainWidgetIsNotOwned();
    void oneObjectIsShared();
    void theParentOfTheFirstCallOwnsTheObject();
    void itHasAMetaObjectAndNothingInIt();
};

void tst_UtilsSingleInstance::startsWithTheOrganisationOnly()
{
    QCOMPARE(UtilsSingleInstance::getOrganization(), QStringLiteral("Orbelkan"));
    QCOMPARE(UtilsSingleInstance::getApplicationName(), QString());
    QVERIFY(!UtilsSingleInstance::getAppMainWidget());
}

void tst_UtilsSingleInstance::theApplicationIsNamed()
{
    UtilsSingleInstance::setApplicationName(QStringLiteral("Programmer"));
    QCOMPARE(UtilsSingleInstance::getApplicationName(), QStringLiteral("Programmer"));
    QCOMPARE(UtilsSingleInstance::getOrganization(), QStringLiteral("Orbelkan"));
    UtilsSingleInstance::setApplicationName(QString());
    QCOMPARE(UtilsSingleInstance::getApplicationName(), QString());
}

void tst_UtilsSingleInstance::theMainWidgetIsNotOwned()
{
    auto widget = std::make_unique<QWidget>();
    UtilsSingleInstance::setAppMainWidget(widget.get());
    QCOMPARE(UtilsSingleInstance::getAppMainWidget(), widget.get());
    widget.reset();
    QVERIFY(!UtilsSingleInstance::getAppMainWidget());

    QWidget other;
    UtilsSingleInstance::setAppMainWidget(&other);
    UtilsSingleInstance::setAppMainWidget(nullptr);
    QVERIFY(!UtilsSingleInstance::getAppMainWidget());
}

void tst_UtilsSingleInstance::oneObjectIsShared()
{
    auto parent = std::make_unique<QObject>();
    UtilsSingleInstance *instance = UtilsSingleInstance::getInstance(parent.get());
    QVERIFY(instance);
    QCOMPARE(instance->parent(), parent.get());
    QObject another;
    QCOMPARE(UtilsSingleInstance::getInstance(&another), instance);
    QCOMPARE(UtilsSingleInstance::getInstance(nullptr), instance);
    QCOMPARE(instance->parent(), parent.get());
}

void tst_UtilsSingleInstance::theParentOfTheFirstCallOwnsTheObject()
{
    auto parent = std::make_unique<QObject>();
    const QPointer<UtilsSingleInstance> instance(UtilsSingleInstance::getInstance(parent.get()));
    UtilsSingleInstance::setApplicationName(QStringLiteral("Debugger"));
    parent.reset();
    QVERIFY(!instance);
    QCOMPARE(UtilsSingleInstance::getApplicationName(), QStringLiteral("Debugger"));

    UtilsSingleInstance *next = UtilsSingleInstance::getInstance(nullptr);
    QVERIFY(next);
    QVERIFY(!next->parent());
    QCOMPARE(UtilsSingleInstance::getInstance(this), next);
    QCOMPARE(UtilsSingleInstance::getOrganization(), QStringLiteral("Orbelkan"));
}

void tst_UtilsSingleInstance::itHasAMetaObjectAndNothingInIt()
{
    static_assert(!std::is_constructible_v<UtilsSingleInstance, QObject *>, "getInstance() makes the one object");
    const QMetaObject &type = UtilsSingleInstance::staticMetaObject;
    QCOMPARE(type.className(), "UtilsSingleInstance");
    QCOMPARE(type.methodCount(), QObject::staticMetaObject.methodCount());
    QCOMPARE(type.propertyCount(), QObject::staticMetaObject.propertyCount());
}

UNIPROG_TEST_MAIN(tst_UtilsSingleInstance)
#include "tst_utilssingleinstance.moc"
