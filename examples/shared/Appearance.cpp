#include "Appearance.h"

#include <UtilsStyleSheet.h>

#include <QApplication>
#include <QStyleFactory>

/// The themes are in a static library, which the linker leaves out where nothing asks for them. Not in a namespace,
/// because of what the macro declares.
static void initResources()
{
    Q_INIT_RESOURCE(example_themes);
}

namespace {

constexpr char ThemeProperty[] = "uniprog-theme"; // of the application

} // namespace

QStringList Appearance::themes()
{
    return {QStringLiteral("dark"), QStringLiteral("light")};
}

void Appearance::apply(const QString &theme)
{
    initResources();
    // The style below the style sheet is the same on every system.
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    const UtilsStyleSheet sheet(QStringLiteral(":/themes/uniprog.qss.in"));
    qApp->setProperty(ThemeProperty, theme);
    qApp->setStyleSheet(sheet.replaceXmlMarkers(QStringLiteral(":/themes/%1.xml").arg(theme)));
}

QString Appearance::current()
{
    return qApp->property(ThemeProperty).toString();
}
