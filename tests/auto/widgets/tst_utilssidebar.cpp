#include "AccessibleButtons.h"
#include "SidebarTest.h"

#include <ContextTranslator.h>

#include <QIcon>
#include <QPointer>
#include <QSignalSpy>

// The sections, and pages that are registered, shown and renamed; how pages come to their end is in
// tst_utilssidebar_lifetimes.cpp.
class tst_UtilsSidebar : public SidebarTest
{
    Q_OBJECT

private Q_SLOTS:
    void thereIsOneObject();
    void columnAndStackBelongToTheParent();
    void thereAreFiveSections_data();
    void thereAreFiveSections();
    void captionsAreTranslatedInTheContextOfTheClass();
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
    void assistiveTechnologySelectsPages();
    void theSlotsAreFoundByTheirSignatures();

    void lookupsOfTheUnknown();
    void captionsAreRenamed();
    void setWidgetSizeGivesThePageTheSizeOfTheStack();
};

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

    if (lacksSvg())
        QSKIP("This Qt has no SVG plugin.");
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

void tst_UtilsSidebar::captionsAreTranslatedInTheContextOfTheClass()
{
    delete sidebar;
    const ContextTranslator translator("UtilsSidebar");
    sidebar = UtilsSidebar::getInstance(window.get());
    const QStringList expected{" <TARGET>", " <BRAMLOCK>", " <POWER>", " <OPTIONS>", " <HELP>"};
    for (int id = 1; id <= 5; ++id)
        QCOMPARE(main(id)->text(), expected.at(id - 1));
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
    connect(sidebar, &UtilsSidebar::signalWidgetShown, this, [this, &log](QWidget *page) {
        log.append(page->objectName());
        QCOMPARE(sidebar->getUtilsStackedWidget()->currentWidget(), page); // already
    });
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

void tst_UtilsSidebar::assistiveTechnologySelectsPages()
{
    QLabel *flash = addPage("Flash", 0, Target);
    QLabel *memory = addPage("Memory", 1, Target);
    QLabel *supply = addPage("Supply", 0, Power);
    window->setCentralWidget(sidebar->getSidebarWidget());
    window->resize(200, 600);
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));
    const QStackedWidget *stack = sidebar->getUtilsStackedWidget();
    const AccessibleButtons buttons(window.get());
    QCOMPARE(buttons.names(), (QStringList{"TARGET", "BRAMLOCK", "POWER", "OPTIONS", "HELP"}));

    QVERIFY(buttons.toggle("TARGET"));
    QTRY_VERIFY(buttons.find("Memory"));
    QVERIFY(buttons.toggle("Memory"));
    QCOMPARE(stack->currentWidget(), memory);
    QVERIFY(buttons.toggle("Flash"));
    QCOMPARE(stack->currentWidget(), flash);
    QVERIFY(buttons.toggle("POWER"));
    QTRY_VERIFY(buttons.find("Supply"));
    QVERIFY(buttons.toggle("Supply"));
    QCOMPARE(stack->currentWidget(), supply);
    QTRY_VERIFY(!buttons.find("Flash")); // TARGET has closed

    QVERIFY(buttons.toggle("HELP")); // selected, without a page
    QVERIFY(buttons.find("HELP")->state().checked);
    QVERIFY(buttons.find("HELP")->state().disabled);
    QCOMPARE(stack->currentWidget(), supply);
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
