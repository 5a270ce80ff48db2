#ifndef SWITCHROW_H
#define SWITCHROW_H

#include <QString>

class QFormLayout;
class UtilsToggleSwitch;

/// A switch beside the label that says what it is for, as a row of a form.
namespace SwitchRow {

/// Adds a switch with the object name @p name to @p form; it is off. A mnemonic in @p label leads to the switch, and
/// assistive technology reads the label as its name.
UtilsToggleSwitch *add(QFormLayout *form, const QString &name, const QString &label);

} // namespace SwitchRow

#endif // SWITCHROW_H
