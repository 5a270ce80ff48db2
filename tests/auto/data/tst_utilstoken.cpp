#include <UtilsToken.h>

#include <UniProgTest.h>

#include <QApplication>
#include <QRandomGenerator>

#include <limits>
#include <map>
#include <type_traits>
#include <vector>

using Texts = QList<QString>;
using Bytes = QList<unsigned char>;
using Groups = QMap<int, Texts>;

static_assert(std::is_same_v<std::underlying_type_t<HwTokenGroup>, int>);
static_assert(std::is_copy_constructible_v<UtilsToken> && std::is_copy_assignable_v<UtilsToken>);
static_assert(std::is_nothrow_move_constructible_v<UtilsToken> && std::is_nothrow_move_assignable_v<UtilsToken>);

class tst_UtilsToken : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void groupsHaveTheNumbersOfTheBinaryForm();
    void theBinaryFormIsParsed_data();
    void theBinaryFormIsParsed();
    void theTextFormIsParsed_data();
    void theTextFormIsParsed();
    void bytesAreReadSigned_data();
    void bytesAreReadSigned();
    void textsBecomeBytes_data();
    void textsBecomeBytes();
    void askingForAnAbsentGroupLeavesTheOthersAlone();
    void identifiersOutsideTheEnumeratorsAreKeptInTheTextForm();
    void tokensAreValues();
    void theBinaryFormAgreesWithAModel();
    void theTextFormAgreesWithAModel();
};

static Groups groupsOf(UtilsToken &token)
{
    Groups result;
    for (int group = HwTokenGroup1; group <= HwTokenGroup4; ++group) {
        if (const Texts texts = token.getTokenGroup(HwTokenGroup(group)); !texts.isEmpty())
            result.insert(group, texts);
    }
    return result;
}

void tst_UtilsToken::groupsHaveTheNumbersOfTheBinaryForm()
{
    QCOMPARE(int(HwTokenGroup1), 1);
    QCOMPARE(int(HwTokenGroup2), 2);
    QCOMPARE(int(HwTokenGroup3), 3);
    QCOMPARE(int(HwTokenGroup4), 4);
}

void tst_UtilsToken::theBinaryFormIsParsed_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<Groups>("expected");
    const auto row = [](const char *name, const char *hex, const Groups &expected) {
        QTest::newRow(name) << QByteArray::fromHex(hex) << expected;
    };

    row("no bytes", "", {});
    row("one byte", "05", {});
    row("two bytes", "0500", {});
    row("three bytes", "050000", {});
    row("only a header", "04000000", {});
    row("only a header, of a wrong length", "FF000000", {});
    row("an identifier as the last byte", "05000000 01", {});
    row("an identifier as the last byte, after a group", "08000000 01010A 02", {{1, {"a"}}});

    row("one group", "08000000 01020A7F", {{1, {"a", "7f"}}});
    row("all groups", "10000000 010111 020122 030133 040144", {{1, {"11"}}, {2, {"22"}}, {3, {"33"}}, {4, {"44"}}});
    row("groups in another order", "0A000000 040144 010111", {{1, {"11"}}, {4, {"44"}}});
    row("an empty group between others", "0C000000 010111 0200 030133", {{1, {"11"}}, {3, {"33"}}});
    row("a later group replaces an earlier one", "0D000000 0102AABB 010111", {{1, {"11"}}});
    row("a later empty group replaces an earlier one", "0A000000 0102AABB 0100", {});

    row("a declared length that is too large", "0C000000 01020AFF 0200", {{1, {"a", "-1"}}});
    row("a declared length that is too small", "01000000 01010A", {{1, {"a"}}});
    row("a declared length of zero", "00000000 01010A", {{1, {"a"}}});
    row("a negative declared length", "FFFFFFFF 01010A", {{1, {"a"}}});

    row("identifier 0 ends the token", "0C000000 01010A 0001BB 02010B", {{1, {"a"}}});
    row("identifier 5 ends the token", "0C000000 01010A 0501BB 02010B", {{1, {"a"}}});
    row("identifier 7F ends the token", "0C000000 01010A 7F01BB 02010B", {{1, {"a"}}});
    row("identifier 80 ends the token", "0C000000 01010A 8001BB 02010B", {{1, {"a"}}});
    row("identifier FF ends the token", "0C000000 01010A FF01BB 02010B", {{1, {"a"}}});
    row("identifier 5 ends the token before its huge count is looked at", "09000000 01010A 057F", {{1, {"a"}}});

    row("a count larger than the whole array leaves nothing", "0A000000 01010A 020A00", {{1, {"a"}}});
    row("a count one larger than the whole array leaves nothing", "0A000000 01010A 020B00", {});
    row("the largest count leaves nothing", "0A000000 01010A 027F00", {});
    row("a group one byte too long is dropped", "0A000000 01010A 0202BB", {{1, {"a"}}});
    row("a group without its items is dropped", "09000000 01010A 0201", {{1, {"a"}}});
    row("nothing follows a group that is too long", "0E000000 01010A 0205 0301CC", {{1, {"a"}}});

    row("a count of -2 does not move on", "0C000000 01010A 02FE 03010C", {{1, {"a"}}});
    row("a count of -3 would move back", "0C000000 01010A 02FD 03010C", {{1, {"a"}}});
    row("a count of -128 would move back before the start", "0C000000 01010A 0280 03010C", {{1, {"a"}}});
    row("a count of -1 moves on to itself", "0C000000 01010A 02FF 03010C", {{1, {"a"}}});
    row("a negative count replaces a group by an empty one", "09000000 01010A 01FE", {});
}

void tst_UtilsToken::theBinaryFormIsParsed()
{
    QFETCH(QByteArray, data);
    QFETCH(Groups, expected);
    UtilsToken token(data);
    QCOMPARE(groupsOf(token), expected);
}

void tst_UtilsToken::theTextFormIsParsed_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<Groups>("expected");
    const auto row = [](const char *name, const char *text, const Groups &expected) {
        QTest::newRow(name) << QString::fromUtf8(text) << expected;
    };

    row("empty", "", {});
    row("an identifier alone", "1", {});
    row("an identifier alone keeps the group before it", "1-1-aa-1", {{1, {"aa"}}});
    row("two groups", "1-2-12-34-3-1-a0", {{1, {"12", "34"}}, {3, {"a0"}}});
    row("an empty group first", "2-0-4-1-ff", {{4, {"ff"}}});
    row("a later group replaces an earlier one", "1-1-aa-1-2-bb-cc", {{1, {"bb", "cc"}}});
    row("a later empty group replaces an earlier one", "1-1-aa-1-0", {});
    row("items are kept as they are", "1-4- x -FF-0x1f-Ж", {{1, {" x ", "FF", "0x1f", "Ж"}}});
    row("empty items are kept", "1-2--", {{1, {"", ""}}});
    row("fewer items than announced", "1-3-aa-bb", {{1, {"aa", "bb"}}});
    row("no items where one was announced", "1-1", {});
    row("a huge count takes what there is", "1-2147483647-aa-bb", {{1, {"aa", "bb"}}});
    row("a count past the integers is 0", "1-2147483648-2-1-bb", {{2, {"bb"}}});
    row("a count that is no number is 0", "1-x-2-1-bb", {{2, {"bb"}}});
    row("an empty count is 0", "1--2-1-bb", {{2, {"bb"}}});
    row("a base-16 count is no number", "1-a-2-1-bb", {{2, {"bb"}}});
    row("an identifier that is no number does not end the token", "x-1-aa-2-1-bb", {{2, {"bb"}}});
    row("an identifier out of range does not end the token", "9-1-aa-2-1-bb", {{2, {"bb"}}});
    row("a leading separator is an identifier 0", "-1-aa-2-1-bb", {{2, {"bb"}}});
    row("only separators", "----", {});
}

void tst_UtilsToken::theTextFormIsParsed()
{
    QFETCH(QString, text);
    QFETCH(Groups, expected);
    UtilsToken token(text);
    QCOMPARE(groupsOf(token), expected);
}

void tst_UtilsToken::bytesAreReadSigned_data()
{
    QTest::addColumn<int>("byte");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("readBack");

    QTest::newRow("00") << 0x00 << "0" << 0x00;
    QTest::newRow("0A") << 0x0A << "a" << 0x0A;
    QTest::newRow("10") << 0x10 << "10" << 0x10;
    QTest::newRow("7F") << 0x7F << "7f" << 0x7F;
    QTest::newRow("80") << 0x80 << "-80" << 0x00;
    QTest::newRow("A0") << 0xA0 << "-60" << 0x00;
    QTest::newRow("FF") << 0xFF << "-1" << 0x00;
}

void tst_UtilsToken::bytesAreReadSigned()
{
    QFETCH(int, byte);
    QFETCH(QString, text);
    QFETCH(int, readBack);
    QByteArray data = QByteArray::fromHex("070000000101");
    data.append(char(byte));
    UtilsToken token(data);
    QCOMPARE(token.getTokenGroup(HwTokenGroup1), Texts{text});
    QCOMPARE(token.getTokenGroupVector(HwTokenGroup1), Bytes{static_cast<unsigned char>(readBack)});
}

void tst_UtilsToken::textsBecomeBytes_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("byte");

    QTest::newRow("lower case") << "a0" << 0xA0;
    QTest::newRow("upper case") << "FF" << 0xFF;
    QTest::newRow("one digit") << "7" << 0x07;
    QTest::newRow("with a prefix") << "0x1f" << 0x1F;
    QTest::newRow("the low 8 bits of a larger number") << "1234" << 0x34;
    QTest::newRow("the largest number") << "ffffffff" << 0xFF;
    QTest::newRow("past the largest number") << "1000000ff" << 0;
    QTest::newRow("no digit") << "xyz" << 0;
    QTest::newRow("a digit too many") << "1g" << 0;
    QTest::newRow("empty") << "" << 0;
}

void tst_UtilsToken::textsBecomeBytes()
{
    QFETCH(QString, text);
    QFETCH(int, byte);
    UtilsToken token("2-1-" + text);
    QCOMPARE(token.getTokenGroupVector(HwTokenGroup2), Bytes{static_cast<unsigned char>(byte)});
}

void tst_UtilsToken::askingForAnAbsentGroupLeavesTheOthersAlone()
{
    UtilsToken token(QByteArray::fromHex("0C00000001020AFF0200"));
    QCOMPARE(token.getTokenGroup(HwTokenGroup3), Texts());
    QCOMPARE(token.getTokenGroup(HwTokenGroup3), Texts());
    QCOMPARE(token.getTokenGroupVector(HwTokenGroup4), Bytes());
    QCOMPARE(token.getTokenGroupVector(HwTokenGroup(77)), Bytes());
    QCOMPARE(token.getTokenGroup(HwTokenGroup1), (Texts{"a", "-1"}));
    QCOMPARE(token.getTokenGroupVector(HwTokenGroup1), (Bytes{0x0A, 0x00}));
    QCOMPARE(token.getTokenGroup(HwTokenGroup2), Texts());
}

void tst_UtilsToken::identifiersOutsideTheEnumeratorsAreKeptInTheTextForm()
{
    UtilsToken token(QString("0-1-aa-5-1-bb-2147483647-1-cc-x-1-dd"));
    QCOMPARE(token.getTokenGroup(HwTokenGroup(0)), Texts{"dd"});
    QCOMPARE(token.getTokenGroup(HwTokenGroup(5)), Texts{"bb"});
    QCOMPARE(token.getTokenGroup(HwTokenGroup(std::numeric_limits<int>::max())), Texts{"cc"});
}

void tst_UtilsToken::tokensAreValues()
{
    const UtilsToken original(QString("1-1-aa"));
    UtilsToken copy(original);
    UtilsToken assigned(QByteArray{});
    assigned = original;
    // The getter changes the object it is called on; copies taken before are not touched by it.
    QCOMPARE(copy.getTokenGroup(HwTokenGroup2), Texts());
    QCOMPARE(copy.getTokenGroup(HwTokenGroup1), Texts{"aa"});
    QCOMPARE(assigned.getTokenGroup(HwTokenGroup1), Texts{"aa"});

    UtilsToken moved(std::move(copy));
    QCOMPARE(moved.getTokenGroup(HwTokenGroup1), Texts{"aa"});
    assigned = UtilsToken(QString("2-1-bb"));
    QCOMPARE(assigned.getTokenGroup(HwTokenGroup1), Texts());
    QCOMPARE(assigned.getTokenGroup(HwTokenGroup2), Texts{"bb"});
    const UtilsToken &self = assigned;
    assigned = self;
    QCOMPARE(assigned.getTokenGroup(HwTokenGroup2), Texts{"bb"});
}

// A second reading of both forms, on plain integers and without Qt's conversions.
namespace model {

struct Item
{
    std::string text;
    int byte;
};
using Token = std::map<int, std::vector<Item>>;

std::string signedHex(int value)
{
    static const char digits[] = "0123456789abcdef";
    std::string text;
    int rest = value < 0 ? -value : value;
    do {
        text.insert(text.begin(), digits[rest % 16]);
        rest /= 16;
    } while (rest > 0);
    return value < 0 ? "-" + text : text;
}

Token fromBytes(const std::vector<int> &bytes) // values -128 to 127
{
    Token token;
    const int size = int(bytes.size());
    int at = 4;
    while (at < size) {
        const int identifier = bytes[at];
        if (identifier <= 0 || identifier >= 5 || at + 1 == size)
            break;
        const int count = bytes[at + 1];
        if (count > size)
            return {};
        if (at + 2 + count > size)
            break;
        std::vector<Item> items;
        for (int i = 0; i < count; ++i) {
            const int value = bytes[at + 2 + i];
            items.push_back({signedHex(value), value < 0 ? 0 : value});
        }
        token[identifier] = items;
        if (count + 2 <= 0)
            break;
        at += count + 2;
    }
    return token;
}

// An unsigned number with blanks around it, or 0.
long long number(const std::string &text, int base, long long limit)
{
    const auto first = text.find_first_not_of(' ');
    if (first == std::string::npos)
        return 0;
    const auto last = text.find_last_not_of(' ');
    long long value = 0;
    for (auto i = first; i <= last; ++i) {
        const char c = text[i];
        const int digit = c >= '0' && c <= '9' ? c - '0' : c >= 'a' && c <= 'f' ? c - 'a' + 10 : base;
        if (digit >= base)
            return 0;
        value = value * base + digit;
        if (value > limit)
            return 0;
    }
    return value;
}

Token fromText(const std::string &text)
{
    std::vector<std::string> pieces(1);
    for (const char c : text) {
        if (c == '-')
            pieces.emplace_back();
        else
            pieces.back().push_back(c);
    }
    Token token;
    std::size_t at = 0;
    while (at + 1 < pieces.size()) {
        const long long identifier = number(pieces[at++], 10, std::numeric_limits<int>::max());
        long long count = number(pieces[at++], 10, std::numeric_limits<int>::max());
        std::vector<Item> items;
        for (; count > 0 && at < pieces.size(); --count, ++at)
            items.push_back({pieces[at], int(number(pieces[at], 16, 0xFFFFFFFFLL) & 0xFF)});
        token[int(identifier)] = items;
    }
    return token;
}

bool agrees(UtilsToken &token, const Token &expected)
{
    for (int group = 0; group <= 5; ++group) {
        const auto found = expected.find(group);
        const std::vector<Item> items = found == expected.end() ? std::vector<Item>() : found->second;
        const Texts texts = token.getTokenGroup(HwTokenGroup(group));
        const Bytes bytes = token.getTokenGroupVector(HwTokenGroup(group));
        if (std::size_t(texts.size()) != items.size() || texts.size() != bytes.size())
            return false;
        for (qsizetype i = 0; i < texts.size(); ++i) {
            if (texts.at(i) != QLatin1String(items[i].text.c_str()) || bytes.at(i) != items[i].byte)
                return false;
        }
    }
    return true;
}

} // namespace model

void tst_UtilsToken::theBinaryFormAgreesWithAModel()
{
    QRandomGenerator random(20'260'201);
    for (int input = 0; input < RANDOM_INPUTS; ++input) {
        // Mostly groups that follow one another; identifiers, counts and lengths that are off now and then.
        std::vector<int> bytes;
        for (int i = random.bounded(16) == 0 ? random.bounded(4) : 4; i > 0; --i)
            bytes.push_back(random.bounded(-128, 128));
        for (int groups = random.bounded(5); groups > 0; --groups) {
            bytes.push_back(random.bounded(12) == 0 ? random.bounded(-128, 128) : random.bounded(1, 5));
            const int items = random.bounded(6);
            bytes.push_back(random.bounded(12) == 0 ? random.bounded(-128, 128) : items);
            for (int i = 0; i < items; ++i)
                bytes.push_back(random.bounded(-128, 128));
        }
        for (int cut = random.bounded(8) == 0 ? random.bounded(4) : 0; cut > 0 && !bytes.empty(); --cut)
            bytes.pop_back();

        QByteArray data;
        for (const int byte : bytes)
            data.append(char(byte));
        UtilsToken token(data);
        if (!model::agrees(token, model::fromBytes(bytes)))
            QFAIL(qPrintable("input " + QString::number(input) + ": " + QLatin1String(data.toHex(' '))));
    }
}

void tst_UtilsToken::theTextFormAgreesWithAModel()
{
    static const char *const oddPieces[] = {"",
                                            " ",
                                            "x",
                                            "a0",
                                            " 2",
                                            "3 ",
                                            "2147483647",
                                            "2147483648",
                                            "ffffffff",
                                            "100000000",
                                            "00000000000000000000001",
                                            "1 1"};
    QRandomGenerator random(20'260'202);
    for (int input = 0; input < RANDOM_INPUTS; ++input) {
        std::string text;
        for (int pieces = random.bounded(13); pieces > 0; --pieces) {
            if (random.bounded(6) == 0)
                text += oddPieces[random.bounded(int(std::size(oddPieces)))];
            else
                text += model::signedHex(random.bounded(4) == 0 ? random.bounded(256) : random.bounded(6));
            if (pieces > 1 || random.bounded(8) == 0)
                text += '-';
        }
        UtilsToken token(QString::fromStdString(text));
        if (!model::agrees(token, model::fromText(text)))
            QFAIL(qPrintable("input " + QString::number(input) + ": " + QString::fromStdString(text)));
    }
}

UNIPROG_TEST_MAIN(tst_UtilsToken)
#include "tst_utilstoken.moc"
