#!/bin/sh
# Installs a package of this project in a new Debian system (debootstrap, as root), with apt and so with its
# dependencies, runs the installed example there, compares with its known figures, and removes it again.
# Where no such system can be made the package is unpacked in an empty folder and run from there; the libraries are
# then those of this machine, and the last line says so.
set -eu
[ $# -eq 1 ] || { echo "Usage: $0 package.deb" >&2; exit 1; }
package=$1
export LC_ALL=C DEBIAN_FRONTEND=noninteractive
# N, Da_HN, rhombicity and RMS of the fit, as examples/ubiquitin/README.md has them.
expected="63 -9.398 0.156 0.375"

root=$(mktemp -d)
log=$root.log
trap 'rm -rf "$root" "$log"' EXIT
trap 'exit 1' HUP INT TERM

fail() {
    echo "check_package: $*" >&2
    exit 1
}

# Runs a command inside the new system, or beside the unpacked package.
inside() {
    if [ "$form" = system ]; then
        chroot "$root" "$@"
    else
        "$@"
    fi
}

make_system() {
    suite=$(sed -n 's/^VERSION_CODENAME=//p' /etc/os-release)
    if [ "$(id -u)" -ne 0 ] || ! command -v debootstrap > "$log"; then
        echo "no debootstrap, or not root" > "$log"
        return 1
    fi
    debootstrap --variant=minbase "$suite" "$root" > "$log" 2>&1
}

install_in_system() {
    cp "$package" "$root/tmp/package.deb"
    chmod 644 "$root/tmp/package.deb"
    if ! { inside apt-get update -q && inside apt-get install -y -q --no-install-recommends /tmp/package.deb; } \
        > "$log" 2>&1; then
        tail -20 "$log" >&2
        fail "apt could not install it"
    fi
}

unpack_beside() {
    rm -rf "$root"
    mkdir -p "$root/tmp"
    dpkg-deb -x "$package" "$root"
    dpkg-deb -f "$package" Depends | tr ',' '\n' | sed 's/(.*//; s/ //g' | while read -r name; do
        dpkg-query -W "$name" > "$log" 2>&1 || fail "$name is wanted and not installed here"
    done
}

start=$(date +%s)
form=system
at=""
if make_system; then
    install_in_system
else
    tail -3 "$log" >&2
    form=folder
    at=$root
    unpack_beside
fi

version=$(dpkg-deb -f "$package" Version)
told=$(inside "$at/usr/bin/trelm" -version)
[ "$told" = "trelm $version" ] || fail "the package is $version, the program says: $told"
for file in share/man/man1/trelm.1.gz share/bash-completion/completions/trelm share/zsh/vendor-completions/_trelm \
    share/doc/trelm/README.md share/doc/trelm/docs/reference.md; do
    [ -s "$root/usr/$file" ] || fail "/usr/$file is missing"
done

example=$at/usr/share/doc/trelm/examples/ubiquitin
inside "$at/usr/bin/trelm" -bestFit -pdb "$example/1d3z_model1.pdb" -inD "$example/bicelle_hn.tab" \
    -outD "$at/tmp/fit.tab" -pdbRot "$at/tmp/turned.pdb" -H > "$log" 2>&1 || fail "the example ended with status $?"
figures=$(awk '$1 == "DATA" { value[$2] = $3 }
    END { printf "%d %.3f %.3f %.3f", value["N"], value["Da_HN"], value["Rhombicity"], value["RMS"] }' "$root/tmp/fit.tab")
[ "$figures" = "$expected" ] || fail "the example gives $figures, expected is $expected"

if [ "$form" = system ]; then
    inside apt-get purge -y -q trelm > "$log" 2>&1 || fail "apt could not remove it"
    left=$(find "$root/usr" -name '*trelm*')
    [ -z "$left" ] || fail "left behind: $left"
    where="in a new Debian system"
else
    where="in an empty folder, with the libraries of this machine"
fi
echo "check_package: $package works $where: $figures ($(($(date +%s) - start)) s)"
