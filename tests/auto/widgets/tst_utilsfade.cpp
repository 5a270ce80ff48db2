#include <UtilsFade.h>

#include <ReferenceAnimation.h>
#include <UniProgTest.h>

#include <QApplication>
#include <QGraphicsColorizeEffect>
#include <QGraphicsOpacityEffect>
#include <QSignalSpy>
#include <QWidget>

namespace {

constexpr int Short = 40; // ms
constexpr int Endless = 600'000; // ms, longer than any test

QGraphicsOpacityEffect *opacityEffect(const QWidget &widget)
{
    return qobject_cast<QGraphicsOpacityEffect *>(widget.graphicsEffect());
}

/// Hears of the ends of fades and writes down the opacity it found then.
class Receiver : public QObject
{
    Q_OBJECT

public:
    explicit Receiver(QWidget *watched)
        : widget(watched)
    { }

    QStringList log;

public Q_SLOTS:
    void slotFadeInFinished()
    {
        note("in");
    }
    void slotFadeOutFinished()
    {
        note("out");
    }

private:
    void note(const char *what)
    {
        const QGraphicsOpacityEffect *effect = widget ? opacityEffect(*widget) : nullptr;
        log << QStringLiteral("%1 %2").arg(QLatin1String(what)).arg(effect ? effect->opacity() : -1.0);
    }

    QPointer<QWidget> widget;
};

} // namespace

class tst_UtilsFade : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void theEffectIsInstalledAndShowsTheWidgetAsItWas();
    void inRunsFromTheMinimumToTheMaximum();
    void outRunsFromTheMaximumToTheMinimum();
    void theOpacityGoesSlowlyAtBothEnds();
    void theRangeCanBeSet();
    void setDurationsHoldForLaterFades();
    void anOutDuringAnInRunsAfterIt();
    void aNullSlotOrReceiverIsNotConnected();
    void aFadeOfDurationZeroHasEndedBeforeTheSlotIsConnected();
    void aQueuedFadeOfDurationZeroReachesTheSlot();

    void withSelfDestroyTheFadeGoesAfterItsLastFade();
    void withoutSelfDestroyTheFadeStays();
    void aClearedListReportsNothingAndLeavesNothingBehind();
    void aDeletedFadeLetsTheRunningOneEnd();

    void anAccidentEndsTheFade_data();
    void anAccidentEndsTheFade();
    void theReceiverMayDieFirst();
    void theReceiverMayDeleteTheFade();
    void aFadeMayBeDeletedInItsFirstStep();
    void aSecondFadeOfTheWidgetEndsTheFirst();
    void aFadeWithoutWidgetEndsAtOnce();
};

void tst_UtilsFade::theEffectIsInstalledAndShowsTheWidgetAsItWas()
{
    QWidget widget;
    {
        UtilsFade fade(&widget, nullptr, Short, Short);
        QCOMPARE(fade.parent(), nullptr);
        QVERIFY(opacityEffect(widget));
        QCOMPARE(opacityEffect(widget)->parent(), &widget);
        QCOMPARE(opacityEffect(widget)->opacity(), 1.0);
    }
    QVERIFY(opacityEffect(widget)); // it belongs to the widget
}

void tst_UtilsFade::inRunsFromTheMinimumToTheMaximum()
{
    QWidget widget;
    Receiver receiver(&widget);
    UtilsFade fade(&widget, &receiver, Short, Endless);
    fade.In(SLOT(slotFadeInFinished()));
    QCOMPARE(opacityEffect(widget)->opacity(), 0.0);
    QTRY_COMPARE(receiver.log, QStringList("in 1"));
}

void tst_UtilsFade::outRunsFromTheMaximumToTheMinimum()
{
    QWidget widget;
    Receiver receiver(&widget);
    UtilsFade fade(&widget, &receiver, Endless, Short);
    opacityEffect(widget)->setOpacity(0.3);
    fade.Out("1slotFadeOutFinished()");
    QCOMPARE(opacityEffect(widget)->opacity(), 1.0);
    QTRY_COMPARE(receiver.log, QStringList("out 0"));
}

void tst_UtilsFade::theOpacityGoesSlowlyAtBothEnds()
{
    constexpr int Visible = 300; // ms, several steps on a busy machine
    QWidget in;
    QWidget out;
    UtilsFade fadeIn(&in, nullptr, Visible, Endless);
    UtilsFade fadeOut(&out, nullptr, Endless, Visible);
    fadeIn.In(nullptr);
    fadeOut.Out(nullptr);
    const ReferenceAnimation rising(opacityEffect(in), "opacity", 0.0, 1.0, Visible);
    const ReferenceAnimation falling(opacityEffect(out), "opacity", 1.0, 0.0, Visible);
    QTRY_VERIFY(rising.hasEnded() && falling.hasEnded());
    QVERIFY(rising.agrees());
    QVERIFY(falling.agrees());
}

void tst_UtilsFade::theRangeCanBeSet()
{
    QWidget widget;
    Receiver receiver(&widget);
    UtilsFade fade(&widget, &receiver, Short, Short);
    fade.SetOpacity(0.25, 0.75);
    fade.In(SLOT(slotFadeInFinished()));
    QCOMPARE(opacityEffect(widget)->opacity(), 0.25);
    fade.Out(SLOT(slotFadeOutFinished()));
    fade.SetOpacity(0.0, 1.0); // for fades queued afterwards
    // The next fade starts before the receiver hears of the last one: it finds the same value.
    QTRY_COMPARE(receiver.log, QStringList({"in 0.75", "out 0.25"}));
}

void tst_UtilsFade::setDurationsHoldForLaterFades()
{
    QWidget widget;
    Receiver receiver(&widget);
    UtilsFade fade(&widget, &receiver, Endless, Endless);
    fade.SetInDuration(Short);
    fade.SetOutDuration(Short);
    fade.In(SLOT(slotFadeInFinished()));
    fade.Out(SLOT(slotFadeOutFinished()));
    fade.SetInDuration(Endless);
    fade.SetOutDuration(Endless);
    QTRY_COMPARE(receiver.log.size(), 2);
    fade.In(SLOT(slotFadeInFinished()));
    QVERIFY(!QTest::qWaitFor([&receiver] { return receiver.log.size() > 2; }, 4 * Short));
}

void tst_UtilsFade::anOutDuringAnInRunsAfterIt()
{
    QWidget widget;
    Receiver receiver(&widget);
    UtilsFade fade(&widget, &receiver, Short, Short);
    fade.In(SLOT(slotFadeInFinished()));
    fade.Out(SLOT(slotFadeOutFinished()));
    QCOMPARE(opacityEffect(widget)->opacity(), 0.0);
    QTRY_COMPARE(receiver.log, QStringList({"in 1", "out 0"}));
}

void tst_UtilsFade::aNullSlotOrReceiverIsNotConnected()
{
    QWidget widget;
    Receiver receiver(&widget);
    UtilsFade mute(&widget, &receiver, Short, Short);
    mute.In(nullptr);
    QTRY_COMPARE(opacityEffect(widget)->opacity(), 1.0);
    QCOMPARE(receiver.log, QStringList());

    UtilsFade deaf(&widget, nullptr, Short, Short);
    deaf.Out(SLOT(slotFadeOutFinished()));
    QTRY_COMPARE(opacityEffect(widget)->opacity(), 0.0);
}

void tst_UtilsFade::aFadeOfDurationZeroHasEndedBeforeTheSlotIsConnected()
{
    QWidget widget;
    Receiver receiver(&widget);
    UtilsFade fade(&widget, &receiver, 0, 0);
    fade.Out(SLOT(slotFadeOutFinished()));
    QCOMPARE(opacityEffect(widget)->opacity(), 0.0);
    fade.In(SLOT(slotFadeInFinished()));
    QCOMPARE(opacityEffect(widget)->opacity(), 1.0);
    QCoreApplication::processEvents();
    QCOMPARE(receiver.log, QStringList());
}

void tst_UtilsFade::aQueuedFadeOfDurationZeroReachesTheSlot()
{
    QWidget widget;
    Receiver receiver(&widget);
    UtilsFade fade(&widget, &receiver, Short, 0);
    fade.In(SLOT(slotFadeInFinished()));
    fade.Out(SLOT(slotFadeOutFinished()));
    // The queue's slot comes first, and with it the whole of the second fade.
    QTRY_COMPARE(receiver.log, QStringList({"out 0", "in 0"}));
}

void tst_UtilsFade::withSelfDestroyTheFadeGoesAfterItsLastFade()
{
    QWidget widget;
    Receiver receiver(&widget);
    const QPointer<UtilsFade> fade = new UtilsFade(&widget, &receiver, Short, Short);
    fade->SelfDestroyEnabled(true);
    fade->In(SLOT(slotFadeInFinished()));
    fade->Out(SLOT(slotFadeOutFinished()));
    QTRY_VERIFY(!fade);
    QCOMPARE(receiver.log, QStringList({"in 1", "out 0"}));
    QVERIFY(opacityEffect(widget));

    const QPointer<UtilsFade> told = new UtilsFade(&widget, &receiver, Short, Short);
    told->SelfDestroyEnabled(true);
    told->SlotAllAnimationsFinished();
    QVERIFY(told); // until the event loop comes to it
    QTRY_VERIFY(!told);
}

void tst_UtilsFade::withoutSelfDestroyTheFadeStays()
{
    QWidget widget;
    Receiver receiver(&widget);
    const QPointer<UtilsFade> fade = new UtilsFade(&widget, &receiver, Short, Short);
    fade->In(SLOT(slotFadeInFinished()));
    QTRY_COMPARE(receiver.log.size(), 1);
    fade->SlotAllAnimationsFinished();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(fade);
    fade->SelfDestroyEnabled(true);
    fade->SlotAllAnimationsFinished();
    QTRY_VERIFY(!fade);
}

void tst_UtilsFade::aClearedListReportsNothingAndLeavesNothingBehind()
{
    QWidget widget;
    Receiver receiver(&widget);
    UtilsFade *fade = new UtilsFade(&widget, &receiver, Short, Short);
    QSignalSpy gone(fade, &QObject::destroyed);
    fade->SelfDestroyEnabled(true);
    fade->In(SLOT(slotFadeInFinished()));
    fade->Out(SLOT(slotFadeOutFinished()));
    fade->ClearAnimationList();
    QTRY_COMPARE(receiver.log, QStringList("in 1")); // it was running and was not stopped
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCOMPARE(gone.count(), 0);
    fade->Out(SLOT(slotFadeOutFinished()));
    QTRY_COMPARE(gone.count(), 1);
    QCOMPARE(receiver.log, QStringList({"in 1", "out 0"}));
}

void tst_UtilsFade::aDeletedFadeLetsTheRunningOneEnd()
{
    QWidget widget;
    Receiver receiver(&widget);
    {
        UtilsFade fade(&widget, &receiver, Short, Short);
        fade.In(SLOT(slotFadeInFinished()));
        fade.Out(SLOT(slotFadeOutFinished()));
    }
    QTRY_COMPARE(receiver.log, QStringList("in 1"));
}

void tst_UtilsFade::anAccidentEndsTheFade_data()
{
    QTest::addColumn<QString>("accident");
    for (const char *accident : {"widget deleted", "effect deleted", "effect replaced", "effect removed"})
        QTest::newRow(accident) << QString::fromLatin1(accident);
}

void tst_UtilsFade::anAccidentEndsTheFade()
{
    QFETCH(QString, accident);
    auto *widget = new QWidget;
    const QPointer<QWidget> guard(widget);
    widget->show();
    Receiver receiver(widget);
    const QPointer<UtilsFade> fade = new UtilsFade(widget, &receiver, Endless, Endless);
    fade->SelfDestroyEnabled(true);
    fade->In(SLOT(slotFadeInFinished()));
    fade->Out(SLOT(slotFadeOutFinished()));
    QCoreApplication::processEvents();
    if (accident == "widget deleted")
        delete widget;
    else if (accident == "effect deleted")
        delete widget->graphicsEffect();
    else if (accident == "effect replaced")
        widget->setGraphicsEffect(new QGraphicsColorizeEffect(widget));
    else
        widget->setGraphicsEffect(nullptr);
    QTRY_VERIFY(!fade);
    QCOMPARE(receiver.log, QStringList());
    delete guard;
}

void tst_UtilsFade::theReceiverMayDieFirst()
{
    QWidget widget;
    auto *receiver = new Receiver(&widget);
    const QPointer<UtilsFade> fade = new UtilsFade(&widget, receiver, Short, Short);
    fade->SelfDestroyEnabled(true);
    fade->In(SLOT(slotFadeInFinished()));
    delete receiver;
    fade->Out(SLOT(slotFadeOutFinished()));
    QTRY_VERIFY(!fade);
    QCOMPARE(opacityEffect(widget)->opacity(), 0.0);
}

namespace {

class Deleter : public QObject
{
    Q_OBJECT

public:
    QPointer<QObject> victim;

public Q_SLOTS:
    void slotDelete()
    {
        delete victim;
    }
};

} // namespace

void tst_UtilsFade::theReceiverMayDeleteTheFade()
{
    for (const int outDuration : {Short, 0}) {
        QWidget widget;
        Deleter deleter;
        auto *fade = new UtilsFade(&widget, &deleter, Short, outDuration);
        deleter.victim = fade;
        fade->SelfDestroyEnabled(true);
        fade->In(nullptr);
        fade->Out(SLOT(slotDelete()));
        QTRY_VERIFY(!deleter.victim);
        QCOMPARE(opacityEffect(widget)->opacity(), 0.0);
    }
}

void tst_UtilsFade::aFadeMayBeDeletedInItsFirstStep()
{
    QWidget widget;
    Receiver receiver(&widget);
    auto *fade = new UtilsFade(&widget, &receiver, Short, Short);
    const QPointer<UtilsFade> guard(fade);
    connect(opacityEffect(widget), &QGraphicsOpacityEffect::opacityChanged, this, [&guard] { delete guard; });
    fade->In(SLOT(slotFadeInFinished()));
    QVERIFY(!guard);
    QTRY_COMPARE(receiver.log, QStringList("in 1")); // the running one goes on
}

void tst_UtilsFade::aSecondFadeOfTheWidgetEndsTheFirst()
{
    QWidget widget;
    widget.show();
    Receiver receiver(&widget);
    const QPointer<UtilsFade> first = new UtilsFade(&widget, &receiver, Endless, Endless);
    first->SelfDestroyEnabled(true);
    first->Out(SLOT(slotFadeOutFinished()));
    const QPointer<UtilsFade> second = new UtilsFade(&widget, &receiver, Short, Short);
    second->SelfDestroyEnabled(true);
    second->In(SLOT(slotFadeInFinished()));
    QTRY_VERIFY(!first && !second);
    QCOMPARE(receiver.log, QStringList("in 1"));
    QCOMPARE(opacityEffect(widget)->opacity(), 1.0);
}

void tst_UtilsFade::aFadeWithoutWidgetEndsAtOnce()
{
    const QPointer<UtilsFade> fade = new UtilsFade(nullptr, nullptr, Short, Short);
    fade->SelfDestroyEnabled(true);
    fade->Out(nullptr);
    QTRY_VERIFY(!fade);
}

UNIPROG_TEST_MAIN(tst_UtilsFade)
#include "tst_utilsfade.moc"
