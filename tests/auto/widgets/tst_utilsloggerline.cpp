#include <UtilsLoggerLine.h>

#include <ContextTranslator.h>
#include <UniProgTest.h>

#include <UtilsSequentialAnimation.h>

#include <QApplication>
#include <QFrame>
#include <QLabel>
#include <QListWidget>
#include <QPropertyAnimation>
#include <QSignalSpy>
#include <QVBoxLayout>

namespace {

constexpr int Short = 40; // ms
constexpr int Endless = 600'000; // ms, longer than any test

QLabel *labelOf(const QWidget &line)
{
    return line.findChild<QLabel *>(QStringLiteral("label"));
}

QFrame *hidingFrameOf(const QWidget &line)
{
    const QList<QFrame *> frames = line.findChildren<QFrame *>(Qt::FindDirectChildrenOnly);
    for (QFrame *frame : frames) {
        if (!qobject_cast<QLabel *>(frame))
            return frame;
    }
    return nullptr;
}

QPropertyAnimation *revealOf(const QObject &line)
{
    return line.findChild<QPropertyAnimation *>();
}

int textWidth(const QWidget &line, const QString &text)
{
    return QFontMetrics(labelOf(line)->font()).size(Qt::TextSingleLine, text).width();
}

} // namespace

class tst_UtilsLoggerLine : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void theFormIsAsStyleSheetsExpectIt();
    void textsAreTranslatedInTheContextOfTheClass();
    void withoutDurationThereIsNoHidingFrame_data();
    void withoutDurationThereIsNoHidingFrame();
    void theHidingFrameHasTheStyleSheetOfTheParent();

    void theTextEndsAtTheFirstLineBreak_data();
    void theTextEndsAtTheFirstLineBreak();
    void withDurationTheTextIsInPlaceAtOnce();
    void theRevealRunsFromTheOldTextToTheNewOne();
    void theFontOfTheStyleSheetIsMeasured();
    void aQueuePlaysTheReveals();
    void aQueueThatDiedIsDoneWithout();

    void theTypeSelectsTheStyleValue_data();
    void theTypeSelectsTheStyleValue();

    void theBackgroundColorIsPassedOn_data();
    void theBackgroundColorIsPassedOn();
    void anotherPropertyIsSetOnTheLineOnly();

    void theRowIsHiddenUntilTheRevealStarts();
    void otherStatesDoNotShowTheRow();
    void withoutDurationTheRowIsNotHidden();

    void theHidingFrameCoversWhatIsNotRevealed_data();
    void theHidingFrameCoversWhatIsNotRevealed();
    void aLineMayDieWhileItIsRevealed();
};

void tst_UtilsLoggerLine::theFormIsAsStyleSheetsExpectIt()
{
    UtilsLoggerLine line;
    QCOMPARE(line.objectName(), "UtilsLoggerLine");
    QCOMPARE(line.size(), QSize(336, 16));
    QCOMPARE(line.sizePolicy().horizontalPolicy(), QSizePolicy::Expanding);
    QCOMPARE(line.sizePolicy().verticalPolicy(), QSizePolicy::Fixed);
    QCOMPARE(line.windowTitle(), "Form");
    QCOMPARE(line.contentsMargins(), QMargins(1, 1, 1, 1));

    QVERIFY(qobject_cast<QVBoxLayout *>(line.layout()));
    QCOMPARE(line.layout()->objectName(), "verticalLayout");
    QCOMPARE(line.layout()->spacing(), 0);
    QCOMPARE(line.layout()->contentsMargins(), QMargins());

    QVERIFY(labelOf(line));
    QCOMPARE(line.layout()->indexOf(labelOf(line)), 0);
    QCOMPARE(labelOf(line)->text(), "OVO JE NEKI TEXT");
    QCOMPARE(labelOf(line)->property("font-size"), QVariant("level2"));
    QCOMPARE(labelOf(line)->styleSheet(), "border: 0px; padding: 0px;");
    QVERIFY(!labelOf(line)->property("log-type").isValid());

    QCOMPARE(line.getType(), LOGGER_MESSAGE_DEFAULT);
    QCOMPARE(line.getHidingFrameStartPos(), 0);
    const QMetaObject *meta = line.metaObject();
    QVERIFY(meta->indexOfProperty("hidingFrameStartPos") >= 0);
    QVERIFY(meta->indexOfSlot("slotAnimationStateChanged(QAbstractAnimation::State,QAbstractAnimation::State)") >= 0);
}

void tst_UtilsLoggerLine::textsAreTranslatedInTheContextOfTheClass()
{
    const ContextTranslator translator("UtilsLoggerLine");
    const UtilsLoggerLine line;
    QCOMPARE(line.windowTitle(), "<Form>");
    QCOMPARE(line.getText(), "<OVO JE NEKI TEXT>");
}

void tst_UtilsLoggerLine::withoutDurationThereIsNoHidingFrame_data()
{
    QTest::addColumn<int>("duration");
    QTest::addColumn<bool>("frame");
    QTest::newRow("0") << 0 << false;
    QTest::newRow("below 0") << -1 << false;
    QTest::newRow("1") << 1 << true;
}

void tst_UtilsLoggerLine::withoutDurationThereIsNoHidingFrame()
{
    QFETCH(int, duration);
    QFETCH(bool, frame);
    UtilsLoggerLine line(nullptr, duration);
    QCOMPARE(hidingFrameOf(line) != nullptr, frame);
    line.setText("text");
    QCOMPARE(revealOf(line) != nullptr, frame);
    if (frame) {
        QCOMPARE(hidingFrameOf(line)->frameStyle(), 0);
        QVERIFY(!hidingFrameOf(line)->isHidden());
    }
}

void tst_UtilsLoggerLine::theHidingFrameHasTheStyleSheetOfTheParent()
{
    QWidget parent;
    parent.setStyleSheet("background: #102030;");
    UtilsLoggerLine line(&parent, Endless);
    QCOMPARE(hidingFrameOf(line)->styleSheet(), parent.styleSheet());
}

void tst_UtilsLoggerLine::theTextEndsAtTheFirstLineBreak_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("shown");
    QTest::newRow("empty") << ""
                           << "";
    QTest::newRow("one line") << "abc"
                              << "abc";
    QTest::newRow("two lines") << "abc\ndef"
                               << "abc";
    QTest::newRow("empty part") << "a\n\nb"
                                << "a";
    QTest::newRow("line break first") << "\nabc"
                                      << "";
    QTest::newRow("line break last") << "abc\n"
                                     << "abc";
    QTest::newRow("carriage return stays") << "abc\rdef"
                                           << "abc\rdef";
}

void tst_UtilsLoggerLine::theTextEndsAtTheFirstLineBreak()
{
    QFETCH(QString, text);
    QFETCH(QString, shown);
    for (const int duration : {0, Endless}) {
        UtilsLoggerLine line(nullptr, duration);
        line.setText(text);
        QCOMPARE(line.getText(), shown);
        line.appendText(text);
        QCOMPARE(line.getText(), shown + shown);
        line.setText("new");
        QCOMPARE(line.getText(), "new");
        QCOMPARE(labelOf(line)->text(), "new");
    }
}

void tst_UtilsLoggerLine::withDurationTheTextIsInPlaceAtOnce()
{
    UtilsLoggerLine line(nullptr, Endless);
    line.setText("Erasing...");
    QCOMPARE(line.getText(), "Erasing...");
    QVERIFY(revealOf(line));
    QCOMPARE(revealOf(line)->state(), QAbstractAnimation::Running);
}

void tst_UtilsLoggerLine::theRevealRunsFromTheOldTextToTheNewOne()
{
    UtilsLoggerLine line(nullptr, Short);
    line.setText("Erasing...");
    const QPointer<QPropertyAnimation> first = revealOf(line);
    QCOMPARE(first->targetObject(), &line);
    QCOMPARE(first->parent(), &line);
    QCOMPARE(first->propertyName(), QByteArray("hidingFrameStartPos"));
    QCOMPARE(first->startValue(), QVariant(0));
    QCOMPARE(first->endValue(), QVariant(textWidth(line, "Erasing...")));
    QCOMPARE(first->easingCurve().type(), QEasingCurve::InOutQuad);
    QCOMPARE(first->duration(), Short);
    QTRY_VERIFY(!first);
    QCOMPARE(line.getHidingFrameStartPos(), textWidth(line, "Erasing..."));

    line.appendText(" done");
    QCOMPARE(revealOf(line)->startValue(), QVariant(textWidth(line, "Erasing...")));
    QCOMPARE(revealOf(line)->endValue(), QVariant(textWidth(line, "Erasing... done")));
}

void tst_UtilsLoggerLine::theFontOfTheStyleSheetIsMeasured()
{
    QWidget parent;
    parent.setStyleSheet("QLabel[font-size=\"level2\"] { font-size: 31px; }");
    UtilsLoggerLine line(&parent, Endless);
    line.setText("Erasing...");
    QFont expected = parent.font();
    expected.setPixelSize(31);
    QCOMPARE(labelOf(line)->font().pixelSize(), 31);
    QCOMPARE(revealOf(line)->endValue(),
             QVariant(QFontMetrics(expected).size(Qt::TextSingleLine, "Erasing...").width()));
}

void tst_UtilsLoggerLine::aQueuePlaysTheReveals()
{
    UtilsSequentialAnimation queue;
    QSignalSpy finished(&queue, &UtilsSequentialAnimation::SignalAllAnimationsFinished);
    UtilsLoggerLine first(nullptr, Short);
    UtilsLoggerLine second(nullptr, Short);
    first.setSequentAnimation(&queue);
    second.setSequentAnimation(&queue);
    first.setText("first");
    second.setText("second");
    first.appendText(" and more");
    QCOMPARE(queue.NumberOfWaitingAnimations(), 3);
    QCOMPARE(revealOf(first)->state(), QAbstractAnimation::Running);
    QCOMPARE(revealOf(second)->state(), QAbstractAnimation::Stopped);
    QTRY_COMPARE(finished.count(), 1);
    QCOMPARE(first.getHidingFrameStartPos(), textWidth(first, "first and more"));
    QCOMPARE(second.getHidingFrameStartPos(), textWidth(second, "second"));
}

void tst_UtilsLoggerLine::aQueueThatDiedIsDoneWithout()
{
    UtilsLoggerLine line(nullptr, Short);
    {
        UtilsSequentialAnimation queue;
        line.setSequentAnimation(&queue);
    }
    line.setText("text");
    QCOMPARE(revealOf(line)->state(), QAbstractAnimation::Running);
}

void tst_UtilsLoggerLine::theTypeSelectsTheStyleValue_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QVariant>("value");
    QTest::newRow("default") << 0 << QVariant("default");
    QTest::newRow("info") << 1 << QVariant("info");
    QTest::newRow("warning") << 2 << QVariant("warning");
    QTest::newRow("success") << 3 << QVariant("success");
    QTest::newRow("error") << 4 << QVariant("error");
    QTest::newRow("another number") << 5 << QVariant("unchanged");
    QTest::newRow("another number that fits the type") << 7 << QVariant("unchanged");
}

void tst_UtilsLoggerLine::theTypeSelectsTheStyleValue()
{
    QFETCH(int, type);
    QFETCH(QVariant, value);
    UtilsLoggerLine line;
    labelOf(line)->setProperty("log-type", "unchanged");
    line.setType(LOGGER_MESSAGE_TYPE(type));
    QCOMPARE(int(line.getType()), type);
    QCOMPARE(labelOf(line)->property("log-type"), value);
}

void tst_UtilsLoggerLine::theBackgroundColorIsPassedOn_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("background-color") << QByteArray("background-color");
    QTest::newRow("a longer name") << QByteArray("background-color-extra");
}

void tst_UtilsLoggerLine::theBackgroundColorIsPassedOn()
{
    QFETCH(QByteArray, name);
    UtilsLoggerLine animated(nullptr, Endless);
    QVERIFY(animated.setProperty(name.constData(), "main"));
    QCOMPARE(animated.property(name.constData()), QVariant("main"));
    QCOMPARE(labelOf(animated)->property(name.constData()), QVariant("main"));
    QCOMPARE(hidingFrameOf(animated)->property(name.constData()), QVariant("main"));

    UtilsLoggerLine plain;
    QVERIFY(plain.setProperty(name.constData(), "main"));
    QCOMPARE(labelOf(plain)->property(name.constData()), QVariant("main"));
}

void tst_UtilsLoggerLine::anotherPropertyIsSetOnTheLineOnly()
{
    UtilsLoggerLine line(nullptr, Endless);
    QVERIFY(!line.setProperty("background-colo", "main")); // a new dynamic property
    QCOMPARE(line.property("background-colo"), QVariant("main"));
    QVERIFY(!labelOf(line)->property("background-colo").isValid());
    QVERIFY(!hidingFrameOf(line)->property("background-colo").isValid());
    QVERIFY(line.setProperty("windowTitle", "title"));
    QCOMPARE(line.windowTitle(), "title");
    QVERIFY(labelOf(line)->windowTitle().isEmpty());
}

void tst_UtilsLoggerLine::theRowIsHiddenUntilTheRevealStarts()
{
    QListWidget list;
    auto *item = new QListWidgetItem(&list);
    UtilsSequentialAnimation queue;
    QObject target;
    target.setProperty("value", 0);
    auto *before = new QPropertyAnimation(&target, "value");
    before->setStartValue(0);
    before->setEndValue(1);
    before->setDuration(Short);
    queue.AddAnimation(before);

    auto *line = new UtilsLoggerLine(&list, Endless, item);
    QVERIFY(item->isHidden());
    line->setSequentAnimation(&queue);
    line->setText("text");
    QVERIFY(item->isHidden());
    QTRY_VERIFY(!item->isHidden());
    QCOMPARE(revealOf(*line)->state(), QAbstractAnimation::Running);
}

void tst_UtilsLoggerLine::otherStatesDoNotShowTheRow()
{
    QListWidget list;
    auto *item = new QListWidgetItem(&list);
    UtilsLoggerLine line(nullptr, Endless, item);
    line.slotAnimationStateChanged(QAbstractAnimation::Stopped, QAbstractAnimation::Running);
    line.slotAnimationStateChanged(QAbstractAnimation::Paused, QAbstractAnimation::Running);
    QVERIFY(item->isHidden());
    line.slotAnimationStateChanged(QAbstractAnimation::Running, QAbstractAnimation::Stopped);
    QVERIFY(!item->isHidden());

    UtilsLoggerLine free(nullptr, Endless);
    free.slotAnimationStateChanged(QAbstractAnimation::Running, QAbstractAnimation::Stopped);
}

void tst_UtilsLoggerLine::withoutDurationTheRowIsNotHidden()
{
    QListWidget list;
    auto *item = new QListWidgetItem(&list);
    UtilsLoggerLine line(nullptr, 0, item);
    line.setText("text");
    QVERIFY(!item->isHidden());
}

void tst_UtilsLoggerLine::theHidingFrameCoversWhatIsNotRevealed_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("start");
    QTest::addColumn<QRect>("covered");
    const QString latin("verified");
    const QString hebrew(QChar(0x05d0));
    // A line of 200 x 16 pixels with a border of 1.
    QTest::newRow("nothing revealed") << latin << 0 << QRect(1, 1, 198, 14);
    QTest::newRow("some") << latin << 50 << QRect(51, 1, 148, 14);
    QTest::newRow("all but a pixel") << latin << 197 << QRect(198, 1, 1, 14);
    QTest::newRow("all: the frame keeps its size") << latin << 198 << QRect(199, 1, 100, 14);
    QTest::newRow("more than all: the frame keeps its size") << latin << 300 << QRect(301, 1, 100, 14);
    QTest::newRow("nothing revealed, right to left") << hebrew << 0 << QRect(1, 1, 198, 14);
    QTest::newRow("some, right to left") << hebrew << 50 << QRect(1, 1, 148, 14);
    QTest::newRow("all, right to left") << hebrew << 198 << QRect(-99, 1, 100, 14);
}

void tst_UtilsLoggerLine::theHidingFrameCoversWhatIsNotRevealed()
{
    QFETCH(QString, text);
    QFETCH(int, start);
    QFETCH(QRect, covered);
    UtilsLoggerLine line(nullptr, Endless);
    line.setText(text);
    delete revealOf(line);
    line.setFixedSize(200, 16);
    line.show();
    QVERIFY(QTest::qWaitForWindowExposed(&line));
    line.setHidingFrameStartPos(98); // leaves a frame 100 pixels wide
    line.grab();
    line.setHidingFrameStartPos(start);
    QCOMPARE(line.getHidingFrameStartPos(), start);
    QTRY_COMPARE(hidingFrameOf(line)->geometry(), covered);
}

void tst_UtilsLoggerLine::aLineMayDieWhileItIsRevealed()
{
    UtilsSequentialAnimation queue;
    QSignalSpy finished(&queue, &UtilsSequentialAnimation::SignalAllAnimationsFinished);
    auto *line = new UtilsLoggerLine(nullptr, Endless);
    line->setSequentAnimation(&queue);
    line->setText("a");
    line->appendText("b");
    delete line;
    QTRY_COMPARE(finished.count(), 1);

    auto *free = new UtilsLoggerLine(nullptr, Endless);
    free->setText("a");
    delete free;
}

UNIPROG_TEST_MAIN(tst_UtilsLoggerLine)
#include "tst_utilsloggerline.moc"
