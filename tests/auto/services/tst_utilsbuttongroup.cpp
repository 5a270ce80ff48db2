#include <UtilsButtonGroup.h>

#include <UniProgTest.h>

#include <QAccessible>
#include <QApplication>
#include <QButtonGroup>
#include <QHBoxLayout>
#include <QPointer>
#include <QSignalSpy>
#include <QStyle>
#include <QToolButton>

using Before = void (*)(UtilsButtonGroup &);
Q_DECLARE_METATYPE(Before)

class tst_UtilsButtonGroup : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void theFormIsAsStated();
    void aButtonIsAsStated();
    void theSignalIsTheFirst();
    void idsAreThoseGiven();
    void theSameNameAddsNothing();
    void addButtonsAddsNothing_data();
    void addButtonsAddsNothing();
    void theEndsAreMarked_data();
    void theEndsAreMarked();
    void onlyARightEndBecomesAMiddle();
    void marksReachTheStyleSheetAtOnce();
    void theLeftEndIsLeftInEveryLayout();
    void oneButtonIsChecked();
    void anUnknownIdChecksNothing();
    void clicksAreAnnounced();

    void removedButtonsGoLater();
    void aNameIsFreeAtOnceAfterRemoval();
    void anIdIsFreeAtOnceAfterRemoval();
    void marksBeginAnewAfterRemoval();
    void removingNothingIsHarmless();
    void aButtonMayBeDeletedByOthers();

    void sizesGoToEveryButton();
    void propertiesGoToEveryButton();
    void propertiesAreNotPolished();
    void theInnerGroupStaysBehind();
    void theWidgetMayGoInAClick();
    void aButtonOutlivesTheRowThatItsClickDeletes_data();
    void aButtonOutlivesTheRowThatItsClickDeletes();
    void keysWalkTheRow();
    void buttonsAreHeard();
};

namespace {

QToolButton *buttonOf(const UtilsButtonGroup &group, const QString &name)
{
    return group.findChild<QToolButton *>(name);
}

QStringList namesOf(const UtilsButtonGroup &group)
{
    QStringList names;
    const QLayout *row = group.findChild<QFrame *>(QStringLiteral("frame_buttons"))->layout();
    for (int i = 0; i < row->count(); ++i)
        names.append(row->itemAt(i)->widget()->objectName());
    return names;
}

/// The marks of a button: l, m, r for those that are true, and R for a right mark that was taken back.
QString marksOf(const UtilsButtonGroup &group, const QString &name)
{
    const QToolButton *button = buttonOf(group, name);
    QString marks;
    if (button->property("button-group-left").toBool())
        marks += QLatin1Char('l');
    if (button->property("button-group-middle").toBool())
        marks += QLatin1Char('m');
    const QVariant right = button->property("button-group-right");
    if (right.isValid())
        marks += right.toBool() ? QLatin1Char('r') : QLatin1Char('R');
    return marks;
}

void runDeletions()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

} // namespace

void tst_UtilsButtonGroup::theFormIsAsStated()
{
    QWidget parent;
    const UtilsButtonGroup group(&parent);
    QCOMPARE(group.parentWidget(), &parent);
    QCOMPARE(group.objectName(), QStringLiteral("UtilsButtonGroup"));
    QCOMPARE(group.size(), QSize(400, 43));
    QCOMPARE(group.lineWidth(), -12);
    QCOMPARE(group.count(), 0);
    auto *layout = qobject_cast<QHBoxLayout *>(group.layout());
    QVERIFY(layout);
    QCOMPARE(layout->objectName(), QStringLiteral("horizontalLayout"));
    QCOMPARE(layout->contentsMargins(), QMargins());
    QCOMPARE(layout->count(), 1);

    auto *frame = qobject_cast<QFrame *>(layout->itemAt(0)->widget());
    QVERIFY(frame);
    QCOMPARE(frame->objectName(), QStringLiteral("frame_buttons"));
    QCOMPARE(frame->frameShape(), QFrame::StyledPanel);
    QCOMPARE(frame->frameShadow(), QFrame::Raised);
    QCOMPARE(frame->sizePolicy().horizontalPolicy(), QSizePolicy::Expanding);
    QCOMPARE(frame->sizePolicy().verticalPolicy(), QSizePolicy::Expanding);

    auto *row = qobject_cast<QHBoxLayout *>(frame->layout());
    QVERIFY(row);
    QCOMPARE(row->contentsMargins(), QMargins());
    QCOMPARE(row->spacing(), 0);
    QCOMPARE(row->sizeConstraint(), QLayout::SetNoConstraint);
    QCOMPARE(row->count(), 0);
}

void tst_UtilsButtonGroup::aButtonIsAsStated()
{
    UtilsButtonGroup group(nullptr);
    group.addButton(QStringLiteral("HEX"), 3);
    const QToolButton *button = buttonOf(group, QStringLiteral("HEX"));
    QVERIFY(button);
    QCOMPARE(button->text(), QStringLiteral("HEX"));
    QVERIFY(button->isCheckable());
    QVERIFY(!button->isChecked());
    QCOMPARE(button->sizePolicy().horizontalPolicy(), QSizePolicy::Preferred);
    QCOMPARE(button->sizePolicy().verticalPolicy(), QSizePolicy::Expanding);
    QCOMPARE(button->parentWidget()->objectName(), QStringLiteral("frame_buttons"));
    QVERIFY(button->group()->exclusive());
    QVERIFY(!button->group()->parent());
}

void tst_UtilsButtonGroup::theSignalIsTheFirst()
{
    const QMetaObject &meta = UtilsButtonGroup::staticMetaObject;
    QCOMPARE(meta.method(meta.methodOffset()).methodSignature(), QByteArray("signalButtonClicked(int)"));
    QCOMPARE(meta.method(meta.methodOffset()).methodType(), QMetaMethod::Signal);
}

void tst_UtilsButtonGroup::idsAreThoseGiven()
{
    UtilsButtonGroup group(nullptr);
    QCOMPARE(group.addButton(QStringLiteral("A"), 7), 7);
    QCOMPARE(group.addButton(QStringLiteral("B"), 0), 0);
    const int first = group.addButton(QStringLiteral("C"), -1);
    const int second = group.addButton(QStringLiteral("D"), -1);
    QVERIFY(first < 0);
    QVERIFY(second < 0);
    QVERIFY(first != second);
    QCOMPARE(group.count(), 4);
    group.checkButton(first);
    QVERIFY(buttonOf(group, QStringLiteral("C"))->isChecked());
}

void tst_UtilsButtonGroup::theSameNameAddsNothing()
{
    UtilsButtonGroup group(nullptr);
    for (const char *name : {"A", "B", "C"})
        group.addButton(QLatin1String(name), name[0]);
    QCOMPARE(group.addButton(QStringLiteral("B"), 99), int('B'));
    QCOMPARE(group.addButton(QStringLiteral("B"), -1), int('B'));
    QCOMPARE(group.count(), 3);
    QCOMPARE(namesOf(group), (QStringList{"A", "B", "C"}));
    QCOMPARE(marksOf(group, QStringLiteral("C")), QStringLiteral("r"));
    QCOMPARE(group.addButton(QStringLiteral("b"), 99), 99); // another name
}

void tst_UtilsButtonGroup::addButtonsAddsNothing_data()
{
    QTest::addColumn<QList<QString>>("names");
    QTest::newRow("none") << QList<QString>();
    QTest::newRow("new ones") << QList<QString>{"X", "Y"};
    QTest::newRow("known ones") << QList<QString>{"A", "B"};
}

void tst_UtilsButtonGroup::addButtonsAddsNothing()
{
    QFETCH(QList<QString>, names);
    UtilsButtonGroup group(nullptr);
    group.addButton(QStringLiteral("A"), 0);
    group.addButtons(names);
    QCOMPARE(group.count(), 1);
    QCOMPARE(namesOf(group), QStringList{"A"});
    QCOMPARE(marksOf(group, QStringLiteral("A")), QString());
}

void tst_UtilsButtonGroup::theEndsAreMarked_data()
{
    QTest::addColumn<QStringList>("marks");
    QTest::newRow("one") << QStringList{""};
    QTest::newRow("two") << QStringList{"l", "r"};
    QTest::newRow("three") << QStringList{"l", "mR", "r"};
    QTest::newRow("five") << QStringList{"l", "mR", "mR", "mR", "r"};
}

void tst_UtilsButtonGroup::theEndsAreMarked()
{
    QFETCH(QStringList, marks);
    UtilsButtonGroup group(nullptr);
    QStringList names;
    for (int i = 0; i < marks.size(); ++i) {
        names.append(QString(QChar('A' + i)));
        group.addButton(names.last(), i);
    }
    QCOMPARE(namesOf(group), names);
    for (int i = 0; i < marks.size(); ++i)
        QCOMPARE(marksOf(group, names.at(i)), marks.at(i));
}

void tst_UtilsButtonGroup::onlyARightEndBecomesAMiddle()
{
    UtilsButtonGroup group(nullptr);
    group.addButton(QStringLiteral("A"), 0);
    group.addButton(QStringLiteral("B"), 1);
    group.setButtonsProperty("button-group-right", false); // an application that draws the row open
    group.addButton(QStringLiteral("C"), 2);
    QCOMPARE(marksOf(group, QStringLiteral("B")), QStringLiteral("R"));
    QCOMPARE(marksOf(group, QStringLiteral("C")), QStringLiteral("r"));
}

void tst_UtilsButtonGroup::marksReachTheStyleSheetAtOnce()
{
    QWidget window;
    window.setStyleSheet(QStringLiteral("QToolButton { border: none; max-width: 10px; }"
                                        "QToolButton[button-group-left=\"true\"] { max-width: 20px; }"
                                        "QToolButton[button-group-middle=\"true\"] { max-width: 30px; }"
                                        "QToolButton[button-group-right=\"true\"] { max-width: 40px; }"));
    UtilsButtonGroup group(&window);
    window.show();
    for (const char *name : {"A", "B", "C"}) {
        group.addButton(QLatin1String(name), -1);
        QCoreApplication::processEvents();
    }
    QTRY_COMPARE(buttonOf(group, QStringLiteral("A"))->maximumWidth(), 20);
    QTRY_COMPARE(buttonOf(group, QStringLiteral("B"))->maximumWidth(), 30);
    QTRY_COMPARE(buttonOf(group, QStringLiteral("C"))->maximumWidth(), 40);
}

void tst_UtilsButtonGroup::theLeftEndIsLeftInEveryLayout()
{
    QWidget window;
    window.setLayoutDirection(Qt::RightToLeft);
    UtilsButtonGroup group(&window);
    for (const char *name : {"A", "B", "C"})
        group.addButton(QLatin1String(name), -1);
    window.show();
    QVERIFY(buttonOf(group, QStringLiteral("A"))->x() < buttonOf(group, QStringLiteral("B"))->x());
    QVERIFY(buttonOf(group, QStringLiteral("B"))->x() < buttonOf(group, QStringLiteral("C"))->x());
}

void tst_UtilsButtonGroup::oneButtonIsChecked()
{
    UtilsButtonGroup group(nullptr);
    group.addButton(QStringLiteral("A"), 0);
    group.addButton(QStringLiteral("B"), 1);
    const QSignalSpy clicked(&group, &UtilsButtonGroup::signalButtonClicked);
    group.checkButton(0);
    QVERIFY(buttonOf(group, QStringLiteral("A"))->isChecked());
    group.checkButton(1);
    QVERIFY(!buttonOf(group, QStringLiteral("A"))->isChecked());
    QVERIFY(buttonOf(group, QStringLiteral("B"))->isChecked());
    group.checkButton(1);
    QVERIFY(buttonOf(group, QStringLiteral("B"))->isChecked());
    QVERIFY(clicked.isEmpty());
}

void tst_UtilsButtonGroup::anUnknownIdChecksNothing()
{
    UtilsButtonGroup group(nullptr);
    group.checkButton(0);
    group.addButton(QStringLiteral("A"), 0);
    group.checkButton(0);
    for (const int id : {1, -1, -2})
        group.checkButton(id);
    QVERIFY(buttonOf(group, QStringLiteral("A"))->isChecked());
}

void tst_UtilsButtonGroup::clicksAreAnnounced()
{
    UtilsButtonGroup group(nullptr);
    group.addButton(QStringLiteral("A"), 4);
    const int automatic = group.addButton(QStringLiteral("B"), -1);
    group.show();
    const QSignalSpy clicked(&group, &UtilsButtonGroup::signalButtonClicked);
    QTest::mouseClick(buttonOf(group, QStringLiteral("A")), Qt::LeftButton);
    QTest::mouseClick(buttonOf(group, QStringLiteral("A")), Qt::LeftButton); // checked already
    QTest::mouseClick(buttonOf(group, QStringLiteral("B")), Qt::LeftButton);
    QCOMPARE(clicked, (QList<QList<QVariant>>{{4}, {4}, {automatic}}));
    QVERIFY(buttonOf(group, QStringLiteral("B"))->isChecked());
}

void tst_UtilsButtonGroup::removedButtonsGoLater()
{
    UtilsButtonGroup group(nullptr);
    group.addButton(QStringLiteral("A"), 0);
    group.addButton(QStringLiteral("B"), 1);
    const QPointer<QToolButton> button = buttonOf(group, QStringLiteral("A"));
    group.removeButtons();
    QVERIFY(button);
    QCOMPARE(group.count(), 2);
    runDeletions();
    QVERIFY(!button);
    QCOMPARE(group.count(), 0);
    QCOMPARE(namesOf(group), QStringList());
}

void tst_UtilsButtonGroup::aNameIsFreeAtOnceAfterRemoval()
{
    UtilsButtonGroup group(nullptr);
    group.addButton(QStringLiteral("A"), 0);
    group.addButton(QStringLiteral("B"), 1);
    group.removeButtons();
    QCOMPARE(group.addButton(QStringLiteral("A"), 10), 10);
    QCOMPARE(group.addButton(QStringLiteral("B"), 11), 11);
    QCOMPARE(group.addButton(QStringLiteral("A"), 12), 10);
    runDeletions();
    QCOMPARE(group.count(), 2);
    QCOMPARE(namesOf(group), (QStringList{"A", "B"}));
    group.checkButton(11);
    QVERIFY(buttonOf(group, QStringLiteral("B"))->isChecked());
}

void tst_UtilsButtonGroup::anIdIsFreeAtOnceAfterRemoval()
{
    UtilsButtonGroup group(nullptr);
    for (int id = 0; id < 8; ++id)
        group.addButton(QString::number(id), id);
    group.checkButton(5);
    group.removeButtons();
    for (int id = 0; id < 8; ++id)
        QCOMPARE(group.addButton(QStringLiteral("new %1").arg(id), id), id);
    group.checkButton(3);
    runDeletions();
    QVERIFY(buttonOf(group, QStringLiteral("new 3"))->isChecked());
    QCOMPARE(group.count(), 8);
    group.checkButton(6);
    QVERIFY(buttonOf(group, QStringLiteral("new 6"))->isChecked());
    QVERIFY(!buttonOf(group, QStringLiteral("new 3"))->isChecked());
}

void tst_UtilsButtonGroup::marksBeginAnewAfterRemoval()
{
    UtilsButtonGroup group(nullptr);
    for (const char *name : {"A", "B", "C"})
        group.addButton(QLatin1String(name), -1);
    group.removeButtons();
    group.addButton(QStringLiteral("D"), -1);
    QCOMPARE(marksOf(group, QStringLiteral("D")), QString());
    group.addButton(QStringLiteral("E"), -1);
    runDeletions();
    QCOMPARE(marksOf(group, QStringLiteral("D")), QStringLiteral("l"));
    QCOMPARE(marksOf(group, QStringLiteral("E")), QStringLiteral("r"));
}

void tst_UtilsButtonGroup::removingNothingIsHarmless()
{
    UtilsButtonGroup group(nullptr);
    group.removeButtons();
    group.addButton(QStringLiteral("A"), 0);
    group.removeButtons();
    group.removeButtons();
    runDeletions();
    group.removeButtons();
    QCOMPARE(group.count(), 0);
    QCOMPARE(group.addButton(QStringLiteral("A"), 2), 2);
}

void tst_UtilsButtonGroup::aButtonMayBeDeletedByOthers()
{
    UtilsButtonGroup group(nullptr);
    for (const char *name : {"A", "B", "C"})
        group.addButton(QLatin1String(name), name[0]);
    delete buttonOf(group, QStringLiteral("C"));
    QCOMPARE(group.count(), 2);
    group.checkButton('C');
    group.setButtonsMinSize(10, 10);
    QCOMPARE(group.addButton(QStringLiteral("C"), 3), 3);
    QCOMPARE(marksOf(group, QStringLiteral("B")), QStringLiteral("mR"));
    QCOMPARE(marksOf(group, QStringLiteral("C")), QStringLiteral("r"));
}

void tst_UtilsButtonGroup::sizesGoToEveryButton()
{
    UtilsButtonGroup group(nullptr);
    group.setButtonsMaxSize(1, 1); // no buttons yet
    for (const char *name : {"A", "B", "C"})
        group.addButton(QLatin1String(name), -1);
    group.setButtonsMaxSize(80, 30);
    group.setButtonsMinSize(40, 20);
    for (const char *name : {"A", "B", "C"}) {
        QCOMPARE(buttonOf(group, QLatin1String(name))->maximumSize(), QSize(80, 30));
        QCOMPARE(buttonOf(group, QLatin1String(name))->minimumSize(), QSize(40, 20));
    }
    group.addButton(QStringLiteral("D"), -1);
    QCOMPARE(buttonOf(group, QStringLiteral("D"))->minimumSize(), QSize(0, 0));
}

void tst_UtilsButtonGroup::propertiesGoToEveryButton()
{
    UtilsButtonGroup group(nullptr);
    group.setButtonsProperty("font-size", QStringLiteral("level1"));
    for (const char *name : {"A", "B"})
        group.addButton(QLatin1String(name), -1);
    QVERIFY(!buttonOf(group, QStringLiteral("A"))->property("font-size").isValid());
    group.setButtonsProperty("font-size", QStringLiteral("level2"));
    for (const char *name : {"A", "B"})
        QCOMPARE(buttonOf(group, QLatin1String(name))->property("font-size"), QVariant(QStringLiteral("level2")));
}

void tst_UtilsButtonGroup::propertiesAreNotPolished()
{
    UtilsButtonGroup group(nullptr);
    group.setStyleSheet(QStringLiteral("QToolButton[mark=\"true\"] { border: none; max-width: 11px; }"));
    group.addButton(QStringLiteral("A"), -1);
    group.show();
    QToolButton *button = buttonOf(group, QStringLiteral("A"));
    group.setButtonsProperty("mark", true);
    QCoreApplication::processEvents();
    QCOMPARE(button->maximumWidth(), QWIDGETSIZE_MAX);
    button->style()->unpolish(button);
    button->style()->polish(button);
    QCOMPARE(button->maximumWidth(), 11);
}

void tst_UtilsButtonGroup::theInnerGroupStaysBehind()
{
    QPointer<QButtonGroup> inner;
    {
        UtilsButtonGroup group(nullptr);
        group.addButton(QStringLiteral("A"), 0);
        inner = buttonOf(group, QStringLiteral("A"))->group();
    }
    QVERIFY(inner);
    QVERIFY(inner->buttons().isEmpty());
    delete inner;
}

void tst_UtilsButtonGroup::theWidgetMayGoInAClick()
{
    const QPointer<UtilsButtonGroup> group = new UtilsButtonGroup(nullptr);
    group->addButton(QStringLiteral("A"), 0);
    group->show();
    connect(group, &UtilsButtonGroup::signalButtonClicked, group, &QObject::deleteLater);
    QTest::mouseClick(buttonOf(*group, QStringLiteral("A")), Qt::LeftButton);
    runDeletions();
    QVERIFY(!group);
}

void tst_UtilsButtonGroup::aButtonOutlivesTheRowThatItsClickDeletes_data()
{
    QTest::addColumn<Before>("before");
    QTest::newRow("at once") << Before([](UtilsButtonGroup &) {});
    QTest::newRow("after it was removed") << Before([](UtilsButtonGroup &group) { group.removeButtons(); });
    QTest::newRow("after another one was clicked")
        << Before([](UtilsButtonGroup &group) { buttonOf(group, QStringLiteral("B"))->click(); });
}

void tst_UtilsButtonGroup::aButtonOutlivesTheRowThatItsClickDeletes()
{
    QFETCH(Before, before);
    auto *group = new UtilsButtonGroup(nullptr);
    group->addButton(QStringLiteral("A"), 0);
    group->addButton(QStringLiteral("B"), 1);
    group->show();
    const QPointer<QToolButton> button = buttonOf(*group, QStringLiteral("A"));
    bool buttonLives = false;
    connect(group, &UtilsButtonGroup::signalButtonClicked, qApp, [&](int id) {
        if (id != 0)
            return;
        before(*group);
        delete group;
        buttonLives = button;
    });
    QTest::mouseClick(button, Qt::LeftButton);
    QVERIFY(buttonLives); // QToolButton goes on with it
    runDeletions();
    QVERIFY(!button);
}

void tst_UtilsButtonGroup::keysWalkTheRow()
{
    UtilsButtonGroup group(nullptr);
    for (const char *name : {"A", "B", "C"})
        group.addButton(QLatin1String(name), name[0]);
    group.show();
    group.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&group));
    const QSignalSpy clicked(&group, &UtilsButtonGroup::signalButtonClicked);
    QToolButton *first = buttonOf(group, QStringLiteral("A"));
    first->setFocus();
    QTest::keyClick(first, Qt::Key_Space);
    QVERIFY(first->isChecked());
    QTest::keyClick(first, Qt::Key_Right);
    auto *second = qobject_cast<QToolButton *>(QApplication::focusWidget());
    QVERIFY(second);
    QCOMPARE(second->objectName(), QStringLiteral("B"));
    QTest::keyClick(second, Qt::Key_Space);
    QVERIFY(second->isChecked());
    QVERIFY(!first->isChecked());
    QCOMPARE(clicked.first().first().toInt(), int('A'));
    QCOMPARE(clicked.last().first().toInt(), int('B'));
}

void tst_UtilsButtonGroup::buttonsAreHeard()
{
    UtilsButtonGroup group(nullptr);
    group.addButton(QStringLiteral("HEX"), 0);
    group.addButton(QStringLiteral("ASCII"), 1);
    group.checkButton(1);
    for (const char *name : {"HEX", "ASCII"}) {
        QAccessibleInterface *button = QAccessible::queryAccessibleInterface(buttonOf(group, QLatin1String(name)));
        QCOMPARE(button->text(QAccessible::Name), QLatin1String(name));
        QVERIFY(button->state().checkable);
        QCOMPARE(bool(button->state().checked), qstrcmp(name, "ASCII") == 0);
    }
}

UNIPROG_TEST_MAIN(tst_UtilsButtonGroup)

#include "tst_utilsbuttongroup.moc"
