// SPDX-License-Identifier: BSD-3-Clause
import QtQuick 2.15
import QtQuick.Controls 2.15 as Controls

// A button that Return presses too, and whose icon is as dark or light as its text.
Controls.Button {
    Accessible.name: text
    icon.color: palette.buttonText
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()
}
