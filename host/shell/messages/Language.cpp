#include "host/shell/messages/Language.h"

#include <QCoreApplication>
#include <QLocale>

namespace orvane::shell {

Language::Language(const QString& localeName) {
    if (!localeName.isEmpty()) {
        QLocale::setDefault(QLocale(localeName));
    } else if (QLocale().language() == QLocale::C) {
        QLocale::setDefault(QLocale::English); // a bare environment: texts sort by letters all the same
    }
    if (QLocale().language() != QLocale::Russian &&
        translator_.load(QStringLiteral(":/translations/orvane_en.qm"))) {
        QCoreApplication::installTranslator(&translator_);
    }
}

} // namespace orvane::shell
