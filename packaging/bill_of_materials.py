"""Writes the bill of materials of the packages in a folder, NAME-VERSION.spdx.json beside them: each
file of each package with its hashes, the commit, the works of others that are linked in, and the
packages of this machine that the build used. The form is SPDX 2.3; the same packages and time give
the same bytes.

    bill_of_materials.py FOLDER TIME      TIME in seconds since 1970
"""

import datetime
import hashlib
import io
import json
import pathlib
import re
import subprocess
import sys
import tarfile

from notices import LINKED, used, version_of

NAME = "ostrovia-notifications"
# What becomes part of the libraries and programs, or makes them, without a trace in a package's Depends.
BUILT_WITH = (used("g++-12"), used("binutils"), "cmake")


def output_of(*command):
    return subprocess.run(command, check=True, stdout=subprocess.PIPE).stdout


def contents_of(package):
    """Name and bytes of each regular file in a package, in the order of names."""
    deb = package.suffix == ".deb"
    data = output_of("dpkg-deb", "--fsys-tarfile", str(package)) if deb else package.read_bytes()
    with tarfile.open(fileobj=io.BytesIO(data)) as archive:
        files = sorted((member for member in archive if member.isfile()), key=lambda m: m.name)
        for member in files:
            name = member.name if deb else member.name.partition("/")[2]
            yield "./" + name.removeprefix("./"), archive.extractfile(member).read()


def checksums_of(content):
    return [{"algorithm": "SHA1", "checksumValue": hashlib.sha1(content).hexdigest()},
            {"algorithm": "SHA256", "checksumValue": hashlib.sha256(content).hexdigest()}]


def unlicensed(element, prefix):
    """The sources contain no licence and name no holder of the copyright."""
    element.update({prefix: "NOASSERTION", "copyrightText": "NONE"})
    return element


def file_element(number, name, content):
    element = {"SPDXID": f"SPDXRef-File-{number}", "fileName": name, "licenseInfoInFiles": ["NONE"],
               "checksums": checksums_of(content)}
    return unlicensed(element, "licenseConcluded")


def shipped_element(package, files, version, build):
    hashes = sorted(file["checksums"][0]["checksumValue"] for file in files)
    element = {
        "SPDXID": "SPDXRef-Package-" + re.sub(r"[^A-Za-z0-9.-]", "-", package.name),
        "name": package.name.partition("_")[0] if package.suffix == ".deb" else NAME,
        "versionInfo": version,
        "packageFileName": package.name, "downloadLocation": "NOASSERTION", "filesAnalyzed": True,
        "packageVerificationCode": {
            "packageVerificationCodeValue": hashlib.sha1("".join(hashes).encode()).hexdigest()},
        "checksums": checksums_of(package.read_bytes()), "sourceInfo": "made from " + build,
        "licenseDeclared": "NONE", "licenseInfoFromFiles": ["NONE"],
        "hasFiles": [file["SPDXID"] for file in files]}
    return unlicensed(element, "licenseConcluded")


def debian_element(package):
    element = {
        "SPDXID": "SPDXRef-Debian-" + re.sub(r"[^A-Za-z0-9.-]", "-", package), "name": package,
        "downloadLocation": "NOASSERTION", "filesAnalyzed": False,
        "licenseDeclared": LINKED.get(package, ("", "NOASSERTION"))[1]}
    version = version_of(package)
    if version:
        element["versionInfo"] = version
    return unlicensed(element, "licenseConcluded")


def relationship(one, kind, other):
    return {"spdxElementId": one, "relationshipType": kind, "relatedSpdxElement": other}


def build_name(contents):
    """As the packaged codec itself says it."""
    codec = next(content for name, content in contents if name.endswith("2Codec.so"))
    return re.search(rb"ostrovia-notifications [0-9.]+, [ -~]+", codec).group().decode()


def depends_of(debs):
    """Names of all Debian packages that a package needs, but for each other."""
    depends = ",".join(output_of("dpkg-deb", "--field", deb, "Depends").decode() for deb in debs)
    names = set(re.findall(r"(?:^|,)\s*([a-z0-9.+-]+)", depends))
    return sorted(name for name in names if not name.startswith(NAME))


def bill_of(folder, time):
    debs, archive = sorted(folder.glob("*.deb")), next(folder.glob("*.tar.gz"))
    version = output_of("dpkg-deb", "--field", debs[0], "Version").decode().strip()
    build = build_name(contents_of(archive))
    packages, files, relationships = [], [], []
    for package in (*debs, archive):
        own = [file_element(len(files) + i, *file)
               for i, file in enumerate(contents_of(package), 1)]
        element = shipped_element(package, own, version, build)
        packages.append(element)
        files += own
        relationships.append(relationship("SPDXRef-DOCUMENT", "DESCRIBES", element["SPDXID"]))
    shipped = [element["SPDXID"] for element in packages]
    for debian, kind in [(n, "RUNTIME") for n in depends_of(debs)] + [(n, "BUILD") for n in BUILT_WITH]:
        element = debian_element(debian)
        packages.append(element)
        relationships += [relationship(element["SPDXID"], kind + "_DEPENDENCY_OF", each)
                          for each in shipped]
    for debian in LINKED:
        element = debian_element(debian)
        packages.append(element)
        relationships.append(relationship(shipped[-1], "STATIC_LINK", element["SPDXID"]))
    return version, {
        "spdxVersion": "SPDX-2.3", "dataLicense": "CC0-1.0", "SPDXID": "SPDXRef-DOCUMENT",
        "name": f"{NAME}-{version}",
        "documentNamespace": f"https://{NAME}.example/spdx/{version}/"
                             + hashlib.sha256(archive.read_bytes()).hexdigest(),
        "creationInfo": {
            "created": datetime.datetime.fromtimestamp(time, datetime.timezone.utc)
                       .strftime("%Y-%m-%dT%H:%M:%SZ"),
            "creators": ["Organization: Ostrovia Notifications maintainers"]},
        "packages": packages, "files": files, "relationships": relationships}


def main():
    folder = pathlib.Path(sys.argv[1])
    version, bill = bill_of(folder, int(sys.argv[2]))
    text = json.dumps(bill, indent=1, ensure_ascii=False) + "\n"
    (folder / f"{NAME}-{version}.spdx.json").write_text(text, encoding="utf-8")


if __name__ == "__main__":
    main()
