#pragma once

#include <QReadWriteLock>
#include <QTranslator>

#include <memory>

namespace Shared::Localization::utils {

/*!
 * A translator that changes its language while it is installed. QTranslator::load() is not for that: it frees
 * what other threads may be translating by.
 *
 * Any thread. The lock guards the translations and is held for the look-up of a text.
 */
class ExchangeableTranslator : public QTranslator
{
public:
    ~ExchangeableTranslator() override;

    /*! Null for no translations. The application is not told of it. */
    void exchange(std::unique_ptr<const QTranslator> next);

    bool isEmpty() const override;
    QString translate(const char *context, const char *sourceText, const char *disambiguation = nullptr,
                      int n = -1) const override;

private:
    mutable QReadWriteLock lock;
    std::unique_ptr<const QTranslator> translations;
};

} // namespace Shared::Localization::utils
