#include <UtilsDialogProcessingContent.h>

#include <ContextTranslator.h>
#include <ReferenceAnimation.h>
#include <UniProgTest.h>

#include <UtilsLogger.h>
#include <UtilsProgressBar.h>

#include <QApplication>
#include <QDialog>
#include <QFrame>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QPropertyAnimation>
#include <QPushButton>
#include <QSignalSpy>
#include <QToolButton>
#include <QVBoxLayout>

namespace {

constexpr int ButtonHeight = 27; // pixels

void compareMargins(const QLayout *layout, const char *name, const QMargins &margins)
{
    QCOMPARE(layout->objectName(), name);
    QCOMPARE(layout->spacing(), 0);
    QCOMPARE(layout->contentsMargins(), margins);
}

void compareSpacer(QLayoutItem *item, int height)
{
    const QSpacerItem *spacer = item->spacerItem();
    QVERIFY(spacer);
    QCOMPARE(spacer->sizeHint(), QSize(20, height));
    QCOMPARE(spacer->sizePolicy().horizontalPolicy(), QSizePolicy::Minimum);
    QCOMPARE(spacer->sizePolicy().verticalPolicy(), QSizePolicy::Fixed);
}

void compareLine(QLayoutItem *item, const char *name)
{
    const auto *line = qobject_cast<QFrame *>(item->widget());
    QVERIFY(line);
    QCOMPARE(line->objectName(), name);
    QCOMPARE(line->frameShape(), QFrame::HLine);
    QCOMPARE(line->frameShadow(), QFrame::Sunken);
    QCOMPARE(line->maximumHeight(), 1);
    QCOMPARE(line->property("frame-type"), QVariant("line-horizontal"));
    QCOMPARE(line->property("frame-border-color"), QVariant("gray_level4"));
}

} // namespace

class tst_UtilsDialogProcessingContent : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void theFormIsAsStyleSheetsExpectIt();
    void textsAreTranslatedInTheContextOfTheClass();
    void theMessageStandsOnTop();
    void theLoggerIsThatOfTheForm();
    void theProgressBarReplacesThePlaceholder();
    void theButtonIsCollapsed();
    void theMessageCanBeSet();
    void theButtonGrowsAndThenReadsClose();
    void aGrownButtonStaysAsItIs();
    void returnAndEnterGoOnToTheParents_data();
    void returnAndEnterGoOnToTheParents();
    void theContentMayDieWhileTheButtonGrows();
};

void tst_UtilsDialogProcessingContent::theFormIsAsStyleSheetsExpectIt()
{
    const UtilsDialogProcessingContent content;
    QCOMPARE(content.objectName(), "UtilsDialogProcessingContent");
    QCOMPARE(content.size(), QSize(350, 144));
    QCOMPARE(content.sizePolicy().horizontalPolicy(), QSizePolicy::Preferred);
    QCOMPARE(content.sizePolicy().verticalPolicy(), QSizePolicy::Expanding);
    QCOMPARE(content.minimumWidth(), 350);
    QCOMPARE(content.maximumWidth(), 350);
    QCOMPARE(content.windowTitle(), "Form");

    QLayout *layout = content.layout();
    QVERIFY(qobject_cast<QVBoxLayout *>(layout));
    compareMargins(layout, "verticalLayout", QMargins(8, 0, 8, 0));
    QCOMPARE(layout->count(), 8);
    QCOMPARE(layout->itemAt(0)->widget(), content.getMessageLabel());
    compareSpacer(layout->itemAt(1), 4);
    compareLine(layout->itemAt(2), "line");
    compareSpacer(layout->itemAt(3), 3);
    QCOMPARE(layout->itemAt(4)->widget()->objectName(), "widget_2");
    compareMargins(layout->itemAt(4)->widget()->layout(), "verticalLayout_2", QMargins(12, 0, 12, 0));
    compareLine(layout->itemAt(5), "line_2");
    compareSpacer(layout->itemAt(6), 12);
    QCOMPARE(layout->itemAt(7)->widget()->objectName(), "widget_button");
    compareMargins(layout->itemAt(7)->widget()->layout(), "horizontalLayout", QMargins());
}

void tst_UtilsDialogProcessingContent::textsAreTranslatedInTheContextOfTheClass()
{
    const ContextTranslator translator("UtilsDialogProcessingContent");
    UtilsDialogProcessingContent content;
    QCOMPARE(content.windowTitle(), "<Form>");
    QCOMPARE(content.getMessageLabel()->text(), "<TextLabel>");
    content.slotExpandAnimFinished();
    QCOMPARE(content.getButton()->text(), "<CLOSE>");
}

void tst_UtilsDialogProcessingContent::theMessageStandsOnTop()
{
    const UtilsDialogProcessingContent content;
    const QLabel *label = content.getMessageLabel();
    QCOMPARE(label->objectName(), "label_message");
    QCOMPARE(label->sizePolicy().horizontalPolicy(), QSizePolicy::Preferred);
    QCOMPARE(label->sizePolicy().verticalPolicy(), QSizePolicy::Fixed);
    QCOMPARE(label->alignment(), Qt::AlignHCenter | Qt::AlignVCenter);
    QCOMPARE(label->text(), "TextLabel");
}

void tst_UtilsDialogProcessingContent::theLoggerIsThatOfTheForm()
{
    const UtilsDialogProcessingContent content;
    UtilsLogger *logger = content.getLogger();
    QCOMPARE(logger->objectName(), "logger");
    QCOMPARE(logger->parent()->objectName(), "widget_2");
    QCOMPARE(logger->minimumHeight(), 105);
    QCOMPARE(logger->maximumHeight(), 105);
    QCOMPARE(logger->focusPolicy(), Qt::StrongFocus);
    QCOMPARE(logger->frameShape(), QFrame::StyledPanel);
    QCOMPARE(logger->frameShadow(), QFrame::Raised);
    QCOMPARE(logger->getMaxNumberOfLines(), 1000);
    QCOMPARE(logger->property("background-color"), QVariant("main"));
    QCOMPARE(logger->findChild<QListWidget *>()->property("background-color"), QVariant("main"));

    const UtilsLoggerLine *line = logger->addLine("text", LOGGER_MESSAGE_DEFAULT);
    QCOMPARE(line->property("background-color"), QVariant("main"));
    QCOMPARE(line->findChild<QPropertyAnimation *>()->duration(), 250);
}

void tst_UtilsDialogProcessingContent::theProgressBarReplacesThePlaceholder()
{
    const UtilsDialogProcessingContent content;
    UtilsProgressBar *bar = content.getProgressBar();
    QCOMPARE(content.findChildren<QProgressBar *>(), QList<QProgressBar *>{bar});
    QCOMPARE(bar->parent()->objectName(), "widget_2");
    QCOMPARE(bar->parentWidget()->layout()->indexOf(bar), 1);
    QCOMPARE(bar->maximumHeight(), 5);
    QVERIFY(!bar->isTextVisible());
    QCOMPARE(bar->styleSheet(), "border: 0px;");
    bar->setValue(100);
    const ReferenceAnimation glide(bar, "value", 0, 100, 100, QEasingCurve::Linear);
    QVERIFY(bar->value() < 100);
    QTRY_VERIFY(glide.hasEnded());
    QVERIFY(glide.agrees());
    QCOMPARE(bar->value(), 100);
}

void tst_UtilsDialogProcessingContent::theButtonIsCollapsed()
{
    UtilsDialogProcessingContent content;
    const QToolButton *button = content.getButton();
    const QWidget *area = button->parentWidget();
    QCOMPARE(area->objectName(), "widget_button");
    QCOMPARE(area->sizePolicy().horizontalPolicy(), QSizePolicy::Preferred);
    QCOMPARE(area->sizePolicy().verticalPolicy(), QSizePolicy::Expanding);
    QCOMPARE(area->minimumSize(), QSize(0, 0));
    QCOMPARE(button->objectName(), "toolButton");
    QCOMPARE(button->sizePolicy().horizontalPolicy(), QSizePolicy::Fixed);
    QCOMPARE(button->sizePolicy().verticalPolicy(), QSizePolicy::Ignored);
    QCOMPARE(button->minimumWidth(), 115);
    QVERIFY(button->text().isEmpty());

    content.resize(content.sizeHint());
    content.show();
    QVERIFY(QTest::qWaitForWindowExposed(&content));
    QCOMPARE(button->height(), 0);
    // What is not seen cannot be reached by key.
    for (int tab = 0; tab < 5; ++tab) {
        QTest::keyClick(&content, Qt::Key_Tab);
        QVERIFY(!button->hasFocus());
    }
}

void tst_UtilsDialogProcessingContent::theMessageCanBeSet()
{
    UtilsDialogProcessingContent content;
    content.setMessage("Writing flash");
    QCOMPARE(content.getMessageLabel()->text(), "Writing flash");
}

void tst_UtilsDialogProcessingContent::theButtonGrowsAndThenReadsClose()
{
    UtilsDialogProcessingContent content;
    QWidget *area = content.getButton()->parentWidget();
    content.show();
    content.expandButton();
    const ReferenceAnimation growth(area, "minimumHeight", 0, ButtonHeight, 150);
    QCOMPARE(area->minimumHeight(), 0);
    QVERIFY(content.getButton()->text().isEmpty());
    QTRY_COMPARE(content.getButton()->text(), "CLOSE");
    QTRY_VERIFY(growth.hasEnded());
    QVERIFY(growth.agrees());
    QCOMPARE(area->minimumHeight(), ButtonHeight);
    QTRY_VERIFY(content.getButton()->height() >= ButtonHeight);
    QVERIFY(content.getButton()->focusPolicy() & Qt::TabFocus);
}

void tst_UtilsDialogProcessingContent::aGrownButtonStaysAsItIs()
{
    UtilsDialogProcessingContent content;
    const QWidget *area = content.getButton()->parentWidget();
    content.expandButton();
    content.expandButton();
    QTRY_COMPARE(content.getButton()->text(), "CLOSE");
    content.expandButton();
    QCOMPARE(area->minimumHeight(), ButtonHeight);
}

void tst_UtilsDialogProcessingContent::returnAndEnterGoOnToTheParents_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::addColumn<bool>("goesOn");
    QTest::newRow("return") << Qt::Key_Return << true;
    QTest::newRow("enter") << Qt::Key_Enter << true;
    QTest::newRow("space") << Qt::Key_Space << false;
}

void tst_UtilsDialogProcessingContent::returnAndEnterGoOnToTheParents()
{
    QFETCH(Qt::Key, key);
    QFETCH(bool, goesOn);
    QDialog host;
    auto *content = new UtilsDialogProcessingContent(&host);
    QToolButton *button = content->getButton();
    // The platform of the tests presses no button by these keys; for those that do, the button must not see them.
    for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
        QKeyEvent event(type, key, Qt::NoModifier);
        QCOMPARE(static_cast<QObject *>(content)->eventFilter(button, &event), goesOn);
        QCOMPARE(event.isAccepted(), !goesOn);
        QVERIFY(!static_cast<QObject *>(content)->eventFilter(content->getLogger(), &event));
    }

    QPushButton defaultButton(&host);
    defaultButton.setDefault(true);
    host.show();
    const QSignalSpy closeClicked(button, &QToolButton::clicked);
    const QSignalSpy defaultClicked(&defaultButton, &QPushButton::clicked);
    QTest::keyClick(button, key);
    QCOMPARE(closeClicked.count(), goesOn ? 0 : 1);
    QCOMPARE(defaultClicked.count(), goesOn ? 1 : 0);
}

void tst_UtilsDialogProcessingContent::theContentMayDieWhileTheButtonGrows()
{
    auto *content = new UtilsDialogProcessingContent;
    content->show();
    content->expandButton();
    QCoreApplication::processEvents();
    delete content;
    QCoreApplication::processEvents();
}

UNIPROG_TEST_MAIN(tst_UtilsDialogProcessingContent)
#include "tst_utilsdialogprocessingcontent.moc"
