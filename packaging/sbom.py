#!/usr/bin/env python3
"""Writes the bill of materials, SPDX 2.3 as JSON: what is linked in, its versions and the hashes of the sources.

    sbom.py --deps FOLDER --version VERSION [--windows] [OUTPUT]
"""

import argparse
import json
import os
import re
import sys
import time
import uuid
from pathlib import Path

import components


def package_of(component, deps):
    package = {
        "SPDXID": "SPDXRef-" + re.sub(r"[^A-Za-z0-9]+", "-", component.name).strip("-"),
        "name": component.name,
        "versionInfo": components.version(component, deps),
        "downloadLocation": "NOASSERTION",
        "filesAnalyzed": False,
        "licenseConcluded": "NOASSERTION",
        "licenseDeclared": component.licence,
        "copyrightText": "NOASSERTION",
        "comment": f"built into the {component.used_by}",
    }
    if component.npm:
        version, digest = components.fetched()[component.npm]
        package["checksums"] = [{"algorithm": "SHA256", "checksumValue": digest}]
        purl = f"pkg:npm/{component.npm}@{version}"
    else:
        purl = f"pkg:deb/debian/{component.debian}@{package['versionInfo']}"
    package["externalRefs"] = [
        {"referenceCategory": "PACKAGE-MANAGER", "referenceType": "purl", "referenceLocator": purl}]
    return package


def bill(deps, version, windows):
    packages = [{
        "SPDXID": "SPDXRef-KESTA-DB",
        "name": "KESTA_DB",
        "versionInfo": version,
        "downloadLocation": "NOASSERTION",
        "filesAnalyzed": False,
        "licenseConcluded": "NOASSERTION",
        "licenseDeclared": "NONE",
        "copyrightText": "NOASSERTION",
    }]
    packages += [package_of(component, deps) for component in components.COMPONENTS
                 if not (component.windows_only and not windows or component.name == "zlib" and windows)]
    created = time.gmtime(int(os.environ.get("SOURCE_DATE_EPOCH", time.time())))
    name = f"kesta-db-{version}-{'windows' if windows else 'linux'}"
    return {
        "spdxVersion": "SPDX-2.3",
        "dataLicense": "CC0-1.0",
        "SPDXID": "SPDXRef-DOCUMENT",
        "name": name,
        "documentNamespace": f"https://example.invalid/spdx/{name}-{uuid.uuid4()}",
        "creationInfo": {"created": time.strftime("%Y-%m-%dT%H:%M:%SZ", created), "creators": ["Tool: sbom.py"]},
        "packages": packages,
        "relationships": [
            {"spdxElementId": "SPDXRef-DOCUMENT", "relationshipType": "DESCRIBES",
             "relatedSpdxElement": "SPDXRef-KESTA-DB"},
            *({"spdxElementId": "SPDXRef-KESTA-DB", "relationshipType": "CONTAINS",
               "relatedSpdxElement": package["SPDXID"]} for package in packages[1:])],
    }


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--deps", type=Path, required=True)
    parser.add_argument("--version", required=True)
    parser.add_argument("--windows", action="store_true")
    parser.add_argument("output", type=Path, nargs="?")
    options = parser.parse_args()
    components.check()
    text = json.dumps(bill(options.deps, options.version, options.windows), indent=2) + "\n"
    if options.output:
        options.output.write_text(text, encoding="utf-8")
    else:
        sys.stdout.write(text)


if __name__ == "__main__":
    main()
