"""Shows what ./dev installs on machines that are set up in different ways. Each test runs set_up of
packages.sh with a table of one group, a machine's folders and an apt-get that writes down its calls."""

import os
import pathlib
import subprocess
import tempfile
import unittest

PACKAGES = pathlib.Path(__file__).with_name("packages.sh").resolve()
UPDATE = "update"
INSTALL = "install --yes --no-install-recommends --no-remove"


class PackagesTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = pathlib.Path(folder.name)
        (self.root / "bin").mkdir()
        self.apt_says("")

    def command(self, name, script=""):
        path = self.root / "bin" / name
        path.write_text("#!/bin/bash\n" + script, encoding="utf-8")
        path.chmod(0o755)

    def header(self, name):
        path = self.root / "include" / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.touch()

    def apt_says(self, text, status=0):
        options = '[[ $1 == --quiet ]] && shift\nwhile [[ $1 == --option ]]; do shift 2; done\n'
        self.command("apt-get", options + f'echo "$*" >>"{self.root}/calls"\n'
                     f'echo "{text}"\nexit {status}\n')
        self.command("sudo", 'exec "$@"\n')

    def set_up(self, group):
        """Returns what was asked of apt-get, call by call, and what ./dev wrote to stderr."""
        script = (f'fail() {{ echo "$*" >&2; exit 1; }}; note() {{ :; }}; source "{PACKAGES}"; '
                  f'package_groups=([g]="{group}"); header_folders=("{self.root}/include"); set_up g')
        path = f"{self.root}/bin:{os.environ['PATH']}"
        self.result = subprocess.run(["bash", "-euo", "pipefail", "-c", script], text=True,
                                     capture_output=True, check=False, env={"PATH": path})
        calls = self.root / "calls"
        return calls.read_text(encoding="utf-8").splitlines() if calls.exists() else []

    def test_header_of_another_version_is_enough(self):
        self.header("boost/optional.hpp")
        self.assertEqual([], self.set_up("libboost-dev=boost/optional.hpp"))

    def test_missing_header_installs_its_package(self):
        self.header("boost/optional.hpp")
        self.assertEqual([UPDATE, f"{INSTALL} zlib1g-dev"],
                         self.set_up("libboost-dev=boost/optional.hpp\n zlib1g-dev=zlib.h"))

    def test_command_and_file_are_enough(self):
        self.command("no-such-tool")
        (self.root / "runtime-14.a").touch()
        self.assertEqual([], self.set_up(f"tools=no-such-tool runtime={self.root}/runtime-*.a"))

    def test_missing_command_and_file_install_their_packages(self):
        self.assertEqual([UPDATE, f"{INSTALL} tools runtime"],
                         self.set_up(f"tools=no-such-tool runtime={self.root}/runtime-*.a"))

    def test_words_of_apt_are_shown_when_it_fails(self):
        self.apt_says("libboost1.74-dev : Conflicts: libboost1.81-dev", status=100)
        self.set_up("libboost-dev=boost/optional.hpp")
        self.assertEqual(1, self.result.returncode)
        self.assertEqual("apt-get update failed:\nlibboost1.74-dev : Conflicts: libboost1.81-dev\n",
                         self.result.stderr)


if __name__ == "__main__":
    unittest.main()
