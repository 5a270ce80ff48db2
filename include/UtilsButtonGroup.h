#ifndef UTILSBUTTONGROUP_H
#define UTILSBUTTONGROUP_H

#include "uniprogutils_export.h"

#include <QFrame>
#include <QList>
#include <QPointer>

class QAbstractButton;
class QButtonGroup;
class QHBoxLayout;
class QToolButton;
class QVariant;

/// A row of checkable tool buttons of which one is checked: one selector in several pieces.
///
/// \image html buttons.png
///
/// The style sheet finds the ends and the middle of the row by dynamic properties and may draw them as one: true are
/// "button-group-left" of the first button, "button-group-middle" of those between and "button-group-right" of the last
/// one. A lone button has none of them. The row runs from left to right in every layout, because a style sheet cannot
/// tell where left is.
///
/// GUI thread only; owned by its Qt parent, and the buttons by their row.
///
///     auto *view = new UtilsButtonGroup(this);
///     view->addButton(tr("HEX"), 0);
///     view->addButton(tr("ASCII"), 1);
///     view->checkButton(0);
///     connect(view, &UtilsButtonGroup::signalButtonClicked, this, &Page::setView);
class UNIPROGUTILS_EXPORT UtilsButtonGroup : public QFrame
{
    Q_OBJECT

public:
    explicit UtilsButtonGroup(QWidget *parent = nullptr);
    /// The QButtonGroup inside stays behind.
    ~UtilsButtonGroup() override;

    /// Adds a button that shows \a name, which is its object name as well, at the end of the row, and returns its id:
    /// \a id, or an automatic negative one for -1. When the row has a button of that name, nothing is added and its id
    /// returned; buttons that removeButtons() has given up do not count.
    int addButton(QString name, int id);

    /// Does nothing with \a names: buttons are added one by one, with addButton().
    void addButtons(QList<QString> names);

    /// Checks the button with that id, without signalButtonClicked(). Nothing happens when there is none.
    void checkButton(int id);

    /// How many buttons the row has, with those that removeButtons() has given up until they are deleted.
    int count() const;

    /// Deletes all buttons later; until then they stay in the row.
    void removeButtons();

    /// Limits of the buttons there are now, in pixels.
    void setButtonsMaxSize(int w, int h);
    void setButtonsMinSize(int w, int h);

    /// Sets the dynamic property \a name of the buttons there are now. Their style is not polished anew: a style sheet
    /// takes notice of it at the next occasion.
    void setButtonsProperty(const char *name, const QVariant &value);

Q_SIGNALS:
    /// The user has clicked the button with the id \a id, even if it was the checked one. Not emitted by checkButton().
    void signalButtonClicked(int id);

private:
    Q_DISABLE_COPY_MOVE(UtilsButtonGroup)

    struct Form
    {
        QHBoxLayout *horizontalLayout = nullptr;
        QFrame *frame_buttons = nullptr;
    };

    void setupForm();
    void markEnds(QToolButton *newButton);
    void tellOfClick(int id);

    Form form;
    QButtonGroup *group;
    QList<QPointer<QToolButton>> buttons; ///< without those that are about to be deleted
    bool isClicked = false;
};

#endif // UTILSBUTTONGROUP_H
