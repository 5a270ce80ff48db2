#include "LifetimeSubjects.h"

#include <UtilsButtonGroup.h>
#include <UtilsDialog.h>
#include <UtilsDialogProcessing.h>
#include <UtilsDialogProcessingContent.h>
#include <UtilsDialogTitlebar.h>
#include <UtilsDialogWindow.h>
#include <UtilsFade.h>
#include <UtilsHelpAssistant.h>
#include <UtilsHelpContextMenu.h>
#include <UtilsHidingWidget.h>
#include <UtilsHttpClient.h>
#include <UtilsIpEdit.h>
#include <UtilsLabel.h>
#include <UtilsLcdNumber.h>
#include <UtilsLogger.h>
#include <UtilsOption.h>
#include <UtilsOptionList.h>
#include <UtilsProgressBar.h>
#include <UtilsSequentialAnimation.h>
#include <UtilsSidebar.h>
#include <UtilsSidebarItem.h>
#include <UtilsSidebarListWidget.h>
#include <UtilsSidebarWidget.h>
#include <UtilsStackedWidget.h>
#include <UtilsTabWidget.h>
#include <UtilsToggleSwitch.h>
#include <UtilsUniProgStatus.h>
#include <UtilsWaitingSpinner.h>
#include <WaitingSpinnerWidget.h>

#include <QApplication>
#include <QButtonGroup>
#include <QComboBox>
#include <QEnterEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPropertyAnimation>
#include <QTest>
#include <QTimer>
#include <QToolButton>

namespace {

constexpr int ShortDuration = 60; // milliseconds; some frames of an animation
constexpr char Image[] = ":/images/power_light.svg";

/// A step that is over at once, or when \a isDone holds.
template <typename T>
LifetimeStep step(std::function<void(T *)> act, std::function<bool(T *)> isDone = {})
{
    return {[act](QObject *object) { act(static_cast<T *>(object)); },
            [isDone](QObject *object) { return !isDone || isDone(static_cast<T *>(object)); }};
}

template <typename T>
std::function<QObject *(QWidget *)> make()
{
    return [](QWidget *window) { return new T(window); };
}

LifetimeStep showWindow()
{
    return step<QWidget>([](QWidget *widget) {
        widget->show();
        widget->window()->show();
    });
}

LifetimeStep click(const char *buttonName)
{
    return step<QWidget>([buttonName](QWidget *widget) {
        if (auto *button = widget->findChild<QToolButton *>(QLatin1String(buttonName)))
            QTest::mouseClick(button, Qt::LeftButton);
    });
}

template <typename T>
LifetimeStep press(Qt::Key key)
{
    return step<T>([key](T *widget) { QTest::keyClick(widget, key); });
}

// Apart, because the first of them may be the end of the widget.
LifetimeStep pressMouse()
{
    return step<QWidget>([](QWidget *widget) { QTest::mousePress(widget, Qt::LeftButton); });
}

LifetimeStep releaseMouse()
{
    return step<QWidget>([](QWidget *widget) { QTest::mouseRelease(widget, Qt::LeftButton); });
}

LifetimeStep leave()
{
    return step<QWidget>([](QWidget *widget) {
        QEvent event(QEvent::Leave);
        QCoreApplication::sendEvent(widget, &event);
    });
}

LifetimeStep closeIt()
{
    return step<QWidget>([](QWidget *widget) { widget->close(); });
}

QList<LifetimeSubject> frames()
{
    const auto acceptIt = step<QDialog>([](QDialog *dialog) { dialog->accept(); });
    return {
        {"UtilsDialogFrame, accepted", make<UtilsDialogFrame>(), {showWindow(), click("toolButton_accept")}},
        {"UtilsDialogFrame, rejected",
         make<UtilsDialogFrame>(),
         {showWindow(), press<UtilsDialogFrame>(Qt::Key_Escape)}},
        {"UtilsDialogFrame, closed", make<UtilsDialogFrame>(), {showWindow(), closeIt()}},
        {"UtilsDialogFrame, done", make<UtilsDialogFrame>(), {showWindow(), step<QDialog>([](QDialog *dialog) {
                                                                  dialog->done(7);
                                                              })}},
        {"UtilsDialogFrame, executed", make<UtilsDialogFrame>(), {step<QDialog>([](QDialog *dialog) {
             QTimer::singleShot(0, dialog, &QDialog::accept);
             dialog->exec();
         })}},
        {"UtilsDialog, accepted",
         [](QWidget *window) {
             auto *dialog = new UtilsDialog(window);
             dialog->addLineEdit(false)->setText(QStringLiteral("3.3"));
             dialog->addTextEdit();
             dialog->addSpinBox(3.3, 0, 5);
             QList<QString> items{QStringLiteral("1.8"), QStringLiteral("3.3")};
             dialog->addRadioButtonGroup(items, QStringLiteral("V"), QStringLiteral("3.3"));
             return dialog;
         },
         {showWindow(), press<UtilsDialog>(Qt::Key_Return)}},
        {"UtilsDialog, rejected", make<UtilsDialog>(), {showWindow(), click("toolButton_cancel")}},
        {"UtilsDialogProcessing, failed",
         make<UtilsDialogProcessing>(),
         {showWindow(), step<UtilsDialogProcessing>([](UtilsDialogProcessing *dialog) {
              dialog->slotUpdateLog(QStringLiteral("Erasing MCU...\nWriting MCU..."), LOGGER_MESSAGE_DEFAULT);
              dialog->slotUpdateProgressbar(50);
              dialog->errorHandler();
          }),
          press<UtilsDialogProcessing>(Qt::Key_Escape)}},
        {"UtilsDialogProcessing, succeeded",
         make<UtilsDialogProcessing>(),
         {showWindow(),
          step<UtilsDialogProcessing>(
              [](UtilsDialogProcessing *dialog) {
                  dialog->slotUpdateProgressbar(-1);
                  dialog->slotUpdateLog(QStringLiteral("Done."), LOGGER_MESSAGE_SUCCESS);
                  dialog->slotProcedureCompleted(0, {});
              },
              [](UtilsDialogProcessing *) { return false; })}}, // until it closes by itself
        {"UtilsWaitingSpinner",
         [](QWidget *window) { return new UtilsWaitingSpinner(window, QStringLiteral("Please wait")); },
         {showWindow(), step<UtilsWaitingSpinner>([](UtilsWaitingSpinner *spinner) { spinner->setCountdown(3); }),
          acceptIt}},
        {"UtilsDialogWindow, accepted",
         make<UtilsDialogWindow>(),
         {showWindow(), step<UtilsDialogWindow>([](UtilsDialogWindow *dialog) { dialog->setTitle("Options"); }),
          acceptIt}},
        {"UtilsDialogWindow, closed",
         make<UtilsDialogWindow>(),
         {showWindow(), step<UtilsDialogWindow>([](UtilsDialogWindow *dialog) { dialog->slotMaximize(true); }),
          closeIt()}},
    };
}

QList<LifetimeSubject> logAndAnimations()
{
    return {
        {"UtilsLogger",
         [](QWidget *window) { return new UtilsLogger(window, ShortDuration, 3); },
         {showWindow(),
          step<UtilsLogger>(
              [](UtilsLogger *logger) {
                  logger->addMessage(QStringLiteral("one\ntwo\nthree\nfour"), LOGGER_MESSAGE_INFO);
              },
              [](UtilsLogger *logger) { return logger->isAllAnimationsCompleted(); }),
          step<UtilsLogger>([](UtilsLogger *logger) { logger->clear(); })}},
        {"UtilsLoggerLine in a logger",
         [](QWidget *window) {
             auto *logger = new UtilsLogger(window, ShortDuration);
             logger->addSingleLineMessage(QStringLiteral("before"), LOGGER_MESSAGE_DEFAULT);
             UtilsLoggerLine *line = logger->addLine(QStringLiteral("queued"), LOGGER_MESSAGE_DEFAULT);
             logger->addSingleLineMessage(QStringLiteral("after"), LOGGER_MESSAGE_DEFAULT);
             return line;
         },
         {showWindow(),
          step<UtilsLoggerLine>([](UtilsLoggerLine *line) { line->appendText(QStringLiteral(" and more")); },
                                [](UtilsLoggerLine *line) { return line->isVisible(); }),
          step<UtilsLoggerLine>([](UtilsLoggerLine *line) { line->setText(QStringLiteral("anew")); })}},
        {"UtilsLoggerLine alone",
         [](QWidget *window) { return new UtilsLoggerLine(window, ShortDuration); },
         {showWindow(), step<UtilsLoggerLine>([](UtilsLoggerLine *line) { line->setText(QStringLiteral("text")); })}},
        {"UtilsSequentialAnimation",
         [](QWidget *window) {
             auto *queue = new UtilsSequentialAnimation;
             queue->setParent(window);
             return queue;
         },
         {step<UtilsSequentialAnimation>([](UtilsSequentialAnimation *) {}),
          step<UtilsSequentialAnimation>(
              [](UtilsSequentialAnimation *self) {
                  QObject *window = self->parent();
                  const QPointer<UtilsSequentialAnimation> queue(self);
                  for (int i = 0; queue && i < 3; ++i) {
                      auto *animation = new QPropertyAnimation(window, "size", window);
                      animation->setEndValue(QSize(100 + 10 * i, 100));
                      animation->setDuration(ShortDuration * (i % 2));
                      queue->AddAnimation(animation);
                  }
              },
              [](UtilsSequentialAnimation *queue) { return queue->NumberOfWaitingAnimations() == 0; })}},
        {"an animation in a queue",
         [](QWidget *window) {
             auto *queue = new UtilsSequentialAnimation;
             queue->setParent(window);
             const auto add = [&] {
                 auto *animation = new QPropertyAnimation(window, "size", window);
                 animation->setEndValue(QSize(150, 150));
                 animation->setDuration(ShortDuration);
                 queue->AddAnimation(animation);
                 return animation;
             };
             add();
             QPropertyAnimation *second = add();
             add();
             return second;
         },
         {{[](QObject *) {},
           [](QObject *object) {
               return static_cast<QPropertyAnimation *>(object)->state() == QAbstractAnimation::Running;
           }},
          {[](QObject *) {}, [](QObject *) { return false; }}}}, // until it deletes itself
        {"UtilsFade",
         [](QWidget *window) { return new UtilsFade(window, window, ShortDuration, ShortDuration); },
         {step<UtilsFade>([](UtilsFade *fade) { fade->In(SLOT(show())); }),
          step<UtilsFade>(
              [](UtilsFade *fade) {
                  fade->SelfDestroyEnabled(true);
                  fade->Out(SLOT(hide()));
              },
              [](UtilsFade *) { return false; })}},
    };
}

QList<LifetimeSubject> controls()
{
    return {
        {"UtilsButtonGroup",
         [](QWidget *window) {
             auto *group = new UtilsButtonGroup(window);
             group->addButton(QStringLiteral("slow"), 0);
             group->addButton(QStringLiteral("fast"), 1);
             return group;
         },
         {showWindow(), click("slow"), click("fast"),
          step<UtilsButtonGroup>([](UtilsButtonGroup *group) { group->removeButtons(); })}},
        {"UtilsHelpContextMenu",
         [](QWidget *window) { return new UtilsHelpContextMenu(window, QStringLiteral("index.html")); },
         {step<UtilsHelpContextMenu>([](UtilsHelpContextMenu *menu) {
              menu->parentWidget()->show();
              QTimer::singleShot(0, menu, &QWidget::close);
              menu->slotShowContextMenu({});
          }),
          step<UtilsHelpContextMenu>([](UtilsHelpContextMenu *menu) {
              QTimer::singleShot(0, menu, [menu] { QTest::keyClick(menu, Qt::Key_Down); });
              QTimer::singleShot(0, menu, [menu] { QTest::keyClick(menu, Qt::Key_Return); });
              menu->slotShowContextMenu({});
          })}},
        {"UtilsIpEdit",
         make<UtilsIpEdit>(),
         {showWindow(), step<UtilsIpEdit>([](UtilsIpEdit *edit) {
              edit->getLineEditWidgets(0)->setFocus();
              QTest::keyClick(edit->getLineEditWidgets(0), Qt::Key_1);
          }),
          step<UtilsIpEdit>([](UtilsIpEdit *edit) { QTest::keyClick(edit->getLineEditWidgets(0), Qt::Key_Right); })}},
        {"UtilsLabel",
         make<UtilsLabel>(),
         {showWindow(), step<UtilsLabel>([](UtilsLabel *label) {
              QEnterEvent event({}, {}, {});
              QCoreApplication::sendEvent(label, &event);
          }),
          pressMouse(), releaseMouse(), leave()}},
        {"UtilsLcdNumber", make<UtilsLcdNumber>(), {showWindow(), step<UtilsLcdNumber>([](UtilsLcdNumber *number) {
                                                        number->setValue(12.5);
                                                    })}},
        {"UtilsProgressBar",
         [](QWidget *window) {
             auto *bar = new UtilsProgressBar(window);
             bar->setAnimationDuration(ShortDuration);
             return bar;
         },
         {showWindow(),
          step<UtilsProgressBar>(
              [](UtilsProgressBar *bar) {
                  bar->setRange(0, 100);
                  bar->setValue(60);
                  bar->setValue(100);
              },
              [](UtilsProgressBar *bar) { return bar->value() == 100; })}},
        {"UtilsOptionList",
         [](QWidget *window) {
             auto *list = new UtilsOptionList;
             list->setParent(window);
             UtilsOption *option = list->addOption(QStringLiteral("Speed"));
             option->addItem(1, QStringLiteral("Slow"));
             option->addItem(4, QStringLiteral("Fast"));
             return list;
         },
         {step<UtilsOptionList>(
              [](UtilsOptionList *list) { list->createGraphicInterface(qobject_cast<QWidget *>(list->parent())); }),
          step<UtilsOptionList>(
              [](UtilsOptionList *list) { list->parent()->findChild<QComboBox *>()->setCurrentIndex(1); })}},
        {"UtilsToggleSwitch",
         make<UtilsToggleSwitch>(),
         {showWindow(), step<UtilsToggleSwitch>([](UtilsToggleSwitch *button) { button->toggle(); }), pressMouse(),
          releaseMouse(), press<UtilsToggleSwitch>(Qt::Key_Space),
          step<UtilsToggleSwitch>([](UtilsToggleSwitch *button) { button->toggleOnMouseClick(false); }), pressMouse(),
          releaseMouse()}},
        {"WaitingSpinnerWidget",
         [](QWidget *window) { return new WaitingSpinnerWidget(window, true, true); },
         {step<WaitingSpinnerWidget>([](WaitingSpinnerWidget *spinner) {
              spinner->parentWidget()->show();
              spinner->setCountdown(2);
          }),
          step<WaitingSpinnerWidget>([](WaitingSpinnerWidget *spinner) { spinner->start(); }),
          step<WaitingSpinnerWidget>([](WaitingSpinnerWidget *spinner) { spinner->stop(); })}},
    };
}

QObject *makeSidebar(QWidget *window)
{
    UtilsSidebar *sidebar = UtilsSidebar::getInstance(window);
    for (int i = 0; i < 2; ++i) {
        auto *page = new QLabel;
        page->setObjectName(QStringLiteral("page %1").arg(i));
        sidebar->addConnection(page, i, 1);
    }
    sidebar->setParent(window);
    return sidebar;
}

UtilsSidebarWidget *makeColumn(QWidget *window)
{
    auto *column = new UtilsSidebarWidget(window);
    for (int i = 1; i <= 2; ++i) {
        column->addItem(QStringLiteral("section"), QLatin1String(Image), QLatin1String(Image));
        column->addChild(QStringLiteral("first"), i, 0);
        column->addChild(QStringLiteral("second"), i, 1);
    }
    return column;
}

UtilsStackedWidget *makeStack(QWidget *window, bool animated)
{
    auto *stack = new UtilsStackedWidget(window, animated);
    stack->addWidget(new QLabel(QStringLiteral("one")));
    stack->addWidget(new QLabel(QStringLiteral("two")));
    return stack;
}

QList<LifetimeSubject> containers()
{
    const auto toSecondPage
        = step<UtilsStackedWidget>([](UtilsStackedWidget *stack) { stack->setCurrentIndex(1); },
                                   [](UtilsStackedWidget *stack) { return stack->currentIndex() == 1; });
    const auto removePage
        = step<UtilsStackedWidget>([](UtilsStackedWidget *stack) { stack->removeWidget(stack->currentWidget()); });
    return {
        {"UtilsDialogProcessingContent",
         make<UtilsDialogProcessingContent>(),
         {showWindow(),
          step<UtilsDialogProcessingContent>(
              [](UtilsDialogProcessingContent *content) {
                  content->getLogger()->addMessage(QStringLiteral("line"), LOGGER_MESSAGE_DEFAULT);
                  content->getProgressBar()->setValue(50);
                  content->expandButton();
              },
              [](UtilsDialogProcessingContent *content) { return !content->getButton()->text().isEmpty(); })}},
        {"UtilsDialogTitlebar",
         make<UtilsDialogTitlebar>(),
         {showWindow(), step<UtilsDialogTitlebar>([](UtilsDialogTitlebar *bar) {
              QTest::mousePress(bar, Qt::LeftButton, {}, {50, 10});
          }),
          click("maximizeButton"), click("closeButton")}},
        {"UtilsHidingWidget",
         make<UtilsHidingWidget>(),
         {showWindow(),
          step<UtilsHidingWidget>([](UtilsHidingWidget *widget) { widget->parentWidget()->resize(300, 200); })}},
        {"UtilsSidebar",
         makeSidebar,
         {step<UtilsSidebar>([](UtilsSidebar *sidebar) { sidebar->getSidebarWidget()->window()->show(); }),
          step<UtilsSidebar>([](UtilsSidebar *sidebar) { sidebar->slotShowWidget(sidebar->getWidgetFromMap(1, 2)); }),
          step<UtilsSidebar>(
              [](UtilsSidebar *sidebar) { sidebar->removeConnection(sidebar->getWidgetFromMap(1, 1)); })}},
        {"UtilsSidebarItem",
         [](QWidget *window) {
             auto *item = new UtilsSidebarItem(nullptr, window);
             item->setUp(QStringLiteral("section"), QLatin1String(Image), QLatin1String(Image));
             item->addChild(QStringLiteral("first"), 0);
             item->addChild(QStringLiteral("second"), 1);
             return item;
         },
         {showWindow(), click("toolButton_main"),
          step<UtilsSidebarItem>([](UtilsSidebarItem *item) { item->checkChild(1); }),
          step<UtilsSidebarItem>([](UtilsSidebarItem *item) { item->checkChild(2); }),
          step<UtilsSidebarItem>([](UtilsSidebarItem *item) { item->removeChild(1); }),
          step<UtilsSidebarItem>([](UtilsSidebarItem *item) { item->reset(); })}},
        {"UtilsSidebarItem in a column",
         [](QWidget *window) { return makeColumn(window)->findChild<UtilsSidebarItem *>(); },
         {showWindow(), step<UtilsSidebarItem>([](UtilsSidebarItem *item) { item->checkChild(2); }),
          step<UtilsSidebarItem>([](UtilsSidebarItem *item) {
              qobject_cast<UtilsSidebarWidget *>(item->parent())->checkChild(2, 1); // which closes this one
          })}},
        {"UtilsSidebarListWidget",
         make<UtilsSidebarListWidget>(),
         {showWindow(),
          step<UtilsSidebarListWidget>([](UtilsSidebarListWidget *list) { list->addItem(QStringLiteral("row")); }),
          step<UtilsSidebarListWidget>([](UtilsSidebarListWidget *list) { list->setCurrentRow(0); })}},
        {"UtilsSidebarWidget",
         makeColumn,
         {showWindow(), step<UtilsSidebarWidget>([](UtilsSidebarWidget *column) { column->checkChild(1, 2); }),
          step<UtilsSidebarWidget>([](UtilsSidebarWidget *column) { column->checkChild(2, 1); }),
          click("toolButton_main"), leave()}},
        {"UtilsStackedWidget, animated",
         [](QWidget *window) { return makeStack(window, true); },
         {showWindow(), toSecondPage, removePage}},
        {"UtilsStackedWidget, not animated",
         [](QWidget *window) { return makeStack(window, false); },
         {showWindow(), toSecondPage, removePage}},
        {"UtilsTabWidget",
         make<UtilsTabWidget>(),
         {showWindow(),
          step<UtilsTabWidget>([](UtilsTabWidget *tabs) { tabs->addTab(new QLabel, QStringLiteral("one")); }),
          step<UtilsTabWidget>([](UtilsTabWidget *tabs) { tabs->addTab(new QLabel, QStringLiteral("two")); }),
          step<UtilsTabWidget>([](UtilsTabWidget *tabs) { tabs->setCurrentIndex(1); })}},
    };
}

QList<LifetimeSubject> services()
{
    return {
        {"UtilsHelpAssistant",
         [](QWidget *window) {
             UtilsHelpAssistant *assistant = UtilsHelpAssistant::getInstance();
             assistant->setParent(window);
             return assistant;
         },
         {step<UtilsHelpAssistant>([](UtilsHelpAssistant *assistant) {
             Q_EMIT assistant->signalOpenHelpKeyword(QStringLiteral("index.html"));
         })}},
        {"UtilsHttpClient",
         [](QWidget *window) {
             auto *client = new UtilsHttpClient;
             client->setParent(window);
             return client;
         },
         {step<UtilsHttpClient>([](UtilsHttpClient *client) {
             client->SendUrlRequest(QStringLiteral("data:text/plain,anything"));
             client->SendUrlRequest(QStringLiteral("file:///there/is/none"));
         })}},
        {"UtilsUniProgStatus",
         [](QWidget *window) { return new UtilsUniProgStatus(nullptr, UtilsUniProgStatus::STATUS_FLAG_ERROR, window); },
         {step<UtilsUniProgStatus>([](UtilsUniProgStatus *status) {
              status->Start(5, QStringLiteral("Operation failed."), qobject_cast<QWidget *>(status->parent()));
          }),
          step<UtilsUniProgStatus>(
              [](UtilsUniProgStatus *status) { status->parent()->findChild<UtilsDialog *>()->accept(); }),
          step<UtilsUniProgStatus>([](UtilsUniProgStatus *status) { status->Start(0, {}, nullptr); })}},
    };
}

} // namespace

const QList<LifetimeSubject> &lifetimeSubjects()
{
    static const QList<LifetimeSubject> subjects
        = frames() + logAndAnimations() + controls() + containers() + services();
    return subjects;
}
