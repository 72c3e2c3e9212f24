// SPDX-License-Identifier: BSD-3-Clause
import QtQuick 2.15
import QtQuick.Controls 2.15 as Controls
import QtQuick.Layouts 1.15
import org.kde.kirigami 2.20 as Kirigami
import com.tovra.lumd.apps 1.0

Kirigami.ScrollablePage {
    id: page
    objectName: "appListPage"
    title: qsTrId("lumd-apps-title")

    signal appChosen(App app, int reason)

    function takeFocus() {
        list.forceActiveFocus()
    }
    // The keyboard does not go where nothing is to be seen.
    enabled: applicationWindow().pageStack.wideMode || isCurrentPage
    // It gets its height from the window, its content does not decide on it.
    implicitHeight: 0

    header: ColumnLayout {
        spacing: 0
        RuntimeCard {
            Layout.fillWidth: true
            visible: Runtime.isReachable
        }
        Kirigami.SearchField {
            objectName: "search"
            Layout.fillWidth: true
            Layout.margins: Kirigami.Units.largeSpacing
            visible: AppList.count > 0
            placeholderText: qsTrId("lumd-apps-search")
            Accessible.name: qsTrId("lumd-apps-search")
            onTextChanged: Apps.searched = text
            Keys.onDownPressed: page.takeFocus()
        }
    }

    ListView {
        id: list
        objectName: "list"
        model: Apps
        currentIndex: -1
        activeFocusOnTab: count > 0
        keyNavigationEnabled: true
        onActiveFocusChanged: if (activeFocus && currentIndex < 0) currentIndex = 0
        Accessible.role: Accessible.List
        Accessible.name: qsTrId("lumd-apps-title")

        delegate: AppDelegate {
            onChosen: {
                list.currentIndex = index
                page.appChosen(app, reason)
            }
        }

        StateMessage {
            id: state
            objectName: "state"
            anchors.centerIn: parent
            width: Math.min(parent.width - Kirigami.Units.gridUnit * 2, Kirigami.Units.gridUnit * 24)
            visible: list.count === 0
            isSearching: AppList.count > 0
        }
    }
}
