// SPDX-License-Identifier: BSD-3-Clause
#pragma once

/// The daemon's bus interface as clients have it on record, to the byte.
constexpr char interfaceText[] = R"xml(  <interface name="com.tovra.lumd">
    <method name="installFile">
      <arg name="filename" type="s" direction="in"/>
      <arg name="success" type="b" direction="out"/>
    </method>
    <method name="installPreloadFile">
      <arg name="filename" type="s" direction="in"/>
      <arg name="success" type="b" direction="out"/>
    </method>
    <method name="installPartnerSpaceFile">
      <arg name="filename" type="s" direction="in"/>
      <arg name="success" type="b" direction="out"/>
    </method>
    <method name="removeFile">
      <arg name="filename" type="s" direction="in"/>
      <arg name="success" type="b" direction="out"/>
    </method>
    <method name="getAndroidAppDataUsage">
      <arg name="bytes" type="t" direction="out"/>
    </method>
    <method name="controlService">
      <arg name="start" type="b" direction="in"/>
    </method>
    <method name="controlServiceAutostart">
      <arg name="enable" type="b" direction="in"/>
    </method>
    <method name="isRunning">
      <arg name="running" type="b" direction="out"/>
    </method>
    <method name="notifyRuntimeUpgrade">
      <arg name="upgrading" type="b" direction="in"/>
    </method>
    <method name="getAppStartOnBootup">
      <arg name="packageName" type="s" direction="in"/>
      <arg name="autoStartAllowed" type="b" direction="out"/>
    </method>
    <method name="setAppStartOnBootup">
      <arg name="packageName" type="s" direction="in"/>
      <arg name="autoStartAllowed" type="b" direction="in"/>
    </method>
    <method name="deleteAppCacheFiles">
      <arg name="packageName" type="s" direction="in"/>
    </method>
    <method name="clearAppUserData">
      <arg name="packageName" type="s" direction="in"/>
    </method>
    <method name="forceStopApp">
      <arg name="packageName" type="s" direction="in"/>
    </method>
    <method name="getAppSize">
      <annotation name="org.qtproject.QtDBus.QtTypeName.Out0" value="AppSizeInfo"/>
      <arg name="packageName" type="s" direction="in"/>
      <arg name="stats" type="(xxx)" direction="out"/>
    </method>
    <method name="openAppSettings">
      <arg name="packageName" type="s" direction="in"/>
    </method>
    <method name="viewLicenses"/>
    <method name="launchApp">
      <arg name="packageName" type="s" direction="in"/>
    </method>
    <method name="launchIntent">
      <annotation name="org.qtproject.QtDBus.QtTypeName.In6" value="QVariantMap"/>
      <arg name="action" type="s" direction="in"/>
      <arg name="data" type="s" direction="in"/>
      <arg name="type" type="s" direction="in"/>
      <arg name="packageName" type="s" direction="in"/>
      <arg name="className" type="s" direction="in"/>
      <arg name="category" type="s" direction="in"/>
      <arg name="extras" type="{sv}" direction="in"/>
    </method>
    <signal name="installPackage">
      <arg name="filename" type="s"/>
    </signal>
    <signal name="uninstallPackage">
      <arg name="filename" type="s"/>
    </signal>
    <signal name="installPackageFromRPM">
      <arg name="filename" type="s"/>
    </signal>
    <signal name="uninstallPackageFromRPM">
      <arg name="filename" type="s"/>
    </signal>
    <signal name="appStartOnBootupChanged">
      <arg name="packageName" type="s"/>
      <arg name="autoStartAllowed" type="b"/>
    </signal>
  </interface>
)xml";
