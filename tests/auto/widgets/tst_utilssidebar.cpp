#include <UtilsFade.h>
#include <UtilsSidebar.h>
#include <UtilsSidebarItem.h>
#include <UtilsSidebarListWidget.h>
#include <UtilsSidebarWidget.h>
#include <UtilsStackedWidget.h>

#include <UniProgTest.h>

#include <QApplication>
#include <QGraphicsOpacityEffect>
#include <QIcon>
#include <QLabel>
#include <QMainWindow>
#include <QPointer>
#include <QSignalSpy>
#include <QToolButton>

#include <memory>

enum Section { Target = 1, UniProg, Power, Options, Help };

class tst_UtilsSidebar : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void thereIsOneObject();
    void columnAndStackBelongToTheParent();
    void deletingTheObjectDeletesColumnAndStackLater();
    void theObjectSurvivesItsParent();
    void thereAreFiveSections_data();
    void thereAreFiveSections();
    void idsOfSectionsAreKeptAsTheyAreSet();

    void aRegisteredPageHasAButton();
    void buttonsStandInTheRowsAskedFor();
    void aNegativeRowMakesNoButton();
    void aPageOfAnUnknownSectionKeepsItsId();
    void aPageMayBeRegisteredTwice();
    void registeringTheCurrentPageAgainLeavesItCurrent();
    void nullPagesAreIgnored();

    void slotShowWidgetOpensAndShows();
    void slotShowWidgetNeedsAButton();
    void aClickOnAButtonShowsItsPage();
    void anUncheckedButtonShowsNothing();
    void buttonsOfOtherSectionsAreReset();
    void aWholeRunIsAnnounced();
    void theSlotsAreFoundByTheirSignatures();

    void aRemovedPageLeavesNothing();
    void aPageMayBeRemovedWhenItIsShown();
    void aPageMayBeDeletedWhenItBecomesCurrent();
    void aPageThatFadesMayBeRemoved();
    void aPageThatOthersDeleteIsForgotten();
    void aPageMayBeRegisteredAgain();

    void aReplacedPageHandsItsPlaceOver();
    void theCurrentPageIsReplacedInView();
    void aPageOutsideTheStackIsNotDeleted();
    void whatCannotBeReplacedStays();
    void updateConnectionDecidesByWhatThereIs();

    void lookupsOfTheUnknown();
    void captionsAreRenamed();
    void setWidgetSizeGivesThePageTheSizeOfTheStack();

private:
    QLabel *addPage(const QString &name, int row, int section);
    UtilsSidebarItem *section(int id) const;
    QToolButton *main(int id) const;
    UtilsSidebarListWidget *list(int id) const;
    QStringList captions(int id) const;
    QToolButton *child(int id, int row) const;
    QPair<int, int> ids(QWidget *page) const;

    std::unique_ptr<QMainWindow> window;
    UtilsSidebar *sidebar = nullptr;
};

void tst_UtilsSidebar::init()
{
    UniProgTest::init();
    window = std::make_unique<QMainWindow>();
    sidebar = UtilsSidebar::getInstance(window.get());
}

void tst_UtilsSidebar::cleanup()
{
    delete sidebar;
    sidebar = nullptr;
    window.reset();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY2(QApplication::topLevelWidgets().isEmpty(), "A widget was left behind.");
}

QLabel *tst_UtilsSidebar::addPage(const QString &name, int row, int section)
{
    auto *page = new QLabel(name);
    page->setObjectName(name);
    sidebar->addConnection(page, row, section);
    return page;
}

UtilsSidebarItem *tst_UtilsSidebar::section(int id) const
{
    return sidebar->getSidebarWidget()->findChildren<UtilsSidebarItem *>().at(id - 1);
}

QToolButton *tst_UtilsSidebar::main(int id) const
{
    return section(id)->findChild<QToolButton *>("toolButton_main");
}

UtilsSidebarListWidget *tst_UtilsSidebar::list(int id) const
{
    return section(id)->findChild<UtilsSidebarListWidget *>("listWidget_children");
}

QStringList tst_UtilsSidebar::captions(int id) const
{
    QStringList captions;
    for (int row = 0; row < list(id)->count(); ++row)
        captions.append(child(id, row)->text());
    return captions;
}

QToolButton *tst_UtilsSidebar::child(int id, int row) const
{
    return qobject_cast<QToolButton *>(list(id)->itemWidget(list(id)->item(row)));
}

QPair<int, int> tst_UtilsSidebar::ids(QWidget *page) const
{
    int itemId = 77;
    int childId = 77;
    sidebar->getIdsFromMap(page, &itemId, &childId);
    return {itemId, childId};
}

void tst_UtilsSidebar::thereIsOneObject()
{
    QVERIFY(sidebar);
    QVERIFY(!sidebar->parent());
    QCOMPARE(UtilsSidebar::getInstance(), sidebar);
    QWidget other;
    QCOMPARE(UtilsSidebar::getInstance(&other), sidebar);
    QVERIFY(other.children().isEmpty());
}

void tst_UtilsSidebar::columnAndStackBelongToTheParent()
{
    QCOMPARE(sidebar->getSidebarWidget()->parentWidget(), window.get());
    QCOMPARE(sidebar->getUtilsStackedWidget()->parentWidget(), window.get());
    QCOMPARE(sidebar->getUtilsStackedWidget()->count(), 0);
}

void tst_UtilsSidebar::deletingTheObjectDeletesColumnAndStackLater()
{
    const QPointer<QWidget> column = sidebar->getSidebarWidget();
    const QPointer<QWidget> stack = sidebar->getUtilsStackedWidget();
    const QPointer<QWidget> page = addPage("Flash", 0, Target);
    delete sidebar;
    QVERIFY(column && stack && page);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!column && !stack && !page);

    sidebar = UtilsSidebar::getInstance(window.get());
    QCOMPARE(sidebar->getSidebarItemId_help(), 5);
    QCOMPARE(sidebar->getSidebarWidget()->parentWidget(), window.get());
}

void tst_UtilsSidebar::theObjectSurvivesItsParent()
{
    QPointer<QWidget> page = addPage("Flash", 0, Target);
    sidebar->slotShowWidget(page);
    window.reset();
    QVERIFY(!page);
    QVERIFY(!sidebar->getSidebarWidget());
    QVERIFY(!sidebar->getUtilsStackedWidget());
    QCOMPARE(sidebar->getWidgetFromMap(1, 1), nullptr);

    QLabel label;
    sidebar->addConnection(&label, 0, Target);
    sidebar->removeConnection(&label);
    sidebar->updateConnection(&label, nullptr, 0, Target);
    sidebar->slotShowWidget(&label);
    sidebar->slotSidebarChildToggled(1, 1, true);
    sidebar->setCaption(&label, "caption");
    sidebar->setCaptionForMainButton(1, "CAPTION");
    sidebar->setWidgetSize(&label);
    QCOMPARE(ids(&label), qMakePair(-1, -1));
}

void tst_UtilsSidebar::thereAreFiveSections_data()
{
    QTest::addColumn<int>("id");
    QTest::addColumn<QString>("caption");
    QTest::addColumn<QString>("icon");
    QTest::newRow("target") << 1 << "TARGET"
                            << ":/images/target_mcu";
    QTest::newRow("uniProg") << 2 << "BRAMLOCK"
                             << ":/images/bramlock_device";
    QTest::newRow("power") << 3 << "POWER"
                           << ":/images/power";
    QTest::newRow("options") << 4 << "OPTIONS"
                             << ":/images/options";
    QTest::newRow("help") << 5 << "HELP"
                          << ":/images/info";
}

void tst_UtilsSidebar::thereAreFiveSections()
{
    QFETCH(int, id);
    QFETCH(QString, caption);
    QFETCH(QString, icon);
    QCOMPARE(sidebar->getSidebarWidget()->findChildren<UtilsSidebarItem *>().size(), 5);
    const int getters[]
        = {sidebar->getSidebarItemId_target(), sidebar->getSidebarItemId_uniProg(), sidebar->getSidebarItemId_power(),
           sidebar->getSidebarItemId_options(), sidebar->getSidebarItemId_help()};
    QCOMPARE(getters[id - 1], id);
    QCOMPARE(main(id)->text(), ' ' + caption);

    const auto shown = [this, id](QIcon::State state) {
        return main(id)->icon().pixmap(QSize(21, 21), 1.0, QIcon::Active, state).toImage();
    };
    const auto drawn = [&icon](const char *colour) {
        return QIcon(icon + '_' + colour + ".svg").pixmap(QSize(21, 21), 1.0).toImage();
    };
    QVERIFY(!drawn("light").isNull() && !drawn("yellow").isNull());
    QCOMPARE(shown(QIcon::Off), drawn("light"));
    main(id)->click();
    QCOMPARE(shown(QIcon::On), drawn("yellow"));
}

void tst_UtilsSidebar::idsOfSectionsAreKeptAsTheyAreSet()
{
    sidebar->setSidebarItemId_target(11);
    sidebar->setSidebarItemId_uniProg(12);
    sidebar->setSidebarItemId_power(13);
    sidebar->setSidebarItemId_options(14);
    sidebar->setSidebarItemId_help(-1);
    QCOMPARE(sidebar->getSidebarItemId_target(), 11);
    QCOMPARE(sidebar->getSidebarItemId_uniProg(), 12);
    QCOMPARE(sidebar->getSidebarItemId_power(), 13);
    QCOMPARE(sidebar->getSidebarItemId_options(), 14);
    QCOMPARE(sidebar->getSidebarItemId_help(), -1);
    QCOMPARE(main(1)->text(), QStringLiteral(" TARGET"));
}

void tst_UtilsSidebar::aRegisteredPageHasAButton()
{
    QLabel *flash = addPage("Flash", 0, Target);
    QLabel *supply = addPage("Supply", 0, Power);
    QLabel *channels = addPage("Channels", 1, Power);
    UtilsStackedWidget *stack = sidebar->getUtilsStackedWidget();
    QCOMPARE(stack->count(), 3);
    QCOMPARE(stack->indexOf(flash), 0);
    QCOMPARE(stack->indexOf(channels), 2);
    QCOMPARE(captions(Target), QStringList("Flash"));
    QCOMPARE(captions(Power), (QStringList{"Supply", "Channels"}));
    QCOMPARE(ids(flash), qMakePair(1, 1));
    QCOMPARE(ids(supply), qMakePair(3, 1));
    QCOMPARE(ids(channels), qMakePair(3, 2));
    QCOMPARE(sidebar->getWidgetFromMap(3, 2), channels);
    QCOMPARE(sidebar->getWidgetFromMap(1, 1), flash);
    for (int id = 1; id <= 5; ++id)
        QVERIFY(!main(id)->isChecked());
}

void tst_UtilsSidebar::buttonsStandInTheRowsAskedFor()
{
    addPage("b", 0, Options);
    addPage("a", 0, Options);
    addPage("d", 9, Options);
    QLabel *c = addPage("c", 2, Options);
    QCOMPARE(captions(Options), (QStringList{"a", "b", "c", "d"}));
    QCOMPARE(ids(c), qMakePair(4, 4));
}

void tst_UtilsSidebar::aNegativeRowMakesNoButton()
{
    QLabel *hidden = addPage("Hidden", -1, Target);
    QCOMPARE(sidebar->getUtilsStackedWidget()->indexOf(hidden), 0);
    QCOMPARE(list(Target)->count(), 0);
    QCOMPARE(ids(hidden), qMakePair(1, -1));
    QLabel *visible = addPage("Visible", 0, Target);
    QCOMPARE(ids(visible), qMakePair(1, 1));
}

void tst_UtilsSidebar::aPageOfAnUnknownSectionKeepsItsId()
{
    QSignalSpy shown(sidebar, &UtilsSidebar::signalWidgetShown);
    QLabel *help = addPage("About", 0, Help);
    QLabel *stray = addPage("Stray", 1, 77);
    QCOMPARE(captions(Help), (QStringList{"About", "Stray"}));
    QCOMPARE(ids(stray), qMakePair(77, 2));
    QCOMPARE(sidebar->getWidgetFromMap(77, 2), stray);
    QCOMPARE(sidebar->getWidgetFromMap(5, 2), nullptr);

    // Its button belongs to no page of that section.
    sidebar->slotShowWidget(help);
    child(Help, 1)->click();
    QCOMPARE(shown.count(), 1);
    QCOMPARE(sidebar->getUtilsStackedWidget()->currentWidget(), help);
    sidebar->slotShowWidget(stray);
    QCOMPARE(shown.count(), 1);

    sidebar->setCaption(stray, "Astray");
    QCOMPARE(captions(Help), (QStringList{"About", "Astray"}));
    // Another section may be the last one, or even get that id, by now.
    sidebar->getSidebarWidget()->addItem("MORE", {}, {});
    QLabel *more = addPage("More", 0, 6);
    QLabel *another = addPage("Another", 1, 6);
    QCOMPARE(ids(another), qMakePair(6, 2));
    sidebar->removeConnection(stray);
    QCOMPARE(captions(Help), QStringList("About"));
    QCOMPARE(captions(6), (QStringList{"More", "Another"}));
    QCOMPARE(ids(more), qMakePair(6, 1));
    QCOMPARE(ids(stray), qMakePair(-1, -1));
}

void tst_UtilsSidebar::aPageMayBeRegisteredTwice()
{
    QSignalSpy shown(sidebar, &UtilsSidebar::signalWidgetShown);
    QPointer<QLabel> page = addPage("Page", 0, Target);
    sidebar->addConnection(page, 0, Power);
    QCOMPARE(sidebar->getUtilsStackedWidget()->count(), 1);
    QCOMPARE(captions(Target), QStringList("Page"));
    QCOMPARE(captions(Power), QStringList("Page"));
    QCOMPARE(ids(page), qMakePair(1, 1)); // the first one
    QCOMPARE(sidebar->getWidgetFromMap(3, 1), page);
    main(Power)->click();
    child(Power, 0)->click();
    QCOMPARE(shown.count(), 1);
    QCOMPARE(shown.at(0).at(0).value<QWidget *>(), page);

    sidebar->removeConnection(page);
    QCOMPARE(list(Target)->count(), 0);
    QCOMPARE(list(Power)->count(), 0);
    QCOMPARE(sidebar->getWidgetFromMap(3, 1), nullptr);
    QTRY_VERIFY(!page);
}

void tst_UtilsSidebar::registeringTheCurrentPageAgainLeavesItCurrent()
{
    QLabel *first = addPage("First", 0, Target);
    addPage("Second", 1, Target);
    sidebar->slotShowWidget(first);
    QStackedWidget *stack = sidebar->getUtilsStackedWidget();
    QSignalSpy changed(stack, &QStackedWidget::currentChanged);
    QSignalSpy removed(stack, &QStackedWidget::widgetRemoved);
    sidebar->addConnection(first, 0, Power);
    QCOMPARE(stack->currentWidget(), first);
    QCOMPARE(stack->indexOf(first), 0);
    QCOMPARE(changed.count(), 0);
    QCOMPARE(removed.count(), 0);
}

void tst_UtilsSidebar::nullPagesAreIgnored()
{
    sidebar->addConnection(nullptr, 0, Target);
    sidebar->removeConnection(nullptr);
    sidebar->replaceConnection(nullptr, nullptr);
    sidebar->slotShowWidget(nullptr);
    sidebar->setCaption(nullptr, "nobody");
    sidebar->setWidgetSize(nullptr);
    QCOMPARE(sidebar->updateConnection(nullptr, nullptr, 0, Target), nullptr);
    QCOMPARE(sidebar->getUtilsStackedWidget()->count(), 0);
    QCOMPARE(list(Target)->count(), 0);
    QCOMPARE(ids(nullptr), qMakePair(-1, -1));
}

void tst_UtilsSidebar::slotShowWidgetOpensAndShows()
{
    QSignalSpy shown(sidebar, &UtilsSidebar::signalWidgetShown);
    addPage("Flash", 0, Target);
    QLabel *memory = addPage("Memory", 1, Target);
    sidebar->slotShowWidget(memory);
    QVERIFY(main(Target)->isChecked());
    QVERIFY(!main(Target)->isEnabled());
    QVERIFY(child(Target, 1)->isChecked());
    QVERIFY(!child(Target, 0)->isChecked());
    QCOMPARE(sidebar->getUtilsStackedWidget()->currentWidget(), memory);
    QCOMPARE(shown.count(), 1);
    QCOMPARE(shown.at(0).at(0).value<QWidget *>(), memory);
    QTRY_COMPARE(list(Target)->maximumHeight(), 60);

    sidebar->slotShowWidget(memory); // checked already
    QCOMPARE(shown.count(), 1);
}

void tst_UtilsSidebar::slotShowWidgetNeedsAButton()
{
    QSignalSpy shown(sidebar, &UtilsSidebar::signalWidgetShown);
    QLabel *first = addPage("First", 0, Target);
    QLabel *hidden = addPage("Hidden", -1, Target);
    QLabel stranger;
    sidebar->slotShowWidget(hidden);
    sidebar->slotShowWidget(&stranger);
    QCOMPARE(shown.count(), 0);
    QCOMPARE(sidebar->getUtilsStackedWidget()->currentWidget(), first);
    QVERIFY(!main(Target)->isChecked());
}

void tst_UtilsSidebar::aClickOnAButtonShowsItsPage()
{
    QSignalSpy shown(sidebar, &UtilsSidebar::signalWidgetShown);
    QLabel *flash = addPage("Flash", 0, Target);
    QLabel *memory = addPage("Memory", 1, Target);
    window->setCentralWidget(sidebar->getSidebarWidget());
    window->resize(200, 500);
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));
    QTest::mouseClick(main(Target), Qt::LeftButton);
    QTRY_COMPARE(list(Target)->height(), 60);
    QCOMPARE(shown.count(), 0);
    QTest::mouseClick(child(Target, 1), Qt::LeftButton);
    QCOMPARE(sidebar->getUtilsStackedWidget()->currentWidget(), memory);
    QTest::mouseClick(child(Target, 0), Qt::LeftButton);
    QCOMPARE(sidebar->getUtilsStackedWidget()->currentWidget(), flash);
    QCOMPARE(shown.count(), 2);
}

void tst_UtilsSidebar::anUncheckedButtonShowsNothing()
{
    QSignalSpy shown(sidebar, &UtilsSidebar::signalWidgetShown);
    QLabel *flash = addPage("Flash", 0, Target);
    QLabel *memory = addPage("Memory", 1, Target);
    sidebar->slotSidebarChildToggled(1, 2, false);
    QCOMPARE(sidebar->getUtilsStackedWidget()->currentWidget(), flash);
    sidebar->slotSidebarChildToggled(1, 3, true);
    sidebar->slotSidebarChildToggled(2, 1, true);
    sidebar->slotSidebarChildToggled(-1, -1, true);
    QCOMPARE(sidebar->getUtilsStackedWidget()->currentWidget(), flash);
    QCOMPARE(shown.count(), 0);
    sidebar->slotSidebarChildToggled(1, 2, true);
    QCOMPARE(sidebar->getUtilsStackedWidget()->currentWidget(), memory);
    QCOMPARE(shown.count(), 1);
}

void tst_UtilsSidebar::buttonsOfOtherSectionsAreReset()
{
    addPage("Flash", 0, Target);
    QLabel *supply = addPage("Supply", 0, Power);
    sidebar->slotShowWidget(supply);
    QTRY_COMPARE(list(Power)->maximumHeight(), 30);
    main(Target)->click();
    QVERIFY(main(Power)->isChecked());
    child(Target, 0)->click();
    QVERIFY(!main(Power)->isChecked());
    QVERIFY(!child(Power, 0)->isChecked());
    QTRY_COMPARE(list(Power)->maximumHeight(), 0);
}

void tst_UtilsSidebar::aWholeRunIsAnnounced()
{
    QStringList log;
    connect(sidebar, &UtilsSidebar::signalWidgetShown, this, [&log](QWidget *page) { log.append(page->objectName()); });
    QLabel *flash = addPage("Flash", 0, Target);
    addPage("Memory", 1, Target);
    QLabel *supply = addPage("Supply", 0, Power);
    sidebar->slotShowWidget(flash);
    child(Target, 1)->click();
    sidebar->slotShowWidget(supply);
    main(Help)->click(); // no children: selected, and nothing to show
    sidebar->slotShowWidget(supply);
    sidebar->slotShowWidget(flash);
    QCOMPARE(log, (QStringList{"Flash", "Memory", "Supply", "Supply", "Flash"}));
    QVERIFY(main(Help)->isEnabled());
}

void tst_UtilsSidebar::theSlotsAreFoundByTheirSignatures()
{
    for (const char *const slot : {"slotShowWidget(QWidget*)", "slotSidebarChildToggled(int,int,bool)"})
        QVERIFY2(sidebar->metaObject()->indexOfSlot(slot) >= 0, slot);
    QVERIFY(sidebar->metaObject()->indexOfSignal("signalWidgetShown(QWidget*)") >= 0);
    const QMetaObject &column = UtilsSidebarWidget::staticMetaObject;
    QVERIFY(column.indexOfSignal("SignalChildToggled(int,int,bool)") >= 0);
    QVERIFY(column.indexOfSlot("SlotItemToggled(UtilsSidebarItem*,bool)") >= 0);
    QVERIFY(column.indexOfSlot("SlotChildToggled(int,bool)") >= 0);
    const QMetaObject &item = UtilsSidebarItem::staticMetaObject;
    QVERIFY(item.indexOfSignal("SignalItemToggled(UtilsSidebarItem*,bool)") >= 0);
    QVERIFY(item.indexOfSignal("SignalChildToggled(int,bool)") >= 0);
    QVERIFY(item.indexOfSlot("on_toolButton_main_toggled(bool)") >= 0);
    QVERIFY(item.indexOfSlot("SlotChildButtonToggled(bool)") >= 0);
}

void tst_UtilsSidebar::aRemovedPageLeavesNothing()
{
    QPointer<QLabel> flash = addPage("Flash", 0, Target);
    QLabel *memory = addPage("Memory", 1, Target);
    sidebar->slotShowWidget(flash);
    QTRY_COMPARE(list(Target)->maximumHeight(), 60);
    sidebar->removeConnection(flash);
    QVERIFY(flash); // deleted later
    QCOMPARE(sidebar->getUtilsStackedWidget()->indexOf(flash), -1);
    QCOMPARE(ids(flash), qMakePair(-1, -1));
    QCOMPARE(sidebar->getWidgetFromMap(1, 1), nullptr);
    QCOMPARE(captions(Target), QStringList("Memory"));
    QCOMPARE(ids(memory), qMakePair(1, 2));
    sidebar->removeConnection(flash);
    QTRY_VERIFY(!flash);
    QTRY_COMPARE(list(Target)->maximumHeight(), 30);
    QCOMPARE(ids(addPage("New", 0, Target)), qMakePair(1, 3));

    QLabel stranger;
    sidebar->removeConnection(&stranger);
    QCOMPARE(captions(Target), (QStringList{"New", "Memory"}));
}

void tst_UtilsSidebar::aPageMayBeRemovedWhenItIsShown()
{
    QPointer<QLabel> flash = addPage("Flash", 0, Target);
    addPage("Memory", 1, Target);
    connect(sidebar, &UtilsSidebar::signalWidgetShown, sidebar, &UtilsSidebar::removeConnection);
    sidebar->slotShowWidget(flash);
    QCOMPARE(captions(Target), QStringList("Memory"));
    QTRY_VERIFY(!flash);
}

void tst_UtilsSidebar::aPageMayBeDeletedWhenItBecomesCurrent()
{
    QSignalSpy shown(sidebar, &UtilsSidebar::signalWidgetShown);
    addPage("Flash", 0, Target);
    QPointer<QLabel> memory = addPage("Memory", 1, Target);
    connect(sidebar->getUtilsStackedWidget(), &QStackedWidget::currentChanged, this, [&memory] { delete memory; });
    sidebar->slotShowWidget(memory);
    QVERIFY(!memory);
    QCOMPARE(shown.count(), 0);
    QCOMPARE(captions(Target), QStringList("Flash"));
}

void tst_UtilsSidebar::aPageThatFadesMayBeRemoved()
{
    window->setCentralWidget(sidebar->getUtilsStackedWidget());
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));
    QPointer<QLabel> flash = addPage("Flash", 0, Target);
    QLabel *memory = addPage("Memory", 1, Target);
    QPointer<UtilsFade> fade = new UtilsFade(flash, nullptr, 5000, 5000);
    fade->SelfDestroyEnabled(true);
    fade->Out(nullptr);
    QTRY_VERIFY(qobject_cast<QGraphicsOpacityEffect *>(flash->graphicsEffect())->opacity() < 1);
    sidebar->removeConnection(flash);
    QTRY_VERIFY(!flash);
    QTRY_VERIFY(!fade);
    sidebar->slotShowWidget(memory);
    QCOMPARE(sidebar->getUtilsStackedWidget()->currentWidget(), memory);
    QVERIFY(memory->isVisible());
}

void tst_UtilsSidebar::aPageThatOthersDeleteIsForgotten()
{
    QLabel *flash = addPage("Flash", 0, Target);
    QLabel *memory = addPage("Memory", 1, Target);
    sidebar->addConnection(flash, 0, Power);
    sidebar->slotShowWidget(flash);
    delete flash;
    QCOMPARE(captions(Target), QStringList("Memory"));
    QCOMPARE(list(Power)->count(), 0);
    QCOMPARE(sidebar->getWidgetFromMap(1, 1), nullptr);
    QCOMPARE(ids(memory), qMakePair(1, 2));
    sidebar->slotSidebarChildToggled(1, 1, true);
    sidebar->slotShowWidget(memory);
    QCOMPARE(sidebar->getUtilsStackedWidget()->currentWidget(), memory);
    QCOMPARE(ids(addPage("New", 0, Target)), qMakePair(1, 3));
}

void tst_UtilsSidebar::aPageMayBeRegisteredAgain()
{
    auto *page = new QLabel;
    sidebar->addConnection(page, 0, Target);
    QStackedWidget *stack = sidebar->getUtilsStackedWidget();
    stack->removeWidget(page); // by others
    QSignalSpy shown(sidebar, &UtilsSidebar::signalWidgetShown);
    sidebar->slotShowWidget(page);
    QCOMPARE(stack->currentWidget(), nullptr);
    sidebar->addConnection(page, 0, Options);
    QCOMPARE(stack->indexOf(page), 0);
}

void tst_UtilsSidebar::aReplacedPageHandsItsPlaceOver()
{
    QSignalSpy shown(sidebar, &UtilsSidebar::signalWidgetShown);
    QPointer<QLabel> oldPage = addPage("Old", 0, Target);
    QLabel *other = addPage("Other", 1, Target);
    sidebar->slotShowWidget(other);
    auto *newPage = new QLabel;
    sidebar->replaceConnection(oldPage, newPage);
    QVERIFY(oldPage);
    QCOMPARE(ids(oldPage), qMakePair(-1, -1));
    QCOMPARE(ids(newPage), qMakePair(1, 1));
    QCOMPARE(sidebar->getWidgetFromMap(1, 1), newPage);
    QCOMPARE(sidebar->getUtilsStackedWidget()->indexOf(oldPage), -1);
    QVERIFY(sidebar->getUtilsStackedWidget()->indexOf(newPage) >= 0);
    QCOMPARE(sidebar->getUtilsStackedWidget()->currentWidget(), other);
    QCOMPARE(captions(Target), (QStringList{"Old", "Other"}));
    QTRY_VERIFY(!oldPage);

    QCOMPARE(ids(newPage), qMakePair(1, 1));
    child(Target, 0)->click();
    QCOMPARE(sidebar->getUtilsStackedWidget()->currentWidget(), newPage);
    QCOMPARE(shown.count(), 2);
}

void tst_UtilsSidebar::theCurrentPageIsReplacedInView()
{
    addPage("First", 0, Target);
    QLabel *oldPage = addPage("Old", 1, Target);
    addPage("Last", 2, Target);
    sidebar->slotShowWidget(oldPage);
    QSignalSpy changed(sidebar->getUtilsStackedWidget(), &QStackedWidget::currentChanged);
    auto *newPage = new QLabel;
    sidebar->replaceConnection(oldPage, newPage);
    QCOMPARE(sidebar->getUtilsStackedWidget()->currentWidget(), newPage);
    QCOMPARE(changed.count(), 1); // no other page in between
    QVERIFY(child(Target, 1)->isChecked());
}

void tst_UtilsSidebar::aPageOutsideTheStackIsNotDeleted()
{
    QPointer<QLabel> oldPage = addPage("Old", 0, Target);
    sidebar->getUtilsStackedWidget()->removeWidget(oldPage);
    auto *newPage = new QLabel;
    sidebar->replaceConnection(oldPage, newPage);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(oldPage);
    QCOMPARE(ids(newPage), qMakePair(1, 1));
    delete oldPage; // it is nobody's page any more
    QCOMPARE(ids(newPage), qMakePair(1, 1));
    QCOMPARE(captions(Target), QStringList("Old"));
}

void tst_UtilsSidebar::whatCannotBeReplacedStays()
{
    QPointer<QLabel> page = addPage("Page", 0, Target);
    QLabel stranger;
    QLabel newPage;
    sidebar->replaceConnection(&stranger, &newPage);
    sidebar->replaceConnection(page, nullptr);
    sidebar->replaceConnection(page, page);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(page);
    QCOMPARE(ids(page), qMakePair(1, 1));
    QCOMPARE(ids(&newPage), qMakePair(-1, -1));
    QCOMPARE(sidebar->getUtilsStackedWidget()->count(), 1);
}

void tst_UtilsSidebar::updateConnectionDecidesByWhatThereIs()
{
    QPointer<QLabel> first = new QLabel;
    first->setObjectName("First");
    QCOMPARE(sidebar->updateConnection(first, nullptr, 0, Options), first);
    QCOMPARE(ids(first), qMakePair(4, 1));

    QPointer<QLabel> second = new QLabel;
    QCOMPARE(sidebar->updateConnection(second, first, 3, Help), second);
    QCOMPARE(ids(second), qMakePair(4, 1));
    QTRY_VERIFY(!first);

    QCOMPARE(sidebar->updateConnection(nullptr, second, 0, Options), nullptr);
    QCOMPARE(list(Options)->count(), 0);
    QTRY_VERIFY(!second);
}

void tst_UtilsSidebar::lookupsOfTheUnknown()
{
    QLabel stranger;
    QCOMPARE(ids(&stranger), qMakePair(-1, -1));
    QCOMPARE(sidebar->getWidgetFromMap(1, 1), nullptr);
    QCOMPARE(sidebar->getWidgetFromMap(-1, -1), nullptr);
    QLabel *page = addPage("Page", 0, Power);
    int id = 77;
    sidebar->getIdsFromMap(page, &id, nullptr);
    QCOMPARE(id, 3);
    sidebar->getIdsFromMap(page, nullptr, &id);
    QCOMPARE(id, 1);
}

void tst_UtilsSidebar::captionsAreRenamed()
{
    QLabel *page = addPage("Page", 0, Power);
    sidebar->addConnection(page, 0, Options);
    addPage("Other", 1, Power);
    QLabel stranger;
    sidebar->setCaption(page, "Channels");
    sidebar->setCaption(&stranger, "nobody");
    QCOMPARE(captions(Power), (QStringList{"Channels", "Other"}));
    QCOMPARE(captions(Options), QStringList("Channels"));
    QCOMPARE(page->objectName(), QStringLiteral("Page"));

    sidebar->setCaptionForMainButton(3, "ENERGY");
    sidebar->setCaptionForMainButton(6, "NOBODY");
    QCOMPARE(main(Power)->text(), QStringLiteral(" ENERGY"));
    QCOMPARE(main(Options)->text(), QStringLiteral(" OPTIONS"));
}

void tst_UtilsSidebar::setWidgetSizeGivesThePageTheSizeOfTheStack()
{
    sidebar->getUtilsStackedWidget()->resize(321, 234);
    QLabel page;
    sidebar->setWidgetSize(&page);
    QCOMPARE(page.size(), QSize(321, 234));
}

UNIPROG_TEST_MAIN(tst_UtilsSidebar)
#include "tst_utilssidebar.moc"
