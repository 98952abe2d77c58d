// SPDX-License-Identifier: MIT
#include "app/ui/common/Translations.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QTranslator>

namespace Translations {

namespace {

// Installs the locale's file of a translation from a folder, if there is one. The translator is owned
// by the application object, so it lives as long as it does.
bool installFile(const QLocale& locale, const QString& name, const QString& folder) {
    auto* translator = new QTranslator(QCoreApplication::instance());
    if (!translator->load(locale, name, QStringLiteral("_"), folder)) {
        delete translator;
        return false;
    }
    QCoreApplication::installTranslator(translator);
    return true;
}

}  // namespace

bool install(const QLocale& locale) {
    installFile(locale, QStringLiteral("qtbase"), QLibraryInfo::path(QLibraryInfo::TranslationsPath));
    return installFile(locale, QStringLiteral("lattica"), QStringLiteral(":/i18n"));
}

}  // namespace Translations
