#include "Appearance.h"

#include <UtilsStyleSheet.h>

#include <QApplication>
#include <QStyleFactory>

QStringList Appearance::themes()
{
    return {QStringLiteral("dark"), QStringLiteral("light")};
}

void Appearance::apply(const QString &theme)
{
    // The style below the style sheet is the same on every system.
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    const UtilsStyleSheet sheet(QStringLiteral(":/themes/uniprog.qss.in"));
    qApp->setStyleSheet(sheet.replaceXmlMarkers(QStringLiteral(":/themes/%1.xml").arg(theme)));
}
