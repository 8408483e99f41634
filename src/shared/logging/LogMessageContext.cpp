#include <shared/logging/LogMessageContext.h>

namespace Shared::Logging {

LogMessageContext::LogMessageContext(const QString &file_, qint32 line_, const QString &function_,
                                     const QString &category_, const QList<QVariant> &parameters_,
                                     LogMessageFlags flags_)
    : invalid(file_.isEmpty() || function_.isEmpty())
    , file(file_)
    , line(line_)
    , function(function_)
    , category(category_)
    , parameters(parameters_)
    , flags(flags_)
{ }

} // namespace Shared::Logging
