#include <UtilsHelpContextMenu.h>

#include <UtilsHelpAssistant.h>

#include <ContextTranslator.h>
#include <UniProgTest.h>

#include <QAction>
#include <QApplication>
#include <QContextMenuEvent>
#include <QMetaMethod>
#include <QPointer>
#include <QSignalSpy>
#include <QTimer>

#include <functional>
#include <memory>

namespace {

constexpr int PatienceMs = 30'000;
const QPoint ClickPosition(20, 30);
const QString Keyword = QStringLiteral("device/power.html");

/// Calls \a act with the next popup that is shown, while whoever shows it waits for its end. Should no one have closed
/// it after a long time, it is closed, so that no test waits for ever.
class WithThePopup : public QObject
{
public:
    explicit WithThePopup(std::function<void(QMenu *)> act)
        : action(std::move(act))
    {
        watch.callOnTimeout(this, &WithThePopup::look);
        watch.start(1);
        QTimer::singleShot(PatienceMs, this, [] {
            if (QWidget *popup = QApplication::activePopupWidget())
                popup->close();
        });
    }

    bool seen = false;

private:
    void look()
    {
        QMenu *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
        if (!menu)
            return;
        watch.stop();
        seen = true;
        action(menu);
    }

    QTimer watch;
    std::function<void(QMenu *)> action;
};

void dismiss(QMenu *menu)
{
    QTest::keyClick(menu, Qt::Key_Escape);
}

void choose(QMenu *menu)
{
    QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(menu->actions().constFirst()).center());
}

void chooseByKeyboard(QMenu *menu)
{
    QTest::keyClick(menu, Qt::Key_Down);
    QTest::keyClick(menu, Qt::Key_Return);
}

/// What the window system tells a widget of a right click.
void rightClick(QWidget *widget)
{
    QContextMenuEvent event(QContextMenuEvent::Mouse, ClickPosition, widget->mapToGlobal(ClickPosition));
    QApplication::sendEvent(widget, &event);
}

} // namespace

class tst_UtilsHelpContextMenu : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void theMenuBelongsToItsWidget();
    void theEntryIsTranslatedInTheContextOfTheClass();
    void theSlotsStandInTheirOrder();

    void aRightClickShowsTheOneEntry();
    void theMenuOpensWhereTheWidgetWasClicked();
    void choosingHelpRequestsThePage_data();
    void choosingHelpRequestsThePage();
    void dismissingTheMenuRequestsNothing();
    void afterSomeShowingsOneClickRequestsThePageAsOften_data();
    void afterSomeShowingsOneClickRequestsThePageAsOften();
    void theShowingsOfEachMenuCountAlone();
    void theEntryAloneRequestsNothing();
    void theSlotRequestsThePageWhateverIsChecked();

    void theActionIsDeletedLaterWithTheMenu();
    void theActionMayGoBeforeTheMenu();
    void aMenuTakenFromItsWidgetShowsNothing();
    void theMenuGoesWithItsWidget();
    void theWidgetMayGoWhileTheMenuIsShown();
    void theWidgetMayGoWhenThePageIsRequested();

private:
    std::unique_ptr<QWidget> widget;
    QPointer<UtilsHelpContextMenu> menu;
    std::unique_ptr<QSignalSpy> requests;
};

void tst_UtilsHelpContextMenu::init()
{
    UniProgTest::init();
    widget = std::make_unique<QWidget>();
    widget->setGeometry(100, 100, 200, 200);
    menu = new UtilsHelpContextMenu(widget.get(), Keyword);
    widget->show();
    QVERIFY(QTest::qWaitForWindowExposed(widget.get()));
    // There is no help viewer beside this test: requests are heard of, and nothing comes of them.
    requests
        = std::make_unique<QSignalSpy>(UtilsHelpAssistant::getInstance(), &UtilsHelpAssistant::signalOpenHelpKeyword);
}

void tst_UtilsHelpContextMenu::theMenuBelongsToItsWidget()
{
    QCOMPARE(menu->parentWidget(), widget.get());
    QCOMPARE(widget->contextMenuPolicy(), Qt::CustomContextMenu);
    const QList<QAction *> actions = widget->findChildren<QAction *>(QString(), Qt::FindDirectChildrenOnly);
    QCOMPARE(actions.size(), 1);
    QCOMPARE(actions.constFirst()->text(), QStringLiteral("Help"));
    QVERIFY(widget->actions().isEmpty());
}

void tst_UtilsHelpContextMenu::theEntryIsTranslatedInTheContextOfTheClass()
{
    const ContextTranslator translator("UtilsHelpContextMenu");
    QWidget other;
    const UtilsHelpContextMenu otherMenu(&other, Keyword);
    QCOMPARE(other.findChild<QAction *>()->text(), QStringLiteral("<Help>"));
}

void tst_UtilsHelpContextMenu::theSlotsStandInTheirOrder()
{
    const QMetaObject &metaObject = UtilsHelpContextMenu::staticMetaObject;
    QCOMPARE(metaObject.methodCount(), metaObject.methodOffset() + 2);
    const QMetaMethod show = metaObject.method(metaObject.methodOffset());
    QCOMPARE(show.methodSignature(), QByteArray("slotShowContextMenu(QPoint)"));
    QCOMPARE(show.methodType(), QMetaMethod::Slot);
    const QMetaMethod call = metaObject.method(metaObject.methodOffset() + 1);
    QCOMPARE(call.methodSignature(), QByteArray("slotCallHelpAssistant(bool)"));
    QCOMPARE(call.methodType(), QMetaMethod::Slot);
}

void tst_UtilsHelpContextMenu::aRightClickShowsTheOneEntry()
{
    for (int round = 0; round < 3; ++round) {
        menu->addAction(QStringLiteral("Swept out"));
        QMenu *shown = nullptr;
        QStringList entries;
        const WithThePopup popup([&](QMenu *popupMenu) {
            shown = popupMenu;
            for (const QAction *action : popupMenu->actions())
                entries.append(action->text());
            dismiss(popupMenu);
        });
        rightClick(widget.get());
        QVERIFY(popup.seen);
        QCOMPARE(shown, menu.data());
        QCOMPARE(entries, QStringList(QStringLiteral("Help")));
    }
}

void tst_UtilsHelpContextMenu::theMenuOpensWhereTheWidgetWasClicked()
{
    QPoint position;
    const WithThePopup popup([&](QMenu *popupMenu) {
        position = popupMenu->pos();
        dismiss(popupMenu);
    });
    rightClick(widget.get());
    QVERIFY(popup.seen);
    QCOMPARE(position, widget->mapToGlobal(ClickPosition));
}

void tst_UtilsHelpContextMenu::choosingHelpRequestsThePage_data()
{
    QTest::addColumn<bool>("byKeyboard");
    QTest::newRow("mouse") << false;
    QTest::newRow("keyboard") << true;
}

void tst_UtilsHelpContextMenu::choosingHelpRequestsThePage()
{
    QFETCH(bool, byKeyboard);
    const WithThePopup popup(byKeyboard ? chooseByKeyboard : choose);
    rightClick(widget.get());
    QVERIFY(popup.seen);
    QCOMPARE(*requests, QList<QVariantList>({{Keyword}}));
}

void tst_UtilsHelpContextMenu::dismissingTheMenuRequestsNothing()
{
    const WithThePopup popup(dismiss);
    rightClick(widget.get());
    QVERIFY(popup.seen);
    QVERIFY(requests->isEmpty());
}

void tst_UtilsHelpContextMenu::afterSomeShowingsOneClickRequestsThePageAsOften_data()
{
    QTest::addColumn<int>("showings");
    QTest::newRow("twice") << 2;
    QTest::newRow("five times") << 5;
}

void tst_UtilsHelpContextMenu::afterSomeShowingsOneClickRequestsThePageAsOften()
{
    QFETCH(int, showings);
    for (int round = 1; round < showings; ++round) {
        const WithThePopup popup(dismiss);
        rightClick(widget.get());
        QVERIFY(popup.seen);
    }
    const WithThePopup popup(choose);
    rightClick(widget.get());
    QVERIFY(popup.seen);
    QCOMPARE(*requests, QList<QVariantList>(showings, {Keyword}));
    requests->clear();

    // The showings that ended in a choice count like the others.
    const WithThePopup next(choose);
    rightClick(widget.get());
    QVERIFY(next.seen);
    QCOMPARE(requests->size(), showings + 1);
}

void tst_UtilsHelpContextMenu::theShowingsOfEachMenuCountAlone()
{
    QWidget other;
    const UtilsHelpContextMenu otherMenu(&other, QStringLiteral("other.html"));
    for (int round = 0; round < 3; ++round) {
        const WithThePopup popup(dismiss);
        rightClick(widget.get());
        QVERIFY(popup.seen);
    }
    const WithThePopup popup(choose);
    rightClick(&other);
    QVERIFY(popup.seen);
    QCOMPARE(*requests, QList<QVariantList>({{QStringLiteral("other.html")}}));
}

void tst_UtilsHelpContextMenu::theEntryAloneRequestsNothing()
{
    // Before the menu has been shown for the first time, nothing is connected.
    widget->findChild<QAction *>()->trigger();
    QVERIFY(requests->isEmpty());
}

void tst_UtilsHelpContextMenu::theSlotRequestsThePageWhateverIsChecked()
{
    menu->slotCallHelpAssistant(true);
    menu->slotCallHelpAssistant(false);
    QCOMPARE(*requests, QList<QVariantList>({{Keyword}, {Keyword}}));
}

void tst_UtilsHelpContextMenu::theActionIsDeletedLaterWithTheMenu()
{
    const WithThePopup popup(dismiss);
    rightClick(widget.get());
    const QPointer<QAction> action = widget->findChild<QAction *>();
    delete menu;
    QVERIFY(action);
    action->trigger(); // nobody is left to hear of it
    QVERIFY(requests->isEmpty());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!action);
    rightClick(widget.get());
    QVERIFY(!QApplication::activePopupWidget());
}

void tst_UtilsHelpContextMenu::theActionMayGoBeforeTheMenu()
{
    {
        const WithThePopup popup(dismiss);
        rightClick(widget.get());
        QVERIFY(popup.seen);
    }
    delete widget->findChild<QAction *>();
    const WithThePopup popup(dismiss);
    rightClick(widget.get());
    QVERIFY(!popup.seen);
    delete menu;
    QVERIFY(!menu);
}

void tst_UtilsHelpContextMenu::aMenuTakenFromItsWidgetShowsNothing()
{
    const std::unique_ptr<UtilsHelpContextMenu> owner(menu);
    menu->setParent(nullptr);
    const WithThePopup popup(dismiss);
    rightClick(widget.get());
    QVERIFY(!popup.seen);
    widget.reset();
}

void tst_UtilsHelpContextMenu::theMenuGoesWithItsWidget()
{
    const QPointer<QAction> action = widget->findChild<QAction *>();
    widget.reset();
    QVERIFY(!menu);
    QVERIFY(!action);
}

void tst_UtilsHelpContextMenu::theWidgetMayGoWhileTheMenuIsShown()
{
    const WithThePopup popup([this](QMenu *) { widget.reset(); });
    menu->slotShowContextMenu(ClickPosition);
    QVERIFY(popup.seen);
    QVERIFY(!menu);
    QVERIFY(requests->isEmpty());
}

void tst_UtilsHelpContextMenu::theWidgetMayGoWhenThePageIsRequested()
{
    for (int round = 0; round < 2; ++round) {
        const WithThePopup popup(dismiss);
        menu->slotShowContextMenu(ClickPosition);
        QVERIFY(popup.seen);
    }
    QObject receiver;
    connect(UtilsHelpAssistant::getInstance(), &UtilsHelpAssistant::signalOpenHelpKeyword, &receiver,
            [this] { widget.reset(); });
    widget->findChild<QAction *>()->trigger();
    QVERIFY(!menu);
    QCOMPARE(requests->size(), 1);
}

UNIPROG_TEST_MAIN(tst_UtilsHelpContextMenu)
#include "tst_utilshelpcontextmenu.moc"
