#include <UtilsFade.h>
#include <UtilsStackedWidget.h>

#include <ReferenceAnimation.h>
#include <UniProgTest.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QGraphicsDropShadowEffect>
#include <QGraphicsOpacityEffect>
#include <QLabel>
#include <QPointer>
#include <QSignalSpy>

#include <algorithm>
#include <functional>
#include <memory>
#include <utility>

class tst_UtilsStackedWidget : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void itStartsEmpty();
    void aPlainStackSwitchesAtOnce();
    void anIndexPastTheLastPageChangesNothing_data();
    void anIndexPastTheLastPageChangesNothing();
    void aWidgetThatIsNoPageChangesNothing_data();
    void aWidgetThatIsNoPageChangesNothing();
    void theSlotsAreReachedByName_data();
    void theSlotsAreReachedByName();
    void aPlainStackPointerSwitchesAtOnce();

    void anAnimatedStackSwitchesWhenTheOldPageHasFaded();
    void theFadesKeepTheirRange();
    void theFadesTakeTheirTime();
    void changingToTheCurrentPageFadesIt();
    void aSecondChangeWins_data();
    void aSecondChangeWins();
    void aSecondChangeFadesThePageOutAnew();
    void manyRapidChangesEndAtTheLast();
    void aPageThatWasLeftIsOpaqueForWhoeverShowsItNext();

    void theTargetPageMayGoMeanwhile_data();
    void theTargetPageMayGoMeanwhile();
    void theCurrentPageMayGoMeanwhile();
    void allPagesMayGoMeanwhile();
    void anotherEffectOnTheFadingPageDoesNotStopTheChange();
    void theStackMayGoMeanwhile();
    void currentChangedMayAskForAnotherPage();
    void currentChangedMayDeleteThePage();
};

namespace {

constexpr int Settled = 30000; // cap of a wait, ms
constexpr int LongerThanAFade = 320;

double opacity(const QWidget *page)
{
    const auto *effect = qobject_cast<QGraphicsOpacityEffect *>(page->graphicsEffect());
    return effect ? effect->opacity() : 1.0;
}

bool isOpaque(const QWidget *page)
{
    return qFuzzyCompare(opacity(page), 1.0);
}

/// A shown stack with the pages "0", "1", ..., in a window of its own.
class Stack : public UtilsStackedWidget
{
public:
    explicit Stack(bool animated, int pages = 3)
        : UtilsStackedWidget(nullptr, animated)
    {
        for (int i = 0; i < pages; ++i)
            addWidget(new QLabel(QString::number(i)));
        resize(100, 50);
        show();
    }

    /// Waits until @p page has been current and opaque for longer than a fade lasts: a fade may still have to begin.
    bool settlesAt(QWidget *page) const
    {
        QElapsedTimer calm;
        const auto isSettled = [&] {
            if (currentWidget() != page || !page->isVisible() || !isOpaque(page))
                calm.invalidate();
            else if (!calm.isValid())
                calm.start();
            return calm.isValid() && calm.elapsed() > LongerThanAFade;
        };
        return QTest::qWaitFor(isSettled, Settled);
    }

    /// Waits until the opacity of what is shown has changed @p steps times on the way to @p page, or @p page is there.
    bool takesStepsTo(QWidget *page, int steps) const
    {
        int seen = 0;
        double last = opacity(currentWidget());
        const auto isThatFar = [&] {
            const double now = opacity(currentWidget());
            if (!qFuzzyCompare(now, std::exchange(last, now)))
                ++seen;
            return seen >= steps || (currentWidget() == page && isOpaque(page));
        };
        return QTest::qWaitFor(isThatFar, Settled);
    }
};

/// Waits until a change that begins now has come to its end: what was begun before is at its end by then, too.
void letFadesEnd()
{
    Stack later(true);
    later.setCurrentIndex(1);
    QVERIFY(later.settlesAt(later.widget(1)));
}

} // namespace

void tst_UtilsStackedWidget::itStartsEmpty()
{
    QWidget parent;
    const UtilsStackedWidget stack(&parent, true);
    QCOMPARE(stack.parentWidget(), &parent);
    QCOMPARE(stack.count(), 0);
    QCOMPARE(stack.currentIndex(), -1);
}

void tst_UtilsStackedWidget::aPlainStackSwitchesAtOnce()
{
    Stack stack(false);
    stack.setCurrentWidget(stack.widget(2));
    QCOMPARE(stack.currentIndex(), 2);
    stack.setCurrentIndex(1);
    QCOMPARE(stack.currentIndex(), 1);
    stack.setCurrentIndex(1);
    QCOMPARE(stack.currentIndex(), 1);
    for (int i = 0; i < stack.count(); ++i)
        QVERIFY(!stack.widget(i)->graphicsEffect());
}

void tst_UtilsStackedWidget::anIndexPastTheLastPageChangesNothing_data()
{
    QTest::addColumn<bool>("animated");
    QTest::addColumn<int>("index");
    for (const bool animated : {false, true}) {
        const char *kind = animated ? "animated" : "plain";
        QTest::addRow("%s, one past the last", kind) << animated << 3;
        QTest::addRow("%s, far past the last", kind) << animated << 1000;
        QTest::addRow("%s, negative", kind) << animated << -1;
    }
}

void tst_UtilsStackedWidget::anIndexPastTheLastPageChangesNothing()
{
    QFETCH(bool, animated);
    QFETCH(int, index);
    Stack stack(animated);
    QSignalSpy changes(&stack, &QStackedWidget::currentChanged);
    stack.setCurrentIndex(index);
    QCOMPARE(stack.currentIndex(), 0);
    QVERIFY(!stack.currentWidget()->graphicsEffect());
    QCOMPARE(changes.count(), 0);

    UtilsStackedWidget empty(nullptr, animated);
    empty.setCurrentIndex(index);
    empty.setCurrentIndex(0);
    QCOMPARE(empty.currentIndex(), -1);
}

void tst_UtilsStackedWidget::aWidgetThatIsNoPageChangesNothing_data()
{
    QTest::addColumn<bool>("animated");
    QTest::newRow("plain") << false;
    QTest::newRow("animated") << true;
}

void tst_UtilsStackedWidget::aWidgetThatIsNoPageChangesNothing()
{
    QFETCH(bool, animated);
    QWidget stranger;
    Stack stack(animated);
    stack.setCurrentWidget(&stranger);
    stack.setCurrentWidget(nullptr);
    QCOMPARE(stack.currentIndex(), 0);
    QVERIFY(!stack.currentWidget()->graphicsEffect());

    UtilsStackedWidget empty(nullptr, animated);
    empty.setCurrentWidget(&stranger);
    empty.setCurrentWidget(nullptr);
    QCOMPARE(empty.currentIndex(), -1);
}

void tst_UtilsStackedWidget::theSlotsAreReachedByName_data()
{
    QTest::addColumn<QByteArray>("slot");
    QTest::newRow("setCurrentIndex") << QByteArray("setCurrentIndex(int)");
    QTest::newRow("setCurrentWidget") << QByteArray("setCurrentWidget(QWidget*)");
    QTest::newRow("slotEndChangeCurrent") << QByteArray("slotEndChangeCurrent()");
}

void tst_UtilsStackedWidget::theSlotsAreReachedByName()
{
    QFETCH(QByteArray, slot);
    const QMetaObject &own = UtilsStackedWidget::staticMetaObject;
    const int index = own.indexOfSlot(slot.constData());
    QVERIFY(index >= own.methodOffset()); // not the one of QStackedWidget
}

void tst_UtilsStackedWidget::aPlainStackPointerSwitchesAtOnce()
{
    Stack stack(true);
    QStackedWidget *plain = &stack;
    plain->setCurrentIndex(2);
    QCOMPARE(stack.currentIndex(), 2);
    QVERIFY(!stack.currentWidget()->graphicsEffect());
}

void tst_UtilsStackedWidget::anAnimatedStackSwitchesWhenTheOldPageHasFaded()
{
    Stack stack(true);
    QSignalSpy changes(&stack, &QStackedWidget::currentChanged);
    stack.setCurrentIndex(1);
    QCOMPARE(stack.currentIndex(), 0);
    const QPointer<QGraphicsEffect> leaving = stack.widget(0)->graphicsEffect();
    QVERIFY(leaving);
    QVERIFY(!stack.widget(1)->graphicsEffect());

    QVERIFY(changes.wait());
    QCOMPARE(stack.currentIndex(), 1);
    const auto *effect = qobject_cast<QGraphicsOpacityEffect *>(stack.widget(1)->graphicsEffect());
    QVERIFY(effect);
    QCOMPARE(effect->opacity(), 0.3);
    QVERIFY(stack.settlesAt(stack.widget(1)));
    QCOMPARE(changes.count(), 1);
}

void tst_UtilsStackedWidget::theFadesKeepTheirRange()
{
    Stack stack(true);
    stack.setCurrentIndex(1);
    const auto *out = qobject_cast<QGraphicsOpacityEffect *>(stack.widget(0)->graphicsEffect());
    QVERIFY(out);
    QCOMPARE(out->opacity(), 1.0);
    QList<double> seen;
    connect(out, &QGraphicsOpacityEffect::opacityChanged, &stack, [&](double opacity) {
        if (stack.currentIndex() == 0)
            seen.append(opacity);
    });
    QTRY_COMPARE(stack.currentIndex(), 1);
    QVERIFY(!seen.isEmpty());
    QVERIFY(std::is_sorted(seen.crbegin(), seen.crend()));
    QCOMPARE(seen.last(), 0.3);
}

void tst_UtilsStackedWidget::theFadesTakeTheirTime()
{
    const auto effectOf
        = [](const QWidget *page) { return qobject_cast<QGraphicsOpacityEffect *>(page->graphicsEffect()); };
    Stack leaving(true);
    leaving.setCurrentIndex(1);
    const ReferenceAnimation out(effectOf(leaving.widget(0)), "opacity", 1.0, 0.3, 90);
    Stack arriving(true);
    arriving.setCurrentIndex(1);
    arriving.slotEndChangeCurrent();
    QCOMPARE(arriving.currentIndex(), 1);
    const ReferenceAnimation in(effectOf(arriving.widget(1)), "opacity", 0.3, 1.0, 200);
    QTRY_VERIFY(out.hasEnded() && in.hasEnded());
    QVERIFY(out.agrees());
    QVERIFY(in.agrees());
}

void tst_UtilsStackedWidget::changingToTheCurrentPageFadesIt()
{
    Stack stack(true);
    QSignalSpy changes(&stack, &QStackedWidget::currentChanged);
    stack.setCurrentIndex(0);
    QVERIFY(stack.currentWidget()->graphicsEffect());
    QTRY_VERIFY(!isOpaque(stack.currentWidget()));
    QVERIFY(stack.settlesAt(stack.widget(0)));
    QCOMPARE(changes.count(), 0);
}

void tst_UtilsStackedWidget::aSecondChangeWins_data()
{
    using Moment = std::function<bool(const Stack &)>;
    QTest::addColumn<Moment>("moment");
    QTest::newRow("at once") << Moment([](const Stack &) { return true; });
    QTest::newRow("while the old page goes")
        << Moment([](const Stack &stack) { return stack.currentIndex() == 1 || opacity(stack.widget(0)) < 0.9; });
    QTest::newRow("when the new page is there") << Moment([](const Stack &stack) { return stack.currentIndex() == 1; });
    QTest::newRow("while the new page comes")
        << Moment([](const Stack &stack) { return stack.currentIndex() == 1 && opacity(stack.widget(1)) > 0.5; });
    QTest::newRow("when the new page has come")
        << Moment([](const Stack &stack) { return stack.currentIndex() == 1 && opacity(stack.widget(1)) > 0.95; });
}

void tst_UtilsStackedWidget::aSecondChangeWins()
{
    using Moment = std::function<bool(const Stack &)>;
    QFETCH(Moment, moment);
    Stack back(true);
    Stack again(true);
    Stack further(true);
    for (Stack *stack : {&back, &again, &further})
        stack->setCurrentIndex(1);
    QTRY_VERIFY(moment(back)); // one clock drives all three
    back.setCurrentIndex(0);
    again.setCurrentIndex(1);
    further.setCurrentIndex(2);

    QVERIFY(back.settlesAt(back.widget(0)));
    QVERIFY(again.settlesAt(again.widget(1)));
    QVERIFY(further.settlesAt(further.widget(2)));
    for (const Stack *stack : {&back, &again, &further}) {
        for (int i = 0; i < stack->count(); ++i)
            QVERIFY(isOpaque(stack->widget(i)));
    }
}

void tst_UtilsStackedWidget::aSecondChangeFadesThePageOutAnew()
{
    Stack stack(true);
    QWidget *page = stack.currentWidget();
    QList<double> opacitiesWhenLeft;
    connect(&stack, &QStackedWidget::currentChanged, &stack, [&] {
        opacitiesWhenLeft.append(opacity(page));
        page = stack.currentWidget();
    });
    stack.setCurrentIndex(1);
    QTRY_VERIFY(!isOpaque(stack.widget(0)));
    stack.setCurrentIndex(2);
    QTRY_COMPARE(stack.currentIndex(), 2);
    for (const double left : opacitiesWhenLeft)
        QCOMPARE(left, 0.3);
}

void tst_UtilsStackedWidget::manyRapidChangesEndAtTheLast()
{
    Stack stack(true, 5);
    for (int i = 0; i < 60; ++i) {
        stack.setCurrentIndex(i % 5);
        QVERIFY(stack.takesStepsTo(stack.widget(i % 5), i % 4));
    }
    stack.setCurrentIndex(3);
    QVERIFY(stack.settlesAt(stack.widget(3)));
    for (int i = 0; i < stack.count(); ++i)
        QVERIFY(isOpaque(stack.widget(i)));
}

void tst_UtilsStackedWidget::aPageThatWasLeftIsOpaqueForWhoeverShowsItNext()
{
    Stack stack(true);
    stack.setCurrentIndex(1);
    QVERIFY(stack.settlesAt(stack.widget(1)));
    static_cast<QStackedWidget &>(stack).setCurrentIndex(0);
    QVERIFY(isOpaque(stack.widget(0)));
}

void tst_UtilsStackedWidget::theTargetPageMayGoMeanwhile_data()
{
    QTest::addColumn<bool>("deleted");
    QTest::newRow("deleted") << true;
    QTest::newRow("removed") << false;
}

void tst_UtilsStackedWidget::theTargetPageMayGoMeanwhile()
{
    QFETCH(bool, deleted);
    Stack stack(true);
    std::unique_ptr<QWidget> target(stack.widget(1));
    stack.setCurrentWidget(target.get());
    stack.removeWidget(target.get());
    if (deleted)
        target.reset();
    QVERIFY(stack.settlesAt(stack.widget(0)));
}

void tst_UtilsStackedWidget::theCurrentPageMayGoMeanwhile()
{
    Stack stack(true);
    QWidget *target = stack.widget(2);
    stack.setCurrentWidget(target);
    delete stack.widget(0);
    QVERIFY(stack.settlesAt(target));
}

void tst_UtilsStackedWidget::allPagesMayGoMeanwhile()
{
    Stack stack(true);
    stack.setCurrentIndex(2);
    while (stack.count() > 0)
        delete stack.widget(0);
    letFadesEnd();
    QCOMPARE(stack.currentIndex(), -1);

    stack.addWidget(new QLabel);
    stack.addWidget(new QLabel);
    stack.setCurrentIndex(1);
    QVERIFY(stack.settlesAt(stack.widget(1)));
}

void tst_UtilsStackedWidget::anotherEffectOnTheFadingPageDoesNotStopTheChange()
{
    Stack stack(true);
    stack.setCurrentIndex(1);
    stack.widget(0)->setGraphicsEffect(new QGraphicsDropShadowEffect);
    QVERIFY(stack.settlesAt(stack.widget(1)));

    // A fade of the application's own keeps the range it was made with.
    stack.setCurrentIndex(2);
    auto *fade = new UtilsFade(stack.widget(1), nullptr, 20, 20);
    fade->SelfDestroyEnabled(true);
    fade->Out(nullptr);
    QVERIFY(stack.settlesAt(stack.widget(2)));
    QCOMPARE(qobject_cast<QGraphicsOpacityEffect *>(stack.widget(1)->graphicsEffect())->opacity(), 0.0);
}

void tst_UtilsStackedWidget::theStackMayGoMeanwhile()
{
    auto stack = std::make_unique<Stack>(true);
    stack->setCurrentIndex(1);
    stack.reset();
    stack = std::make_unique<Stack>(true);
    stack->setCurrentIndex(1);
    QTRY_COMPARE(stack->currentIndex(), 1);
    stack.reset();
    letFadesEnd(); // without their stack
}

void tst_UtilsStackedWidget::currentChangedMayAskForAnotherPage()
{
    Stack stack(true);
    double opacityWhenLeft = 1.0;
    connect(&stack, &QStackedWidget::currentChanged, &stack, [&](int index) {
        if (index == 1)
            stack.setCurrentIndex(2);
        else
            opacityWhenLeft = opacity(stack.widget(1));
    });
    stack.setCurrentIndex(1);
    QVERIFY(stack.settlesAt(stack.widget(2)));
    QCOMPARE(opacityWhenLeft, 0.3); // it faded out, too
}

void tst_UtilsStackedWidget::currentChangedMayDeleteThePage()
{
    Stack stack(true);
    const QPointer<QWidget> page = stack.widget(1);
    connect(&stack, &QStackedWidget::currentChanged, &stack, [&](int index) {
        if (page && stack.widget(index) == page)
            delete page;
    });
    stack.setCurrentIndex(1);
    QTRY_VERIFY(page.isNull());
    QVERIFY(stack.currentWidget());
    QVERIFY(stack.settlesAt(stack.currentWidget()));
}

UNIPROG_TEST_MAIN(tst_UtilsStackedWidget)

#include "tst_utilsstackedwidget.moc"
