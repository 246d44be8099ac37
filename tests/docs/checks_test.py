"""checks_test.py CHROMIUM: the checks of the documentation see what they are there for."""

import pathlib
import sys
import tempfile
import unittest

import check_names
import check_pages
import check_site

# One pixel.
PNG = bytes.fromhex("89504e470d0a1a0a0000000d49484452000000010000000108000000003a7e9b55"
                    "0000000a49444154789c63680000008200815f6dd5440000000049454e44ae426082")


class Folder(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="docs-checks-")
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def write(self, name, text):
        file = self.folder / name
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text(text)


class Site(Folder):
    def faults_of(self, body):
        self.write("index.html", f"<!DOCTYPE html><html><body>{body}</body></html>")
        self.write("other.html", "<!DOCTYPE html><h1 id='here'>Here</h1>")
        (self.folder / "dot.png").write_bytes(PNG)
        return check_site.find_faults(self.folder, CHROMIUM, 60)[0]

    def test_a_sound_site_has_no_faults(self):
        self.assertEqual([], self.faults_of(
            "<img src='dot.png'><a href='other.html#here'></a><a href='http://host.invalid/'></a>"))

    def test_a_missing_picture_is_seen(self):
        faults = self.faults_of("<img src='missing.png'>")
        self.assertTrue(any("missing picture" in fault for fault in faults), faults)
        self.assertTrue(any("failed request" in fault for fault in faults), faults)

    def test_a_picture_that_is_none_is_seen(self):
        self.write("broken.png", "text")
        faults = self.faults_of("<img src='broken.png'>")
        self.assertEqual(1, len(faults), faults)
        self.assertIn("missing picture", faults[0])

    def test_a_dead_link_is_seen(self):
        faults = self.faults_of("<a href='gone.html'></a>")
        self.assertEqual(1, len(faults), faults)
        self.assertIn("dead link", faults[0])

    def test_a_dead_anchor_is_seen(self):
        faults = self.faults_of("<a href='other.html#there'></a>")
        self.assertEqual(1, len(faults), faults)
        self.assertIn("no such anchor", faults[0])

    def test_a_dead_link_of_the_navigation_tree_is_seen(self):
        self.write("tree.js", "var TREE = [ [ 'Gone', \"gone.html\", null ] ];")
        faults = self.faults_of("")
        self.assertEqual(1, len(faults), faults)
        self.assertIn("dead link", faults[0])

    def test_markup_in_the_text_is_seen(self):
        faults = self.faults_of("<p>See @ref other for more.")
        self.assertEqual(1, len(faults), faults)
        self.assertIn("markup", faults[0])

    def test_a_missing_style_sheet_is_seen(self):
        faults = self.faults_of("<link rel='stylesheet' href='gone.css'>")
        self.assertEqual(1, len(faults), faults)
        self.assertIn("failed request", faults[0])

    def test_an_error_of_a_script_is_seen(self):
        faults = self.faults_of("<script>throw new Error('no');</script>")
        self.assertEqual(1, len(faults), faults)
        self.assertIn("script: ", faults[0])


class Pages(Folder):
    def faults_of(self, text):
        self.write("README.md", text)
        self.write("docs/other.md", "# Other\n\n## By hand, twice\n")
        self.write("include/x.h", "void IPL_Known();")
        return check_pages.find_faults(self.folder)[0]

    def test_sound_pages_have_no_faults(self):
        self.assertEqual([], self.faults_of(
            "IPL_Known [a](docs/other.md#by-hand-twice) ![b](of-the-site.png) [c](http://x/)"))

    def test_dead_links_are_seen(self):
        self.assertEqual(1, len(self.faults_of("[text over\ntwo lines](docs/gone.md)")))

    def test_missing_headings_are_seen(self):
        self.assertEqual(1, len(self.faults_of("[a](docs/other.md#by-machine)")))

    def test_unknown_names_are_seen(self):
        self.assertEqual(1, len(self.faults_of("`IPL_Unknown`")))


class Names(Folder):
    XML = """<doxygen><compounddef kind="file"><sectiondef>
        <memberdef kind="function"><name>IPL_Free</name>
            <param><type>unsigned char *</type></param>
            <briefdescription><para>{}</para></briefdescription></memberdef>
        </sectiondef></compounddef></doxygen>"""

    def faults_of(self, contract, exports):
        self.write("xml/header.xml", self.XML.format(contract))
        self.write("exports.txt", exports)
        return check_names.find_faults(self.folder / "xml", [self.folder / "exports.txt"])[0]

    def test_a_documented_name_is_no_fault(self):
        self.assertEqual([], self.faults_of("Frees.", "_Z8IPL_FreePh\n"))

    def test_an_empty_contract_is_seen(self):
        self.assertEqual(1, len(self.faults_of("", "_Z8IPL_FreePh\n")))

    def test_an_overload_that_is_not_documented_is_seen(self):
        self.assertEqual(1, len(self.faults_of("Frees.", "_Z8IPL_FreePh\n_Z8IPL_FreePhi\n")))


if __name__ == "__main__":
    CHROMIUM = sys.argv.pop()
    unittest.main()
