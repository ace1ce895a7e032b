#include "host/desk/window/Language.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QLocale>

namespace orvane::desk {

Language::Language() {
    if (QLocale().language() == QLocale::C) {
        QLocale::setDefault(QLocale::English); // a bare environment: texts sort by letters all the same
    }
    if (QLocale().language() != QLocale::Russian) {
        if (texts_.load(QStringLiteral(":/translations/orvane_en.qm"))) {
            QCoreApplication::installTranslator(&texts_);
        }
    } else if (dialogs_.load(QStringLiteral("qtbase_ru"),
                             QLibraryInfo::location(QLibraryInfo::TranslationsPath))) {
        QCoreApplication::installTranslator(&dialogs_);
    }
}

Language::~Language() {
    QCoreApplication::removeTranslator(&texts_);
    QCoreApplication::removeTranslator(&dialogs_);
}

} // namespace orvane::desk
