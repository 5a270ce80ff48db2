#include "AccessibleButtons.h"
#include "SidebarSection.h"

#include <UtilsSidebarWidget.h>

#include <ContextTranslator.h>
#include <UniProgTest.h>

#include <QApplication>
#include <QButtonGroup>
#include <QGraphicsDropShadowEffect>
#include <QPointer>
#include <QScrollBar>
#include <QVBoxLayout>

// A section's form, its children and what is selected; how it opens and closes is in tst_utilssidebaritem_folding.cpp.
class tst_UtilsSidebarItem : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();

    void theFormIsAsTheStyleExpects();
    void textsAreTranslatedInTheContextOfTheClass();
    void setUpGivesTheMainButtonItsLook();
    void aChildButtonIsAsTheStyleExpects();
    void theReceiverHearsOfTheSection();

    void childIdsAreNeverReused();
    void childrenStandInTheirRows();
    void aRowBeyondTheEndIsTheLast();
    void aChildFillsARowOf30Pixels_data();
    void aChildFillsARowOf30Pixels();
    void captionsAreRenamed();
    void unknownChildrenAreIgnored();

    void aSectionWithoutChildrenIsSelected();
    void aChildIsSelected();
    void anotherChildTakesTheSelection();
    void checkChildOpensFirst();
    void resetUnchecksEverything();
    void resetUnchecksChildrenOfASectionThatWasNeverOpened();
    void aDirectCallHasNoChild();

    void aRemovedChildIsHeardOfNoMore();
    void aChildMayBeRemovedInItsOwnSignal();
    void childrenMayBeRemovedWhileTheSectionIsReset();

    void theIconFollowsTheButton();
    void theSelectedIconIsNotGrey();
    void theIconIsSharpAtEveryScale_data();
    void theIconIsSharpAtEveryScale();
    void theTextStandsBesideTheIcon_data();
    void theTextStandsBesideTheIcon();
    void aStyleSheetOfItsOwnSeesNewChildren();
    void theSectionIsHeardByAssistiveTechnology();
    void buttonsAreFoundWhileTheSectionIsOpen();
};

void tst_UtilsSidebarItem::cleanup()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY2(QApplication::topLevelWidgets().isEmpty(), "A widget was left behind.");
}

void tst_UtilsSidebarItem::theFormIsAsTheStyleExpects()
{
    const UtilsSidebarItem item(nullptr);
    QCOMPARE(item.objectName(), QStringLiteral("UtilsSidebarItem"));
    QCOMPARE(item.size(), QSize(309, 58));
    QCOMPARE(item.windowTitle(), QStringLiteral("Form"));

    auto *outer = item.findChild<QVBoxLayout *>("verticalLayout");
    auto *widget = item.findChild<QWidget *>("widget");
    auto *inner = item.findChild<QVBoxLayout *>("verticalLayout_2");
    auto *main = item.findChild<QToolButton *>("toolButton_main");
    auto *list = item.findChild<UtilsSidebarListWidget *>("listWidget_children");
    QVERIFY(outer && widget && inner && main && list);
    QCOMPARE(item.layout(), outer);
    QCOMPARE(outer->itemAt(0)->widget(), widget);
    QCOMPARE(widget->layout(), inner);
    QCOMPARE(inner->count(), 2);
    QCOMPARE(inner->itemAt(0)->widget(), main);
    QCOMPARE(inner->itemAt(1)->widget(), list);
    for (const QLayout *layout : {outer, inner}) {
        QCOMPARE(layout->spacing(), 0);
        QCOMPARE(layout->contentsMargins(), QMargins());
    }

    QCOMPARE(main->minimumHeight(), 58);
    QVERIFY(main->isCheckable());
    QVERIFY(!main->isChecked());
    QCOMPARE(main->text(), QStringLiteral("PARENT BUTTON"));
    auto *shadow = qobject_cast<QGraphicsDropShadowEffect *>(main->graphicsEffect());
    QVERIFY(shadow);
    QCOMPARE(shadow->blurRadius(), 8.0);
    QCOMPARE(shadow->offset(), QPointF(0, 0));
    QCOMPARE(shadow->color(), QColor(Qt::black));

    QCOMPARE(list->maximumHeight(), 0);
    QCOMPARE(list->gridSize(), QSize(0, 30));
    QCOMPARE(list->property("background-color"), QVariant(QStringLiteral("transparent")));
    QVERIFY(!item.findChild<QButtonGroup *>()->exclusive());
}

void tst_UtilsSidebarItem::textsAreTranslatedInTheContextOfTheClass()
{
    const ContextTranslator translator("UtilsSidebarItem");
    const UtilsSidebarItem item(nullptr);
    QCOMPARE(item.windowTitle(), QStringLiteral("<Form>"));
    QCOMPARE(item.findChild<QToolButton *>("toolButton_main")->text(), QStringLiteral("<PARENT BUTTON>"));
}

void tst_UtilsSidebarItem::setUpGivesTheMainButtonItsLook()
{
    const Section section;
    const QToolButton *main = section.main();
    QCOMPARE(main->text(), QStringLiteral(" POWER"));
    QCOMPARE(main->toolButtonStyle(), Qt::ToolButtonTextBesideIcon);
    QCOMPARE(main->iconSize(), QSize(21, 21));
    QCOMPARE(main->styleSheet(),
             QStringLiteral("padding-left: 9px; padding-right: 0px;padding-top: 1px; padding-bottom: 1px;"));
    QCOMPARE(main->property("sidebarItem-elementType"), QVariant(QStringLiteral("main-button")));
    QCOMPARE(main->focusPolicy(), Qt::NoFocus);
    QVERIFY(main->isEnabled());
}

void tst_UtilsSidebarItem::aChildButtonIsAsTheStyleExpects()
{
    const Section section(1);
    QToolButton *child = section.childAt(0);
    QVERIFY(child);
    QCOMPARE(child->text(), QStringLiteral("child 1"));
    QCOMPARE(child->sizePolicy().horizontalPolicy(), QSizePolicy::Fixed);
    QCOMPARE(child->sizePolicy().verticalPolicy(), QSizePolicy::Expanding);
    QCOMPARE(child->minimumHeight(), 30);
    QVERIFY(child->isCheckable());
    QVERIFY(!child->isChecked());
    QCOMPARE(child->focusPolicy(), Qt::NoFocus);
    QCOMPARE(child->property("sidebarItem-elementType"), QVariant(QStringLiteral("child-button")));
    QCOMPARE(child->property("sidebarItem-elementActionStatus"), QVariant(QStringLiteral("action-exist")));
    QCOMPARE(child->group(), section.item->findChild<QButtonGroup *>());
}

void tst_UtilsSidebarItem::theReceiverHearsOfTheSection()
{
    UtilsSidebarWidget column;
    const int first = column.addItem("FIRST", UncheckedIcon, CheckedIcon);
    column.addChild("child", first, 0);
    auto *other = column.findChild<QToolButton *>("toolButton_main");
    other->setChecked(true);

    UtilsSidebarItem item(&column); // not one of the column's own, but it reports there
    item.setUp("SECOND", UncheckedIcon, CheckedIcon);
    item.findChild<QToolButton *>("toolButton_main")->setChecked(true);
    QVERIFY(!other->isChecked());
}

void tst_UtilsSidebarItem::childIdsAreNeverReused()
{
    UtilsSidebarItem item(nullptr);
    QCOMPARE(item.addChild("a", 0), 1);
    QCOMPARE(item.addChild("b", 1), 2);
    QCOMPARE(item.addChild("c", 0), 3);
    item.removeChild(3);
    QCOMPARE(item.addChild("d", 0), 4);
    item.removeChild(1);
    item.removeChild(2);
    item.removeChild(4);
    QCOMPARE(item.addChild("e", 0), 5);
}

void tst_UtilsSidebarItem::childrenStandInTheirRows()
{
    Section section;
    section.item->addChild("b", 0);
    section.item->addChild("a", 0);
    section.item->addChild("d", 2);
    section.item->addChild("c", 2);
    QCOMPARE(section.captions(), (QStringList{"a", "b", "c", "d"}));
    section.item->removeChild(1);
    QCOMPARE(section.captions(), (QStringList{"a", "c", "d"}));
}

void tst_UtilsSidebarItem::aRowBeyondTheEndIsTheLast()
{
    Section section;
    section.item->addChild("a", 7);
    section.item->addChild("b", 100);
    QCOMPARE(section.captions(), (QStringList{"a", "b"}));
}

void tst_UtilsSidebarItem::aChildFillsARowOf30Pixels_data()
{
    QTest::addColumn<int>("children");
    QTest::addColumn<QString>("styleSheet");
    QTest::newRow("one") << 1 << QString();
    QTest::newRow("more than a list shows by itself") << 12 << QString();
    QTest::newRow("large text") << 3 << QStringLiteral("QToolButton { font-size: 24px; }");
}

void tst_UtilsSidebarItem::aChildFillsARowOf30Pixels()
{
    QFETCH(int, children);
    QFETCH(QString, styleSheet);
    QWidget column;
    column.setStyleSheet(styleSheet);
    column.resize(250, 700);
    auto *layout = new QVBoxLayout(&column);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    const Section section(children);
    layout->addWidget(section.item.get());
    layout->addStretch();
    column.show();
    QVERIFY(QTest::qWaitForWindowExposed(&column));
    QCOMPARE(section.main()->size(), QSize(250, 58));
    QCOMPARE(section.item->height(), 58);

    section.main()->click();
    QTRY_COMPARE(section.height(), children * 30);
    QTRY_COMPARE(section.list()->height(), children * 30);
    QTRY_COMPARE(section.item->height(), 58 + children * 30);
    for (int row = 0; row < children; ++row) {
        QCOMPARE(section.list()->visualItemRect(section.list()->item(row)), QRect(0, row * 30, 250, 30));
        QCOMPARE(section.childAt(row)->geometry(), QRect(0, row * 30, 250, 30));
        QVERIFY(section.childAt(row)->isVisible());
    }
    QCOMPARE(section.list()->verticalScrollBar()->maximum(), 0);
    section.item->setParent(nullptr);
}

void tst_UtilsSidebarItem::captionsAreRenamed()
{
    Section section(2);
    section.item->setCaption("ENERGY");
    section.item->setChildCaption(2, "Channels");
    QCOMPARE(section.main()->text(), QStringLiteral(" ENERGY"));
    QCOMPARE(section.captions(), (QStringList{"child 1", "Channels"}));
    QCOMPARE(section.log, QStringList());
}

void tst_UtilsSidebarItem::unknownChildrenAreIgnored()
{
    Section section(1);
    for (const int id : {-1, 0, 2}) {
        section.item->removeChild(id);
        section.item->setChildCaption(id, "nobody");
        section.item->checkChild(id);
    }
    QCOMPARE(section.captions(), QStringList("child 1"));
    QVERIFY(!section.main()->isChecked());
    QCOMPARE(section.log, QStringList());
}

void tst_UtilsSidebarItem::aSectionWithoutChildrenIsSelected()
{
    Section section;
    section.item->show();
    QTest::mouseClick(section.main(), Qt::LeftButton);
    QVERIFY(section.main()->isChecked());
    QVERIFY(!section.main()->isEnabled());
    QCOMPARE(section.takeLog(), QStringList("item on"));
    QTest::mouseClick(section.main(), Qt::LeftButton);
    section.main()->click();
    QVERIFY(section.main()->isChecked());
    QCOMPARE(section.takeLog(), QStringList());
    QCOMPARE(section.height(), 0);

    section.item->reset();
    QVERIFY(!section.main()->isChecked());
    QVERIFY(section.main()->isEnabled());
    QCOMPARE(section.takeLog(), QStringList("item off"));
}

void tst_UtilsSidebarItem::aChildIsSelected()
{
    Section section(2);
    section.main()->click();
    section.childAt(1)->click();
    QVERIFY(section.childAt(1)->isChecked());
    QVERIFY(!section.main()->isEnabled());
    QCOMPARE(section.takeLog(), (QStringList{"item on", "child 2 on"}));
    section.childAt(1)->click(); // the group keeps it
    QVERIFY(section.childAt(1)->isChecked());
    QCOMPARE(section.takeLog(), QStringList());
}

void tst_UtilsSidebarItem::anotherChildTakesTheSelection()
{
    Section section(2);
    section.main()->click();
    section.childAt(0)->click();
    section.takeLog();
    section.childAt(1)->click();
    QCOMPARE(section.takeLog(), (QStringList{"item off", "child 1 off", "item on", "child 2 on"}));
    QVERIFY(!section.childAt(0)->isChecked());
    QVERIFY(!section.main()->isEnabled());
}

void tst_UtilsSidebarItem::checkChildOpensFirst()
{
    Section section(2);
    section.item->checkChild(2);
    QVERIFY(section.main()->isChecked());
    QVERIFY(section.childAt(1)->isChecked());
    QCOMPARE(section.takeLog(), (QStringList{"item on", "child 2 on"}));
    QTRY_COMPARE(section.height(), 60);
    section.item->checkChild(2);
    QCOMPARE(section.takeLog(), QStringList());
}

void tst_UtilsSidebarItem::resetUnchecksEverything()
{
    Section section(2);
    section.item->checkChild(1);
    QTRY_COMPARE(section.height(), 60);
    section.takeLog();
    section.item->reset();
    QVERIFY(!section.main()->isChecked());
    QVERIFY(section.main()->isEnabled());
    QVERIFY(!section.childAt(0)->isChecked());
    QCOMPARE(section.takeLog(), (QStringList{"item off", "item off", "child 1 off"}));
    QTRY_COMPARE(section.height(), 0);
    section.item->reset();
    QCOMPARE(section.takeLog(), QStringList());
}

void tst_UtilsSidebarItem::resetUnchecksChildrenOfASectionThatWasNeverOpened()
{
    Section section(2);
    section.childAt(0)->setChecked(true);
    section.childAt(1)->setChecked(true);
    section.takeLog();
    section.item->reset();
    QVERIFY(!section.childAt(0)->isChecked());
    QVERIFY(!section.childAt(1)->isChecked());
    QCOMPARE(section.takeLog(), (QStringList{"item off", "child 1 off", "item off", "child 2 off"}));
}

void tst_UtilsSidebarItem::aDirectCallHasNoChild()
{
    Section section(1);
    section.item->SlotChildButtonToggled(true);
    QVERIFY(!section.main()->isEnabled());
    section.item->SlotChildButtonToggled(false);
    QVERIFY(section.main()->isEnabled());
    QCOMPARE(section.takeLog(), (QStringList{"item on", "child -1 on", "item off", "child -1 off"}));
}

void tst_UtilsSidebarItem::aRemovedChildIsHeardOfNoMore()
{
    Section section(2);
    section.main()->click();
    const QPointer<QToolButton> child = section.childAt(0);
    child->setChecked(true);
    section.takeLog();
    section.item->removeChild(1);
    QVERIFY(child); // until the next turn
    child->setChecked(false);
    child->setChecked(true);
    QCOMPARE(section.log, QStringList());
    QVERIFY(section.childAt(0) != child.data());
    section.childAt(0)->click();
    QCOMPARE(section.takeLog(), (QStringList{"item on", "child 2 on"}));
    QTRY_VERIFY(!child);
}

void tst_UtilsSidebarItem::aChildMayBeRemovedInItsOwnSignal()
{
    Section section(2);
    section.main()->click();
    connect(section.item.get(), &UtilsSidebarItem::SignalChildToggled, section.item.get(),
            [&section](int id) { section.item->removeChild(id); });
    section.childAt(0)->click();
    QCOMPARE(section.captions(), QStringList("child 2"));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QTRY_COMPARE(section.height(), 30);
}

void tst_UtilsSidebarItem::childrenMayBeRemovedWhileTheSectionIsReset()
{
    Section section(3);
    for (int row = 0; row < 3; ++row)
        section.childAt(row)->setChecked(true);
    connect(section.item.get(), &UtilsSidebarItem::SignalChildToggled, section.item.get(), [&section] {
        for (int id = 1; id <= 3; ++id)
            section.item->removeChild(id);
    });
    section.takeLog();
    section.item->reset();
    QCOMPARE(section.list()->count(), 0);
    QCOMPARE(section.takeLog(), (QStringList{"item off", "child 1 off"}));
}

static QImage pictureOf(const QIcon &icon, QIcon::Mode mode, QIcon::State state, qreal scale = 1.0)
{
    QImage picture = icon.pixmap(QSize(21, 21), scale, mode, state).toImage();
    picture.setDevicePixelRatio(1.0); // comparing pixels
    return picture.convertToFormat(QImage::Format_ARGB32);
}

static QImage drawing(const QString &path, qreal scale = 1.0)
{
    return QIcon(path).pixmap(QSize(21, 21) * scale, 1.0).toImage().convertToFormat(QImage::Format_ARGB32);
}

void tst_UtilsSidebarItem::theIconFollowsTheButton()
{
    if (lacksSvg())
        QSKIP("This Qt has no SVG plugin.");
    const Section section(1);
    const QToolButton *main = section.main();
    QCOMPARE(pictureOf(main->icon(), QIcon::Normal, QIcon::Off), drawing(UncheckedIcon));
    section.main()->click();
    QCOMPARE(pictureOf(main->icon(), QIcon::Normal, QIcon::On), drawing(CheckedIcon));
    QCOMPARE(pictureOf(main->icon(), QIcon::Active, QIcon::On), drawing(CheckedIcon));
    section.main()->click();
    QCOMPARE(pictureOf(main->icon(), QIcon::Normal, QIcon::Off), drawing(UncheckedIcon));
    QCOMPARE(main->icon().availableSizes(QIcon::Active, QIcon::On).isEmpty(), false);
    QCOMPARE(main->icon().availableSizes(QIcon::Disabled, QIcon::On).isEmpty(), false);
    QVERIFY(main->icon().availableSizes(QIcon::Normal, QIcon::Off).isEmpty());
}

void tst_UtilsSidebarItem::theSelectedIconIsNotGrey()
{
    if (lacksSvg())
        QSKIP("This Qt has no SVG plugin.");
    Section section;
    section.main()->click();
    QVERIFY(!section.main()->isEnabled());
    QCOMPARE(pictureOf(section.main()->icon(), QIcon::Disabled, QIcon::On), drawing(CheckedIcon));

    section.item->show();
    QVERIFY(QTest::qWaitForWindowExposed(section.item.get()));
    const QImage picture = section.main()->grab().toImage();
    int yellow = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x)
            yellow += picture.pixelColor(x, y) == QColor("#ffc53d");
    }
    QVERIFY(yellow > 50);
}

void tst_UtilsSidebarItem::theIconIsSharpAtEveryScale_data()
{
    if (lacksSvg())
        QSKIP("This Qt has no SVG plugin.");
    QTest::addColumn<qreal>("scale");
    for (const qreal scale : {1.0, 1.25, 1.5, 1.75, 2.0, 2.25, 2.5, 3.0})
        QTest::newRow(qPrintable(QStringLiteral("%1 %").arg(scale * 100))) << scale;
}

void tst_UtilsSidebarItem::theIconIsSharpAtEveryScale()
{
    QFETCH(qreal, scale);
    const Section section;
    QCOMPARE(pictureOf(section.main()->icon(), QIcon::Normal, QIcon::Off, scale), drawing(UncheckedIcon, scale));
}

void tst_UtilsSidebarItem::theTextStandsBesideTheIcon_data()
{
    if (lacksSvg())
        QSKIP("This Qt has no SVG plugin.");
    QTest::addColumn<Qt::LayoutDirection>("direction");
    QTest::newRow("left to right") << Qt::LeftToRight;
    QTest::newRow("right to left") << Qt::RightToLeft;
}

void tst_UtilsSidebarItem::theTextStandsBesideTheIcon()
{
    QFETCH(Qt::LayoutDirection, direction);
    const Section section;
    section.item->setStyleSheet("QToolButton { background: white; color: black; border: none; }");
    section.item->setLayoutDirection(direction);
    section.item->resize(400, 58);
    section.item->show();
    QVERIFY(QTest::qWaitForWindowExposed(section.item.get()));
    const QImage picture = section.item->grab().toImage();
    int first = picture.width();
    int last = -1;
    for (int x = 0; x < picture.width(); ++x) {
        if (picture.pixelColor(x, 29) != QColor(Qt::white)) {
            first = qMin(first, x);
            last = x;
        }
    }
    // Icon and text need less than half of the width, at the side where reading begins.
    QVERIFY(last >= 0);
    if (direction == Qt::LeftToRight)
        QVERIFY2(last < 200, qPrintable(QString::number(last)));
    else
        QVERIFY2(first >= 200, qPrintable(QString::number(first)));
}

void tst_UtilsSidebarItem::aStyleSheetOfItsOwnSeesNewChildren()
{
    /// Counts how often the section's style is worked out anew.
    struct StyleChanges : QObject
    {
        bool eventFilter(QObject *, QEvent *event) override
        {
            count += event->type() == QEvent::StyleChange;
            return false;
        }
        int count = 0;
    };

    const Section section(1);
    section.item->setStyleSheet("*[sidebarItem-elementType=\"child-button\"] { color: #123456; }");
    section.item->show();
    QVERIFY(QTest::qWaitForWindowExposed(section.item.get()));
    StyleChanges changes;
    section.item->installEventFilter(&changes);
    section.item->addChild("new", 1);
    QCOMPARE(changes.count, 1);
    for (int row = 0; row < 2; ++row)
        QCOMPARE(section.childAt(row)->palette().color(QPalette::ButtonText), QColor("#123456"));
}

void tst_UtilsSidebarItem::theSectionIsHeardByAssistiveTechnology()
{
    Section section(2);
    section.item->show();
    QAccessibleInterface *main = QAccessible::queryAccessibleInterface(section.main());
    QCOMPARE(main->text(QAccessible::Name), QStringLiteral("POWER"));
    QVERIFY(main->state().checkable);
    main->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    QVERIFY(main->state().checked);
    QTRY_COMPARE(section.height(), 60);

    QAccessibleInterface *child = QAccessible::queryAccessibleInterface(section.childAt(1));
    QCOMPARE(child->text(QAccessible::Name), QStringLiteral("child 2"));
    child->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    QVERIFY(child->state().checked);
    QVERIFY(main->state().disabled);
    QCOMPARE(section.takeLog(), (QStringList{"item on", "child 2 on"}));

    QAccessibleInterface *list = QAccessible::queryAccessibleInterface(section.list());
    QCOMPARE(list->role(), QAccessible::Grouping);
    QCOMPARE(list->text(QAccessible::Name), QStringLiteral("POWER"));
    section.item->setChildCaption(2, "Channels");
    QCOMPARE(child->text(QAccessible::Name), QStringLiteral("Channels"));
}

void tst_UtilsSidebarItem::buttonsAreFoundWhileTheSectionIsOpen()
{
    const Section section(2);
    section.item->addChild("child 0", 0); // created last, and the first to be read
    section.item->show();
    QVERIFY(QTest::qWaitForWindowExposed(section.item.get()));
    const AccessibleButtons buttons(section.item.get());
    QCOMPARE(buttons.names(), QStringList("POWER"));

    QVERIFY(buttons.toggle("POWER"));
    QTRY_COMPARE(buttons.names(), (QStringList{"POWER", "child 0", "child 1", "child 2"}));
    QVERIFY(buttons.toggle("child 2"));
    QVERIFY(section.childAt(2)->isChecked());
    QVERIFY(buttons.find("child 2")->state().checked);
    QVERIFY(!buttons.toggle("POWER")); // disabled, as for the mouse

    section.item->reset();
    QTRY_COMPARE(buttons.names(), QStringList("POWER"));
}

UNIPROG_TEST_MAIN(tst_UtilsSidebarItem)
#include "tst_utilssidebaritem.moc"
