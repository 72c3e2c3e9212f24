<?xml version="1.0" encoding="utf-8"?>
<!-- SPDX-License-Identifier: BSD-3-Clause -->
<!DOCTYPE TS>
<TS version="2.1" language="en">
<context>
    <name></name>
    <message id="lumctl-answer-y">
        <source>y</source>
        <extracomment>What a user types to agree</extracomment>
        <translation>y</translation>
    </message>
    <message id="lumctl-answer-yes">
        <source>yes</source>
        <extracomment>What a user types to agree</extracomment>
        <translation>yes</translation>
    </message>
    <message id="lumctl-autostart-off">
        <source>%1: does not start on boot</source>
        <extracomment>%1 is an app</extracomment>
        <translation>%1: does not start on boot</translation>
    </message>
    <message id="lumctl-autostart-on">
        <source>%1: starts on boot</source>
        <extracomment>%1 is an app</extracomment>
        <translation>%1: starts on boot</translation>
    </message>
    <message id="lumctl-autostart-summary">
        <source>Lets an app start on boot, or not</source>
        <extracomment>A line of the help</extracomment>
        <translation>Lets an app start on boot, or not</translation>
    </message>
    <message id="lumctl-autostart-unchanged">
        <source>%1: Android did not change the start on boot</source>
        <extracomment>%1 is an app</extracomment>
        <translation>%1: Android did not change the start on boot</translation>
    </message>
    <message id="lumctl-autostart-usage">
        <source>Behind the name comes on or off</source>
        <extracomment>on and off are not translated</extracomment>
        <translation>Behind the name comes on or off</translation>
    </message>
    <message id="lumctl-bad-arguments">
        <source>Usage: lumctl %1 %2</source>
        <extracomment>%1 is a command, %2 its arguments</extracomment>
        <translation>Usage: lumctl %1 %2</translation>
    </message>
    <message id="lumctl-bad-timeout">
        <source>--timeout takes a number of seconds, 1 at least</source>
        <extracomment>A wrong use</extracomment>
        <translation>--timeout takes a number of seconds, 1 at least</translation>
    </message>
    <message id="lumctl-change-accepted">
        <source>%1: handed over to lumd</source>
        <extracomment>%1 is a file or an app</extracomment>
        <translation>%1: handed over to lumd</translation>
    </message>
    <message id="lumctl-change-interrupted">
        <source>%1: not waited for any longer; the request stays with lumd</source>
        <extracomment>%1 is a file or an app</extracomment>
        <translation>%1: not waited for any longer; the request stays with lumd</translation>
    </message>
    <message id="lumctl-change-lumd-gone">
        <source>%1: lumd has gone before it told the result; if the request was kept for the runtime, it is lost</source>
        <extracomment>%1 is a file or an app</extracomment>
        <translation>%1: lumd has gone before it told the result; if the request was kept for the runtime, it is lost</translation>
    </message>
    <message id="lumctl-change-not-requested">
        <source>%1: not asked for any more</source>
        <extracomment>%1 is a file or an app</extracomment>
        <translation>%1: not asked for any more</translation>
    </message>
    <message id="lumctl-change-queued">
        <source>%1: waits until the Android runtime is up</source>
        <extracomment>%1 is a file or an app</extracomment>
        <translation>%1: waits until the Android runtime is up</translation>
    </message>
    <message id="lumctl-change-timed-out">
        <source>%1: no result within %2 s; the request stays with lumd</source>
        <extracomment>%1 is a file or an app, %2 seconds</extracomment>
        <translation>%1: no result within %2 s; the request stays with lumd</translation>
    </message>
    <message id="lumctl-change-waits-for-runtime">
        <source>%1: waiting for the Android runtime, %2 s</source>
        <extracomment>%1 is a file or an app, %2 seconds</extracomment>
        <translation>%1: waiting for the Android runtime, %2 s</translation>
    </message>
    <message id="lumctl-clear-cache-done">
        <source>%1: asked Android to clear the cache</source>
        <extracomment>%1 is an app</extracomment>
        <translation>%1: asked Android to clear the cache</translation>
    </message>
    <message id="lumctl-clear-cache-summary">
        <source>Clears the cache of an app</source>
        <extracomment>A line of the help</extracomment>
        <translation>Clears the cache of an app</translation>
    </message>
    <message id="lumctl-clear-data-done">
        <source>%1: asked Android to clear all data</source>
        <extracomment>%1 is an app</extracomment>
        <translation>%1: asked Android to clear all data</translation>
    </message>
    <message id="lumctl-clear-data-kept">
        <source>Nothing was cleared</source>
        <extracomment>The user did not agree</extracomment>
        <translation>Nothing was cleared</translation>
    </message>
    <message id="lumctl-clear-data-needs-yes">
        <source>Without a terminal to ask on, clear-data needs --yes</source>
        <extracomment>A wrong use</extracomment>
        <translation>Without a terminal to ask on, clear-data needs --yes</translation>
    </message>
    <message id="lumctl-clear-data-question">
        <source>Clear all data of %1 (%2)? [y/N] </source>
        <extracomment>%1 is an app, %2 its package</extracomment>
        <translation>Clear all data of %1 (%2)? [y/N] </translation>
    </message>
    <message id="lumctl-clear-data-summary">
        <source>Clears all data of an app, after a question</source>
        <extracomment>A line of the help</extracomment>
        <translation>Clears all data of an app, after a question</translation>
    </message>
    <message id="lumctl-doubtful-app">
        <source>“%1” is not clear; it may be one of these:</source>
        <extracomment>%1 is what the user typed; a list follows</extracomment>
        <translation>“%1” is not clear; it may be one of these:</translation>
    </message>
    <message id="lumctl-failed">
        <source>lumd: %1</source>
        <extracomment>%1 is an error in English</extracomment>
        <translation>lumd: %1</translation>
    </message>
    <message id="lumctl-info-boot">
        <source>Start on boot:</source>
        <extracomment>A label</extracomment>
        <translation>Start on boot:</translation>
    </message>
    <message id="lumctl-info-cache">
        <source>Cache:</source>
        <extracomment>A label</extracomment>
        <translation>Cache:</translation>
    </message>
    <message id="lumctl-info-code">
        <source>Code:</source>
        <extracomment>A label</extracomment>
        <translation>Code:</translation>
    </message>
    <message id="lumctl-info-data">
        <source>Data:</source>
        <extracomment>A label</extracomment>
        <translation>Data:</translation>
    </message>
    <message id="lumctl-info-desktop-file">
        <source>Desktop file:</source>
        <extracomment>A label</extracomment>
        <translation>Desktop file:</translation>
    </message>
    <message id="lumctl-info-hidden">
        <source>Hidden:</source>
        <extracomment>A label</extracomment>
        <translation>Hidden:</translation>
    </message>
    <message id="lumctl-info-launcher">
        <source>Launcher:</source>
        <extracomment>A label</extracomment>
        <translation>Launcher:</translation>
    </message>
    <message id="lumctl-info-package">
        <source>Package:</source>
        <extracomment>A label</extracomment>
        <translation>Package:</translation>
    </message>
    <message id="lumctl-info-summary">
        <source>Shows an app: launchers, sizes, start on boot</source>
        <extracomment>A line of the help</extracomment>
        <translation>Shows an app: launchers, sizes, start on boot</translation>
    </message>
    <message id="lumctl-info-version">
        <source>Version:</source>
        <extracomment>A label</extracomment>
        <translation>Version:</translation>
    </message>
    <message id="lumctl-install-done">
        <source>%1: installed as %2</source>
        <extracomment>%1 is a file, %2 a package</extracomment>
        <translation>%1: installed as %2</translation>
    </message>
    <message id="lumctl-install-failed">
        <source>%1: not installed</source>
        <extracomment>%1 is a file</extracomment>
        <translation>%1: not installed</translation>
    </message>
    <message id="lumctl-install-failed-because">
        <source>%1: not installed: %2</source>
        <extracomment>%1 is a file, %2 why</extracomment>
        <translation>%1: not installed: %2</translation>
    </message>
    <message id="lumctl-install-no-file">
        <source>no such file</source>
        <extracomment>Behind the name of a file</extracomment>
        <translation>no such file</translation>
    </message>
    <message id="lumctl-install-not-readable">
        <source>you may not read it</source>
        <extracomment>Behind the name of a file</extracomment>
        <translation>you may not read it</translation>
    </message>
    <message id="lumctl-install-not-regular">
        <source>not a regular file</source>
        <extracomment>Behind the name of a file</extracomment>
        <translation>not a regular file</translation>
    </message>
    <message id="lumctl-install-not-taken">
        <source>%1: lumd could not take the file; its journal tells why</source>
        <extracomment>%1 is a file</extracomment>
        <translation>%1: lumd could not take the file; its journal tells why</translation>
    </message>
    <message id="lumctl-install-refused">
        <source>%1: lumd did not take the file; installing needs root or the group privileged, unless the device's policy allows it to all</source>
        <extracomment>%1 is a file</extracomment>
        <translation>%1: lumd did not take the file; installing needs root or the group privileged, unless the device's policy allows it to all</translation>
    </message>
    <message id="lumctl-install-summary">
        <source>Installs apk files and waits for the result</source>
        <extracomment>A line of the help</extracomment>
        <translation>Installs apk files and waits for the result</translation>
    </message>
    <message id="lumctl-install-under-way">
        <source>%1: installing, %2 s</source>
        <extracomment>%1 is a file, %2 seconds</extracomment>
        <translation>%1: installing, %2 s</translation>
    </message>
    <message id="lumctl-intent-bad-extra">
        <source>“%1” is no extra: TYPE:KEY=VALUE, where TYPE is bool, int, long, double or string</source>
        <extracomment>%1 is what the user typed</extracomment>
        <translation>“%1” is no extra: TYPE:KEY=VALUE, where TYPE is bool, int, long, double or string</translation>
    </message>
    <message id="lumctl-intent-class-alone">
        <source>--class counts only together with --package</source>
        <extracomment>A wrong use</extracomment>
        <translation>--class counts only together with --package</translation>
    </message>
    <message id="lumctl-intent-done">
        <source>Starting %1</source>
        <extracomment>%1 is an intent's action</extracomment>
        <translation>Starting %1</translation>
    </message>
    <message id="lumctl-intent-no-action">
        <source>An intent needs an --action</source>
        <extracomment>A wrong use</extracomment>
        <translation>An intent needs an --action</translation>
    </message>
    <message id="lumctl-intent-summary">
        <source>Starts an activity by an Android intent</source>
        <extracomment>A line of the help</extracomment>
        <translation>Starts an activity by an Android intent</translation>
    </message>
    <message id="lumctl-launch-done">
        <source>Starting %1</source>
        <extracomment>%1 is an app</extracomment>
        <translation>Starting %1</translation>
    </message>
    <message id="lumctl-launch-queued">
        <source>%1, when the Android runtime is up</source>
        <extracomment>%1 is what happens: Starting Maps</extracomment>
        <translation>%1, when the Android runtime is up</translation>
    </message>
    <message id="lumctl-launch-summary">
        <source>Starts an app</source>
        <extracomment>A line of the help</extracomment>
        <translation>Starts an app</translation>
    </message>
    <message id="lumctl-licences-done">
        <source>Opening Android's legal information</source>
        <extracomment>What happens</extracomment>
        <translation>Opening Android's legal information</translation>
    </message>
    <message id="lumctl-licences-summary">
        <source>Opens Android's legal information</source>
        <extracomment>A line of the help</extracomment>
        <translation>Opens Android's legal information</translation>
    </message>
    <message id="lumctl-list-empty">
        <source>There are no Android apps</source>
        <extracomment>In place of a list</extracomment>
        <translation>There are no Android apps</translation>
    </message>
    <message id="lumctl-list-name">
        <source>NAME</source>
        <extracomment>The heading of a column</extracomment>
        <translation>NAME</translation>
    </message>
    <message id="lumctl-list-package">
        <source>PACKAGE</source>
        <extracomment>The heading of a column</extracomment>
        <translation>PACKAGE</translation>
    </message>
    <message id="lumctl-list-summary">
        <source>Lists the apps and their launchers</source>
        <extracomment>A line of the help</extracomment>
        <translation>Lists the apps and their launchers</translation>
    </message>
    <message id="lumctl-list-version">
        <source>VERSION</source>
        <extracomment>The heading of a column</extracomment>
        <translation>VERSION</translation>
    </message>
    <message id="lumctl-monitor-summary">
        <source>Prints what happens, until it is interrupted</source>
        <extracomment>A line of the help</extracomment>
        <translation>Prints what happens, until it is interrupted</translation>
    </message>
    <message id="lumctl-no">
        <source>no</source>
        <extracomment>Behind a label</extracomment>
        <translation>no</translation>
    </message>
    <message id="lumctl-no-lumd">
        <source>lumd is not running</source>
        <extracomment>An error</extracomment>
        <translation>lumd is not running</translation>
    </message>
    <message id="lumctl-no-such-app">
        <source>No app is called “%1”</source>
        <extracomment>%1 is what the user typed</extracomment>
        <translation>No app is called “%1”</translation>
    </message>
    <message id="lumctl-no-such-command">
        <source>There is no command “%1”</source>
        <extracomment>%1 is what the user typed</extracomment>
        <translation>There is no command “%1”</translation>
    </message>
    <message id="lumctl-off">
        <source>off</source>
        <extracomment>Behind a label</extracomment>
        <translation>off</translation>
    </message>
    <message id="lumctl-on">
        <source>on</source>
        <extracomment>Behind a label</extracomment>
        <translation>on</translation>
    </message>
    <message id="lumctl-open-done">
        <source>Opening %1</source>
        <extracomment>%1 is a URL or a file</extracomment>
        <translation>Opening %1</translation>
    </message>
    <message id="lumctl-open-no-file">
        <source>%1: neither a URL nor a file</source>
        <extracomment>%1 is what the user typed</extracomment>
        <translation>%1: neither a URL nor a file</translation>
    </message>
    <message id="lumctl-open-summary">
        <source>Opens a URL or a file in an Android app</source>
        <extracomment>A line of the help</extracomment>
        <translation>Opens a URL or a file in an Android app</translation>
    </message>
    <message id="lumctl-option-action">
        <source>The action, android.intent.action.VIEW for instance</source>
        <extracomment>An option's help</extracomment>
        <translation>The action, android.intent.action.VIEW for instance</translation>
    </message>
    <message id="lumctl-option-category">
        <source>A category</source>
        <extracomment>An option's help</extracomment>
        <translation>A category</translation>
    </message>
    <message id="lumctl-option-class">
        <source>The activity's class, together with --package</source>
        <extracomment>An option's help</extracomment>
        <translation>The activity's class, together with --package</translation>
    </message>
    <message id="lumctl-option-data">
        <source>A URL, or the absolute path of a file</source>
        <extracomment>An option's help</extracomment>
        <translation>A URL, or the absolute path of a file</translation>
    </message>
    <message id="lumctl-option-exact">
        <source>Take NAME for a package as it stands, also one without a launcher</source>
        <extracomment>An option's help</extracomment>
        <translation>Take NAME for a package as it stands, also one without a launcher</translation>
    </message>
    <message id="lumctl-option-extra">
        <source>A value; TYPE is bool, int, long, double or string. As often as needed</source>
        <extracomment>An option's help</extracomment>
        <translation>A value; TYPE is bool, int, long, double or string. As often as needed</translation>
    </message>
    <message id="lumctl-option-help">
        <source>Show this</source>
        <extracomment>An option's help</extracomment>
        <translation>Show this</translation>
    </message>
    <message id="lumctl-option-json">
        <source>Print one JSON document, or one line for each event</source>
        <extracomment>An option's help</extracomment>
        <translation>Print one JSON document, or one line for each event</translation>
    </message>
    <message id="lumctl-option-no-wait">
        <source>Do not wait for the result</source>
        <extracomment>An option's help</extracomment>
        <translation>Do not wait for the result</translation>
    </message>
    <message id="lumctl-option-open-package">
        <source>The app that shall open it</source>
        <extracomment>An option's help</extracomment>
        <translation>The app that shall open it</translation>
    </message>
    <message id="lumctl-option-package">
        <source>The package that shall act</source>
        <extracomment>An option's help</extracomment>
        <translation>The package that shall act</translation>
    </message>
    <message id="lumctl-option-timeout">
        <source>The longest that all of it may take</source>
        <extracomment>An option's help</extracomment>
        <translation>The longest that all of it may take</translation>
    </message>
    <message id="lumctl-option-type">
        <source>The MIME type of the data</source>
        <extracomment>An option's help</extracomment>
        <translation>The MIME type of the data</translation>
    </message>
    <message id="lumctl-option-yes">
        <source>Do not ask</source>
        <extracomment>An option's help</extracomment>
        <translation>Do not ask</translation>
    </message>
    <message id="lumctl-refused">
        <source>Not allowed: lumd is for root and the members of the group users</source>
        <extracomment>An error</extracomment>
        <translation>Not allowed: lumd is for root and the members of the group users</translation>
    </message>
    <message id="lumctl-remove-done">
        <source>%1: removed</source>
        <extracomment>%1 is an app</extracomment>
        <translation>%1: removed</translation>
    </message>
    <message id="lumctl-remove-failed">
        <source>%1: Android did not remove it</source>
        <extracomment>%1 is an app</extracomment>
        <translation>%1: Android did not remove it</translation>
    </message>
    <message id="lumctl-remove-refused">
        <source>%1: you may not remove apps; that needs root or the group privileged, unless the device's policy allows it to all</source>
        <extracomment>%1 is an app</extracomment>
        <translation>%1: you may not remove apps; that needs root or the group privileged, unless the device's policy allows it to all</translation>
    </message>
    <message id="lumctl-remove-summary">
        <source>Removes apps with their data and waits for the result</source>
        <extracomment>A line of the help</extracomment>
        <translation>Removes apps with their data and waits for the result</translation>
    </message>
    <message id="lumctl-remove-under-way">
        <source>%1: removing, %2 s</source>
        <extracomment>%1 is an app, %2 seconds</extracomment>
        <translation>%1: removing, %2 s</translation>
    </message>
    <message id="lumctl-runtime-disabled">
        <source>The Android runtime does not start on boot</source>
        <extracomment>What was asked for</extracomment>
        <translation>The Android runtime does not start on boot</translation>
    </message>
    <message id="lumctl-runtime-down">
        <source>The Android runtime is not running; “lumctl runtime start” starts it</source>
        <extracomment>An error</extracomment>
        <translation>The Android runtime is not running; “lumctl runtime start” starts it</translation>
    </message>
    <message id="lumctl-runtime-enabled">
        <source>The Android runtime starts on boot</source>
        <extracomment>What was asked for</extracomment>
        <translation>The Android runtime starts on boot</translation>
    </message>
    <message id="lumctl-runtime-starting">
        <source>Starting the Android runtime</source>
        <extracomment>What happens</extracomment>
        <translation>Starting the Android runtime</translation>
    </message>
    <message id="lumctl-runtime-state">
        <source>The Android runtime is %1</source>
        <extracomment>%1 is systemd's word, active for instance</extracomment>
        <translation>The Android runtime is %1</translation>
    </message>
    <message id="lumctl-runtime-stopping">
        <source>Stopping the Android runtime</source>
        <extracomment>What happens</extracomment>
        <translation>Stopping the Android runtime</translation>
    </message>
    <message id="lumctl-runtime-summary">
        <source>Starts or stops the Android runtime, or shows its state</source>
        <extracomment>A line of the help</extracomment>
        <translation>Starts or stops the Android runtime, or shows its state</translation>
    </message>
    <message id="lumctl-runtime-timed-out">
        <source>The Android runtime is still %1</source>
        <extracomment>%1 is systemd's word, activating for instance</extracomment>
        <translation>The Android runtime is still %1</translation>
    </message>
    <message id="lumctl-runtime-usage">
        <source>runtime takes start, stop, enable, disable or status</source>
        <extracomment>A wrong use</extracomment>
        <translation>runtime takes start, stop, enable, disable or status</translation>
    </message>
    <message id="lumctl-see-help">
        <source>see --help</source>
        <extracomment>In brackets behind an error</extracomment>
        <translation>see --help</translation>
    </message>
    <message id="lumctl-settings-done">
        <source>Opening the settings of %1</source>
        <extracomment>%1 is an app</extracomment>
        <translation>Opening the settings of %1</translation>
    </message>
    <message id="lumctl-settings-summary">
        <source>Opens Android's settings page of an app</source>
        <extracomment>A line of the help</extracomment>
        <translation>Opens Android's settings page of an app</translation>
    </message>
    <message id="lumctl-status-changes">
        <source>Package changes:</source>
        <extracomment>A label</extracomment>
        <translation>Package changes:</translation>
    </message>
    <message id="lumctl-status-level">
        <source>Android level:</source>
        <extracomment>A label; the number of the API</extracomment>
        <translation>Android level:</translation>
    </message>
    <message id="lumctl-status-not-ready">
        <source>are kept until the runtime is up</source>
        <extracomment>Of package changes</extracomment>
        <translation>are kept until the runtime is up</translation>
    </message>
    <message id="lumctl-status-pending-changes">
        <source>Changes kept:</source>
        <extracomment>A label</extracomment>
        <translation>Changes kept:</translation>
    </message>
    <message id="lumctl-status-pending-launches">
        <source>Launches kept:</source>
        <extracomment>A label</extracomment>
        <translation>Launches kept:</translation>
    </message>
    <message id="lumctl-status-ready">
        <source>are handed over at once</source>
        <extracomment>Of package changes</extracomment>
        <translation>are handed over at once</translation>
    </message>
    <message id="lumctl-status-runtime">
        <source>Android runtime:</source>
        <extracomment>A label</extracomment>
        <translation>Android runtime:</translation>
    </message>
    <message id="lumctl-status-summary">
        <source>Shows the runtime's state and what waits for it</source>
        <extracomment>A line of the help</extracomment>
        <translation>Shows the runtime's state and what waits for it</translation>
    </message>
    <message id="lumctl-status-version">
        <source>lumd:</source>
        <extracomment>A label; its version follows</extracomment>
        <translation>lumd:</translation>
    </message>
    <message id="lumctl-stop-done">
        <source>%1: asked Android to stop it</source>
        <extracomment>%1 is an app</extracomment>
        <translation>%1: asked Android to stop it</translation>
    </message>
    <message id="lumctl-stop-summary">
        <source>Stops an app</source>
        <extracomment>A line of the help</extracomment>
        <translation>Stops an app</translation>
    </message>
    <message id="lumctl-timed-out">
        <source>lumd does not answer within the time limit</source>
        <extracomment>An error</extracomment>
        <translation>lumd does not answer within the time limit</translation>
    </message>
    <message id="lumctl-too-old">
        <source>This lumd is too old: it does not have what is needed</source>
        <extracomment>An error</extracomment>
        <translation>This lumd is too old: it does not have what is needed</translation>
    </message>
    <message id="lumctl-unknown">
        <source>unknown</source>
        <extracomment>Behind a label</extracomment>
        <translation>unknown</translation>
    </message>
    <message id="lumctl-usage">
        <source>Usage: lumctl COMMAND [OPTION...] [ARGUMENT...]</source>
        <extracomment>The beginning of the help</extracomment>
        <translation>Usage: lumctl COMMAND [OPTION...] [ARGUMENT...]</translation>
    </message>
    <message id="lumctl-usage-more">
        <source>Options of all commands: --json, --timeout SECONDS, --help. More: lumctl COMMAND --help, man lumctl</source>
        <extracomment>The end of the help</extracomment>
        <translation>Options of all commands: --json, --timeout SECONDS, --help. More: lumctl COMMAND --help, man lumctl</translation>
    </message>
    <message id="lumctl-yes">
        <source>yes</source>
        <extracomment>Behind a label</extracomment>
        <translation>yes</translation>
    </message>
</context>
</TS>
