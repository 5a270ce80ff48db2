#ifndef THEMECHECKER_H
#define THEMECHECKER_H

#include <QList>
#include <QRegularExpression>
#include <QString>
#include <QStringList>

/// What is wrong with a place in a template or a theme.
struct Finding
{
    enum Severity { Warning, Error };

    QString file;
    qint64 line;
    Severity severity;
    QString message;
};

/// Checks a theme against the style sheet template that it fills: everything that UtilsStyleSheet passes over in
/// silence, and everything that works only in the order in which the theme happens to be written.
class ThemeChecker
{
public:
    /// \a markerPattern finds the markers of the template; \a fontFolders are searched for fonts that the resources of
    /// this program lack.
    ThemeChecker(const QString &templatePath, const QRegularExpression &markerPattern, const QStringList &fontFolders);

    /// Reads the template; false with \a errorString set when it cannot be read.
    bool load(QString *errorString);

    /// Appends what is found to findings(); false with \a errorString set when the theme cannot be read.
    bool check(const QString &themePath, QString *errorString);

    QList<Finding> findings() const;

private:
    struct Value
    {
        QString marker;
        QString text;
        qint64 line;
    };

    static QString named(const Value &value);
    void readValues(const QString &theme);
    bool growsTooLarge(const Value &value);
    void checkValue(qsizetype index);
    bool isBrokenByEarlierMarker(qsizetype index);
    void checkNeighbours(qsizetype index);
    void checkFont(const QString &family, qint64 line);
    void checkMarkersLeft();
    void report(Finding::Severity severity, qint64 line, const QString &message);

    QString m_templatePath;
    QRegularExpression m_markerPattern;
    QStringList m_fontFolders;
    QString m_template;
    QList<Finding> m_findings;

    // Of the theme that is being checked.
    QString m_themePath;
    QString m_text; // the template, as far as it has been filled
    QList<Value> m_values;
};

#endif // THEMECHECKER_H
