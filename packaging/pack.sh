# Makes the files of a release of programs that are built already. Sourced, in the root of the sources: by
# ./package, and by the test of what it makes. The same programs give the same bytes, in whatever folder,
# at whatever time and with whatever settings of the shell.
. packaging/layout.sh

version=$(sed -nE 's/^project\(zolex VERSION ([0-9.]+) .*/\1/p' CMakeLists.txt)

# Every file bears the time of the commit: git's, or what an archive of the commit holds, or the day
# of the version's first build where neither is known.
commit_time=$(git log -1 --format=%ct 2>/dev/null || cat packaging/commit-time)
[[ $commit_time =~ ^[0-9]+$ ]] || commit_time=1795219200
export SOURCE_DATE_EPOCH=$commit_time TZ=UTC LC_ALL=C
umask 022

# What makes a file of the release: functions of BUILDS, the folder with windows-release/ and
# linux-release/, of WORK, a folder to work in, and of DIST, where the file goes.
dist=(windows_zip debian_package ansible_collection)

# make_dist BUILDS WORK DIST: the whole release.
make_dist() {
    local make
    rm -rf "$2"
    mkdir -p "$2" "$3"
    for make in "${dist[@]}"; do
        "$make" "$(realpath "$1")" "$(realpath "$2")" "$(realpath "$3")"
    done
}

# same_time FOLDER: every file and folder bears the time of the commit.
same_time() {
    find "$1" -exec touch -h -d "@$commit_time" {} +
}

windows_zip() {
    local root=$2/zip
    lay_out_zip "$root" "$1/windows-release"
    (cd "$root" && find . -type f ! -name SHA256SUMS -printf '%P\n' | sort | xargs sha256sum) \
        >"$2/SHA256SUMS"
    put 644 "$2/SHA256SUMS" "$root/SHA256SUMS"
    same_time "$root"
    (cd "$root" && find . -type f -printf '%P\n' | sort | zip -q -X -9 -@ "$2/release.zip")
    put 644 "$2/release.zip" "$3/zolex-$version-windows-x86_64.zip"
}

ansible_collection() {
    scripts/ansible-collection "$3" >/dev/null
}

# The source packages whose code the static programs hold, with their versions, as a package names
# them: a fix in one of these takes a new release.
built_using() {
    local compiler
    compiler=$(g++ -dumpversion) &&
        dpkg-query -W -f '${source:Package} (= ${source:Version})\n' libc6-dev \
            "libstdc++-${compiler%%.*}-dev" "libgcc-${compiler%%.*}-dev" nlohmann-json3-dev libcli11-dev |
        sort -u | sed ':a;N;$!ba;s/\n/, /g'
}

debian_package() {
    local root=$2/deb using
    lay_out_deb "$root" "$1/linux-release"
    using=$(built_using) || {
        echo "The libraries in the Linux programs could not be found out." >&2
        return 1
    }
    mkdir -p "$root/DEBIAN"
    sed -e "s/@VERSION@/$version/" -e "s/@USING@/$using/" \
        -e "s/@SIZE@/$(du -sk --apparent-size "$root/usr" | cut -f1)/" \
        packaging/debian/control >"$root/DEBIAN/control"
    (cd "$root" && find usr -type f | sort | xargs md5sum) >"$root/DEBIAN/md5sums"
    chmod 644 "$root/DEBIAN/"*
    find "$root" -type d -exec chmod 755 {} +
    same_time "$root"
    # One thread, because the number of threads shows in the bytes.
    dpkg-deb --root-owner-group -Zxz -z9 --threads-max=1 --build "$root" "$2/release.deb" \
        >/dev/null
    put 644 "$2/release.deb" "$3/zolex_${version}_amd64.deb"
}
