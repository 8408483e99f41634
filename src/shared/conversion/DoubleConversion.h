#pragma once

#include <shared/TessellumExport.h>

#include <QHash>
#include <QVariant>

#include <functional>

namespace Shared::Conversion {

/*! Turns a double into a QVariant of one type. Copies are independent; calling one is safe from any thread.
 */
class TESSELLUM_EXPORT DoubleConversionFunctionWrapper
{
public:
    using Function = std::function<QVariant(const double &)>;

    /*! Holds defaultConvert. */
    DoubleConversionFunctionWrapper();
    explicit DoubleConversionFunctionWrapper(Function function);

    QVariant operator()(const double &value) const;

    /*! What stands in for an unknown type: logs a warning and returns an invalid QVariant. */
    static QVariant defaultConvert(const double &value);

private:
    Function function;
};

/*!
 * A conversion for each number type, bool excepted, found by QMetaType number. The table is built by the
 * constructor and only read afterwards, so that any thread may use it.
 *
 * A value beyond the limits of the type becomes the limit; anything else is truncated towards zero. "Not a
 * number" becomes 0 in an integral type and stays what it is in a floating one. The two long types have
 * limits of 32 bits, so that a configuration means the same on every platform.
 */
class TESSELLUM_EXPORT DoubleConversionHelper
{
public:
    DoubleConversionHelper();

    /*! The value in the type of that QMetaType number; an invalid QVariant and a log line for an unknown
     * type. */
    QVariant operator()(const int &type, const double &value) const;

    /*! The QMetaType numbers of the table. */
    QList<int> types() const { return conversions.keys(); }

private:
    QHash<int, DoubleConversionFunctionWrapper> conversions;
};

/*! The process-wide DoubleConversionHelper. */
TESSELLUM_EXPORT const DoubleConversionHelper &GetDoubleConversionHelper();

/*! Converts by the process-wide helper, which is made at first use. Any thread. */
TESSELLUM_EXPORT QVariant ConvertDouble(const int &type, const double &value);

} // namespace Shared::Conversion
