#include "LifetimeSubjects.h"

#include <UtilsDialogFrame.h>

#include <UniProgTest.h>

#include <QAbstractAnimation>
#include <QApplication>
#include <QEventLoop>
#include <QHash>
#include <QMetaEnum>
#include <QMetaMethod>
#include <QPointer>
#include <QProcess>
#include <QSet>
#include <QTimer>
#include <QWidget>

#include <cstdlib>
#include <functional>
#include <memory>
#include <utility>

namespace {

constexpr int LimitMs = 10'000;
constexpr int FramesOfMotion = 2;
constexpr char LeaveArgument[] = "--leave";

using Kill = void (*)(QObject *);

void killNow(QObject *object)
{
    delete object;
}

void killLater(QObject *object)
{
    object->deleteLater();
}

/// What comes after an object's end: whatever still waits for it in the event loop.
void afterwards()
{
    for (int turn = 0; turn < 3; ++turn) {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

/// Ticks with all other animations.
class Pulse : public QAbstractAnimation
{
public:
    explicit Pulse(int frames)
        : framesLeft(frames)
    { }

    int duration() const override
    {
        return -1;
    }

    QEventLoop loop;

protected:
    void updateCurrentTime(int) override
    {
        if (framesLeft-- == 0)
            loop.exit(0);
    }

private:
    int framesLeft; // after the one at the start
};

/// Lets every animation move on by some frames.
bool framesPass(int frames = 1)
{
    Pulse pulse(frames);
    QTimer::singleShot(LimitMs, &pulse.loop, [&pulse] { pulse.loop.exit(1); });
    pulse.start();
    return pulse.loop.exec() == 0;
}

/// An object in its window.
struct Stage
{
    explicit Stage(const LifetimeSubject &played)
        : subject(played)
        , window(std::make_unique<QWidget>())
        , object(played.create(window.get()))
    {
        window->resize(200, 150);
    }

    bool finishStep(const LifetimeStep &step) const
    {
        return QTest::qWaitFor([&] { return !object || step.isDone(object); }, LimitMs);
    }

    /// The steps before \a end, each to its end; false when one has none.
    bool play(qsizetype end = 1000) const
    {
        for (const LifetimeStep &step : subject.steps.mid(0, end)) {
            if (!object)
                break;
            step.act(object);
            if (!finishStep(step))
                return false;
            QCoreApplication::processEvents();
        }
        return true;
    }

    /// Sets in motion what the second step does.
    bool playIntoMotion() const
    {
        if (!play(1))
            return false;
        if (object && subject.steps.size() > 1)
            subject.steps.at(1).act(object);
        return framesPass(FramesOfMotion);
    }

    const LifetimeSubject &subject;
    std::unique_ptr<QWidget> window;
    QPointer<QObject> object;
};

/// Hears every signal and sees every event of an object, and says so to a function.
class Witness : public QObject
{
    Q_OBJECT

public:
    void hear(QObject *object, const QMetaMethod &signal)
    {
        QObject::connect(object, signal, this, staticMetaObject.method(staticMetaObject.indexOfSlot("heard()")));
    }

    std::function<void(int signalIndex)> onSignal;
    std::function<bool(QEvent *)> onEvent;

    bool eventFilter(QObject *, QEvent *event) override
    {
        return onEvent && onEvent(event);
    }

public Q_SLOTS:
    void heard()
    {
        if (onSignal)
            onSignal(senderSignalIndex());
    }
};

/// What happens in the life of an object that nobody disturbs.
struct Rehearsal
{
    const QMetaObject *metaObject = nullptr;
    QSet<int> signalIndexes;
    QSet<int> events;
};

QByteArray fullName(const QMetaMethod &signal)
{
    return QByteArray(signal.enclosingMetaObject()->className()) + "::" + signal.methodSignature();
}

bool isSignalOfLibrary(const QMetaMethod &signal)
{
    return fullName(signal).startsWith("Utils");
}

/// Signals of Qt's own classes, emitted by functions of Qt 6.4 that go on with the object whoever has deleted it. The
/// frame of dialogs emits those of QDialog itself.
bool isUsedByQtAfterwards(const QMetaMethod &signal, const QObject *object)
{
    static const QSet<QByteArray> names{"QAbstractButton::toggled(bool)",
                                        "QDialog::accepted()",
                                        "QDialog::rejected()",
                                        "QListWidget::currentItemChanged(QListWidgetItem*,QListWidgetItem*)",
                                        "QListWidget::currentRowChanged(int)",
                                        "QListWidget::currentTextChanged(QString)",
                                        "QMenu::aboutToHide()",
                                        "QMenu::aboutToShow()",
                                        "QMenu::hovered(QAction*)",
                                        "QMenu::triggered(QAction*)",
                                        "QProgressBar::valueChanged(int)",
                                        "QStackedWidget::widgetRemoved(int)",
                                        "QTabWidget::currentChanged(int)",
                                        "QVariantAnimation::valueChanged(QVariant)"};
    return names.contains(fullName(signal)) && !qobject_cast<const UtilsDialogFrame *>(object);
}

QList<QMetaMethod> signalsOf(const QMetaObject *metaObject)
{
    QList<QMetaMethod> result;
    for (int i = QObject::staticMetaObject.methodCount(); i < metaObject->methodCount(); ++i) {
        if (metaObject->method(i).methodType() == QMetaMethod::Signal)
            result.append(metaObject->method(i));
    }
    return result;
}

Rehearsal rehearse(const LifetimeSubject &subject)
{
    Rehearsal result;
    const Stage stage(subject);
    result.metaObject = stage.object->metaObject();
    Witness witness;
    witness.onSignal = [&](int index) { result.signalIndexes.insert(index); };
    witness.onEvent = [&](QEvent *event) {
        result.events.insert(event->type());
        return false;
    };
    for (const QMetaMethod &signal : signalsOf(result.metaObject))
        witness.hear(stage.object, signal);
    stage.object->installEventFilter(&witness);
    stage.play();
    if (auto *widget = qobject_cast<QWidget *>(stage.object.data()))
        widget->close();
    return result;
}

const QHash<QString, Rehearsal> &rehearsals()
{
    static const QHash<QString, Rehearsal> all = [] {
        QHash<QString, Rehearsal> result;
        for (const LifetimeSubject &subject : lifetimeSubjects())
            result.insert(QLatin1String(subject.name), rehearse(subject));
        return result;
    }();
    return all;
}

} // namespace

/// Every object of the library may be deleted at every moment of its life.
class tst_Lifetimes : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void everyMomentOfALife_data();
    void everyMomentOfALife();
    void everySignalIsHeard_data();
    void everySignalIsHeard();
    void everySlotOfTheOwnSignals_data();
    void everySlotOfTheOwnSignals();
    void everyEventThatAFilterSees_data();
    void everyEventThatAFilterSees();
    void theEndOfTheProgram_data();
    void theEndOfTheProgram();
};

static void addSubjects()
{
    QTest::addColumn<qsizetype>("index");
}

static QByteArray rowName(const LifetimeSubject &subject, const char *moment)
{
    return QByteArray(subject.name) + ": " + moment;
}

void tst_Lifetimes::everyMomentOfALife_data()
{
    addSubjects();
    QTest::addColumn<QString>("moment");
    for (qsizetype i = 0; i < lifetimeSubjects().size(); ++i) {
        for (const char *moment : {"before it is shown", "later, before it is shown", "once shown", "in motion",
                                   "later, in motion", "with its window", "while calls are queued", "at its end"})
            QTest::newRow(rowName(lifetimeSubjects().at(i), moment)) << i << QString::fromLatin1(moment);
    }
}

void tst_Lifetimes::everyMomentOfALife()
{
    QFETCH(qsizetype, index);
    QFETCH(QString, moment);
    Stage stage(lifetimeSubjects().at(index));
    if (moment.endsWith(QLatin1String("once shown")))
        QVERIFY(stage.play(1));
    else if (moment.endsWith(QLatin1String("at its end")))
        QVERIFY(stage.play());
    else if (!moment.endsWith(QLatin1String("before it is shown")))
        QVERIFY(stage.playIntoMotion());

    if (!stage.object) {
        afterwards();
        return;
    }
    if (moment == QLatin1String("while calls are queued")) {
        for (int i = 0; i < 3; ++i)
            QMetaObject::invokeMethod(
                stage.object, [] {}, Qt::QueuedConnection);
        stage.object->deleteLater();
    }
    if (moment == QLatin1String("with its window"))
        stage.window.reset();
    else if (moment.startsWith(QLatin1String("later")))
        stage.object->deleteLater();
    else
        delete stage.object;
    QVERIFY(framesPass());
    afterwards();
    stage.window.reset();
    afterwards();
}

/// Or the rows below would pass without a deletion.
void tst_Lifetimes::everySignalIsHeard_data()
{
    QTest::addColumn<bool>("isHeard");
    QHash<QByteArray, bool> heard;
    for (const Rehearsal &rehearsal : rehearsals()) {
        for (const QMetaMethod &signal : signalsOf(rehearsal.metaObject)) {
            const QByteArray name = fullName(signal);
            if (isSignalOfLibrary(signal))
                heard[name] = heard.value(name) || rehearsal.signalIndexes.contains(signal.methodIndex());
        }
    }
    for (auto it = heard.cbegin(); it != heard.cend(); ++it)
        QTest::newRow(it.key()) << it.value();
}

void tst_Lifetimes::everySignalIsHeard()
{
    QFETCH(bool, isHeard);
    QVERIFY(isHeard);
}

void tst_Lifetimes::everySlotOfTheOwnSignals_data()
{
    addSubjects();
    QTest::addColumn<int>("signalIndex");
    QTest::addColumn<bool>("later");
    for (qsizetype i = 0; i < lifetimeSubjects().size(); ++i) {
        const LifetimeSubject &subject = lifetimeSubjects().at(i);
        const Rehearsal rehearsal = rehearsals().value(QLatin1String(subject.name));
        for (const QMetaMethod &signal : signalsOf(rehearsal.metaObject)) {
            if (!rehearsal.signalIndexes.contains(signal.methodIndex()))
                continue;
            for (const bool later : {false, true})
                QTest::newRow(rowName(subject, signal.methodSignature() + (later ? ", later" : "")))
                    << i << signal.methodIndex() << later;
        }
    }
}

void tst_Lifetimes::everySlotOfTheOwnSignals()
{
    QFETCH(qsizetype, index);
    QFETCH(int, signalIndex);
    QFETCH(bool, later);
    Stage stage(lifetimeSubjects().at(index));
    const QMetaMethod signal = stage.object->metaObject()->method(signalIndex);
    if (!later && isUsedByQtAfterwards(signal, stage.object))
        QSKIP("Qt goes on with the object after this signal; use deleteLater()");
    Witness witness;
    witness.hear(stage.object, signal);
    bool isKilled = false;
    witness.onSignal = [&](int) {
        if (!std::exchange(isKilled, true))
            later ? killLater(stage.object) : killNow(stage.object);
    };
    QVERIFY(stage.play());
    QVERIFY(isKilled);
    QVERIFY(framesPass());
    afterwards();
}

void tst_Lifetimes::everyEventThatAFilterSees_data()
{
    addSubjects();
    QTest::addColumn<int>("type");
    QTest::addColumn<bool>("later");
    // Those that Qt does nothing after, and then the others.
    const QSet<int> endedByQt{QEvent::MouseButtonPress, QEvent::MouseButtonRelease,
                              QEvent::KeyPress,         QEvent::Close,
                              QEvent::MetaCall,         QEvent::Timer};
    const QSet<int> usedByQtAfterwards{QEvent::Polish, QEvent::Show, QEvent::Resize, QEvent::Paint, QEvent::Hide};
    const QMetaEnum types = QMetaEnum::fromType<QEvent::Type>();
    for (qsizetype i = 0; i < lifetimeSubjects().size(); ++i) {
        const LifetimeSubject &subject = lifetimeSubjects().at(i);
        const QSet<int> events = rehearsals().value(QLatin1String(subject.name)).events;
        for (const int type : events &(endedByQt | usedByQtAfterwards)) {
            // What is told to go before exec() goes only after it, and exec() waits for that.
            if (!QByteArray(subject.name).endsWith(", executed"))
                QTest::newRow(rowName(subject, types.valueToKey(type) + QByteArray(", later"))) << i << type << true;
            if (endedByQt.contains(type))
                QTest::newRow(rowName(subject, types.valueToKey(type))) << i << type << false;
        }
    }
}

void tst_Lifetimes::everyEventThatAFilterSees()
{
    QFETCH(qsizetype, index);
    QFETCH(int, type);
    QFETCH(bool, later);
    Stage stage(lifetimeSubjects().at(index));
    Witness witness;
    stage.object->installEventFilter(&witness);
    bool isKilled = false;
    witness.onEvent = [&](QEvent *event) {
        if (event->type() != type || std::exchange(isKilled, true))
            return false;
        later ? killLater(stage.object) : killNow(stage.object);
        return !later;
    };
    stage.play();
    if (auto *widget = qobject_cast<QWidget *>(stage.object.data()))
        widget->close();
    QVERIFY(framesPass());
    afterwards();
}

void tst_Lifetimes::theEndOfTheProgram_data()
{
    addSubjects();
    QTest::addColumn<QString>("way");
    for (qsizetype i = 0; i < lifetimeSubjects().size(); ++i) {
        for (const char *way : {"quits", "exits", "deletes after the loop"})
            QTest::newRow(rowName(lifetimeSubjects().at(i), way)) << i << QString::fromLatin1(way);
    }
}

void tst_Lifetimes::theEndOfTheProgram()
{
    QFETCH(qsizetype, index);
    QFETCH(QString, way);
    QProcess program;
    program.setProcessChannelMode(QProcess::MergedChannels);
    program.start(QCoreApplication::applicationFilePath(), {QLatin1String(LeaveArgument), QString::number(index), way});
    QVERIFY(program.waitForFinished(3 * LimitMs));
    const QByteArray output = program.readAll();
    QVERIFY2(program.exitStatus() == QProcess::NormalExit, output);
    QVERIFY2(program.exitCode() == 0, output);
}

/// A program that ends with an object of the library alive and in motion.
static int leave(qsizetype index, const QString &way)
{
    static Stage *const stage = new Stage(lifetimeSubjects().at(index)); // static: what is left at the end is no leak
    QTimer::singleShot(0, qApp, [way] {
        stage->playIntoMotion();
        if (way == QLatin1String("exits"))
            std::exit(0);
        QCoreApplication::quit();
    });
    const int code = QCoreApplication::exec();
    if (way == QLatin1String("deletes after the loop"))
        stage->window.reset();
    return code;
}

int main(int argc, char **argv)
{
    UniProgTest::prepareProcess();
    QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == QLatin1String(LeaveArgument))
        return leave(arguments.value(2).toLongLong(), arguments.value(3));
    tst_Lifetimes test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}

#include "tst_lifetimes.moc"
