# Names of the library's functions, and links to them. The variable root is the project's folder.

BEGIN {
    headers = "cat '" root "'/include/tqipl/*.h"
    while ((headers | getline headerLine) > 0)
        if (match(headerLine, /(IPL_|TQ_[A-Z][a-z])[A-Za-z0-9_]+\(/) && headerLine !~ /^ *\/\//)
            isFunction[substr(headerLine, RSTART, RLENGTH - 1)] = 1
    close(headers)
}

# A name with a link to its contract. Zoom methods are spoken of without the pixels' kind.
function Linked(name) {
    if (name in isFunction) return "@ref " name " \"" name "\""
    if ((name "_8u_C1R") in isFunction) return "@ref " name "_8u_C1R \"" name "\""
    return name
}

# Text with links for names in it.
function LinkNames(text,    result, name) {
    result = ""
    while (match(text, /(IPL_|TQ_[A-Z][a-z])[A-Za-z0-9_]+/)) {
        name = substr(text, RSTART, RLENGTH)
        result = result substr(text, 1, RSTART - 1) Linked(name)
        text = substr(text, RSTART + RLENGTH)
    }
    return result text
}
