// SPDX-License-Identifier: BSD-3-Clause
import QtQuick 2.15
import QtQuick.Controls 2.15 as Controls
import QtQuick.Layouts 1.15
import org.kde.kirigami 2.20 as Kirigami

// Asks before something that cannot be taken back.
Controls.Dialog {
    id: question
    property string text
    property string consent
    parent: applicationWindow().overlay
    anchors.centerIn: parent
    modal: true
    padding: Kirigami.Units.largeSpacing
    focus: true
    width: Math.min(parent ? parent.width - Kirigami.Units.gridUnit * 2 : 0, Kirigami.Units.gridUnit * 22)
    onOpened: cancel.forceActiveFocus(Qt.TabFocusReason)

    // Not the label itself: one that is given a height cuts its text to that.
    contentItem: Item {
        implicitHeight: label.implicitHeight
        Controls.Label {
            id: label
            objectName: "questionText"
            width: question.availableWidth
            text: question.text
            textFormat: Text.PlainText
            wrapMode: Text.Wrap
            maximumLineCount: 12
            elide: Text.ElideRight
            Accessible.role: Accessible.AlertMessage
            Accessible.name: text
        }
    }
    footer: Controls.DialogButtonBox {
        ActionButton {
            id: cancel
            objectName: "cancel"
            text: qsTrId("lumd-apps-cancel")
            Controls.DialogButtonBox.buttonRole: Controls.DialogButtonBox.RejectRole
        }
        ActionButton {
            objectName: "consent"
            text: question.consent
            Controls.DialogButtonBox.buttonRole: Controls.DialogButtonBox.AcceptRole
        }
    }
}
