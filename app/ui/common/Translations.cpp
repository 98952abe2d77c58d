#include "app/ui/common/Translations.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QTranslator>

namespace Translations {

bool install(const QLocale& locale) {
    // Owned by the application object, so they live as long as it does.
    auto* qt = new QTranslator(QCoreApplication::instance());
    if (qt->load(locale, QStringLiteral("qtbase"), QStringLiteral("_"),
                 QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
        QCoreApplication::installTranslator(qt);
    } else {
        delete qt;
    }
    auto* own = new QTranslator(QCoreApplication::instance());
    if (own->load(locale, QStringLiteral("lattica"), QStringLiteral("_"), QStringLiteral(":/i18n"))) {
        QCoreApplication::installTranslator(own);
        return true;
    }
    delete own;
    return false;
}

}  // namespace Translations
