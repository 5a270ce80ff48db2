#include <UniProgTest.h>

#include <QApplication>
#include <QFile>
#include <QTemporaryDir>

class tst_UniProgTheme : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void findingsAreReported_data();
    void findingsAreReported();
    void aThemeThatGrowsTooLargeIsAnError();
    void warningsFailOnlyWhenStrict();
    void everyThemeIsChecked();
    void fontsAreFoundInFolders();
    void markersCanBeWrittenInAnotherWay();
    void mistakesAreNamed_data();
    void mistakesAreNamed();

private:
    void write(const QString &name, const QByteArray &content);
    int run(const QStringList &arguments);

    QTemporaryDir folder;
    QString out;
    QString err;
};

void tst_UniProgTheme::write(const QString &name, const QByteArray &content)
{
    QFile file(folder.filePath(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("Cannot write %s", qPrintable(file.fileName()));
}

int tst_UniProgTheme::run(const QStringList &arguments)
{
    return runProgram(QStringLiteral(COMMAND), arguments, &out, &err, folder.path());
}

void tst_UniProgTheme::findingsAreReported_data()
{
    QTest::addColumn<QByteArray>("styleSheet");
    QTest::addColumn<QByteArray>("elements"); // stand from line 2 on
    QTest::addColumn<QString>("expected");
    QTest::addColumn<int>("status");
    const auto row
        = [](const char *name, const char *styleSheet, const char *elements, const char *expected, int status) {
              QTest::newRow(name) << QByteArray(styleSheet) << QByteArray(elements) << QString(expected) << status;
          };

    row("nothing", "a { color: @a@; }", "<color n='@a@'>red</color>", "", 0);
    row("no markers", "a { color: red; }", "", "", 0);
    row("a marker without a value", "a\n{ color: @a@; x: @b@; y: @a@ }", "<color n='@b@'>red</color>",
        "t.qss:2: error: \"@a@\" has no value in t.xml\n", 1);
    row("a value without a marker", "@a@", "<color n='@a@'>1</color>\n<color n='@b@'>2</color>",
        "t.xml:3: error: the template has no marker \"@b@\"\n", 1);
    row("two values", "@a@", "<color n='@a@'>1</color>\n<color n='@a@'>2</color>",
        "t.xml:3: error: \"@a@\" (line 2) has a value already, this one is not used\n", 1);
    row("a marker whose part comes first", "$ab $a", "<color n='$a'>1</color>\n<color n='$ab'>2</color>",
        "t.xml:3: error: \"$ab\" is never found: its part \"$a\" (line 2) is filled in before\n", 1);
    row("a marker inside an earlier one", "$ab $a", "<color n='$ab'>1</color>\n<color n='$a'>2</color>",
        "t.xml:3: warning: \"$a\" is a part of \"$ab\" (line 2): it works only in this order\n", 0);
    row("a value that contains a later marker", "@a@", "<color n='@a@'>@b@</color>\n<color n='@b@'>2</color>",
        "t.xml:2: warning: the value of \"@a@\" contains \"@b@\" (line 3): it works only in this order\n", 0);
    row("a value that contains an earlier marker", "@a@ @b@", "<color n='@b@'>2</color>\n<color n='@a@'>@b@</color>",
        "t.xml:3: error: the value of \"@a@\" contains \"@b@\" (line 2), which is not filled in any more\n"
        "t.qss:1: error: \"@b@\" has no value in t.xml\n",
        1);
    row("a value that contains its own marker", "a", "<color n='a'>aa</color>",
        "t.xml:2: error: the value of \"a\" contains \"a\" (line 2), which is not filled in any more\n", 1);
    row("an element without an attribute", "@a@", "<color>1</color>\n<color n='@a@'>2</color>",
        "t.xml:2: error: <color> has no attribute to name a marker and is skipped\n", 1);
    row("an empty marker", "@a@", "<color n='@a@'>2</color>\n<color n=''>1</color>",
        "t.xml:3: error: an empty marker stands between all characters of the template\n", 1);
    row("a missing font", "@f@", "<fontName n='@f@'>No Such Font</fontName>",
        "t.xml:2: error: there is no font :/misc/fonts/No Such Font.ttf\n", 1);
    row("the library's font", "@f@", "<fontName n='@f@'>Open Sans</fontName>", "", 0);
    row("a nested element", "@a@", "<color n='@a@'>2</color>\n<color n='@b@'>\n1<b/></color>",
        "t.xml:4: error: Expected character data. Nothing is filled in from here on\n", 1);
    row("a wrong end tag", "@a@ @b@", "<color n='@a@'>2</color>\n</wrong>\n<color n='@b@'>2</color>",
        "t.xml:3: error: Opening and ending tag mismatch. Nothing is filled in from here on\n"
        "t.qss:1: error: \"@b@\" has no value in t.xml\n",
        1);
    row("other elements", "@a@", "<colour n='@a@'>2</colour>", "t.qss:1: error: \"@a@\" has no value in t.xml\n", 1);
}

void tst_UniProgTheme::findingsAreReported()
{
    QFETCH(QByteArray, styleSheet);
    QFETCH(QByteArray, elements);
    QFETCH(QString, expected);
    QFETCH(int, status);
    write("t.qss", styleSheet);
    write("t.xml", "<theme>\n" + elements + "\n</theme>\n");
    QCOMPARE(run({"t.qss", "t.xml"}), status);
    QCOMPARE(out, expected);
}

void tst_UniProgTheme::aThemeThatGrowsTooLargeIsAnError()
{
    const auto element = [](char marker, char value) {
        return QByteArray("<color n='") + marker + "'>" + QByteArray(5000, value) + "</color>\n";
    };
    write("t.qss", "1");
    write("t.xml", "<theme>\n" + element('1', '2') + element('2', '3') + element('3', '4') + "</theme>\n");
    QCOMPARE(run({"t.qss", "t.xml"}), 1);
    QCOMPARE(
        (out.split('\n').filter("error")),
        QStringList("t.xml:4: error: with \"3\" the style sheet grows too large. Nothing is filled in from here on"));
}

void tst_UniProgTheme::warningsFailOnlyWhenStrict()
{
    write("t.qss", "@a@");
    write("t.xml", "<theme><color n='@a@'>@b@</color><color n='@b@'>2</color></theme>");
    QCOMPARE(run({"t.qss", "t.xml"}), 0);
    QVERIFY(out.contains(": warning: "));
    QCOMPARE(run({"--strict", "t.qss", "t.xml"}), 1);
    QVERIFY(out.contains(": error: ") && !out.contains(": warning: "));
}

void tst_UniProgTheme::everyThemeIsChecked()
{
    write("t.qss", "@a@");
    write("good.xml", "<theme><color n='@a@'>1</color></theme>");
    write("bad.xml", "<theme/>");
    QCOMPARE(run({"t.qss", "good.xml", "bad.xml", "good.xml"}), 1);
    QCOMPARE(out, QString("t.qss:1: error: \"@a@\" has no value in bad.xml\n"));
}

void tst_UniProgTheme::fontsAreFoundInFolders()
{
    write("t.qss", "@f@ @g@");
    write("t.xml", "<theme>\n<fontName n='@f@'>Mine</fontName>\n<fontName n='@g@'>Broken</fontName>\n</theme>");
    QCOMPARE(run({"t.qss", "t.xml"}), 1);
    QVERIFY(out.contains("there is no font :/misc/fonts/Mine.ttf"));
    QVERIFY(QFile::copy(OPEN_SANS, folder.filePath("Mine.ttf")));
    write("Broken.ttf", "no font");
    QCOMPARE(run({"--fonts", ".", "t.qss", "t.xml"}), 1);
    QCOMPARE(out,
             QString("t.xml:2: error: ./Mine.ttf is of the family \"Open Sans\"\n"
                     "t.xml:3: error: ./Broken.ttf is no font\n"));
}

void tst_UniProgTheme::markersCanBeWrittenInAnotherWay()
{
    write("t.qss", "%a @b@");
    write("t.xml", "<theme/>");
    QCOMPARE(run({"--markers", "%\\w+", "t.qss", "t.xml"}), 1);
    QCOMPARE(out, QString("t.qss:1: error: \"%a\" has no value in t.xml\n"));
}

void tst_UniProgTheme::mistakesAreNamed_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("expected");

    QTest::newRow("no files") << QStringList{} << "a template and at least one theme are needed";
    QTest::newRow("no theme") << QStringList{"t.qss"} << "a template and at least one theme are needed";
    QTest::newRow("a template that is not there") << QStringList{"missing.qss", "t.xml"} << "missing.qss: ";
    QTest::newRow("a theme that is not there") << QStringList{"t.qss", "missing.xml"} << "missing.xml: ";
    QTest::newRow("an unknown option") << QStringList{"--loose", "t.qss", "t.xml"} << "loose";
    QTest::newRow("no regular expression") << QStringList{"--markers", "(", "t.qss", "t.xml"} << "(: ";
}

void tst_UniProgTheme::mistakesAreNamed()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, expected);
    write("t.qss", "@a@");
    write("t.xml", "<theme/>");
    QCOMPARE(run(arguments), 2);
    QVERIFY2(err.contains("uniprog-theme: ") && err.contains(expected), qPrintable(err));
}

UNIPROG_TEST_MAIN(tst_UniProgTheme)
#include "tst_uniprogtheme.moc"
