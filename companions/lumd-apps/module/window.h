// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QTranslator>

/// What the window needs beside its module: its look and its language.
namespace Window {

/// The QML file that it begins with.
constexpr char source[] = "qrc:/lumd-apps/Main.qml";

/// Names the program and chooses the style of controls and icons for a session that has chosen
/// none. Call before the application is made.
void setUpStyle();

/// The texts in the user's language while it lives; English where there are none.
class Texts
{
public:
    Texts();

private:
    QTranslator m_english;
    QTranslator m_locale;
};

} // namespace Window
