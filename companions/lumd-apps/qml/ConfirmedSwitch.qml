// SPDX-License-Identifier: BSD-3-Clause
import QtQuick 2.15
import QtQuick.Controls 2.15 as Controls

// A switch that shows what is, not what was wished: it moves when the wish has come true.
Controls.Switch {
    id: control
    property bool isOn
    signal wished(bool isWanted)

    checked: isOn
    Accessible.name: text
    Keys.onReturnPressed: wished(!isOn)
    Keys.onEnterPressed: wished(!isOn)
    onToggled: {
        const isWanted = checked
        checked = Qt.binding(() => control.isOn)
        wished(isWanted)
    }
}
