#include <shared/localization/utils/ExchangeableTranslator.h>

#include <QCoreApplication>

#include <utility>

namespace Shared::Localization::utils {

ExchangeableTranslator::~ExchangeableTranslator()
{
    // While all of it is still there: the base class would do so when the translations have gone.
    if (QCoreApplication::instance())
        QCoreApplication::removeTranslator(this);
}

void ExchangeableTranslator::exchange(std::unique_ptr<const QTranslator> next)
{
    const QWriteLocker locker(&lock);
    translations.swap(next);
    // What stood there is freed with the lock open: its end waits for those who translate.
}

bool ExchangeableTranslator::isEmpty() const
{
    const QReadLocker locker(&lock);
    return !translations || translations->isEmpty();
}

QString ExchangeableTranslator::translate(const char *context, const char *sourceText,
                                          const char *disambiguation, int n) const
{
    const QReadLocker locker(&lock);
    return translations ? translations->translate(context, sourceText, disambiguation, n) : QString();
}

} // namespace Shared::Localization::utils
