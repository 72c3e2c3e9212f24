// SPDX-License-Identifier: BSD-3-Clause
import QtQuick 2.15
import QtQuick.Controls 2.15 as Controls
import QtQuick.Layouts 1.15
import org.kde.kirigami 2.20 as Kirigami
import com.tovra.lumd.apps 1.0

// The space that an app takes up, part by part.
ColumnLayout {
    id: space
    property App app
    property bool canClear
    signal clearDataWished()
    spacing: Kirigami.Units.smallSpacing

    readonly property bool isKnown: app !== null && app.knowsSizes
    readonly property color codeColor: "#3b7dd8"
    readonly property color dataColor: "#d9822b"
    readonly property color cacheColor: "#8c8c8c"

    SizeBar {
        objectName: "sizeBar"
        Layout.fillWidth: true
        parts: space.isKnown ? [
            { size: space.app.codeSize, color: space.codeColor },
            { size: space.app.dataSize, color: space.dataColor },
            { size: space.app.cacheSize, color: space.cacheColor }
        ] : []
        Accessible.name: qsTrId("lumd-apps-space")
        Accessible.description: space.isKnown ? space.app.sizeText : qsTrId("lumd-apps-space-unknown")
    }
    Detail {
        objectName: "spaceUnknown"
        text: space.isKnown ? "" : qsTrId("lumd-apps-space-unknown")
    }
    SpacePart {
        objectName: "codePart"
        color: space.codeColor
        label: qsTrId("lumd-apps-code")
        size: space.isKnown ? space.app.codeText : ""
    }
    SpacePart {
        objectName: "dataPart"
        color: space.dataColor
        label: qsTrId("lumd-apps-data")
        size: space.isKnown ? space.app.dataText : ""
        action: qsTrId("lumd-apps-clear-data")
        canAct: space.canClear
        onActed: space.clearDataWished()
    }
    SpacePart {
        objectName: "cachePart"
        color: space.cacheColor
        label: qsTrId("lumd-apps-cache")
        size: space.isKnown ? space.app.cacheText : ""
        action: qsTrId("lumd-apps-clear-cache")
        canAct: space.canClear
        onActed: space.app.clearCache()
    }
}
