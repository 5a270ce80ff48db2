#include <UtilsDialog.h>

#include <ContextTranslator.h>
#include <UniProgTest.h>

#include <QApplication>
#include <QButtonGroup>
#include <QDoubleSpinBox>
#include <QFrame>
#include <QIntValidator>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QLocale>
#include <QPointer>
#include <QRadioButton>
#include <QSignalSpy>
#include <QTextEdit>
#include <QToolButton>

/// The values a dialog reports and its end, in their order.
class Report : public QObject
{
    Q_OBJECT

public:
    explicit Report(UtilsDialog *dialog)
    {
        connect(dialog, SIGNAL(accepted(QString)), this, SLOT(text(QString)));
        connect(dialog, SIGNAL(accepted(double)), this, SLOT(number(double)));
        connect(dialog, SIGNAL(accepted()), this, SLOT(accept()));
        connect(dialog, SIGNAL(rejected()), this, SLOT(reject()));
        connect(dialog, SIGNAL(signalDialogClosed()), this, SLOT(close()));
    }

    QStringList lines;

private Q_SLOTS:
    void text(QString value)
    {
        lines.append(QStringLiteral("text ") + value);
    }
    void number(double value)
    {
        lines.append(QStringLiteral("number %1").arg(value));
    }
    void accept()
    {
        lines.append(QStringLiteral("accepted"));
    }
    void reject()
    {
        lines.append(QStringLiteral("rejected"));
    }
    void close()
    {
        lines.append(QStringLiteral("closed"));
    }
};

class tst_UtilsDialog : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();

    void aMessageIsShown();
    void theMessageIsTranslatedInTheContextOfTheClass();
    void inputsStandBelowTheMessageInTheirOrder();
    void settersDoNothingWithoutTheirInput();

    void theLineEditIsCreatedOnce_data();
    void theLineEditIsCreatedOnce();
    void theTextEditIsCreatedOnce();
    void theSpinBoxIsCreatedOnce();
    void theSpinBoxEnablesTheAcceptButton();
    void radioButtonsShowItemAndUnit_data();
    void radioButtonsShowItemAndUnit();
    void theRadioGroupIsCreatedOnceAndConnectedEveryTime();
    void theValidatorEnablesTheAcceptButton();

    void acceptingReportsWhatWasEntered();
    void aRadioChoiceReportsItsNumber_data();
    void aRadioChoiceReportsItsNumber();
    void numbersAreReadAlikeInEveryLocale();
    void acceptedOfTheBaseStaysReachable();
    void rejectingReportsNothing();
    void theDialogMayDieWhileItReports_data();
    void theDialogMayDieWhileItReports();
    void anInputMayDieFirst();

    void returnInTheLineEditAccepts_data();
    void returnInTheLineEditAccepts();
    void returnInTheTextEditIsANewLine();
    void returnWithADisabledAcceptButtonDoesNotAccept();
    void disabledInputControlsLeaveReturnToTheDialog();
};

static void turnTheEventLoop()
{
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void tst_UtilsDialog::cleanup()
{
    turnTheEventLoop();
    QVERIFY2(QApplication::topLevelWidgets().isEmpty(), "A window was left behind.");
}

static QVBoxLayout *contentLayoutOf(const UtilsDialog &dialog)
{
    auto *frame = dialog.findChild<QFrame *>("frame_content");
    return qobject_cast<QVBoxLayout *>(frame->layout()->itemAt(0)->widget()->layout());
}

void tst_UtilsDialog::aMessageIsShown()
{
    UtilsDialog dialog;
    const QVBoxLayout *layout = contentLayoutOf(dialog);
    QVERIFY(layout);
    QCOMPARE(layout->spacing(), 20);
    QCOMPARE(layout->count(), 1);
    auto *label = qobject_cast<QLabel *>(layout->itemAt(0)->widget());
    QVERIFY(label);
    QCOMPARE(label->text(), QStringLiteral("Dialog Message"));
    QCOMPARE(label->alignment(), Qt::AlignCenter);
    dialog.setMessage(QStringLiteral("Authentication failed. \nTry again."));
    QCOMPARE(label->text(), QStringLiteral("Authentication failed. \nTry again."));
}

void tst_UtilsDialog::theMessageIsTranslatedInTheContextOfTheClass()
{
    const ContextTranslator translator("UtilsDialog");
    UtilsDialog dialog;
    QCOMPARE(dialog.findChild<QLabel *>()->text(), QStringLiteral("<Dialog Message>"));
    QCOMPARE(dialog.getAcceptButton()->text(), QStringLiteral("OK"));
}

void tst_UtilsDialog::inputsStandBelowTheMessageInTheirOrder()
{
    UtilsDialog dialog;
    const QVBoxLayout *layout = contentLayoutOf(dialog);
    QList<QString> items{QStringLiteral("1.8")};
    const QButtonGroup *group = dialog.addRadioButtonGroup(items, QStringLiteral("V"), QString());
    QTextEdit *textEdit = dialog.addTextEdit();
    QDoubleSpinBox *spinBox = dialog.addSpinBox(1.0, 0.0, 2.0);
    QLineEdit *lineEdit = dialog.addLineEdit(false);

    QCOMPARE(layout->count(), 5);
    QCOMPARE(layout->itemAt(2)->widget(), textEdit);
    QCOMPARE(layout->itemAt(4)->widget(), lineEdit);
    auto *frame = qobject_cast<QFrame *>(group->button(0)->parentWidget());
    QVERIFY(frame);
    QVERIFY(qobject_cast<QVBoxLayout *>(frame->layout()));
    const QList<QPair<int, QWidget *>> rows{{1, frame}, {3, spinBox}};
    for (const auto &[row, widget] : rows) {
        auto *rowLayout = qobject_cast<QHBoxLayout *>(layout->itemAt(row)->layout());
        QVERIFY(rowLayout);
        QCOMPARE(rowLayout->count(), 3);
        QVERIFY(rowLayout->itemAt(0)->expandingDirections() & Qt::Horizontal);
        QCOMPARE(rowLayout->itemAt(1)->widget(), widget);
        QVERIFY(rowLayout->itemAt(2)->expandingDirections() & Qt::Horizontal);
    }
}

void tst_UtilsDialog::settersDoNothingWithoutTheirInput()
{
    UtilsDialog dialog;
    QIntValidator validator;
    dialog.setLineEditPlaceholder(QStringLiteral("a"));
    dialog.setLineEditText(QStringLiteral("b"));
    dialog.setLineEditValidator(&validator);
    dialog.setTextEditPlaceholder(QStringLiteral("c"));
    dialog.setTextEditText(QStringLiteral("d"));
    dialog.setTextEditMaxHeight(10);
    dialog.slotDialogLineEditChanged(QStringLiteral("e"));
    QVERIFY(!dialog.findChild<QLineEdit *>());
    QVERIFY(!dialog.findChild<QTextEdit *>());
    QVERIFY(dialog.addLineEdit(false)->text().isEmpty());
    QVERIFY(dialog.addTextEdit()->toPlainText().isEmpty());
}

void tst_UtilsDialog::theLineEditIsCreatedOnce_data()
{
    QTest::addColumn<bool>("password");
    QTest::addColumn<QLineEdit::EchoMode>("mode");
    QTest::newRow("plain") << false << QLineEdit::Normal;
    QTest::newRow("password") << true << QLineEdit::Password;
}

void tst_UtilsDialog::theLineEditIsCreatedOnce()
{
    QFETCH(bool, password);
    QFETCH(QLineEdit::EchoMode, mode);
    UtilsDialog dialog;
    QLineEdit *edit = dialog.addLineEdit(password);
    QVERIFY(edit);
    QCOMPARE(edit->echoMode(), mode);
    QVERIFY(edit->alignment() & Qt::AlignHCenter);
    QCOMPARE(dialog.addLineEdit(!password), edit);
    QCOMPARE(edit->echoMode(), mode);

    dialog.setLineEditPlaceholder(QStringLiteral("placeholder"));
    dialog.setLineEditText(QStringLiteral("text"));
    QCOMPARE(edit->placeholderText(), QStringLiteral("placeholder"));
    QCOMPARE(edit->text(), QStringLiteral("text"));
}

void tst_UtilsDialog::theTextEditIsCreatedOnce()
{
    UtilsDialog dialog;
    QTextEdit *edit = dialog.addTextEdit();
    QVERIFY(edit);
    QCOMPARE(dialog.addTextEdit(), edit);
    dialog.setTextEditPlaceholder(QStringLiteral("placeholder"));
    dialog.setTextEditText(QStringLiteral("one\ntwo"));
    dialog.setTextEditMaxHeight(77);
    QCOMPARE(edit->placeholderText(), QStringLiteral("placeholder"));
    QCOMPARE(edit->toPlainText(), QStringLiteral("one\ntwo"));
    QCOMPARE(edit->maximumHeight(), 77);
}

void tst_UtilsDialog::theSpinBoxIsCreatedOnce()
{
    UtilsDialog dialog;
    QDoubleSpinBox *box = dialog.addSpinBox(1.23456, 0.00014, 5.00006);
    QVERIFY(box);
    QCOMPARE(box->decimals(), 4);
    QCOMPARE(box->minimum(), 0.0001);
    QCOMPARE(box->maximum(), 5.0001);
    QCOMPARE(box->value(), 1.2346);
    QCOMPARE(box->sizePolicy().horizontalPolicy(), QSizePolicy::Preferred);
    QCOMPARE(box->sizePolicy().verticalPolicy(), QSizePolicy::Preferred);
    QCOMPARE(dialog.addSpinBox(9.0, 8.0, 10.0), box);
    QCOMPARE(box->value(), 1.2346);
}

void tst_UtilsDialog::theSpinBoxEnablesTheAcceptButton()
{
    UtilsDialog dialog;
    QDoubleSpinBox *box = dialog.addSpinBox(0.0, -1.0, 5.0);
    QVERIFY(dialog.getAcceptButton()->isEnabled()); // nothing has changed yet
    box->setValue(-1.0);
    QVERIFY(!dialog.getAcceptButton()->isEnabled());
    box->setValue(0.0001);
    QVERIFY(dialog.getAcceptButton()->isEnabled());
    box->setValue(0.0);
    QVERIFY(!dialog.getAcceptButton()->isEnabled());
}

void tst_UtilsDialog::radioButtonsShowItemAndUnit_data()
{
    QTest::addColumn<QList<QString>>("items");
    QTest::addColumn<QString>("unit");
    QTest::addColumn<QString>("selected");
    QTest::addColumn<QList<QString>>("labels");
    QTest::addColumn<int>("checked");

    const QList<QString> volts{QStringLiteral("1.8"), QStringLiteral("3.3"), QStringLiteral("5")};
    const QList<QString> labels{QStringLiteral("1.8 V"), QStringLiteral("3.3 V"), QStringLiteral("5 V")};
    QTest::newRow("selected") << volts << "V"
                              << "3.3" << labels << 1;
    QTest::newRow("last selected") << volts << "V"
                                   << "5" << labels << 2;
    QTest::newRow("no item matches") << volts << "V"
                                     << "3.30" << labels << 0;
    QTest::newRow("a label is no item") << volts << "V"
                                        << "3.3 V" << labels << 0;
    QTest::newRow("nothing selected") << volts << "V"
                                      << "" << labels << -1;
    QTest::newRow("no unit") << QList<QString>{"1"} << ""
                             << "1" << QList<QString>{"1 "} << 0;
    QTest::newRow("no items") << QList<QString>{} << "V"
                              << "3.3" << QList<QString>{} << -1;
    QTest::newRow("one item twice") << QList<QString>{"2", "1", "1"} << "V"
                                    << "1" << QList<QString>{"2 V", "1 V", "1 V"} << 1;
}

void tst_UtilsDialog::radioButtonsShowItemAndUnit()
{
    QFETCH(QList<QString>, items);
    QFETCH(QString, unit);
    QFETCH(QString, selected);
    QFETCH(QList<QString>, labels);
    QFETCH(int, checked);
    UtilsDialog dialog;
    const QButtonGroup *group = dialog.addRadioButtonGroup(items, unit, selected);
    QVERIFY(group);
    QList<QString> shown;
    const auto buttons = group->buttons();
    for (int id = 0; id < buttons.size(); ++id) {
        QVERIFY(qobject_cast<QRadioButton *>(buttons.at(id)));
        QCOMPARE(group->id(buttons.at(id)), id);
        QCOMPARE(buttons.at(id)->parentWidget()->layout()->itemAt(id)->widget(), buttons.at(id));
        shown.append(buttons.at(id)->text());
    }
    QCOMPARE(shown, labels);
    QCOMPARE(group->checkedId(), checked);
}

void tst_UtilsDialog::theRadioGroupIsCreatedOnceAndConnectedEveryTime()
{
    UtilsDialog dialog;
    QList<QString> items{QStringLiteral("1"), QStringLiteral("2")};
    QButtonGroup *group = dialog.addRadioButtonGroup(items, QStringLiteral("A"), QStringLiteral("1"));
    QList<QString> others{QStringLiteral("3")};
    QCOMPARE(dialog.addRadioButtonGroup(others, QStringLiteral("B"), QStringLiteral("3")), group);
    QCOMPARE(group->buttons().size(), 2);
    QCOMPARE(group->checkedId(), 0);

    dialog.enableAcceptButton(false);
    group->button(0)->click(); // checked already, and still a choice
    QVERIFY(dialog.getAcceptButton()->isEnabled());

    group->disconnect(&dialog);
    dialog.enableAcceptButton(false);
    group->button(1)->click();
    QVERIFY(!dialog.getAcceptButton()->isEnabled());
    dialog.addRadioButtonGroup(items, QString(), QString());
    group->button(0)->click();
    QVERIFY(dialog.getAcceptButton()->isEnabled());
}

void tst_UtilsDialog::theValidatorEnablesTheAcceptButton()
{
    UtilsDialog dialog;
    QLineEdit *edit = dialog.addLineEdit(false);
    QIntValidator validator(10, 99);
    dialog.setLineEditValidator(&validator);
    dialog.setLineEditValidator(&validator);
    QCOMPARE(edit->validator(), &validator);
    QVERIFY(dialog.getAcceptButton()->isEnabled()); // until the text changes
    edit->setText(QStringLiteral("1"));
    QVERIFY(!dialog.getAcceptButton()->isEnabled());
    edit->setText(QStringLiteral("12"));
    QVERIFY(dialog.getAcceptButton()->isEnabled());
    edit->clear();
    QVERIFY(!dialog.getAcceptButton()->isEnabled());
    edit->setText(QStringLiteral("99"));
    dialog.enableAcceptButton(false);
    dialog.slotDialogLineEditChanged(QStringLiteral("no"));
    QVERIFY(dialog.getAcceptButton()->isEnabled()); // the line edit counts, not the argument
    dialog.setLineEditValidator(nullptr);
    edit->setText(QStringLiteral("anything"));
    QVERIFY(dialog.getAcceptButton()->isEnabled());
}

void tst_UtilsDialog::acceptingReportsWhatWasEntered()
{
    auto *dialog = new UtilsDialog;
    const Report report(dialog);
    QList<QString> items{QStringLiteral("1.8"), QStringLiteral("3.3"), QStringLiteral("5")};
    dialog->addRadioButtonGroup(items, QStringLiteral("V"), QStringLiteral("3.3"));
    dialog->addSpinBox(2.5, 0.0, 5.0);
    dialog->addTextEdit();
    dialog->addLineEdit(true);
    dialog->setTextEditText(QStringLiteral("note"));
    dialog->setLineEditText(QStringLiteral("secret"));
    dialog->show();
    QTest::mouseClick(dialog->getAcceptButton(), Qt::LeftButton);
    QCOMPARE(report.lines, QStringList({"text secret", "text note", "number 2.5", "number 3.3", "closed", "accepted"}));
}

void tst_UtilsDialog::aRadioChoiceReportsItsNumber_data()
{
    QTest::addColumn<QString>("item");
    QTest::addColumn<QString>("unit");
    QTest::addColumn<QString>("reported");
    QTest::newRow("3.3 V") << "3.3"
                           << "V"
                           << "number 3.3";
    QTest::newRow("5 V") << "5"
                         << "V"
                         << "number 5";
    QTest::newRow("negative") << "-1.25"
                              << "V"
                              << "number -1.25";
    QTest::newRow("an item with blanks") << "2 to 4"
                                         << "V"
                                         << "number 2";
    QTest::newRow("a leading blank") << " 4"
                                     << "V"
                                     << "number 0";
    QTest::newRow("no number") << "off"
                               << ""
                               << "number 0";
    QTest::newRow("a decimal comma") << "3,3"
                                     << "V"
                                     << "number 0";
    QTest::newRow("no item") << ""
                             << "V"
                             << "number 0";
    QTest::newRow("a mnemonic") << "&7"
                                << "V"
                                << "number 0";
}

void tst_UtilsDialog::aRadioChoiceReportsItsNumber()
{
    QFETCH(QString, item);
    QFETCH(QString, unit);
    QFETCH(QString, reported);
    auto *dialog = new UtilsDialog;
    const Report report(dialog);
    QList<QString> items{item};
    dialog->addRadioButtonGroup(items, unit, QStringLiteral("the first"));
    dialog->on_toolButton_accept_clicked();
    QCOMPARE(report.lines, QStringList({reported, "closed", "accepted"}));
}

void tst_UtilsDialog::numbersAreReadAlikeInEveryLocale()
{
    const QLocale locale;
    QLocale::setDefault(QLocale(QLocale::German));
    auto *dialog = new UtilsDialog;
    const Report report(dialog);
    QList<QString> items{QStringLiteral("3.3")};
    dialog->addRadioButtonGroup(items, QStringLiteral("V"), QStringLiteral("3.3"));
    dialog->on_toolButton_accept_clicked();
    QLocale::setDefault(locale);
    QVERIFY(report.lines.contains(QStringLiteral("number 3.3")));
}

void tst_UtilsDialog::acceptedOfTheBaseStaysReachable()
{
    auto *dialog = new UtilsDialog;
    QSignalSpy accepted(dialog, qOverload<>(&UtilsDialog::accepted));
    QSignalSpy text(dialog, qOverload<QString>(&UtilsDialog::accepted));
    QSignalSpy number(dialog, qOverload<double>(&UtilsDialog::accepted));
    QSignalSpy closed(dialog, &UtilsDialogFrame::signalDialogClosed);
    QList<QString> items{QStringLiteral("1"), QStringLiteral("2")};
    dialog->addRadioButtonGroup(items, QStringLiteral("V"), QString());
    dialog->show();
    QTest::keyClick(dialog, Qt::Key_Return);
    QCOMPARE(accepted.count(), 1);
    QCOMPARE(text.count(), 0);
    QCOMPARE(number.count(), 0); // no button is checked
    QCOMPARE(closed.count(), 1);
}

void tst_UtilsDialog::rejectingReportsNothing()
{
    for (const bool byKey : {true, false}) {
        auto *dialog = new UtilsDialog;
        const Report report(dialog);
        dialog->addLineEdit(false)->setText(QStringLiteral("text"));
        dialog->addSpinBox(1.0, 0.0, 2.0);
        dialog->show();
        if (byKey)
            QTest::keyClick(dialog, Qt::Key_Escape);
        else
            QTest::mouseClick(dialog->getCancelButton(), Qt::LeftButton);
        QCOMPARE(report.lines, QStringList({"closed", "rejected"}));
        turnTheEventLoop();
    }
}

void tst_UtilsDialog::theDialogMayDieWhileItReports_data()
{
    QTest::addColumn<QStringList>("inputs");
    QTest::newRow("line edit") << QStringList{"line", "text", "spin", "radio"};
    QTest::newRow("text edit") << QStringList{"text", "spin", "radio"};
    QTest::newRow("spin box") << QStringList{"spin", "radio"};
    QTest::newRow("radio group") << QStringList{"radio"};
}

void tst_UtilsDialog::theDialogMayDieWhileItReports()
{
    QFETCH(QStringList, inputs);
    const QPointer<UtilsDialog> dialog(new UtilsDialog);
    if (inputs.contains(QLatin1String("line")))
        dialog->addLineEdit(false);
    if (inputs.contains(QLatin1String("text")))
        dialog->addTextEdit();
    if (inputs.contains(QLatin1String("spin")))
        dialog->addSpinBox(1.0, 0.0, 2.0);
    QList<QString> items{QStringLiteral("1")};
    dialog->addRadioButtonGroup(items, QStringLiteral("V"), QStringLiteral("1"));
    int reports = 0;
    const auto destroy = [&dialog, &reports] {
        ++reports;
        delete dialog;
    };
    connect(dialog, qOverload<QString>(&UtilsDialog::accepted), this, destroy);
    connect(dialog, qOverload<double>(&UtilsDialog::accepted), this, destroy);
    dialog->on_toolButton_accept_clicked();
    QVERIFY(!dialog);
    QCOMPARE(reports, 1);
}

void tst_UtilsDialog::anInputMayDieFirst()
{
    auto *dialog = new UtilsDialog;
    const Report report(dialog);
    QList<QString> items{QStringLiteral("1")};
    delete dialog->addLineEdit(false);
    delete dialog->addTextEdit();
    delete dialog->addSpinBox(1.0, 0.0, 2.0);
    delete dialog->addRadioButtonGroup(items, QStringLiteral("V"), QStringLiteral("1"));
    dialog->setLineEditText(QStringLiteral("text"));
    dialog->on_toolButton_accept_clicked();
    QCOMPARE(report.lines, QStringList({"closed", "accepted"}));
}

void tst_UtilsDialog::returnInTheLineEditAccepts_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::newRow("Return") << Qt::Key_Return;
    QTest::newRow("Enter") << Qt::Key_Enter;
}

void tst_UtilsDialog::returnInTheLineEditAccepts()
{
    QFETCH(Qt::Key, key);
    auto *dialog = new UtilsDialog;
    const Report report(dialog);
    QLineEdit *edit = dialog->addLineEdit(true);
    dialog->show();
    QVERIFY(QTest::qWaitForWindowActive(dialog));
    dialog->setFocus(edit);
    QTest::keyClicks(edit, QStringLiteral("pass word"));
    QTest::keyClick(edit, key);
    QCOMPARE(report.lines, QStringList({"text pass word", "closed", "accepted"}));
}

void tst_UtilsDialog::returnInTheTextEditIsANewLine()
{
    auto *dialog = new UtilsDialog;
    const Report report(dialog);
    QTextEdit *edit = dialog->addTextEdit();
    dialog->show();
    QTest::keyClicks(edit, QStringLiteral("a"));
    QTest::keyClick(edit, Qt::Key_Return);
    QTest::keyClicks(edit, QStringLiteral("b"));
    QCOMPARE(edit->toPlainText(), QStringLiteral("a\nb"));
    QCOMPARE(report.lines, QStringList());
    dialog->hide();
}

void tst_UtilsDialog::returnWithADisabledAcceptButtonDoesNotAccept()
{
    const QPointer<UtilsDialog> dialog(new UtilsDialog);
    const Report report(dialog);
    QLineEdit *edit = dialog->addLineEdit(false);
    QIntValidator validator(10, 99);
    dialog->setLineEditValidator(&validator);
    dialog->show();
    QTest::keyClicks(edit, QStringLiteral("1"));
    QTest::keyClick(edit, Qt::Key_Return);
    turnTheEventLoop();
    QVERIFY(dialog);
    QCOMPARE(report.lines, QStringList());
    QTest::keyClicks(edit, QStringLiteral("2"));
    QTest::keyClick(edit, Qt::Key_Return);
    QCOMPARE(report.lines, QStringList({"text 12", "closed", "accepted"}));
}

void tst_UtilsDialog::disabledInputControlsLeaveReturnToTheDialog()
{
    auto *dialog = new UtilsDialog;
    const Report report(dialog);
    dialog->show();
    dialog->disableInputControls();
    QTest::keyClick(dialog, Qt::Key_Escape);
    QCOMPARE(report.lines, QStringList());
    dialog->enableAcceptButton(false);
    QTest::keyClick(dialog, Qt::Key_Return);
    QCOMPARE(report.lines, QStringList());
    dialog->enableAcceptButton(true);
    QTest::keyClick(dialog, Qt::Key_Return); // the message dialog asks the accept button alone
    QCOMPARE(report.lines, QStringList({"closed", "accepted"}));
}

UNIPROG_TEST_MAIN(tst_UtilsDialog)
#include "tst_utilsdialog.moc"
