#include <UtilsIpEdit.h>

#include <UniProgTest.h>

#include <QAccessible>
#include <QApplication>
#include <QFocusEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QSignalSpy>

class tst_UtilsIpEdit : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void theValidatorAcceptsAByte_data();
    void theValidatorAcceptsAByte();
    void onlyAnEmptyTextIsFixed_data();
    void onlyAnEmptyTextIsFixed();

    void theFormIsAsStated();
    void theMetaObjectHasTheSignalFirst();
    void addressesAreShownAndReadBack_data();
    void addressesAreShownAndReadBack();
    void unusualTextsCountAsStated_data();
    void unusualTextsCountAsStated();
    void aBytesTextIsDecimal_data();
    void aBytesTextIsDecimal();

    void aFullFieldHandsTheFocusOn();
    void aWholeAddressIsTypedAtOnce();
    void threeDigitsStayInTheLastField();
    void typingBeforeTheEndStays();
    void largerNumbersMayBeTyped_data();
    void largerNumbersMayBeTyped();
    void anEmptiedFieldBecomesZero_data();
    void anEmptiedFieldBecomesZero();

    void theArrowsCrossTheDots_data();
    void theArrowsCrossTheDots();
    void theFocusMovesForNoKeyboardReason_data();
    void theFocusMovesForNoKeyboardReason();
    void theArrowsAreNoTyping_data();
    void theArrowsAreNoTyping();
    void everyOtherKeyIsAnnounced_data();
    void everyOtherKeyIsAnnounced();
    void keysThatTypeNothingMoveOnToo_data();
    void keysThatTypeNothingMoveOnToo();
    void noKeyIsSwallowed();
    void otherEventsAndWidgetsAreLeftAlone();
    void theSlotRunsAfterTheKey();
    void theSlotIgnoresWhatIsNoField();
    void theEditorMayBeGoneBeforeTheSlot();
    void aFieldMayBeGoneBeforeTheSlot();
    void theEditorSurvivesWithoutAField();

    void addressesAreNotMirrored();
    void everyPartHasAName();
};

static constexpr unsigned int Address = 0xC0A80001; // 192.168.0.1

namespace {

/// An editor that has the keyboard.
class ActiveEdit : public UtilsIpEdit
{
public:
    explicit ActiveEdit(unsigned int address = Address)
        : UtilsIpEdit(nullptr, address)
    {
        show();
        activateWindow();
        if (!QTest::qWaitForWindowActive(this))
            qWarning("The editor is not active.");
    }

    QLineEdit *enter(unsigned char index, int cursor)
    {
        QLineEdit *field = getLineEditWidgets(index);
        field->setFocus();
        field->deselect();
        field->setCursorPosition(cursor);
        return field;
    }

    int focusIndex()
    {
        QCoreApplication::processEvents();
        for (unsigned char i = 0; i < 4; ++i) {
            if (getLineEditWidgets(i) == QApplication::focusWidget())
                return i;
        }
        return -1;
    }
};

QStringList textsOf(UtilsIpEdit &edit)
{
    QStringList texts;
    for (unsigned char i = 0; i < 4; ++i)
        texts.append(edit.getLineEditWidgets(i)->text());
    return texts;
}

} // namespace

void tst_UtilsIpEdit::theValidatorAcceptsAByte_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QValidator::State>("state");
    QTest::newRow("least") << QStringLiteral("0") << QValidator::Acceptable;
    QTest::newRow("most") << QStringLiteral("255") << QValidator::Acceptable;
    QTest::newRow("leading zeros") << QStringLiteral("007") << QValidator::Acceptable;
    QTest::newRow("empty") << QString() << QValidator::Intermediate;
    QTest::newRow("too much") << QStringLiteral("256") << QValidator::Intermediate;
    QTest::newRow("much too much") << QStringLiteral("999") << QValidator::Intermediate;
    QTest::newRow("four digits") << QStringLiteral("1000") << QValidator::Invalid;
    QTest::newRow("sign") << QStringLiteral("-1") << QValidator::Invalid;
    QTest::newRow("letter") << QStringLiteral("a") << QValidator::Invalid;
}

void tst_UtilsIpEdit::theValidatorAcceptsAByte()
{
    QFETCH(QString, text);
    QFETCH(QValidator::State, state);
    const IPItemValidator validator;
    QCOMPARE(validator.bottom(), 0);
    QCOMPARE(validator.top(), 255);
    int position = 0;
    QCOMPARE(validator.validate(text, position), state);
}

void tst_UtilsIpEdit::onlyAnEmptyTextIsFixed_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("fixed");
    QTest::newRow("empty") << QString() << QStringLiteral("0");
    QTest::newRow("leading zeros") << QStringLiteral("007") << QStringLiteral("007");
    QTest::newRow("too much") << QStringLiteral("300") << QStringLiteral("300");
    QTest::newRow("blank") << QStringLiteral(" ") << QStringLiteral(" ");
}

void tst_UtilsIpEdit::onlyAnEmptyTextIsFixed()
{
    QFETCH(QString, text);
    QFETCH(QString, fixed);
    const IPItemValidator validator;
    static_cast<const QValidator &>(validator).fixup(text);
    QCOMPARE(text, fixed);
}

void tst_UtilsIpEdit::theFormIsAsStated()
{
    QWidget parent;
    UtilsIpEdit edit(&parent, Address);
    QCOMPARE(edit.parentWidget(), &parent);
    QCOMPARE(edit.frameShape(), QFrame::StyledPanel);
    QCOMPARE(edit.frameShadow(), QFrame::Sunken);
    QCOMPARE(edit.maximumWidth(), 120);
    auto *layout = qobject_cast<QHBoxLayout *>(edit.layout());
    QVERIFY(layout);
    QCOMPARE(layout->spacing(), 0);
    QCOMPARE(layout->contentsMargins(), QMargins());
    QCOMPARE(layout->count(), 7);
    for (int i = 0; i < 7; ++i) {
        QWidget *part = layout->itemAt(i)->widget();
        QVERIFY(part);
        QCOMPARE(part->property("utils-ip-edit-widget-type"), QVariant(true));
        QCOMPARE(layout->stretch(i), i % 2 == 0 ? 1 : 0);
        if (i % 2 != 0) {
            auto *dot = qobject_cast<QLabel *>(part);
            QVERIFY(dot);
            QCOMPARE(dot->text(), QStringLiteral("."));
            QVERIFY(dot->isEnabled());
            continue;
        }
        auto *field = qobject_cast<QLineEdit *>(part);
        QVERIFY(field);
        QCOMPARE(field, edit.getLineEditWidgets(static_cast<unsigned char>(i / 2)));
        QVERIFY(!field->hasFrame());
        QCOMPARE(field->alignment(), Qt::AlignHCenter | Qt::AlignVCenter);
        QCOMPARE(field->font().styleHint(), QFont::Monospace);
        QCOMPARE(field->font().styleStrategy(), QFont::PreferDevice);
        QVERIFY(field->font().fixedPitch());
        QVERIFY(qobject_cast<const IPItemValidator *>(field->validator()));
    }
}

void tst_UtilsIpEdit::theMetaObjectHasTheSignalFirst()
{
    const QMetaObject &meta = UtilsIpEdit::staticMetaObject;
    QCOMPARE(meta.method(meta.methodOffset()).methodSignature(), QByteArray("signalTextChanged(QLineEdit*)"));
    QCOMPARE(meta.method(meta.methodOffset()).methodType(), QMetaMethod::Signal);
    QCOMPARE(meta.method(meta.methodOffset() + 1).methodSignature(), QByteArray("slotTextChanged(QLineEdit*)"));
    QCOMPARE(meta.method(meta.methodOffset() + 1).methodType(), QMetaMethod::Slot);
}

void tst_UtilsIpEdit::addressesAreShownAndReadBack_data()
{
    QTest::addColumn<unsigned int>("address");
    QTest::addColumn<QStringList>("texts");
    QTest::newRow("usual") << Address << QStringList{"192", "168", "0", "1"};
    QTest::newRow("least") << 0u << QStringList{"0", "0", "0", "0"};
    QTest::newRow("most") << 0xFFFFFFFFu << QStringList{"255", "255", "255", "255"};
    QTest::newRow("highest bit") << 0x80000000u << QStringList{"128", "0", "0", "0"};
    QTest::newRow("order") << 0x01020304u << QStringList{"1", "2", "3", "4"};
}

void tst_UtilsIpEdit::addressesAreShownAndReadBack()
{
    QFETCH(unsigned int, address);
    QFETCH(QStringList, texts);
    UtilsIpEdit edit(nullptr, address);
    QCOMPARE(textsOf(edit), texts);
    QCOMPARE(edit.getAddress(), address);
    edit.setAddress(0x05060708);
    QCOMPARE(edit.getAddress(), 0x05060708u);
    const QSignalSpy changed(&edit, &UtilsIpEdit::signalTextChanged);
    edit.setAddress(address);
    QCOMPARE(textsOf(edit), texts);
    QVERIFY(changed.isEmpty());
}

void tst_UtilsIpEdit::unusualTextsCountAsStated_data()
{
    QTest::addColumn<QStringList>("texts");
    QTest::addColumn<unsigned int>("address");
    QTest::newRow("empty") << QStringList{"", "2", "", "4"} << 0x00020004u;
    QTest::newRow("no numbers") << QStringList{"a", "0x10", "1.5", "9"} << 9u;
    QTest::newRow("leading zeros") << QStringList{"007", "010", "0", "08"} << 0x070A0008u;
    QTest::newRow("too much for an int") << QStringList{"1", "3000000000", "0", "1"} << 0x01000001u;
    // 999 is 0x3E7: what does not fit reaches into the field before, or falls off the first.
    QTest::newRow("more than a byte") << QStringList{"0", "0", "0", "999"} << 0x000003E7u;
    QTest::newRow("more than a byte is ORed") << QStringList{"0", "0", "1", "999"} << 0x000003E7u;
    QTest::newRow("more than the first byte") << QStringList{"999", "0", "0", "0"} << 0xE7000000u;
    QTest::newRow("negative") << QStringList{"0", "0", "0", "-1"} << 0xFFFFFFFFu;
}

void tst_UtilsIpEdit::unusualTextsCountAsStated()
{
    QFETCH(QStringList, texts);
    QFETCH(unsigned int, address);
    UtilsIpEdit edit(nullptr, 0);
    for (unsigned char i = 0; i < 4; ++i)
        edit.getLineEditWidgets(i)->setText(texts.at(i));
    QCOMPARE(textsOf(edit), texts);
    QCOMPARE(edit.getAddress(), address);
}

void tst_UtilsIpEdit::aBytesTextIsDecimal_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<QString>("text");
    QTest::newRow("least") << 0 << QStringLiteral("0");
    QTest::newRow("one digit") << 7 << QStringLiteral("7");
    QTest::newRow("most") << 255 << QStringLiteral("255");
}

void tst_UtilsIpEdit::aBytesTextIsDecimal()
{
    QFETCH(int, value);
    QFETCH(QString, text);
    QCOMPARE(UtilsIpEdit::getIPItemStr(static_cast<unsigned char>(value)), text);
}

void tst_UtilsIpEdit::aFullFieldHandsTheFocusOn()
{
    ActiveEdit edit;
    QLineEdit *first = edit.enter(0, 0);
    first->clear();
    QTest::keyClicks(first, QStringLiteral("25"));
    QCOMPARE(edit.focusIndex(), 0);
    QTest::keyClicks(first, QStringLiteral("5"));
    QTRY_COMPARE(edit.focusIndex(), 1);
    QCOMPARE(edit.getLineEditWidgets(1)->selectedText(), QStringLiteral("168"));
    QCOMPARE(edit.getAddress(), 0xFFA80001u);
}

void tst_UtilsIpEdit::aWholeAddressIsTypedAtOnce()
{
    ActiveEdit edit(0);
    edit.enter(0, 0)->selectAll();
    for (const char digit : QByteArray("192168100200")) {
        QTest::keyClick(QApplication::focusWidget(), digit);
        QCoreApplication::processEvents();
    }
    QCOMPARE(textsOf(edit), (QStringList{"192", "168", "100", "200"}));
    QCOMPARE(edit.focusIndex(), 3);
}

void tst_UtilsIpEdit::threeDigitsStayInTheLastField()
{
    ActiveEdit edit;
    QLineEdit *last = edit.enter(3, 0);
    last->clear();
    QTest::keyClicks(last, QStringLiteral("123"));
    QCOMPARE(edit.focusIndex(), 3);
    QCOMPARE(last->text(), QStringLiteral("123"));
    QVERIFY(!last->hasSelectedText());
}

void tst_UtilsIpEdit::typingBeforeTheEndStays()
{
    ActiveEdit edit(0x0C000000);
    QTest::keyClicks(edit.enter(0, 0), QStringLiteral("1"));
    QCOMPARE(edit.getLineEditWidgets(0)->text(), QStringLiteral("112"));
    QCOMPARE(edit.focusIndex(), 0);
}

void tst_UtilsIpEdit::largerNumbersMayBeTyped_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("text");
    QTest::newRow("256") << QStringLiteral("256") << QStringLiteral("256");
    QTest::newRow("999") << QStringLiteral("999") << QStringLiteral("999");
    QTest::newRow("a fourth digit") << QStringLiteral("1234") << QStringLiteral("123");
    QTest::newRow("letters") << QStringLiteral("1x2-3") << QStringLiteral("123");
}

void tst_UtilsIpEdit::largerNumbersMayBeTyped()
{
    QFETCH(QString, typed);
    QFETCH(QString, text);
    ActiveEdit edit(0);
    QLineEdit *last = edit.enter(3, 0);
    last->clear();
    QTest::keyClicks(last, typed);
    QCOMPARE(last->text(), text);
    QCOMPARE(edit.getAddress(), text.toUInt());
}

void tst_UtilsIpEdit::anEmptiedFieldBecomesZero_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::newRow("Return") << Qt::Key_Return;
    QTest::newRow("Tab") << Qt::Key_Tab;
    QTest::newRow("Right") << Qt::Key_Right;
}

void tst_UtilsIpEdit::anEmptiedFieldBecomesZero()
{
    QFETCH(Qt::Key, key);
    ActiveEdit edit;
    QLineEdit *first = edit.enter(0, 0);
    first->selectAll();
    QTest::keyClick(first, Qt::Key_Delete);
    QVERIFY(first->text().isEmpty());
    QCOMPARE(edit.getAddress(), 0x00A80001u);
    QTest::keyClick(first, key);
    QTRY_COMPARE(first->text(), QStringLiteral("0"));
}

void tst_UtilsIpEdit::theArrowsCrossTheDots_data()
{
    QTest::addColumn<int>("field");
    QTest::addColumn<int>("cursor");
    QTest::addColumn<Qt::Key>("key");
    QTest::addColumn<int>("fieldAfter");
    QTest::addColumn<int>("cursorAfter");
    // 192.168.0.1
    QTest::newRow("left, first place") << 0 << 0 << Qt::Key_Left << 0 << 0;
    QTest::newRow("left inside") << 0 << 2 << Qt::Key_Left << 0 << 1;
    QTest::newRow("left to the field before") << 1 << 0 << Qt::Key_Left << 0 << 3;
    QTest::newRow("left to a short field") << 3 << 0 << Qt::Key_Left << 2 << 1;
    QTest::newRow("right inside") << 1 << 2 << Qt::Key_Right << 1 << 3;
    QTest::newRow("right to the next field") << 0 << 3 << Qt::Key_Right << 1 << 0;
    QTest::newRow("right, last place") << 3 << 1 << Qt::Key_Right << 3 << 1;
}

void tst_UtilsIpEdit::theArrowsCrossTheDots()
{
    QFETCH(int, field);
    QFETCH(int, cursor);
    QFETCH(Qt::Key, key);
    QFETCH(int, fieldAfter);
    QFETCH(int, cursorAfter);
    for (const Qt::LayoutDirection direction : {Qt::LeftToRight, Qt::RightToLeft}) {
        QApplication::setLayoutDirection(direction);
        ActiveEdit edit;
        QTest::keyClick(edit.enter(static_cast<unsigned char>(field), cursor), key);
        QApplication::setLayoutDirection(Qt::LeftToRight);
        QCOMPARE(edit.focusIndex(), fieldAfter);
        QLineEdit *after = edit.getLineEditWidgets(static_cast<unsigned char>(fieldAfter));
        QCOMPARE(after->cursorPosition(), cursorAfter);
        QVERIFY(!after->hasSelectedText());
        QCOMPARE(edit.getAddress(), Address);
    }
}

void tst_UtilsIpEdit::theFocusMovesForNoKeyboardReason_data()
{
    QTest::addColumn<int>("cursor");
    QTest::addColumn<Qt::Key>("key");
    QTest::addColumn<int>("fieldAfter");
    QTest::newRow("Left") << 0 << Qt::Key_Left << 0;
    QTest::newRow("Right") << 3 << Qt::Key_Right << 2;
    QTest::newRow("a full field") << 3 << Qt::Key_End << 2;
}

void tst_UtilsIpEdit::theFocusMovesForNoKeyboardReason()
{
    // A field that is reached by Tab, say, selects its text by itself.
    class ReasonRecord : public QObject
    {
    public:
        bool eventFilter(QObject *, QEvent *event) override
        {
            if (event->type() == QEvent::FocusIn)
                reasons.append(static_cast<QFocusEvent *>(event)->reason());
            return false;
        }
        QList<Qt::FocusReason> reasons;
    } record;
    QFETCH(int, cursor);
    QFETCH(Qt::Key, key);
    QFETCH(int, fieldAfter);
    ActiveEdit edit;
    QLineEdit *field = edit.enter(1, cursor);
    edit.getLineEditWidgets(static_cast<unsigned char>(fieldAfter))->installEventFilter(&record);
    QTest::keyClick(field, key);
    QTRY_COMPARE(record.reasons, QList<Qt::FocusReason>{Qt::OtherFocusReason});
}

void tst_UtilsIpEdit::theArrowsAreNoTyping_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::newRow("Left") << Qt::Key_Left;
    QTest::newRow("Right") << Qt::Key_Right;
}

void tst_UtilsIpEdit::theArrowsAreNoTyping()
{
    QFETCH(Qt::Key, key);
    ActiveEdit edit;
    const QSignalSpy changed(&edit, &UtilsIpEdit::signalTextChanged);
    for (const int cursor : {0, 1, 3})
        QTest::keyClick(edit.enter(1, cursor), key);
    QVERIFY(changed.isEmpty());
}

void tst_UtilsIpEdit::everyOtherKeyIsAnnounced_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::newRow("digit") << Qt::Key_1;
    QTest::newRow("letter") << Qt::Key_A;
    QTest::newRow("dot") << Qt::Key_Period;
    QTest::newRow("Backspace") << Qt::Key_Backspace;
    QTest::newRow("Home") << Qt::Key_Home;
    QTest::newRow("End") << Qt::Key_End;
    QTest::newRow("Up") << Qt::Key_Up;
    QTest::newRow("Shift") << Qt::Key_Shift;
    QTest::newRow("Return") << Qt::Key_Return;
    QTest::newRow("Tab") << Qt::Key_Tab;
}

void tst_UtilsIpEdit::everyOtherKeyIsAnnounced()
{
    QFETCH(Qt::Key, key);
    ActiveEdit edit(0);
    const QSignalSpy changed(&edit, &UtilsIpEdit::signalTextChanged);
    QLineEdit *field = edit.enter(2, 0);
    QTest::keyClick(field, key);
    QCOMPARE(changed.count(), 1);
    QCOMPARE(changed.first().first().value<QLineEdit *>(), field);
}

void tst_UtilsIpEdit::keysThatTypeNothingMoveOnToo_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::addColumn<Qt::KeyboardModifier>("modifier");
    QTest::addColumn<int>("fieldAfter");
    QTest::newRow("End") << Qt::Key_End << Qt::NoModifier << 2;
    QTest::newRow("Shift") << Qt::Key_Shift << Qt::NoModifier << 2;
    QTest::newRow("Tab") << Qt::Key_Tab << Qt::NoModifier << 2;
    QTest::newRow("back tab") << Qt::Key_Backtab << Qt::ShiftModifier << 2;
    QTest::newRow("Home") << Qt::Key_Home << Qt::NoModifier << 1;
    QTest::newRow("Backspace") << Qt::Key_Backspace << Qt::NoModifier << 1;
}

void tst_UtilsIpEdit::keysThatTypeNothingMoveOnToo()
{
    QFETCH(Qt::Key, key);
    QFETCH(Qt::KeyboardModifier, modifier);
    QFETCH(int, fieldAfter);
    ActiveEdit edit;
    QTest::keyClick(edit.enter(1, 3), key, modifier);
    QCOMPARE(edit.focusIndex(), fieldAfter);
}

void tst_UtilsIpEdit::noKeyIsSwallowed()
{
    UtilsIpEdit edit(nullptr, Address);
    for (unsigned char i = 0; i < 4; ++i) {
        for (const int key : {int(Qt::Key_Left), int(Qt::Key_Right), int(Qt::Key_1), int(Qt::Key_Tab)}) {
            QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
            QVERIFY(!edit.eventFilter(edit.getLineEditWidgets(i), &press));
        }
    }
}

void tst_UtilsIpEdit::otherEventsAndWidgetsAreLeftAlone()
{
    UtilsIpEdit edit(nullptr, Address);
    const QSignalSpy changed(&edit, &UtilsIpEdit::signalTextChanged);
    QKeyEvent release(QEvent::KeyRelease, Qt::Key_1, Qt::NoModifier);
    QVERIFY(!edit.eventFilter(edit.getLineEditWidgets(0), &release));
    QKeyEvent press(QEvent::KeyPress, Qt::Key_1, Qt::NoModifier);
    QLineEdit other;
    QVERIFY(!edit.eventFilter(&other, &press));
    QVERIFY(!edit.eventFilter(nullptr, &press));
    QVERIFY(changed.isEmpty());
}

void tst_UtilsIpEdit::theSlotRunsAfterTheKey()
{
    ActiveEdit edit(0);
    QLineEdit *first = edit.enter(0, 0);
    first->setText(QStringLiteral("25"));
    QString textAtSignal;
    connect(&edit, &UtilsIpEdit::signalTextChanged, &edit,
            [&textAtSignal](QLineEdit *field) { textAtSignal = field->text(); });
    QTest::sendKeyEvent(QTest::Press, first, Qt::Key_5, QStringLiteral("5"), Qt::NoModifier);
    QCOMPARE(textAtSignal, QStringLiteral("25"));
    QTRY_COMPARE(edit.focusIndex(), 1);
}

void tst_UtilsIpEdit::theSlotIgnoresWhatIsNoField()
{
    ActiveEdit edit;
    edit.enter(0, 0);
    QLineEdit other(QStringLiteral("123"));
    edit.slotTextChanged(&other);
    edit.slotTextChanged(nullptr);
    QCOMPARE(edit.focusIndex(), 0);
    QVERIFY(QMetaObject::invokeMethod(&edit, "slotTextChanged", Q_ARG(QLineEdit *, edit.enter(0, 3))));
    QCOMPARE(edit.focusIndex(), 1);
}

void tst_UtilsIpEdit::theEditorMayBeGoneBeforeTheSlot()
{
    auto edit = std::make_unique<UtilsIpEdit>(nullptr, Address);
    Q_EMIT edit->signalTextChanged(edit->getLineEditWidgets(0));
    edit.reset();
    QCoreApplication::processEvents();
}

void tst_UtilsIpEdit::aFieldMayBeGoneBeforeTheSlot()
{
    UtilsIpEdit edit(nullptr, Address);
    QLineEdit *field = edit.getLineEditWidgets(0);
    Q_EMIT edit.signalTextChanged(field);
    delete field;
    QCoreApplication::processEvents();
}

void tst_UtilsIpEdit::theEditorSurvivesWithoutAField()
{
    ActiveEdit edit;
    delete edit.getLineEditWidgets(1);
    QCOMPARE(edit.getLineEditWidgets(1), nullptr);
    QCOMPARE(edit.getAddress(), 0xC0000001u);
    edit.setAddress(0x01020304);
    QCOMPARE(edit.getAddress(), 0x01000304u);
    QTest::keyClick(edit.enter(0, 1), Qt::Key_Right);
    QTest::keyClick(edit.enter(2, 0), Qt::Key_Left);
    QCOMPARE(edit.focusIndex(), 2);
}

void tst_UtilsIpEdit::addressesAreNotMirrored()
{
    QWidget window;
    window.setLayoutDirection(Qt::RightToLeft);
    auto *edit = new UtilsIpEdit(&window, Address);
    window.show();
    for (unsigned char i = 1; i < 4; ++i)
        QVERIFY(edit->getLineEditWidgets(i)->x() > edit->getLineEditWidgets(static_cast<unsigned char>(i - 1))->x());
}

void tst_UtilsIpEdit::everyPartHasAName()
{
    UtilsIpEdit edit(nullptr, Address);
    for (unsigned char i = 0; i < 4; ++i) {
        QAccessibleInterface *field = QAccessible::queryAccessibleInterface(edit.getLineEditWidgets(i));
        QCOMPARE(field->role(), QAccessible::EditableText);
        QCOMPARE(field->text(QAccessible::Name), QStringLiteral("Address part %1 of 4").arg(i + 1));
        QCOMPARE(field->text(QAccessible::Value), textsOf(edit).at(i));
    }
}

UNIPROG_TEST_MAIN(tst_UtilsIpEdit)

#include "tst_utilsipedit.moc"
