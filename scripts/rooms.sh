#!/bin/sh
# Checks the includes between folders against scripts/rooms.txt: each folder of the product is listed there, includes only what
# its line allows, and its line allows only folders that stand above it and that it does include. So there is no circle.
set -eu
cd "$(dirname "$0")/.."
# shellcheck disable=SC2046 # the sources' names have no blanks
grep -HnE '^#include ["<](platform|engine|orvane|host)/' $(git ls-files 'platform/*' 'engine/*' 'include/*' 'host/*' | grep -E '\.(h|cpp)$') |
    awk -F: '
    function fail(text) { print "rooms: " text; failed = 1 }
    function folder(path) { sub("/[^/]*$", "", path); return path }
    FILENAME == "scripts/rooms.txt" {
        if ($0 ~ /^(#|$)/) next
        listed[$1] = 1
        count = split($2, allowed, " ")
        for (i = 1; i <= count; ++i) {
            if (!(allowed[i] in listed) || allowed[i] == $1) fail($1 " may include " allowed[i] ", which does not stand above it")
            may[$1, allowed[i]] = "unused"
        }
        next
    }
    {
        from = folder($1)
        split($3, parts, /["<>]/)
        target = parts[2]
        if (target ~ "/Export.h$" || target ~ "/Version.h$") next
        to = folder(target ~ "^orvane/" ? "include/" target : target)
        if (!(from in listed)) { if (!told[from]++) fail(from " is not listed"); next }
        if (from == to) next
        if (!((from, to) in may)) fail($1 ":" $2 ": " from " may not include " target)
        may[from, to] = "used"
    }
    END {
        for (pair in may) if (may[pair] == "unused") { split(pair, ends, SUBSEP); fail(ends[1] " may include " ends[2] " and does not") }
        exit failed
    }' scripts/rooms.txt -
