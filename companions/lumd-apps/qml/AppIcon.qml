// SPDX-License-Identifier: BSD-3-Clause
import QtQuick 2.15
import org.kde.kirigami 2.20 as Kirigami

// The app's own icon, or a general one where it has none that can be shown.
Item {
    id: icon
    property url source
    Accessible.ignored: true

    Image {
        id: image
        anchors.fill: parent
        source: icon.source
        sourceSize: Qt.size(128, 128)
        fillMode: Image.PreserveAspectFit
        asynchronous: true
        // An update of the app brings another icon under the same name.
        cache: false
        smooth: true
        mipmap: true
    }
    Kirigami.Icon {
        anchors.fill: parent
        visible: image.status !== Image.Ready
        source: "application-vnd.android.package-archive"
        fallback: "application-x-executable"
    }
}
