"""check_pages.py PROJECT: the Markdown files as they are read in a plain checkout. Relative links
lead to files and headings that exist, and every name of the library that a page names is in a
header, of the interface or of the frame inside. Pictures are not looked at: the site has them."""

import pathlib
import re
import sys

FOLDERS = (".", "docs", "docs/families", "samples")


def without_code(text):
    return re.sub(r"^ *```.*?^ *```", "", text, flags=re.S | re.M)


def slugs(text):
    headings = re.findall(r"^#+ +(.*)$", without_code(text), re.M)
    return {re.sub(r"[^a-z0-9 _-]", "", heading.lower()).replace(" ", "-") for heading in headings}


def link_faults(page):
    text = page.read_text()
    for link in re.findall(r"(?<!!)\[[^\]\[]*\]\(([^)\s]+)\)", without_code(text)):
        if re.match(r"[a-z]+:", link):
            continue
        path, _, anchor = link.partition("#")
        target = page.parent / path if path else page
        if not target.exists():
            yield f"{page}: dead link {link}"
        elif anchor and anchor not in slugs(target.read_text()):
            yield f"{page}: no such heading {link}"


def name_faults(page, headers):
    for name, rest in re.findall(r"\b((?:IPL|CTQ|TQ|EVXR|TQIPL)_?[A-Za-z0-9_]*)(\*|\.\.\.)?",
                                 page.read_text()):
        if not re.match(r"(IPL_|CTQ|TQ_[A-Z]|EVXR_)", name):
            continue
        pattern = r"\b" + re.escape(name) + ("" if rest or name.endswith("_") else r"\b")
        if not re.search(pattern, headers):
            yield f"{page}: no header has {name}"


def find_faults(project):
    project = pathlib.Path(project)
    files = [*project.glob("include/**/*.h"), *project.glob("frame/*.h")]
    headers = "\n".join(file.read_text() for file in files)
    pages = [page for folder in FOLDERS for page in sorted((project / folder).glob("*.md"))]
    faults = []
    for page in pages:
        faults += link_faults(page)
        if page.name != "CHANGELOG.md":
            faults += name_faults(page, headers)
    return faults, len(pages)


def main():
    faults, count = find_faults(sys.argv[1])
    for fault in sorted(set(faults)):
        print(fault)
    print(f"{count} pages, {len(faults)} faults")
    sys.exit(bool(faults) or count < 10)


if __name__ == "__main__":
    main()
