#include "ToggleSwitchTest.h"

#include <AccessibleEvents.h>
#include <UniProgTest.h>

#include <QApplication>
#include <QCheckBox>
#include <QEnterEvent>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QPointer>
#include <QSignalSpy>

#include <memory>

using namespace ToggleSwitchTest;

class tst_UtilsToggleSwitch : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void aNewSwitchIsOff();
    void oneAnimationServesTheThumb();
    void aWidgetOfAnySizeFindsItsPositions_data();
    void aWidgetOfAnySizeFindsItsPositions();
    void resizingWhileOnMovesTheThumbAtOnce();
    void resizingWhileOffLetsTheThumbGlide();
    void resizingDuringAnAnimationEndsAtTheNewPosition();
    void theHintIsTwiceTheHeight_data();
    void theHintIsTwiceTheHeight();
    void layoutsAskForTheHint();

    void togglingGlidesToTheOtherEnd();
    void togglingBackTurnsTheThumbAround();
    void startAnimationLeavesTheStateAlone();
    void theStateIsTheSwitchsOwn();
    void theStateStaysBehindBlockedSignals();

    void aClickToggles();
    void aClickLeavesTheDecisionToTheOwner_data();
    void aClickLeavesTheDecisionToTheOwner();
    void theOwnerMayDecideInTheClick();
    void theOwnerMayDeleteTheSwitchInTheClick();
    void aReleaseIsConsumedOnlyWhenTheOwnerDecides();
    void aDisabledSwitchIgnoresClicks_data();
    void aDisabledSwitchIgnoresClicks();
    void theSpaceKeyTogglesAlways_data();
    void theSpaceKeyTogglesAlways();
    void eventsOfOthersPass();

    void hoveringIsAProperty();
    void theMouseFindsTheStyleSheetsHover();
    void enteringShowsAHand();

    void itIsHeardAsACheckBox();
    void itsNameComesFromTheOwner();
    void togglingIsHeard();
    void itIsWorkedByAssistiveTechnology();
    void deletingWhileAnimatingIsSafe();
};

void tst_UtilsToggleSwitch::aNewSwitchIsOff()
{
    QWidget parent;
    UtilsToggleSwitch toggle(&parent);
    QCOMPARE(toggle.parentWidget(), &parent);
    QVERIFY(toggle.isCheckable());
    QVERIFY(!toggle.isChecked());
    QVERIFY(!toggle.getState());
    QCOMPARE(toggle.getThumbColor(), QColor(Qt::white));
    QCOMPARE(toggle.getBorderColor(), QColor());
    QCOMPARE(toggle.getBackgroundColorOff(), QColor(Qt::black));
    QCOMPARE(toggle.getBackgroundColorOn(), QColor(Qt::black));
    QCOMPARE(toggle.getThumbXPos(), toggle.height() / 2);
    QVERIFY(toggle.focusPolicy() & Qt::TabFocus);
    QCOMPARE(animationOf(toggle)->state(), QAbstractAnimation::Stopped);
    QVERIFY(!UtilsToggleSwitch().parent());
}

void tst_UtilsToggleSwitch::oneAnimationServesTheThumb()
{
    ShownSwitch toggle;
    const QPointer<QPropertyAnimation> animation = animationOf(toggle);
    QVERIFY(animation);
    QCOMPARE(animation->parent(), &toggle);
    QCOMPARE(animation->targetObject(), &toggle);
    QCOMPARE(animation->propertyName(), QByteArray("thumbXPos"));
    QCOMPARE(animation->easingCurve().type(), QEasingCurve::InOutQuad);
    for (int i = 0; i < 3; ++i) {
        toggle.toggle();
        QCOMPARE(animation->state(), QAbstractAnimation::Running);
        QCOMPARE(animation->duration(), 120);
        QVERIFY(isAtRest(toggle));
    }
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCOMPARE(toggle.findChildren<QPropertyAnimation *>(), QList<QPropertyAnimation *>{animation});
}

void tst_UtilsToggleSwitch::aWidgetOfAnySizeFindsItsPositions_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<int>("off");
    QTest::addColumn<int>("on");
    QTest::newRow("as usual") << Size << Off << On;
    QTest::newRow("odd height") << QSize(50, 21) << 10 << 40;
    QTest::newRow("a circle") << QSize(20, 20) << 10 << 10;
    QTest::newRow("higher than wide") << QSize(10, 30) << 15 << -5;
    QTest::newRow("one pixel") << QSize(1, 1) << 0 << 1;
}

void tst_UtilsToggleSwitch::aWidgetOfAnySizeFindsItsPositions()
{
    QFETCH(QSize, size);
    QFETCH(int, off);
    QFETCH(int, on);
    QWidget window;
    UtilsToggleSwitch toggle(&window);
    toggle.resize(size);
    window.show();
    QTRY_COMPARE(toggle.getThumbXPos(), off);
    toggle.setChecked(true);
    QTRY_COMPARE(toggle.getThumbXPos(), on);
    toggle.setChecked(false);
    QTRY_COMPARE(toggle.getThumbXPos(), off);
    imageOf(toggle);
}

void tst_UtilsToggleSwitch::resizingWhileOnMovesTheThumbAtOnce()
{
    ShownSwitch toggle;
    toggle.setChecked(true);
    QTRY_COMPARE(toggle.getThumbXPos(), On);
    QVERIFY(isAtRest(toggle));
    toggle.resize(60, 20);
    QCOMPARE(toggle.getThumbXPos(), 50);
    QVERIFY(isAtRest(toggle));
    QCOMPARE(toggle.getThumbXPos(), 50);
}

void tst_UtilsToggleSwitch::resizingWhileOffLetsTheThumbGlide()
{
    ShownSwitch toggle;
    QTRY_COMPARE(toggle.getThumbXPos(), Off);
    QVERIFY(isAtRest(toggle));
    toggle.resize(80, 40);
    QCOMPARE(toggle.getThumbXPos(), Off);
    QCOMPARE(animationOf(toggle)->state(), QAbstractAnimation::Running);
    QTRY_COMPARE(toggle.getThumbXPos(), 20);
}

void tst_UtilsToggleSwitch::resizingDuringAnAnimationEndsAtTheNewPosition()
{
    ShownSwitch toggle;
    QVERIFY(isAtRest(toggle));
    toggle.setChecked(true);
    toggle.resize(100, 20);
    QCOMPARE(toggle.getThumbXPos(), 90);
    toggle.setChecked(false);
    toggle.resize(100, 40);
    QVERIFY(isAtRest(toggle));
    QCOMPARE(toggle.getThumbXPos(), 20);
}

void tst_UtilsToggleSwitch::theHintIsTwiceTheHeight_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QSize>("hint");
    QTest::newRow("as usual") << Size << QSize(40, 20);
    QTest::newRow("narrow") << QSize(5, 33) << QSize(66, 33);
    QTest::newRow("empty") << QSize(40, 0) << QSize(0, 0);
}

void tst_UtilsToggleSwitch::theHintIsTwiceTheHeight()
{
    QFETCH(QSize, size);
    QFETCH(QSize, hint);
    UtilsToggleSwitch toggle;
    toggle.resize(size);
    QCOMPARE(toggle.sizeHint(), hint);
}

void tst_UtilsToggleSwitch::layoutsAskForTheHint()
{
    QWidget window;
    auto *layout = new QHBoxLayout(&window);
    auto *toggle = new UtilsToggleSwitch;
    toggle->setFixedHeight(24);
    layout->addWidget(toggle, 0, Qt::AlignLeft);
    window.resize(300, 100);
    window.show();
    QCOMPARE(static_cast<const QWidget *>(toggle)->sizeHint(), QSize(48, 24));
    QCOMPARE(toggle->size(), QSize(48, 24));
}

void tst_UtilsToggleSwitch::togglingGlidesToTheOtherEnd()
{
    ShownSwitch toggle;
    QVERIFY(isAtRest(toggle));
    QList<int> positions;
    connect(animationOf(toggle), &QVariantAnimation::valueChanged, this,
            [&positions, &toggle] { positions.append(toggle.getThumbXPos()); });
    toggle.setChecked(true);
    QVERIFY(toggle.getState());
    QCOMPARE(toggle.getThumbXPos(), Off);
    QVERIFY(isAtRest(toggle));
    QCOMPARE(toggle.getThumbXPos(), On);
    QVERIFY(std::is_sorted(positions.cbegin(), positions.cend()));
    QCOMPARE(animationOf(toggle)->startValue().toInt(), Off);
    QCOMPARE(animationOf(toggle)->endValue().toInt(), On);
}

void tst_UtilsToggleSwitch::togglingBackTurnsTheThumbAround()
{
    ShownSwitch toggle;
    QVERIFY(isAtRest(toggle));
    toggle.setChecked(true);
    toggle.setThumbXPos(17);
    toggle.setChecked(false);
    QCOMPARE(animationOf(toggle)->startValue().toInt(), 17);
    QCOMPARE(animationOf(toggle)->endValue().toInt(), Off);
    QVERIFY(isAtRest(toggle));
    QCOMPARE(toggle.getThumbXPos(), Off);
    QVERIFY(!toggle.getState());
}

void tst_UtilsToggleSwitch::startAnimationLeavesTheStateAlone()
{
    ShownSwitch toggle;
    QVERIFY(isAtRest(toggle));
    const QSignalSpy toggled(&toggle, &UtilsToggleSwitch::toggled);
    toggle.startAnimation(true);
    QTRY_COMPARE(toggle.getThumbXPos(), On);
    QVERIFY(!toggle.getState());
    QVERIFY(!toggle.isChecked());
    QVERIFY(toggled.isEmpty());
    QVERIFY(isAtRest(toggle));
    toggle.startAnimation(false);
    QTRY_COMPARE(toggle.getThumbXPos(), Off);
}

void tst_UtilsToggleSwitch::theStateIsTheSwitchsOwn()
{
    ShownSwitch toggle;
    toggle.setBackgroundColorOn(Qt::green);
    QVERIFY(QMetaObject::invokeMethod(&toggle, "slotToggled", Q_ARG(bool, true)));
    QVERIFY(toggle.getState());
    QVERIFY(!toggle.isChecked());
    QTRY_COMPARE(toggle.getThumbXPos(), On);
    QCOMPARE(imageOf(toggle).pixelColor(15, 10), QColor(Qt::green));

    toggle.toggleOnMouseClick(false);
    const QSignalSpy clicked(&toggle, &UtilsToggleSwitch::clicked);
    QTest::mouseClick(&toggle, Qt::LeftButton);
    QCOMPARE(clicked.count(), 1);
    QCOMPARE(clicked.first().first().toBool(), false); // of the button, not of what is shown
}

void tst_UtilsToggleSwitch::theStateStaysBehindBlockedSignals()
{
    ShownSwitch toggle;
    const QSignalBlocker blocker(&toggle);
    toggle.setChecked(true);
    QVERIFY(toggle.isChecked());
    QVERIFY(!toggle.getState());
}

void tst_UtilsToggleSwitch::aClickToggles()
{
    ShownSwitch toggle;
    const QSignalSpy clicked(&toggle, &UtilsToggleSwitch::clicked);
    const QSignalSpy toggled(&toggle, &UtilsToggleSwitch::toggled);
    for (const bool on : {true, false}) {
        QTest::mouseClick(&toggle, Qt::LeftButton);
        QCOMPARE(toggle.isChecked(), on);
        QCOMPARE(toggle.getState(), on);
        QCOMPARE(clicked.last().first().toBool(), on);
        QCOMPARE(toggled.last().first().toBool(), on);
    }
    QCOMPARE(clicked.count(), 2);
    QTest::mouseClick(&toggle, Qt::RightButton);
    QCOMPARE(clicked.count(), 2);
}

void tst_UtilsToggleSwitch::aClickLeavesTheDecisionToTheOwner_data()
{
    QTest::addColumn<bool>("on");
    QTest::addColumn<Qt::MouseButton>("button");
    QTest::newRow("off") << false << Qt::LeftButton;
    QTest::newRow("on") << true << Qt::LeftButton;
    QTest::newRow("any button") << true << Qt::RightButton;
}

void tst_UtilsToggleSwitch::aClickLeavesTheDecisionToTheOwner()
{
    QFETCH(bool, on);
    QFETCH(Qt::MouseButton, button);
    ShownSwitch toggle;
    toggle.setChecked(on);
    QVERIFY(isAtRest(toggle));
    const int position = toggle.getThumbXPos();
    toggle.toggleOnMouseClick(false);
    const QSignalSpy clicked(&toggle, &UtilsToggleSwitch::clicked);
    const QSignalSpy toggled(&toggle, &UtilsToggleSwitch::toggled);
    const QSignalSpy released(&toggle, &UtilsToggleSwitch::released);
    QTest::mouseClick(&toggle, button);
    QCOMPARE(clicked.count(), 1);
    QCOMPARE(clicked.first().first().toBool(), on);
    QVERIFY(toggled.isEmpty());
    QVERIFY(released.isEmpty());
    QCOMPARE(toggle.isChecked(), on);
    QCOMPARE(toggle.getState(), on);
    QCOMPARE(toggle.getThumbXPos(), position);
    QCOMPARE(animationOf(toggle)->state(), QAbstractAnimation::Stopped);
    QVERIFY(!toggle.isDown());

    toggle.toggleOnMouseClick(true);
    QTest::mouseClick(&toggle, Qt::LeftButton);
    QCOMPARE(toggle.isChecked(), !on);
}

void tst_UtilsToggleSwitch::theOwnerMayDecideInTheClick()
{
    ShownSwitch toggle;
    toggle.toggleOnMouseClick(false);
    connect(&toggle, &UtilsToggleSwitch::clicked, &toggle, [&toggle](bool on) { toggle.setChecked(!on); });
    QTest::mouseClick(&toggle, Qt::LeftButton);
    QVERIFY(toggle.isChecked());
    QVERIFY(toggle.getState());
    QTRY_COMPARE(toggle.getThumbXPos(), On);
}

void tst_UtilsToggleSwitch::theOwnerMayDeleteTheSwitchInTheClick()
{
    QWidget window;
    auto *toggle = new UtilsToggleSwitch(&window);
    const QPointer<UtilsToggleSwitch> guard(toggle);
    toggle->resize(Size);
    toggle->toggleOnMouseClick(false);
    window.show();
    connect(toggle, &UtilsToggleSwitch::clicked, &window, [toggle] { toggle->deleteLater(); });
    QTest::mouseClick(toggle, Qt::LeftButton);
    QTRY_VERIFY(!guard);
}

void tst_UtilsToggleSwitch::aReleaseIsConsumedOnlyWhenTheOwnerDecides()
{
    ShownSwitch toggle;
    for (const bool toggles : {true, false}) {
        toggle.toggleOnMouseClick(toggles);
        QMouseEvent release(QEvent::MouseButtonRelease, QPointF(5, 5), QPointF(5, 5), Qt::LeftButton, Qt::NoButton,
                            Qt::NoModifier);
        release.ignore();
        QCOMPARE(toggle.eventFilter(&toggle, &release), !toggles);
        QCOMPARE(release.isAccepted(), !toggles);
    }
}

void tst_UtilsToggleSwitch::aDisabledSwitchIgnoresClicks_data()
{
    QTest::addColumn<bool>("toggles");
    QTest::newRow("mouse toggles") << true;
    QTest::newRow("owner decides") << false;
}

void tst_UtilsToggleSwitch::aDisabledSwitchIgnoresClicks()
{
    QFETCH(bool, toggles);
    ShownSwitch toggle;
    toggle.toggleOnMouseClick(toggles);
    toggle.setEnabled(false);
    const QSignalSpy clicked(&toggle, &UtilsToggleSwitch::clicked);
    QTest::mouseClick(&toggle, Qt::LeftButton);
    QVERIFY(clicked.isEmpty());
    QVERIFY(!toggle.isChecked());
    toggle.setChecked(true); // the owner still may
    QTRY_COMPARE(toggle.getThumbXPos(), On);
}

void tst_UtilsToggleSwitch::theSpaceKeyTogglesAlways_data()
{
    QTest::addColumn<bool>("toggles");
    QTest::newRow("mouse toggles") << true;
    QTest::newRow("owner decides about the mouse") << false;
}

void tst_UtilsToggleSwitch::theSpaceKeyTogglesAlways()
{
    QFETCH(bool, toggles);
    QWidget window;
    UtilsToggleSwitch first(&window);
    UtilsToggleSwitch second(&window);
    second.toggleOnMouseClick(toggles);
    window.show();
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    first.setFocus();
    QTest::keyClick(&window, Qt::Key_Tab);
    QCOMPARE(QApplication::focusWidget(), &second);
    const QSignalSpy clicked(&second, &UtilsToggleSwitch::clicked);
    QTest::keyClick(&second, Qt::Key_Space);
    QVERIFY(second.isChecked());
    QVERIFY(second.getState());
    QCOMPARE(clicked.count(), 1);
    QCOMPARE(clicked.first().first().toBool(), true);
}

void tst_UtilsToggleSwitch::eventsOfOthersPass()
{
    ShownSwitch toggle;
    toggle.toggleOnMouseClick(false);
    QCheckBox box;
    box.installEventFilter(&toggle);
    box.show();
    const QSignalSpy clicked(&toggle, &UtilsToggleSwitch::clicked);
    QTest::mouseClick(&box, Qt::LeftButton, {}, QPoint(5, box.height() / 2));
    QVERIFY(box.isChecked());
    QVERIFY(clicked.isEmpty());
    QHoverEvent enter(QEvent::HoverEnter, QPointF(), QPointF(), QPointF());
    QVERIFY(!toggle.eventFilter(&box, &enter));
    QVERIFY(!toggle.property("hover").isValid());
}

void tst_UtilsToggleSwitch::hoveringIsAProperty()
{
    ShownSwitch toggle;
    QVERIFY(!toggle.property("hover").isValid());
    QHoverEvent enter(QEvent::HoverEnter, QPointF(5, 5), QPointF(5, 5), QPointF(-1, -1));
    QVERIFY(toggle.eventFilter(&toggle, &enter));
    QCOMPARE(toggle.property("hover"), QVariant(true));
    QHoverEvent leave(QEvent::HoverLeave, QPointF(-1, -1), QPointF(-1, -1), QPointF(5, 5));
    QVERIFY(toggle.eventFilter(&toggle, &leave));
    QCOMPARE(toggle.property("hover"), QVariant(false));
    QHoverEvent move(QEvent::HoverMove, QPointF(6, 6), QPointF(6, 6), QPointF(5, 5));
    QVERIFY(!toggle.eventFilter(&toggle, &move));
}

void tst_UtilsToggleSwitch::theMouseFindsTheStyleSheetsHover()
{
    QWidget window;
    window.resize(200, 100);
    window.setStyleSheet(QStringLiteral("UtilsToggleSwitch { qproperty-borderColor: #010203; }"
                                        "UtilsToggleSwitch[hover=\"true\"] { qproperty-borderColor: #0a0b0c; }"));
    UtilsToggleSwitch toggle(&window);
    toggle.setGeometry(100, 50, 40, 20);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QTest::mouseMove(&window, QPoint(5, 5));
    QCOMPARE(toggle.getBorderColor(), QColor(1, 2, 3));
    QTest::mouseMove(&window, QPoint(120, 60));
    QTRY_COMPARE(toggle.getBorderColor(), QColor(10, 11, 12));
    QTest::mouseMove(&window, QPoint(5, 5));
    QTRY_COMPARE(toggle.getBorderColor(), QColor(1, 2, 3));
}

void tst_UtilsToggleSwitch::enteringShowsAHand()
{
    ShownSwitch toggle;
    QCOMPARE(toggle.cursor().shape(), Qt::ArrowCursor);
    QEnterEvent enter(QPointF(5, 5), QPointF(5, 5), QPointF(5, 5));
    QCoreApplication::sendEvent(&toggle, &enter);
    QCOMPARE(toggle.cursor().shape(), Qt::PointingHandCursor);
}

void tst_UtilsToggleSwitch::itIsHeardAsACheckBox()
{
    ShownSwitch toggle;
    QAccessibleInterface *interface = QAccessible::queryAccessibleInterface(&toggle);
    QVERIFY(interface);
    QCOMPARE(interface->role(), QAccessible::CheckBox);
    QVERIFY(interface->state().checkable);
    QVERIFY(interface->state().focusable);
    QVERIFY(!interface->state().checked);
    toggle.setChecked(true);
    QVERIFY(interface->state().checked);
    toggle.toggleOnMouseClick(false);
    QTest::mouseClick(&toggle, Qt::LeftButton);
    QVERIFY(!interface->state().pressed);
    toggle.setEnabled(false);
    QVERIFY(interface->state().disabled);
}

void tst_UtilsToggleSwitch::itsNameComesFromTheOwner()
{
    ShownSwitch toggle;
    toggle.setAccessibleName(QStringLiteral("Verify after writing"));
    QCOMPARE(QAccessible::queryAccessibleInterface(&toggle)->text(QAccessible::Name),
             QStringLiteral("Verify after writing"));

    QWidget form;
    auto *layout = new QFormLayout(&form);
    auto *labelled = new UtilsToggleSwitch;
    layout->addRow(QStringLiteral("Power"), labelled);
    const auto relations = QAccessible::queryAccessibleInterface(labelled)->relations(QAccessible::Label);
    QCOMPARE(relations.size(), 1);
    QCOMPARE(relations.first().first->text(QAccessible::Name), QStringLiteral("Power"));
}

void tst_UtilsToggleSwitch::togglingIsHeard()
{
    if (!AccessibleEvents::isAvailable())
        QSKIP("Qt's private headers are missing.");
    AccessibleEvents events;
    ShownSwitch toggle;
    events.clear();
    toggle.setChecked(true);
    QAccessible::State checked;
    checked.checked = true;
    QAccessibleStateChangeEvent change(&toggle, checked);
    QVERIFY(events.contains(&change));
}

void tst_UtilsToggleSwitch::itIsWorkedByAssistiveTechnology()
{
    ShownSwitch toggle;
    QAccessibleActionInterface *actions = QAccessible::queryAccessibleInterface(&toggle)->actionInterface();
    QVERIFY(actions);
    QVERIFY(actions->actionNames().contains(QAccessibleActionInterface::toggleAction()));
    actions->doAction(QAccessibleActionInterface::toggleAction());
    QTRY_VERIFY(toggle.isChecked());
    QVERIFY(toggle.getState());
}

void tst_UtilsToggleSwitch::deletingWhileAnimatingIsSafe()
{
    auto toggle = std::make_unique<ShownSwitch>();
    toggle->setChecked(true);
    QCOMPARE(animationOf(*toggle)->state(), QAbstractAnimation::Running);
    toggle.reset();
    QCoreApplication::processEvents();
}

UNIPROG_TEST_MAIN(tst_UtilsToggleSwitch)

#include "tst_utilstoggleswitch.moc"
