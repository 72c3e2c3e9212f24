<?xml version="1.0" encoding="utf-8"?>
<!-- SPDX-License-Identifier: BSD-3-Clause -->
<!DOCTYPE TS>
<TS version="2.1" language="de">
<context>
    <name></name>
    <message id="lumd-apps-title">
        <source>Android apps</source>
        <extracomment>The window's title</extracomment>
        <translation>Android-Apps</translation>
    </message>
    <message id="lumd-apps-description">
        <source>Shows and manages the Android apps of this device</source>
        <extracomment>On the command line</extracomment>
        <translation>Zeigt und verwaltet die Android-Apps dieses Geräts</translation>
    </message>
    <message id="lumd-apps-files-argument">
        <source>Apk files to install</source>
        <extracomment>On the command line</extracomment>
        <translation>Zu installierende apk-Dateien</translation>
    </message>
    <message id="lumd-apps-search">
        <source>Search apps</source>
        <extracomment>In the empty search field</extracomment>
        <translation>Apps suchen</translation>
    </message>
    <message id="lumd-apps-state-unknown">
        <source>Asking lumd …</source>
        <translation>lumd wird gefragt …</translation>
    </message>
    <message id="lumd-apps-state-no-daemon">
        <source>The service lumd is not running</source>
        <translation>Der Dienst lumd läuft nicht</translation>
    </message>
    <message id="lumd-apps-state-refused">
        <source>You may not use lumd</source>
        <translation>Du darfst lumd nicht benutzen</translation>
    </message>
    <message id="lumd-apps-state-outdated">
        <source>lumd is too old</source>
        <translation>lumd ist zu alt</translation>
    </message>
    <message id="lumd-apps-state-down">
        <source>Android is off</source>
        <translation>Android ist aus</translation>
    </message>
    <message id="lumd-apps-state-failed">
        <source>Android has crashed</source>
        <translation>Android ist abgestürzt</translation>
    </message>
    <message id="lumd-apps-state-starting">
        <source>Android is starting</source>
        <translation>Android startet</translation>
    </message>
    <message id="lumd-apps-state-up">
        <source>Android is running</source>
        <translation>Android läuft</translation>
    </message>
    <message id="lumd-apps-state-stopping">
        <source>Android is stopping</source>
        <translation>Android wird beendet</translation>
    </message>
    <message id="lumd-apps-explain-no-daemon">
        <source>Android apps cannot be managed without it. As soon as it runs, they show here.</source>
        <translation>Ohne ihn lassen sich Android-Apps nicht verwalten. Sobald er läuft, erscheinen sie hier.</translation>
    </message>
    <message id="lumd-apps-explain-refused">
        <source>Only members of the system's group for it may. Ask whoever looks after this device.</source>
        <translation>Das dürfen nur Mitglieder der dafür vorgesehenen Gruppe des Systems. Frage, wer dieses Gerät betreut.</translation>
    </message>
    <message id="lumd-apps-explain-outdated">
        <source>This window needs a lumd that tells of its apps. Update it, and restart it.</source>
        <translation>Dieses Fenster braucht ein lumd, das von seinen Apps erzählt. Aktualisiere es und starte es neu.</translation>
    </message>
    <message id="lumd-apps-explain-down">
        <source>Sizes and most settings of apps are there when it runs. Launching an app starts it.</source>
        <translation>Größen und die meisten Einstellungen der Apps gibt es, wenn es läuft. Wer eine App startet, startet es mit.</translation>
    </message>
    <message id="lumd-apps-explain-failed">
        <source>It is not started by itself again, but you can start it.</source>
        <translation>Von selbst startet es nicht wieder, aber du kannst es starten.</translation>
    </message>
    <message id="lumd-apps-explain-starting">
        <source>This takes a moment. What you ask for meanwhile is done when it is up.</source>
        <translation>Das dauert einen Moment. Was du inzwischen verlangst, geschieht, sobald es läuft.</translation>
    </message>
    <message id="lumd-apps-late">
        <source>lumd has not answered for a while. It goes on when it does.</source>
        <translation>lumd antwortet seit einer Weile nicht. Es geht weiter, sobald es das tut.</translation>
    </message>
    <message id="lumd-apps-start">
        <source>Start</source>
        <extracomment>On a button: starts Android</extracomment>
        <translation>Starten</translation>
    </message>
    <message id="lumd-apps-stop">
        <source>Stop</source>
        <extracomment>On a button: stops Android or an app</extracomment>
        <translation>Beenden</translation>
    </message>
    <message id="lumd-apps-runtime-on-boot">
        <source>Start Android with the device</source>
        <translation>Android mit dem Gerät starten</translation>
    </message>
    <message id="lumd-apps-total">
        <source>All apps together use %1</source>
        <extracomment>%1 is an amount like "1.2 GB"</extracomment>
        <translation>Alle Apps zusammen belegen %1</translation>
    </message>
    <message id="lumd-apps-reading">
        <source>Reading the list of apps …</source>
        <translation>Liste der Apps wird gelesen …</translation>
    </message>
    <message id="lumd-apps-none">
        <source>No apps yet</source>
        <translation>Noch keine Apps</translation>
    </message>
    <message id="lumd-apps-explain-none">
        <source>Open an apk file to install an app. It shows here when Android has told of it.</source>
        <translation>Öffne eine apk-Datei, um eine App zu installieren. Sie erscheint hier, sobald Android sie gemeldet hat.</translation>
    </message>
    <message id="lumd-apps-nothing-found">
        <source>No app is called that</source>
        <extracomment>After a search</extracomment>
        <translation>Keine App heißt so</translation>
    </message>
    <message id="lumd-apps-details">
        <source>App details</source>
        <extracomment>Title of a page</extracomment>
        <translation>App-Details</translation>
    </message>
    <message id="lumd-apps-version">
        <source>Version %1</source>
        <extracomment>%1 is a version</extracomment>
        <translation>Version %1</translation>
    </message>
    <message id="lumd-apps-other-launchers">
        <source>Also: %1</source>
        <extracomment>%1 is a list of names</extracomment>
        <translation>Außerdem: %1</translation>
    </message>
    <message id="lumd-apps-launch">
        <source>Launch</source>
        <extracomment>On a button: starts the app</extracomment>
        <translation>Öffnen</translation>
    </message>
    <message id="lumd-apps-launched">
        <source>The app is on its way.</source>
        <translation>Die App wird geöffnet.</translation>
    </message>
    <message id="lumd-apps-stopped">
        <source>Android was asked to stop the app.</source>
        <translation>Android wurde gebeten, die App zu beenden.</translation>
    </message>
    <message id="lumd-apps-space">
        <source>Space</source>
        <extracomment>Heading</extracomment>
        <translation>Speicherplatz</translation>
    </message>
    <message id="lumd-apps-space-unknown">
        <source>Known when Android runs</source>
        <extracomment>In place of the sizes of an app</extracomment>
        <translation>Bekannt, wenn Android läuft</translation>
    </message>
    <message id="lumd-apps-code">
        <source>App</source>
        <extracomment>One of three parts of the space that an app takes up</extracomment>
        <translation>App</translation>
    </message>
    <message id="lumd-apps-data">
        <source>Data</source>
        <extracomment>One of three parts of the space that an app takes up</extracomment>
        <translation>Daten</translation>
    </message>
    <message id="lumd-apps-cache">
        <source>Cache</source>
        <extracomment>One of three parts of the space that an app takes up</extracomment>
        <translation>Cache</translation>
    </message>
    <message id="lumd-apps-clear-cache">
        <source>Clear cache</source>
        <extracomment>On a button</extracomment>
        <translation>Cache leeren</translation>
    </message>
    <message id="lumd-apps-clear-data">
        <source>Clear data …</source>
        <extracomment>On a button; a question follows</extracomment>
        <translation>Daten löschen …</translation>
    </message>
    <message id="lumd-apps-cache-cleared">
        <source>Android was asked to clear the cache.</source>
        <translation>Android wurde gebeten, den Cache zu leeren.</translation>
    </message>
    <message id="lumd-apps-data-cleared">
        <source>Android was asked to clear the data.</source>
        <translation>Android wurde gebeten, die Daten zu löschen.</translation>
    </message>
    <message id="lumd-apps-clear-data-title">
        <source>Clear data</source>
        <extracomment>Title of a question</extracomment>
        <translation>Daten löschen</translation>
    </message>
    <message id="lumd-apps-clear-data-question">
        <source>Delete everything that %1 has stored, accounts and settings included? This cannot be undone.</source>
        <extracomment>%1 is the name of an app</extracomment>
        <translation>Alles löschen, was %1 gespeichert hat, auch Konten und Einstellungen? Das lässt sich nicht rückgängig machen.</translation>
    </message>
    <message id="lumd-apps-clear-data-consent">
        <source>Delete data</source>
        <extracomment>On the button that confirms</extracomment>
        <translation>Daten löschen</translation>
    </message>
    <message id="lumd-apps-app-on-boot">
        <source>Start the app with the device</source>
        <translation>App mit dem Gerät starten</translation>
    </message>
    <message id="lumd-apps-settings">
        <source>Android settings</source>
        <extracomment>On a button: opens Android's own page of the app</extracomment>
        <translation>Android-Einstellungen</translation>
    </message>
    <message id="lumd-apps-settings-opened">
        <source>Android's page of the app is on its way.</source>
        <translation>Androids Seite zur App wird geöffnet.</translation>
    </message>
    <message id="lumd-apps-remove">
        <source>Remove …</source>
        <extracomment>On a button; a question follows</extracomment>
        <translation>Entfernen …</translation>
    </message>
    <message id="lumd-apps-remove-title">
        <source>Remove app</source>
        <extracomment>Title of a question</extracomment>
        <translation>App entfernen</translation>
    </message>
    <message id="lumd-apps-remove-question">
        <source>Remove %1 and all that it has stored?</source>
        <extracomment>%1 is the name of an app</extracomment>
        <translation>%1 und alles, was sie gespeichert hat, entfernen?</translation>
    </message>
    <message id="lumd-apps-remove-consent">
        <source>Remove</source>
        <extracomment>On the button that confirms</extracomment>
        <translation>Entfernen</translation>
    </message>
    <message id="lumd-apps-removing">
        <source>Is being removed</source>
        <translation>Wird entfernt</translation>
    </message>
    <message id="lumd-apps-remove-queued">
        <source>Will be removed when Android runs</source>
        <translation>Wird entfernt, sobald Android läuft</translation>
    </message>
    <message id="lumd-apps-remove-refused">
        <source>You may not remove apps on this device.</source>
        <translation>Du darfst auf diesem Gerät keine Apps entfernen.</translation>
    </message>
    <message id="lumd-apps-remove-failed">
        <source>Android did not remove the app.</source>
        <translation>Android hat die App nicht entfernt.</translation>
    </message>
    <message id="lumd-apps-request-failed">
        <source>lumd did not carry it out.</source>
        <translation>lumd hat es nicht ausgeführt.</translation>
    </message>
    <message id="lumd-apps-cancel">
        <source>Cancel</source>
        <extracomment>On a button</extracomment>
        <translation>Abbrechen</translation>
    </message>
    <message id="lumd-apps-install-title">
        <source>Install app</source>
        <extracomment>Title of a page</extracomment>
        <translation>App installieren</translation>
    </message>
    <message id="lumd-apps-install-handing-over">
        <source>Handing over the file</source>
        <translation>Datei wird übergeben</translation>
    </message>
    <message id="lumd-apps-install-waiting">
        <source>Waiting for Android</source>
        <translation>Wartet auf Android</translation>
    </message>
    <message id="lumd-apps-install-running">
        <source>Installing</source>
        <translation>Wird installiert</translation>
    </message>
    <message id="lumd-apps-install-done">
        <source>Installed</source>
        <translation>Installiert</translation>
    </message>
    <message id="lumd-apps-install-failed">
        <source>Not installed</source>
        <translation>Nicht installiert</translation>
    </message>
    <message id="lumd-apps-install-explain-waiting">
        <source>The app is installed as soon as Android runs. You may close this window.</source>
        <translation>Die App wird installiert, sobald Android läuft. Du kannst dieses Fenster schließen.</translation>
    </message>
    <message id="lumd-apps-install-explain-remote">
        <source>Only files on this device can be installed.</source>
        <translation>Nur Dateien auf diesem Gerät lassen sich installieren.</translation>
    </message>
    <message id="lumd-apps-install-explain-unreadable">
        <source>The file is not there, or you may not read it.</source>
        <translation>Die Datei ist nicht da, oder du darfst sie nicht lesen.</translation>
    </message>
    <message id="lumd-apps-install-explain-refused">
        <source>lumd did not take the file: you may not install apps on this device, or the file could not be copied.</source>
        <translation>lumd hat die Datei nicht angenommen: Du darfst auf diesem Gerät keine Apps installieren, oder die Datei ließ sich nicht kopieren.</translation>
    </message>
    <message id="lumd-apps-install-explain-lost">
        <source>lumd ended in the middle of it. Whether the app was installed shows in the list.</source>
        <translation>lumd wurde mittendrin beendet. Ob die App installiert wurde, zeigt die Liste.</translation>
    </message>
    <message id="lumd-apps-install-next">
        <source>Next file</source>
        <extracomment>On a button</extracomment>
        <translation>Nächste Datei</translation>
    </message>
    <message id="lumd-apps-done">
        <source>Done</source>
        <extracomment>On a button</extracomment>
        <translation>Fertig</translation>
    </message>
    <message id="lumd-apps-back">
        <source>Back</source>
        <extracomment>The button that leads back to the list</extracomment>
        <translation>Zurück</translation>
    </message>
</context>
</TS>
