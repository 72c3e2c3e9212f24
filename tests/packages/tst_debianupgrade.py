# SPDX-License-Identifier: BSD-3-Clause
"""Install and upgrade of the Debian package: what the service manager is asked for, and what is
left when either is cut short."""

import unittest

import debianhandset


class Service(debianhandset.HandsetTest):

    def testTheUnitIsEnabledAndStartedWithoutWaiting(self):
        self.assertEqual(self.on_handset(r'''
            fake_systemd
            install_lumd
            cat /tmp/systemctl
            readlink /etc/systemd/system/multi-user.target.wants/lumd.service
            '''), 'daemon-reload\nis-enabled --quiet lumd.service\n'
                  '--quiet --no-block restart lumd.service\n/usr/lib/systemd/system/lumd.service\n')

    def testAnUpgradeRestartsOnceAndNeverStops(self):
        self.assertEqual(self.on_handset(r'''
            install_lumd
            make_newer
            fake_systemd
            dpkg --install /tmp/newer.deb >/dev/null 2>&1
            grep lumd /tmp/systemctl
            '''), 'is-enabled --quiet lumd.service\n--quiet --no-block restart lumd.service\n')

    def testADisabledUnitStaysSo(self):
        self.assertEqual(self.on_handset(r'''
            install_lumd
            systemctl --quiet disable lumd.service
            make_newer
            fake_systemd
            sed -i '/^echo/a case $1 in is-enabled) exit 1 ;; esac' /usr/bin/systemctl
            dpkg --install /tmp/newer.deb >/dev/null 2>&1
            grep lumd /tmp/systemctl
            find /etc/systemd/system -name 'lumd*'
            '''), 'is-enabled --quiet lumd.service\n--quiet --no-block try-restart lumd.service\n')

    def testNothingIsStartedAgainstTheAdministratorsPolicy(self):
        self.assertEqual(self.on_handset(r'''
            printf '#!/bin/sh\nexit 101\n' >/usr/sbin/policy-rc.d
            chmod +x /usr/sbin/policy-rc.d
            fake_systemd
            install_lumd
            grep lumd /tmp/systemctl
            '''), 'is-enabled --quiet lumd.service\n')

    def testRemoveStops(self):
        self.assertEqual(self.on_handset(r'''
            install_lumd
            fake_systemd
            dpkg --remove lumd >/dev/null
            grep lumd /tmp/systemctl
            '''), 'stop lumd.service\n')


class Upgrade(debianhandset.HandsetTest):

    def testAnUpgradeKeepsEntriesMarkersAndSettings(self):
        self.assertEqual(self.on_handset(r'''
            install_lumd
            echo entry >/usr/share/applications/lumd_launcher_a-b.desktop
            echo icon >/var/lib/lumd/lumd_launcher_a-b.png
            echo page >/usr/share/tovra-settings/entries/lumd_launcher_a-b.json
            touch /usr/share/lumd/partnerspace/a.apk
            echo com.example.hidden >>/etc/lumd/app-blacklist
            make_newer
            show >/tmp/before
            dpkg --install /tmp/newer.deb >/dev/null
            show | diff /tmp/before -
            dpkg-query --showformat '${Version}\n' --show lumd
            '''), '0.1.0+later\n')

    # dpkg ends wherever it is; the next command brings the package to a good end.
    def testAnInstallThatIsKilledIsFinishedLater(self):
        self.assertEqual(self.on_handset(r'''
            # Once it has said so many lines. What is killed dies a little later, and holds dpkg's
            # locks until then: the last of it closes the pipe.
            install_killed_after_lines() {
                setsid dpkg --status-fd 1 --install "$2" >/tmp/progress 2>&1 &
                disown
                { for _ in $(seq "$1"); do read -r _ || :; done
                  kill -KILL -- -$! || :
                  cat; } </tmp/progress >/dev/null 2>&1
            }
            install_lumd
            echo entry >/usr/share/applications/lumd_launcher_a-b.desktop
            make_newer
            lines=$(dpkg --status-fd 1 --install /tmp/newer.deb 2>&1 | wc -l)
            next=$lumd other=/tmp/newer.deb
            mkfifo /tmp/progress
            for line in $(seq "$lines"); do
                install_killed_after_lines "$line" "$next"
                dpkg-query --showformat '${db:Status-Abbrev}\n' --show lumd >>/tmp/states
                dpkg --configure --pending >/dev/null 2>&1 || :
                dpkg --install "$next" >/tmp/said 2>&1 || { cat /tmp/said; exit 1; }
                dpkg --audit
                dpkg --verify lumd
                passing=$next next=$other other=$passing
            done
            cat /usr/share/applications/lumd_launcher_a-b.desktop
            # Some were caught at work.
            [ "$(sort -u /tmp/states | wc -l)" -gt 1 ]
            '''), 'entry\n')

    def testBetweenUnpackAndConfigureTheOldDaemonRunsOn(self):
        self.assertEqual(self.on_handset(r'''
            install_lumd
            make_newer
            fake_systemd
            dpkg --unpack /tmp/newer.deb >/dev/null
            grep lumd /tmp/systemctl || echo nothing yet
            dpkg --configure --pending >/dev/null 2>&1
            grep lumd /tmp/systemctl
            '''), 'nothing yet\nis-enabled --quiet lumd.service\n'
                  '--quiet --no-block restart lumd.service\n')

    def testAFullDiskLeavesTheOldVersionWhole(self):
        self.assertEqual(self.on_handset(r'''
            install_lumd
            make_newer
            cp -a /usr/share/translations /tmp/translations
            mount -t tmpfs -o size=64k tmpfs /usr/share/translations
            cp -a /tmp/translations/. /usr/share/translations/
            dd if=/dev/zero of=/usr/share/translations/filler bs=1k count=64 2>/dev/null || :
            lists /usr/bin /usr/sbin /usr/share/translations >/tmp/before
            dpkg --install /tmp/newer.deb >/tmp/said 2>&1 && exit 1
            grep -o 'No space left on device' /tmp/said
            lists /usr/bin /usr/sbin /usr/share/translations | diff /tmp/before -
            dpkg-query --showformat '${db:Status-Abbrev} ${Version}\n' --show lumd
            rm /usr/share/translations/filler
            dpkg --install /tmp/newer.deb >/dev/null 2>&1
            dpkg-query --showformat '${db:Status-Abbrev} ${Version}\n' --show lumd
            dpkg --verify lumd
            '''), 'No space left on device\nii  0.1.0\nii  0.1.0+later\n')


class Installed(debianhandset.HandsetTest):

    def testAutopkgtestPasses(self):
        said = self.on_handset(r'''
            autopkgtest /packages/lumd_*.dsc "$lumd" $companions -- null 2>&1
            ''')
        for test in ('installed', 'command-line', 'window'):
            self.assertRegex(said, rf'(?m)^{test} +PASS$')


if __name__ == '__main__':
    unittest.main()
