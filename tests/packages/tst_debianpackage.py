# SPDX-License-Identifier: BSD-3-Clause
"""The Debian package on a handset's root file system: what it leaves, keeps and takes away."""

import unittest

import debianhandset

# Files as lumd makes them, of two apps.
GENERATED = r'''
name=lumd_launcher_com_example_maps-com_example_maps_Main
other="lumd_launcher_com_example_caf$(printf '\303\251')-a b *?[x]"
for each in "$name" "$other"; do
    echo entry >"/usr/share/applications/$each.desktop"
    echo icon >"/var/lib/lumd/$each.png"
    echo page >"/usr/share/tovra-settings/entries/$each.json"
done
echo half >"/usr/share/applications/$name.desktop.aB3dE6"
echo half >"/var/lib/lumd/$name.png.aB3dE6"
echo half >"/usr/share/tovra-settings/entries/$name.json.aB3dE6"
'''

# Files that lumd makes beside them.
KEPT = r'''
app=/home/.android/data/aas-staging/app
mkdir -p $app/incoming/sub $app/packaged
touch $app/incoming/maps.apk.tmp $app/incoming/.hidden $app/incoming/sub/maps.apk
touch /usr/share/lumd/partnerspace/com.example.maps.apk
touch '/usr/share/lumd/partnerspace/odd *[name].apk'
'''


class Removal(debianhandset.HandsetTest):

    def testRemoveTakesAllThatIsGenerated(self):
        self.assertEqual(self.on_handset('install_lumd', GENERATED, r'''
            dpkg --remove lumd >/dev/null 2>&1
            find /usr/share/applications /usr/share/tovra-settings /var/lib/lumd -name 'lumd_*'
            '''), '')

    def testRemoveTakesNothingThatMerelyLooksAlike(self):
        self.assertEqual(self.on_handset(r'''
            install_lumd
            cd /usr/share/applications
            touch lumd_launchers.desktop lumd_launcher_a.desktop.bak my_lumd_launcher_a.desktop \
                lumd_launcher_a.txt lumd_launcher_a.png lumd.desktop lumd-launcher_a.desktop \
                lumd_launcher_a.desktop.aB3dE lumd_launcher_a.desktop.aB3d-6 \
                LUMD_LAUNCHER_a.desktop.aB3dE6 "$(printf 'lumd_launcher_\377.desktop')" \
                "$(printf 'x\nlumd_launcher_a.desktop')"
            mkdir -p lumd_launcher_folder.desktop/sub
            touch lumd_launcher_folder.desktop/lumd_launcher_a.desktop
            mkfifo lumd_launcher_fifo.desktop
            ln -s nowhere lumd_launcher_dangling.desktop
            ln -s nowhere lumd_launcher_a.desktop.linked
            touch /var/lib/lumd/own.png /var/lib/lumd/lumd_launcher_a.desktop
            touch /usr/share/tovra-settings/entries/lumd_launcher_a.txt
            lists /usr/share/applications /usr/share/tovra-settings /var/lib/lumd >/tmp/before
            dpkg --remove lumd >/dev/null 2>&1
            lists /usr/share/applications /usr/share/tovra-settings /var/lib/lumd >/tmp/after
            diff /tmp/before /tmp/after
            '''), '')

    def testRemoveTakesLinksAndLeavesWhatTheyLeadTo(self):
        self.assertEqual(self.on_handset(r'''
            install_lumd
            mkdir -p /srv/precious/sub
            echo text >/srv/precious/file
            cd /usr/share/applications
            ln -s /srv/precious lumd_launcher_folder.desktop
            ln -s /srv/precious/file lumd_launcher_file.desktop
            ln -s /srv/precious/file LUMD_LAUNCHER_FILE.DESKTOP
            ln -s /srv/precious/file /var/lib/lumd/lumd_launcher_file.png
            ln -s /srv/precious/file /usr/share/tovra-settings/entries/lumd_launcher_file.json
            lists /srv >/tmp/before
            dpkg --remove lumd >/dev/null 2>&1
            lists /srv | diff /tmp/before -
            find /usr/share/applications /usr/share/tovra-settings /var/lib/lumd -iname 'lumd_*'
            '''), '')

    def testRemoveKeepsSettingsMarkersAndIncomingFiles(self):
        self.assertEqual(self.on_handset('install_lumd', KEPT, r'''
            echo com.example.hidden >>/etc/lumd/app-blacklist
            lists /etc/lumd /etc/gbinder.d /usr/share/lumd /home >/tmp/before
            dpkg --remove lumd >/dev/null 2>&1
            lists /etc/lumd /etc/gbinder.d /usr/share/lumd /home | diff /tmp/before -
            '''), '')


class Purge(debianhandset.HandsetTest):

    def testPurgeLeavesTheFileSystemAsItWas(self):
        self.assertEqual(self.on_handset(r'''
            show >/tmp/before
            install_lumd
            show | diff /tmp/before - >/tmp/changes && exit 1
            ''', GENERATED, KEPT, r'''
            echo com.example.hidden >>/etc/lumd/app-blacklist
            dpkg --purge lumd >/dev/null
            show | diff /tmp/before -
            '''), '')

    def testPurgeAfterRemoveDoesToo(self):
        self.assertEqual(self.on_handset(r'''
            show >/tmp/before
            install_lumd
            ''', GENERATED, KEPT, r'''
            dpkg --remove lumd >/dev/null 2>&1
            dpkg --purge lumd >/dev/null
            show | diff /tmp/before -
            '''), '')

    def testPurgeLeavesMarkersOfOtherPackages(self):
        self.assertEqual(self.on_handset(r'''
            install_lumd
            mkdir -p /tmp/maker/DEBIAN /tmp/maker/usr/share/lumd/partnerspace
            touch '/tmp/maker/usr/share/lumd/partnerspace/maker[1].apk'
            printf '%s\n' 'Package: maker' 'Version: 1' 'Architecture: all' 'Maintainer: maker' \
                'Description: markers' >/tmp/maker/DEBIAN/control
            dpkg-deb --root-owner-group --build /tmp/maker /tmp/maker.deb >/dev/null
            dpkg --install /tmp/maker.deb >/dev/null
            touch /usr/share/lumd/partnerspace/maker1.apk
            dpkg --purge lumd >/dev/null 2>&1
            ls /usr/share/lumd/partnerspace
            '''), 'maker[1].apk\n')

    def testPurgeLeavesAppsAndOtherFilesOfTheDataRoot(self):
        self.assertEqual(self.on_handset('install_lumd', KEPT, r'''
            touch /home/.android/data/aas-staging/app/packaged/maps.apk
            dpkg --purge lumd >/dev/null
            find /home/.android -type f -o -name incoming
            '''), '/home/.android/data/aas-staging/app/packaged/maps.apk\n')

    def testPurgeFollowsNoLinkOnItsWayToTheIncomingFolder(self):
        for linked in ('.android', '.android/data', '.android/data/aas-staging',
                       '.android/data/aas-staging/app', '.android/data/aas-staging/app/incoming'):
            with self.subTest(linked):
                self.assertEqual(self.on_handset('install_lumd', KEPT, f'''
                    mkdir /srv/precious
                    mv /home/{linked} /srv/precious/
                    ln -s /srv/precious/{linked.rpartition("/")[2]} /home/{linked}
                    lists /srv >/tmp/before
                    dpkg --purge lumd >/dev/null
                    lists /srv | diff /tmp/before -
                    '''), '')

    def testPurgeStaysOutOfWhatIsLinkedInTheIncomingFolder(self):
        self.assertEqual(self.on_handset('install_lumd', KEPT, r'''
            mkdir -p /srv/precious
            touch /srv/precious/file
            ln -s /srv/precious /home/.android/data/aas-staging/app/incoming/sub/link
            lists /srv >/tmp/before
            dpkg --purge lumd >/dev/null
            lists /srv | diff /tmp/before -
            find /home -name '.android'
            '''), '')


class Companions(debianhandset.HandsetTest):

    def testTheyComeAndGoWithoutATrace(self):
        self.assertEqual(self.on_handset(r'''
            show >/tmp/before
            install_packages "$lumd" $companions
            command -v lumctl lumd-apps
            dpkg --purge lumctl lumd-apps lumd >/dev/null
            show | diff /tmp/before -
            '''), '/usr/bin/lumctl\n/usr/bin/lumd-apps\n')

    def testTheyLeaveLumdAsItWas(self):
        self.assertEqual(self.on_handset('install_lumd', GENERATED, KEPT, r'''
            show >/tmp/before
            install_packages $companions
            dpkg --purge lumctl lumd-apps >/dev/null
            show | diff /tmp/before -
            '''), '')

    def testTheyComeWithoutARestartOfLumd(self):
        self.assertEqual(self.on_handset(r'''
            install_lumd
            fake_systemd
            install_packages $companions
            grep lumd /tmp/systemctl || echo nothing
            '''), 'nothing\n')

    def testRemovingLumdTakesThemAlong(self):
        self.assertEqual(self.on_handset(r'''
            install_packages "$lumd" $companions
            apt-get -qq remove lumd >/dev/null 2>&1
            dpkg-query --show --showformat '${db:Status-Abbrev}${Package}\n' lumd lumctl lumd-apps \
                2>/dev/null | grep ^i || echo none installed
            '''), 'none installed\n')

    def testTheyAreNotInstalledWithoutLumd(self):
        self.assertIn('dependency problems', self.on_handset(r'''
            dpkg --install $companions 2>&1 && exit 1
            true
            '''))


if __name__ == '__main__':
    unittest.main()
