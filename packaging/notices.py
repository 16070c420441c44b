"""Writes the notices of a package: the licences of all works of others that are part of its programs
and libraries, as the Debian packages have them that the build used.

    notices.py SIMDJSONS_COPYRIGHT OUTPUT
"""

import os
import pathlib
import re
import subprocess
import sys

# For aarch64, these packages of the machine that builds stand in for the compiler's own.
CROSS = {
    "binutils": "binutils-aarch64-linux-gnu",
    "g++-12": "g++-12-aarch64-linux-gnu",
    "libstdc++-12-dev": "libstdc++-12-dev-arm64-cross",
} if os.environ.get("DEB_HOST_ARCH") == "arm64" else {}


def used(package):
    """The package that this build used in the place of the one for its own machine."""
    return CROSS.get(package, package)


# Debian package: its part here, and the licence of that part by its name in SPDX.
LINKED = {
    "libboost-dev": ("headers of Boost.Optional, in the codec", "BSL-1.0"),
    "rapidjson-dev": ("headers, in recorder and tools", "MIT"),
    used("libstdc++-12-dev"): ("C++ library and unwinder, in the tools", "GPL-3.0-or-later WITH GCC-exception-3.1"),
    "libsimdjson-dev": ("in the tools", "Apache-2.0"),
    "libsodium-dev": ("in the tools", "ISC"),
    "libyaml-cpp-dev": ("in the tools", "MIT"),
    "libzstd-dev": ("in the tools", "BSD-3-Clause OR GPL-2.0-only"),
    "zlib1g-dev": ("in the tools", "Zlib"),
}
# Licences that Debian's files only name.
COMMON = ("Apache-2.0", "GPL-3")
RULE = "=" * 78 + "\n"


def version_of(package):
    """The version that the build used, or None. Libraries for another machine are in a database of
    their own, which DPKG_ADMINDIR names; compilers are this machine's."""
    for database in ((), ("--admindir=/var/lib/dpkg",)):
        done = subprocess.run(("dpkg-query", *database, "--show", "--showformat=${Version}", package),
                              check=False, capture_output=True, text=True)
        if done.stdout:
            return done.stdout
    return None


def boosts_licence():
    """One stanza: the whole file of the package that libboost-dev stands for has 46000 lines."""
    package = subprocess.run(("dpkg-query", "--show", "--showformat=${Depends}", "libboost-dev"),
                             check=True, stdout=subprocess.PIPE, text=True).stdout.split()[0]
    text = pathlib.Path("/usr/share/doc", package, "copyright").read_text(encoding="utf-8")
    return re.search(r"^License: (?:BSL-1\.0|BSL-1)\n(?: .*\n)+", text, re.MULTILINE).group()


def licence_text(package, simdjsons_copyright):
    if package == "libboost-dev":
        return boosts_licence()
    if package == "libsimdjson-dev":
        return simdjsons_copyright.read_text(encoding="utf-8")
    return pathlib.Path("/usr/share/doc", package, "copyright").read_text(encoding="utf-8")


def section(head, text):
    return RULE + head + "\n" + RULE + "\n" + text.strip() + "\n\n"


def main():
    simdjsons_copyright, output = map(pathlib.Path, sys.argv[1:3])
    text = "Works of others that are part of these programs and libraries, with their licences.\n"
    text += "Programs of the Debian packages have only headers of these works, and load the\n"
    text += "libraries of Debian.\n\n"
    for package, (part, licence) in LINKED.items():
        text += section(f"{package} {version_of(package)}: {part}\n{licence}",
                        licence_text(package, simdjsons_copyright))
    for licence in COMMON:
        text += section(licence, pathlib.Path("/usr/share/common-licenses", licence)
                        .read_text(encoding="utf-8"))
    output.write_text(text, encoding="utf-8")


if __name__ == "__main__":
    main()
