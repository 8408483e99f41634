#pragma once

#include <QByteArray>
#include <QJsonValue>
#include <QString>
#include <QVariant>
#include <QVector>

namespace Tessellum::Tool {

/*! One argument of a command line: a bare word, or JSON. */
struct ShellArgument
{
    /*! The word as it stands, the content of a JSON string, or the text of another JSON value. */
    QString text;
    /*! The JSON value; undefined for a bare word that is none. */
    QJsonValue value = QJsonValue::Undefined;
};

/*! One line for the shell. */
struct ShellCommand
{
    QString name; ///< empty for an empty line and for a comment
    QVector<ShellArgument> arguments;
    QString error; ///< why the line cannot be read; empty if it can
};

/*!
 * Reads one line: words between blanks, of which one in double quotes is a JSON string and one that begins
 * with a bracket is a JSON array or object, blanks and all, unless it is a uuid in braces. A line that begins
 * with "#" is a comment. Pure; any bytes are allowed.
 */
ShellCommand ParseShellCommand(const QByteArray &line);

/*! The JSON value whose whole text \a text is, undefined if it is none. */
QJsonValue ParseJsonValue(const QString &text);

/*! \a value in one line, scalars too. Integers have all their digits, of which Qt's writer keeps 53 bits. */
QString JsonText(const QVariant &value);

} // namespace Tessellum::Tool
