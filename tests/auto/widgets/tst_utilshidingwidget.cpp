#include <UtilsHidingWidget.h>

#include <AccessibleEvents.h>
#include <ContextTranslator.h>
#include <UniProgTest.h>

#include <QApplication>
#include <QLabel>
#include <QLayout>
#include <QPushButton>
#include <QSignalSpy>

class tst_UtilsHidingWidget : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void theCoverIsAsStated();
    void theCardIsInTheMiddle();
    void theCardIsAsStated();
    void theTextsAreTranslatedInTheContextOfTheClass();
    void theMessageIsShown_data();
    void theMessageIsShown();
    void theCoverStaysWithoutItsCard();

    void aShownCoverHasTheSizeOfItsParent();
    void theCoverFollowsItsParent_data();
    void theCoverFollowsItsParent();
    void theCoverLooksAtTheCoveredWidgetNotAtTheEvent();
    void showingTakesOverTheSize();
    void theCoverNeverMoves();
    void otherEventsChangeNothing();
    void aCoverWithoutParentKeepsItsSize();
    void theCoveredWidgetMayGoFirst();
    void aCoverMayGoFirst();
    void theCoverKeepsTheMouseOffTheControls();
    void theCoverIsUsedAgain();
    void theMessageIsHeard();
};

static QFrame *cardOf(const UtilsHidingWidget &cover)
{
    return cover.findChild<QFrame *>(QStringLiteral("frame_2"));
}

static QLabel *labelOf(const UtilsHidingWidget &cover)
{
    return cover.findChild<QLabel *>(QStringLiteral("label_info"));
}

static void compareSpacer(QLayoutItem *item, const QSize &size, QSizePolicy::Policy horizontal,
                          QSizePolicy::Policy vertical)
{
    QSpacerItem *spacer = item->spacerItem();
    QVERIFY(spacer);
    QCOMPARE(spacer->sizeHint(), size);
    QCOMPARE(spacer->sizePolicy().horizontalPolicy(), horizontal);
    QCOMPARE(spacer->sizePolicy().verticalPolicy(), vertical);
}

static void comparePolicy(const QWidget *widget, QSizePolicy::Policy policy)
{
    QCOMPARE(widget->sizePolicy().horizontalPolicy(), policy);
    QCOMPARE(widget->sizePolicy().verticalPolicy(), policy);
}

static void comparePanel(const QFrame *frame)
{
    QCOMPARE(frame->frameShape(), QFrame::StyledPanel);
    QCOMPARE(frame->frameShadow(), QFrame::Raised);
}

void tst_UtilsHidingWidget::theCoverIsAsStated()
{
    const UtilsHidingWidget cover;
    QCOMPARE(cover.objectName(), QStringLiteral("UtilsHidingWidget"));
    QCOMPARE(cover.size(), QSize(400, 300));
    comparePolicy(&cover, QSizePolicy::Expanding);
    QVERIFY(cover.styleSheet().isEmpty());
    comparePanel(&cover);
    QCOMPARE(cover.windowTitle(), QStringLiteral("Frame"));
    QCOMPARE(cover.property("background-color"), QVariant(QStringLiteral("semi-transparent")));
}

void tst_UtilsHidingWidget::theCardIsInTheMiddle()
{
    QWidget page;
    UtilsHidingWidget cover(&page);
    auto *column = qobject_cast<QVBoxLayout *>(cover.layout());
    QVERIFY(column);
    QCOMPARE(column->objectName(), QStringLiteral("verticalLayout"));
    QCOMPARE(column->spacing(), 0);
    QCOMPARE(column->contentsMargins(), QMargins());
    QCOMPARE(column->count(), 3);
    compareSpacer(column->itemAt(0), QSize(20, 0), QSizePolicy::Minimum, QSizePolicy::Expanding);
    compareSpacer(column->itemAt(2), QSize(20, 0), QSizePolicy::Minimum, QSizePolicy::Expanding);

    auto *row = qobject_cast<QFrame *>(column->itemAt(1)->widget());
    QVERIFY(row);
    QCOMPARE(row->objectName(), QStringLiteral("frame_1"));
    comparePolicy(row, QSizePolicy::Preferred);
    comparePanel(row);
    QCOMPARE(row->styleSheet(), QStringLiteral("QFrame#frame_1\n{\nbackground-color: rgba( 0, 0, 0, 0);\n}"));
    QCOMPARE(row->property("background-color"), QVariant(QStringLiteral("semi-transparent")));

    auto *rowLayout = qobject_cast<QHBoxLayout *>(row->layout());
    QVERIFY(rowLayout);
    QCOMPARE(rowLayout->objectName(), QStringLiteral("horizontalLayout_3"));
    QCOMPARE(rowLayout->spacing(), 0);
    QCOMPARE(rowLayout->contentsMargins(), QMargins());
    QCOMPARE(rowLayout->count(), 3);
    compareSpacer(rowLayout->itemAt(0), QSize(0, 20), QSizePolicy::Expanding, QSizePolicy::Minimum);
    QCOMPARE(rowLayout->itemAt(1)->widget(), cardOf(cover));
    compareSpacer(rowLayout->itemAt(2), QSize(0, 20), QSizePolicy::Expanding, QSizePolicy::Minimum);

    page.resize(501, 401);
    page.show();
    const QPoint middle = cardOf(cover)->mapTo(&page, cardOf(cover)->rect().center());
    QVERIFY((middle - page.rect().center()).manhattanLength() <= 2);
}

void tst_UtilsHidingWidget::theCardIsAsStated()
{
    const UtilsHidingWidget cover;
    const QFrame *card = cardOf(cover);
    QVERIFY(card);
    comparePanel(card);
    QCOMPARE(card->property("border-radius"), QVariant(true));
    QCOMPARE(card->property("frame-border-color"), QVariant(QStringLiteral("gray_level4")));
    QCOMPARE(card->property("background-color"), QVariant(QStringLiteral("main")));
    auto *layout = qobject_cast<QHBoxLayout *>(card->layout());
    QVERIFY(layout);
    QCOMPARE(layout->objectName(), QStringLiteral("horizontalLayout_2"));
    QCOMPARE(layout->contentsMargins(), QMargins(20, 20, 20, 20));
    QCOMPARE(layout->count(), 1);

    const QLabel *label = labelOf(cover);
    QVERIFY(label);
    QCOMPARE(layout->itemAt(0)->widget(), label);
    QCOMPARE(label->alignment(), Qt::AlignCenter);
    QCOMPARE(label->property("title"), QVariant(false));
    QCOMPARE(label->text(), QStringLiteral("Message"));
}

void tst_UtilsHidingWidget::theTextsAreTranslatedInTheContextOfTheClass()
{
    const ContextTranslator translator("UtilsHidingWidget");
    const UtilsHidingWidget cover;
    QCOMPARE(labelOf(cover)->text(), QStringLiteral("<Message>"));
    QCOMPARE(cover.windowTitle(), QStringLiteral("<Frame>"));
}

void tst_UtilsHidingWidget::theMessageIsShown_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("one line") << QStringLiteral("No device is connected");
    QTest::newRow("two lines") << QStringLiteral("No device\nis connected");
    QTest::newRow("none") << QString();
}

void tst_UtilsHidingWidget::theMessageIsShown()
{
    QFETCH(QString, text);
    UtilsHidingWidget cover;
    cover.SetInfoText(text);
    QCOMPARE(labelOf(cover)->text(), text);
}

void tst_UtilsHidingWidget::theCoverStaysWithoutItsCard()
{
    QWidget page;
    page.resize(320, 240);
    UtilsHidingWidget cover(&page);
    page.show();
    QVERIFY(cardOf(cover)->isVisible());
    cover.SetInfoVisible(false);
    QVERIFY(!cardOf(cover)->isVisible());
    QVERIFY(cover.isVisible());
    QCOMPARE(cover.geometry(), page.rect());
    cover.SetInfoVisible(true);
    QVERIFY(cardOf(cover)->isVisible());
    cover.hide();
    cover.SetInfoVisible(false);
    QVERIFY(cover.isHidden());
}

void tst_UtilsHidingWidget::aShownCoverHasTheSizeOfItsParent()
{
    QWidget page;
    page.resize(640, 200);
    UtilsHidingWidget cover(&page);
    QCOMPARE(cover.parentWidget(), &page);
    page.show();
    QVERIFY(cover.isVisible());
    QCOMPARE(cover.geometry(), QRect(0, 0, 640, 200));
    QCOMPARE(cover.minimumSize(), cover.size());
    QCOMPARE(cover.maximumSize(), cover.size());
}

void tst_UtilsHidingWidget::theCoverFollowsItsParent_data()
{
    QTest::addColumn<bool>("shown");
    QTest::newRow("shown") << true;
    QTest::newRow("hidden") << false;
}

void tst_UtilsHidingWidget::theCoverFollowsItsParent()
{
    QFETCH(bool, shown);
    QWidget page;
    UtilsHidingWidget cover(&page);
    cover.setVisible(shown);
    page.show();
    for (const QSize size : {QSize(700, 500), QSize(120, 40), QSize(333, 555)}) {
        page.resize(size);
        QCOMPARE(cover.size(), size);
        QCOMPARE(cover.minimumSize(), size);
        QCOMPARE(cover.maximumSize(), size);
    }
    QCOMPARE(cover.isVisible(), shown);
    cover.show();
    QCOMPARE(cover.size(), QSize(333, 555));
}

void tst_UtilsHidingWidget::theCoverLooksAtTheCoveredWidgetNotAtTheEvent()
{
    QWidget page;
    page.resize(300, 200);
    UtilsHidingWidget cover(&page);
    QResizeEvent event(QSize(11, 12), QSize(13, 14));
    QVERIFY(!cover.eventFilter(&page, &event));
    QCOMPARE(cover.size(), QSize(300, 200));

    QWidget other;
    other.installEventFilter(&cover);
    page.setGeometry(0, 0, 310, 210);
    QVERIFY(!cover.eventFilter(&other, &event));
    QCOMPARE(cover.size(), QSize(310, 210));
}

void tst_UtilsHidingWidget::showingTakesOverTheSize()
{
    QWidget page;
    page.resize(300, 200);
    UtilsHidingWidget cover(&page);
    cover.hide();
    page.show();
    cover.setFixedSize(10, 10);
    cover.show();
    QCOMPARE(cover.size(), QSize(300, 200));
}

void tst_UtilsHidingWidget::theCoverNeverMoves()
{
    QWidget page;
    UtilsHidingWidget cover(&page);
    page.show();
    cover.move(7, 9);
    page.resize(500, 100);
    cover.hide();
    cover.show();
    QCOMPARE(cover.pos(), QPoint(7, 9));
}

void tst_UtilsHidingWidget::otherEventsChangeNothing()
{
    QWidget page;
    page.resize(300, 200);
    UtilsHidingWidget cover(&page);
    for (const QEvent::Type type : {QEvent::Move, QEvent::Show, QEvent::Hide, QEvent::LayoutRequest}) {
        QEvent event(type);
        QVERIFY(!cover.eventFilter(&page, &event));
    }
    QCOMPARE(cover.size(), QSize(400, 300));
}

void tst_UtilsHidingWidget::aCoverWithoutParentKeepsItsSize()
{
    UtilsHidingWidget cover;
    QWidget other;
    other.installEventFilter(&cover);
    cover.show();
    other.show();
    other.resize(50, 60);
    QResizeEvent event(QSize(11, 12), QSize(13, 14));
    QVERIFY(!cover.eventFilter(nullptr, &event));
    cover.SetInfoText(QStringLiteral("text"));
    cover.SetInfoVisible(false);
    cover.SetInfoVisible(true);
    cover.hide();
    cover.show();
    QCOMPARE(cover.size(), QSize(400, 300));
}

void tst_UtilsHidingWidget::theCoveredWidgetMayGoFirst()
{
    auto page = std::make_unique<QWidget>();
    page->resize(300, 200);
    UtilsHidingWidget cover(page.get());
    page->show();
    cover.setParent(nullptr);
    page.reset();
    QResizeEvent event(QSize(11, 12), QSize(13, 14));
    QVERIFY(!cover.eventFilter(&cover, &event));
    cover.show();
    QCOMPARE(cover.size(), QSize(300, 200));
}

void tst_UtilsHidingWidget::aCoverMayGoFirst()
{
    QWidget page;
    page.show();
    delete new UtilsHidingWidget(&page);
    page.resize(300, 200);
}

void tst_UtilsHidingWidget::theCoverKeepsTheMouseOffTheControls()
{
    QWidget page;
    page.resize(300, 200);
    auto *button = new QPushButton(&page);
    button->setGeometry(10, 10, 100, 30);
    UtilsHidingWidget cover(&page);
    page.show();
    QVERIFY(QTest::qWaitForWindowExposed(&page));
    const QSignalSpy clicked(button, &QPushButton::clicked);
    QTest::mouseClick(page.windowHandle(), Qt::LeftButton, {}, QPoint(20, 20));
    QVERIFY(clicked.isEmpty());
    cover.hide();
    QTest::mouseClick(page.windowHandle(), Qt::LeftButton, {}, QPoint(20, 20));
    QCOMPARE(clicked.count(), 1);
}

void tst_UtilsHidingWidget::theCoverIsUsedAgain()
{
    QWidget page;
    const QPointer<UtilsHidingWidget> cover = new UtilsHidingWidget(&page);
    page.show();
    for (int i = 0; i < 3; ++i) {
        cover->hide();
        QVERIFY(cover->close());
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(cover);
        cover->show();
        QVERIFY(cover->isVisible());
    }
}

void tst_UtilsHidingWidget::theMessageIsHeard()
{
    AccessibleEvents events;
    UtilsHidingWidget cover;
    cover.SetInfoText(QStringLiteral("No device is connected"));
    QAccessibleInterface *message = QAccessible::queryAccessibleInterface(labelOf(cover));
    QCOMPARE(message->role(), QAccessible::StaticText);
    QCOMPARE(message->text(QAccessible::Name), QStringLiteral("No device is connected"));

    if (!AccessibleEvents::isAvailable())
        QSKIP("Qt's private headers are missing.");
    QAccessibleEvent change(labelOf(cover), QAccessible::NameChanged);
    QVERIFY(events.contains(&change));
}

UNIPROG_TEST_MAIN(tst_UtilsHidingWidget)

#include "tst_utilshidingwidget.moc"
