#include "ShellCommand.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QTextCodec>
#include <QUuid>

#include <algorithm>
#include <limits>

namespace Tessellum::Tool {

namespace {

/*! Where the quoted text that begins at \a position ends: behind its closing quote, -1 if it has none. */
int endOfQuoted(const QString &line, int position)
{
    for (++position; position < line.size(); ++position) {
        if (line.at(position) == QLatin1Char('\\'))
            ++position;
        else if (line.at(position) == QLatin1Char('"'))
            return position + 1;
    }
    return -1;
}

/*! As endOfQuoted() for an array or object; whether the brackets are of one kind is the parser's business. */
int endOfBracketed(const QString &line, int position)
{
    int depth = 0;
    while (position >= 0 && position < line.size()) {
        const QChar character = line.at(position);
        if (character == QLatin1Char('"')) {
            position = endOfQuoted(line, position);
            continue;
        }
        if (character == QLatin1Char('[') || character == QLatin1Char('{'))
            ++depth;
        else if (character == QLatin1Char(']') || character == QLatin1Char('}'))
            --depth;
        ++position;
        if (depth == 0)
            return position;
    }
    return -1;
}

int endOfWord(const QString &line, int position)
{
    while (position < line.size() && !line.at(position).isSpace())
        ++position;
    return position;
}

/*! The braces of a uuid, as the shell writes it, are no JSON. */
bool isUuid(const QString &line, int position)
{
    const QStringRef word = line.midRef(position, endOfWord(line, position) - position);
    constexpr int size = 38; // in braces
    return word.size() == size && !QUuid::fromString(word).isNull();
}

/*! Takes the argument at \a position and moves behind it; false with \a error set if there is a fault. */
bool takeArgument(const QString &line, int &position, ShellArgument &argument, QString &error)
{
    const QChar first = line.at(position);
    const bool isQuoted = first == QLatin1Char('"');
    const bool isBracketed
        = first == QLatin1Char('[') || (first == QLatin1Char('{') && !isUuid(line, position));
    const int end = isQuoted ? endOfQuoted(line, position)
        : isBracketed        ? endOfBracketed(line, position)
                             : endOfWord(line, position);
    if (end < 0 || (end < line.size() && !line.at(end).isSpace())) {
        error = QStringLiteral("the JSON value at column %1 has no end").arg(position + 1);
        return false;
    }
    argument.text = line.mid(position, end - position);
    argument.value = ParseJsonValue(argument.text);
    if ((isQuoted || isBracketed) && argument.value.isUndefined()) {
        error = QStringLiteral("the value at column %1 is no JSON").arg(position + 1);
        return false;
    }
    if (isQuoted)
        argument.text = argument.value.toString();
    position = end;
    return true;
}

QVariant withoutJsonTypes(const QVariant &value)
{
    return QJsonValue::fromVariant(value).toVariant();
}

/*! Whether \a value is or holds an integer that Qt's JSON rounds, as it takes all for doubles. */
bool isBeyondQt(const QVariant &value)
{
    constexpr qint64 limit = qint64(1) << std::numeric_limits<double>::digits;
    switch (value.userType()) {
    case QMetaType::LongLong:
        return value.toLongLong() > limit || value.toLongLong() < -limit;
    case QMetaType::ULongLong:
        return value.toULongLong() > quint64(limit);
    case QMetaType::Long: // of which Qt makes texts
    case QMetaType::ULong:
        return true;
    case QMetaType::QVariantList: {
        const QVariantList list = value.toList();
        return std::any_of(list.cbegin(), list.cend(), isBeyondQt);
    }
    case QMetaType::QVariantMap: {
        const QVariantMap map = value.toMap();
        return std::any_of(map.cbegin(), map.cend(), isBeyondQt);
    }
    case QMetaType::QJsonValue:
    case QMetaType::QJsonArray:
    case QMetaType::QJsonObject:
        return isBeyondQt(withoutJsonTypes(value));
    default:
        return false;
    }
}

} // namespace

ShellCommand ParseShellCommand(const QByteArray &line)
{
    ShellCommand command;
    QTextCodec::ConverterState state;
    const QString text = QTextCodec::codecForMib(106)->toUnicode(line.constData(), line.size(), &state);
    if (state.invalidChars > 0 || state.remainingChars > 0) {
        command.error = QStringLiteral("the line is no UTF-8");
        return command;
    }
    int position = 0;
    while (true) {
        while (position < text.size() && text.at(position).isSpace())
            ++position;
        if (position == text.size())
            return command;
        if (command.name.isEmpty()) {
            if (text.at(position) == QLatin1Char('#'))
                return command;
            const int end = endOfWord(text, position);
            command.name = text.mid(position, end - position);
            position = end;
            continue;
        }
        ShellArgument argument;
        if (!takeArgument(text, position, argument, command.error))
            return command;
        command.arguments.append(argument);
    }
}

QJsonValue ParseJsonValue(const QString &text)
{
    // Qt's parser takes arrays and objects alone, and so would take several values as one.
    QJsonParseError error;
    const QJsonDocument document
        = QJsonDocument::fromJson(QByteArray("[").append(text.toUtf8()).append(']'), &error);
    const QJsonArray values = document.array();
    if (error.error != QJsonParseError::NoError || values.size() != 1)
        return QJsonValue::Undefined;
    return values.first();
}

QString JsonText(const QVariant &value)
{
    if (!isBeyondQt(value)) {
        const QByteArray text
            = QJsonDocument(QJsonArray{QJsonValue::fromVariant(value)}).toJson(QJsonDocument::Compact);
        return QString::fromUtf8(text.mid(1, text.size() - 2));
    }
    switch (value.userType()) {
    case QMetaType::QVariantList: {
        QStringList items;
        for (const QVariant &item : value.toList())
            items += JsonText(item);
        return QLatin1Char('[') + items.join(QLatin1Char(',')) + QLatin1Char(']');
    }
    case QMetaType::QVariantMap: {
        const QVariantMap map = value.toMap();
        QStringList members;
        for (auto member = map.cbegin(); member != map.cend(); ++member)
            members += JsonText(member.key()) + QLatin1Char(':') + JsonText(member.value());
        return QLatin1Char('{') + members.join(QLatin1Char(',')) + QLatin1Char('}');
    }
    case QMetaType::QJsonValue:
    case QMetaType::QJsonArray:
    case QMetaType::QJsonObject:
        return JsonText(withoutJsonTypes(value));
    default:
        return value.toString();
    }
}

} // namespace Tessellum::Tool
