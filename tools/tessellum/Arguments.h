#pragma once

#include "EnumNames.h"
#include "ShellCommand.h"
#include "ToolError.h"

namespace Tessellum::Tool {

/*! The arguments of one shell command, read by position; what is missing or wrong ends the command. */
class Arguments
{
public:
    explicit Arguments(const ShellCommand &shellCommand)
        : command(shellCommand)
    { }

    int size() const { return command.arguments.size(); }
    QString text(int index) const { return command.arguments.value(index).text; }

    /*! A JSON value; null gives an invalid one. */
    QVariant value(int index) const
    {
        const ShellArgument argument = command.arguments.value(index);
        if (argument.value.isUndefined())
            FailUsage(QStringLiteral("%1 is no JSON value; a text needs its quotes").arg(argument.text));
        return argument.value.isNull() ? QVariant() : argument.value.toVariant();
    }
    /*! A JSON value, or the bare word as a text: file names need no quotes. */
    QVariant valueOrWord(int index) const
    {
        return command.arguments.value(index).value.isUndefined() ? QVariant(text(index)) : value(index);
    }

    /*! An enumerator by name or number, \a fallback where the argument is missing. */
    template <typename Enum>
    Enum enumerator(int index, Enum fallback) const
    {
        if (index < size() && !ParseEnum(text(index), fallback))
            FailUsage(QStringLiteral("%1 is none of %2").arg(text(index), EnumNames(fallback)));
        return fallback;
    }
    int number(int index, int fallback) const
    {
        if (index >= size())
            return fallback;
        bool isNumber = false;
        const int result = text(index).toInt(&isNumber);
        if (!isNumber)
            FailUsage(QStringLiteral("%1 is no number").arg(text(index)));
        return result;
    }

private:
    const ShellCommand &command;
};

} // namespace Tessellum::Tool
