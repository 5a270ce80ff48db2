#ifndef APPEARANCE_H
#define APPEARANCE_H

#include <QStringList>

/// The look of the example applications: the style sheet that gives every role name of the library's widgets colours
/// and sizes, filled in with one of the themes.
namespace Appearance {

/// Names of the themes; the first one is the usual one.
QStringList themes();

/// Gives the application the look of @p theme, also while it runs.
void apply(const QString &theme);

/// The theme that was applied last; empty before.
QString current();

} // namespace Appearance

#endif // APPEARANCE_H
