"""check_site.py SITE CHROMIUM: opens every page of the site and looks for missing pictures, dead
links, failed requests, errors of scripts, and markup that was taken for text."""

import pathlib
import re
import sys
import urllib.parse

from browser import Browser, BrowserError

SECONDS = 420
MARKUP = re.compile(r"@(?:ref|see|anchor|name|file)\b|\{#[a-z]|<tt>|<code>|^ *///", re.M)


def split_link(url):
    """The file that a link leads to, and its anchor; None for a link that leaves the site."""
    parts = urllib.parse.urlsplit(url)
    if parts.scheme != "file":
        return None
    return pathlib.Path(urllib.parse.unquote(parts.path)), urllib.parse.unquote(parts.fragment)


def links_in_scripts(script):
    """The pages that the navigation tree and the search lead to."""
    text = script.read_text(encoding="utf-8", errors="replace")
    return [(script.parent.parent if link.startswith("../") else script.parent).as_uri() + "/" +
            link.removeprefix("../")
            for link in re.findall(r"""["']((?:\.\./)?[\w-]+\.html(?:#[\w-]+)?)["']""", text)]


def find_faults(site, chromium, seconds=SECONDS):
    """Returns the faults as text, and how many pages, pictures and links were looked at."""
    site = pathlib.Path(site).resolve()
    pages = sorted(site.rglob("*.html"))
    faults, links, anchors, pictures = [], {}, {}, 0
    with Browser(chromium, seconds) as browser:
        for page in pages:
            name = str(page.relative_to(site))
            seen = browser.look_at(page.as_uri())
            anchors[page] = set(seen["anchors"])
            pictures += len(seen["pictures"])
            faults += [f"{name}: missing picture {picture['source']}"
                       for picture in seen["pictures"] if not picture["loaded"]]
            faults += [f"{name}: markup in the text: {markup}"
                       for markup in MARKUP.findall(seen["text"])]
            for link in seen["links"]:
                links.setdefault(link, name)
        faults += browser.complaints
    for script in sorted(site.rglob("*.js")):
        if script.name.startswith("navtreeindex"):  # a table of all pages, links or not
            continue
        for link in links_in_scripts(script):
            links.setdefault(link, str(script.relative_to(site)))

    inside = 0
    for link, name in links.items():
        target = split_link(link)
        if target is None:
            continue
        inside += 1
        file, anchor = target
        if not file.is_file():
            faults.append(f"{name}: dead link {link}")
        elif site not in file.parents:
            faults.append(f"{name}: link out of the site {link}")
        elif anchor and anchor not in anchors.get(file, ()):
            faults.append(f"{name}: no such anchor {link}")
    return faults, (len(pages), pictures, inside)


def main():
    try:
        faults, (pages, pictures, links) = find_faults(sys.argv[1], sys.argv[2])
    except BrowserError as error:
        sys.exit(f"check_site: {error}")
    for fault in faults:
        print(fault)
    print(f"{pages} pages, {pictures} pictures, {links} links, {len(faults)} faults")
    # A site without these was not built.
    sys.exit(bool(faults) or pages < 40 or pictures < 20 or links < 400)


if __name__ == "__main__":
    main()
