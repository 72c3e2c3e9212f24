<?xml version="1.0" encoding="utf-8"?>
<!-- SPDX-License-Identifier: BSD-3-Clause -->
<!DOCTYPE TS>
<TS version="2.1" language="en">
<context>
    <name></name>
    <message id="lumd-apps-title">
        <source>Android apps</source>
        <extracomment>The window's title</extracomment>
        <translation>Android apps</translation>
    </message>
    <message id="lumd-apps-description">
        <source>Shows and manages the Android apps of this device</source>
        <extracomment>On the command line</extracomment>
        <translation>Shows and manages the Android apps of this device</translation>
    </message>
    <message id="lumd-apps-files-argument">
        <source>Apk files to install</source>
        <extracomment>On the command line</extracomment>
        <translation>Apk files to install</translation>
    </message>
    <message id="lumd-apps-search">
        <source>Search apps</source>
        <extracomment>In the empty search field</extracomment>
        <translation>Search apps</translation>
    </message>
    <message id="lumd-apps-state-unknown">
        <source>Asking lumd …</source>
        <translation>Asking lumd …</translation>
    </message>
    <message id="lumd-apps-state-no-daemon">
        <source>The service lumd is not running</source>
        <translation>The service lumd is not running</translation>
    </message>
    <message id="lumd-apps-state-refused">
        <source>You may not use lumd</source>
        <translation>You may not use lumd</translation>
    </message>
    <message id="lumd-apps-state-outdated">
        <source>lumd is too old</source>
        <translation>lumd is too old</translation>
    </message>
    <message id="lumd-apps-state-down">
        <source>Android is off</source>
        <translation>Android is off</translation>
    </message>
    <message id="lumd-apps-state-failed">
        <source>Android has crashed</source>
        <translation>Android has crashed</translation>
    </message>
    <message id="lumd-apps-state-starting">
        <source>Android is starting</source>
        <translation>Android is starting</translation>
    </message>
    <message id="lumd-apps-state-up">
        <source>Android is running</source>
        <translation>Android is running</translation>
    </message>
    <message id="lumd-apps-state-stopping">
        <source>Android is stopping</source>
        <translation>Android is stopping</translation>
    </message>
    <message id="lumd-apps-explain-no-daemon">
        <source>Android apps cannot be managed without it. As soon as it runs, they show here.</source>
        <translation>Android apps cannot be managed without it. As soon as it runs, they show here.</translation>
    </message>
    <message id="lumd-apps-explain-refused">
        <source>Only members of the system's group for it may. Ask whoever looks after this device.</source>
        <translation>Only members of the system's group for it may. Ask whoever looks after this device.</translation>
    </message>
    <message id="lumd-apps-explain-outdated">
        <source>This window needs a lumd that tells of its apps. Update it, and restart it.</source>
        <translation>This window needs a lumd that tells of its apps. Update it, and restart it.</translation>
    </message>
    <message id="lumd-apps-explain-down">
        <source>Sizes and most settings of apps are there when it runs. Launching an app starts it.</source>
        <translation>Sizes and most settings of apps are there when it runs. Launching an app starts it.</translation>
    </message>
    <message id="lumd-apps-explain-failed">
        <source>It is not started by itself again, but you can start it.</source>
        <translation>It is not started by itself again, but you can start it.</translation>
    </message>
    <message id="lumd-apps-explain-starting">
        <source>This takes a moment. What you ask for meanwhile is done when it is up.</source>
        <translation>This takes a moment. What you ask for meanwhile is done when it is up.</translation>
    </message>
    <message id="lumd-apps-late">
        <source>lumd has not answered for a while. It goes on when it does.</source>
        <translation>lumd has not answered for a while. It goes on when it does.</translation>
    </message>
    <message id="lumd-apps-start">
        <source>Start</source>
        <extracomment>On a button: starts Android</extracomment>
        <translation>Start</translation>
    </message>
    <message id="lumd-apps-stop">
        <source>Stop</source>
        <extracomment>On a button: stops Android or an app</extracomment>
        <translation>Stop</translation>
    </message>
    <message id="lumd-apps-runtime-on-boot">
        <source>Start Android with the device</source>
        <translation>Start Android with the device</translation>
    </message>
    <message id="lumd-apps-total">
        <source>All apps together use %1</source>
        <extracomment>%1 is an amount like "1.2 GB"</extracomment>
        <translation>All apps together use %1</translation>
    </message>
    <message id="lumd-apps-reading">
        <source>Reading the list of apps …</source>
        <translation>Reading the list of apps …</translation>
    </message>
    <message id="lumd-apps-none">
        <source>No apps yet</source>
        <translation>No apps yet</translation>
    </message>
    <message id="lumd-apps-explain-none">
        <source>Open an apk file to install an app. It shows here when Android has told of it.</source>
        <translation>Open an apk file to install an app. It shows here when Android has told of it.</translation>
    </message>
    <message id="lumd-apps-nothing-found">
        <source>No app is called that</source>
        <extracomment>After a search</extracomment>
        <translation>No app is called that</translation>
    </message>
    <message id="lumd-apps-details">
        <source>App details</source>
        <extracomment>Title of a page</extracomment>
        <translation>App details</translation>
    </message>
    <message id="lumd-apps-version">
        <source>Version %1</source>
        <extracomment>%1 is a version</extracomment>
        <translation>Version %1</translation>
    </message>
    <message id="lumd-apps-other-launchers">
        <source>Also: %1</source>
        <extracomment>%1 is a list of names</extracomment>
        <translation>Also: %1</translation>
    </message>
    <message id="lumd-apps-launch">
        <source>Launch</source>
        <extracomment>On a button: starts the app</extracomment>
        <translation>Launch</translation>
    </message>
    <message id="lumd-apps-launched">
        <source>The app is on its way.</source>
        <translation>The app is on its way.</translation>
    </message>
    <message id="lumd-apps-stopped">
        <source>Android was asked to stop the app.</source>
        <translation>Android was asked to stop the app.</translation>
    </message>
    <message id="lumd-apps-space">
        <source>Space</source>
        <extracomment>Heading</extracomment>
        <translation>Space</translation>
    </message>
    <message id="lumd-apps-space-unknown">
        <source>Known when Android runs</source>
        <extracomment>In place of the sizes of an app</extracomment>
        <translation>Known when Android runs</translation>
    </message>
    <message id="lumd-apps-code">
        <source>App</source>
        <extracomment>One of three parts of the space that an app takes up</extracomment>
        <translation>App</translation>
    </message>
    <message id="lumd-apps-data">
        <source>Data</source>
        <extracomment>One of three parts of the space that an app takes up</extracomment>
        <translation>Data</translation>
    </message>
    <message id="lumd-apps-cache">
        <source>Cache</source>
        <extracomment>One of three parts of the space that an app takes up</extracomment>
        <translation>Cache</translation>
    </message>
    <message id="lumd-apps-clear-cache">
        <source>Clear cache</source>
        <extracomment>On a button</extracomment>
        <translation>Clear cache</translation>
    </message>
    <message id="lumd-apps-clear-data">
        <source>Clear data …</source>
        <extracomment>On a button; a question follows</extracomment>
        <translation>Clear data …</translation>
    </message>
    <message id="lumd-apps-cache-cleared">
        <source>Android was asked to clear the cache.</source>
        <translation>Android was asked to clear the cache.</translation>
    </message>
    <message id="lumd-apps-data-cleared">
        <source>Android was asked to clear the data.</source>
        <translation>Android was asked to clear the data.</translation>
    </message>
    <message id="lumd-apps-clear-data-title">
        <source>Clear data</source>
        <extracomment>Title of a question</extracomment>
        <translation>Clear data</translation>
    </message>
    <message id="lumd-apps-clear-data-question">
        <source>Delete everything that %1 has stored, accounts and settings included? This cannot be undone.</source>
        <extracomment>%1 is the name of an app</extracomment>
        <translation>Delete everything that %1 has stored, accounts and settings included? This cannot be undone.</translation>
    </message>
    <message id="lumd-apps-clear-data-consent">
        <source>Delete data</source>
        <extracomment>On the button that confirms</extracomment>
        <translation>Delete data</translation>
    </message>
    <message id="lumd-apps-app-on-boot">
        <source>Start the app with the device</source>
        <translation>Start the app with the device</translation>
    </message>
    <message id="lumd-apps-settings">
        <source>Android settings</source>
        <extracomment>On a button: opens Android's own page of the app</extracomment>
        <translation>Android settings</translation>
    </message>
    <message id="lumd-apps-settings-opened">
        <source>Android's page of the app is on its way.</source>
        <translation>Android's page of the app is on its way.</translation>
    </message>
    <message id="lumd-apps-remove">
        <source>Remove …</source>
        <extracomment>On a button; a question follows</extracomment>
        <translation>Remove …</translation>
    </message>
    <message id="lumd-apps-remove-title">
        <source>Remove app</source>
        <extracomment>Title of a question</extracomment>
        <translation>Remove app</translation>
    </message>
    <message id="lumd-apps-remove-question">
        <source>Remove %1 and all that it has stored?</source>
        <extracomment>%1 is the name of an app</extracomment>
        <translation>Remove %1 and all that it has stored?</translation>
    </message>
    <message id="lumd-apps-remove-consent">
        <source>Remove</source>
        <extracomment>On the button that confirms</extracomment>
        <translation>Remove</translation>
    </message>
    <message id="lumd-apps-removing">
        <source>Is being removed</source>
        <translation>Is being removed</translation>
    </message>
    <message id="lumd-apps-remove-queued">
        <source>Will be removed when Android runs</source>
        <translation>Will be removed when Android runs</translation>
    </message>
    <message id="lumd-apps-remove-refused">
        <source>You may not remove apps on this device.</source>
        <translation>You may not remove apps on this device.</translation>
    </message>
    <message id="lumd-apps-remove-failed">
        <source>Android did not remove the app.</source>
        <translation>Android did not remove the app.</translation>
    </message>
    <message id="lumd-apps-request-failed">
        <source>lumd did not carry it out.</source>
        <translation>lumd did not carry it out.</translation>
    </message>
    <message id="lumd-apps-cancel">
        <source>Cancel</source>
        <extracomment>On a button</extracomment>
        <translation>Cancel</translation>
    </message>
    <message id="lumd-apps-install-title">
        <source>Install app</source>
        <extracomment>Title of a page</extracomment>
        <translation>Install app</translation>
    </message>
    <message id="lumd-apps-install-handing-over">
        <source>Handing over the file</source>
        <translation>Handing over the file</translation>
    </message>
    <message id="lumd-apps-install-waiting">
        <source>Waiting for Android</source>
        <translation>Waiting for Android</translation>
    </message>
    <message id="lumd-apps-install-running">
        <source>Installing</source>
        <translation>Installing</translation>
    </message>
    <message id="lumd-apps-install-done">
        <source>Installed</source>
        <translation>Installed</translation>
    </message>
    <message id="lumd-apps-install-failed">
        <source>Not installed</source>
        <translation>Not installed</translation>
    </message>
    <message id="lumd-apps-install-explain-waiting">
        <source>The app is installed as soon as Android runs. You may close this window.</source>
        <translation>The app is installed as soon as Android runs. You may close this window.</translation>
    </message>
    <message id="lumd-apps-install-explain-remote">
        <source>Only files on this device can be installed.</source>
        <translation>Only files on this device can be installed.</translation>
    </message>
    <message id="lumd-apps-install-explain-unreadable">
        <source>The file is not there, or you may not read it.</source>
        <translation>The file is not there, or you may not read it.</translation>
    </message>
    <message id="lumd-apps-install-explain-refused">
        <source>lumd did not take the file: you may not install apps on this device, or the file could not be copied.</source>
        <translation>lumd did not take the file: you may not install apps on this device, or the file could not be copied.</translation>
    </message>
    <message id="lumd-apps-install-explain-lost">
        <source>lumd ended in the middle of it. Whether the app was installed shows in the list.</source>
        <translation>lumd ended in the middle of it. Whether the app was installed shows in the list.</translation>
    </message>
    <message id="lumd-apps-install-next">
        <source>Next file</source>
        <extracomment>On a button</extracomment>
        <translation>Next file</translation>
    </message>
    <message id="lumd-apps-done">
        <source>Done</source>
        <extracomment>On a button</extracomment>
        <translation>Done</translation>
    </message>
    <message id="lumd-apps-back">
        <source>Back</source>
        <extracomment>The button that leads back to the list</extracomment>
        <translation>Back</translation>
    </message>
</context>
</TS>
