#include <UtilsMisc.h>

#include "IpAddressChoice_p.h"

#include <UniProgTest.h>

#include <QApplication>
#include <QFormLayout>
#include <QFrame>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QProxyStyle>
#include <QPushButton>

#include <functional>

/// SetMaximumSize() or SetMinimumSize() of UtilsMisc.
using SetLimit = void (*)(const QSize &size, QWidget *widget);
using Place = std::function<void(QWidget *parent, QWidget *child)>;
Q_DECLARE_METATYPE(SetLimit)
Q_DECLARE_METATYPE(Place)
Q_DECLARE_METATYPE(QList<InterfaceAddresses>)

class tst_UtilsMisc : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void theFirstAddressOfARunningInterfaceIsChosen_data();
    void theFirstAddressOfARunningInterfaceIsChosen();
    void myAddressIsOneOfThisMachine();

    void framelessIsNeverChosen();

    void aWidgetIsReplacedInItsLayout_data();
    void aWidgetIsReplacedInItsLayout();
    void withoutALayoutNothingIsReplaced();
    void aWidgetOutsideTheLayoutIsKept();

    void limitsOnlyGetCloser_data();
    void limitsOnlyGetCloser();

    void aPropertyIsSetThenUnpolishedThenPolished();
    void styleSheetsSeeThePropertyAtOnce();
    void nullIsIgnored();
};

void tst_UtilsMisc::theFirstAddressOfARunningInterfaceIsChosen_data()
{
    QTest::addColumn<QList<InterfaceAddresses>>("interfaces");
    QTest::addColumn<QString>("address");

    using Flags = QNetworkInterface::InterfaceFlags;
    const Flags running = QNetworkInterface::IsRunning;
    const Flags up = QNetworkInterface::IsUp;
    const Flags loopback = QNetworkInterface::IsLoopBack;
    const QHostAddress lan(QStringLiteral("192.168.1.20"));
    const QHostAddress wifi(QStringLiteral("10.0.0.7"));
    const QHostAddress local(QHostAddress::LocalHost);
    const QHostAddress ipv6(QStringLiteral("fe80::1"));
    const QHostAddress mapped(QStringLiteral("::ffff:10.1.2.3"));
    const auto row = [](const char *name, const QList<InterfaceAddresses> &interfaces, const char *address) {
        QTest::newRow(name) << interfaces << QString::fromLatin1(address);
    };
    row("no interface", {}, "0.0.0.0");
    row("loopback only", {{running | up | loopback, {local, QHostAddress(QHostAddress::LocalHostIPv6)}}}, "0.0.0.0");
    row("any address of a loopback interface", {{running | loopback, {lan}}}, "0.0.0.0");
    row("running", {{running, {lan}}}, "192.168.1.20");
    row("running and up", {{running | up, {lan}}}, "192.168.1.20");
    row("up and not running", {{up, {lan}}}, "0.0.0.0");
    row("no flags", {{Flags(), {lan}}}, "0.0.0.0");
    row("IPv6 first", {{running, {ipv6, lan}}}, "192.168.1.20");
    row("IPv6 only", {{running, {ipv6}}}, "0.0.0.0");
    row("IPv4 inside IPv6", {{running, {mapped}}}, "0.0.0.0");
    row("no address", {{running, {}}, {running, {wifi}}}, "10.0.0.7");
    row("127.0.0.1 elsewhere", {{running, {local, wifi}}}, "10.0.0.7");
    row("127.0.0.2 elsewhere", {{running, {QHostAddress(QStringLiteral("127.0.0.2")), wifi}}}, "127.0.0.2");
    row("the first of two interfaces", {{running, {wifi}}, {running, {lan}}}, "10.0.0.7");
    row("the first of two addresses", {{running, {lan, wifi}}}, "192.168.1.20");
    row("behind all that does not qualify",
        {{running | loopback, {local}}, {up, {lan}}, {running, {ipv6}}, {running, {wifi}}}, "10.0.0.7");
}

void tst_UtilsMisc::theFirstAddressOfARunningInterfaceIsChosen()
{
    QFETCH(QList<InterfaceAddresses>, interfaces);
    QFETCH(QString, address);
    QCOMPARE(chooseIpAddress(interfaces), address);
}

void tst_UtilsMisc::myAddressIsOneOfThisMachine()
{
    const QHostAddress address(UtilsMisc::GetMyIpAddress());
    QCOMPARE(address.protocol(), QAbstractSocket::IPv4Protocol);
    if (address != QHostAddress(QHostAddress::AnyIPv4))
        QVERIFY(QNetworkInterface::allAddresses().contains(address));
}

void tst_UtilsMisc::framelessIsNeverChosen()
{
    QVERIFY(!UtilsMisc::CheckIfFramelessUsed());
}

void tst_UtilsMisc::aWidgetIsReplacedInItsLayout_data()
{
    QTest::addColumn<Place>("place");
    QTest::newRow("box") << Place([](QWidget *parent, QWidget *child) {
        auto *layout = new QVBoxLayout(parent);
        layout->addWidget(new QLabel);
        layout->addWidget(child);
        layout->addWidget(new QLabel);
    });
    QTest::newRow("grid") << Place([](QWidget *parent, QWidget *child) {
        auto *layout = new QGridLayout(parent);
        layout->addWidget(child, 1, 2, 3, 4);
    });
    QTest::newRow("form") << Place([](QWidget *parent, QWidget *child) {
        auto *layout = new QFormLayout(parent);
        layout->addRow(QStringLiteral("label"), child);
    });
    QTest::newRow("nested twice") << Place([](QWidget *parent, QWidget *child) {
        auto *layout = new QVBoxLayout(parent);
        auto *row = new QHBoxLayout;
        auto *grid = new QGridLayout;
        layout->addWidget(new QLabel);
        layout->addLayout(row);
        row->addLayout(grid);
        grid->addWidget(child, 0, 0);
    });
}

void tst_UtilsMisc::aWidgetIsReplacedInItsLayout()
{
    QFETCH(Place, place);
    QWidget parent;
    const QPointer<QWidget> oldWidget(new QLineEdit(&parent));
    oldWidget->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Maximum);
    oldWidget->setMaximumSize(300, 200);
    oldWidget->setMinimumSize(30, 20);
    place(&parent, oldWidget);
    parent.show();
    const QRect geometry = oldWidget->geometry();

    auto *newWidget = new QPushButton;
    newWidget->setMinimumSize(400, 400);
    UtilsMisc::ReplaceWidgets(oldWidget, newWidget);
    QVERIFY(!oldWidget);
    QCOMPARE(newWidget->parentWidget(), &parent);
    QCOMPARE(newWidget->sizePolicy().horizontalPolicy(), QSizePolicy::Ignored);
    QCOMPARE(newWidget->sizePolicy().verticalPolicy(), QSizePolicy::Maximum);
    QCOMPARE(newWidget->maximumSize(), QSize(300, 200));
    QCOMPARE(newWidget->minimumSize(), QSize(30, 20));
    newWidget->show();
    parent.layout()->activate();
    QCOMPARE(newWidget->geometry().topLeft(), geometry.topLeft());
}

void tst_UtilsMisc::withoutALayoutNothingIsReplaced()
{
    const auto isUntouched = [](const QWidget &widget) {
        return widget.maximumSize() == QSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX) && !widget.parentWidget();
    };
    QWidget newWidget;
    QWidget topLevel;
    topLevel.setMaximumSize(10, 10);
    UtilsMisc::ReplaceWidgets(&topLevel, &newWidget);
    QVERIFY(isUntouched(newWidget));

    QWidget parent;
    const QPointer<QWidget> child(new QWidget(&parent));
    child->setMaximumSize(10, 10);
    UtilsMisc::ReplaceWidgets(child, &newWidget);
    QVERIFY(child);
    QVERIFY(isUntouched(newWidget));
}

void tst_UtilsMisc::aWidgetOutsideTheLayoutIsKept()
{
    QWidget parent;
    new QVBoxLayout(&parent);
    const QPointer<QWidget> outside(new QWidget(&parent));
    outside->setMaximumSize(10, 10);
    QWidget newWidget;
    UtilsMisc::ReplaceWidgets(outside, &newWidget);
    QVERIFY(outside);
    QVERIFY(!newWidget.parentWidget());
    QCOMPARE(newWidget.maximumSize(), QSize(10, 10));

    parent.layout()->addWidget(outside);
    UtilsMisc::ReplaceWidgets(outside, outside); // nothing to replace it with
    QVERIFY(outside);
    QCOMPARE(parent.layout()->count(), 1);
}

void tst_UtilsMisc::limitsOnlyGetCloser_data()
{
    QTest::addColumn<SetLimit>("setLimit");
    QTest::addColumn<QSize>("minimum");
    QTest::addColumn<QSize>("maximum");
    QTest::addColumn<QSize>("requested");
    QTest::addColumn<QSize>("newMinimum");
    QTest::addColumn<QSize>("newMaximum");
    constexpr QSize Unlimited(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);

    const auto lower = [](const char *name, QSize minimum, QSize maximum, QSize requested, QSize expected) {
        QTest::addRow("maximum, %s", name)
            << SetLimit(UtilsMisc::SetMaximumSize) << minimum << maximum << requested << minimum << expected;
    };
    lower("lowered, and kept above the minimum", {100, 600}, {800, 800}, {500, 500}, {500, 600});
    lower("not raised", {0, 0}, {100, 100}, {500, 50}, {100, 50});
    lower("from no limit", {0, 0}, Unlimited, {320, 240}, {320, 240});
    lower("to no limit", {0, 0}, {10, 20}, Unlimited, {10, 20});
    lower("to nothing", {5, 0}, {10, 20}, {0, 0}, {5, 0});
    lower("no size", {5, 6}, {10, 20}, QSize(), {5, 6});
    lower("minimum above maximum", {50, 50}, {10, 10}, {30, 30}, {10, 10});

    const auto raise = [](const char *name, QSize minimum, QSize maximum, QSize requested, QSize expected) {
        QTest::addRow("minimum, %s", name)
            << SetLimit(UtilsMisc::SetMinimumSize) << minimum << maximum << requested << expected << maximum;
    };
    raise("raised, and kept below the maximum", {100, 100}, {800, 800}, {50, 900}, {100, 800});
    raise("not lowered", {100, 100}, Unlimited, {50, 150}, {100, 150});
    raise("from nothing", {0, 0}, Unlimited, {320, 240}, {320, 240});
    raise("to no limit", {0, 0}, {10, 20}, Unlimited, {10, 20});
    raise("no size", {5, 6}, {10, 20}, QSize(), {5, 6});
    raise("minimum above maximum", {50, 50}, {10, 10}, {70, 70}, {50, 50});
}

void tst_UtilsMisc::limitsOnlyGetCloser()
{
    QFETCH(SetLimit, setLimit);
    QFETCH(QSize, minimum);
    QFETCH(QSize, maximum);
    QFETCH(QSize, requested);
    QFETCH(QSize, newMinimum);
    QFETCH(QSize, newMaximum);
    QWidget widget;
    widget.setMinimumSize(minimum);
    widget.setMaximumSize(maximum);
    setLimit(requested, &widget);
    QCOMPARE(widget.minimumSize(), newMinimum);
    QCOMPARE(widget.maximumSize(), newMaximum);
}

/// Writes down what happens to a widget and the value of its property at that time.
class RecordingStyle : public QProxyStyle
{
public:
    using QProxyStyle::polish;
    using QProxyStyle::unpolish;
    void polish(QWidget *widget) override
    {
        record("polish", widget);
    }
    void unpolish(QWidget *widget) override
    {
        record("unpolish", widget);
    }
    void record(const char *what, const QWidget *widget)
    {
        log.append(QLatin1String(what) + QLatin1Char(' ') + widget->property("role").toString());
    }
    QStringList log;
};

class RecordingWidget : public QWidget
{
public:
    explicit RecordingWidget(RecordingStyle &recordingStyle)
        : style(recordingStyle)
    { }

protected:
    bool event(QEvent *event) override
    {
        if (event->type() == QEvent::DynamicPropertyChange)
            style.record("set", this);
        return QWidget::event(event);
    }

private:
    RecordingStyle &style;
};

void tst_UtilsMisc::aPropertyIsSetThenUnpolishedThenPolished()
{
    RecordingStyle style;
    RecordingWidget widget(style);
    widget.setStyle(&style);
    style.log.clear();
    UtilsMisc::SetProperty(&widget, "role", QStringLiteral("main"));
    QCOMPARE(style.log, QStringList({"set main", "unpolish main", "polish main"}));
    style.log.clear();
    UtilsMisc::SetProperty(&widget, "role", QStringLiteral("main")); // also when nothing changes
    QCOMPARE(style.log, QStringList({"unpolish main", "polish main"}));
}

void tst_UtilsMisc::styleSheetsSeeThePropertyAtOnce()
{
    QWidget window;
    window.setStyleSheet(QStringLiteral("QFrame[background-color=\"main\"] { min-width: 123px; }"));
    auto *frame = new QFrame(&window);
    window.ensurePolished();
    frame->ensurePolished();
    QCOMPARE(frame->minimumWidth(), 0);
    UtilsMisc::SetProperty(frame, "background-color", QStringLiteral("main"));
    QCOMPARE(frame->property("background-color"), QVariant(QStringLiteral("main")));
    QCOMPARE(frame->minimumWidth(), 123);
}

void tst_UtilsMisc::nullIsIgnored()
{
    QWidget widget;
    UtilsMisc::SaveMainWindowState(nullptr);
    UtilsMisc::RestoreMainWindowState(nullptr);
    UtilsMisc::ReplaceWidgets(nullptr, &widget);
    UtilsMisc::ReplaceWidgets(&widget, nullptr);
    UtilsMisc::ReplaceWidgets(nullptr, nullptr);
    UtilsMisc::SetMaximumSize(QSize(1, 1), nullptr);
    UtilsMisc::SetMinimumSize(QSize(1, 1), nullptr);
    UtilsMisc::SetProperty(nullptr, "role", 1);
}

UNIPROG_TEST_MAIN(tst_UtilsMisc)
#include "tst_utilsmisc.moc"
