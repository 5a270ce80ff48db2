#include <UtilsProgressBar.h>

#include <UniProgTest.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QProxyStyle>
#include <QSignalSpy>
#include <QStyleFactory>
#include <QVariantAnimation>

#include <algorithm>
#include <limits>
#include <memory>

class tst_UtilsProgressBar : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void itStartsRegularAtZero();

    void theRangeChoosesTheType_data();
    void theRangeChoosesTheType();
    void theStyleIsPolishedAnewBeforeTheRangeChanges();
    void theSameRangeIsPaintedAnew();
    void aStyleSheetSeesTheTypeChange();

    void theFirstAndTheSecondChangePlayInSequence();
    void rapidChangesAreNotDropped();
    void aChangeStartsFromTheValueRequestedLast();
    void aResetToZeroTakesNoTime();
    void theDurationAppliesToLaterChanges();
    void theBarGlidesWithoutEasing_data();
    void theBarGlidesWithoutEasing();
    void aDurationPastTheLimitOfAnAnimationIsAccepted();
    void aValueOutsideTheRangeIsNotShown();

    void aPlainProgressBarPointerSetsAtOnce();
    void aConnectionByNameSetsAtOnce();
    void itMayGoWhileChangesRunAndWait();
    void aChangeMayBeRequestedInsideValueChanged_data();
    void aChangeMayBeRequestedInsideValueChanged();
};

namespace {

constexpr unsigned int ShortDuration = 40;
constexpr unsigned int OneHour = 3600000;

QList<int> recordedValues(const QSignalSpy &spy)
{
    QList<int> values;
    for (const QList<QVariant> &arguments : spy)
        values.append(arguments.first().toInt());
    return values;
}

/// Writes down how the style of a bar is taken off and put on, with the maximum and the type the bar has then.
class RecordingStyle : public QProxyStyle
{
public:
    RecordingStyle()
        : QProxyStyle(QStyleFactory::create(QStringLiteral("fusion")))
    { }

    using QProxyStyle::polish;
    using QProxyStyle::unpolish;

    void polish(QWidget *widget) override
    {
        record(QStringLiteral("polish"), widget);
        QProxyStyle::polish(widget);
    }

    void unpolish(QWidget *widget) override
    {
        record(QStringLiteral("unpolish"), widget);
        QProxyStyle::unpolish(widget);
    }

    QStringList events;

private:
    void record(const QString &event, QWidget *widget)
    {
        if (const auto *bar = qobject_cast<UtilsProgressBar *>(widget))
            events.append(QStringLiteral("%1 %2 %3")
                              .arg(event, bar->property("progressbar-type").toString())
                              .arg(bar->maximum()));
    }
};

} // namespace

void tst_UtilsProgressBar::itStartsRegularAtZero()
{
    QWidget parent;
    const UtilsProgressBar bar(&parent);
    QCOMPARE(bar.parentWidget(), &parent);
    QCOMPARE(bar.value(), 0);
    QCOMPARE(bar.minimum(), 0);
    QCOMPARE(bar.maximum(), 100);
    QCOMPARE(bar.property("progressbar-type"), QVariant(QStringLiteral("regular")));
}

void tst_UtilsProgressBar::theRangeChoosesTheType_data()
{
    QTest::addColumn<int>("minimum");
    QTest::addColumn<int>("maximum");
    QTest::addColumn<QString>("type");
    QTest::newRow("0 to 0") << 0 << 0 << QStringLiteral("infinite");
    QTest::newRow("0 to 100") << 0 << 100 << QStringLiteral("regular");
    QTest::newRow("0 to 1") << 0 << 1 << QStringLiteral("regular");
    QTest::newRow("-1 to 0") << -1 << 0 << QStringLiteral("regular");
    QTest::newRow("empty, but not at 0") << 7 << 7 << QStringLiteral("regular");
    QTest::newRow("widest") << std::numeric_limits<int>::min() << std::numeric_limits<int>::max()
                            << QStringLiteral("regular");
}

void tst_UtilsProgressBar::theRangeChoosesTheType()
{
    QFETCH(int, minimum);
    QFETCH(int, maximum);
    QFETCH(QString, type);
    UtilsProgressBar bar;
    for (const auto &before : {std::pair<int, int>(0, 0), std::pair<int, int>(0, 100)}) {
        bar.setRange(before.first, before.second);
        bar.setRange(minimum, maximum);
        QCOMPARE(bar.property("progressbar-type"), QVariant(type));
        QCOMPARE(bar.minimum(), minimum);
        QCOMPARE(bar.maximum(), maximum);
    }
}

void tst_UtilsProgressBar::theStyleIsPolishedAnewBeforeTheRangeChanges()
{
    RecordingStyle style;
    UtilsProgressBar bar;
    bar.setStyle(&style);
    style.events.clear();
    bar.setRange(0, 0);
    QCOMPARE(style.events,
             QStringList({QStringLiteral("unpolish infinite 100"), QStringLiteral("polish infinite 100")}));
    style.events.clear();
    bar.setRange(0, 50);
    QCOMPARE(style.events, QStringList({QStringLiteral("unpolish regular 0"), QStringLiteral("polish regular 0")}));
    bar.setStyle(nullptr);
}

void tst_UtilsProgressBar::theSameRangeIsPaintedAnew()
{
    // A style may look different after polishing without asking for a paint.
    class PaintCounter : public QObject
    {
    public:
        bool eventFilter(QObject *, QEvent *event) override
        {
            paints += event->type() == QEvent::Paint ? 1 : 0;
            return false;
        }
        int paints = 0;
    } counter;
    UtilsProgressBar bar;
    bar.show();
    QVERIFY(QTest::qWaitForWindowExposed(&bar));
    QCoreApplication::processEvents();
    bar.installEventFilter(&counter);
    QCoreApplication::processEvents();
    QCOMPARE(counter.paints, 0);
    bar.setRange(0, 100);
    QTRY_COMPARE(counter.paints, 1);
}

void tst_UtilsProgressBar::aStyleSheetSeesTheTypeChange()
{
    UtilsProgressBar bar;
    bar.setTextVisible(false);
    bar.setStyleSheet(QStringLiteral("UtilsProgressBar { border: 0px; background: #000000; }"
                                     "UtilsProgressBar[progressbar-type=\"regular\"] { background: #00ff00; }"
                                     "UtilsProgressBar[progressbar-type=\"infinite\"] { background: #0000ff; }"
                                     "UtilsProgressBar::chunk { background: transparent; }"));
    bar.resize(100, 10);
    QCOMPARE(bar.grab().toImage().pixelColor(50, 5), QColor(0, 255, 0));
    bar.setRange(0, 0);
    QCOMPARE(bar.grab().toImage().pixelColor(50, 5), QColor(0, 0, 255));
    bar.setRange(0, 100);
    QCOMPARE(bar.grab().toImage().pixelColor(50, 5), QColor(0, 255, 0));
}

void tst_UtilsProgressBar::theFirstAndTheSecondChangePlayInSequence()
{
    UtilsProgressBar bar;
    QSignalSpy changes(&bar, &QProgressBar::valueChanged);
    QElapsedTimer clock;
    qint64 at50 = -1;
    connect(&bar, &QProgressBar::valueChanged, &bar, [&](int value) {
        if (value == 50 && at50 < 0)
            at50 = clock.elapsed();
    });

    clock.start();
    bar.setAnimationDuration(200);
    bar.setValue(50);
    bar.setValue(80);
    QTRY_COMPARE(bar.value(), 80);
    const qint64 at80 = clock.elapsed();

    const QList<int> values = recordedValues(changes);
    QVERIFY(values.contains(50));
    QVERIFY(std::is_sorted(values.cbegin(), values.cend()));
    // An animation never ends early, so each of the two took the stored duration; a millisecond goes in rounding.
    QVERIFY2(at50 >= 199, qPrintable(QString::number(at50)));
    QVERIFY2(at80 - at50 >= 199, qPrintable(QString::number(at80 - at50)));
}

void tst_UtilsProgressBar::rapidChangesAreNotDropped()
{
    UtilsProgressBar bar;
    bar.setAnimationDuration(2);
    QSignalSpy changes(&bar, &QProgressBar::valueChanged);
    for (const int value : {90, 10, 70, 0, 40})
        bar.setValue(value);
    QTRY_COMPARE(recordedValues(changes).count(40) > 0 && bar.value() == 40, true);

    // Every requested value was reached, in the order of the requests.
    qsizetype from = 0;
    const QList<int> values = recordedValues(changes);
    for (const int value : {90, 10, 70, 0, 40}) {
        from = values.indexOf(value, from);
        QVERIFY2(from >= 0, qPrintable(QString::number(value)));
    }
}

void tst_UtilsProgressBar::aChangeStartsFromTheValueRequestedLast()
{
    UtilsProgressBar bar;
    bar.setAnimationDuration(0);
    bar.setValue(50);
    QCOMPARE(bar.value(), 50);

    static_cast<QProgressBar &>(bar).setValue(10); // the bar stands elsewhere now
    bar.setAnimationDuration(ShortDuration);
    QSignalSpy changes(&bar, &QProgressBar::valueChanged);
    bar.setValue(80);
    QTRY_COMPARE(bar.value(), 80);
    QCOMPARE(recordedValues(changes).first(), 50);
}

void tst_UtilsProgressBar::aResetToZeroTakesNoTime()
{
    UtilsProgressBar bar;
    bar.setAnimationDuration(0);
    bar.setValue(60);
    bar.setAnimationDuration(OneHour);
    bar.setValue(0);
    QTRY_COMPARE(bar.value(), 0);
}

void tst_UtilsProgressBar::theDurationAppliesToLaterChanges()
{
    UtilsProgressBar bar;
    bar.setAnimationDuration(ShortDuration);
    bar.setValue(20);
    bar.setValue(30);
    bar.setAnimationDuration(OneHour);
    bar.setValue(90);
    QTRY_COMPARE(bar.value(), 30);
}

void tst_UtilsProgressBar::theBarGlidesWithoutEasing_data()
{
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("to");
    QTest::addColumn<int>("setDuration");
    QTest::addColumn<int>("duration");
    QTest::newRow("as long as it does by itself") << 0 << 1000 << -1 << 100;
    QTest::newRow("as long as it was told") << 0 << 1000 << 300 << 300;
    QTest::newRow("back to 0") << 1000 << 0 << 300 << 1;
}

void tst_UtilsProgressBar::theBarGlidesWithoutEasing()
{
    QFETCH(int, from);
    QFETCH(int, to);
    QFETCH(int, setDuration);
    QFETCH(int, duration);
    // A linear animation that starts in the same turn is driven by the same clock, so the two go side by side.
    UtilsProgressBar bar;
    bar.setRange(0, 1000);
    if (from != 0) {
        bar.setAnimationDuration(0);
        bar.setValue(from);
    }
    if (setDuration >= 0)
        bar.setAnimationDuration(unsigned(setDuration));
    QVariantAnimation linear;
    linear.setDuration(duration);
    linear.setStartValue(from);
    linear.setEndValue(to);
    int furthestApart = 0;
    connect(&linear, &QVariantAnimation::valueChanged, &bar, [&](const QVariant &expected) {
        furthestApart = qMax(furthestApart, qAbs(expected.toInt() - bar.value()));
    });

    bar.setValue(to);
    QCOMPARE(bar.value(), from);
    linear.start();
    QTRY_VERIFY(linear.state() == QAbstractAnimation::Stopped);
    QCOMPARE(bar.value(), to);
    QVERIFY2(furthestApart <= 1, qPrintable(QString::number(furthestApart)));
}

void tst_UtilsProgressBar::aDurationPastTheLimitOfAnAnimationIsAccepted()
{
    UtilsProgressBar bar;
    bar.setAnimationDuration(std::numeric_limits<unsigned int>::max());
    bar.setValue(100);
    QCOMPARE(bar.value(), 0);
}

void tst_UtilsProgressBar::aValueOutsideTheRangeIsNotShown()
{
    UtilsProgressBar bar;
    bar.setAnimationDuration(ShortDuration);
    QSignalSpy changes(&bar, &QProgressBar::valueChanged);
    bar.setValue(120);
    bar.setValue(50);
    QTRY_COMPARE(bar.value(), 50);
    for (const int value : recordedValues(changes))
        QVERIFY(value >= 0 && value <= 100);
}

void tst_UtilsProgressBar::aPlainProgressBarPointerSetsAtOnce()
{
    UtilsProgressBar bar;
    bar.setAnimationDuration(OneHour);
    QProgressBar *plain = &bar;
    plain->setValue(70);
    QCOMPARE(bar.value(), 70);
    plain->setRange(0, 0);
    QCOMPARE(bar.property("progressbar-type"), QVariant(QStringLiteral("regular")));
}

void tst_UtilsProgressBar::aConnectionByNameSetsAtOnce()
{
    UtilsProgressBar bar;
    bar.setAnimationDuration(OneHour);
    QProgressBar source;
    QVERIFY(connect(&source, SIGNAL(valueChanged(int)), &bar, SLOT(setValue(int))));
    source.setValue(33);
    QCOMPARE(bar.value(), 33);
}

void tst_UtilsProgressBar::itMayGoWhileChangesRunAndWait()
{
    auto bar = std::make_unique<UtilsProgressBar>();
    bar->setAnimationDuration(OneHour);
    bar->setValue(50);
    bar->setValue(80);
    bar->setValue(100);
    bar.reset();
    // The animations go with the bar (a leak would be reported by the sanitizer's run of this test), without warnings.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QTest::qWait(0);
}

void tst_UtilsProgressBar::aChangeMayBeRequestedInsideValueChanged_data()
{
    QTest::addColumn<int>("duration");
    QTest::newRow("gliding") << int(ShortDuration);
    QTest::newRow("immediate") << 0;
}

void tst_UtilsProgressBar::aChangeMayBeRequestedInsideValueChanged()
{
    QFETCH(int, duration);
    UtilsProgressBar bar;
    bar.setAnimationDuration(unsigned(duration));
    const QSignalSpy changes(&bar, &QProgressBar::valueChanged);
    connect(&bar, &QProgressBar::valueChanged, &bar, [&](int value) {
        if (value == 50) {
            bar.setAnimationDuration(ShortDuration);
            bar.setValue(75);
        }
    });
    bar.setValue(50);
    QTRY_COMPARE(bar.value(), 75);
    bar.setValue(90);
    QTRY_COMPARE(bar.value(), 90);
    // Each change began where the one before had ended.
    const QList<int> values = recordedValues(changes);
    QVERIFY(std::is_sorted(values.cbegin(), values.cend()));
}

UNIPROG_TEST_MAIN(tst_UtilsProgressBar)

#include "tst_utilsprogressbar.moc"
