// SPDX-License-Identifier: BSD-3-Clause
#include "companions/lumd-apps/window.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QIcon>
#include <QLocale>
#include <QQuickStyle>

namespace {
constexpr char catalogues[] = "/usr/share/translations";
}

void Window::setUpStyle()
{
    QCoreApplication::setApplicationName(QStringLiteral("lumd-apps"));
    QCoreApplication::setApplicationVersion(QStringLiteral(LUMD_VERSION));
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QGuiApplication::setDesktopFileName(QStringLiteral("com.tovra.lumd.apps"));
    // Follows the session's palette, light or dark, where the session brings no style of its own.
    QQuickStyle::setFallbackStyle(QStringLiteral("Fusion"));
    QIcon::setFallbackSearchPaths({QStringLiteral(":/lumd-apps/icons")});
}

Window::Texts::Texts()
{
    if (m_english.load(QStringLiteral("lumd-apps_eng_en"), QLatin1String(catalogues)))
        QCoreApplication::installTranslator(&m_english);
    if (m_locale.load(
            QLocale(), QStringLiteral("lumd-apps"), QStringLiteral("-"), QLatin1String(catalogues)))
        QCoreApplication::installTranslator(&m_locale);
}
