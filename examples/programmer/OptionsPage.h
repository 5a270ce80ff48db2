#ifndef OPTIONSPAGE_H
#define OPTIONSPAGE_H

#include "Page.h"

#include <UtilsOptionList.h>

class QFormLayout;
class TargetOptions;
class UtilsOption;

/// The page for the options of the operations on the target. What is picked goes to the session at once.
class OptionsPage : public Page
{
    Q_OBJECT

public:
    explicit OptionsPage(ProgrammerSession *session, QWidget *parent = nullptr);
    ~OptionsPage() override;

private:
    void addEraseMode();
    void addSwitch(QFormLayout *form, const QString &name, const QString &label, TargetOptions *options, int number);

    UtilsOptionList list;
};

#endif // OPTIONSPAGE_H
