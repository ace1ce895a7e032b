#include "host/shell/Language.h"

#include <QCoreApplication>
#include <QLocale>

namespace orvane::shell {

Language::Language(const QString& localeName) {
    if (!localeName.isEmpty())
        QLocale::setDefault(QLocale(localeName));
    if (QLocale().language() != QLocale::Russian &&
        translator_.load(QStringLiteral(":/translations/orvane_en.qm")))
        QCoreApplication::installTranslator(&translator_);
}

} // namespace orvane::shell
