#ifndef OPTIONSPANEL_H
#define OPTIONSPANEL_H

#include <UtilsOptionList.h>

#include <QGroupBox>
#include <QList>

class ProgrammerSession;
class TargetOptions;
class QVBoxLayout;
class UtilsOption;

/// The options of the operations on the target, as a panel of combo boxes. What is picked goes to the session at once.
class OptionsPanel : public QGroupBox
{
    Q_OBJECT

public:
    OptionsPanel(ProgrammerSession *session, QWidget *parent);
    ~OptionsPanel() override;

    /// Adds a widget below the options; the panel owns it.
    void addBelow(QWidget *widget);

private:
    struct Entry
    {
        TargetOptions *options;
        int number;
        UtilsOption *choice;
    };

    UtilsOption *add(const QString &name, TargetOptions *options, int number);
    void addSwitch(const QString &name, TargetOptions *options, int number);
    void store();

    UtilsOptionList list;
    QList<Entry> entries;
    QVBoxLayout *layout;
};

#endif // OPTIONSPANEL_H
