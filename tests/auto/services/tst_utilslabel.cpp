#include <UtilsLabel.h>

#include <UniProgTest.h>

#include <QApplication>
#include <QEnterEvent>
#include <QMouseEvent>
#include <QPointer>
#include <QSignalSpy>

class tst_UtilsLabel : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void itStartsAsAPlainLabel();
    void thePointerComingAndGoingIsReported();
    void everyButtonCountsAsAClick_data();
    void everyButtonCountsAsAClick();
    void aReleaseAloneIsNoClick();
    void aDoubleClickIsTwoClicks();
    void aDisabledLabelReportsNoClick();
    void thePressGoesOnToTheParent();
    void theLabelsOwnHandlingOfThePressComesFirst();
    void aReceiverMayScheduleTheLabelForDeletion();
    void theSignalsCanBeConnectedByName();
};

namespace {

/// Counts the presses that reach it.
class PressCounter : public QWidget
{
public:
    int presses = 0;

protected:
    void mousePressEvent(QMouseEvent *event) override
    {
        ++presses;
        QWidget::mousePressEvent(event);
    }
};

} // namespace

void tst_UtilsLabel::itStartsAsAPlainLabel()
{
    QWidget parent;
    const UtilsLabel label(&parent, Qt::WindowFlags());
    QCOMPARE(label.parentWidget(), &parent);
    QVERIFY(label.text().isEmpty());
    QVERIFY(!label.isWindow());

    const UtilsLabel window(&parent, Qt::Tool);
    QVERIFY(window.isWindow());
}

void tst_UtilsLabel::thePointerComingAndGoingIsReported()
{
    UtilsLabel label;
    QSignalSpy enter(&label, &UtilsLabel::signalEnter);
    QSignalSpy leave(&label, &UtilsLabel::signalLeave);
    QSignalSpy clicked(&label, &UtilsLabel::signalClicked);

    QEnterEvent enterEvent(QPointF(1, 1), QPointF(1, 1), QPointF(1, 1));
    QApplication::sendEvent(&label, &enterEvent);
    QCOMPARE(enter.count(), 1);
    QCOMPARE(leave.count(), 0);

    QEvent leaveEvent(QEvent::Leave);
    QApplication::sendEvent(&label, &leaveEvent);
    QCOMPARE(enter.count(), 1);
    QCOMPARE(leave.count(), 1);
    QCOMPARE(clicked.count(), 0);
}

void tst_UtilsLabel::everyButtonCountsAsAClick_data()
{
    QTest::addColumn<Qt::MouseButton>("button");
    QTest::newRow("left") << Qt::LeftButton;
    QTest::newRow("right") << Qt::RightButton;
    QTest::newRow("middle") << Qt::MiddleButton;
    QTest::newRow("back") << Qt::BackButton;
}

void tst_UtilsLabel::everyButtonCountsAsAClick()
{
    QFETCH(Qt::MouseButton, button);
    UtilsLabel label;
    QSignalSpy clicked(&label, &UtilsLabel::signalClicked);
    QTest::mousePress(&label, button);
    QCOMPARE(clicked.count(), 1);
    QTest::mouseRelease(&label, button);
    QCOMPARE(clicked.count(), 1);
}

void tst_UtilsLabel::aReleaseAloneIsNoClick()
{
    UtilsLabel label;
    QSignalSpy clicked(&label, &UtilsLabel::signalClicked);
    QTest::mouseRelease(&label, Qt::LeftButton);
    QCOMPARE(clicked.count(), 0);
}

void tst_UtilsLabel::aDoubleClickIsTwoClicks()
{
    UtilsLabel label;
    QSignalSpy clicked(&label, &UtilsLabel::signalClicked);
    QTest::mousePress(&label, Qt::LeftButton);
    QTest::mouseRelease(&label, Qt::LeftButton);
    QMouseEvent second(QEvent::MouseButtonDblClick, QPointF(1, 1), label.mapToGlobal(QPointF(1, 1)), Qt::LeftButton,
                       Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&label, &second);
    QCOMPARE(clicked.count(), 2);
}

void tst_UtilsLabel::aDisabledLabelReportsNoClick()
{
    UtilsLabel label;
    label.setEnabled(false);
    QSignalSpy clicked(&label, &UtilsLabel::signalClicked);
    QMouseEvent press(QEvent::MouseButtonPress, QPointF(1, 1), label.mapToGlobal(QPointF(1, 1)), Qt::LeftButton,
                      Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&label, &press);
    QCOMPARE(clicked.count(), 0);
}

void tst_UtilsLabel::thePressGoesOnToTheParent()
{
    PressCounter parent;
    auto *label = new UtilsLabel(&parent);
    label->setText(QStringLiteral("text"));
    QSignalSpy clicked(label, &UtilsLabel::signalClicked);

    QMouseEvent press(QEvent::MouseButtonPress, QPointF(1, 1), label->mapToGlobal(QPointF(1, 1)), Qt::LeftButton,
                      Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(label, &press);
    QCOMPARE(clicked.count(), 1);
    QCOMPARE(parent.presses, 1);
}

void tst_UtilsLabel::theLabelsOwnHandlingOfThePressComesFirst()
{
    UtilsLabel label;
    label.setText(QStringLiteral("word"));
    label.setTextInteractionFlags(Qt::TextSelectableByMouse);
    label.setSelection(0, 4);
    label.resize(10 * label.sizeHint().width(), label.sizeHint().height());
    bool selectedAtSignal = true;
    connect(&label, &UtilsLabel::signalClicked, &label, [&] { selectedAtSignal = label.hasSelectedText(); });

    // A press without a drag clears the selection of a selectable label.
    QTest::mousePress(&label, Qt::LeftButton, Qt::NoModifier, QPoint(label.width() - 1, label.height() / 2));
    QVERIFY(!selectedAtSignal);
}

void tst_UtilsLabel::aReceiverMayScheduleTheLabelForDeletion()
{
    QPointer<UtilsLabel> label = new UtilsLabel;
    connect(label, &UtilsLabel::signalClicked, label, &QObject::deleteLater);
    QTest::mousePress(label, Qt::LeftButton);
    QTRY_VERIFY(label.isNull());
}

void tst_UtilsLabel::theSignalsCanBeConnectedByName()
{
    UtilsLabel label;
    QLabel receiver;
    QVERIFY(connect(&label, SIGNAL(signalEnter()), &receiver, SLOT(clear())));
    QVERIFY(connect(&label, SIGNAL(signalLeave()), &receiver, SLOT(clear())));
    QVERIFY(connect(&label, SIGNAL(signalClicked()), &receiver, SLOT(clear())));
    receiver.setText(QStringLiteral("text"));
    QTest::mousePress(&label, Qt::LeftButton);
    QVERIFY(receiver.text().isEmpty());
}

UNIPROG_TEST_MAIN(tst_UtilsLabel)

#include "tst_utilslabel.moc"
