<?xml version="1.0" encoding="utf-8"?>
<!-- SPDX-License-Identifier: BSD-3-Clause -->
<!DOCTYPE TS>
<TS version="2.1" language="de">
<context>
    <name></name>
    <message id="lumd-ap-name">
        <source>Android App Support</source>
        <extracomment>The name under which this program shows its messages</extracomment>
        <translation>Android-App-Unterstützung</translation>
    </message>
    <message id="lumd-app_installation_disallowed">
        <source>Installing Android apps is not allowed on this device</source>
        <extracomment>The device's policy forbids it</extracomment>
        <translation>Das Installieren von Android-Apps ist auf diesem Gerät nicht erlaubt</translation>
    </message>
    <message id="lumd-app_uninstallation_disallowed">
        <source>Removing Android apps is not allowed on this device</source>
        <extracomment>The device's policy forbids it</extracomment>
        <translation>Das Entfernen von Android-Apps ist auf diesem Gerät nicht erlaubt</translation>
    </message>
    <message id="lumd-launch_alien_to_start_android_app">
        <source>Starting Android App Support to open %1</source>
        <extracomment>%1 is the name of an app</extracomment>
        <translation>Android-App-Unterstützung wird gestartet, um %1 zu öffnen</translation>
    </message>
    <message id="lumd-install-success">
        <source>App installed</source>
        <extracomment>The name of an app may follow, after a colon</extracomment>
        <translation>App installiert</translation>
    </message>
    <message id="lumd-install-failed">
        <source>App could not be installed</source>
        <extracomment>The name of an app may follow, after a colon</extracomment>
        <translation>App konnte nicht installiert werden</translation>
    </message>
    <message id="lumd-uninstall-success">
        <source>App removed</source>
        <extracomment>The name of an app follows, after a colon</extracomment>
        <translation>App entfernt</translation>
    </message>
    <message id="lumd-uninstall-failed">
        <source>App could not be removed</source>
        <extracomment>The name of an app follows, after a colon</extracomment>
        <translation>App konnte nicht entfernt werden</translation>
    </message>
    <message id="lumd-install-fail-incompat">
        <source>The app is not compatible with this device</source>
        <extracomment>Why an app could not be installed</extracomment>
        <translation>Die App ist mit diesem Gerät nicht kompatibel</translation>
    </message>
    <message id="lumd-install-fail-conflict">
        <source>The app conflicts with an app that is installed already</source>
        <extracomment>Why an app could not be installed</extracomment>
        <translation>Die App steht in Konflikt mit einer bereits installierten App</translation>
    </message>
    <message id="lumd-install-fail-invalid">
        <source>The app's file is not valid</source>
        <extracomment>Why an app could not be installed</extracomment>
        <translation>Die Datei der App ist ungültig</translation>
    </message>
    <message id="lumd-install-fail-storage">
        <source>There is not enough storage space</source>
        <extracomment>Why an app could not be installed</extracomment>
        <translation>Es ist nicht genug Speicherplatz vorhanden</translation>
    </message>
    <message id="lumd-install-fail-other">
        <source>The app could not be installed</source>
        <extracomment>Why an app could not be installed</extracomment>
        <translation>Die App konnte nicht installiert werden</translation>
    </message>
    <message id="Aborted">
        <source>Aborted</source>
        <extracomment>The installation of an app was given up</extracomment>
        <translation>Abgebrochen</translation>
    </message>
</context>
</TS>
