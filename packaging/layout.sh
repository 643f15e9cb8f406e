# What stands where in the release. Sourced, in the root of the sources: by ./package, and by the test
# of the README, which lays out the programs of a build in the same way. Every file bears the time
# $commit_time.

# page NAME: a manual page as plain text.
page() {
    mandoc -T ascii -O width=78 "docs/man/$1" | sed 's/.\x08//g'
}

# put MODE FROM TO: a file of the release.
put() {
    install -D -m "$1" "$2" "$3"
    touch -d "@$commit_time" "$3"
}

# put_companion FOLDER: the description of zolexctl with its pictures, which controllers are served, and
# how the first server and how a fleet is configured.
put_companion() {
    local name
    for name in companion controllers first-server fleet; do
        put 644 "docs/$name.md" "$1/$name.md"
    done
    for name in docs/pictures/*.svg; do
        put 644 "$name" "$1/pictures/$(basename "$name")"
    done
    put 644 docs/linux-md.md "$1/linux-md.md"
}

# put_contrib FOLDER: what editors take.
put_contrib() {
    local name
    for name in README.md vim/compiler/zolexctl.vim vscode/tasks.json; do
        put 644 "contrib/$name" "$1/$name"
    done
}

# lay_out_zip ROOT PROGRAMS: the files of the Windows archive, but SHA256SUMS, from a build tree.
lay_out_zip() {
    local root=$1 programs=$2 name
    put 755 "$programs/src/ZOLEX.EXE" "$root/ZOLEX.EXE"
    put 755 "$programs/src/companion/ZOLEXCTL.EXE" "$root/ZOLEXCTL.EXE"
    put 755 "$programs/simulator/ZOLEX-SIM.EXE" "$root/ZOLEX-SIM.EXE"
    # Not beside ZOLEX.EXE: found there first, it would stand before that of a virtual server.
    put 755 "$programs/hwdetect/hwdetect.exe" "$root/real-server/hwdetect.exe"
    put 644 packaging/samples/util-windows/UTIL.BAT "$root/real-server/UTIL.BAT"
    put 644 packaging/README.txt "$root/README.txt"
    put 644 README.md "$root/README.md"
    put 644 simulator/README.md "$root/docs/zolex-sim.md"
    put 644 packaging/THIRD-PARTY.txt "$root/docs/THIRD-PARTY.txt"
    put_companion "$root/docs"
    put_contrib "$root/contrib"
    for name in schemas/*.json; do
        put 644 "$name" "$root/$name"
    done
    for name in zolex.1 zolexctl.1 zolex-sim.1 zolex-policies.5 hwdetect.exe.8; do
        page "$name" >"$root/page.tmp"
        put 644 "$root/page.tmp" "$root/docs/${name%%.*}.txt"
    done
    rm "$root/page.tmp"
    for name in packaging/samples/*.ini; do
        put 644 "$name" "$root/samples/$(basename "$name")"
    done
    # The line ends of the system.
    find "$root" -type f ! -iname '*.exe' ! -name '*.svg' -exec sed -i 's/$/\r/' {} +
}

# lay_out_deb ROOT PROGRAMS: the files of the Debian package, but DEBIAN/, from a build tree.
lay_out_deb() {
    local root=$1 programs=$2 doc=usr/share/doc/zolex name section
    for name in src/zolex src/companion/zolexctl simulator/zolex-sim; do
        put 755 "$programs/$name" "$root/usr/bin/$(basename "$name")"
        strip --strip-all --remove-section=.comment --remove-section=.note \
            "$root/usr/bin/$(basename "$name")"
    done
    # Not beside zolex: found there first, it would stand before that of a virtual server.
    put 755 "$programs/hwdetect/hwdetect.exe" "$root/usr/sbin/hwdetect.exe"
    strip --strip-all --remove-section=.comment --remove-section=.note "$root/usr/sbin/hwdetect.exe"
    for name in zolex.1 zolexctl.1 zolex-sim.1 zolex-policies.5 hwdetect.exe.8; do
        section=${name##*.}
        gzip -9nc "docs/man/$name" >"$root/text.tmp"
        put 644 "$root/text.tmp" "$root/usr/share/man/man$section/$name.gz"
    done
    for name in packaging/samples/*.ini; do
        put 644 "$name" "$root/$doc/examples/$(basename "$name")"
    done
    for name in util-linux util-sh; do
        put 755 "packaging/samples/$name/UTIL.BAT" "$root/$doc/examples/$name/UTIL.BAT"
    done
    put 644 README.md "$root/$doc/README.md"
    put 644 simulator/README.md "$root/$doc/zolex-sim.md"
    put_companion "$root/$doc"
    put_contrib "$root/$doc/contrib"
    # Where the shells look for them.
    put 644 "$programs/src/companion/completion/zolexctl" \
        "$root/usr/share/bash-completion/completions/zolexctl"
    put 644 "$programs/src/companion/completion/_zolexctl" \
        "$root/usr/share/zsh/vendor-completions/_zolexctl"
    for name in schemas/*.json; do
        put 644 "$name" "$root/usr/share/zolex/$name"
    done
    cat packaging/debian/copyright >"$root/text.tmp"
    put 644 "$root/text.tmp" "$root/$doc/copyright"
    put 644 packaging/debian/lintian-overrides "$root/usr/share/lintian/overrides/zolex"
    gzip -9nc packaging/debian/changelog >"$root/text.tmp"
    put 644 "$root/text.tmp" "$root/$doc/changelog.gz"
    rm "$root/text.tmp"
}
