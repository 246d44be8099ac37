"""check_names.py XML EXPORTS...: every exported name, and every public name of the headers, has its
contract in Doxygen's output."""

import pathlib
import re
import subprocess
import sys
import xml.etree.ElementTree as ElementTree


def squeeze(text):
    return re.sub(r"\s+", "", text.replace("unsigned int", "unsigned"))


def text_of(element):
    return "".join(element.itertext()).strip() if element is not None else ""


def has_contract(element):
    return bool(text_of(element.find("briefdescription")) or
                text_of(element.find("detaileddescription")))


def read_documented(folder):
    """Names as in exports, with whether they have a contract or are private: {name: bool}."""
    names = {}
    for file in pathlib.Path(folder).glob("*.xml"):
        if file.name in ("index.xml", "Doxyfile.xml"):
            continue
        for compound in ElementTree.parse(file).getroot().iter("compounddef"):
            if compound.get("kind") == "page":
                continue
            scope = ""
            if compound.get("kind") in ("class", "struct"):
                scope = compound.findtext("compoundname")
                names[scope] = has_contract(compound)
                scope += "::"
            for member in compound.iter("memberdef"):
                name = scope + member.findtext("name")
                if member.get("kind") == "function":
                    types = [text_of(p.find("type")) for p in member.findall("param")]
                    name = squeeze(name + "(" + ",".join(types) + ")")
                names[name] = has_contract(member) or member.get("prot") == "private"
                for value in member.findall("enumvalue"):
                    names[value.findtext("name")] = has_contract(value)
    return names


def read_exports(files):
    mangled = [line for file in files for line in pathlib.Path(file).read_text().split()]
    plain = subprocess.run(["c++filt"], input="\n".join(mangled), text=True, check=True,
                           capture_output=True).stdout.splitlines()
    return plain


def find_faults(xml, exports):
    documented = read_documented(xml)
    faults = [f"no contract: {name}" for name, there in documented.items() if not there]
    for export in read_exports(exports):
        name = re.sub(r"^(vtable|typeinfo|typeinfo name) for ", "", export)
        # c++filt writes `T const&` and `void` parameters as none.
        wanted = squeeze(re.sub(r"(\w+) const&", r"const \1&", name))
        known = [n for n in documented if n == wanted or "(" not in wanted and
                 n.partition("(")[0] == wanted]
        if not known:
            faults.append(f"not in the documentation: {export}")
    return faults, len(documented)


def main():
    faults, count = find_faults(sys.argv[1], sys.argv[2:])
    for fault in sorted(set(faults)):
        print(fault)
    print(f"{count} names, {len(faults)} faults")
    sys.exit(bool(faults) or count < 350)


if __name__ == "__main__":
    main()
