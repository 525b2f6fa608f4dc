# SPDX-License-Identifier: MIT

# scripts/setup on machines of several kinds: dpkg-query, apt-get, sudo and id are stand-ins, and
# nothing else that could install is within its reach.

import os
import shutil
import subprocess
import tempfile
import unittest

SETUP = os.path.join(os.path.dirname(__file__), "..", "..", "scripts", "setup")


class Setup(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="korva-setup-")
        self.addCleanup(shutil.rmtree, self.folder)
        self.calls = os.path.join(self.folder, "calls")
        for tool in ("bash", "env", "dirname", "realpath", "grep", "mktemp", "rm", "tail", "cat",
                     "touch"):
            os.symlink(shutil.which(tool), os.path.join(self.folder, tool))
        self.tool("id", "echo 0")

    def tool(self, name, text):
        path = os.path.join(self.folder, name)
        with open(path, "w") as file:
            file.write("#!/bin/bash\n" + text + "\n")
        os.chmod(path, 0o755)

    def installed(self, *packages):
        names = "|".join(packages) or "none"
        self.tool("dpkg-query", f'case "${{!#}}" in {names}) echo installed;; *) exit 1;; esac')

    def record(self, name, then=""):
        self.tool(name, f'echo "{name} $*" >>"{self.calls}"; {then}')

    def run_setup(self, *tasks):
        return subprocess.run([SETUP, *tasks], env={"PATH": self.folder}, capture_output=True,
                              stdin=subprocess.DEVNULL, text=True, timeout=60)

    def recorded(self):
        if not os.path.exists(self.calls):
            return []
        with open(self.calls) as file:
            return file.read().splitlines()

    def test_nothing_is_fetched_when_everything_is_there(self):
        self.installed("*")
        self.record("apt-get")
        result = self.run_setup("build", "picture", "check", "bench")
        self.assertEqual((result.returncode, result.stdout, result.stderr), (0, "", ""))
        self.assertEqual(self.recorded(), [])

    def test_only_what_is_missing_is_installed_and_named(self):
        self.installed("[!c]*")
        self.record("apt-get")
        result = self.run_setup("build")
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertEqual(len(self.recorded()), 1)
        self.assertTrue(self.recorded()[0].endswith(" cmake"), self.recorded())
        self.assertIn("cmake", result.stdout)
        self.assertNotIn("ninja", result.stdout)

    def test_lists_are_fetched_when_the_installation_fails(self):
        self.installed()
        self.record("apt-get", f'[[ $* = *update ]] && touch "{self.folder}/new"; '
                               f'[ -e "{self.folder}/new" ]')
        self.assertEqual(self.run_setup("build").returncode, 0)
        self.assertEqual([line.split()[3] for line in self.recorded()],
                         ["install", "update", "install"])

    def test_failed_installation_shows_what_apt_said(self):
        self.installed()
        self.record("apt-get", "echo no such network; exit 100")
        result = self.run_setup("build")
        self.assertEqual(result.returncode, 1)
        self.assertIn("no such network", result.stderr)

    def test_without_apt_the_packages_are_named(self):
        self.installed("[!n]*")
        result = self.run_setup("build")
        self.assertEqual(result.returncode, 1)
        self.assertIn("no apt-get", result.stderr)
        self.assertIn("ninja-build", result.stderr)
        self.assertNotIn("cmake", result.stderr)

    def test_others_than_root_need_sudo(self):
        self.installed()
        self.tool("id", "echo 1000")
        self.record("apt-get")
        result = self.run_setup("build")
        self.assertEqual(result.returncode, 1)
        self.assertIn("sudo", result.stderr)
        self.assertEqual(self.recorded(), [])
        self.record("sudo", '"$@"')
        self.assertEqual(self.run_setup("build").returncode, 0)
        self.assertEqual([line.split()[0] for line in self.recorded()], ["sudo", "apt-get"])

    def test_unknown_task_is_an_error(self):
        result = self.run_setup("everything")
        self.assertEqual(result.returncode, 2)
        self.assertIn("everything", result.stderr)


if __name__ == "__main__":
    unittest.main()
