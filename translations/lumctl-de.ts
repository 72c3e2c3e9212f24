<?xml version="1.0" encoding="utf-8"?>
<!-- SPDX-License-Identifier: BSD-3-Clause -->
<!DOCTYPE TS>
<TS version="2.1" language="de">
<context>
    <name></name>
    <message id="lumctl-answer-y">
        <source>y</source>
        <extracomment>What a user types to agree</extracomment>
        <translation>j</translation>
    </message>
    <message id="lumctl-answer-yes">
        <source>yes</source>
        <extracomment>What a user types to agree</extracomment>
        <translation>ja</translation>
    </message>
    <message id="lumctl-autostart-off">
        <source>%1: does not start on boot</source>
        <extracomment>%1 is an app</extracomment>
        <translation>%1: startet nicht beim Hochfahren</translation>
    </message>
    <message id="lumctl-autostart-on">
        <source>%1: starts on boot</source>
        <extracomment>%1 is an app</extracomment>
        <translation>%1: startet beim Hochfahren</translation>
    </message>
    <message id="lumctl-autostart-summary">
        <source>Lets an app start on boot, or not</source>
        <extracomment>A line of the help</extracomment>
        <translation>Lässt eine App beim Hochfahren starten oder nicht</translation>
    </message>
    <message id="lumctl-autostart-unchanged">
        <source>%1: Android did not change the start on boot</source>
        <extracomment>%1 is an app</extracomment>
        <translation>%1: Android hat den Start beim Hochfahren nicht geändert</translation>
    </message>
    <message id="lumctl-autostart-usage">
        <source>Behind the name comes on or off</source>
        <extracomment>on and off are not translated</extracomment>
        <translation>Hinter dem Namen steht on oder off</translation>
    </message>
    <message id="lumctl-bad-arguments">
        <source>Usage: lumctl %1 %2</source>
        <extracomment>%1 is a command, %2 its arguments</extracomment>
        <translation>Aufruf: lumctl %1 %2</translation>
    </message>
    <message id="lumctl-bad-timeout">
        <source>--timeout takes a number of seconds, 1 at least</source>
        <extracomment>A wrong use</extracomment>
        <translation>--timeout braucht eine Zahl von Sekunden, mindestens 1</translation>
    </message>
    <message id="lumctl-change-accepted">
        <source>%1: handed over to lumd</source>
        <extracomment>%1 is a file or an app</extracomment>
        <translation>%1: an lumd übergeben</translation>
    </message>
    <message id="lumctl-change-interrupted">
        <source>%1: not waited for any longer; the request stays with lumd</source>
        <extracomment>%1 is a file or an app</extracomment>
        <translation>%1: es wird nicht länger gewartet; der Auftrag bleibt bei lumd</translation>
    </message>
    <message id="lumctl-change-lumd-gone">
        <source>%1: lumd has gone before it told the result; if the request was kept for the runtime, it is lost</source>
        <extracomment>%1 is a file or an app</extracomment>
        <translation>%1: lumd ist verschwunden, bevor es das Ergebnis gemeldet hat; war der Auftrag für die Laufzeit vorgemerkt, so ist er verloren</translation>
    </message>
    <message id="lumctl-change-not-requested">
        <source>%1: not asked for any more</source>
        <extracomment>%1 is a file or an app</extracomment>
        <translation>%1: nicht mehr beauftragt</translation>
    </message>
    <message id="lumctl-change-queued">
        <source>%1: waits until the Android runtime is up</source>
        <extracomment>%1 is a file or an app</extracomment>
        <translation>%1: wartet, bis die Android-Laufzeit läuft</translation>
    </message>
    <message id="lumctl-change-timed-out">
        <source>%1: no result within %2 s; the request stays with lumd</source>
        <extracomment>%1 is a file or an app, %2 seconds</extracomment>
        <translation>%1: kein Ergebnis innerhalb von %2 s; der Auftrag bleibt bei lumd</translation>
    </message>
    <message id="lumctl-change-waits-for-runtime">
        <source>%1: waiting for the Android runtime, %2 s</source>
        <extracomment>%1 is a file or an app, %2 seconds</extracomment>
        <translation>%1: wartet auf die Android-Laufzeit, %2 s</translation>
    </message>
    <message id="lumctl-clear-cache-done">
        <source>%1: asked Android to clear the cache</source>
        <extracomment>%1 is an app</extracomment>
        <translation>%1: Android soll den Zwischenspeicher leeren</translation>
    </message>
    <message id="lumctl-clear-cache-summary">
        <source>Clears the cache of an app</source>
        <extracomment>A line of the help</extracomment>
        <translation>Leert den Zwischenspeicher einer App</translation>
    </message>
    <message id="lumctl-clear-data-done">
        <source>%1: asked Android to clear all data</source>
        <extracomment>%1 is an app</extracomment>
        <translation>%1: Android soll alle Daten löschen</translation>
    </message>
    <message id="lumctl-clear-data-kept">
        <source>Nothing was cleared</source>
        <extracomment>The user did not agree</extracomment>
        <translation>Es wurde nichts gelöscht</translation>
    </message>
    <message id="lumctl-clear-data-needs-yes">
        <source>Without a terminal to ask on, clear-data needs --yes</source>
        <extracomment>A wrong use</extracomment>
        <translation>Ohne ein Terminal für die Rückfrage braucht clear-data --yes</translation>
    </message>
    <message id="lumctl-clear-data-question">
        <source>Clear all data of %1 (%2)? [y/N] </source>
        <extracomment>%1 is an app, %2 its package</extracomment>
        <translation>Alle Daten von %1 (%2) löschen? [j/N] </translation>
    </message>
    <message id="lumctl-clear-data-summary">
        <source>Clears all data of an app, after a question</source>
        <extracomment>A line of the help</extracomment>
        <translation>Löscht nach einer Rückfrage alle Daten einer App</translation>
    </message>
    <message id="lumctl-doubtful-app">
        <source>“%1” is not clear; it may be one of these:</source>
        <extracomment>%1 is what the user typed; a list follows</extracomment>
        <translation>„%1“ ist nicht eindeutig; gemeint sein kann:</translation>
    </message>
    <message id="lumctl-failed">
        <source>lumd: %1</source>
        <extracomment>%1 is an error in English</extracomment>
        <translation>lumd: %1</translation>
    </message>
    <message id="lumctl-info-boot">
        <source>Start on boot:</source>
        <extracomment>A label</extracomment>
        <translation>Start beim Hochfahren:</translation>
    </message>
    <message id="lumctl-info-cache">
        <source>Cache:</source>
        <extracomment>A label</extracomment>
        <translation>Zwischenspeicher:</translation>
    </message>
    <message id="lumctl-info-code">
        <source>Code:</source>
        <extracomment>A label</extracomment>
        <translation>Programm:</translation>
    </message>
    <message id="lumctl-info-data">
        <source>Data:</source>
        <extracomment>A label</extracomment>
        <translation>Daten:</translation>
    </message>
    <message id="lumctl-info-desktop-file">
        <source>Desktop file:</source>
        <extracomment>A label</extracomment>
        <translation>Desktop-Datei:</translation>
    </message>
    <message id="lumctl-info-hidden">
        <source>Hidden:</source>
        <extracomment>A label</extracomment>
        <translation>Verborgen:</translation>
    </message>
    <message id="lumctl-info-launcher">
        <source>Launcher:</source>
        <extracomment>A label</extracomment>
        <translation>Starter:</translation>
    </message>
    <message id="lumctl-info-package">
        <source>Package:</source>
        <extracomment>A label</extracomment>
        <translation>Paket:</translation>
    </message>
    <message id="lumctl-info-summary">
        <source>Shows an app: launchers, sizes, start on boot</source>
        <extracomment>A line of the help</extracomment>
        <translation>Zeigt eine App: Starter, Größen, Start beim Hochfahren</translation>
    </message>
    <message id="lumctl-info-version">
        <source>Version:</source>
        <extracomment>A label</extracomment>
        <translation>Version:</translation>
    </message>
    <message id="lumctl-install-done">
        <source>%1: installed as %2</source>
        <extracomment>%1 is a file, %2 a package</extracomment>
        <translation>%1: installiert als %2</translation>
    </message>
    <message id="lumctl-install-failed">
        <source>%1: not installed</source>
        <extracomment>%1 is a file</extracomment>
        <translation>%1: nicht installiert</translation>
    </message>
    <message id="lumctl-install-failed-because">
        <source>%1: not installed: %2</source>
        <extracomment>%1 is a file, %2 why</extracomment>
        <translation>%1: nicht installiert: %2</translation>
    </message>
    <message id="lumctl-install-no-file">
        <source>no such file</source>
        <extracomment>Behind the name of a file</extracomment>
        <translation>keine solche Datei</translation>
    </message>
    <message id="lumctl-install-not-readable">
        <source>you may not read it</source>
        <extracomment>Behind the name of a file</extracomment>
        <translation>keine Leseberechtigung</translation>
    </message>
    <message id="lumctl-install-not-regular">
        <source>not a regular file</source>
        <extracomment>Behind the name of a file</extracomment>
        <translation>keine gewöhnliche Datei</translation>
    </message>
    <message id="lumctl-install-not-taken">
        <source>%1: lumd could not take the file; its journal tells why</source>
        <extracomment>%1 is a file</extracomment>
        <translation>%1: lumd konnte die Datei nicht übernehmen; warum, steht in seinem Journal</translation>
    </message>
    <message id="lumctl-install-refused">
        <source>%1: lumd did not take the file; installing needs root or the group privileged, unless the device's policy allows it to all</source>
        <extracomment>%1 is a file</extracomment>
        <translation>%1: lumd hat die Datei nicht angenommen; zum Installieren braucht es root oder die Gruppe privileged, es sei denn, das Gerät erlaubt es allen</translation>
    </message>
    <message id="lumctl-install-summary">
        <source>Installs apk files and waits for the result</source>
        <extracomment>A line of the help</extracomment>
        <translation>Installiert apk-Dateien und wartet auf das Ergebnis</translation>
    </message>
    <message id="lumctl-install-under-way">
        <source>%1: installing, %2 s</source>
        <extracomment>%1 is a file, %2 seconds</extracomment>
        <translation>%1: wird installiert, %2 s</translation>
    </message>
    <message id="lumctl-intent-bad-extra">
        <source>“%1” is no extra: TYPE:KEY=VALUE, where TYPE is bool, int, long, double or string</source>
        <extracomment>%1 is what the user typed</extracomment>
        <translation>„%1“ ist kein Zusatzwert: TYPE:KEY=VALUE, mit bool, int, long, double oder string als TYPE</translation>
    </message>
    <message id="lumctl-intent-class-alone">
        <source>--class counts only together with --package</source>
        <extracomment>A wrong use</extracomment>
        <translation>--class gilt nur zusammen mit --package</translation>
    </message>
    <message id="lumctl-intent-done">
        <source>Starting %1</source>
        <extracomment>%1 is an intent's action</extracomment>
        <translation>%1 wird gestartet</translation>
    </message>
    <message id="lumctl-intent-no-action">
        <source>An intent needs an --action</source>
        <extracomment>A wrong use</extracomment>
        <translation>Ein Intent braucht eine --action</translation>
    </message>
    <message id="lumctl-intent-summary">
        <source>Starts an activity by an Android intent</source>
        <extracomment>A line of the help</extracomment>
        <translation>Startet eine Aktivität durch einen Android-Intent</translation>
    </message>
    <message id="lumctl-launch-done">
        <source>Starting %1</source>
        <extracomment>%1 is an app</extracomment>
        <translation>%1 wird gestartet</translation>
    </message>
    <message id="lumctl-launch-queued">
        <source>%1, when the Android runtime is up</source>
        <extracomment>%1 is what happens: Starting Maps</extracomment>
        <translation>%1, sobald die Android-Laufzeit läuft</translation>
    </message>
    <message id="lumctl-launch-summary">
        <source>Starts an app</source>
        <extracomment>A line of the help</extracomment>
        <translation>Startet eine App</translation>
    </message>
    <message id="lumctl-licences-done">
        <source>Opening Android's legal information</source>
        <extracomment>What happens</extracomment>
        <translation>Androids rechtliche Hinweise werden geöffnet</translation>
    </message>
    <message id="lumctl-licences-summary">
        <source>Opens Android's legal information</source>
        <extracomment>A line of the help</extracomment>
        <translation>Öffnet Androids rechtliche Hinweise</translation>
    </message>
    <message id="lumctl-list-empty">
        <source>There are no Android apps</source>
        <extracomment>In place of a list</extracomment>
        <translation>Es gibt keine Android-Apps</translation>
    </message>
    <message id="lumctl-list-name">
        <source>NAME</source>
        <extracomment>The heading of a column</extracomment>
        <translation>NAME</translation>
    </message>
    <message id="lumctl-list-package">
        <source>PACKAGE</source>
        <extracomment>The heading of a column</extracomment>
        <translation>PAKET</translation>
    </message>
    <message id="lumctl-list-summary">
        <source>Lists the apps and their launchers</source>
        <extracomment>A line of the help</extracomment>
        <translation>Listet die Apps und ihre Starter auf</translation>
    </message>
    <message id="lumctl-list-version">
        <source>VERSION</source>
        <extracomment>The heading of a column</extracomment>
        <translation>VERSION</translation>
    </message>
    <message id="lumctl-monitor-summary">
        <source>Prints what happens, until it is interrupted</source>
        <extracomment>A line of the help</extracomment>
        <translation>Gibt aus, was geschieht, bis es unterbrochen wird</translation>
    </message>
    <message id="lumctl-no">
        <source>no</source>
        <extracomment>Behind a label</extracomment>
        <translation>nein</translation>
    </message>
    <message id="lumctl-no-lumd">
        <source>lumd is not running</source>
        <extracomment>An error</extracomment>
        <translation>lumd läuft nicht</translation>
    </message>
    <message id="lumctl-no-such-app">
        <source>No app is called “%1”</source>
        <extracomment>%1 is what the user typed</extracomment>
        <translation>Keine App heißt „%1“</translation>
    </message>
    <message id="lumctl-no-such-command">
        <source>There is no command “%1”</source>
        <extracomment>%1 is what the user typed</extracomment>
        <translation>Es gibt keinen Befehl „%1“</translation>
    </message>
    <message id="lumctl-off">
        <source>off</source>
        <extracomment>Behind a label</extracomment>
        <translation>aus</translation>
    </message>
    <message id="lumctl-on">
        <source>on</source>
        <extracomment>Behind a label</extracomment>
        <translation>ein</translation>
    </message>
    <message id="lumctl-open-done">
        <source>Opening %1</source>
        <extracomment>%1 is a URL or a file</extracomment>
        <translation>%1 wird geöffnet</translation>
    </message>
    <message id="lumctl-open-no-file">
        <source>%1: neither a URL nor a file</source>
        <extracomment>%1 is what the user typed</extracomment>
        <translation>%1: weder eine URL noch eine Datei</translation>
    </message>
    <message id="lumctl-open-summary">
        <source>Opens a URL or a file in an Android app</source>
        <extracomment>A line of the help</extracomment>
        <translation>Öffnet eine URL oder eine Datei in einer Android-App</translation>
    </message>
    <message id="lumctl-option-action">
        <source>The action, android.intent.action.VIEW for instance</source>
        <extracomment>An option's help</extracomment>
        <translation>Die Aktion, etwa android.intent.action.VIEW</translation>
    </message>
    <message id="lumctl-option-category">
        <source>A category</source>
        <extracomment>An option's help</extracomment>
        <translation>Eine Kategorie</translation>
    </message>
    <message id="lumctl-option-class">
        <source>The activity's class, together with --package</source>
        <extracomment>An option's help</extracomment>
        <translation>Die Klasse der Aktivität, zusammen mit --package</translation>
    </message>
    <message id="lumctl-option-data">
        <source>A URL, or the absolute path of a file</source>
        <extracomment>An option's help</extracomment>
        <translation>Eine URL oder der absolute Pfad einer Datei</translation>
    </message>
    <message id="lumctl-option-exact">
        <source>Take NAME for a package as it stands, also one without a launcher</source>
        <extracomment>An option's help</extracomment>
        <translation>NAME ist genau so ein Paket, auch eines ohne Starter</translation>
    </message>
    <message id="lumctl-option-extra">
        <source>A value; TYPE is bool, int, long, double or string. As often as needed</source>
        <extracomment>An option's help</extracomment>
        <translation>Ein Zusatzwert; TYPE ist bool, int, long, double oder string. Beliebig oft</translation>
    </message>
    <message id="lumctl-option-help">
        <source>Show this</source>
        <extracomment>An option's help</extracomment>
        <translation>Dies anzeigen</translation>
    </message>
    <message id="lumctl-option-json">
        <source>Print one JSON document, or one line for each event</source>
        <extracomment>An option's help</extracomment>
        <translation>Ein JSON-Dokument ausgeben, oder eine Zeile je Ereignis</translation>
    </message>
    <message id="lumctl-option-no-wait">
        <source>Do not wait for the result</source>
        <extracomment>An option's help</extracomment>
        <translation>Nicht auf das Ergebnis warten</translation>
    </message>
    <message id="lumctl-option-open-package">
        <source>The app that shall open it</source>
        <extracomment>An option's help</extracomment>
        <translation>Die App, die es öffnen soll</translation>
    </message>
    <message id="lumctl-option-package">
        <source>The package that shall act</source>
        <extracomment>An option's help</extracomment>
        <translation>Das Paket, das handeln soll</translation>
    </message>
    <message id="lumctl-option-timeout">
        <source>The longest that all of it may take</source>
        <extracomment>An option's help</extracomment>
        <translation>Wie lange alles höchstens dauern darf</translation>
    </message>
    <message id="lumctl-option-type">
        <source>The MIME type of the data</source>
        <extracomment>An option's help</extracomment>
        <translation>Der MIME-Typ der Daten</translation>
    </message>
    <message id="lumctl-option-yes">
        <source>Do not ask</source>
        <extracomment>An option's help</extracomment>
        <translation>Nicht nachfragen</translation>
    </message>
    <message id="lumctl-refused">
        <source>Not allowed: lumd is for root and the members of the group users</source>
        <extracomment>An error</extracomment>
        <translation>Nicht erlaubt: lumd steht root und den Mitgliedern der Gruppe users zur Verfügung</translation>
    </message>
    <message id="lumctl-remove-done">
        <source>%1: removed</source>
        <extracomment>%1 is an app</extracomment>
        <translation>%1: entfernt</translation>
    </message>
    <message id="lumctl-remove-failed">
        <source>%1: Android did not remove it</source>
        <extracomment>%1 is an app</extracomment>
        <translation>%1: Android hat die App nicht entfernt</translation>
    </message>
    <message id="lumctl-remove-refused">
        <source>%1: you may not remove apps; that needs root or the group privileged, unless the device's policy allows it to all</source>
        <extracomment>%1 is an app</extracomment>
        <translation>%1: keine Berechtigung zum Entfernen; dafür braucht es root oder die Gruppe privileged, es sei denn, das Gerät erlaubt es allen</translation>
    </message>
    <message id="lumctl-remove-summary">
        <source>Removes apps with their data and waits for the result</source>
        <extracomment>A line of the help</extracomment>
        <translation>Entfernt Apps samt Daten und wartet auf das Ergebnis</translation>
    </message>
    <message id="lumctl-remove-under-way">
        <source>%1: removing, %2 s</source>
        <extracomment>%1 is an app, %2 seconds</extracomment>
        <translation>%1: wird entfernt, %2 s</translation>
    </message>
    <message id="lumctl-runtime-disabled">
        <source>The Android runtime does not start on boot</source>
        <extracomment>What was asked for</extracomment>
        <translation>Die Android-Laufzeit startet nicht beim Hochfahren</translation>
    </message>
    <message id="lumctl-runtime-down">
        <source>The Android runtime is not running; “lumctl runtime start” starts it</source>
        <extracomment>An error</extracomment>
        <translation>Die Android-Laufzeit läuft nicht; „lumctl runtime start“ startet sie</translation>
    </message>
    <message id="lumctl-runtime-enabled">
        <source>The Android runtime starts on boot</source>
        <extracomment>What was asked for</extracomment>
        <translation>Die Android-Laufzeit startet beim Hochfahren</translation>
    </message>
    <message id="lumctl-runtime-starting">
        <source>Starting the Android runtime</source>
        <extracomment>What happens</extracomment>
        <translation>Die Android-Laufzeit wird gestartet</translation>
    </message>
    <message id="lumctl-runtime-state">
        <source>The Android runtime is %1</source>
        <extracomment>%1 is systemd's word, active for instance</extracomment>
        <translation>Die Android-Laufzeit ist %1</translation>
    </message>
    <message id="lumctl-runtime-stopping">
        <source>Stopping the Android runtime</source>
        <extracomment>What happens</extracomment>
        <translation>Die Android-Laufzeit wird angehalten</translation>
    </message>
    <message id="lumctl-runtime-summary">
        <source>Starts or stops the Android runtime, or shows its state</source>
        <extracomment>A line of the help</extracomment>
        <translation>Startet die Android-Laufzeit, hält sie an oder zeigt ihren Zustand</translation>
    </message>
    <message id="lumctl-runtime-timed-out">
        <source>The Android runtime is still %1</source>
        <extracomment>%1 is systemd's word, activating for instance</extracomment>
        <translation>Die Android-Laufzeit ist immer noch %1</translation>
    </message>
    <message id="lumctl-runtime-usage">
        <source>runtime takes start, stop, enable, disable or status</source>
        <extracomment>A wrong use</extracomment>
        <translation>runtime braucht start, stop, enable, disable oder status</translation>
    </message>
    <message id="lumctl-see-help">
        <source>see --help</source>
        <extracomment>In brackets behind an error</extracomment>
        <translation>siehe --help</translation>
    </message>
    <message id="lumctl-settings-done">
        <source>Opening the settings of %1</source>
        <extracomment>%1 is an app</extracomment>
        <translation>Die Einstellungen von %1 werden geöffnet</translation>
    </message>
    <message id="lumctl-settings-summary">
        <source>Opens Android's settings page of an app</source>
        <extracomment>A line of the help</extracomment>
        <translation>Öffnet Androids Einstellungsseite einer App</translation>
    </message>
    <message id="lumctl-status-changes">
        <source>Package changes:</source>
        <extracomment>A label</extracomment>
        <translation>Paketänderungen:</translation>
    </message>
    <message id="lumctl-status-level">
        <source>Android level:</source>
        <extracomment>A label; the number of the API</extracomment>
        <translation>Android-Stufe:</translation>
    </message>
    <message id="lumctl-status-not-ready">
        <source>are kept until the runtime is up</source>
        <extracomment>Of package changes</extracomment>
        <translation>werden vorgemerkt, bis die Laufzeit läuft</translation>
    </message>
    <message id="lumctl-status-pending-changes">
        <source>Changes kept:</source>
        <extracomment>A label</extracomment>
        <translation>Vorgemerkte Änderungen:</translation>
    </message>
    <message id="lumctl-status-pending-launches">
        <source>Launches kept:</source>
        <extracomment>A label</extracomment>
        <translation>Vorgemerkte Starts:</translation>
    </message>
    <message id="lumctl-status-ready">
        <source>are handed over at once</source>
        <extracomment>Of package changes</extracomment>
        <translation>werden sofort übergeben</translation>
    </message>
    <message id="lumctl-status-runtime">
        <source>Android runtime:</source>
        <extracomment>A label</extracomment>
        <translation>Android-Laufzeit:</translation>
    </message>
    <message id="lumctl-status-summary">
        <source>Shows the runtime's state and what waits for it</source>
        <extracomment>A line of the help</extracomment>
        <translation>Zeigt den Zustand der Laufzeit und was auf sie wartet</translation>
    </message>
    <message id="lumctl-status-version">
        <source>lumd:</source>
        <extracomment>A label; its version follows</extracomment>
        <translation>lumd:</translation>
    </message>
    <message id="lumctl-stop-done">
        <source>%1: asked Android to stop it</source>
        <extracomment>%1 is an app</extracomment>
        <translation>%1: Android soll die App beenden</translation>
    </message>
    <message id="lumctl-stop-summary">
        <source>Stops an app</source>
        <extracomment>A line of the help</extracomment>
        <translation>Beendet eine App</translation>
    </message>
    <message id="lumctl-timed-out">
        <source>lumd does not answer within the time limit</source>
        <extracomment>An error</extracomment>
        <translation>lumd antwortet nicht innerhalb der Zeitgrenze</translation>
    </message>
    <message id="lumctl-too-old">
        <source>This lumd is too old: it does not have what is needed</source>
        <extracomment>An error</extracomment>
        <translation>Dieses lumd ist zu alt: ihm fehlt, was gebraucht wird</translation>
    </message>
    <message id="lumctl-unknown">
        <source>unknown</source>
        <extracomment>Behind a label</extracomment>
        <translation>unbekannt</translation>
    </message>
    <message id="lumctl-usage">
        <source>Usage: lumctl COMMAND [OPTION...] [ARGUMENT...]</source>
        <extracomment>The beginning of the help</extracomment>
        <translation>Aufruf: lumctl BEFEHL [OPTION...] [ARGUMENT...]</translation>
    </message>
    <message id="lumctl-usage-more">
        <source>Options of all commands: --json, --timeout SECONDS, --help. More: lumctl COMMAND --help, man lumctl</source>
        <extracomment>The end of the help</extracomment>
        <translation>Optionen aller Befehle: --json, --timeout SECONDS, --help. Mehr: lumctl BEFEHL --help, man lumctl</translation>
    </message>
    <message id="lumctl-yes">
        <source>yes</source>
        <extracomment>Behind a label</extracomment>
        <translation>ja</translation>
    </message>
</context>
</TS>
