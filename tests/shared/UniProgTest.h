#ifndef UNIPROGTEST_H
#define UNIPROGTEST_H

#include <QObject>
#include <QString>
#include <QStringList>
#include <QTest>

/// Base of every test class: a Qt warning that no QTest::ignoreMessage() announced fails the test function.
class UniProgTest : public QObject
{
    Q_OBJECT

public:
    /// Names the process, sends settings to a temporary folder and picks the offscreen platform unless told otherwise.
    static void prepareProcess();
    /// What a program printed; its lines end with "\n" on every system.
    static QString programOutput(const QByteArray &bytes);
    /// Runs a program to its end, in \a folder or else here, and returns its exit code, or -1 when it crashed. A
    /// program that does not start or does not end ends the test, too.
    static int runProgram(const QString &program, const QStringList &arguments, QString *out, QString *err,
                          const QString &folder = QString());
    /// Whether icons stay empty because the Qt for Windows that the tests run with came without its SVG plugin.
    /// Elsewhere the plugin is one of the needed packages, and its absence is to be seen.
    static bool lacksSvg();

protected Q_SLOTS:
    /// A test with an init() of its own calls this one there.
    void init();
};

/// main() of a test program.
#define UNIPROG_TEST_MAIN(TestClass)                                                                                   \
    int main(int argc, char **argv)                                                                                    \
    {                                                                                                                  \
        UniProgTest::prepareProcess();                                                                                 \
        QApplication application(argc, argv);                                                                          \
        TestClass test;                                                                                                \
        QTEST_SET_MAIN_SOURCE_PATH                                                                                     \
        return QTest::qExec(&test, argc, argv);                                                                        \
    }

#endif // UNIPROGTEST_H
