# SPDX-License-Identifier: MIT

# What is installed and packaged: complete, valid, and a program that starts from its place.

import glob
import os
import shutil
import subprocess
import unittest
import xml.etree.ElementTree

from desktop import KORVA, X11Test

BUILD = os.path.dirname(os.path.abspath(KORVA))
INSTALLED = {
    "bin/korva",
    "share/applications/korva.desktop",
    "share/doc/korva/copyright",
    "share/icons/hicolor/scalable/apps/korva.svg",
    "share/man/man1/korva.1.gz",
    "share/metainfo/org.korva.Korva.metainfo.xml",
}


def run(*command, **options):
    result = subprocess.run(command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                            stderr=subprocess.STDOUT, timeout=250, text=True, **options)
    if result.returncode != 0:
        raise AssertionError(f"{command[0]} failed: {result.stdout}")
    return result.stdout


def files_in(folder):
    return {os.path.relpath(os.path.join(path, name), folder)
            for path, _, names in os.walk(folder) for name in names}


class Install(X11Test):
    def assert_starts(self, program):
        korva = self.start(self.new_folder("inside/"), program=program)
        korva.window()
        korva.close()
        self.assert_ends_well(korva)

    def need(self, tool):
        if shutil.which(tool) is None:
            self.skipTest(f"no {tool} here")

    def install(self):
        prefix = self.new_folder()
        run("cmake", "--install", BUILD, "--prefix", prefix)
        return prefix

    def test_everything_is_installed_below_the_prefix(self):
        prefix = self.install()
        self.assertEqual(files_in(prefix), INSTALLED)
        self.assert_starts(os.path.join(prefix, "bin/korva"))

    def test_desktop_file_and_metadata_are_valid(self):
        self.need("desktop-file-validate")
        self.need("appstreamcli")
        share = os.path.join(self.install(), "share")
        entry = os.path.join(share, "applications/korva.desktop")
        self.assertEqual(run("desktop-file-validate", entry), "")
        run("appstreamcli", "validate", "--no-net",
            os.path.join(share, "metainfo/org.korva.Korva.metainfo.xml"))
        root = xml.etree.ElementTree.parse(
            os.path.join(share, "icons/hicolor/scalable/apps/korva.svg")).getroot()
        self.assertEqual(root.tag, "{http://www.w3.org/2000/svg}svg")
        # The desktop finds the window's icon by the name that the window bears.
        with open(entry) as file:
            name = next(line for line in file if line.startswith("StartupWMClass")).split("=")[1]
        korva = self.start(self.new_folder())
        self.assertIn(f'"{name.strip()}"',
                      self.display.ask("xprop", "-id", korva.window(), "WM_CLASS"))

    def test_manual_page_is_rendered_without_complaints(self):
        self.need("man")
        page = os.path.join(self.install(), "share/man/man1/korva.1.gz")
        text = run("man", "--warnings", "-P", "cat", "-l", page,
                   env={**os.environ, "MANWIDTH": "90", "LC_ALL": "C.UTF-8"})
        self.assertIn("SYNOPSIS", text)
        self.assertNotIn("warning", text)

    def test_debian_package_names_what_it_needs(self):
        self.need("dpkg-shlibdeps")
        folder = self.new_folder()
        run("cpack", "--config", os.path.join(BUILD, "CPackConfig.cmake"), "-B", folder)
        packages = glob.glob(os.path.join(folder, "korva_*.deb"))
        self.assertEqual(len(packages), 1)
        needs = run("dpkg-deb", "-f", packages[0], "Depends")
        for library in ("libqt6gui6", "libc6", "libstdc++6", "libglib2.0-0", "shared-mime-info"):
            self.assertIn(library, needs)
        root = self.new_folder()
        run("dpkg-deb", "-x", packages[0], root)
        self.assertEqual(files_in(root), {"usr/" + name for name in INSTALLED})
        self.assert_starts(os.path.join(root, "usr/bin/korva"))


if __name__ == "__main__":
    unittest.main()
