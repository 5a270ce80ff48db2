#include <UtilsConstants.h>

#include <UniProgTest.h>

#include <QApplication>

class tst_UtilsConstants : public UniProgTest
{
    Q_OBJECT

private Q_SLOTS:
    void textsAreFixed_data();
    void textsAreFixed();
    void isDefaultConstructible();
};

void tst_UtilsConstants::textsAreFixed_data()
{
    QTest::addColumn<QString>("constant");
    QTest::addColumn<QString>("text");
    QTest::newRow("no selected device") << UtilsConstants::WARNING_NO_SELECTED_DEVICE << "There is no selected device.";
    QTest::newRow("empty configuration") << UtilsConstants::WARNING_EMPTY_CONFIG_REGISTRY
                                         << "Please reload configuration.";
    QTest::newRow("old firmware") << UtilsConstants::WARNING_INVALID_FIRMWARE_VERSION
                                  << "Please update firmware of selected\nBRAMLOCK module to the latest version.";
    QTest::newRow("no WiFi") << UtilsConstants::WARNING_NO_WIFI_FUNCTIONALITY
                             << "There is no WiFi module on selected device.";
}

void tst_UtilsConstants::textsAreFixed()
{
    QFETCH(QString, constant);
    QFETCH(QString, text);
    QCOMPARE(constant, text);
}

void tst_UtilsConstants::isDefaultConstructible()
{
    const UtilsConstants constants;
    QCOMPARE(constants.WARNING_NO_SELECTED_DEVICE, UtilsConstants::WARNING_NO_SELECTED_DEVICE);
}

UNIPROG_TEST_MAIN(tst_UtilsConstants)
#include "tst_utilsconstants.moc"
