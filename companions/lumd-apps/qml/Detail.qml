// SPDX-License-Identifier: BSD-3-Clause
import QtQuick 2.15
import QtQuick.Controls 2.15 as Controls
import QtQuick.Layouts 1.15

// A line of lesser weight, which is not there without a text.
Controls.Label {
    Layout.fillWidth: true
    visible: text.length > 0
    textFormat: Text.PlainText
    wrapMode: Text.Wrap
    maximumLineCount: 2
    elide: Text.ElideRight
    opacity: 0.75
}
