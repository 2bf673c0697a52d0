#!/usr/bin/env python3
"""Holds docs/failures.md, the failure sites in the sources, and the tests against each other.

Every number in a source's `namespace at` must stand in the table "Every site", with the class that the
source throws there, and the other way round; and a test that writes out the site's path must write out
the number as well. Prints what differs and exits with 1.

usage: check_failures.py ROOT
"""
import pathlib
import re
import sys

# Sites that nothing can reach, so that no test can hold them.
UNREACHABLE = {
    ("VUKSimRpm_Document", 12): "memory that runs out is reported before the check",
}

ROW = re.compile(r'^\| `(\w+)` \| (\d+) \| `(\w+)` \| (.*) \|$', re.MULTILINE)
SITES = re.compile(r'namespace at \{(.*?)\} // namespace at', re.DOTALL)
SITE = re.compile(r'constexpr int (k\w+) = (\d+);')
CHECK = re.compile(r'VUKSIMRPM_(?:ASSERT|VALIDATE)\((.*?),\s*kSource,\s*at::(k\w+)\)', re.DOTALL)
THROW = re.compile(r'(VUKSimExc\w+)\((?:(?!;).)*?\.Throw\(kSource,\s*at::(k\w+)\)', re.DOTALL)


def documented(text):
    return {(name, int(line)): (kind, cause) for name, line, kind, cause in ROW.findall(text)}


def sites_of(source):
    """Yields (line, class thrown or None, quoted condition or None) for one source's text."""
    conditions = {name: ' '.join(text.split()) for text, name in CHECK.findall(source)}
    thrown = {name: kind for kind, name in THROW.findall(source)}
    for block in SITES.findall(source):
        for name, line in SITE.findall(block):
            if name in conditions:
                yield int(line), 'VUKBasAssertException', conditions[name]
            else:
                yield int(line), thrown.get(name), None


def differences(root):
    rows = documented((root / 'docs/failures.md').read_text())
    tests = [path.read_text() for path in sorted((root / 'tests').rglob('*_test.cpp'))]
    known = set()
    for path in sorted((root / 'VUKSim/VUKSimRpm.m/src').glob('*.cpp')):
        for line, kind, condition in sites_of(path.read_text()):
            site = (path.stem, line)
            where = f'{path.stem}:{line}'
            known.add(site)
            if site not in rows:
                yield f'{where} is not in docs/failures.md'
                continue
            if kind is not None and rows[site][0] != kind:
                yield f'{where} throws {kind}, docs/failures.md says {rows[site][0]}'
            if condition is not None and f'"{condition}"' not in rows[site][1].replace('\\"', '"'):
                yield f'{where} tests {condition}, docs/failures.md does not quote it'
            source_path = f'src/{path.stem}"'
            number = re.compile(rf'\b{line}\b')
            held = any(source_path in text and number.search(text) for text in tests)
            if not held and site not in UNREACHABLE:
                yield f"{where} is held by no test"
    for name, line in rows:
        if (name, line) not in known:
            yield f'{name}:{line} is in docs/failures.md, but in no source'


def main():
    found = list(differences(pathlib.Path(sys.argv[1])))
    print('\n'.join(found) or 'docs/failures.md, sources and tests agree')
    return 1 if found else 0


if __name__ == '__main__':
    sys.exit(main())
