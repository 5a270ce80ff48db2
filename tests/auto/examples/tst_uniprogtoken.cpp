#include <UniProgTest.h>

#include <QApplication>
#include <QTemporaryFile>

class tst_UniProgToken : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void groupsArePrinted_data();
    void groupsArePrinted();
    void aFileOfDigitsIsRead();
    void mistakesAreNamed_data();
    void mistakesAreNamed();
};

static int run(const QStringList &arguments, QString *out, QString *err)
{
    return UniProgTest::runProgram(QStringLiteral(COMMAND), arguments, out, err);
}

void tst_UniProgToken::groupsArePrinted_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("expected");

    const QString empty = "group 1: 0 items\ngroup 2: 0 items\ngroup 3: 0 items\ngroup 4: 0 items\n";
    QTest::newRow("binary form") << QStringList{"--hex", "0C000000 01020AFF 0200"}
                                 << "group 1: 2 items\n  texts: a -1\n  bytes: 0a 00\n"
                                    "group 2: 0 items\ngroup 3: 0 items\ngroup 4: 0 items\n";
    QTest::newRow("text form") << QStringList{"--text", "1-2-12-34-3-1-a0"}
                               << "group 1: 2 items\n  texts: 12 34\n  bytes: 12 34\ngroup 2: 0 items\n"
                                  "group 3: 1 item\n  texts: a0\n  bytes: a0\ngroup 4: 0 items\n";
    QTest::newRow("other groups") << QStringList{"--text", "7-1-aa-9-1-bb", "--group", "9", "--group", "7"}
                                  << "group 9: 1 item\n  texts: bb\n  bytes: bb\n"
                                     "group 7: 1 item\n  texts: aa\n  bytes: aa\n";
    QTest::newRow("no bytes") << QStringList{"--hex", ""} << empty;
    QTest::newRow("no text") << QStringList{"--text", ""} << empty;
}

void tst_UniProgToken::groupsArePrinted()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, expected);
    QString out;
    QString err;
    QCOMPARE(run(arguments, &out, &err), 0);
    QCOMPARE(out, expected);
    QCOMPARE(err, QString());
}

void tst_UniProgToken::aFileOfDigitsIsRead()
{
    QTemporaryFile file;
    QVERIFY(file.open());
    file.write("08 00 00 00\r\n04 02\n a0 7f\n");
    file.close();
    QString out;
    QString err;
    QCOMPARE(run({"--hex-file", file.fileName(), "--group", "4"}, &out, &err), 0);
    QCOMPARE(out, QString("group 4: 2 items\n  texts: -60 7f\n  bytes: 00 7f\n"));
}

void tst_UniProgToken::mistakesAreNamed_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("expected");

    QTest::newRow("no token") << QStringList{} << "one of --hex, --hex-file and --text is needed";
    QTest::newRow("two tokens") << QStringList{"--hex", "00", "--text", "1"} << "one of";
    QTest::newRow("a token without an option") << QStringList{"--hex", "00", "00"} << "one of";
    QTest::newRow("an unknown option") << QStringList{"--base64", "00"} << "base64";
    QTest::newRow("half a byte") << QStringList{"--hex", "0C0"} << "pairs of base-16 digits";
    QTest::newRow("no digits") << QStringList{"--hex", "zz"} << "pairs of base-16 digits";
    QTest::newRow("no file") << QStringList{"--hex-file", "/no/such/file"} << "/no/such/file: ";
    QTest::newRow("no group") << QStringList{"--text", "1", "--group", "one"} << "one is no group number";
}

void tst_UniProgToken::mistakesAreNamed()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, expected);
    QString out;
    QString err;
    QCOMPARE(run(arguments, &out, &err), 2);
    QCOMPARE(out, QString());
    QVERIFY2(err.startsWith("uniprog-token: ") && err.contains(expected), qPrintable(err));
}

UNIPROG_TEST_MAIN(tst_UniProgToken)
#include "tst_uniprogtoken.moc"
